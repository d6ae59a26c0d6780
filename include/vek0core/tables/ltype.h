#pragma once

#include <memory>

#include "vek0core/export.h"
#include "vek0core/tables/ltypedash.h"
#include "vek0core/tables/nameditem.h"

class CBlockXRef;
class CLtype;
class CLtypeByBlock;
class CLtypeByLayer;
class CLtypeContinuous;
class CLtypeXRef;

/// Visitor that distinguishes the kinds of linetype.
class VEK0_API ILtypeVisitor {
 public:
  virtual ~ILtypeVisitor() = default;
  virtual void visit(CLtypeXRef& ltype) = 0;
  virtual void visit(CLtypeContinuous& ltype) = 0;
  virtual void visit(CLtypeByLayer& ltype) = 0;
  virtual void visit(CLtypeByBlock& ltype) = 0;
  virtual void visit(CLtype& ltype) = 0;
};

/// Snapshot of a linetype, for undo; owns its copy of the elements.
class VEK0_API CLtypeMemento {
 public:
  explicit CLtypeMemento(const CLtype& ltype);

  const zim::WString& GetName() const { return m_name; }
  bool operator==(const CLtype& ltype) const;
  bool operator!=(const CLtype& ltype) const { return !(*this == ltype); }
  /// New elements.
  CLtypeComplexDashSeq makeDashes() const;

 private:
  friend class CLtype;
  double m_patternLength;
  zim::WString m_name, m_desc;
  long m_flags;
  CLtypeComplexDashSeqMemento m_dashes;
};

/// Linetype: a name, a description and a pattern of dashes, gaps, dots and texts. Without elements,
/// lines are continuous.
class VEK0_API CLtype : public CNamedItem {
 public:
  static constexpr long kPrivate = 0x8000;

  /// The copy takes the source's layer count and an entity count of 0.
  CLtype(const CLtype& src);
  /// Both counts are unchanged.
  CLtype& operator=(const CLtype& src);
  ~CLtype() override = default;
  /// The name; for a linetype of an external reference, prefixed with the reference's name.
  virtual const zim::WString& getFullName() const { return getName(); }
  using CNamedItem::setFlags;
  virtual void setFlags(long flags) { CNamedItem::setFlags(flags); }
  virtual void accept(ILtypeVisitor& visitor) { visitor.visit(*this); }
  virtual bool isContinuous() const { return false; }
  virtual bool isByLayer() const { return false; }
  virtual bool isByBlock() const { return false; }
  virtual bool isXRef() const { return false; }

  /// Equal names (ignoring case), flags, descriptions (exactly) and numbers of elements; element
  /// values are not compared. A cheap test for matching linetypes by definition.
  bool operator==(const CLtype& other) const;
  bool operator!=(const CLtype& other) const { return !(*this == other); }

  bool isPrivate() const { return (getFlags() & kPrivate) != 0; }
  void setPrivate(bool on) { setFlags(kPrivate, on); }
  const zim::WString& getDesc() const { return m_desc; }
  void setDesc(const zim::WString& desc) { m_desc = desc; }

  double getPatternLen() const { return m_dashes.GetPatternLen(); }
  int getNoDashes() const { return m_dashes.GetNoDashes(); }
  /// Element at a position, unchecked.
  const ILtypeComplexDash* GetDash(int i) const { return m_dashes.Get(i); }
  const ILtypeComplexDash* operator[](int i) const { return m_dashes.Get(i); }
  /// First element, or null when there is none.
  const ILtypeComplexDash* getDashArray() const;
  CLtypeComplexDashSeq& GetDashSeq() { return m_dashes; }
  const CLtypeComplexDashSeq& GetLtypeComplexDashSeq() const { return m_dashes; }
  void AddDashDouble(double value) { m_dashes.AddDashDouble(value); }
  void AddDashText(const TEXT_3D& text) { m_dashes.AddDashText(text); }
  void ClearDashes() { m_dashes.ClearDashes(); }

  /// Number of layers that use the linetype; a hint, like the count of entities.
  long getLayers() const { return m_layers; }
  void addLayer() { ++m_layers; }
  void decLayer() { --m_layers; }
  void zeroLayers() { m_layers = 0; }

  /// The caller owns the snapshot; null when out of memory.
  CLtypeMemento* createMemento() const;
  /// Throws `std::bad_alloc` with nothing changed.
  void setMemento(const CLtypeMemento& memento);
  /// The same with the elements of `dashes`, which receives the previous elements. Reverting to the
  /// previous state needs no memory.
  void setMemento(const CLtypeMemento& memento, CLtypeComplexDashSeq& dashes);

 protected:
  friend class CLtypeFactory;
  CLtype(const zim::WString& name, const zim::WString& desc, const CLtypeComplexDashSeq& dashes,
         long flags);
  /// `values` holds `count` dash lengths and may be null when that is 0 or less.
  CLtype(const zim::WString& name, const zim::WString& desc, const double* values, long count,
         long flags);

 private:
  CLtypeComplexDashSeq m_dashes;
  zim::WString m_desc;
  long m_layers = 0;
};

/// The fixed linetype "Continuous" of a drawing.
class VEK0_API CLtypeContinuous : public CLtype {
 public:
  void accept(ILtypeVisitor& visitor) override { visitor.visit(*this); }
  bool isContinuous() const override { return true; }

 protected:
  friend class CData;
  CLtypeContinuous();
};

/// The fixed linetype "BYLAYER": that of the layer.
class VEK0_API CLtypeByLayer : public CLtype {
 public:
  void accept(ILtypeVisitor& visitor) override { visitor.visit(*this); }
  bool isByLayer() const override { return true; }

 protected:
  friend class CData;
  CLtypeByLayer();
};

/// The fixed linetype "BYBLOCK": that of the insert.
class VEK0_API CLtypeByBlock : public CLtype {
 public:
  void accept(ILtypeVisitor& visitor) override { visitor.visit(*this); }
  bool isByBlock() const override { return true; }

 protected:
  friend class CData;
  CLtypeByBlock();
};

/// Creates linetypes; the caller owns them until a table takes them. Null when out of memory.
class VEK0_API CLtypeFactory {
 public:
  virtual ~CLtypeFactory() = default;
  virtual CLtype* create(CLtype& src);
  virtual CLtype* create(const zim::WString& name, const zim::WString& desc, double* values,
                         long count, long flags);
  virtual CLtype* create(const zim::WString& name, const zim::WString& desc,
                         const CLtypeComplexDashSeq& dashes, long flags);
  /// A linetype of an external reference, for that reference's table.
  virtual CLtypeXRef* createXRef(CBlockXRef& xref, const zim::WString& name,
                                 const zim::WString& desc, const CLtypeComplexDashSeq& dashes,
                                 long flags);
};
