// A clipped insert names a dictionary, which leads to a second dictionary and from there to a
// filter, all in the OBJECTS section and in any order. So inserts get a clip that is still empty,
// objects are collected, and the clips are filled at the end of the file (`settle`).
#include "dxf/in/records/clipreader.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "files/number.h"

namespace vek0::detail {
namespace {

constexpr std::size_t kMostPoints = 10'000'000;  // of all boundaries: inserts may share one
constexpr double kUpright = 1e-6;  // maximum slant of the sides of a boundary, per unit of height

// Affine transformation: three rows of factors for x, y, z and 1.
struct Matrix {
  double m[3][4];

  PNT_3D apply(double x, double y, double z) const {
    const auto row = [&](const double(&r)[4]) { return r[0] * x + r[1] * y + r[2] * z + r[3]; };
    return {row(m[0]), row(m[1]), row(m[2])};
  }
};

PNT_3D cross(const PNT_3D& a, const PNT_3D& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// By Cramer's rule; non-finite numbers if the matrix is singular.
Matrix inverse(const Matrix& of) {
  const PNT_3D x(of.m[0][0], of.m[1][0], of.m[2][0]), y(of.m[0][1], of.m[1][1], of.m[2][1]),
      z(of.m[0][2], of.m[1][2], of.m[2][2]), at(of.m[0][3], of.m[1][3], of.m[2][3]);
  const PNT_3D rows[] = {cross(y, z), cross(z, x), cross(x, y)};
  const auto dot = [](const PNT_3D& a, const PNT_3D& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
  };
  // Volume of the parallelepiped of the columns, which is the determinant.
  const double volume = dot(x, rows[0]);
  Matrix result;
  for (int i = 0; i < 3; ++i) {
    result.m[i][0] = rows[i].x / volume;
    result.m[i][1] = rows[i].y / volume;
    result.m[i][2] = rows[i].z / volume;
    result.m[i][3] = -dot(rows[i], at) / volume;
  }
  return result;
}

bool isNameOfClips(const CFileDXFILexer& lexer) {
  return lexer.isKeyword("ACAD_FILTER") || lexer.isKeyword("SPATIAL") ||
         lexer.isKeyword("ACAD_XREC_ROUNDTRIP");
}

}  // namespace

void ClipReader::Filter::take(long code, std::string_view bytes) {
  const ParsedDouble number = parseDouble(bytes);
  switch (code) {
    case 10:
      points.emplace_back(number.value, 0);
      break;
    case 20:
      // A y without an x before it belongs to no point.
      if (!points.empty()) points.back().y = number.value;
      break;
    case 40:
      numbers.push_back(number.value);
      break;
    case 71:
      isOn = number.value != 0;
      break;
    case 72:
    case 73:
      hasDepth = hasDepth || number.value != 0;
      break;
    default:
      return;
  }
  // Any invalid number invalidates the filter: a wrong boundary would hide the wrong content.
  isSound = isSound && number.finite && number.whole;
}

// Maps the boundary from its plane to world coordinates at the time of clipping, and from there to
// the block.
bool ClipReader::Filter::place(std::vector<PNT_2D>& boundary) const {
  constexpr std::size_t numbersOfMatrix = 12;
  constexpr std::size_t wanted = 2 * numbersOfMatrix;
  // Front and back planes may precede the two matrices with one number each.
  if (!isSound || points.size() < 2 || numbers.size() < wanted || numbers.size() > wanted + 2)
    return false;
  const auto matrices = numbers.end() - wanted;
  Matrix toBlock, toPlane;
  std::copy_n(matrices, numbersOfMatrix, &toBlock.m[0][0]);
  std::copy_n(matrices + numbersOfMatrix, numbersOfMatrix, &toPlane.m[0][0]);
  const Matrix toWorld = inverse(toPlane);
  const auto placed = [&](double x, double y, double z) {
    const PNT_3D world = toWorld.apply(x, y, z);
    return toBlock.apply(world.x, world.y, world.z);
  };
  // Content is clipped perpendicularly in the block; a slanted boundary cannot be represented.
  const PNT_3D up = placed(0, 0, 1) - placed(0, 0, 0);
  if (!(std::hypot(up.x, up.y) <= kUpright * std::fabs(up.z))) return false;
  std::vector<PNT_2D> corners = points;
  // Two points are opposite corners of a rectangle.
  if (points.size() == 2) {
    const PNT_2D &a = points[0], &b = points[1];
    corners = {a, PNT_2D(b.x, a.y), b, PNT_2D(a.x, b.y)};
  }
  for (const PNT_2D& p : corners) {
    const PNT_3D at = placed(p.x, p.y, 0);
    if (!std::isfinite(at.x + at.y + at.z)) return false;
    boundary.push_back(at);
  }
  return true;
}

bool ClipReader::readObject() {
  const CFileDXFILexer& lexer = m_records.lexer();
  const struct {
    const char* keyword;
    void (ClipReader::*read)();
  } kinds[] = {{"DICTIONARY", &ClipReader::readDictionary},
               {"SPATIAL_FILTER", &ClipReader::readFilter},
               {"XRECORD", &ClipReader::readExtension}};
  for (const auto& kind : kinds) {
    if (!lexer.isKeyword(kind.keyword)) continue;
    (this->*kind.read)();
    return true;
  }
  return false;
}

void ClipReader::readDictionary() {
  CFileDXFILexer& lexer = m_records.lexer();
  std::uint64_t own = 0, entry = 0;
  bool isOurs = false;
  while (const long code = lexer.read()) {
    if (m_records.failed()) return;
    if (code == 5) own = parseHex(lexer.getBytes());
    if (code == 3) isOurs = isNameOfClips(lexer);
    if (isOurs && (code == 350 || code == 360)) entry = parseHex(lexer.getBytes());
  }
  m_entries[own] = entry;
}

void ClipReader::readFilter() {
  CFileDXFILexer& lexer = m_records.lexer();
  Filter filter;
  std::uint64_t own = 0;
  while (const long code = lexer.read()) {
    if (m_records.failed()) return;
    if (code == 5) own = parseHex(lexer.getBytes());
    if (code == 360) filter.dictionary = parseHex(lexer.getBytes());
    filter.take(code, lexer.getBytes());
  }
  m_filters[own] = std::move(filter);
}

void ClipReader::readExtension() {
  CFileDXFILexer& lexer = m_records.lexer();
  std::uint64_t own = 0;
  while (const long code = lexer.read()) {
    if (m_records.failed()) return;
    if (code == 5 && own == 0) own = parseHex(lexer.getBytes());
    if (code == 102 && lexer.isKeyword("ACAD_INVERTEDCLIP_ROUNDTRIP")) m_inversions.insert(own);
  }
}

bool ClipReader::isInverted(const Filter& filter) const {
  const auto extension = m_entries.find(filter.dictionary);
  return extension != m_entries.end() && m_inversions.count(extension->second) != 0;
}

// Null if the insert is not clipped; `isLost` returns whether a filter is named but missing.
const ClipReader::Filter* ClipReader::filterOf(std::uint64_t dictionary, bool& isLost) const {
  isLost = false;
  const auto filters = m_entries.find(dictionary);
  if (filters == m_entries.end() || filters->second == 0) return nullptr;
  const auto spatial = m_entries.find(filters->second);
  if (spatial != m_entries.end() && spatial->second == 0) return nullptr;
  const auto filter =
      spatial == m_entries.end() ? m_filters.end() : m_filters.find(spatial->second);
  isLost = filter == m_filters.end();
  return isLost ? nullptr : &filter->second;
}

void ClipReader::settle() {
  std::vector<std::pair<long, std::uint64_t>> inOrder;  // sorted by line, the order of the report
  for (const auto& [dictionary, promised] : m_records.clips)
    // Clips that only this table still holds belong to inserts that were not built.
    if (promised.clip.use_count() > 1) inOrder.emplace_back(promised.line, dictionary);
  std::sort(inOrder.begin(), inOrder.end());
  std::size_t room = kMostPoints;
  for (const auto& [line, dictionary] : inOrder)
    settle(line, dictionary, *m_records.clips[dictionary].clip, room);
  m_records.clips.clear();
}

void ClipReader::settle(long line, std::uint64_t dictionary, INSERT_CLIP& clip, std::size_t& room) {
  bool isLost;
  const Filter* filter = filterOf(dictionary, isLost);
  if (!isLost && !(filter && filter->isOn)) return;
  std::vector<PNT_2D> boundary;
  // A boundary that cannot be represented is reported rather than shown wrongly.
  if (isLost || isInverted(*filter) || !filter->place(boundary) || boundary.size() > room)
    return m_records.noteAt(line, ReportCode::ClipIgnored, u"INSERT");
  if (filter->hasDepth) m_records.noteAt(line, ReportCode::ClipIgnored, u"depth");
  room -= boundary.size();
  clip.boundary = std::move(boundary);
}

}  // namespace vek0::detail
