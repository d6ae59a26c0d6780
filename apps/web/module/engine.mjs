// A thin wrapper of the module for scripts and tests: strings, JSON and bytes instead of pointers.
// Scenes are left to the page, which reads records from the module's memory.
export class Engine {
  // `load` is the default export of vek0_web.mjs; `wasm` is the content of vek0_web.wasm.
  static async create(load, wasm) {
    return new Engine(await load({ wasmBinary: wasm }));
  }

  constructor(module) {
    this.module = module;
    this.engine = module._vek0_create();
  }

  error() {
    return this.module.UTF8ToString(this.module._vek0_error(this.engine) >>> 0);
  }

  must(result) {
    if (result === 0 || result < 0) throw new Error(this.error());
    return result;
  }

  // Calls `use` with the address of the text or the bytes.
  with(value, use) {
    const bytes = typeof value === "string" ? new TextEncoder().encode(value + "\0") : value;
    const at = this.module._malloc(bytes.length) >>> 0;
    if (at === 0) throw new Error("drawing too large for this device");
    try {
      this.module.HEAPU8.set(bytes, at);
      return use(at);
    } finally {
      this.module._free(at);
    }
  }

  // A copy of the result of the last call.
  bytes(size) {
    const at = this.module._vek0_data(this.engine) >>> 0;
    return this.module.HEAPU8.slice(at, at + size);
  }

  json(size) {
    if (size < 0) throw new Error(this.error());
    return JSON.parse(new TextDecoder().decode(this.bytes(size)));
  }

  loadGlyphs(bytes) {
    this.with(bytes, (at) =>
      this.must(this.module._vek0_load_glyphs(this.engine, at, bytes.length)));
  }

  // `chunks` are Uint8Arrays; `size` is about that of all of them.
  async open(name, chunks, size = 0) {
    this.with(name, (at) => this.must(this.module._vek0_open_begin(this.engine, at, size)));
    for await (const chunk of chunks) {
      const at = this.must(this.module._vek0_open_room(this.engine, chunk.length) >>> 0);
      this.module.HEAPU8.set(chunk, at);
      this.must(this.module._vek0_open_chunk(this.engine, chunk.length));
    }
    this.must(this.module._vek0_open_finish(this.engine));
  }

  list(first, count) {
    return this.json(this.module._vek0_list(this.engine, first, count));
  }

  command(line) {
    return this.with(line, (at) => this.json(this.module._vek0_command(this.engine, at)));
  }

  saveDxf(version) {
    const size = this.with(version, (at) => this.module._vek0_save_dxf(this.engine, at));
    if (size < 0) throw new Error(this.error());
    return this.bytes(size);
  }

  // Draws a scene step by step, dropping its batches; returns their number and that of their bytes.
  drawScene(layout = 0, step = 1e9) {
    const sizes = [28, 32, 32, 36, 20];
    this.must(this.module._vek0_scene_begin(this.engine, layout, 0));
    const total = { batches: 0, shapes: 0, bytes: 0 };
    for (let more = 1; more > 0;) {
      more = this.module._vek0_scene_step(this.engine, step);
      if (more < 0) throw new Error(this.error());
      const words = new DataView(this.module.HEAPU8.buffer);
      const scene = this.module._vek0_current(this.engine) >>> 0;
      const count = words.getUint32(scene + 20, true);
      const batches = words.getUint32(scene + 48, true);
      for (let i = 0; i < count; ++i) {
        const kind = words.getUint32(batches + 56 * i + 36, true);
        const shapes = words.getUint32(batches + 56 * i + 40, true);
        total.batches += 1;
        total.shapes += shapes;
        total.bytes += sizes[kind] * shapes;
      }
      this.module._vek0_release(this.engine);
    }
    return total;
  }

  stats() {
    return this.json(this.module._vek0_stats(this.engine));
  }
}
