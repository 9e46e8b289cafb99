// The page's side of its worker: questions as promises.
import type { Question, Questions } from "./messages";
import ReadingWorker from "./worker?worker&inline";

interface Pending {
  resolve: (answer: unknown) => void;
  reject: (problem: Error) => void;
}
interface Answered {
  id: number;
  answer?: unknown;
  problem?: string;
}

export class Client {
  private readonly worker = new ReadingWorker();
  private readonly pending = new Map<number, Pending>();
  private asked = 0;

  constructor() {
    this.worker.onmessage = (event: MessageEvent<Answered>) => {
      const { id, answer, problem } = event.data;
      const waiting = this.pending.get(id);
      this.pending.delete(id);
      if (problem === undefined) waiting?.resolve(answer);
      else waiting?.reject(new Error(problem));
    };
    this.worker.onerror = (event) => {
      for (const each of this.pending.values()) each.reject(new Error(event.message));
      this.pending.clear();
    };
  }

  ask<Q extends Question>(
    question: Q,
    given: Questions[Q]["given"],
  ): Promise<Questions[Q]["answer"]> {
    const id = this.asked++;
    return new Promise((resolve, reject) => {
      this.pending.set(id, { resolve: resolve as (answer: unknown) => void, reject });
      this.worker.postMessage({ id, question, given });
    });
  }
}
