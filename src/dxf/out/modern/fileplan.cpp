// Handles of entities come from the drawing; everything else is numbered above them, so that a file
// that was read and written again gets the same numbers.
#include "dxf/out/modern/fileplan.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <string>
#include <tuple>
#include <utility>

#include "dxf/out/hatchdata.h"
#include "dxf/out/modern/noteentities.h"
#include "dxf/out/savedvertexes.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockxref.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/files/textcodec.h"

namespace vek0::detail {
namespace {

// Lists the blocks to be written: all except sheets, and those of hatches, which readers generate.
class BlockLister final : public IBlockOperation {
 public:
  BlockLister(FilePlan& plan, const PointerSet& ofHatches, const PointerSet& inserted)
      : m_plan(plan), m_ofHatches(ofHatches), m_inserted(inserted) {}

  int doOperation(CBlock& block) override {
    const bool isOfHatch = m_ofHatches.contains(&block) || isHatchName(block.getName());
    const bool isWritten = !block.isSheet() && (!isOfHatch || m_inserted.contains(&block));
    if (isWritten) m_plan.blocks.push_back({&block, false});
    return ZORA_BLOCK_VISIT_RESULT_SUCCESS;
  }

 private:
  FilePlan& m_plan;
  const PointerSet &m_ofHatches, &m_inserted;
};

// A boundary is found by the number of its corners and the first of them.
using BoundaryKey = std::tuple<std::size_t, double, double>;

constexpr std::size_t kCircleCorners = 128;  // of the boundary that a reader makes of a circle

BoundaryKey keyOf(const CEntPolyline& chain) {
  BoundaryKey key{0, 0, 0};
  struct {
    BoundaryKey& key;
    std::size_t count = 0;
  } run{key};
  chain.forEachVisible([&run](const PNT_3D& p, double, double, double, Handle) {
    if (run.count++ == 0) run.key = {0, p.x, p.y};
  });
  std::get<0>(key) = run.count;
  return key;
}

bool bounds(const CEntPolyline& chain, const std::vector<PNT_2D>& corners) {
  struct {
    const std::vector<PNT_2D>& corners;
    std::size_t next = 0;
    bool isSame = true;
  } run{corners};
  chain.forEachVisible([&run](const PNT_3D& p, double, double, double, Handle) {
    run.isSame =
        run.isSame && run.next < run.corners.size() && run.corners[run.next] == PNT_2D(p.x, p.y);
    ++run.next;
  });
  return run.isSame && run.next == corners.size();
}

bool bounds(const CIRCLE_3D& circle, const std::vector<PNT_2D>& corners) {
  constexpr double precision = 1e-9;
  for (const PNT_2D& p : corners) {
    const double away = std::hypot(p.x - circle.x, p.y - circle.y) - circle.radius;
    if (!(std::fabs(away) <= precision * circle.radius)) return false;
  }
  return corners.size() == kCircleCorners;
}

bool bounds(const CEnt& ent, const std::vector<PNT_2D>& corners) {
  if (ent.getType() == CEntCircle::kType)
    return bounds(static_cast<const CEntCircle&>(ent).getCircle(), corners);
  return bounds(static_cast<const CEntPolyline&>(ent), corners);
}

}  // namespace

FilePlan::FilePlan(const CData& of, const VersionRules& by, bool isSelectedOnly, CFileReport* to,
                   int codePage)
    : data(of), rules(by), report(to), filter(of, true), m_isSelectedOnly(isSelectedOnly) {
  listSpaces();
  listBlocks();
  listItems();
  chooseEncoding(codePage);
  nameBlocks();
  nameItems();
  nameSpaces();
  countObjects();
  handles.settle();
  takeHandles();
}

RECT_3D FilePlan::modelExtents() const {
  if (!m_isSelectedOnly) return data.getEntTable().getBdry();
  RECT_3D box;
  box.initRegion();
  forEachIn(spaces.front(), [&box](const CEnt& ent) {
    box.updateRegion(ent.getBdry());
    return true;
  });
  return box;
}

std::optional<ReportCode> FilePlan::objection(const CEntPolyline& ent,
                                              const PolylineForm& form) const {
  // Readers reject polylines without vertices.
  if (form.empty) return ReportCode::EntityDropped;
  return filter.objection(ent, form.finite);
}

bool FilePlan::isNative(const CEntHatch& hatch) const {
  return hasHatchData(hatch) && *hatch.getHatchType().name != 0;
}

// Only old polylines have vertices at different heights, curves or three dimensions.
bool FilePlan::isLight(const PolylineForm& form) {
  return form.curve == 0 && !form.solid && !form.sloping;
}

// Readers split the name of an item with that flag and fail if it cannot be split.
long FilePlan::fileFlags(long flags, const SavedItem& saved, const zim::WString& name) const {
  constexpr long ofFiles = 0x7F;
  flags &= ofFiles;
  if ((flags & kDependent) == 0 || saved.isDependent) return flags;
  note(ReportCode::NameNotDependent, name);
  return flags & ~(kDependent | kResolved);
}

double FilePlan::finite(double value, double fallback, std::u16string_view where) const {
  if (std::isfinite(value)) return value;
  note(ReportCode::NumberNotFinite, where);
  return fallback;
}

std::string FilePlan::encoded(std::u16string_view text) const {
  std::string bytes;
  encoder.encode(text, bytes);
  return bytes;
}

void FilePlan::listBlocks() {
  PointerSet ofHatches, inserted;
  const auto look = [&](const CEnt& ent) {
    const CEntInsertBase* insert = ent.getEntInsert();
    if (!insert || !insert->getBlock()) return true;
    const bool isHatch =
        ent.getType() == CEntHatch::kType && isNative(static_cast<const CEntHatch&>(ent));
    (isHatch ? ofHatches : inserted).insert(insert->getBlock());
    return true;
  };
  // The search for uses is skipped for drawings without private blocks.
  const std::vector<const CBlock*> own = blocksOf(data);
  const auto isPrivate = [](const CBlock* block) { return block->getName()[0] == u'*'; };
  const bool isNeeded = std::any_of(own.begin(), own.end(), isPrivate);
  for (std::size_t i = 0; i < own.size() && isNeeded; ++i)
    for (CBlock::CInsertIterator insert(*own[i]); *insert; ++insert) look(**insert);
  for (std::size_t i = 0; i < spaces.size() && isNeeded; ++i) forEachIn(spaces[i], look);
  const CBlockXRefTable& xrefs = data.getBlockXRefTable();
  for (int i = 0; i < static_cast<int>(xrefs.size()); ++i)
    if (xrefs[i]) blocks.push_back({xrefs[i], true});
  BlockLister lister(*this, ofHatches, inserted);
  const int result = data.getBlockTable().getBlockGraph().VisitUndep(lister);
  isCyclic = result != ZORA_BLOCK_VISIT_RESULT_SUCCESS;
}

// The current sheet comes first: the entities of its block are in the ENTITIES section.
void FilePlan::listSpaces() {
  spaces.push_back({nullptr, "*Model_Space", u"Model"});
  const CLayoutTable& layouts = data.getLayouts();
  const CLayout* active = m_isSelectedOnly ? nullptr : layouts.getActive();
  if (!active && !m_isSelectedOnly && layouts.size() > 0) active = &layouts[0];
  addSpace(active, 1);
  for (int i = 0; i < layouts.size() && !m_isSelectedOnly; ++i) {
    if (&layouts[i] == active)
      spaces[1].tab = i + 1;
    else
      addSpace(&layouts[i], i + 1);
  }
}

void FilePlan::addSpace(const CLayout* layout, long tab) {
  const std::size_t number = spaces.size();
  SavedSpace space{layout, "*Paper_Space", u"Layout1"};
  space.tab = tab;
  if (number > 1) space.block += std::to_string(number - 2);
  if (layout) space.name = layout->getName();
  if (layout) findBoundaries(space);
  spaces.push_back(std::move(space));
}

void FilePlan::findBoundaries(SavedSpace& space) {
  std::map<BoundaryKey, const CEnt*> found;
  bool isAny = false;
  for (const VIEWPORT& viewport : space.layout->getViewports()) {
    space.viewports.push_back({&viewport});
    isAny = isAny || !viewport.boundary.empty();
  }
  if (!isAny) return;
  const auto add = [&found](const BoundaryKey& key, const CEnt& ent) {
    // The order of keys is undefined for NaN.
    if (isFinite(std::get<1>(key), std::get<2>(key))) found.emplace(key, &ent);
  };
  CBlock& sheet = space.layout->getBlock();
  for (unsigned i = 0; i < sheet.size(); ++i) {
    const CEnt& ent = *sheet[i];
    if (ent.getType() == CEntPolyline::kType) {
      add(keyOf(static_cast<const CEntPolyline&>(ent)), ent);
    } else if (ent.getType() == CEntCircle::kType) {
      const CIRCLE_3D& circle = static_cast<const CEntCircle&>(ent).getCircle();
      add({kCircleCorners, circle.x + circle.radius, circle.y}, ent);
    }
  }
  for (SavedViewport& saved : space.viewports) {
    const std::vector<PNT_2D>& corners = saved.viewport->boundary;
    if (corners.empty() || !isFinite(corners[0])) continue;
    const auto known = found.find({corners.size(), corners[0].x, corners[0].y});
    if (known == found.end() || !bounds(*known->second, corners)) continue;
    saved.boundary = known->second;
    boundaries.emplace(saved.boundary, 0);
  }
}

void FilePlan::listItems() {
  layerList = layersOf(data);
  ltypeList = ltypesOf(data, false);
  styleList = stylesOf(data);
}

// Not every program decodes escapes in names: the first code page that lacks the fewest names.
void FilePlan::chooseEncoding(int codePage) {
  constexpr int pages[] = {1252, 1250, 1251, 1253, 1254, 1255, 1256,
                           1257, 1258, 874,  936,  932,  949,  950};
  if (rules.utf8 && codePage == kCodePageAuto) codePage = kCodePageUtf8;
  if (codePage != kCodePageAuto) {
    encoder = CTextEncoder(codePage);
    return;
  }
  // The distinct characters of names, and how many names have the same ones.
  std::map<std::u16string, std::size_t> used;
  const auto note = [&used](const zim::WString& name) {
    std::u16string units(name.view());
    std::erase_if(units, [](zim::Char unit) { return unit < 0x80; });
    std::sort(units.begin(), units.end());
    units.erase(std::unique(units.begin(), units.end()), units.end());
    if (!units.empty()) ++used[units];
  };
  for (const CLayer* layer : layerList) note(layer->getFullName());
  for (const CLtype* ltype : ltypeList) note(ltype->getFullName());
  for (const ListedStyle& listed : styleList) note(listed.name);
  for (const SavedBlock& saved : blocks) note(saved.block->getName());
  for (const SavedSpace& space : spaces) note(space.name);
  std::size_t fewest = std::numeric_limits<std::size_t>::max();
  for (const int page : pages) {
    CTextEncoder candidate(page);
    const auto isIn = [&candidate](zim::Char unit) { return candidate.has(unit); };
    std::size_t lacking = 0;
    for (const auto& [units, names] : used)
      if (!std::all_of(units.begin(), units.end(), isIn)) lacking += names;
    if (lacking >= fewest) continue;
    fewest = lacking;
    encoder = std::move(candidate);
    if (fewest == 0) return;
  }
}

// The names of references come first: those of their items begin with them.
void FilePlan::nameBlocks() {
  std::vector<OwnName> own;
  for (const SavedBlock& saved : blocks)
    own.push_back({saved.block->getName(), isDependent(*saved.block)});
  const auto name = [&](CFileReport* to) {
    const std::vector<zim::WString> names = itemNames(own, {}, true, to);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
      if (blocks[i].isXRef) m_references[blocks[i].block] = names[i];
      blockNames.add(blocks[i].block, savedItem(own[i], names[i]));
    }
  };
  const auto isOfReference = [](const OwnName& block) { return block.isDependent; };
  if (std::any_of(own.begin(), own.end(), isOfReference)) {
    name(nullptr);
    for (OwnName& block : own) block = ownName(block.name, block.isDependent);
  }
  name(report);
}

