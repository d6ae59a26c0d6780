#pragma once

#include <optional>

#include "vek0core/drawing/pointerset.h"
#include "vek0core/files/reportcode.h"
#include "vek0core/geometry/finite.h"

class CBlock;
class CData;
class CEnt;
class CEnt3DFace;
class CEntArc;
class CEntCircle;
class CEntInsertBase;
class CEntLine;
class CEntPnt;
class CEntPolyline;
class CEntText;

namespace vek0::detail {

/// Determines which entities can be written.
class SaveFilter {
 public:
  /// Examines the blocks of the drawing once. `keepsInvisible`: the format has a code for invisible
  /// entities.
  explicit SaveFilter(const CData& data, bool keepsInvisible = false);

  /// The reason why the entity cannot be written; none if it can.
  std::optional<ReportCode> objection(const CEntPnt& ent) const;
  std::optional<ReportCode> objection(const CEntLine& ent) const;
  std::optional<ReportCode> objection(const CEntCircle& ent) const;
  std::optional<ReportCode> objection(const CEntArc& ent) const;
  std::optional<ReportCode> objection(const CEnt3DFace& ent) const;
  /// Also for attribute definitions and attributes.
  std::optional<ReportCode> objection(const CEntText& ent) const;
  /// Checks only the insert, not its attributes.
  std::optional<ReportCode> objection(const CEntInsertBase& ent) const;
  /// The caller checks whether all numbers are `finite`.
  std::optional<ReportCode> objection(const CEntPolyline& ent, bool finite) const;

 private:
  std::optional<ReportCode> objectionUnless(const CEnt& ent, bool finite) const;

  // Only addresses are compared: an insert may refer to a deleted block.
  PointerSet m_blocks;
  bool m_keepsInvisible;
};

}  // namespace vek0::detail
