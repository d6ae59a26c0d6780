// Binding copies the content of a reference into the drawing: its items under new names, its
// blocks, and the reference itself as a block, all as additions on the undo stack. Nested
// references are bound first, because the content that shows them refers to their blocks. Inserts
// of the reference are then redirected to the block that replaces it.
#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "drawing/entcloner.h"
#include "drawing/everyentity.h"
#include "tables/handover.h"
#include "tables/itemflags.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/drawing/tableremapper.h"
#include "vek0core/entities/blocks/blockfactory.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/xref/xrefs.h"
#include "xref/xrefedit.h"

namespace {

using vek0::detail::areOutermost;
using vek0::detail::cloneDashes;
using vek0::detail::cloneOnto;
using vek0::detail::EditStep;
using vek0::detail::kDependent;
using vek0::detail::kResolved;
using vek0::detail::orThrow;
using vek0::detail::XRefs;

// "xref$0$item", or with the smallest other number that is unused in the table.
template <class Table>
zim::WString boundName(const Table& table, const zim::WString& xref, const zim::WString& item) {
  for (long n = 0;; ++n) {
    zim::WString name = xref + u"$" + zim::WString::fromUtf8(std::to_string(n)) + u"$" + item;
    if (table.get(name) == nullptr) return name;
  }
}

bool isLoaded(const CBlockXRef& xref) { return xref.getStatus() == CBlockXRef::Status::loaded; }

// A path stated by the drawing at path `from`, relative to the drawing that states `from`.
zim::WString pathSeenFrom(const zim::WString& from, const zim::WString& path) {
  constexpr std::u16string_view kSlashes = u"/\\";
  const std::u16string_view own = path.view(), outer = from.view();
  // A colon follows the letter of a drive.
  const bool isAbsolute = own.find_first_of(kSlashes) == 0 || own.substr(0, 2).ends_with(u':');
  const std::size_t folderEnd = outer.find_last_of(kSlashes);
  if (isAbsolute || folderEnd == std::u16string_view::npos) return path;
  return zim::WString(outer.substr(0, folderEnd + 1)) + own;
}

// Throws `std::bad_alloc` if an edit cannot be made.
class Binder {
 public:
  Binder(CData& data, CUndoStack& undo) : m_data(data), m_undo(undo) {}

  void bind(const XRefs& xrefs) {
    const std::unordered_set<const CBlockXRef*> asked(xrefs.begin(), xrefs.end());
    const std::vector<Nesting> order = nestedFirst(xrefs);
    movePaths(order);
    for (const Nesting& nesting : order) {
      const zim::WString& name = nesting.xref->getName();
      const bool keepsName = asked.count(nesting.xref) != 0;
      // A nested reference gets a name that shows where it came from.
      bindOne(
          *nesting.xref,
          keepsName ? name : boundName(m_data.getBlockTable(), nesting.shownBy->getName(), name));
    }
  }

  void repoint(const std::vector<CEnt*>& inserts) {
    std::unordered_set<CBlock*> owners;
    for (CEnt* ent : inserts) {
      if (!m_undo.keep(*ent)) throw std::bad_alloc();
      CEntInsertBase& insert = *ent->getEntInsert();
      insert.setBlock(m_map(insert.getBlock()));
      if (CBlock* owner = ent->getOwnerBlock()) owners.insert(owner);
      vek0::detail::spreadBdry(m_data, *ent);
    }
    // Once per block, because updating the graph costs a pass over its entities.
    for (CBlock* owner : owners) m_data.getBlockTable().updateBlock(owner);
  }

  // Moves entities of the drawing on items of a reference to the replacements of these items.
  void leaveItems(const CBlockXRef& xref, CTableRemapper& items) const {
    for (int i = 0; i < xref.getLayerTable().size(); ++i)
      items.ChangeInto(xref.getLayerTable()[i], m_map(xref.getLayerTable()[i]));
    for (int i = 0; i < xref.getLtypeTable().size(); ++i)
      items.ChangeInto(xref.getLtypeTable()[i], m_map(xref.getLtypeTable()[i]));
    for (int i = 0; i < xref.getStyleTable().size(); ++i)
      items.ChangeInto(xref.getStyleTable()[i], m_map(xref.getStyleTable()[i]));
  }

