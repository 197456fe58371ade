// Plot: values over time. Data is collected while the view is shown; drawing is bound to animation frames.
import uPlot from "/vendor/uPlot.esm.js";
import { watch } from "/tavrix.js";
import { h, painter, recall, remember, setText } from "./dom.js";
import { catalogue, convert, digitsOf, isNumeric, parseItem, recalledItem, searchRows, unitText, unitsLike } from "./catalogue.js";
import { loadLists } from "./lists.js";

const windows = [30, 60, 120, 300, 600];  // s
const most = 8;
const palette = { light: ["#0a66b0", "#b3261e", "#12713b", "#8b3fb0", "#a15c00", "#00788a", "#b0246e", "#4d5a66"],
                  dark: ["#5cc8ff", "#ff8a80", "#6fe09a", "#d29bff", "#ffc53d", "#4fe0e0", "#ff8fc7", "#b9c6d3"] };

const usual = [{ name: "indicated_altitude" }, { name: "ias" }, { name: "vertical_speed", unit: "ft/min" }];

/** What can be plotted of items as they are remembered or asked for. */
function plottable(items) {
  const known = items.map(recalledItem).filter((one) => one && isNumeric(parseItem(one.name)));
  return [...new Map(known.map((one) => [one.name, one])).values()].slice(0, most);
}

