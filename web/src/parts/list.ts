// The list of epochs: only what is in view has elements, whatever the recording's length.
import type { Row } from "../messages";
import { element, make } from "./elements";
import { shownNumber } from "../drawing/ticks";

const ROW_HEIGHT = 56;
const SPARE = 6;
const AT_ONCE = 200;

interface Wishes {
  rows: (first: number, count: number) => Promise<Row[]>;
  choose: (numbers: number[]) => void;
}

export class EpochList {
  private readonly list = element("list");
  private readonly room = element("rows");
  private readonly search = element<HTMLInputElement>("search");
  private rows = new Map<number, Row>();
  private asked = new Set<number>();
  private count = 0;
  private matches: number[] | null = null;
  private chosen = new Set<number>();
  private focus = 0;
  private round = 0;

  constructor(private readonly wishes: Wishes) {
    this.list.addEventListener("scroll", () => this.draw());
    this.list.addEventListener("keydown", (event) => this.onKey(event));
    this.list.addEventListener("click", (event) => this.onClick(event));
    this.search.addEventListener("input", () => void this.filter());
    new ResizeObserver(() => this.draw()).observe(this.list);
  }

  show(count: number, isOther: boolean): void {
    if (isOther) {
      this.rows = new Map();
      this.asked = new Set();
      this.search.value = "";
      this.matches = null;
      this.list.scrollTop = 0;
    }
    this.count = count;
    if (this.search.value !== "") void this.filter();
    this.draw();
  }

  /** Marks what is drawn, and brings its first into view. */
  mark(numbers: number[]): void {
    this.chosen = new Set(numbers);
    const place = this.places().indexOf(numbers[0] ?? -1);
    if (place >= 0) {
      this.focus = place;
      this.reveal(place);
    }
    this.draw();
  }

  private places(): number[] | { indexOf: (n: number) => number } {
    return this.matches ?? { indexOf: (number: number) => (number < this.count ? number : -1) };
  }
  private get length(): number {
    return this.matches?.length ?? this.count;
  }
  private numberAt(place: number): number {
    return this.matches?.[place] ?? place;
  }

  private reveal(place: number): void {
    const top = place * ROW_HEIGHT;
    const { scrollTop, clientHeight } = this.list;
    if (top < scrollTop) this.list.scrollTop = top;
    else if (top + ROW_HEIGHT > scrollTop + clientHeight)
      this.list.scrollTop = top + ROW_HEIGHT - clientHeight;
  }

  private draw(): void {
    this.room.style.height = `${this.length * ROW_HEIGHT}px`;
    const first = Math.max(0, Math.floor(this.list.scrollTop / ROW_HEIGHT) - SPARE);
    const shown = Math.ceil(this.list.clientHeight / ROW_HEIGHT) + 2 * SPARE;
    const places = Array.from(
      { length: Math.max(0, Math.min(shown, this.length - first)) },
      (_, i) => first + i,
    );
    this.room.replaceChildren(...places.map((place) => this.option(place)));
    const focused = document.getElementById(`row-${this.numberAt(this.focus)}`);
    if (focused !== null) this.list.setAttribute("aria-activedescendant", focused.id);
    else this.list.removeAttribute("aria-activedescendant");
    const missing = places.map((place) => this.numberAt(place)).filter((n) => !this.asked.has(n));
    if (missing.length > 0) void this.fetch(missing[0]!, missing.at(-1)! - missing[0]! + 1);
    element("found").textContent =
      this.matches === null
        ? `${this.count} epochs`
        : `${this.matches.length} of ${this.count} epochs`;
  }

