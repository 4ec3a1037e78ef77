"use strict";
(() => {
  const search = document.getElementById("search");
  const level = document.getElementById("level");
  const count = document.getElementById("count");
  const nothing = document.getElementById("nothing");
  const rows = Array.from(document.querySelectorAll("tbody tr"), (row) => ({
    row,
    text: row.textContent.toLowerCase(),
    rank: { error: 3, warning: 2, note: 1 }[row.className] || 0,
  }));

  // Every word must occur; the rank is the least that is shown.
  function filter() {
    const words = search.value.toLowerCase().split(/\s+/).filter(Boolean);
    const least = Number(level.value);
    let shown = 0;
    for (const { row, text, rank } of rows) {
      const fits = rank >= least && words.every((word) => text.includes(word));
      row.hidden = !fits;
      shown += fits ? 1 : 0;
    }
    count.textContent = shown + " of " + rows.length + " rows";
    nothing.hidden = shown !== 0;
  }

  // Moves the focus to the next or previous visible row that has a finding, around the ends.
  function step(by) {
    const marked = rows.filter(({ row, rank }) => rank > 0 && !row.hidden).map(({ row }) => row);
    if (marked.length === 0) return;
    const at = marked.indexOf(document.activeElement);
    const next = at < 0 ? (by > 0 ? 0 : marked.length - 1) : (at + by + marked.length) % marked.length;
    marked[next].focus();
    marked[next].scrollIntoView({ block: "center" });
  }

  search.addEventListener("input", filter);
  level.addEventListener("input", filter);
  document.getElementById("next").addEventListener("click", () => step(1));
  document.getElementById("previous").addEventListener("click", () => step(-1));
  document.getElementById("controls").addEventListener("submit", (event) => event.preventDefault());
  document.addEventListener("keydown", (event) => {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    const typing = event.target === search || event.target === level;
    if (event.key === "Escape") {
      search.value = "";
      level.value = "0";
      filter();
      search.focus();
    } else if (!typing && event.key === "/") {
      event.preventDefault();
      search.focus();
    } else if (!typing && (event.key === "n" || event.key === "p")) {
      step(event.key === "n" ? 1 : -1);
    }
  });
  filter();
})();
