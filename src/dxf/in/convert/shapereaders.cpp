// Reads kinds that become polylines or faces: SOLID and TRACE, multilines, subdivision meshes. They
// share the limits and the reporting of the other approximated kinds (replacement.h).
#include "dxf/in/convert/shapereaders.h"

#include <cstddef>
#include <vector>

#include "dxf/in/convert/replacement.h"
#include "dxf/in/coordinate.h"
#include "dxf/ocs.h"
#include "vek0core/entities/entpolyline.h"

namespace vek0::detail {
namespace {

constexpr long kMlineClosed = 2;  // code 71 of MLINE

using Chain = std::vector<PNT_3D>;

/// One of the parallel lines of a multiline.
class ParallelLine {
 public:
  void addCorner(const PNT_3D& at, const PNT_3D& along) { m_corners.push_back({at, along, {}}); }
  void addCut(double distance) { m_corners.back().cuts.push_back(distance); }

  /// The visible pieces. A closed line without gaps is one piece whose last point equals its first.
  std::vector<Chain> pieces(bool closed) const {
    std::vector<Chain> chains(1);
    const std::size_t count = m_corners.size();
    for (std::size_t i = 0; i + (closed ? 0 : 1) < count; ++i) {
      addSegment(m_corners[i], chains);
      // An odd number of cuts ends with a beginning, so the line continues to the next corner.
      if (m_corners[i].cuts.size() % 2 == 1 || m_corners[i].cuts.empty())
        chains.back().push_back(m_corners[(i + 1) % count].at);
      else
        chains.emplace_back();
    }
    return chains;
  }

 private:
  // Cuts are distances from the corner toward the next one, at which the line alternately begins
  // and ends. It begins at the corner itself if the first is 0 or missing, and continues to the
  // next corner if the last is a beginning.
  struct Corner {
    PNT_3D at, along;
    std::vector<double> cuts;
  };

  static void addSegment(const Corner& corner, std::vector<Chain>& chains) {
    if (corner.cuts.empty() && chains.back().empty()) chains.back().push_back(corner.at);
    for (std::size_t i = 0; i < corner.cuts.size(); ++i) {
      const double cut = corner.cuts[i];
      const bool begins = i % 2 == 0;
      // The line already passes through the corner without a gap.
      if (begins && i == 0 && cut == 0 && !chains.back().empty()) continue;
      if (begins && !chains.back().empty()) chains.emplace_back();
      chains.back().emplace_back(corner.at.x + cut * corner.along.x,
                                 corner.at.y + cut * corner.along.y,
                                 corner.at.z + cut * corner.along.z);
    }
  }

  std::vector<Corner> m_corners;
};

/// The lines of a multiline. Each vertex lists its position, the direction to the next vertex, that
/// of its miter and then, line by line, distances: the first, along the miter, leads to the line's
/// corner, the others are its cuts.
class Multiline {
 public:
  explicit Multiline(RecordReader& in) : m_in(in) {}

  void take(long code) {
    if (code == 74) return startLine();
    const double value = m_in.lexer().getDouble();
    if (code == 41) return takeDistance(value);
    if (code == 11) startVertex();
    coordinate(m_vectors[code % 10 - 1], code / 10 - 1) = value;
  }

  const std::vector<ParallelLine>& lines() const { return m_lines; }

 private:
  void startVertex() {
    for (PNT_3D& vector : m_vectors) vector.set(0, 0, 0);
    m_next = 0;
  }
  void startLine() {
    if (m_next == m_lines.size()) m_lines.emplace_back();
    ++m_next;
    m_hasCorner = false;
  }
  void takeDistance(double distance) {
    // A distance before the first line belongs to nothing.
    if (m_next == 0) return m_in.fail(CFileDXFIError::InconsistentRecord);
    ParallelLine& line = m_lines[m_next - 1];
    if (m_hasCorner) return line.addCut(distance);
    const PNT_3D &vertex = m_vectors[0], &mitre = m_vectors[2];
    line.addCorner(PNT_3D(vertex.x + distance * mitre.x, vertex.y + distance * mitre.y,
                          vertex.z + distance * mitre.z),
                   m_vectors[1]);
    m_hasCorner = true;
  }

  RecordReader& m_in;
  std::vector<ParallelLine> m_lines;
  // Place, direction and miter: codes 11, 12 and 13.
  PNT_3D m_vectors[3] = {PNT_3D(0, 0, 0), PNT_3D(0, 0, 0), PNT_3D(0, 0, 0)};
  std::size_t m_next = 0;  // line whose distances come next
  bool m_hasCorner = false;
};

/// The faces of a mesh, as polygons of any number of corners.
class Faces {
 public:
  explicit Faces(RecordReader& in) : m_in(in) {}

