// Makes the curves and tables of a page of kept runs from its block of data.

const ROW_HINT = "Every word must be in a row; COLUMN=TEXT asks for exactly this text, with the column's name written without blanks. A click on a column's title sorts.";

function textAt(index) {
  return index < 0 ? null : data.texts[index];
}

function minuteOf(seconds) {
  return new Date(seconds * 1000).toISOString().slice(0, 16).replace("T", " ");
}

// "0.40" with its sign; "0.00" has none.
function signed(number) {
  if (number === null)
    return null;
  const text = number.toFixed(2).replace(/^-(0\.00)$/, "$1");
  return text.startsWith("-") || text === "0.00" ? text : "+" + text;
}

// ---- The values -----------------------------------------------------------------------------------

function stationOf([name, devices, says, offset, mean, lower, upper, beyond, powers, out, noLimit], index) {
  const station = {name: textAt(name), devices: textAt(devices), says: textAt(says), offset,
    limits: mean === null ? null : {mean, lower, upper}, beyond, powers, out, noLimit, chart: null};
  station.points = data.points[index].map(([seconds, run, device, median, count, isBeyond]) => ({
    seconds, value: median, isMarked: isBeyond === 1, run: textAt(run), station,
    texts: [minuteOf(seconds) + " UTC", `Median ${signed(median)} dB of ${counted(count, "difference")}` + (isBeyond ? ", beyond the control limits" : ""),
      ...(device >= 0 ? ["Device " + textAt(device)] : []), "Run " + textAt(run)],
  }));
  return station;
}

const stations = data.stations.map(stationOf);

function powerOf([seconds, station, run, device, power, isOut]) {
  return {seconds, value: power, isMarked: isOut === 1, run: textAt(run), station: stations[station], device: textAt(device),
    texts: [minuteOf(seconds) + " UTC", `${power} dBm` + (isOut ? ", out of its limits" : ""), ...(device >= 0 ? ["Device " + textAt(device)] : []), "Run " + textAt(run)]};
}

const powers = data.powers.map(powerOf);

function runOf([seconds, run, name, bench, device, firmware, verdict, outcome, measured, measurements, note, user, host]) {
  return {seconds, run: textAt(run), name: textAt(name), bench: textAt(bench), device: textAt(device), firmware: textAt(firmware),
    verdict: textAt(verdict), outcome: textAt(outcome), measured, measurements, note: textAt(note), user: textAt(user), host: textAt(host)};
}

const runs = data.runs === null ? null : data.runs.map(runOf);

// ---- Curves over time -----------------------------------------------------------------------------

// A line of a chart: a name, points in the order of time, and control limits or null.
class TimeChart {
  constructor(title, about, unit, lines) {
    this.title = title;
    this.unit = unit;
    this.lines = lines;
    this.places = lines.flatMap(line => line.points.map(point => ({line, point})))
      .sort((left, right) => left.point.seconds - right.point.seconds);
    this.places.forEach((entry, place) => { entry.point.place = place; });
    this.hovered = null;
    this.body = make("div");
    this.root = make("article", {class: "plot"}, make("h3", {}, title), make("p", {class: "about"}, about), this.body);
  }

  // The drawing is made when it comes into view: a page may have many.
  complete() {
    if (this.drawing || this.places.length === 0)
      return;
    this.drawing = make("div", {class: "drawing over-time", tabindex: 0, role: "group", "aria-roledescription": "plot",
      "aria-label": `${this.title} over time. The arrow keys move along a line and between lines.`,
      keydown: event => this.key(event), blur: () => this.point(null), mouseleave: () => this.point(null)});
    this.tip = make("div", {class: "tip", hidden: true});
    this.dot = make("div", {class: "dot", hidden: true});
    this.spoken = make("div", {class: "unseen", "aria-live": "polite"});
    this.body.append(this.drawing, this.caption(), this.spoken);
    this.draw();
    new ResizeObserver(() => this.fit()).observe(this.drawing);
  }

  caption() {
    const parts = [];
    if (this.lines.some(line => line.limits))
      parts.push(make("span", {class: "sample of-limit"}), "within the control limits; ", make("span", {class: "is-fail"}, "\u25B2"), " beyond them");
    if (this.lines.length > 1)
      parts.push(...this.lines.map((line, index) => make("span", {class: "line-name"}, make("span", {class: "swatch", style: `border-top-color: ${this.colourOf(index)}`}), line.name)));
    this.told = make("p", {class: "about"}, `Time in UTC across, ${this.unit} upwards.`, ...parts);
    return this.told;
  }

  colourOf(index) {
    const colours = isDark() ? COLOURS.dark : COLOURS.light;
    return colours[index % colours.length];
  }

