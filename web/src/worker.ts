// The worker: answers the page's questions, one after the other.
import type { Question, Questions } from "./messages";
import { FileBytes, RangeBytes, type Bytes } from "./reading/bytes";
import { Module } from "./reading/module";
import { Recording } from "./reading/recording";

const module = Module.load();
const recordings = new Map<number, Recording>();
let opened = 0;

async function open(source: Bytes, name: string): Promise<Questions["openFile"]["answer"]> {
  const recording = Recording.open(await module, opened++, source, name);
  recordings.set(recording.number, recording);
  return recording.opened();
}

function chosen(number: number): Recording {
  const recording = recordings.get(number);
  if (recording === undefined) throw new Error("no such recording is open");
  return recording;
}

type Answers = {
  [Q in Question]: (
    given: Questions[Q]["given"],
  ) => Questions[Q]["answer"] | Promise<Questions[Q]["answer"]>;
};
const answers: Answers = {
  openFile: ({ file }) => open(new FileBytes(file), file.name),
  openAddress: ({ address, name }) => open(new RangeBytes(address), name),
  rows: ({ recording, first, count }) =>
    Array.from({ length: count }, (_, i) => chosen(recording).epochs.row(first + i)),
  epoch: ({ recording, epoch }) => chosen(recording).epochs.epoch(epoch),
  values: (given) => chosen(given.recording).values(given),
  outline: (given) => chosen(given.recording).outline(given, given.stretch),
  counts: (given) => chosen(given.recording).counts(given),
  families: ({ recording, first, count, entry }) => chosen(recording).families(first, count, entry),
  measured: ({ recording, epochs, entry }) => chosen(recording).measured(epochs, entry),
  spikes: ({ recording, epoch }) => chosen(recording).spikes(epoch),
  findings: ({ recording }) => chosen(recording).findings(),
  refresh: ({ recording }) => chosen(recording).refresh(),
};

interface Asked {
  id: number;
  question: Question;
  given: never;
}

function transferable(answer: unknown): Transferable[] {
  if (ArrayBuffer.isView(answer)) return [answer.buffer as ArrayBuffer];
  if (answer !== null && typeof answer === "object" && "lows" in answer) {
    const { lows, highs } = answer as Questions["outline"]["answer"];
    return [lows.buffer as ArrayBuffer, highs.buffer as ArrayBuffer];
  }
  return [];
}

async function answer({ id, question, given }: Asked): Promise<void> {
  try {
    const result: unknown = await answers[question](given);
    postMessage({ id, answer: result }, { transfer: transferable(result) });
  } catch (error) {
    postMessage({ id, problem: error instanceof Error ? error.message : String(error) });
  }
}

self.onmessage = (event: MessageEvent<Asked>) => void answer(event.data);
