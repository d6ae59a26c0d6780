#ifndef VEK0_WEB_H
#define VEK0_WEB_H

#include <stddef.h>
#include <stdint.h>

/* The drawing engine behind the page: one drawing that is looked at, edited and saved.
 *
 * Conventions. An engine is used by one thread. Functions answer 1 for success and 0 for failure,
 * those that return a count answer it or -1; `vek0_error` then tells why in one sentence. What a
 * function has to show is at `vek0_data`, owned by the engine and valid until its next call.
 * Functions marked "JSON" return the number of bytes of UTF-8 there. When memory runs out, a call
 * fails with "drawing too large for this device" and the drawing is as it was before.
 *
 * Points are in drawing units, x to the right and y up; angles are in degrees. Handles are 64-bit
 * numbers, written as hexadecimal elsewhere. A `layout` is 0 for the model, 1 for the first sheet
 * in the order of `vek0_layouts`, and so on. */

#ifdef __cplusplus
extern "C" {
#endif

typedef struct vek0_engine vek0_engine;

/* Null when out of memory. */
vek0_engine* vek0_create(void);
void vek0_destroy(vek0_engine* engine);

/* Why the last call failed; "" if it did not. UTF-8, zero-terminated, valid until the next call. */
const char* vek0_error(const vek0_engine* engine);
/* The result of the last call, see above. */
const void* vek0_data(const vek0_engine* engine);

/* --- Fonts */

/* Reads the glyph table that all texts are drawn with. Call it before opening a drawing; without
 * it, texts are measured by default metrics and become `vek0_run`s. */
int vek0_load_glyphs(vek0_engine* engine, const void* bytes, size_t size);
/* Triangles of a glyph in units of its height (capitals are 1 high), as 6 floats each: x0, y0, x1,
 * y1, x2, y2. `detail` 0 to 3: the deviation is below 1/32, 1/128, 1/512 and 1/4096 of the height.
 * Returns the number of triangles. */
long vek0_glyph(vek0_engine* engine, uint32_t glyph, int detail);

/* --- Opening */

/* Begins to receive a file of about that many bytes (0: unknown). What was open stays until
 * `vek0_open_finish`. */
int vek0_open_begin(vek0_engine* engine, const char* name, double size);
/* Memory to write the next `size` bytes of the file to; null on failure. */
void* vek0_open_room(vek0_engine* engine, size_t size);
/* Adds `size` bytes, which have been written to the room. */
int vek0_open_chunk(vek0_engine* engine, size_t size);
/* Reads the drawing, which replaces the one that was open. On failure none is open. */
int vek0_open_finish(vek0_engine* engine);
/* Drops what was received. */
void vek0_open_cancel(vek0_engine* engine);
/* Opens a new, empty drawing. */
int vek0_new(vek0_engine* engine, const char* name);
/* Called now and then while a drawing is read, with the share from 0 to 1; answering 0 cancels the
 * reading, which then fails with "cancelled". Null for none. */
void vek0_on_progress(vek0_engine* engine, int (*progress)(double share));

/* --- About the drawing */

/* JSON: what `vek0 info --json` prints. */
long vek0_info(vek0_engine* engine);
/* JSON: [{"code", "severity", "stage", "count", "line", "sample", "message", "old", "new"}] of
 * reading, and of the last saving. */
long vek0_report(vek0_engine* engine);
/* JSON: [{"index", "name", "on", "frozen", "locked", "plotted", "color", "rgb", "lineweight",
 * "linetype", "entities"}]; the position in this list is the `layer` of styles. */
long vek0_layers(vek0_engine* engine);
/* JSON: [{"name", "extents": [x1, y1, x2, y2] | null, "paper": [x1, y1, x2, y2] | null}], the model
 * first. `extents` is what is to be seen, `paper` the sheet. */
long vek0_layouts(vek0_engine* engine);
/* JSON: objects of `vek0 list --json` of at most `count` entities and their attributes, from entity
 * number `first` on; [] past the end. */
long vek0_list(vek0_engine* engine, double first, double count);
/* JSON: the same for these entities. */
long vek0_properties(vek0_engine* engine, const uint64_t* handles, size_t count);
/* JSON: [{"name", "font", "substitute"}] of the text styles; substitute is null if the font is the
 * table's own. */
long vek0_fonts(vek0_engine* engine);
/* JSON: [{"handle", "layer", "kind", "text", "point": [x, y]}] of texts that contain the pattern,
 * ignoring case; at most `most`. */
long vek0_find_text(vek0_engine* engine, const char* pattern, size_t most);
/* JSON: {"engine_bytes", "source_bytes", "scene_bytes", "undo_bytes", "undo", "redo", "modified",
 * "selected"}; engine_bytes is all that the engine has allocated. */
long vek0_stats(vek0_engine* engine);

/* --- What a layout shows
 *
 * A scene is all that a layout shows, whether its layers are on or not, as batches of shapes.
 * Coordinates of a batch are 32-bit floats relative to its origin. Most records have 32 bytes, so
 * that they can be two texels of a texture. They end with a slot and a style, which index two
 * tables that the page keeps as textures, too:
 *
 * - slots have flags and an order: shapes of higher order cover others. A slot belongs to one
 *   entity, and an entity has a range of slots. The order of a slot is its number unless a
 *   `vek0_slots` says otherwise. An edit hides slots of a scene and adds new batches with new
 *   slots; nothing else is uploaded again.
 * - styles have color, width, linetype and whether they are visible. Switching layers changes only
 *   this table.
 *
 * Where `scale` pixels show a unit and `precision * scale` exceeds a tenth of a pixel or so, a
 * scene is too coarse: draw a window instead, which is the same for a part of the plane, with
 * curves as fine as its pixels. */

enum vek0_kind {
  VEK0_SEGMENTS,  /* vek0_segment */
  VEK0_ARCS,      /* vek0_arc */
  VEK0_TRIANGLES, /* vek0_triangle */
  VEK0_GLYPHS,    /* vek0_glyph_instance, sorted by glyph */
  VEK0_POINTS     /* vek0_point */
};

enum vek0_batch_flags {
  VEK0_TRANSPARENT = 1, /* styles with alpha below 255: draw them last, in order */
  VEK0_DASHED = 2       /* styles with dashes; segments and arcs only */
};

/* 56 bytes in WebAssembly; `data` is last. */
typedef struct {
  double x, y;                      /* origin */
  float min_x, min_y, max_x, max_y; /* of what the batch shows, relative to the origin */
  float largest;                    /* arcs: largest radius; glyphs: largest height; else 0 */
  uint32_t kind, count, flags;
  const void* data; /* valid until the next call that makes batches, or `vek0_release` */
} vek0_batch;

/* 32 bytes. `from` is the distance of the first point from the start of its path. */
typedef struct {
  float x0, y0, x1, y1, from;
  uint32_t reserved;
  uint32_t slot, style;
} vek0_segment;

/* 32 bytes. From `start` through `sweep` radians, positive counter-clockwise. */
typedef struct {
  float x, y, radius, start, sweep, from;
  uint32_t slot, style;
} vek0_arc;

/* 32 bytes. */
typedef struct {
  float x0, y0, x1, y1, x2, y2;
  uint32_t slot, style;
} vek0_triangle;

/* 36 bytes. The glyph's point (u, v) is at (a * u + c * v + x, b * u + d * v + y). */
typedef struct {
  float x, y, a, b, c, d;
  uint32_t glyph, slot, style;
} vek0_glyph_instance;

/* 32 bytes. `mark` is -1 for a dot as wide as its line, else the point mode ($PDMODE), whose size
 * is `point_size` of the scene. */
typedef struct {
  float x, y;
  int32_t mark;
  uint32_t reserved[3];
  uint32_t slot, style;
} vek0_point;

/* 24 bytes. */
typedef struct {
  uint8_t red, green, blue, alpha;
  float weight;   /* lineweight in millimeters */
  uint32_t layer; /* position in `vek0_layers` */
  uint32_t dash;  /* in `dashes`; 0: continuous */
  uint32_t flags; /* enum vek0_style_flags */
  uint32_t reserved;
} vek0_style;

enum vek0_style_flags {
  VEK0_VISIBLE = 1,   /* all layers that it depends on are on and thawed */
  VEK0_FOREGROUND = 2 /* color 7: black or white, whichever contrasts with the background */
};

/* 16 bytes. Lengths of dashes and gaps in turn, repeated; 0 is a dot. */
typedef struct {
  uint32_t first, count; /* in `lengths` */
  float period, phase;   /* sum of the lengths; position in the pattern at `from` 0 */
} vek0_dash;

/* 64 bytes in WebAssembly. A text in characters that the glyph table lacks, for the page's own
 * fonts: one line from (x, y) along (a, b); capitals are as high as (c, d). */
typedef struct {
  double x, y;
  double a, b, c, d;
  uint32_t slot, style;
  const char* text; /* UTF-8, zero-terminated */
  uint32_t reserved;
} vek0_run;

/* 16 bytes. */
typedef struct {
  uint32_t first, count;
  uint32_t order; /* of all of them, or VEK0_OWN_ORDER */
  uint32_t hidden;
} vek0_slots;

#define VEK0_OWN_ORDER 0xffffffffu

/* What to draw, or to change. Pointers are valid until the next call that makes batches. */
typedef struct {
  double precision;    /* largest deviation of shapes, in drawing units */
  double point_size;   /* above 0: in drawing units; below: percent of the window's height */
  uint32_t slot_count; /* of the scene, new ones included */
  uint32_t batch_count, style_count, dash_count, length_count, run_count, edit_count;
  uint32_t is_stale; /* 1: too much has changed, build the scene again */
  const vek0_batch* batches;
  const vek0_style* styles; /* all of them */
  const vek0_dash* dashes;  /* all of them */
  const float* lengths;
  const vek0_run* runs;
  const vek0_slots* edits; /* to be applied before the batches are drawn */
} vek0_scene;

/* Begins the scene of a layout; `step` then makes batches of the next entities, about `entities` of
 * them, and says whether there are more: 1, 0 if it is complete, -1 on failure. `vek0_current` has
 * the batches of the last step: those that are full, after the last step also the others.
 * `background` is 0xRRGGBB. */
int vek0_scene_begin(vek0_engine* engine, int layout, uint32_t background);
int vek0_scene_step(vek0_engine* engine, double entities);
const vek0_scene* vek0_current(const vek0_engine* engine);
/* Makes batches of the part of the scene's layout in a window, clipped to it, with curves that
 * deviate at most `deviation`. They replace those of the scene wherever the window is; slots,
 * styles and orders are those of the scene, and slots that the scene hides are to be shown. Fails
 * before the scene is complete. */
int vek0_window(vek0_engine* engine, double x1, double y1, double x2, double y2, double deviation);
/* Makes batches of what changed since the last call or the scene was complete, and the edits of
 * slots. Styles are those of the whole scene. */
int vek0_changes(vek0_engine* engine);
/* Frees the batches, once they are uploaded. */
void vek0_release(vek0_engine* engine);
/* The slots of entities in the scene, as `vek0_slots`; several for one that viewports show. Returns
 * their number. */
long vek0_slots_of(vek0_engine* engine, const uint64_t* handles, size_t count);

/* --- Picking and measuring, in the layout of the scene */

/* Handles of the visible entities within `radius` of a point, the nearest first and of equals the
 * topmost. Returns their number, with `uint64_t`s at `vek0_data`, as the next two do. */
long vek0_pick(vek0_engine* engine, double x, double y, double radius);
/* Visible entities that are inside a box, or that touch it if `is_crossing`, in drawing order. */
long vek0_select_box(vek0_engine* engine, double x1, double y1, double x2, double y2,
                     int is_crossing);
/* The selection, which commands work on. */
long vek0_selection(vek0_engine* engine);
/* Replaces it. Fails, with no effect, if there is no such entity in the model. */
int vek0_select(vek0_engine* engine, const uint64_t* handles, size_t count);
/* JSON: the grips of the selection as [x, y], which the command `stretch` moves; none if there are
 * more than `most`. */
long vek0_grips(vek0_engine* engine, size_t most);

/* JSON: {"kind": "end"|"middle"|"center"|"intersection"|"perpendicular"|"nearest", "point": [x, y],
 * "handle"} or null. The special point nearest to (x, y) within `radius`, else the nearest point of
 * a line. Perpendicular only with `has_from`, from that point. */
long vek0_snap(vek0_engine* engine, double x, double y, double radius, int has_from, double from_x,
               double from_y);

/* JSON: a number. `what` is "distance", of all points in turn; "angle", of points a, vertex, b,
 * from 0 to 180; or "area" of the polygon of the points, which are `count` pairs. */
long vek0_measure(vek0_engine* engine, const char* what, const double* points, size_t count);
/* JSON: a number. `what` is "area" or "distance" (the length), summed over the entities, or
 * "radius", of one circle or arc. */
long vek0_measure_entities(vek0_engine* engine, const char* what, const uint64_t* handles,
                           size_t count);

/* --- Editing */

/* JSON: {"ok", "message"}: runs a line of the command language as one step of undo. */
long vek0_command(vek0_engine* engine, const char* line);
int vek0_undo(vek0_engine* engine); /* fails if there is nothing to undo */
int vek0_redo(vek0_engine* engine); /* likewise */
/* Changes a layer as one step of undo: `on` and `frozen` are 0, 1 or -1 to leave them as they are;
 * `color` is a number from 1 to 255 or -1. */
int vek0_layer(vek0_engine* engine, const char* name, int on, int frozen, int color);

/* --- Saving */

/* Makes the bytes of a file, at `vek0_data`; returns their number. `version` is "keep", which saves
 * the file as it came but for the edits, or "r12", "2000" and so on to "2018". A new drawing is
 * kept as "2018". */
double vek0_save_dxf(vek0_engine* engine, const char* version);
/* The same as SVG; `layout` as above, `options` is JSON: {"width", "height"} in pixels,
 * {"background": "#rrggbb"|"none"}, {"window": [x1, y1, x2, y2]}; null or "" for none. */
double vek0_save_svg(vek0_engine* engine, int layout, const char* options);
/* Declares the drawing saved: `modified` of `vek0_stats` is false until the next edit. */
void vek0_mark_saved(vek0_engine* engine);

#ifdef __cplusplus
}
#endif

#endif