  dashOf(index) {
    return [[], [10, 4], [4, 3], [12, 3, 3, 3]][Math.floor(index / COLOURS.light.length) % 4];
  }

  // Each point has a place of its own, so that two runs of one second are two points.
  draw(scale = 1) {
    this.scale = scale;
    if (this.chart)
      this.chart.destroy();
    const values = this.lines.map(line => {
      const own = new Array(this.places.length).fill(undefined);
      for (const point of line.points)
        own[point.place] = point.value;
      return own;
    });
    this.chart = new uPlot(this.options(), [this.places.map(entry => entry.point.seconds), ...values], this.drawing);
    this.chart.root.style.zoom = 1 / scale;
    this.chart.over.append(this.dot);
    this.chart.over.addEventListener("mousemove", event => this.hover(event));
    this.drawing.append(this.tip);
  }

  options() {
    const scale = this.scale;
    const axis = {stroke: colour("--soft"), grid: {stroke: colour("--grid"), width: 1}, ticks: {stroke: colour("--grid"), width: 1}, font: `${12 * scale}px system-ui, sans-serif`};
    const series = this.lines.map((line, index) => ({label: line.name, stroke: this.colourOf(index), width: 2 * scale,
      dash: this.dashOf(index).map(length => length * scale), spanGaps: true, points: {show: true, size: 5 * scale, fill: this.colourOf(index), width: scale}}));
    return {
      width: Math.max(this.drawing.clientWidth, 200) * scale, height: (this.drawing.clientHeight || 220) * scale, pxAlign: 1,
      tzDate: seconds => uPlot.tzDate(new Date(seconds * 1000), "Etc/UTC"),
      legend: {show: false}, cursor: {show: true, x: false, y: false, points: {show: false}, drag: {x: false, y: false, setScale: false}},
      scales: {x: {time: true, range: () => this.span()}, y: {range: (chart, least, most) => this.height(least, most)}},
      axes: [{...axis, size: 34 * scale, space: 110 * scale, values: (chart, splits) => splits.map(split => this.tickOf(split))}, {...axis, size: 60 * scale, values: (chart, splits) => splits.map(split => String(Math.round(split * 1000) / 1000))}],
      series: [{}, ...series],
      hooks: {drawAxes: [chart => this.drawLimits(chart)], draw: [chart => this.drawMarks(chart)]},
    };
  }

  span() {
    const first = this.places[0].point.seconds, last = this.places[this.places.length - 1].point.seconds;
    const margin = Math.max((last - first) * 0.03, 3600);
    return [first - margin, last + margin];
  }

  // A day, or a day and a time where the chart shows few days.
  tickOf(seconds) {
    const [first, last] = this.span(), fewDays = 4 * 86400;
    return last - first > fewDays ? minuteOf(seconds).slice(0, 10) : minuteOf(seconds).slice(5);
  }

  // The control limits are in view.
  height(least, most) {
    const bounds = this.lines.filter(line => line.limits).flatMap(line => [line.limits.lower, line.limits.upper]);
    const low = Math.min(least, ...bounds), high = Math.max(most, ...bounds), margin = Math.max((high - low) * 0.1, 0.05);
    return [low - margin, high + margin];
  }

  drawLimits(chart) {
    const {ctx, bbox} = chart;
    ctx.save();
    ctx.fillStyle = colour("--limit");
    ctx.strokeStyle = colour("--limit-line");
    ctx.lineWidth = this.scale;
    for (const {limits} of this.lines.filter(line => line.limits)) {
      const [lower, mean, upper] = [limits.lower, limits.mean, limits.upper].map(level => chart.valToPos(level, "y", true));
      ctx.fillRect(bbox.left, upper, bbox.width, lower - upper);
      for (const [level, dash] of [[lower, []], [mean, [6 * this.scale, 4 * this.scale]], [upper, []]]) {
        ctx.setLineDash(dash);
        ctx.beginPath();
        ctx.moveTo(bbox.left, level);
        ctx.lineTo(bbox.left + bbox.width, level);
        ctx.stroke();
      }
    }
    ctx.restore();
  }

  // What is beyond is told by a shape, not by colour alone.
  drawMarks(chart) {
    const {ctx} = chart, size = 6 * this.scale * devicePixelRatio;
    ctx.save();
    ctx.fillStyle = colour("--fail");
    ctx.strokeStyle = colour("--paper");
    for (const {point} of this.places.filter(entry => entry.point.isMarked)) {
      const x = chart.valToPos(point.seconds, "x", true), y = chart.valToPos(point.value, "y", true);
      ctx.beginPath();
      ctx.moveTo(x, y - size);
      ctx.lineTo(x - size, y + size * 0.7);
      ctx.lineTo(x + size, y + size * 0.7);
      ctx.closePath();
      ctx.fill();
      ctx.stroke();
    }
    ctx.restore();
  }

