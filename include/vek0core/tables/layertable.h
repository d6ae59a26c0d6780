#pragma once

#include "vek0core/export.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/nameditem.h"

/// The layers of a drawing. Layer "0" is not in the list and never deleted, but found
/// by name, before any item of that name. Listed layers count on their linetypes.
class VEK0_API CLayerTable : public CNamedItemTableImp {
 public:
  using CNamedItemTableImp::contains;
  using CNamedItemTableImp::getPlace;
  /// Layer "0" must outlive the table.
  explicit CLayerTable(CLayer0& layer0) : m_layer0(&layer0) {}
  /// A view, see `CNamedItemTableImp`; it names the source's layer "0".
  CLayerTable(const CLayerTable& src) = default;
  ~CLayerTable() { clearAll(); }

  /// Takes the layer over and counts it on its linetype.
  void add(CLayer* layer);
  /// Removes it; the caller owns it afterwards. The linetype counts one layer less even when the
  /// layer was not in the table.
  void remove(CLayer* layer);
  /// Puts a layer back at its former place (`getPlace`), as if it had never been removed.
  void restore(CLayer* layer, const Place& place);
  /// "0" exactly gives layer "0"; otherwise the first layer added of that name, ignoring case; null
  /// when there is none.
  CLayer* get(std::u16string_view name) const;
  /// Layer `i` of the list in order of addition; unchecked.
  CLayer* operator[](int i) const {
    return static_cast<CLayer*>(CNamedItemTableImp::operator[](i));
  }
  CLayer0* getLayer0() const { return m_layer0; }
  /// Deletes every listed layer, each of which gives back its count on its linetype.
  void clearAll();

 private:
  CLayer0* m_layer0;
};
