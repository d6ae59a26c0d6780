#pragma once

#include <cstdint>
#include <map>
#include <utility>

#include "compare/entfigure.h"
#include "compare/itemids.h"
#include "vek0core/compare/comparison.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/ltype.h"
#include "vek0core/tables/style.h"

namespace vek0::detail {

/// The items of two drawings by name; renamed ones count as the same.
struct SharedIds {
  ItemIds<CLayer> layers;
  ItemIds<CLtype> ltypes;
  ItemIds<CStyle> styles;
  ItemIds<CBlock> blocks;
};

/// Compares the entities of two drawings.
class EntComparer {
 public:
  /// `ids` must outlive the comparer. `effort` limits the entities of private blocks that it may
  /// compare; after that, these blocks count as equal if they have the same name.
  EntComparer(const Closeness& closeness, SharedIds& ids, std::size_t effort);

  /// What differs, apart from the place. Linear in the points.
  ENT_CHANGE compare(const CEnt& before, const CEnt& after);
  /// Whether the first points of both are the same.
  bool hasSameAnchor(const CEnt& before, const CEnt& after);
  /// Whether both blocks hold the same entities in the same order. Linear in what is left of the
  /// effort; false without any.
  bool isSameContent(const CBlock& before, const CBlock& after);
  /// To be called when items were renamed: private blocks may have become equal.
  void forgetBlocks() { m_sameContent.clear(); }
  const Closeness& closeness() const { return m_closeness; }
  SharedIds& ids() { return m_ids; }

 private:
  struct Figures {
    explicit Figures(const Closeness& closeness) : before(closeness), after(closeness) {}
    EntFigure before, after;
  };

  void compareProperties(const CEnt& before, const CEnt& after, ENT_CHANGE& change);
  void compareShapes(const Figures& figures, ENT_CHANGE& change);
  void comparePoints(const Figures& figures, ENT_CHANGE& change) const;
  void compareAttribs(const Figures& figures, ENT_CHANGE& change);
  bool hasSameStyles(const EntFigure& before, const EntFigure& after);
  bool hasSameBlocks(const EntFigure& before, const EntFigure& after);
  bool isSameBlock(const CBlock* before, const CBlock* after);
  bool isNear(double a, double b) const;
  bool areNear(const std::vector<double>& a, const std::vector<double>& b) const;

  Closeness m_closeness;
  SharedIds& m_ids;
  Figures m_figures;
  std::map<std::pair<const CBlock*, const CBlock*>, bool> m_sameContent;
  std::size_t m_effort;
  int m_depth = 0;  // of private blocks within each other
};

}  // namespace vek0::detail
