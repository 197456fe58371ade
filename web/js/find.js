// Find by moving: learns which bytes change by themselves, then lists what a movement changed, the clearest first.
import { read } from "/tavrix.js";
import { announce, attempt, h, icon, painter, setText } from "./dom.js";
import { catalogue, decodeBytes, hexOffset, loadAreas, parseItem, unitText, valueText } from "./catalogue.js";
import { addToWatch } from "./lists.js";

const enough = 6;        // seconds of holding still that catch most of what changes by itself
const settled = 700;     // ms without a change after which a byte has come to rest
const kinds = {          // how clean the evidence is: dots of five, and the score that orders the list
  once: { dots: 5, score: 100, text: "moved once and stays" },
  stays: { dots: 4, score: 85, text: "moved and came to rest" },
  back: { dots: 3, score: 60, text: "moved and came back" },
  running: { dots: 2, score: 35, text: "still changing" },
  further: { dots: 1, score: 10, text: "changed before too, now further" },
};

/** Bookkeeping of single bytes; pure, so that its rules can be followed by reading. */
export function makeFinder() {
  const noise = new Map();  // offset -> {low, high}: what changed while everything was still
  const moved = new Map();  // offset -> {before, after, events, first, last}
  return { noise, moved,
    learn(changes) {
      for (const [offset, before, after] of changes) {
        const one = noise.get(offset) ?? { low: before, high: before };
        one.low = Math.min(one.low, after);
        one.high = Math.max(one.high, after);
        noise.set(offset, one);
      }
    },
    move(changes, now) {
      for (const [offset, before, after] of changes) {
        const quiet = noise.get(offset);
        if (quiet && after >= 2 * quiet.low - quiet.high - 2 && after <= 2 * quiet.high - quiet.low + 2
          && !moved.has(offset)) continue;
        const one = moved.get(offset) ?? { before, after, events: 0, first: now, last: now };
        one.after = after;
        one.events++;
        one.last = now;
        moved.set(offset, one);
      }
    },
    forgetMove: () => moved.clear(),
    /** Rows, fields of areas and bare bytes that moved: {item, row, label, meaning, offsets, kind, score, ...}. */
    results(now, areas) {
      const groups = new Map();
      const put = (name, make, offset) => {
        if (!groups.has(name)) groups.set(name, { ...make(), offsets: [] });
        groups.get(name).offsets.push(offset);
      };
      const bare = [];
      for (const offset of [...moved.keys()].sort((a, b) => a - b)) {
        const rows = rowsAt(offset);
        for (const row of rows) {
          put(row.name, () => ({ item: parseItem(row.name), label: row.name, meaning: row.meaning,
            detail: row.subject }), offset);
        }
        if (rows.length) continue;
        const field = fieldAt(areas, offset);
        if (field) put(field.name, () => field, offset);
        else bare.push(offset);
      }
      for (let i = 0; i < bare.length;) {
        let end = i + 1;
        while (end < bare.length && bare[end] === bare[end - 1] + 1) end++;
        const size = end - i, type = { 1: "u8", 2: "u16", 4: "u32" }[size] ?? `hex:${size}`;
        const name = `${hexOffset(bare[i])}:${type}`;
        for (let k = i; k < end; k++) {
          put(name, () => ({ item: parseItem(name), label: name, meaning: "bytes without a name", detail: "" }),
            bare[k]);
        }
        i = end;
      }
      const list = [...groups.values()].map((group) => ({ ...group, ...judge(group, now) }));
      return list.sort((a, b) => b.score - a.score || a.first - b.first || a.events - b.events);
    } };

  function judge({ offsets, item }, now) {
    const bytes = offsets.map((offset) => moved.get(offset));
    const events = Math.max(...bytes.map((one) => one.events));
    const last = Math.max(...bytes.map((one) => one.last)), first = Math.min(...bytes.map((one) => one.first));
    const isDifferent = bytes.some((one) => one.before !== one.after);
    const isNoisy = offsets.some((offset) => noise.has(offset)) || neighbours(item).some((offset) => noise.has(offset));
    const kind = isNoisy ? "further" : now - last < settled && events > 2 ? "running" : !isDifferent ? "back"
      : events === 1 ? "once" : "stays";
    // A reading that trembles by its smallest step is no lever; one click of a knob may be, so it stays in the list.
    const { row } = item, isWhole = /^[us]/.test(item.type) && item.size > 1 && row && row.form === "Number"
      && !row.values;
    const steps = offsets.reduce((sum, offset, i) => sum
      + (bytes[i].after - bytes[i].before) * 256 ** (offset - item.offset), 0);
    const size = Math.min(Math.abs(steps), 256 ** item.size - Math.abs(steps));  // from 0 to −1 is a small step too
    const isTiny = isWhole && isDifferent && size <= 2;
    const bonus = row ? (row.write === "yes" ? 6 : 3) : 0;
    return { kind, events, first, last, isTiny,
             score: kinds[kind].score + bonus - Math.min(12, Math.log2(events)) - (isTiny ? 20 : 0) };
  }
  function neighbours(item) {
    return Array.from({ length: Math.min(item.size, 16) }, (_, i) => item.offset + i);
  }
}

