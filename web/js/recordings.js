// Recordings: making them, the list, replay with play, pause, speed and scrubbing.
import { connection, request } from "/tavrix.js";
import { attempt, clock, h, icon, painter, setAttribute, setText } from "./dom.js";

const speeds = [0.25, 0.5, 1, 2, 4, 8, 16];

const bytesText = (bytes) => bytes < 1e6 ? `${Math.max(1, Math.round(bytes / 1e3))} kB`
  : `${(bytes / 1e6).toFixed(1)} MB`;

const dateText = (text) => new Date(text).toLocaleString([], { dateStyle: "medium", timeStyle: "short" });

function suggestion() {
  const now = new Date(), two = (number) => String(number).padStart(2, "0");
  const day = [now.getFullYear(), two(now.getMonth() + 1), two(now.getDate())].join("-");
  return `flight ${day} ${two(now.getHours())}.${two(now.getMinutes())}`;
}

let last = null, begun = null;
/** How long the recording has run, in seconds; null without one, or when this page did not see it begin. */
export function recordedFor(status) {
  if (status.recording !== last?.recording) {
    const unseen = status.time - last?.time;  // NaN at first; the server's clock starts anew with it
    begun = status.recording && unseen >= 0 && unseen < 3 ? status.time : null;
  }
  last = status;
  return begun === null ? null : status.time - begun;
}

