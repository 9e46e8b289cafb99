// The window on the time axis: moved at once, and settled when the hand rests.
import { zoomed } from "../drawing/gestures";
import { Panel, type View } from "../drawing/panel";
import { element } from "../parts/elements";
import { showCursors, showHover, showValues } from "../parts/readout";
import { remember, state, sweeps, trying } from "./state";

const FEWEST_POINTS = 4; // of a window
const SETTLED = 120; // after the last movement [ms]

const isNarrow = (): boolean => innerWidth < 760;
const onHover = (time: number | null): void => {
  if (state.readings !== null) showHover(state.readings, time);
};
const panel = (id: string, narrow: number, wide: number): Panel =>
  new Panel(element(id), () => (isNarrow() ? narrow : wide), onHover, move);
export const panels: [Panel, Panel] = [panel("upper", 230, 340), panel("lower", 170, 210)];

let isDue = false;

export function move(to: View): void {
  const { whole, drawn } = state;
  const interval = Math.min(...drawn.map(({ details }) => details.interval / 1e6), 1);
  const span = Math.min(Math.max(to.to - to.from, FEWEST_POINTS * interval), whole.to - whole.from);
  const from = Math.min(Math.max(to.from, whole.from), whole.to - span);
  state.view = { from, to: from + span };
  if (isDue) return;
  isDue = true;
  requestAnimationFrame(() => {
    isDue = false;
    for (const each of panels) each.look(state.view);
    afterMove();
  });
}

export const toWhole = (): void => move(state.whole);
export const zoom = (factor: number): void =>
  move(zoomed(state.view, (state.view.from + state.view.to) / 2, factor));

let settling = 0;

export function afterMove(): void {
  for (const each of panels) each.setCursors(state.shown.cursors);
  clearTimeout(settling);
  settling = setTimeout(() => void settle(), SETTLED);
}

/** What need not keep up with the hand. */
async function settle(): Promise<void> {
  const { readings, view } = state;
  if (readings === null) return;
  remember();
  showValues(readings, view);
  const all = readings.traces.flat();
  const came = await trying(Promise.all(all.map((t) => sweeps.comeCloser(t, view.from, view.to))));
  if (came?.some(Boolean)) for (const each of panels) each.look(state.view);
  tellCursors();
}

function tellCursors(): void {
  if (state.readings !== null) showCursors(state.readings, state.shown.cursors, setCursor);
}

export function setCursor(index: number, time: number | null): void {
  state.shown.cursors[index] = time;
  for (const each of panels) each.setCursors(state.shown.cursors);
  tellCursors();
  remember();
}

let beforeClick: (number | null)[] = [];

export function clickAt(index: number, time: number): void {
  beforeClick = [...state.shown.cursors];
  setCursor(index, time);
}

/** It was the first half of a double click. */
export function takeBackClick(): void {
  beforeClick.forEach((time, index) => setCursor(index, time));
}
