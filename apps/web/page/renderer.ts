// Draws the batches of scenes with WebGL 2. Textures hold the engine's records as they are, from
// which vertex shaders take their shape; there are no other vertices. Slots and styles are
// textures, too, so that hiding, selecting and layers upload a few bytes.
import { type Camera, touches } from "./camera";
import type { Batch, Box, ScenePart, SlotEdit } from "./protocol";
import { Kind, kOwnOrder, kTransparent } from "./protocol";
import { kShaders } from "./shaders";

const kSlotWidth = 4096;
const kTableWidth = 1024;
const kShapeWidth = 2048;
const kQuads = 16_000; // of a draw call: indices have 16 bits
const kShapeUnit = 4; // texture units; the four below are the tables'
const kOutlineUnit = 5;
const kSpareSlots = 65_536;
const kHidden = 0x80000000;
const kSelected = 0x40000000;
const kArcPieces = 256;
const kDetails = [24, 96, 384]; // glyph heights in pixels up to which a detail is fine enough

interface GpuBatch {
  source: Omit<Batch, "data">;
  box: Box; // in drawing units
  texture: WebGLTexture;
  glyphs: { glyph: number; first: number; count: number }[];
}

interface Glyph {
  texture: WebGLTexture;
  vertices: number;
}

export interface FrameStats {
  strokes: number;
  drawCalls: number;
  bytesUploaded: number;
  frameMs: number;
}

export interface Look {
  background: [number, number, number];
  foreground: [number, number, number];
  highlight: [number, number, number];
}

/** What one layout, or one window of it, has on the GPU. */
export interface Content {
  batches: GpuBatch[];
}

export class Renderer {
  stats: FrameStats = { strokes: 0, drawCalls: 0, bytesUploaded: 0, frameMs: 0 };
  /** Asks for triangles of glyphs: pairs of glyph and detail. */
  onGlyphs: (glyphs: number[], detail: number) => void = () => {};
  look: Look = { background: [1, 1, 1], foreground: [0, 0, 0], highlight: [0, 0.45, 0.9] };
  pointSize = 0;
  private programs: { program: WebGLProgram; at: Record<string, WebGLUniformLocation | null> }[] = [];
  private slots!: WebGLTexture;
  private styles!: WebGLTexture;
  private dashes!: WebGLTexture;
  private lengths!: WebGLTexture;
  private slotWords = new Uint32Array(0);
  private selected: SlotEdit[] = [];
  private glyphs = new Map<number, Glyph | null>();
  private fence: WebGLSync | null = null;
  private uploaded = 0;

  private constructor(readonly gl: WebGL2RenderingContext) {
    this.prepare();
  }

  /** Null without WebGL 2. */
  static create(canvas: HTMLCanvasElement): Renderer | null {
    const gl = canvas.getContext("webgl2", { antialias: true, alpha: false, depth: true });
    return gl ? new Renderer(gl) : null;
  }

  /** Also after a lost context; whatever was on the GPU is gone then. */
  prepare(): void {
    this.programs = kShaders.map(([vertex, fragment]) => this.link(vertex, fragment));
    [this.slots, this.styles, this.dashes, this.lengths] = [0, 1, 2, 3].map(() => this.texture());
    this.gl.bindBuffer(this.gl.ELEMENT_ARRAY_BUFFER, this.gl.createBuffer());
    this.gl.bufferData(this.gl.ELEMENT_ARRAY_BUFFER, quadIndices(), this.gl.STATIC_DRAW);
    this.glyphs.clear();
    this.fence = null;
    this.clear();
  }

  /** Forgets the slots and styles of a scene. */
  clear(): void {
    this.slotWords = Uint32Array.from({ length: kSlotWidth }, (_, i) => i);
    this.selected = [];
    this.uploadSlots(0, kSlotWidth);
  }

  /** Uploads tables and batches, and appends these to the content. */
  add(part: ScenePart, content: Content): void {
    this.pointSize = part.pointSize;
    this.uploadStyles(part);
    this.growSlots(part.slotCount);
    this.edit(part.edits);
    for (const batch of part.batches) content.batches.push(this.upload(batch));
  }

