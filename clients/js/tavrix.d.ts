/** Values of the simulator for web pages; served by the web cockpit as /tavrix.js. */

/** One value as it is now. */
export interface Entry {
  /** As it was asked for. */
  name: string;
  /** Its first byte; null when the name is not known. */
  offset: number | null;
  /** In the unit. Texts, integers of 64 bits and types of hexadecimal digits are strings. */
  value: number | string | null;
  unit: string;
  /** The bytes in the order of the memory, as "53 3F". */
  raw: string;
  /** Seconds since one of its bytes changed. */
  age: number;
  /** Of a watched name that is refused. */
  error?: { error: string; where: string; remedy: string };
}

export interface WrittenEntry extends Entry {
  written: boolean;
  /** null: this offset never shows what was written. */
  confirmed: boolean | null;
}

export interface Replay {
  file: string;
  /** Seconds. */
  position: number;
  length: number;
  speed: number;
  playing: boolean;
}

/** The state of the program, as /api/status. */
export interface Status {
  source: string;
  connected: boolean;
  frames: number;
  lost: number;
  age: number | null;
  clients: number;
  recording: string | null;
  /** Why the recording ended by itself; null when it did not. */
  recordingFault: string | null;
  replay: Replay | null;
  time: number;
  version: string;
  /** The server refuses the stream, and why; only onStatus gets this. */
  error?: CockpitError;
}

export interface Connection {
  /** The web cockpit answers. */
  online: boolean;
  /** And it has a simulator or a recording. */
  connected: boolean;
  /** The newest one; null before the first. */
  status: Status | null;
  error: CockpitError | null;
  /** Why it is not online. */
  reason: string;
}

export class CockpitError extends Error {
  /** Of the answer; 0 when nobody answered. */
  status: number;
  where: string;
  remedy: string;
}

/**
 * Calls back with what changed, name -> entry; the first time all. `time`: when the server read them, in seconds on
 * its own clock. Returns a function that ends it.
 */
export function watch(names: string | Iterable<string>,
                      callback: (changed: Record<string, Entry>, time: number) => void,
                      options?: { rate?: number; onStatus?: (status: Status) => void }): () => void;

/** Entries in the order of the names. */
export function read(names: string | string[]): Promise<Entry[]>;

/** Writes one value: a number in its unit, a switch, or a text as "up" and "5000 ft". */
export function write(name: string, value: number | boolean | string,
                      options?: { unit?: string; wait?: number }): Promise<WrittenEntry>;

/** Calls back now and whenever the connection changes. Returns a function that ends it. */
export function connection(callback: (state: Connection) => void): () => void;

/** Any other request of the interface; resolves to its JSON. */
export function request(path: string, method?: string, body?: unknown): Promise<unknown>;
