// The frame around the views: tabs with addresses, the state of the connection, the theme, banners.
import { connection, request } from "/tavrix.js";
import { announce, attempt, clock, errorText, h, recall, remember, setAttribute, setText } from "./dom.js";
import { loadCatalogue } from "./catalogue.js";
import { createWatch } from "./watch.js";
import { createFind } from "./find.js";
import { createPlot } from "./plot.js";
import { createPanel } from "./panel.js";
import { createRecordings, recordedFor } from "./recordings.js";
import { createOwn } from "./own.js";

const creators = { watch: createWatch, find: createFind, plot: createPlot, panel: createPanel,
                   recordings: createRecordings, own: createOwn };
const views = {};  // name -> {show(rest), hide(), leave?}
const tabs = [...document.querySelectorAll("[role=tab]")];
let current = "";

const byId = (id) => document.getElementById(id);

// "" for what is no address: a % in it by hand.
function decoded(text) {
  try {
    return decodeURIComponent(text);
  } catch {
    return "";
  }
}

// Addresses are #view or #view/rest, so that reload, links and the back button keep the place.
function go() {
  const [name, ...rest] = location.hash.slice(1).split("/");
  const wanted = [name, recall("view", "")].find((one) => typeof one === "string" && Object.hasOwn(creators, one))
    ?? Object.keys(creators)[0];
  const place = decoded(rest.join("/"));
  if (current !== wanted) {
    views[current]?.hide();
    for (const tab of tabs) {
      const isOurs = tab.dataset.view === wanted;
      tab.setAttribute("aria-selected", String(isOurs));
      tab.tabIndex = isOurs ? 0 : -1;
      byId("view-" + tab.dataset.view).hidden = !isOurs;
      if (isOurs) document.title = `${tab.title} · TAVRIX web cockpit`;
    }
    current = wanted;
    remember("view", wanted);
    scrollTo(0, 0);
  }
  views[wanted] ??= creators[wanted](byId("view-" + wanted));
  views[wanted].show(place);
}

function setUpTabs() {
  for (const tab of tabs) tab.addEventListener("click", () => { location.hash = tab.dataset.view; });
  byId("tabs").addEventListener("keydown", (event) => {
    const at = tabs.indexOf(document.activeElement);
    const to = { ArrowRight: at + 1, ArrowLeft: at - 1, Home: 0, End: tabs.length - 1 }[event.key];
    if (at < 0 || to === undefined) return;
    event.preventDefault();
    const tab = tabs[(to + tabs.length) % tabs.length];
    tab.focus();
    location.hash = tab.dataset.view;
  });
  byId("skip").addEventListener("click", (event) => {
    event.preventDefault();
    byId("view").focus();
  });
  addEventListener("hashchange", go);
}

// Automatic, light, dark, by one button.
const themes = {
  auto: ["M12 3a9 9 0 1 0 0 18zM12 3a9 9 0 0 1 0 18", "Colours follow the system"],
  light: ["M12 7a5 5 0 1 0 0 10 5 5 0 0 0 0-10zM12 1v3M12 20v3M1 12h3M20 12h3M4 4l2 2M18 18l2 2M4 20l2-2M18 6l2-2",
          "Light colours"],
  dark: ["M20 14a8.500 8.500 0 0 1-10-10 8.500 8.500 0 1 0 10 10z", "Dark colours"],
};
const systemIsDark = matchMedia("(prefers-color-scheme: dark)");
function themeChoice() {
  const choice = recall("theme", "auto");
  return typeof choice === "string" && Object.hasOwn(themes, choice) ? choice : "auto";
}
function applyTheme() {
  const choice = themeChoice();
  const theme = choice === "auto" ? (systemIsDark.matches ? "dark" : "light") : choice;
  document.documentElement.dataset.theme = theme;
  const [path, text] = themes[choice];
  const button = byId("theme");
  button.replaceChildren(h("svg", { viewBox: "0 0 24 24", "aria-hidden": "true" }, h("path", { d: path })));
  setAttribute(button, "aria-label", `${text}. Change`);
  button.title = `${text} (click to change)`;
  dispatchEvent(new Event("themechange"));
}
function setUpTheme() {
  byId("theme").addEventListener("click", () => {
    const names = Object.keys(themes);
    remember("theme", names[(names.indexOf(themeChoice()) + 1) % names.length]);
    applyTheme();
  });
  systemIsDark.addEventListener("change", applyTheme);
  applyTheme();
}

