// The drawing as PNG and SVG, and its values as CSV.
import type { Frame, Panel, View } from "./panel";
import { shownNumber, ticks } from "./ticks";
import type { Trace } from "./trace";
import type { Readings } from "../parts/readout";

const KEPT = 60_000; // a busy browser takes its time to begin [ms]

export function download(name: string, content: Blob): void {
  const link = document.createElement("a");
  link.href = URL.createObjectURL(content);
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), KEPT);
}

/** Both panels as they are on the screen, under the title. */
export function asPng(panels: Panel[], title: string, paper: string, ink: string): Promise<Blob> {
  const parts = panels.map((panel) => panel.canvas).filter((canvas) => canvas !== null);
  const scale = devicePixelRatio;
  const head = 28 * scale;
  const canvas = document.createElement("canvas");
  canvas.width = Math.max(...parts.map((part) => part.width));
  canvas.height = head + parts.reduce((sum, part) => sum + part.height, 0);
  const pen = canvas.getContext("2d")!;
  pen.fillStyle = paper;
  pen.fillRect(0, 0, canvas.width, canvas.height);
  pen.fillStyle = ink;
  pen.font = `${14 * scale}px sans-serif`;
  pen.fillText(title, 10 * scale, 19 * scale);
  let top = head;
  for (const part of parts) {
    pen.drawImage(part, 0, top);
    top += part.height;
  }
  return new Promise((resolve, reject) =>
    canvas.toBlob((blob) => (blob === null ? reject(new Error("no picture")) : resolve(blob))),
  );
}

const escaped = (text: string): string =>
  text.replace(/[&<>"]/g, (letter) => `&#${letter.charCodeAt(0)};`);
const [WIDTH, LEFT, RIGHT, HEAD, FOOT] = [720, 70, 710, 30, 40];
const HEIGHTS = [300, 110];

type Place = readonly [x: string, y: string];
/** Level until the next place. */
const stepped = (places: Place[]): Place[] =>
  places.flatMap((each, i): Place[] => {
    const next = places[i + 1];
    return next === undefined ? [each] : [each, [next[0], each[1]]];
  });

function panelSvg(panel: Panel, view: View, top: number, height: number, frame: Frame): string {
  const [low, high] = panel.range;
  const x = (time: number): string =>
    (LEFT + ((time - view.from) / (view.to - view.from)) * (RIGHT - LEFT)).toFixed(2);
  const y = (value: number): string =>
    (top + height - ((value - low) / (high - low)) * height).toFixed(2);
  const lines = panel.curves(view).map(({ trace, curve }) => {
    const places = curve[0].map((time, i) => [x(time), y(curve[1][i] ?? 0)] as const);
    const points = (frame.rows === null ? places : stepped(places)).map(String).join(" ");
    const { colour, dash } = trace.style;
    const dashed = dash.length > 0 ? ` stroke-dasharray="${dash.join(" ")}"` : "";
    return `<polyline points="${points}" stroke="${colour}"${dashed}/>`;
  });
  const heights = frame.rows?.map(({ name, base }) => ({ at: base + 0.5, text: name }));
  const numbers = ticks(low, high).map((at) => ({ at, text: shownNumber(at) }));
  const marks = (heights ?? numbers).map(
    ({ at, text }) =>
      `<text x="${LEFT - 6}" y="${Number(y(at)) + 4}" text-anchor="end">${text}</text>`,
  );
  const middle = top + height / 2;
  return `<g clip-path="url(#c)" fill="none" stroke-width="1">${lines.join("")}</g>
<path d="M${LEFT},${top} v${height}" stroke="currentColor" fill="none"/>${marks.join("")}
<text x="14" y="${middle}" text-anchor="middle" transform="rotate(-90 14 ${middle})">${escaped(frame.label)}</text>`;
}

export function asSvg(panels: Panel[], readings: Readings, view: View, title: string): string {
  const height = HEAD + HEIGHTS[0]! + 10 + HEIGHTS[1]! + FOOT;
  const unit = readings.frames[0].time;
  const tops = [HEAD, HEAD + HEIGHTS[0]! + 10];
  const parts = panels.map((panel, i) =>
    panelSvg(panel, view, tops[i]!, HEIGHTS[i]!, readings.frames[i]!),
  );
  const bottom = height - FOOT;
  const times = ticks(view.from * unit.perSecond, view.to * unit.perSecond).map((each) => {
    const share = (each / unit.perSecond - view.from) / (view.to - view.from);
    const x = LEFT + share * (RIGHT - LEFT);
    return `<text x="${x.toFixed(2)}" y="${bottom + 16}" text-anchor="middle">${shownNumber(each)}</text>`;
  });
  return `<svg xmlns="http://www.w3.org/2000/svg" width="${WIDTH}" height="${height}" viewBox="0 0 ${WIDTH} ${height}" font-family="sans-serif" font-size="11">
<rect width="100%" height="100%" fill="white"/><clipPath id="c"><rect x="${LEFT}" y="0" width="${RIGHT - LEFT}" height="${height}"/></clipPath>
<text x="${LEFT}" y="18" font-size="13">${escaped(title)}</text>
${parts.join("\n")}
<path d="M${LEFT},${bottom} H${RIGHT}" stroke="currentColor"/>${times.join("")}
<text x="${(LEFT + RIGHT) / 2}" y="${height - 6}" text-anchor="middle">Time (${unit.name})</text>
</svg>`;
}

export interface CsvColumn {
  name: string;
  trace: Trace;
  values: ArrayLike<number>;
}

const quoted = (text: string): string =>
  /[",\n]/.test(text) ? `"${text.replaceAll('"', '""')}"` : text;

/** Times in seconds and a column for each curve, of the points that are in view. */
export function asCsv(columns: CsvColumn[], view: View): Blob {
  const intervals = new Set(columns.map(({ trace }) => trace.interval));
  if (intervals.size > 1)
    throw new Error("The epochs have different intervals: save them one by one.");
  const [interval] = [...intervals];
  if (interval === undefined) throw new Error("Nothing is drawn.");
  const first = Math.max(0, Math.ceil(view.from / interval - 1e-6));
  const most = Math.max(...columns.map(({ values }) => values.length));
  const end = Math.min(most, Math.floor(view.to / interval + 1e-6) + 1);
  const microseconds = Math.round(interval * 1e6);
  const pieces = [["time_s", ...columns.map(({ name }) => quoted(name))].join(",") + "\n"];
  for (let i = first; i < end; ++i) {
    const cells = columns.map(({ values }) => (i < values.length ? String(values[i]) : ""));
    pieces.push(`${(i * microseconds) / 1e6},${cells.join(",")}\n`);
  }
  return new Blob(pieces, { type: "text/csv" });
}
