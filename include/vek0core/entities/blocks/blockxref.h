#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "vek0core/entities/blocks/block.h"
#include "vek0core/export.h"
#include "vek0core/tables/layer.h"
#include "vek0core/tables/layertable.h"
#include "vek0core/tables/ltype.h"
#include "vek0core/tables/ltypetable.h"
#include "vek0core/tables/nameditem.h"
#include "vek0core/tables/styletable.h"
#include "zim0lang/wstring.h"

/// External reference: a block whose content comes from another drawing's file.
///
/// It has its own linetypes, layers and styles; the drawing calls them "xref|item". Its layer "0"
/// and the three fixed linetypes are those of the drawing. This class never opens a file:
/// `resolveXRefs` fills the block and sets the status. Until then, and if the file cannot be read,
/// its inserts show nothing.
///
/// The content belongs to the other drawing: entities, and blocks that only they insert. It must
/// not be edited, is not saved, and does not contribute to use counts. Entities are stored
/// unchanged, not relative to the base point.
class VEK0_API CBlockXRef : public CBlock {
 public:
  enum class Status {
    unresolved,  ///< not looked up yet
    loaded,
    missing,  ///< there is no such file
    broken,   ///< the file exists but is not a readable drawing
    refused,  ///< circular, nested too deeply, or in a folder that the host does not allow
  };

  // A bit of the flags.
  static constexpr long kOverlay = 8;  ///< not shown by drawings that refer to this one

  ~CBlockXRef() override;

  /// Appends without moving the entity.
  void add(CEnt* ent) override;
  bool isXRef() const override;

  /// File name of the drawing, as stated by the referring file.
  const zim::WString& getPath() const { return m_path; }
  void setPath(const zim::WString& path) { m_path = path; }
  /// Reserves room for a path of that length, which can then be set without allocating.
  void reservePath(std::size_t length) { m_path.reserve(length); }
  Status getStatus() const { return m_status; }
  void setStatus(Status status) { m_status = status; }
  bool isOverlay() const { return (getFlags() & kOverlay) != 0; }

  /// Point of the content that is placed at the insertion points: the base point, or, if that is
  /// the origin, the one stated by the other drawing.
  const PNT_3D& getContentBase() const;
  /// The other drawing's own base point.
  const PNT_3D& getOwnBase() const { return m_ownBase; }
  void setOwnBase(const PNT_3D& base) { m_ownBase = base; }
  /// File that the content was read from, as named by the resolver; empty before.
  const zim::WString& getFile() const { return m_file; }
  void setFile(const zim::WString& file) { m_file = file; }

  const CLtypeTable& getLtypeTable() const { return m_ltypes; }
  CLtypeTable& getLtypeTable() { return m_ltypes; }
  const CLayerTable& getLayerTable() const { return m_layers; }
  CLayerTable& getLayerTable() { return m_layers; }
  const CStyleTable& getStyleTable() const { return m_styles; }
  CStyleTable& getStyleTable() { return m_styles; }

  using Blocks = std::vector<std::unique_ptr<CBlock>>;
  /// The content of a reference, detached from it. Owns the entities.
  class VEK0_API Content {
   public:
    /// Throws `std::bad_alloc`.
    Content(std::vector<std::unique_ptr<CEnt>> entities, Blocks blocks);
    Content(Content&&) noexcept = default;
    Content& operator=(const Content&) = delete;
    ~Content();

   private:
    friend class CBlockXRef;
    std::vector<CEnt*> m_entities;
    Blocks m_blocks;
    std::vector<CBlockXRef*> m_nested;
    unsigned long m_number = 0;  // among the reference's contents; 0 if it was never used
  };
  /// The blocks of the content, each after those that it inserts.
  const Blocks& getBlocks() const { return m_blocks; }
  /// The references that the content shows, each once.
  const std::vector<CBlockXRef*>& getNested() const { return m_nested; }
  /// Number of references of the drawing whose content shows this one.
  long getShows() const { return m_shows; }
  /// Replaces the content and takes ownership of it; the old content is deleted. Throws
  /// `std::bad_alloc` with nothing changed.
  void setContent(std::vector<std::unique_ptr<CEnt>> entities, Blocks blocks);
  /// The same; `content` receives the previous content. Setting that again restores it. Needs no
  /// memory.
  void exchange(Content& content);

