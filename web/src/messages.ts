// What the page asks of its worker, and the answers: plain objects that can be sent.

export type Direction = "response" | "stimulus" | "excitatory" | "inhibitory";

export interface Opened {
  recording: number;
  name: string;
  size: number;
  epochs: number;
  version: number;
  foundByWalking: boolean;
  header: FieldRow[];
  /** What a spike crosses upwards [mV]. */
  threshold: number;
}
export interface FieldRow {
  name: string;
  unit: string;
  meaning: string;
  values: string[];
}
/** An entry of the channel sequence, for the list. */
export interface Channel {
  type: string;
  /** Amplitude of its stimulus, in the stimulus's unit. */
  level: number | null;
  input: string;
  output: string;
}
export interface Row {
  number: number;
  comment: string;
  time: string;
  stimulus: string;
  points: number;
  interval: number;
  channels: Channel[];
  problem: string;
}
/** Epochs of the same family have the same number; 0 is none. */
export interface FamilyOf {
  epoch: number;
  family: number;
}
/** The response to a step. */
export interface Step {
  epoch: number;
  level: number;
  baseline: number;
  peak: number;
  steady: number;
  /** Whether it ends without spikes. */
  isSettled: boolean;
  /** Null where the response is no potential. */
  spikes: number | null;
  rate: number | null;
}
export interface ScaleInfo {
  unit: string;
  formula: string;
  isWord: boolean;
  quantity: string;
}
export interface StimulusInfo {
  name: string;
  words: string;
  parameters: FieldRow[];
}
export interface Entry {
  input: string;
  output: string;
  response: ScaleInfo;
  stimulus: ScaleInfo;
  conductance: ScaleInfo | null;
  parameters: StimulusInfo;
  components: StimulusInfo[];
  problem: string;
  doubt: string;
  isDoubtful: boolean;
}
export interface EpochDetails {
  number: number;
  comment: string;
  points: number;
  interval: number;
  start: number;
  header: FieldRow[];
  entries: Entry[];
}
export interface Finding {
  offset: number;
  epoch: number;
  weight: "note" | "doubt" | "fault";
  place: string;
  found: string;
  expected: string;
}

export interface Wanted {
  epoch: number;
  entry: number;
  direction: Direction;
  /** Of a sum: one of its components, else the whole. */
  component: number | null;
  first: number;
  count: number;
}
/** The lowest and highest value of each stretch of points; the last stretch may be shorter. */
export interface Outline {
  stretch: number;
  lows: Float32Array;
  highs: Float32Array;
}

/** The questions, by name: what is given, and what comes back. */
export interface Questions {
  openFile: { given: { file: File }; answer: Opened };
  openAddress: { given: { address: string; name: string }; answer: Opened };
  rows: { given: { recording: number; first: number; count: number }; answer: Row[] };
  epoch: { given: { recording: number; epoch: number }; answer: EpochDetails };
  values: { given: { recording: number } & Wanted; answer: Float64Array };
  outline: { given: { recording: number; stretch: number } & Wanted; answer: Outline };
  counts: { given: { recording: number } & Wanted; answer: Int16Array };
  families: {
    given: { recording: number; first: number; count: number; entry: number };
    answer: FamilyOf[];
  };
  measured: { given: { recording: number; epochs: number[]; entry: number }; answer: Step[] };
  spikes: { given: { recording: number; epoch: number }; answer: (number | null)[] };
  findings: { given: { recording: number }; answer: Finding[] };
  refresh: { given: { recording: number }; answer: number };
}
export type Question = keyof Questions;
