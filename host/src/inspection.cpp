#include "vek0host/inspection.h"

#include <algorithm>
#include <map>

#include "findingkinds.h"
#include "vek0host/entitycounts.h"
#include "vek0host/textvalues.h"
#include "vek0host/units.h"

namespace vek0::host {
namespace {

constexpr double kOffPaper = 1e-6;  // share of the paper by which rounding may exceed it

std::string layerNameOf(const CLayer* layer) {
  return layer ? layer->getFullName().toUtf8() : std::string("0");
}

// "LINE 1F"; names take no const entity, although they do not change it.
std::string namedEnt(const CEnt& ent) {
  return recordNameOf(const_cast<CEnt&>(ent)) + " " + hexText(ent.GetHandle());
}

PNT_2D middleOf(const RECT_2D& box) {
  return {box.min.x / 2 + box.max.x / 2, box.min.y / 2 + box.max.y / 2};
}

RECT_2D flat(const RECT_3D& box) { return {box.min.x, box.min.y, box.max.x, box.max.y}; }

// By how much a box is larger than a size; 0 if it fits.
double excess(const RECT_2D& box, double width, double height) {
  const double slack = 1 + kOffPaper;
  const double x = box.max.x - box.min.x, y = box.max.y - box.min.y;
  return x <= width * slack && y <= height * slack ? 0 : std::max(x - width, y - height);
}

class Inspector {
 public:
  Inspector(const CData& data, long units, const InspectionOptions& options)
      : m_data(data), m_units(units), m_options(options) {}

  Inspection run() {
    if (!unitName(m_units) && isWanted(FindingKind::NoUnits))
      add(FindingKind::NoUnits, "the file states no drawing unit");
    if (m_options.purpose == Purpose::R12) {
      findNames();
      findInDefinitions();
      return std::move(m_found);
    }
    const PLACED_CONTENT content = placeContent(m_data);
    m_found.isCut = content.isCut;
    if (isWanted(FindingKind::Tiny)) findCurves(content.curves);
    findContent(content);
    if (m_options.purpose == Purpose::Print)
      findOnSheets();
    else
      findTooLarge(content.curves);
    reportFonts();
    return std::move(m_found);
  }

 private:
  bool isWanted(FindingKind kind) const {
    return levelOf(kind, m_options.purpose) != FindingLevel::None;
  }

  Finding& add(FindingKind kind, std::string message) {
    Finding finding;
    finding.code = nameOf(kind);
    finding.isError = levelOf(kind, m_options.purpose) == FindingLevel::Error;
    finding.message = std::move(message);
    finding.layout = m_layout;
    m_found.findings.push_back(std::move(finding));
    return m_found.findings.back();
  }

  void addAt(FindingKind kind, const CEnt& ent, const CLayer* layer, const PNT_2D& point,
             std::string message) {
    Finding& finding = add(kind, std::move(message));
    finding.ents = {&ent};
    finding.layer = layerNameOf(layer);
    finding.point = point;
  }

  // --- Curves

  CURVE_LIMITS limitsOf(const std::vector<PLACED_CURVE>& curves) const {
    CURVE_LIMITS limits = defaultLimits(curves);
    constexpr double tinyShare = 0.1;
    if (m_options.tolerance) {
      limits.gap = *m_options.tolerance;
      limits.tiny = tinyShare * limits.gap;
    }
    if (m_options.tiny) limits.tiny = *m_options.tiny;
    return limits;
  }

  void findCurves(const std::vector<PLACED_CURVE>& curves) {
    const CURVE_LIMITS limits = limitsOf(curves);
    const CURVE_FAULTS found = findCurveFaults(curves, limits);
    m_found.isCut = m_found.isCut || found.isCut;
    std::map<std::pair<FindingKind, std::vector<const CEnt*>>, std::size_t> known;
    for (const CURVE_FAULT& fault : found.faults) {
      const auto kind = static_cast<FindingKind>(fault.fault);
      if (!isWanted(kind)) continue;
      std::vector<const CEnt*> ents;
      for (const std::size_t i : fault.curves) ents.push_back(curves[i].ent);
      eraseRepeats(ents);
      // Of what an insert shows, many curves may have the same fault.
      if (isOnePerEnt(kind)) {
        const auto [at, isNew] = known.try_emplace({kind, ents}, m_found.findings.size());
        if (!isNew) {
          if (kind == FindingKind::Duplicate) *m_found.findings[at->second].value += fault.value;
          continue;
        }
      }
      addFault(kind, fault, curves, limits, std::move(ents));
    }
  }

