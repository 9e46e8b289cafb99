// Families of steps: what each step's level did to the response, by the measures that the Python
// package's `families` prints.

export const THRESHOLD = -20; // a spike crosses it upwards [mV]
const STEADY_FRACTION = 0.2; // the last part of the step, over which the steady state is the mean

export interface Step {
  epoch: number;
  level: number;
  baseline: number;
  peak: number;
  steady: number;
  /** Whether it ends without spikes. */
  isSettled: boolean;
  spikes: number;
  rate: number;
}

/** Upward crossings of a threshold. */
export function countSpikes(values: Float64Array, threshold: number): number {
  let spikes = 0;
  for (let i = 1; i < values.length; ++i) {
    if (values[i]! > threshold && !(values[i - 1]! > threshold)) ++spikes;
  }
  return spikes;
}

const mean = (values: Float64Array): number =>
  values.reduce((sum, each) => sum + each, 0) / values.length;

/** The response to a step of so many points behind others, at an interval [s]. */
export function measure(
  epoch: number,
  response: Float64Array,
  stimulus: Float64Array,
  before: number,
  points: number,
  interval: number,
): Step {
  const during = response.subarray(before, before + points);
  const baseline = mean(response.subarray(0, before));
  const steady = during.subarray(during.length - Math.max(1, Math.round(STEADY_FRACTION * points)));
  const spikes = countSpikes(during, THRESHOLD);
  const farther = (far: number, each: number): number =>
    Math.abs(each - baseline) > Math.abs(far - baseline) ? each : far;
  return {
    epoch,
    level: stimulus[before]!,
    baseline,
    peak: during.reduce(farther, during[0]!),
    steady: mean(steady),
    isSettled: countSpikes(steady, THRESHOLD) === 0,
    spikes,
    rate: spikes / (points * interval),
  };
}
