#pragma once

#include <optional>
#include <string_view>

#include "dxf/in/convert/curvereaders.h"
#include "dxf/in/convert/shapereaders.h"
#include "dxf/in/recordreader.h"
#include "dxf/in/records/clipreader.h"
#include "dxf/in/records/hatchreader.h"
#include "dxf/in/records/polylinereader.h"
#include "dxf/in/records/viewportreader.h"
#include "vek0core/files/reportcode.h"

namespace vek0::detail {

/// Which entity kinds are read: those of a format version that a drawing supports, or all that can
/// be converted to those.
enum class EntityKinds { R12, AC1014, All };

/// Reads entity records of any kind.
class EntityReader {
 public:
  explicit EntityReader(const ReadContext& context) : records(context) {}

  /// Reads the record at whose group 0 the lexer is positioned, and leaves the lexer at the next
  /// one. Null if the kind is not read, the record yields nothing or an error is recorded; further
  /// entities of the record are in `records.further`.
  EntPtr read(EntityKinds kinds);

  RecordReader records;
  PolylineReader polylines{records};
  HatchReader hatches{records};
  CurveReader curves{records};
  ClipReader clips{records};
  /// The viewports read since the host took them, if sheets are kept.
  std::vector<ReadViewport> viewports;

 private:
  bool isOnKeptSheet() const;
  void takeViewport();
  bool isLeftOut();
  bool isOtherSpace(bool onPaper);
  EntPtr placed(EntPtr ent);
  bool isWhole() const {
    return records.isTolerant() && records.context().options.policy.wholeRecords;
  }
  EntPtr whole(EntPtr first, EntRecord record);
  EntPtr skipOrHold(std::optional<ReportCode> loss);
  EntPtr opaque(const zim::WString& kind);
  CBlock* createBlock(const zim::WString& name, std::vector<EntPtr> pieces);
  void inherit(CEnt& piece, const EntProperties& from) const;

  long m_lastWhole = 0;  // the number of its block
};

// One reader per kind. Each starts at the group 0 of its record.
EntPtr readText(RecordReader& in);
EntPtr readAttdef(RecordReader& in);
EntPtr readInsert(RecordReader& in);
EntPtr readXline(RecordReader& in);
EntPtr readRay(RecordReader& in);

/// An attribute in the file's coordinates, which are drawing coordinates.
std::unique_ptr<CEntAttrib> readAttrib(RecordReader& in);

}  // namespace vek0::detail
