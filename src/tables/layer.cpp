#include "vek0core/tables/layer.h"

#include <new>

#include "vek0core/tables/ltype.h"

CLayerMemento::CLayerMemento(const CLayer& layer)
    : m_name(layer.getName()),
      m_ltype(layer.getLtype()),
      m_flags(layer.getFlags()),
      m_color(layer.getColor()),
      m_lineWidth(layer.getLineWidth()),
      m_traits(layer.getTraits()) {}

bool CLayerMemento::operator==(const CLayer& layer) const {
  return m_name == layer.getName() && m_ltype == layer.getLtype() && m_flags == layer.getFlags() &&
         m_color == layer.getColor() && m_lineWidth == layer.getLineWidth() &&
         m_traits == layer.getTraits();
}

void CLayer::setColor(short color) {
  m_color = color;
  m_traits.trueColor = ENT_TRAITS::kNoTrueColor;
}

void CLayer::copyExtras(const CLayer& src) {
  m_lineWidth = src.m_lineWidth;
  m_traits = src.m_traits;
}

void CLayer::setLtype(CLtype* ltype) {
  if (m_ltype) m_ltype->decLayer();
  m_ltype = ltype;
  if (m_ltype) m_ltype->addLayer();
}

CLayerMemento* CLayer::createMemento() const try {
  return new (std::nothrow) CLayerMemento(*this);
} catch (const std::bad_alloc&) {
  return nullptr;
}

void CLayer::setMemento(const CLayerMemento& memento) {
  setName(memento.m_name);
  setFlags(memento.m_flags);
  setLtype(memento.m_ltype);
  m_color = memento.m_color;
  m_lineWidth = memento.m_lineWidth;
  m_traits = memento.m_traits;
}

CLayer* CLayerFactory::create(const CLayer& src) try {
  return new (std::nothrow) CLayer(src);
} catch (const std::bad_alloc&) {
  return nullptr;
}

CLayer* CLayerFactory::create(const zim::WString& name, CLtype* ltype, short color,
                              long flags) try {
  return new (std::nothrow) CLayer(name, ltype, color, flags);
} catch (const std::bad_alloc&) {
  return nullptr;
}
