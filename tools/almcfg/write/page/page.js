"use strict";
(() => {
  const kTallest = 15e6;   // Pixels; browsers lay out nothing much higher.
  const kMargin = 10;      // Rows drawn above and below those in view.
  const kMostPrinted = 5000;

  const [rows, table, head, body, search, level, byCalls, detail] =
    ["#rows", "table", "thead", "tbody", "#search", "#level", "#calls", "#detail"].map((name) => document.querySelector(name));
  const data = document.getElementById("data");
  const { files, calls, lines } = JSON.parse(data.textContent);
  data.remove();
  const severities = ["", "note", "warning", "error"];
  const cellNames = ["key1", "key2", "key3", "number", "value", "calls"];
  const cellTitles = ["Key 1", "Key 2", "Key 3", "Number", "Value", "Calls"];
  const grouped = (number) => number.toLocaleString("en");

  // One object for each row: an entry of the table in force, or a line that has findings and no entry.
  const all = lines.map(([file, line, rank, findings, ...cells]) => {
    const count = cells[5];
    if (count !== undefined) cells[5] = grouped(count);
    const name = files.length > 1 ? files[file].name : "";
    const source = name && line ? `${name}:${line}` : name || line || "";
    const words = findings.flatMap(([severity, ...texts]) => [severities[severity], ...texts]);
    // A word of the search has no line feed, so it never matches across cells.
    return { file, line, rank, findings, cells, count, name, source: String(source), text: [...cells, source, ...words].join("\n").toLowerCase() };
  });
  let view = [];         // The rows that match.
  let selected = null;   // One of them, or null.
  let rowHeight = 30;    // Measured once a row is drawn.
  let isPrinting = false;
  let drawn = "";

  function element(name, attributes, ...children) {
    const made = document.createElement(name);
    for (const [attribute, value] of Object.entries(attributes)) made.setAttribute(attribute, value);
    made.append(...children);
    return made;
  }

  const findingTexts = ([severity, code, message, hint]) =>
    [element("span", { class: "badge" }, severities[severity]), ` ${message} [${code}] `,
     element("span", { class: "hint" }, hint), " "];

  function makeRow(row, index) {
    const cell = (name, ...content) => element("td", { role: "cell", class: name }, ...content);
    const cells = row.cells.length === 1
      ? [element("td", { role: "cell", class: "line", "aria-colspan": calls ? 6 : 5, colspan: calls ? 6 : 5 }, row.cells[0])]
      : row.cells.map((text, at) => cell(cellNames[at], text));
    const findings = row.findings.map((finding) => element("span", { class: "one" }, ...findingTexts(finding)));
    const made = element("tr", { role: "row", class: severities[row.rank], "aria-rowindex": index + 2 },
      ...cells, cell("source", element("span", {}, row.name), row.source.slice(row.name.length)), cell("finding", ...findings));
    if (row === selected) made.setAttribute("aria-current", "true");
    return made;
  }

  // Where the window is: the view's height in rows, the row at its top (with a fraction), and the height of all rows,
  // which is less than their sum when that is more than a browser lays out; scrolling is then faster by `scale`.
  function measure() {
    const height = Math.max(rows.clientHeight - head.offsetHeight, rowHeight);
    const whole = view.length * rowHeight;
    const total = Math.min(whole, kTallest);
    const scale = total > height ? (whole - height) / (total - height) : 1;
    return { visible: height / rowHeight, first: rows.scrollTop * scale / rowHeight, total, scale };
  }

  // The rows to draw, from `start` to `end`, and the place of the first of them in pixels.
  function range() {
    if (isPrinting) return { start: 0, end: Math.min(view.length, kMostPrinted), top: 0, bottom: 0 };
    const { visible, first, total } = measure();
    const above = rows.scrollTop / rowHeight;             // How many rows fit above the top of the view,
    const below = (total - rows.scrollTop) / rowHeight;   // and how many below it.
    const wanted = Math.floor((first - kMargin) / kMargin) * kMargin;
    const start = Math.max(0, wanted, Math.floor(first - above + 0.01));
    const end = Math.min(view.length, wanted + Math.ceil(visible) + 3 * kMargin, Math.ceil(first + below - 0.01));
    const top = rows.scrollTop - (first - start) * rowHeight;   // Negative when the first row starts above the scrolled area.
    return { start, end, top, bottom: Math.max(0, total - top - (end - start) * rowHeight) };
  }

  function draw() {
    const { start, end, top, bottom } = range();
    const key = [start, end, Math.round(top), isPrinting].join();
    if (key === drawn) return;
    drawn = key;
    body.style.padding = `${Math.max(0, top)}px 0 ${bottom}px`;
    body.style.marginTop = `${Math.min(0, top)}px`;
    body.replaceChildren(...view.slice(start, end).map((row, at) => makeRow(row, start + at)));
    const height = body.firstChild ? body.firstChild.getBoundingClientRect().height : rowHeight;
    if (!isPrinting && Math.abs(height - rowHeight) > 0.01) {
      rows.scrollTop *= height / rowHeight;   // The same row stays at the top.
      rowHeight = height;
      redraw();
    }
  }

  function redraw() {
    drawn = "";
    draw();
  }

  // Every word must occur in a cell.
  function filter() {
    const words = search.value.toLowerCase().split(/\s+/).filter(Boolean);
    const least = Number(level.value);
    const fitsCalls = { "": () => true, asked: ({ count }) => count > 0, never: ({ count }) => count === 0 }[byCalls.value];
    view = all.filter((row) => row.rank >= least && fitsCalls(row) && words.every((word) => row.text.includes(word)));
    document.getElementById("count").textContent = `${grouped(view.length)} of ${grouped(all.length)} rows`;
    document.getElementById("none").hidden = view.length > 0;
    table.setAttribute("aria-rowcount", view.length + 1);
    rows.scrollTop = 0;
    select(view.includes(selected) ? selected : null);
  }

  function showDetail() {
    if (!selected) return detail.replaceChildren();
    const { file, line, cells, findings } = selected;
    const titles = cells.length === 1 ? ["No key of this line is in force:"] : cellTitles;
    const parts = [["Line", `${files[file].path}${line ? ":" + line : ""}`], ...cells.map((text, at) => [titles[at], text])];
    detail.replaceChildren(
      element("dl", {}, ...parts.map(([title, text]) =>
        element("div", {}, element("dt", {}, title + " "), element("dd", {}, text)))),
      element("ul", {}, ...findings.map((finding) =>
        element("li", { class: severities[finding[0]] }, ...findingTexts(finding)))));
    detail.scrollTop = 0;
  }

  // Selects a row of the view, or none with null, and scrolls to it unless it is in view.
  function select(row) {
    selected = row;
    showDetail();
    const { visible, first, scale } = measure();
    const at = view.indexOf(row);
    if (at >= 0 && (at < first || at + 1 > first + visible)) {
      rows.scrollTop = (at - (visible - 1) / 2) * rowHeight / scale;
    }
    redraw();
  }

  // The next (1) or previous (-1) row that `fits`, starting over at the ends.
  function step(by, fits) {
    const from = view.indexOf(selected);
    let at = from < 0 && by < 0 ? view.length : from;
    for (let tried = 0; tried < view.length; ++tried) {
      at = (at + by + view.length) % view.length;
      if (fits(view[at])) return select(view[at]);
    }
  }
  const stepFinding = (by) => step(by, (row) => row.rank > 0);
  const stepRow = (by) => step(by, () => true);

  function clear() {
    search.value = "";
    filter();
  }

  function escape() {
    if (document.activeElement === search) {
      return search.value ? clear() : rows.focus();
    }
    level.value = "0";
    byCalls.value = "";
    selected = null;
    clear();
  }

  const scrollPage = (by) => rows.scrollBy(0, by * (rows.clientHeight - head.offsetHeight - rowHeight));
  const keysAnywhere = {
    ArrowDown: () => stepRow(1), ArrowUp: () => stepRow(-1), Escape: escape,
    PageDown: () => scrollPage(1), PageUp: () => scrollPage(-1),
  };
  const keysInSearch = { Enter: () => stepFinding(1), "Shift+Enter": () => stepFinding(-1) };
  const keysOutside = {
    n: () => stepFinding(1), p: () => stepFinding(-1), "/": () => search.select(),
    Home: () => { rows.scrollTop = 0; }, End: () => { rows.scrollTop = rows.scrollHeight; },
  };

  document.addEventListener("keydown", (event) => {
    const { key, target, ctrlKey, altKey, metaKey, isComposing } = event;
    if (ctrlKey || altKey || metaKey || isComposing) return;
    if ((target === level || target === byCalls) && key !== "Escape") return;
    if (target.closest("ol, #detail") && /^(Arrow|Page|Home|End)/.test(key)) return;   // They scroll themselves.
    const keys = { ...keysAnywhere, ...(target === search ? keysInSearch : keysOutside) };
    const act = keys[(key === "Enter" && event.shiftKey ? "Shift+" : "") + key];
    if (!act) return;
    event.preventDefault();
    act();
  });
  search.addEventListener("input", filter);
  level.addEventListener("input", filter);
  byCalls.addEventListener("input", filter);
  document.getElementById("next").addEventListener("click", () => stepFinding(1));
  document.getElementById("previous").addEventListener("click", () => stepFinding(-1));
  document.getElementById("controls").addEventListener("submit", (event) => event.preventDefault());
  rows.addEventListener("scroll", draw);
  body.addEventListener("click", ({ target }) => {
    const row = target.closest("tr");
    if (row) select(view[row.getAttribute("aria-rowindex") - 2]);
  });
  new ResizeObserver(redraw).observe(rows);
  window.addEventListener("beforeprint", () => {
    isPrinting = true;
    const rest = document.getElementById("rest");
    rest.hidden = view.length <= kMostPrinted;
    rest.textContent = `The first ${grouped(kMostPrinted)} of ${grouped(view.length)} rows. Search to print others.`;
    redraw();
  });
  window.addEventListener("afterprint", () => {
    isPrinting = false;
    document.getElementById("rest").hidden = true;
    redraw();
  });

  // Columns are as wide as their longest text, up to a limit, and shrink before anything scrolls sideways.
  const widest = (textOf) => all.reduce((most, row) => Math.max(most, (textOf(row) || "").length), 0);
  if (calls) {
    byCalls.hidden = false;
    table.className = "counted";
    head.querySelector(".value").after(element("th", { role: "columnheader", class: "calls" }, "Calls"));
  }
  const limits = [32, 32, 40, 12, 12, ...(calls ? [12] : [])];
  const widths = limits.map((limit, at) => widest((row) => row.cells.length > 1 && row.cells[at]))
    .map((width, at) => Math.min(Math.max(width, 8), limits[at]));
  widths.push(Math.min(Math.max(widest((row) => row.source), 5), 32));
  table.style.setProperty("--columns",
    widths.map((width) => `minmax(0, calc(${width}ch + 1.3rem))`).join(" ") + " minmax(30%, 1fr)");
  filter();
})();
