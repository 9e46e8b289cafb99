// The list of epochs: only what is in view has elements, whatever the recording's length.
import type { Opened, Row } from "../messages";
import { element, make } from "./elements";
import * as filter from "./filter";
import { shownNumber } from "../drawing/ticks";

const ROW_HEIGHT = 56;
const SPARE = 6;
const AT_ONCE = 200;
const LONGEST_COUNTED = 1 << 24; // points of an epoch whose spikes are counted without being asked for

interface Wishes {
  rows: (first: number, count: number) => Promise<Row[]>;
  spikes: (epoch: number) => Promise<filter.Spikes>;
  choose: (numbers: number[]) => void;
}

export class EpochList {
  private readonly list = element("list");
  private readonly room = element("rows");
  private readonly settings = element("settings");
  private readonly filters = element<HTMLDetailsElement>("filters");
  private rows = new Map<number, Row>();
  private spikes = new Map<number, filter.Spikes>();
  private asked = new Set<number>();
  private count = 0;
  private matches: number[] | null = null;
  private chosen = new Set<number>();
  private focus = 0;
  private round = 0;
  private isCounting = false;

  constructor(private readonly wishes: Wishes) {
    this.list.addEventListener("scroll", () => this.draw());
    this.list.addEventListener("keydown", (event) => this.onKey(event));
    this.list.addEventListener("click", (event) => this.onClick(event));
    this.settings.addEventListener("input", () => void this.filter());
    this.filters.addEventListener("toggle", () => void this.fill());
    element("no-filters").addEventListener("click", () => {
      filter.clear();
      void this.filter();
    });
    new ResizeObserver(() => this.draw()).observe(this.list);
  }

  show(opened: Opened, isOther: boolean): void {
    if (isOther) {
      ++this.round;
      this.rows = new Map();
      this.spikes = new Map();
      this.asked = new Set();
      filter.clear();
      filter.forgetOffers();
      this.matches = null;
      this.list.scrollTop = 0;
      const threshold = shownNumber(opened.threshold);
      element("spike-rule").textContent = `Spikes: upward crossings of ${threshold} mV.`;
    }
    this.count = opened.epochs;
    if (!filter.asksForAll(filter.wanted())) void this.filter();
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
  /** The epoch above or below another in the list; null at its ends. */
  beside(number: number, by: 1 | -1): number | null {
    const place = this.places().indexOf(number) + by;
    return place >= 0 && place < this.length ? this.numberAt(place) : null;
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
    if (missing.length > 0) void this.fetch(missing);
    void this.countSpikes();
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
      figures.append(make("span", this.spikeText(number), "spikes"));
      made.title = `${row.stimulus}\n${row.comment}`;
    }
    made.append(make("span", String(number)), text, figures);
    return made;
  }

  private spikeText(number: number): string {
    const counts = this.spikes.get(number)?.filter((count) => count !== null) ?? [];
    return counts.length === 0 ? "" : `${counts.join(" | ")} spike${counts[0] === 1 ? "" : "s"}`;
  }

  /** Asks for rows that are not there yet, in runs. */
  private async fetch(missing: number[]): Promise<void> {
    const { rows } = this;
    const low = Math.min(...missing);
    const run = missing.filter((number) => number < low + AT_ONCE);
    for (const number of run) this.asked.add(number);
    await this.complete(low, Math.max(...run) - low + 1);
    if (rows === this.rows) this.draw();
  }

  private async complete(first: number, count: number): Promise<void> {
    const { rows } = this;
    const numbers = Array.from({ length: count }, (_, i) => first + i);
    if (numbers.every((number) => rows.has(number))) return;
    const came = await this.wishes.rows(first, count);
    if (rows !== this.rows) return; // of another recording
    for (const row of came) {
      rows.set(row.number, row);
      this.asked.add(row.number);
    }
    filter.offer(came);
  }

  /** All rows, which the filters choose from. */
  private async fill(): Promise<void> {
    const { rows } = this;
    for (let first = 0; first < this.count && rows === this.rows; first += AT_ONCE)
      await this.complete(first, Math.min(AT_ONCE, this.count - first));
  }

  private numbersInView(): number[] {
    const first = Math.floor(this.list.scrollTop / ROW_HEIGHT);
    const count = Math.ceil(this.list.clientHeight / ROW_HEIGHT) + 1;
    const last = Math.min(first + count, this.length);
    return Array.from({ length: Math.max(0, last - first) }, (_, i) => this.numberAt(first + i));
  }

  /** Counts the spikes of what is in view, one epoch after the other. */
  private async countSpikes(): Promise<void> {
    if (this.isCounting) return;
    this.isCounting = true;
    for (;;) {
      const next = this.numbersInView().find((number) => {
        const row = this.rows.get(number);
        return row && row.points <= LONGEST_COUNTED && !this.spikes.has(number);
      });
      if (next === undefined) break;
      await this.countOne(next);
      const part = document.querySelector(`#row-${next} .spikes`);
      if (part !== null) part.textContent = this.spikeText(next);
    }
    this.isCounting = false;
  }

  private async countOne(number: number): Promise<void> {
    const { spikes } = this;
    if (spikes.has(number)) return;
    spikes.set(number, await this.wishes.spikes(number).catch(() => []));
  }

  /** Shows the epochs that the fields ask for, in the order that they ask for. */
  private async filter(): Promise<void> {
    const all = filter.wanted();
    const round = ++this.round;
    if (filter.asksForAll(all)) {
      this.matches = null;
      return this.draw();
    }
    this.matches = [];
    for (let first = 0; first < this.count; first += AT_ONCE) {
      const end = Math.min(first + AT_ONCE, this.count);
      await this.complete(first, end - first);
      for (let number = first; number < end && filter.asksForSpikes(all); ++number) {
        await this.countOne(number);
        if (round !== this.round) return;
      }
      if (round !== this.round) return;
      for (let number = first; number < end; ++number)
        if (filter.isWanted(this.listed(number), all)) this.matches.push(number);
      if (all.sort === "number" && !all.isDescending) this.draw();
    }
    filter.sorted(this.matches, all, (number) => this.listed(number));
    this.draw();
  }

  private listed(number: number): filter.Listed {
    return { row: this.rows.get(number)!, spikes: this.spikes.get(number) };
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
