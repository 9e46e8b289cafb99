// The page: which recording and epochs are shown, and what the person does with them.
import { fromAddress, inRanges, toAddress, type Shown } from "./address";
import { measure, type Step } from "./analysis/family";
import { Client } from "./client";
import { listen, zoomed } from "./drawing/gestures";
import { Panel, type Frame, type View } from "./drawing/panel";
import { asCsv, asPng, asSvg, download, type CsvColumn } from "./drawing/save";
import { timeUnit } from "./drawing/ticks";
import type { Entry, Opened } from "./messages";
import { showDetails, showFindings } from "./parts/details";
import { element, make } from "./parts/elements";
import { noFamily, showFamily } from "./parts/family";
import { EpochList } from "./parts/list";
import { showCursors, showHover, showValues, type Readings } from "./parts/readout";
import { cameWith, fileWithin } from "./sources";
import { Sweeps, paint, type Sweep } from "./sweeps";

const FOLLOWING = 1000; // between two looks at a file that grows [ms]
const MOST_DRAWN = 100;
const MOST_IN_KEY = 12;

const client = new Client();
const sweeps = new Sweeps(client);
const recordings: Opened[] = [];
let shown: Shown = fromAddress(location.hash);
let sweepsShown: Sweep[] = [];
let whole: View = { from: 0, to: 1 };
let view: View = whole;
let readings: Readings | null = null;
let round = 0;
let isDark = matchMedia("(prefers-color-scheme: dark)").matches;

const checks = ["components", "fit", "bars"] as const;
const colourOf = (name: string): string =>
  getComputedStyle(document.documentElement).getPropertyValue(name).trim();
const isNarrow = (): boolean => innerWidth < 760;

const onHover = (time: number | null): void => {
  if (readings !== null) showHover(readings, time);
};
const panels: [Panel, Panel] = [
  new Panel(
    element("upper"),
    () => (isNarrow() ? 230 : 340),
    onHover,
    (to) => move(to),
  ),
  new Panel(
    element("lower"),
    () => (isNarrow() ? 170 : 210),
    onHover,
    (to) => move(to),
  ),
];
const list = new EpochList({
  rows: (first, count) => {
    const recording = current()?.recording ?? 0;
    return client.ask("rows", { recording, first, count });
  },
  choose: (epochs) => void choose(epochs),
});

function say(problem: string): void {
  const part = element("message");
  part.textContent = problem;
  part.hidden = problem === "";
}

async function trying<T>(work: Promise<T>): Promise<T | null> {
  try {
    return await work;
  } catch (error) {
    say(error instanceof Error ? error.message : String(error));
    return null;
  }
}

const current = (): Opened | undefined => recordings[shown.recording];

function remember(): void {
  const isWhole = view.from === whole.from && view.to === whole.to;
  shown.from = isWhole ? null : Number(view.from.toPrecision(9));
  shown.to = isWhole ? null : Number(view.to.toPrecision(9));
  history.replaceState(null, "", toAddress(shown));
}

// ---- Recordings ----------------------------------------------------------------------------

function add(opened: Opened): void {
  recordings.push(opened);
  const option = document.createElement("option");
  option.value = String(recordings.length - 1);
  option.textContent = opened.name;
  element("recording").append(option);
  element("choose").hidden = recordings.length < 2;
}

async function openFiles(files: File[]): Promise<void> {
  say("");
  const before = recordings.length;
  for (const file of files) {
    const opened = await trying(client.ask("openFile", { file }));
    if (opened !== null) add(opened);
  }
  if (recordings.length > before) await show({ ...fromAddress(""), recording: before });
}

