// What is told of an epoch: its row in the list, its header, its channels and their parameters.
import type {
  Channel,
  Direction,
  Entry,
  EpochDetails,
  FieldRow,
  Row,
  ScaleInfo,
  StimulusInfo,
} from "../messages";
import { ReadingError, type Module } from "./module";
import { fieldTexts, type Field } from "./structures";

export interface EpochPlace {
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
/** Of what CorvantisStimulusJson gives. */
interface StimulusJson {
  name: string;
  levels: { amplitude?: number };
  components: StimulusJson[];
}

const OWN_RECORD = -1;

export function fieldRows(
  module: Module,
  fields: Field[],
  address: number,
  size: number,
): FieldRow[] {
  const shown = (at: number, length: number): string =>
    module.written((room, capacity) => module.call("CorvantisText", at, length, room, capacity));
  return fields.map((field) => {
    const view = (): DataView => new DataView(module.buffer, address, size);
    const values = fieldTexts(module.layout, field, { address, view }, shown);
    return { name: field.name, unit: field.unit, meaning: field.meaning, values };
  });
}

/** The amplitude of a stimulus; of a sum that of the component with the largest. */
function levelOf({ levels, components }: StimulusJson): number | null {
  const all = [levels.amplitude, ...components.map(levelOf)];
  const known = all.filter((each): each is number => typeof each === "number");
  return known.length === 0
    ? null
    : known.reduce((most, each) => (Math.abs(each) > Math.abs(most) ? each : most));
}

/** The epochs of an open recording. */
export class Epochs {
  constructor(
    private readonly module: Module,
    private readonly handle: number,
  ) {}

  row(number: number): Row {
    const row = { number, comment: "", time: "", stimulus: "", problem: "" };
    try {
      const place = this.place(number);
      const [comment, time] = this.headerFields(number, ["epochComment", "epochTime"]);
      const entries = Array.from({ length: place.entries }, (_, entry) => entry);
      return {
        ...row,
        comment: comment?.values[0] ?? "",
        time: `${time?.values[0] ?? ""} ${time?.unit ?? ""}`.trim(),
        stimulus: entries.map((entry) => this.words(number, entry)).join(" | "),
        points: place.points,
        interval: place.samplingInterval,
        channels: entries.map((entry) => this.channel(number, entry, place)),
      };
    } catch (error) {
      const problem = (error as Error).message;
      return { ...row, points: 0, interval: 0, channels: [], problem };
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

  place(number: number): EpochPlace {
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
      return fieldRows(this.module, fields, room, size);
    });
  }

  private names(number: number, entry: number, place: EpochPlace): [string, string] {
    const channel = (isWord: boolean, kind: string, index: number): string =>
      isWord ? `digital ${kind}` : `${kind} ${index}`;
    return [
      channel(this.scale(number, entry, "response").isWord, "input", place.inputs[entry]!),
      channel(this.scale(number, entry, "stimulus").isWord, "output", place.outputs[entry]!),
    ];
  }

  private channel(number: number, entry: number, place: EpochPlace): Channel {
    const text = this.text("CorvantisStimulusJson", number, entry);
    const stimulus = JSON.parse(text) as StimulusJson;
    const [input, output] = this.names(number, entry, place);
    return { type: stimulus.name, level: levelOf(stimulus), input, output };
  }

  private entry(number: number, entry: number, place: EpochPlace): Entry {
    const own = this.record(number, entry, OWN_RECORD);
    const [input, output] = this.names(number, entry, place);
    return {
      input,
      output,
      response: this.scale(number, entry, "response"),
      stimulus: this.scale(number, entry, "stimulus"),
      conductance: this.hasConductance(number, entry)
        ? this.scale(number, entry, "excitatory")
        : null,
      parameters: this.stimulusInfo(number, entry, OWN_RECORD, own),
      components: Array.from({ length: own.components }, (_, k) =>
        this.stimulusInfo(number, entry, k, this.record(number, entry, k)),
      ),
      ...this.doubt(number, entry),
    };
  }

  private text(name: string, number: number, ...which: number[]): string {
    return this.module.withRoom(8, (length) =>
      this.module.written((room, capacity) =>
        this.module.ask(
          name,
          this.handle,
          BigInt(number),
          ...which,
          room,
          BigInt(capacity),
          length,
        ),
      ),
    );
  }

  private words(number: number, entry: number, component = OWN_RECORD): string {
    return this.text("CorvantisComponentWords", number, entry, component);
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
      return fieldRows(this.module, fields, room, record.record.length);
    });
    return { name, words: this.words(number, entry, component), parameters };
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
      const nothing = [0n, 0n, 0, 0n];
      const doubt = this.module.filled<{ reason: number; text: string }>("CorvantisDoubt", (room) =>
        this.module.ask("CorvantisStimulus", this.handle, BigInt(number), entry, ...nothing, room),
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
      const range = [this.module.constant("CORVANTIS_EXCITATORY"), 0n, 0n, 0];
      this.module.ask("CorvantisConductance", this.handle, BigInt(number), entry, ...range);
      return true;
    } catch {
      return false;
    }
  }
}
