// What the page shows now, and what every part of it needs: its worker, its messages, its address.
import { fromAddress, toAddress, type Shown } from "../address";
import { Client } from "../client";
import type { View } from "../drawing/panel";
import type { Opened } from "../messages";
import { element } from "../parts/elements";
import type { Readings } from "../parts/readout";
import { Sweeps, type Sweep } from "../sweeps";

export const client = new Client();
export const sweeps = new Sweeps(client);

interface State {
  recordings: Opened[];
  shown: Shown;
  /** What is drawn of the epochs that are shown. */
  drawn: Sweep[];
  readings: Readings | null;
  /** All of the time axis, and the window of it that is in view. */
  whole: View;
  view: View;
  isDark: boolean;
}
export const state: State = {
  recordings: [],
  shown: fromAddress(location.hash),
  drawn: [],
  readings: null,
  whole: { from: 0, to: 1 },
  view: { from: 0, to: 1 },
  isDark: matchMedia("(prefers-color-scheme: dark)").matches,
};

export const current = (): Opened | undefined => state.recordings[state.shown.recording];

export const messageOf = (error: unknown): string =>
  error instanceof Error ? error.message : String(error);

export function say(problem: string): void {
  const part = element("message");
  part.textContent = problem;
  part.hidden = problem === "";
}

/** What comes of the work; of a failure null, and it is said. */
export async function trying<T>(work: Promise<T>): Promise<T | null> {
  try {
    return await work;
  } catch (error) {
    say(messageOf(error));
    return null;
  }
}

/** Writes what is shown into the address. */
export function remember(): void {
  const { shown, view, whole } = state;
  const isWhole = view.from === whole.from && view.to === whole.to;
  shown.from = isWhole ? null : Number(view.from.toPrecision(9));
  shown.to = isWhole ? null : Number(view.to.toPrecision(9));
  // Within a notebook the page has no address of its own.
  if (location.protocol !== "about:") history.replaceState(null, "", toAddress(shown));
}
