#include "vek0core/tables/layertable.h"

#include "vek0core/tables/ltype.h"

void CLayerTable::add(CLayer* layer) {
  const int before = size();
  CNamedItemTableImp::add(layer);
  if (size() > before && layer->getLtype()) layer->getLtype()->addLayer();
}

void CLayerTable::remove(CLayer* layer) {
  if (!layer || isView()) return;
  CNamedItemTableImp::remove(layer);
  if (layer->getLtype()) layer->getLtype()->decLayer();
}

void CLayerTable::restore(CLayer* layer, const Place& place) {
  const int before = size();
  CNamedItemTableImp::restore(layer, place);
  if (size() > before && layer->getLtype()) layer->getLtype()->addLayer();
}

CLayer* CLayerTable::get(std::u16string_view name) const {
  if (name == u"0") return m_layer0;
  return static_cast<CLayer*>(CNamedItemTableImp::get(name));
}

void CLayerTable::clearAll() {
  for (int i = 0; !isView() && i < size(); ++i) {
    if (CLtype* ltype = (*this)[i]->getLtype()) ltype->decLayer();
  }
  CNamedItemTableImp::clearAll();
}
