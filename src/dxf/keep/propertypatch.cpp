#include "dxf/keep/propertypatch.h"

#include <algorithm>
#include <optional>

#include "dxf/out/modern/propertypairs.h"
#include "dxf/out/savedcolor.h"
#include "files/number.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/entattrib.h"
#include "vek0core/files/report.h"
#include "vek0core/tables/colors.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/ltype.h"

namespace vek0::detail {
namespace {

constexpr long kLayer = 8;

// The value of a code before and after; none for the default, which records omit.
struct Change {
  long code;
  std::optional<std::string> before, after;
};

std::optional<std::string> unless(bool isDefault, std::string value) {
  return isDefault ? std::nullopt : std::optional(std::move(value));
}

class PropertyChanges {
 public:
  PropertyChanges(RecordWriter& writer, const SourceVersion& version, CFileReport* report)
      : m_writer(writer), m_version(version), m_report(report) {}

  std::vector<Change> between(const CEnt& before, const CEnt& after) {
    m_changes.clear();
    // The same name may be spelled differently in the file.
    if (nameOf(before.getLayer()) != nameOf(after.getLayer()))
      m_changes.push_back({kLayer, {}, m_writer.nameOf(after.getLayer())});
    const CLtype* ltype = after.getLtype();
    if (nameOf(before.getLtype()) != nameOf(ltype))
      m_changes.push_back(
          {6,
           {},
           unless(!ltype || ltype->isByLayer(), ltype ? m_writer.nameOf(ltype) : std::string())});
    const ENT_TRAITS &was = before.getTraits(), &is = after.getTraits();
    add(62, colorOf(before), colorOf(after));
    add(48, unless(was.ltypeScale == 1, shortestText(was.ltypeScale)),
        unless(is.ltypeScale == 1, shortestText(is.ltypeScale)), !m_version.isOld);
    add(60, unless(was.isVisible, "1"), unless(is.isVisible, "1"), !m_version.isOld);
    add(370, weightOf(was), weightOf(is), m_version.hasWeights);
    add(420, trueColorOf(was), trueColorOf(is), m_version.hasColors || !is.hasTrueColor());
    add(440, opacityOf(was), opacityOf(is), m_version.hasColors);
    return m_changes;
  }

 private:
  template <class Item>
  static zim::WString nameOf(const Item* item) {
    return item ? item->getFullName() : zim::WString();
  }
  void add(long code, std::optional<std::string> before, std::optional<std::string> after,
           bool isKnown = true) {
    if (before == after) return;
    if (isKnown)
      m_changes.push_back({code, std::move(before), std::move(after)});
    else if (m_report)
      m_report->add(ReportCode::CodeDropped, 0, zim::WString::fromUtf8(std::to_string(code)));
  }
  std::optional<std::string> colorOf(const CEnt& ent) const {
    short color = ent.getColor();
    const ENT_TRAITS& traits = ent.getTraits();
    if (traits.hasTrueColor() && !m_version.hasColors) color = savedColor(traits.trueColor).number;
    return unless(color == kColorByLayer, std::to_string(color));
  }
  static std::optional<std::string> weightOf(const ENT_TRAITS& traits) {
    return unless(traits.lineweight == ENT_TRAITS::kWeightByLayer,
                  std::to_string(nearestLineweight(traits.lineweight)));
  }
  static std::optional<std::string> trueColorOf(const ENT_TRAITS& traits) {
    return unless(!traits.hasTrueColor(), std::to_string(traits.trueColor & 0xFFFFFF));
  }
  static std::optional<std::string> opacityOf(const ENT_TRAITS& traits) {
    return unless(traits.opacity == ENT_TRAITS::kOpacityByLayer,
                  std::to_string(transparencyOf(traits.opacity)));
  }

  RecordWriter& m_writer;
  const SourceVersion& m_version;
  CFileReport* m_report;
  std::vector<Change> m_changes;
};

// The pair of a property. In a kind that is not supported, the codes of subclasses may have other
// meanings.
std::size_t findProperty(const SourceRecord& record, long code, bool isOpaque) {
  constexpr long subclass = 100;
  const std::size_t at = record.find(code);
  if (!isOpaque || at == SourceRecord::kNone) return at;
  for (std::size_t i = 0; i < at; ++i)
    if (record.pairs[i].code == subclass && record.pairs[i].value != "AcDbEntity")
      return SourceRecord::kNone;
  return at;
}

// Further properties follow the layer, which every record has.
std::size_t placeIn(const SourceRecord& record, bool isOpaque) {
  const std::size_t layer = findProperty(record, kLayer, isOpaque);
  if (layer != SourceRecord::kNone) return layer + 1;
  const std::size_t subclass = record.find(100);
  return subclass == SourceRecord::kNone ? std::size_t{1} : subclass + 1;
}

void apply(SourceRecord& record, const Change& change, bool isOpaque = false) {
  const std::size_t at = findProperty(record, change.code, isOpaque);
  if (at == SourceRecord::kNone) {
    if (change.after) record.insert(placeIn(record, isOpaque), change.code, *change.after);
  } else if (change.after) {
    record.setText(at, *change.after);
  } else {
    record.erase(at);
  }
}

bool hasValueOf(const SourceRecord& record, const Change& change, const std::string& stated) {
  const std::size_t at = record.find(change.code);
  return at != SourceRecord::kNone && record.pairs[at].value == stated;
}

}  // namespace

void patchProperties(std::span<SourceRecord> records, const CEnt& before, const CEnt& after,
                     RecordWriter& writer, const SourceVersion& version, CFileReport* report) {
  PropertyChanges changes(writer, version, report);
  for (const Change& change : changes.between(before, after)) {
    const bool isOpaque = before.getRecord() == EntRecord::Opaque;
    const std::size_t at = findProperty(records[0], change.code, isOpaque);
    const std::string stated = at == SourceRecord::kNone ? "" : records[0].pairs[at].value;
    apply(records[0], change, isOpaque);
    for (SourceRecord& part : records.subspan(1))
      if (!part.is("ATTRIB") && at != SourceRecord::kNone && hasValueOf(part, change, stated))
        apply(part, change);
  }
  const CEntInsertBase *was = before.getEntInsert(), *is = after.getEntInsert();
  if (!was || !is || was->GetNoAttribs() != is->GetNoAttribs()) return;
  unsigned next = 0;
  for (SourceRecord& part : records.subspan(1)) {
    if (!part.is("ATTRIB") || next == was->GetNoAttribs()) continue;
    for (const Change& change : changes.between(*was->GetAttrib(next), *is->GetAttrib(next)))
      apply(part, change);
    ++next;
  }
}

}  // namespace vek0::detail
