#include "vek0host/entitycounts.h"

#include <algorithm>
#include <string_view>

namespace vek0::host {
namespace {

enum Kind {
  kPoint,
  kLine,
  kXline,
  kRay,
  kCircle,
  kArc,
  kPolyline,
  kText,
  kAttdef,
  kInsert,
  kAttrib,
  kHatch,
  kFace,
  kSolid,
  kTrace
};

constexpr const char* kUnsupported[] = {"3DSOLID",
                                        "BODY",
                                        "REGION",
                                        "SURFACE",
                                        "PLANESURFACE",
                                        "EXTRUDEDSURFACE",
                                        "LOFTEDSURFACE",
                                        "REVOLVEDSURFACE",
                                        "SWEPTSURFACE",
                                        "NURBSURFACE",
                                        "IMAGE",
                                        "WIPEOUT",
                                        "ACAD_PROXY_ENTITY",
                                        "OLEFRAME",
                                        "OLE2FRAME",
                                        "LIGHT",
                                        "SHAPE",
                                        "PDFUNDERLAY",
                                        "DGNUNDERLAY",
                                        "DWFUNDERLAY",
                                        "SUN",
                                        "CAMERA"};

// Determines the row of the counts for each visited entity.
class KindVisitor final : public IEntVisitor {
 public:
  using IEntVisitor::visit;
  void visit(CEntPnt&) override { kind = kPoint; }
  void visit(CEntLine& line) override {
    constexpr Kind kinds[] = {kLine, kRay, kXline};  // as `LineReach` counts them
    kind = kinds[static_cast<int>(line.getReach())];
  }
  void visit(CEntCircle&) override { kind = kCircle; }
  void visit(CEntArc&) override { kind = kArc; }
  void visit(CEntPolyline&) override { kind = kPolyline; }
  void visit(CEntText&) override { kind = kText; }
  void visit(CEntAttdef&) override { kind = kAttdef; }
  void visit(CEntInsert&) override { kind = kInsert; }
  void visit(CEntFixedInsert&) override { kind = kInsert; }
  void visit(CEntInsertXRef&) override { kind = kInsert; }
  void visit(CEntAttrib&) override { kind = kAttrib; }
  void visit(CEntHatch&) override { kind = kHatch; }
  void visit(CEnt3DFace& face) override {
    kind = kFace;
    if (face.getFill() == FaceFill::Solid) kind = kSolid;
    if (face.getFill() == FaceFill::Trace) kind = kTrace;
  }

  Kind kind = kPoint;
};

}  // namespace

void EntityCounts::add(CEnt& ent) {
  KindVisitor visitor;
  ent.accept(visitor);
  ++m_counts[visitor.kind];
  if (const CEntInsertBase* insert = ent.getEntInsert())
    m_counts[kAttrib] += static_cast<long>(insert->GetNoAttribs());
}

Json EntityCounts::toJson() const {
  Json counts = Json::object();
  for (std::size_t i = 0; i < kKinds.size(); ++i) {
    if (m_counts[i] > 0) counts[kKinds[i]] = m_counts[i];
  }
  return counts;
}

std::string EntityCounts::toText() const {
  std::string text;
  for (std::size_t i = 0; i < kKinds.size(); ++i) {
    if (m_counts[i] == 0) continue;
    text += (text.empty() ? "" : ", ") + std::to_string(m_counts[i]) + " " + kKinds[i];
  }
  return text.empty() ? "none" : text;
}

namespace {

const char* classNameOf(CEnt& ent) {
  KindVisitor visitor;
  ent.accept(visitor);
  return EntityCounts::kKinds[visitor.kind];
}

}  // namespace

std::string kindNameOf(CEnt& ent) {
  const CEntInsertBase* insert = ent.getEntInsert();
  CBlock* pieces = insert ? insert->getBlock() : nullptr;
  if (!pieces || !pieces->isOfRecord()) return classNameOf(ent);
  std::string kind = pieces->size() > 0 ? classNameOf(*(*pieces)[0]) : nameOf(EntRecord::Opaque);
  for (unsigned i = 1; i < pieces->size(); ++i)
    if (classNameOf(*(*pieces)[i]) != kind) return nameOf(ent.getRecord());
  return kind;
}

std::string recordNameOf(CEnt& ent) {
  if (ent.getRecord() == EntRecord::Opaque) return opaqueKindOf(ent).toUtf8();
  if (ent.getRecord() != EntRecord::Own) return nameOf(ent.getRecord());
  const std::string kind = kindNameOf(ent);
  // Hatches are saved as inserts.
  return kind == EntityCounts::kKinds[kHatch] ? EntityCounts::kKinds[kInsert] : kind;
}

std::vector<const char*> entityKinds() {
  std::vector<const char*> kinds(EntityCounts::kKinds.begin(), EntityCounts::kKinds.end());
  for (auto i = static_cast<unsigned char>(EntRecord::Own); ++i < kEntRecords;) {
    const char* name = nameOf(static_cast<EntRecord>(i));
    const auto isSame = [&](const char* kind) { return std::string_view(kind) == name; };
    if (std::none_of(kinds.begin(), kinds.end(), isSame)) kinds.push_back(name);
  }
  kinds.insert(kinds.end(), std::begin(kUnsupported), std::end(kUnsupported));
  return kinds;
}

}  // namespace vek0::host
