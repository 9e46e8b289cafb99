// The header and parameters of an epoch, and findings, as tables and lists.
import type { Entry, EpochDetails, FieldRow, Finding, Opened, StimulusInfo } from "../messages";
import { element, fillTable, make } from "./elements";

function fieldTable(fields: FieldRow[], name: string): HTMLElement {
  const table = make("table");
  table.setAttribute("aria-label", name);
  const rows = fields.map(({ name: field, values, unit, meaning }) => [
    field,
    values.join(", "),
    unit,
    meaning,
  ]);
  fillTable(table, ["Field", "Value", "Unit", "Meaning"], rows);
  return table;
}

function stimulusPart(stimulus: StimulusInfo, name: string): HTMLElement[] {
  const parts = [make("p", `${name}: ${stimulus.words}`)];
  if (stimulus.parameters.length > 0) parts.push(fieldTable(stimulus.parameters, name));
  return parts;
}

function entryPart(entry: Entry, index: number): HTMLElement[] {
  const name = `Channel ${index}`;
  const parts = [
    make("h3", `${name}: ${entry.input}, ${entry.output}`),
    make("p", `Response = ${entry.response.formula}`),
    make("p", `Stimulus = ${entry.stimulus.formula}`),
    ...stimulusPart(entry.parameters, "Stimulus"),
    ...entry.components.flatMap((each, k) => stimulusPart(each, `Component ${k}`)),
  ];
  if (entry.problem !== "") parts.push(make("p", entry.problem, "fault"));
  if (entry.doubt !== "") parts.push(make("p", entry.doubt, "doubt"));
  return parts;
}

export function showDetails(epoch: EpochDetails | null, recording: Opened): void {
  const parts: HTMLElement[] = [];
  if (epoch !== null) {
    parts.push(...epoch.entries.flatMap(entryPart));
    parts.push(make("h3", `Header of epoch ${epoch.number}`));
    parts.push(fieldTable(epoch.header, `Header of epoch ${epoch.number}`));
  }
  parts.push(make("h3", "Header of the file"), fieldTable(recording.header, "Header of the file"));
  element("details").replaceChildren(...parts);
}

const MOST_SHOWN = 500;

export function showFindings(findings: Finding[], foundByWalking: boolean): void {
  const part = element("findings");
  part.hidden = findings.length === 0;
  const count = (weight: Finding["weight"]): number =>
    findings.filter((finding) => finding.weight === weight).length;
  const counts = (["fault", "doubt", "note"] as const)
    .map((weight) => ({ weight, number: count(weight) }))
    .filter(({ number }) => number > 0)
    .map(({ weight, number }) => `${number} ${weight}${number === 1 ? "" : "s"}`);
  const walked = foundByWalking ? "; its epochs were found by walking through it" : "";
  element("findings-summary").textContent = `The check of this file: ${counts.join(", ")}${walked}`;
  const items = findings
    .slice(0, MOST_SHOWN)
    .map((finding) =>
      make(
        "li",
        `byte ${finding.offset}, ${finding.place}: found ${finding.found}, expected ${finding.expected}`,
        finding.weight,
      ),
    );
  if (findings.length > MOST_SHOWN)
    items.push(make("li", `and ${findings.length - MOST_SHOWN} more`));
  element("findings-list").replaceChildren(...items);
}
