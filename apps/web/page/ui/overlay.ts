// What lies above the drawing: texts in the page's own fonts, selection boxes, snapped points and
// measured lines.
import type { Point, Snap } from "../protocol";
import type { View } from "../view";

const kGrip = 7; // CSS pixels

const kMarks: Record<string, (c: CanvasRenderingContext2D, x: number, y: number) => void> = {
  end: (c, x, y) => c.strokeRect(x - 5, y - 5, 10, 10),
  middle: (c, x, y) => lines(c, [[x - 6, y + 5], [x + 6, y + 5], [x, y - 6], [x - 6, y + 5]]),
  center: (c, x, y) => { c.beginPath(); c.arc(x, y, 6, 0, 7); c.stroke(); },
  intersection: (c, x, y) => {
    lines(c, [[x - 5, y - 5], [x + 5, y + 5]]);
    lines(c, [[x - 5, y + 5], [x + 5, y - 5]]);
  },
  perpendicular: (c, x, y) => lines(c, [[x - 6, y - 6], [x - 6, y + 6], [x + 6, y + 6]]),
  nearest: (c, x, y) => lines(c, [[x - 5, y - 5], [x + 5, y - 5], [x - 5, y + 5], [x + 5, y + 5], [x - 5, y - 5]]),
};

function lines(c: CanvasRenderingContext2D, points: Point[]): void {
  c.beginPath();
  points.forEach(([x, y], i) => (i ? c.lineTo(x, y) : c.moveTo(x, y)));
  c.stroke();
}

export class Overlay {
  box: { from: Point; to: Point } | null = null; // CSS pixels
  snap: Snap | null = null;
  measured: Point[] = []; // drawing units
  grips: () => Point[] = () => [];
  private readonly context: CanvasRenderingContext2D;

  constructor(private readonly canvas: HTMLCanvasElement, private readonly view: View) {
    this.context = canvas.getContext("2d")!;
    view.onFrame = () => this.draw();
  }

  draw(): void {
    const { canvas, context: c, view } = this;
    const { ratio } = view;
    [canvas.width, canvas.height] = [view.canvas.width, view.canvas.height];
    c.setTransform(ratio, 0, 0, ratio, 0, 0);
    this.drawRuns();
    const style = getComputedStyle(canvas);
    c.strokeStyle = c.fillStyle = style.color;
    c.lineWidth = 1.5;
    if (this.box) {
      const { from, to } = this.box;
      // Leftwards is crossing: dashed.
      c.setLineDash(to[0] < from[0] ? [5, 3] : []);
      c.strokeRect(from[0], from[1], to[0] - from[0], to[1] - from[1]);
      c.setLineDash([]);
    }
    for (const grip of view.layout === 0 ? this.grips() : []) {
      const [x, y] = view.camera.toScreen(grip);
      c.strokeRect(x - kGrip / 2, y - kGrip / 2, kGrip, kGrip);
    }
    if (this.measured.length > 0) {
      const points = this.measured.map((point) => view.camera.toScreen(point));
      lines(c, points);
      for (const [x, y] of points) c.fillRect(x - 2, y - 2, 4, 4);
    }
    if (this.snap) kMarks[this.snap.kind]?.(c, ...view.camera.toScreen(this.snap.point));
  }

  // Characters that the glyph table lacks.
  private drawRuns(): void {
    const { context: c, view } = this;
    const { scale } = view.camera;
    const kCapitals = 0.72; // of the size of common fonts
    for (const run of view.shownRuns) {
      const height = Math.hypot(...run.up);
      if (height * scale < 2) continue;
      const [x, y] = view.camera.toScreen(run.at);
      const k = (scale * height) / kCapitals / 100;
      const [ax, ay] = run.along.map((v) => v / (Math.hypot(...run.along) || 1));
      const [ux, uy] = run.up.map((v) => v / (height || 1));
      c.save();
      c.transform(ax * k, -ay * k, -ux * k, uy * k, x, y);
      c.font = "100px sans-serif";
      c.fillStyle = getComputedStyle(view.canvas).color;
      c.fillText(run.text, 0, 0);
      c.restore();
    }
  }
}
