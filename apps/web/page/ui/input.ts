// Mouse, touch and keys on the drawing.
import { kReach } from "../api";
import type { Point, Snap } from "../protocol";
import type { Session } from "../session";
import type { View } from "../view";
import type { Overlay } from "./overlay";

const kDragPixels = 4;
const kWheel = 1.0015;
const kPanStep = 60;
const kZoomStep = 1.3;

/** What clicks mean. */
export interface Mode {
  /** A point was chosen, snapped if something was near. */
  point?(point: Point, snap: Snap | null): void;
  /** A rectangle was dragged. */
  box?(from: Point, to: Point): void;
}

export class Input {
  /** Replaces picking while it is set. */
  mode: Mode | null = null;
  onPointer: (point: Point) => void = () => {};
  onPicked: () => void = () => {};
  /** Clicks give points to a command that is being typed. */
  commandMode: () => Mode | null = () => null;
  /** Whether clicked points are right of, left of, above or below the last one. */
  isOrtho = false;
  private readonly pointers = new Map<number, Point>();
  onFailed: (message: string) => void = () => {};
  private start: Point | null = null;
  private grip: Point | null = null; // being dragged
  private isPanning = false;
  private space = false;

  constructor(
    private readonly canvas: HTMLCanvasElement,
    private readonly view: View,
    private readonly session: Session,
    private readonly overlay: Overlay,
  ) {
    canvas.addEventListener("wheel", (event) => this.wheel(event), { passive: false });
    canvas.addEventListener("pointerdown", (event) => this.down(event));
    canvas.addEventListener("pointermove", (event) => void this.move(event));
    canvas.addEventListener("pointerup", (event) => void this.up(event));
    canvas.addEventListener("pointercancel", (event) => this.cancel(event));
    canvas.addEventListener("contextmenu", (event) => event.preventDefault());
    canvas.addEventListener("keydown", (event) => this.key(event));
    canvas.addEventListener("keyup", (event) => {
      if (event.key === " ") this.space = false;
    });
  }

  private at(event: MouseEvent): Point {
    const box = this.canvas.getBoundingClientRect();
    return [event.clientX - box.left, event.clientY - box.top];
  }

  private wheel(event: WheelEvent): void {
    event.preventDefault();
    const pixels = event.deltaMode === 1 ? event.deltaY * 30 : event.deltaY;
    this.view.zoom(kWheel ** -pixels, this.at(event));
  }

  private down(event: PointerEvent): void {
    this.canvas.setPointerCapture(event.pointerId);
    this.pointers.set(event.pointerId, this.at(event));
    this.start = this.at(event);
    const isTouch = event.pointerType === "touch";
    this.isPanning = isTouch || event.button === 1 || event.button === 2 || this.space;
    if (this.pointers.size > 1) this.overlay.box = null;
    this.grip = event.button === 0 && this.pointers.size === 1 && !this.space ? this.gripAt(this.at(event)) : null;
  }

  private gripAt(here: Point): Point | null {
    if (this.mode || this.commandMode() || this.view.layout !== 0) return null;
    const { camera } = this.view;
    const isNear = (grip: Point) => {
      const [x, y] = camera.toScreen(grip);
      return Math.hypot(x - here[0], y - here[1]) <= kReach;
    };
    return this.session.grips.find(isNear) ?? null;
  }

  private async move(event: PointerEvent): Promise<void> {
    const here = this.at(event);
    this.onPointer(this.view.camera.toWorld(here));
    const before = this.pointers.get(event.pointerId);
    if (!before) {
      if ((this.mode ?? this.commandMode())?.point) await this.showSnap(here);
      return;
    }
    const others = [...this.pointers].filter(([id]) => id !== event.pointerId).map(([, p]) => p);
    this.pointers.set(event.pointerId, here);
    if (others.length > 0) {
      const [other] = others;
      const distance = (a: Point, b: Point) => Math.hypot(a[0] - b[0], a[1] - b[1]);
      this.view.zoom(distance(here, other) / Math.max(distance(before, other), 1), other);
      this.view.pan((here[0] - before[0]) / 2, (here[1] - before[1]) / 2);
      this.start = this.grip = null;
    } else if (this.grip && this.isFar(here)) {
      this.overlay.measured = [this.grip, this.straightened(this.rounded(here), this.grip)];
      await this.showSnap(here);
      this.view.ask();
    } else if (this.isPanning) {
      this.view.pan(here[0] - before[0], here[1] - before[1]);
    } else if (this.start && this.isFar(here)) {
      this.overlay.box = { from: this.start, to: here };
      this.view.ask();
    }
  }

