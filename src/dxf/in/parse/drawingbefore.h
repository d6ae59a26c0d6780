#pragma once

#include <optional>

#include "vek0core/drawing/data.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/entities/enttable.h"

namespace vek0::detail {

/// The state of a drawing before reading. Only a drawing without content can be restored: if memory
/// runs out, it is emptied again.
class DrawingBefore {
 public:
  /// Borrows the drawing. Throws `std::bad_alloc`.
  explicit DrawingBefore(CData& data)
      : m_data(data),
        m_isNew(isNew(data)),
        m_vars(data.getVars()),
        m_layer0(data.getLayer0()),
        m_standard(m_isNew ? std::optional<CStyleMemento>(*getStyleStandard(data)) : std::nullopt) {
  }

  /// Needs no memory.
  void restore() const {
    if (!m_isNew) return;
    m_data.clearAll();
    m_data.getVars() = m_vars;
    m_data.getLayer0().setMemento(m_layer0);
    getStyleStandard(m_data)->setMemento(*m_standard);
  }

 private:
  static bool isNew(CData& data) {
    return data.getEntTable().getEntityTbl().empty() && data.getBlockTable().size() == 0 &&
           data.getBlockXRefTable().size() == 0 && data.getLayerTable().size() == 0 &&
           data.getLtypeTable().size() == 0 && data.getStyleTable().size() == 1 &&
           getStyleStandard(data) != nullptr;
  }

  CData& m_data;
  bool m_isNew;
  CDataVariables m_vars;
  CLayerMemento m_layer0;
  std::optional<CStyleMemento> m_standard;
};

}  // namespace vek0::detail