export function createPlot(root) {
  let chosen = recall("plot", null);
  if (!Array.isArray(chosen) || (chosen.length && !plottable(chosen).length)) chosen = usual;
  chosen = plottable(chosen);
  let length = windows.includes(recall("plotWindow", 60)) ? recall("plotWindow", 60) : 60;
  let stop = null, ticker = 0, plot = null, isPaused = false, pausedAt = 0, cursor = null;
  let skew = 0, held = 0;  // s from the server's clock to ours; points at the end that only repeat
  let times = [], columns = chosen.map(() => []), now = chosen.map(() => null);

  const place = h("div", { class: "plotArea", tabindex: "0", role: "img", "aria-label": "Plot" });
  const error = h("p", { class: "bad" });
  const pauseButton = h("button", { type: "button", "aria-pressed": "false", onclick: () => {
    isPaused = !isPaused;
    pausedAt = seconds();
    pauseButton.setAttribute("aria-pressed", String(isPaused));
    setText(pauseButton, isPaused ? "Go on" : "Pause");
    draw();
  } }, "Pause");
  const windowField = h("select", { id: "plotWindow", onchange: () => {
    length = Number(windowField.value);
    remember("plotWindow", length);
    draw();
  } }, windows.map((one) => h("option", { value: one }, one < 60 ? `${one} s` : `${one / 60} min`)));
  windowField.value = String(length);
  const options = h("datalist", { id: "plotNames" });
  const field = h("input", { id: "plotAdd", type: "text", list: "plotNames", placeholder: "heading, com1 …",
    autocomplete: "off", spellcheck: "false" });
  field.addEventListener("focus", () => {
    if (options.children.length) return;
    const first = new Set([...loadLists().values()].flat().map((item) => item.name));
    const rows = catalogue.rows.filter((row) => row.form !== "Text")
      .sort((a, b) => first.has(b.name) - first.has(a.name));
    options.append(...rows.map((row) => h("option", { value: row.name }, row.meaning)));
  });
  const addForm = h("form", { class: "bar addForm", onsubmit: (event) => {
    event.preventDefault();
    const text = field.value.trim();
    const item = parseItem(text) ?? parseItem(searchRows(text).find((row) => row.form !== "Text")?.name ?? "");
    if (!item || !isNumeric(item)) {
      setText(error, text ? `No numeric offset matches "${text}".` : "Type a name.");
    } else if (chosen.some((one) => one.name === item.name)) {
      setText(error, `${item.name} is plotted already.`);
    } else if (chosen.length >= most) {
      setText(error, `At most ${most} values: remove one first.`);
    } else {
      setText(error, "");
      field.value = "";
      chosen.push({ name: item.name });
      columns.push(new Array(times.length).fill(null));
      now.push(null);
      changed();
    }
  } }, h("label", { for: "plotAdd" }, "Add"), field, options, h("button", { class: "primary" }, "Add"));

  const lines = h("tbody", {});
  const summary = h("table", { class: "summary" },
    h("caption", { class: "sr" }, "Plotted values in the window that is shown"),
    h("thead", {}, h("tr", {}, ["Value", "Now", "At cursor", "Lowest", "Highest", "Unit", ""].map((text) =>
      text ? h("th", { scope: "col" }, text) : h("td", {})))), lines);
  root.append(h("section", { class: "card plotCard", "aria-labelledby": "plotTitle" },
    h("div", { class: "bar plotBar" }, h("h2", { id: "plotTitle" }, "Plot"), addForm,
      h("label", { for: "plotWindow" }, "Window"),
      windowField, pauseButton, h("button", { type: "button", onclick: () => {
        times = [];
        columns = chosen.map(() => []);
        draw();
      } }, "Clear"), h("button", { type: "button", onclick: () => exportCsv() }, "Export CSV")),
    error, place, h("p", { class: "hint" },
      "Point at the plot, or focus it and use the arrow keys, to read values; Escape ends it."),
    h("div", { class: "scroll", tabindex: "0", role: "region", "aria-label": "Table of the plotted values" },
      summary)));

  const unitOf = (one) => one.unit ?? parseItem(one.name).row?.unit ?? "";
  const theme = () => document.documentElement.dataset.theme === "dark" ? "dark" : "light";
  const seconds = () => performance.now() / 1000;

  let cells = [];
  function showLines() {
    cells = chosen.map((one, i) => {
      const item = parseItem(one.name);
      const units = item.row && !item.row.values ? unitsLike(item.row.unit) : [];
      const [current, at, low, high] = [0, 0, 0, 0].map(() => h("td", { class: "n" }));
      const swatch = h("i", { class: "swatch" });
      swatch.style.background = palette[theme()][i];
      const unit = units.length > 1 ? h("select", { "aria-label": `Unit of ${one.name}`, onchange: (event) => {
        const from = unitOf(one);
        one.unit = event.target.value;
        columns[i] = columns[i].map((value) => value === null ? null : convert(value, from, one.unit));
        if (now[i] !== null) now[i] = convert(now[i], from, one.unit);
        remember("plot", chosen);
        build();
        draw();
      } }, units.map((name) => h("option", { value: name }, name))) : unitText(item) || "–";
      if (units.length > 1) unit.value = unitOf(one);
      return { current, at, low, high, node: h("tr", {}, h("th", { scope: "row" }, swatch, " ", one.name,
        h("small", {}, item.row?.meaning ?? item.type)), current, at, low, high, h("td", {}, unit),
      h("td", {}, h("button", { type: "button", class: "icon flat", "aria-label": `Remove ${one.name}`,
        title: "Remove", onclick: () => {
        const k = chosen.indexOf(one);
        chosen.splice(k, 1);
        columns.splice(k, 1);
        now.splice(k, 1);
        changed();
        (lines.querySelectorAll("button")[Math.max(0, k - 1)] ?? field).focus();
      } }, h("svg", { viewBox: "0 0 24 24", "aria-hidden": "true" }, h("path", { d: "M6 6l12 12M18 6L6 18" }))))) };
    });
    lines.replaceChildren(...cells.map((cell) => cell.node));
  }

  // One axis for each unit: the first at the left, the others at the right; narrow screens have room for one.
  function build() {
    plot?.destroy();
    place.replaceChildren();
    plot = null;
    if (!chosen.length) {
      place.append(h("p", { class: "empty" }, "Nothing is plotted: add a value above."));
      return;
    }
    const style = getComputedStyle(document.documentElement);
    const ink = style.getPropertyValue("--dim").trim(), line = style.getPropertyValue("--grid").trim();
    const size = parseFloat(style.fontSize), font = `${Math.round(size * 0.78)}px system-ui, sans-serif`;
    const scaleOf = (one) => unitOf(one) || one.name;
    const names = [...new Set(chosen.map(scaleOf))];
    const room = place.clientWidth < 600 ? 1 : place.clientWidth < 1000 ? 2 : 4;
    const stepped = (one) => { const { row } = parseItem(one.name); return row
      && (row.form === "Flag" || row.values); };
    const axis = { stroke: ink, font, space: size * 2.6, grid: { stroke: line, width: 1 },
      ticks: { stroke: line, width: 1 } };
    plot = new uPlot({
      width: place.clientWidth, height: place.clientHeight, legend: { show: false }, pxAlign: 0,
      cursor: { drag: { setScale: false }, points: { size: 7 } },
      scales: { x: { time: false }, ...Object.fromEntries(names.map((name) => [name, {
        range: (_, low, high) => {
          if (low === null) return [0, 1];
          const pad = Math.max((high - low) * 0.08, Math.abs(high) * 0.0005, 0.02);
          return [low - pad, high + pad];
        } }])) },
      series: [{}, ...chosen.map((one, i) => ({ label: one.name, scale: scaleOf(one), stroke: palette[theme()][i],
        width: Math.max(1.5, size / 9), points: { show: false },
          paths: stepped(one) ? uPlot.paths.stepped({ align: 1 }) : undefined }))],
      axes: [{ ...axis, values: (_, ticks) => ticks.map(agoText), splits: () => timeTicks(), size: size * 2.2 },
        ...names.slice(0, room).map((name, i) => ({ ...axis, scale: name, side: i ? 1 : 3, label: name, labelFont: font,
          labelSize: size * 1.3, size: size * 4, grid: { ...axis.grid, show: i === 0 },
          values: (_, ticks) => ticks.map((tick) => String(Number(tick.toPrecision(7))).replace("-", "−")),
          stroke: names.length > 1 ? palette[theme()][chosen.findIndex((one) => scaleOf(one) === name)] : ink }))],
      hooks: { setCursor: [(self) => {
        cursor = self.cursor.idx;
        drawTable();
      }] },
    }, [[], ...chosen.map(() => [])], place);
  }
  const end = () => isPaused ? pausedAt : seconds();
  const timeTicks = () => {
    const step = [5, 10, 15, 20, 30, 60, 120].find((one) => length / one <= place.clientWidth / 90) ?? 300;
    return Array.from({ length: Math.floor(length / step) + 1 }, (_, i) => end() - i * step).reverse();
  };
  const agoText = (tick) => {
    const ago = Math.round(end() - tick);
    return ago <= 0 ? "now" : ago < 120 ? `−${ago} s` : `−${Number((ago / 60).toFixed(1))} min`;
  };

  const draw = painter(() => {
    if (plot && stop) {
      plot.batch(() => {
        plot.setData([times, ...columns], false);
        plot.setScale("x", { min: end() - length, max: end() });
      });
    }
    drawTable();
  }, 60);
  const drawSlowly = painter(() => draw(), 250);

  const drawTable = painter(() => {
    const first = lowerBound(times, end() - length), last = lowerBound(times, end());
    const texts = [];
    chosen.forEach((one, i) => {
      const item = parseItem(one.name);
      const digits = item.row ? digitsOf(item.row, unitOf(one)) : /^f/.test(item.type) ? 3 : 0;
      const show = (value) => value === null || value === undefined || !Number.isFinite(value) ? "–"
        : value.toFixed(digits).replace("-", "−");
      let low = Infinity, high = -Infinity;
      for (let k = first; k < last; k++) {
        const value = columns[i][k];
        if (value === null) continue;
        if (value < low) low = value;
        if (value > high) high = value;
      }
      setText(cells[i].current, show(now[i]));
      setText(cells[i].at, cursor === null ? "–" : show(columns[i][cursor]));
      setText(cells[i].low, show(low));
      setText(cells[i].high, show(high));
      texts.push(`${one.name} ${show(low)} to ${show(high)} ${unitOf(one)}`);
    });
    if (document.activeElement !== place) {
      place.setAttribute("aria-label", texts.length ? `Plot of the last ${length} seconds: ${texts.join("; ")}`
        : "Empty plot");
    }
  }, 250);

  place.addEventListener("keydown", (event) => {
    if (!plot || !times.length) return;
    const first = lowerBound(times, end() - length), last = times.length - 1;
    const step = Math.max(1, Math.round((last - first) / 60));
    const at = cursor ?? last;
    const to = { ArrowLeft: at - step, ArrowRight: at + step, Home: first, End: last }[event.key];
    if (event.key === "Escape") {
      cursor = null;
      plot.setCursor({ left: -10, top: -10 });
    } else if (to !== undefined) {
      event.preventDefault();
      const index = Math.max(first, Math.min(last, to));
      plot.setCursor({ left: plot.valToPos(times[index], "x"), top: 10 });
    }
  });
  place.addEventListener("dblclick", () => pauseButton.click());

  // What was held up on the way comes late and at once, but belongs where the server read it. Its clock is as far
  // from ours as the quickest way said, so far: what stands there moves when one was quicker. A little is let go so
  // that a clock that runs slower is followed.
  function appendRead(time) {
    const away = seconds() - time;
    if (away > skew + 5 || !skew) {
      skew = away;
    } else if (away < skew) {
      if (skew - away < 5) times = times.map((at) => at - (skew - away));
      skew = away;
    } else {
      skew += 1e-5;
    }
    while (held && times[times.length - 1] >= time + skew) {
      times.pop();
      columns.forEach((column) => column.pop());
      held--;
    }
    append(time + skew);
    held = 0;
  }

  function append(at) {
    if (times.length && at <= times[times.length - 1]) at = times[times.length - 1] + 1e-4;
    times.push(at);
    now.forEach((value, i) => columns[i].push(value));
    if (times.length > 4000 && times[0] < at - windows[windows.length - 1] - 60) {
      const cut = lowerBound(times, at - windows[windows.length - 1]);
      times = times.slice(cut);
      columns = columns.map((column) => column.slice(cut));
    }
  }

  // What happened while the view was hidden or the connection lost is a gap, not a line.
  function gap() {
    const last = times.length - 1;
    if (last < 0 || columns.every((column) => column[last] === null)) return;
    times.push(seconds());
    held = 0;
    columns.forEach((column) => column.push(null));
  }

  function listen() {
    stop?.();
    stop = null;
    if (!chosen.length) return;
    const names = chosen.map((one) => one.name);
    stop = watch(names, (part, time) => {
      chosen.forEach((one, i) => {
        const entry = part[one.name];
        if (!entry) return;
        if (entry.error) {
          setText(error, `${one.name}: ${entry.error.error}`);
          return;
        }
        const number = Number(entry.value);
        now[i] = entry.value === null || !Number.isFinite(number) ? null
          : convert(number, parseItem(one.name).row?.unit ?? "", unitOf(one));
      });
      appendRead(time);
      if (!isPaused) (length > 120 ? drawSlowly : draw)();
    }, { rate: 20 });
  }

  function changed() {
    remember("plot", chosen);
    history.replaceState(null, "", "#plot/" + chosen.map((one) => one.name).join());
    showLines();
    build();
    listen();
    draw();
  }

  function exportCsv() {
    const first = lowerBound(times, end() - length), last = lowerBound(times, end());
    const quote = (text) => /[",\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text;
    const text = [["seconds", ...chosen.map((one) => quote(one.name
      + (unitOf(one) ? ` (${unitOf(one)})` : "")))].join(",")];
    for (let k = first; k < last; k++) {
      text.push([(times[k] - times[first]).toFixed(3), ...columns.map((column) => column[k] ?? "")].join(","));
    }
    const address = URL.createObjectURL(new Blob([text.join("\r\n") + "\r\n"], { type: "text/csv" }));
    const link = h("a", { href: address, download: "tavrix-plot.csv" });
    document.body.append(link);
    link.click();
    link.remove();
    setTimeout(() => URL.revokeObjectURL(address), 5000);
  }

  const resized = painter(() => {
    if (plot && stop && place.clientWidth) plot.setSize({ width: place.clientWidth, height: place.clientHeight });
  }, 100);
  new ResizeObserver(resized).observe(place);
  addEventListener("themechange", () => {
    if (!stop) return;
    showLines();
    build();
    draw();
  });

  return {
    async show(rest) {
      if (rest) {
        const names = plottable(rest.split(",").map((name) => ({ name }))).map((one) => one.name);
        if (names.length && names.join() !== chosen.map((one) => one.name).join()) {
          chosen = names.map((name) => chosen.find((one) => one.name === name) ?? { name });
          times = [];
          columns = chosen.map(() => []);
          now = chosen.map(() => null);
        }
      }
      gap();
      changed();
      clearInterval(ticker);
      ticker = setInterval(() => {
        if (document.hidden) return;
        if (document.documentElement.classList.contains("offline")) {
          gap();
          return;
        }
        append(seconds());
        held++;
        if (!isPaused) draw();
      }, 500);
      if (globalThis.tavrixPlot === undefined) {
        Object.defineProperty(globalThis, "tavrixPlot",
          { get: () => ({ names: chosen.map((one) => one.name), times, columns }) });
      }
    },
    hide() {
      clearInterval(ticker);
      stop?.();
      stop = null;
    },
  };
}

// The first index whose time is not before `at`.
function lowerBound(list, at) {
  let low = 0, high = list.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (list[middle] < at) low = middle + 1;
    else high = middle;
  }
  return low;
}
