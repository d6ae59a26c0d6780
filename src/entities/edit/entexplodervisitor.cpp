// Explodes an entity into its parts. Results are collected first and adopted together, so that an
// entity is exploded completely or not at all. `EntPlacer` copies the content of blocks.
#include "vek0core/entities/edit/entexplodervisitor.h"

#include <iterator>
#include <new>

#include "entities/edit/entplacer.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blocktable.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpolyline.h"
#include "vek0core/geometry/edge.h"

namespace {

using vek0::detail::BlockLook;
using vek0::detail::EntMaker;
using vek0::detail::EntPlacer;

struct Corner {
  PNT_3D pnt;
  double bulge;
};

// Converts the segments of a polyline to entities with the same appearance.
class Segments {
 public:
  Segments(EntMaker& maker, const CEntPolyline& like) : m_maker(maker), m_like(like) {}

  void add(const PNT_3D& from, const PNT_3D& to, double bulge) {
    ARC_3D arc;
    if (!createArcFromBulge(from, to, bulge, arc)) return addLine(from, to);
    // An arc whose ends differ in height is not planar, so its chords are used.
    if (from.z == to.z) return addArc(arc);
    m_chords.assign(1, from);
    bulgePoints(from, to, bulge, m_chords);
    for (std::size_t i = 0; i + 1 < m_chords.size(); ++i) addLine(m_chords[i], m_chords[i + 1]);
  }

 private:
  void addLine(const PNT_3D& from, const PNT_3D& to) {
    if (m_maker.spend(1))
      take(m_maker.ents.createEntLine(m_maker.gestor, m_like.getLayer(), m_like.getLtype(),
                                      m_like.getColor(), LINE_3D(from, to), 0));
  }
  void addArc(const ARC_3D& arc) {
    if (m_maker.spend(1))
      take(m_maker.ents.createEntArc(m_maker.gestor, m_like.getLayer(), m_like.getLtype(),
                                     m_like.getColor(), arc, 0));
  }
  void take(CEnt* made) {
    if (made) made->copyExtras(m_like);
    m_maker.take(made);
  }

  EntMaker& m_maker;
  const CEntPolyline& m_like;
  std::vector<PNT_3D> m_chords;
};

// Discarded hatches must not leave their blocks in the table.
void dropHatchBlocks(EntMaker& maker) {
  for (const std::unique_ptr<CEnt>& ent : maker.made) {
    if (ent->getType() != CEntHatch::kType) continue;
    const std::unique_ptr<CBlock> block(ent->getEntInsert()->getBlock());
    if (block) maker.table.remove(block.get());
  }
}

}  // namespace

CEntExploderVisitor::CEntExploderVisitor(IHandleGestor& gestor, CEntFactory& entFactory,
                                         CBlockFactory& blockFactory, CBlockTable& blockTable,
                                         double pixelSize, long limit)
    : m_gestor(gestor),
      m_entFactory(entFactory),
      m_blockFactory(blockFactory),
      m_blockTable(blockTable),
      m_pixelSize(pixelSize),
      m_limit(limit) {}

// Produces all results of an entity or none.
template <class Fill>
void CEntExploderVisitor::collect(Fill fill) {
  EntMaker maker{m_gestor, m_entFactory, m_blockFactory, m_blockTable, m_pixelSize, m_limit, {}};
  try {
    fill(maker);
    // Appended individually, because vectors grow geometrically: reserving exactly would move all
    // elements each time.
    if (!maker.isRefused)
      m_ents.insert(m_ents.end(), std::make_move_iterator(maker.made.begin()),
                    std::make_move_iterator(maker.made.end()));
  } catch (const std::bad_alloc&) {
    maker.isRefused = true;
  }
  m_isRefused = maker.isRefused;
  if (m_isRefused) return dropHatchBlocks(maker);
  // The limit applies to all entities exploded by one visitor.
  m_limit -= maker.cost;
  m_noLostClips += maker.lostClips;
}

void CEntExploderVisitor::visit(CEntPolyline& ent) {
  collect([&](EntMaker& maker) {
    std::vector<Corner> corners;
    ent.forEachBulged([&](const PNT_3D& p, double, double, double bulge, long) {
      corners.push_back({p, bulge});
    });
    Segments segments(maker, ent);
    const std::size_t n = corners.size();
    for (std::size_t i = 0; i + (ent.isClosed() ? 0 : 1) < n && n > 1; ++i)
      segments.add(corners[i].pnt, corners[(i + 1) % n].pnt, corners[i].bulge);
  });
}

void CEntExploderVisitor::showContents(CEntInsertBase& ent, CLayer* layer) {
  collect([&](EntMaker& maker) {
    BlockLook look{ent.getColor(), ent.getLtype(), layer, ent.getTraits()};
    look.instead0 = EntPlacer::layerOfRecord(ent, ent.getLayer());
    EntPlacer::placeContents(maker, CEntInsertMatrix(), ent, look, 0);
  });
}

void CEntExploderVisitor::visit(CEntInsert& ent) { showContents(ent, nullptr); }

void CEntExploderVisitor::visit(CEntFixedInsert& ent) { showContents(ent, nullptr); }

void CEntExploderVisitor::visit(CEntHatch& ent) { showContents(ent, ent.getLayer()); }

void CEntExploderVisitor::visit(CEntPnt&) { m_isRefused = false; }

void CEntExploderVisitor::visit(CEntLine&) { m_isRefused = false; }

void CEntExploderVisitor::visit(CEntCircle&) { m_isRefused = false; }

void CEntExploderVisitor::visit(CEntArc&) { m_isRefused = false; }

void CEntExploderVisitor::visit(CEntText&) { m_isRefused = false; }

void CEntExploderVisitor::visit(CEntAttdef&) { m_isRefused = false; }

void CEntExploderVisitor::visit(CEntInsertXRef&) { m_isRefused = false; }

void CEntExploderVisitor::visit(CEntAttrib&) { m_isRefused = false; }

void CEntExploderVisitor::visit(CEnt3DFace&) { m_isRefused = false; }
