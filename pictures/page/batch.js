// SPDX-License-Identifier: MIT
"use strict";

// What the page shows follows this script, as JSON: the batch, the layouts of forms, a sheet each, failures, the
// end. A page that was cut off lacks the last of them and shows the others. Texts of sheets only ever become text.

(() => {
  const SVG = "http://www.w3.org/2000/svg";
  const byId = (id) => document.getElementById(id);
  const batch = { title: "", rows: [0, 0], highest: 1, threshold: 0, shades: false, windows: false };
  const layouts = [];
  const sheets = [];
  const failures = [];
  let end = null;

  function element(name, properties = {}, ...children) {
    const made = document.createElement(name);
    Object.assign(made, properties);
    made.append(...children);
    return made;
  }

  // Of what the program has drawn: all texts in it are escaped, and the page's policy lets nothing run.
  function drawn(markup) {
    const parsed = new DOMParser().parseFromString(`<svg xmlns="${SVG}">${markup}</svg>`, "image/svg+xml");
    return document.importNode(parsed.documentElement, true);
  }

  function pictureOf(sheet) {
    const layout = layouts[sheet.layout];
    const picture = drawn(`<use href="#layout${sheet.layout}"/>${layout.legend}${sheet.drawing}`);
    picture.setAttribute("class", "sheet");
    picture.setAttribute("viewBox", `0 0 ${layout.width} ${sheet.height}`);
    picture.setAttribute("role", "img");
    picture.setAttribute("aria-label", sheet.label);
    return picture;
  }

  function take(block) {
    let data;
    try {
      data = JSON.parse(block.textContent);
    } catch {
      return; // cut off
    }
    if (block.dataset.is === "batch") Object.assign(batch, data);
    else if (block.dataset.is === "layout") layouts.push(data);
    else if (block.dataset.is === "sheet") sheets.push(data);
    else if (block.dataset.is === "failure") failures.push(data);
    else if (block.dataset.is === "end") end = data;
  }

  const markCount = (sheet, side) => (sheet.marks[side - 1] ? sheet.marks[side - 1].length / 3 : -1);
  const barcodeOf = (sheet) => sheet.barcodes.filter((text) => text !== "" && text !== "?").join(" ");
  const timingDiffers = (sheet) =>
    sheet.timing.some((count, index) => count >= 0 && batch.rows[index] > 0 && count !== batch.rows[index]);

  const filters = {
    all: () => true,
    blank: (sheet) => sheet.blank,
    rejected: (sheet) => sheet.rejected,
    double: (sheet) => sheet.double > 0,
    barcodeless: (sheet) => barcodeOf(sheet) === "",
    timing: timingDiffers,
  };

  const keys = {
    number: (sheet) => sheet.sheet,
    marks1: (sheet) => markCount(sheet, 1),
    marks2: (sheet) => markCount(sheet, 2),
    timing1: (sheet) => sheet.timing[0],
    timing2: (sheet) => sheet.timing[1],
    barcode: barcodeOf,
    notes: (sheet) => notesOf(sheet).join(", "),
  };

  function notesOf(sheet) {
    const notes = [];
    if (sheet.rejected) notes.push("rejected");
    if (sheet.blank) notes.push("blank");
    if (sheet.double > 0) notes.push(sheet.double === 1 ? "1 double mark" : `${sheet.double} double marks`);
    if (timingDiffers(sheet)) notes.push("timing marks differ");
    if (sheet.printed) notes.push("printed");
    return notes;
  }

  // Sheets

  let shown = [];
  let filter = "all";
  let sorting = { key: "number", down: false };
  const rowOf = new Map();
  const pictures = new IntersectionObserver(
    (entries) => {
      for (const entry of entries) {
        const button = entry.target;
        if (entry.isIntersecting && !button.firstChild) button.append(pictureOf(button.sheet));
        else if (!entry.isIntersecting) button.replaceChildren();
      }
    },
    { rootMargin: "600px" },
  );

  const count = (number) => (number < 0 ? "\u2013" : String(number));
  const short = (text) => (text.length > 60 ? `${text.slice(0, 60)}\u2026` : text);

  function rowFor(sheet) {
    if (rowOf.has(sheet)) return rowOf.get(sheet);
    const button = element("button", { type: "button", sheet });
    button.setAttribute("aria-label", `Show sheet ${sheet.sheet}`);
    button.addEventListener("click", () => view(sheet));
    pictures.observe(button);
    const row = element("tr", {}, element("td", {}, button));
    const cells = [
      count(sheet.sheet), count(markCount(sheet, 1)), count(markCount(sheet, 2)),
      count(sheet.timing[0]), count(sheet.timing[1]), short(sheet.barcodes.filter((text) => text).join(" ")),
    ];
    for (const text of cells) row.append(element("td", { textContent: text }));
    row.append(element("td", { className: "notes", textContent: notesOf(sheet).join(", ") }));
    rowOf.set(sheet, row);
    return row;
  }

  // The rows that are seen come at once, and the others while the page has nothing else to do.
  const FIRST_ROWS = 100;
  const MORE_ROWS = 500;
  let rowsLeft = [];
  let waiting = false;

  function addRows(number) {
    byId("rows").append(...rowsLeft.splice(0, number).map(rowFor));
  }

  function addRowsLater() {
    if (waiting || rowsLeft.length === 0) return;
    waiting = true;
    setTimeout(() => {
      waiting = false;
      addRows(MORE_ROWS);
      addRowsLater();
    }, 30);
  }

  function show() {
    const wanted = byId("search").value.trim().toLowerCase();
    const key = keys[sorting.key];
    const compare = (a, b) => {
      const [left, right] = [key(a), key(b)];
      const order = typeof left === "string" ? left.localeCompare(right, "en", { numeric: true }) : left - right;
      return (sorting.down ? -order : order) || a.sheet - b.sheet;
    };
    shown = sheets.filter(
      (sheet) =>
        filters[filter](sheet) &&
        (wanted === "" || String(sheet.sheet) === wanted || barcodeOf(sheet).toLowerCase().includes(wanted)),
    );
    shown.sort(compare);
    byId("rows").replaceChildren();
    rowsLeft = shown.slice();
    addRows(FIRST_ROWS);
    addRowsLater();
    byId("shown").textContent = `${shown.length} of ${sheets.length} sheets`;
    for (const button of document.querySelectorAll("[data-filter]"))
      button.setAttribute("aria-pressed", String(button.dataset.filter === filter));
    for (const heading of document.querySelectorAll("[data-sort]")) {
      if (heading.dataset.sort === sorting.key)
        heading.setAttribute("aria-sort", sorting.down ? "descending" : "ascending");
      else heading.removeAttribute("aria-sort");
    }
  }

  // One sheet

  let viewed = null;

  function view(sheet) {
    viewed = sheet;
    const place = shown.indexOf(sheet);
    byId("viewer-title").textContent = `Sheet ${sheet.sheet}`;
    byId("picture").replaceChildren(pictureOf(sheet));
    const details = byId("details");
    details.replaceChildren();
    const tell = (name, text) =>
      details.append(element("dt", { textContent: name }), element("dd", { textContent: text }));
    for (const barcode of sheet.barcodes.filter((text) => text)) tell("Barcode", barcode);
    for (const line of sheet.printedLines) tell("Printed", line);
    for (const [name, value] of sheet.record) tell(name, value);
    if (notesOf(sheet).length) tell("What was found", notesOf(sheet).join(", "));
    byId("previous").disabled = place <= 0;
    byId("next").disabled = place < 0 || place + 1 >= shown.length;
    if (!byId("viewer").open) byId("viewer").showModal();
  }

  function step(by) {
    const next = shown[shown.indexOf(viewed) + by];
    if (next) view(next);
  }

  // The batch as a whole

  function tableOf(caption, headings, rows) {
    const table = element("table", {}, element("caption", { className: "unseen", textContent: caption }));
    const heads = headings.map((text) => element("th", { scope: "col", textContent: text }));
    table.append(element("thead", {}, element("tr", {}, ...heads)));
    const lines = rows.map((row) =>
      element("tr", {}, ...row.map((text) => element("td", { textContent: String(text) }))));
    table.append(element("tbody", {}, ...lines));
    return table;
  }

  function showFailures() {
    byId("failures").hidden = failures.length === 0;
    for (const failure of failures) {
      const box = element("div", { className: "failure" });
      box.append(element("h3", { textContent: failure.title || "Failure" }));
      box.append(element("p", { textContent: failure.description }));
      if (failure.cause) box.append(element("p", {}, element("b", { textContent: "Cause: " }), failure.cause));
      if (failure.remedy) box.append(element("p", {}, element("b", { textContent: "What to do: " }), failure.remedy));
      const after = failure.sheets === 0 ? "before the first sheet" : `after sheet ${failure.sheets}`;
      box.append(element("p", { className: "source", textContent: `${after}; ${failure.source}` }));
      byId("failure-list").append(box);
    }
  }

  function cellCounts(side) {
    const counts = new Map();
    for (const sheet of sheets) {
      const marks = sheet.marks[side - 1] ?? [];
      for (let i = 0; i < marks.length; i += 3) {
        const cell = marks[i] * 65536 + marks[i + 1];
        counts.set(cell, (counts.get(cell) ?? 0) + 1);
      }
    }
    return counts;
  }

  function showCells() {
    if (!layouts.length) {
      byId("cells").hidden = true;
      return;
    }
    const index = layouts.reduce((best, layout, i) => (layout.height > layouts[best].height ? i : best), 0);
    const layout = layouts[index];
    let markup = `<use href="#layout${index}"/>`;
    const most = [];
    for (const side of layout.sides) {
      const steps = ["", "", "", "", ""];
      let always = "";
      for (const [cell, times] of cellCounts(side.side)) {
        const row = Math.floor(cell / 65536);
        const column = cell % 65536;
        const shade = Math.min(4, Math.floor(((times - 1) * 5) / sheets.length));
        steps[shade] += `M${column * 10 - 9.5} ${row * 10 - 5}h9`;
        if (times === sheets.length && sheets.length > 1) always += `M${column * 10 - 10} ${row * 10 - 10}h10v10h-10z`;
        most.push([side.side, row, column, times]);
      }
      markup += `<g transform="translate(${side.x} ${side.y})">`;
      steps.forEach((path, shade) => { if (path) markup += `<path class="heat heat${shade + 1}" d="${path}"/>`; });
      markup += `${always ? `<path class="always" d="${always}"/>` : ""}</g>`;
    }
    const picture = drawn(markup);
    picture.setAttribute("class", "sheet");
    picture.setAttribute("viewBox", `0 0 ${layout.width} ${layout.height}`);
    picture.setAttribute("role", "img");
    picture.setAttribute("aria-label", "How often each cell is marked; the table below has the cells marked most");
    byId("heat").replaceChildren(picture);

    most.sort((a, b) => b[3] - a[3] || a[0] - b[0] || a[1] - b[1] || a[2] - b[2]);
    const always = most.filter((cell) => cell[3] === sheets.length).length;
    const text = sheets.length < 2 ? "" : always === 0 ? "No cell is marked on every sheet." :
      always === 1 ? "1 cell is marked on every sheet." : `${always} cells are marked on every sheet.`;
    const dead = batch.cells.filter(([side, row, column]) =>
      !most.some((cell) => cell[0] === side && cell[1] === row && cell[2] === column));
    byId("suspects").append(element("p", { textContent: text }));
    if (batch.cells.length)
      byId("suspects").append(element("p", { textContent: dead.length === 0
        ? "Each cell of the read windows is marked on some sheet."
        : `${dead.length} of the ${batch.cells.length} cells of the read windows are never marked: ` +
          dead.slice(0, 20).map(([side, row, column]) => `side ${side} row ${row} column ${column}`).join(", ") +
          (dead.length > 20 ? "\u2026" : "") }));
    byId("suspects").append(tableOf("The cells that are marked most", ["Side", "Row", "Column", "Marked on"],
      most.slice(0, 10).map(([side, row, column, times]) => [side, row, column, `${times} of ${sheets.length} sheets`])));
  }

  function showValues() {
    const counts = new Map();
    for (const sheet of sheets)
      for (const marks of sheet.marks)
        for (let i = 2; marks && i < marks.length; i += 3) counts.set(marks[i], (counts.get(marks[i]) ?? 0) + 1);
    if (!batch.shades || counts.size === 0) {
      byId("histogram").append(element("p", { textContent: batch.shades || counts.size === 0
        ? "No marks were read." : "This model says of a cell only whether it is marked." }));
      return;
    }
    const [width, height, bottom] = [600, 220, 190];
    const highest = Math.max(batch.highest, ...counts.keys());
    const lowest = Math.min(0, ...counts.keys());
    const place = (value) => 20 + ((value - lowest) * (width - 40)) / (highest - lowest + 1);
    const tallest = Math.max(...counts.values());
    const wide = Math.max(1, (width - 40) / (highest - lowest + 1) - 2);
    let markup = "";
    for (const [value, times] of counts) {
      const tall = Math.max(1, (times * 150) / tallest);
      markup += `<rect class="${value < batch.threshold ? "faint" : "bars"}" x="${place(value) + 1}" y="${bottom - tall}" ` +
        `width="${wide}" height="${tall}"/>`;
    }
    const between = Math.max(1, Math.ceil((highest - lowest) / 15));
    for (let value = lowest; value <= highest; value += between)
      markup += `<text class="axis" x="${place(value) + wide / 2 + 1}" y="${bottom + 16}">${value}</text>`;
    markup += `<path class="limit" d="M${place(batch.threshold)} 24V${bottom}"/>` +
      `<text class="limit-text" x="${place(batch.threshold) + 4}" y="20">threshold ${batch.threshold}</text>`;
    const picture = drawn(markup);
    picture.setAttribute("viewBox", `0 0 ${width} ${height}`);
    picture.setAttribute("role", "img");
    picture.setAttribute("aria-label", "How many marks have which value; the table below has the numbers");
    const rows = [...counts].sort((a, b) => a[0] - b[0]);
    byId("histogram").append(picture, element("details", {}, element("summary", { textContent: "The numbers" }),
      tableOf("How many marks have which value", ["Value", "Marks"], rows)));
  }

  function showTiming() {
    const rows = [];
    for (const side of [1, 2]) {
      const counts = new Map();
      for (const sheet of sheets) {
        const number = sheet.timing[side - 1];
        if (number >= 0) counts.set(number, (counts.get(number) ?? 0) + 1);
      }
      const form = batch.rows[side - 1];
      for (const [number, times] of [...counts].sort((a, b) => b[1] - a[1]))
        rows.push([side, number, form || "\u2013", times, form && number !== form ? "differs from the form" : ""]);
    }
    byId("timing-counts").append(rows.length === 0
      ? element("p", { textContent: "This reader does not count timing marks." })
      : tableOf("Timing marks against the form", ["Side", "Timing marks", "Rows of the form", "Sheets", ""], rows));
  }

  function summary() {
    const parts = [`${sheets.length} ${sheets.length === 1 ? "sheet" : "sheets"}`];
    for (const [name, text] of [["rejected", "rejected"], ["blank", "blank"], ["double", "with double marks"]]) {
      const number = sheets.filter(filters[name]).length;
      if (number) parts.push(`${number} ${text}`);
    }
    if (failures.length) parts.push(failures.length === 1 ? "1 failure" : `${failures.length} failures`);
    if (!end) parts.push("the batch was cut off: this page has no end");
    else if (!end.started) parts.push("the reader did not start");
    return parts.join(", ");
  }

  function start() {
    document.querySelectorAll("script[data-is]").forEach(take);
    layouts.forEach((layout, index) => {
      byId("layouts").append(drawn(`<g id="layout${index}" class="sheet">${layout.drawing}</g>`));
    });
    if (batch.title) byId("title").textContent = document.title = batch.title;
    byId("summary").textContent = summary();
    document.querySelector('[data-filter="double"]').disabled = !batch.windows;
    showFailures();
    show();
    showCells();
    showValues();
    showTiming();

    for (const button of document.querySelectorAll("[data-filter]"))
      button.addEventListener("click", () => { filter = button.dataset.filter; show(); });
    for (const heading of document.querySelectorAll("[data-sort]"))
      heading.firstElementChild.addEventListener("click", () => {
        const key = heading.dataset.sort;
        sorting = { key, down: sorting.key === key && !sorting.down };
        show();
      });
    addEventListener("beforeprint", () => addRows(rowsLeft.length));
    byId("search").addEventListener("input", show);
    byId("previous").addEventListener("click", () => step(-1));
    byId("next").addEventListener("click", () => step(1));
    byId("close").addEventListener("click", () => byId("viewer").close());
    byId("viewer").addEventListener("keydown", (event) => {
      if (event.key === "ArrowLeft") step(-1);
      else if (event.key === "ArrowRight") step(1);
    });
  }

  document.addEventListener("DOMContentLoaded", start);
})();
