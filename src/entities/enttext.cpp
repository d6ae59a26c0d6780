#include "vek0core/entities/enttext.h"

#include "entities/newornull.h"
#include "vek0core/entities/entvisitor.h"
#include "vek0core/tables/style.h"

CEntText::CEntText(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color,
                   const TEXT_3D& text)
    : CEnt(handle, layer, ltype, color), m_text(text) {
  dirtyBdry();
}

CEntText::CEntText(const CEntText& src, vek0::Handle handle)
    : CEnt(src, handle), m_text(src.m_text) {}

void CEntText::accept(IEntVisitor& visitor) { visitor.visit(*this); }

void CEntText::addTbls(IHandleGestor& gestor) const {
  CEnt::addTbls(gestor);
  if (CStyle* style = m_text.getStyle()) style->addEntity();
}

void CEntText::removeTbls(IHandleGestor& gestor) const {
  CEnt::removeTbls(gestor);
  if (CStyle* style = m_text.getStyle()) style->decEntity();
}

void CEntText::setMemento(CData&, const IEntDerivedMemento* memento) {
  const auto* state = vek0::detail::mementoOf<CEntText, CEntTextMemento>(memento);
  if (state != nullptr) restoreText(state->getText());
}

CStyle* CEntText::getStyle() const { return m_text.getStyle(); }

void CEntText::setStyle(CStyle* style) {
  if (CStyle* old = m_text.getStyle()) old->decEntity();
  m_text.setStyle(style);
  if (style != nullptr) style->addEntity();
  dirtyBdry();
}

void CEntText::calcBdry() {
  RECT_3D box;
  m_text.calc_bdry(box);
  setBdry(box);
}

IEntDerivedMemento* CEntText::createDerivedMemento() const {
  return vek0::detail::newOrNull<CEntTextMemento>(*this);
}

void CEntText::setText(const TEXT_3D& text) {
  m_text = text;
  dirtyBdry();
}

CEnt* CEntText::clone(IHandleGestor&, CEntFactory&, CBlockFactory&, CBlockTable&,
                      vek0::Handle handle) const {
  return new (std::nothrow) CEntText(*this, handle);
}

void CEntText::setString(const zim::WString& string) {
  CTextContext context = m_text.getContext();
  context.setString(string);
  m_text.setContext(context);
  dirtyBdry();
}

void CEntText::restoreText(const TEXT_3D& text) {
  setStyle(text.getStyle());
  setText(text);
}

bool CEntTextMemento::operator==(const CEnt& ent) const {
  return ent.getType() == CEntText::kType && sameText(static_cast<const CEntText&>(ent));
}
