#include "vek0core/tables/ltype.h"

#include <new>
#include <optional>

CLtypeMemento::CLtypeMemento(const CLtype& ltype)
    : m_patternLength(ltype.getPatternLen()),
      m_name(ltype.getName()),
      m_desc(ltype.getDesc()),
      m_flags(ltype.getFlags()),
      m_dashes(ltype.GetLtypeComplexDashSeq()) {}

bool CLtypeMemento::operator==(const CLtype& ltype) const {
  return m_patternLength == ltype.getPatternLen() && m_name == ltype.getName() &&
         m_desc == ltype.getDesc() && m_flags == ltype.getFlags() &&
         m_dashes == ltype.GetLtypeComplexDashSeq();
}

CLtype::CLtype(const zim::WString& name, const zim::WString& desc,
               const CLtypeComplexDashSeq& dashes, long flags)
    : CNamedItem(name, flags), m_dashes(dashes), m_desc(desc) {}

CLtype::CLtype(const zim::WString& name, const zim::WString& desc, const double* values, long count,
               long flags)
    : CNamedItem(name, flags), m_desc(desc) {
  for (long i = 0; i < count; ++i) AddDashDouble(values[i]);
}

CLtype::CLtype(const CLtype& src)
    : CNamedItem(src), m_dashes(src.m_dashes), m_desc(src.m_desc), m_layers(src.m_layers) {}

CLtype& CLtype::operator=(const CLtype& src) {
  if (this == &src) return *this;
  CNamedItem::operator=(src);
  m_dashes = src.m_dashes;
  m_desc = src.m_desc;
  return *this;
}

bool CLtype::operator==(const CLtype& other) const {
  return CNamedItem::operator==(other) && m_desc == other.m_desc &&
         getNoDashes() == other.getNoDashes();
}

const ILtypeComplexDash* CLtype::getDashArray() const {
  return getNoDashes() > 0 ? GetDash(0) : nullptr;
}

CLtypeMemento* CLtype::createMemento() const try {
  return new (std::nothrow) CLtypeMemento(*this);
} catch (const std::bad_alloc&) {
  return nullptr;
}

CLtypeComplexDashSeq CLtypeMemento::makeDashes() const {
  CLtypeComplexDashSeq dashes;
  dashes.SetMemento(&m_dashes);
  return dashes;
}

void CLtype::setMemento(const CLtypeMemento& memento) {
  std::optional<CLtypeComplexDashSeq> dashes;
  if (!m_dashes.hasShapeOf(memento.m_dashes)) dashes.emplace(memento.makeDashes());
  m_desc.reserve(memento.m_desc.Length());
  setName(memento.m_name);  // the last that can fail
  m_desc = memento.m_desc;
  setFlags(memento.m_flags);
  dashes ? m_dashes.swap(*dashes) : m_dashes.SetMemento(&memento.m_dashes);
}

void CLtype::setMemento(const CLtypeMemento& memento, CLtypeComplexDashSeq& dashes) {
  m_desc.reserve(memento.m_desc.Length());
  setName(memento.m_name);  // the last that can fail
  m_desc = memento.m_desc;
  setFlags(memento.m_flags);
  m_dashes.swap(dashes);
}

CLtypeContinuous::CLtypeContinuous()
    : CLtype(u"Continuous", u"SolidLine", CLtypeComplexDashSeq(), 0) {}
CLtypeByLayer::CLtypeByLayer() : CLtype(u"BYLAYER", u"", CLtypeComplexDashSeq(), 0) {}
CLtypeByBlock::CLtypeByBlock() : CLtype(u"BYBLOCK", u"", CLtypeComplexDashSeq(), 0) {}

CLtype* CLtypeFactory::create(CLtype& src) try {
  return new (std::nothrow) CLtype(src);
} catch (const std::bad_alloc&) {
  return nullptr;
}

CLtype* CLtypeFactory::create(const zim::WString& name, const zim::WString& desc, double* values,
                              long count, long flags) try {
  return new (std::nothrow) CLtype(name, desc, values, count, flags);
} catch (const std::bad_alloc&) {
  return nullptr;
}

CLtype* CLtypeFactory::create(const zim::WString& name, const zim::WString& desc,
                              const CLtypeComplexDashSeq& dashes, long flags) try {
  return new (std::nothrow) CLtype(name, desc, dashes, flags);
} catch (const std::bad_alloc&) {
  return nullptr;
}
