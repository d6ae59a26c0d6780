#pragma once

#include "vek0core/drawing/pointerset.h"
#include "vek0core/geometry/pnt.h"

class CBlock;
class CData;
class CEnt3DFace;
class CEntArc;
class CEntCircle;
class CEntInsertBase;
class CEntLine;
class CEntPnt;
class CEntText;

namespace vek0::detail {

/// Whether both are finite. Multiplying by 0 tests this without a branch: non-finite values become
/// NaN.
inline bool isFinite(double a, double b) { return a * 0 + b * 0 == 0; }
inline bool isFinite(const PNT_3D& p) { return p.x * 0 + p.y * 0 + p.z * 0 == 0; }

/// Determines which entities can be written.
class SaveFilter {
 public:
  /// Examines the blocks of the drawing once.
  explicit SaveFilter(const CData& data);

  /// Null if the entity can be written; otherwise the report code of the reason.
  const char* objection(const CEntPnt& ent) const;
  const char* objection(const CEntLine& ent) const;
  const char* objection(const CEntCircle& ent) const;
  const char* objection(const CEntArc& ent) const;
  const char* objection(const CEnt3DFace& ent) const;
  /// Also for attribute definitions and attributes.
  const char* objection(const CEntText& ent) const;
  /// Checks only the insert, not its attributes.
  const char* objection(const CEntInsertBase& ent) const;

 private:
  // Only addresses are compared: an insert may refer to a deleted block.
  PointerSet m_blocks;
};

inline constexpr const char* kNotFinite = "entity not finite";

}  // namespace vek0::detail
