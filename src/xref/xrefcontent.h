#pragma once

#include <unordered_set>

#include "drawing/entcloner.h"

class CBlockXRef;

namespace vek0::detail {

/// Makes what another drawing holds the content of a reference: its model space and blocks,
/// on dependent layers, linetypes and styles.
///
/// Throws `std::bad_alloc`; the reference then has the content that it had.
class XRefContent {
 public:
  XRefContent(CData& data, CBlockXRef& xref, const CData& src);

  /// What inserts of a reference of the other drawing show here; null: they are left out.
  /// To be called for every such reference before `adopt`.
  void stand(const CBlockXRef& nested, CBlockXRef* here);
  void adopt();

 private:
  void adoptFixed();
  void adoptStyles();
  void adoptItem(const CLtype& from, CBlockXRef& to, const zim::WString& name);
  void adoptItem(const CLayer& from, CBlockXRef& to, const zim::WString& name);
  void fill();
  bool isShown(const CEnt& ent) const;
  void retireOthers();

  CData& m_data;
  CBlockXRef& m_xref;
  const CData& m_src;
  ItemMap m_map;
  std::unordered_set<const CNamedItem*> m_present;  // items of the reference that stay
};

}  // namespace vek0::detail
