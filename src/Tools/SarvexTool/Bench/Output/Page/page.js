// What all pages share: small helpers, tables, and the way through the page. Texts of the data reach the
// document as text nodes and attribute values only.

const data = JSON.parse(document.getElementById("data").textContent);
const MOST_PRINTED_ROWS = 1000;
const byText = new Intl.Collator("en", {numeric: true}).compare;

// ---- Small helpers --------------------------------------------------------------------------------

// An element with attributes (a function is a listener) and children, which are elements or texts.
function make(tag, attributes, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes || {})) {
    if (typeof value === "function")
      element.addEventListener(name, value);
    else if (value === true)
      element.setAttribute(name, "");
    else if (value !== false && value !== null && value !== undefined)
      element.setAttribute(name, value);
  }
  element.append(...children.filter(child => child !== null && child !== undefined));
  return element;
}

function byId(id) {
  return document.getElementById(id);
}

function counted(count, one, many) {
  return count.toLocaleString("en") + " " + (count === 1 ? one : many || one + "s");
}

function withSign(change) {
  return change === null ? null : change.startsWith("-") || change === "0" ? change : "+" + change;
}

function colour(name) {
  return getComputedStyle(document.documentElement).getPropertyValue(name).trim();
}

function groupBy(list, keyOf) {
  const groups = new Map();
  for (const row of list) {
    const key = keyOf(row);
    if (!groups.has(key))
      groups.set(key, []);
    groups.get(key).push(row);
  }
  return [...groups.values()];
}

// ---- Tables ---------------------------------------------------------------------------------------

// A column: its title, the text of a row's cell (null: unknown), and how rows are ordered by it.
function textColumn(title, get, more) {
  return {title, get, order: (left, right) => byText(left, right), ...more};
}

function numberColumn(title, get, more) {
  return {title, get, order: (left, right) => Number(left) - Number(right), isFigure: true, ...more};
}

// A table that keeps only the rows in the document that can be seen, so that its speed does not depend
// on their number. Its head sorts it.
class DataTable {
  constructor(title, columns, all) {
    this.columns = columns;
    this.all = all;
    this.shown = all;
    this.sorted = null;
    this.current = null;
    this.rowHeight = 30;
    this.body = make("tbody");
    this.table = make("table", {"aria-label": title, "aria-colcount": columns.length}, this.makeWidths(), this.makeHead(), this.body);
    this.scroller = make("div", {class: "scroller", tabindex: 0, role: "region", "aria-label": title + ", scrollable", scroll: () => this.askForRender()}, this.table);
    this.printNote = make("p", {class: "print-note note"});
    this.root = make("div", {}, this.scroller, this.printNote);
    new ResizeObserver(() => this.askForRender()).observe(this.scroller);
    this.render();
  }

  // As wide as the longest text, within reason: the columns must not move while rows come and go.
  makeWidths() {
    const group = make("colgroup");
    for (const column of this.columns) {
      let longest = Math.max(...column.title.split(" ").map(word => word.length + 2));
      for (const row of this.all)
        longest = Math.max(longest, (column.get(row) || column.nullText || "").length + (column.extra || 0));
      group.append(make("col", {style: `width: calc(${Math.min(longest, column.isWide ? 48 : column.widest || 24)}ch + 20px)`}));
    }
    return group;
  }

  makeHead() {
    this.heads = this.columns.map(column => make("th", {scope: "col", class: column.isFigure ? "figure" : null, "data-title": column.title},
      make("button", {type: "button", click: () => this.sortBy(column)}, column.title)));
    return make("thead", {}, make("tr", {"aria-rowindex": 1}, ...this.heads));
  }

  // Ascending at first, the other way round when asked again. Rows without a value come last.
  sortBy(column) {
    const isDescending = this.sorted && this.sorted.column === column && !this.sorted.isDescending;
    this.sorted = {column, isDescending};
    for (const [index, head] of this.heads.entries()) {
      if (this.columns[index] === column)
        head.setAttribute("aria-sort", isDescending ? "descending" : "ascending");
      else
        head.removeAttribute("aria-sort");
    }
    this.setRows(this.shown);
    this.scroller.scrollTop = 0;
  }

  setRows(list) {
    this.shown = this.sorted ? this.inOrder(list) : list;
    this.render();
  }

  // Equal texts are compared once: a table has many rows and few different texts.
  inOrder(list) {
    const {column, isDescending} = this.sorted;
    const texts = [...new Set(list.map(column.get))].filter(text => text !== null).sort(column.order);
    const places = new Map(texts.map((text, place) => [text, isDescending ? -place : place]));
    const placeOf = row => {
      const text = column.get(row);
      return text === null ? Infinity : places.get(text);
    };
    return list.map((row, index) => ({row, index, place: placeOf(row)}))
      .sort((left, right) => left.place === right.place ? left.index - right.index : left.place - right.place)
      .map(entry => entry.row);
  }

  askForRender() {
    if (this.isAsked)
      return;
    this.isAsked = true;
    requestAnimationFrame(() => {
      this.isAsked = false;
      this.render();
    });
  }

  render() {
    const total = this.shown.length;
    const height = this.scroller.clientHeight || 760;
    const spare = 10;
    const fitting = Math.ceil(height / this.rowHeight) + 2 * spare;
    let first = Math.max(0, Math.floor(this.scroller.scrollTop / this.rowHeight) - spare);
    first = Math.min(first, Math.max(0, total - fitting));
    this.fill(first, Math.min(total, first + fitting));
    this.measure();
  }

