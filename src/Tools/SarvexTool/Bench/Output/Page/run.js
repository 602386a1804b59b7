// Makes the plots and tables of a run's page from its block of data.

const SIGNS = {"pass": "\u2713", "too low": "\u25BC", "too high": "\u25B2", "not measured": "\u2013", "no limit": "\u25CB", "measured": "\u2713"};
const FIRST_LINES = data.differences === null ? 8 : 4;

function classOf(verdict) {
  return "is-" + verdict.replace(" ", "-");
}

// "12–15, 20" of ascending numbers, cut after some pieces.
function rangesOf(numbers) {
  const pieces = [];
  for (let first = 0, last; first < numbers.length; first = last + 1) {
    last = first;
    while (last + 1 < numbers.length && numbers[last + 1] - numbers[last] <= 1)
      ++last;
    pieces.push(numbers[first] === numbers[last] ? String(numbers[first]) : numbers[first] + "\u2013" + numbers[last]);
  }
  const most = 12;
  return pieces.length <= most ? pieces.join(", ")
    : pieces.slice(0, most).join(", ") + " and " + counted(pieces.length - most, "more range");
}

// ---- The measurements -----------------------------------------------------------------------------

const isJudged = data.limits !== null;
const hasBaseline = data.differences !== null;

function textAt(index) {
  return index < 0 ? null : data.texts[index];
}

// What a place of measurement has, with its title and that of several.
const PARTS = {bench: ["Bench", "Benches"], device: ["Device", "Devices"], attempt: ["Attempt", "Attempts"]};

const sources = data.sources.map(([first, last, bench, device, attempt]) =>
  ({first, last, bench: textAt(bench), device: textAt(device), attempt: attempt === null ? null : String(attempt)}));
const knownParts = Object.keys(PARTS).filter(part => sources.some(source => source[part] !== null));
const NOWHERE = {bench: null, device: null, attempt: null};

// The source of a line; they are in the order of their lines.
function placeOf(line) {
  let first = 0, end = sources.length;
  while (first < end) {
    const middle = (first + end) >> 1;
    if (sources[middle].last < line)
      first = middle + 1;
    else
      end = middle;
  }
  return first < sources.length && sources[first].first <= line ? sources[first] : NOWHERE;
}

function measurementOf(fields, index) {
  const [configuration, chain, power, reason, verdict, limit, margin, oldLine, oldPower, change] = fields;
  const [line, ...settings] = data.configurations[configuration];
  const bounds = limit >= 0 ? data.limits[limit] : null;
  return {
    index, line, place: placeOf(line), settings: settings.map(textAt), chain: data.chains[chain],
    power, value: power === null ? null : Number(power), reason: textAt(reason),
    verdict: isJudged ? data.verdicts[verdict] : power === null ? "not measured" : "measured",
    limitLine: bounds ? bounds[0] : null, minimum: bounds ? bounds[1] : null, maximum: bounds ? bounds[2] : null,
    margin, oldLine: oldLine || null, oldPower: oldPower === undefined ? null : oldPower,
    change: change === undefined ? null : change, point: null,
  };
}

const rows = data.measurements.map(measurementOf);
const BAND = data.columns.indexOf("Band");
const CHAINS = data.columns.indexOf("Chains");
const BANDWIDTH = data.columns.indexOf("Bandwidth");
const CHANNEL = data.columns.indexOf("Channel");
const RATE = data.columns.indexOf("Rate");
const MODE = data.columns.indexOf("Mode");
const isOutside = row => row.verdict === "too low" || row.verdict === "too high";
const isNotPassed = row => row.verdict !== "pass" && row.verdict !== "measured";

// The settings that some row knows, in the columns' order.
function knownSettings(list) {
  return data.columns.map((title, index) => index).filter(index => list.some(row => row.settings[index] !== null));
}

// ---- Columns of measurements ---------------------------------------------------------------------

function settingColumns(list) {
  return knownSettings(list).map(index =>
    textColumn(data.columns[index], row => row.settings[index], {nullText: "unknown"}));
}

function placeColumns(placeOfRow) {
  return knownParts.map(part => (part === "attempt" ? numberColumn : textColumn)(
    PARTS[part][0], row => placeOfRow(row)[part], {nullText: "unknown"}));
}

function verdictCell(row) {
  return make("span", {class: classOf(row.verdict)},
    make("span", {class: "sign", "aria-hidden": "true"}, SIGNS[row.verdict] || ""), row.verdict);
}

function powerCell(row) {
  if (row.power === null)
    return "\u2013";
  if (!row.point)
    return row.power;
  return make("button", {type: "button", class: "text-button", title: "Show in the plot",
    "aria-label": row.power + " dBm, show in the plot", click: () => row.point.plot.show(row)}, row.power);
}