/** Shows a recording: its first epoch before all that takes longer. */
async function show(wanted: Shown): Promise<void> {
  shown = { ...wanted, recording: Math.min(wanted.recording, recordings.length - 1) };
  const opened = current();
  if (opened === undefined) return;
  for (const id of ["epochs", "view"]) element(id).hidden = false;
  element("start").hidden = true;
  element<HTMLSelectElement>("recording").value = String(shown.recording);
  element<HTMLSelectElement>("colour").value = shown.colour;
  for (const id of checks) element<HTMLInputElement>(id).checked = shown[id];
  showFindings([], false);
  summarise(opened);
  document.title = `${opened.name} – Corvantis`;
  const epochs = shown.epochs.filter((each) => each < opened.epochs);
  const window =
    shown.from !== null && shown.to !== null ? { from: shown.from, to: shown.to } : null;
  await choose(epochs.length > 0 ? epochs : opened.epochs > 0 ? [0] : [], window);
  list.show(opened.epochs, true);
  list.mark(shown.epochs);
  const findings = await trying(client.ask("findings", { recording: opened.recording }));
  if (findings !== null && current() === opened) showFindings(findings, opened.foundByWalking);
}

function summarise(opened: Opened): void {
  const size = opened.size.toLocaleString("en");
  element("summary").textContent = `${opened.name}: ${opened.epochs} epochs, ${size} bytes`;
}

async function follow(): Promise<void> {
  for (const opened of recordings) {
    const epochs = await client.ask("refresh", { recording: opened.recording }).catch(() => null);
    if (epochs === null || epochs === opened.epochs) continue;
    const wasAtEnd = shown.epochs.length === 1 && shown.epochs[0] === opened.epochs - 1;
    const wasEmpty = opened.epochs === 0;
    opened.epochs = epochs;
    if (opened !== current()) continue;
    summarise(opened);
    list.show(epochs, false);
    if (wasAtEnd || wasEmpty) await choose([epochs - 1]);
  }
}

// ---- Epochs --------------------------------------------------------------------------------

async function choose(epochs: number[], window: View | null = null): Promise<void> {
  const now = ++round;
  const opened = current();
  if (opened === undefined) return;
  say(epochs.length > MOST_DRAWN ? `The first ${MOST_DRAWN} of the chosen epochs are drawn.` : "");
  shown.epochs = epochs.slice(0, MOST_DRAWN);
  const gathered: Sweep[] = [];
  const problems: string[] = [];
  for (const epoch of shown.epochs) {
    try {
      gathered.push(await sweeps.sweep(opened.recording, epoch, shown.entry, shown.components));
    } catch (error) {
      problems.push(error instanceof Error ? error.message : String(error));
    }
    if (now !== round) return;
  }
  if (problems.length > 0) say(problems.join("\n"));
  const lengths = (all: Sweep[]): string =>
    all.map(({ details }) => details.points * details.interval).join();
  const isOther = lengths(sweepsShown) !== lengths(gathered);
  sweepsShown = gathered;
  const durations = gathered.map(({ details }) => (details.points * details.interval) / 1e6);
  whole = { from: 0, to: Math.max(...durations, 1e-6) };
  if (window !== null) view = window;
  else if (isOther) view = whole;
  noFamily();
  draw();
  list.mark(shown.epochs);
  remember();
}

function common(kind: "upper" | "lower", texts: string[]): string {
  const [first] = texts;
  if (texts.some((each) => each !== first))
    say(`The ${kind === "upper" ? "responses" : "stimuli"} are in different units.`);
  return first ?? "";
}

function frames(): [Frame, Frame] {
  const time = timeUnit(whole.to);
  const below = (entry: Entry): Entry["stimulus"] => entry.conductance ?? entry.stimulus;
  const base = {
    time,
    bars: shown.bars,
    fit: shown.fit,
    ink: colourOf("--ink"),
    line: colourOf("--line"),
  };
  const labelled = (scale: Entry["stimulus"] | undefined): string =>
    scale === undefined ? "" : `${scale.quantity} (${scale.unit})`;
  const entries = sweepsShown.map(({ entry }) => entry);
  const [first] = entries;
  common(
    "upper",
    entries.map((entry) => entry.response.unit),
  );
  common(
    "lower",
    entries.map((entry) => below(entry).unit),
  );
  return [
    { ...base, label: labelled(first?.response), unit: first?.response.unit ?? "", hasTime: false },
    {
      ...base,
      label: labelled(first && below(first)),
      unit: first ? below(first).unit : "",
      hasTime: true,
    },
  ];
}

