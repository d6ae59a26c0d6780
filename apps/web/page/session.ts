// A drawing that is open: its engine, its view, and what the user did to it, for recovery.
import { Engine } from "./engine";
import type { Parts } from "./parts";
import type { Edited, EngineStats, FontNote, Layer, Layout, Opened, Point, ReportEntry } from "./protocol";
import type { SaveOptions, State } from "./protocol";
import { forget, type Journal, remember } from "./recovery";
import type { View } from "./view";

/** A call that changed the drawing or the selection. */
export type Deed = [name: string, ...args: unknown[]];

export class Session {
  name = "";
  report: ReportEntry[] = [];
  layers: Layer[] = [];
  layouts: Layout[] = [];
  fonts: FontNote[] = [];
  selection: string[] = [];
  /** Points by which the selection is dragged into shape, in drawing units. */
  grips: Point[] = [];
  stats: EngineStats | null = null;
  isModified = false;
  /** Something that panels show has changed. */
  onChange: () => void = () => {};
  onProgress: (share: number) => void = () => {};
  private engine: Engine | null = null;
  private coming: Engine | null = null;
  private journal: Journal | null = null;

  constructor(private readonly parts: Parts, readonly view: View) {}

  get isOpen(): boolean {
    return this.engine !== null;
  }

  call<T>(name: string, ...args: unknown[]): Promise<T> {
    if (!this.engine) return Promise.reject(new Error("no drawing is open"));
    return this.engine.call<T>(name, ...args);
  }

  /** Opens a file; what was open stays if that fails. */
  async open(name: string, file: Blob | Uint8Array): Promise<Opened> {
    this.cancel();
    const engine = await Engine.start(this.parts);
    this.coming = engine;
    engine.onProgress = (share) => this.onProgress(share);
    try {
      const opened = await engine.call<Opened>("open", name, file);
      await this.adopt(engine, name, opened);
      this.journal = { name, file: file instanceof Blob ? file : new Blob([copyOf(file)]), deeds: [] };
      return opened;
    } catch (error) {
      if (this.engine !== engine) engine.end();
      throw error;
    } finally {
      if (this.coming === engine) this.coming = null;
    }
  }

  async create(name: string): Promise<Opened> {
    const engine = await Engine.start(this.parts);
    const opened = await engine.call<Opened>("create", name);
    await this.adopt(engine, name, opened);
    this.journal = { name, file: null, deeds: [] };
    return opened;
  }

  /** Ends an opening that has not finished. */
  cancel(): void {
    this.coming?.end();
    this.coming = null;
  }

  private async adopt(engine: Engine, name: string, opened: Opened): Promise<void> {
    this.engine?.end("another drawing was opened");
    this.engine = engine;
    this.name = name;
    Object.assign(this, opened);
    this.selection = [];
    this.grips = [];
    this.isModified = false;
    this.onChange();
    this.stats = await engine.call<EngineStats>("stats");
    await this.view.show(engine, opened.layouts);
    this.onChange();
  }

  // --- Changes

  private async edit(deed: Deed): Promise<Edited> {
    const [name, ...args] = deed;
    const edited = await this.call<Edited>(name, ...args);
    this.layers = edited.layers;
    this.take(edited.state);
    await this.view.apply(edited);
    if (edited.ok) this.keep(deed);
    this.onChange();
    return edited;
  }

  private take(state: State): void {
    this.selection = state.selection;
    this.grips = state.grips;
    this.stats = state.stats;
    this.isModified = state.stats.modified;
  }

  private keep(deed: Deed): void {
    if (!this.journal) return;
    this.journal.deeds.push(deed);
    if (this.isModified) remember(this.journal);
  }

  async command(line: string): Promise<{ ok: boolean; message: string }> {
    const { ok, message } = await this.edit(["command", line]);
    return { ok, message };
  }

  async undo(): Promise<void> {
    await this.edit(["undo"]);
  }

  async redo(): Promise<void> {
    await this.edit(["redo"]);
  }

  async layer(name: string, given: { on?: boolean; frozen?: boolean; color?: number }): Promise<void> {
    const flag = (value?: boolean) => (value === undefined ? -1 : value ? 1 : 0);
    await this.edit(["layer", name, flag(given.on), flag(given.frozen), given.color ?? -1]);
  }

  async select(handles: string[]): Promise<string[]> {
    const state = await this.call<State>("select", handles);
    this.take(state);
    this.view.applyState(state);
    this.keep(["select", handles]);
    this.onChange();
    return state.selection;
  }

  /** Does again what a journal lists. */
  async replay(deeds: Deed[]): Promise<void> {
    for (const [name, ...args] of deeds) {
      if (name === "select") await this.select(args[0] as string[]);
      else await this.edit([name, ...args]);
    }
  }

  // --- Saving

  async saveDxf(version = "keep"): Promise<Uint8Array> {
    return this.call<Uint8Array>("saveDxf", version);
  }

  async saveSvg(layout: number, options: SaveOptions): Promise<Uint8Array> {
    return this.call<Uint8Array>("saveSvg", layout, options);
  }

  async markSaved(): Promise<void> {
    await this.call("markSaved");
    this.isModified = false;
    forget();
    this.onChange();
  }
}

function copyOf(bytes: Uint8Array): Uint8Array<ArrayBuffer> {
  return new Uint8Array(bytes);
}