// What was found comes first: a table with all settings is wider than most windows.
function measurementColumns(list) {
  const columns = [numberColumn("Line", row => String(row.line)),
    textColumn(isJudged ? "Verdict" : "State", row => row.verdict, {cell: verdictCell, extra: 2}),
    textColumn("Chain", row => row.chain), numberColumn("Power, dBm", row => row.power, {cell: powerCell, nullText: "\u2013"})];
  if (isJudged) {
    columns.push(numberColumn("Min, dBm", row => row.minimum), numberColumn("Max, dBm", row => row.maximum),
      numberColumn("Margin, dB", row => withSign(row.margin)));
  }
  if (hasBaseline)
    columns.push(numberColumn("Baseline, dBm", row => row.oldPower), numberColumn("Change, dB", row => withSign(row.change)));
  columns.push(...placeColumns(row => row.place), ...settingColumns(list));
  if (list.some(row => row.reason !== null))
    columns.push(textColumn("Why not measured", row => row.reason, {isWide: true}));
  return columns;
}

// ---- The table of all measurements ----------------------------------------------------------------

class Measurements {
  constructor() {
    this.section = byId("measurements");
    this.columns = measurementColumns(rows);
    this.choices = this.makeChoices();
    this.choice = this.choices[0];
    this.place = null;
    this.words = [];
    this.told = make("span", {class: "told", role: "status"});
    this.input = make("input", {type: "search", "aria-label": "Filter by text", placeholder: "Filter, like MCS11 channel=36",
      autocomplete: "off", spellcheck: "false", input: () => this.setText(this.input.value)});
    this.places = this.makePlaces();
    const buttons = this.choices.map(choice => choice.button);
    this.section.append(
      make("p", {class: "note text-hint"}, "Every word must be in a row; COLUMN=TEXT asks for exactly this text, with the column's name written without blanks. A click on a column's title sorts, one on a power shows its point in the plot."),
      make("div", {class: "bar"}, this.input, make("div", {role: "group", "aria-label": "Filter by verdict", class: "bar"}, ...buttons), this.places, this.told));
    this.table = addTable(this.section, "Measurements", this.columns, rows);
    this.apply();
  }

  // The list of benches, or of what else the page is by; null for a run that tells none.
  makePlaces() {
    if (data.groupBy === null)
      return null;
    const [title, many] = PARTS[data.groupBy];
    const list = make("select", {"aria-label": "Filter by " + title.toLowerCase(), change: () => this.choosePlace(list.selectedIndex - 1)},
      make("option", {}, "All " + many.toLowerCase()), ...placeGroups.map(group => make("option", {}, nameOfPlace(group.name))));
    return list;
  }

  // One of the groups of places; all of them for -1.
  choosePlace(index) {
    this.place = index < 0 ? null : placeGroups[index];
    if (this.places)
      this.places.selectedIndex = index + 1;
    this.apply();
  }

  makeChoices() {
    const choices = [this.makeChoice("all", "All", () => true)];
    if (isJudged && rows.some(isNotPassed))
      choices.push(this.makeChoice("not passed", "Not passed", isNotPassed));
    const verdicts = isJudged ? data.verdicts : ["measured", "not measured"];
    for (const verdict of verdicts)
      choices.push(this.makeChoice(verdict, verdict[0].toUpperCase() + verdict.slice(1), row => row.verdict === verdict));
    return choices;
  }

  makeChoice(name, label, fits) {
    const count = rows.reduce((sum, row) => sum + (fits(row) ? 1 : 0), 0);
    const choice = {name, fits};
    choice.button = make("button", {type: "button", "aria-pressed": name === "all" ? "true" : "false", "data-verdict": name,
      disabled: count === 0, click: () => this.choose(name)}, label, make("b", {}, count.toLocaleString("en")));
    return choice;
  }

  choose(name) {
    const found = this.choices.find(choice => choice.name === name);
    this.choice = found || this.choices[0];
    for (const choice of this.choices)
      choice.button.setAttribute("aria-pressed", String(choice === this.choice));
    this.apply();
  }

  setText(text) {
    this.words = testsOf(text, this.columns);
    this.apply();
  }

  apply() {
    const isThere = row => this.place === null || row.place[data.groupBy] === this.place.name;
    const found = rows.filter(row => this.choice.fits(row) && isThere(row) && this.words.every(test => test(row)));
    this.told.textContent = found.length === rows.length ? counted(rows.length, "measurement")
      : `${found.length.toLocaleString("en")} of ${counted(rows.length, "measurement")}`;
    this.table.scroller.scrollTop = 0;
    this.table.setRows(found);
  }

  clear() {
    this.input.value = "";
    this.words = [];
    this.choosePlace(-1);
    this.choose("all");
  }

  // Goes to the measurements of a group of places alone.
  showPlace(index) {
    this.clear();
    this.choosePlace(index);
    this.section.scrollIntoView();
  }

  // Goes to the row of a measurement; a filter that hides it is taken away.
  reveal(row) {
    if (!this.table.shown.includes(row))
      this.clear();
    this.table.reveal(row);
  }
}

let measurements = null;

// ---- Plots ----------------------------------------------------------------------------------------

function channelOf(row) {
  const text = row.settings[CHANNEL];
  return text !== null && /^-?\d+(\.\d*)?$/.test(text) ? Number(text) : null;
}

function unitText(text, unit, name) {
  if (text === null)
    return name + " unknown";
  return /^\d+(\.\d+)?$/.test(text) ? text + " " + unit : name + " " + text;
}

