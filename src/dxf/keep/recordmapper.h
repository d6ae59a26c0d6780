#pragma once

#include <span>
#include <vector>

#include "dxf/keep/measuredmap.h"
#include "dxf/keep/sourcerecord.h"

namespace vek0::detail {

/// What the value of a pair means, and so how a map changes it.
enum class Role {
  Point,        ///< in world coordinates
  PlanePoint,   ///< in the coordinates of the record's plane
  FlatPoint,    ///< the same without a z coordinate, which is the mapper's `elevation`
  Elevation,    ///< of a plane
  HeightPoint,  ///< a point whose z coordinate is the elevation and whose x and y mean nothing
  Vector,       ///< in world coordinates
  Direction,    ///< the same, of a length that does not change
  PlaneVector,  ///< in the coordinates of the plane
  FlatVector,   ///< the same without a z coordinate
  Length,       ///< in the plane; needs a similar map, as do the next five
  Round,        ///< a bulge, or a ratio of axes: stays as it is
  Angle,        ///< in degrees
  ClockAngle,   ///< in degrees, counted clockwise
  Radians,
  Rise,  ///< length along the normal
};

struct CodeRole {
  long code;
  Role role;
};
using Roles = std::span<const CodeRole>;
/// Codes that pairs follow where they are inserted.
using Anchors = std::span<const long>;

/// Applies a map to the values of one record, each according to its role. The first failure (a
/// number that is not finite, a role that cannot express the map, a damaged point) is remembered;
/// the record is of no use then. Indices stay valid: `commit` inserts what is missing.
class RecordMapper {
 public:
  /// In the plane of the record's own normal (210). Both arguments must outlive the mapper.
  RecordMapper(SourceRecord& record, const MeasuredMap& map);
  /// In a plane that another record determines, or a normal that follows other rules.
  RecordMapper(SourceRecord& record, const MeasuredMap& map, const MeasuredPlane& plane);

  SourceRecord& record() { return m_record; }
  const MeasuredMap& map() const { return m_map; }
  const MeasuredPlane& plane() const { return m_plane; }

  /// The z coordinate of `FlatPoint`.
  double elevation = 0;

  bool isOk() const { return m_isOk; }
  /// Inserts the new pairs in one pass. Returns whether nothing failed.
  bool commit();
  void fail() { m_isOk = false; }
  /// Fails if the condition does not hold.
  void require(bool condition) {
    if (!condition) fail();
  }

  /// The number at the index; fails if it is not finite.
  double real(std::size_t index);
  /// Replaces it unless it is the same; fails if the value is not finite.
  void setReal(std::size_t index, double value);
  /// The point at the index; fails if a coordinate is not finite.
  PNT_3D pointAt(std::size_t index);
  /// Replaces the coordinates that differ. A missing one is inserted if it is not 0. Returns the
  /// index after the point.
  std::size_t setPoint(std::size_t index, const PNT_3D& point);
  /// Multiplies by a factor, which leaves the text as it is if the factor is 1.
  void multiply(std::size_t index, double factor);

  /// Applies the role of the pair at the index, if it has one. Returns the index of the next pair,
  /// which is after the point for points.
  std::size_t apply(std::size_t index, Roles roles);
  std::size_t apply(std::size_t index, Role role);
  /// Applies the roles to all pairs up to an embedded object or extended data.
  void applyAll(Roles roles);

  /// Writes the normal of the plane's image, or another one. If the record has none, it is inserted
  /// after the last of the anchors, unless it is the Z axis.
  void setNormal(Anchors anchors) { setNormal(plane().normal(), plane().keepsNormal(), anchors); }
  void setNormal(const PNT_3D& normal, bool isKept, Anchors anchors);
  /// Turns the angle of that code, in degrees, of a record in which it is missing, which means 0.
  void turnMissing(long code, Anchors anchors);
  /// Turns the direction of that code of a record in which it is missing, which means the X axis.
  void turnMissingDirection(long code, Anchors anchors);
  /// Inserts a pair with this value after the last of the anchors.
  void insertAfter(Anchors anchors, long code, double value);
  /// Applies the roles that codes of extended data have in every record.
  void applyExtended();

  /// The normal of a record; the Z axis if it has none.
  static PNT_3D normalOf(const SourceRecord& record);

 private:
  std::size_t setFlat(std::size_t index, const PNT_3D& point);
  std::size_t applyToPoint(std::size_t index, Role role);
  void applyToNumber(std::size_t index, Role role);
  void insert(std::size_t index, long code, double value);
  void insertPoint(Anchors anchors, long code, const PNT_3D& point);
  std::size_t afterAnchors(Anchors anchors) const;

  struct Insertion {
    std::size_t index;
    SourcePair pair;
  };

  SourceRecord& m_record;
  const MeasuredMap& m_map;
  MeasuredPlane m_plane;
  std::vector<Insertion> m_insertions;
  bool m_isOk = true;
};

}  // namespace vek0::detail
