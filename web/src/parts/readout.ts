// Numbers beside the drawing: the cursors with their difference, the value under the pointer, and a
// table of all that is drawn.
import { inRanges } from "../address";
import { valueAtTime, type Frame, type View } from "../drawing/panel";
import { highLines } from "../drawing/lines";
import { shownNumber } from "../drawing/ticks";
import { extent, type Trace } from "../drawing/trace";
import { element, fillTable, make, row } from "./elements";

export interface Readings {
  frames: [Frame, Frame];
  traces: [Trace[], Trace[]];
}

const at = (traces: Trace[], time: number | null): number | null =>
  traces[0] === undefined || time === null ? null : valueAtTime(traces[0], time);

/** A value as people read it: of a digital word the lines that are high. */
function shown(value: number | null, frame?: Frame): string {
  if (value === null) return "";
  if (frame?.isWord !== true) return shownNumber(value);
  const lines = highLines(value);
  const high = lines.length === 0 ? "no line high" : `high: ${inRanges(lines)}`;
  return `0x${value.toString(16).padStart(4, "0").toUpperCase()} (${high})`;
}

function between(a: number | null, b: number | null, frame: Frame): string {
  if (!frame.isWord) return shown(difference(a, b));
  if (a === null || b === null) return "";
  const lines = highLines(a ^ b);
  return lines.length === 0 ? "the same" : `other: ${inRanges(lines)}`;
}
const difference = (a: number | null, b: number | null): number | null =>
  a === null || b === null ? null : b - a;

/** The two cursors of the first epoch drawn; their times can be typed. */
export function showCursors(
  readings: Readings,
  cursors: (number | null)[],
  onType: (index: number, time: number | null) => void,
): void {
  const { frames, traces } = readings;
  const unit = frames[0].time;
  const heads = ["Cursor", `Time (${unit.name})`, ...frames.map((frame) => frame.label)];
  element("cursor-heads").replaceChildren(...row(heads, "th").children);
  const rows = cursors.map((time, index) => {
    const field = document.createElement("input");
    field.type = "number";
    field.step = "any";
    field.id = `cursor-${"ab"[index]!}`;
    field.setAttribute("aria-label", `Cursor ${"AB"[index]!}, time in ${unit.name}`);
    field.value = time === null ? "" : String(Number((time * unit.perSecond).toPrecision(9)));
    field.addEventListener("change", () =>
      onType(index, field.value === "" ? null : Number(field.value) / unit.perSecond),
    );
    const made = row([
      "AB"[index]!,
      "",
      ...traces.map((each, i) => shown(at(each, time), frames[i])),
    ]);
    made.children[1]!.append(field);
    return made;
  });
  const [a, b] = cursors;
  const differences = traces.map((each, i) =>
    between(at(each, a ?? null), at(each, b ?? null), frames[i]!),
  );
  const time = difference(a ?? null, b ?? null);
  rows.push(row(["B − A", shown(time === null ? null : time * unit.perSecond), ...differences]));
  const focused = document.activeElement?.id ?? "";
  element("cursor-rows").replaceChildren(...rows);
  if (focused.startsWith("cursor-")) element(focused).focus(); // who types goes on typing
}

export function showHover(readings: Readings, time: number | null): void {
  const part = element("hover");
  if (time === null) {
    part.textContent = "";
    return;
  }
  const unit = readings.frames[0].time;
  const texts = readings.traces.flatMap((traces, panel) =>
    traces.slice(0, 4).map((trace) => {
      const value = valueAtTime(trace, time);
      const frame = readings.frames[panel]!;
      return value === null ? "" : `${trace.name} ${shown(value, frame)} ${frame.unit}`;
    }),
  );
  const words = texts.filter((text) => text !== "").join(", ");
  part.textContent = `${shownNumber(time * unit.perSecond)} ${unit.name}: ${words}`;
}

/** What is drawn, for those who do not see it. */
export function showValues(readings: Readings, view: View): void {
  const unit = readings.frames[0].time;
  const rows = readings.traces.flatMap((traces, panel) =>
    traces.map((trace) => {
      const first = Math.max(0, Math.ceil(view.from / trace.interval));
      const end = Math.min(trace.points, Math.floor(view.to / trace.interval) + 1);
      const [low, high] = extent(trace, first, end);
      const values = [valueAtTime(trace, first * trace.interval), low, high];
      const frame = readings.frames[panel]!;
      return [trace.name, frame.label, ...values.map((each) => shown(each, frame))];
    }),
  );
  const table = element("shown");
  const [from, to] = [view.from, view.to].map((each) => shownNumber(each * unit.perSecond));
  fillTable(table, ["Curve", "Quantity", "First", "Lowest", "Highest"], rows);
  table.prepend(make("caption", `From ${from} to ${to} ${unit.name}`));
}