  CLtype* ltypeFor(CLtype* ltype) const { return m_map(ltype); }

 private:
  struct Nesting {
    CBlockXRef* xref;
    const CBlockXRef* shownBy;  // the first reference that shows it; null for the outermost
    std::size_t next = 0;
  };

  // Loaded references and the loaded ones that they show, each after those that it shows. Not
  // recursive, because they may be nested arbitrarily deep.
  static std::vector<Nesting> nestedFirst(const XRefs& xrefs) {
    std::vector<Nesting> order, open;
    std::unordered_set<const CBlockXRef*> met;
    const auto enter = [&](CBlockXRef* xref, const CBlockXRef* shownBy) {
      if (isLoaded(*xref) && met.insert(xref).second) open.push_back({xref, shownBy});
    };
    for (CBlockXRef* outermost : xrefs) {
      enter(outermost, nullptr);
      while (!open.empty()) {
        Nesting& top = open.back();
        if (top.next < top.xref->getNested().size()) {
          enter(top.xref->getNested()[top.next++], top.xref);
        } else {
          order.push_back(top);
          open.pop_back();
        }
      }
    }
    return order;
  }

  // Paths of remaining references were relative to the drawing that states them, and are now
  // relative to this one.
  void movePaths(const std::vector<Nesting>& order) {
    std::unordered_map<const CBlockXRef*, zim::WString> paths;
    for (auto it = order.rbegin(); it != order.rend(); ++it) {  // outer references first
      const CBlockXRef& shower = *it->xref;
      const zim::WString& from = paths.try_emplace(&shower, shower.getPath()).first->second;
      for (CBlockXRef* nested : shower.getNested()) {
        // The drawing inserts it as well, so its path is already relative to the drawing.
        if (nested->getEntities() > 0) continue;
        const auto [at, isNew] = paths.try_emplace(nested, pathSeenFrom(from, nested->getPath()));
        // The first reference that shows it decides.
        if (!isNew || isLoaded(*nested) || at->second == nested->getPath()) continue;
        if (!setXRefPath(m_undo, *nested, at->second)) throw std::bad_alloc();
      }
    }
  }

  void bindOne(const CBlockXRef& xref, const zim::WString& blockName) {
    // In the order of use: linetypes name styles, layers name linetypes, entities all of them.
    bindStyles(xref);
    bindLtypes(xref);
    bindLayers(xref);
    for (const auto& block : xref.getBlocks())
      bindBlock(*block, innerName(xref, block->getName()), block->getPnt());
    bindBlock(xref, blockName, xref.getContentBase());
  }

  template <class Item>
  Item& added(Item* made) {
    std::unique_ptr<Item> item(orThrow(made));
    if (!m_undo.add(item.get())) throw std::bad_alloc();
    return *item.release();
  }

  void bindStyles(const CBlockXRef& xref) {
    const CStyleTable& table = xref.getStyleTable();
    for (int i = 0; i < table.size(); ++i) {
      CStyle* own = getStyleStandard(m_data);
      // Equal STANDARD styles are shared, as every drawing has one.
      if (table[i] != table.getStyleStandard() || CStyleMemento(*own) != *table[i]) {
        std::unique_ptr<CStyle> copy(orThrow(m_data.getStyleFactory().create(*table[i])));
        copy->setName(boundName(m_data.getStyleTable(), xref.getName(), table[i]->getName()));
        own = &added(copy.release());
      }
      m_map.add(table[i], own);
    }
  }

