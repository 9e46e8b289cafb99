// Families of steps and spikes, as the reading library finds and measures them.
import type { FamilyOf, Step } from "../messages";
import type { Module } from "./module";
import { structureAt } from "./structures";

interface Course {
  family: number;
  steps: number;
  longest: number;
}
interface StepRecord {
  start: number;
  stop: number;
  level: number;
}
interface Response {
  baseline: number;
  peak: number;
  steady: number;
  spikes: number;
  late: number;
}

const MOST_STEPS = 512; // more than samples and the components of a sum can show

/** Of an open recording. */
export class Steps {
  constructor(
    private readonly module: Module,
    private readonly handle: number,
  ) {}

  get threshold(): number {
    return this.module.constant("CORVANTIS_SPIKE_THRESHOLD");
  }

  /** To which family an epoch's stimulus belongs: 0 where that is not known. */
  family(epoch: number, entry: number): FamilyOf {
    return this.withSteps(epoch, entry, ({ family }) => ({ epoch, family }));
  }

  /** The response to the longest step, or null of an epoch without. */
  measured(epoch: number, entry: number, interval: number): Step | null {
    return this.withSteps(epoch, entry, ({ longest }, room) => {
      if (longest < 0) return null;
      const address = room + longest * this.module.sizeOf("CorvantisStep");
      const { layout } = this.module;
      const step = structureAt<StepRecord>(layout, "CorvantisStep", this.module.buffer, address);
      const response = this.module.filled<Response>("CorvantisStepResponse", (to) =>
        this.module.ask(
          "CorvantisMeasureStep",
          this.handle,
          BigInt(epoch),
          entry,
          address,
          this.threshold,
          to,
        ),
      );
      const spikes = response.spikes < 0 ? null : response.spikes;
      const rate = spikes === null ? null : spikes / ((step.stop - step.start) * interval);
      const isSettled = response.late === 0;
      const { baseline, peak, steady } = response;
      return { epoch, level: step.level, baseline, peak, steady, isSettled, spikes, rate };
    });
  }

  private withSteps<T>(epoch: number, entry: number, use: (course: Course, room: number) => T): T {
    const size = MOST_STEPS * this.module.sizeOf("CorvantisStep");
    return this.module.withRoom(size, (room) => {
      const course = this.module.filled<Course>("CorvantisCourse", (to) => {
        const place = [this.handle, BigInt(epoch), entry];
        this.module.ask("CorvantisSteps", ...place, to, room, MOST_STEPS, 0);
      });
      return use(course, room);
    });
  }

  /** How many spikes a whole response has; null if it is no potential. */
  spikes(epoch: number, entry: number, points: number): number | null {
    const count = this.module.withRoom(8, (room) => {
      const range = [BigInt(epoch), entry, 0n, BigInt(points), this.threshold];
      this.module.ask("CorvantisSpikes", this.handle, ...range, room);
      return Number(new DataView(this.module.buffer).getBigInt64(room, true));
    });
    return count < 0 ? null : count;
  }
}
