#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "vek0core/drawing/data.h"
#include "vek0core/drawing/datafactory.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/dxf/in/filedxfierror.h"
#include "vek0core/dxf/in/parse/loaddxf.h"
#include "vek0core/files/filememory.h"
#include "vek0core/files/report.h"

// Tests write DXF text as pairs, "code value" each; the helpers add the parts that every file
// needs.

namespace vek0::test {

/// One pair as two lines. The value follows the first blank; without one it is empty.
inline std::string pairText(std::string_view pair) {
  const std::size_t blank = pair.find(' ');
  const std::string_view code = pair.substr(0, blank);
  const std::string_view value =
      blank == std::string_view::npos ? std::string_view() : pair.substr(blank + 1);
  return std::string(code) + "\n" + std::string(value) + "\n";
}

template <class... Pairs>
std::string pairs(const Pairs&... pair) {
  return (std::string() + ... + pairText(pair));
}

/// Pairs in one text, separated by '|', as tables of cases use them.
inline std::string pairsOf(std::string_view list) {
  std::string text;
  while (!list.empty()) {
    const std::size_t bar = list.find('|');
    text += pairText(list.substr(0, bar));
    list = bar == std::string_view::npos ? std::string_view() : list.substr(bar + 1);
  }
  return text;
}

/// A whole file: the pairs followed by EOF.
template <class... Pairs>
std::string dxf(const Pairs&... pair) {
  return pairs(pair...) + "0\nEOF\n";
}

inline std::string section(std::string_view name, const std::string& body) {
  return pairs("0 SECTION") + pairText("2 " + std::string(name)) + body + pairs("0 ENDSEC");
}

inline std::string table(std::string_view name, const std::string& entries) {
  return pairs("0 TABLE") + pairText("2 " + std::string(name)) + pairs("70 1") + entries +
         pairs("0 ENDTAB");
}

/// A HEADER section with only the version.
inline std::string version(std::string_view name) {
  return section("HEADER", pairs("9 $ACADVER") + pairText("1 " + std::string(name)));
}

/// A drawing and the result of loading a text into it.
struct Loaded {
  CDataPtr data{CDataFactory().createData()};
  CFileDXFIError error;
  CFileReport report;
  CFileDXFIResult result;

  CData& drawing() const { return *data; }
  /// Model space entities of one kind, by `CEnt::getType`.
  long count(short type) const {
    long n = 0;
    for (const CEnt* ent : data->getEntTable().getEntityTbl()) n += ent->getType() == type;
    return n;
  }
  /// The only entity of model space; null if there is none or more than one.
  CEnt* only() const {
    const auto& ents = data->getEntTable().getEntityTbl();
    return ents.size() == 1 ? ents.front() : nullptr;
  }
};

inline void loadInto(Loaded& target, const std::string& text, CFileDXFIPolicy policy = {}) {
  CFileMemory file(u"test.dxf", IFile::kRead, text);
  target.result = loadDXF(target.drawing(), file, &target.error, {&target.report, policy});
}

inline Loaded loadText(const std::string& text, CFileDXFIPolicy policy = {}) {
  Loaded loaded;
  loadInto(loaded, text, policy);
  return loaded;
}

inline void importInto(Loaded& target, const std::string& text, CFileDXFIPolicy policy = {}) {
  CFileMemory file(u"test.dxf", IFile::kRead, text);
  target.result = importDXF(target.drawing(), file, &target.error, {&target.report, policy});
}

/// A file of version `name`, or without one, with these entity pairs, separated by '|'.
inline std::string entitiesOf(std::string_view name, std::string_view list) {
  const std::string header = name.empty() ? std::string() : version(name);
  return header + section("ENTITIES", pairsOf(list)) + dxf();
}

inline Loaded loadEntities(std::string_view list) { return loadText(entitiesOf("AC1009", list)); }

/// Reads with the most tolerant policy.
inline Loaded loadAny(const std::string& text) {
  return loadText(text, CFileDXFIPolicy::forAnyFile());
}
inline Loaded loadAnyEntities(std::string_view list) { return loadAny(entitiesOf("AC1015", list)); }

/// A line from (0, 0) to (1, 1) on layer A, as pairs.
inline const std::string kDiagonal = "0 LINE|8 A|10 0|20 0|11 1|21 1";

}  // namespace vek0::test