  /// The data of a reference except its name and items.
  struct Head {
    zim::WString path, file;
    Status status;
    PNT_3D base, ownBase;
    long flags;
  };
  Head getHead() const { return {m_path, m_file, m_status, getPnt(), m_ownBase, getFlags()}; }
  /// Throws `std::bad_alloc`; reverting to an earlier state needs no memory.
  void setHead(const Head& head);

  /// Removes an item from its table but keeps it alive as long as this reference, since undo steps
  /// of the drawing may refer to it. A layer loses its linetype, a linetype its texts.
  void retire(CLayer* layer);
  void retire(CLtype* ltype);  ///< likewise
  void retire(CStyle* style);  ///< likewise
  /// Reserves room for all items, so that retiring them needs no memory.
  void reserveRetired();
  /// Puts the retired items for which `isWanted(item)` is true back into their tables; layers get
  /// Continuous unless they have been given a linetype meanwhile. The other items are stripped
  /// again.
  template <class IsWanted>
  void reinstate(const IsWanted& isWanted) {
    reinstate(m_retiredLayers, isWanted);
    reinstate(m_retiredLtypes, isWanted);
    reinstate(m_retiredStyles, isWanted);
  }

  /// Number of the current content: changes made to another content are gone with it.
  unsigned long getNoContents() const { return m_noContents; }

 protected:
  friend class CBlockFactory;
  CBlockXRef(CLtypeContinuous& continuous, CLtypeByLayer& byLayer, CLtypeByBlock& byBlock,
             CLayer0& layer0, const zim::WString& name, const zim::WString& path,
             const PNT_3D& base, long flags);

  /// See `CBlockFactory::initXRef`.
  void init(const zim::WString& path, const PNT_3D& base, long flags);

 private:
  friend class CBlockXRefTable;
  template <class Item, class IsWanted>
  void reinstate(std::vector<std::unique_ptr<Item>>& retired, const IsWanted& isWanted) {
    for (std::unique_ptr<Item>& item : retired) {
      if (item == nullptr) continue;  // memory ran out here the last time
      if (!isWanted(*item)) {
        strip(*item);
        continue;
      }
      putBack(*item);
      static_cast<void>(item.release());
    }
    std::erase(retired, nullptr);
  }
  // A retired item must not hold counted references.
  static void strip(CLayer& layer) { layer.setLtype(nullptr); }
  static void strip(CLtype& ltype) { ltype.ClearDashes(); }
  static void strip(CStyle&) {}
  void putBack(CLayer& layer);
  void putBack(CLtype& ltype) { m_ltypes.add(&ltype); }
  void putBack(CStyle& style) { m_styles.add(&style); }
  void countNested(long by);

  zim::WString m_path, m_file;
  Status m_status = Status::unresolved;
  PNT_3D m_ownBase{0, 0, 0};
  // Items come after those that they refer to, so that they are destroyed first.
  template <class Item>
  using Retired = std::vector<std::unique_ptr<Item>>;
  Retired<CStyle> m_retiredStyles;
  CStyleTable m_styles;
  Retired<CLtype> m_retiredLtypes;
  CLtypeTable m_ltypes;
  Retired<CLayer> m_retiredLayers;
  CLayerTable m_layers;
  Blocks m_blocks;
  std::vector<CBlockXRef*> m_nested;
  long m_shows = 0;
  unsigned long m_noContents = 0;
  unsigned long m_lastContent = 0;
};

