// Shows a layout of an engine's drawing on a canvas: builds its scene step by step, replaces it by
// a finer window where the zoom needs one, and draws when something has changed.
import { Camera, covers } from "./camera";
import type { Engine } from "./engine";
import type { Box, Edited, Layout, Point, Run, ScenePart, State } from "./protocol";
import { type Content, Renderer } from "./renderer";

const kFinest = 0.1; // pixels that shapes may deviate
const kMostHistory = 50;

interface Window {
  box: Box;
  deviation: number;
  content: Content;
  runs: Run[];
}

export class View {
  camera = new Camera();
  layout = 0;
  /** Called after each frame, to draw what lies above it. */
  onFrame: () => void = () => {};
  onComplete: () => void = () => {};
  runs: Run[] = [];
  /** Milliseconds from the begin of the scene to its last draw call. */
  sceneMs = 0;
  renderer: Renderer | null;
  private content: Content = { batches: [] };
  private window: Window | null = null;
  private precision = 0; // of the scene; 0 while there is none that a window could refine
  private engine: Engine | null = null;
  private layouts: Layout[] = [];
  private history: Camera[] = [];
  private isAsked = false;
  private windowTask: Promise<void> | null = null;
  private readonly glyphTasks = new Set<Promise<void>>();
  private generation = 0;

  constructor(readonly canvas: HTMLCanvasElement) {
    this.renderer = Renderer.create(canvas);
    this.equip();
    canvas.addEventListener("webglcontextlost", (event) => event.preventDefault());
    canvas.addEventListener("webglcontextrestored", () => {
      this.renderer?.prepare();
      this.content = { batches: [] };
      this.window = null;
      if (this.engine) void this.build();
    });
    new ResizeObserver(() => this.resize()).observe(canvas);
    this.resize();
  }

  private equip(): void {
    if (!this.renderer) return;
    this.renderer.onGlyphs = (glyphs, detail) => {
      const { engine, renderer } = this;
      if (!engine || !renderer) return;
      const task = engine.call<ArrayBuffer[]>("glyphs", glyphs, detail).then((triangles) => {
        renderer.addGlyphs(glyphs, detail, triangles);
        this.ask();
      }, () => {}).finally(() => this.glyphTasks.delete(task));
      this.glyphTasks.add(task);
    };
  }

  /** Device pixels per CSS pixel, instead of those of the screen. */
  fixedRatio: number | null = null;

  get ratio(): number {
    return this.fixedRatio ?? (globalThis.devicePixelRatio || 1);
  }

  resize(): void {
    const { canvas, ratio } = this;
    const { clientWidth: w, clientHeight: h } = canvas;
    if (w === 0 || h === 0) return;
    canvas.width = Math.round(w * ratio);
    canvas.height = Math.round(h * ratio);
    this.camera.size = [w, h];
    this.ask();
  }

  /** Shows another drawing; null for none. */
  async show(engine: Engine | null, layouts: Layout[]): Promise<void> {
    this.engine = engine;
    this.layouts = layouts;
    this.layout = 0;
    this.history = [];
    await this.setLayout(0);
  }

  async setLayout(index: number): Promise<void> {
    this.layout = index;
    this.extents(false);
    await this.build();
  }

  /** Makes the scene anew. */
  async build(): Promise<void> {
    const { engine, renderer } = this;
    const mine = ++this.generation;
    this.dropWindow();
    if (renderer) {
      renderer.free(this.content);
      renderer.clear();
    }
    this.runs = [];
    this.precision = 0;
    this.ask();
    if (!engine) return;
    const began = performance.now();
    // Drawn when it is complete: uploads would wait for a GPU that draws a part of it.
    const content: Content = { batches: [] };
    const [r, g, b] = (renderer?.look.background ?? [1, 1, 1]).map((c) => Math.round(c * 255));
    await engine.call("sceneBegin", this.layout, (r << 16) | (g << 8) | b);
    let precision = 0;
    for (let more = true; more && mine === this.generation; ) {
      const step = await engine.call<{ part: ScenePart; more: boolean }>("sceneStep");
      if (mine !== this.generation) return renderer?.free(content);
      more = step.more;
      precision = step.part.precision;
      this.take(step.part, content);
    }
    const state = await engine.call<State>("state");
    if (mine !== this.generation) return renderer?.free(content);
    this.content = content;
    this.precision = precision;
    this.applyState(state);
    this.drawNow();
    this.sceneMs = performance.now() - began;
    this.onComplete();
  }

