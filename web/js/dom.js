// Small helpers that all views share: elements without innerHTML, painting in animation frames, memory of the browser.

const svgNames = new Set(["svg", "g", "path", "circle", "line", "rect", "text", "polygon", "polyline", "defs",
  "clipPath", "linearGradient", "radialGradient", "stop", "use", "title"]);
const svgSpace = "http://www.w3.org/2000/svg";

/** An element: attributes by name, listeners as onclick and so on, children as nodes or plain text. */
export function h(tag, attributes = {}, ...children) {
  const node = svgNames.has(tag) ? document.createElementNS(svgSpace, tag)
    : document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (value === undefined || value === null || value === false) continue;
    if (name.startsWith("on")) node.addEventListener(name.slice(2), value);
    else if (name === "value" || name === "checked" || name === "disabled") node[name] = value;
    else node.setAttribute(name, value === true ? "" : value);
  }
  node.append(...children.flat(Infinity).filter((child) => child !== null && child !== undefined && child !== false));
  return node;
}

/** Sets an element's text, without work when it is there already. */
export function setText(node, text) {
  const child = node.firstChild;
  if (child && child.nodeType === 3 && !child.nextSibling) {
    if (child.data !== text) child.data = text;
  } else if (text !== "" || child) {
    node.textContent = text;
  }
}

/** Sets an attribute, without work when it is there already. */
export function setAttribute(node, name, value) {
  if (node.getAttribute(name) !== value) node.setAttribute(name, value);
}

/** A function that asks for `paint` in an animation frame, at most once in `interval` ms. */
export function painter(paint, interval = 0) {
  let isAsked = false, last = -1e9;
  const frame = (now) => {
    isAsked = false;
    last = now;
    paint(now);
  };
  return () => {
    if (isAsked) return;
    isAsked = true;
    const left = interval - (performance.now() - last);
    if (left > 12) setTimeout(() => requestAnimationFrame(frame), left - 8);
    else requestAnimationFrame(frame);
  };
}

/**
 * What the browser remembers; what cannot be stored (private windows, full) lasts as long as the page. It may come
 * from another version of the page or from anywhere: whoever recalls a value checks its type.
 */
const kept = new Map();
export function recall(key, otherwise) {
  if (kept.has(key)) return structuredClone(kept.get(key));
  try {
    const text = localStorage.getItem("tavrix." + key);
    return text === null ? otherwise : JSON.parse(text);
  } catch {
    return otherwise;
  }
}
export function remember(key, value) {
  try {
    localStorage.setItem("tavrix." + key, JSON.stringify(value));
    kept.delete(key);
  } catch {
    kept.set(key, structuredClone(value));
  }
}
/** Calls back when another tab has changed what is remembered under `key`. */
export function onRemembered(key, callback) {
  addEventListener("storage", (event) => {
    if (event.key === null || event.key === "tavrix." + key) callback();
  });
}

/** Tells a screen reader once, without moving the focus. */
export function announce(text) {
  const place = document.getElementById("announcer");
  place.textContent = "";
  setTimeout(() => { place.textContent = text; }, 50);
}

/** "0:07", "12:34", "1:02:03" */
export function clock(seconds) {
  const whole = Math.max(0, Math.floor(seconds));
  const two = (number) => String(number).padStart(2, "0");
  const hours = Math.floor(whole / 3600);
  return hours ? `${hours}:${two(Math.floor(whole / 60) % 60)}:${two(whole % 60)}`
    : `${Math.floor(whole / 60)}:${two(whole % 60)}`;
}

/** A line that tells of an error with the server's remedy; where it is, the line's place on the page shows. */
export function errorText(error) {
  const text = String(error.message ?? error.error);
  const remedy = error.remedy ? ". " + error.remedy[0].toUpperCase() + error.remedy.slice(1) : "";
  return text[0].toUpperCase() + text.slice(1) + remedy;
}

/** A busy line for requests: shows the error of `work` in `place`, else empties it. */
export async function attempt(place, work) {
  try {
    setText(place, "");
    return await work();
  } catch (error) {
    setText(place, errorText(error));
    return undefined;
  }
}

/** A line drawing of 24 x 24. */
export function icon(path) {
  return h("svg", { viewBox: "0 0 24 24", "aria-hidden": "true" }, h("path", { d: path }));
}
