// The worker: one engine with one drawing. Each call is answered; whoever wants to cancel a long
// one ends the worker.
import type { Answer, Box, Call, Edited, Layer, Layout, Listed, Opened, Point } from "./protocol";
import type { SaveOptions, ScenePart, State } from "./protocol";
import { EngineModule, type Module } from "./module";
import load from "vek0-engine";

const scope = self as unknown as DedicatedWorkerGlobalScope;
const kEntitiesPerStep = 20_000;
const kListed = 5_000;
const kMostGrips = 2000; // more would hide the drawing
let engine: EngineModule;

function post(answer: Answer, transfer: Transferable[] = []): void {
  scope.postMessage(answer, transfer);
}

async function start(wasm: WebAssembly.Module, glyphs: Uint8Array): Promise<void> {
  const module = await load({
    locateFile: (name: string) => name,
    instantiateWasm(imports: WebAssembly.Imports, done: (i: WebAssembly.Instance) => void) {
      void WebAssembly.instantiate(wasm, imports).then(done);
      return {};
    },
  });
  engine = new EngineModule(module as Module);
  engine.with(glyphs, (at) => engine.must("load_glyphs", at, glyphs.length));
  let last = 0;
  engine.onProgress((share) => {
    if (share - last < 0.01 && share >= last) return;
    last = share;
    post({ progress: share });
  });
}

async function* chunksOf(file: Blob | Uint8Array): AsyncIterable<Uint8Array> {
  if (file instanceof Uint8Array) {
    yield file;
    return;
  }
  const reader = file.stream().getReader();
  for (let part = await reader.read(); !part.done; part = await reader.read()) yield part.value;
}

function opened(): Opened {
  return {
    report: engine.json(engine.count("report")),
    layers: layers(),
    layouts: engine.json<Layout[]>(engine.count("layouts")),
    fonts: engine.json(engine.count("fonts")),
  };
}

async function open(name: string, file: Blob | Uint8Array): Promise<Opened> {
  const size = file instanceof Uint8Array ? file.length : file.size;
  engine.withText(name, (at) => engine.must("open_begin", at, size));
  for await (const chunk of chunksOf(file)) engine.feed(chunk);
  engine.must("open_finish");
  return opened();
}

function create(name: string): Opened {
  engine.withText(name, (at) => engine.must("new", at));
  return opened();
}

function layers(): Layer[] {
  return engine.json(engine.count("layers"));
}

function state(): State {
  const selection = engine.handles(engine.count("selection"));
  let slots: State["slots"] = [];
  if (selection.length > 0 && hasScene) {
    const count = engine.withHandles(selection, (at) =>
      engine.count("slots_of", at, selection.length));
    slots = engine.slots(count);
  }
  const grips = engine.json<Point[]>(engine.count("grips", kMostGrips));
  return { selection, slots, grips, stats: engine.json(engine.count("stats")) };
}

let hasScene = false;

function sceneBegin(layout: number, background: number): void {
  hasScene = false;
  engine.must("scene_begin", layout, background);
}

function sceneStep(): { part: ScenePart; more: boolean } {
  const more = engine.count("scene_step", kEntitiesPerStep) > 0;
  hasScene = !more;
  return { part: engine.takeScene(), more };
}

function window(box: Box, deviation: number): ScenePart {
  engine.must("window", ...box, deviation);
  return engine.takeScene();
}

function changes(): ScenePart | null {
  if (!hasScene) return null;
  engine.must("changes");
  return engine.takeScene();
}

function edited(ok: boolean, message: string): Edited {
  return { ok, message, changes: changes(), state: state(), layers: layers() };
}

function command(line: string): Edited {
  const answer = engine.withText(line, (at) =>
    engine.json<{ ok: boolean; message: string }>(engine.count("command", at)));
  return edited(answer.ok, answer.message);
}

function undo(): Edited {
  engine.must("undo");
  return edited(true, "");
}

function redo(): Edited {
  engine.must("redo");
  return edited(true, "");
}

function layer(name: string, on: number, frozen: number, color: number): Edited {
  engine.withText(name, (at) => engine.must("layer", at, on, frozen, color));
  return edited(true, "");
}

function list(): Listed[] {
  const all: Listed[] = [];
  for (let first = 0; ; first += kListed) {
    const some = engine.json<Listed[]>(engine.count("list", first, kListed));
    if (some.length === 0) return all;
    for (const one of some) all.push(one);
  }
}

function properties(handles: string[]): Listed[] {
  return engine.json(engine.withHandles(handles, (at) =>
    engine.count("properties", at, handles.length)));
}

function findText(pattern: string, most: number): unknown {
  return engine.json(engine.withText(pattern, (at) => engine.count("find_text", at, most)));
}

function pick(x: number, y: number, radius: number): string[] {
  return engine.handles(engine.count("pick", x, y, radius));
}

function selectBox(box: Box, isCrossing: boolean): string[] {
  return engine.handles(engine.count("select_box", ...box, isCrossing ? 1 : 0));
}

function select(handles: string[]): State {
  engine.withHandles(handles, (at) => engine.must("select", at, handles.length));
  return state();
}

function snap(x: number, y: number, radius: number, from: Point | null): unknown {
  const [fromX, fromY] = from ?? [0, 0];
  return engine.json(engine.count("snap", x, y, radius, from ? 1 : 0, fromX, fromY));
}

function measure(what: string, of: Point[] | string[]): number {
  return engine.json(engine.withText(what, (name) =>
    typeof of[0] === "string"
      ? engine.withHandles(of as string[], (at) =>
          engine.count("measure_entities", name, at, of.length))
      : engine.withPoints(of as Point[], (at) => engine.count("measure", name, at, of.length))));
}

function saveDxf(version: string): Uint8Array {
  return engine.bytes(engine.withText(version, (at) => engine.count("save_dxf", at)));
}

function saveSvg(layout: number, options: SaveOptions): Uint8Array {
  const size = engine.withText(JSON.stringify(options), (at) =>
    engine.count("save_svg", layout, at));
  return engine.bytes(size);
}

const calls: Record<string, (...args: never[]) => unknown> = {
  start, open, create, layers, state, sceneBegin, sceneStep, window, command, undo, redo, layer,
  list, properties, findText, pick, selectBox, select, snap, measure, saveDxf, saveSvg,
  report: () => engine.json(engine.count("report")),
  info: () => engine.json(engine.count("info")),
  stats: () => engine.json(engine.count("stats")),
  markSaved: () => engine.markSaved(),
  glyphs: (ids: number[], detail: number) => ids.map((id) => engine.glyph(id, detail)),
};

// Buffers that the page gets instead of copies of them.
function buffersOf(result: unknown): Transferable[] {
  if (result instanceof Uint8Array) return [result.buffer as ArrayBuffer];
  const holder = result as { part?: ScenePart; changes?: ScenePart; batches?: unknown } | undefined;
  const part = holder?.part ?? holder?.changes ?? (holder?.batches ? (result as ScenePart) : null);
  return part ? part.batches.map((batch) => batch.data) : [];
}

scope.onmessage = async (event: MessageEvent<Call>) => {
  const { id, name, args } = event.data;
  try {
    const result = await calls[name](...(args as never[]));
    post({ id, result }, buffersOf(result));
  } catch (error) {
    // Memory that cannot grow ends as a failure of the module's own.
    const isMemory = error instanceof RangeError || error instanceof WebAssembly.RuntimeError;
    const text = error instanceof Error ? error.message : String(error);
    post({ id, failure: isMemory ? "drawing too large for this device" : text });
  }
};
