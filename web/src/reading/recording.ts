// An open recording: its values, families and findings, as the page shows them.
import type { FamilyOf, Finding, Opened, Outline, Step, Wanted } from "../messages";
import { KeptBytes, type Bytes } from "./bytes";
import { Epochs, fieldRows } from "./epochs";
import type { Module } from "./module";
import { Steps } from "./steps";

const AT_ONCE = 1 << 20; // points of an outline
const AT_ONCE_COMPUTED = 1 << 24; // each time from the first point on

export class Recording {
  readonly epochs: Epochs;
  readonly steps: Steps;

  private constructor(
    private readonly module: Module,
    readonly number: number,
    private readonly handle: number,
    private readonly name: string,
    private readonly bytes: KeptBytes,
  ) {
    this.epochs = new Epochs(module, handle);
    this.steps = new Steps(module, handle);
  }

  static open(module: Module, number: number, source: Bytes, name: string): Recording {
    const bytes = new KeptBytes(source);
    module.files.set(number, bytes);
    const handle = module.withText(name, (text) =>
      module.withRoom(4, (room) => {
        module.ask("CorvantisOpenPageFile", number, text, room);
        return new DataView(module.buffer).getUint32(room, true);
      }),
    );
    return new Recording(module, number, handle, name, bytes);
  }

  opened(): Opened {
    const info = this.module.filled<{
      size: number;
      epochs: number;
      version: number;
      found: number;
    }>("CorvantisRecordingInfo", (room) => this.module.call("CorvantisInfo", this.handle, room));
    const record = this.module.constant("CORVANTIS_FILE_HEADER");
    const size = this.module.constant("CORVANTIS_FILE_HEADER_SIZE");
    const header = this.module.withRoom(size, (room) => {
      this.module.call("CorvantisFileHeader", this.handle, room);
      return fieldRows(this.module, this.module.fields(record), room, size);
    });
    return {
      recording: this.number,
      name: this.name,
      size: info.size,
      epochs: info.epochs,
      version: info.version,
      foundByWalking: info.found === this.module.constant("CORVANTIS_BY_WALKING"),
      header,
      threshold: this.steps.threshold,
    };
  }

  refresh(): number {
    this.bytes.forget();
    this.module.ask("CorvantisRefresh", this.handle);
    return this.opened().epochs;
  }

  /** The families of some epochs; of one that cannot be told 0. */
  families(first: number, count: number, entry: number): FamilyOf[] {
    return Array.from({ length: count }, (_, i) => {
      try {
        return this.steps.family(first + i, entry);
      } catch {
        return { epoch: first + i, family: 0 }; // damaged, or without a stimulus
      }
    });
  }

  measured(epochs: number[], entry: number): Step[] {
    const steps = epochs.map((epoch) =>
      this.steps.measured(epoch, entry, this.epochs.place(epoch).samplingInterval / 1e6),
    );
    return steps.filter((step) => step !== null);
  }

  /** The spikes of each channel. */
  spikes(epoch: number): (number | null)[] {
    const { entries, points } = this.epochs.place(epoch);
    return Array.from({ length: entries }, (_, entry) => this.steps.spikes(epoch, entry, points));
  }

  private ask(
    name: string,
    range: Pick<Wanted, "epoch" | "entry" | "first" | "count">,
    which: number[],
    room: number,
    ...rest: (number | bigint)[]
  ): void {
    const { epoch, entry, first, count } = range;
    const place = [BigInt(epoch), entry, ...which, BigInt(first), BigInt(count)];
    this.module.ask(name, this.handle, ...place, room, ...rest);
  }

  /** Values in the entry's units; of conductances those that were given. */
  values(wanted: Wanted): Float64Array<ArrayBuffer> {
    return this.module.withRoom(8 * wanted.count, (room) => {
      if (wanted.direction === "response") this.ask("CorvantisValues", wanted, [], room, 0n);
      else if (wanted.direction !== "stimulus") return this.conductances(wanted, room);
      else if (wanted.component !== null)
        this.ask("CorvantisComponentValues", wanted, [wanted.component], room);
      else this.ask("CorvantisStimulusValues", wanted, [], room, 0n, 0);
      return new Float64Array(this.module.buffer, room, wanted.count).slice();
    });
  }

  private conductances(wanted: Wanted, room: number): Float64Array<ArrayBuffer> {
    const name = wanted.direction === "excitatory" ? "EXCITATORY" : "INHIBITORY";
    this.ask("CorvantisConductance", wanted, [this.module.constant(`CORVANTIS_${name}`)], room);
    return Float64Array.from(new Float32Array(this.module.buffer, room, wanted.count));
  }

  /** Converter counts of a response or a stimulus. */
  counts(wanted: Wanted): Int16Array<ArrayBuffer> {
    return this.module.withRoom(2 * wanted.count, (room) => {
      if (wanted.direction === "response") this.ask("CorvantisCounts", wanted, [], room, 0n);
      else this.ask("CorvantisStimulus", wanted, [], room, 0n, 0);
      return new Int16Array(this.module.buffer, room, wanted.count).slice();
    });
  }

  /** What is drawn of a long epoch: of each stretch of points the lowest and the highest value. */
  outline(wanted: Wanted, stretch: number): Outline {
    const stretches = Math.ceil(wanted.count / stretch);
    const lows = new Float32Array(stretches).fill(Infinity);
    const highs = new Float32Array(stretches).fill(-Infinity);
    const most = wanted.direction === "stimulus" ? AT_ONCE_COMPUTED : AT_ONCE;
    const step = Math.max(1, Math.floor(most / stretch)) * stretch;
    for (let done = 0; done < wanted.count; done += step) {
      const count = Math.min(step, wanted.count - done);
      const values = this.values({ ...wanted, first: wanted.first + done, count });
      for (let i = 0; i < count; ++i) {
        const place = Math.floor((done + i) / stretch);
        const value = values[i]!;
        if (value < lows[place]!) lows[place] = value;
        if (value > highs[place]!) highs[place] = value;
      }
    }
    return { stretch, lows, highs };
  }

  findings(): Finding[] {
    const count = this.module.withRoom(8, (room) => {
      this.module.ask("CorvantisFindings", this.handle, room);
      return Number(new DataView(this.module.buffer).getBigInt64(room, true));
    });
    const weights = ["NOTE", "DOUBT", "FAULT"].map((name) =>
      this.module.constant(`CORVANTIS_${name}`),
    );
    const names = ["note", "doubt", "fault"] as const;
    return Array.from({ length: count }, (_, index) => {
      const finding = this.module.filled<Omit<Finding, "weight"> & { weight: number }>(
        "CorvantisFinding",
        (room) => this.module.call("CorvantisGetFinding", this.handle, BigInt(index), room),
      );
      return { ...finding, weight: names[weights.indexOf(finding.weight)] ?? "fault" };
    });
  }
}
