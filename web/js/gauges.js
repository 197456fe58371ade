// Round instruments in SVG, 200 x 200 each. Made once; afterwards only transforms and a few texts change.
import { h, setAttribute, setText } from "./dom.js";

const point = (radius, angle) => {
  const radians = (angle - 90) * Math.PI / 180;
  return [(100 + radius * Math.cos(radians)).toFixed(2), (100 + radius * Math.sin(radians)).toFixed(2)];
};
const tick = (angle, outer, inner, kind = "tick") => {
  const [x1, y1] = point(outer, angle), [x2, y2] = point(inner, angle);
  return h("line", { x1, y1, x2, y2, class: kind });
};
const label = (angle, radius, text, kind = "mark") => {
  const [x, y] = point(radius, angle);
  return h("text", { x, y, class: kind, "text-anchor": "middle", "dominant-baseline": "central" }, String(text));
};
const arc = (radius, from, to, kind) => {
  const [x1, y1] = point(radius, from), [x2, y2] = point(radius, to);
  return h("path", { d: `M${x1} ${y1}A${radius} ${radius} 0 ${to - from > 180 ? 1 : 0} 1 ${x2} ${y2}`, class: kind });
};
const turn = (node, angle) => setAttribute(node, "transform", `rotate(${angle.toFixed(2)} 100 100)`);
let lastId = 0;

// The case: screws of the bezel, glass, then the instrument's own parts. The readout is text for everybody.
function instrument(name, parts) {
  const readout = h("output", { class: "readout", "aria-live": "off" }, "–");
  const note = h("span", { class: "note" });
  const node = h("figure", { class: "instrument" },
    h("svg", { viewBox: "0 0 200 200", "aria-hidden": "true" },
      h("rect", { x: 2, y: 2, width: 196, height: 196, rx: 26, class: "bezel" }),
      [[18, 18], [182, 18], [18, 182], [182, 182]].map(([cx, cy]) => h("circle", { cx, cy, r: 4.5, class: "screw" })),
      h("circle", { cx: 100, cy: 100, r: 94, class: "rim" }), h("circle", { cx: 100, cy: 100, r: 90, class: "face" }),
      parts),
    h("figcaption", {}, h("span", { class: "gaugeName" }, name), readout, note));
  return { node, readout, note };
}

const needle = (length, kind = "needle") => h("g", {},
  h("path", { d: `M100 ${100 - length}L103.500 ${112 - length}L102.800 118H97.200L96.500 ${112 - length}Z`,
    class: kind }));
const hub = () => h("circle", { cx: 100, cy: 100, r: 7, class: "hub" });

/** Airspeed: the scale follows the aircraft's never-exceed speed. */
export function airspeed() {
  const scale = h("g", {}), hand = needle(76);
  const made = instrument("Airspeed", [scale, hand, hub()]);
  let top = 0, vneShown = -1;
  const angle = (knots) => 25 + 310 * Math.max(0, Math.min(knots, top * 1.02)) / top;
  function rule(vne) {
    vneShown = vne;
    top = [160, 240, 300, 400, 500, 700].find((one) => one >= (vne || 360) * 1.08) ?? 700;
    const major = top <= 240 ? 20 : top <= 300 ? 50 : 100, minor = top <= 240 ? 5 : 10;
    const marks = [];
    for (let knots = 0; knots <= top; knots += minor) {
      const isMajor = knots % major === 0, isHalf = knots % (major / 2) === 0;
      marks.push(tick(angle(knots), 86, isMajor ? 72 : isHalf ? 76 : 80, isMajor ? "tick major" : "tick"));
      if (isMajor) marks.push(label(angle(knots), 55, knots));
    }
    if (vne) marks.push(arc(83, 25, angle(vne), "arc good"), tick(angle(vne), 88, 70, "tick red"));
    scale.replaceChildren(...marks, label(180, 34, "KNOTS", "tiny"));
  }
  rule(0);
  return { node: made.node, move(ias, vne) {
    if (vne !== vneShown) rule(vne);
    turn(hand, angle(ias));
  }, tell(ias, mach, isStalled) {
    setText(made.readout, `${ias.toFixed(0)} kt`);
    setText(made.note, isStalled ? "STALL" : `M ${mach.toFixed(2)}`);
    made.note.classList.toggle("alarm", isStalled);
  } };
}