function titleText(): string {
  const [only] = sweepsShown;
  if (only === undefined)
    return current()?.epochs === 0 ? "There are no epochs." : "Nothing is drawn.";
  if (sweepsShown.length > 1)
    return `${sweepsShown.length} epochs: ${inRanges(sweepsShown.map(({ details }) => details.number))}`;
  const { number, comment } = only.details;
  return `Epoch ${number}${comment === "" ? "" : `: ${comment}`}`;
}

function draw(): void {
  paint(sweepsShown, shown.colour, isDark);
  const both = frames();
  const upper = sweepsShown.flatMap(({ curves }) => curves.upper);
  const lower = sweepsShown.flatMap(({ curves }) => curves.lower);
  readings = { frames: both, traces: [upper, lower] };
  element("title").textContent = titleText();
  panels[0].show(upper, both[0], view);
  panels[1].show(lower, both[1], view);
  showNames();
  showKey();
  showDoubt();
  showEntries();
  const [first] = sweepsShown;
  const opened = current();
  if (opened !== undefined) showDetails(first?.details ?? null, opened);
  afterMove();
}

function showNames(): void {
  const words = sweepsShown
    .map(({ entry }) => entry.parameters.words)
    .slice(0, 3)
    .join("; ");
  element("upper").setAttribute("aria-label", `${readings!.frames[0].label}, ${titleText()}`);
  element("lower").setAttribute("aria-label", `${readings!.frames[1].label}: ${words}`);
}

function showKey(): void {
  const [upper, lower] = readings!.traces;
  const many = sweepsShown.length > 1;
  const named = many
    ? upper.map((trace) => ({ trace, text: String(trace.epoch) }))
    : lower.map((trace) => ({ trace, text: trace.name.replace(/^epoch \d+ /, "") }));
  const parts = (many || lower.length > 1 ? named : []).slice(0, MOST_IN_KEY).map((each) => {
    const part = make("span", each.text);
    part.style.setProperty("--swatch", each.trace.style.colour);
    return part;
  });
  if (many && upper.length > MOST_IN_KEY)
    parts.push(make("i", `and ${upper.length - MOST_IN_KEY} more`));
  element("key").replaceChildren(...parts);
}

function showDoubt(): void {
  const texts = sweepsShown.flatMap(({ details, entry }) => {
    const text = entry.problem || (entry.isDoubtful ? entry.doubt : "");
    return text === "" ? [] : [`Stimulus of epoch ${details.number}: ${text}`];
  });
  const part = element("doubt");
  part.hidden = texts.length === 0;
  part.textContent = [...new Set(texts)].slice(0, 3).join("\n");
}

function showEntries(): void {
  const field = element<HTMLSelectElement>("entry");
  const entries = sweepsShown[0]?.details.entries ?? [];
  const options = entries.map((entry, i) => {
    const option = document.createElement("option");
    option.value = String(i);
    option.textContent = `${i}: ${entry.input}, ${entry.output}`;
    return option;
  });
  field.replaceChildren(...options);
  field.value = String(shown.entry);
  element("components").closest("label")!.hidden = !sweepsShown.some(
    ({ entry }) => entry.components.length > 0,
  );
}

// ---- The window ----------------------------------------------------------------------------

let isDue = false;

function move(to: View): void {
  const interval = Math.min(...sweepsShown.map(({ details }) => details.interval / 1e6), 1);
  const span = Math.min(Math.max(to.to - to.from, 4 * interval), whole.to - whole.from);
  const from = Math.min(Math.max(to.from, whole.from), whole.to - span);
  view = { from, to: from + span };
  if (isDue) return;
  isDue = true;
  requestAnimationFrame(() => {
    isDue = false;
    for (const panel of panels) panel.look(view);
    afterMove();
  });
}

