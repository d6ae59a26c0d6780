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

/// Adds the layers and linetypes used by the content of a reference.
void noteItems(CBlockXRef& xref, Items& items);
/// Retires items of a reference that are not among these and not used by the drawing.
void retireOthers(const CData& data, CBlockXRef& xref, const Items& items);

/// Copies another drawing into the content of a reference: its model space and blocks, on dependent
/// layers, linetypes and styles.
///
/// Throws `std::bad_alloc`; changes made until then are in the journal. Items that only the
/// previous content used are left to `retireOthers`: content of other references may use them.
class XRefContent {
 public:
  /// `present` receives the items that the content uses, of any reference.
  XRefContent(CData& data, CBlockXRef& xref, const CData& src, Items& present,
              XRefJournal& journal);

  /// Sets the counterpart here of a reference of the other drawing; null skips its inserts. Call it
  /// for every such reference before `adopt`.
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
