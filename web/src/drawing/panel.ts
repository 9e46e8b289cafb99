// One panel: curves over time, with axes or scale bars.
import uPlot from "uplot";
import type { Row } from "./lines";
import { roundLength, shownNumber } from "./ticks";
import { drawn, extent, joined, valueAt, type Trace } from "./trace";

export interface View {
  from: number;
  to: number;
}
export interface Frame {
  label: string;
  unit: string;
  /** Whether values are digital words. */
  isWord: boolean;
  /** Digital lines have names instead of numbers. */
  rows: Row[] | null;
  /** Whether the time axis is written below it. */
  hasTime: boolean;
  time: { name: string; perSecond: number };
  bars: boolean;
  fit: boolean;
  ink: string;
  line: string;
}

const LEFT = 64;
const LINE_HEIGHT = 15; // of a digital line with its name
const AROUND = 50;

/** What stands at the vertical axis: numbers, or the names of lines halfway up. */
function heights(rows: Row[] | null): Partial<uPlot.Axis> {
  if (rows === null) return { values: (_, splits) => splits.map(shownNumber) };
  const places = rows.map(({ base }) => base + 0.5);
  return { splits: () => places, values: () => rows.map(({ name }) => name) };
}
const FONT = "12px system-ui, sans-serif";

export class Panel {
  private plot: uPlot | null = null;
  private traces: Trace[] = [];
  private frame: Frame | null = null;
  private cursors: (number | null)[] = [];
  range: [number, number] = [0, 1];

  constructor(
    private readonly place: HTMLElement,
    private readonly height: () => number,
    private readonly onHover: (time: number | null) => void,
    private readonly onZoom: (view: View) => void,
  ) {}

  /** Draws other curves, or the same in another way. */
  show(traces: Trace[], frame: Frame, view: View): void {
    this.traces = traces;
    this.frame = frame;
    this.plot?.destroy();
    this.plot = new uPlot(this.options(frame, view), this.data(view), this.place);
    this.rescale(view);
  }

  get columns(): number {
    return Math.max(50, Math.round(this.width() - LEFT - 20));
  }

  look(view: View): void {
    if (this.plot === null) return;
    this.plot.setData(this.data(view), false);
    this.rescale(view);
  }

  setCursors(times: (number | null)[]): void {
    this.cursors = times;
    this.plot?.redraw(false, false);
  }

  resize(view: View): void {
    if (this.frame === null) return;
    this.plot?.setSize({ width: this.width(), height: this.heightOf(this.frame) });
    this.look(view);
  }

  get canvas(): HTMLCanvasElement | null {
    return this.plot?.ctx.canvas ?? null;
  }
  /** Where the curves lie, in pixels of the canvas. */
  get box(): { left: number; top: number; width: number; height: number } | null {
    return this.plot?.bbox ?? null;
  }
  /** Where on the time axis: 0 at its left end, 1 at its right. */
  shareAt(clientX: number): number {
    const over = this.plot?.over.getBoundingClientRect();
    return over === undefined ? 0 : (clientX - over.left) / over.width;
  }
  curves(view: View): { trace: Trace; curve: ReturnType<typeof drawn> }[] {
    return this.traces.map((trace) => ({
      trace,
      curve: drawn(trace, view.from, view.to, this.columns),
    }));
  }

  private heightOf({ rows }: Frame): number {
    return Math.max(this.height(), (rows?.length ?? 0) * LINE_HEIGHT + AROUND);
  }
  private width(): number {
    return Math.max(200, this.place.clientWidth);
  }

  private data(view: View): uPlot.AlignedData {
    const curves = this.curves(view).map(({ curve }) => curve);
    return joined(curves);
  }

  private limits(view: View): [number, number] {
    const fit = this.frame?.fit ?? false;
    let [low, high] = [Infinity, -Infinity];
    for (const trace of this.traces) {
      const first = fit ? Math.floor(view.from / trace.interval) : 0;
      const end = fit ? Math.ceil(view.to / trace.interval) + 1 : trace.points;
      const [least, most] = extent(trace, first, end);
      low = Math.min(low, least);
      high = Math.max(high, most);
    }
    if (this.frame?.rows) return [-0.5, 2 * this.frame.rows.length - 0.5];
    if (!Number.isFinite(low) || !Number.isFinite(high)) return [0, 1];
    // Outlines are of single precision, in which a constant may seem to vary.
    const isFlat = high - low <= 1e-6 * Math.max(Math.abs(high), Math.abs(low));
    const room = isFlat ? 0.5 : 0.06 * (high - low);
    return [low - room, high + room];
  }

  private rescale(view: View): void {
    this.range = this.limits(view);
    this.plot?.batch(() => {
      this.plot?.setScale("x", { min: view.from, max: view.to });
      this.plot?.setScale("y", { min: this.range[0], max: this.range[1] });
    });
  }