/** Attitude: pitch nose up and bank right positive. */
export function attitude() {
  const id = "clip" + ++lastId, perDegree = 2.6;
  const ladder = [];
  for (let pitch = -80; pitch <= 80; pitch += 5) {
    if (!pitch) continue;
    const y = 100 - pitch * perDegree, half = pitch % 10 ? 10 : 22;
    ladder.push(h("line", { x1: 100 - half, x2: 100 + half, y1: y, y2: y, class: "ladder" }));
    if (pitch % 10 === 0) {
      for (const x of [100 - half - 9, 100 + half + 9]) ladder.push(h("text", { x, y, class: "ladderText",
        "text-anchor": "middle", "dominant-baseline": "central" }, String(Math.abs(pitch))));
    }
  }
  const pitchGroup = h("g", {}, h("rect", { x: -150, y: -400, width: 500, height: 500, class: "sky" }),
    h("rect", { x: -150, y: 100, width: 500, height: 500, class: "ground" }),
    h("line", { x1: -150, x2: 350, y1: 100, y2: 100, class: "horizon" }), ladder);
  const bankGroup = h("g", {}, pitchGroup);
  const pointer = h("g", {}, h("path", { d: "M100 24L94.500 34H105.500Z", class: "pointer" }));
  const made = instrument("Attitude", [
    h("defs", {}, h("clipPath", { id }, h("circle", { cx: 100, cy: 100, r: 88 }))),
    h("g", { "clip-path": `url(#${id})` }, bankGroup), pointer,
    h("g", {}, [-60, -45, -30, -20, -10, 10, 20, 30, 45, 60].map((angle) =>
      tick(angle, 88, Math.abs(angle) % 30 ? 81 : 76, "tick major")),
        h("path", { d: "M100 22L94 12H106Z", class: "index" })),
    h("path", { d: "M52 100H84L92 108L100 100L108 108L116 100H148", class: "aircraftShade" }),
    h("path", { d: "M52 100H84L92 108L100 100L108 108L116 100H148", class: "aircraft" }),
    h("circle", { cx: 100, cy: 100, r: 2.6, class: "dot" })]);
  return { node: made.node, move(pitch, bank) {
    turn(bankGroup, -bank);
    setAttribute(pitchGroup, "transform", `translate(0 ${(Math.max(-80, Math.min(80, pitch)) * perDegree).toFixed(2)})`);
    turn(pointer, -bank);
  }, tell(pitch, bank) {
    setText(made.readout, `${Math.abs(pitch).toFixed(1)}° ${pitch >= 0 ? "up" : "down"}`);
    setText(made.note, `bank ${Math.abs(bank).toFixed(0)}° ${Math.abs(bank) < 0.5 ? "" : bank > 0 ? "right" : "left"}`.trim());
  } };
}

/** Altimeter in feet, with the window of the setting. */
export function altimeter() {
  const marks = [];
  for (let i = 0; i < 50; i++) marks.push(tick(i * 7.2, 86, i % 5 ? 80 : 73, i % 5 ? "tick" : "tick major"));
  for (let i = 0; i < 10; i++) marks.push(label(i * 36, 62, i, "mark large"));
  const hundreds = needle(78), thousands = h("g", {},
    h("path", { d: "M100 54L106 70L103.500 112H96.500L94 70Z", class: "needle" }));
  const tenThousands = h("g", {}, h("path",
    { d: "M100 14L94.500 4H105.500Z", class: "needle", transform: "translate(0 9)" }),
    h("line", { x1: 100, x2: 100, y1: 22, y2: 100, class: "thin" }));
  const setting = h("text", { x: 146, y: 100, class: "window", "text-anchor": "middle",
    "dominant-baseline": "central" }, "–");
  const made = instrument("Altimeter", [marks,
    h("rect", { x: 124, y: 90, width: 44, height: 20, rx: 3, class: "windowBox" }), setting,
    label(0, 36, "FEET", "tiny"), tenThousands, thousands, hundreds, hub()]);
  return { node: made.node, move(feet) {
    turn(hundreds, feet % 1000 * 0.36);
    turn(thousands, feet % 10000 * 0.036);
    turn(tenThousands, feet * 0.0036 % 360);
  }, tell(feet, millibars) {
    setText(made.readout, `${Math.round(feet)} ft`.replace("-", "−"));
    setText(made.note, `${(millibars / 33.8638866667).toFixed(2)} inHg`);
    setText(setting, millibars.toFixed(0));
  } };
}

/** Turn and slip: 512 is a standard turn to the right; ball from -128 left to 127 right. */
export function turnAndSlip() {
  const plane = h("g", {}, h("path", { d: "M42 98H92A8 8 0 0 1 108 98H158V102H106A8 8 0 0 1 94 102H42Z M97 74H103V92H97Z",
    class: "plane" }));
  const ball = h("circle", { cx: 100, cy: 146, r: 8.5, class: "ball" });
  const made = instrument("Turn", [
    [[-90, 0], [90, 0], [-110, 1], [110, 1]].map(([angle]) => tick(angle, 88, 72, "tick wide")),
    label(-122, 68, "L", "mark"), label(122, 68, "R", "mark"), label(0, 62, "2 MIN", "tiny"),
    h("path", { d: "M48 136Q100 162 152 136V152Q100 180 48 152Z", class: "tube" }), ball,
    h("path", { d: "M88 140V166M112 140V166", class: "tubeMark" }), plane]);
  return { node: made.node, move(rate, slip) {
    turn(plane, Math.max(-40, Math.min(40, rate / 512 * 20)));
    const x = Math.max(-1, Math.min(1, slip / 127)) * 42;
    setAttribute(ball, "transform", `translate(${x.toFixed(2)} ${(7.5 - x * x * 0.0075).toFixed(2)})`);
  }, tell(rate, slip) {
    setText(made.readout, `${Math.abs(rate / 512 * 3).toFixed(1)}°/s`);
    setText(made.note, `${Math.abs(rate) < 20 ? "straight" : rate > 0 ? "right" : "left"}, ball ${
      Math.abs(slip) < 6 ? "centred" : slip > 0 ? "right" : "left"}`);
  } };
}

