#pragma once

#include <atomic>
#include <memory>
#include <unordered_map>

#include "vek0core/drawing/datavariables.h"
#include "vek0core/drawing/layout.h"
#include "vek0core/entities/blocks/blocktable.h"
#include "vek0core/entities/blocks/blockxref.h"
#include "vek0core/entities/enttable.h"
#include "vek0core/export.h"
#include "vek0core/hatch/hatchtypetable.h"
#include "vek0core/tables/font.h"
#include "vek0core/tables/handle.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/layertable.h"
#include "vek0core/tables/ltype.h"
#include "vek0core/tables/ltypetable.h"
#include "vek0core/tables/style.h"
#include "vek0core/tables/styletable.h"

class CBlockFactory;
class CEntFactory;

namespace vek0::detail {

/// Member of every drawing that counts the living drawings: the process-wide fonts must outlive
/// them.
class VEK0_API LivingDrawing {
 public:
  LivingDrawing() { ++s_count; }
  LivingDrawing(const LivingDrawing&) { ++s_count; }
  LivingDrawing& operator=(const LivingDrawing&) = default;
  ~LivingDrawing() { --s_count; }

  static long count() { return s_count; }

 private:
  static std::atomic<long> s_count;
};

}  // namespace vek0::detail

/// A drawing: its tables, fixed items, variables, and the factories that make what goes into them.
/// Created by `CDataFactory` and destroyed by `deleteData`; in between, use the tables and the free
/// functions of functions.h.
///
/// One thread at a time may use a drawing. Different drawings may be used in different threads;
/// what they share (fonts, colors, hatch definitions) is constant or guarded.
class VEK0_API CData {
 public:
  class CLayerIterator;
  class CLtypeIterator;
  class CStyleIterator;

  /// Takes ownership of the six objects, none of which may be null. For `CDataFactory`; a derived
  /// class supplies its own factories.
  CData(std::unique_ptr<IHandleGestor> gestor, std::unique_ptr<CLtypeFactory> ltypeFactory,
        std::unique_ptr<CLayerFactory> layerFactory, std::unique_ptr<CStyleFactory> styleFactory,
        std::unique_ptr<CBlockFactory> blockFactory, std::unique_ptr<CEntFactory> entFactory);

  /// A view of `src`: its tables list the items of `src` without owning them, and it shares the
  /// handle manager, factories and current items. Valid while `src` lives and keeps its items.
  /// `cloneData` creates an independent copy.
  CData(CData& src);
  CData& operator=(const CData&) = delete;
  virtual ~CData();

  const CLtypeContinuous& getLtypeContinuous() const { return m_continuous; }
  CLtypeContinuous& getLtypeContinuous() { return m_continuous; }
  const CLtypeByLayer& getLtypeByLayer() const { return m_byLayer; }
  CLtypeByLayer& getLtypeByLayer() { return m_byLayer; }
  const CLtypeByBlock& getLtypeByBlock() const { return m_byBlock; }
  CLtypeByBlock& getLtypeByBlock() { return m_byBlock; }
  const CLayer0& getLayer0() const { return m_layer0; }
  CLayer0& getLayer0() { return m_layer0; }

  const CDataVariables& getVars() const { return m_vars; }
  CDataVariables& getVars() { return m_vars; }
  IHandleGestor& getHandleGestor() const { return *m_gestor; }
  const CBlockXRefDepend& getDepend() const { return m_depend; }
  CBlockXRefDepend& getDepend() { return m_depend; }

  const CLtypeTable& getLtypeTable() const { return m_ltypes; }
  CLtypeTable& getLtypeTable() { return m_ltypes; }
  const CLayerTable& getLayerTable() const { return m_layers; }
  CLayerTable& getLayerTable() { return m_layers; }
  const CStyleTable& getStyleTable() const { return m_styles; }
  CStyleTable& getStyleTable() { return m_styles; }
  const CBlockTable& getBlockTable() const { return m_blocks; }
  CBlockTable& getBlockTable() { return m_blocks; }
  const CBlockXRefTable& getBlockXRefTable() const { return m_xrefs; }
  CBlockXRefTable& getBlockXRefTable() { return m_xrefs; }
  /// The entities of model space.
  const CEntTable& getEntTable() const { return m_entities; }
  CEntTable& getEntTable() { return m_entities; }

  const CLayoutTable& getLayouts() const { return *m_layouts; }
  CLayoutTable& getLayouts() { return *m_layouts; }

  CLtypeFactory& getLtypeFactory() const { return *m_ltypeFactory; }
  CLayerFactory& getLayerFactory() const { return *m_layerFactory; }
  CStyleFactory& getStyleFactory() const { return *m_styleFactory; }
  CBlockFactory& getBlockFactory() const { return *m_blockFactory; }
  CEntFactory& getEntFactory() const { return *m_entFactory; }

