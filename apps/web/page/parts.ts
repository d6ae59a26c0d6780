// What the page is made of besides itself: files beside it, or data blocks of a page that has
// everything in it.

export interface Parts {
  workerUrl: string;
  wasm: WebAssembly.Module;
  glyphs: Uint8Array;
}

/** The content of a data block, base64 of bytes that may be compressed; null without it. */
export async function embedded(id: string): Promise<Uint8Array<ArrayBuffer> | null> {
  const block = document.getElementById(id);
  if (!block) return null;
  const text = atob((block.textContent ?? "").trim());
  const bytes = Uint8Array.from(text, (c) => c.charCodeAt(0));
  if (block.dataset.encoding !== "gzip") return bytes;
  const plain = new Blob([bytes]).stream().pipeThrough(new DecompressionStream("gzip"));
  return new Uint8Array(await new Response(plain).arrayBuffer());
}

async function fetched(name: string): Promise<Uint8Array<ArrayBuffer>> {
  const response = await fetch(name);
  if (!response.ok) throw new Error(`${name}: ${response.status} ${response.statusText}`);
  return new Uint8Array(await response.arrayBuffer());
}

export async function loadParts(): Promise<Parts> {
  const worker = await embedded("part-worker");
  const [wasm, glyphs] = await Promise.all([
    embedded("part-wasm").then((bytes) => bytes ?? fetched("engine.wasm")),
    embedded("part-glyphs").then((bytes) => bytes ?? fetched("glyphs.bin")),
  ]);
  return {
    workerUrl: worker
      ? URL.createObjectURL(new Blob([worker], { type: "text/javascript" }))
      : "worker.js",
    wasm: await WebAssembly.compile(wasm),
    glyphs,
  };
}

/** The names of the drawings that the tool serves. */
export async function servedDrawings(): Promise<string[]> {
  if (!new URLSearchParams(location.search).has("file")) return [];
  const response = await fetch("files/");
  return response.ok ? response.json() : [];
}

/** The drawing that the page came with: in a data block, or named by the address. */
export async function initialDrawing(): Promise<{ name: string; file: Uint8Array } | null> {
  const bytes = await embedded("drawing");
  if (bytes) {
    const name = document.getElementById("drawing")?.dataset.name ?? "drawing.dxf";
    return { name, file: bytes };
  }
  const query = new URLSearchParams(location.search).get("file");
  const fragment = new URLSearchParams(location.hash.slice(1)).get("file");
  const name = query ?? fragment;
  if (!name) return null;
  const path = "files/" + name.split("/").map(encodeURIComponent).join("/");
  return { name, file: await fetched(path) };
}
