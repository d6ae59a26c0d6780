#include "engine.h"

#include <malloc.h>

#include <algorithm>
#include <cmath>

#include "vek0draw/layoutdrawing.h"
#include "vek0host/commandline.h"
#include "vek0host/entitylist.h"
#include "vek0host/propertytext.h"
#include "vek0host/summary.h"
#include "vek0host/textsearch.h"
#include "vek0host/textvalues.h"
#include "vek0paint/picture.h"
#include "vek0paint/shownextents.h"
#include "vek0paint/svgpainter.h"

namespace vek0::web {

using host::Json;

namespace {

Json boxOrNull(const RECT_2D& box) {
  const bool isFinite = std::isfinite(box.min.x) && std::isfinite(box.min.y) &&
                        std::isfinite(box.max.x) && std::isfinite(box.max.y);
  if (!box.validRegion() || !isFinite) return nullptr;
  return Json::array({box.min.x, box.min.y, box.max.x, box.max.y});
}

double bytesInUse() {
#ifdef __EMSCRIPTEN__
  return static_cast<double>(mallinfo().uordblks);
#else
  return static_cast<double>(mallinfo2().uordblks + mallinfo2().hblkhd);
#endif
}

}  // namespace

// --- Opening

OpenDrawing& Engine::drawing() const {
  if (!m_drawing) throw EngineError("no drawing is open");
  return *m_drawing;
}

Scene& Engine::scene() const {
  if (!m_scene) throw EngineError("there is no scene");
  return *m_scene;
}

void Engine::beginOpening(const char* name, double size) {
  cancelOpening();
  m_openingName = name;
  m_opening = std::make_shared<std::string>();
  constexpr double most = 4e9;
  if (size > 0) m_opening->reserve(static_cast<std::size_t>(std::min(size, most)));
}

void* Engine::openingRoom(std::size_t size) {
  if (!m_opening) throw EngineError("nothing is being opened");
  m_opening->resize(m_received + size);
  return m_opening->data() + m_received;
}

void Engine::addChunk(std::size_t size) {
  if (!m_opening || size > m_opening->size() - m_received)
    throw EngineError("there is no room for the chunk");
  m_received += size;
}

void Engine::finishOpening() {
  if (!m_opening) throw EngineError("nothing is being opened");
  m_opening->resize(m_received);
  const std::shared_ptr<const std::string> bytes = std::move(m_opening);
  cancelOpening();
  // Both drawings at once might be too large.
  m_scene.reset();
  m_drawing.reset();
  open(std::make_unique<OpenDrawing>(m_openingName, bytes, fonts, progress));
}

void Engine::cancelOpening() {
  m_opening.reset();
  m_received = 0;
}

void Engine::openNew(const char* name) { open(OpenDrawing::create(name, fonts)); }

void Engine::open(std::unique_ptr<OpenDrawing> drawing) {
  m_scene.reset();
  m_drawing = std::move(drawing);
  m_log = host::LossLog();
  m_log.begin(m_drawing->name());
  m_log.add(host::LossLog::Read, m_drawing->reading().report);
}

void Engine::beginScene(int layout, std::uint32_t background) {
  const CLayout* shown = drawing().layout(layout);
  m_scene.reset();
  // A scene shows everything up to now.
  drawing().tracker().take();
  m_scene = std::make_unique<Scene>(drawing().data(), drawing().index(), fonts.table(), shown,
                                    background);
}

// --- Results

long Engine::put(const Json& json) {
  auto text = std::make_shared<std::string>(host::toLine(json));
  result = text->c_str();
  m_kept = text;
  return static_cast<long>(text->size());
}

long Engine::putHandles(const std::vector<CEnt*>& ents) {
  std::vector<std::uint64_t> handles;
  for (const CEnt* ent : ents) handles.push_back(static_cast<std::uint64_t>(ent->GetHandle()));
  return put(std::move(handles));
}

// --- About the drawing

Json Engine::info() const {
  return host::summaryToJson(drawing().name(), drawing().data(), drawing().reading(),
                             host::ModelSummary(drawing().data()));
}

Json Engine::report() const {
  drawing();
  return m_log.toJson("view").front()["entries"];
}

Json Engine::layers() const {
  CData& data = drawing().data();
  Json layers = Json::array();
  for (CData::CLayerIterator it(data, true); const CLayer* layer = *it; ++it) {
    const LAYER_TRAITS& traits = layer->getTraits();
    layers.push_back(
        {{"index", layers.size()},
         {"name", layer->getFullName().toUtf8()},
         {"on", !layer->isOff()},
         {"frozen", layer->isFrozen()},
         {"locked", layer->isLocked()},
         {"plotted", traits.isPlotted},
         {"color", layer->getColor()},
         {"rgb", host::colorText(host::colorOnWhite(traits.trueColor, layer->getColor()))},
         {"lineweight", host::weightInMm(data, traits.lineweight)},
         {"linetype", host::ltypeName(layer->getLtype())},
         {"entities", layer->getEntities()}});
  }
  return layers;
}

Json Engine::layouts() const {
  CData& data = drawing().data();
  DRAW_OPTIONS options;
  const RECT_2D shown = drawnExtents(data, CPOProjector(), options);
  Json layouts = Json::array(
      {{{"name", host::modelName().toUtf8()}, {"extents", boxOrNull(shown)}, {"paper", nullptr}}});
  for (int i = 0; i < data.getLayouts().size(); ++i) {
    const CLayout& layout = data.getLayouts()[i];
    layouts.push_back({{"name", layout.getName().toUtf8()},
                       {"extents", boxOrNull(layout.getBdry())},
                       {"paper", boxOrNull(layout.getPaper())}});
  }
  return layouts;
}

Json Engine::list(double first, double count) const {
  CData& data = drawing().data();
  Json listed = Json::array();
  double at = 0;
  const auto take = [&](CEnt& ent, const zim::WString& layout) {
    if (at++ < first || at > first + count) return;
    host::listEntity(data, ent, &layout,
                     [&](const host::ListedEntity& one) { listed.push_back(host::toJson(one)); });
  };
  for (CEnt* ent : data.getEntTable().getEntityTbl()) take(*ent, host::modelName());
  for (int i = 0; i < data.getLayouts().size(); ++i) {
    const CLayout& layout = data.getLayouts()[i];
    for (unsigned k = 0; k < layout.getBlock().size(); ++k)
      take(*layout.getBlock()[k], layout.getName());
    for (const VIEWPORT& viewport : layout.getViewports())
      take(*createFrame(viewport, data.getEntFactory()), layout.getName());
  }
  return listed;
}

Json Engine::properties(const std::uint64_t* handles, std::size_t count) const {
  Json listed = Json::array();
  for (std::size_t i = 0; i < count; ++i) {
    const zim::WString* layout = nullptr;
    CEnt* ent = drawing().find(handles[i], &layout);
    if (!ent) continue;
    host::listEntity(drawing().data(), *ent, layout,
                     [&](const host::ListedEntity& one) { listed.push_back(host::toJson(one)); });
  }
  return listed;
}

Json Engine::fontList() const {
  Json styles = Json::array();
  for (CData::CStyleIterator it(drawing().data(), true); const CStyle* style = *it; ++it) {
    const std::string font = style->getFont() ? style->getFont()->getName().toUtf8() : "";
    const std::string name = host::lowered(font);
    const bool isStroke = name.ends_with(".shx") || name.ends_with(".shp") || name == "txt";
    const bool isOwn = name.empty() || isStroke || name.starts_with("osifont");
    styles.push_back({{"name", style->getName().toUtf8()},
                      {"font", font},
                      {"substitute", isOwn ? Json() : Json("osifont")}});
  }
  return styles;
}

Json Engine::texts(const char* pattern, std::size_t most) const {
  host::PatternOptions options;
  options.pattern = pattern;
  options.isFixed = options.ignoresCase = true;
  const host::TextPattern wanted(options);
  Json found = Json::array();
  host::searchTexts(drawing().data(), wanted, [&](const host::FoundText& one) {
    if (!one.ent || found.size() >= most) return;
    found.push_back({{"handle", host::hexText(one.ent->GetHandle())},
                     {"layer", one.layer ? Json(one.layer->toUtf8()) : Json()},
                     {"kind", one.kind},
                     {"text", one.text},
                     {"block", one.block ? Json(one.block->toUtf8()) : Json()},
                     {"point", one.point ? Json::array({one.point->x, one.point->y}) : Json()}});
  });
  return found;
}

Json Engine::stats() const {
  return {{"engine_bytes", bytesInUse()},
          {"source_bytes", m_drawing ? m_drawing->sourceBytes() : 0},
          {"scene_bytes", m_scene ? m_scene->bytes() : 0},
          {"undo_bytes", m_drawing ? m_drawing->undo().size() : 0},
          {"undo", m_drawing ? m_drawing->undo().getNoUndo() : 0},
          {"redo", m_drawing ? m_drawing->undo().getNoRedo() : 0},
          {"modified", m_drawing && m_drawing->isModified()},
          {"selected", m_drawing ? m_drawing->selection().size() : 0}};
}

// --- Editing

Json Engine::command(const char* line) {
  host::NamedStep step;
  const std::string problem = host::readCommand(line, step);
  if (!problem.empty()) return {{"ok", false}, {"message", problem}};
  if (!step.work) return {{"ok", true}, {"message", ""}};
  const host::StepOutcome outcome = drawing().run(step);
  return {{"ok", outcome.ok}, {"message", outcome.text}};
}

void Engine::setLayer(const char* name, int on, int frozen, int color) {
  CLayer* layer = nullptr;
  const zim::WString wanted = zim::WString::fromUtf8(name);
  for (CData::CLayerIterator it(drawing().data(), true); *it && !layer; ++it)
    if (zim::equalsIgnoreCase((*it)->getFullName(), wanted)) layer = *it;
  if (!layer) throw EngineError(std::string("no layer is named ") + name);
  constexpr int mostColors = 255;
  if (color > mostColors || color == 0) throw EngineError("a layer's color is from 1 to 255");
  const auto change = [&](host::Editing& editing) {
    if (!editing.undo.keep(*layer)) return host::StepOutcome::noMemory();
    if (on >= 0) layer->setOff(on == 0);
    if (frozen >= 0) layer->setFrozen(frozen != 0);
    if (color > 0) layer->setColor(static_cast<short>(color));
    return host::StepOutcome::done("");
  };
  const host::StepOutcome outcome = drawing().run({"layer", change});
  if (!outcome.ok) throw EngineError(outcome.text);
  drawing().data().getEntTable().invalidateBdry();
}

// --- Saving

double Engine::saveDxf(const char* version) {
  auto file = std::make_shared<CFileMemory>(u"saved", IFile::kWrite);
  CFileReport report;
  if (!file->open()) throw EngineError("the drawing cannot be written");
  drawing().save(version, *file, report);
  m_log.setTarget(version);
  m_log.add(host::LossLog::Write, report);
  result = file->bytes().data();
  m_kept = file;
  return static_cast<double>(file->bytes().size());
}

void Engine::markSaved() { drawing().markSaved(); }

double Engine::saveSvg(int layout, const char* options) {
  const CLayout* shown = drawing().layout(layout);
  const Json wanted = options && *options ? Json::parse(options, nullptr, false) : Json::object();
  if (!wanted.is_object()) throw EngineError("the options are not a JSON object");
  auto file = std::make_shared<CFileMemory>(u"picture", IFile::kWrite);
  if (!file->open()) throw EngineError("the picture cannot be written");
  show(*file, wanted, shown);
  result = file->bytes().data();
  m_kept = file;
  return static_cast<double>(file->bytes().size());
}

void Engine::show(IFile& file, const Json& options, const CLayout* layout) {
  CData& data = drawing().data();
  const std::string color = options.value("background", "none");
  paint::PICTURE_OPTIONS picture;
  picture.size = paint::SHEET_SIZE{options.value("width", 1600.0), options.value("height", 1200.0)};
  picture.defaultWeight = data.getVars().getDefaultLineweight() / 100.0;
  DRAW_OPTIONS drawing;
  const auto background = paint::parseColor(color);
  if (background) drawing.background = *background;
  RECT_2D extents = paint::shownExtents(data, CPOProjector(), drawing);
  if (layout) extents = layout->getPaper().validRegion() ? layout->getPaper() : layout->getBdry();
  if (options.contains("window")) {
    const Json& window = options["window"];
    if (!window.is_array() || window.size() != 4) throw EngineError("a window has four numbers");
    picture.window = RECT_2D(window[0].get<double>(), window[1].get<double>(),
                             window[2].get<double>(), window[3].get<double>());
  }
  paint::PICTURE laid = paint::layOut(picture, extents);
  if (!laid.error.empty()) throw EngineError(laid.error);
  laid.sheet.background = drawing.background;
  laid.sheet.transparent = !background;
  laid.sheet.title = m_drawing->name();
  drawing.weights = laid.sheet.weights;
  drawing.penReach = std::max(1.0, laid.sheet.lineWidth);
  drawing.leastPoint = std::max(3.0, laid.sheet.lineWidth);
  drawing.finestPattern = std::max(1.0, 2 * laid.sheet.lineWidth);
  CWndVpt window(1);
  window.resize(laid.sheet.width + 1, laid.sheet.height + 1);
  window.set(laid.world);
  paint::SvgPainter painter(file, laid.sheet, fonts, paint::SvgPainter::AsOutlines);
  if (layout)
    drawLayout(data, *layout, window, painter, drawing);
  else
    drawData(data, CPOProjector(), window, painter, drawing);
  if (!painter.finish()) throw EngineError("the picture cannot be written");
}

}  // namespace vek0::web
