// What the offsets mean: search, items as people type them, numbers as words and units. Pure but for its loading.
import { request } from "/tavrix.js";

export const catalogue = { rows: [], byName: new Map(), areas: null };

export async function loadCatalogue() {
  const answer = await request("/api/offsets");
  catalogue.rows = answer.offsets;
  for (const row of answer.offsets) {
    catalogue.byName.set(row.name, row);
    row.search = `${row.name} ${row.name.replaceAll("_", " ")} ${row.meaning} ${row.subject} ${row.unit} ${row.hex}`
      .toLowerCase();
  }
}

/** The areas (tables of other aircraft and so on) are needed by find-by-moving only. */
export async function loadAreas() {
  catalogue.areas ??= (await request("/offsets.json")).areas;
  return catalogue.areas;
}

/** Rows for which every word of the query is part of their texts; "330" and "0x0330" find an offset too. */
export function searchRows(query) {
  const words = query.toLowerCase().split(/\s+/).filter(Boolean);
  return catalogue.rows.filter((row) => words.every((word) => row.search.includes(word)
    || /^(0x)?[0-9a-f]{3,5}$/.test(word) && parseInt(word, 16) === row.offset));
}

const sizes = { u8: 1, s8: 1, u16: 2, s16: 2, u32: 4, s32: 4, u64: 8, s64: 8, f32: 4, f64: 8 };
export const plainTypes = Object.keys(sizes);

/** An item as the interface names it: {name, row, offset, type, size}, or null when it is none. */
export function parseItem(text) {
  if (typeof text !== "string") return null;
  const name = text.trim();
  const known = catalogue.byName.get(name);
  if (known) return { name, row: known, offset: known.offset, type: known.type, size: known.size };
  const parts = /^(0x[0-9a-f]{1,5}|[a-z][a-z0-9_]*):(?:(u8|s8|u16|s16|u32|s32|u64|s64|f32|f64)|(hex|text):(\d{1,4}))$/i
    .exec(name);
  if (!parts) return null;
  const base = catalogue.byName.get(parts[1]);
  const offset = base ? base.offset : Number(parts[1]);
  const type = parts[2]?.toLowerCase() ?? `${parts[3].toLowerCase()}:${parts[4]}`;
  const size = sizes[type] ?? Number(parts[4]);
  if (!(offset >= 0) || size < 1 || size > 4096 || offset + size > 131072) return null;
  return { name, row: null, offset, type, size };
}

export const hexOffset = (offset) => "0x" + offset.toString(16).toUpperCase().padStart(4, "0");

// Value in the base unit of its kind = value x factor + bias.
const measures = [
  { m: 1, ft: 0.3048, km: 1000, nm: 1852, mi: 1609.344 },
  { kt: 1852 / 3600, "km/h": 1 / 3.6, mph: 0.44704, "m/s": 1, "ft/s": 0.3048, "ft/min": 0.00508, "m/min": 1 / 60 },
  { deg: 1, rad: 180 / Math.PI },
  { "deg/s": 1, "rad/s": 180 / Math.PI },
  { mb: 1, hPa: 1, inHg: 33.8638866667, psi: 68.9475729318 },
  { kg: 1, lb: 0.45359237, t: 1000 },
  { "US gal": 3.785411784, l: 1 },
  { degC: [1, 0], degF: [5 / 9, -160 / 9], K: [1, -273.15] },
  { "lb/h": 0.45359237, "kg/h": 1 },
  { lbf: 4.4482216152605, N: 1, kN: 1000 },
  { "ft/s2": 0.3048, "m/s2": 1, g: 9.80665 },
  { MHz: 1000, kHz: 1 },
];
const measureOf = (unit) => measures.find((measure) => Object.hasOwn(measure, unit));

/** The units that a value of this unit can be shown and written in; the server knows them too. */
export function unitsLike(unit) {
  const measure = measureOf(unit);
  return measure ? [unit, ...Object.keys(measure).filter((other) => other !== unit)] : [];
}

/** {name, unit?} as it was remembered, or null; a unit that the row does not know is left out. */
export function recalledItem(one) {
  const item = parseItem(one?.name);
  if (!item) return null;
  const units = item.row && !item.row.values ? unitsLike(item.row.unit) : [];
  return units.includes(one.unit) ? { name: item.name, unit: one.unit } : { name: item.name };
}

