// The page: starts the engine, builds the user interface, publishes `window.vek0`.
import { Api, publish } from "./api";
import { initialDrawing, loadParts, servedDrawings } from "./parts";
import { picture } from "./picture";
import type { Point } from "./protocol";
import { unsaved } from "./recovery";
import { Session } from "./session";
import { CommandLine } from "./ui/commandline";
import { byId, download, make } from "./ui/dom";
import { Input } from "./ui/input";
import { LayerPanel } from "./ui/layers";
import { Overlay } from "./ui/overlay";
import { Panels } from "./ui/panels";
import { Tools } from "./ui/tools";
import { View } from "./view";

const kSamples = ["flange", "house", "every_kind_r12"];
const kCommands = ["line", "polyline", "rectangle", "circle", "arc", "text", "insert", "hatch",
  "move", "copy", "rotate", "scale", "mirror", "stretch", "delete", "offset", "trim", "extend", "fillet",
  "chamfer", "join", "explode", "layer", "color", "set-layer", "set-color", "set-linetype"];
const kDark = { background: [0.102, 0.114, 0.129], foreground: [1, 1, 1], highlight: [0.42, 0.7, 1] };
const kLight = { background: [1, 1, 1], foreground: [0, 0, 0], highlight: [0, 0.45, 0.9] };

const say = (text: string) => { byId("message").textContent = text; };
const fail = (error: Error) => say(error.message);

const view = new View(byId<HTMLCanvasElement>("canvas"));
const overlay = new Overlay(byId<HTMLCanvasElement>("overlay"), view);
let session: Session;
let input: Input;

async function start(): Promise<void> {
  session.onChange = update;
  session.onProgress = (share) => { byId<HTMLProgressElement>("progress").value = share; };
  input = new Input(view.canvas, view, session, overlay);
  input.onFailed = say;
  overlay.grips = () => session.grips;
  input.onPointer = ([x, y]) => { byId("position").textContent = `${round(x)}, ${round(y)}`; };
  wire();
  update();
  const initial = await initialDrawing();
  if (initial) await session.open(initial.name, initial.file);
  else await session.create("drawing.dxf");
  await offerRecovery();
}

function round(value: number): number {
  const digits = Math.max(0, Math.ceil(Math.log10(view.camera.scale)) + 1);
  return Number(value.toFixed(Math.min(digits, 12)));
}

// --- What the page shows

let layerPanel: LayerPanel, panels: Panels;

function update(): void {
  layerPanel.update();
  panels.update();
  showLayouts();
  const { stats, isModified, name } = session;
  byId<HTMLButtonElement>("undo").disabled = !stats?.undo;
  byId<HTMLButtonElement>("redo").disabled = !stats?.redo;
  document.title = `${isModified ? "• " : ""}${name} – vek0`;
}

let shownLayouts: unknown = null;

function showLayouts(): void {
  const tabs = byId("layouts");
  if (shownLayouts !== session.layouts) {
    shownLayouts = session.layouts;
    tabs.replaceChildren(...session.layouts.map((layout, index) => {
      const tab = make("button", { type: "button", role: "tab" }, layout.name);
      tab.addEventListener("click", () => void view.setLayout(index).then(showLayouts));
      return tab;
    }));
  }
  [...tabs.children].forEach((tab, index) =>
    tab.setAttribute("aria-selected", String(index === view.layout)));
}

// Without WebGL 2, a picture by the engine.
async function showPlain(): Promise<void> {
  const bytes = await session.saveSvg(view.layout, { background: "#ffffff" });
  const url = URL.createObjectURL(new Blob([new Uint8Array(bytes)], { type: "image/svg+xml" }));
  const plain = byId("plain");
  plain.hidden = false;
  plain.replaceChildren(
    make("p", { role: "alert" }, "This browser has no WebGL 2: the drawing is shown as a plain picture."),
    make("img", { src: url, alt: `Picture of ${session.name}` }));
}

// --- What users do

async function open(name: string, file: Blob | Uint8Array): Promise<void> {
  if (!mayLeave()) return;
  byId("busy").hidden = false;
  try {
    await session.open(name, file);
    say(`${name} is open.`);
    if (!view.renderer) await showPlain();
  } catch (error) {
    fail(error as Error);
  } finally {
    byId("busy").hidden = true;
  }
}

function mayLeave(): boolean {
  return !session.isModified || confirm(`${session.name} has unsaved changes. Discard them?`);
}

async function save(format: string): Promise<void> {
  const stem = session.name.replace(/\.dxf$/i, "");
  if (format === "svg")
    return download(`${stem}.svg`, await session.saveSvg(view.layout, {}), "image/svg+xml");
  if (format === "png") return download(`${stem}.png`, await picture(view, {}), "image/png");
  download(`${stem}.dxf`, await session.saveDxf(format), "application/dxf");
  await session.markSaved();
}

async function print(): Promise<void> {
  const bytes = await picture(view, { background: "#ffffff", width: 3000 });
  const url = URL.createObjectURL(new Blob([new Uint8Array(bytes)], { type: "image/png" }));
  const image = make("img", { id: "printed", src: url, alt: "" });
  byId("stage").append(image);
  await image.decode();
  window.print();
  image.remove();
  URL.revokeObjectURL(url);
}

let copied: string[] = [];