OwnName FilePlan::ownName(const zim::WString& name, bool isDependent) const {
  OwnName own{name, isDependent};
  zim::WString xref, item;
  if (!isDependent || !scomposeName(name, xref, item)) return own;
  const auto reference = m_references.find(data.getBlockXRefTable().get(xref));
  if (reference != m_references.end()) own.reference = reference->second;
  return own;
}

SavedItem FilePlan::savedItem(const OwnName& own, const zim::WString& name) const {
  zim::WString xref, item;
  return {encoded(name), 0, own.isDependent && scomposeName(name, xref, item)};
}

void FilePlan::nameItems() {
  const auto nameAll = [this](const std::vector<OwnName>& own, const auto& list, auto& items,
                              const std::vector<std::u16string_view>& reserved) {
    const std::vector<zim::WString> names = itemNames(own, reserved, false, report);
    for (std::size_t i = 0; i < list.size(); ++i) items.add(list[i], savedItem(own[i], names[i]));
  };
  std::vector<OwnName> own;
  for (const CLayer* layer : layerList)
    own.push_back(ownName(layer->getFullName(), isDependent(*layer)));
  nameAll(own, layerList, layers, {});
  layers.setDefault(layerList.front());
  own.clear();
  for (const CLtype* ltype : ltypeList)
    own.push_back(
        ownName(ltype->isContinuous() ? zim::WString(u"Continuous") : ltype->getFullName(),
                isDependent(*ltype)));
  nameAll(own, ltypeList, ltypes, {u"ByLayer", u"ByBlock"});
  ltypes.add(&data.getLtypeByLayer(), {"ByLayer"});
  ltypes.add(&data.getLtypeByBlock(), {"ByBlock"});
  ltypes.setDefault(&data.getLtypeContinuous());
  own.clear();
  std::vector<const CStyle*> listedStyles;
  for (const ListedStyle& listed : styleList) {
    listedStyles.push_back(listed.style);
    own.push_back(ownName(listed.style->isStandard() ? zim::WString(u"Standard") : listed.name,
                          (listed.flags & kDependent) != 0));
  }
  nameAll(own, listedStyles, styles, {});
  styles.setDefault(styleList.front().style);
}

