// Wheel, touch and keys on the drawing, as changes of the window.
import type { View } from "./panel";

interface Wishes {
  view: () => View;
  move: (view: View) => void;
  /** Where on the time axis that is: 0 at its left end, 1 at its right. */
  shareAt: (clientX: number) => number;
  whole: () => void;
  step: (by: 1 | -1) => void;
  click: (time: number, isSecond: boolean) => void;
  /** A double click began as a click. */
  takeBack: () => void;
}

export function zoomed({ from, to }: View, about: number, factor: number): View {
  return { from: about + (from - about) * factor, to: about + (to - about) * factor };
}

/** The window in which two times are at those shares of the axis; null if they cannot be. */
function between(times: number[], shares: number[]): View | null {
  const span = (times[1]! - times[0]!) / (shares[1]! - shares[0]!);
  if (!(span > 0) || !Number.isFinite(span)) return null;
  const from = times[0]! - shares[0]! * span;
  return { from, to: from + span };
}

const shifted = ({ from, to }: View, by: number): View => ({ from: from + by, to: to + by });

const timesOf =
  (wishes: Wishes) =>
  (clientX: number): number => {
    const { from, to } = wishes.view();
    return from + wishes.shareAt(clientX) * (to - from);
  };

export function listen(drawing: HTMLElement, wishes: Wishes): void {
  const span = (): number => wishes.view().to - wishes.view().from;
  const timeAt = timesOf(wishes);
  const middle = (): number => (wishes.view().to + wishes.view().from) / 2;

  drawing.addEventListener(
    "wheel",
    (event) => {
      event.preventDefault();
      const isAcross = Math.abs(event.deltaX) > Math.abs(event.deltaY) || event.shiftKey;
      const turned = event.deltaX || event.deltaY;
      if (isAcross) wishes.move(shifted(wishes.view(), (turned / 800) * span()));
      else wishes.move(zoomed(wishes.view(), timeAt(event.clientX), Math.exp(event.deltaY / 400)));
    },
    { passive: false },
  );

  drawing.addEventListener("keydown", (event) => {
    const keys: Record<string, () => void> = {
      ArrowLeft: () => wishes.move(shifted(wishes.view(), -span() / 10)),
      ArrowRight: () => wishes.move(shifted(wishes.view(), span() / 10)),
      "+": () => wishes.move(zoomed(wishes.view(), middle(), 0.5)),
      "=": () => wishes.move(zoomed(wishes.view(), middle(), 0.5)),
      "-": () => wishes.move(zoomed(wishes.view(), middle(), 2)),
      Home: wishes.whole,
      PageUp: () => wishes.step(-1),
      PageDown: () => wishes.step(1),
      a: () => wishes.click(middle(), false),
      b: () => wishes.click(middle(), true),
    };
    const act = keys[event.key];
    if (act === undefined || event.ctrlKey || event.metaKey || event.altKey) return;
    event.preventDefault();
    act();
  });

  let pressed = 0;
  let isClick = false; // the last single one, which may become a double click
  drawing.addEventListener("pointerdown", (event) => (pressed = event.clientX), true);
  drawing.addEventListener("click", (event) => {
    if (event.detail !== 1) return;
    isClick = Math.abs(event.clientX - pressed) < 3;
    if (isClick) wishes.click(timeAt(event.clientX), event.shiftKey);
  });
  drawing.addEventListener("dblclick", () => {
    if (isClick) wishes.takeBack();
    isClick = false;
    wishes.whole();
  });
  listenToDrags(drawing, wishes);
}

/** A finger, or the mouse with Shift or the middle button, drags the window along; two fingers zoom. */
function listenToDrags(drawing: HTMLElement, wishes: Wishes): void {
  const fingers = new Map<number, number>();
  const start = (event: PointerEvent): void => {
    const isMouse = event.pointerType === "mouse";
    if (isMouse && !event.shiftKey && event.button !== 1) return;
    event.stopPropagation();
    if (isMouse) event.preventDefault();
    fingers.set(event.pointerId, event.clientX);
    drawing.setPointerCapture(event.pointerId);
  };
  const move = (event: PointerEvent): void => {
    const before = fingers.get(event.pointerId);
    if (before === undefined) return;
    const was = [...fingers.values()].map(timesOf(wishes));
    fingers.set(event.pointerId, event.clientX);
    const places = [...fingers.values()];
    const now = places.map(timesOf(wishes));
    if (fingers.size === 1) return wishes.move(shifted(wishes.view(), was[0]! - now[0]!));
    const held = between(was, places.map(wishes.shareAt));
    if (held !== null) wishes.move(held);
  };
  const end = (event: PointerEvent): void => void fingers.delete(event.pointerId);
  drawing.addEventListener("pointerdown", start, true);
  drawing.addEventListener(
    "mousedown",
    (event) => {
      if (event.shiftKey || event.button === 1) event.stopPropagation();
    },
    true,
  );
  drawing.addEventListener("pointermove", move);
  drawing.addEventListener("pointerup", end);
  drawing.addEventListener("pointercancel", end);
}
