// Traffic map and list from the table of other aircraft at 0xF000: a head of 128 bytes, 96 entries of 40 bytes.
import { h, painter, recall, remember, setAttribute, setText } from "./dom.js";

const tableItem = "0xF000:hex:3968";
const entryCount = 96, headSize = 128, entrySize = 40;
const ranges = [2, 5, 10, 20, 40, 80];  // nm from the aircraft to the outer ring

/** The aircraft in the table's bytes: {id, latitude, longitude, altitude ft, heading, speed kt, climb ft/min, label, onGround}. */
export function readTable(bytes) {
  const view = new DataView(bytes.buffer);
  const found = [];
  for (let i = 0; i < entryCount; i++) {
    const at = headSize + i * entrySize;
    const id = view.getUint32(at, true);
    if (!id || at + entrySize > bytes.length) continue;
    let label = "";
    for (let k = 22; k < 36 && bytes[at + k]; k++) label += String.fromCharCode(bytes[at + k]);
    found.push({ id, latitude: view.getFloat32(at + 4, true), longitude: view.getFloat32(at + 8, true),
      altitude: view.getFloat32(at + 12, true), heading: view.getUint16(at + 16, true) * 360 / 65536,
      speed: view.getUint16(at + 18, true), climb: view.getInt16(at + 20, true), label: label.trim(),
        onGround: bytes[at + 38] === 1 });
  }
  return found;
}

