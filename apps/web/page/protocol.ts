// What page and worker say to each other, and the records of drawings that both know.

export type Point = [number, number];
export type Box = [number, number, number, number];

export interface Layer {
  index: number;
  name: string;
  on: boolean;
  frozen: boolean;
  locked: boolean;
  plotted: boolean;
  color: number;
  rgb: string;
  lineweight: number;
  linetype: string;
  entities: number;
}

export interface Layout {
  name: string;
  extents: Box | null;
  paper: Box | null;
}

export interface ReportEntry {
  code: string;
  severity: string;
  stage: string;
  count: number;
  line: number | null;
  message: string;
}

export interface FontNote {
  name: string;
  font: string;
  substitute: string | null;
}

export interface FoundText {
  handle: string;
  layer: string;
  kind: string;
  text: string;
  point: Point;
}

export interface Snap {
  kind: string;
  point: Point;
  handle?: string;
}

export interface EngineStats {
  engine_bytes: number;
  source_bytes: number;
  scene_bytes: number;
  undo_bytes: number;
  undo: number;
  redo: number;
  modified: boolean;
  selected: number;
}

/** An object of `vek0 list --json`. */
export type Listed = Record<string, unknown> & { handle: string; kind: string; layer: string };

// Kinds and flags of vek0_web.h.
export enum Kind {
  Segments,
  Arcs,
  Triangles,
  Glyphs,
  Points,
}
export const kTransparent = 1;
export const kDashed = 2;
export const kVisible = 1;
/** Bytes of a record of each kind. */
export const kStride = [32, 32, 32, 36, 32];

/** A `vek0_batch` with a copy of its records. */
export interface Batch {
  x: number;
  y: number;
  box: Box;
  largest: number;
  kind: Kind;
  count: number;
  flags: number;
  data: ArrayBuffer;
}

/** A `vek0_run`: text for the page's own fonts. */
export interface Run {
  at: Point;
  along: Point;
  up: Point;
  slot: number;
  style: number;
  text: string;
}

/** A `vek0_slots`. */
export interface SlotEdit {
  first: number;
  count: number;
  order: number;
  hidden: boolean;
}

export const kOwnOrder = 0xffffffff;

/** A step of a scene, what an edit changed, or a window. */
export interface ScenePart {
  precision: number;
  pointSize: number;
  slotCount: number;
  isStale: boolean;
  batches: Batch[];
  runs: Run[];
  edits: SlotEdit[];
  /** Records of `vek0_style`, `vek0_dash` and floats. */
  styles: ArrayBuffer;
  dashes: ArrayBuffer;
  lengths: ArrayBuffer;
}

/** What changes with edits, and whenever the selection does. */
export interface State {
  selection: string[];
  slots: SlotEdit[];
  grips: Point[];
  stats: EngineStats;
}

/** What the worker answers to an opening. */
export interface Opened {
  report: ReportEntry[];
  layers: Layer[];
  layouts: Layout[];
  fonts: FontNote[];
}

/** What an edit did. */
export interface Edited {
  ok: boolean;
  message: string;
  changes: ScenePart | null;
  state: State;
  layers: Layer[];
}

export interface SaveOptions {
  version?: string;
  width?: number;
  height?: number;
  background?: string;
  window?: Box | "extents";
  layout?: string;
}

export type Call = { id: number; name: string; args: unknown[] };
export type Answer =
  | { id: number; result: unknown }
  | { id: number; failure: string }
  | { progress: number };
