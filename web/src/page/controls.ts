// What the person does with the page's buttons, fields, keys and hands.
import { fromAddress } from "../address";
import { listen } from "../drawing/gestures";
import { element } from "../parts/elements";
import { again, step } from "./epochs";
import { chooseFamily } from "./families";
import { draw } from "./picture";
import { checks, openFiles, show } from "./recordings";
import { save } from "./saving";
import { state, trying } from "./state";
import { clickAt, move, panels, takeBackClick, toWhole, zoom } from "./window";

/** Dark or light. */
export function wear(dark: boolean): void {
  state.isDark = dark;
  document.documentElement.dataset.theme = dark ? "dark" : "light";
  element("theme").textContent = dark ? "Light" : "Dark";
  if (state.readings !== null) draw();
}

const click = (id: string, act: () => void): void => element(id).addEventListener("click", act);
const change = (id: string, act: (value: string) => void): void =>
  element<HTMLSelectElement>(id).addEventListener("change", (event) =>
    act((event.target as HTMLSelectElement).value),
  );

function listenToFields(): void {
  const file = element<HTMLInputElement>("file");
  file.addEventListener("change", () => {
    void openFiles([...(file.files ?? [])]).then(() => (file.value = ""));
  });
  change("recording", (value) => void show({ ...fromAddress(""), recording: Number(value) }));
  change("entry", (value) => {
    state.shown.entry = Number(value);
    again();
  });
  change("colour", (value) => {
    state.shown.colour = value === "level" ? "level" : "order";
    draw();
  });
  change("save", (value) => {
    element<HTMLSelectElement>("save").value = "";
    void trying(save(value));
  });
  for (const id of checks)
    change(id, () => {
      state.shown[id] = element<HTMLInputElement>(id).checked;
      again();
    });
}

function listenToButtons(): void {
  click("theme", () => wear(!state.isDark));
  click("previous", () => step(-1));
  click("next", () => step(1));
  click("zoom-in", () => zoom(0.5));
  click("zoom-out", () => zoom(2));
  click("whole", toWhole);
  click("family", () => void chooseFamily());
}

function listenToDrawing(): void {
  listen(element("drawing"), {
    view: () => state.view,
    move,
    shareAt: (x) => panels[0].shareAt(x),
    whole: toWhole,
    step,
    click: (time, isSecond) => clickAt(isSecond ? 1 : 0, time),
    takeBack: takeBackClick,
  });
  const fit = new ResizeObserver(() => panels.forEach((panel) => panel.resize(state.view)));
  fit.observe(element("drawing"));
}

function listenToDrops(): void {
  const mark = (isOver: boolean): void => void document.body.classList.toggle("dropping", isOver);
  addEventListener("dragover", (event) => {
    event.preventDefault();
    mark(true);
  });
  addEventListener("dragleave", () => mark(false));
  document.addEventListener("drop", (event) => {
    event.preventDefault();
    mark(false);
    void openFiles([...(event.dataTransfer?.files ?? [])]);
  });
}

export function listenToAll(): void {
  listenToFields();
  listenToButtons();
  listenToDrawing();
  listenToDrops();
  // The address may be another one again by now: what was shown before writes it late.
  window.addEventListener(
    "hashchange",
    (event) => void show(fromAddress(new URL(event.newURL).hash)),
  );
}
