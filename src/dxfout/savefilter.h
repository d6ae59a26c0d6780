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

/// Whether both are numbers. Multiplying by 0 tells them apart without a branch:
/// what is not finite becomes NaN.
inline bool isFinite(double a, double b) { return a * 0 + b * 0 == 0; }
inline bool isFinite(const PNT_3D& p) { return p.x * 0 + p.y * 0 + p.z * 0 == 0; }

/// Which entities a file can hold.
class SaveFilter {
 public:
  /// Looks at the blocks of the drawing once.
  explicit SaveFilter(const CData& data);

  /// Null when the entity can be written; otherwise why not, as reports put it.
  const char* objection(const CEntPnt& ent) const;
  const char* objection(const CEntLine& ent) const;
  const char* objection(const CEntCircle& ent) const;
  const char* objection(const CEntArc& ent) const;
  const char* objection(const CEnt3DFace& ent) const;
  /// For attribute definitions and attributes as well.
  const char* objection(const CEntText& ent) const;
  /// Looks at the insert alone, not at its attributes.
  const char* objection(const CEntInsertBase& ent) const;

 private:
  // By address alone: an insert may name a block that is gone.
  PointerSet m_blocks;
};

inline constexpr const char* kNotFinite = "entity not finite";

}  // namespace vek0::detail