// A line of a plot: one for each combination of what is not band, bandwidth and channel.
class Line {
  constructor(rowsOfLine) {
    this.rows = rowsOfLine;
    this.slot = -1;
    this.outside = rowsOfLine.filter(isOutside).length;
    this.worst = Math.min(...rowsOfLine.map(row => row.margin === null ? Infinity : Number(row.margin)));
    this.isDrawable = rowsOfLine.some(row => row.value !== null || Number.isFinite(parseFloat(row.oldPower)));
  }

  get isShown() { return this.slot >= 0; }

  // The values over the plot's places; undefined where the line has no measurement, null where the
  // measurement has no power: there the line is broken.
  values(places, get) {
    const values = new Array(places.length).fill(undefined);
    for (const row of this.rows)
      values[row.point.place] = get(row);
    return values;
  }
}

class Plot {
  constructor(list) {
    this.band = list[0].settings[BAND];
    this.bandwidth = list[0].settings[BANDWIDTH];
    this.title = unitText(this.band, "GHz", "Band") + ", " + unitText(this.bandwidth, "MHz", "bandwidth");
    this.numbered = list.filter(row => channelOf(row) !== null);
    this.elsewhere = list.length - this.numbered.length;
    this.lines = this.makeLines();
    this.places = this.makePlaces();
    this.hovered = null;
    this.chosenFilter = "";
    this.root = make("article", {class: "plot"}, make("h3", {}, this.title), make("p", {class: "about"}, this.about()));
    this.body = make("div", {class: "plot-body"});
    this.isDrawable = this.lines.some(line => line.isDrawable);
    if (this.isDrawable)
      this.root.append(this.body);
    this.isMade = false;
  }

  about() {
    const texts = [counted(this.numbered.length, "measurement") + " in " + counted(this.lines.length, "line")];
    const missing = this.numbered.filter(row => row.power === null).length;
    if (missing > 0 && missing === this.numbered.length)
      texts.push("none has a power");
    else if (missing > 0)
      texts.push(missing.toLocaleString("en") + " without a power");
    if (this.elsewhere > 0)
      texts.push(counted(this.elsewhere, "measurement") + (this.elsewhere === 1 ? " is" : " are") + " in the table only: the channel is no number");
    return texts.join("; ") + ".";
  }

  makeLines() {
    const byKey = new Map();
    for (const row of this.numbered) {
      const key = row.lineKey;
      if (!byKey.has(key))
        byKey.set(key, []);
      byKey.get(key).push(row);
    }
    const lines = [...byKey.values()].map(list => new Line(list));
    this.nameLines(lines);
    return lines.sort((left, right) => byText(left.name, right.name));
  }

  // Rate, mode and chain, and what else tells the lines of this plot apart.
  nameLines(lines) {
    const differs = index => lines.some(line => line.rows[0].settings[index] !== lines[0].rows[0].settings[index]);
    const others = data.columns.map((title, index) => index)
      .filter(index => ![BAND, BANDWIDTH, CHANNEL, RATE, MODE, CHAINS].includes(index) && differs(index));
    const namesChains = differs(CHAINS);
    for (const line of lines) {
      const {settings, chain} = line.rows[0];
      const known = [RATE, MODE, ...others].filter(index => settings[index] !== null).map(index => settings[index]);
      const chainName = "chain " + chain + (namesChains && settings[CHAINS] !== null && settings[CHAINS] !== chain ? " of " + settings[CHAINS] : "");
      line.name = [...known, chainName].join(" \u00B7 ");
    }
  }

  // The channels, ascending; one that a line has several times is there as often.
  makePlaces() {
    const most = new Map();
    for (const line of this.lines) {
      const own = new Map();
      for (const row of line.rows) {
        const channel = channelOf(row);
        own.set(channel, (own.get(channel) || 0) + 1);
        row.point = {plot: this, line, repeat: own.get(channel) - 1};
      }
      for (const [channel, count] of own)
        most.set(channel, Math.max(most.get(channel) || 0, count));
    }
    const channels = [...most.keys()].sort((left, right) => left - right);
    const places = [], firsts = new Map();
    for (const channel of channels) {
      firsts.set(channel, places.length);
      places.push(...new Array(most.get(channel)).fill(channel));
    }
    for (const row of this.numbered)
      row.point.place = firsts.get(channelOf(row)) + row.point.repeat;
    for (const line of this.lines)
      line.rows.sort((left, right) => left.point.place - right.point.place);
    return places;
  }

  // The parts are made when they come into view: a page may have many plots.
  complete() {
    if (this.isMade || !this.isDrawable)
      return;
    this.isMade = true;
    this.over = null;
    this.drawing = make("div", {class: "drawing", tabindex: 0, role: "group", "aria-roledescription": "plot",
      "aria-label": `Power over channel, ${this.title}. The arrow keys move along a line and between lines, Enter goes to the row in the table.`,
      keydown: event => this.key(event), blur: () => this.leave(), mouseleave: () => this.leave()});
    this.tip = make("div", {class: "tip", hidden: true});
    this.dot = make("div", {class: "dot", hidden: true});
    this.spoken = make("div", {class: "unseen", "aria-live": "polite"});
    this.body.append(make("div", {}, this.drawing, this.caption(), this.spoken), this.makeLegend());
    this.chooseFirst();
    this.draw();
    new ResizeObserver(() => this.fit()).observe(this.drawing);
  }

