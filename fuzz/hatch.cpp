// Fills any boundary with any pattern and checks the output: it must be finite, within the limit,
// and inside the extents of the boundary.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "input.h"
#include "vek0core/hatch/boundary.h"
#include "vek0core/hatch/fill.h"
#include "vek0core/hatch/triangulate.h"

using vek0::fuzz::Input;
using vek0::fuzz::require;

namespace {

constexpr std::size_t kLimit = 2000;

// The extents in the plane, with room for rounding.
struct Extents {
  explicit Extents(const std::vector<PNT_3D>& boundary) {
    for (const PNT_3D& p : boundary) {
      left = std::min(left, p.x);
      right = std::max(right, p.x);
      bottom = std::min(bottom, p.y);
      top = std::max(top, p.y);
    }
    room = 1e-12 * std::max({-left, right, -bottom, top});
  }
  void requireInside(const PNT_3D& p) const {
    require(left - room <= p.x && p.x <= right + room);
    require(bottom - room <= p.y && p.y <= top + room);
    require(std::isfinite(p.z));
  }
  double left = HUGE_VAL, right = -HUGE_VAL, bottom = HUGE_VAL, top = -HUGE_VAL, room = 0;
};

class Checker : public IHatchSink {
 public:
  explicit Checker(const Extents& extents) : m_extents(extents) {}
  void line(const PNT_3D& from, const PNT_3D& to) override {
    require(from != to);
    dot(from);
    m_extents.requireInside(to);
  }
  void dot(const PNT_3D& at) override {
    m_extents.requireInside(at);
    ++m_count;
  }
  std::size_t count() const { return m_count; }

 private:
  const Extents& m_extents;
  std::size_t m_count = 0;
};

HATCH_LINE takeLine(Input& input) {
  HATCH_LINE line = {};
  for (double* field : {&line.angle, &line.x0, &line.y0, &line.dx, &line.dy}) {
    *field = input.number();
  }
  line.numDash = input.byte() % 8;
  for (double& dash : line.dash) dash = input.number();
  return line;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  std::vector<HATCH_LINE> lines;
  for (int n = input.byte() % 3; n > 0; --n) lines.push_back(takeLine(input));
  const HATCH_TYPE type = {u"FUZZ", u"", lines.data(), static_cast<std::int32_t>(lines.size())};
  const double scale = input.number(), rotate = input.number();
  std::vector<PNT_3D> boundary;
  while (!input.isEmpty()) {
    const double x = input.number(), y = input.number();
    boundary.emplace_back(x, y, 0);
  }
  _hatch_compactVertex(boundary, boundary);
  const Extents extents(boundary);

  const HatchEstimate estimate = estimateHatch(type, scale, rotate, boundary);
  Checker checker(extents);
  const HatchStatus status = fillHatch(type, scale, rotate, boundary, kLimit, checker);
  require((status == HatchStatus::Done) ==
          (estimate.status == HatchStatus::Done && estimate.pieces <= kLimit));
  // One line and one period more than the estimate on each side, with six dashes.
  require(status == HatchStatus::Done ? checker.count() <= 100 * (kLimit + 10) + 100 * size
                                      : checker.count() == 0);

  std::vector<HatchFace> faces;
  const HatchStatus solid = fillSolid(boundary, kLimit, faces);
  require(solid == HatchStatus::Done ? faces.size() <= kLimit : faces.empty());
  for (const HatchFace& face : faces) {
    for (const PNT_3D& p : face.p) extents.requireInside(p);
  }
  return 0;
}
