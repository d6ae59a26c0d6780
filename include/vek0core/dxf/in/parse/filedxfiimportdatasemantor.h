#pragma once

#include <cstddef>
#include <unordered_map>
#include <unordered_set>

#include "vek0core/dxf/in/parse/filedxfidatasemantor.h"
#include "vek0core/dxf/in/parse/importplan.h"

/// Importing: adds the file's content to a drawing. The drawing's variables, layer "0", "STANDARD"
/// and definitions of equal names are kept, unless a plan says otherwise; entities get new handles.
///
/// Anonymous blocks ("*D3": dimensions, hatches, arrays) are private to their file. Equal names are
/// accidental there, so each gets a free name in the drawing, and the file's inserts are updated.
class VEK0_API CFileDXFIImportDataSemantor : public IFileDXFIDataSemantor {
 public:
  using IFileDXFIDataSemantor::IFileDXFIDataSemantor;
  /// Follows a plan made for this drawing and file, which must outlive the semantor. What the file
  /// replaces is emptied at once. Throws `std::bad_alloc`.
  CFileDXFIImportDataSemantor(CData& data, CFileDXFIError* err, const CFileDXFIOptions& options,
                              const CImportPlan& plan);

  void transition() override;
  bool shouldReadHeaders() override { return false; }
  bool shouldRespectHandles() override { return false; }
  void createLayer(const zim::WString& name, CLtype* ltype, short colour, long flags) override;
  void createLayer0(CLtype* ltype, short colour, long flags) override;
  void createLtype(const zim::WString& name, const zim::WString& description,
                   CLtypeComplexDashSeq& dashes, long flags) override;
  void createStyle(const zim::WString& name, const ICADFont* font, double fixedHeight,
                   double widthScale, double oblique, double lastHeight, long flags) override;
  void createStyleStandard(const ICADFont* font, double fixedHeight, double widthScale,
                           double oblique, double lastHeight, long flags) override;
  CLayer* getLayer(const zim::WString& name) override;
  CLtype* getLtype(const zim::WString& name) override;
  CStyle* getStyle(const zim::WString& name) override;
  CStyle* getStyleStandard() override;
  CBlock* getBlock(const zim::WString& name) override;
  /// Keeps the drawing's block of that name; fills only one that this import created for an insert,
  /// or that it replaces.
  void createBlock(const zim::WString& name, const PNT_3D& base, long flags,
                   std::list<CEnt*>& entities) override;
  CBlock* createBlockHurried(const zim::WString& name, long flags) override;
  CBlock* findBlock(const zim::WString& name) override;

 private:
  struct Hash {
    std::size_t operator()(const zim::WString& name) const { return zim::hashIgnoreCase(name); }
  };
  struct Equal {
    bool operator()(const zim::WString& a, const zim::WString& b) const {
      return a.EqualsIgnoreCase(b);
    }
  };

  void prepare(const IMPORT_ITEM& item);
  bool replaces(ItemTable table, const zim::WString& name) const;
  const zim::WString& plannedName(ItemTable table, const zim::WString& name) const;
  zim::WString freeName(const zim::WString& prefix);
  const zim::WString& ownName(const zim::WString& fileName);

  const CImportPlan* m_plan = nullptr;
  std::unordered_set<const void*> m_outdated;  // items whose new definition is still to come
  std::unordered_map<zim::WString, zim::WString, Hash, Equal> m_ownNames;  // file's -> ours
  std::unordered_map<zim::WString, long, Hash, Equal> m_lastNumbers;       // by prefix
};
