#pragma once

#include <cstdint>

#include "vek0core/dxf/out/filedxfowriter.h"
#include "vek0core/tables/enttraits.h"

class CLayer;
class CLtype;

namespace vek0::detail {

class FilePlan;

/// 440 of an entity and 1071 of a layer; `opacity` is one of the values of `ENT_TRAITS`.
long transparencyOf(short opacity);

/// The nearest lineweight that the format has; special values stay.
short nearestLineweight(short weight);

/// Writes the pairs that all entities share.
class PropertyPairs {
 public:
  PropertyPairs(FilePlan& plan, CFileDXFOWriter& out) : m_plan(plan), m_out(out) {}

  /// Layer, linetype, color and traits except the thickness; defaults are omitted.
  void write(const CLayer* layer, const CLtype* ltype, short color, const ENT_TRAITS& traits);
  /// The color number that stands for a true color where the format has none; reported with
  /// `where` if it shows another one.
  short approximated(std::uint32_t trueColor, const zim::Char* where);

 private:
  void writeColor(short color, const ENT_TRAITS& traits);
  void writeTraits(const ENT_TRAITS& traits);

  FilePlan& m_plan;
  CFileDXFOWriter& m_out;
  std::uint32_t m_trueColor = ENT_TRAITS::kNoTrueColor;  // the last one
  short m_nearest = 0;
  bool m_isApproximated = false;
};

}  // namespace vek0::detail
