// Round numbers for axes and scale bars, and values as people read them.

/** The length of 1, 2 or 5 times a power of ten that is nearest to a fifth of a span. */
export function roundLength(span: number): number {
  if (!(span > 0) || !Number.isFinite(span)) return 1;
  const wanted = span / 5;
  const power = 10 ** Math.floor(Math.log10(wanted));
  const distance = (length: number): number => Math.abs(Math.log(length / wanted));
  return [1, 2, 5, 10]
    .map((factor) => factor * power)
    .reduce((best, each) => (distance(each) < distance(best) ? each : best));
}

/** Round numbers within a range. */
export function ticks(low: number, high: number): number[] {
  const step = roundLength(high - low);
  const first = Math.ceil(low / step);
  const count = Math.max(0, Math.floor(high / step) - first + 1);
  return Array.from({ length: count }, (_, i) => Number(((first + i) * step).toPrecision(12)));
}

/** To six digits, with a true minus sign. */
export function shownNumber(value: number): string {
  return String(Number(value.toPrecision(6))).replace("-", "−");
}

/** Milliseconds for what lasts no longer than two seconds. */
export function timeUnit(longest: number): { name: string; perSecond: number } {
  return longest <= 2 ? { name: "ms", perSecond: 1000 } : { name: "s", perSecond: 1 };
}