  static bool isOnePerEnt(FindingKind kind) {
    return kind == FindingKind::Duplicate || kind == FindingKind::ZeroLength ||
           kind == FindingKind::Tiny;
  }

  static void eraseRepeats(std::vector<const CEnt*>& ents) {
    std::vector<const CEnt*> seen;
    for (const CEnt* ent : ents)
      if (seen.empty() || seen.back() != ent) seen.push_back(ent);
    // Of two curves of one insert, it counts once.
    if (seen.size() > 1 && seen.front() == seen.back()) seen.pop_back();
    ents = std::move(seen);
  }

  void addFault(FindingKind kind, const CURVE_FAULT& fault, const std::vector<PLACED_CURVE>& curves,
                const CURVE_LIMITS& limits, std::vector<const CEnt*> ents) {
    Finding& finding = add(kind, messageOf(fault, curves, limits, ents));
    const CLayer* layer = curves[fault.curves.front()].layer;
    finding.layer = layerNameOf(layer);
    finding.point = fault.point;
    if (kind != FindingKind::SelfIntersection) finding.value = fault.value;
    const bool isRepeat = kind == FindingKind::Duplicate || kind == FindingKind::Overlap;
    // What lies on two layers may be meant for two tools.
    if (isRepeat && curves[fault.curves.back()].layer != layer) finding.isError = false;
    finding.ents = std::move(ents);
  }

  static std::string messageOf(const CURVE_FAULT& fault, const std::vector<PLACED_CURVE>& curves,
                               const CURVE_LIMITS& limits, const std::vector<const CEnt*>& ents) {
    const std::string value = roundedText(fault.value), first = namedEnt(*ents.front());
    const std::string both = ents.size() > 1 ? first + " and " + namedEnt(*ents.back()) : first;
    switch (fault.fault) {
      case CurveFault::OpenContour:
        if (isGap(fault, curves, limits))
          return ents.size() > 1 ? "a gap of " + value + " between " + both
                                 : "a gap of " + value + " in " + first;
        return (ents.size() == 1 ? first + " is open"
                                 : "a contour of " + std::to_string(ents.size()) +
                                       " entities, among them " + first + ", is open") +
               ": its ends are " + value + " apart";
      case CurveFault::Duplicate:
        return ents.size() > 1 ? namedEnt(*ents.back()) + " repeats " + first
                               : first + " repeats itself";
      case CurveFault::Overlap:
        return ents.size() > 1 ? both + " overlap by " + value
                               : first + " overlaps itself by " + value;
      case CurveFault::SelfIntersection:
        return ents.size() > 1 ? both + " cross" : first + " crosses itself";
      case CurveFault::ZeroLength:
        return first + " has no length";
      case CurveFault::Tiny:
        return first + " is only " + value + " long";
      case CurveFault::UnclosedRing:
        return first + " ends next to where it begins, but is not closed";
    }
    return {};
  }

  // A short curve is open, but has no gap.
  static bool isGap(const CURVE_FAULT& fault, const std::vector<PLACED_CURVE>& curves,
                    const CURVE_LIMITS& limits) {
    if (fault.curves.size() > 2 || fault.value > limits.gap) return false;
    return fault.curves.size() == 2 || curves[fault.curves.front()].path.length() > 2 * fault.value;
  }

  void findTooLarge(const std::vector<PLACED_CURVE>& curves) {
    if (!m_options.bed || !isWanted(FindingKind::TooLarge)) return;
    RECT_2D box;
    box.initRegion();
    for (const PLACED_CURVE& curve : curves) box.updateRegion(curve.path.bdry());
    if (box.validRegion()) compareWithBed(box, true);
  }

  void compareWithBed(const RECT_2D& box, bool isTurnable) {
    double width = m_options.bed->width, height = m_options.bed->height;
    if (!m_options.bed->unit.empty()) {
      const char* own = unitName(m_units);
      // As for pictures to scale, a drawing without a unit is in millimeters.
      const double factor = *unitInMeters(m_options.bed->unit) / *unitInMeters(own ? own : "mm");
      width *= factor;
      height *= factor;
    }
    double beyond = excess(box, width, height);
    if (isTurnable) beyond = std::min(beyond, excess(box, height, width));
    if (beyond > 0) addTooLarge(box, width, height, beyond);
  }

  void addTooLarge(const RECT_2D& box, double width, double height, double beyond) {
    Finding& finding =
        add(FindingKind::TooLarge, roundedText(box.max.x - box.min.x) + " x " +
                                       roundedText(box.max.y - box.min.y) + " does not fit on " +
                                       roundedText(width) + " x " + roundedText(height));
    finding.point = middleOf(box);
    finding.value = beyond;
  }