  private isFar(here: Point): boolean {
    return this.start !== null &&
      Math.hypot(here[0] - this.start[0], here[1] - this.start[1]) > kDragPixels;
  }

  private cancel(event: PointerEvent): void {
    this.pointers.delete(event.pointerId);
    if (this.grip) this.overlay.measured = [];
    this.grip = null;
    this.overlay.box = null;
    this.view.ask();
  }

  private async up(event: PointerEvent): Promise<void> {
    this.pointers.delete(event.pointerId);
    const { box } = this.overlay;
    const here = this.at(event);
    const { start } = this;
    const isDragged = this.isFar(here);
    this.overlay.box = null;
    this.view.ask();
    if (!start || !this.session.isOpen) return;
    if (this.grip && isDragged) await this.stretch(this.grip, here);
    else if (box) await this.finishBox(box.from, box.to, event.shiftKey);
    else if (!isDragged && event.button === 0) await this.click(here, event.shiftKey);
  }

  private async stretch(grip: Point, here: Point): Promise<void> {
    const to = (await this.snapAt(here))?.point ?? this.straightened(this.rounded(here), grip);
    this.grip = null;
    [this.overlay.measured, this.overlay.snap] = [[], null];
    const { ok, message } = await this.session.command(`stretch ${grip} ${to}`);
    if (!ok) this.onFailed(message);
  }

  private async finishBox(from: Point, to: Point, adds: boolean): Promise<void> {
    const { camera } = this.view;
    const [a, b] = [camera.toWorld(from), camera.toWorld(to)];
    if (this.mode?.box) return this.mode.box(a, b);
    const box = [Math.min(a[0], b[0]), Math.min(a[1], b[1]), Math.max(a[0], b[0]), Math.max(a[1], b[1])];
    const found = await this.session.call<string[]>("selectBox", box, to[0] < from[0]);
    await this.choose(found, adds);
  }

  private async click(here: Point, adds: boolean): Promise<void> {
    const mode = this.mode ?? this.commandMode();
    if (mode?.point) {
      const snap = await this.snapAt(here);
      return mode.point(snap?.point ?? this.straightened(this.rounded(here), this.overlay.measured.at(-1)), snap);
    }
    const [x, y] = this.view.camera.toWorld(here);
    const found = await this.session.call<string[]>("pick", x, y, kReach / this.view.camera.scale);
    await this.choose(found.slice(0, 1), adds);
  }

  // Shift adds what was not selected and takes away what was.
  private async choose(found: string[], adds: boolean): Promise<void> {
    const old = new Set(adds ? this.session.selection : []);
    for (const handle of found) if (!old.delete(handle)) old.add(handle);
    await this.session.select([...old]).catch(() => {});
    this.onPicked();
  }

  // No more digits than pixels can tell apart.
  private rounded(pixel: Point): Point {
    const digits = Math.ceil(Math.log10(this.view.camera.scale)) + 2;
    const short = (value: number) => Number(value.toFixed(Math.min(Math.max(digits, 0), 15)));
    const [x, y] = this.view.camera.toWorld(pixel);
    return [short(x), short(y)];
  }

  private straightened([x, y]: Point, last?: Point): Point {
    if (!this.isOrtho || !last) return [x, y];
    return Math.abs(x - last[0]) > Math.abs(y - last[1]) ? [x, last[1]] : [last[0], y];
  }

  private snapAt([px, py]: Point): Promise<Snap | null> {
    const [x, y] = this.view.camera.toWorld([px, py]);
    const from = this.grip ?? this.overlay.measured.at(-1) ?? null;
    return this.session.call<Snap | null>("snap", x, y, kReach / this.view.camera.scale, from);
  }

  private isSnapping = false;

  private async showSnap(here: Point): Promise<void> {
    if (this.isSnapping || !this.session.isOpen) return;
    this.isSnapping = true;
    this.overlay.snap = await this.snapAt(here).catch(() => null);
    this.isSnapping = false;
    this.view.ask();
  }

  private key(event: KeyboardEvent): void {
    const { view } = this;
    const keys: Record<string, () => void> = {
      ArrowLeft: () => view.pan(kPanStep, 0),
      ArrowRight: () => view.pan(-kPanStep, 0),
      ArrowUp: () => view.pan(0, kPanStep),
      ArrowDown: () => view.pan(0, -kPanStep),
      "+": () => view.zoom(kZoomStep),
      "=": () => view.zoom(kZoomStep),
      "-": () => view.zoom(1 / kZoomStep),
      Home: () => view.extents(),
      " ": () => { this.space = true; },
    };
    const action = keys[event.key];
    if (!action || event.ctrlKey || event.metaKey) return;
    event.preventDefault();
    action();
  }
}
