// Structures of the C interface as objects, by the places that the module itself gives.

export interface Member {
  place: number;
  kind: "int32" | "int64" | "double" | "text" | "pointer" | "bytes";
  count: number;
}
interface Structure {
  size: number;
  members: Record<string, Member>;
}
export interface Layout {
  structures: Record<string, Structure>;
  constants: Record<string, number>;
}

const decoder = new TextDecoder();

/** The text at an address, up to its 0 or to so many bytes. */
export function textAt(memory: ArrayBuffer, address: number, most?: number): string {
  const bytes = new Uint8Array(memory, address, most);
  const end = bytes.indexOf(0);
  return decoder.decode(bytes.subarray(0, end < 0 ? bytes.length : end));
}

function elementAt(view: DataView, at: number, kind: Member["kind"]): number {
  if (kind === "double") return view.getFloat64(at, true);
  if (kind === "int64") return Number(view.getBigInt64(at, true));
  return kind === "pointer" ? view.getUint32(at, true) : view.getInt32(at, true);
}

function memberAt(memory: ArrayBuffer, start: number, member: Member): unknown {
  const at = start + member.place;
  if (member.kind === "text") return textAt(memory, at, member.count);
  if (member.kind === "bytes") return new Uint8Array(memory, at, member.count).slice();
  const view = new DataView(memory);
  const size = member.kind === "int64" || member.kind === "double" ? 8 : 4;
  const values = Array.from({ length: member.count }, (_, i) =>
    elementAt(view, at + i * size, member.kind),
  );
  return member.count === 1 ? values[0] : values;
}

/** All members of the structure at an address; the caller knows which they are. */
export function structureAt<T>(
  layout: Layout,
  name: string,
  memory: ArrayBuffer,
  address: number,
): T {
  const { members } = layout.structures[name]!;
  return Object.fromEntries(
    Object.entries(members).map(([key, member]) => [key, memberAt(memory, address, member)]),
  ) as T;
}

/** A field of a header or stimulus record, as CorvantisFields gives it. */
export interface Field {
  name: string;
  unit: string;
  meaning: string;
  kind: number;
  size: number;
  count: number;
  place: number;
}

/** A number of single precision in the digits that give it back. */
export function singleText(value: number): string {
  for (let digits = 1; digits <= 9; ++digits) {
    const text = value.toPrecision(digits);
    if (Math.fround(Number(text)) === value) return String(Number(text));
  }
  return String(value);
}

/** Where a record lies: the view is taken anew each time, since calls may make the memory grow. */
export interface RecordPlace {
  address: number;
  view: () => DataView;
}

/** The elements of a field, for people. */
export function fieldTexts(
  layout: Layout,
  field: Field,
  record: RecordPlace,
  shown: (at: number, size: number) => string,
): string[] {
  const kind = layout.constants;
  const one = (at: number): string => {
    switch (field.kind) {
      case kind.CORVANTIS_INT8:
        return String(record.view().getInt8(at));
      case kind.CORVANTIS_UINT16:
        return String(record.view().getUint16(at, true));
      case kind.CORVANTIS_INT32:
        return String(record.view().getInt32(at, true));
      case kind.CORVANTIS_UINT32:
        return String(record.view().getUint32(at, true));
      case kind.CORVANTIS_FLOAT:
        return singleText(record.view().getFloat32(at, true));
      default:
        return shown(record.address + at, field.size);
    }
  };
  return Array.from({ length: field.count }, (_, i) => one(field.place + i * field.size));
}