  /// The hatch patterns stored in the drawing.
  CHatchTypeTable& getHatchTypeTable() const { return *m_hatchTypes; }
  /// Maximum number of lines and points of one hatch, estimated before any are generated; a million
  /// by default. All hatches that the loader generates for one file may have three tenths of that,
  /// plus a thousandth per hatch; hatches beyond that have no lines.
  double getHatchLimit() const { return m_hatchLimit; }
  void setHatchLimit(double limit) { m_hatchLimit = limit; }

  /// Deletes everything except the fixed linetypes, layer "0" and style "STANDARD", which only lose
  /// their references to other items. Needs no memory.
  void clearAll();

  /// A font owned by this drawing with this name and the default metrics, created on the first
  /// call: it preserves the name of a font that the process does not have. It lives as long as the
  /// drawing and those that share its fonts.
  const ICADFont* needFont(const zim::WString& name);
  /// Makes `data`, which takes over styles of this drawing, keep the fonts alive too.
  void shareFonts(CData& data) const { data.m_fonts.insert(m_fonts.begin(), m_fonts.end()); }

 private:
  bool isView() const { return m_layers.getLayer0() != &m_layer0; }
  void releaseCounts();
  void clearUsers();

  std::shared_ptr<IHandleGestor> m_gestor;
  CBlockXRefDepend m_depend;
  CLtypeContinuous m_continuous;
  CLtypeByLayer m_byLayer;
  CLtypeByBlock m_byBlock;
  CLayer0 m_layer0;
  CDataVariables m_vars;
  CStyleTable m_styles;
  CLtypeTable m_ltypes;
  CLayerTable m_layers;
  CBlockXRefTable m_xrefs;
  CBlockTable m_blocks;
  std::shared_ptr<CLayoutTable> m_layouts;  // views share the source's
  CEntTable m_entities;
  std::shared_ptr<CLtypeFactory> m_ltypeFactory;
  std::shared_ptr<CLayerFactory> m_layerFactory;
  std::shared_ptr<CStyleFactory> m_styleFactory;
  std::shared_ptr<CBlockFactory> m_blockFactory;
  std::shared_ptr<CEntFactory> m_entFactory;
  std::unordered_map<zim::WString, std::shared_ptr<const ICADFont>> m_fonts;
  std::shared_ptr<CHatchTypeTable> m_hatchTypes;
  double m_hatchLimit = 1e6;
  vek0::detail::LivingDrawing m_living;
};

namespace vek0::detail {

/// Iterates over fixed items, then a table of the drawing, then the same table of each external
/// reference. Items added after the current position are visited; removing an item invalidates the
/// iterator.
template <class Item, class Table>
class ItemWalk {
 public:
  /// The current item; null at the end.
  Item* operator*() const;
  /// Total number of items of the iteration.
  int size() const;

 protected:
  using XRefTable = const Table& (CBlockXRef::*)() const;

  ItemWalk(const CData& data, const Table& own, XRefTable ofXRef, bool withXRefs);
  void addFixed(Item* item) { m_fixed[m_fixedCount++] = item; }
  /// Advances; has no effect at the end.
  void findNext() const;

 private:
  const Table* table() const;
  void skipExhausted() const;

  const CBlockXRefTable* m_xrefs;
  const Table* m_own;
  XRefTable m_ofXRef;
  bool m_withXRefs;
  Item* m_fixed[3] = {};
  unsigned m_fixedCount = 0;
  // Current position: in the fixed items, the drawing's table (-1), or reference 0, 1, ... Mutable
  // because the interface fixes the iterators' postfix increment as const.
  mutable unsigned m_atFixed = 0;
  mutable int m_xref = -1;
  mutable int m_pos = 0;
};

extern template class VEK0_API ItemWalk<CLayer, CLayerTable>;
extern template class VEK0_API ItemWalk<CLtype, CLtypeTable>;
extern template class VEK0_API ItemWalk<CStyle, CStyleTable>;

}  // namespace vek0::detail

/// Layer "0", the listed layers and, if asked for, those of every external reference.
class VEK0_API CData::CLayerIterator : public vek0::detail::ItemWalk<CLayer, CLayerTable> {
 public:
  CLayerIterator(const CData& data, bool withXRefs);
  CLayerIterator& operator++();
  /// Steps this iterator itself and answers where it was before.
  CLayerIterator operator++(int) const;
};

/// BYLAYER and BYBLOCK if asked for, Continuous, the listed linetypes and, if asked for,
/// those of every external reference.
class VEK0_API CData::CLtypeIterator : public vek0::detail::ItemWalk<CLtype, CLtypeTable> {
 public:
  CLtypeIterator(const CData& data, bool withXRefs, bool withByLayerByBlock);
  CLtypeIterator& operator++();
  /// Steps this iterator itself and answers where it was before.
  CLtypeIterator operator++(int) const;
};

/// The text styles, "STANDARD" first, and, if asked for, those of every external
/// reference.
class VEK0_API CData::CStyleIterator : public vek0::detail::ItemWalk<CStyle, CStyleTable> {
 public:
  CStyleIterator(const CData& data, bool withXRefs);
  CStyleIterator& operator++();
  /// Steps this iterator itself and answers where it was before.
  CStyleIterator operator++(int) const;
};
