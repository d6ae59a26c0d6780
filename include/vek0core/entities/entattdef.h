#pragma once

#include <cstddef>

#include "vek0core/entities/enttext.h"
#include "vek0core/export.h"
#include "vek0core/tables/handle.h"
#include "zim0lang/wstring.h"

/// Attribute definition: the text in a block from which the inserts of that block get their
/// attributes. It displays its tag.
///
/// It does not contribute to a block's extents, except in `CBlock::calcBdry`.
class VEK0_API CEntAttdef : public CEntText {
 public:
  static constexpr short kType = 7;  ///< what `getType` answers

  void accept(IEntVisitor& visitor) override;
  using CEnt::setMemento;
  void setMemento(CData& data, const IEntDerivedMemento* memento) override;
  short getType() const override { return kType; }
  IEntDerivedMemento* createDerivedMemento() const override;

  const zim::WString& getTag() const { return getString(); }
  void setTag(const zim::WString& tag) { setString(tag); }

  /// Default value of the attribute in inserts; does not affect the extents.
  const zim::WString& getValue() const { return m_value; }
  void setValue(const zim::WString& value) { m_value = value; }

  /// Prompt shown to the user when inserting; does not affect the extents.
  const zim::WString& getPrompt() const { return m_prompt; }
  void setPrompt(const zim::WString& prompt) { m_prompt = prompt; }

  /// Flag bits, stored and passed on but never interpreted.
  long getFlags() const { return m_flags; }
  void setFlags(long flags) { m_flags = flags; }

 protected:
  friend class CEntFactory;
  /// The string of `text` is the tag.
  CEntAttdef(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color, const TEXT_3D& text,
             const zim::WString& value, const zim::WString& prompt, long flags);
  CEntAttdef(const CEntAttdef& src, vek0::Handle handle);

  CEnt* clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
              CBlockTable& blockTable, vek0::Handle handle) const override;

 private:
  zim::WString m_value;
  zim::WString m_prompt;
  long m_flags;
};

/// Undo snapshot of an attribute definition.
class VEK0_API CEntAttdefMemento final : public CEntTextMemento {
 public:
  explicit CEntAttdefMemento(const CEntAttdef& ent);

  bool operator==(const CEnt& ent) const override;
  std::size_t size() const override { return sizeof *this; }
  short getType() const override { return CEntAttdef::kType; }

 private:
  friend class CEntAttdef;

  zim::WString m_value;
  zim::WString m_prompt;
  long m_flags;
};
