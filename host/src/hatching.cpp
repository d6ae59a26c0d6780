#include "vek0host/hatching.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "vek0core/vek0core.h"

namespace vek0::host {
namespace {

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
std::vector<PNT_3D> boundaryOf(const CData& data, const HatchRequest& request,
                               const std::string& name, Session& session) {
  // Without closed polylines, the given corners are the only ring.
  std::vector<PNT_3D> boundary = joinHatchRings(
      request.closedPolylines ? outlinesOf(data) : std::vector<HATCH_RING>{request.corners});
  if (hasArea(boundary)) return boundary;
  if (request.closedPolylines)
    session.fail(kDrawingFailed, name + ": there is no closed polyline to hatch");
  else
    session.fail(
        kWrongUsage,
        "the boundary encloses no area: it needs three distinct points that are not collinear");
  return {};
}

CLayer* layerNamed(CData& data, const zim::WString& name) {
  if (CLayer* layer = getLayer(data, name)) return layer;
  // An unknown layer is created with the default color.
  addLayer(data, data.getLayerFactory().create(name, &data.getLtypeContinuous(), 7, 0));
  return getLayer(data, name);
}

bool isSolidName(const zim::WString& name) { return zim::equalsIgnoreCase(name, u"SOLID"); }

// Collects why a hatch could not be created, while it exists: the core reports to a function
// without context.
class HatchMessages {
 public:
  HatchMessages() : m_former(setHatchMessageHandler(keep)) { t_message.clear(); }
  ~HatchMessages() { setHatchMessageHandler(m_former); }
  HatchMessages(const HatchMessages&) = delete;
  HatchMessages& operator=(const HatchMessages&) = delete;

  static const std::string& text() { return t_message; }

 private:
  static void keep(const HATCH_TYPE& type, const zim::WString& message) {
    t_message = zim::WString(type.name).toUtf8() + ": " + message.toUtf8();
  }

  static thread_local std::string t_message;
  HatchMessageHandler m_former;
};

thread_local std::string HatchMessages::t_message;

std::size_t linesOf(const CEntInsertBase* insert) {
  if (!insert || insert->getType() != CEntHatch::kType || !insert->getBlock()) return 0;
  const auto& hatch = static_cast<const CEntHatch&>(*insert);
  return isSolid(hatch.getHatchType()) ? 0 : hatch.getBlock()->size();
}

}  // namespace

bool isHatchPattern(const std::string& name) {
  const zim::WString wide = zim::WString::fromUtf8(name);
  return getHatch(wide) != nullptr || isSolidName(wide);
}

CEntHatch* createHatch(CData& data, const HatchRequest& request,
                       const std::vector<PNT_3D>& boundary, CLayer* layer, short color,
                       std::string& message) {
  const zim::WString pattern = zim::WString::fromUtf8(request.pattern);
  const HATCH_TYPE& type =
      isSolidName(pattern) ? data.getHatchTypeTable().solid() : *getHatch(pattern);
  data.setHatchLimit(request.limit);
  const HatchMessages messages;
  CEntHatch* made = createEntHatch(data, layer, getLtypeByLayer(data), color, type, request.scale,
                                   request.angleDeg * kRadiansPerDegree, boundary, 0);
  message = messages.text();
  return made;
}

bool addHatch(CData& data, const HatchRequest& request, const std::string& name, Session& session) {
  const std::vector<PNT_3D> boundary = boundaryOf(data, request, name, session);
  if (boundary.empty()) return false;
  std::string message;
  CEntHatch* made =
      createHatch(data, request, boundary, layerNamed(data, zim::WString::fromUtf8(request.layer)),
                  256, message);
  if (!message.empty()) session.complain(message);
  if (!made) {
    session.failed(kDrawingFailed);
    return false;
  }
  data.getEntTable().add(made);
  return true;
}

std::size_t countHatchLines(const CData& data) {
  std::size_t lines = 0;
  for (CEnt* ent : data.getEntTable().getEntityTbl()) lines += linesOf(ent->getEntInsert());
  const CBlockTable& blocks = data.getBlockTable();
  for (int i = 0; i < static_cast<int>(blocks.size()); ++i)
    for (CBlock::CInsertIterator insert(*blocks[i]); *insert; ++insert) lines += linesOf(*insert);
  return lines;
}

}  // namespace vek0::host
