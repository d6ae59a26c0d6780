#include "vek0host/geojson.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>
#include <vector>

#include "georings.h"
#include "vek0host/entitycounts.h"
#include "vek0host/entitylist.h"
#include "vek0host/propertytext.h"
#include "vek0host/textvalues.h"

namespace vek0::host {
namespace {

constexpr std::size_t kMostPoints = 20'000'000;
constexpr std::size_t kPointsPerFeature =
    10;  // of blocks, and cell of arrays, where a few lines can unfold to millions
constexpr int kDeepestBlock = 64;

bool isLevel(const GeoRing& points) {
  return std::all_of(points.begin(), points.end(), [](const PNT_3D& p) { return p.z == 0; });
}

bool isFiniteRing(const GeoRing& points) {
  return std::all_of(points.begin(), points.end(), [](const PNT_3D& p) {
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
  });
}

// A position, or positions in brackets.
std::string coordinates(const PNT_3D& p, bool isFlat) {
  return "[" + shortestText(p.x) + "," + shortestText(p.y) +
         (isFlat ? "" : "," + shortestText(p.z)) + "]";
}

std::string coordinates(const GeoRing& points, bool isClosed) {
  const bool isFlat = isLevel(points);
  std::string text = "[";
  for (const PNT_3D& p : points) text += (text.size() > 1 ? "," : "") + coordinates(p, isFlat);
  if (isClosed) text += "," + coordinates(points.front(), isFlat);
  return text + "]";
}

std::string coordinates(const GeoPolygon& polygon) {
  std::string text = "[";
  for (const GeoRing& ring : polygon)
    text += (text.size() > 1 ? "," : "") + coordinates(ring, true);
  return text + "]";
}

std::string geometryText(const char* type, const std::string& coordinates) {
  return std::string("{\"type\":\"") + type + "\",\"coordinates\":" + coordinates + "}";
}

// A record that is drawn as lines of text, and as nothing else.
bool isOfTexts(const CBlock& pieces) {
  for (unsigned i = 0; i < pieces.size(); ++i)
    if (pieces[i]->getType() != CEntText::kType) return false;
  return pieces.size() > 0;
}

class GeoWriter {
 public:
  GeoWriter(const CData& data, const GeoOptions& options,
            const std::function<void(std::string_view)>& put)
      : m_put(put), m_chord(options.chord), m_isChordGiven(options.chord > 0) {
    constexpr double share = 1e-5;
    const RECT_3D& box = data.getEntTable().getBdry();
    if (!m_isChordGiven && box.validRegion())
      m_chord = share * std::hypot(box.max.x - box.min.x, box.max.y - box.min.y);
  }

  void write(CEnt& ent, const CEnt* insert);

  GeoResult result;

 private:
  bool isUsedUp() { return result.isCut = result.isCut || m_noPoints > kMostPoints; }
  void writeInsert(CEntInsertBase& insert, const CEnt* outermost);
  void writeCells(const CEntInsertBase& insert, CBlock& block, const CEnt* outermost);
  void writeHatch(CEntHatch& hatch, const CEnt* insert);
  void writeArea(CEnt& ent, const CEnt* insert, std::vector<GeoRing> rings);
  void writeCurve(CEnt& ent, const CEnt* insert, const PATH_3D& path);
  void writeFace(CEnt3DFace& face, const CEnt* insert);
  void writePoint(CEnt& ent, const CEnt* insert, const PNT_3D& point);
  void writeFeature(CEnt& ent, const CEnt* insert, const std::string& shape);
  void skip(CEnt& ent) { ++result.skipped[recordNameOf(ent)]; }
  void flatten(const EDGE_3D& edge, GeoRing& points) const;
  void place(GeoRing& points);