/** Heading with course needle, deviation, glide slope and heading bug; all degrees magnetic. */
export function headingIndicator() {
  const marks = [];
  for (let angle = 0; angle < 360; angle += 5) marks.push(tick(angle, 78, angle % 10 ? 73 : 69,
    angle % 30 ? "tick" : "tick major"));
  ["N", 3, 6, "E", 12, 15, "S", 21, 24, "W", 30, 33].forEach((text, i) => {
    const one = label(i * 30, 58, text, i % 3 ? "mark small" : "mark cardinal");
    one.setAttribute("transform", `rotate(${i * 30} ${one.getAttribute("x")} ${one.getAttribute("y")})`);
    marks.push(one);
  });
  const bug = h("g", {}, h("path", { d: "M91 20H96L100 26L104 20H109V30H91Z", class: "bug" }));
  const deviation = h("g", {}, h("line", { x1: 100, x2: 100, y1: 74, y2: 126, class: "course" }));
  const toFrom = h("path", { d: "M100 80L93 92H107Z", class: "toFrom" });
  const course = h("g", {}, h("path", { d: "M100 34L93 47H98.200V71H101.800V47H107ZM98.200 129H101.800V164H98.200Z",
    class: "courseArrow" }),
    [-2, -1, 1, 2].map((dot) => h("circle", { cx: 100 + dot * 13, cy: 100, r: 2, class: "deviationDot" })), toFrom,
      deviation);
  const rose = h("g", {}, h("circle", { cx: 100, cy: 100, r: 79, class: "rose" }), marks, course, bug);
  const slope = h("path", { d: "M184 100L174 94V106Z", class: "bug slope" });
  const made = instrument("Heading", [rose, h("path", { d: "M100 10L94.500 20.500H105.500Z", class: "index" }),
    [45, 90, 135, 180, 225, 270, 315].map((angle) => tick(angle, 88, 81, "tick major")),
    h("path", { d: "M100 84V116M86 97H114M94 112H106", class: "aircraft thin" }),
    [-2, -1, 1, 2].map((dot) => h("circle", { cx: 179, cy: 100 + dot * 16, r: 1.800, class: "deviationDot" })), slope]);
  return { node: made.node, move({ heading, bug: selected, course: obs, cdi, gsi }) {
    turn(rose, -heading);
    turn(bug, selected);
    turn(course, obs);
    setAttribute(deviation, "transform", `translate(${(Math.max(-2.6, Math.min(2.6, cdi)) * 13).toFixed(2)} 0)`);
    setAttribute(slope, "transform", `translate(0 ${(Math.max(-2.6, Math.min(2.6, gsi)) * 16).toFixed(2)})`);
  }, tell({ heading, bug: selected, toFrom: way, hasSlope }) {
    const three = (angle) => String(Math.round(angle) % 360 || 360).padStart(3, "0");
    setText(made.readout, `${three(heading)}°`);
    setText(made.note, `bug ${three(selected)}°`);
    setAttribute(toFrom, "visibility", way ? "visible" : "hidden");
    setAttribute(toFrom, "transform", way === 2 ? "rotate(180 100 100)" : "");
    setAttribute(slope, "visibility", hasSlope ? "visible" : "hidden");
  } };
}

/** Vertical speed in feet a minute. */
export function verticalSpeed() {
  const places = [[0, 0], [500, 36], [1000, 66], [2000, 108], [4000, 144], [6000, 170]];
  const angle = (feet) => {
    const size = Math.min(6000, Math.abs(feet));
    const i = Math.max(1, places.findIndex(([at]) => at >= size));
    const [[a, from], [b, to]] = [places[i - 1], places[i]];
    return 270 + Math.sign(feet) * (from + (to - from) * (size - a) / (b - a));
  };
  const marks = [];
  for (const sign of [-1, 1]) {
    for (const [feet] of places) {
      marks.push(tick(angle(sign * feet), 86, 72, "tick major"));
      if (sign > 0 || feet) marks.push(label(angle(sign * feet), 58, feet === 500 ? ".5" : feet / 1000));
    }
    for (const feet of [100, 200, 300, 400, 600, 700, 800, 900, 1250, 1500, 1750, 2500, 3000, 3500, 5000]) {
      marks.push(tick(angle(sign * feet), 86, 80));
    }
  }
  const hand = needle(76);
  const made = instrument("Vertical speed", [marks, label(90, 26, "× 1000", "tiny"), label(-35, 28, "UP", "tiny"),
    label(-145, 28, "DN", "tiny"), hand, hub()]);
  return { node: made.node, move: (feet) => turn(hand, angle(feet)), tell(feet) {
    setText(made.readout, `${feet < 0 ? "−" : "+"}${Math.abs(Math.round(feet / 10) * 10)}`);
    setText(made.note, "ft/min");
  } };
}
