#include "vek0core/tables/ltypetable.h"

CLtype* CLtypeTable::get(std::u16string_view name) const {
  if (zim::equalsIgnoreCase(name, u"continuous")) return m_continuous;
  if (zim::equalsIgnoreCase(name, u"bylayer")) return m_byLayer;
  if (zim::equalsIgnoreCase(name, u"byblock")) return m_byBlock;
  return static_cast<CLtype*>(CNamedItemTableImp::get(name));
}
