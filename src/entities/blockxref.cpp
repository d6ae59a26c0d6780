#include "vek0core/entities/blockxref.h"

#include <new>

namespace {

constexpr long kDependent = 16, kResolved = 32;  // flag bits of dependent items

const zim::WString& compose(const CBlockXRef& xref, const zim::WString& name,
                            zim::WString& fullName) {
  fullName = xref.getName();
  fullName += u"|";
  fullName += name;
  return fullName;
}

}  // namespace

CBlockXRef::CBlockXRef(CLtypeContinuous& continuous, CLtypeByLayer& byLayer, CLtypeByBlock& byBlock,
                       CLayer0& layer0, const zim::WString& name, const zim::WString& path,
                       const PNT_3D& base, long flags)
    : CBlock(name, base, flags),
      m_path(path),
      m_ltypes(continuous, byLayer, byBlock),
      m_layers(layer0) {}

CBlockXRef::~CBlockXRef() = default;

void CBlockXRef::add(CEnt* ent) { restore(ent); }

bool CBlockXRef::isXRef() const { return true; }

void CBlockXRef::init(const zim::WString& path, const PNT_3D& base, long flags) {
  m_path = path;
  setOrigin(base);
  setFlags(flags);
}

CBlockXRefDepend::CBlockXRefDepend() = default;

CBlockXRefDepend::CBlockXRefDepend(const CBlockXRefDepend& src) { *this = src; }

CBlockXRefDepend& CBlockXRefDepend::operator=(const CBlockXRefDepend& src) {
  if (this == &src) return *this;
  m_list = src.m_list;
  m_places.clear();
  for (auto entry = m_list.begin(); entry != m_list.end(); ++entry)
    m_places.emplace(entry->first, entry);
  return *this;
}

CBlockXRefDepend::~CBlockXRefDepend() = default;

void CBlockXRefDepend::add(CBlockXRef* xref) {
  if (xref == nullptr) return;
  const auto place = m_places.find(xref);
  if (place != m_places.end()) {
    ++place->second->second;
    return;
  }
  m_list.emplace_back(xref, 1);
  m_places.emplace(xref, std::prev(m_list.end()));
}

void CBlockXRefDepend::remove(CBlockXRef* xref) {
  const auto place = m_places.find(xref);
  if (place == m_places.end() || --place->second->second > 0) return;
  m_list.erase(place->second);
  m_places.erase(place);
}

long CBlockXRefDepend::getCount(const CBlockXRef* xref) const {
  const auto place = m_places.find(xref);
  return place != m_places.end() ? place->second->second : 0;
}

void CBlockXRefTable::add(CBlockXRef* xref) { CNamedItemTableImp::add(xref); }

void CBlockXRefTable::remove(CBlockXRef* xref) { CNamedItemTableImp::remove(xref); }

CBlockXRef* CBlockXRefTable::get(std::u16string_view name) const {
  return static_cast<CBlockXRef*>(CNamedItemTableImp::get(name));
}

CBlockXRef* CBlockXRefTable::operator[](int i) const {
  return static_cast<CBlockXRef*>(CNamedItemTableImp::operator[](i));
}

CLayerXRef::CLayerXRef(CBlockXRef& xref, const zim::WString& name, CLtype* ltype, short color,
                       long flags)
    : CLayer(name, ltype, color, flags | kDependent | kResolved), m_xref(xref) {}

const zim::WString& CLayerXRef::getFullName() const {
  return compose(m_xref, getName(), m_fullName);
}

void CLayerXRef::setFlags(long flags) { CLayer::setFlags(flags | kDependent | kResolved); }

void CLayerXRef::accept(ILayerVisitor& visitor) { visitor.visit(*this); }

CLtypeXRef::CLtypeXRef(CBlockXRef& xref, const zim::WString& name, const zim::WString& desc,
                       const CLtypeComplexDashSeq& dashes, long flags)
    : CLtype(name, desc, dashes, flags | kDependent | kResolved), m_xref(xref) {}

const zim::WString& CLtypeXRef::getFullName() const {
  return compose(m_xref, getName(), m_fullName);
}

void CLtypeXRef::setFlags(long flags) { CLtype::setFlags(flags | kDependent | kResolved); }

void CLtypeXRef::accept(ILtypeVisitor& visitor) { visitor.visit(*this); }

CLayerXRef* CLayerFactory::createXRef(CBlockXRef& xref, const zim::WString& name, CLtype* ltype,
                                      short color, long flags) try {
  return new (std::nothrow) CLayerXRef(xref, name, ltype, color, flags);
} catch (const std::bad_alloc&) {
  return nullptr;
}

CLtypeXRef* CLtypeFactory::createXRef(CBlockXRef& xref, const zim::WString& name,
                                      const zim::WString& desc, const CLtypeComplexDashSeq& dashes,
                                      long flags) try {
  return new (std::nothrow) CLtypeXRef(xref, name, desc, dashes, flags);
} catch (const std::bad_alloc&) {
  return nullptr;
}
