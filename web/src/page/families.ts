// The family of the epoch that is shown: found run by run, drawn, and measured.
import { element } from "../parts/elements";
import { showFamily } from "../parts/family";
import { choose } from "./epochs";
import { client, current, say, state, trying } from "./state";

const AT_ONCE = 100; // epochs

/** All epochs of an epoch's family; null if another recording or epoch was chosen meanwhile. */
async function familyOf(epoch: number, entry: number): Promise<number[] | null> {
  const opened = current()!;
  const { recording } = opened;
  const ask = (first: number, count: number) =>
    client.ask("families", { recording, first, count, entry });
  const [own] = await ask(epoch, 1);
  if (own === undefined || own.family === 0) return [];
  const members: number[] = [];
  for (let first = 0; first < opened.epochs; first += AT_ONCE) {
    const run = await ask(first, Math.min(AT_ONCE, opened.epochs - first));
    if (current() !== opened || state.shown.epochs[0] !== epoch) return null;
    members.push(...run.filter(({ family }) => family === own.family).map((each) => each.epoch));
    if (first > 0) say(`Looking for the family of epoch ${epoch}: ${first} of ${opened.epochs}.`);
  }
  say("");
  return members;
}

export async function chooseFamily(): Promise<void> {
  const [epoch] = state.shown.epochs;
  const opened = current();
  if (epoch === undefined || opened === undefined) return;
  const { entry } = state.shown;
  const members = await trying(familyOf(epoch, entry));
  if (members === null) return;
  if (members.length === 0) return say(`What was played in epoch ${epoch} is not known.`);
  state.shown.colour = "level";
  element<HTMLSelectElement>("colour").value = "level";
  await choose(members);
  const given = { recording: opened.recording, epochs: members, entry };
  const steps = await trying(client.ask("measured", given));
  if (steps === null || state.readings === null || current() !== opened) return;
  const [response, stimulus] = state.readings.frames;
  showFamily(
    steps.sort((a, b) => a.level - b.level),
    { stimulus, response, threshold: opened.threshold },
  );
  element<HTMLDetailsElement>("family-details").open = true;
}
