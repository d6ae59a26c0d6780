// R12 has no hatches. They are written as inserts of their lines, which every reader shows, with
// the data of the hatch as extended data, from which a reader of the same kind restores it. The
// layout of that data is in dxf/hatchdatalayout.h.
#include "dxf/out/hatchdata.h"

#include <algorithm>
#include <vector>

#include "dxf/hatchdatalayout.h"
#include "dxf/out/exactnumbers.h"
#include "dxf/out/savefilter.h"
#include "vek0core/dxf/out/filedxfowriter.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/entline.h"
#include "vek0core/hatch/boundary.h"
#include "vek0core/hatch/catalogue.h"

namespace vek0::detail {
namespace {

using namespace hatchdata;

long shortOf(std::size_t count) {
  return static_cast<long>(std::min<std::size_t>(count, kMostShort));
}

class HatchDataWriter {
 public:
  HatchDataWriter(CFileDXFOWriter& writer, const CEntHatch& hatch, bool flatten, bool exact)
      : m_writer(writer),
        m_hatch(hatch),
        m_flatten(flatten),
        m_exact(exact),
        m_z(flatten ? 0 : hatch.getPnt(0).z),
        m_boundary(boundary()) {}

  void write(vek0::Handle handle) {
    const std::vector<HatchRing> rings = hatchRings(m_boundary);
    writeHead();
    text(kBounds);
    m_writer.write(kShort, shortOf(rings.size() + 1));
    m_writer.write(kShort, 0L);
    text(kSeed);
    point(kPoint, seed());
    text(kRings);
    m_writer.writeHex(kText, handle);
    point(kPoint, {0, 0, m_z});
    point(kDirection, {0, 0, 1});
    m_writer.write(kShort, kEvenOdd);
    m_writer.write(kLong, static_cast<long>(rings.size()));
    for (const HatchRing& ring : rings) writeRing(ring);
    // Readers know the lines of catalogue patterns, but not those of others.
    if (getHatch(m_hatch.getHatchType()) < 0) writePatternLines();
    m_writer.writeEncoded(kBrace, kClose);
  }

 private:
  void text(const char* value) { m_writer.writeEncoded(kText, value); }
  void point(long code, const PNT_3D& pnt) {
    m_writer.write(code, pnt.x);
    m_writer.write(code + 10, pnt.y);
    m_writer.write(code + 20, pnt.z);
  }

  void writeHead() {
    m_writer.writeEncoded(kApplication, kOwner);
    text(kMark);
    m_writer.writeEncoded(kBrace, kOpen);
    m_writer.write(kShort, kVersion);
    m_writer.writeText(kText, zim::WString(m_hatch.getHatchType().name));
    m_writer.write(kReal, m_hatch.getHatchScale());
    m_writer.write(kReal, m_hatch.getHatchRotate());
  }

  // An interior point: the middle of the first line as readers get it, otherwise a vertex.
  PNT_3D seed() const {
    PNT_3D pnt = m_hatch.getPnt(0);
    const CBlock* block = m_hatch.getBlock();
    if (block && block->size() > 0 && (*block)[0]->getType() == CEntLine::kType) {
      const LINE_3D& line = static_cast<const CEntLine&>(*(*block)[0]).getLine();
      pnt.set(middle(line.p1.x, line.p2.x), middle(line.p1.y, line.p2.y), 0);
    }
    pnt.z = m_z;
    return pnt;
  }

  double asRead(double value) const { return m_exact ? value : sixDecimals(value); }
  double middle(double a, double b) const { return (asRead(a) + asRead(b)) / 2; }

  // The boundary as readers get it, without points that coincide after rounding.
  std::vector<PNT_3D> boundary() const {
    if (m_exact && !m_flatten) return m_hatch.getBoundary();
    std::vector<std::vector<PNT_3D>> rings;
    for (const HatchRing& ring : hatchRings(m_hatch.getBoundary())) {
      rings.emplace_back();
      for (std::size_t i = ring.first; i < ring.first + ring.count; ++i) {
        const PNT_3D& p = m_hatch.getBoundary()[i];
        rings.back().emplace_back(asRead(p.x), asRead(p.y), m_flatten ? 0 : asRead(p.z));
      }
    }
    const std::vector<PNT_3D> clean = joinHatchRings(rings);
    return clean.empty() ? m_hatch.getBoundary() : clean;
  }

  void writeRing(const HatchRing& ring) {
    m_writer.write(kShort, kPolylineRing);
    m_writer.write(kReal, m_z);
    m_writer.write(kLong, static_cast<long>(ring.count) - 1);
    for (std::size_t i = ring.first; i < ring.first + ring.count; ++i) {
      const PNT_3D& pnt = m_boundary[i];
      point(kPoint, {pnt.x, pnt.y, m_flatten ? 0 : pnt.z});
    }
  }

  void writePatternLines() {
    const HATCH_TYPE& type = m_hatch.getHatchType();
    text(kPatternLines);
    m_writer.write(kLong, static_cast<long>(type.numLines));
    for (const HATCH_LINE* line = type.lines; line != type.lines + type.numLines; ++line) {
      m_writer.write(kReal, line->angle);
      point(kPoint, {line->x0, line->y0, 0});
      point(kDirection, {line->dx, line->dy, 0});
      m_writer.write(kShort, static_cast<long>(line->numDash));
      for (int i = 0; i < line->numDash; ++i) m_writer.write(kReal, line->dash[i]);
    }
  }

  CFileDXFOWriter& m_writer;
  const CEntHatch& m_hatch;
  bool m_flatten;
  bool m_exact;
  double m_z;
  std::vector<PNT_3D> m_boundary;
};

bool isFiniteLine(const HATCH_LINE& line) {
  return isFinite(line.angle, 0) && isFinite(line.x0, line.y0) && isFinite(line.dx, line.dy) &&
         std::all_of(line.dash, line.dash + line.numDash, [](double d) { return isFinite(d, 0); });
}

}  // namespace

bool hasHatchData(const CEntHatch& hatch) {
  const std::vector<PNT_3D>& boundary = hatch.getBoundary();
  const HATCH_TYPE& type = hatch.getHatchType();
  return boundary.size() >= 3 && isFinite(hatch.getHatchScale(), hatch.getHatchRotate()) &&
         std::all_of(boundary.begin(), boundary.end(),
                     [](const PNT_3D& pnt) { return isFinite(pnt); }) &&
         std::all_of(type.lines, type.lines + type.numLines, isFiniteLine);
}

void writeHatchData(CFileDXFOWriter& writer, const CEntHatch& hatch, vek0::Handle handle,
                    bool flatten, bool exact) {
  HatchDataWriter(writer, hatch, flatten, exact).write(handle);
}

}  // namespace vek0::detail
