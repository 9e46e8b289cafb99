// Colours of curves: one perceptual map that colour-blind people can tell apart, for paper and dark.

const VIRIDIS = [
  "#440154",
  "#482878",
  "#3e4989",
  "#31688e",
  "#26828e",
  "#1f9e89",
  "#35b779",
  "#6ece58",
  "#b5de2b",
  "#fde725",
];

function channels(colour: string): number[] {
  return [1, 3, 5].map((at) => parseInt(colour.slice(at, at + 2), 16));
}

function between(position: number): string {
  const scaled = position * (VIRIDIS.length - 1);
  const below = Math.min(Math.floor(scaled), VIRIDIS.length - 2);
  const from = channels(VIRIDIS[below]!);
  const to = channels(VIRIDIS[below + 1]!);
  const mixed = from.map((each, i) => Math.round(each + (to[i]! - each) * (scaled - below)));
  return `#${mixed.map((each) => each.toString(16).padStart(2, "0")).join("")}`;
}

/** One curve in the ink's own colour; of several the map without the end that paper hides. */
export function colours(count: number, isDark: boolean): string[] {
  if (count === 1) return [isDark ? "#e8e8e8" : "#000000"];
  const [from, to] = isDark ? [0.35, 1] : [0, 0.82];
  return Array.from({ length: count }, (_, i) => between(from + ((to - from) * i) / (count - 1)));
}

export const SECOND = [6, 3]; // dash of a second curve of the same sweep
export const DOUBTFUL = [2, 3]; // dash of a stimulus that may not be what was played
