// The reading library's module: its memory, its calls, and problems as errors.
import packed from "virtual:module";
import type { Bytes } from "./bytes";
import { structureAt, textAt, type Field, type Layout } from "./structures";

type Call = (...values: (number | bigint)[]) => number;
interface Exports {
  memory: WebAssembly.Memory;
  malloc(size: number): number;
  free(address: number): void;
  _initialize(): void;
  CorvantisStructures(): number;
}

const NO_DESCRIPTOR = 8; // what the system answers that a page is not
const TEXT_ROOM = 65536;

/** A call of the library that failed, with its code. */
export class ReadingError extends Error {
  constructor(
    readonly code: number,
    text: string,
  ) {
    super(text);
  }
}

async function unpacked(): Promise<ArrayBuffer> {
  const bytes = Uint8Array.from(atob(packed), (letter) => letter.charCodeAt(0));
  const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream("gzip"));
  return new Response(stream).arrayBuffer();
}

export class Module {
  readonly layout: Layout;
  private readonly fieldLists = new Map<number, Field[]>();
  private readonly problem: number;
  private readonly text: number;

  private constructor(
    private readonly exports: Exports,
    readonly files: Map<number, Bytes>,
  ) {
    exports._initialize();
    // Any call may make the memory grow, which ends the buffer that was taken before it.
    const structures = exports.CorvantisStructures();
    this.layout = JSON.parse(textAt(this.buffer, structures)) as Layout;
    this.problem = exports.malloc(this.sizeOf("CorvantisProblem"));
    this.text = exports.malloc(TEXT_ROOM);
  }

  static async load(): Promise<Module> {
    const files = new Map<number, Bytes>();
    let memory: WebAssembly.Memory | null = null;
    const page = {
      size: (file: number) => files.get(file)?.size() ?? -1,
      read: (file: number, offset: number, address: number, count: number) =>
        files.get(file)?.read(offset, new Uint8Array(memory!.buffer, address, count)) ?? -1,
    };
    const system = new Proxy({}, { get: () => () => NO_DESCRIPTOR });
    const { instance } = await WebAssembly.instantiate(await unpacked(), {
      page,
      wasi_snapshot_preview1: system,
    });
    const exports = instance.exports as unknown as Exports;
    memory = exports.memory;
    return new Module(exports, files);
  }

  get buffer(): ArrayBuffer {
    return this.exports.memory.buffer;
  }
  sizeOf(structure: string): number {
    return this.layout.structures[structure]!.size;
  }
  constant(name: string): number {
    return this.layout.constants[name]!;
  }

  /** Calls a function as it is; the result is its own. */
  call(name: string, ...values: (number | bigint)[]): number {
    return (this.exports as unknown as Record<string, Call>)[name]!(...values);
  }
  /** Calls a function whose last parameter is a problem. */
  ask(name: string, ...values: (number | bigint)[]): void {
    const code = this.call(name, ...values, this.problem);
    if (code === 0) return;
    const { text } = structureAt<{ text: string }>(
      this.layout,
      "CorvantisProblem",
      this.buffer,
      this.problem,
    );
    throw new ReadingError(code, text);
  }

  /** Room of so many bytes for as long as `use` runs. */
  withRoom<T>(size: number, use: (address: number) => T): T {
    const address = this.exports.malloc(Math.max(size, 1));
    if (address === 0) throw new Error(`${size} bytes of memory are not to be had`);
    try {
      return use(address);
    } finally {
      this.exports.free(address);
    }
  }
  /** A structure that a function fills in. */
  filled<T>(structure: string, fill: (address: number) => void): T {
    return this.withRoom(this.sizeOf(structure), (address) => {
      fill(address);
      return structureAt<T>(this.layout, structure, this.buffer, address);
    });
  }
  /** A text that a function writes into a room. */
  written(write: (address: number, capacity: number) => void): string {
    write(this.text, TEXT_ROOM);
    return textAt(this.buffer, this.text, TEXT_ROOM);
  }
  /** Hands a text over for as long as `use` runs. */
  withText<T>(text: string, use: (address: number) => T): T {
    const bytes = new TextEncoder().encode(`${text}\0`);
    return this.withRoom(bytes.length, (address) => {
      new Uint8Array(this.buffer, address).set(bytes);
      return use(address);
    });
  }
  constantText(address: number): string {
    return textAt(this.buffer, address);
  }

  /** The fields of a record, which are the same for every recording. */
  fields(record: number): Field[] {
    const known = this.fieldLists.get(record);
    if (known !== undefined) return known;
    const made = this.withRoom(8, (room) => {
      if (this.call("CorvantisFields", record, room, room + 4) !== 0) return [];
      const [first, count] = new Uint32Array(this.buffer, room, 2);
      return Array.from({ length: count! }, (_, i) => this.field(first!, i));
    });
    this.fieldLists.set(record, made);
    return made;
  }
  private field(first: number, index: number): Field {
    const address = first + index * this.sizeOf("CorvantisField");
    const raw = structureAt<Record<"name" | "unit" | "meaning", number> & Field>(
      this.layout,
      "CorvantisField",
      this.buffer,
      address,
    );
    const [name, unit, meaning] = [raw.name, raw.unit, raw.meaning].map((at) =>
      this.constantText(at as unknown as number),
    );
    return { ...raw, name: name!, unit: unit!, meaning: meaning! };
  }
}