// A click says where the lower left corner goes.
async function paste(commands: CommandLine): Promise<void> {
  if (copied.length === 0) return;
  await session.select(copied);
  const listed = await session.call<{ extents: { min: Point } | null }[]>("properties", copied);
  const corners = listed.flatMap(({ extents }) => (extents ? [extents.min] : []));
  const least = (axis: 0 | 1) => Math.min(...corners.map((corner) => corner[axis]));
  commands.begin("copy", [least(0), least(1)]);
  say("Click where the copy goes.");
}

function setTheme(isDark: boolean): void {
  document.documentElement.classList.toggle("dark", isDark);
  byId("theme").setAttribute("aria-pressed", String(isDark));
  if (!view.renderer) return;
  view.renderer.look = (isDark ? kDark : kLight) as typeof view.renderer.look;
  if (session?.isOpen) void view.build();
}

async function offerRecovery(): Promise<void> {
  const journal = await unsaved();
  if (!journal) return;
  const button = byId<HTMLButtonElement>("recover");
  button.hidden = false;
  button.onclick = async () => {
    button.hidden = true;
    if (journal.file) await open(journal.name, journal.file);
    else await session.create(journal.name);
    await session.replay(journal.deeds).catch(fail);
  };
}

// --- Connections

function on(id: string, action: () => unknown): void {
  byId(id).addEventListener("click", () => {
    Promise.resolve(action()).catch(fail);
  });
}

function onChoice(id: string, action: (value: string) => unknown): void {
  const field = byId<HTMLSelectElement>(id);
  field.addEventListener("change", () => {
    const { value } = field;
    field.value = "";
    if (value) Promise.resolve(action(value)).catch(fail);
  });
}

function wire(): void {
  layerPanel = new LayerPanel(session, fail);
  panels = new Panels(session, view, fail);
  const commands = new CommandLine(session, overlay, say);
  input.commandMode = () => commands.mode();
  const tools = new Tools(session, view, input, overlay, say);
  const picker = byId<HTMLInputElement>("file");
  picker.addEventListener("change", () => {
    const file = picker.files?.[0];
    if (file) void open(file.name, file);
    picker.value = "";
  });
  on("new", () => mayLeave() && session.create("drawing.dxf"));
  on("cancel", () => session.cancel());
  on("print", print);
  on("undo", () => session.undo());
  on("redo", () => session.redo());
  on("zoom-extents", () => view.extents());
  on("zoom-window", () => tools.zoomWindow());
  on("zoom-previous", () => view.previous());
  on("zoom-in", () => view.zoom(1.4));
  on("zoom-out", () => view.zoom(1 / 1.4));
  on("ortho", toggleOrtho);
  on("theme", () => setTheme(!document.documentElement.classList.contains("dark")));
  onChoice("save", save);
  onChoice("measure", (what) => tools.measure(what));
  onChoice("samples", async (path) => {
    const response = await fetch(path);
    const name = decodeURIComponent(path.slice(path.indexOf("/") + 1));
    await open(name, new Uint8Array(await response.arrayBuffer()));
  });
  onChoice("commands", (word) => commands.begin(word));
  offer("Samples", "samples", kSamples.map((name) => `${name}.dxf`));
  servedDrawings().then((names) => offer("Drawings", "files", names)).catch(() => {});
  byId("commands").append(...kCommands.map((name) => make("option", { value: name }, name)));
  document.addEventListener("keydown", (event) => void shortcut(event, tools, commands));
  const stage = byId("stage");
  stage.addEventListener("dragover", (event) => event.preventDefault());
  stage.addEventListener("drop", (event) => {
    event.preventDefault();
    const file = event.dataTransfer?.files[0];
    if (file) void open(file.name, file);
  });
  addEventListener("beforeunload", (event) => {
    if (session.isModified) event.preventDefault();
  });
}

function offer(label: string, folder: string, names: string[]): void {
  if (names.length === 0) return;
  const group = make("optgroup", { label }, ...names.map((name) =>
    make("option", { value: `${folder}/${encodeURIComponent(name)}` }, name)));
  byId("samples").append(group);
}

function toggleOrtho(): void {
  input.isOrtho = !input.isOrtho;
  byId("ortho").setAttribute("aria-pressed", String(input.isOrtho));
}

async function shortcut(event: KeyboardEvent, tools: Tools, commands: CommandLine): Promise<void> {
  const isText = event.target instanceof HTMLInputElement || event.target instanceof HTMLSelectElement;
  const isControl = event.ctrlKey || event.metaKey;
  const key = event.key.toLowerCase();
  const actions: Record<string, () => unknown> = isControl
    ? {
        z: () => (event.shiftKey ? session.redo() : session.undo()), y: () => session.redo(),
        c: () => { copied = session.selection; }, v: () => paste(commands), s: () => save("keep"),
      }
    : {
        delete: () => session.command("delete"), f8: toggleOrtho,
        escape: () => { tools.stop(); commands.clear(); return session.select([]); },
      };
  const action = actions[key];
  if (!action || (isText && key !== "escape" && key !== "f8")) return;
  event.preventDefault();
  try {
    await action();
  } catch (error) {
    fail(error as Error);
  }
}

const isEmbedded = new URLSearchParams(location.search).has("embed") ||
  document.getElementById("drawing") !== null && location.hash === "#embed";
if (isEmbedded) document.body.classList.add("embed");

const ready = (async () => {
  session = new Session(await loadParts(), view);
  setTheme(matchMedia("(prefers-color-scheme: dark)").matches);
  await start();
  if (!view.renderer) await showPlain();
})();
ready.catch((error) => fail(error as Error));

Object.defineProperty(window, "vek0", {
  value: publish(new Api(ready, () => session, (options) => picture(view, options))),
});
