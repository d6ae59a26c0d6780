#pragma once

#include <array>
#include <string>
#include <vector>

#include "vek0core/vek0core.h"
#include "vek0host/json.h"

namespace vek0::host {

/// Number of entities of each kind in model space; attributes attached to inserts count as ATTRIB.
class EntityCounts {
 public:
  void add(CEnt& ent);

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

/// The kind of an entity by its class, one of `EntityCounts::kKinds`. That of a record with several
/// pieces is the kind of all of them, or else of the record; "OPAQUE" for an unsupported kind.
std::string kindNameOf(CEnt& ent);

/// The kind of record that the entity had in its file, such as "LWPOLYLINE", or will be saved as.
std::string recordNameOf(CEnt& ent);

/// The kinds that `kindNameOf` and `recordNameOf` return, of the unsupported ones the usual.
std::vector<const char*> entityKinds();

}  // namespace vek0::host
