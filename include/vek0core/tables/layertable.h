#pragma once

#include "vek0core/export.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/nameditem.h"

/// The layers of a drawing. Layer "0" is not in the list and is never deleted, but is found by
/// name, before any item of that name. Listed layers are counted by their linetypes.
class VEK0_API CLayerTable : public CNamedItemTableImp {
 public:
  using CNamedItemTableImp::contains;
  using CNamedItemTableImp::getPlace;
  /// Layer "0" must outlive the table.
  explicit CLayerTable(CLayer0& layer0) : m_layer0(&layer0) {}
  /// A view, see `CNamedItemTableImp`; it names the source's layer "0".
  CLayerTable(const CLayerTable& src) = default;
  ~CLayerTable() { clearAll(); }

  /// Takes ownership of the layer and increments the layer count of its linetype.
  void add(CLayer* layer);
  /// Removes it; the caller owns it afterwards. The layer count of its linetype is decremented even
  /// if the layer was not in the table.
  void remove(CLayer* layer);
  /// Puts a layer back at its former place (`getPlace`), as if it had never been removed.
  void restore(CLayer* layer, const Place& place);
  /// Exactly "0" returns layer "0"; any other name the first layer added with that name, ignoring
  /// case, or null.
  CLayer* get(std::u16string_view name) const;
  /// Layer `i` of the list in order of addition; unchecked.
  CLayer* operator[](int i) const {
    return static_cast<CLayer*>(CNamedItemTableImp::operator[](i));
  }
  CLayer0* getLayer0() const { return m_layer0; }
  /// Deletes every listed layer and decrements the layer counts of their linetypes.
  void clearAll();

 private:
  CLayer0* m_layer0;
};