  // --- Everything else

  void findContent(const PLACED_CONTENT& content) {
    for (const PLACED_ITEM& item : content.items) {
      const bool isText = isTextEntity(*item.item);
      if (isText && m_options.hasFont) collectFonts(item);
      const FindingKind kind = isText ? FindingKind::Text : FindingKind::UnsupportedKind;
      if (!isText && !isUnsupportedFor(*item.item, m_options.purpose)) continue;
      addAt(kind, *item.ent, item.layer, item.point, messageOf(*item.item, *item.ent, kind));
    }
    if (isWanted(FindingKind::DoesNotPlot)) findUnplotted(content);
  }

  static std::string messageOf(const CEnt& item, const CEnt& ent, FindingKind kind) {
    const std::string of = &item == &ent ? std::string() : " in " + namedEnt(ent);
    return (of.empty() ? namedEnt(item) : recordNameOf(const_cast<CEnt&>(item))) + of +
           (kind == FindingKind::Text ? " is a text, which depends on its font"
                                      : " is of a kind that the purpose does not support");
  }

  void findUnplotted(const PLACED_CONTENT& content) {
    std::map<const CLayer*, std::size_t> places;
    const auto check = [&](const CLayer* layer, const CEnt* ent, const PNT_2D& point) {
      const bool isKept = !layer || (layer->getTraits().isPlotted &&
                                     !layer->getName().EqualsIgnoreCase(u"DEFPOINTS"));
      if (isKept) return;
      const auto [place, isNew] = places.try_emplace(layer, m_found.findings.size());
      if (isNew)
        addAt(FindingKind::DoesNotPlot, *ent, layer, point,
              "layer " + layerNameOf(layer) + " is visible, but does not plot");
      std::vector<const CEnt*>& ents = m_found.findings[place->second].ents;
      if (ents.back() != ent) ents.push_back(ent);
    };
    for (const PLACED_CURVE& curve : content.curves)
      check(curve.layer, curve.ent, middleOf(curve.path.bdry()));
    for (const PLACED_ITEM& item : content.items) check(item.layer, item.ent, item.point);
  }

  void collectFonts(const PLACED_ITEM& item) {
    const CEntInsertBase* insert = item.item->getEntInsert();
    const CBlock* pieces = insert ? insert->getBlock() : nullptr;
    if (!pieces) return collectFont(item.item->getStyle(), item);
    for (unsigned i = 0; i < pieces->size(); ++i) collectFont((*pieces)[i]->getStyle(), item);
  }

  void collectFont(const CStyle* style, const PLACED_ITEM& item) {
    if (!style || !style->getFont()) return;
    std::vector<PLACED_ITEM>& users = m_fonts[style->getFont()];
    if (users.empty() || users.back().ent != item.ent) users.push_back(item);
  }

  void reportFonts() {
    if (!isWanted(FindingKind::MissingFont)) return;
    std::map<std::string, const std::vector<PLACED_ITEM>*> missing;
    for (const auto& [font, users] : m_fonts)
      if (!m_options.hasFont(font->getName())) missing[font->getName().toUtf8()] = &users;
    for (const auto& [name, users] : missing) {
      const PLACED_ITEM& first = users->front();
      addAt(FindingKind::MissingFont, *first.ent, first.layer, first.point,
            "font " + name + " is not available; another one takes its place");
      std::vector<const CEnt*>& ents = m_found.findings.back().ents;
      for (std::size_t i = 1; i < users->size(); ++i) ents.push_back((*users)[i].ent);
    }
  }

  // --- Sheets

  void findOnSheets() {
    bool hasPaper = false;
    const CLayoutTable& layouts = m_data.getLayouts();
    for (int i = 0; i < layouts.size(); ++i) {
      const CLayout& layout = layouts[i];
      m_layout = layout.getName().toUtf8();
      const PLACED_CONTENT content = placeContent(layout.getBlock());
      m_found.isCut = m_found.isCut || content.isCut;
      findContent(content);
      const RECT_2D box = layout.getBdry(), paper = layout.getPaper();
      if (!box.validRegion() || !paper.validRegion()) continue;
      hasPaper = true;
      if (m_options.bed)
        compareWithBed(box, false);
      else if (const double beyond =
                   excess(box, paper.max.x - paper.min.x, paper.max.y - paper.min.y);
               beyond > 0)
        addTooLarge(box, paper.max.x - paper.min.x, paper.max.y - paper.min.y, beyond);
      findOffSheet(layout, paper);
    }
    m_layout.clear();
    const RECT_3D& model = m_data.getEntTable().getBdry();
    if (!hasPaper && m_options.bed && model.validRegion()) compareWithBed(flat(model), true);
  }

