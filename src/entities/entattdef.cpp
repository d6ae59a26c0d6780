#include "vek0core/entities/entattdef.h"

#include "entities/newornull.h"
#include "vek0core/entities/entvisitor.h"

CEntAttdef::CEntAttdef(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color,
                       const TEXT_3D& text, const zim::WString& value, const zim::WString& prompt,
                       long flags)
    : CEntText(handle, layer, ltype, color, text),
      m_value(value),
      m_prompt(prompt),
      m_flags(flags) {}

CEntAttdef::CEntAttdef(const CEntAttdef& src, vek0::Handle handle)
    : CEntText(src, handle), m_value(src.m_value), m_prompt(src.m_prompt), m_flags(src.m_flags) {}

void CEntAttdef::accept(IEntVisitor& visitor) { visitor.visit(*this); }

void CEntAttdef::setMemento(CData&, const IEntDerivedMemento* memento) {
  const auto* state = vek0::detail::mementoOf<CEntAttdef, CEntAttdefMemento>(memento);
  if (state == nullptr) return;
  restoreText(state->getText());
  m_value = state->m_value;
  m_prompt = state->m_prompt;
  m_flags = state->m_flags;
}

IEntDerivedMemento* CEntAttdef::createDerivedMemento() const {
  return vek0::detail::newOrNull<CEntAttdefMemento>(*this);
}

CEnt* CEntAttdef::clone(IHandleGestor&, CEntFactory&, CBlockFactory&, CBlockTable&,
                        vek0::Handle handle) const {
  return new (std::nothrow) CEntAttdef(*this, handle);
}

CEntAttdefMemento::CEntAttdefMemento(const CEntAttdef& ent)
    : CEntTextMemento(ent),
      m_value(ent.getValue()),
      m_prompt(ent.getPrompt()),
      m_flags(ent.getFlags()) {}

bool CEntAttdefMemento::operator==(const CEnt& ent) const {
  if (ent.getType() != CEntAttdef::kType) return false;
  const auto& attdef = static_cast<const CEntAttdef&>(ent);
  return sameText(attdef) && attdef.getValue() == m_value && attdef.getPrompt() == m_prompt &&
         attdef.getFlags() == m_flags;
}