  /** Uploads styles alone: layers were switched. */
  uploadStyles(part: ScenePart): void {
    const from = new Uint32Array(part.styles);
    const count = from.length / 6;
    const words = new Uint32Array(rows(count) * kTableWidth * 4);
    for (let i = 0; i < count; ++i) {
      words[4 * i] = from[6 * i];
      words[4 * i + 1] = from[6 * i + 1];
      words[4 * i + 2] = from[6 * i + 3];
      words[4 * i + 3] = from[6 * i + 4];
    }
    const { gl } = this;
    this.fill(this.styles, gl.RGBA32UI, gl.RGBA_INTEGER, gl.UNSIGNED_INT, words, 4);
    const dashWords = new Uint32Array(part.dashes);
    const dashFloats = new Float32Array(part.dashes);
    const dashes = new Float32Array(rows(dashWords.length / 4) * kTableWidth * 4);
    for (let i = 0; i < dashWords.length; i += 4)
      dashes.set([dashWords[i], dashWords[i + 1], dashFloats[i + 2], dashFloats[i + 3]], i);
    this.fill(this.dashes, gl.RGBA32F, gl.RGBA, gl.FLOAT, dashes, 4);
    const given = new Float32Array(part.lengths);
    const lengths = new Float32Array(rows(given.length) * kTableWidth);
    lengths.set(given);
    this.fill(this.lengths, gl.R32F, gl.RED, gl.FLOAT, lengths, 1);
  }

  /** Hides, shows and reorders slots. */
  edit(edits: SlotEdit[]): void {
    for (const { first, count, order, hidden } of edits) {
      for (let i = first; i < first + count; ++i) {
        const place = order === kOwnOrder ? i : order;
        this.slotWords[i] = (this.slotWords[i] & kSelected) | place | (hidden ? kHidden : 0);
      }
      this.uploadSlots(first, count);
    }
  }

  /** Highlights these slots and no others; says whether that changes anything. */
  select(slots: SlotEdit[]): boolean {
    if (this.selected.length + slots.length === 0) return false;
    for (const [group, on] of [[this.selected, false], [slots, true]] as const)
      for (const { first, count } of group) {
        for (let i = first; i < first + count; ++i) {
          if (on) this.slotWords[i] |= kSelected;
          else this.slotWords[i] &= ~kSelected;
        }
        this.uploadSlots(first, count);
      }
    this.selected = slots;
    return true;
  }

  isHidden(slot: number): boolean {
    return (this.slotWords[slot] & kHidden) !== 0;
  }

  free(content: Content): void {
    for (const batch of content.batches) this.gl.deleteTexture(batch.texture);
    content.batches = [];
  }

  /** Triangles of glyphs that were asked for. */
  addGlyphs(glyphs: number[], detail: number, triangles: ArrayBuffer[]): void {
    const { gl } = this;
    glyphs.forEach((glyph, i) => {
      const corners = new Float32Array(triangles[i]);
      const texture = this.texels(kOutlineUnit, gl.RG32F, gl.RG, gl.FLOAT, corners, 2);
      this.glyphs.set(glyph * 4 + detail, { texture, vertices: corners.length / 2 });
    });
  }

