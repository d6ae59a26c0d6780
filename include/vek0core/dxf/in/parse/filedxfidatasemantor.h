#pragma once

#include <cstddef>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "vek0core/dxf/in/filedxfioptions.h"
#include "vek0core/dxf/in/filedxfisemantor.h"
#include "vek0core/files/reportcode.h"
#include "vek0core/hatch/hatchparameters.h"
#include "vek0core/tables/handle.h"

class CBlockXRef;
class CData;
class CEntInsertBase;
class CFileDXFIError;

/// The behavior common to loading and importing.
///
/// The drawing and the error record are borrowed and must outlive the semantor.
class VEK0_API IFileDXFIDataSemantor : public IFileDXFISemantor {
 public:
  IFileDXFIDataSemantor(CData& data, CFileDXFIError* err, const CFileDXFIOptions& options = {});

  void unrecovableError() override {}
  void transition() override {}
  CDataVariables* getVars() override;

  /// Fills in a layer that an entity caused to be created; an already declared one is kept.
  void createLayer(const zim::WString& name, CLtype* ltype, short colour, long flags) override;
  void createLayerXRef(const zim::WString& xref, const zim::WString& name, CLtype* ltype,
                       short colour, long flags) override;
  void createLtype(const zim::WString& name, const zim::WString& description,
                   CLtypeComplexDashSeq& dashes, long flags) override;
  void createLtypeXRef(const zim::WString& xref, const zim::WString& name,
                       const zim::WString& description, CLtypeComplexDashSeq& dashes,
                       long flags) override;
  void createStyle(const zim::WString& name, const ICADFont* font, double fixedHeight,
                   double widthScale, double oblique, double lastHeight, long flags) override;
  /// Fills in an external reference announced by dependent names; an existing path is kept.
  void createBlockXRef(const zim::WString& name, const zim::WString& path, const PNT_3D& base,
                       long flags) override;
  CBlock* createBlockHurried(const zim::WString& name, long flags) override;

  void add(CEnt* ent) override;
  CLtype* getLtype(const zim::WString& name) override;
  CLtypeByLayer* getLtypeByLayer() override;
  CLayer* getLayer(const zim::WString& name) override;
  CStyle* getStyle(const zim::WString& name) override;
  CStyle* getStyleStandard() override;
  CBlock* getBlock(const zim::WString& name) override;
  CBlockFactory& getBlockFactory() override;
  CBlockTable& getBlockTable() override;
  CBlockXRefDepend& getDepend() override;
  IHandleGestor& getHandleGestor() override;
  CEntFactory& getEntFactory() override;
  CBlock* findBlock(const zim::WString& name) override;
  CLayer* createLayerHurried(const zim::WString& name) override;
  const ICADFont* getFont(const zim::WString& name) override;
  CEntHatch* createHatch(CLayer* layer, CLtype* ltype, short colour, const HATCH_TYPE& type,
                         double scale, double rotate, const std::vector<PNT_3D>& boundary,
                         vek0::Handle handle) override;
  CHatchTypeTable& getHatchTypeTable() override;
  void adoptHatch(CEntHatch& hatch) override;
  void reorder(CBlock* block, const EntSorter& sorter) override;

 protected:
  IFileDXFIDataSemantor(const IFileDXFIDataSemantor&) = default;

  CData& data() const { return m_data; }

  /// The external reference of that name; null and error 10 if there is none.
  CBlockXRef* getXRef(const zim::WString& name);
  /// Creates the block and moves the entities into it.
  void createFreshBlock(const zim::WString& name, const PNT_3D& base, long flags,
                        std::list<CEnt*>& entities);
  /// Gives an existing block a new definition and deletes the old entities; error 9, with the new
  /// ones deleted, if it would insert itself, directly or indirectly.
  void redefineBlock(CBlock& block, const PNT_3D& base, long flags, std::list<CEnt*>& entities);
  /// Whether a block entry declared the reference, or the drawing already had it; false for null.
  bool isDeclared(const CBlockXRef* xref) const;
  /// Whether a declared external reference has the name; if so, records error 10.
  bool isXRefName(const zim::WString& name);
  /// Whether the block was created for an insert that preceded its definition.
  bool isPlaceholder(const CBlock& block) const;
  /// Lets the next declaration of the layer define it anew.
  void awaitLayer(const CLayer& layer) { m_hurriedLayers.insert(&layer); }
  /// The placeholders that were never defined, in order of creation.
  std::vector<CBlock*> undefinedBlocks() const;
  /// Resolves what depends on the whole file: external references that are ordinary blocks, inserts
  /// that precede the declaration of such references, fills of solid hatches, and extents.
  void settle();
  /// Removes a block from the drawing and deletes it; nothing may insert it.
  void dropBlock(CBlock& block);

  /// Frees the name for a block of the file if an earlier hatch uses it for its generated lines, or
  /// an earlier record for its pieces.
  void freeHatchName(const zim::WString& name);
  void freeRecordName(const zim::WString& name);  ///< the latter

  /// Deletes entities that could not be placed.
  static void discard(std::list<CEnt*>& entities);
  void note(ReportCode code, const zim::WString& sample) const;

 private:
  struct Placeholder {
    CBlock* block;
    bool defined;
    CBlockXRef* xref;  // what it turned out to be
  };

  void fail(int kind) const;
  bool isSettled(CEnt& ent) const;
  CBlockXRef* findXRef(const zim::WString& name) const;
  CBlockXRef* needXRef(const zim::WString& name);
  CBlockXRef* addXRef(const zim::WString& name, const zim::WString& path, const PNT_3D& base,
                      long flags);
  Placeholder* findPlaceholder(const CBlock& block);
  /// Generates the lines of a hatch; null if there would be too many, or none can be generated.
  std::unique_ptr<CBlock> generate(const vek0::detail::HatchParameters& parameters,
                                   const std::vector<PNT_3D>& boundary);
  void dropUnusedHatchBlocks();
  void dropFalseXRefs();
  void refillSolids();
  void refill(const CEntHatch& hatch);
  void dropCircles(CBlock& block, std::list<CEnt*>& entities) const;
  bool repoint(CEntInsertBase& insert);
  void repointInserts();

  CData& m_data;
  CFileDXFIError* m_err;
  CFileDXFIOptions m_options;
  std::unordered_set<const CLayer*> m_hurriedLayers;
  // References implied only by names of dependent items. Until a block entry declares one, an
  // ordinary block of that name takes precedence.
  std::unordered_set<const CBlockXRef*> m_announcedXRefs;
  std::unordered_set<CBlock*> m_hatchBlocks;        // generated while reading
  std::unordered_set<const CBlock*> m_solidBlocks;  // of solid hatches stored as inserts in the
                                                    // file
  double m_hatchRoom;                               // remaining pieces for further hatches
  std::vector<Placeholder> m_placeholders;
  std::unordered_map<const CBlock*, std::size_t> m_placeholderIndex;
};