void FilePlan::nameSpaces() {
  std::vector<OwnName> own;
  for (const SavedSpace& space : spaces) own.push_back({space.name});
  const std::vector<zim::WString> names = itemNames(own, {}, false, report);
  for (std::size_t i = 0; i < spaces.size(); ++i) spaces[i].name = names[i];
}

void FilePlan::countObjects() {
  EntityNotes notes(*this);
  const auto visit = [&notes](CEnt& ent) {
    ent.accept(notes);
    return true;
  };
  std::size_t objects = m_fixed.size() + layerList.size() + ltypeList.size() + styleList.size() +
                        3 * blocks.size() + 5 * spaces.size();
  for (const SavedBlock& saved : blocks)
    for (unsigned i = 0; i < saved.block->size() && !saved.isXRef; ++i) visit(*(*saved.block)[i]);
  for (const SavedSpace& space : spaces) {
    forEachIn(space, visit);
    for (const SavedViewport& saved : space.viewports) {
      handles.note(saved.viewport->handle);
      if (!saved.viewport->boundary.empty() && !saved.boundary) ++objects;
    }
  }
  for (; objects > 0; --objects) handles.noteEnd();
}

void FilePlan::takeHandles() {
  for (Handle& handle : m_fixed) handle = takeObject();
  for (const CLayer* layer : layerList) layers.setHandle(layer, takeObject());
  for (const CLtype* ltype : ltypeList) ltypes.setHandle(ltype, takeObject());
  ltypes.setHandle(&data.getLtypeByLayer(), of(FixedObject::ByLayer));
  ltypes.setHandle(&data.getLtypeByBlock(), of(FixedObject::ByBlock));
  for (const ListedStyle& listed : styleList) styles.setHandle(listed.style, takeObject());
  for (SavedSpace& space : spaces) {
    for (Handle* handle :
         {&space.record, &space.begin, &space.end, &space.object, &space.ownViewport})
      *handle = takeObject();
    for (SavedViewport& saved : space.viewports)
      if (!saved.viewport->boundary.empty() && !saved.boundary) saved.ownBoundary = takeObject();
  }
  for (SavedBlock& saved : blocks)
    for (Handle* handle : {&saved.record, &saved.begin, &saved.end}) *handle = takeObject();
}

}  // namespace vek0::detail