  caption() {
    const parts = [];
    if (isJudged)
      parts.push(make("span", {class: "sample of-limit"}), "within the limits; ", make("span", {class: "is-fail"}, "\u25BC"), " too low, ", make("span", {class: "is-fail"}, "\u25B2"), " too high");
    if (hasBaseline)
      parts.push(make("span", {class: "sample of-baseline"}), "baseline");
    return make("p", {class: "about"}, "Channel across, power in dBm upwards.", ...parts);
  }

  // Few lines are all shown; of many those that are farthest outside, or some from here and there. They
  // lead the list.
  chooseFirst() {
    const drawable = this.lines.filter(line => line.isDrawable);
    const step = Math.max(drawable.length / FIRST_LINES, 1);
    const first = drawable.some(line => line.outside > 0)
      ? [...drawable].sort((left, right) => left.worst - right.worst).slice(0, FIRST_LINES)
      : drawable.filter((line, index) => index === 0 || Math.floor(index / step) !== Math.floor((index - 1) / step));
    const shown = drawable.filter(candidate => first.includes(candidate));
    for (const line of shown)
      this.turn(line, true);
    this.keys.prepend(...shown.map(line => line.key.parentElement));
    this.tellShown();
  }

  // Colours are given in the order in which lines are chosen, so that few lines never share one.
  turn(line, isOn) {
    if (isOn && !line.isShown) {
      const taken = new Set(this.lines.map(other => other.slot));
      let slot = 0;
      while (taken.has(slot))
        ++slot;
      line.slot = slot;
    } else if (!isOn) {
      line.slot = -1;
    }
  }

  colourOf(line) {
    const colours = isDark() ? COLOURS.dark : COLOURS.light;
    return colours[line.slot % colours.length];
  }

  dashOf(line) {
    return [[], [10, 4], [4, 3], [12, 3, 3, 3]][Math.floor(line.slot / COLOURS.light.length) % 4];
  }

  // -- The legend

  makeLegend() {
    this.toldShown = make("span", {class: "told", role: "status"});
    this.keys = make("ul", {class: "keys", "aria-label": "Lines of this plot"});
    const bar = make("div", {class: "bar"}, this.legendButton("All", line => line.isDrawable), this.legendButton("None", () => false));
    if (this.lines.some(line => line.outside > 0))
      bar.append(this.legendButton("Outside limits", line => line.outside > 0));
    bar.append(this.toldShown);
    if (this.lines.length > 12)
      bar.prepend(make("input", {type: "search", "aria-label": `Filter the lines of ${this.title}`, placeholder: "Filter lines", input: event => this.filterKeys(event.target.value)}));
    for (const line of this.lines)
      this.keys.append(make("li", {}, this.makeKey(line)));
    return make("div", {class: "legend", role: "group", "aria-label": `Lines of ${this.title}`}, bar, this.keys);
  }

  // What is filtered away stays as it is.
  legendButton(label, isWanted) {
    return make("button", {type: "button", click: () => {
      for (const line of this.lines.filter(candidate => !candidate.key.parentElement.hidden))
        this.turn(line, false);
      for (const line of this.lines.filter(candidate => !candidate.key.parentElement.hidden))
        this.turn(line, isWanted(line));
      this.change();
    }}, label);
  }

  makeKey(line) {
    line.swatch = make("span", {class: "swatch", "aria-hidden": "true"});
    line.key = make("button", {type: "button", class: "key", "aria-pressed": "false", disabled: !line.isDrawable,
      title: line.isDrawable ? null : "no measurement of this line has a power",
      click: () => {
        this.turn(line, !line.isShown);
        this.change();
      },
      mouseenter: () => this.emphasise(line.isShown ? line : null), mouseleave: () => this.emphasise(null),
    }, line.swatch, make("span", {class: "name"}, line.name),
    line.outside > 0 ? make("span", {class: "off"}, line.outside + " outside") : null);
    return line.key;
  }

  filterKeys(text) {
    const words = text.toLowerCase().split(/\s+/);
    for (const line of this.lines)
      line.key.parentElement.hidden = !words.every(word => line.name.toLowerCase().includes(word));
  }

  change() {
    this.leave();
    this.tellShown();
    this.draw();
  }

  tellShown() {
    for (const line of this.lines) {
      line.key.setAttribute("aria-pressed", String(line.isShown));
      line.swatch.style.borderTopColor = line.isShown ? this.colourOf(line) : "";
      line.swatch.style.borderTopStyle = line.isShown && this.dashOf(line).length > 0 ? "dashed" : "";
    }
    const shown = this.lines.filter(line => line.isShown).length;
    this.toldShown.textContent = `${shown.toLocaleString("en")} of ${counted(this.lines.length, "line")}`;
  }

  // -- The drawing

