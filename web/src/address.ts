// What is shown, as the part of the address behind "#": never sent to any server.

export interface Shown {
  recording: number;
  epochs: number[];
  entry: number;
  from: number | null;
  to: number | null;
  cursors: (number | null)[];
  colour: "order" | "level";
  components: boolean;
  fit: boolean;
  bars: boolean;
}

/** Numbers such as "3,5,7-9". */
export function inRanges(numbers: number[]): string {
  const runs: number[][] = [];
  for (const number of numbers) {
    const last = runs.at(-1);
    if (last?.at(-1) === number - 1) last.push(number);
    else runs.push([number]);
  }
  return runs.map((run) => (run.length > 1 ? `${run[0]!}-${run.at(-1)!}` : `${run[0]!}`)).join(",");
}

const MOST_EPOCHS = 200;

export function numbersOf(text: string): number[] {
  const numbers: number[] = [];
  for (const part of text.split(",")) {
    const match = /^(\d{1,9})(?:-(\d{1,9}))?$/.exec(part.trim());
    if (match === null) continue;
    const first = Number(match[1]);
    const last = Math.min(Number(match[2] ?? first), first + MOST_EPOCHS);
    for (let each = first; each <= last; ++each) numbers.push(each);
  }
  return numbers.slice(0, MOST_EPOCHS);
}

export function toAddress(shown: Shown): string {
  const parts = new URLSearchParams();
  const set = (name: string, value: string | number | null, usual: string): void => {
    if (value !== null && String(value) !== usual) parts.set(name, String(value));
  };
  set("recording", shown.recording, "0");
  set("epochs", inRanges(shown.epochs), "");
  set("channel", shown.entry, "0");
  set("from", shown.from, "");
  set("to", shown.to, "");
  set("a", shown.cursors[0] ?? null, "");
  set("b", shown.cursors[1] ?? null, "");
  set("colour", shown.colour, "order");
  for (const name of ["components", "fit", "bars"] as const) set(name, Number(shown[name]), "0");
  return `#${parts.toString().replaceAll("%2C", ",")}`;
}

export function fromAddress(hash: string): Shown {
  const parts = new URLSearchParams(hash.replace(/^#/, ""));
  const number = (name: string): number | null => {
    const value = Number(parts.get(name) ?? NaN);
    return Number.isFinite(value) ? value : null;
  };
  const count = (name: string): number => Math.max(0, Math.floor(number(name) ?? 0));
  return {
    recording: count("recording"),
    epochs: numbersOf(parts.get("epochs") ?? ""),
    entry: count("channel"),
    from: number("from"),
    to: number("to"),
    cursors: [number("a"), number("b")],
    colour: parts.get("colour") === "level" ? "level" : "order",
    components: parts.get("components") === "1",
    fit: parts.get("fit") === "1",
    bars: parts.get("bars") === "1",
  };
}