function setUpStatus() {
  const parts = {};
  const part = (key, label) => {
    parts[key] = h("b", {}, "–");
    return h("span", { class: "part " + key }, label ? label + " " : "", parts[key]);
  };
  const dot = h("i", { class: "dot" }), record = part("record", "");
  const fault = h("span", { class: "part fault bad", role: "alert", hidden: true });
  record.prepend(h("i", { class: "dot" }));
  record.hidden = true;
  byId("status").append(h("span", { class: "part source" }, dot, parts.source = h("b", {}, "Connecting …")),
    part("frames", "frames"), part("lost", "lost"), part("age", "data"), part("clients", "browsers"), record, fault);
  let before = null, lostSince = 0, hadData = false;
  const count = (number) => Number(number).toLocaleString("en-US").replaceAll(",", " ");

  connection((state) => {
    const { status } = state;
    const isGood = state.online && state.connected;
    document.documentElement.classList.toggle("offline", !isGood && state.reason !== "connecting");
    setAttribute(dot, "class", "dot " + (isGood ? "good" : state.reason === "connecting" ? "" : "bad"));
    const sourceText = !state.online ? (state.reason === "connecting" ? "Connecting …" : "Connection lost")
      : (state.connected ? "" : "Not connected: ") + status.source;
    setText(parts.source, sourceText);
    if (status) {
      setText(parts.frames, count(status.frames));
      setText(parts.lost, count(status.lost));
      setText(parts.age, status.age === null ? "none" : status.age < 1 ? "live" : `${Math.round(status.age)} s old`);
      setText(parts.clients, count(status.clients));
      setText(byId("version"), `TAVRIX ${status.version}`);
      record.hidden = !status.recording;
      const recorded = recordedFor(status);
      setText(parts.record, recorded === null ? status.recording ?? "" : clock(recorded));
      fault.hidden = !status.recordingFault;
      setText(fault, status.recordingFault ?? "");
      record.title = status.recording ? `Recording ${status.recording}` : "";
    }
    showLoss(state, isGood);
    showReplay(state);
    if (before === false && isGood) announce("Connected");  // its loss is told by the banner
    before = isGood;
    hadData ||= isGood;
    lostSince = isGood ? 0 : lostSince || performance.now();
  });
  setInterval(() => {
    if (lostSince && !document.hidden) {
      setText(parts.age, `${hadData ? "lost" : "none for"} ${clock((performance.now() - lostSince) / 1000)}`);
    }
  }, 1000);
}

function showLoss(state, isGood) {
  const place = byId("lost");
  place.hidden = isGood || state.reason === "connecting";
  if (place.hidden) return;
  if (state.online) {
    setText(place, `No simulator: waiting for ${state.status.source}. Start the simulator with the plug-in; the `
      + "values come by themselves.");
  } else if (state.error) {
    setText(place, errorText(state.error));
  } else {
    setText(place, "Connection to the web cockpit lost: values are old. Connecting again by itself; if the program "
      + "has ended, start it again: offsetctl serve");
  }
}

// The banner over all views while a recording is shown; made once, so that the focus stays on its button.
let replayParts = null;
function showReplay({ status }) {
  const place = byId("replay"), replay = status?.replay;
  place.hidden = !replay;
  if (!replay) return;
  if (!replayParts) {
    const error = h("span", { class: "bad" });
    replayParts = { text: h("span", {}), bar: h("i", {}) };
    place.append(h("span", { class: "tape", "aria-hidden": "true" }, replayParts.bar), replayParts.text,
      h("a", { href: "#recordings", class: "button" }, "Control"),
      h("button", { type: "button", onclick: () => attempt(error,
        () => request("/api/replay", "POST", { file: null })) }, "Back to live"), error);
  }
  setText(replayParts.text, `${replay.playing ? "Replay" : "Replay, paused"}: ${replay.file} · `
    + `${clock(replay.position)} of ${clock(replay.length)}`);
  replayParts.bar.style.width = `${100 * Math.min(1, replay.position / (replay.length || 1))}%`;
}

async function start() {
  setUpTheme();
  setUpTabs();
  setUpStatus();
  const waiting = h("p", { class: "waiting" }, "Loading the offsets …");
  byId("view").prepend(waiting);
  for (;;) {
    try {
      await loadCatalogue();
      break;
    } catch (error) {
      setText(waiting, errorText(error));
      await new Promise((resolve) => setTimeout(resolve, 1500));
    }
  }
  waiting.remove();
  go();
}
start();
