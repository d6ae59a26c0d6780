#pragma once

#include <functional>
#include <vector>

#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"

namespace vek0::web {

/// The part of the plane inside nested polygons, each divided into convex pieces.
class ClipRegion {
 public:
  /// Narrows the region to a polygon (even-odd rule) until the matching `pop`.
  void push(const PNT_2D* points, std::size_t count);
  void pop() { m_levels.pop_back(); }
  bool isAll() const { return m_levels.empty(); }

  enum class Where { Inside, Outside, Both };
  /// Where a box is; `Both` if that takes a closer look.
  Where where(const RECT_2D& box) const;

  using Corners = std::vector<PNT_2D>;
  /// Calls `each` with the shares of the segment's length that are inside.
  void clip(const PNT_2D& a, const PNT_2D& b,
            const std::function<void(double from, double to)>& each) const;
  /// Calls `each` with the parts of a convex polygon that are inside.
  void clip(const Corners& corners, const std::function<void(const Corners&)>& each) const;
  bool contains(const PNT_2D& at) const;

 private:
  struct Level {
    RECT_2D box;
    std::vector<Corners> pieces;  // counterclockwise
  };

  void clipFrom(std::size_t level, const PNT_2D& a, const PNT_2D& step, double from, double to,
                const std::function<void(double, double)>& each) const;
  void clipFrom(std::size_t level, const Corners& corners,
                const std::function<void(const Corners&)>& each) const;

  std::vector<Level> m_levels;
};

}  // namespace vek0::web