export function createTraffic(number, magnetic) {
  let others = [], isShown = false, range = ranges.includes(recall("range", 10)) ? recall("range", 10) : 10;
  let northUp = recall("northUp", false) === true;
  const bytes = new Uint8Array(headSize + entryCount * entrySize);
  const marks = new Map();  // id -> parts of a symbol

  const layer = h("g", {}), compass = h("g", {}), ringTexts = [0, 1].map((i) =>
    h("text", { x: 0, y: i ? -88.500 : -43.500, class: "ringText", "text-anchor": "middle" }));
  const card = [];
  for (let angle = 0; angle < 360; angle += 10) {
    card.push(h("line", { x1: 0, x2: 0, y1: -93, y2: angle % 30 ? -91 : -89, class: "ring",
      transform: `rotate(${angle})` }));
    if (angle % 30 === 0) card.push(h("text",
      { x: 0, y: -94.500, class: angle % 90 ? "cardText" : "cardText cardinal", "text-anchor": "middle",
      transform: `rotate(${angle})` }, ["N", "3", "6", "E", "12", "15", "S", "21", "24", "W", "30", "33"][angle / 30]));
  }
  compass.append(...card);
  const own = h("g", {}, h("path", { d: "M0 -5.500V5.500M-5 -1H5M-2.200 4.500H2.200", class: "own" }));
  const svg = h("svg", { viewBox: "-104 -104 208 208", "aria-hidden": "true", class: "map" },
    h("circle", { r: 103, class: "mapFace" }), [44.5, 89].map((r) => h("circle", { r, class: "ring" })), ringTexts,
      compass, layer, own);
  const rangeText = h("output", { "aria-live": "off" });
  const setRange = (way) => {
    range = ranges[Math.max(0, Math.min(ranges.length - 1, ranges.indexOf(range) + way))];
    remember("range", range);
    labels();
    draw();
  };
  const north = h("button", { type: "button", "aria-pressed": String(northUp), onclick: () => {
    northUp = !northUp;
    remember("northUp", northUp);
    north.setAttribute("aria-pressed", String(northUp));
    draw();
  } }, "North up");
  const rows = h("tbody", {}), count = h("span", {});
  const list = h("details", { class: "trafficList", ontoggle: () => drawList() },
    h("summary", {}, "As a list: ", count),
    h("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": "Aircraft around as a list" },
      h("table", { class: "summary" }, h("thead", {}, h("tr", {},
        ["Aircraft", "Distance", "Bearing", "Height to us", "Speed"].map((text) => h("th", { scope: "col" }, text)))),
          rows)));
  const node = h("section", { class: "card traffic", "aria-label": "Traffic" },
    h("div", { class: "bar" }, h("h2", {}, "Traffic"),
    h("button", { type: "button", "aria-label": "Smaller range", onclick: () => setRange(-1) }, "−"), rangeText,
    h("button", { type: "button", "aria-label": "Larger range", onclick: () => setRange(1) }, "+"), north), svg, list);

  function labels() {
    setText(rangeText, `${range} nm`);
    setText(ringTexts[0], String(range / 2));
    setText(ringTexts[1], "");
  }
  labels();

  // Flat earth around the aircraft: good to a few hundred miles. x east, y north, nautical miles.
  function place(one) {
    const latitude = number("latitude"), longitude = number("longitude");
    let east = one.longitude - longitude;
    if (east > 180) east -= 360;
    if (east < -180) east += 360;
    const x = east * 60 * Math.cos(latitude * Math.PI / 180), y = (one.latitude - latitude) * 60;
    const above = one.altitude - number("altitude") / 0.3048;
    return { x, y, distance: Math.hypot(x, y), above, bearing: (Math.atan2(x, y) * 180 / Math.PI + 360) % 360 };
  }
  function aboveText(feet) {
    const hundreds = Math.round(Math.abs(feet) / 100);
    return `${feet >= 0 ? "+" : "−"}${String(hundreds).padStart(2, "0")}`;
  }
  // As collision warnings show it: filled near, amber close, hollow elsewhere.
  function kindOf({ distance, above }, onGround) {
    if (onGround) return "onGround";
    if (distance < 3 && Math.abs(above) < 850) return "alert";
    return distance < 6 && Math.abs(above) < 1200 ? "near" : "other";
  }

  function makeMark() {
    const symbol = h("path", { d: "M0 -4.200L3.200 0L0 4.200L-3.200 0Z" }),
      way = h("line", { x1: 0, y1: -4.200, x2: 0, y2: -9 });
    const above = h("text", { x: 5, y: -2.200, class: "aboveText" }),
      label = h("text", { x: 5, y: 4.600, class: "labelText" });
    const arrow = h("path", { d: "", class: "arrow" });
    const node = h("g", {}, way, symbol, arrow, above, label);
    layer.append(node);
    return { node, symbol, way, above, label, arrow };
  }

  const draw = painter(() => {
    if (!isShown) return;
    const heading = northUp ? 0 : number("heading");
    setAttribute(compass, "transform", `rotate(${(northUp ? 0 : -magnetic()).toFixed(1)})`);
    setAttribute(own, "transform", `rotate(${(northUp ? number("heading") : 0).toFixed(1)})`);
    const radians = heading * Math.PI / 180, scale = 89 / range, seen = new Set();
    for (const one of others) {
      const there = place(one);
      if (there.distance > range * 1.02) continue;
      seen.add(one.id);
      if (!marks.has(one.id)) marks.set(one.id, makeMark());
      const mark = marks.get(one.id);
      const x = (there.x * Math.cos(radians) - there.y * Math.sin(radians)) * scale;
      const y = -(there.x * Math.sin(radians) + there.y * Math.cos(radians)) * scale;
      setAttribute(mark.node, "transform", `translate(${x.toFixed(2)} ${y.toFixed(2)})`);
      setAttribute(mark.node, "class", kindOf(there, one.onGround));
      setAttribute(mark.way, "transform", `rotate(${(one.heading - heading).toFixed(0)})`);
      setText(mark.above, one.onGround ? "ground" : aboveText(there.above));
      setText(mark.label, one.label);
      setAttribute(mark.arrow, "d", Math.abs(one.climb) < 400 ? "" : one.climb > 0
        ? "M-6 3V-3M-7.500 -1.200L-6 -3.200L-4.500 -1.200"
        : "M-6 -3V3M-7.500 1.200L-6 3.200L-4.500 1.200");
    }
    for (const [id, mark] of marks) {
      if (seen.has(id)) continue;
      mark.node.remove();
      marks.delete(id);
    }
  }, 90);

  const drawList = painter(() => {
    if (!list.open || !isShown) return;
    const near = others.map((one) => ({ ...one, ...place(one) })).sort((a, b) => a.distance - b.distance).slice(0, 30);
    while (rows.children.length > near.length) rows.lastChild.remove();
    while (rows.children.length < near.length) rows.append(h("tr", {}, h("th", { scope: "row" }),
      Array.from({ length: 4 }, () => h("td", { class: "n" }))));
    near.forEach((one, i) => {
      const cells = rows.children[i].children;
      [one.label || `id ${one.id}`, `${one.distance.toFixed(1)} nm`,
        `${String(Math.round(one.bearing) % 360).padStart(3, "0")}°`,
        one.onGround ? "on the ground" : `${Math.abs(Math.round(one.above / 100) * 100)} ft ${one.above >= 0 ? "above" : "below"}`,
        `${one.speed} kt`].forEach((text, k) => setText(cells[k], text));
    });
  }, 1000);

  return { node, names: [tableItem, "latitude", "longitude", "altitude", "heading"],
    take(raw) {
      for (let i = 0, at = 0; i < bytes.length && at < raw.length; i++, at += 3) bytes[i] = parseInt(raw.substr(at, 2),
        16);
      others = readTable(bytes);
      setText(count, others.length ? `${others.length} aircraft` : "no other aircraft");
      draw();
      drawList();
    },
    move: draw,
    show() {
      isShown = true;
      drawList();
    },
    hide() { isShown = false; } };
}
