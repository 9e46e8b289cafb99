// The drawing of the chosen epochs, with its title, key and doubts.
import { inRanges } from "../address";
import { asLines, type Lines } from "../drawing/lines";
import type { Frame } from "../drawing/panel";
import { timeUnit } from "../drawing/ticks";
import type { Trace } from "../drawing/trace";
import type { ScaleInfo } from "../messages";
import { showDetails } from "../parts/details";
import { element, make } from "../parts/elements";
import { paint, type Sweep } from "../sweeps";
import { current, say, state } from "./state";
import { afterMove, panels } from "./window";

const MOST_IN_KEY = 12;

export const colourOf = (name: string): string =>
  getComputedStyle(document.documentElement).getPropertyValue(name).trim();

const above = ({ entry }: Sweep): ScaleInfo => entry.response;
const below = ({ entry }: Sweep): ScaleInfo => entry.conductance ?? entry.stimulus;

function labelOf(scale: ScaleInfo | undefined, lines: Lines, isPlayed: boolean): string {
  if (lines.rows !== null) return `Digital ${isPlayed ? "output" : "input"}, lines`;
  return scale === undefined ? "" : `${scale.quantity} (${scale.unit})`;
}

function frame(scaleOf: (sweep: Sweep) => ScaleInfo, lines: Lines, hasTime: boolean): Frame {
  const scales = state.drawn.map(scaleOf);
  const [first] = scales;
  if (scales.some(({ unit }) => unit !== first?.unit))
    say(`The ${hasTime ? "stimuli" : "responses"} are in different units.`);
  const { bars, fit } = state.shown;
  return {
    label: labelOf(first, lines, hasTime),
    unit: first?.unit ?? "",
    isWord: first?.isWord ?? false,
    rows: lines.rows,
    hasTime,
    time: timeUnit(state.whole.to),
    bars,
    fit,
    ink: colourOf("--ink"),
    line: colourOf("--line"),
  };
}

export function titleText(): string {
  const [only] = state.drawn;
  if (only === undefined)
    return current()?.epochs === 0 ? "There are no epochs." : "Nothing is drawn.";
  if (state.drawn.length > 1) {
    const numbers = state.drawn.map(({ details }) => details.number);
    return `${numbers.length} epochs: ${inRanges(numbers)}`;
  }
  const { number, comment } = only.details;
  return `Epoch ${number}${comment === "" ? "" : `: ${comment}`}`;
}

/** Draws what was chosen, and tells of it. */
export function draw(): void {
  const { drawn, shown, isDark, view } = state;
  paint(drawn, shown.colour, isDark);
  const traces: [Trace[], Trace[]] = [
    drawn.flatMap(({ curves }) => curves.upper),
    drawn.flatMap(({ curves }) => curves.lower),
  ];
  const areWords = [above, below].map((of) => drawn[0] !== undefined && of(drawn[0]).isWord);
  const [upper, lower] = traces.map((each, i) => asLines(each, areWords[i]!)) as [Lines, Lines];
  state.readings = { frames: [frame(above, upper, false), frame(below, lower, true)], traces };
  element("title").textContent = titleText();
  panels[0].show(upper.traces, state.readings.frames[0], view);
  panels[1].show(lower.traces, state.readings.frames[1], view);
  showNames();
  showKey(traces);
  showLines(upper, lower);
  showDoubt();
  showEntries();
  const opened = current();
  if (opened !== undefined) showDetails(drawn[0]?.details ?? null, opened);
  afterMove();
}

function showNames(): void {
  const { frames } = state.readings!;
  const words = state.drawn
    .map(({ entry }) => entry.parameters.words)
    .slice(0, 3)
    .join("; ");
  element("upper").setAttribute("aria-label", `${frames[0].label}, ${titleText()}`);
  element("lower").setAttribute("aria-label", `${frames[1].label}: ${words}`);
}

/** Epochs by their numbers, or the curves of one, a component with its words. */
function keyTexts([upper, lower]: [Trace[], Trace[]]): { trace: Trace; text: string }[] {
  if (state.drawn.length > 1) return upper.map((trace) => ({ trace, text: String(trace.epoch) }));
  const parts = state.drawn[0]?.entry.components ?? [];
  if (lower.length < 2) return [];
  return lower.map((trace) => {
    const name = trace.name.replace(/^epoch \d+ /, "");
    const words = trace.component === null ? "" : `: ${parts[trace.component]?.words ?? ""}`;
    return { trace, text: name + words };
  });
}

function showKey(traces: [Trace[], Trace[]]): void {
  const texts = keyTexts(traces);
  const parts = texts.slice(0, MOST_IN_KEY).map(({ trace, text }) => {
    const part = make("span", text);
    part.style.setProperty("--swatch", trace.style.colour);
    return part;
  });
  if (texts.length > MOST_IN_KEY) parts.push(make("i", `and ${texts.length - MOST_IN_KEY} more`));
  element("key").replaceChildren(...parts);
}

function showLines(upper: Lines, lower: Lines): void {
  const texts = [
    upper.words === "" ? "" : `Digital input: ${upper.words}`,
    lower.words === "" ? "" : `Digital output: ${lower.words}`,
  ].filter((text) => text !== "");
  const part = element("lines");
  part.textContent = texts.join("\n");
  part.hidden = texts.length === 0;
}

function showDoubt(): void {
  const texts = state.drawn.flatMap(({ details, entry }) => {
    const text = entry.problem || (entry.isDoubtful ? entry.doubt : "");
    return text === "" ? [] : [`Stimulus of epoch ${details.number}: ${text}`];
  });
  const part = element("doubt");
  part.hidden = texts.length === 0;
  part.textContent = [...new Set(texts)].slice(0, 3).join("\n");
}

function showEntries(): void {
  const field = element<HTMLSelectElement>("entry");
  const entries = state.drawn[0]?.details.entries ?? [];
  const options = entries.map((entry, i) => {
    const option = document.createElement("option");
    option.value = String(i);
    option.textContent = `${i}: ${entry.input}, ${entry.output}`;
    return option;
  });
  field.replaceChildren(...options);
  field.value = String(state.shown.entry);
  element("components").closest("label")!.hidden = !state.drawn.some(
    ({ entry }) => entry.components.length > 0,
  );
}