  const std::function<void(std::string_view)>& m_put;
  double m_chord;
  bool m_isChordGiven;
  CEntInsertStack m_stack{1};
  const CEnt* m_record = nullptr;  // whose pieces are written
  std::size_t m_noPoints = 0;
};

void GeoWriter::write(CEnt& ent, const CEnt* insert) {
  if (m_stack.GetNoInsert() > 0) m_noPoints += kPointsPerFeature;
  if (isUsedUp()) return;
  const short type = ent.getType();
  if (type == CEntPnt::kType) return writePoint(ent, insert, static_cast<CEntPnt&>(ent).getPnt());
  if (type == CEntText::kType || type == CEntAttdef::kType || type == CEntAttrib::kType)
    return writePoint(ent, insert, static_cast<CEntText&>(ent).getText());
  if (type == CEnt3DFace::kType) return writeFace(static_cast<CEnt3DFace&>(ent), insert);
  if (type == CEntHatch::kType) return writeHatch(static_cast<CEntHatch&>(ent), insert);
  if (CEntInsertBase* shown = ent.getEntInsert()) return writeInsert(*shown, insert);
  const bool isEndless =
      type == CEntLine::kType && static_cast<CEntLine&>(ent).getReach() != LineReach::Segment;
  PATH_3D path;
  if (isEndless || !getEntPath(ent, path)) return skip(ent);
  writeCurve(ent, insert, path);
}

void GeoWriter::writeInsert(CEntInsertBase& insert, const CEnt* outermost) {
  CBlock* block = insert.getBlock();
  const bool isRecord = block && block->isOfRecord();
  if (isRecord && block->size() == 0) return skip(insert);
  if (isRecord && isOfTexts(*block)) {
    m_stack.Push(&insert, 0, 0);
    PNT_3D first = static_cast<CEntText*>((*block)[0])->getText();
    m_stack.GetCurMatrix().transform(first, first);
    m_stack.Pop();
    ++m_noPoints;
    return writeFeature(insert, outermost, geometryText("Point", coordinates(first, first.z == 0)));
  }
  const CEnt* const before = m_record;
  if (isRecord) m_record = &insert;
  const CEnt* const shownBy = outermost ? outermost : isRecord ? nullptr : &insert;
  if (block && m_stack.GetNoInsert() >= kDeepestBlock)
    result.isCut = true;
  else if (block)
    writeCells(insert, *block, shownBy);
  m_record = before;
  m_stack.Push(&insert, 0, 0);
  for (unsigned i = 0; i < insert.GetNoAttribs(); ++i) write(*insert.GetAttrib(i), outermost);
  m_stack.Pop();
}

void GeoWriter::writeCells(const CEntInsertBase& insert, CBlock& block, const CEnt* outermost) {
  long columns = 1, rows = 1;
  double columnSpacing, rowSpacing;
  insert.getArray(columns, rows, columnSpacing, rowSpacing);
  for (long row = 0; row < std::max(1L, rows); ++row)
    for (long column = 0; column < std::max(1L, columns); ++column) {
      m_noPoints += kPointsPerFeature;
      if (isUsedUp()) return;
      m_stack.Push(&insert, static_cast<int>(row), static_cast<int>(column));
      for (unsigned i = 0; i < block.size(); ++i)
        // In a block, a definition is only a template for the attributes of inserts.
        if (block[i]->getType() != CEntAttdef::kType) write(*block[i], outermost);
      m_stack.Pop();
    }
}

void GeoWriter::writePoint(CEnt& ent, const CEnt* insert, const PNT_3D& point) {
  GeoRing points{point};
  place(points);
  if (!isFiniteRing(points)) return skip(ent);
  writeFeature(ent, insert, geometryText("Point", coordinates(points[0], points[0].z == 0)));
}

void GeoWriter::writeFace(CEnt3DFace& face, const CEnt* insert) {
  GeoRing ring;
  for (long i = 0; i < (face.isTriangular() ? 3 : 4); ++i) ring.push_back(face.getVertex(i));
  place(ring);
  writeArea(face, insert, {ring});
}

void GeoWriter::writeHatch(CEntHatch& hatch, const CEnt* insert) {
  const std::vector<PNT_3D>& boundary = hatch.getBoundary();
  std::vector<GeoRing> rings;
  for (const HatchRing& ring : hatchRings(boundary)) {
    const auto first = boundary.begin() + static_cast<std::ptrdiff_t>(ring.first);
    rings.emplace_back(first, first + static_cast<std::ptrdiff_t>(ring.count));
    place(rings.back());
  }
  writeArea(hatch, insert, std::move(rings));
}

// Rings that enclose nothing, as those of a vertical face, are closed lines.
void GeoWriter::writeArea(CEnt& ent, const CEnt* insert, std::vector<GeoRing> rings) {
  if (rings.empty() || !std::all_of(rings.begin(), rings.end(), isFiniteRing)) return skip(ent);
  const GeoRing first = rings.front();
  const std::vector<GeoPolygon> polygons = nestRings(std::move(rings));
  if (polygons.empty())
    return writeFeature(ent, insert, geometryText("LineString", coordinates(first, true)));
  if (polygons.size() == 1)
    return writeFeature(ent, insert, geometryText("Polygon", coordinates(polygons.front())));
  std::string text = "[";
  for (const GeoPolygon& polygon : polygons)
    text += (text.size() > 1 ? "," : "") + coordinates(polygon);
  writeFeature(ent, insert, geometryText("MultiPolygon", text + "]"));
}

void GeoWriter::writeCurve(CEnt& ent, const CEnt* insert, const PATH_3D& path) {
  GeoRing points{path.start()};
  for (const EDGE_3D& edge : path.edges) flatten(edge, points);
  place(points);
  if (!isFiniteRing(points)) return skip(ent);
  if (path.closed) points.pop_back();
  // A polygon must not cross itself.
  const bool isArea = path.closed && points.size() > 2 && areaOf(points) != 0 &&
                      (path.edges.size() == 1 || selfIntersections(path).empty());
  if (isArea) return writeArea(ent, insert, {points});
  writeFeature(ent, insert, geometryText("LineString", coordinates(points, path.closed)));
}

void GeoWriter::flatten(const EDGE_3D& edge, GeoRing& points) const {
  constexpr double mostChords = 100'000, fewestOfTurn = 8, coarsest = 0.01;
  double chords = 1;
  if (edge.isArc()) {
    PNT_2D x, y;
    m_stack.GetCurMatrix().getAxes(x, y);
    const double radius = edge.radius * std::max(std::hypot(x.x, x.y), std::hypot(y.x, y.y));
    double error = std::min(1.0, m_chord / radius);
    if (!m_isChordGiven) error = std::min(coarsest, error);
    // The angle of a chord that is that far from its arc: 2 acos(1 - e), without cancellation.
    const double step = 4 * std::asin(std::sqrt(error / 2));
    const double turn = std::abs(edge.sweep);
    const double fewest = std::max(2.0, fewestOfTurn * turn / (2 * std::numbers::pi));
    chords = std::ceil(std::clamp(step > 0 ? turn / step : mostChords, fewest, mostChords));
  }
  for (double i = 1; i < chords; ++i) points.push_back(edge.at(i / chords));
  points.push_back(edge.p2);
}

void GeoWriter::place(GeoRing& points) {
  m_noPoints += points.size();
  const CEntInsertMatrix& matrix = m_stack.GetCurMatrix();
  for (PNT_3D& p : points) matrix.transform(p, p);
}

void GeoWriter::writeFeature(CEnt& ent, const CEnt* insert, const std::string& shape) {
  CEnt& named = m_record ? const_cast<CEnt&>(*m_record) : ent;
  const CLayer* layer = m_stack.ResolveLayer(ent);
  const CEntInsertBase* shown = insert ? insert->getEntInsert() : nullptr;
  const std::optional<std::string> text = textOf(ent);
  Json properties;
  properties["layer"] = layer ? Json(layer->getFullName().toUtf8()) : Json();
  properties["kind"] = recordNameOf(named);
  properties["handle"] = hexText((insert ? *insert : named).GetHandle());
  properties["block"] =
      shown && shown->getBlock() ? Json(shown->getBlock()->getName().toUtf8()) : Json();
  properties["color"] =
      colorText(colorOnWhite(m_stack.ResolveTraits(ent).trueColor, m_stack.ResolveColor(ent)));
  properties["text"] = text ? Json(*text) : Json();
  m_put((result.features++ > 0 ? ",\n" : "\n") +
        std::string("{\"type\":\"Feature\",\"properties\":") + toLine(properties) +
        ",\"geometry\":" + shape + "}");
}

}  // namespace

GeoResult writeGeoJson(const CData& data, const GeoOptions& options,
                       const std::function<void(std::string_view)>& put) {
  std::string head = "{\"type\":\"FeatureCollection\",";
  if (!options.crs.empty()) {
    const Json crs{{"type", "name"}, {"properties", {{"name", options.crs}}}};
    head += "\"crs\":" + toLine(crs) + ",";
  }
  put(head + "\"features\":[");
  GeoWriter writer(data, options, put);
  for (CEnt* ent : data.getEntTable().getEntityTbl()) writer.write(*ent, nullptr);
  put("\n]}\n");
  return writer.result;
}

}  // namespace vek0::host
