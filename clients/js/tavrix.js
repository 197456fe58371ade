// Values of the simulator for web pages, from the web cockpit that serves this file as /tavrix.js. An ES module
// without any other part:
//
//   import { watch, write } from "/tavrix.js";
//   const stop = watch(["ias", "heading"], (changed) => { ... changed.ias.value ... });
//   await write("ap_heading_bug", 270);
//
// All watches of a page share one connection, because browsers allow only six to a host. It is opened again when
// the names change, closed while the page is hidden, and it reconnects by itself.

const silence = 3500;        // ms without a word (status comes each second) after which the connection counts as lost
const reopenDelay = 40;      // ms that changes of the names are collected for
const retryDelays = [500, 1000, 2000, 3000];  // ms
const usualRate = 20, mostRate = 50;  // updates a second
const idleName = "activity";  // what is watched when only the connection is of interest

const watches = new Set();      // {names, rate, callback, onStatus}
const listeners = new Set();    // of connection()
const newest = new Map();       // name -> {entry, at: when it came, in ms}, of the names in the stream
const unknown = new Map();      // name -> entry with an error: names that the server refused
let byName = new Map();         // name -> watches
let stream = null, streamKey = "", openTimer = 0, watchdog = 0, retryTimer = 0, retries = 0, lastWord = 0;
let clock = 0;                  // seconds that the server's clock is before ours
let refusal = "";               // of the stream, as the console was told
let state = { online: false, connected: false, status: null, error: null, reason: "connecting" };
const noStatus = { source: "", connected: false, frames: 0, lost: 0, age: null, clients: 0, recording: null,
  recordingFault: null, replay: null, time: 0, version: "" };

/** An answer of the server that is no success: message, `where`, `remedy` and the HTTP `status` (0: not reached). */
export class CockpitError extends Error {
  constructor(status, { error = "the web cockpit refused it", where = "", remedy = "" } = {}) {
    super(error);
    this.name = "CockpitError";
    Object.assign(this, { status, where, remedy });
  }
}

/** Sends a request to the web cockpit and resolves to its JSON; rejects with a CockpitError. */
export async function request(path, method = "GET", body = undefined) {
  let answer;
  try {
    answer = await fetch(path, {
      method, cache: "no-store", credentials: "same-origin",
      headers: body === undefined ? {} : { "Content-Type": "application/json" },
      body: body === undefined ? undefined : JSON.stringify(body),
    });
  } catch {
    throw new CockpitError(0, { error: "the web cockpit does not answer", where: path,
                                remedy: "start it again: offsetctl serve" });
  }
  const json = await answer.json().catch(() => ({}));
  if (!answer.ok) throw new CockpitError(answer.status, json);
  return json;
}

/** Resolves to the entries {name, offset, value, unit, raw, age} of `names`, in their order. */
export async function read(names) {
  return (await request("/api/values?names=" + [names].flat().map(encodeURIComponent).join(","))).values;
}

/** Writes one value; resolves to its entry with `written` and `confirmed`, rejects with a CockpitError. */
export async function write(name, value, { unit, wait } = {}) {
  const item = unit ? { name, value, unit } : { name, value };
  const body = wait === undefined ? { values: [item] } : { values: [item], wait };
  return (await request("/api/values", "PUT", body)).values[0];
}

/**
 * Calls `callback` with an object name -> entry of what changed; the first time all, and again all when the
 * connection was gone; and with the time at which the server read them, in seconds on its own clock: parts that
 * were held up on the way come together, but keep their times. Names that the server does not know come as {name, value: null, error: {error, where,
 * remedy}} and are told on the console. `rate`: updates a second, brought within 1 to 50, 20 for what is no number;
 * the fastest watch of the page counts for all. `onStatus` gets the state each second; when the server refuses the
 * whole stream, the last one with connected: false and the `error`. What a callback throws is reported as any
 * uncaught error, and holds up no other. Returns a function that ends it.
 */
export function watch(names, callback, { rate, onStatus } = {}) {
  const one = { names: listOf(names), callback, rate: rateOf(rate), onStatus, hasAll: false };
  watches.add(one);
  plan();
  if (onStatus && state.status) call(onStatus, state.status);
  return () => {
    if (watches.delete(one)) plan();
  };
}

/**
 * Calls `callback` with {online, connected, status, error, reason} now and whenever it changes. online: the web
 * cockpit answers; connected: and it has a simulator or a recording. Returns a function that ends it.
 */
export function connection(callback) {
  listeners.add(callback);
  call(callback, state);
  plan();
  return () => {
    if (listeners.delete(callback)) plan();
  };
}

function tell(change) {
  state = { ...state, ...change };
  for (const listener of [...listeners]) call(listener, state);
}

function call(callback, ...given) {
  try {
    callback(...given);
  } catch (error) {
    reportError(error);
  }
}

const listOf = (names) => (typeof names === "string" ? [names] : [...new Set(names)]);

function rateOf(given) {
  const rate = typeof given === "number" ? given : parseFloat(given);
  return Number.isNaN(rate) ? usualRate : Math.round(Math.max(1, Math.min(mostRate, rate)));
}

function plan() {
  byName = new Map();
  for (const one of watches) {
    for (const name of one.names) {
      if (byName.has(name)) byName.get(name).push(one);
      else byName.set(name, [one]);
    }
  }
  if (!openTimer) openTimer = setTimeout(open, reopenDelay);
}

function wanted() {
  const names = [...byName.keys()].filter((name) => !unknown.has(name)).sort();
  let rate = 1;
  for (const one of watches) rate = Math.max(rate, one.rate);
  return "/api/stream?names=" + (names.length ? names.map(encodeURIComponent).join(",") : idleName) + "&rate=" + rate;
}