  /** Draws what the camera sees; `showsHidden` is for windows, whose slots are all of theirs. */
  draw(camera: Camera, content: Content, ratio: number, showsHidden: boolean): void {
    const began = performance.now();
    const { gl } = this;
    const stats = { strokes: 0, drawCalls: 0, bytesUploaded: this.uploaded, frameMs: 0 };
    this.uploaded = 0;
    gl.viewport(0, 0, gl.drawingBufferWidth, gl.drawingBufferHeight);
    gl.clearColor(...this.look.background, 1);
    gl.clearDepth(1);
    gl.enable(gl.DEPTH_TEST);
    gl.depthFunc(gl.LEQUAL);
    gl.depthMask(true);
    gl.clear(gl.COLOR_BUFFER_BIT | gl.DEPTH_BUFFER_BIT);
    [this.slots, this.styles, this.dashes, this.lengths].forEach((texture, unit) => {
      gl.activeTexture(gl.TEXTURE0 + unit);
      gl.bindTexture(gl.TEXTURE_2D, texture);
    });
    // Lines are wider than nothing: what is just outside may reach into the view.
    const reach = 20 / camera.scale;
    const [x1, y1, x2, y2] = camera.box;
    const seen: Box = [x1 - reach, y1 - reach, x2 + reach, y2 + reach];
    const visible = content.batches.filter((batch) => touches(batch.box, seen));
    const missing = new Map<number, Set<number>>();
    for (const isTransparent of [false, true]) {
      if (isTransparent) {
        gl.enable(gl.BLEND);
        gl.blendFunc(gl.SRC_ALPHA, gl.ONE_MINUS_SRC_ALPHA);
        gl.depthMask(false);
      }
      let bound = -1;
      for (const batch of visible) {
        if (((batch.source.flags & kTransparent) !== 0) !== isTransparent) continue;
        const { kind } = batch.source;
        if (bound !== kind) this.use(kind, camera, ratio, showsHidden);
        bound = kind;
        stats.drawCalls += this.drawBatch(batch, camera, ratio, missing);
        stats.strokes += batch.source.count;
      }
      gl.disable(gl.BLEND);
    }
    gl.depthMask(true);
    for (const [detail, glyphs] of missing) this.onGlyphs([...glyphs], detail);
    gl.deleteSync(this.fence);
    this.fence = gl.fenceSync(gl.SYNC_GPU_COMMANDS_COMPLETE, 0);
    gl.flush();
    stats.frameMs = performance.now() - began;
    this.stats = stats;
  }

  /** Whether the GPU still works on the last frame. */
  isBusy(): boolean {
    const { gl, fence } = this;
    return fence !== null && !gl.isContextLost() &&
      gl.clientWaitSync(fence, 0, 0) === gl.TIMEOUT_EXPIRED;
  }

  private use(kind: Kind, camera: Camera, ratio: number, showsHidden: boolean): void {
    const { gl } = this;
    const { program, at } = this.programs[kind];
    gl.useProgram(program);
    ["slots", "styles", "dashes", "lengths"].forEach((name, unit) => gl.uniform1i(at[name], unit));
    gl.uniform1i(at.shapes, kShapeUnit);
    gl.uniform1i(at.outline, kOutlineUnit);
    gl.uniform1f(at.scale, camera.scale * ratio);
    gl.uniform2f(at.halfSize, gl.drawingBufferWidth / 2, gl.drawingBufferHeight / 2);
    gl.uniform1f(at.pixelRatio, ratio);
    gl.uniform3f(at.foreground, ...this.look.foreground);
    gl.uniform3f(at.highlight, ...this.look.highlight);
    gl.uniform1i(at.showsHidden, showsHidden ? 1 : 0);
    const size = this.pointSize > 0
      ? this.pointSize * camera.scale * ratio
      : (-(this.pointSize || -5) / 100) * gl.drawingBufferHeight;
    gl.uniform1f(at.pointSize, size);
  }

  private drawBatch(batch: GpuBatch, camera: Camera, ratio: number,
    missing: Map<number, Set<number>>): number {
    const { gl } = this;
    const { source } = batch;
    const { at } = this.programs[source.kind];
    gl.uniform2f(at.offset, source.x - camera.center[0], source.y - camera.center[1]);
    gl.activeTexture(gl.TEXTURE0 + kShapeUnit);
    gl.bindTexture(gl.TEXTURE_2D, batch.texture);
    gl.uniform1i(at.first, 0);
    const pixels = source.largest * camera.scale * ratio;
    switch (source.kind) {
      case Kind.Arcs: {
        const most = Math.min(Math.max(Math.ceil(Math.sqrt(pixels) * 8), 12), kArcPieces);
        const corners = 2 * (most + 1) + 2;
        gl.uniform1i(at.corners, corners);
        gl.drawArrays(gl.TRIANGLE_STRIP, 0, corners * source.count);
        return 1;
      }
      case Kind.Triangles:
        gl.drawArrays(gl.TRIANGLES, 0, 3 * source.count);
        return 1;
      case Kind.Glyphs:
        return this.drawGlyphs(batch, pixels, missing);
      default:
        return this.drawQuads(source.count, at.first);
    }
  }

