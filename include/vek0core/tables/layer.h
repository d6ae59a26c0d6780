#pragma once

#include "vek0core/export.h"
#include "vek0core/tables/enttraits.h"
#include "vek0core/tables/nameditem.h"

class CBlockXRef;
class CLayer;
class CLayer0;
class CLayerXRef;
class CLtype;

/// Visitor that distinguishes the kinds of layer.
class VEK0_API ILayerVisitor {
 public:
  virtual ~ILayerVisitor() = default;
  virtual void visit(CLayerXRef& layer) = 0;
  virtual void visit(CLayer0& layer) = 0;
  virtual void visit(CLayer& layer) = 0;
};

/// Line width of a layer: an opaque value of the host, stored but not interpreted. 0 is the
/// default.
enum enumLineWidth : int { lineWidthDefault = 0 };

/// Properties of a layer besides linetype, color number and flags: what its entities have BYLAYER.
struct LAYER_TRAITS {
  /// 0xRRGGBB, or `ENT_TRAITS::kNoTrueColor` if the color number determines the color.
  std::uint32_t trueColor = ENT_TRAITS::kNoTrueColor;
  /// In hundredths of a millimeter, 0 to 211, or `ENT_TRAITS::kWeightDefault`.
  short lineweight = ENT_TRAITS::kWeightDefault;
  /// From 0, invisible, to 255, opaque.
  short opacity = ENT_TRAITS::kOpaque;
  bool isPlotted = true;

  bool operator==(const LAYER_TRAITS&) const = default;
};

/// Snapshot of a layer, for undo: name, linetype, flags, color, line width and traits. Borrows the
/// linetype.
class VEK0_API CLayerMemento {
 public:
  explicit CLayerMemento(const CLayer& layer);

  const zim::WString& GetName() const { return m_name; }
  bool operator==(const CLayer& layer) const;
  bool operator!=(const CLayer& layer) const { return !(*this == layer); }

 private:
  friend class CLayer;
  zim::WString m_name;
  CLtype* m_ltype;
  long m_flags;
  short m_color;
  enumLineWidth m_lineWidth;
  LAYER_TRAITS m_traits;
};

/// Layer: default color and linetype of entities, and whether they are shown and may be changed.
///
/// The linetype is borrowed and may be null. BYLAYER and BYBLOCK are meaningless as the linetype of
/// a layer; renderers treat them as Continuous.
class VEK0_API CLayer : public CNamedItem {
 public:
  static constexpr long kFrozen = 0x0001, kLocked = 0x0004, kOff = 0x0080, kPrivate = 0x8000;

  /// The copy has no users and is not counted by its linetype.
  CLayer(const CLayer& src) = default;
  /// Use counts do not change, those of the linetypes included.
  CLayer& operator=(const CLayer& src) = default;
  ~CLayer() override = default;
  /// The name; for a layer of an external reference, prefixed with the reference's name.
  virtual const zim::WString& getFullName() const { return getName(); }
  using CNamedItem::setFlags;
  virtual void setFlags(long flags) { CNamedItem::setFlags(flags); }
  virtual void accept(ILayerVisitor& visitor) { visitor.visit(*this); }
  virtual bool is0() const { return false; }
  virtual bool isXRef() const { return false; }

  bool isFrozen() const { return (getFlags() & kFrozen) != 0; }
  void setFrozen(bool on) { setFlags(kFrozen, on); }
  bool isLocked() const { return (getFlags() & kLocked) != 0; }
  void setLocked(bool on) { setFlags(kLocked, on); }
  bool isOff() const { return (getFlags() & kOff) != 0; }
  void setOff(bool on) { setFlags(kOff, on); }
  bool isPrivate() const { return (getFlags() & kPrivate) != 0; }
  void setPrivate(bool on) { setFlags(kPrivate, on); }

  CLtype* getLtype() const { return m_ltype; }
  /// Also updates the layer counts of the old and the new linetype, whether or not the layer is in
  /// a table.
  void setLtype(CLtype* ltype);
  short getColor() const { return m_color; }
  /// Also removes the true color, which would hide the new one.
  void setColor(short color);
  enumLineWidth getLineWidth() const { return m_lineWidth; }
  void setLineWidth(enumLineWidth width) { m_lineWidth = width; }
  const LAYER_TRAITS& getTraits() const { return m_traits; }
  void setTraits(const LAYER_TRAITS& traits) { m_traits = traits; }
  /// Copies what no factory takes: line width and traits.
  void copyExtras(const CLayer& src);

  /// The caller owns the snapshot; null when out of memory.
  CLayerMemento* createMemento() const;
  /// Throws `std::bad_alloc` with nothing changed. Reverting to the previous state needs no memory.
  void setMemento(const CLayerMemento& memento);

 protected:
  friend class CLayerFactory;
  CLayer(const zim::WString& name, CLtype* ltype, short color, long flags)
      : CNamedItem(name, flags), m_ltype(ltype), m_color(color) {}

 private:
  CLtype* m_ltype;
  short m_color;
  enumLineWidth m_lineWidth = lineWidthDefault;
  LAYER_TRAITS m_traits;
};

/// Layer "0", which every drawing has.
class VEK0_API CLayer0 : public CLayer {
 public:
  void accept(ILayerVisitor& visitor) override { visitor.visit(*this); }
  bool is0() const override { return true; }

 protected:
  friend class CData;
  CLayer0(CLtype* ltype, short color, long flags) : CLayer(u"0", ltype, color, flags) {}
};

/// Creates layers; the caller owns them until a table takes them. Null when out of memory. The
/// table, not the factory, updates the linetype's layer count.
class VEK0_API CLayerFactory {
 public:
  virtual ~CLayerFactory() = default;
  virtual CLayer* create(const CLayer& src);
  virtual CLayer* create(const zim::WString& name, CLtype* ltype, short color, long flags);
  /// A layer of an external reference, for that reference's table.
  virtual CLayerXRef* createXRef(CBlockXRef& xref, const zim::WString& name, CLtype* ltype,
                                 short color, long flags);
};