  void bindLtypes(const CBlockXRef& xref) {
    const CLtypeTable& table = xref.getLtypeTable();
    for (int i = 0; i < table.size(); ++i) {
      const CLtype& ltype = *table[i];
      const zim::WString name = boundName(m_data.getLtypeTable(), xref.getName(), ltype.getName());
      m_map.add(table[i], &added(m_data.getLtypeFactory().create(
                              name, ltype.getDesc(), cloneDashes(ltype, m_map), ownFlags(ltype))));
    }
  }

  void bindLayers(const CBlockXRef& xref) {
    const CLayerTable& table = xref.getLayerTable();
    for (int i = 0; i < table.size(); ++i) {
      const CLayer& layer = *table[i];
      const zim::WString name = boundName(m_data.getLayerTable(), xref.getName(), layer.getName());
      CLayer& made = added(m_data.getLayerFactory().create(name, m_map(layer.getLtype()),
                                                           layer.getColor(), ownFlags(layer)));
      made.copyExtras(layer);
      m_map.add(table[i], &made);
    }
  }

  static long ownFlags(const CNamedItem& item) {
    return item.getFlags() & ~(kDependent | kResolved);
  }

  zim::WString innerName(const CBlockXRef& xref, const zim::WString& name) const {
    const CBlockTable& table = m_data.getBlockTable();
    // Names of generated blocks must stay recognizable as such.
    if (isHatchName(name)) return getHatchName(table);
    if (name.view().substr(0, 1) != u"*") return boundName(table, xref.getName(), name);
    return GetBlockProgressiveName(
        name.Length() > 1 ? zim::WString(name.view().substr(0, 2)) : u"*U", table);
  }

  void bindBlock(const CBlock& from, const zim::WString& name, const PNT_3D& base) {
    // Attribute definitions are counted by the block when they are added.
    std::unique_ptr<CBlock> block(orThrow(m_data.getBlockFactory().create(
        name, base, from.isXRef() ? 0 : from.getFlags() & ~CBlock::kHasAttdefs)));
    for (unsigned i = 0; i < from.size(); ++i) {
      // Vertices of the host may have the same handles.
      std::unique_ptr<CEnt> copy =
          cloneOnto(m_data, m_map, *from[i], vek0::detail::VertexHandles::Drop);
      // The entities of a reference are in its own coordinates; `add` moves them by the base point.
      if (from.isXRef())
        vek0::detail::addTo(*block, std::move(copy));
      else
        vek0::detail::restoreTo(*block, std::move(copy));
    }
    m_map.add<CBlock>(&from, &added(block.release()));
  }

  CData& m_data;
  CUndoStack& m_undo;
  vek0::detail::ItemMap m_map;
};

}  // namespace

CBlock* bindXRef(CData& data, CUndoStack& undo, CBlockXRef& xref) try {
  const zim::WString name = xref.getName();
  return bindXRefs(data, undo, {&xref}) ? data.getBlockTable().get(name) : nullptr;
} catch (const std::bad_alloc&) {
  return nullptr;
}

bool bindXRefs(CData& data, CUndoStack& undo, const std::vector<CBlockXRef*>& xrefs) try {
  const auto loaded = [](const CBlockXRef* xref) { return isLoaded(*xref); };
  if (!std::all_of(xrefs.begin(), xrefs.end(), loaded) || !areOutermost(data, xrefs)) return false;
  EditStep step(undo);
  Binder binder(data, undo);
  binder.bind(xrefs);
  // First the entities, then the tables: a reference is removed only when nothing uses it.
  binder.repoint(vek0::detail::insertsOf(data, xrefs));
  const XRefs going = vek0::detail::shownOnlyBy(xrefs);
  CTableRemapper items(data, false);
  for (const CBlockXRef* gone : going) binder.leaveItems(*gone, items);
  const auto bound = [&binder](CLtype* ltype) { return binder.ltypeFor(ltype); };
  return items.Remap(undo) && vek0::detail::leaveLtypes(data, undo, going, bound) &&
         vek0::detail::removeXRefs(data, undo, going) && step.done();
} catch (const std::bad_alloc&) {
  return false;
}
