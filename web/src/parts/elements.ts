// Elements of the page by their id, and new ones with their text.

export function element<T extends HTMLElement = HTMLElement>(id: string): T {
  return document.getElementById(id) as T;
}

export function make(tag: string, text = "", className = ""): HTMLElement {
  const made = document.createElement(tag);
  made.textContent = text;
  if (className !== "") made.className = className;
  return made;
}

export function row(cells: string[], tag = "td"): HTMLElement {
  const made = make("tr");
  made.append(...cells.map((cell, i) => make(i === 0 && tag === "td" ? "th" : tag, cell)));
  const [first] = made.children;
  first?.setAttribute("scope", tag === "td" ? "row" : "col");
  return made;
}

/** A table with a line of heads. */
export function fillTable(table: HTMLElement, heads: string[], rows: string[][]): void {
  const head = make("thead");
  head.append(row(heads, "th"));
  const body = make("tbody");
  body.append(...rows.map((cells) => row(cells)));
  table.replaceChildren(head, body);
}
