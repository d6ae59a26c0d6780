// PNG of the drawing, from the page's own renderer.
import type { SaveOptions } from "./protocol";
import type { View } from "./view";

const kMostPixels = 8192;

function colorOf(text: string): [number, number, number] {
  const found = /^#([0-9a-f]{2})([0-9a-f]{2})([0-9a-f]{2})$/i.exec(text);
  if (!found) throw new Error("the background is a color like #ffffff");
  return found.slice(1).map((part) => parseInt(part, 16) / 255) as [number, number, number];
}

/** Draws the view once in another size and color, and leaves it as it was. */
export async function picture(view: View, options: SaveOptions): Promise<Uint8Array> {
  const { renderer, canvas } = view;
  if (!renderer) throw new Error("pictures need WebGL 2; save SVG instead");
  const kept = { camera: view.camera, look: renderer.look, ratio: view.fixedRatio };
  const width = options.width ?? Math.round(canvas.clientWidth * view.ratio);
  const height = options.height ?? Math.round((width * canvas.clientHeight) / canvas.clientWidth);
  if (!(width >= 1 && height >= 1 && width <= kMostPixels && height <= kMostPixels))
    throw new Error(`a picture has 1 to ${kMostPixels} pixels on a side`);
  try {
    const camera = kept.camera.copy();
    camera.size = [width, height];
    if (options.window) {
      const box = options.window === "extents" ? view.bounds : options.window;
      if (box) camera.fit(box, options.window === "extents" ? undefined : 0);
    }
    view.camera = camera;
    view.fixedRatio = 1;
    if (options.background) {
      const background = colorOf(options.background);
      const isDark = background[0] + background[1] + background[2] < 1.5;
      renderer.look = { ...kept.look, background, foreground: isDark ? [1, 1, 1] : [0, 0, 0] };
    }
    canvas.width = width;
    canvas.height = height;
    await view.settle();
    // The buffer of the canvas is only there until the next task.
    view.drawNow();
    return await bytesOf(canvas);
  } finally {
    Object.assign(view, { camera: kept.camera, fixedRatio: kept.ratio });
    renderer.look = kept.look;
    view.resize();
    view.drawNow();
  }
}

function bytesOf(canvas: HTMLCanvasElement): Promise<Uint8Array> {
  const flat = document.createElement("canvas");
  flat.width = canvas.width;
  flat.height = canvas.height;
  flat.getContext("2d")!.drawImage(canvas, 0, 0);
  return new Promise((resolve, reject) => flat.toBlob((blob) => {
    if (!blob) return reject(new Error("the picture is too large for this device"));
    void blob.arrayBuffer().then((bytes) => resolve(new Uint8Array(bytes)));
  }, "image/png"));
}