export function createRecordings(root) {
  let status = null, isShown = false, stop = null, scrubbedUntil = 0, listed = "";
  let at = 0, atTime = 0, ticking = 0;  // the position at a time of this page
  const error = h("p", { class: "bad", role: "alert" });
  const send = (path, body) => attempt(error, async () => {
    update(await request(path, "POST", body));
  });

  // ---- record ----
  const name = h("input", { type: "text", id: "recordName", maxlength: "80", value: suggestion(),
    spellcheck: "false" });
  const recordButton = h("button", { class: "primary large record" }, "Record");
  const running = h("p", { class: "running" }), runningText = h("span", {});
  running.append(h("i", { class: "dot" }), runningText);
  const blocked = h("p", { class: "hint" }, "While a recording is replayed nothing can be recorded.");
  const fault = h("p", { class: "bad fault", role: "alert" });
  const recordForm = h("form", { class: "recordForm", onsubmit: async (event) => {
    event.preventDefault();
    if (status?.recording) await send("/api/recording", { file: null });
    else await send("/api/recording", { file: fileName(name.value) });
    await list();
    if (!status?.recording) name.value = suggestion();
  } }, h("label", { for: "recordName" }, "Name"), name, recordButton, running, blocked);
  const fileName = (text) => /\.tavrec$/i.test(text.trim()) ? text.trim() : text.trim() + ".tavrec";

  // ---- player ----
  const playIcon = h("span", {}), playButton = h("button", { type: "button", class: "primary large play", onclick: () =>
    send("/api/replay", atEnd() ? { position: 0, playing: true } : { playing: !status.replay.playing }) }, playIcon);
  const atEnd = () => !status.replay.playing && status.replay.position >= status.replay.length - 0.05;
  const scrub = h("input", { type: "range", min: "0", max: "1", step: "0.5",
    "aria-label": "Position in the recording" });
  const position = h("output", { class: "time" }), length = h("span", { class: "time" });
  const title = h("h3", {});
  const speed = h("select", { id: "speed", onchange: () => send("/api/replay", { speed: Number(speed.value) }) },
    speeds.map((one) => h("option", { value: one }, `${one} ×`)));
  const jump = (seconds) => send("/api/replay", {
    position: Math.max(0, Math.min(status.replay.length, status.replay.position + seconds)) });
  const player = h("div", { class: "player" }, title, h("div", { class: "scrub" }, position, scrub, length),
    h("div", { class: "bar" }, h("button", { type: "button", onclick: () => jump(-10) }, "−10 s"), playButton,
      h("button", { type: "button", onclick: () => jump(10) }, "+10 s"), h("label", { for: "speed" }, "Speed"), speed,
      h("button", { type: "button", onclick: () => send("/api/replay", { file: null }) }, "Back to live")));
  const nothing = h("p", { class: "empty" },
    "Choose a recording below: every view, the instrument panel too, then shows "
    + "that flight, without any simulator.");
  const sendPosition = painter(() => send("/api/replay", { position: Number(scrub.value) }), 120);
  scrub.addEventListener("input", () => {
    scrubbedUntil = performance.now() + 800;  // answers on the way do not pull the slider back
    at = Number(scrub.value);
    atTime = performance.now();
    showPosition(at);
    sendPosition();
  });

  const files = h("ul", { class: "files" });
  const none = h("p", { class: "empty", hidden: true }, "No recording yet.");
  root.append(h("div", { class: "twoColumns" },
    h("section", { class: "card", "aria-labelledby": "recordTitle" }, h("h2", { id: "recordTitle" }, "Record"),
      h("p", {}, "Records all offsets as they change, to play them again without the simulator."), recordForm,
      fault, error),
    h("section", { class: "card", "aria-labelledby": "playTitle" }, h("h2", { id: "playTitle" }, "Replay"), nothing,
      player),
    h("section", { class: "card wide", "aria-labelledby": "filesTitle" }, h("h2", { id: "filesTitle" }, "Recordings"),
      files, none)));

  async function list() {
    const answer = await attempt(error, () => request("/api/recordings"));
    if (!answer) return;
    none.hidden = answer.recordings.length > 0;
    listed = status?.replay?.file ?? "";
    files.replaceChildren(...answer.recordings.map(({ file, bytes, modified }) => {
      const isOn = listed === file;
      return h("li", { class: isOn ? "on" : "" }, h("span", { class: "file" }, h("b", {}, file),
        h("small", {}, `${dateText(modified)} · ${bytesText(bytes)}`)),
      h("button", { type: "button", "aria-label": `Replay ${file}`, onclick: async () => {
        await send("/api/replay", { file });
        if (status?.replay) playButton.focus();
      } }, isOn ? "From the start" : "Replay"));
    }));
  }

  function showPosition(seconds) {
    setText(position, clock(seconds));
    setAttribute(scrub, "aria-valuetext", `${clock(seconds)} of ${clock(status.replay.length)}`);
  }

  // Between the status events of each second the position goes on by itself.
  function tick() {
    if (!status?.replay) return;
    const { playing, speed: times, length: end } = status.replay;
    const now = Math.min(end, at + (playing ? (performance.now() - atTime) / 1000 * times : 0));
    scrub.value = String(now);
    showPosition(now);
  }

  function update(newest) {
    const before = status;
    status = newest;
    if (!status || !isShown) return;
    const { replay, recording } = status;
    setText(recordButton, recording ? "Stop" : "Record");
    recordButton.classList.toggle("on", Boolean(recording));
    recordButton.disabled = Boolean(replay) && !recording;
    name.disabled = Boolean(recording) || Boolean(replay);
    const recorded = recordedFor(status);
    running.hidden = !recording;
    setText(runningText, recorded === null ? recording ?? "" : `${recording} · ${clock(recorded)}`);
    blocked.hidden = Boolean(recording) || !replay;
    setText(fault, status.recordingFault ?? "");
    player.hidden = !replay;
    nothing.hidden = Boolean(replay);
    if (replay) {
      setText(title, replay.file);
      setText(length, clock(replay.length));
      setAttribute(scrub, "max", String(replay.length));
      const label = replay.playing ? "Pause" : "Play";
      if (playButton.getAttribute("aria-label") !== label) {
        playButton.setAttribute("aria-label", label);
        playIcon.replaceChildren(icon(replay.playing ? "M8 5v14M16 5v14" : "M7 4l13 8-13 8z"));
      }
      if (document.activeElement !== speed) {
        if (!speeds.includes(replay.speed) && !speed.querySelector(`[value="${replay.speed}"]`)) {
          speed.append(h("option", { value: replay.speed }, `${replay.speed} ×`));
        }
        speed.value = String(replay.speed);
      }
      if (performance.now() > scrubbedUntil) {
        at = replay.position;
        atTime = performance.now();
      }
      tick();
    }
    if ((replay?.file ?? "") !== listed || (before?.recording ?? null) !== recording) list();
  }

  return {
    show() {
      isShown = true;
      stop ??= connection((state) => { if (state.status) update(state.status); });
      list();
      ticking ||= setInterval(tick, 200);
    },
    hide() {
      isShown = false;
      stop?.();
      stop = null;
      clearInterval(ticking);
      ticking = 0;
    },
  };
}