let settling = 0;

function afterMove(): void {
  for (const panel of panels) panel.setCursors(shown.cursors);
  clearTimeout(settling);
  settling = setTimeout(() => void settle(), 120);
}

/** What need not keep up with the hand. */
async function settle(): Promise<void> {
  if (readings === null) return;
  remember();
  showValues(readings, view);
  const all = readings.traces.flat();
  const came = await trying(Promise.all(all.map((t) => sweeps.comeCloser(t, view.from, view.to))));
  if (came?.some(Boolean)) for (const panel of panels) panel.look(view);
  showCursors(readings, shown.cursors, (index, time) => setCursor(index, time));
}

function setCursor(index: number, time: number | null): void {
  shown.cursors[index] = time;
  for (const panel of panels) panel.setCursors(shown.cursors);
  if (readings !== null)
    showCursors(readings, shown.cursors, (which, typed) => setCursor(which, typed));
  remember();
}

// ---- Families, and what is saved -----------------------------------------------------------

function stepOf(sweep: Sweep): Step | null {
  const { entry, details, curves } = sweep;
  const number = (name: string): number =>
    Number(entry.parameters.parameters.find((field) => field.name === name)?.values[0] ?? 0);
  const [response, stimulus] = [curves.upper[0]?.values, curves.lower[0]?.values];
  const [before, points] = [number("prePoints"), number("points")];
  if (!response || !stimulus || before < 1 || points < 1) return null;
  return measure(details.number, response, stimulus, before, points, details.interval / 1e6);
}

async function chooseFamily(): Promise<void> {
  const [epoch] = shown.epochs;
  const opened = current();
  if (epoch === undefined || opened === undefined) return;
  const given = { recording: opened.recording, epoch, entry: shown.entry };
  const family = await trying(client.ask("family", given));
  if (family === null) return;
  shown.colour = "level";
  element<HTMLSelectElement>("colour").value = "level";
  await choose(family);
  const steps = sweepsShown.map(stepOf).filter((step) => step !== null);
  const { frames } = readings!;
  showFamily(
    steps.sort((a, b) => a.level - b.level),
    {
      stimulus: frames[1].label,
      stimulusUnit: frames[1].unit,
      response: frames[0].label,
      responseUnit: frames[0].unit,
    },
  );
  element<HTMLDetailsElement>("family-details").open = true;
}

async function csvColumns(inCounts: boolean): Promise<CsvColumn[]> {
  const columns: CsvColumn[] = [];
  for (const [panel, traces] of readings!.traces.entries()) {
    for (const trace of traces) {
      const kind = trace.name.replace(/^epoch \d+ /, "").replaceAll(" ", "");
      const unit = inCounts ? "counts" : readings!.frames[panel]!.unit;
      const epoch = sweepsShown.length > 1 ? `_${trace.epoch}` : "";
      const isCounted = inCounts && (kind === "response" || kind === "stimulus");
      if (inCounts && !isCounted) continue;
      const values = inCounts ? await sweeps.counts(trace) : trace.values;
      if (values === null)
        throw new Error("An epoch this long is saved by the command corvantis export.");
      columns.push({ name: `${kind}${epoch}_${unit}`, trace, values });
    }
  }
  return columns;
}

async function save(kind: string): Promise<void> {
  if (readings === null) return;
  const stem = (current()?.name ?? "recording").replace(/\.[^.]*$/, "");
  const name = `${stem}-epoch-${inRanges(shown.epochs).replaceAll(",", "_")}`;
  if (kind === "png")
    download(
      `${name}.png`,
      await asPng(panels, titleText(), colourOf("--paper"), colourOf("--ink")),
    );
  else if (kind === "svg") {
    paint(sweepsShown, shown.colour, false);
    const text = asSvg(panels, readings, view, titleText());
    paint(sweepsShown, shown.colour, isDark);
    download(`${name}.svg`, new Blob([text], { type: "image/svg+xml" }));
  } else {
    const inCounts = kind === "counts";
    const file = `${name}${inCounts ? "-counts" : ""}.csv`;
    download(file, asCsv(await csvColumns(inCounts), view));
  }
}