  // Paper is finer than a screen: for it everything is drawn larger, and then shown smaller.
  draw(scale = 1) {
    this.scale = scale;
    if (this.chart)
      this.chart.destroy();
    this.shownLines = this.lines.filter(line => line.isShown);
    this.bands = this.makeBands();
    const series = [{}], values = [this.places];
    for (const line of this.shownLines) {
      line.series = series.length;
      line.oldSeries = hasBaseline ? line.series + this.shownLines.length : null;
      series.push(this.seriesOf(line, []));
      values.push(line.values(this.places, row => row.value));
    }
    for (const line of hasBaseline ? this.shownLines : []) {
      series.push({...this.seriesOf(line, [2, 4]), width: 1.5 * scale, points: {show: true, size: 5 * scale, fill: colour("--paper"), stroke: this.colourOf(line), width: scale}});
      values.push(line.values(this.places, row => row.oldPower === null ? null : Number(row.oldPower)));
    }
    this.chart = new uPlot(this.options(series), values, this.drawing);
    this.chart.root.style.zoom = 1 / scale;
    this.chart.over.append(this.dot);
    this.chart.over.addEventListener("mousemove", event => this.hover(event));
    this.chart.over.addEventListener("click", () => this.open());
    this.drawing.append(this.tip);
    this.tellEmpty();
  }

  tellEmpty() {
    if (this.empty)
      this.empty.remove();
    this.empty = this.shownLines.length > 0 ? null
      : make("div", {class: "empty"}, "Choose a line to see it here.");
    if (this.empty)
      this.drawing.append(this.empty);
  }

  seriesOf(line, dash) {
    const stroke = this.colourOf(line);
    return {label: line.name, stroke, width: 2 * this.scale, dash: (dash.length > 0 ? dash : this.dashOf(line)).map(length => length * this.scale), spanGaps: false,
      points: {show: true, size: 6 * this.scale, fill: stroke, width: this.scale}};
  }

  options(series) {
    const scale = this.scale;
    const axis = {stroke: colour("--soft"), grid: {stroke: colour("--grid"), width: 1}, ticks: {stroke: colour("--grid"), width: 1}, font: `${12 * scale}px system-ui, sans-serif`};
    return {
      width: Math.max(this.drawing.clientWidth, 200) * scale, height: (this.drawing.clientHeight || 340) * scale, pxAlign: 1,
      legend: {show: false}, focus: {alpha: 0.25},
      cursor: {show: true, x: false, y: false, points: {show: false}, drag: {x: false, y: false, setScale: false}},
      scales: {x: {time: false, range: () => this.widthOfChannels()}, y: {range: (chart, least, most) => this.heightOfPowers(least, most)}},
      axes: [{...axis, size: 34 * scale, splits: chart => this.ticks(chart), values: (chart, splits) => splits.map(String)},
        {...axis, size: 56 * scale, values: (chart, splits) => splits.map(split => String(Math.round(split * 1000) / 1000))}],
      series,
      hooks: {drawAxes: [chart => this.drawBands(chart)], draw: [chart => this.drawOutside(chart)]},
    };
  }

  widthOfChannels() {
    const first = this.places[0], last = this.places[this.places.length - 1];
    const margin = Math.max((last - first) * 0.03, 1);
    return [first - margin, last + margin];
  }

  // The limits of the lines that are shown are in view.
  heightOfPowers(least, most) {
    const bounds = this.bands.flatMap(band => band.pieces.flatMap(piece => [piece.minimum, piece.maximum])).filter(bound => bound !== null);
    const all = [least, most, ...bounds].filter(value => value !== null && Number.isFinite(value));
    if (all.length === 0)
      return [0, 20];
    const low = Math.min(...all), high = Math.max(...all), margin = Math.max((high - low) * 0.1, 0.5);
    return [low - margin, high + margin];
  }

  // Channels that are far enough apart for their numbers.
  ticks(chart) {
    const least = 34 * this.scale, found = [];
    let last = -Infinity;
    for (const channel of new Set(this.places)) {
      const left = chart.valToPos(channel, "x");
      if (left - last >= least) {
        found.push(channel);
        last = left;
      }
    }
    return found;
  }

  // -- Limits: each channel's bounds reach half-way to its neighbours. Lines with the same bounds share
  //    a band; the bands of single lines are drawn lighter.

  makeBands() {
    const bands = new Map();
    for (const line of this.shownLines) {
      // A channel that is measured several times has its limits once.
      const byTexts = new Map(line.rows.filter(row => row.minimum !== null || row.maximum !== null)
        .map(row => [[channelOf(row), row.minimum, row.maximum].join(), row]));
      const pieces = [...byTexts.values()].map(row => ({
        channel: channelOf(row),
        minimum: row.minimum === null ? null : Number(row.minimum), maximum: row.maximum === null ? null : Number(row.maximum),
      }));
      const key = JSON.stringify(pieces);
      if (pieces.length > 0 && !bands.has(key))
        bands.set(key, {pieces, lines: []});
      if (pieces.length > 0)
        bands.get(key).lines.push(line);
    }
    return [...bands.values()];
  }

  drawBands(chart) {
    const {ctx, bbox} = chart;
    const bands = this.emphasised ? this.bands.filter(band => band.lines.includes(this.emphasised)) : this.bands;
    ctx.save();
    ctx.beginPath();
    ctx.rect(bbox.left, bbox.top, bbox.width, bbox.height);
    ctx.clip();
    ctx.fillStyle = colour("--limit");
    ctx.strokeStyle = colour("--limit-line");
    ctx.lineWidth = this.scale;
    for (const band of bands)
      this.drawBand(chart, band, bands.length <= 4);
    ctx.restore();
  }

