// The instrument panel, drawn from offsets alone. Instruments move with every update, texts fifteen times a second.
import { connection, watch } from "/tavrix.js";
import { h, icon, painter, setAttribute, setText } from "./dom.js";
import { catalogue, parseItem } from "./catalogue.js";
import { makeControls } from "./controls.js";
import { writeAndTell } from "./editor.js";
import { airspeed, altimeter, attitude, headingIndicator, turnAndSlip, verticalSpeed } from "./gauges.js";
import { createTraffic } from "./traffic.js";

const radios = [
  { label: "COM 1", active: "com1", standby: "com_standby1", swap: "COM1", step: 0.025 },
  { label: "COM 2", active: "com2", standby: "com_standby2", swap: "COM2", step: 0.025 },
  { label: "NAV 1", active: "nav1", standby: "nav_standby1", swap: "NAV1", step: 0.05 },
  { label: "NAV 2", active: "nav2", standby: "nav_standby2", swap: "NAV2", step: 0.05 },
  { label: "ADF 1", active: "adf1", step: 1 },
  { label: "ADF 2", active: "adf2", step: 1 },
  { label: "XPDR", active: "transponder", mode: "transponder_mode", step: 1 },
];
const autopilot = [["ap", "AP"], ["fd", "FD"], ["autothrottle", "A/T"], ["ap_heading", "HDG"], ["ap_nav", "NAV"],
  ["ap_approach", "APR"], ["ap_altitude", "ALT"], ["ap_vertical_speed", "VS"], ["ap_speed", "SPD"],
  ["yaw_damper", "YD"]];
const selected = [
  { label: "Heading", name: "ap_heading_bug", unit: "deg", step: 1, wraps: 360 },
  { label: "Altitude", name: "ap_altitude_set", unit: "ft", step: 100 },
  { label: "Vertical", name: "ap_vertical_speed_set", unit: "ft/min", step: 100 },
  { label: "Speed", name: "ap_ias_set", unit: "kt", step: 1 },
  { label: "Course", name: "obs1", unit: "deg", step: 1, wraps: 360 },
  { label: "Altimeter", name: "altimeter_setting", unit: "mb", step: 1 },
];
// Bars of each kind of engine; # is the engine. `top`: end of the scale, `red`: where it turns red.
const bars = {
  n1: { names: "n1_eng#", label: "N1", top: 110, red: 104 }, n2: { names: "n2_eng#", label: "N2", top: 110, red: 105 },
  egt: { names: "egt_eng#", label: "EGT", top: 1000, red: 930 },
  itt: { names: "itt_eng#", label: "ITT", top: 1000, red: 850 },
  flow: { names: "fuel_flow_eng#", label: "Fuel flow", top: 100 },
  torque: { names: "torque_ratio_eng#", label: "Torque", top: 120, red: 101 },
  prop: { names: "rpm_prop#", label: "Prop", top: 3000, red: 2750 },
  map: { names: "manifold_eng#", label: "Manifold", top: 40 },
  oilTemp: { names: "oil_temp_eng#", label: "Oil temp", top: 160, red: 140 },
  oilPressure: { names: "oil_pressure_eng#", label: "Oil press", top: 120 },
};
const enginesOf = {
  0: ["prop", "map", "flow", "egt", "oilTemp", "oilPressure"],
  1: ["n1", "n2", "egt", "flow", "oilTemp", "oilPressure"],
  5: ["torque", "n1", "prop", "itt", "flow", "oilTemp", "oilPressure"] };

