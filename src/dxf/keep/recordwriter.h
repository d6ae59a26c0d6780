#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "dxf/keep/sourcerecord.h"
#include "dxf/out/itemlists.h"
#include "vek0core/tables/handle.h"

class CBlock;
class CData;
class CEnt;
class CFileReport;

namespace vek0::detail {

struct SavedClip;

/// What the versions of source files can hold, as far as it concerns their records.
struct SourceVersion {
  bool isOld = true;        ///< before R13: neither owners nor class names
  bool hasOwners = false;   ///< from 2000 on
  bool hasWeights = false;  ///< lineweights and plot flags: from 2000 on
  bool hasColors = false;   ///< true colors and transparency: from 2004 on
  bool hasLight = false;    ///< LWPOLYLINE and HATCH: from R14 on
  bool hasHandles = true;

  /// By the value of `$ACADVER`; empty is as R12.
  static SourceVersion of(const std::string& name);
};

/// Writes what a file has for entities and items of a drawing, as records.
class RecordWriter {
 public:
  /// Borrows the drawing and the report, which may be null. Texts are encoded in `codePage`. Linear
  /// in the drawing.
  RecordWriter(const CData& data, const SourceVersion& version, const std::string& versionName,
               int codePage, CFileReport* report);
  ~RecordWriter();

  /// The record and those that belong to it; none if it cannot be written, which is reported. The
  /// clip of an insert is left to the caller.
  /// Polylines become the kind that the source has (`isOldPolyline`).
  std::vector<SourceRecord> write(const CEnt& ent, bool isOldPolyline);
  /// The objects of a clip, whose handles are set.
  std::vector<SourceRecord> write(const SavedClip& clip);
  SourceRecord write(const CLayer& layer);
  SourceRecord write(const CLtype& ltype);
  SourceRecord write(const ListedStyle& style);
  /// The section of the variables.
  SourceRecord header();
  /// Lets `nameOf` answer a name as the file spells it.
  void spell(const void* item, std::string_view name) { m_spelled[item] = name; }
  /// The name as written.
  std::string nameOf(const CLayer* layer);
  std::string nameOf(const CLtype* ltype);
  std::string nameOf(const CBlock* block);
  std::string encoded(std::u16string_view text) const;

 private:
  struct Parts;
  template <class Write>
  std::vector<SourceRecord> collect(const Write& write);

  SourceVersion m_version;
  std::unordered_map<const void*, std::string> m_spelled;
  std::unique_ptr<Parts> m_parts;
};

}  // namespace vek0::detail
