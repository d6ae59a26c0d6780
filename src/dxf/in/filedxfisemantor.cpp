#include "vek0core/dxf/in/filedxfisemantor.h"

#include <memory>

#include "entities/blocks/hatchblock.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockfactory.h"
#include "vek0core/entities/blocks/blocktable.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/hatch/hatchtypetable.h"
#include "vek0core/tables/font.h"

CBlock* IFileDXFISemantor::findBlock(const zim::WString& name) { return getBlockTable().get(name); }

CLayer* IFileDXFISemantor::createLayerHurried(const zim::WString& name) {
  constexpr short white = 7;
  createLayer(name, nullptr, white, 0);
  return getLayer(name);
}

const ICADFont* IFileDXFISemantor::getFont(const zim::WString& name) {
  return CFontTable::getInstance().get(name, true);
}

CEntHatch* IFileDXFISemantor::createHatch(CLayer* layer, CLtype* ltype, short colour,
                                          const HATCH_TYPE& type, double scale, double rotate,
                                          const std::vector<PNT_3D>& boundary,
                                          vek0::Handle handle) {
  std::unique_ptr<CBlock> block(
      getBlockFactory().create(getHatchName(getBlockTable()), CBlock::kAnonymous));
  if (!block) return nullptr;
  std::unique_ptr<CEntHatch> hatch(getEntFactory().createEntHatch(
      getHandleGestor(), layer, ltype, colour, block.get(), type, scale, rotate, boundary, handle));
  if (!hatch || !vek0::detail::addHatchBlock(getBlockTable(), block)) return nullptr;
  return hatch.release();
}

CHatchTypeTable& IFileDXFISemantor::getHatchTypeTable() {
  static CHatchTypeTable types;
  return types;
}