  private drawQuads(count: number, first: WebGLUniformLocation | null): number {
    const { gl } = this;
    let calls = 0;
    for (let from = 0; from < count; from += kQuads, ++calls) {
      gl.uniform1i(first, from);
      gl.drawElements(gl.TRIANGLES, 6 * Math.min(count - from, kQuads), gl.UNSIGNED_SHORT, 0);
    }
    return calls;
  }

  private drawGlyphs(batch: GpuBatch, pixels: number, missing: Map<number, Set<number>>): number {
    if (pixels < 0.5) return 0;
    const { gl } = this;
    const { at } = this.programs[Kind.Glyphs];
    const detail = kDetails.filter((most) => pixels > most).length;
    let calls = 0;
    for (const { glyph, first, count } of batch.glyphs) {
      let shape = this.glyphs.get(glyph * 4 + detail);
      if (shape === undefined) {
        this.glyphs.set(glyph * 4 + detail, null);
        missing.set(detail, (missing.get(detail) ?? new Set()).add(glyph));
      }
      // Another detail shows it meanwhile.
      for (let i = 0; i < 4 && !shape; ++i) shape = this.glyphs.get(glyph * 4 + i);
      if (!shape || shape.vertices === 0) continue;
      gl.activeTexture(gl.TEXTURE0 + kOutlineUnit);
      gl.bindTexture(gl.TEXTURE_2D, shape.texture);
      gl.uniform1i(at.first, first);
      gl.uniform1i(at.corners, shape.vertices);
      gl.drawArrays(gl.TRIANGLES, 0, shape.vertices * count);
      ++calls;
    }
    return calls;
  }

  private upload(batch: Batch): GpuBatch {
    const { gl } = this;
    const { data, ...source } = batch;
    const words = new Uint32Array(data);
    const { records, glyphs } = batch.kind === Kind.Glyphs
      ? splitGlyphs(words) : { records: words, glyphs: [] };
    const [x1, y1, x2, y2] = batch.box;
    return {
      source, glyphs,
      texture: this.texels(kShapeUnit, gl.RGBA32UI, gl.RGBA_INTEGER, gl.UNSIGNED_INT, records, 4),
      box: [x1 + batch.x, y1 + batch.y, x2 + batch.x, y2 + batch.y],
    };
  }

  // A texture of texels in rows of `kShapeWidth`.
  private texels(unit: number, format: number, layout: number, type: number,
    words: Uint32Array | Float32Array, parts: number): WebGLTexture {
    const { gl } = this;
    gl.activeTexture(gl.TEXTURE0 + unit);
    const texture = this.texture();
    const count = words.length / parts;
    const [full, rest] = [Math.floor(count / kShapeWidth), count % kShapeWidth];
    const width = full > 0 ? kShapeWidth : Math.max(rest, 1);
    gl.texStorage2D(gl.TEXTURE_2D, 1, format, width, Math.max(Math.ceil(count / kShapeWidth), 1));
    const put = (row: number, columns: number, height: number) => {
      if (columns * height > 0)
        gl.texSubImage2D(gl.TEXTURE_2D, 0, 0, row, columns, height, layout, type, words,
          row * kShapeWidth * parts);
    };
    put(0, kShapeWidth, full);
    put(full, rest, 1);
    this.uploaded += words.byteLength;
    return texture;
  }

  private growSlots(count: number): void {
    const had = this.slotWords.length;
    if (count <= had) return;
    // Edits add some, which should not upload all of them again.
    const room = Math.ceil(Math.max(count + kSpareSlots, had * 1.5) / kSlotWidth) * kSlotWidth;
    const words = new Uint32Array(room);
    words.set(this.slotWords);
    for (let i = had; i < room; ++i) words[i] = i;
    this.slotWords = words;
    this.uploadSlots(0, room);
  }

