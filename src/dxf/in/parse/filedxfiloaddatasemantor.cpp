#include "vek0core/dxf/in/parse/filedxfiloaddatasemantor.h"

#include <memory>
#include <string>

#include "tables/addnew.h"
#include "vek0core/drawing/data.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockfactory.h"
#include "vek0core/entities/blocks/blocktable.h"
#include "vek0core/tables/style.h"

void CFileDXFILoadDataSemantor::transition() {
  for (const CBlock* block : undefinedBlocks()) note(ReportCode::BlockUndefined, block->getName());
  settle();
}

void CFileDXFILoadDataSemantor::createLayer0(CLtype* ltype, short colour, long flags) {
  CLayer0& layer = data().getLayer0();
  if (ltype) layer.setLtype(ltype);
  layer.setColor(colour);
  layer.setFlags(flags);
}

void CFileDXFILoadDataSemantor::createStyleStandard(const ICADFont* font, double fixedHeight,
                                                    double widthScale, double oblique,
                                                    double lastHeight, long flags) {
  CStyle* style = getStyleStandard();
  if (!style) return;
  style->setFont(font);
  style->setFixedHeight(fixedHeight);
  style->setWidthScale(widthScale);
  style->setOblique(oblique);
  style->setLastHeight(lastHeight);
  style->setFlags(flags);
}

void CFileDXFILoadDataSemantor::createBlock(const zim::WString& name, const PNT_3D& base,
                                            long flags, std::list<CEnt*>& entities) {
  freeHatchName(name);
  if (isXRefName(name)) {
    discard(entities);
  } else if (CBlock* block = getBlockTable().get(name)) {
    redefineBlock(*block, base, flags, entities);
  } else {
    createFreshBlock(name, base, flags, entities);
  }
}

CLayout* CFileDXFILoadDataSemantor::createLayout(const zim::WString& name,
                                                 const zim::WString& block, bool isActive,
                                                 std::list<CEnt*>& entities) {
  const zim::WString prefix(u"*Paper_Space");
  zim::WString own = block;
  while (own.empty() || getBlockTable().get(own))
    own = prefix + zim::WString::fromUtf8(std::to_string(m_lastSheet++));
  std::unique_ptr<CBlock> made(getBlockFactory().create(own, PNT_3D(0, 0, 0), 0));
  for (; made && !entities.empty(); entities.pop_front()) made->add(entities.front());
  CBlock* sheet = vek0::detail::addNew(getBlockTable(), made.release());
  CLayout& layout = data().getLayouts().add(std::make_unique<CLayout>(name, *sheet));
  if (isActive) data().getLayouts().setActive(layout);
  return &layout;
}
