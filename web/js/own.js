// The user's own panels: what lies in the folder, and how to begin one.
import { request } from "/tavrix.js";
import { attempt, h, setText } from "./dom.js";

const example = `<!doctype html>
<title>Big altitude</title>
<h1 id="alt">–</h1>
<button id="lights">Landing lights on</button>
<script type="module">
  import { watch, write } from "/tavrix.js";
  watch(["indicated_altitude"], (now) =>
    alt.textContent = Math.round(now.indicated_altitude.value) + " ft");
  lights.onclick = () => write("landing_lights", true);
</script>`;

export function createOwn(root) {
  const list = h("ul", { class: "panels" }), error = h("p", { class: "bad" }), copied = h("span", { role: "status" });
  const none = h("p", { class: "empty", hidden: true }, "No file yet. Save the example below as panels/altitude.html.");
  root.append(h("div", { class: "twoColumns" },
    h("section", { class: "card", "aria-labelledby": "ownTitle" }, h("h2", { id: "ownTitle" }, "My panels"),
      h("p", {}, "HTML files from the folder ", h("code", {}, "panels"),
        " beside the program. Made for your own screens: a "
        + "radio stack on a tablet, an engine page on a third monitor."), list, none, error,
      h("button", { type: "button", onclick: () => load() }, "Look again")),
    h("section", { class: "card", "aria-labelledby": "howTitle" },
      h("h2", { id: "howTitle" }, "Ten lines to begin with"),
      h("pre", { tabindex: "0", "aria-label": "Example of a panel" }, h("code", {}, example)),
      h("div", { class: "bar" }, h("button", { type: "button", onclick: async () => {
        try {
          await navigator.clipboard.writeText(example);
          setText(copied, "Copied.");
        } catch {
          setText(copied, "This browser does not allow copying: select the text instead.");
        }
      } }, "Copy"), copied),
      h("dl", { class: "calls" },
        h("dt", {}, h("code", {}, "watch(names, callback)")),
          h("dd", {}, "calls back with what changed, by name; the first time with all"),
        h("dt", {}, h("code", {}, "write(name, value, {unit})")),
          h("dd", {}, "writes and resolves to the value as the simulator took it"),
        h("dt", {}, h("code", {}, "read(names)")), h("dd", {}, "the values now"),
        h("dt", {}, h("code", {}, "connection(callback)")), h("dd", {}, "tells of loss and return")))));

  async function load() {
    const answer = await attempt(error, () => request("/api/panels"));
    if (!answer) return;
    none.hidden = answer.panels.length > 0;
    list.replaceChildren(...answer.panels.map(({ file, title }) => h("li", {},
      h("a", { class: "panelLink", href: "/panels/" + encodeURIComponent(file), target: "_blank", rel: "noopener" },
        h("b", {}, title || file), h("small", {}, file + " (new tab)")))));
  }
  return { show: load, hide() {} };
}
