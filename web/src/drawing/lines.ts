// Digital words as their lines: each line that changes is a curve of its own, the others are named.
import { inRanges } from "../address";
import { outlineOf, type Trace } from "./trace";

const LINES = 16;
const PITCH = 2; // from one line's low level to the next one's

/** A place on the vertical axis that has a name instead of a number. */
export interface Row {
  name: string;
  /** Where its low level is. */
  base: number;
}
export interface Lines {
  traces: Trace[];
  /** Null where numbers are drawn. */
  rows: Row[] | null;
  /** What the lines do, in words; empty of numbers. */
  words: string;
}

/** The lines of a word that are high, lowest first. */
export function highLines(word: number): number[] {
  return Array.from({ length: LINES }, (_, line) => line).filter((line) => (word >> line) & 1);
}

const kept = new WeakMap<Trace, Map<string, Trace>>();

/** One line as a curve above its base; asked for again it is the same one. */
function lineOf(word: Trace, line: number, base: number): Trace {
  const known = kept.get(word) ?? new Map<string, Trace>();
  kept.set(word, known);
  const key = `${line}:${base}`;
  const there = known.get(key);
  if (there !== undefined) return there;
  const values = Uint8Array.from(word.values!, (value) => base + ((value >> line) & 1));
  const made: Trace = {
    ...word,
    name: `${word.name}, line ${line}`,
    values,
    outline: outlineOf(values),
    get style() {
      return word.style;
    },
  };
  known.set(key, made);
  return made;
}

interface Seen {
  everHigh: number;
  everLow: number;
}
const seen = new WeakMap<Trace, Seen>();

function seenIn(word: Trace): Seen {
  const known = seen.get(word);
  if (known !== undefined) return known;
  const found = { everHigh: 0, everLow: 0 };
  for (const value of word.values!) {
    found.everHigh |= value;
    found.everLow |= ~value;
  }
  seen.set(word, found);
  return found;
}

function wordsOf(changing: number[], high: number[]): string {
  const listed = (lines: number[]): string =>
    `line${lines.length > 1 ? "s" : ""} ${inRanges(lines)}`;
  const parts = changing.length > 0 ? [`${listed(changing)} drawn`] : ["no line changes"];
  if (high.length > 0) parts.push(`${listed(high)} high throughout`);
  if (changing.length + high.length < LINES) parts.push("the others low");
  return parts.join("; ");
}

/** What is drawn of curves, which are of words or of numbers; long ones of words stay numbers. */
export function asLines(traces: Trace[], areWords: boolean): Lines {
  if (!areWords || traces.length === 0 || traces.some(({ values }) => values === null))
    return { traces, rows: null, words: "" };
  const all = traces.map(seenIn);
  const everHigh = all.reduce((sum, each) => sum | each.everHigh, 0);
  const everLow = all.reduce((sum, each) => sum | each.everLow, 0);
  const changing = highLines(everHigh & everLow);
  const words = wordsOf(changing, highLines(everHigh & ~everLow));
  if (changing.length === 0) return { traces, rows: null, words };
  const rows = changing.map((line, i) => ({
    name: String(line),
    base: PITCH * (changing.length - 1 - i),
  }));
  const curves = traces.flatMap((trace) =>
    changing.map((line, i) => lineOf(trace, line, rows[i]!.base)),
  );
  return { traces: curves, rows, words };
}
