#include "dxf/keep/recordwriter.h"

#include <algorithm>

#include "dxf/out/modern/entityrecords.h"
#include "dxf/out/modern/filesections.h"
#include "files/number.h"
#include "vek0core/dxf/out/filedxfovisitor.h"
#include "vek0core/dxf/out/nameacadconverter.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/files/filememory.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/ltype.h"

namespace vek0::detail {
namespace {

constexpr long kExtendedFrom = 1000;

// The rules of the version or of the next one that has a writer.
const VersionRules& rulesFor(const std::string& name) {
  for (int i = 1; i < static_cast<int>(kDxfVersions); ++i) {
    const VersionRules& rules = *rulesOf(static_cast<DxfVersion>(i));
    if (name <= rules.name) return rules;
  }
  return *rulesOf(DxfVersion::R2018);
}

// The pairs of records as our writers form them: two lines each.
std::vector<SourceRecord> split(std::string_view text) {
  std::vector<SourceRecord> records;
  while (!text.empty()) {
    const std::size_t middle = text.find('\n');
    const std::size_t end = text.find('\n', middle + 1);
    if (end == std::string_view::npos) break;
    const long code = parseLong(text.substr(0, middle));
    if (code == 0) records.emplace_back();
    std::string value(text.substr(middle + 1, end - middle - 1));
    value.erase(value.find_last_not_of("\r \t") + 1);
    records.back().pairs.push_back({code, std::move(value), 0, true});
    text.remove_prefix(end + 1);
  }
  return records;
}

// Removes what the version does not have.
void reduce(SourceRecord& record, const SourceVersion& version) {
  std::erase_if(record.pairs, [&](const SourcePair& pair) {
    const long code = pair.code;
    if (version.isOld && (code == 100 || code == 102 || code == 360 || code == 48)) return true;
    if (version.isOld && (code == 74 || code == 75) && record.is("LTYPE")) return true;
    if (!version.hasOwners && code == 330) return true;
    if (!version.hasWeights && (code == 370 || code == 390 || code == 290)) return true;
    if (!version.hasColors && (code == 420 || code == 440)) return true;
    const bool isEntity = !record.is("LAYER") && !record.is("LTYPE") && !record.is("STYLE");
    return (!version.hasHandles && code == 5) ||
           (version.isOld && code >= kExtendedFrom && !isEntity);
  });
}

}  // namespace

SourceVersion SourceVersion::of(const std::string& name) {
  const bool isKnown = name.starts_with("AC") && name.size() == 6;
  const auto isFrom = [&](const char* first) { return isKnown && name >= first; };
  SourceVersion version;
  version.isOld = !isFrom("AC1012");
  version.hasLight = isFrom("AC1014");
  version.hasOwners = version.hasWeights = isFrom("AC1015");
  version.hasColors = isFrom("AC1018");
  return version;
}

struct RecordWriter::Parts {
  Parts(const CData& data, const std::string& versionName, int codePage, CFileReport* report)
      : plan(data, rulesFor(versionName), false, nullptr, codePage),
        writer(file),
        records(plan, writer),
        names(data, CNameAcadConverter::Form::Kept, nullptr),
        old(data, writer, false) {
    plan.report = report;
    writer.setExact(true);
    writer.setBuffered(true);
    writer.setEncoder(&plan.encoder);
    writer.setReport(report);
    old.SetACADNameConverter(&names);
    old.setExchange(true);
    old.setReport(report);
  }

  CFileMemory file{u"records", IFile::kWrite};
  FilePlan plan;
  CFileDXFOWriter writer;
  EntityRecords records;
  CNameAcadConverter names;
  CFileDXFOVisitor old;
};

RecordWriter::RecordWriter(const CData& data, const SourceVersion& version,
                           const std::string& versionName, int codePage, CFileReport* report)
    : m_version(version), m_parts(std::make_unique<Parts>(data, versionName, codePage, report)) {}

RecordWriter::~RecordWriter() = default;

template <class Write>
std::vector<SourceRecord> RecordWriter::collect(const Write& write) {
  m_parts->file.open();
  write();
  m_parts->writer.flush();
  std::vector<SourceRecord> records = split(m_parts->file.bytes());
  for (SourceRecord& record : records) reduce(record, m_version);
  return records;
}

std::vector<SourceRecord> RecordWriter::write(const SavedClip& clip) {
  return collect([&] { writeEntry(m_parts->plan, m_parts->writer, clip); });
}

std::vector<SourceRecord> RecordWriter::write(const CEnt& ent, bool isOldPolyline) {
  // Visitors take non-const entities; these only read.
  CEnt& source = const_cast<CEnt&>(ent);
  std::vector<SourceRecord> records = collect([&] {
    m_parts->records.setOldPolylines(isOldPolyline || !m_version.hasLight);
    m_version.isOld ? source.accept(m_parts->old) : source.accept(m_parts->records);
  });
  for (SourceRecord& record : records) dropGroups(record);
  return records;
}

SourceRecord RecordWriter::write(const CLayer& layer) {
  return collect([&] { writeEntry(m_parts->plan, m_parts->writer, layer); }).front();
}

SourceRecord RecordWriter::write(const CLtype& ltype) {
  return collect([&] { writeEntry(m_parts->plan, m_parts->writer, ltype); }).front();
}

SourceRecord RecordWriter::write(const ListedStyle& style) {
  return collect([&] { writeEntry(m_parts->plan, m_parts->writer, style); }).front();
}

SourceRecord RecordWriter::header() {
  return collect([&] { writeHeaderSection(m_parts->plan, m_parts->writer); }).front();
}

std::string RecordWriter::nameOf(const CLayer* layer) {
  const auto spelled = m_spelled.find(layer);
  return spelled != m_spelled.end() ? spelled->second : m_parts->plan.layers[layer].name;
}
std::string RecordWriter::nameOf(const CLtype* ltype) {
  const auto spelled = m_spelled.find(ltype);
  return spelled != m_spelled.end() ? spelled->second : m_parts->plan.ltypes[ltype].name;
}
std::string RecordWriter::nameOf(const CBlock* block) {
  return m_parts->plan.blockNames[block].name;
}
std::string RecordWriter::encoded(std::u16string_view text) const {
  return m_parts->plan.encoded(text);
}

}  // namespace vek0::detail
