// A record states the lines of its pattern as drawn: scaled, rotated, and with offsets in world
// directions.
#include "dxf/out/modern/hatchrecord.h"

#include <cmath>

#include "dxf/out/exactnumbers.h"
#include "dxf/out/modern/fixedpairs.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/hatch/boundary.h"
#include "vek0core/hatch/hatchtypetable.h"

namespace vek0::detail {
namespace {

// Bits of code 92.
constexpr long kExternalRing = 1, kRingOfPoints = 2;
// Code 76.
constexpr long kPredefinedPattern = 1, kCustomPattern = 2;

void writeRings(CFileDXFOWriter& out, const CEntHatch& hatch) {
  const std::vector<PNT_3D>& boundary = hatch.getBoundary();
  const std::vector<HatchRing> rings = hatchRings(boundary);
  out.write(91, static_cast<long>(rings.size()));
  for (const HatchRing& ring : rings) {
    out.write(92, kExternalRing | kRingOfPoints);
    out.write(72, 0L);  // without bulges
    out.write(73, 1L);  // closed
    out.write(93, static_cast<long>(ring.count));
    for (std::size_t i = ring.first; i < ring.first + ring.count; ++i)
      writePoint(out, 10, boundary[i].x, boundary[i].y);
    out.write(97, 0L);  // no source entities
  }
}

void writeFamily(CFileDXFOWriter& out, const HATCH_LINE& line, double scale, double rotateRad) {
  const double angle = line.angle + rotateRad;
  const double c = std::cos(rotateRad), s = std::sin(rotateRad);
  const double along = std::cos(angle), across = std::sin(angle);
  out.write(53, exactDegrees(angle));
  out.write(43, (line.x0 * c - line.y0 * s) * scale);
  out.write(44, (line.x0 * s + line.y0 * c) * scale);
  out.write(45, (line.dx * along - line.dy * across) * scale);
  out.write(46, (line.dx * across + line.dy * along) * scale);
  out.write(79, static_cast<long>(line.numDash));
  for (int i = 0; i < line.numDash; ++i) out.write(49, line.dash[i] * scale);
}

void writePattern(CFileDXFOWriter& out, const CEntHatch& hatch) {
  const HATCH_TYPE& type = hatch.getHatchType();
  out.write(52, exactDegrees(hatch.getHatchRotate()));
  out.write(41, hatch.getHatchScale());
  out.write(77, 0L);  // not crossed
  out.write(78, static_cast<long>(type.numLines));
  for (const HATCH_LINE* line = type.lines; line != type.lines + type.numLines; ++line)
    writeFamily(out, *line, hatch.getHatchScale(), hatch.getHatchRotate());
}

}  // namespace

void writeHatch(CFileDXFOWriter& out, const CEntHatch& hatch) {
  const HATCH_TYPE& type = hatch.getHatchType();
  const bool isFilled = isSolid(type);
  const bool isPredefined = isFilled || getHatch(type) >= 0;
  writePoint(out, 10, 0, 0, hatch.getPnt(0).z);
  writePoint(out, 210, 0, 0, 1);
  out.writeText(2, type.name);
  out.write(70, isFilled);
  out.write(71, 0L);  // not associative
  writeRings(out, hatch);
  out.write(75, 0L);  // alternating areas
  out.write(76, isPredefined ? kPredefinedPattern : kCustomPattern);
  if (!isFilled) writePattern(out, hatch);
  out.write(98, 0L);  // no seeds
}

}  // namespace vek0::detail
