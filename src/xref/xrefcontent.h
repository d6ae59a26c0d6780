#pragma once

#include <unordered_set>
#include <utility>
#include <vector>

#include "drawing/entcloner.h"

class CBlockXRef;
class CNamedItem;
class ICADFont;

namespace vek0::detail {

class XRefJournal;

using Items = std::unordered_set<const CNamedItem*>;

/// Adds the layers and linetypes that what a reference shows is on.
void noteItems(CBlockXRef& xref, Items& items);
/// Takes out of a reference what is not among these and the drawing does not use.
void retireOthers(const CData& data, CBlockXRef& xref, const Items& items);

/// Makes what another drawing holds the content of a reference: its model space and blocks,
/// on dependent layers, linetypes and styles.
///
/// Throws `std::bad_alloc`; what has changed by then is in the journal. Items that its
/// content had before and has no more are left to `retireOthers`: other references may have
/// content on them.
class XRefContent {
 public:
  /// `present` receives the items that the content is on, of whichever reference.
  XRefContent(CData& data, CBlockXRef& xref, const CData& src, Items& present,
              XRefJournal& journal);

  /// What inserts of a reference of the other drawing show here; null: they are left out.
  /// To be called for every such reference before `adopt`.
  void stand(const CBlockXRef& nested, CBlockXRef* here);
  void adopt();

 private:
  void adoptFixed();
  void adoptStyles();
  const ICADFont* fontHere(const ICADFont* font);
  template <class Table>
  void adoptItems(const Table& (CData::*own)() const,
                  const Table& (CBlockXRef::*dependent)() const);
  void adoptItem(const CLtype& from, CBlockXRef& to, const zim::WString& name);
  void adoptItem(const CLayer& from, CBlockXRef& to, const zim::WString& name);
  void fill();
  bool isShown(const CEnt& ent) const;

  CData& m_data;
  CBlockXRef& m_xref;
  const CData& m_src;
  ItemMap m_map;
  Items& m_present;
  XRefJournal& m_journal;
  std::vector<std::pair<const CBlockXRef*, CBlockXRef*>> m_nested;  // there and here, or null
};

}  // namespace vek0::detail
