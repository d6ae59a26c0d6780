// The C interface: catches whatever fails, and converts.
#include <algorithm>
#include <cmath>
#include <new>

#include "engine.h"
#include "vek0host/textvalues.h"

using vek0::host::Json;
using vek0::web::Engine;
using vek0::web::EngineError;

struct vek0_engine : Engine {};

namespace {

constexpr const char* kTooLarge = "drawing too large for this device";

// Calls `work`; after a failure, remembers why and returns `failed`.
template <class Result, class Work>
Result attempt(vek0_engine* engine, Result failed, const Work& work) {
  try {
    engine->error.clear();
    return work();
  } catch (const EngineError& e) {
    engine->error = e.what();
  } catch (const std::bad_alloc&) {
    engine->error = kTooLarge;
  } catch (const std::length_error&) {
    engine->error = kTooLarge;
  } catch (const std::exception& e) {
    engine->error = e.what();
  }
  return failed;
}

template <class Work>
int attempt(vek0_engine* engine, const Work& work) {
  return attempt(engine, 0, [&] {
    work();
    return 1;
  });
}

template <class Make>
long attemptJson(vek0_engine* engine, const Make& make) {
  return attempt(engine, -1L, [&] { return engine->put(make()); });
}

RECT_2D boxOf(double x1, double y1, double x2, double y2) {
  if (!std::isfinite(x1) || !std::isfinite(y1) || !std::isfinite(x2) || !std::isfinite(y2))
    throw EngineError("a coordinate is not a number");
  return RECT_2D(x1, y1, x2, y2);
}

std::vector<CEnt*> entitiesOf(const Engine& engine, const uint64_t* handles, size_t count) {
  std::vector<CEnt*> ents;
  for (size_t i = 0; i < count; ++i) {
    CEnt* ent = engine.drawing().find(handles[i]);
    if (!ent)
      throw EngineError("there is no entity " +
                        vek0::host::hexText(static_cast<vek0::Handle>(handles[i])));
    ents.push_back(ent);
  }
  return ents;
}

const char* nameOf(SnapKind kind) {
  constexpr const char* names[] = {"end",    "intersection",  "middle",
                                   "center", "perpendicular", "nearest"};
  return names[static_cast<int>(kind)];
}

}  // namespace

vek0_engine* vek0_create(void) { return new (std::nothrow) vek0_engine; }
void vek0_destroy(vek0_engine* engine) { delete engine; }
const char* vek0_error(const vek0_engine* engine) { return engine->error.c_str(); }
const void* vek0_data(const vek0_engine* engine) { return engine->result; }

// --- Fonts

int vek0_load_glyphs(vek0_engine* engine, const void* bytes, size_t size) {
  return attempt(engine, [&] {
    if (!engine->fonts.table().load({static_cast<const char*>(bytes), size}))
      throw EngineError("the glyph table is damaged");
  });
}

long vek0_glyph(vek0_engine* engine, uint32_t glyph, int detail) {
  return attempt(engine, -1L, [&] {
    const vek0::paint::GlyphTable& table = engine->fonts.table();
    if (glyph >= table.size()) throw EngineError("there is no such glyph");
    const auto& triangles =
        table.triangles(glyph, std::clamp(detail, 0, vek0::paint::GlyphTable::kDetails - 1));
    engine->result = triangles.data();
    return static_cast<long>(triangles.size());
  });
}

// --- Opening

int vek0_open_begin(vek0_engine* engine, const char* name, double size) {
  return attempt(engine, [&] { engine->beginOpening(name, size); });
}

void* vek0_open_room(vek0_engine* engine, size_t size) {
  return attempt(engine, static_cast<void*>(nullptr), [&] { return engine->openingRoom(size); });
}

int vek0_open_chunk(vek0_engine* engine, size_t size) {
  return attempt(engine, [&] { engine->addChunk(size); });
}

int vek0_open_finish(vek0_engine* engine) {
  return attempt(engine, [&] { engine->finishOpening(); });
}