// ---- What the person does ------------------------------------------------------------------

function wear(dark: boolean): void {
  isDark = dark;
  document.documentElement.dataset.theme = dark ? "dark" : "light";
  element("theme").textContent = dark ? "Light" : "Dark";
  if (readings !== null) draw();
}

function step(by: number): void {
  const opened = current();
  const next = (by > 0 ? (shown.epochs.at(-1) ?? -1) : (shown.epochs[0] ?? 1)) + by;
  if (opened !== undefined && next >= 0 && next < opened.epochs) void choose([next]);
}

const toWhole = (): void => move(whole);
const zoom = (factor: number): void => move(zoomed(view, (view.from + view.to) / 2, factor));

function listenToAll(): void {
  const click = (id: string, act: () => void): void => element(id).addEventListener("click", act);
  const change = (id: string, act: (value: string) => void): void =>
    element<HTMLSelectElement>(id).addEventListener("change", (event) =>
      act((event.target as HTMLSelectElement).value),
    );
  const file = element<HTMLInputElement>("file");
  file.addEventListener("change", () => {
    void openFiles([...(file.files ?? [])]).then(() => (file.value = ""));
  });
  click("theme", () => wear(!isDark));
  click("previous", () => step(-1));
  click("next", () => step(1));
  click("zoom-in", () => zoom(0.5));
  click("zoom-out", () => zoom(2));
  click("whole", toWhole);
  click("family", () => void chooseFamily());
  change("recording", (value) => void show({ ...fromAddress(""), recording: Number(value) }));
  change("entry", (value) => {
    shown.entry = Number(value);
    void choose(shown.epochs, view);
  });
  change("colour", (value) => {
    shown.colour = value === "level" ? "level" : "order";
    draw();
  });
  change("save", (value) => {
    element<HTMLSelectElement>("save").value = "";
    void trying(save(value));
  });
  for (const id of checks)
    change(id, () => {
      shown[id] = element<HTMLInputElement>(id).checked;
      void choose(shown.epochs, view);
    });
  listen(element("drawing"), {
    view: () => view,
    move,
    timeAt: (x) => panels[0].timeAt(x),
    whole: toWhole,
    step,
    click: (time, isSecond) => setCursor(isSecond ? 1 : 0, time),
  });
  listenToDrops();
  // The address may be another one again by now: what was shown before writes it late.
  window.addEventListener(
    "hashchange",
    (event) => void show(fromAddress(new URL(event.newURL).hash)),
  );
  new ResizeObserver(() => panels.forEach((panel) => panel.resize(view))).observe(
    element("drawing"),
  );
}

function listenToDrops(): void {
  const mark = (isOver: boolean): void => void document.body.classList.toggle("dropping", isOver);
  addEventListener("dragover", (event) => {
    event.preventDefault();
    mark(true);
  });
  addEventListener("dragleave", () => mark(false));
  document.addEventListener("drop", (event) => {
    event.preventDefault();
    mark(false);
    void openFiles([...(event.dataTransfer?.files ?? [])]);
  });
}

async function start(): Promise<void> {
  wear(isDark);
  listenToAll();
  const { within = [], served = [], follow: isFollowed } = cameWith();
  for (const each of within) {
    const opened = await trying(fileWithin(each).then((file) => client.ask("openFile", { file })));
    if (opened !== null) add(opened);
  }
  for (const { name, address } of served) {
    const given = { name, address: new URL(address, location.href).href };
    const opened = await trying(client.ask("openAddress", given));
    if (opened !== null) add(opened);
  }
  if (recordings.length > 0) await show(fromAddress(location.hash));
  if (isFollowed === true) {
    const again = (): void => void follow().finally(() => setTimeout(again, FOLLOWING));
    again();
  }
}

void start();
