// Controls of the instrument panel: values that are changed where they stand, steppers, lit buttons.
import { h, setAttribute, setText } from "./dom.js";
import { convert, digitsOf, parseItem, unitText, valueText } from "./catalogue.js";
import { problemWith, writeAndTell } from "./editor.js";

/**
 * `at`: the newest values by name; `texts`: gets a function for each control that
 * refreshes its text; `outcome`: the element that tells what became of a write.
 */
export function makeControls(at, texts, outcome) {
  const number = (name) => at.get(name) ?? 0;

  // A value that becomes a field by a click or Enter: Enter writes, Escape leaves, arrows step.
  function quick({ name, label, unit, step, wraps, pad }) {
    const item = parseItem(name);
    const shown = h("span", { class: "digits" }, "–");
    const button = h("button", { type: "button", class: "quick", onclick: () => edit() }, shown);
    const node = h("span", { class: "quickBox" }, button);
    const current = () => convert(Number(number(name)), item.row.unit, unit);
    const text = () => at.has(name) ? item.name === "transponder" ? valueText(item, number(name))
      : pad ? String(Math.round(current())).padStart(3, "0") : current().toFixed(digits()).replace("-", "−") : "–";
    const digits = () => unit === "deg" || unit === "kt" || unit === "mb" ? 0 : digitsOf(item.row, unit);
    let shownText = "";
    texts.push(() => {
      const now = text();
      if (now === shownText) return;
      shownText = now;
      setText(shown, now);
      button.setAttribute("aria-label", `${label}: ${now} ${unit ?? unitText(item)}. Change`);
    });
    function edit() {
      const field = h("input", { type: "text", inputmode: "decimal", class: "digits",
        "aria-label": `${label}, new value`,
        value: text().replace("−", "-"), autocomplete: "off" });
      let isOpen = true;  // taking the field away makes it lose the focus, which would take it away again
      const leave = (focus) => {
        if (!isOpen) return;
        isOpen = false;
        field.replaceWith(button);
        if (focus) button.focus();
      };
      field.addEventListener("keydown", async (event) => {
        const way = { ArrowUp: 1, ArrowDown: -1 }[event.key];
        if (event.key === "Escape") leave(true);
        if (way) {
          event.preventDefault();
          let next = Number(field.value) + way * step * (event.shiftKey ? 10 : 1);
          if (wraps) next = (next + wraps) % wraps;
          field.value = item.name === "transponder" ? String(next).padStart(4, "0")
            : next.toFixed(item.row.unit === "MHz" ? 2 : digits());
        }
        if (event.key !== "Enter") return;
        event.preventDefault();
        const problem = problemWith(item, field.value, unit);
        if (problem) {
          outcome.className = "outcome bad";
          setText(outcome, `${label}: ${problem}`);
          field.setAttribute("aria-invalid", "true");
          return;
        }
        leave(true);
        await writeAndTell(item, Number(field.value.replace(",", ".")),
          unit && unit !== item.row.unit ? unit : undefined, outcome);
      });
      field.addEventListener("blur", () => leave(false));
      button.replaceWith(field);
      field.focus();
      field.select();
    }
    const stepBy = (way) => {
      let next = Math.round(current() / step) * step + way * step;
      if (wraps) next = (next + wraps) % wraps;
      return writeAndTell(item, next, unit && unit !== item.row.unit ? unit : undefined, outcome);
    };
    return { node, stepBy };
  }
  const stepper = (config) => {
    const field = quick(config);
    return h("div", { class: "stepper" }, h("span", { class: "stepLabel" }, config.label, " ",
      h("small", {}, config.unit === "mb" ? "hPa" : config.unit === "deg" ? "°" : config.unit)),
      h("button", { type: "button", "aria-label": `${config.label} down`, onclick: () => field.stepBy(-1) }, "−"),
        field.node,
      h("button", { type: "button", "aria-label": `${config.label} up`, onclick: () => field.stepBy(1) }, "+"));
  };
  const lamp = (name, label, title = "") => {
    const item = parseItem(name);
    const node = h("button", { type: "button", class: "lamp", "aria-pressed": "false", title: title || item.row.meaning,
      onclick: () => writeAndTell(item, !number(name), undefined, outcome) }, label);
    texts.push(() => setAttribute(node, "aria-pressed", String(Boolean(number(name)))));
    return node;
  };
  return { quick, stepper, lamp };
}
