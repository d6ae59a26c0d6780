#include "corpus/drawingchecks.h"
#include "support/test.h"

namespace vek0::test {
namespace {

// Every item of the drawing that entities may name.
struct Items {
  explicit Items(CData& data) {
    for (CData::CLayerIterator it(data, true); *it; ++it) layers.insert(*it);
    for (CData::CLtypeIterator it(data, true, true); *it; ++it) ltypes.insert(*it);
    for (CData::CStyleIterator it(data, true); *it; ++it) styles.insert(*it);
    const CBlockTable& table = data.getBlockTable();
    for (int i = 0; i < static_cast<int>(table.size()); ++i) blocks.insert(table[i]);
    const CBlockXRefTable& xrefs = data.getBlockXRefTable();
    for (int i = 0; i < static_cast<int>(xrefs.size()); ++i) blocks.insert(xrefs[i]);
  }
  std::set<const CLayer*> layers;
  std::set<const CLtype*> ltypes;
  std::set<const CStyle*> styles;
  std::set<const CBlock*> blocks;
};

class Recount {
 public:
  explicit Recount(CData& data) : m_items(data) {}

  void add(CEnt& entity) {
    if (!m_items.layers.count(entity.getLayer()))
      m_fault = "an entity's layer is not in the drawing";
    if (!m_items.ltypes.count(entity.getLtype()))
      m_fault = "an entity's linetype is not in the drawing";
    if (entity.getStyle() && !m_items.styles.count(entity.getStyle()))
      m_fault = "an entity's style is not in the drawing";
    ++m_used[entity.getLayer()];
    ++m_used[entity.getLtype()];
    if (entity.getStyle()) ++m_used[entity.getStyle()];
    if (const CEntInsertBase* insert = entity.getEntInsert()) addInsert(*insert);
  }

  // Counts say how many entities use an item; a drawing that was only loaded has
  // exact ones.
  template <class Item>
  void compare(const Item& item, const char* kind) {
    const auto found = m_used.find(&item);
    const long used = found == m_used.end() ? 0 : found->second;
    if (item.getEntities() == used) return;
    m_fault = std::string("the use count of ") + kind + " " + item.getName().toUtf8() + " is " +
              std::to_string(item.getEntities()) + ", not " + std::to_string(used);
  }

  void compareAll() {
    for (const CLayer* layer : m_items.layers) compare(*layer, "layer");
    for (const CLtype* ltype : m_items.ltypes) compare(*ltype, "linetype");
    for (const CStyle* style : m_items.styles) compare(*style, "style");
  }

  const std::string& fault() const { return m_fault; }

 private:
  void addInsert(const CEntInsertBase& insert) {
    if (!m_items.blocks.count(insert.getBlock()))
      m_fault = "an insert's block is not in the drawing";
    for (unsigned i = 0; i < insert.GetNoAttribs(); ++i) add(*insert.GetAttrib(i));
  }

  Items m_items;
  std::map<const void*, long> m_used;
  std::string m_fault;
};

bool finite(const PNT_3D& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

std::string extentsFault(CData& data) {
  CEntTable& table = data.getEntTable();
  const RECT_3D cached = table.getBdry();
  if (cached.validRegion() && !(finite(cached.min) && finite(cached.max)))
    return "the extents are not finite";
  table.recalcBdry();
  const bool equal = cached.min == table.getBdry().min && cached.max == table.getBdry().max;
  return equal ? "" : "the cached extents are not those of the entities";
}

class Keep final : public IBlockOperation {
 public:
  int doOperation(CBlock&) override { return 0; }
};

}  // namespace

Drawing newDrawing() {
  CFontTable::getInstance().addPlainDefault();
  return Drawing(CDataFactory().createData());
}

LoadedFile load(const std::string& bytes, const CFileDXFIPolicy& policy) {
  LoadedFile loaded{newDrawing(), {}};
  CFileMemory file(u"test.dxf", 1, bytes);
  CFileDXFIOptions options;
  options.policy = policy;
  loadDXF(*loaded.drawing, file, &loaded.error, options);
  return loaded;
}

std::string save(const CData& data, unsigned flags) {
  CFileMemory out(u"out.dxf", 2);
  return SaveDXF(data, out, flags) ? out.bytes() : std::string();
}

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  EXPECT_TRUE(in) << path;
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

std::string inconsistency(CData& data) {
  Recount recount(data);
  for (CEnt* entity : data.getEntTable().getEntityTbl()) recount.add(*entity);
  CBlockTable& table = data.getBlockTable();
  for (int i = 0; i < static_cast<int>(table.size()); ++i)
    for (unsigned e = 0; e < table[i]->size(); ++e) recount.add(*(*table[i])[e]);
  recount.compareAll();
  if (!recount.fault().empty()) return recount.fault();
  Keep keep;
  if (table.getBlockGraph().VisitUndep(keep) != ZORA_BLOCK_VISIT_RESULT_SUCCESS)
    return "a block contains itself";
  return extentsFault(data);
}

}  // namespace vek0::test
