// What the page came with: recordings within it, or those that its server gives by ranges.

interface Within {
  name: string;
  /** gzip, as base64 */
  content: string;
}
interface Served {
  name: string;
  address: string;
}
export interface CameWith {
  within?: Within[];
  served?: Served[];
  follow?: boolean;
  /** What to show first, if the address does not say. */
  shown?: string;
}

export function cameWith(): CameWith {
  return JSON.parse(document.getElementById("recordings")?.textContent ?? "{}") as CameWith;
}

export async function fileWithin({ name, content }: Within): Promise<File> {
  const bytes = Uint8Array.from(atob(content), (letter) => letter.charCodeAt(0));
  const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream("gzip"));
  return new File([await new Response(stream).blob()], name);
}