  drawBand(chart, band, isFilled) {
    const {ctx, bbox} = chart;
    const channels = [...new Set(this.places)];
    const edges = channels.map((channel, index) => [
      index === 0 ? -Infinity : (channel + channels[index - 1]) / 2,
      index + 1 === channels.length ? Infinity : (channel + channels[index + 1]) / 2,
    ]);
    const edgesOf = new Map(channels.map((channel, index) => [channel, edges[index]]));
    const across = value => value === -Infinity ? bbox.left : value === Infinity ? bbox.left + bbox.width : chart.valToPos(value, "x", true);
    for (const piece of band.pieces) {
      const [left, right] = edgesOf.get(piece.channel).map(across);
      const top = piece.maximum === null ? bbox.top : chart.valToPos(piece.maximum, "y", true);
      const bottom = piece.minimum === null ? bbox.top + bbox.height : chart.valToPos(piece.minimum, "y", true);
      if (isFilled)
        ctx.fillRect(left, top, right - left, bottom - top);
      ctx.beginPath();
      for (const level of [piece.maximum === null ? null : top, piece.minimum === null ? null : bottom].filter(found => found !== null)) {
        ctx.moveTo(left, level);
        ctx.lineTo(right, level);
      }
      ctx.stroke();
    }
  }

  // What is outside its limits is told by a shape, not by colour alone.
  drawOutside(chart) {
    const {ctx} = chart, size = 6 * this.scale * devicePixelRatio;
    ctx.save();
    ctx.fillStyle = colour("--fail");
    ctx.strokeStyle = colour("--paper");
    for (const line of this.shownLines.filter(candidate => candidate.outside > 0 && (!this.emphasised || candidate === this.emphasised))) {
      for (const row of line.rows.filter(isOutside)) {
        const x = chart.valToPos(this.places[row.point.place], "x", true), y = chart.valToPos(row.value, "y", true);
        const tip = row.verdict === "too high" ? -size : size;
        ctx.beginPath();
        ctx.moveTo(x, y + tip);
        ctx.lineTo(x - size, y - tip * 0.7);
        ctx.lineTo(x + size, y - tip * 0.7);
        ctx.closePath();
        ctx.fill();
        ctx.stroke();
      }
    }
    ctx.restore();
  }

  fit() {
    if (this.chart && this.scale === 1 && this.drawing.clientWidth > 0 && this.drawing.clientWidth !== this.chart.width) {
      this.leave();
      this.chart.setSize({width: this.drawing.clientWidth, height: this.drawing.clientHeight});
    }
  }

  emphasise(line) {
    if (this.emphasised === line)
      return;
    this.emphasised = line;
    if (!this.chart || this.shownLines.length < 2)
      return;
    this.chart.setSeries(line ? line.series : null, {focus: true});
    // A line and its baseline belong together.
    if (line && line.oldSeries !== null)
      this.chart.series[line.oldSeries].alpha = 1;
  }

  // -- Pointer and keys

  positionOf(row) {
    return {left: this.chart.valToPos(this.places[row.point.place], "x"), top: this.chart.valToPos(row.value, "y")};
  }

  hover(event) {
    const box = this.chart.over.getBoundingClientRect();
    const left = event.clientX - box.left, top = event.clientY - box.top;
    let nearest = null, least = 30 * 30;
    for (const line of this.shownLines) {
      for (const row of line.rows) {
        if (row.value === null)
          continue;
        const at = this.positionOf(row);
        const distance = (at.left - left) ** 2 + (at.top - top) ** 2;
        if (distance < least) {
          least = distance;
          nearest = row;
        }
      }
    }
    this.point(nearest, false);
  }

  point(row, isSpoken) {
    if (row === this.hovered)
      return;
    this.hovered = row;
    this.tip.hidden = this.dot.hidden = !row;
    this.emphasise(row ? row.point.line : null);
    if (!row)
      return;
    const texts = describe(row);
    this.tip.replaceChildren(...[row.point.line.name, ...texts].map(text => make("div", {}, text)),
      make("div", {class: "hint"}, isSpoken ? "Enter: its row in the table" : "Click: its row in the table"));
    const at = this.positionOf(row);
    this.dot.style.left = at.left + "px";
    this.dot.style.top = at.top + "px";
    this.placeTip(at);
    if (isSpoken)
      this.spoken.textContent = [row.point.line.name, ...texts].join(", ");
  }

  placeTip(at) {
    const over = this.chart.over, gap = 14;
    const left = over.offsetLeft + at.left, top = over.offsetTop + at.top;
    const isRight = left + gap + this.tip.offsetWidth <= this.drawing.clientWidth;
    this.tip.style.left = Math.max(0, isRight ? left + gap : left - gap - this.tip.offsetWidth) + "px";
    this.tip.style.top = Math.max(0, Math.min(top - 20, this.drawing.clientHeight - this.tip.offsetHeight)) + "px";
  }

  leave() {
    if (this.isMade)
      this.point(null, false);
  }

  open() {
    if (this.hovered)
      measurements.reveal(this.hovered);
  }

  key(event) {
    const steps = {ArrowRight: [1, 0], ArrowLeft: [-1, 0], ArrowDown: [0, 1], ArrowUp: [0, -1]};
    if (event.key === "Enter")
      this.open();
    else if (event.key === "Escape")
      this.leave();
    else if (event.key in steps)
      this.move(...steps[event.key]);
    else
      return;
    event.preventDefault();
  }

