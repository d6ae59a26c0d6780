#pragma once

#include <cstddef>
#include <memory>
#include <utility>

#include "vek0core/entities/enttext.h"
#include "vek0core/export.h"
#include "vek0core/tables/handle.h"
#include "zim0lang/wstring.h"

class CEntAttdef;

/// Position and proportions of a text in drawing coordinates; angles in radians.
struct ATTRIB_PLACE {
  PNT_3D position;
  double height, widthScale, rotation, oblique;
};

/// Attribute: a text that belongs to one insert and fills in one of its block's attribute
/// definitions. It displays its value.
///
/// Its text is in the coordinates of the block and is shown through the insert's first cell;
/// `transform_attrib_logic_2_phisic` converts it to drawing coordinates.
class VEK0_API CEntAttrib : public CEntText {
 public:
  static constexpr short kType = 9;      ///< what `getType` answers
  static constexpr long kInvisible = 1;  ///< flag of attributes and definitions that are not shown

  void accept(IEntVisitor& visitor) override;
  using CEnt::setMemento;
  void setMemento(CData& data, const IEntDerivedMemento* memento) override;
  short getType() const override { return kType; }
  IEntDerivedMemento* createDerivedMemento() const override;

  const zim::WString& getValue() const { return getString(); }
  void setValue(const zim::WString& value) { setString(value); }

  /// Tag of its definition; does not affect the extents.
  const zim::WString& getTag() const { return m_tag; }
  void setTag(const zim::WString& tag) { m_tag = tag; }

  /// Flag bits, stored and passed on but never interpreted.
  long getFlags() const { return m_flags; }
  void setFlags(long flags) { m_flags = flags; }

  /// The placement it was read with, or null; shared with copies. `rememberedPlace` determines
  /// whether it still applies.
  const ATTRIB_PLACE* getReadPlace() const { return m_readPlace.get(); }
  void setReadPlace(std::shared_ptr<const ATTRIB_PLACE> place) { m_readPlace = std::move(place); }

 protected:
  friend class CEntFactory;
  /// The string of `text` is the value.
  CEntAttrib(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color, const TEXT_3D& text,
             const zim::WString& tag, long flags);
  /// Copies everything but the value from a definition, except its default value and prompt; later
  /// changes of the definition do not affect the attribute.
  CEntAttrib(const zim::WString& value, const CEntAttdef& def, vek0::Handle handle);
  CEntAttrib(const CEntAttrib& src, vek0::Handle handle);

  CEnt* clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
              CBlockTable& blockTable, vek0::Handle handle) const override;

 private:
  zim::WString m_tag;
  long m_flags;
  std::shared_ptr<const ATTRIB_PLACE> m_readPlace;
};

/// Undo snapshot of an attribute.
class VEK0_API CEntAttribMemento final : public CEntTextMemento {
 public:
  explicit CEntAttribMemento(const CEntAttrib& ent);

  bool operator==(const CEnt& ent) const override;
  std::size_t size() const override { return sizeof *this; }
  short getType() const override { return CEntAttrib::kType; }

  const zim::WString& getTag() const { return m_tag; }
  long getFlags() const { return m_flags; }

 private:
  zim::WString m_tag;
  long m_flags;
};
