// A layout's parts are in three places. The contents of the current sheet are in the ENTITIES
// section, marked by code 67, those of the others in blocks; LAYOUT objects name the block records
// of both. R12 has only the first. Some programs write everything to the ENTITIES section and name
// the layout of each entity (code 410).
#include "dxf/in/parse/sheets.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <set>
#include <unordered_set>
#include <utility>

#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entpolyline.h"
#include "zim0lang/casefold.h"

namespace vek0::detail {
namespace {

constexpr std::u16string_view kActiveBlock = u"*Paper_Space";
const std::u16string kUsualName = u"Layout";

std::u16string toText(long number) {
  const std::string digits = std::to_string(number);
  return {digits.begin(), digits.end()};
}

std::u16string folded(std::u16string_view name) {
  std::u16string text(name);
  for (char16_t& c : text) c = zim::foldCase(c);
  return text;
}

// Some programs write $ instead of the asterisk. The names of further sheets have a number.
bool isActive(const zim::WString& block) {
  return !block.empty() && zim::equalsIgnoreCase(block.view().substr(1), kActiveBlock.substr(1));
}

// The corners of a boundary made of that entity; none if it encloses nothing or has too many.
std::vector<PNT_2D> cornersOf(const CEnt& ent, std::size_t room) {
  // Boundaries drawn by hand have dozens, and painters look at each again and again.
  constexpr std::size_t most = 10'000;
  room = std::min(room, most);
  std::vector<PNT_2D> corners;
  if (ent.getType() == CEntCircle::kType) {
    constexpr int chords = 128;
    const CIRCLE_3D& circle = static_cast<const CEntCircle&>(ent).getCircle();
    for (int i = 0; i < chords; ++i) {
      const double angle = 2 * kPi * i / chords;
      corners.emplace_back(circle.x + circle.radius * std::cos(angle),
                           circle.y + circle.radius * std::sin(angle));
    }
  } else if (ent.getType() == CEntPolyline::kType) {
    const auto& chain = static_cast<const CEntPolyline&>(ent);
    if (static_cast<std::size_t>(chain.getNoVisibleVertexes()) > room) return {};
    chain.forEachVisible([&corners](const PNT_3D& p, double, double, double, long) {
      corners.emplace_back(p.x, p.y);
    });
  }
  if (corners.size() < 3 || corners.size() > room) corners.clear();
  return corners;
}

// Files have a viewport for each sheet itself: number 1, or the first one if the sheet was never
// open, so that none has a number.
std::size_t ownOf(const std::vector<ReadViewport>& viewports) {
  for (std::size_t i = 0; i < viewports.size(); ++i)
    if (viewports[i].number == 1) return i;
  return !viewports.empty() && viewports[0].number <= 0 ? 0 : viewports.size();
}

// Files with renumbered viewports still begin with the one that the sheet itself had before: its
// view is the sheet, as that of number 1.
bool isFormerOwn(const std::vector<ReadViewport>& viewports, std::size_t i, std::size_t own) {
  const VIEWPORT& view = viewports[i].view;
  return i == 0 && own > 0 && own < viewports.size() && view.viewCenter == view.center &&
         view.viewHeight == view.height && view.target == PNT_2D(0, 0) && view.twistRad == 0;
}

// Limits that nobody has set: A3, or its American counterpart.
bool isUsual(const RECT_2D& limits) {
  return limits.min == PNT_2D(0, 0) &&
         (limits.max == PNT_2D(420, 297) || limits.max == PNT_2D(12, 9));
}

bool isWithin(const RECT_2D& limits, const std::vector<ReadViewport>& viewports) {
  for (std::size_t i = 0, own = ownOf(viewports); i < viewports.size(); ++i) {
    const VIEWPORT& view = viewports[i].view;
    const double x = view.width / 2, y = view.height / 2;
    if (i != own && !limits.inside(RECT_2D(view.center.x - x, view.center.y - y, view.center.x + x,
                                           view.center.y + y)))
      return false;
  }
  return true;
}

}  // namespace

Sheets::Content::~Content() {
  for (CEnt* ent : entities) delete ent;
}

// Whether there is nothing but the sheet's own viewport.
bool Sheets::Content::showsNothing() const {
  return entities.empty() &&
         (viewports.empty() || (viewports.size() == 1 && ownOf(viewports) == 0));
}

void Sheets::Content::append(Content& other) {
  entities.splice(entities.end(), other.entities);
  std::move(other.viewports.begin(), other.viewports.end(), std::back_inserter(viewports));
  other.viewports.clear();
  other.isUsed = true;
}

// Names of layouts differ in case only by accident.
Sheets::Content& Sheets::contentOf(const zim::WString& layout) {
  Content& content = m_named[folded(layout)];
  content.layout = layout.view();
  return content;
}

void Sheets::add(EntPtr ent, const zim::WString& layout) {
  std::list<CEnt*>& entities = contentOf(layout).entities;
  entities.push_back(nullptr);  // may throw, so before the entity is released
  entities.back() = ent.release();
}

void Sheets::add(ReadViewport viewport) {
  contentOf(viewport.layout).viewports.push_back(std::move(viewport));
}

void Sheets::addBlock(const zim::WString& name, std::uint64_t record, std::list<CEnt*>& entities,
                      std::vector<ReadViewport> viewports) {
  const std::u16string key = folded(name);
  Content& content = m_blocks[key];
  if (record != 0) m_records[record] = key;
  content.block = name;
  content.entities.splice(content.entities.end(), entities);
  std::move(viewports.begin(), viewports.end(), std::back_inserter(content.viewports));
}

void Sheets::readObject() {
  LayoutObject object;
  object.read(m_in.lexer, m_err);
  m_objects.push_back(std::move(object));
}

Sheets::Content* Sheets::blockOf(std::uint64_t record) {
  if (record == 0) return nullptr;
  const auto known = m_records.find(record);
  const std::u16string key =
      known != m_records.end() ? known->second : folded(m_names.blockName(record));
  const auto found = m_blocks.find(key);
  return found == m_blocks.end() ? nullptr : &found->second;
}

void Sheets::settle(const PLOT_SETTINGS& plot) {
  std::stable_sort(m_objects.begin(), m_objects.end(),
                   [](const LayoutObject& a, const LayoutObject& b) { return a.tab < b.tab; });
  const LayoutObject* active = findActive();
  for (const LayoutObject& object : m_objects)
    if (!object.isModel() && !m_err.HasAnError()) create(object, &object == active);
  if (!m_err.HasAnError()) createRest(plot);
}

// The layout of the current sheet: the one with its block, or if files name no blocks, the first.
const LayoutObject* Sheets::findActive() {
  const LayoutObject* first = nullptr;
  for (const LayoutObject& object : m_objects) {
    if (object.isModel()) continue;
    const Content* block = blockOf(object.sheet);
    if (block && isActive(block->block)) return &object;
    if (!block && !first) first = &object;
  }
  return first;
}

void Sheets::create(const LayoutObject& object, bool isCurrent) {
  Content content;
  if (Content* block = blockOf(object.sheet)) {
    content.block = block->block;
    content.append(*block);
  }
  const auto named = m_named.find(folded(object.name));
  if (named != m_named.end() && !object.name.empty()) content.append(named->second);
  if (isCurrent) {
    content.append(m_named[{}]);
    content.block = zim::WString(kActiveBlock);
  }
  if (!content.showsNothing())
    for (const zim::WString& lost : object.losses())
      m_in.noteAt(object.line, ReportCode::PlotSettingsDropped, lost);
  fill(object.name, object.settings(), content);
}

// Sheets without a LAYOUT object. A sheet that shows nothing is no layout then.
void Sheets::createRest(const PLOT_SETTINGS& plot) {
  const auto active = m_named.find({});
  for (auto& [name, content] : m_blocks)
    if (isActive(content.block) && active != m_named.end()) content.append(active->second);
  std::set<std::u16string> names;
  for (const LayoutObject& object : m_objects) names.insert(folded(object.name));
  long number = 0;
  for (auto* contents : {&m_named, &m_blocks})
    for (auto& [key, content] : *contents) {
      const bool isNamed = contents == &m_named && !key.empty();
      if (content.isUsed || content.showsNothing() || m_err.HasAnError()) continue;
      std::u16string name = content.layout;
      while (!isNamed && (name.empty() || !names.insert(folded(name)).second))
        name = kUsualName + toText(++number);
      if (content.block.empty() && key.empty()) content.block = zim::WString(kActiveBlock);
      const bool isPaper = !isUsual(plot.window) || isWithin(plot.window, content.viewports);
      fill(zim::WString(name), isPaper ? plot : PLOT_SETTINGS(), content);
    }
}

void Sheets::fill(const zim::WString& name, const PLOT_SETTINGS& plot, Content& content) {
  // Before the entities move to their block: their handles name the boundaries.
  std::vector<VIEWPORT> viewports = viewportsOf(content);
  const bool active = isActive(content.block);
  CLayout* layout = m_in.semantor.createLayout(name, content.block, active, content.entities);
  content.isUsed = true;
  if (!layout) return;
  layout->setPlot(plot);
  layout->setViewports(std::move(viewports));
}

std::vector<VIEWPORT> Sheets::viewportsOf(Content& content) {
  Handles entities;
  const auto isBounded = [](const ReadViewport& v) { return v.boundary != 0; };
  if (std::any_of(content.viewports.begin(), content.viewports.end(), isBounded))
    for (const CEnt* ent : content.entities)
      if (ent->GetHandle() != 0) entities[static_cast<std::uint64_t>(ent->GetHandle())] = ent;
  std::vector<VIEWPORT> viewports;
  const std::size_t own = ownOf(content.viewports);
  for (std::size_t i = 0; i < content.viewports.size(); ++i) {
    ReadViewport& viewport = content.viewports[i];
    if (i == own || isFormerOwn(content.viewports, i, own)) continue;
    if (viewport.view.width > 0 && viewport.view.height > 0) {
      settleView(viewport, entities);
      viewports.push_back(std::move(viewport.view));
    } else {
      m_in.noteAt(viewport.line, ReportCode::EntityDropped, u"VIEWPORT");
    }
  }
  content.viewports.clear();
  return viewports;
}

void Sheets::settleView(ReadViewport& viewport, const Handles& entities) {
  VIEWPORT& view = viewport.view;
  std::unordered_set<const CLayer*> known;
  const auto freeze = [&](CLayer* layer) {
    if (layer && known.insert(layer).second) view.frozen.push_back(layer);
  };
  for (const std::uint64_t handle : viewport.frozen) freeze(m_tables.findLayer(handle));
  for (const zim::WString& name : viewport.frozenNames) freeze(m_in.semantor.getLayer(name));
  if (viewport.simplified)
    m_in.noteAt(viewport.line, ReportCode::ViewSimplified,
                zim::WString::fromUtf8(viewport.simplified));
  if (viewport.boundary == 0) return;
  const auto bounding = entities.find(viewport.boundary);
  if (bounding != entities.end()) view.boundary = cornersOf(*bounding->second, m_room);
  m_room -= view.boundary.size();
  if (view.boundary.empty()) m_in.noteAt(viewport.line, ReportCode::ClipIgnored, u"VIEWPORT");
}

}  // namespace vek0::detail
