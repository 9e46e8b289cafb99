// What of the list is shown, and in which order: words, columns within limits, one column to sort by.
import type { Channel, Row } from "../messages";
import { element } from "./elements";

const RANGES = ["level", "rate", "points", "spikes"] as const;
type Range = (typeof RANGES)[number];
const CHOICES = ["type", "channel"] as const;
type Choice = (typeof CHOICES)[number];

/** Spikes of each channel; null of what is no potential. */
export type Spikes = (number | null)[];
export interface Listed {
  row: Row;
  spikes: Spikes | undefined;
}

const channelName = ({ input, output }: Channel): string => `${input}, ${output}`;
const rateOf = ({ interval }: Row): number | null => (interval > 0 ? 1000 / interval : null);

/** The columns of one channel of an epoch. */
function cells({ row, spikes }: Listed, k: number): Record<Range | Choice, number | string | null> {
  const channel = row.channels[k]!;
  return {
    level: channel.level,
    rate: rateOf(row),
    points: row.points,
    spikes: spikes?.[k] ?? null,
    type: channel.type,
    channel: channelName(channel),
  };
}

export interface Wanted {
  words: string[];
  limits: Record<Range, [number | null, number | null]>;
  choices: Record<Choice, string>;
  sort: string;
  isDescending: boolean;
}

const field = (id: string): HTMLInputElement => element<HTMLInputElement>(id);
const numberIn = (id: string): number | null =>
  field(id).value === "" ? null : Number(field(id).value);

export function wanted(): Wanted {
  const limits = RANGES.map((name) => [name, [numberIn(`${name}-from`), numberIn(`${name}-to`)]]);
  const choices = CHOICES.map((name) => [name, field(`filter-${name}`).value]);
  return {
    words: field("search").value.toLowerCase().split(/\s+/).filter(Boolean),
    limits: Object.fromEntries(limits) as Wanted["limits"],
    choices: Object.fromEntries(choices) as Wanted["choices"],
    sort: field("sort").value,
    isDescending: field("descending").checked,
  };
}

export function clear(): void {
  const ids = RANGES.flatMap((name) => [`${name}-from`, `${name}-to`]);
  for (const id of ["search", ...ids, ...CHOICES.map((name) => `filter-${name}`)])
    field(id).value = "";
  field("sort").value = "number";
  field("descending").checked = false;
}

const isLimited = ([from, to]: [number | null, number | null]): boolean =>
  from !== null || to !== null;

export const asksForSpikes = ({ sort, limits }: Wanted): boolean =>
  sort === "spikes" || isLimited(limits.spikes);
/** Whether all epochs are wanted as they come. */
export const asksForAll = (all: Wanted): boolean =>
  all.words.length === 0 &&
  all.sort === "number" &&
  !all.isDescending &&
  !Object.values(all.limits).some(isLimited) &&
  Object.values(all.choices).every((choice) => choice === "");

function isWithin(value: unknown, [from, to]: [number | null, number | null]): boolean {
  if (from === null && to === null) return true;
  return typeof value === "number" && value >= (from ?? -Infinity) && value <= (to ?? Infinity);
}

/** The first channel of an epoch that is as wanted; -1: none. */
function channelAsWanted(listed: Listed, { limits, choices }: Wanted): number {
  return listed.row.channels.findIndex((_, k) => {
    const all = cells(listed, k);
    const hasChoices = CHOICES.every((name) => choices[name] === "" || choices[name] === all[name]);
    return hasChoices && RANGES.every((name) => isWithin(all[name], limits[name]));
  });
}

export function isWanted(listed: Listed, all: Wanted): boolean {
  const { row } = listed;
  const text = `${row.number} ${row.stimulus} ${row.comment} ${row.time} ${row.problem}`;
  if (!all.words.every((word) => text.toLowerCase().includes(word))) return false;
  const isFree = asksForAll({ ...all, words: [], sort: "number", isDescending: false });
  return isFree || channelAsWanted(listed, all) >= 0;
}

/** Numbers in the wanted order; what has no value in the column comes last. */
export function sorted(numbers: number[], all: Wanted, listed: (n: number) => Listed): number[] {
  const keys = new Map(
    numbers.map((number) => {
      if (all.sort === "number") return [number, number];
      const each = listed(number);
      const k = channelAsWanted(each, all);
      return [number, k < 0 ? null : cells(each, k)[all.sort as Range | Choice]];
    }),
  );
  const way = all.isDescending ? -1 : 1;
  return numbers.sort((a, b) => {
    const [x, y] = [keys.get(a) ?? null, keys.get(b) ?? null];
    if (x === null || y === null) return x === y ? a - b : x === null ? 1 : -1;
    if (x === y) return a - b;
    return x < y ? -way : way;
  });
}

/** The types and channels that there are to choose from. */
export function offer(rows: Iterable<Row>): void {
  const channels = [...rows].flatMap((row) => row.channels);
  const values = { type: channels.map(({ type }) => type), channel: channels.map(channelName) };
  for (const name of CHOICES) {
    const part = element<HTMLSelectElement>(`filter-${name}`);
    const known = new Set([...part.options].map((option) => option.value));
    for (const value of new Set(values[name]))
      if (!known.has(value)) part.append(new Option(value));
  }
}

export function forgetOffers(): void {
  for (const name of CHOICES) element<HTMLSelectElement>(`filter-${name}`).length = 1;
}