function open() {
  openTimer = 0;
  const isWanted = !document.hidden && (watches.size > 0 || listeners.size > 0);
  const key = isWanted ? wanted() : "";
  if (key === streamKey && (stream || !isWanted)) {
    for (const one of [...watches]) {
      if (!one.hasAll) deliverAll(one);
    }
    return;
  }
  close();
  streamKey = key;
  if (!isWanted) return;
  for (const name of newest.keys()) {
    if (!byName.has(name)) newest.delete(name);
  }
  const source = new EventSource(key);
  stream = source;
  lastWord = performance.now();
  source.addEventListener("values", (event) => {
    heard();
    deliver(JSON.parse(event.data));
  });
  source.addEventListener("status", (event) => {
    heard();
    const status = JSON.parse(event.data);
    tell({ online: true, connected: status.connected, status, error: null, reason: "" });
    for (const one of [...watches]) {
      if (one.onStatus) call(one.onStatus, status);
    }
  });
  source.onerror = () => {
    if (source === stream) lost("the web cockpit does not answer");
  };
  watchdog = setInterval(() => {
    if (performance.now() - lastWord > silence) lost("the web cockpit went silent");
  }, 500);
}

function close() {
  clearInterval(watchdog);
  clearTimeout(retryTimer);
  stream?.close();
  stream = null;
  streamKey = "";
}

function heard() {
  lastWord = performance.now();
  retries = 0;
  refusal = "";
}

// The browser's own reconnecting is slow and ends for good on an error answer, so every loss opens a new stream.
async function lost(reason) {
  const path = streamKey;
  close();
  newest.clear();
  tell({ online: false, connected: false, reason });
  const answer = await probe(path);
  if (answer.status === 0) {
    unknown.clear();  // another version may come back
    if (state.error) tell({ error: null });
  } else if (answer.status !== 200) {
    if (answer.status === 404 || answer.status === 400) {
      await findUnknown([...byName.keys()].filter((name) => !unknown.has(name)), answer.json);
    }
    if (!stream && path === wanted()) refused(new CockpitError(answer.status, answer.json));
  }
  clearTimeout(retryTimer);
  retryTimer = setTimeout(open, answer.status === 200 ? 100 : retryDelays[Math.min(retries++, retryDelays.length - 1)]);
}

// The server does not give the stream for another reason than a name.
function refused(error) {
  const text = [error.message, error.where, error.remedy].filter(Boolean).join(": ");
  if (text !== refusal) console.error(`TAVRIX: the stream is refused (${error.status}): ${text}`);
  refusal = text;
  tell({ error, reason: error.message });
  for (const one of [...watches]) {
    if (one.onStatus) call(one.onStatus, { ...(state.status ?? noStatus), connected: false, error });
  }
}

async function probe(path) {
  const stopper = new AbortController();
  const timer = setTimeout(() => stopper.abort(), 3000);
  try {
    const answer = await fetch(path, { signal: stopper.signal, cache: "no-store", credentials: "same-origin" });
    const json = answer.ok ? {} : await answer.json().catch(() => ({}));
    return { status: answer.status, json };
  } catch {
    return { status: 0, json: {} };
  } finally {
    clearTimeout(timer);
    stopper.abort();
  }
}

// One unknown name makes the server refuse the whole stream: halves the names until the bad ones are found.
async function findUnknown(names, json) {
  if (!names.length) return;
  if (names.length === 1) {
    const entry = { name: names[0], offset: null, value: null, unit: "", raw: "", age: 0, error: json };
    unknown.set(names[0], entry);
    console.error(`TAVRIX: "${names[0]}" is not watched: ${json.error}: ${json.remedy}`);
    for (const one of byName.get(names[0]) ?? []) {
      if (one.hasAll) call(one.callback, { [names[0]]: entry }, serverTime());
    }
    return;
  }
  for (const half of [names.slice(0, names.length >> 1), names.slice(names.length >> 1)]) {
    const answer = await probe("/api/stream?rate=1&names=" + half.map(encodeURIComponent).join(","));
    if (answer.status === 404 || answer.status === 400) await findUnknown(half, answer.json);
  }
}

function deliver({ time, values }) {
  const parts = new Map();
  clock = time - lastWord / 1000;
  for (const entry of values) {
    const before = newest.get(entry.name)?.entry;
    newest.set(entry.name, { entry, at: lastWord });
    // A stream that was opened again for more names begins with all of them.
    if (before && before.raw === entry.raw && before.value === entry.value) continue;
    const own = byName.get(entry.name);
    if (!own) continue;
    for (const one of own) {
      let part = parts.get(one);
      if (!part) parts.set(one, part = {});
      part[entry.name] = entry;
    }
  }
  for (const [one, part] of parts) {
    if (one.hasAll && watches.has(one)) call(one.callback, part, time);
  }
  for (const one of [...watches]) {
    if (!one.hasAll) deliverAll(one);
  }
}

// A watch begins with all its values in one call, also when another watch already had them.
function deliverAll(one) {
  const part = {};
  for (const name of one.names) {
    const known = newest.get(name);
    if (!known && !unknown.has(name)) return;
    part[name] = known ? { ...known.entry, age: known.entry.age + (performance.now() - known.at) / 1000 }
      : unknown.get(name);
  }
  one.hasAll = true;
  if (one.names.length) call(one.callback, part, serverTime());
}

function serverTime() {
  return performance.now() / 1000 + clock;
}

document.addEventListener("visibilitychange", () => {
  if (document.hidden) {
    close();
  } else {
    clearTimeout(openTimer);
    open();
  }
});