  void findOffSheet(const CLayout& layout, RECT_2D paper) {
    const double slack = kOffPaper * std::max(paper.max.x - paper.min.x, paper.max.y - paper.min.y);
    const CBlock& sheet = layout.getBlock();
    for (unsigned i = 0; i < sheet.size(); ++i) {
      const CEnt& ent = *sheet[i];
      const CLayer* layer = ent.getLayer();
      const bool isHidden = layer && (layer->isOff() || layer->isFrozen());
      const RECT_2D box = flat(ent.getBdry());
      if (!ent.getTraits().isVisible || isHidden || !ent.getBdry().validRegion()) continue;
      const double beyond = std::max({paper.min.x - box.min.x, paper.min.y - box.min.y,
                                      box.max.x - paper.max.x, box.max.y - paper.max.y});
      if (beyond <= slack) continue;
      addAt(FindingKind::OffSheet, ent, layer, middleOf(box),
            namedEnt(ent) + " reaches beyond the paper by " + roundedText(beyond));
      m_found.findings.back().value = beyond;
    }
  }

  // --- R12, which concerns records and names, wherever they are

  void findInDefinitions() {
    for (const CEnt* ent : m_data.getEntTable().getEntityTbl()) findRecord(*ent);
    const CBlockTable& blocks = m_data.getBlockTable();
    for (int i = 0; i < static_cast<int>(blocks.size()); ++i) {
      const CBlock& block = *blocks[i];
      const bool isPrivate =
          block.isOfRecord() || block.isOfDimension() || isHatchName(block.getName());
      for (unsigned k = 0; !isPrivate && k < block.size(); ++k) findRecord(*block[k]);
    }
  }

  void findRecord(const CEnt& ent) {
    const CEntInsertBase* insert = ent.getEntInsert();
    const bool isText = isTextEntity(ent);
    if (isText || isUnsupportedFor(ent, Purpose::R12)) {
      const FindingKind kind = isText ? FindingKind::Text : FindingKind::UnsupportedKind;
      const RECT_3D box = ent.getBdry();
      addAt(kind, ent, ent.getLayer(), {}, messageOf(ent, ent, kind));
      m_found.findings.back().point.reset();
      if (box.validRegion() && !ent.getOwnerBlock())
        m_found.findings.back().point = middleOf(flat(box));
    }
    for (unsigned i = 0; insert && i < insert->GetNoAttribs(); ++i)
      findRecord(*insert->GetAttrib(i));
  }

  void findNames() {
    const CNameAcadConverter valid(m_data, CNameAcadConverter::Form::Unique, nullptr);
    for (CData::CLayerIterator it(m_data, false); CLayer* layer = *it; ++it)
      findName("layer", layer->getName(), valid.GetName(layer));
    for (CData::CLtypeIterator it(m_data, false, false); CLtype* ltype = *it; ++it)
      findName("linetype", ltype->getName(), valid.GetName(ltype));
    for (CData::CStyleIterator it(m_data, false); CStyle* style = *it; ++it)
      findName("text style", style->getName(), valid.GetName(style));
    const CBlockTable& blocks = m_data.getBlockTable();
    for (int i = 0; i < static_cast<int>(blocks.size()); ++i) {
      const CBlock& block = *blocks[i];
      // Private blocks have names that the writer chooses.
      if (!block.isOfRecord() && !block.isSheet() && block.getName().view().substr(0, 1) != u"*")
        findName("block", block.getName(), valid.GetName(&block));
    }
  }

  void findName(const char* what, const zim::WString& name, const zim::WString& valid) {
    if (name == valid) return;
    add(FindingKind::BadName, std::string(what) + " " + name.toUtf8() +
                                  " has a name that R12 does not allow; it would become " +
                                  valid.toUtf8());
    if (std::string_view(what) == "layer") m_found.findings.back().layer = name.toUtf8();
  }

  const CData& m_data;
  const long m_units;
  const InspectionOptions& m_options;
  Inspection m_found;
  std::string m_layout;
  std::map<const ICADFont*, std::vector<PLACED_ITEM>> m_fonts;
};

}  // namespace

Inspection inspectDrawing(const CData& data, long units, const InspectionOptions& options) {
  return Inspector(data, units, options).run();
}

}  // namespace vek0::host
