#include "vek0host/parts.h"

#include <memory>

namespace vek0::host {
namespace {

// Calls `each` with all named items of the drawing itself.
template <class Each>
void forEachItem(const CData& data, const Each& each) {
  for (CData::CLayerIterator it(data, false); CLayer* layer = *it; ++it) each(*layer);
  for (CData::CLtypeIterator it(data, false, false); CLtype* ltype = *it; ++it) each(*ltype);
  for (CData::CStyleIterator it(data, false); CStyle* style = *it; ++it) each(*style);
  const CBlockTable& blocks = data.getBlockTable();
  for (int i = 0; i < static_cast<int>(blocks.size()); ++i) each(*blocks[i]);
}

// Whether the size of a block is that of its inserts: the drawing behind a reference keeps its
// unit, and arrowheads of dimensions ("_DOT") have none.
bool isScaledByInserts(const CBlock& block) {
  return block.isXRef() || block.getName().view().starts_with(u'_');
}

class PartScaler {
 public:
  explicit PartScaler(double factor) : m_factor(factor), m_scaler(PNT_3D(0, 0, 0), factor) {}

  void scale(CEnt& ent) {
    ent.accept(m_scaler);
    if (ent.getType() != CEntInsert::kType) return;
    auto& insert = static_cast<CEntInsert&>(ent);
    if (insert.getBlock() && !isScaledByInserts(*insert.getBlock())) keepScales(insert);
  }

  void scale(CBlock& block) {
    // The lines of a hatch are scaled with it.
    if (isScaledByInserts(block) || (!block.isSheet() && isHatchName(block.getName()))) return;
    for (unsigned i = 0; i < block.size(); ++i) scale(*block[i]);
    block.invalidateBdry();
  }

 private:
  // Instead of the scales, what they apply to is multiplied.
  void keepScales(CEntInsert& insert) {
    double sx, sy, sz;
    insert.getScale(sx, sy, sz);
    insert.setScale(sx / m_factor, sy / m_factor, sz / m_factor);
    for (unsigned i = 0; i < insert.GetNoAttribs(); ++i) insert.GetAttrib(i)->accept(m_scaler);
    if (!insert.isClipped()) return;
    auto clip = std::make_shared<INSERT_CLIP>(*insert.getClip());
    const PNT_3D base = insert.getBlock()->getPnt();
    for (PNT_2D& corner : clip->boundary)
      corner =
          PNT_2D(base.x + (corner.x - base.x) * m_factor, base.y + (corner.y - base.y) * m_factor);
    insert.setClip(std::move(clip));
  }

  double m_factor;
  CEntScaleVisitor m_scaler;
};

}  // namespace

PartsMark::PartsMark(const CData& data) : m_entities(data.getEntTable().getEntityTbl().size()) {
  forEachItem(data, [this](const CNamedItem& item) { m_items.insert(&item); });
}

Parts PartsMark::since(CData& data) const {
  Parts parts;
  const auto isNew = [this](const CNamedItem& item) { return !m_items.contains(&item); };
  struct Sorter {
    Parts& parts;
    void operator()(CLayer& layer) const { parts.layers.push_back(&layer); }
    void operator()(CLtype& ltype) const { parts.ltypes.push_back(&ltype); }
    void operator()(CStyle& style) const { parts.styles.push_back(&style); }
    void operator()(CBlock& block) const { parts.blocks.push_back(&block); }
  };
  const Sorter sort{parts};
  forEachItem(data, [&](auto& item) {
    if (isNew(item)) sort(item);
  });
  std::size_t number = 0;
  for (CEnt* ent : data.getEntTable().getEntityTbl())
    if (number++ >= m_entities) parts.entities.push_back(ent);
  return parts;
}

void scaleParts(CData& data, const Parts& parts, double factor) {
  PartScaler scaler(factor);
  for (CBlock* block : parts.blocks) scaler.scale(*block);
  for (CEnt* ent : parts.entities) scaler.scale(*ent);
  for (CStyle* style : parts.styles) {
    style->setFixedHeight(style->getFixedHeight() * factor);
    style->setLastHeight(style->getLastHeight() * factor);
  }
  data.getBlockTable().recalcBdry();
  data.getEntTable().invalidateBdry();
}

}  // namespace vek0::host
