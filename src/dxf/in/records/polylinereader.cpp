// Reads POLYLINE with its VERTEX records, and LWPOLYLINE. One record type serves five kinds of
// objects: plain polylines, curves (with their controls and the points computed from them), meshes,
// polyfaces and polylines in space. The vertices are collected first, and the flags determine the
// result.
#include "dxf/in/records/polylinereader.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "dxf/in/convert/planeplacement.h"
#include "tables/handover.h"
#include "vek0core/entities/ent3dface.h"

namespace vek0::detail {
namespace {

// Code 70 of POLYLINE and of LWPOLYLINE.
constexpr long kClosed = 1, kFitted = 2, kSplined = 4, k3D = 8, kMesh = 16, kClosedN = 32,
               kPolyface = 64, kLtGen = 128;
// Code 70 of VERTEX.
constexpr long kFromFit = 1, kFromSpline = 8, kControl = 16, kMeshVertex = 64, kFaceRecord = 128;
// Code 75 of POLYLINE.
constexpr long kNoSurface = 0, kQuadratic = 5, kCubic = 6, kBezier = 8;

constexpr double kUnset = -1;  // a width not stated by the record: that of the polyline

// Position of an unreadable vertex.
constexpr double kNowhere = std::numeric_limits<double>::quiet_NaN();

bool isSomewhere(const PNT_3D& p) { return !std::isnan(p.x); }

long hiddenEdge(const long (&corner)[4]) {
  long hidden = 0;
  // A negative vertex number marks a hidden edge.
  for (int i = 0; i < 4; ++i)
    if (corner[i] < 0) hidden |= 1L << i;
  return hidden;
}

}  // namespace

EntPtr PolylineReader::readPolyline() {
  short type = 0, degree = 0;
  if (!readHead() || !curve(type, degree) || !readVertexes()) return nullptr;
  placeInWorld();
  if ((m_head.flags & kMesh) != 0) return buildMesh();
  if ((m_head.flags & kPolyface) != 0) return buildPolyface();
  return type == 0 ? buildPlain() : buildCurve(type, degree);
}

// Only vertices of planar polylines are in the coordinates of a plane.
void PolylineReader::placeInWorld() {
  const bool isPlane = (m_head.flags & (k3D | kMesh | kPolyface)) == 0;
  const PlaneAxes axes(m_in.frame().normal);
  if (!isPlane || axes.isWorld()) return;
  const std::size_t count = m_vertexes.size();
  vek0::detail::placeInWorld(m_in, m_vertexes, axes, (m_head.flags & kClosed) != 0);
  if (m_vertexes.size() == count) return;
  // Only fitted curves have arcs and relevant flags. The arcs become chords, along which the
  // pattern continues.
  m_flags.assign(m_vertexes.size(), 0);
  m_head.flags |= kLtGen;
}

bool PolylineReader::readHead() {
  static constexpr RecordKind kind({30, 66, 70, 71, 72, 73, 74, 75}, {8, 66}, {40, 41});
  constexpr long missingParam = 5;
  if (!m_in.read(kind, {40, 41}, missingParam, [&](long code) { m_in.takeWidth(code); }))
    return false;
  const Record& r = m_in.record();
  m_head = {r,          r.integer(70), r.integer(75), r.real(30),    r.real(40),
            r.real(41), r.integer(71), r.integer(72), r.integer(73), r.integer(74)};
  return true;
}

// Curve and degree in the drawing's terms; false, with error 15, for an undefined surface type.
bool PolylineReader::curve(short& type, short& degree) const {
  const long surface = m_head.surface;
  if (surface != kNoSurface && surface != kQuadratic && surface != kCubic && surface != kBezier) {
    if (!m_in.isTolerant()) {
      m_in.fail(CFileDXFIError::OutOfRange);
      return false;
    }
    m_in.note(ReportCode::NumberReplaced, u"75");
  }
  if ((m_head.flags & kSplined) != 0) {
    type = surface == kBezier ? CEntPolyline::kBezier : CEntPolyline::kSpline;
    degree = surface == kQuadratic ? 2 : 3;
  } else if ((m_head.flags & kFitted) != 0) {
    type = CEntPolyline::kFit;
  }
  return true;
}

bool PolylineReader::readVertexes() {
  m_vertexes.clear();
  m_flags.clear();
  m_faces.clear();
  while (!m_in.lexer().isKeyword("SEQEND")) {
    if (!m_in.lexer().isKeyword("VERTEX")) {
      if (m_in.isTolerant()) {
        // Files that were cut or merged may lack the end of the sequence; the vertices read are
        // valid.
        m_in.note(ReportCode::SequenceCut, u"POLYLINE");
        return true;
      }
      m_in.fail(CFileDXFIError::WrongStructure);
      return false;
    }
    if (!readVertex() && !spareVertex()) return false;
  }
  m_in.skip();
  return !m_in.failed();
}

// The faces of meshes refer to vertices by number: there, a skipped vertex keeps its number.
bool PolylineReader::spareVertex() {
  if (!m_in.recover(u"VERTEX")) return false;
  if ((m_head.flags & (kMesh | kPolyface)) == 0) return true;
  // A placeholder, recognized by `isSomewhere`.
  m_vertexes.push_back({kNowhere, kNowhere, kNowhere, 0, 0, 0, 0});
  m_flags.push_back(0);
  return true;
}

bool PolylineReader::readVertex() {
  static constexpr RecordKind kind({10, 20, 30, 42, 70, 71, 72, 73, 74}, {8, 10, 20}, {40, 41});
  if (!m_in.read(kind, {40, 41}, 2, [&](long code) { m_in.takeWidth(code); })) return false;
  // Vertices of polyfaces have both bits, face records only one.
  if ((m_in.record().integer(70) & (kFaceRecord | kMeshVertex)) == kFaceRecord)
    keepFace();
  else
    keepVertex();
  return true;
}

void PolylineReader::keepFace() {
  const Record& r = m_in.record();
  Face& face = m_faces.emplace_back();
  for (long i = 0; i < 4; ++i) face.corner[i] = r.integer(71 + i);
  face.properties = r.withHandle(0);
  // A face may state other traits than the polyface.
  const ENT_TRAITS& whole = m_head.properties.traits;
  ENT_TRAITS& traits = face.properties.traits;
  traits.isVisible = traits.isVisible && whole.isVisible;
  if (traits.lineweight == ENT_TRAITS::kWeightByLayer) traits.lineweight = whole.lineweight;
  if (traits.opacity == ENT_TRAITS::kOpacityByLayer) traits.opacity = whole.opacity;
}

void PolylineReader::keepVertex() {
  const Record& r = m_in.record();
  m_vertexes.push_back({r.real(10), r.real(20), r.real(30, m_head.z), r.real(40, m_head.widthStart),
                        r.real(41, m_head.widthEnd), r.real(42), r.handle});
  m_flags.push_back(r.integer(70));
}

std::unique_ptr<CEntPolyline> PolylineReader::create(short flags, short degree) const {
  return m_in.make().polyline(m_head.properties, flags, degree);
}

EntPtr PolylineReader::buildPlain() {
  auto polyline = create(static_cast<short>(m_head.flags & (kClosed | kLtGen)), 0);
  if (polyline)
    polyline->setBulgedVertexes(m_in.gestor(), m_in.factory(), m_vertexes.data(),
                                m_vertexes.size());
  return polyline;
}

// A splined polyline stores its frame beside the curve; a fitted one passes through its controls,
// and only the inserted vertices are marked.
void PolylineReader::splitCurve(short type, std::vector<BULGED_VERTEX>& controls,
                                std::vector<BULGED_VERTEX>& fitted) const {
  const bool isFit = type == CEntPolyline::kFit;
  const long generated = isFit ? kFromFit : kFromSpline;
  const bool framed = std::any_of(m_flags.begin(), m_flags.end(),
                                  [](long flags) { return (flags & kControl) != 0; });
  bool anyGenerated = framed;
  for (std::size_t i = 0; i < m_vertexes.size(); ++i) {
    const bool isGenerated =
        (m_flags[i] & (framed ? kControl : generated)) == (framed ? 0 : generated);
    anyGenerated = anyGenerated || isGenerated;
    if (!isGenerated) controls.push_back(m_vertexes[i]);
    if (isGenerated || (isFit && !framed)) fitted.push_back(m_vertexes[i]);
  }
  // Without generated vertices there is no curve in the file, and it is computed.
  if (!anyGenerated) fitted.clear();
}

EntPtr PolylineReader::buildCurve(short type, short degree) {
  std::vector<BULGED_VERTEX> controls, fitted;
  splitCurve(type, controls, fitted);
  // A curve needs controls; its points alone make a plain polyline.
  if (controls.size() < 2) {
    m_in.note(ReportCode::CurveWithoutFrame);
    return buildPlain();
  }
  auto polyline = create(static_cast<short>((m_head.flags & (kClosed | kLtGen)) | type), degree);
  if (!polyline) return nullptr;
  for (const BULGED_VERTEX& v : controls) {
    auto vertex = m_in.make().owned(m_in.factory().createVertex(
        m_in.gestor(), PNT_3D(v.x, v.y, v.z), v.widthStart, v.widthEnd, v.handle));
    if (!vertex) return nullptr;
    handOver(std::move(vertex), [&](CVertex& made) { polyline->addVertex(made); });
  }
  if (fitted.empty())
    polyline->regen(m_in.gestor(), m_in.factory(), false);
  else
    addFitted(*polyline, fitted);
  return polyline;
}

// The file's curve is kept unchanged, because ours would differ.
void PolylineReader::addFitted(CEntPolyline& polyline, const std::vector<BULGED_VERTEX>& fitted) {
  BulgedChain chain(polyline.isClosed());
  chain.assign(fitted.data(), fitted.size());
  // The chords of fitted arcs count towards a limit per file.
  if (chain.size() - fitted.size() > m_fittedLeft) {
    m_in.note(ReportCode::ArcsStraightened);
    std::vector<BULGED_VERTEX> straight(fitted);
    for (BULGED_VERTEX& vertex : straight) vertex.bulge = 0;
    chain.assign(straight.data(), straight.size());
  }
  m_fittedLeft -= chain.size() - fitted.size();
  chain.forEach([&](const ChainVertex& v) {
    auto vertex = m_in.make().owned(
        m_in.factory().createVertex(m_in.gestor(), v.pnt, v.widthStart, v.widthEnd, v.handle));
    if (!vertex) return;
    handOver(std::move(vertex), [&](CVertex& made) { polyline.addVisibleVertex(made); });
  });
  polyline.calcBdry();
}

PNT_3D PolylineReader::at(std::size_t i) const {
  const BULGED_VERTEX& v = m_vertexes[i];
  return PNT_3D(v.x, v.y, v.z);
}

// The vertices are listed row by row, n per row. A smoothed mesh also contains its control mesh,
// which is shown only if there is nothing else.
EntPtr PolylineReader::buildMesh() {
  const bool smoothed = std::any_of(m_flags.begin(), m_flags.end(),
                                    [](long flags) { return (flags & kFromSpline) != 0; });
  std::vector<PNT_3D> points;
  for (std::size_t i = 0; i < m_vertexes.size(); ++i)
    if (!smoothed || (m_flags[i] & kControl) == 0) points.push_back(at(i));
  const long wantedM = smoothed ? m_head.fitM : m_head.m, n = smoothed ? m_head.fitN : m_head.n;
  // Too few points for a single row, or no row length at all.
  if (n < 2 || static_cast<std::size_t>(n) > points.size()) return firstFace();
  const auto columns = static_cast<std::size_t>(n), rows = points.size() / columns;
  if (wantedM < 0 || static_cast<std::size_t>(wantedM) != rows || points.size() % columns != 0)
    m_in.note(ReportCode::MeshIncomplete);
  const std::size_t lastRow = (m_head.flags & kClosed) != 0 ? rows : rows - 1;
  const std::size_t lastColumn = (m_head.flags & kClosedN) != 0 ? columns : columns - 1;
  const EntProperties properties = m_head.properties.withHandle(0);
  for (std::size_t i = 0; i < lastRow; ++i) {
    // Closed meshes wrap around in either direction.
    const std::size_t row = i * columns, next = (i + 1) % rows * columns;
    for (std::size_t j = 0; j < lastColumn; ++j) {
      const std::size_t right = (j + 1) % columns;
      addFace(properties,
              {points[row + j], points[row + right], points[next + right], points[next + j]}, 0);
    }
  }
  return firstFace();
}

EntPtr PolylineReader::buildPolyface() {
  for (const Face& face : m_faces) addPolyfaceFace(face);
  return firstFace();
}

// Two corners are an edge, three a triangle; missing corners repeat the last one.
void PolylineReader::addPolyfaceFace(const Face& face) {
  PNT_3D corners[4];
  for (int i = 0; i < 4; ++i) {
    const auto corner = static_cast<std::size_t>(face.corner[i]);
    // Negated as unsigned: the smallest long has no positive counterpart.
    const std::size_t index = face.corner[i] < 0 ? 0 - corner : corner;
    if (index == 0 && i >= 2) {
      corners[i] = corners[i - 1];
    } else if (index == 0 || index > m_vertexes.size()) {
      m_in.note(ReportCode::MeshIncomplete);
      return;
    } else {
      corners[i] = at(index - 1);
    }
  }
  addFace(face.properties, corners, hiddenEdge(face.corner));
}

void PolylineReader::addFace(const EntProperties& properties, const PNT_3D (&corners)[4],
                             long hiddenEdges) {
  if (!std::all_of(std::begin(corners), std::end(corners), isSomewhere))
    return m_in.note(ReportCode::MeshIncomplete);
  if (EntPtr face =
          m_in.make().face(properties, corners[0], corners[1], corners[2], corners[3], hiddenEdges))
    m_built.push_back(std::move(face));
}

// Returns the first face as this record's entity and makes the rest its further ones, in order.
EntPtr PolylineReader::firstFace() {
  std::vector<EntPtr> faces = std::move(m_built);
  m_built.clear();
  if (m_in.failed()) return nullptr;
  m_in.note(faces.empty() ? ReportCode::MeshIncomplete : ReportCode::MeshAsFaces);
  if (faces.empty()) return nullptr;
  for (std::size_t i = 1; i < faces.size(); ++i) m_in.further.push_back(std::move(faces[i]));
  return std::move(faces.front());
}

EntPtr PolylineReader::readLwPolyline() {
  static constexpr RecordKind kind({38, 43, 70, 90}, {8}, {40, 41, 43});
  m_vertexes.clear();
  const auto takeOwn = [&](long code) {
    if (code == 43) return m_in.takeWidth(code);
    takeLwVertexPair(code);
  };
  if (!m_in.read(kind, {10, 20, 40, 41, 42, 43}, 2, takeOwn) || !finishLwPolyline()) return nullptr;
  placeInWorld();
  return buildPlain();
}

// An invalid width is replaced by that of the polyline.
void PolylineReader::takeWidth(double& width) const {
  const double value = m_in.width();
  if (!m_in.failed()) width = value;
}

// Code 10 starts a vertex; the following codes up to the next 10 belong to it.
void PolylineReader::takeLwVertexPair(long code) {
  if (code == 10) {
    m_vertexes.push_back({m_in.lexer().getDouble(), 0, 0, kUnset, kUnset, 0, 0});
    return;
  }
  if (m_vertexes.empty()) {
    // Codes before the first vertex belong to nothing.
    if (!m_in.isTolerant()) m_in.fail(CFileDXFIError::InconsistentRecord);
    return;
  }
  BULGED_VERTEX& vertex = m_vertexes.back();
  switch (code) {
    case 20:
      vertex.y = m_in.lexer().getDouble();
      break;
    case 40:
      takeWidth(vertex.widthStart);
      break;
    case 41:
      takeWidth(vertex.widthEnd);
      break;
    default:
      vertex.bulge = m_in.lexer().getDouble();
  }
}

// The count, the common width and the common height may precede or follow the vertices.
bool PolylineReader::finishLwPolyline() {
  const Record& r = m_in.record();
  const long count = r.integer(90, static_cast<long>(m_vertexes.size()));
  if (count < 0 || static_cast<std::size_t>(count) != m_vertexes.size()) {
    if (!m_in.isTolerant()) {
      m_in.fail(CFileDXFIError::InconsistentRecord);
      return false;
    }
    m_in.note(ReportCode::NumberReplaced, u"90");
  }
  m_head = {r, r.integer(70), 0, 0, 0, 0, 0, 0, 0, 0};
  const double z = r.real(38), width = r.real(43);
  for (BULGED_VERTEX& vertex : m_vertexes) {
    vertex.z = z;
    if (vertex.widthStart == kUnset) vertex.widthStart = width;
    if (vertex.widthEnd == kUnset) vertex.widthEnd = width;
  }
  return true;
}

}  // namespace vek0::detail