export function createPanel(root) {
  let stop = null, stopState = null, engineKey = "";
  const at = new Map();                       // name -> newest value as a number, or text
  const number = (name) => at.get(name) ?? 0;
  const outcome = h("p", { class: "outcome" });
  const texts = [];                           // functions that refresh texts

  const { quick, stepper, lamp } = makeControls(at, texts, outcome);

  // ---- the six ----
  const gauges = { speed: airspeed(), attitude: attitude(), altitude: altimeter(), turn: turnAndSlip(),
    heading: headingIndicator(),
                   climb: verticalSpeed() };
  const magnetic = () => (number("heading") - number("magnetic_variation") + 720) % 360;
  function move() {
    const climb = number("vertical_speed") * 196.850394;
    gauges.speed.move(number("ias"), number("vne"));
    gauges.attitude.move(-number("pitch"), -number("bank"));
    gauges.altitude.move(number("indicated_altitude"));
    gauges.turn.move(number("turn_rate"), number("slip"));
    gauges.heading.move({ heading: magnetic(), bug: number("ap_heading_bug"), course: number("obs1"),
      cdi: number("cdi1"), gsi: number("gsi1") });
    gauges.climb.move(climb);
    moveBars();
    moveSurfaces();
  }
  texts.push(() => {
    gauges.speed.tell(number("ias"), number("mach"), Boolean(number("stall")));
    gauges.attitude.tell(-number("pitch"), -number("bank"));
    gauges.altitude.tell(number("indicated_altitude"), number("altimeter_setting"));
    gauges.turn.tell(number("turn_rate"), number("slip"));
    gauges.heading.tell({ heading: magnetic(), bug: number("ap_heading_bug"), toFrom: number("to_from1"),
      hasSlope: number("glide_slope1") > 0 });
    gauges.climb.tell(number("vertical_speed") * 196.850394);
  });

  // ---- radios ----
  const swapItem = parseItem("radio_exchange");
  const modeOf = (name) => {
    const item = parseItem(name);
    const field = h("select", { "aria-label": "Transponder mode",
      onchange: () => writeAndTell(item, Number(field.value), undefined, outcome) },
      item.row.values.map((one) => h("option", { value: one.value }, one.name)));
    texts.push(() => { if (document.activeElement !== field) field.value = String(number(name)); });
    return field;
  };
  const stack = h("div", { class: "stack" },
    radios.map((radio) => h("div", { class: "radio" }, h("span", { class: "radioLabel" }, radio.label),
    quick({ name: radio.active, label: `${radio.label} active`, step: radio.step }).node,
    radio.standby ? [h("button", { type: "button", class: "swap",
      "aria-label": `Swap ${radio.label} active and standby`, title: "Swap",
      onclick: () => writeAndTell(swapItem, 2 ** swapItem.row.bits.find((bit) => bit.name === radio.swap).bit,
        undefined, outcome) }, icon("M4 8h15M15 4l4 4-4 4M20 16H5M9 12l-4 4 4 4")),
    quick({ name: radio.standby, label: `${radio.label} standby`, step: radio.step }).node]
    : [h("span", {}), radio.mode ? modeOf(radio.mode)
      : h("span", { class: "unit" }, parseItem(radio.active).row.unit)])));
  const three = (degrees) => String(Math.round(degrees)).padStart(3, "0");
  const station = h("p", { class: "station" });
  texts.push(() => {
    const dme = number("dme1");
    setText(station, [at.get("nav_ident1") ? `NAV 1 ${at.get("nav_ident1")}` : "",
      dme ? `DME ${dme.toFixed(1)} nm` : "",
      number("ground_speed") ? `ground speed ${(number("ground_speed") * 1.94384449).toFixed(0)} kt` : "",
      number("wind") ? `wind ${three(number("wind_from"))}° ${number("wind").toFixed(0)} kt` : ""]
      .filter(Boolean).join(" · "));
  });

  // ---- engines ----
  const engineBox = h("div", { class: "engines" });
  let fills = [];
  function buildEngines() {
    const count = Math.max(1, Math.min(4, number("engine_count"))), type = number("engine_type");
    const key = `${count} ${type}`;
    if (key === engineKey || !at.has("engine_count")) return;
    engineKey = key;
    fills = [];
    engineBox.style.setProperty("--group", count > 2 ? "11rem" : "4.9rem");
    engineBox.replaceChildren(...(enginesOf[type] ?? enginesOf[1]).map((kind) => {
      const bar = { ...bars[kind] };
      const names = Array.from({ length: count },
        (_, i) => bar.names.replace("#", i + 1)).filter((name) => catalogue.byName.has(name));
      if (!names.length) return null;
      const unit = parseItem(names[0]).row.unit;
      return h("div", { class: "engineGroup" },
        h("span", { class: "engineLabel" }, bar.label, h("small", {}, unit.replace("degC", "°C"))),
        h("div", { class: "columns" }, names.map((name, i) => {
          const fill = h("rect", { x: 0, y: 0, width: 20, height: 100, class: "fill" }),
            text = h("span", { class: "engineValue" }, "–");
          fills.push({ name, fill, text, bar, unit });
          return h("div", { class: "column" }, h("svg",
            { viewBox: "0 0 20 100", preserveAspectRatio: "none", "aria-hidden": "true" },
            h("rect", { x: 0, y: 0, width: 20, height: 100, class: "trough" }), fill,
            bar.red ? h("rect", { x: 0, y: 100 - 100 * bar.red / bar.top, width: 20, height: 1.600, class: "redLine" })
              : null),
          text, h("small", { class: "engineNumber" }, h("span", { class: "sr" }, bar.label + " engine "),
            String(i + 1)));
        })));
    }).filter(Boolean));
    listen();
  }
  function moveBars() {
    for (const { name, fill, bar } of fills) {
      const value = number(name);
      if (value > bar.top && !bar.red) bar.top = value * 1.25;  // flows and pressures differ by aircraft: grow
      const share = Math.max(0, Math.min(1, value / bar.top));
      setAttribute(fill, "transform", `translate(0 ${(100 - 100 * share).toFixed(1)}) scale(1 ${share.toFixed(3)})`);
    }
  }
  texts.push(() => {
    for (const { name, fill, text, bar, unit } of fills) {
      setText(text, number(name).toFixed(unit === "inHg" || unit === "%" ? 1 : 0));
      setAttribute(fill, "class", bar.red && number(name) >= bar.red ? "fill red" : "fill");
    }
  });

  // ---- gear, flaps, trim ----
  const wheels = [["left_gear", "Left"], ["nose_gear", "Nose"], ["right_gear", "Right"]].map(([name, label]) => {
    const state = h("small", {}), node = h("div", { class: "wheel" }, h("i", {}), h("span", {}, label), state);
    texts.push(() => {
      const down = number(name);
      setAttribute(node, "class", "wheel " + (down > 99.5 ? "down" : down > 0.5 ? "transit" : ""));
      setText(state, down > 99.5 ? "down" : down > 0.5 ? "moving" : "up");
    });
    return node;
  });
  const gearItem = parseItem("gear");
  const gearLever = h("button", { type: "button", class: "lever", role: "switch", "aria-label": "Gear lever down",
    onclick: () =>
    writeAndTell(gearItem, number("gear") > 50 ? 0 : 100, "%", outcome) }, h("span", { class: "knob" }));
  texts.push(() => setAttribute(gearLever, "aria-checked", String(number("gear") > 50)));
  const surfaces = [["Flaps", "left_flap_position", 0, 100, "flaps"], ["Speed brake", "left_spoiler", 0, 100],
    ["Elevator trim", "elevator_trim_indicator", -100, 100], ["Throttle 1", "throttle1", -25, 100],
    ["Throttle 2", "throttle2", -25, 100]];
  const surfaceParts = surfaces.map(([label, name, low, high, lever]) => {
    const fill = h("rect", { x: 0, y: 0, width: 100, height: 8, class: "fill" }),
      mark = h("rect", { x: -0.8, y: -1, width: 1.6, height: 10, class: "leverMark" });
    const text = h("span", { class: "engineValue" }, "–");
    texts.push(() => setText(text, `${number(name).toFixed(0)} %`.replace("-", "−")));
    return { name, low, high, lever, fill, mark, node: h("div", { class: "surface" }, h("span", {}, label),
      h("svg", { viewBox: "0 0 100 8", preserveAspectRatio: "none", "aria-hidden": "true" },
        h("rect", { x: 0, y: 0, width: 100, height: 8, class: "trough" }), fill,
        lever ? mark : null), text) };
  });
  function moveSurfaces() {
    for (const { name, low, high, lever, fill, mark } of surfaceParts) {
      const zero = -low / (high - low), share = (Math.max(low, Math.min(high, number(name))) - low) / (high - low);
      const from = 100 * Math.min(zero, share), wide = Math.abs(share - zero);
      setAttribute(fill, "transform", `translate(${from.toFixed(1)} 0) scale(${wide.toFixed(3)} 1)`);
      if (lever) setAttribute(mark, "transform", `translate(${number(lever).toFixed(1)} 0)`);
    }
  }
  const flapsItem = parseItem("flaps");
  const flapsBy = (way) => writeAndTell(flapsItem,
    Math.max(0, Math.min(100, Math.round(number("flaps") / 12.5) * 12.5 + way * 12.5)), "%", outcome);

  const brakeItem = parseItem("parking_brake");
  const parkingBrake = h("button", { type: "button", class: "lamp", "aria-pressed": "false", onclick: () =>
    writeAndTell(brakeItem, number("parking_brake") > 50 ? 0 : 100, "%", outcome) }, "Parking brake");
  texts.push(() => setAttribute(parkingBrake, "aria-pressed", String(number("parking_brake") > 50)));

  const traffic = createTraffic(number, magnetic);
  const aircraft = h("p", { class: "aircraftName" });
  texts.push(() => setText(aircraft, at.get("aircraft") || ""));

  const card = (title, kind, ...parts) => h("section", { class: `card ${kind}`, "aria-label": title },
    h("h2", {}, title), parts);
  root.append(h("div", { class: "panelTop" }, h("h2", { class: "sr" }, "Instrument panel"), aircraft, station, outcome,
    h("button", { type: "button", class: "fullScreen",
      onclick: () => setBare(!document.documentElement.classList.contains("bare")) },
      "Full screen")),
    h("div", { class: "panelGrid live" },
      h("section", { class: "gauges", "aria-label": "Flight instruments" },
        Object.values(gauges).map((gauge) => gauge.node)),
      traffic.node,
      card("Autopilot", "autopilot", h("div", { class: "lamps" },
        autopilot.filter(([name]) => catalogue.byName.has(name))
        .map(([name, label]) => lamp(name, label))),
          h("div", { class: "steppers" }, selected.map((one) => stepper({ ...one, pad: Boolean(one.wraps) })))),
      card("Radios", "radios", stack),
      card("Engines", "engineCard", engineBox),
      card("Gear and flaps", "config", h("div", { class: "gear" }, h("div", { class: "wheels" }, wheels),
        h("div", { class: "leverBox" }, h("span", { "aria-hidden": "true" }, "up"), gearLever,
          h("span", { "aria-hidden": "true" }, "down"))),
      surfaceParts.map((part) => part.node),
      h("div", { class: "bar" }, h("button", { type: "button", onclick: () => flapsBy(-1) }, "Flaps up"),
        h("button", { type: "button", onclick: () => flapsBy(1) }, "Flaps down"), parkingBrake))));

  const draw = painter(() => {
    move();
    traffic.move();
  });
  const drawTexts = painter(() => {
    for (const refresh of texts) refresh();
    buildEngines();
  }, 68);

  function names() {
    const list = ["ias", "vne", "mach", "stall", "pitch", "bank", "indicated_altitude", "altimeter_setting",
      "turn_rate", "slip", "heading",
      "magnetic_variation", "ap_heading_bug", "obs1", "cdi1", "gsi1", "to_from1", "glide_slope1", "vertical_speed",
        "nav_ident1", "dme1",
      "ground_speed", "wind", "wind_from", "engine_count", "engine_type", "gear", "left_gear", "nose_gear",
        "right_gear", "flaps",
      "parking_brake", "aircraft", ...surfaces.map(([, name]) => name), ...autopilot.map(([name]) => name),
        ...selected.map((one) => one.name),
      ...radios.flatMap((one) => [one.active, one.standby, one.mode]), ...fills.map((one) => one.name),
        ...traffic.names];
    return [...new Set(list)].filter((name) => name && parseItem(name));
  }
  function listen() {
    const before = stop;
    stop = watch(names(), (changed) => {
      for (const name in changed) {
        const { value, error, raw } = changed[name];
        if (error) continue;
        if (name.includes(":hex:")) traffic.take(raw);
        else at.set(name, typeof value === "string" && parseItem(name).row?.form !== "Text" ? Number(value) : value);
      }
      draw();
      drawTexts();
    }, { rate: 50 });
    before?.();
  }
  // Nothing but the instruments, for a screen in a cockpit; the address #panel/bare begins that way.
  function setBare(isBare) {
    document.documentElement.classList.toggle("bare", isBare);
    if (isBare) document.documentElement.requestFullscreen?.().catch(() => {});  // some browsers have none: bare it is
    else if (document.fullscreenElement) document.exitFullscreen();
  }
  document.addEventListener("fullscreenchange", () => {
    if (!document.fullscreenElement) setBare(false);
  });
  return {
    show(rest) {
      if (rest === "bare") document.documentElement.classList.add("bare");
      if (!stop) listen();
      draw();
      stopState ??= connection(() => drawTexts());
      traffic.show();
    },
    hide() {
      stop?.();
      stop = null;
      stopState?.();
      stopState = null;
      document.documentElement.classList.remove("bare");
      traffic.hide();
    },
  };
}
