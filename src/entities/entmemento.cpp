#include "vek0core/entities/entmemento.h"

CEntBaseMemento::CEntBaseMemento(CLayer* layer, CLtype* ltype, short color,
                                 const vek0::detail::EntTraitsRef& traits)
    : m_layer(layer), m_ltype(ltype), m_traits(traits), m_color(color) {}

CEntBaseMemento::~CEntBaseMemento() = default;

bool CEntBaseMemento::operator==(const CEnt& ent) const { return ent.operator==(*this); }

bool CEntBaseMemento::operator!=(const CEnt& ent) const { return !ent.operator==(*this); }

IEntDerivedMemento::~IEntDerivedMemento() = default;

vek0::detail::EntParts::~EntParts() = default;

bool IEntDerivedMemento::operator!=(const CEnt& ent) const { return !operator==(ent); }

IEntDerivedMemento* IEntDerivedMemento::fitMemento(const CEnt&) { return nullptr; }

short IEntDerivedMemento::getType() const { return 0; }
