// Watch: search over all offsets, named lists, a live table that can be written into.
import { read, watch } from "/tavrix.js";
import { announce, attempt, errorText, h, icon, onRemembered, painter, recall, remember, setText } from "./dom.js";
import { catalogue, hexOffset, parseItem, plainTypes, searchRows, unitText, unitsLike, valueText, whyReadOnly }
  from "./catalogue.js";
import { makeForm, makeSwitch } from "./editor.js";
import { changeLists, loadLists, readyLists } from "./lists.js";

export function ageText(seconds) {
  if (!(seconds >= 1)) return "now";
  if (seconds < 60) return `${Math.floor(seconds)} s`;
  if (seconds < 3600) return `${Math.floor(seconds / 60)} min`;
  return `${Math.floor(seconds / 3600)} h`;
}

function rawText(raw) {
  return raw.length <= 23 ? raw : `${raw.slice(0, 17)} … ${(raw.length + 1) / 3} bytes`;
}

export function createWatch(root) {
  let lists = loadLists(), list = "";
  let rows = new Map();  // name -> row of the table
  let stop = null, ager = 0, isShown = false;
  const visible = new Set(), dirty = new Set();
  // The open list's items; a list that another tab has just taken away comes back with the change.
  const change = (edit) => { lists = changeLists(edit); };
  const changeItems = (edit) => change((all) => all.set(list, edit(all.get(list) ?? [])));

  // ---- the table ----
  const body = h("div", { role: "rowgroup" });
  const table = h("div", { role: "table", class: "table", "aria-label": "Watched values" },
    h("div", { role: "rowgroup", class: "head" }, h("div", { role: "row", class: "row" },
      ["Offset", "Value", "Raw bytes", "Changed", "Change or remove"].map((text, i) =>
        h("span", { role: "columnheader", class: ["name", "value", "raw", "age", "tools"][i] },
          i === 4 ? h("span", { class: "sr" }, text) : text)))), body);
  const empty = h("p", { class: "empty" }, "This list is empty. Search for what you need and add it.");

  const observer = new IntersectionObserver((entries) => {
    for (const { target, isIntersecting } of entries) {
      const row = rows.get(target.dataset.name);
      if (!row) continue;
      if (isIntersecting) {
        visible.add(row);
        dirty.add(row);
      } else {
        visible.delete(row);
      }
    }
    draw();
  }, { rootMargin: "60px" });

  const draw = painter(() => {
    for (const row of dirty) {
      if (visible.has(row)) row.draw();
    }
    dirty.clear();
  }, 70);

  function makeRow(entry0) {
    const item = parseItem(entry0.name);
    const why = whyReadOnly(item);
    const isSwitch = item.row?.form === "Flag" && !why;
    const value = h("span", { class: "number" }, "–"), unit = h("span", { class: "unit" });
    const raw = h("span", { role: "cell", class: "raw" }), age = h("span", { role: "cell", class: "age" });
    const outcome = h("p", { class: "outcome" });
    const below = h("div", { class: "below" }, outcome);
    const row = { node: null, entry: null, at: 0, freshUntil: 0, isFresh: false, draw: null, item };
    row.setUnit = (name) => {
      entry0.unit = name === item.row?.unit ? undefined : name;
      display();
      row.draw();
    };
    const chooseUnit = (name) => {
      row.setUnit(name);
      changeItems((items) => items.map((one) => one.name === item.name ? { name: one.name, unit: entry0.unit } : one));
    };
    const toggle = isSwitch ? makeSwitch(item, item.name, outcome) : null;
    const display = () => { setText(unit, unitText(item, entry0.unit)); };
    let form = null;
    const edit = isSwitch ? toggle.node : why
      ? h("button", { type: "button", class: "icon flat lock", title: why,
        "aria-label": `${item.name} is read-only: why?`,
        onclick: () => {
          outcome.className = "outcome";
          setText(outcome, outcome.textContent ? "" : why);
          if (outcome.textContent) announce(why);
        } }, icon("M7 11V8a5 5 0 0 1 10 0v3M5 11h14v9H5z"))
      : h("button", { type: "button", class: "icon flat", "aria-label": `Change ${item.name}`, title: "Change",
        onclick: () => {
        if (form) {
          closeForm(entry0.unit);
          return;
        }
        setText(outcome, "");
        form = makeForm(item, row.entry?.value, entry0.unit, outcome, closeForm);
        below.prepend(form.form);
        row.node.classList.add("open");
        form.focus();
      } }, icon("M4 20h4L19 9l-4-4L4 16zM13 7l4 4"));
    function closeForm(newUnit) {
      form?.form.remove();
      form = null;
      row.node.classList.remove("open");
      edit.focus();
      if (newUnit && newUnit !== entry0.unit && item.row?.unit !== undefined) chooseUnit(newUnit);
    }
    const units = item.row && !item.row.values ? unitsLike(item.row.unit) : [];
    row.node = h("div", { role: "row", class: "row", "data-name": item.name },
      h("span", { role: "cell", class: "name" }, h("b", {}, item.name), " ",
        h("code", {}, item.row ? item.row.hex : hexOffset(item.offset)),
        h("small", {}, item.row ? item.row.meaning + (item.row.positive ? `, positive: ${item.row.positive}` : "")
          : `${item.type} as stored`)),
      h("span", { role: "cell", class: "value" }, value, " ",
        units.length > 1 ? h("button", { type: "button", class: "unit", title: "Next unit",
          "aria-label": `Unit of ${item.name}`,
          onclick: () => {
            const at = units.indexOf(entry0.unit || item.row.unit);
            chooseUnit(units[(at + 1) % units.length]);
          } }, unit) : unit),
      raw, age,
      h("span", { role: "cell", class: "tools" }, edit,
        h("button", { type: "button", class: "icon flat", "aria-label": `Remove ${item.name}`, title: "Remove",
          onclick: () => remove(item.name) }, icon("M6 6l12 12M18 6L6 18"))),
      h("span", { role: "cell", class: "belowCell" }, below));
    display();
    row.drawAge = () => setText(age, row.entry && !row.entry.error
      ? ageText((performance.now() - row.at) / 1000) : "");
    row.draw = () => {
      const entry = row.entry;
      if (!entry) return;
      if (entry.error) {
        setText(value, "–");
        outcome.className = "outcome bad";
        setText(outcome, errorText(entry.error));
        return;
      }
      setText(value, valueText(item, entry.value, entry0.unit));
      setText(raw, rawText(entry.raw));
      toggle?.show(entry.value);
      row.drawAge();
      const isFresh = performance.now() < row.freshUntil;
      if (isFresh !== row.isFresh) {
        row.isFresh = isFresh;
        row.node.classList.toggle("fresh", isFresh);
      }
    };
    return row;
  }

  // `kept`: rows of the same list that stay, with what is being typed in them.
  function rebuild(kept = new Map()) {
    observer.disconnect();
    visible.clear();
    dirty.clear();
    rows = new Map();
    for (const { name, unit } of lists.get(list)) {
      const row = kept.get(name) ?? makeRow({ name, unit });
      row.setUnit(unit);
      rows.set(name, row);
    }
    const focus = document.activeElement;
    body.replaceChildren(...[...rows.values()].map((row) => row.node));
    if (body.contains(focus)) focus.focus();
    for (const row of rows.values()) observer.observe(row.node);
    empty.hidden = rows.size > 0;
    table.hidden = rows.size === 0;
    listen();
  }

  // A list that grows or shrinks keeps the rows that stay.
  function listen() {
    stop?.();
    stop = null;
    if (!isShown || !rows.size) return;
    stop = watch([...rows.keys()], (changed) => {
      const now = performance.now();
      for (const name in changed) {
        const row = rows.get(name);
        if (!row) continue;
        const entry = changed[name];
        if (row.entry && row.entry.raw !== entry.raw) row.freshUntil = now + 700;
        row.entry = entry;
        row.at = now - entry.age * 1000;
        dirty.add(row);
      }
      draw();
    });
  }

  function remove(name) {
    const row = rows.get(name);
    const next = row.node.nextElementSibling ?? row.node.previousElementSibling;
    changeItems((items) => items.filter((item) => item.name !== name));
    observer.unobserve(row.node);
    visible.delete(row);
    row.node.remove();
    rows.delete(name);
    empty.hidden = rows.size > 0;
    table.hidden = rows.size === 0;
    (next?.querySelector(".tools button:last-child") ?? query).focus();
    listen();
    showResults();
    announce(`${name} removed`);
  }

  function add(name) {
    changeItems((items) => [...items.filter((item) => item.name !== name), { name }]);
    const row = makeRow({ name });
    rows.set(name, row);
    body.append(row.node);
    observer.observe(row.node);
    empty.hidden = true;
    table.hidden = false;
    listen();
    if (innerWidth > 1000) row.node.scrollIntoView({ block: "nearest" });
    announce(`${name} added to ${list}`);
  }

  // ---- search ----
  const results = h("div", { class: "results" }), found = h("p", { class: "found", role: "status" });
  let isBrowsing = false;  // narrow screens show subjects on demand only
  const browse = h("button", { type: "button", class: "browse", "aria-expanded": "false", onclick: () => {
    isBrowsing = !isBrowsing;
    browse.setAttribute("aria-expanded", String(isBrowsing));
    showResults();
  } }, "Browse by subject");
  const searchError = h("p", { class: "bad" });
  const query = h("input", { type: "search", id: "query", placeholder: "heading, com1, engine, 0x0330 …",
    spellcheck: "false",
    autocomplete: "off", oninput: () => showResults() });

  function resultButton(name, label, detail) {
    const isThere = rows.has(name);
    return h("li", {}, h("button", { type: "button", class: "result", "aria-pressed": String(isThere),
      onclick: (event) => {
      if (rows.has(name)) remove(name);
      else add(name);
      const isNow = rows.has(name);
      event.currentTarget.setAttribute("aria-pressed", String(isNow));
      event.currentTarget.focus();
    } }, h("span", { class: "mark", "aria-hidden": "true" }), h("span", { class: "what" }, h("b", {}, label), " ",
      h("small", {}, detail))));
  }

  function showResults() {
    const text = query.value.trim();
    const matches = searchRows(text);
    const groups = new Map();
    for (const row of matches) {
      if (!groups.has(row.subject)) groups.set(row.subject, []);
      groups.get(row.subject).push(row);
    }
    const openOnes = new Set([...results.querySelectorAll("details[open]")].map((node) => node.dataset.subject));
    const parts = [];
    const free = freeItems(text);
    if (free.length) {
      parts.push(h("div", { class: "free" }, h("h3", {}, "As stored, without a meaning"),
        h("ul", {}, free.map((name) => resultButton(name, name, "")))));
    }
    for (const [subject, group] of groups) {
      const open = text ? groups.size <= 6 || matches.length <= 40 : openOnes.has(subject);
      parts.push(h("details", { open, "data-subject": subject }, h("summary", {}, subject, " ",
        h("span", { class: "count" }, String(group.length))),
      h("ul", {}, group.map((row) => resultButton(row.name, row.name, `${row.meaning} · ${row.hex}`
        + (row.unit ? ` · ${row.unit}` : "") + (row.write === "yes" ? " · can be set" : ""))))));
    }
    results.replaceChildren(...parts);
    results.classList.toggle("idle", !text && !isBrowsing);
    browse.hidden = Boolean(text);
    setText(found, text ? `${matches.length} of ${catalogue.rows.length} offsets`
      : `${catalogue.rows.length} offsets by subject`);
  }

  function freeItems(text) {
    if (parseItem(text) && !catalogue.byName.has(text)) return [text];
    if (/^0x[0-9a-f]{1,5}$/i.test(text) && Number(text) < 131072) return plainTypes.map((type) => `${text}:${type}`)
      .filter(parseItem);
    return [];
  }

  // ---- lists ----
  const chooser = h("select", { id: "lists",
    onchange: () => { location.hash = "watch/" + encodeURIComponent(chooser.value); } });
  const nameField = h("input", { type: "text", maxlength: "40", id: "listName", "aria-label": "Name of the list" });
  const nameError = h("span", { class: "bad" });
  let naming = null;  // what happens with the name
  const nameForm = h("form", { class: "naming", hidden: true, onsubmit: (event) => {
    event.preventDefault();
    const name = nameField.value.trim();
    if (!name || lists.has(name)) {
      setText(nameError, name ? "There is a list of that name." : "Type a name.");
      nameField.focus();
      return;
    }
    nameForm.hidden = true;
    naming(name);
  }, onkeydown: (event) => { if (event.key === "Escape") nameForm.hidden = true; } },
  nameField, h("button", { class: "primary" }, "Save"),
  h("button", { type: "button", onclick: () => { nameForm.hidden = true; } }, "Cancel"), nameError);

  function ask(text, then) {
    setText(nameError, "");
    nameField.value = text;
    naming = then;
    nameForm.hidden = false;
    nameField.focus();
    nameField.select();
  }
  const openList = (name) => { location.hash = "watch/" + encodeURIComponent(name); };

  const listBar = h("div", { class: "bar" }, h("label", { for: "lists" }, "List"), chooser,
    h("button", { type: "button", onclick: () => ask("", (name) => {
      change((all) => { if (!all.has(name)) all.set(name, []); });
      openList(name);
      query.focus();
    }) }, "New"),
    h("button", { type: "button", onclick: () => ask(list, (name) => {
      change((all) => {
        const before = [...all];
        all.clear();
        for (const [key, items] of before) all.set(key === list ? name : key, items);
      });
      openList(name);
    }) }, "Rename"),
    h("button", { type: "button", onclick: () => {
      const gone = list;
      let items = [];
      change((all) => {
        items = all.get(gone) ?? items;
        all.delete(gone);
        if (!all.size) for (const [name, ready] of readyLists()) all.set(name, ready);
      });
      offerUndo(`Bring ${gone} back`, (all) => { if (!all.has(gone)) all.set(gone, items); }, gone);
      openList([...lists.keys()][0]);
    } }, "Delete"),
    h("button", { type: "button", title: "The lists that come with the program, as they were", onclick: () => {
      const ready = readyLists(), before = new Map();
      change((all) => {
        for (const [name, items] of ready) {
          before.set(name, all.get(name));
          all.set(name, items);
        }
      });
      offerUndo("Undo restoring", (all) => {
        for (const [name, items] of before) {
          if (items) all.set(name, items);
          else all.delete(name);
        }
      });
      showLists();
      rebuild();
      announce("Ready-made lists restored");
    } }, "Restore ready-made"));
  const undo = h("button", { type: "button", hidden: true });
  listBar.append(undo);
  function offerUndo(text, restore, open) {
    undo.hidden = false;
    setText(undo, text);
    undo.onclick = () => {
      undo.hidden = true;
      change(restore);
      if (!lists.has(list)) list = lists.keys().next().value;
      if (open) openList(open);
      showLists();
      rebuild();
      chooser.focus();
    };
  }

  // Another tab has changed the lists.
  onRemembered("lists", () => {
    if (!isShown) return;
    lists = loadLists();
    const isSame = lists.has(list);
    if (!isSame) {
      [list] = lists.keys();
      history.replaceState(null, "", "#watch/" + encodeURIComponent(list));
    }
    showLists();
    rebuild(isSame ? rows : undefined);
    showResults();
  });

  function showLists() {
    chooser.replaceChildren(...[...lists].map(([name, items]) => h("option", { value: name },
      `${name} (${items.length})`)));
    chooser.value = list;
  }

  const searchPane = h("section", { class: "card search", "aria-labelledby": "searchTitle" },
    h("h2", { id: "searchTitle" }, "Offsets"),
    h("label", { for: "query", class: "sr" }, "Search offsets by name, meaning, subject, unit or number"), query, found,
    browse, searchError, results);
  root.append(h("div", { class: "watchGrid" },
    h("section", { class: "card lists", "aria-labelledby": "listTitle" }, h("h2", { id: "listTitle" }, "Watch"),
      listBar,
      nameForm, table, empty), searchPane));
  query.addEventListener("keydown", async (event) => {
    if (event.key !== "Enter") return;
    const item = parseItem(query.value);
    if (!item || rows.has(item.name)) return;
    if (await attempt(searchError, () => read([item.name]))) add(item.name);
    showResults();
  });

  return {
    show(rest) {
      lists = loadLists();
      const wanted = rest || recall("list", "Flight");
      const before = list;
      list = lists.has(wanted) ? wanted : [...lists.keys()][0];
      remember("list", list);
      showLists();
      isShown = true;
      const names = lists.get(list).map((item) => item.name).join();
      if (before !== list || names !== [...rows.keys()].join()) {
        rebuild(before === list ? rows : undefined);
        showResults();
      } else {
        for (const { name, unit } of lists.get(list)) rows.get(name).setUnit(unit);
        listen();
      }
      clearInterval(ager);
      ager = setInterval(() => {
        if (document.hidden) return;
        for (const row of visible) row.draw();
      }, 400);
    },
    hide() {
      isShown = false;
      clearInterval(ager);
      stop?.();
      stop = null;
    },
  };
}
