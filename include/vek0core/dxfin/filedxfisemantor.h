#pragma once

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
class CLtype;
class CLtypeByLayer;
class CLtypeComplexDashSeq;
class CStyle;
class ICADFont;
class IHandleGestor;
class PNT_3D;
struct HATCH_TYPE;

/// What the DXF parser asks of the place that a file is read into ("semantor":
/// it gives parsed records their meaning). The parser never touches a drawing
/// itself; loading, importing and tests differ in the semantor alone.
///
/// Names are looked up without regard to letter case. Pointers that come back
/// are borrowed. A failure is recorded in the error record that the semantor
/// shares with the parser, which stops at its next test. The pure functions stand in a
/// fixed order.
class VEK0_API IFileDXFISemantor {
 public:
  /// Reading failed; called once, before `transition`.
  virtual void unrecovableError() = 0;
  /// Reading is over, successful or not; called once.
  virtual void transition() = 0;

  /// Whether header variables and current items of the file are wanted.
  virtual bool shouldReadHeaders() = 0;
  /// The variables to fill; not null when `shouldReadHeaders`.
  virtual CDataVariables* getVars() = 0;
  /// Whether entities keep the handles of the file.
  virtual bool shouldRespectHandles() = 0;

  /// Creates a layer unless one of that name exists. A null linetype stands for
  /// Continuous. `flags` are those of the file with 128 added when it is off.
  virtual void createLayer(const zim::WString& name, CLtype* ltype, short colour, long flags) = 0;
  /// The file's entry of layer "0". A null linetype keeps the present one.
  virtual void createLayer0(CLtype* ltype, short colour, long flags) = 0;
  /// Creates layer "xref|name" inside the external reference, which comes into
  /// being unresolved when no block entry declared it yet.
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

  /// Creates the block, or fills one that was only announced. Takes the entities
  /// out of the list, whether or not it succeeds. Error 9 when the block would
  /// come to insert itself, 10 when an external reference bears the name.
  virtual void createBlock(const zim::WString& name, const PNT_3D& base, long flags,
                           std::list<CEnt*>& entities) = 0;
  /// Declares an external reference. The file at `path` is not opened. Error 11
  /// when an ordinary block bears the name.
  virtual void createBlockXRef(const zim::WString& name, const zim::WString& path,
                               const PNT_3D& base, long flags) = 0;
  /// An empty block for an insert whose block is not defined yet; null when it
  /// cannot be made.
  virtual CBlock* createBlockHurried(const zim::WString& name, long flags) = 0;

  /// Takes an entity of model space.
  virtual void add(CEnt* ent) = 0;

  /// The item of that name, "xref|item" included; null when there is none.
  virtual CLtype* getLtype(const zim::WString& name) = 0;
  virtual CLtypeByLayer* getLtypeByLayer() = 0;
  virtual CLayer* getLayer(const zim::WString& name) = 0;
  virtual CStyle* getStyle(const zim::WString& name) = 0;
  /// Null when the drawing has lost its "STANDARD".
  virtual CStyle* getStyleStandard() = 0;
  /// The block of that name; null and error 9 when there is none.
  virtual CBlock* getBlock(const zim::WString& name) = 0;

  virtual CBlockFactory& getBlockFactory() = 0;
  virtual CBlockTable& getBlockTable() = 0;
  virtual CBlockXRefDepend& getDepend() = 0;
  virtual IHandleGestor& getHandleGestor() = 0;
  virtual CEntFactory& getEntFactory() = 0;

  // The rest can be left as it is.

  /// What an insert of that name shows: the external reference or the block, by the name
  /// that the file gives it; null, and nothing recorded, when neither exists yet. By
  /// default what the block table has.
  virtual CBlock* findBlock(const zim::WString& name);
  /// Creates a layer that an entity names and no table declared: color 7,
  /// Continuous, flags 0. A table entry that follows fills it in.
  virtual CLayer* createLayerHurried(const zim::WString& name);
  /// The font for a font file's name; null when the policy allows no stand-in. By default
  /// the font table's, or its default font.
  virtual const ICADFont* getFont(const zim::WString& name);
  /// A hatch with its generated block, which is in the block table; when the lines cannot
  /// be generated, and by default, the block is empty. The caller owns the hatch; null when
  /// it cannot be made.
  virtual CEntHatch* createHatch(CLayer* layer, CLtype* ltype, short colour, const HATCH_TYPE& type,
                                 double scale, double rotate, const std::vector<PNT_3D>& boundary,
                                 vek0::Handle handle);
  /// The patterns that are in no catalogue, which must live as long as the hatches. By
  /// default one table for all such semantors of the process.
  virtual CHatchTypeTable& getHatchTypeTable();
  /// Told of each hatch that the file holds as an insert. Its block may have other content
  /// than a hatch needs, or none, when reading is over. Does nothing unless overridden.
  virtual void adoptHatch(CEntHatch& /*hatch*/) {}

  virtual ~IFileDXFISemantor() = default;

 protected:
  IFileDXFISemantor() = default;
  IFileDXFISemantor(const IFileDXFISemantor&) = default;
  IFileDXFISemantor& operator=(const IFileDXFISemantor&) = default;
};