/// The external references that a drawing's inserts use, with use counts.
///
/// Maintained by the inserts while they are registered. References are in order of first use. Every
/// operation takes constant time on average. Counting a reference that was counted before needs no
/// memory.
class VEK0_API CBlockXRefDepend {
 public:
  using Entry = std::pair<CBlockXRef*, long>;  ///< reference, number of inserts

  CBlockXRefDepend();
  CBlockXRefDepend(const CBlockXRefDepend& src);
  CBlockXRefDepend& operator=(const CBlockXRefDepend& src);
  ~CBlockXRefDepend();

  /// Counts one more insert of the reference; null is ignored.
  void add(CBlockXRef* xref);
  /// Decrements the count, and drops the reference at 0; one that was not counted is ignored.
  void remove(CBlockXRef* xref);

  /// Number of inserts counted.
  long getCount(const CBlockXRef* xref) const;
  const std::list<Entry>& getList() const { return m_list; }
  std::size_t size() const { return m_list.size(); }

 private:
  std::list<Entry> m_list;
  std::list<Entry> m_unused;  // with count 0: reserved memory for references counted before
  std::unordered_map<const CBlockXRef*, std::list<Entry>::iterator> m_places;
};

/// The external references of a drawing, by name.
class VEK0_API CBlockXRefTable : public CNamedItemTableImp {
 public:
  using CNamedItemTableImp::contains;
  using CNamedItemTableImp::getPlace;

  /// Takes ownership of the reference.
  void add(CBlockXRef* xref);
  /// Removes it; the caller owns it afterwards.
  void remove(CBlockXRef* xref);
  /// Puts a reference back at its former place (`getPlace`).
  void restore(CBlockXRef* xref, const Place& place);
  /// First reference added with that name, ignoring case; null if there is none.
  CBlockXRef* get(std::u16string_view name) const;
  /// Reference `i` in order of addition; unchecked.
  CBlockXRef* operator[](int i) const;
};

/// Layer of an external reference. Its name is the one in the referenced drawing; the full name is
/// prefixed with the reference's name and a vertical bar. The flag bits 16 (depends on an external
/// reference) and 32 (resolved) are always set.
class VEK0_API CLayerXRef : public CLayer {
 public:
  const zim::WString& getFullName() const override;
  using CLayer::setFlags;
  void setFlags(long flags) override;
  void accept(ILayerVisitor& visitor) override;
  bool isXRef() const override { return true; }

  CBlockXRef& getXRef() const { return m_xref; }

  /// The layer's properties in the other drawing. Linetype, color, line width, traits and
  /// visibility are set to these, except where they were changed since the last update. On the
  /// first update the layer keeps its properties.
  struct Look {
    CLtype* ltype;
    short color;
    long flags;
    enumLineWidth width;
    LAYER_TRAITS traits;
  };
  void follow(const Look& look);
  /// The properties from the last update.
  const std::optional<Look>& getTold() const { return m_told; }
  void setTold(const std::optional<Look>& told) { m_told = told; }

 protected:
  friend class CLayerFactory;
  friend class CBlockXRef;
  CLayerXRef(CBlockXRef& xref, const zim::WString& name, CLtype* ltype, short color, long flags);

 private:
  void followColor(const Look& look);

  CBlockXRef& m_xref;
  std::optional<Look> m_told;
  mutable zim::WString m_fullName;  // composed on demand, because either name may change
};

/// Linetype of an external reference; name and flags as for `CLayerXRef`.
class VEK0_API CLtypeXRef : public CLtype {
 public:
  const zim::WString& getFullName() const override;
  using CLtype::setFlags;
  void setFlags(long flags) override;
  void accept(ILtypeVisitor& visitor) override;
  bool isXRef() const override { return true; }

  CBlockXRef& getXRef() const { return m_xref; }

 protected:
  friend class CLtypeFactory;
  CLtypeXRef(CBlockXRef& xref, const zim::WString& name, const zim::WString& desc,
             const CLtypeComplexDashSeq& dashes, long flags);

 private:
  CBlockXRef& m_xref;
  mutable zim::WString m_fullName;
};