  move(along, between) {
    const lines = this.shownLines.filter(line => line.rows.some(row => row.value !== null));
    if (lines.length === 0)
      return;
    const from = this.hovered;
    const line = from ? lines[(lines.indexOf(from.point.line) + between + lines.length) % lines.length] : lines[0];
    const points = line.rows.filter(row => row.value !== null);
    const place = from ? from.point.place : -1;
    const near = points.reduce((best, row) => Math.abs(row.point.place - place) < Math.abs(best.point.place - place) ? row : best);
    const index = points.indexOf(near) + (from ? along : 0);
    this.point(points[Math.min(Math.max(index, 0), points.length - 1)], true);
  }

  // Shows a measurement of the table.
  show(row) {
    this.complete();
    if (!row.point.line.isShown) {
      this.turn(row.point.line, true);
      this.change();
    }
    this.root.scrollIntoView({block: "center"});
    this.drawing.focus({preventScroll: true});
    this.point(row, true);
  }

  recolour(scale) {
    if (!this.isMade)
      return;
    this.leave();
    this.tellShown();
    this.draw(scale);
  }
}

// What a measurement is, in short texts.
function describe(row) {
  const texts = [`Channel ${row.settings[CHANNEL]}: ${row.power} dBm`];
  if (row.minimum !== null || row.maximum !== null)
    texts.push(`Limits ${row.minimum === null ? "none" : row.minimum} to ${row.maximum === null ? "none" : row.maximum} dBm, margin ${withSign(row.margin)} dB`);
  if (isJudged)
    texts.push(`Verdict: ${row.verdict}`);
  if (row.oldPower !== null)
    texts.push(`Baseline ${row.oldPower} dBm` + (row.change === null ? "" : `, change ${withSign(row.change)} dB`));
  const places = knownParts.filter(part => row.place[part] !== null).map(part => `${PARTS[part][0]} ${row.place[part]}`);
  if (places.length > 0)
    texts.push(places.join(", "));
  texts.push(`Line ${row.line}`);
  return texts;
}

// A text's place in the data stands for it: it is shorter, and null is none of them.
function keepKeys() {
  for (const row of rows) {
    const [, ...keys] = data.configurations[data.measurements[row.index][0]];
    row.plotKey = keys[BAND] + " " + keys[BANDWIDTH];
    keys[BAND] = keys[BANDWIDTH] = keys[CHANNEL] = -1;
    row.lineKey = keys.join(" ") + " " + row.chain;
  }
}

const plots = [];

function addPlots() {
  keepKeys();
  const section = byId("plots");
  const groups = groupBy(rows, row => row.plotKey);
  for (const group of groups)
    plots.push(new Plot(group));
  plots.sort((left, right) => byText(left.title, right.title));
  section.append(make("p", {class: "note text-hint"}, "One plot for each band and bandwidth. The list beside it chooses lines; pointing at a measurement shows it, a click goes to its row in the table."));
  section.append(...plots.map(plot => plot.root));
  const watcher = new IntersectionObserver(entries => {
    for (const entry of entries.filter(found => found.isIntersecting)) {
      watcher.unobserve(entry.target);
      plots.find(plot => plot.root === entry.target).complete();
    }
  }, {rootMargin: "400px"});
  for (const plot of plots)
    watcher.observe(plot.root);
}

// ---- The other sections ---------------------------------------------------------------------------

function addOutside() {
  const outside = rows.filter(isOutside).sort((left, right) => Number(left.margin) - Number(right.margin) || left.index - right.index);
  const section = byId("outside");
  section.append(make("p", {class: "note"}, `${counted(outside.length, "measurement")}, the farthest outside first.`));
  addTable(section, "Outside the limits", measurementColumns(outside), outside);
}

function addMissing() {
  const missing = rows.filter(row => row.power === null);
  const groups = groupBy(missing, row => row.reason + "\n" + row.plotKey).map(group => ({
    reason: group[0].reason, settings: group[0].settings, count: group.length, lines: rangesOf(group.map(row => row.line)),
  })).sort((left, right) => right.count - left.count);
  const section = byId("missing");
  section.append(make("p", {class: "note"}, `${counted(missing.length, "measurement")} without a power that counts.`));
  addTable(section, "Not measured", [
    textColumn("Band", group => group.settings[BAND], {nullText: "unknown"}),
    textColumn("Bandwidth", group => group.settings[BANDWIDTH], {nullText: "unknown"}),
    numberColumn("Number", group => String(group.count)),
    textColumn("Why", group => group.reason, {isWide: true}),
    textColumn("Lines of the file", group => group.lines, {isWide: true}),
  ], groups);
}

// -- Benches, devices or attempts

function nameOfPlace(name) {
  return name === null ? "unknown" : name;
}

function placeGroupOf(list) {
  const margins = list.map(row => row.margin).filter(margin => margin !== null);
  const changes = list.map(row => row.change).filter(change => change !== null).map(Number);
  return {
    name: list[0].place[data.groupBy], list,
    worst: margins.length === 0 ? null : margins.reduce((least, margin) => Number(margin) < Number(least) ? margin : least),
    mean: changes.length === 0 ? null : String(Number((changes.reduce((sum, change) => sum + change, 0) / changes.length).toFixed(3))),
  };
}

