#pragma once

#include <string_view>

#include "vek0core/geometry/pnt.h"
#include "vek0core/hatch/catalogue.h"

class CEnt;
class CEntAttrib;
class CEntInsertBase;
class CStyle;
class TEXT_3D;

namespace vek0::detail {

/// Receives what an entity is, apart from its properties and its handle, in a fixed order for each
/// kind.
class IShapeSink {
 public:
  virtual ~IShapeSink() = default;
  /// A point, which follows every move.
  virtual void point(const PNT_3D& p) = 0;
  /// A direction, of which the length has no meaning.
  virtual void direction(const PNT_3D& d) = 0;
  /// A length in drawing units.
  virtual void length(double length) = 0;
  /// A number without unit: a scale, a bulge.
  virtual void ratio(double ratio) = 0;
  virtual void angle(double angleRad) = 0;
  /// A flag, a count or a choice.
  virtual void word(long word) = 0;
  virtual void text(std::u16string_view text) = 0;
  virtual void style(const CStyle* style) = 0;
  /// The families of a hatch pattern with its scale and angle.
  virtual void pattern(const HATCH_TYPE& type, double scale, double angleRad) = 0;
  /// The block that an insert shows; nothing for hatches, whose lines follow from the rest.
  virtual void block(const CEntInsertBase& insert) = 0;
  virtual void attrib(const CEntAttrib& attrib) = 0;
};

/// Calls the sink for the entity, beginning with its class. Linear in its points.
void describeShape(const CEnt& ent, IShapeSink& sink);
/// The same for a placed text.
void describeText(const TEXT_3D& text, IShapeSink& sink);

}  // namespace vek0::detail
