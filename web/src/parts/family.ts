// The panel of a family: its curves, and its measures as a table.
import type { Step } from "../messages";
import type { Frame } from "../drawing/panel";
import { shownNumber, ticks } from "../drawing/ticks";
import { element, fillTable, make } from "./elements";

const SVG = "http://www.w3.org/2000/svg";
const [WIDTH, HEIGHT, LEFT, BOTTOM, TOP] = [300, 200, 52, 34, 10];

function svg(tag: string, attributes: Record<string, string | number>, text = ""): SVGElement {
  const made = document.createElementNS(SVG, tag);
  for (const [name, value] of Object.entries(attributes)) made.setAttribute(name, String(value));
  made.textContent = text;
  return made;
}

function spanOf(values: number[]): [number, number] {
  const [low, high] = [Math.min(...values), Math.max(...values)];
  const room = 0.06 * (high - low) || 0.5;
  return [low - room, high + room];
}

function curve(points: [number, number][], across: string, up: string): SVGElement {
  const [x0, x1] = spanOf(points.map(([x]) => x));
  const [y0, y1] = spanOf(points.map(([, y]) => y));
  const x = (value: number): number => LEFT + ((value - x0) / (x1 - x0)) * (WIDTH - LEFT - 8);
  const y = (value: number): number =>
    HEIGHT - BOTTOM - ((value - y0) / (y1 - y0)) * (HEIGHT - BOTTOM - TOP);
  const picture = svg("svg", { width: WIDTH, height: HEIGHT, role: "img", fill: "currentColor" });
  picture.setAttribute("aria-label", `${up} against ${across}`);
  const line = { stroke: "currentColor", fill: "none" };
  const corner = `M${LEFT},${TOP} V${HEIGHT - BOTTOM} H${WIDTH - 8}`;
  picture.append(svg("path", { ...line, d: corner }));
  const small = { "font-size": 11, "text-anchor": "middle" };
  for (const each of ticks(x0, x1))
    picture.append(svg("text", { ...small, x: x(each), y: HEIGHT - 20 }, shownNumber(each)));
  for (const each of ticks(y0, y1))
    picture.append(
      svg(
        "text",
        { ...small, "text-anchor": "end", x: LEFT - 4, y: y(each) + 4 },
        shownNumber(each),
      ),
    );
  picture.append(svg("text", { ...small, x: (LEFT + WIDTH) / 2, y: HEIGHT - 5 }, across));
  const turned = `rotate(-90 11 ${HEIGHT / 2 - 10})`;
  picture.append(svg("text", { ...small, x: 11, y: HEIGHT / 2 - 10, transform: turned }, up));
  const path = points.map(([a, b], i) => `${i === 0 ? "M" : "L"}${x(a)},${y(b)}`).join("");
  picture.append(svg("path", { ...line, d: path }));
  picture.append(...points.map(([a, b]) => svg("circle", { cx: x(a), cy: y(b), r: 3 })));
  return picture;
}

export interface FamilyFrames {
  stimulus: Frame;
  response: Frame;
  threshold: number;
}

function familyTable(
  steps: Step[],
  { stimulus, response }: FamilyFrames,
  hasSpikes: boolean,
): void {
  const heads = ["Epoch", `Level (${stimulus.unit})`];
  heads.push(...["Baseline", "Peak", "Steady"].map((name) => `${name} (${response.unit})`));
  if (hasSpikes) heads.push("Spikes", "Rate (Hz)");
  const rows = steps.map((step) => [
    String(step.epoch),
    ...[step.level, step.baseline, step.peak, step.steady].map(shownNumber),
    ...(hasSpikes ? [String(step.spikes), shownNumber(step.rate ?? 0)] : []),
  ]);
  fillTable(element("family-table"), heads, rows);
}

export function showFamily(steps: Step[], frames: FamilyFrames): void {
  const hasCurves = new Set(steps.map(({ level }) => level)).size > 1;
  element("family-details").hidden = !hasCurves;
  if (!hasCurves) return;
  const hasSpikes = steps.some(({ spikes }) => spikes !== null);
  const { stimulus, response } = frames;
  const steady = steps.filter((step) => step.isSettled);
  const curves = [
    curve(
      steady.map((step) => [step.level, step.steady]),
      stimulus.label,
      response.label,
    ),
  ];
  if (hasSpikes)
    curves.push(
      curve(
        steps.map((step) => [step.level, step.rate ?? 0]),
        stimulus.label,
        "Spike Rate (Hz)",
      ),
    );
  element("family-curves").replaceChildren(...curves);
  element("family-threshold").textContent = hasSpikes
    ? `A spike crosses ${shownNumber(frames.threshold)} mV upwards.`
    : "";
  familyTable(steps, frames, hasSpikes);
}

export function noFamily(): void {
  element("family-details").hidden = true;
  element("family-curves").replaceChildren(make("p"));
}
