// A curve of any length, and what of it is drawn in a window: every point, or of each column of the
// picture its lowest and its highest value, so that no spike is lost.
import type { Outline } from "../messages";

const STRETCH = 64;
export type Values = Float64Array | Uint8Array;

export interface Style {
  colour: string;
  dash: number[];
}
export interface Trace {
  epoch: number;
  name: string;
  style: Style;
  /** Of one point [s]. */
  interval: number;
  points: number;
  /** Of a sum: which component; else null. */
  component: number | null;
  /** All values, or null of a trace that is too long for it. */
  values: Values | null;
  outline: Outline;
  /** Of a long trace the window that was last looked at closely. */
  closeUp: { first: number; values: Float64Array } | null;
}

/** The outline of values that are at hand. */
export function outlineOf(values: Values): Outline {
  const stretches = Math.ceil(values.length / STRETCH);
  const lows = new Float32Array(stretches);
  const highs = new Float32Array(stretches);
  for (let k = 0; k < stretches; ++k) {
    let low = Infinity;
    let high = -Infinity;
    for (let i = k * STRETCH; i < Math.min((k + 1) * STRETCH, values.length); ++i) {
      if (values[i]! < low) low = values[i]!;
      if (values[i]! > high) high = values[i]!;
    }
    lows[k] = low;
    highs[k] = high;
  }
  return { stretch: STRETCH, lows, highs };
}

/** The value at a point, as far as it is at hand. */
export function valueAt(trace: Trace, point: number): number | null {
  if (point < 0 || point >= trace.points) return null;
  if (trace.values !== null) return trace.values[point]!;
  const close = trace.closeUp;
  return close?.values[point - close.first] ?? null;
}

export function extent(trace: Trace, first = 0, end = trace.points): [number, number] {
  let low = Infinity;
  let high = -Infinity;
  const { stretch, lows, highs } = trace.outline;
  const take = (least: number, most: number): void => {
    if (least < low) low = least;
    if (most > high) high = most;
  };
  for (let i = Math.max(first, 0); i < Math.min(end, trace.points);) {
    const k = Math.floor(i / stretch);
    const isWhole = i === k * stretch && i + stretch <= end;
    if (trace.values === null || isWhole) {
      take(lows[k]!, highs[k]!);
      i = (k + 1) * stretch;
    } else {
      take(trace.values[i]!, trace.values[i]!);
      ++i;
    }
  }
  return [low, high];
}

export type Curve = [times: number[], values: (number | null)[]];
const POINTS_PER_COLUMN = 4;

/** The points of a window that are to be had one by one, or null if that is too many or too few. */
function everyPoint(trace: Trace, first: number, end: number, columns: number): Curve | null {
  if (end - first > POINTS_PER_COLUMN * columns) return null;
  const curve: Curve = [[], []];
  for (let i = first; i < end; ++i) {
    const value = valueAt(trace, i);
    if (value === null) return null;
    curve[0].push(i * trace.interval);
    curve[1].push(value);
  }
  return curve;
}

const SCANNED = 1024; // most points of a column that are looked at one by one
const SHARES = [0, 0.25, 0.5, 0.75]; // of a column, where its four points stand

/** First, lowest, highest and last value of a column, the two in the middle in their order. */
function columnOf(trace: Trace, begin: number, end: number): number[] {
  const { values } = trace;
  const [first, behind] = [Math.max(begin, 0), Math.min(end, trace.points)];
  if (values === null || behind - first > SCANNED) {
    const [low, high] = extent(trace, first, behind);
    const isRising = (valueAt(trace, first) ?? low) <= (low + high) / 2;
    const [one, other] = isRising ? [low, high] : [high, low];
    return [valueAt(trace, first) ?? one, one, other, valueAt(trace, behind - 1) ?? other];
  }
  let [low, high] = [first, first];
  for (let i = first + 1; i < behind; ++i) {
    if (values[i]! < values[low]!) low = i;
    if (values[i]! > values[high]!) high = i;
  }
  return [first, Math.min(low, high), Math.max(low, high), behind - 1].map((i) => values[i]!);
}

/** What is drawn of a window [s] in so many columns. */
export function drawn(trace: Trace, from: number, to: number, columns: number): Curve {
  const first = Math.max(0, Math.floor(from / trace.interval) - 1);
  const end = Math.min(trace.points, Math.ceil(to / trace.interval) + 2);
  const every = everyPoint(trace, first, end, columns);
  if (every !== null) return every;
  const width = (to - from) / columns;
  const curve: Curve = [[], []];
  for (let column = 0; column < columns; ++column) {
    const start = from + column * width;
    const begin = Math.floor(start / trace.interval);
    const behind = Math.max(Math.floor((start + width) / trace.interval), begin + 1);
    if (behind <= 0 || begin >= trace.points) continue;
    curve[0].push(...SHARES.map((share) => start + share * width));
    curve[1].push(...columnOf(trace, begin, behind));
  }
  return curve;
}

/** Curves over one common time axis, with nothing where a curve has no point. */
export function joined(curves: Curve[]): [number[], ...(number | null | undefined)[][]] {
  const [first] = curves;
  if (first === undefined) return [[]];
  const isSame = curves.every(
    ([times]) =>
      times.length === first[0].length &&
      times[0] === first[0][0] &&
      times.at(-1) === first[0].at(-1) &&
      times[1] === first[0][1],
  );
  if (isSame) return [first[0], ...curves.map(([, values]) => values)];
  const times = [...new Set(curves.flatMap(([each]) => each))].sort((a, b) => a - b);
  const places = new Map(times.map((time, i) => [time, i]));
  return [
    times,
    ...curves.map(([each, values]) => {
      const row = new Array<number | null | undefined>(times.length).fill(undefined);
      each.forEach((time, i) => (row[places.get(time)!] = values[i]));
      return row;
    }),
  ];
}