void vek0_open_cancel(vek0_engine* engine) { engine->cancelOpening(); }

int vek0_new(vek0_engine* engine, const char* name) {
  return attempt(engine, [&] { engine->openNew(name); });
}

void vek0_on_progress(vek0_engine* engine, int (*progress)(double share)) {
  engine->progress = progress;
}

// --- About the drawing

long vek0_info(vek0_engine* engine) {
  return attemptJson(engine, [&] { return engine->info(); });
}

long vek0_report(vek0_engine* engine) {
  return attemptJson(engine, [&] { return engine->report(); });
}

long vek0_layers(vek0_engine* engine) {
  return attemptJson(engine, [&] { return engine->layers(); });
}

long vek0_layouts(vek0_engine* engine) {
  return attemptJson(engine, [&] { return engine->layouts(); });
}

long vek0_list(vek0_engine* engine, double first, double count) {
  return attemptJson(engine, [&] { return engine->list(first, count); });
}

long vek0_properties(vek0_engine* engine, const uint64_t* handles, size_t count) {
  return attemptJson(engine, [&] { return engine->properties(handles, count); });
}

long vek0_fonts(vek0_engine* engine) {
  return attemptJson(engine, [&] { return engine->fontList(); });
}

long vek0_find_text(vek0_engine* engine, const char* pattern, size_t most) {
  return attemptJson(engine, [&] { return engine->texts(pattern, most); });
}

long vek0_stats(vek0_engine* engine) {
  return attemptJson(engine, [&] { return engine->stats(); });
}

// --- What a layout shows

int vek0_scene_begin(vek0_engine* engine, int layout, uint32_t background) {
  return attempt(engine, [&] { engine->beginScene(layout, background); });
}

int vek0_scene_step(vek0_engine* engine, double entities) {
  return attempt(engine, -1, [&] {
    constexpr double most = 1e9;
    return engine->scene().step(static_cast<size_t>(std::clamp(entities, 1.0, most))) ? 1 : 0;
  });
}

const vek0_scene* vek0_current(const vek0_engine* engine) {
  static constexpr vek0_scene none{};
  return engine->hasScene() ? &engine->scene().current() : &none;
}

int vek0_window(vek0_engine* engine, double x1, double y1, double x2, double y2, double deviation) {
  return attempt(engine, [&] {
    const RECT_2D window = boxOf(x1, y1, x2, y2);
    if (!(deviation > 0)) throw EngineError("the deviation must be above 0");
    if (!engine->scene().isComplete()) throw EngineError("the scene is not complete");
    engine->scene().drawWindow(window, deviation);
  });
}

int vek0_changes(vek0_engine* engine) {
  return attempt(engine, [&] { engine->scene().apply(engine->drawing().tracker().take()); });
}

void vek0_release(vek0_engine* engine) {
  attempt(engine, [&] { engine->scene().release(); });
}

long vek0_slots_of(vek0_engine* engine, const uint64_t* handles, size_t count) {
  return attempt(engine, -1L, [&] {
    std::vector<vek0_slots> slots;
    for (const CEnt* ent : entitiesOf(*engine, handles, count))
      for (const vek0_slots& range : engine->scene().slotsOf(*ent)) slots.push_back(range);
    return engine->put(std::move(slots));
  });
}

// --- Picking and measuring

long vek0_pick(vek0_engine* engine, double x, double y, double radius) {
  return attempt(engine, -1L, [&] {
    boxOf(x, y, x + radius, y + radius);
    std::vector<CEnt*> ents;
    for (const PICK_HIT& hit : pickEntities(engine->scene().drawer(), {x, y}, radius))
      ents.push_back(hit.ent);
    return engine->putHandles(ents);
  });
}

