#pragma once

#include <array>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "dxf/out/itemlists.h"
#include "dxf/out/modern/itemnames.h"
#include "dxf/out/modern/saveditems.h"
#include "dxf/out/modern/versionrules.h"
#include "dxf/out/savefilter.h"
#include "dxf/out/savehandles.h"
#include "vek0core/drawing/layout.h"
#include "vek0core/entities/blocks/insertclip.h"
#include "vek0core/files/report.h"
#include "vek0core/files/textcodec.h"

class CBlock;
class CEntHatch;

namespace vek0::detail {

struct PolylineForm;

/// Objects of every file.
enum class FixedObject {
  VportTable,
  LtypeTable,
  LayerTable,
  StyleTable,
  ViewTable,
  UcsTable,
  AppidTable,
  DimstyleTable,
  BlockRecordTable,
  ActiveVport,
  ByBlock,
  ByLayer,
  AcadAppid,
  TransparencyAppid,
  StandardDimstyle,
  RootDictionary,
  GroupDictionary,
  LayoutDictionary,
  MlineStyleDictionary,
  PlotSettingsDictionary,
  PlotStyleDictionary,
  StandardMlineStyle,
  NormalPlotStyle,
  Count,
};

/// A block definition and its record.
struct SavedBlock {
  CBlock* block;
  bool isXRef;
  Handle record = 0, begin = 0, end = 0;
};

/// A viewport and the entity that bounds it.
struct SavedViewport {
  const VIEWPORT* viewport;
  const CEnt* boundary = nullptr;  ///< of the sheet; null if there is none
  Handle ownBoundary = 0;          ///< of one that only the file has; 0 for none
};

/// Model space, or the sheet of a layout.
struct SavedSpace {
  const CLayout* layout = nullptr;  ///< null: model space, or the sheet of a file without layouts
  std::string block;                ///< its name
  zim::WString name;
  long tab = 0;  ///< position among the layouts; 0 for the model
  Handle record = 0, begin = 0, end = 0;
  Handle object = 0;       ///< the LAYOUT object
  Handle ownViewport = 0;  ///< that stands for the sheet itself
  std::vector<SavedViewport> viewports = {};
};

/// A clipped insert that was written.
struct SavedClip {
  /// The insert must be clipped; the handles are still to be set.
  explicit SavedClip(const CEntInsert& ent);

  Handle insert = 0, dictionary = 0, filters = 0, filter = 0;
  std::shared_ptr<const INSERT_CLIP> clip;
  PNT_2D base;  ///< by which the boundary is moved
};

/// What one file contains, determined before the first line is written: the items of every table
/// with their names and handles.
class FilePlan {
 public:
  /// The report may be null. All arguments are borrowed. Texts are encoded in `codePage`, or, for
  /// `kCodePageAuto`, in the one that suits the version and the names.
  FilePlan(const CData& data, const VersionRules& rules, bool isSelectedOnly, CFileReport* report,
           int codePage = kCodePageAuto);

  Handle of(FixedObject object) const { return m_fixed[static_cast<std::size_t>(object)]; }
  /// The extents of what is written of model space; empty if there is nothing.
  RECT_3D modelExtents() const;
  /// The reason why the polyline cannot be written; none if it can.
  std::optional<ReportCode> objection(const CEntPolyline& ent, const PolylineForm& form) const;
  /// Whether the hatch is written as such, and not as an insert of its lines.
  bool isNative(const CEntHatch& hatch) const;
  /// Whether the polyline is written as a light one.
  static bool isLight(const PolylineForm& form);
  /// Calls `each` with the entities of model space, or of a sheet, that are written.
  template <class Each>
  void forEachIn(const SavedSpace& space, const Each& each) const;

  void note(ReportCode code, std::u16string_view sample) const {
    if (report) report->add(code, 0, sample);
  }
  /// The bits of an item's flags that files have. Reports an item of that `name` that is flagged as
  /// part of an external reference, but not written under such a name.
  long fileFlags(long flags, const SavedItem& saved, const zim::WString& name) const;
  /// `value` if it is finite; otherwise, reported, the fallback.
  double finite(double value, double fallback, std::u16string_view where) const;
  /// The text in the encoding of the file.
  std::string encoded(std::u16string_view text) const;

  const CData& data;
  const VersionRules& rules;
  CFileReport* report;
  CTextEncoder encoder;
  SaveFilter filter;
  SaveHandles handles;
  SavedItems<CLayer> layers;
  SavedItems<CLtype> ltypes;
  SavedItems<CStyle> styles;
  SavedItems<CBlock> blockNames;
  std::vector<const CLayer*> layerList;
  std::vector<const CLtype*> ltypeList;
  std::vector<ListedStyle> styleList;
  std::vector<SavedBlock> blocks;  ///< each after those that it inserts
  std::vector<SavedSpace> spaces;  ///< the first is the model, the second the current sheet
  bool isCyclic = false;           ///< blocks insert each other
  /// Handles of the entities that bound viewports; 0 until they are written.
  std::unordered_map<const CEnt*, Handle> boundaries;
  std::size_t noClips = 0;
  std::vector<SavedClip> clips;  ///< filled while inserts are written

 private:
  void listBlocks();
  void listSpaces();
  void addSpace(const CLayout* layout, long tab);
  void findBoundaries(SavedSpace& space);
  void countObjects();
  void listItems();
  void chooseEncoding(int codePage);
  void nameBlocks();
  OwnName ownName(const zim::WString& name, bool isDependent) const;
  SavedItem savedItem(const OwnName& own, const zim::WString& name) const;
  void nameItems();
  void nameSpaces();
  void takeHandles();
  Handle takeObject() { return handles.takeEnd(); }

  bool m_isSelectedOnly;
  std::unordered_map<const CBlock*, zim::WString> m_references;  // the names of external ones
  std::array<Handle, static_cast<std::size_t>(FixedObject::Count)> m_fixed{};
};

template <class Each>
void FilePlan::forEachIn(const SavedSpace& space, const Each& each) const {
  const CEntTable& table = data.getEntTable();
  if (&space == &spaces.front()) {
    for (CEnt* ent : m_isSelectedOnly ? table.getSelectedEntityTbl() : table.getEntityTbl())
      if (!each(*ent)) return;
  } else if (space.layout) {
    CBlock& sheet = space.layout->getBlock();
    for (unsigned i = 0; i < sheet.size(); ++i)
      if (!each(*sheet[i])) return;
  }
}

}  // namespace vek0::detail