// Those of which nothing is known come first.
const placeGroups = data.groupBy === null ? [] : groupBy(rows, row => row.place[data.groupBy]).map(placeGroupOf)
  .sort((left, right) => left.name === null ? -1 : right.name === null ? 1 : byText(left.name, right.name));

function placeCell(group) {
  return make("button", {type: "button", class: "text-button", title: "Show its measurements",
    click: () => measurements.showPlace(placeGroups.indexOf(group))}, nameOfPlace(group.name));
}

function addPlaces() {
  const [title, many] = PARTS[data.groupBy];
  byId("places-title").textContent = many;
  const verdicts = isJudged ? data.verdicts : ["measured", "not measured"];
  const columns = [textColumn(title, group => group.name, {nullText: "unknown", cell: placeCell}),
    numberColumn("Measurements", group => String(group.list.length)),
    ...verdicts.map(verdict => numberColumn(verdict[0].toUpperCase() + verdict.slice(1),
      group => String(group.list.filter(row => row.verdict === verdict).length)))];
  if (isJudged)
    columns.push(numberColumn("Worst margin, dB", group => withSign(group.worst)));
  if (hasBaseline)
    columns.push(numberColumn("Mean change, dB", group => withSign(group.mean)));
  addTable(byId("places"), many, columns, placeGroups);
}

const KINDS = ["changed", "measured in the baseline only", "measured in this run only", "in the baseline only", "in this run only"];

function differenceOf([kind, place, oldLine, oldPower, change, isNoise, old]) {
  const row = place >= 0 ? rows[place] : null;
  const [, ...settings] = old ? data.configurations[old[0]] : [];
  return {
    kind: KINDS[kind], row, line: row ? row.line : null, power: row ? row.power : null,
    settings: row ? row.settings : settings.map(textAt), chain: row ? row.chain : data.chains[old[1]],
    oldLine: oldLine || null, oldPower, change, point: row ? row.point : null, isNoise,
  };
}

function addDifferences() {
  const list = data.differences.map(differenceOf);
  const section = byId("differences");
  const kinds = KINDS.map(kind => [kind, list.filter(difference => difference.kind === kind).length]).filter(([, count]) => count > 0);
  const told = kinds.length === 0 ? "None." : kinds.map(([kind, count]) => `${count.toLocaleString("en")} ${kind}`).join(", ") + ".";
  section.append(make("p", {class: "note"}, `${data.tolerance} dB or less is no change. ${told}`
    + (data.noise === null ? "" : ` Repeated lines differ by ${data.noise} dB (standard deviation); changes within that are marked as noise.`)));
  if (data.shifts.length > 0) {
    section.append(make("h3", {}, "Mean change by band and rate"));
    addTable(section, "Mean change by band and rate", [
      textColumn("Band", shift => textAt(shift[0]), {nullText: "unknown"}), textColumn("Rate", shift => textAt(shift[1]), {nullText: "unknown"}),
      numberColumn("Pairs", shift => String(shift[2])), numberColumn("Mean change, dB", shift => withSign(shift[3])),
    ], data.shifts);
  }
  if (list.length > 0) {
    section.append(make("h3", {}, "Each difference"));
    addTable(section, "Differences", [
      textColumn("What", difference => difference.kind + (difference.isNoise ? ", within noise" : ""), {widest: 32}),
      numberColumn("Change, dB", difference => withSign(difference.change)),
      numberColumn("Baseline, dBm", difference => difference.oldPower),
      numberColumn("Power, dBm", difference => difference.power, {cell: difference => difference.row ? powerCell(difference.row) : ""}),
      ...settingColumns(list), textColumn("Chain", difference => difference.chain),
      numberColumn("Baseline line", difference => difference.oldLine === null ? null : String(difference.oldLine)),
      numberColumn("Line", difference => difference.line === null ? null : String(difference.line)),
      ...placeColumns(difference => difference.row ? difference.row.place : NOWHERE),
    ], list);
  }
}

// ---- The page -------------------------------------------------------------------------------------

function linkCounts() {
  for (const link of document.querySelectorAll(".counts a"))
    link.addEventListener("click", () => measurements.choose(link.dataset.verdict));
}

function start() {
  const outside = rows.filter(isOutside).length, missing = rows.filter(row => row.power === null).length;
  addPlots();
  if (outside > 0) {
    open("outside", "Outside the limits", outside);
    addOutside();
  }
  if (missing > 0) {
    open("missing", "Not measured", missing);
    addMissing();
  }
  if (placeGroups.length > 0) {
    open("places", PARTS[data.groupBy][1], placeGroups.length);
    addPlaces();
  }
  if (rows.length > 0)
    open("plots", "Plots", plots.length);
  if (hasBaseline) {
    open("differences", "Differences", data.differences.length);
    addDifferences();
  }
  open("measurements", "Measurements", rows.length);
  measurements = new Measurements();
  contents.hidden = false;
  linkCounts();
  watchColours(plots);
  watchPrinting(plots);
  byId("needs-script").remove();
}

start();