function rowsAt(offset) {
  return catalogue.rows.filter((row) => offset >= row.offset && offset < row.offset + row.size);
}

function fieldAt(areas, offset) {
  for (const area of areas ?? []) {
    const step = area.step || area.size;
    const at = offset - area.offset;
    if (at < 0 || at >= step * (area.count - 1) + area.size) continue;
    const index = Math.floor(at / step), inside = at - index * step;
    const field = area.fields.find((one) => inside >= one.at && inside < one.at + one.size);
    if (!field) continue;
    const place = area.offset + index * step + field.at;
    return { name: `${area.name}[${index}].${field.name}`,
      label: area.name + (area.count > 1 ? `[${index}]` : "") + "." + field.name,
      item: parseItem(`${hexOffset(place)}:${field.type}`), meaning: field.meaning, detail: area.meaning };
  }
  return null;
}

export function createFind(root) {
  let finder = makeFinder(), phase = "idle", since = 0, source = null, areas = [], ticker = 0, results = [];
  const error = h("p", { class: "bad" });

  const steps = [
    ["Hold still", "Take your hands off. The page learns what changes by itself: clocks, the moving aircraft, engines."],
    ["Move it", "Move the one switch, lever or knob you want to know, once, slowly, and leave it in its new place."],
    ["Look", "The offsets that changed, the clearest evidence first. Add them to a watch list, or move again."],
  ].map(([title, text], i) => h("li", { class: "step" },
    h("span", { class: "big", "aria-hidden": "true" }, String(i + 1)),
    h("div", {}, h("h3", {}, title), h("p", {}, text))));
  const stepList = h("ol", { class: "steps" }, steps);
  const state = h("p", { class: "findState" }, "Ready when you are.");
  const meter = h("i", {}), meterBox = h("div", { class: "meter", "aria-hidden": "true" }, meter);
  const primary = h("button", { type: "button", class: "primary large", onclick: () => next() }, "Start: hold still");
  const reset = h("button", { type: "button", class: "large", hidden: true, onclick: () => begin("still") },
    "Start over");
  const list = h("ol", { class: "findings", "aria-label": "What changed" });
  const weak = h("details", { class: "weak", hidden: true }, h("summary", {}, ""), h("ol", { class: "findings" }));
  root.append(h("div", { class: "findGrid" },
    h("section", { class: "card", "aria-labelledby": "findTitle" },
      h("h2", { id: "findTitle" }, "What changes when I move this?"),
      stepList, h("div", { class: "action" }, state, meterBox, h("div", { class: "bar" }, primary, reset)),
      error),
    h("section", { class: "card", "aria-labelledby": "foundTitle" }, h("h2", { id: "foundTitle" }, "What changed"),
      list, weak)));

  function next() {
    if (phase === "idle") begin("still");
    else if (phase === "still") begin("moving");
    else if (phase === "moving") finish();
    else begin("moving");
  }

  function begin(wanted) {
    if (wanted === "still") finder = makeFinder();
    else finder.forgetMove();
    phase = wanted;
    since = performance.now();
    results = [];
    announce(phase === "still" ? "Hold still" : "Now move it");
    open();
    show();
  }

  async function finish() {
    phase = "done";
    close();
    results = finder.results(performance.now(), areas);
    show();
    announce(`${results.filter((one) => one.kind !== "further").length} places changed`);
    primary.focus({ preventScroll: true });
    if (innerWidth <= 1000) list.parentElement.scrollIntoView({ block: "nearest" });
    if (results.length) {
      const entries = await attempt(error, () => read(results.slice(0, 200).map((one) => one.item.name)));
      entries?.forEach((entry, i) => { results[i].entry = entry; });
      show();
    }
  }

  function open() {
    if (source) return;
    source = new EventSource("/api/changes?rate=20");
    source.addEventListener("changes", (event) => {
      const { changes } = JSON.parse(event.data);
      if (phase === "still") finder.learn(changes);
      else if (phase === "moving") finder.move(changes, performance.now());
      paint();
    });
    source.onerror = () => setText(error, "The connection was lost: the list may be incomplete. It connects again by itself.");
    source.onopen = () => setText(error, "");
    clearInterval(ticker);
    ticker = setInterval(() => paint(), 250);
  }
  function close() {
    source?.close();
    source = null;
    clearInterval(ticker);
  }

  const paint = painter(() => {
    if (phase === "moving") results = finder.results(performance.now(), areas);
    if (phase === "still" || phase === "moving") show();
  }, 240);

  function show() {
    const seconds = (performance.now() - since) / 1000;
    const at = { idle: 0, still: 0, moving: 1, done: 2 }[phase];
    stepList.classList.toggle("begun", phase !== "idle");
    steps.forEach((step, i) => {
      step.className = "step" + (phase !== "idle" && i === at ? " now" : phase !== "idle" && i < at ? " past" : "");
      if (i === at && phase !== "idle") step.setAttribute("aria-current", "step");
      else step.removeAttribute("aria-current");
    });
    meter.style.width = phase === "still" ? `${Math.min(100, 100 * seconds / enough)}%` : phase === "idle" ? "0"
      : "100%";
    meterBox.classList.toggle("ready", phase !== "still" || seconds >= enough);
    const clean = results.filter((one) => one.kind !== "further");
    const places = `${clean.length} ${clean.length === 1 ? "place" : "places"}`;
    setText(state, phase === "idle" ? "Ready when you are."
      : phase === "still" ? `${Math.floor(seconds)} s: ${finder.noise.size} bytes change by themselves`
        + (seconds < enough ? ". A little longer …" : ". That is enough; longer is better still.")
      : phase === "moving" ? (clean.length ? `${places} changed so far` : "Move it now …")
      : clean.length ? `${places} changed; ${finder.noise.size} bytes that change by themselves are left out`
      : "Nothing changed but what changes by itself. Does the simulator follow this switch? Move again, or start over.");
    setText(primary, { idle: "Start: hold still", still: "Now I move it", moving: "Done moving",
      done: "Move again" }[phase]);
    primary.disabled = phase === "still" && seconds < 1.5;
    reset.hidden = phase === "idle";
    fill(list, clean.slice(0, 60));
    const noisy = results.filter((one) => one.kind === "further");
    weak.hidden = !noisy.length || phase !== "done";
    setText(weak.firstChild, `${noisy.length} more that also changed while still, now further than before`);
    if (!weak.hidden) fill(weak.lastChild, noisy.slice(0, 60));
  }

  // Lines are kept by name, so that buttons keep the focus while the list grows.
  const lines = new Map();
  function fill(place, found) {
    const nodes = found.map((one) => {
      const key = `${place === list}${one.label}`;
      if (!lines.has(key)) lines.set(key, makeLine(one));
      const line = lines.get(key);
      line.update(one);
      return line.node;
    });
    if (nodes.length !== place.children.length || nodes.some((node, i) => node !== place.children[i])) {
      place.replaceChildren(...nodes);
    }
  }

  function makeLine(first) {
    const dots = Array.from({ length: 5 }, () => h("i", {})), evidence = h("span", {});
    const values = h("p", { class: "beforeAfter" });
    const addButton = h("button", { type: "button", "aria-label": `Add ${first.label} to the watch list`,
      onclick: () => {
      addButton.replaceChildren(icon("M5 13l4 4L19 7"), ` In ${addToWatch(first.item.name)}`);
    } }, "+ Watch");
    const node = h("li", { class: "finding" },
      h("div", { class: "title" }, h("b", {}, first.label), " ", h("code", {}, hexOffset(first.item.offset)),
        h("small", {}, [first.meaning, first.detail].filter(Boolean).join(" · "))),
      values, h("p", { class: "evidence" }, h("span", { class: "dots", "aria-hidden": "true" }, dots), evidence),
        addButton);
    return { node, update(one) {
      const kind = kinds[one.kind];
      dots.forEach((dot, i) => dot.classList.toggle("on", i < kind.dots - (one.isTiny ? 1 : 0)));
      setText(evidence, kind.text + (one.events > 1 ? `, ${one.events} changes` : "")
        + (one.isTiny ? ", by the smallest step" : ""));
      setText(values, beforeAfter(one));
    } };
  }

  function beforeAfter(one) {
    const hex = (value) => value.toString(16).padStart(2, "0").toUpperCase();
    const bytes = one.offsets.map((offset) => finder.moved.get(offset)).filter(Boolean);
    const plain = `${bytes.map((byte) => hex(byte.before)).join(" ")} to ${bytes.map((byte) => hex(byte.after)).join(" ")}`;
    if (!one.entry) return plain;
    const after = one.entry.raw.split(" ").map((text) => parseInt(text, 16)), before = [...after];
    one.offsets.forEach((offset, i) => {
      const at = offset - one.item.offset;
      if (at >= before.length || !bytes[i]) return;
      before[at] = bytes[i].before;
      after[at] = bytes[i].after;
    });
    const text = (raw) => valueText(one.item, decodeBytes(one.item, raw));
    return `${text(before)} to ${text(after)} ${unitText(one.item)}`.trim();
  }

  return {
    async show() {
      if (phase === "still" || phase === "moving") open();
      show();
      areas = await attempt(error, loadAreas) ?? [];
    },
    hide: close,
  };
}