  private take(part: ScenePart, content = this.content): void {
    this.renderer?.add(part, content);
    for (const run of part.runs) this.runs.push(run);
  }

  /** What an edit changed. */
  async apply(edited: Edited): Promise<void> {
    this.dropWindow();
    if (edited.changes?.isStale) await this.build();
    else if (edited.changes) {
      this.take(edited.changes);
      this.precision = edited.changes.precision;
    }
    this.ask();
    this.applyState(edited.state);
  }

  applyState(state: State): void {
    if (this.renderer?.select(state.slots)) this.ask();
  }

  // --- The camera

  get bounds(): Box | null {
    const layout = this.layouts[this.layout];
    return layout ? layout.paper ?? layout.extents : null;
  }

  setLayouts(layouts: Layout[]): void {
    this.layouts = layouts;
  }

  remember(): void {
    this.history.push(this.camera.copy());
    if (this.history.length > kMostHistory) this.history.shift();
  }

  extents(isRemembered = true): void {
    if (isRemembered) this.remember();
    this.camera.fit(this.bounds ?? [0, 0, 420, 297]);
    this.ask();
  }

  fit(box: Box): void {
    this.remember();
    this.camera.fit(box);
    this.ask();
  }

  previous(): void {
    const last = this.history.pop();
    if (!last) return;
    last.size = this.camera.size;
    this.camera = last;
    this.ask();
  }

  zoom(factor: number, pixel?: Point): void {
    const [w, h] = this.camera.size;
    this.camera.zoom(factor, pixel ?? [w / 2, h / 2]);
    this.ask();
  }

  pan(dx: number, dy: number): void {
    this.camera.pan(dx, dy);
    this.ask();
  }

  // --- Frames

  ask(): void {
    if (this.isAsked) return;
    this.isAsked = true;
    const frame = () => {
      if (!this.isAsked) return;
      // Frames that queue up would block the page, until the last one is drawn.
      if (this.renderer?.isBusy()) requestAnimationFrame(frame);
      else this.drawNow();
    };
    requestAnimationFrame(frame);
  }

  drawNow(): void {
    this.isAsked = false;
    const { renderer, camera, window } = this;
    const usesWindow = window !== null && this.isFine(window) && covers(window.box, camera.box);
    if (renderer && !renderer.gl.isContextLost())
      renderer.draw(camera, usesWindow ? window.content : this.content, this.ratio, usesWindow);
    this.onFrame();
    if (!usesWindow && this.needsWindow()) void this.makeWindow();
  }

  /** Draws the final state of the present view: with its window and all glyphs. */
  async settle(): Promise<void> {
    this.drawNow();
    for (let i = 0; i < 3 && this.windowTask; ++i) {
      await this.windowTask;
      this.drawNow();
    }
    while (this.glyphTasks.size > 0) await Promise.all(this.glyphTasks);
    this.drawNow();
  }

  /** Texts that the page's own fonts show. */
  get shownRuns(): Run[] {
    return this.runs.filter((run) => !this.renderer?.isHidden(run.slot));
  }

  private needsWindow(): boolean {
    return this.precision * this.camera.scale * this.ratio > kFinest;
  }

  private isFine(window: Window): boolean {
    return window.deviation * this.camera.scale * this.ratio <= 2 * kFinest;
  }

  private dropWindow(): void {
    if (this.window) this.renderer?.free(this.window.content);
    this.window = null;
  }

  /** Asks for one finer window at a time. */
  private makeWindow(): Promise<void> {
    this.windowTask ??= this.fetchWindow().finally(() => {
      this.windowTask = null;
    });
    return this.windowTask;
  }

  private async fetchWindow(): Promise<void> {
    const { engine, renderer, camera } = this;
    if (!engine || !renderer) return;
    const mine = this.generation;
    const [x1, y1, x2, y2] = camera.box;
    const [w, h] = [(x2 - x1) / 2, (y2 - y1) / 2];
    const box: Box = [x1 - w, y1 - h, x2 + w, y2 + h];
    const deviation = kFinest / (camera.scale * this.ratio);
    const part = await engine.call<ScenePart>("window", box, deviation).catch(() => null);
    if (!part || mine !== this.generation) return;
    this.dropWindow();
    this.window = { box, deviation, content: { batches: [] }, runs: part.runs };
    // The slots and styles are those of the scene.
    renderer.add({ ...part, edits: [] }, this.window.content);
    this.ask();
  }
}