  fit() {
    if (this.scale === 1 && this.drawing.clientWidth > 0 && this.drawing.clientWidth !== this.chart.width) {
      this.point(null);
      this.chart.setSize({width: this.drawing.clientWidth, height: this.drawing.clientHeight});
    }
  }

  positionOf(point) {
    return {left: this.chart.valToPos(point.seconds, "x"), top: this.chart.valToPos(point.value, "y")};
  }

  hover(event) {
    const box = this.chart.over.getBoundingClientRect();
    let nearest = null, least = 30 * 30;
    for (const entry of this.places) {
      const at = this.positionOf(entry.point);
      const distance = (at.left - event.clientX + box.left) ** 2 + (at.top - event.clientY + box.top) ** 2;
      if (distance < least) {
        least = distance;
        nearest = entry;
      }
    }
    this.point(nearest);
  }

  // Tells of one of the places, or of none.
  point(entry, isSpoken = false) {
    if (!this.tip || entry === this.hovered)
      return;
    this.hovered = entry;
    this.tip.hidden = this.dot.hidden = !entry;
    if (!entry)
      return;
    const texts = [entry.line.name, ...entry.point.texts];
    this.tip.replaceChildren(...texts.map(text => make("div", {}, text)));
    const at = this.positionOf(entry.point), over = this.chart.over, gap = 14;
    this.dot.style.left = at.left + "px";
    this.dot.style.top = at.top + "px";
    const left = over.offsetLeft + at.left, isRight = left + gap + this.tip.offsetWidth <= this.drawing.clientWidth;
    this.tip.style.left = Math.max(0, isRight ? left + gap : left - gap - this.tip.offsetWidth) + "px";
    this.tip.style.top = Math.max(0, Math.min(over.offsetTop + at.top - 20, this.drawing.clientHeight - this.tip.offsetHeight)) + "px";
    if (isSpoken)
      this.spoken.textContent = texts.join(", ");
  }

  key(event) {
    const steps = {ArrowRight: [1, 0], ArrowLeft: [-1, 0], ArrowDown: [0, 1], ArrowUp: [0, -1]};
    if (event.key === "Escape")
      this.point(null);
    else if (event.key in steps)
      this.move(...steps[event.key]);
    else
      return;
    event.preventDefault();
  }

  move(along, between) {
    const lines = this.lines.filter(line => line.points.length > 0), from = this.hovered;
    const line = from ? lines[(lines.indexOf(from.line) + between + lines.length) % lines.length] : lines[0];
    const place = from ? from.point.place : -1;
    const near = line.points.reduce((best, point) => Math.abs(point.place - place) < Math.abs(best.place - place) ? point : best);
    const index = line.points.indexOf(near) + (from ? along : 0);
    this.point(this.places[line.points[Math.min(Math.max(index, 0), line.points.length - 1)].place], true);
  }

  recolour(scale) {
    if (!this.drawing)
      return;
    this.point(null);
    this.told.replaceWith(this.caption());
    this.draw(scale);
  }
}

const charts = [];

function addChart(section, chart) {
  charts.push(chart);
  section.append(chart.root);
  const watcher = new IntersectionObserver(entries => {
    if (entries.some(entry => entry.isIntersecting)) {
      watcher.disconnect();
      chart.complete();
    }
  }, {rootMargin: "400px"});
  watcher.observe(chart.root);
}

// ---- The sections ---------------------------------------------------------------------------------

function stationCell(station) {
  if (!station.chart)
    return station.name;
  return make("button", {type: "button", class: "text-button", title: "Show its runs over time", click: () => {
    station.chart.complete();
    station.chart.root.scrollIntoView({block: "center"});
    station.chart.drawing.focus({preventScroll: true});
  }}, station.name);
}

function stationColumns() {
  const lastOf = station => station.points.length === 0 ? null : station.points[station.points.length - 1].value;
  const columns = [textColumn("Station", station => station.name, {cell: stationCell}),
    numberColumn("Runs", station => String(station.points.length)),
    numberColumn("Offset, dB", station => signed(station.offset), {nullText: "\u2013"}),
    numberColumn("Lower limit, dB", station => station.limits && signed(station.limits.lower), {nullText: "\u2013"}),
    numberColumn("Upper limit, dB", station => station.limits && signed(station.limits.upper), {nullText: "\u2013"}),
    numberColumn("Last, dB", station => signed(lastOf(station)), {nullText: "\u2013"}),
    numberColumn("Beyond", station => station.limits && String(station.beyond), {nullText: "\u2013"}),
    numberColumn("Powers", station => String(station.powers))];
  if (data.judged)
    columns.push(numberColumn("Out of limits", station => String(station.out)), numberColumn("Without a limit", station => String(station.noLimit)));
  return [...columns, textColumn("Device", station => station.devices, {nullText: "unknown"}),
    textColumn("What its runs tell", station => station.says, {isWide: true, widest: 100})];
}

