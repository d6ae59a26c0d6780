// Which part of the plane the canvas shows: drawing units in double precision, CSS pixels.
import type { Box, Point } from "./protocol";

const kMargin = 0.04;

export class Camera {
  center: Point = [0, 0];
  /** Drawing units from the lower to the upper edge. */
  height = 100;
  /** CSS pixels. */
  size: Point = [1, 1];

  /** Pixels per unit. */
  get scale(): number {
    return this.size[1] / this.height;
  }

  get box(): Box {
    const w = (this.height * this.size[0]) / this.size[1] / 2;
    const h = this.height / 2;
    const [x, y] = this.center;
    return [x - w, y - h, x + w, y + h];
  }

  toScreen([x, y]: Point): Point {
    return [
      this.size[0] / 2 + (x - this.center[0]) * this.scale,
      this.size[1] / 2 - (y - this.center[1]) * this.scale,
    ];
  }

  toWorld([x, y]: Point): Point {
    return [
      this.center[0] + (x - this.size[0] / 2) / this.scale,
      this.center[1] - (y - this.size[1] / 2) / this.scale,
    ];
  }

  /** Shows a box, with a margin if wanted. */
  fit(box: Box, margin = kMargin): void {
    const [x1, y1, x2, y2] = box;
    this.center = [(x1 + x2) / 2, (y1 + y2) / 2];
    const aspect = this.size[0] / this.size[1];
    const height = Math.max(y2 - y1, (x2 - x1) / aspect) / (1 - 2 * margin);
    this.setHeight(height > 0 ? height : 100);
  }

  setHeight(height: number): void {
    const far = Math.max(Math.abs(this.center[0]), Math.abs(this.center[1]), 1);
    // Doubles end there: nothing smaller can be told apart.
    const least = far * 1e-13;
    this.height = Math.min(Math.max(height, least), 1e15);
  }

  pan(dx: number, dy: number): void {
    this.center = [this.center[0] - dx / this.scale, this.center[1] + dy / this.scale];
  }

  /** Magnifies by a factor, keeping what is at the pixel. */
  zoom(factor: number, pixel: Point): void {
    const kept = this.toWorld(pixel);
    this.setHeight(this.height / factor);
    const moved = this.toWorld(pixel);
    this.center = [
      this.center[0] + kept[0] - moved[0],
      this.center[1] + kept[1] - moved[1],
    ];
  }

  copy(): Camera {
    return Object.assign(new Camera(), this);
  }
}

export function covers(outer: Box, inner: Box): boolean {
  return outer[0] <= inner[0] && outer[1] <= inner[1] && outer[2] >= inner[2] && outer[3] >= inner[3];
}

export function touches(a: Box, b: Box): boolean {
  return a[0] <= b[2] && b[0] <= a[2] && a[1] <= b[3] && b[1] <= a[3];
}
