#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "argumentvalues.h"
#include "commands.h"
#include "saving.h"
#include "vek0core/vek0core.h"

namespace vek0::tool {
namespace {

struct HatchOptions {
  std::string in, out, pattern = "ANSI31", layer = "0";
  double scale = 1, angleDeg = 0, limit = 1e6;
  std::vector<std::string> boundary;
  bool closedPolylines = false;
  SaveOptions save;
};

// Parses "x,y"; returns an error text or nothing, as the argument parser expects.
std::string checkPoint(const std::string& text, PNT_3D& pnt) {
  const auto numbers = numbersIn(text);
  if (!numbers || numbers->size() != 2) return "'" + text + "' is not a point like 12.5,-3";
  pnt.set((*numbers)[0], (*numbers)[1], 0);
  return {};
}

std::vector<HATCH_RING> ringOf(const std::vector<std::string>& points) {
  HATCH_RING ring(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) checkPoint(points[i], ring[i]);
  return {ring};
}

// The outlines of closed polylines, arcs and curves as their chords.
class OutlineCollector final : public IEntFooVisitor {
 public:
  using IEntFooVisitor::visit;
  void visit(CEntPolyline& polyline) override {
    if ((polyline.getFlags() & CEntPolyline::kClosed) == 0) return;
    rings.emplace_back();
    polyline.forEachVisible(
        [this](const PNT_3D& pnt, double, double, double, long) { rings.back().push_back(pnt); });
  }

  std::vector<HATCH_RING> rings;
};

std::vector<HATCH_RING> outlinesOf(const CData& data) {
  OutlineCollector collector;
  for (CEnt* ent : data.getEntTable().getEntityTbl()) ent->accept(collector);
  return collector.rings;
}

// Whether the ring deviates from the line from its first point to the farthest one.
bool hasWidth(const PNT_3D* ring, std::size_t count) {
  constexpr double kFlat = 1e-12;  // of that distance
  const auto distance = [&](const PNT_3D& p) { return std::hypot(p.x - ring->x, p.y - ring->y); };
  const PNT_3D& far = *std::max_element(ring, ring + count, [&](const PNT_3D& p, const PNT_3D& q) {
    return distance(p) < distance(q);
  });
  const double length = distance(far);
  const double ux = (far.x - ring->x) / length, uy = (far.y - ring->y) / length;
  return std::any_of(ring, ring + count, [&](const PNT_3D& p) {
    return std::fabs(ux * (p.y - ring->y) - uy * (p.x - ring->x)) > kFlat * length;
  });
}

bool hasArea(const std::vector<PNT_3D>& boundary) {
  const std::vector<HatchRing> rings = hatchRings(boundary);
  return std::any_of(rings.begin(), rings.end(), [&](const HatchRing& ring) {
    return hasWidth(boundary.data() + ring.first, ring.count);
  });
}

// The boundary to hatch; empty, with an error message, if there is none.
std::vector<PNT_3D> boundaryOf(const CData& data, const HatchOptions& options, Session& session) {
  std::vector<PNT_3D> boundary =
      joinHatchRings(options.closedPolylines ? outlinesOf(data) : ringOf(options.boundary));
  if (hasArea(boundary)) return boundary;
  if (options.closedPolylines) {
    Session::complain(options.in + ": there is no closed polyline to hatch");
    session.failed(kDrawingFailed);
  } else {
    Session::complain(
        "the boundary encloses no area: it needs three different points that are "
        "not in line");
    session.failed(kWrongUsage);
  }
  return {};
}

CLayer* needLayer(CData& data, const zim::WString& name) {
  if (CLayer* layer = getLayer(data, name)) return layer;
  addLayer(data, data.getLayerFactory().create(name, &data.getLtypeContinuous(), 7, 0));
  return getLayer(data, name);
}

void complainOfHatch(const HATCH_TYPE& type, const zim::WString& message) {
  Session::complain(zim::WString(type.name).toUtf8() + ": " + message.toUtf8());
}

bool hatch(CData& data, const HatchOptions& options, Session& session) {
  const std::vector<PNT_3D> boundary = boundaryOf(data, options, session);
  if (boundary.empty()) return false;
  const zim::WString name = zim::WString::fromUtf8(options.pattern);
  const HATCH_TYPE& type =
      zim::equalsIgnoreCase(name, u"SOLID") ? data.getHatchTypeTable().solid() : *getHatch(name);
  data.setHatchLimit(options.limit);
  setHatchMessageHandler(complainOfHatch);
  CEntHatch* made = createEntHatch(data, needLayer(data, zim::WString::fromUtf8(options.layer)),
                                   getLtypeByLayer(data), 256, type, options.scale,
                                   options.angleDeg * kRadiansPerDegree, boundary, 0);
  if (!made) {
    session.failed(kDrawingFailed);
    return false;
  }
  data.getEntTable().add(made);
  return true;
}

std::string checkPattern(const std::string& name) {
  const zim::WString wide = zim::WString::fromUtf8(name);
  if (getHatch(wide) || zim::equalsIgnoreCase(wide, u"SOLID")) return {};
  return "'" + name + "' is not a pattern; vek0 hatches lists them";
}

}  // namespace

void addHatchCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<HatchOptions>();
  CLI::App* verb = app.add_subcommand("hatch", "Hatch an area of a drawing");
  verb->add_option("IN", options->in, "DXF file; - is the standard input")->required();
  verb->add_option("-o,--output", options->out, "File to write; - is the standard output")
      ->required();
  verb->add_option("--pattern", options->pattern,
                   "Pattern of the catalogue (see vek0 hatches), or SOLID")
      ->capture_default_str()
      ->check(checkPattern);
  verb->add_option("--scale", options->scale, "Times the pattern's own size")
      ->capture_default_str()
      ->check(CLI::PositiveNumber);
  verb->add_option("--angle", options->angleDeg, "Degrees by which the pattern is turned")
      ->capture_default_str();
  verb->add_option("--layer", options->layer, "Layer of the hatch, made if there is none")
      ->capture_default_str();
  verb->add_option("--limit", options->limit, "Lines and dots that the hatch may have")
      ->capture_default_str()
      ->check(CLI::PositiveNumber);
  CLI::Option_group* area = verb->add_option_group("area");
  area->add_option("--boundary", options->boundary, "Corners of the area: x,y x,y x,y ...")
      ->check([](const std::string& text) {
        PNT_3D ignored;
        return checkPoint(text, ignored);
      })
      ->expected(3, CLI::detail::expected_max_vector_size);
  area->add_flag("--closed-polylines", options->closedPolylines,
                 "The closed polylines of model space, islands left out");
  area->require_option(1);
  addSaveOptions(*verb, options->save);
  verb->footer(
      "Examples:\n"
      "  vek0 hatch plan.dxf -o hatched.dxf --pattern ANSI31 --scale 25 --closed-polylines\n"
      "  vek0 hatch plan.dxf -o hatched.dxf --pattern BRICK --angle 45 --boundary 0,0 10,0 10,5\n\n"
      "The hatch is written as an insert of its lines, with the data that turns it back into a\n"
      "hatch when it is read again.");
  verb->callback([options, &session] {
    rewrite(options->in, options->out, options->save, session,
            [&](CData& data, const ReadResult&) { return hatch(data, *options, session); });
  });
}

}  // namespace vek0::tool
