#pragma once

#include <cstddef>

#include "vek0core/entities/ent.h"
#include "vek0core/entities/entmemento.h"
#include "vek0core/export.h"
#include "vek0core/tables/handle.h"
#include "vek0core/tables/text.h"

/// Text entity: one line of text, a placed `TEXT_3D`. Base of the attribute kinds.
///
/// The text style counts its users like layer and linetype; it may be null. Extents are computed on
/// demand, since they depend on the style's font. Writing through the reference from `getText()`
/// does not refresh them: call `calcBdry()` afterwards.
class VEK0_API CEntText : public CEnt {
 public:
  static constexpr short kType = 6;  ///< what `getType` answers

  void accept(IEntVisitor& visitor) override;
  /// Also counts the entity as a user of its text style.
  void addTbls(IHandleGestor& gestor) const override;
  void removeTbls(IHandleGestor& gestor) const override;
  using CEnt::setMemento;
  /// Restores the text; updates the style's count as in `setStyle`.
  void setMemento(CData& data, const IEntDerivedMemento* memento) override;
  CStyle* getStyle() const override;
  /// Moves the use count from the current style to the new one, whether or not the entity is
  /// registered; null is not counted.
  void setStyle(CStyle* style) override;
  short getType() const override { return kType; }
  void calcBdry() override;
  IEntDerivedMemento* createDerivedMemento() const override;

  const TEXT_3D& getText() const { return m_text; }
  TEXT_3D& getText() { return m_text; }  ///< see the class about the extents

  /// Replaces the whole text, including its style pointer, without updating counts.
  void setText(const TEXT_3D& text);

 protected:
  friend class CEntFactory;
  CEntText(vek0::Handle handle, CLayer* layer, CLtype* ltype, short color, const TEXT_3D& text);
  CEntText(const CEntText& src, vek0::Handle handle);

  CEnt* clone(IHandleGestor& gestor, CEntFactory& entFactory, CBlockFactory& blockFactory,
              CBlockTable& blockTable, vek0::Handle handle) const override;

  /// The displayed string; replacing it refreshes the extents.
  const zim::WString& getString() const { return m_text.getContext().getString(); }
  void setString(const zim::WString& string);

  /// Restores a text from a memento and updates the style's count.
  void restoreText(const TEXT_3D& text);

 private:
  TEXT_3D m_text;
};

/// Undo snapshot of a text entity.
class VEK0_API CEntTextMemento : public IEntDerivedMemento {
 public:
  explicit CEntTextMemento(const CEntText& ent) : m_text(ent.getText()) {}

  bool operator==(const CEnt& ent) const override;
  std::size_t size() const override { return sizeof *this; }
  short getType() const override { return CEntText::kType; }

  const TEXT_3D& getText() const { return m_text; }

 protected:
  bool sameText(const CEntText& ent) const { return ent.getText() == m_text; }

 private:
  TEXT_3D m_text;
};
