// `window.vek0`: what scripts on the page, and tests, can do.
import type { Box, Layer, Layout, Listed, Point, ReportEntry, SaveOptions, Snap } from "./protocol";
import type { Session } from "./session";

export const kReach = 8; // CSS pixels within which something is picked

export interface Stats {
  strokes: number;
  drawCalls: number;
  bytesUploaded: number;
  frameMs: number;
  engineBytes: number;
}

interface OpenResult {
  ok: boolean;
  error: string | null;
  report: ReportEntry[];
  layers: Layer[];
  layouts: Layout[];
}

interface ViewSettings {
  center?: Point;
  height?: number;
  layout?: string;
}

/** What `window.vek0` is. Calls return promises; they reject with the engine's message. */
export class Api {
  constructor(
    readonly ready: Promise<void>,
    private readonly sessionOf: () => Session,
    private readonly picture: (options: SaveOptions) => Promise<Uint8Array>,
  ) {}

  private get session(): Session {
    return this.sessionOf();
  }

  private get view() {
    return this.session.view;
  }

  private world(pixel: Point): Point {
    return this.view.camera.toWorld(checked(pixel));
  }

  async open(name: string, bytes: ArrayBuffer | Uint8Array | Blob): Promise<OpenResult> {
    await this.ready;
    const file = bytes instanceof ArrayBuffer ? new Uint8Array(bytes) : bytes;
    try {
      if (!(file instanceof Uint8Array || file instanceof Blob))
        throw new Error("give the bytes of a file");
      const { report, layers, layouts } = await this.session.open(name, file);
      return { ok: true, error: null, report, layers, layouts };
    } catch (error) {
      return { ok: false, error: (error as Error).message, report: [], layers: [], layouts: [] };
    }
  }

  async list(): Promise<Listed[]> {
    return this.session.call("list");
  }

  async setView(given: ViewSettings = {}): Promise<ViewSettings> {
    const { view, session } = this;
    if (given.layout !== undefined) {
      const index = layoutIndex(session.layouts, given.layout);
      if (index !== view.layout) await view.setLayout(index);
    }
    if (given.center) view.camera.center = checked(given.center);
    if (given.height !== undefined) {
      if (!(finite(given.height) > 0)) throw new Error("the height must be above 0");
      view.camera.setHeight(given.height);
    }
    await view.settle();
    return {
      center: [...view.camera.center], height: view.camera.height,
      layout: session.layouts[view.layout]?.name ?? "Model",
    };
  }

  async toScreen(point: Point): Promise<Point> {
    return this.view.camera.toScreen(checked(point));
  }

  async toWorld(pixel: Point): Promise<Point> {
    return this.world(pixel);
  }

  async pick(pixel: Point): Promise<string[]> {
    const [x, y] = this.world(pixel);
    return this.session.call("pick", x, y, kReach / this.view.camera.scale);
  }

  async selectBox(a: Point, b: Point, mode: "window" | "crossing"): Promise<string[]> {
    if (mode !== "window" && mode !== "crossing")
      throw new Error("the mode is window or crossing");
    const [[x1, y1], [x2, y2]] = [this.world(a), this.world(b)];
    const box: Box = [Math.min(x1, x2), Math.min(y1, y2), Math.max(x1, x2), Math.max(y1, y2)];
    return this.session.call("selectBox", box, mode === "crossing");
  }

  async selection(handles?: string[]): Promise<string[]> {
    return handles === undefined ? this.session.selection : this.session.select(handles);
  }

  async snap(pixel: Point, options: { from?: Point } = {}): Promise<Snap | null> {
    const [x, y] = this.world(pixel);
    const reach = kReach / this.view.camera.scale;
    return this.session.call("snap", x, y, reach, options.from ?? null);
  }

  async measure(what: string, of: Point[] | string[]): Promise<number> {
    if (!["distance", "angle", "area", "radius"].includes(what))
      throw new Error("what is measured is distance, angle, area or radius");
    if (what === "radius" && typeof of?.[0] !== "string")
      throw new Error("a radius is that of a handle");
    return this.session.call("measure", what, of);
  }

  async command(line: string): Promise<{ ok: boolean; message: string }> {
    return this.session.command(line);
  }

  async undo(): Promise<void> {
    await this.session.undo();
  }

  async redo(): Promise<void> {
    await this.session.redo();
  }

  async layer(name: string, given: { on?: boolean; frozen?: boolean; color?: number }): Promise<void> {
    await this.session.layer(name, given);
  }

  async save(format: "dxf" | "svg" | "png", options: SaveOptions = {}): Promise<Uint8Array> {
    if (format === "dxf") return this.session.saveDxf(options.version ?? "keep");
    if (format === "png") return this.picture(options);
    if (format !== "svg") throw new Error("the format is dxf, svg or png");
    const { layout, ...rest } = options;
    const index = layout === undefined
      ? this.view.layout : layoutIndex(this.session.layouts, layout);
    return this.session.saveSvg(index, rest);
  }

  async stats(): Promise<Stats> {
    const frame = this.view.renderer?.stats;
    const engine = await this.session.call<{ engine_bytes: number }>("stats");
    return {
      strokes: frame?.strokes ?? 0, drawCalls: frame?.drawCalls ?? 0,
      bytesUploaded: frame?.bytesUploaded ?? 0, frameMs: frame?.frameMs ?? 0,
      engineBytes: engine.engine_bytes,
    };
  }
}

function layoutIndex(layouts: Layout[], name: string): number {
  const wanted = name.toLowerCase();
  const index = layouts.findIndex((layout) => layout.name.toLowerCase() === wanted);
  if (index < 0) throw new Error(`there is no layout ${name}`);
  return index;
}

function finite(value: number): number {
  if (!Number.isFinite(value)) throw new Error("a height is a number");
  return value;
}

function checked(point: Point): Point {
  if (!Array.isArray(point) || !Number.isFinite(point[0]) || !Number.isFinite(point[1]))
    throw new Error("a point is [x, y]");
  return [point[0], point[1]];
}

/** The object for `window.vek0`: plain functions, so that it can be destructured. */
export function publish(api: Api): Record<string, unknown> {
  const { setView, ...names } = Object.fromEntries(
    Object.getOwnPropertyNames(Api.prototype)
      .filter((name) => !["constructor", "session", "view", "world"].includes(name))
      .map((name) => [name, (api as unknown as Record<string, (...a: never[]) => unknown>)[name].bind(api)]),
  );
  return Object.freeze({ ready: api.ready, view: setView, ...names });
}
