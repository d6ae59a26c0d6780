#include "vek0core/entities/entattrib.h"

#include "entities/newornull.h"
#include "vek0core/entities/entattdef.h"
#include "vek0core/entities/entvisitor.h"

CEntAttrib::CEntAttrib(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color,
                       const TEXT_3D& text, const zim::WString& tag, long flags)
    : CEntText(handle, layer, ltype, color, text), m_tag(tag), m_flags(flags) {}

CEntAttrib::CEntAttrib(const zim::WString& value, const CEntAttdef& def, vek0::Handle handle)
    : CEntText(def, handle), m_tag(def.getTag()), m_flags(def.getFlags()) {
  setString(value);
}

CEntAttrib::CEntAttrib(const CEntAttrib& src, vek0::Handle handle)
    : CEntText(src, handle), m_tag(src.m_tag), m_flags(src.m_flags), m_readPlace(src.m_readPlace) {}

void CEntAttrib::accept(IEntVisitor& visitor) { visitor.visit(*this); }

void CEntAttrib::setMemento(CData&, const IEntDerivedMemento* memento) {
  const auto* state = vek0::detail::mementoOf<CEntAttrib, CEntAttribMemento>(memento);
  if (state == nullptr) return;
  restoreText(state->getText());
  m_tag = state->getTag();
  m_flags = state->getFlags();
}

IEntDerivedMemento* CEntAttrib::createDerivedMemento() const {
  return vek0::detail::newOrNull<CEntAttribMemento>(*this);
}

CEnt* CEntAttrib::clone(IHandleGestor&, CEntFactory&, CBlockFactory&, CBlockTable&,
                        vek0::Handle handle) const {
  return new (std::nothrow) CEntAttrib(*this, handle);
}

CEntAttribMemento::CEntAttribMemento(const CEntAttrib& ent)
    : CEntTextMemento(ent), m_tag(ent.getTag()), m_flags(ent.getFlags()) {}

bool CEntAttribMemento::operator==(const CEnt& ent) const {
  if (ent.getType() != CEntAttrib::kType) return false;
  const auto& attrib = static_cast<const CEntAttrib&>(ent);
  return sameText(attrib) && attrib.getTag() == m_tag && attrib.getFlags() == m_flags;
}
