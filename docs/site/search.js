// The search of the site. The variable siteIndex of search-index.js has the name, the page and the
// context of each entry. No server is needed, and no frame: a page from a file may not use one.
"use strict";

(function () {
  const LIMIT = 40;
  const root = new URL(".", document.currentScript.src);
  const field = document.getElementById("site-search");
  const list = document.getElementById("site-results");
  const index = siteIndex.map(([name, page, context]) =>
    ({name, page, context, key: name.toLowerCase(), text: `${name} ${context}`.toLowerCase()}));

  // The smaller, the better: the name itself, its beginning, a part of it, its context.
  function rank(entry, text) {
    const place = entry.key.indexOf(text);
    return place < 0 ? 3 : entry.key === text ? 0 : Math.min(place, 1) + 1;
  }

  function find(text) {
    const words = text.split(/\s+/);
    return index.filter((entry) => words.every((word) => entry.text.includes(word)))
      .map((entry) => ({entry, rank: rank(entry, text)}))
      .sort((a, b) => a.rank - b.rank || a.entry.key.length - b.entry.key.length)
      .slice(0, LIMIT).map((found) => found.entry);
  }

  function item(entry) {
    const link = document.createElement("a");
    link.href = new URL(entry.page, root);
    link.textContent = entry.name;
    const context = document.createElement("span");
    context.textContent = entry.context;
    link.append(context);
    const row = document.createElement("li");
    row.append(link);
    return row;
  }

  function show() {
    const text = field.value.trim().toLowerCase();
    const found = text ? find(text) : [];
    list.replaceChildren(...found.map(item));
    if (text && !found.length) {
      list.textContent = "Nothing found";
    }
    list.hidden = !text;
  }

  function move(step) {
    const stops = [field, ...list.querySelectorAll("a")];
    const next = stops[stops.indexOf(document.activeElement) + step];
    if (next) {
      next.focus();
    }
  }

  const keys = {
    ArrowDown: () => move(1),
    ArrowUp: () => move(-1),
    Escape: () => { field.focus(); list.hidden = true; },
    Enter: () => { (list.querySelector("a") || field).click(); },
  };

  field.addEventListener("input", show);
  field.addEventListener("focus", show);
  field.parentElement.addEventListener("keydown", (event) => {
    const isLink = event.key === "Enter" && event.target !== field;
    if (keys[event.key] && !isLink) {
      event.preventDefault();
      keys[event.key]();
    }
  });
  document.addEventListener("pointerdown", (event) => {
    if (!field.parentElement.contains(event.target)) {
      list.hidden = true;
    }
  });
})();
