// Where a recording's bytes come from, read piece by piece within a worker: a file of the reader's,
// a file that the page's own server gives by ranges, or bytes that came with the page.

export interface Bytes {
  size(): number;
  /** Fills the room, but for what lies behind the end: how many bytes there were; -1: failed. */
  read(offset: number, room: Uint8Array): number;
}

export class FileBytes implements Bytes {
  private readonly reader = new FileReaderSync();
  constructor(private readonly file: Blob) {}
  size(): number {
    return this.file.size;
  }
  read(offset: number, room: Uint8Array): number {
    try {
      const piece = this.file.slice(offset, offset + room.length);
      const bytes = new Uint8Array(this.reader.readAsArrayBuffer(piece));
      room.set(bytes);
      return bytes.length;
    } catch {
      return -1; // changed or gone since it was chosen
    }
  }
}

const PARTIAL = 206;
const BEHIND_END = 416;

export class RangeBytes implements Bytes {
  constructor(private readonly address: string) {}
  size(): number {
    const request = this.ask("HEAD");
    const length = Number(request?.getResponseHeader("Content-Length") ?? NaN);
    return request?.status === 200 && Number.isSafeInteger(length) ? length : -1;
  }
  read(offset: number, room: Uint8Array): number {
    if (room.length === 0) return 0;
    const request = this.ask("GET", `bytes=${offset}-${offset + room.length - 1}`);
    if (request?.status === BEHIND_END) return 0;
    if (request?.status !== PARTIAL) return -1;
    const bytes = new Uint8Array(request.response as ArrayBuffer);
    if (bytes.length > room.length) return -1;
    room.set(bytes);
    return bytes.length;
  }
  private ask(method: string, range?: string): XMLHttpRequest | null {
    const request = new XMLHttpRequest();
    try {
      request.open(method, this.address, false);
      request.responseType = "arraybuffer";
      if (range !== undefined) request.setRequestHeader("Range", range);
      request.send();
      return request;
    } catch {
      return null; // the server is gone
    }
  }
}

const BLOCK = 16384;
const MOST_BLOCKS = 256;

/** Small reads lie close together: they are answered from blocks that are kept. */
export class KeptBytes implements Bytes {
  private readonly blocks = new Map<number, Uint8Array>();
  constructor(private readonly source: Bytes) {}
  size(): number {
    return this.source.size();
  }
  /** After the file has grown, or may have been changed. */
  forget(): void {
    this.blocks.clear();
  }
  read(offset: number, room: Uint8Array): number {
    const index = Math.floor(offset / BLOCK);
    const inner = offset - index * BLOCK;
    if (inner + room.length > BLOCK) return this.source.read(offset, room);
    const block = this.block(index);
    if (block === null) return -1;
    const piece = block.subarray(inner, inner + room.length);
    room.set(piece);
    return piece.length;
  }
  private block(index: number): Uint8Array | null {
    const kept = this.blocks.get(index);
    if (kept !== undefined) return kept;
    const room = new Uint8Array(BLOCK);
    const there = this.source.read(index * BLOCK, room);
    if (there < 0) return null;
    const block = room.subarray(0, there);
    if (this.blocks.size >= MOST_BLOCKS) this.blocks.delete(this.blocks.keys().next().value!);
    this.blocks.set(index, block);
    return block;
  }
}