  // Code 90 counts something else once the list of faces is over.
  void take(long code) {
    if (code == 93)
      m_inFaces = true;
    else if (code >= 94)
      m_inFaces = false;
    else if (code < 90)
      takeCoordinate(m_in, code / 10 - 1, m_vertexes);
    else if (m_inFaces)
      m_list.push_back(m_in.lexer().getInt());
  }

  // For each face, the list contains the number of its corners and then the corners.
  std::vector<EntPtr> build() {
    for (std::size_t i = 0; i < m_list.size();) {
      const long corners = m_list[i++];
      // A count beyond the list means that the file is damaged.
      if (corners < 0 || static_cast<std::size_t>(corners) > m_list.size() - i) {
        m_in.note(ReportCode::MeshIncomplete);
        break;
      }
      addPolygon(m_list.data() + i, static_cast<std::size_t>(corners));
      i += static_cast<std::size_t>(corners);
    }
    return std::move(m_built);
  }

 private:
  bool isComplete(const long* corners, std::size_t count) const {
    for (std::size_t i = 0; i < count; ++i)
      // Checked before any face is built, so that a polygon is complete or missing.
      if (corners[i] < 0 || static_cast<std::size_t>(corners[i]) >= m_vertexes.size()) return false;
    return count >= 3;
  }
  const PNT_3D& at(long corner) const { return m_vertexes[static_cast<std::size_t>(corner)]; }

  // More than four corners become a fan with hidden inner edges.
  void addPolygon(const long* corners, std::size_t count) {
    if (!isComplete(corners, count)) return m_in.note(ReportCode::MeshIncomplete);
    if (count == 4)
      return addFace({at(corners[0]), at(corners[1]), at(corners[2]), at(corners[3])}, 0);
    for (std::size_t i = 1; i + 1 < count && !m_in.failed(); ++i) {
      // Edges between the triangles of the fan are hidden: the first one unless it is the first
      // triangle's, the last one unless it is the last triangle's.
      const long hidden = (i > 1 ? 1 : 0) | (i + 2 < count ? 8 : 0);
      const PNT_3D& last = at(corners[i + 1]);
      addFace({at(corners[0]), at(corners[i]), last, last}, hidden);
    }
  }
  void addFace(const PNT_3D (&corners)[4], long hiddenEdges) {
    if (EntPtr face = buildFace(m_in, corners, hiddenEdges, 0)) m_built.push_back(std::move(face));
  }

  RecordReader& m_in;
  std::vector<PNT_3D> m_vertexes;
  std::vector<long> m_list;
  std::vector<EntPtr> m_built;
  bool m_inFaces = false;
};

}  // namespace

// The third and fourth corner are swapped: the file lists two opposite edges.
EntPtr readSolid(RecordReader& in) {
  static constexpr RecordKind kind({10, 20, 30, 11, 21, 31, 12, 22, 32, 13, 23, 33},
                                   {8, 10, 20, 11, 21, 12, 22});
  const FaceFill fill = in.lexer().isKeyword("TRACE") ? FaceFill::Trace : FaceFill::Solid;
  if (!in.read(kind)) return nullptr;
  const Record& r = in.record();
  const PlaneAxes plane(r.extrusion);
  const PNT_3D third = plane.toWorld(r.point(2));
  const PNT_3D fourth = r.seen.has(13) ? plane.toWorld(r.point(3)) : third;
  return buildFace(in, {plane.toWorld(r.point(0)), plane.toWorld(r.point(1)), fourth, third}, 0,
                   r.handle, fill);
}

EntPtr readMultiline(RecordReader& in) {
  static constexpr RecordKind kind({71}, {8});
  Multiline multiline(in);
  const auto takeOwn = [&](long code) { multiline.take(code); };
  if (!in.read(kind, {11, 21, 31, 12, 22, 32, 13, 23, 33, 41, 74}, 2, takeOwn)) return nullptr;
  const bool closed = (in.record().integer(71) & kMlineClosed) != 0;
  std::vector<EntPtr> built;
  for (const ParallelLine& line : multiline.lines()) {
    for (Chain& chain : line.pieces(closed)) {
      if (chain.size() < 2) continue;
      const bool isRing = closed && chain.size() > 2 && chain.front() == chain.back();
      if (isRing) chain.pop_back();
      const vek0::Handle handle = built.empty() ? in.record().handle : 0;
      if (EntPtr polyline =
              buildChain(in, chain, isRing ? CEntPolyline::kClosed : short{0}, handle))
        built.push_back(std::move(polyline));
    }
  }
  return handOver(in, std::move(built), u"MLINE");
}

EntPtr readSubdivisionMesh(RecordReader& in) {
  static constexpr RecordKind kind({}, {8});
  Faces faces(in);
  const auto takeOwn = [&](long code) { faces.take(code); };
  if (!in.read(kind, {10, 20, 30, 90, 93, 94, 95}, 2, takeOwn)) return nullptr;
  return handOver(in, faces.build(), u"MESH");
}

}  // namespace vek0::detail
