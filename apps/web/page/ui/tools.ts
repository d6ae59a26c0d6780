// Measuring and zooming by clicks.
import type { Point, Snap } from "../protocol";
import type { Session } from "../session";
import type { View } from "../view";
import type { Input } from "./input";
import type { Overlay } from "./overlay";

const kNeeded: Record<string, number> = { distance: 2, angle: 3, area: Infinity, radius: 1 };

export class Tools {
  constructor(
    private readonly session: Session,
    private readonly view: View,
    private readonly input: Input,
    private readonly overlay: Overlay,
    private readonly say: (text: string) => void,
  ) {}

  stop(): void {
    this.input.mode = null;
    this.overlay.measured = [];
    this.overlay.snap = null;
    this.view.ask();
  }

  zoomWindow(): void {
    this.stop();
    this.say("Drag a rectangle to magnify.");
    this.input.mode = {
      box: (from, to) => {
        this.view.fit([Math.min(from[0], to[0]), Math.min(from[1], to[1]),
          Math.max(from[0], to[0]), Math.max(from[1], to[1])]);
        this.stop();
      },
    };
  }

  measure(what: string): void {
    this.stop();
    if (!(what in kNeeded)) return;
    this.say(what === "radius" ? "Click a circle or an arc." : "Click points; they snap to what is near.");
    this.input.mode = { point: (point, snap) => void this.addPoint(what, point, snap) };
  }

  private async addPoint(what: string, point: Point, snap: Snap | null): Promise<void> {
    if (this.overlay.measured.length >= kNeeded[what]) this.overlay.measured = [];
    this.overlay.measured.push(point);
    this.view.ask();
    try {
      if (what === "radius") {
        if (!snap?.handle) return this.say("There is no circle or arc.");
        this.show(what, await this.session.call<number>("measure", what, [snap.handle]), "");
      } else if (this.overlay.measured.length >= Math.min(kNeeded[what], 3)) {
        const value = await this.session.call<number>("measure", what, this.overlay.measured);
        this.show(what, value, what === "angle" ? "°" : "");
      }
    } catch (error) {
      this.say((error as Error).message);
    }
  }

  private show(what: string, value: number, unit: string): void {
    this.say(`${what}: ${Math.round(value * 1e6) / 1e6}${unit}`);
  }
}
