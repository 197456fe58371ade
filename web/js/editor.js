// Writing values: a switch, or a form with what the row allows; both say what became of it.
import { write } from "/tavrix.js";
import { announce, errorText, h, setAttribute, setText } from "./dom.js";
import { convert, digitsOf, isNumeric, unitsLike, unitText, valueText } from "./catalogue.js";

/** Writes and tells the outcome in `place` (an element) and to screen readers. Resolves to the entry, or null. */
export async function writeAndTell(item, value, unit, place) {
  place.className = "outcome";
  setText(place, "writing …");
  let text, kind, entry = null;
  try {
    entry = await write(item.name, value, { unit });
    const now = `${valueText(item, entry.value, unit)} ${unitText(item, unit)}`.trim();
    if (!entry.written) [kind, text] = ["bad", "Not written"];
    else if (entry.confirmed === true) [kind, text] = ["good", `Written and confirmed: ${now}`];
    else if (entry.confirmed === false) [kind, text] = ["warn", `Written, but not confirmed: it reads ${now}`];
    else [kind, text] = ["good", "Written; this offset does not read back"];
  } catch (error) {
    [kind, text] = ["bad", `Refused: ${errorText(error)}`];
  }
  place.className = "outcome " + kind;
  setText(place, text);
  announce(`${item.name}: ${text}`);
  return entry;
}

/** A switch for a Flag row: {node, show(value)}. */
export function makeSwitch(item, label, place) {
  let isOn = false;
  const node = h("button", { type: "button", role: "switch", class: "switch", "aria-checked": "false",
    "aria-label": label,
    onclick: () => writeAndTell(item, !isOn, undefined, place) }, h("span", { class: "knob" }));
  return { node, show(value) {
    isOn = Number(value) !== 0;
    setAttribute(node, "aria-checked", String(isOn));
  } };
}

const limits = { u8: [0, 255], s8: [-128, 127], u16: [0, 65535], s16: [-32768, 32767], u32: [0, 4294967295],
  s32: [-2147483648, 2147483647] };

/** "0 to 360 deg, in steps of 0.0055", in the unit that is chosen. */
function rangeOf(item, unit) {
  const range = item.row ? item.row.range : limits[item.type]
    && { low: limits[item.type][0], high: limits[item.type][1], step: 1 };
  if (!range) return null;
  const own = item.row?.unit ?? "";
  const ends = [convert(range.low, own, unit), convert(range.high, own, unit)];
  return { low: Math.min(...ends), high: Math.max(...ends),
           step: Math.abs(convert(range.step, own, unit) - convert(0, own, unit)) };
}
const short = (number) => String(Number(number.toPrecision(6))).replace("-", "−");

/** The problem with a number as the user typed it, or "". Words and numbers with a unit are the server's to judge. */
export function problemWith(item, text, unit) {
  if (text.trim() === "") return "Type a value.";
  const number = Number(text.replace(",", "."));
  if (!Number.isFinite(number)) return "";
  const range = rangeOf(item, unit);
  if (range && (number < range.low || number > range.high)) {
    return `${short(number)} is outside ${short(range.low)} to ${short(range.high)} ${unit || item.row?.unit || ""}`.trim() + ".";
  }
  if (item.name === "transponder" && /[89]/.test(text)) return "A transponder code has digits 0 to 7 only.";
  return "";
}

/**
 * A form that writes `item`. `current`: its value now; `unit`: the one it is shown in; `done(unit)` is called when
 * it is to close, with the unit that was chosen.
 */
