#include "vek0core/drawing/functions.h"

#include <string_view>
#include <unordered_set>
#include <vector>

#include "vek0core/assert.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockxref.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/entities/blocks/entinsert.h"
#include "vek0core/entities/entfactory.h"
#include "vek0core/tables/colors.h"
#include "vek0core/tables/font.h"

namespace {

constexpr short kNoLayerColor = 7;

// The item of an external reference that a dependent name refers to.
template <class Item, class Table>
Item* getDependent(const CData& data, const zim::WString& name,
                   const Table& (CBlockXRef::*tableOf)() const) {
  zim::WString xrefName, itemName;
  if (!scomposeName(name, xrefName, itemName)) return nullptr;
  const CBlockXRef* xref = data.getBlockXRefTable().get(xrefName);
  return xref ? (xref->*tableOf)().get(itemName) : nullptr;
}

class UsedBlocks {
 public:
  explicit UsedBlocks(const CData& data) {
    for (const CEnt* ent : data.getEntTable().getEntityTbl()) add(*ent);
    const CBlockTable& blocks = data.getBlockTable();
    for (int i = 0; i < blocks.size(); ++i) addContents(*blocks[i]);
    const CBlockXRefTable& xrefs = data.getBlockXRefTable();
    for (int i = 0; i < xrefs.size(); ++i) addContents(*xrefs[i]);
  }
  bool has(const CBlock* block) const { return m_used.count(block) > 0; }

 private:
  void addContents(const CBlock& block) {
    for (unsigned i = 0; i < block.size(); ++i) add(*block[i]);
  }
  void add(const CEnt& ent) {
    if (const CEntInsertBase* insert = ent.getEntInsert()) m_used.insert(insert->getBlock());
  }
  std::unordered_set<const CBlock*> m_used;
};

}  // namespace

void initCore() {}

void shutdownCore() {
#if !defined(NDEBUG)
  ZORA_ASSERT(vek0::detail::LivingDrawing::count() == 0);
#endif
  CFontTable::shutdown();
  CColors::shutdown();
}

void deleteData(CData* data) { delete data; }

CLtype* getCurLtype(const CData& data) { return data.getVars().getCurLtype(); }
CLayer* getCurLayer(const CData& data) { return data.getVars().getCurLayer(); }
CStyle* getCurStyle(const CData& data) { return data.getVars().getCurStyle(); }
short getCurColor(const CData& data) { return data.getVars().getCurColor(); }
void setCurLtype(CData& data, CLtype* ltype) { data.getVars().setCurLtype(ltype); }
void setCurLayer(CData& data, CLayer* layer) { data.getVars().setCurLayer(layer); }
void setCurStyle(CData& data, CStyle* style) { data.getVars().setCurStyle(style); }
void setCurColor(CData& data, short color) { data.getVars().setCurColor(color); }

CLtypeByLayer* getLtypeByLayer(CData& data) { return &data.getLtypeByLayer(); }
CLtypeByBlock* getLtypeByBlock(CData& data) { return &data.getLtypeByBlock(); }
CLayer0* getLayer0(CData& data) { return &data.getLayer0(); }
CStyleStandard* getStyleStandard(CData& data) { return data.getStyleTable().getStyleStandard(); }

void addLtype(CData& data, CLtype* ltype) { data.getLtypeTable().add(ltype); }
void addLayer(CData& data, CLayer* layer) { data.getLayerTable().add(layer); }
void addStyle(CData& data, CStyle* style) { data.getStyleTable().add(style); }

CLtype* getLtype(const CData& data, const zim::WString& name) {
  if (CLtype* own = data.getLtypeTable().get(name)) return own;
  return getDependent<CLtype>(data, name, &CBlockXRef::getLtypeTable);
}

CLayer* getLayer(const CData& data, const zim::WString& name) {
  if (CLayer* own = data.getLayerTable().get(name)) return own;
  return getDependent<CLayer>(data, name, &CBlockXRef::getLayerTable);
}

CStyle* getStyle(const CData& data, const zim::WString& name) {
  if (CStyle* own = data.getStyleTable().get(name)) return own;
  return getDependent<CStyle>(data, name, &CBlockXRef::getStyleTable);
}

void removeLtype(CData& data, CLtype* ltype) { data.getLtypeTable().remove(ltype); }
void removeLayer(CData& data, CLayer* layer) { data.getLayerTable().remove(layer); }
void removeStyle(CData& data, CStyle* style) { data.getStyleTable().remove(style); }

void removeLtype(CData& data, const zim::WString& name) {
  removeLtype(data, data.getLtypeTable().get(name));
}
void removeLayer(CData& data, const zim::WString& name) {
  removeLayer(data, data.getLayerTable().get(name));
}
void removeStyle(CData& data, const zim::WString& name) {
  removeStyle(data, data.getStyleTable().get(name));
}

double getLtypeScale(const CData& data) { return data.getVars().getLtypeScale(); }
void setLtypeScale(CData& data, double scale) { data.getVars().setLtypeScale(scale); }

short getColor(short color, const CLayer* layer, short blockColor) {
  if (color == kColorByBlock) return blockColor;
  if (color != kColorByLayer) return color;
  return layer ? layer->getColor() : kNoLayerColor;
}

zim::WString GetBlockProgressiveName(const zim::WString& prefix, const CBlockTable& table) {
  return table.GetProgName(prefix);
}

bool scomposeName(const zim::WString& full, zim::WString& xrefName, zim::WString& itemName) {
  const std::u16string_view name = full;
  const std::size_t bar = name.find(u'|');
  // "|" must separate two names; at either end it is part of an ordinary name.
  if (bar == std::u16string_view::npos || bar == 0 || bar + 1 == name.size()) return false;
  const zim::WString head(name.substr(0, bar)), tail(name.substr(bar + 1));
  xrefName = head;
  itemName = tail;
  return true;
}

IHandleGestor& getHandleGestor(const CData& data) { return data.getHandleGestor(); }

CEnt* cloneEnt(CData& data, const CEnt& ent) {
  return data.getEntFactory().clone(data.getHandleGestor(), data.getBlockFactory(),
                                    data.getBlockTable(), ent);
}

long purgeHatchBlocks(CData& data) {
  const UsedBlocks used(data);
  // Collected first, because removal changes the positions.
  CBlockTable& table = data.getBlockTable();
  std::vector<CBlock*> unused;
  for (int i = 0; i < table.size(); ++i) {
    if (isHatchName(table[i]->getName()) && !used.has(table[i])) unused.push_back(table[i]);
  }
  for (CBlock* block : unused) {
    table.remove(block);
    delete block;
  }
  return static_cast<long>(unused.size());
}
