// What is saved: the drawing as a picture, its values as a table.
import { inRanges } from "../address";
import { asCsv, asPng, asSvg, download, type CsvColumn } from "../drawing/save";
import type { Trace } from "../drawing/trace";
import { paint } from "../sweeps";
import { colourOf, titleText } from "./picture";
import { current, state, sweeps } from "./state";
import { panels } from "./window";

async function column(trace: Trace, unit: string, inCounts: boolean): Promise<CsvColumn | null> {
  const kind = trace.name.replace(/^epoch \d+ /, "").replaceAll(" ", "");
  const isCounted = kind === "response" || kind === "stimulus";
  if (inCounts && !isCounted) return null;
  const values = inCounts ? await sweeps.counts(trace) : trace.values;
  if (values === null)
    throw new Error("An epoch this long is saved by the command corvantis export.");
  const epoch = state.drawn.length > 1 ? `_${trace.epoch}` : "";
  return { name: `${kind}${epoch}_${inCounts ? "counts" : unit}`, trace, values };
}

async function csv(inCounts: boolean): Promise<Blob> {
  const { frames, traces } = state.readings!;
  const columns: (CsvColumn | null)[] = [];
  for (const [panel, { unit }] of frames.entries())
    for (const trace of traces[panel]!) columns.push(await column(trace, unit, inCounts));
  return asCsv(
    columns.filter((each) => each !== null),
    state.view,
  );
}

/** For paper, whatever the page wears. */
function svg(): Blob {
  paint(state.drawn, state.shown.colour, false);
  const text = asSvg(panels, state.readings!, state.view, titleText());
  paint(state.drawn, state.shown.colour, state.isDark);
  return new Blob([text], { type: "image/svg+xml" });
}

export async function save(kind: string): Promise<void> {
  if (state.readings === null) return;
  const stem = (current()?.name ?? "recording").replace(/\.[^.]*$/, "");
  const name = `${stem}-epoch-${inRanges(state.shown.epochs).replaceAll(",", "_")}`;
  const [paper, ink] = [colourOf("--paper"), colourOf("--ink")];
  if (kind === "png") download(`${name}.png`, await asPng(panels, titleText(), paper, ink));
  else if (kind === "svg") download(`${name}.svg`, svg());
  else if (kind === "counts") download(`${name}-counts.csv`, await csv(true));
  else if (kind === "csv") download(`${name}.csv`, await csv(false));
}
