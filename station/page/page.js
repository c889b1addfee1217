// SPDX-License-Identifier: MIT
"use strict";

// The station sends its state and each sheet as events. Texts of readers, sheets and batches only ever become text;
// pictures are images, in which nothing runs.

(() => {
  const LAST_SHEETS = 24;
  const NEXT_ATTEMPT = 5000;
  const BETWEEN_BATCHES = 5000;

  const byId = (id) => document.getElementById(id);

  function element(name, properties = {}, ...children) {
    const made = document.createElement(name);
    Object.assign(made, properties);
    made.append(...children);
    return made;
  }

  const short = (text, most = 60) => (text.length > most ? `${text.slice(0, most)}\u2026` : text);
  const cell = (text, className = "") => element("td", { className, textContent: text });
  const plural = (number, one, many) => `${number} ${number === 1 ? one : many}`;

  function time(text) {
    if (!text) return element("time");
    const moment = new Date(text);
    const isToday = moment.toDateString() === new Date().toDateString();
    const shown = isToday ? moment.toLocaleTimeString("en-GB") : moment.toLocaleString("en-GB");
    return element("time", { dateTime: text, textContent: shown, title: moment.toLocaleString("en-GB") });
  }

  // Sheets

  const barcodeOf = (sheet) => sheet.barcodes.filter((text) => text !== "").join(" ");
  const marksOf = (sheet) => sheet.marks.filter((count) => count >= 0).join(" + ");

  function notesOf(sheet) {
    const notes = [];
    if (sheet.rejected) notes.push("rejected");
    if (sheet.blank) notes.push("blank");
    if (sheet.printed.length) notes.push("printed");
    return notes.join(", ");
  }

  function pictureOf(sheet) {
    return element("img", { src: `pictures/${sheet.id}.svg`, alt: "", loading: "lazy" });
  }

  function buttonFor(sheet, list, ...children) {
    const button = element("button", { type: "button" }, pictureOf(sheet), ...children);
    button.setAttribute("aria-label", `Show sheet ${sheet.sheet} of ${sheet.reader}`);
    button.addEventListener("click", () => view(sheet, list()));
    return button;
  }

  // One sheet

  let viewed = { sheet: null, list: [] };

  function view(sheet, list) {
    viewed = { sheet, list };
    const place = list.indexOf(sheet);
    byId("viewer-title").textContent = `Sheet ${sheet.sheet} of ${sheet.reader}`;
    byId("picture").src = `pictures/${sheet.id}.svg`;
    byId("picture").alt = `Sheet ${sheet.sheet}: ${marksOf(sheet)} marks${notesOf(sheet) ? `, ${notesOf(sheet)}` : ""}`;
    const details = byId("details");
    details.replaceChildren();
    const tell = (name, value) => details.append(element("dt", { textContent: name }), element("dd", {}, value));
    tell("Batch", sheet.batch);
    tell("Time", time(sheet.time));
    tell("Marks", marksOf(sheet));
    for (const barcode of sheet.barcodes.filter((text) => text !== "")) tell("Barcode", barcode);
    for (const line of sheet.printed) tell("Printed", line);
    for (const [name, value] of Object.entries(sheet.record ?? {})) tell(name, String(value ?? ""));
    if (notesOf(sheet)) tell("What was found", notesOf(sheet));
    byId("previous").disabled = place <= 0;
    byId("next").disabled = place < 0 || place + 1 >= list.length;
    if (!byId("viewer").open) byId("viewer").showModal();
  }

  function step(by) {
    const next = viewed.list[viewed.list.indexOf(viewed.sheet) + by];
    if (next) view(next, viewed.list);
  }

  // The last sheets

  let last = [];

  function addSheet(sheet) {
    last.unshift(sheet);
    const name = element("span", { className: "name", textContent: `${sheet.reader} \u00b7 ${sheet.sheet}` });
    const item = element("li", {}, buttonFor(sheet, () => last.slice(),
      name, element("span", {}, time(sheet.time)),
      element("span", { textContent: short(barcodeOf(sheet)) || "\u00a0" }),
      element("span", { className: "notes", textContent: notesOf(sheet) || "\u00a0" })));
    byId("last").prepend(item);
    while (last.length > LAST_SHEETS) {
      last.pop();
      byId("last").lastElementChild.remove();
    }
    byId("none-yet").hidden = true;
    updateBatchesLater();
  }

  function forgetLast() {
    last = [];
    byId("last").replaceChildren();
    byId("none-yet").hidden = false;
  }

  // The readers

  function problemRow(reader) {
    const isOver = reader.state !== "failed";
    const box = element("div", { className: isOver ? "failure over" : "failure" },
      element("p", {}, element("b", { textContent: isOver ? "Last failure, over: " : "Failure: " }), reader.problem));
    if (reader.advice) box.append(element("p", {}, element("b", { textContent: "What to do: " }), reader.advice));
    return element("tr", { className: "problem" }, element("td", { colSpan: 9 }, box));
  }

  function readerRows(reader) {
    const row = element("tr", {},
      element("th", { scope: "row", textContent: reader.name }),
      cell(reader.state, `state ${reader.state}`),
      element("td", {}, time(reader.since)),
      cell(String(reader.sheets), "number"),
      cell(String(reader.rejected), "number"),
      cell(String(reader.sheetsPerMinute), "number"),
      element("td", {}, time(reader.lastSheet)),
      cell(short(reader.batch, 40), "text"),
      cell(reader.model));
    return reader.problem ? [row, problemRow(reader)] : [row];
  }

  function setText(target, text) {
    if (target.textContent !== text) target.textContent = text; // a screen reader says what is set
  }

  // The stream

  function showStream(stream) {
    byId("stream").hidden = !stream;
    if (!stream) return;
    const rest = stream.unsent < 0 ? "nobody can say what it does not have yet"
      : stream.unsent === 0 ? "it has all sheets"
      : `${plural(stream.unsent, "sheet or report", "sheets and reports")} not sent yet`;
    setText(byId("stream"), `Stream: ${stream.up ? "up" : "down"}, ${rest}${stream.problem ? `. ${stream.problem}` : ""}`);
    byId("stream").className = stream.problem ? "warning" : "";
  }

  let readerNames = [];

  function showState(state) {
    document.title = byId("title").textContent = `Station ${state.station}`;
    const failed = state.readers.filter((reader) => reader.state === "failed").length;
    const parts = [plural(state.readers.length, "reader", "readers")];
    for (const name of ["reading", "idle", "starting", "storing", "failed", "stopped"]) {
      const count = state.readers.filter((reader) => reader.state === name).length;
      if (count) parts.push(`${count} ${name}`);
    }
    setText(byId("summary"), parts.join(", "));
    byId("summary").className = failed ? "warning" : "";
    byId("trouble").hidden = state.storeProblem === "";
    setText(byId("trouble"), state.storeProblem);
    showStream(state.stream);
    byId("readers").tBodies[0].replaceChildren(...state.readers.flatMap(readerRows));
    const names = state.readers.map((reader) => reader.name);
    if (names.join() !== readerNames.join()) showReaderNames(names);
  }

  function showReaderNames(names) {
    readerNames = names;
    const select = byId("search").elements.reader;
    const chosen = select.value;
    select.replaceChildren(element("option", { value: "", textContent: "All" }),
      ...names.map((name) => element("option", { value: name, textContent: name })));
    select.value = names.includes(chosen) ? chosen : "";
  }

  // The store

  let found = [];
  let next = 0;

  function rowFor(sheet) {
    return element("tr", {},
      element("td", {}, buttonFor(sheet, () => found)),
      cell(sheet.reader),
      cell(short(sheet.batch, 40), "text"),
      cell(String(sheet.sheet), "number"),
      element("td", {}, time(sheet.time)),
      cell(marksOf(sheet), "number"),
      cell(short(barcodeOf(sheet)), "text"),
      cell(notesOf(sheet), "notes"));
  }

  async function ask(path) {
    const answer = await fetch(path);
    if (!answer.ok) throw new Error((await answer.text()).trim());
    return answer.json();
  }

  // Only the answer to what was asked last is shown.
  let asked = 0;

  async function search(before) {
    const mine = ++asked;
    const fields = new FormData(byId("search"));
    const query = new URLSearchParams();
    for (const [name, value] of fields) if (value !== "" && name !== "since") query.set(name, value);
    if (fields.get("since")) query.set("since", new Date(fields.get("since")).toISOString());
    if (before) query.set("before", String(before));
    try {
      const answer = await ask(`sheets?${query}`);
      if (mine !== asked) return;
      if (!before) {
        found = [];
        byId("rows").tBodies[0].replaceChildren();
      }
      found = found.concat(answer.sheets);
      next = answer.next;
      byId("rows").tBodies[0].append(...answer.sheets.map(rowFor));
      byId("rows").hidden = found.length === 0;
      byId("more").hidden = next === 0;
      byId("found").textContent = found.length === 0 && next === 0 ? "No sheet was found."
        : `${plural(found.length, "sheet", "sheets")}${next === 0 ? "" : ", and there may be more"}`;
    } catch (error) {
      if (mine === asked) byId("found").textContent = error.message;
    }
  }

  function batchRow(batch) {
    const query = new URLSearchParams({ reader: batch.reader, batch: batch.batch });
    const link = element("a", { href: `batch.csv?${query}`, textContent: "CSV", download: "" });
    link.setAttribute("aria-label", `CSV of batch ${short(batch.batch, 40)} of ${batch.reader}`);
    return element("tr", {}, cell(batch.reader), cell(short(batch.batch, 80), "text"),
      cell(String(batch.sheets), "number"), element("td", {}, link));
  }

  let batchesWait = false;

  async function updateBatches() {
    try {
      const batches = await ask("batches");
      byId("batches").tBodies[0].replaceChildren(...batches.map(batchRow));
      const names = [...new Set(batches.map((batch) => batch.batch))];
      byId("batch-names").replaceChildren(...names.map((name) => element("option", { value: name })));
    } catch {
      // they come with the next sheet
    }
  }

  function updateBatchesLater() {
    if (batchesWait) return;
    batchesWait = true;
    setTimeout(() => {
      batchesWait = false;
      updateBatches();
    }, BETWEEN_BATCHES);
  }

  // The events

  function watch() {
    const events = new EventSource("events");
    events.addEventListener("open", () => {
      forgetLast(); // they come again
      byId("trouble").hidden = true;
    });
    events.addEventListener("state", (event) => showState(JSON.parse(event.data)));
    events.addEventListener("sheet", (event) => addSheet(JSON.parse(event.data)));
    events.addEventListener("error", () => {
      byId("trouble").hidden = false;
      setText(byId("trouble"), events.readyState === EventSource.CLOSED
        ? "The station allows no further page; close another one. This page tries again."
        : "The station does not answer; the data on this page is old. This page tries again.");
      if (events.readyState === EventSource.CLOSED) setTimeout(watch, NEXT_ATTEMPT);
    });
  }

  byId("search").addEventListener("submit", (event) => {
    event.preventDefault();
    search(0);
  });
  byId("more").addEventListener("click", () => search(next));
  byId("previous").addEventListener("click", () => step(-1));
  byId("next").addEventListener("click", () => step(1));
  byId("close").addEventListener("click", () => byId("viewer").close());
  byId("viewer").addEventListener("keydown", (event) => {
    if (event.key === "ArrowLeft") step(-1);
    else if (event.key === "ArrowRight") step(1);
  });
  watch();
  updateBatches();
})();
