#include "vek0core/tables/styletable.h"

#include "tables/addnew.h"
#include "vek0core/tables/font.h"

CStyleTable::CStyleTable() : m_standard(nullptr) {
  m_standard = vek0::detail::addNew(
      *this, new CStyleStandard(CFontTable::getInstance().getDefault(), 0.0, 1.0, 0.0, 0.2, 0));
}

void CStyleTable::remove(CStyle* style) {
  if (contains(style) && style == m_standard) m_standard = nullptr;
  CNamedItemTableImp::remove(style);
}

void CStyleTable::restore(CStyle* style, const Place& place) {
  CNamedItemTableImp::restore(style, place);
  if (contains(style) && style->isStandard()) m_standard = static_cast<CStyleStandard*>(style);
}

void CStyleTable::clearAll() {
  m_standard = nullptr;
  CNamedItemTableImp::clearAll();
}
