// The module's C interface as methods: strings, JSON and records instead of pointers. Runs in the
// worker. A call that fails throws the engine's sentence.
import type { Batch, Run, ScenePart, SlotEdit } from "./protocol";
import { kStride } from "./protocol";

type Functions = Record<string, (...args: (number | bigint)[]) => number>;

export type Module = Functions & {
  HEAPU8: Uint8Array;
  addFunction(f: (share: number) => number, signature: string): number;
};

const kTooLarge = "drawing too large for this device";
const kBatchBytes = 56;
const kRunBytes = 64;
const kEditBytes = 16;

export class EngineModule {
  private readonly engine: number;
  private readonly encoder = new TextEncoder();
  private readonly decoder = new TextDecoder();

  constructor(private readonly module: Module) {
    this.engine = module._vek0_create() >>> 0;
    if (!this.engine) throw new Error(kTooLarge);
  }

  private error(): Error {
    const at = this.module._vek0_error(this.engine) >>> 0;
    return new Error(this.text(at) || kTooLarge);
  }

  private text(at: number): string {
    const heap = this.module.HEAPU8;
    return this.decoder.decode(heap.subarray(at, heap.indexOf(0, at)));
  }

  private call(name: string, ...args: (number | bigint)[]): number {
    return this.module[`_vek0_${name}`](this.engine, ...args);
  }

  /** Calls a function that answers 1 or 0. */
  must(name: string, ...args: number[]): void {
    if (!this.call(name, ...args)) throw this.error();
  }

  /** Calls a function that answers a count or -1. */
  count(name: string, ...args: number[]): number {
    const count = this.call(name, ...args);
    if (count < 0) throw this.error();
    return count;
  }

  /** Calls `use` with the address of the bytes in the module's memory. */
  with<T>(bytes: Uint8Array, use: (at: number) => T): T {
    const at = this.module._malloc(Math.max(bytes.length, 8)) >>> 0;
    if (!at) throw new Error(kTooLarge);
    try {
      this.module.HEAPU8.set(bytes, at);
      return use(at);
    } finally {
      this.module._free(at);
    }
  }

  withText<T>(text: string, use: (at: number) => T): T {
    return this.with(this.encoder.encode(text + "\0"), use);
  }

  withHandles<T>(handles: string[], use: (at: number) => T): T {
    const numbers = BigUint64Array.from(handles, (handle) => {
      if (!/^[0-9a-f]{1,16}$/i.test(handle)) throw new Error(`'${handle}' is not a handle`);
      return BigInt("0x" + handle);
    });
    return this.with(new Uint8Array(numbers.buffer), use);
  }

  withPoints<T>(points: number[][], use: (at: number) => T): T {
    const numbers = Float64Array.from(points.flatMap(([x, y]) => [x, y]));
    return this.with(new Uint8Array(numbers.buffer), use);
  }

  /** A copy of the result of the last call. */
  bytes(size: number): Uint8Array {
    const at = this.call("data") >>> 0;
    return this.module.HEAPU8.slice(at, at + size);
  }

  json<T>(size: number): T {
    return JSON.parse(this.decoder.decode(this.bytes(size))) as T;
  }

  handles(count: number): string[] {
    const bytes = this.bytes(count * 8);
    return Array.from(new BigUint64Array(bytes.buffer), (n) => n.toString(16).toUpperCase());
  }

  slots(count: number): SlotEdit[] {
    const at = this.call("data") >>> 0;
    return this.editsAt(at, count);
  }

  onProgress(report: (share: number) => void): void {
    const f = this.module.addFunction((share) => {
      report(share);
      return 1;
    }, "id");
    this.call("on_progress", f);
  }

  /** Writes the next bytes of a file straight into the module's memory. */
  feed(bytes: Uint8Array): void {
    const at = this.call("open_room", bytes.length) >>> 0;
    if (!at) throw this.error();
    this.module.HEAPU8.set(bytes, at);
    this.must("open_chunk", bytes.length);
  }

  markSaved(): void {
    this.call("mark_saved");
  }

  glyph(glyph: number, detail: number): ArrayBuffer {
    const triangles = this.count("glyph", glyph, detail);
    return this.bytes(triangles * 24).buffer as ArrayBuffer;
  }

  /** A copy of what the engine has to draw; its own is freed. */
  takeScene(): ScenePart {
    const at = this.call("current") >>> 0;
    const heap = this.module.HEAPU8;
    const view = new DataView(heap.buffer);
    const word = (offset: number) => view.getUint32(at + offset, true);
    const copy = (pointer: number, bytes: number) => heap.slice(pointer, pointer + bytes).buffer;
    const part: ScenePart = {
      precision: view.getFloat64(at, true),
      pointSize: view.getFloat64(at + 8, true),
      slotCount: word(16),
      isStale: word(44) !== 0,
      batches: this.batchesAt(word(48), word(20)),
      styles: copy(word(52), word(24) * 24),
      dashes: copy(word(56), word(28) * 16),
      lengths: copy(word(60), word(32) * 4),
      runs: this.runsAt(word(64), word(36)),
      edits: this.editsAt(word(68), word(40)),
    };
    this.call("release");
    return part;
  }

  private batchesAt(at: number, count: number): Batch[] {
    const heap = this.module.HEAPU8;
    const view = new DataView(heap.buffer);
    return Array.from({ length: count }, (_, i) => {
      const b = at + i * kBatchBytes;
      const float = (offset: number) => view.getFloat32(b + offset, true);
      const word = (offset: number) => view.getUint32(b + offset, true);
      const data = word(48);
      return {
        x: view.getFloat64(b, true),
        y: view.getFloat64(b + 8, true),
        box: [float(16), float(20), float(24), float(28)],
        largest: float(32),
        kind: word(36),
        count: word(40),
        flags: word(44),
        data: heap.slice(data, data + word(40) * kStride[word(36)]).buffer,
      };
    });
  }

  private runsAt(at: number, count: number): Run[] {
    const view = new DataView(this.module.HEAPU8.buffer);
    return Array.from({ length: count }, (_, i) => {
      const r = at + i * kRunBytes;
      const double = (n: number) => view.getFloat64(r + 8 * n, true);
      return {
        at: [double(0), double(1)],
        along: [double(2), double(3)],
        up: [double(4), double(5)],
        slot: view.getUint32(r + 48, true),
        style: view.getUint32(r + 52, true),
        text: this.text(view.getUint32(r + 56, true)),
      };
    });
  }

  private editsAt(at: number, count: number): SlotEdit[] {
    const view = new DataView(this.module.HEAPU8.buffer);
    return Array.from({ length: count }, (_, i) => {
      const word = (n: number) => view.getUint32(at + i * kEditBytes + 4 * n, true);
      return { first: word(0), count: word(1), order: word(2), hidden: word(3) !== 0 };
    });
  }
}