  private options(frame: Frame, view: View): uPlot.Options {
    const axis = { stroke: frame.ink, grid: { show: false }, ticks: { stroke: frame.line } };
    const { time, bars } = frame;
    return {
      width: this.width(),
      height: this.heightOf(frame),
      legend: { show: false },
      padding: [8, 12, bars ? 26 : 4, 0],
      scales: {
        x: { time: false, min: view.from, max: view.to },
        y: { auto: false, range: (_, min, max) => [min, max] },
      },
      axes: [
        {
          ...axis,
          show: frame.hasTime && !bars,
          label: `Time (${time.name})`,
          size: 34,
          labelSize: 18,
          labelFont: FONT,
          values: (_, splits) => splits.map((each) => shownNumber(each * time.perSecond)),
        },
        {
          ...axis,
          show: !bars || frame.rows !== null,
          label: frame.label,
          labelFont: FONT,
          size: LEFT - 18,
          labelSize: 18,
          ...heights(frame.rows),
        },
      ],
      cursor: {
        drag: { x: true, y: false, setScale: false },
        y: false,
        points: { show: false },
      },
      series: [
        {},
        ...this.traces.map((trace) => ({
          label: trace.name,
          stroke: trace.style.colour,
          width: 1.2,
          dash: trace.style.dash,
          points: { show: false },
          pxAlign: 0,
          ...(frame.rows === null ? {} : { paths: uPlot.paths.stepped!({ align: 1 }) }),
        })),
      ],
      hooks: {
        setCursor: [
          (plot) => {
            const left = plot.cursor.left ?? -1;
            this.onHover(left < 0 ? null : plot.posToVal(left, "x"));
          },
        ],
        setSelect: [
          (plot) => {
            const { left, width } = plot.select;
            if (width < 4) return;
            const from = plot.posToVal(left, "x");
            const to = plot.posToVal(left + width, "x");
            plot.setSelect({ left: 0, width: 0, top: 0, height: 0 }, false);
            this.onZoom({ from, to });
          },
        ],
        draw: [
          (plot) => {
            this.drawCursors(plot);
            if (frame.bars) this.drawBars(plot, frame);
          },
        ],
      },
    };
  }

  private drawCursors(plot: uPlot): void {
    const { ctx, bbox } = plot;
    this.cursors.forEach((time, i) => {
      if (time === null) return;
      const x = plot.valToPos(time, "x", true);
      if (x < bbox.left || x > bbox.left + bbox.width) return;
      ctx.save();
      ctx.strokeStyle = ctx.fillStyle = this.frame!.ink;
      ctx.setLineDash([4, 4]);
      ctx.beginPath();
      ctx.moveTo(x, bbox.top);
      ctx.lineTo(x, bbox.top + bbox.height);
      ctx.stroke();
      ctx.fillText("AB"[i]!, x + 6, bbox.top + 8 * uPlot.pxRatio);
      ctx.restore();
    });
  }

  /** An L at the lower right whose arms have round lengths. */
  private drawBars(plot: uPlot, frame: Frame): void {
    const { ctx, bbox } = plot;
    const span = (plot.scales.x!.max! - plot.scales.x!.min!) * frame.time.perSecond;
    const across = roundLength(span);
    const up = roundLength(this.range[1] - this.range[0]);
    const right = bbox.left + bbox.width - 4;
    const bottom = bbox.top + bbox.height + 6;
    const width = (across / span) * bbox.width;
    const height = (up / (this.range[1] - this.range[0])) * bbox.height;
    ctx.save();
    ctx.strokeStyle = ctx.fillStyle = frame.ink;
    ctx.lineWidth = 1.5 * uPlot.pxRatio;
    ctx.beginPath();
    ctx.moveTo(right, bottom - (frame.rows === null ? height : 0));
    ctx.lineTo(right, bottom);
    if (frame.hasTime) ctx.lineTo(right - width, bottom);
    ctx.stroke();
    ctx.font = `${12 * uPlot.pxRatio}px sans-serif`;
    ctx.textAlign = "right";
    ctx.textBaseline = "middle";
    if (frame.rows === null)
      ctx.fillText(`${shownNumber(up)} ${frame.unit}`, right - 6, bottom - height / 2);
    ctx.textBaseline = "top";
    if (frame.hasTime) ctx.fillText(`${shownNumber(across)} ${frame.time.name}`, right, bottom + 4);
    ctx.restore();
  }
}

/** The value of a curve at a time, or null where it has none. */
export function valueAtTime(trace: Trace, time: number): number | null {
  return valueAt(trace, Math.round(time / trace.interval));
}
