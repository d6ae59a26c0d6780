#pragma once

#include <array>
#include <nlohmann/json.hpp>
#include <string>

#include "vek0host/drawingfile.h"

namespace vek0::host {

using Json = nlohmann::ordered_json;

/// Number of entities of each kind in model space; attributes attached to inserts count as ATTRIB.
class EntityCounts {
 public:
  explicit EntityCounts(CData& data);

  /// {"LINE": n, ...} with the kinds that occur, in the order of `kKinds`.
  Json toJson() const;
  /// "12 LINE, 3 CIRCLE", or "none".
  std::string toText() const;

  static constexpr std::array<const char*, 15> kKinds = {
      "POINT",  "LINE",   "XLINE",  "RAY",   "CIRCLE", "ARC",   "POLYLINE", "TEXT",
      "ATTDEF", "INSERT", "ATTRIB", "HATCH", "3DFACE", "SOLID", "TRACE"};

 private:
  std::array<long, kKinds.size()> m_counts{};
};

/// The kind of an entity, one of `EntityCounts::kKinds`.
std::string kindNameOf(CEnt& ent);

/// The error as JSON: null, or {"kind", "line", "message"}, the kind in words. Line 0 if the file
/// cannot be read at all.
Json errorToJson(const ReadResult& result);

/// [{"code", "severity", "count", "line", "sample"}, ...] in the order of the file; line is null
/// for entries about the whole file.
Json reportToJson(const CFileReport& report);

/// Everything `vek0 info --json` prints of one file. For a failed file, initial items are listed
/// only if they are used.
Json summaryToJson(const std::string& path, CData& data, const ReadResult& result);

/// The same as human-readable text of several lines, with the variables and what was skipped.
std::string summaryToText(const std::string& path, CData& data, const ReadResult& result);

/// "    loss: kind skipped 'MTEXT' (3 times, first at line 120)" for each report entry.
std::string reportToText(const CFileReport& report);
/// The same for entries about lost or changed content only.
std::string lossesToText(const CFileReport& report);

}  // namespace vek0::host