  fill(first, end) {
    this.table.setAttribute("aria-rowcount", this.shown.length + 1);
    const focused = this.body.contains(document.activeElement) ? document.activeElement.dataset.place : undefined;
    const made = this.shown.slice(first, end).map((row, index) => this.rowOf(row, first + index));
    if (this.shown.length === 0)
      made.push(make("tr", {}, make("td", {class: "nothing", colspan: this.columns.length}, "Nothing to show.")));
    this.body.replaceChildren(this.spaceOf(first), ...made, this.spaceOf(this.shown.length - end));
    const again = focused === undefined ? null : this.body.querySelector(`[data-place="${focused}"]`);
    if (again)
      again.focus({preventScroll: true});
  }

  spaceOf(count) {
    return make("tr", {class: "space", "aria-hidden": "true"},
      make("td", {colspan: this.columns.length, style: `height: ${count * this.rowHeight}px`}));
  }

  rowOf(row, place) {
    const isCurrent = row === this.current;
    return make("tr", {"aria-rowindex": place + 2, "data-place": place, tabindex: -1, class: isCurrent ? "current" : null,
      "aria-current": isCurrent ? "true" : null}, ...this.columns.map(column => this.cellOf(column, row)));
  }

  cellOf(column, row) {
    const text = column.get(row);
    const shown = text === null ? column.nullText || "" : text;
    return make("td", {class: (column.isFigure ? "figure" : column.isWide ? "wide" : "") + (text === null ? " unknown" : ""),
      title: shown.length > 20 ? shown : null}, column.cell ? column.cell(row) : shown);
  }

  // The height that a row really has: the reader may have set larger letters.
  measure() {
    const row = this.body.querySelector("tr[data-place]");
    const height = row ? row.getBoundingClientRect().height : 0;
    if (height > 8 && Math.abs(height - this.rowHeight) > 0.5 && !this.isPrinting) {
      this.rowHeight = height;
      this.askForRender();
    }
  }

  // Scrolls to a row that is shown and marks it.
  reveal(row) {
    const place = this.shown.indexOf(row);
    if (place < 0)
      return;
    this.current = row;
    this.root.scrollIntoView({block: "nearest"});
    this.scroller.scrollTop = Math.max(0, place * this.rowHeight - this.scroller.clientHeight / 2);
    this.render();
    this.body.querySelector(`[data-place="${place}"]`).focus({preventScroll: true});
  }

  beforePrint() {
    this.isPrinting = true;
    const isTooLong = this.shown.length > MOST_PRINTED_ROWS;
    this.printNote.textContent = isTooLong
      ? `${counted(this.shown.length, "row")}: too many to print. Filter them to ${counted(MOST_PRINTED_ROWS, "row")} or fewer to have them on paper.` : "";
    this.scroller.hidden = isTooLong;
    if (!isTooLong)
      this.fill(0, this.shown.length);
  }

  afterPrint() {
    this.isPrinting = false;
    this.scroller.hidden = false;
    this.printNote.textContent = "";
    this.render();
  }
}

const tables = [];

function addTable(section, title, columns, list) {
  const table = new DataTable(title, columns, list);
  section.append(table.root);
  tables.push(table);
  return table;
}

// ---- Filters of tables ---------------------------------------------------------------------------

function squeezed(text) {
  return text.toLowerCase().replace(/\s+/g, "");
}

// What the words of a filter ask of a row: every one must be in it.
function testsOf(text, columns) {
  return text.toLowerCase().split(/\s+/).filter(word => word !== "").map(word => testOf(word, columns));
}

// A word that names a column asks for its whole text, any other one for a part of the row's text.
function testOf(word, columns) {
  const [name, ...rest] = word.split("=");
  const column = rest.length > 0 && columns.find(candidate => squeezed(candidate.title.split(",")[0]) === name);
  if (!column)
    return row => textOf(row, columns).includes(word);
  const wanted = rest.join("=");
  return row => squeezed(column.get(row) === null ? column.nullText || "" : column.get(row)) === wanted;
}

function textOf(row, columns) {
  if (row.text === undefined)
    row.text = columns.map(column => column.get(row)).filter(text => text !== null).join("\n").toLowerCase();
  return row.text;
}

// ---- Colours of curves ---------------------------------------------------------------------------

const COLOURS = {
  light: ["#0b62b8", "#b4460e", "#007a5e", "#9a2c8c", "#7a6200", "#c2255c", "#3f51c4", "#456070"],
  dark: ["#6cb2f7", "#f59a5b", "#4fcfa9", "#e38ad6", "#d8c04a", "#ff8fb1", "#a3aeff", "#a9bdca"],
};

function isDark() {
  return matchMedia("(prefers-color-scheme: dark)").matches && !("printing" in document.documentElement.dataset);
}

// ---- The page around them ------------------------------------------------------------------------

const contents = byId("contents");

function open(id, label, count) {
  byId(id).hidden = false;
  contents.append(make("a", {href: "#" + id}, label, make("b", {}, count.toLocaleString("en"))));
}

function watchColours(plots) {
  matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => plots.forEach(plot => plot.recolour()));
}

function watchPrinting(plots) {
  addEventListener("beforeprint", () => {
    document.documentElement.dataset.printing = "";
    tables.forEach(table => table.beforePrint());
    plots.forEach(plot => plot.complete());
    plots.forEach(plot => plot.recolour(2));
  });
  addEventListener("afterprint", () => {
    delete document.documentElement.dataset.printing;
    tables.forEach(table => table.afterPrint());
    plots.forEach(plot => plot.recolour());
  });
}