export function makeForm(item, current, unit, outcome, done) {
  const { row } = item;
  const hint = h("p", { class: "hint" });
  hint.id = "hint-" + Math.random().toString(36).slice(2);
  let read, field, unitField = null;
  let chosen = unit || row?.unit || "";

  if (row?.values) {
    field = h("select", { "aria-label": `New value of ${item.name}` },
      row.values.map((one) => h("option", { value: one.value }, one.name)));
    field.value = String(current);
    read = () => Number(field.value);
  } else if (row?.bits && row.bits.every((bit) => bit.width === 1)) {
    const boxes = row.bits.map((bit) => {
      const box = h("input", { type: "checkbox", checked: Boolean((Number(current) >>> bit.bit) & 1) });
      return { bit, box };
    });
    field = h("fieldset", { class: "bits" }, h("legend", {}, `Bits of ${item.name}`),
      boxes.map(({ bit, box }) => h("label", {}, box, " ", bit.name)));
    read = () => boxes.reduce((sum, { bit, box }) => sum + (box.checked ? 2 ** bit.bit : 0), 0);
  } else {
    const isText = !isNumeric(item);
    const start = isText ? String(current ?? "") : Number.isFinite(Number(current))
      ? startText(item, current, chosen) : "";
    field = h("input", { type: "text", value: start, spellcheck: "false", autocomplete: "off",
      inputmode: isText || item.type?.[0] === "s" || rangeOf(item, "")?.low < 0 ? "text" : "decimal",
      "aria-label": `New value of ${item.name}`, "aria-describedby": hint.id,
      maxlength: isText && row ? row.size - 1 : undefined });
    read = () => {
      const text = field.value.trim();
      if (isText) return /^hex/.test(item.type) ? "hex:" + text.replace(/^hex:|\s/g, "") : field.value;
      const number = Number(text.replace(",", "."));
      return text !== "" && Number.isFinite(number) && !/64$/.test(row ? "" : item.type) ? number : text;
    };
    const units = row && !isText ? unitsLike(row.unit) : [];
    if (units.length > 1) {
      unitField = h("select", { "aria-label": "Unit", onchange: () => {
        const number = Number(field.value.replace(",", "."));
        if (Number.isFinite(number) && field.value.trim() !== "") {
          field.value = convert(convert(number, chosen, row.unit), row.unit, unitField.value)
            .toFixed(digitsOf(row, unitField.value));
        }
        chosen = unitField.value;
        check();
      } }, units.map((one) => h("option", { value: one }, one)));
      unitField.value = chosen;
    }
    field.addEventListener("input", () => check());
    field.addEventListener("keydown", (event) => {
      const step = { ArrowUp: 1, ArrowDown: -1 }[event.key];
      if (!step || isText) return;
      const number = Number(field.value.replace(",", "."));
      if (!Number.isFinite(number)) return;
      event.preventDefault();
      field.value = (number + step * stepOf(item, chosen) * (event.shiftKey ? 10 : 1)).toFixed(digitsOf(row, chosen));
      check();
    });
  }

  function check() {
    const problem = field.tagName === "INPUT" && isNumeric(item) ? problemWith(item, field.value, chosen) : "";
    const range = field.tagName === "INPUT" && isNumeric(item) ? rangeOf(item, chosen) : null;
    const words = row && /^[^:]*: ?-?\d/.test(row.meaning) ? ` ${row.meaning.split(": ")[1]}.` : "";
    setText(hint, problem || [range && `${short(range.low)} to ${short(range.high)}`
      + (range.step > 0 ? `, in steps of ${short(range.step)}.` : "."), words, row?.lossy && ` ${row.lossy}.`,
    row?.note && ` ${row.note}.`].filter(Boolean).join(""));
    hint.className = problem ? "hint bad" : "hint";
    setAttribute(field, "aria-invalid", String(Boolean(problem)));
    return !problem;
  }

  const form = h("form", { class: "editor", novalidate: true, onsubmit: async (event) => {
    event.preventDefault();
    if (!check()) {
      field.focus();
      return;
    }
    const entry = await writeAndTell(item, read(), row && chosen !== row.unit ? chosen : undefined, outcome);
    if (entry) done(chosen);
  }, onkeydown: (event) => {
    if (event.key === "Escape") done(unit);
  } }, h("div", { class: "fields" }, field, unitField, h("button", { class: "primary" }, "Write"),
    h("button", { type: "button", onclick: () => done(unit) }, "Cancel")), hint);
  check();
  return { form, focus() {
    const first = field.tagName === "FIELDSET" ? field.querySelector("input") : field;
    first.focus();
    first.select?.();
  } };
}

function startText(item, current, unit) {
  if (!item.row) return String(current);
  if (item.name === "transponder") return String(current).padStart(4, "0");
  return convert(Number(current), item.row.unit, unit).toFixed(digitsOf(item.row, unit));
}

function stepOf(item, unit) {
  if (item.row?.form === "Bcd" && item.row.unit === "MHz") return item.name.startsWith("nav") ? 0.05 : 0.01;
  return Math.max(10 ** -digitsOf(item.row, unit), { ft: 100, deg: 1, kt: 1, "ft/min": 100, mb: 1, "%": 5 }[unit] ?? 0);
}