export function convert(value, from, to) {
  if (!to || from === to) return value;
  const measure = measureOf(from);
  if (!measure || !Object.hasOwn(measure, to)) return value;
  const [factor, bias] = [].concat(measure[from], 0), [outFactor, outBias] = [].concat(measure[to], 0);
  return (value * factor + bias - outBias) / outFactor;
}

const decimals = { kt: 1, ft: 0, m: 1, nm: 1, km: 2, mi: 2, "%": 1, MHz: 2, kHz: 0, mb: 1, hPa: 1, inHg: 2, rpm: 0,
  deg: 2, degC: 1, degF: 1, K: 1, "lb/h": 0, "kg/h": 0, psi: 1, lb: 0, kg: 0, "ft/min": 0, "m/min": 0, "m/s": 2,
  "ft/s": 2, "km/h": 1, mph: 1, "US gal": 1, l: 1, lbf: 0, N: 0, dots: 1, g: 2, h: 0, min: 0, rad: 4 };

/** How many decimals a row's number is shown with: always the same, so that nothing jumps. */
export function digitsOf(row, unit) {
  if (!row || row.form === "Bits" || row.form === "Flag") return 0;
  if (row.form === "Bcd") return row.unit === "MHz" ? 2 : 0;
  const isWhole = /^[us]\d/.test(row.type) && row.scale.fraction === "1" && !row.bias;
  if (isWhole && (!unit || unit === row.unit)) return 0;
  if (row.range && row.unit === "deg" && /^[s]64$/.test(row.type)) return 6;
  return decimals[unit || row.unit] ?? 3;
}

const minus = (text) => text.replace("-", "−");

/** The value as people read it, without the unit: words for switches, choices and bits. */
export function valueText(item, value, unit) {
  if (value === null || value === undefined) return "–";
  const { row } = item;
  if (!row) {
    if (typeof value !== "number") return String(value);
    return minus(/^f/.test(item.type) ? String(Number(value.toPrecision(7))) : String(value));
  }
  if (row.form === "Text") return String(value);
  const number = Number(value);
  if (row.form === "Flag") return number ? "on" : "off";
  if (row.form === "Bits" && row.bits) {
    const names = row.bits.map((bit) => {
      const part = (number >>> bit.bit) & ((1 << bit.width) - 1);
      return part ? (bit.width > 1 ? `${bit.name} ${part}` : bit.name) : "";
    }).filter(Boolean);
    return names.length ? names.join(" + ") : "none";
  }
  if (row.form === "Bits") return "0x" + (number >>> 0).toString(16).toUpperCase().padStart(2 * row.size, "0");
  const choice = row.values?.find((one) => one.value === number);
  if (choice) return choice.name;
  if (row.name === "transponder") return String(number).padStart(4, "0");
  if (!Number.isFinite(number)) return String(value);
  return minus(convert(number, row.unit, unit).toFixed(digitsOf(row, unit)));
}

/** Rows with choices or bits have no unit to show. */
export function unitText(item, unit) {
  return item.row && !item.row.values ? unit || item.row.unit : "";
}

export function isNumeric(item) {
  return item.row ? item.row.form !== "Text" : !/^(hex|text)/.test(item.type);
}

/** A row's value from its bytes (an array), in its engineering unit; null when there is none. */
export function decodeBytes(item, bytes) {
  const { row, type, size } = item;
  if (/^text/.test(type)) {
    const end = bytes.indexOf(0);
    return String.fromCharCode(...bytes.slice(0, end < 0 ? size : end));
  }
  if (/^hex/.test(type)) return bytes.map((byte) => byte.toString(16).padStart(2, "0").toUpperCase()).join(" ");
  const view = new DataView(Uint8Array.from(bytes).buffer);
  const read = { u8: "getUint8", s8: "getInt8", u16: "getUint16", s16: "getInt16", u32: "getUint32", s32: "getInt32",
    u64: "getBigUint64", s64: "getBigInt64", f32: "getFloat32", f64: "getFloat64" }[type];
  let number = Number(view[read](0, true));
  if (!row) return number;
  if (row.form === "Bcd") {
    number = Number(number.toString(16));
    return row.unit === "MHz" ? number / 100 + 100 : number;
  }
  if (row.scale.fraction !== "1") number = number * row.scale.numerator / row.scale.denominator;
  return number + row.bias;
}

/** Why a row cannot be written, or "". */
export function whyReadOnly(item) {
  if (!item.row || item.row.write === "yes") return "";
  return item.row.write === "no" ? "The simulator says this value: a write would be overwritten by the next frame."
    : "Read only: the plug-in drops what is written here.";
}
