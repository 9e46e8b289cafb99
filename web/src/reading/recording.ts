// An open recording: its epochs, values and findings, as the page shows them.
import type {
  Direction,
  Entry,
  EpochDetails,
  FieldRow,
  Finding,
  Opened,
  Outline,
  Row,
  ScaleInfo,
  StimulusInfo,
  Wanted,
} from "../messages";
import { KeptBytes, type Bytes } from "./bytes";
import { ReadingError, type Module } from "./module";
import { fieldTexts, type Field } from "./structures";

interface EpochPlace {
  start: number;
  points: number;
  entries: number;
  samplingInterval: number;
  inputs: number[];
  outputs: number[];
}
interface StimulusRecord {
  type: number;
  components: number;
  isThere: number;
  record: Uint8Array;
}

const OWN_RECORD = -1;
const AT_ONCE = 1 << 20; // points of an outline
const AT_ONCE_COMPUTED = 1 << 24; // each time from the first point on

export class Recording {
  private constructor(
    private readonly module: Module,
    readonly number: number,
    private readonly handle: number,
    private readonly name: string,
    private readonly bytes: KeptBytes,
  ) {}

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
      return this.fieldRows(this.module.fields(record), room, size);
    });
    return {
      recording: this.number,
      name: this.name,
      size: info.size,
      epochs: info.epochs,
      version: info.version,
      foundByWalking: info.found === this.module.constant("CORVANTIS_BY_WALKING"),
      header,
    };
  }

  refresh(): number {
    this.bytes.forget();
    this.module.ask("CorvantisRefresh", this.handle);
    return this.opened().epochs;
  }

  rows(first: number, count: number): Row[] {
    return Array.from({ length: count }, (_, i) => this.row(first + i));
  }

  private row(number: number): Row {
    const row = { number, comment: "", time: "", stimulus: "", doubt: "", problem: "" };
    try {
      const place = this.place(number);
      const [comment, time] = this.headerFields(number, ["epochComment", "epochTime"]);
      const words = Array.from({ length: place.entries }, (_, entry) => this.words(number, entry));
      return {
        ...row,
        comment: comment?.values[0] ?? "",
        time: `${time?.values[0] ?? ""} ${time?.unit ?? ""}`.trim(),
        stimulus: words.join(" | "),
        points: place.points,
        interval: place.samplingInterval,
        entries: place.entries,
      };
    } catch (error) {
      return {
        ...row,
        points: 0,
        interval: 0,
        entries: 0,
        problem: (error as Error).message,
      };
    }
  }

  epoch(number: number): EpochDetails {
    const place = this.place(number);
    const header = this.headerFields(number);
    return {
      number,
      comment: header.find((field) => field.name === "epochComment")?.values[0] ?? "",
      points: place.points,
      interval: place.samplingInterval,
      start: place.start,
      header,
      entries: Array.from({ length: place.entries }, (_, entry) =>
        this.entry(number, entry, place),
      ),
    };
  }

  /** Epochs whose stimulus differs from this one's in its amplitude alone. */
  family(number: number, entry: number): number[] {
    const wanted = this.protocol(number, entry);
    const all = Array.from({ length: this.opened().epochs }, (_, each) => each);
    return all.filter((each) => this.protocol(each, entry) === wanted);
  }

  private protocol(number: number, entry: number): string {
    try {
      const place = this.place(number);
      const own = this.record(number, entry, OWN_RECORD);
      const { parameters, name } = this.stimulusInfo(number, entry, OWN_RECORD, own);
      const same = parameters.filter((field) => field.name !== "amplitude");
      const scales = [this.scale(number, entry, "response"), this.scale(number, entry, "stimulus")];
      return JSON.stringify([name, same, place.samplingInterval, scales]);
    } catch {
      return `damaged ${number}`;
    }
  }

  private place(number: number): EpochPlace {
    return this.module.filled<EpochPlace>("CorvantisEpochInfo", (room) =>
      this.module.ask("CorvantisEpoch", this.handle, BigInt(number), room),
    );
  }

  private headerFields(number: number, names?: string[]): FieldRow[] {
    const size = this.module.constant("CORVANTIS_EPOCH_HEADER_SIZE");
    const all = this.module.fields(this.module.constant("CORVANTIS_EPOCH_HEADER"));
    const fields = names?.map((name) => all.find((field) => field.name === name)!) ?? all;
    return this.module.withRoom(size, (room) => {
      this.module.ask("CorvantisEpochHeader", this.handle, BigInt(number), room);
      return this.fieldRows(fields, room, size);
    });
  }

  private fieldRows(fields: Field[], address: number, size: number): FieldRow[] {
    const shown = (at: number, length: number): string =>
      this.module.written((room, capacity) =>
        this.module.call("CorvantisText", at, length, room, capacity),
      );
    return fields.map((field) => {
      const view = (): DataView => new DataView(this.module.buffer, address, size);
      const values = fieldTexts(this.module.layout, field, { address, view }, shown);
      return { name: field.name, unit: field.unit, meaning: field.meaning, values };
    });
  }

  private entry(number: number, entry: number, place: EpochPlace): Entry {
    const own = this.record(number, entry, OWN_RECORD);
    const response = this.scale(number, entry, "response");
    const stimulus = this.scale(number, entry, "stimulus");
    const doubt = this.doubt(number, entry);
    const channel = (isWord: boolean, kind: string, index: number): string =>
      isWord ? `digital ${kind}` : `${kind} ${index}`;
    return {
      input: channel(response.isWord, "input", place.inputs[entry]!),
      output: channel(stimulus.isWord, "output", place.outputs[entry]!),
      response,
      stimulus,
      conductance: this.hasConductance(number, entry)
        ? this.scale(number, entry, "excitatory")
        : null,
      parameters: this.stimulusInfo(number, entry, OWN_RECORD, own),
      components: Array.from({ length: own.components }, (_, k) =>
        this.stimulusInfo(number, entry, k, this.record(number, entry, k)),
      ),
      ...doubt,
    };
  }

  private words(number: number, entry: number): string {
    return this.module.withRoom(8, (length) =>
      this.module.written((room, capacity) =>
        this.module.ask(
          "CorvantisStimulusWords",
          this.handle,
          BigInt(number),
          entry,
          room,
          BigInt(capacity),
          length,
        ),
      ),
    );
  }

  private record(number: number, entry: number, component: number): StimulusRecord {
    return this.module.filled<StimulusRecord>("CorvantisStimulusRecord", (room) =>
      this.module.ask("CorvantisParameters", this.handle, BigInt(number), entry, component, room),
    );
  }

  private stimulusInfo(
    number: number,
    entry: number,
    component: number,
    record: StimulusRecord,
  ): StimulusInfo {
    const type = this.module.filled<{ name: number }>("CorvantisTypeInfo", (room) =>
      this.module.call("CorvantisType", record.type, room),
    );
    const name = this.module.constantText(type.name);
    const isSum = record.components > 0;
    const fields = record.isThere === 1 && !isSum ? this.module.fields(record.type) : [];
    const parameters = this.module.withRoom(record.record.length, (room) => {
      new Uint8Array(this.module.buffer, room).set(record.record);
      return this.fieldRows(fields, room, record.record.length);
    });
    return {
      name,
      words: component === OWN_RECORD ? this.words(number, entry) : name,
      parameters,
    };
  }

  private scale(number: number, entry: number, direction: Direction): ScaleInfo {
    const code = this.directionCode(direction);
    const scale = this.module.filled<{ unit: string; formula: string; isWord: number }>(
      "CorvantisScaleInfo",
      (room) => this.module.ask("CorvantisScale", this.handle, BigInt(number), entry, code, room),
    );
    const quantity = this.module.withText(scale.unit, (unit) =>
      this.module.constantText(this.module.call("CorvantisAxisName", code, unit)),
    );
    return { unit: scale.unit, formula: scale.formula, isWord: scale.isWord === 1, quantity };
  }

  private directionCode(direction: Direction): number {
    if (direction === "response") return this.module.constant("CORVANTIS_RESPONSE");
    if (direction === "stimulus") return this.module.constant("CORVANTIS_STIMULUS");
    return this.module.constant("CORVANTIS_CONDUCTANCE");
  }

  /** Asks for the doubt alone: nothing is computed. */
  private doubt(
    number: number,
    entry: number,
  ): { problem: string; doubt: string; isDoubtful: boolean } {
    try {
      const doubt = this.module.filled<{ reason: number; text: string }>("CorvantisDoubt", (room) =>
        this.module.ask(
          "CorvantisStimulus",
          this.handle,
          BigInt(number),
          entry,
          0n,
          0n,
          0,
          0n,
          room,
        ),
      );
      const isDoubtful = doubt.reason > this.module.constant("CORVANTIS_RESTS_ON_ORDER");
      return { problem: "", doubt: doubt.text, isDoubtful };
    } catch (error) {
      if (!(error instanceof ReadingError)) throw error;
      return { problem: error.message, doubt: "", isDoubtful: false };
    }
  }

  private hasConductance(number: number, entry: number): boolean {
    try {
      this.ask("CorvantisConductance", { epoch: number, entry, first: 0, count: 0 }, [0], 0);
      return true;
    } catch {
      return false;
    }
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