function addStations() {
  const section = byId("stations");
  section.append(make("p", {class: "note"}, (data.ownMean
    ? "Each run's median of its differences from the station's own mean powers, in dB."
    : "Each run's median of its differences from the references, in dB; a reference is the median of the stations' mean powers of one configuration and chain. The offset is the median over the runs.")
    + " Control limits: mean and three standard deviations, estimated from the mean moving range (NIST/SEMATECH e-Handbook of Statistical Methods, 6.3.2.2)."));
  addTable(section, "Stations", stationColumns(), stations);
}

function addCurves() {
  const drawn = stations.filter(station => station.points.length > 0);
  for (const station of drawn) {
    station.chart = new TimeChart(station.name, station.says + ".", "medians in dB", [{name: station.name, points: station.points, limits: station.limits}]);
    addChart(byId("curves"), station.chart);
  }
  return drawn.length;
}

function addPowers() {
  const item = textAt(data.item);
  const lines = stations.map(station => ({name: station.name, limits: null, points: powers.filter(power => power.station === station)}))
    .filter(line => line.points.length > 0);
  addChart(byId("powers"), new TimeChart(item, counted(powers.length, "power") + ".", "power in dBm", lines));
  const columns = [textColumn("Measured (UTC)", power => minuteOf(power.seconds)), textColumn("Station", power => power.station.name),
    textColumn("Device", power => power.device, {nullText: "unknown"}), textColumn("Run", power => power.run),
    numberColumn("Power, dBm", power => String(power.value))];
  if (data.judged)
    columns.push(textColumn("Limits", power => power.isMarked ? "out" : null));
  addTable(byId("powers"), "Powers", columns, powers);
}

function verdictCell(run) {
  const kind = {pass: "is-pass", fail: "is-fail"}[run.verdict] || "is-none";
  return make("span", {class: kind}, make("span", {class: "sign", "aria-hidden": "true"}, {pass: "\u2713", fail: "\u2717"}[run.verdict] || "\u25CB"), run.verdict);
}

function addRuns() {
  const section = byId("runs");
  const columns = [textColumn("Measured (UTC)", run => minuteOf(run.seconds)), textColumn("Run", run => run.run), textColumn("Name", run => run.name),
    textColumn("Verdict", run => run.verdict, {cell: verdictCell, extra: 2}), textColumn("Bench", run => run.bench, {nullText: "unknown"}),
    textColumn("Device", run => run.device, {nullText: "unknown"}), textColumn("Firmware", run => run.firmware, {nullText: "unknown"}),
    numberColumn("Measured", run => String(run.measured)), numberColumn("Not measured", run => String(run.measurements - run.measured)),
    textColumn("Outcome", run => run.outcome, {nullText: "unknown"}), textColumn("User", run => run.user, {nullText: "unknown"}),
    textColumn("Host", run => run.host, {nullText: "unknown"}), textColumn("Note", run => run.note, {isWide: true})];
  const told = make("span", {class: "told", role: "status"});
  const filter = text => {
    const tests = testsOf(text, columns), found = runs.filter(run => tests.every(test => test(run)));
    told.textContent = found.length === runs.length ? counted(runs.length, "run") : `${found.length.toLocaleString("en")} of ${counted(runs.length, "run")}`;
    table.scroller.scrollTop = 0;
    table.setRows(found);
  };
  const input = make("input", {type: "search", "aria-label": "Filter by text", placeholder: "Filter, like bench=B2 fail",
    autocomplete: "off", spellcheck: "false", input: () => filter(input.value)});
  section.append(make("p", {class: "note text-hint"}, ROW_HINT), make("div", {class: "bar"}, input, told));
  const table = addTable(section, "Runs", columns, runs);
  filter("");
}

function start() {
  const drawn = addCurves();
  if (stations.length > 0) {
    open("stations", "Stations", stations.length);
    addStations();
  }
  if (runs !== null) {
    open("runs", "Runs", runs.length);
    addRuns();
  }
  if (powers.length > 0) {
    open("powers", "Powers", powers.length);
    addPowers();
  }
  if (drawn > 0)
    open("curves", "Over time", drawn);
  contents.hidden = false;
  watchColours(charts);
  watchPrinting(charts);
  byId("needs-script").remove();
}

start();