  private uploadSlots(first: number, count: number): void {
    const { gl } = this;
    const height = this.slotWords.length / kSlotWidth;
    gl.activeTexture(gl.TEXTURE0);
    gl.bindTexture(gl.TEXTURE_2D, this.slots);
    if (first === 0 && count === this.slotWords.length) {
      gl.texImage2D(gl.TEXTURE_2D, 0, gl.R32UI, kSlotWidth, height, 0, gl.RED_INTEGER,
        gl.UNSIGNED_INT, this.slotWords);
      this.uploaded += this.slotWords.byteLength;
      return;
    }
    const from = Math.floor(first / kSlotWidth);
    const to = Math.ceil((first + count) / kSlotWidth);
    const part = this.slotWords.subarray(from * kSlotWidth, to * kSlotWidth);
    gl.texSubImage2D(gl.TEXTURE_2D, 0, 0, from, kSlotWidth, to - from, gl.RED_INTEGER,
      gl.UNSIGNED_INT, part);
    this.uploaded += part.byteLength;
  }

  private fill(texture: WebGLTexture, format: number, layout: number, type: number,
    words: Uint32Array | Float32Array, parts: number): void {
    const { gl } = this;
    gl.activeTexture(gl.TEXTURE0);
    gl.bindTexture(gl.TEXTURE_2D, texture);
    const height = words.length / parts / kTableWidth;
    gl.texImage2D(gl.TEXTURE_2D, 0, format, kTableWidth, height, 0, layout, type, words);
    this.uploaded += words.byteLength;
  }

  private texture(): WebGLTexture {
    const { gl } = this;
    const texture = gl.createTexture()!;
    gl.bindTexture(gl.TEXTURE_2D, texture);
    for (const side of [gl.TEXTURE_MIN_FILTER, gl.TEXTURE_MAG_FILTER])
      gl.texParameteri(gl.TEXTURE_2D, side, gl.NEAREST);
    for (const side of [gl.TEXTURE_WRAP_S, gl.TEXTURE_WRAP_T])
      gl.texParameteri(gl.TEXTURE_2D, side, gl.CLAMP_TO_EDGE);
    return texture;
  }

  private link(vertex: string, fragment: string) {
    const { gl } = this;
    const program = gl.createProgram()!;
    for (const [type, source] of [[gl.VERTEX_SHADER, vertex], [gl.FRAGMENT_SHADER, fragment]] as const) {
      const shader = gl.createShader(type)!;
      gl.shaderSource(shader, source);
      gl.compileShader(shader);
      gl.attachShader(program, shader);
      if (!gl.getShaderParameter(shader, gl.COMPILE_STATUS) && !gl.isContextLost())
        throw new Error(`shader: ${gl.getShaderInfoLog(shader)}`);
    }
    gl.linkProgram(program);
    const at: Record<string, WebGLUniformLocation | null> = {};
    for (const name of ["slots", "styles", "dashes", "lengths", "offset", "scale", "halfSize",
      "pixelRatio", "foreground", "highlight", "showsHidden", "pointSize", "shapes", "outline",
      "first", "corners"])
      at[name] = gl.getUniformLocation(program, name);
    return { program, at };
  }
}

function quadIndices(): Uint16Array<ArrayBuffer> {
  const indices = new Uint16Array(6 * kQuads);
  for (let i = 0; i < kQuads; ++i)
    indices.set([4 * i, 4 * i + 1, 4 * i + 2, 4 * i + 2, 4 * i + 1, 4 * i + 3], 6 * i);
  return indices;
}

function rows(count: number): number {
  return Math.max(1, Math.ceil(count / kTableWidth));
}

// Of glyphs, the ranges of equal ones, and the records without their glyph.
function splitGlyphs(words: Uint32Array): { records: Uint32Array; glyphs: GpuBatch["glyphs"] } {
  const count = words.length / 9;
  const records = new Uint32Array(8 * count);
  const glyphs: GpuBatch["glyphs"] = [];
  for (let i = 0; i < count; ++i) {
    const glyph = words[9 * i + 6];
    records.set(words.subarray(9 * i, 9 * i + 6), 8 * i);
    records.set(words.subarray(9 * i + 7, 9 * i + 9), 8 * i + 6);
    const last = glyphs.at(-1);
    if (last && last.glyph === glyph) ++last.count;
    else glyphs.push({ glyph, first: i, count: 1 });
  }
  return { records, glyphs };
}
