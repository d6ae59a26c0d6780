#pragma once

#include "vek0core/export.h"
#include "vek0core/tables/nameditem.h"

class CStyle;
class CStyleStandard;
class ICADFont;

/// Visitor that distinguishes the kinds of style.
class VEK0_API IStyleVisitor {
 public:
  virtual ~IStyleVisitor() = default;
  virtual void visit(CStyleStandard& style) = 0;
  virtual void visit(CStyle& style) = 0;
};

/// Snapshot of a style, for undo. Borrows the font.
class VEK0_API CStyleMemento {
 public:
  explicit CStyleMemento(const CStyle& style);

  const zim::WString& GetName() const { return m_name; }
  const ICADFont* getFont() const { return m_font; }
  bool operator==(const CStyle& style) const;
  bool operator!=(const CStyle& style) const { return !(*this == style); }

 private:
  friend class CStyle;
  zim::WString m_name;
  const ICADFont* m_font;
  double m_fixedHeight, m_widthScale, m_oblique, m_lastHeight;
  long m_flags;
};

/// Text style: a font, borrowed and possibly null, and default proportions.
///
/// The bit 0x0004 is passed unchanged between file and font. It is named horizontal here, but in
/// DXF a set bit means vertical text, and the default metrics and renderers interpret it that way.
class VEK0_API CStyle : public CNamedItem {
 public:
  static constexpr long kHorizontal = 0x0004, kBold = 0x0100, kItalic = 0x0200;

  /// Copies everything except the counts.
  CStyle(const CStyle& src);
  CStyle& operator=(const CStyle& src);
  ~CStyle() override = default;
  virtual void accept(IStyleVisitor& visitor) { visitor.visit(*this); }
  virtual bool isStandard() const { return false; }

  /// Equal names (ignoring case), flags, fonts, fixed heights, width scales and obliques. The last
  /// height is only user-interface state and is not compared.
  bool operator==(const CStyle& s) const;
  bool operator!=(const CStyle& s) const { return !(*this == s); }

  const ICADFont* getFont() const { return m_font; }
  void setFont(const ICADFont* font) { m_font = font; }
  /// Height of all texts of the style, in drawing units; 0 if each text has its own.
  double getFixedHeight() const { return m_fixedHeight; }
  void setFixedHeight(double height) { m_fixedHeight = height; }
  double getWidthScale() const { return m_widthScale; }
  void setWidthScale(double scale) { m_widthScale = scale; }
  double getOblique() const { return m_oblique; }  ///< radians
  void setOblique(double oblique) { m_oblique = oblique; }
  double getLastHeight() const { return m_lastHeight; }  ///< drawing units
  void setLastHeight(double height) { m_lastHeight = height; }

  bool isHoriz() const { return (getFlags() & kHorizontal) != 0; }
  void setHoriz(bool on) { setFlags(kHorizontal, on); }
  bool isBold() const { return (getFlags() & kBold) != 0; }
  void setBold(bool on) { setFlags(kBold, on); }
  bool isItalic() const { return (getFlags() & kItalic) != 0; }
  void setItalic(bool on) { setFlags(kItalic, on); }

  /// Number of linetype text elements that use the style, apart from the entities.
  long getDashes() const { return m_dashes; }
  void addDash() { ++m_dashes; }
  void decDash() { --m_dashes; }

  /// The caller owns the snapshot; null when out of memory.
  CStyleMemento* createMemento() const;
  /// Throws `std::bad_alloc` with nothing changed. Reverting to the previous state needs no memory.
  void setMemento(const CStyleMemento& memento);

 protected:
  friend class CStyleFactory;
  CStyle(const zim::WString& name, const ICADFont* font, double fixedHeight, double widthScale,
         double oblique, double lastHeight, long flags);

 private:
  double m_fixedHeight, m_widthScale, m_oblique, m_lastHeight;
  const ICADFont* m_font;
  long m_dashes = 0;
};

/// The style "STANDARD" that every drawing has.
class VEK0_API CStyleStandard : public CStyle {
 public:
  void accept(IStyleVisitor& visitor) override { visitor.visit(*this); }
  bool isStandard() const override { return true; }

 protected:
  friend class CStyleTable;
  CStyleStandard(const ICADFont* font, double fixedHeight, double widthScale, double oblique,
                 double lastHeight, long flags);
};

/// Creates styles; the caller owns them until a table takes them. Null when out of memory.
class VEK0_API CStyleFactory {
 public:
  virtual ~CStyleFactory() = default;
  virtual CStyle* create(const CStyle& src);
  virtual CStyle* create(const zim::WString& name, const ICADFont* font, double fixedHeight,
                         double widthScale, double oblique, double lastHeight, long flags);
};