long vek0_select_box(vek0_engine* engine, double x1, double y1, double x2, double y2,
                     int is_crossing) {
  return attempt(engine, -1L, [&] {
    const RECT_2D box = boxOf(x1, y1, x2, y2);
    vek0::web::Scene& scene = engine->scene();
    if (is_crossing) return engine->putHandles(entitiesCrossing(scene.drawer(), box));
    const auto whole = [&](CEnt& ent, IPainter& painter) { scene.drawWhole(ent, painter); };
    return engine->putHandles(entitiesWithin(scene.drawer(), whole, box));
  });
}

long vek0_selection(vek0_engine* engine) {
  return attempt(engine, -1L, [&] { return engine->putHandles(engine->drawing().selection()); });
}

long vek0_grips(vek0_engine* engine, size_t most) {
  return attempt(engine, -1L, [&] {
    vek0::host::Json grips = vek0::host::Json::array();
    for (CEnt* ent : engine->drawing().selection()) {
      for (const PNT_3D& grip : gripsOf(*ent)) grips.push_back({grip.x, grip.y});
      if (grips.size() > most) return engine->put(vek0::host::Json::array());
    }
    return engine->put(grips);
  });
}

int vek0_select(vek0_engine* engine, const uint64_t* handles, size_t count) {
  return attempt(engine, [&] {
    const std::vector<CEnt*> ents = entitiesOf(*engine, handles, count);
    const CEntTable& model = engine->drawing().data().getEntTable();
    if (!std::all_of(ents.begin(), ents.end(), [&](CEnt* ent) { return model.contains(ent); }))
      throw EngineError("only entities of the model can be selected");
    engine->drawing().select(ents);
  });
}

long vek0_snap(vek0_engine* engine, double x, double y, double radius, int has_from, double from_x,
               double from_y) {
  return attemptJson(engine, [&]() -> Json {
    boxOf(x, y, x + radius, y + radius);
    std::optional<PNT_2D> from;
    if (has_from) from = PNT_2D(from_x, from_y);
    const auto found = snapTo(engine->scene().drawer(), {x, y}, radius, from);
    if (!found) return nullptr;
    return {{"kind", nameOf(found->kind)},
            {"point", Json::array({found->at.x, found->at.y})},
            {"handle", found->ent ? Json(vek0::host::hexText(found->ent->GetHandle())) : Json()}};
  });
}

long vek0_measure(vek0_engine* engine, const char* what, const double* points, size_t count) {
  return attemptJson(engine, [&] {
    std::vector<PNT_2D> corners;
    for (size_t i = 0; i < count; ++i) corners.emplace_back(points[2 * i], points[2 * i + 1]);
    return vek0::web::measurePoints(what, corners);
  });
}

long vek0_measure_entities(vek0_engine* engine, const char* what, const uint64_t* handles,
                           size_t count) {
  return attemptJson(engine, [&] {
    return vek0::web::measureEntities(what, entitiesOf(*engine, handles, count));
  });
}

// --- Editing

long vek0_command(vek0_engine* engine, const char* line) {
  return attemptJson(engine, [&] { return engine->command(line); });
}

int vek0_undo(vek0_engine* engine) {
  return attempt(engine, [&] {
    if (!engine->drawing().undoStep(false)) throw EngineError("there is nothing to undo");
  });
}

int vek0_redo(vek0_engine* engine) {
  return attempt(engine, [&] {
    if (!engine->drawing().undoStep(true)) throw EngineError("there is nothing to redo");
  });
}

int vek0_layer(vek0_engine* engine, const char* name, int on, int frozen, int color) {
  return attempt(engine, [&] { engine->setLayer(name, on, frozen, color); });
}

// --- Saving

double vek0_save_dxf(vek0_engine* engine, const char* version) {
  return attempt(engine, -1.0, [&] { return engine->saveDxf(version); });
}

double vek0_save_svg(vek0_engine* engine, int layout, const char* options) {
  return attempt(engine, -1.0, [&] { return engine->saveSvg(layout, options); });
}

void vek0_mark_saved(vek0_engine* engine) {
  attempt(engine, [&] { engine->markSaved(); });
}
