#pragma once

#include <functional>
#include <list>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/tables/handle.h"
#include "zim0lang/wstring.h"

class CBlock;
class CBlockFactory;
class CBlockTable;
class CBlockXRefDepend;
class CDataVariables;
class CEnt;
class CEntFactory;
class CEntHatch;
class CHatchTypeTable;
class CLayer;
class CLayout;
class CLtype;
class CLtypeByLayer;
class CLtypeComplexDashSeq;
class CStyle;
class ICADFont;
class IHandleGestor;
class PNT_3D;
struct HATCH_TYPE;

/// Receives the parsed content of a DXF file ("semantor": it gives parsed records their meaning).
/// The parser never accesses a drawing directly; loading, importing and tests differ only in the
/// semantor.
///
/// Names are looked up ignoring case. Returned pointers are borrowed. Failures are recorded in the
/// error record that the semantor shares with the parser, which stops at its next check. The order
/// of the pure functions is fixed.
class VEK0_API IFileDXFISemantor {
 public:
  /// Reading failed; called once, before `transition`.
  virtual void unrecovableError() = 0;
  /// Reading is over, successful or not; called once.
  virtual void transition() = 0;

  /// Whether to read the file's header variables and current items.
  virtual bool shouldReadHeaders() = 0;
  /// The variables to fill; not null when `shouldReadHeaders`.
  virtual CDataVariables* getVars() = 0;
  /// Whether entities keep the handles of the file.
  virtual bool shouldRespectHandles() = 0;

  /// Creates a layer unless one of that name exists. A null linetype means Continuous. `flags` are
  /// those of the file, plus 128 if the layer is off.
  virtual void createLayer(const zim::WString& name, CLtype* ltype, short colour, long flags) = 0;
  /// The file's entry of layer "0". A null linetype keeps the current one.
  virtual void createLayer0(CLtype* ltype, short colour, long flags) = 0;
  /// Creates layer "xref|name" inside the external reference, which is created unresolved if no
  /// block entry has declared it yet.
  virtual void createLayerXRef(const zim::WString& xref, const zim::WString& name, CLtype* ltype,
                               short colour, long flags) = 0;

  /// Creates a linetype unless one of that name exists.
  virtual void createLtype(const zim::WString& name, const zim::WString& description,
                           CLtypeComplexDashSeq& dashes, long flags) = 0;
  /// The same inside an external reference, as `createLayerXRef`.
  virtual void createLtypeXRef(const zim::WString& xref, const zim::WString& name,
                               const zim::WString& description, CLtypeComplexDashSeq& dashes,
                               long flags) = 0;

  /// Creates a text style unless one of that name exists. `oblique` in radians.
  virtual void createStyle(const zim::WString& name, const ICADFont* font, double fixedHeight,
                           double widthScale, double oblique, double lastHeight, long flags) = 0;
  /// The file's entry of the style "STANDARD".
  virtual void createStyleStandard(const ICADFont* font, double fixedHeight, double widthScale,
                                   double oblique, double lastHeight, long flags) = 0;

  /// Creates the block, or fills one that was only announced. Removes the entities from the list,
  /// whether or not it succeeds. Error 9 if the block would insert itself, directly or indirectly,
  /// 10 if an external reference has the name.
  virtual void createBlock(const zim::WString& name, const PNT_3D& base, long flags,
                           std::list<CEnt*>& entities) = 0;
  /// Declares an external reference. The file at `path` is not opened. Error 11 if an ordinary
  /// block has the name.
  virtual void createBlockXRef(const zim::WString& name, const zim::WString& path,
                               const PNT_3D& base, long flags) = 0;
  /// Creates an empty block for an insert whose block is not defined yet; null on failure.
  virtual CBlock* createBlockHurried(const zim::WString& name, long flags) = 0;

  /// Takes ownership of an entity of model space.
  virtual void add(CEnt* ent) = 0;

  /// The item of that name, which may have the form "xref|item"; null if there is none.
  virtual CLtype* getLtype(const zim::WString& name) = 0;
  virtual CLtypeByLayer* getLtypeByLayer() = 0;
  virtual CLayer* getLayer(const zim::WString& name) = 0;
  virtual CStyle* getStyle(const zim::WString& name) = 0;
  /// Null if the drawing's "STANDARD" was removed.
  virtual CStyle* getStyleStandard() = 0;
  /// The block of that name; null and error 9 if there is none.
  virtual CBlock* getBlock(const zim::WString& name) = 0;

  virtual CBlockFactory& getBlockFactory() = 0;
  virtual CBlockTable& getBlockTable() = 0;
  virtual CBlockXRefDepend& getDepend() = 0;
  virtual IHandleGestor& getHandleGestor() = 0;
  virtual CEntFactory& getEntFactory() = 0;

  // Overriding the rest is optional.

  /// The external reference or block that an insert of that name shows, by its name in the file;
  /// null, without an error, if neither exists yet. By default looks in the block table.
  virtual CBlock* findBlock(const zim::WString& name);
  /// Creates a layer that an entity names but no table has declared: color 7, Continuous, flags 0.
  /// A later table entry fills it in.
  virtual CLayer* createLayerHurried(const zim::WString& name);
  /// The font for a font file's name; null if the policy allows no substitute. By default that of
  /// the font table, or its default font.
  virtual const ICADFont* getFont(const zim::WString& name);
  /// Creates a hatch with its generated block, which is added to the block table; by default, and
  /// if the lines cannot be generated, the block is empty. The caller owns the hatch; null on
  /// failure.
  virtual CEntHatch* createHatch(CLayer* layer, CLtype* ltype, short colour, const HATCH_TYPE& type,
                                 double scale, double rotate, const std::vector<PNT_3D>& boundary,
                                 vek0::Handle handle);
  /// The table of patterns outside the catalogue, which must live as long as the hatches. By
  /// default a process-wide table shared by all such semantors.
  virtual CHatchTypeTable& getHatchTypeTable();
  /// Called for each hatch stored as an insert in the file. After reading, its block may have
  /// content that does not suit a hatch, or none. Does nothing by default.
  virtual void adoptHatch(CEntHatch& /*hatch*/) {}

  /// Whether layouts are created; by default they are not.
  virtual bool keepsLayouts() const { return false; }
  /// Creates a layout with these entities, which are removed from the list. `block` is the name of
  /// the sheet's block in the file, or empty. Null, with the list unchanged, unless `keepsLayouts`.
  virtual CLayout* createLayout(const zim::WString& /*name*/, const zim::WString& /*block*/,
                                bool /*isActive*/, std::list<CEnt*>& /*entities*/) {
    return nullptr;
  }

  /// Sorts entities, which it receives in drawing order; returns whether that changed the order.
  using EntSorter = std::function<bool(std::vector<CEnt*>& entities)>;
  /// Brings the entities of a block, or of model space if it is null, into the order of `sorter`.
  /// Called at the end of the file. By default they stay as they are.
  virtual void reorder(CBlock* /*block*/, const EntSorter& /*sorter*/) {}

  virtual ~IFileDXFISemantor() = default;

 protected:
  IFileDXFISemantor() = default;
  IFileDXFISemantor(const IFileDXFISemantor&) = default;
  IFileDXFISemantor& operator=(const IFileDXFISemantor&) = default;
};