  private option(place: number): HTMLElement {
    const number = this.numberAt(place);
    const row = this.rows.get(number);
    const made = make("div", "", `row${place === this.focus ? " focused" : ""}`);
    made.id = `row-${number}`;
    made.dataset.place = String(place);
    made.setAttribute("role", "option");
    made.setAttribute("aria-selected", String(this.chosen.has(number)));
    made.setAttribute("aria-posinset", String(place + 1));
    made.setAttribute("aria-setsize", String(this.length));
    made.style.top = `${place * ROW_HEIGHT}px`;
    const text = make("span", "", "text");
    const figures = make("span", "", "figures");
    if (row !== undefined && row.problem !== "") {
      text.append(make("span", "damaged", "fault"), make("small", row.problem));
      made.title = row.problem;
    } else if (row !== undefined) {
      text.append(make("span", row.stimulus), make("small", row.comment), make("small", row.time));
      const rate = row.interval > 0 ? `${shownNumber(1000 / row.interval)} kHz` : "";
      figures.append(make("span", String(row.points)), make("span", rate));
      made.title = `${row.stimulus}\n${row.comment}`;
    }
    made.append(make("span", String(number)), text, figures);
    return made;
  }

  private async fetch(first: number, count: number): Promise<void> {
    const round = this.round;
    const asked = Math.min(count, AT_ONCE, this.count - first);
    for (let i = 0; i < asked; ++i) this.asked.add(first + i);
    const rows = await this.wishes.rows(first, asked);
    if (round !== this.round) return;
    for (const row of rows) this.rows.set(row.number, row);
    this.draw();
  }

  /** Epochs in whose number, words or comment every word stands. */
  private async filter(): Promise<void> {
    const wanted = this.search.value.toLowerCase().split(/\s+/).filter(Boolean);
    const round = ++this.round;
    if (wanted.length === 0) {
      this.matches = null;
      return this.draw();
    }
    this.matches = [];
    for (let first = 0; first < this.count; first += AT_ONCE) {
      await this.complete(first, Math.min(AT_ONCE, this.count - first));
      if (round !== this.round) return;
      for (let number = first; number < Math.min(first + AT_ONCE, this.count); ++number) {
        const row = this.rows.get(number)!;
        const text = `${number} ${row.stimulus} ${row.comment} ${row.time} ${row.problem}`;
        if (wanted.every((word) => text.toLowerCase().includes(word))) this.matches.push(number);
      }
      this.draw();
    }
  }

  private async complete(first: number, count: number): Promise<void> {
    const numbers = Array.from({ length: count }, (_, i) => first + i);
    if (numbers.every((number) => this.rows.has(number))) return;
    for (const row of await this.wishes.rows(first, count)) {
      this.rows.set(row.number, row);
      this.asked.add(row.number);
    }
  }

  private onClick(event: MouseEvent): void {
    const option = (event.target as HTMLElement).closest<HTMLElement>(".row");
    if (option === null) return;
    this.choose(Number(option.dataset.place), event.ctrlKey || event.metaKey, event.shiftKey);
  }

  private choose(place: number, isAdded: boolean, isRange: boolean): void {
    const number = this.numberAt(place);
    let chosen = [number];
    if (isRange) {
      const [low, high] = [Math.min(this.focus, place), Math.max(this.focus, place)];
      chosen = Array.from({ length: high - low + 1 }, (_, i) => this.numberAt(low + i));
    } else if (isAdded) {
      const others = [...this.chosen].filter((each) => each !== number);
      chosen = this.chosen.has(number) ? others : [...this.chosen, number];
    }
    if (!isRange) this.focus = place;
    if (chosen.length > 0) this.wishes.choose(chosen.sort((a, b) => a - b));
  }

  private onKey(event: KeyboardEvent): void {
    const page = Math.max(1, Math.floor(this.list.clientHeight / ROW_HEIGHT) - 1);
    const steps: Record<string, number> = {
      ArrowDown: 1,
      ArrowUp: -1,
      PageDown: page,
      PageUp: -page,
      Home: -this.length,
      End: this.length,
    };
    const step = steps[event.key];
    if (step !== undefined) {
      event.preventDefault();
      const place = Math.min(Math.max(this.focus + step, 0), this.length - 1);
      if (event.ctrlKey) {
        this.focus = place;
        this.reveal(place);
        this.draw();
      } else if (place >= 0) this.choose(place, event.shiftKey, false);
    } else if (event.key === " " || event.key === "Enter") {
      event.preventDefault();
      this.choose(this.focus, event.key === " ", false);
    }
  }
}
