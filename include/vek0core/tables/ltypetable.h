#pragma once

#include "vek0core/export.h"
#include "vek0core/tables/ltype.h"
#include "vek0core/tables/nameditem.h"

/// The linetypes of a drawing. The three fixed ones are not in the list and are never deleted, but
/// are found by name, before any item of the same name.
class VEK0_API CLtypeTable : public CNamedItemTableImp {
 public:
  using CNamedItemTableImp::contains;
  using CNamedItemTableImp::getPlace;
  /// The fixed linetypes must outlive the table.
  CLtypeTable(CLtypeContinuous& continuous, CLtypeByLayer& byLayer, CLtypeByBlock& byBlock)
      : m_continuous(&continuous), m_byLayer(&byLayer), m_byBlock(&byBlock) {}
  /// A view, see `CNamedItemTableImp`; it names the source's fixed linetypes.
  CLtypeTable(const CLtypeTable& src) = default;

  /// Takes ownership of the linetype.
  void add(CLtype* ltype) { CNamedItemTableImp::add(ltype); }
  /// Removes it; the caller owns it afterwards.
  void remove(CLtype* ltype) { CNamedItemTableImp::remove(ltype); }
  /// Puts a linetype back at its former place (`getPlace`).
  void restore(CLtype* ltype, const Place& place) { CNamedItemTableImp::restore(ltype, place); }
  /// The linetype of that name, ignoring case; null when there is none.
  CLtype* get(std::u16string_view name) const;
  /// Linetype `i` of the list in order of addition; unchecked.
  CLtype* operator[](int i) const {
    return static_cast<CLtype*>(CNamedItemTableImp::operator[](i));
  }

  CLtypeContinuous* getLtypeContinuous() const { return m_continuous; }
  CLtypeByLayer* getLtypeByLayer() const { return m_byLayer; }
  CLtypeByBlock* getLtypeByBlock() const { return m_byBlock; }

 private:
  CLtypeContinuous* m_continuous;
  CLtypeByLayer* m_byLayer;
  CLtypeByBlock* m_byBlock;
};
