// Which epochs are drawn: chosen in the list, or by Previous and Next.
import type { View } from "../drawing/panel";
import { noFamily } from "../parts/family";
import { EpochList } from "../parts/list";
import type { Sweep } from "../sweeps";
import { draw } from "./picture";
import { client, current, messageOf, remember, say, state, sweeps } from "./state";

const MOST_DRAWN = 100;

const recording = (): number => current()?.recording ?? 0;
export const list = new EpochList({
  rows: (first, count) => client.ask("rows", { recording: recording(), first, count }),
  spikes: (epoch) => client.ask("spikes", { recording: recording(), epoch }),
  choose: (epochs) => void choose(epochs),
});

let round = 0;

/** What is to be drawn of the epochs that are shown; null if others were chosen meanwhile. */
async function gather(): Promise<Sweep[] | null> {
  const now = ++round;
  const shown = { ...state.shown };
  const gathered: Sweep[] = [];
  const problems: string[] = [];
  for (const epoch of shown.epochs) {
    try {
      gathered.push(await sweeps.sweep(recording(), epoch, shown));
    } catch (error) {
      problems.push(messageOf(error));
    }
    if (now !== round) return null;
  }
  if (problems.length > 0) say(problems.join("\n"));
  return gathered;
}

const durations = (all: Sweep[]): number[] =>
  all.map(({ details }) => (details.points * details.interval) / 1e6);

/** Draws these epochs, in this window or, if they last as long as those before, in the same. */
export async function choose(epochs: number[], window: View | null = null): Promise<void> {
  if (current() === undefined) return;
  say(epochs.length > MOST_DRAWN ? `The first ${MOST_DRAWN} of the chosen epochs are drawn.` : "");
  state.shown.epochs = epochs.slice(0, MOST_DRAWN);
  const gathered = await gather();
  if (gathered === null) return;
  const isOther = durations(state.drawn).join() !== durations(gathered).join();
  state.drawn = gathered;
  state.whole = { from: 0, to: Math.max(...durations(gathered), 1e-6) };
  if (window !== null) state.view = window;
  else if (isOther) state.view = state.whole;
  noFamily();
  draw();
  list.mark(state.shown.epochs);
  remember();
}

/** The same epochs anew, in the same window. */
export const again = (): void => void choose(state.shown.epochs, state.view);

/** The epoch above or below in the list, in its order. */
export function step(by: 1 | -1): void {
  const from = by > 0 ? state.shown.epochs.at(-1) : state.shown.epochs[0];
  const next = from === undefined ? null : list.beside(from, by);
  if (next !== null) void choose([next]);
}
