// What is drawn of the chosen epochs, asked for once and kept: responses above, stimuli,
// conductances or components below.
import type { Shown } from "./address";
import type { Client } from "./client";
import type { Direction, Entry, EpochDetails, Wanted } from "./messages";
import { DOUBTFUL, SECOND, colours } from "./drawing/colours";
import { outlineOf, type Trace } from "./drawing/trace";

const LONGEST_AT_HAND = 1 << 22; // points of a curve whose values are all kept here
const MOST_DRAWN = 1 << 24; // points of all epochs that are drawn together, at 8 bytes a curve
const MOST_KEPT = 1 << 22; // points of curves that are kept for another look
const LONG_STRETCH = 1024;
const CLOSE_UP = 1 << 18; // points

/** How long a curve's values are all kept where so many epochs are drawn together. */
const longestOf = (epochs: number): number =>
  Math.max(CLOSE_UP, Math.min(LONGEST_AT_HAND, Math.floor(MOST_DRAWN / Math.max(epochs, 1))));

export interface Curves {
  upper: Trace[];
  lower: Trace[];
}
export interface Sweep {
  details: EpochDetails;
  entry: Entry;
  curves: Curves;
}

interface Source {
  recording: number;
  epoch: number;
  entry: number;
  points: number;
  interval: number;
  /** Too long for all its values to be kept. */
  isLong: boolean;
}

export class Sweeps {
  private epochs = new Map<string, Promise<EpochDetails>>();
  private kept = new Map<string, Promise<Trace>>();
  private wants = new WeakMap<Trace, Wanted & { recording: number }>();

  constructor(private readonly client: Client) {}

  forget(): void {
    this.kept.clear();
    this.epochs.clear();
  }

  details(recording: number, epoch: number): Promise<EpochDetails> {
    const key = `${recording}:${epoch}`;
    const known = this.epochs.get(key) ?? this.client.ask("epoch", { recording, epoch });
    this.epochs.set(key, known);
    known.catch(() => this.epochs.delete(key));
    return known;
  }

  /** One of so many epochs that are drawn together. */
  async sweep(recording: number, epoch: number, shown: Shown): Promise<Sweep> {
    const { entry, components: parts, epochs } = shown;
    const details = await this.details(recording, epoch);
    const chosen = details.entries[entry];
    if (chosen === undefined) throw new Error(`Epoch ${epoch} has no channel ${entry}.`);
    const { points } = details;
    const interval = details.interval / 1e6;
    const isLong = points > longestOf(epochs.length);
    const source = { recording, epoch, entry, points, interval, isLong };
    const upper = [await this.trace(source, "response", null)];
    return {
      details,
      entry: chosen,
      curves: { upper, lower: await this.below(source, chosen, parts) },
    };
  }

  private async below(source: Source, entry: Entry, parts: boolean): Promise<Trace[]> {
    if (entry.conductance !== null)
      return Promise.all([
        this.trace(source, "excitatory", null),
        this.trace(source, "inhibitory", null),
      ]);
    if (entry.problem !== "") return [];
    const whole = await this.trace(source, "stimulus", null);
    const components = parts ? entry.components.map((_, component) => component) : [];
    const each = await Promise.all(
      components.map((component) => this.trace(source, "stimulus", component)),
    );
    return [whole, ...each];
  }

  private trace(source: Source, direction: Direction, component: number | null): Promise<Trace> {
    const { recording, epoch, entry, isLong } = source;
    const key = [recording, epoch, entry, direction, component, isLong].join(":");
    const known = this.kept.get(key) ?? this.fetch(source, direction, component);
    this.kept.delete(key);
    this.kept.set(key, known);
    known.catch(() => this.kept.delete(key));
    void this.letGo();
    return known;
  }

  /** The curves that were looked at longest ago are not kept. */
  private async letGo(): Promise<void> {
    const all = [...this.kept];
    const sizes = await Promise.all(
      all.map(([, trace]) =>
        trace.then(
          (t) => t.points,
          () => 0,
        ),
      ),
    );
    let sum = sizes.reduce((total, each) => total + each, 0);
    for (const [i, [key]] of all.entries()) {
      if (sum <= MOST_KEPT) break;
      if (i < all.length - 4) this.kept.delete(key);
      sum -= sizes[i]!;
    }
  }

  private async fetch(
    { recording, epoch, entry, points, interval, isLong }: Source,
    direction: Direction,
    component: number | null,
  ): Promise<Trace> {
    const wanted = { recording, epoch, entry, direction, component, first: 0, count: points };
    const values = isLong ? null : await this.client.ask("values", wanted);
    const outline =
      values === null
        ? await this.client.ask("outline", { ...wanted, stretch: LONG_STRETCH })
        : outlineOf(values);
    const style = { colour: "#000000", dash: [] };
    const part = component === null ? direction : `component ${component}`;
    const name = `epoch ${epoch} ${part}`;
    const shape = { epoch, name, component, style, interval, points };
    const trace: Trace = { ...shape, values, outline, closeUp: null };
    this.wants.set(trace, wanted);
    return trace;
  }

  /** Values of a long curve in a window that is narrow enough; whether there are new ones. */
  async comeCloser(trace: Trace, from: number, to: number): Promise<boolean> {
    const wanted = this.wants.get(trace);
    const first = Math.max(0, Math.floor(from / trace.interval) - 2);
    const end = Math.min(trace.points, Math.ceil(to / trace.interval) + 3);
    if (trace.values !== null || wanted === undefined || end - first > CLOSE_UP) return false;
    const close = trace.closeUp;
    if (close && close.first <= first && close.first + close.values.length >= end) return false;
    const room = Math.floor((CLOSE_UP - (end - first)) / 2);
    const begin = Math.max(0, first - room);
    const count = Math.min(trace.points, end + room) - begin;
    const values = await this.client.ask("values", { ...wanted, first: begin, count });
    trace.closeUp = { first: begin, values };
    return true;
  }

  /** Converter counts of a curve. */
  counts(trace: Trace): Promise<Int16Array> {
    return this.client.ask("counts", this.wants.get(trace)!);
  }
}

function farthest(trace: Trace): number {
  const { lows, highs } = trace.outline;
  const start = lows[0] ?? 0;
  const values = [Math.min(...lows), Math.max(...highs)];
  return values.reduce((far, each) =>
    Math.abs(each - start) > Math.abs(far - start) ? each : far,
  );
}

/** Gives each sweep its colour, the same above and below, by its place or by its stimulus's level. */
export function paint(sweeps: Sweep[], by: "order" | "level", isDark: boolean): void {
  const shades = colours(sweeps.length, isDark);
  const order = [...sweeps];
  const level = new Map(
    sweeps.map((each) => [each, each.curves.lower[0] ? farthest(each.curves.lower[0]) : 0]),
  );
  if (by === "level") order.sort((a, b) => level.get(a)! - level.get(b)!);
  order.forEach((sweep, i) => {
    const colour = shades[i]!;
    const isDoubtful = sweep.entry.isDoubtful;
    sweep.curves.upper.forEach((trace) => (trace.style = { colour, dash: [] }));
    const parts = sweep.curves.lower.length;
    const own = parts > 1 && sweeps.length === 1 ? colours(parts + 1, isDark).slice(1) : null;
    sweep.curves.lower.forEach((trace, k) => {
      const dash = k > 0 ? SECOND : isDoubtful ? DOUBTFUL : [];
      trace.style = { colour: k === 0 || own === null ? colour : own[k]!, dash };
    });
  });
}
