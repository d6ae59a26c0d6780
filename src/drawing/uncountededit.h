#pragma once

#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/ent.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/ltype.h"
#include "vek0core/tables/style.h"

namespace vek0::detail {

/// Scope in which layer, linetype and style of an entity may be set without counting: entities of
/// an external reference are not counted, but their setters count.
class UncountedEdit {
 public:
  explicit UncountedEdit(CEnt& ent)
      : m_ent(ent), m_layer(ent.getLayer()), m_ltype(ent.getLtype()), m_style(ent.getStyle()) {}
  UncountedEdit(const UncountedEdit&) = delete;
  UncountedEdit& operator=(const UncountedEdit&) = delete;
  ~UncountedEdit() {
    takeBack(m_layer, m_ent.getLayer());
    takeBack(m_ltype, m_ent.getLtype());
    takeBack(m_style, m_ent.getStyle());
  }

  /// Whether entities of this owner need it.
  static bool isFor(const CBlock* owner) {
    return owner != nullptr && (owner->isXRef() || owner->getContentOf() != nullptr);
  }

 private:
  static void takeBack(CNamedItem* from, CNamedItem* to) {
    if (from != nullptr) from->addEntity();
    if (to != nullptr) to->decEntity();
  }

  CEnt& m_ent;
  CLayer* m_layer;
  CLtype* m_ltype;
  CStyle* m_style;
};

}  // namespace vek0::detail
