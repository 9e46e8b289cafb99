// The recordings that are open: opened, shown, and followed while they grow.
import { fromAddress, type Shown } from "../address";
import type { Opened } from "../messages";
import { showFindings } from "../parts/details";
import { element } from "../parts/elements";
import { cameWith, fileWithin } from "../sources";
import { choose, list } from "./epochs";
import { client, current, say, state, trying } from "./state";

const FOLLOWING = 1000; // between two looks at a file that grows [ms]

export const checks = ["components", "fit", "bars"] as const;

function add(opened: Opened): void {
  state.recordings.push(opened);
  const option = document.createElement("option");
  option.value = String(state.recordings.length - 1);
  option.textContent = opened.name;
  element("recording").append(option);
  element("choose").hidden = state.recordings.length < 2;
}

export async function openFiles(files: File[]): Promise<void> {
  say("");
  const before = state.recordings.length;
  for (const file of files) {
    const opened = await trying(client.ask("openFile", { file }));
    if (opened !== null) add(opened);
  }
  if (state.recordings.length === before) return;
  // An address that came with the page is of the first recording that is opened.
  await show(before === 0 ? fromAddress(location.hash) : { ...fromAddress(""), recording: before });
}

/** Shows a recording: its first epoch before all that takes longer. */
export async function show(wanted: Shown): Promise<void> {
  const last = state.recordings.length - 1;
  state.shown = { ...wanted, recording: Math.min(wanted.recording, last) };
  const opened = current();
  if (opened === undefined) return;
  showSettings();
  showFindings([], false);
  summarise(opened);
  document.title = `${opened.name} – Corvantis`;
  const { from, to, epochs } = state.shown;
  const there = epochs.filter((each) => each < opened.epochs);
  const first = opened.epochs > 0 ? [0] : [];
  await choose(
    there.length > 0 ? there : first,
    from !== null && to !== null ? { from, to } : null,
  );
  if (current() !== opened) return;
  list.show(opened, true);
  list.mark(state.shown.epochs);
  const findings = await trying(client.ask("findings", { recording: opened.recording }));
  if (findings !== null && current() === opened) showFindings(findings, opened.foundByWalking);
}

function showSettings(): void {
  for (const id of ["epochs", "view"]) element(id).hidden = false;
  element("start").hidden = true;
  element<HTMLSelectElement>("recording").value = String(state.shown.recording);
  element<HTMLSelectElement>("colour").value = state.shown.colour;
  for (const id of checks) element<HTMLInputElement>(id).checked = state.shown[id];
}

function summarise(opened: Opened): void {
  const size = opened.size.toLocaleString("en");
  element("summary").textContent = `${opened.name}: ${opened.epochs} epochs, ${size} bytes`;
}

async function takeIn(opened: Opened): Promise<void> {
  const epochs = await client.ask("refresh", { recording: opened.recording }).catch(() => null);
  if (epochs === null || epochs === opened.epochs) return;
  const { shown } = state;
  const wasAtEnd = shown.epochs.length === 1 && shown.epochs[0] === opened.epochs - 1;
  const wasEmpty = opened.epochs === 0;
  opened.epochs = epochs;
  if (opened !== current()) return;
  summarise(opened);
  list.show(opened, false);
  if (wasAtEnd || wasEmpty) await choose([epochs - 1]);
}

async function follow(): Promise<void> {
  for (const opened of state.recordings) await takeIn(opened);
  setTimeout(() => void follow(), FOLLOWING);
}

/** Opens what the page came with. */
export async function openWhatCame(): Promise<void> {
  const { within = [], served = [], follow: isFollowed, shown = "" } = cameWith();
  for (const each of within) {
    const opened = await trying(fileWithin(each).then((file) => client.ask("openFile", { file })));
    if (opened !== null) add(opened);
  }
  for (const { name, address } of served) {
    const given = { name, address: new URL(address, location.href).href };
    const opened = await trying(client.ask("openAddress", given));
    if (opened !== null) add(opened);
  }
  const wanted = fromAddress(location.hash || shown);
  const first = state.recordings[0];
  // Who follows a recording looks at what comes.
  if (isFollowed === true && first !== undefined && wanted.epochs.length === 0)
    wanted.epochs = [Math.max(first.epochs - 1, 0)];
  if (first !== undefined) await show(wanted);
  if (isFollowed === true) void follow();
}
