#pragma once

#include <string_view>

#include "dxfin/clipreader.h"
#include "dxfin/curvereaders.h"
#include "dxfin/hatchreader.h"
#include "dxfin/polylinereader.h"
#include "dxfin/recordreader.h"
#include "dxfin/shapereaders.h"

namespace vek0::detail {

/// Which entity kinds are read: those that a version of the format has and a drawing too,
/// or all that can be turned into such.
enum class EntityKinds { R12, AC1014, All };

/// Reads entity records of any kind.
class EntityReader {
 public:
  explicit EntityReader(const ReadContext& context) : records(context) {}

  /// Reads the record on whose group 0 the lexer stands and leaves it on the next
  /// one. Null when the kind is not read, when the record gave nothing or when an
  /// error is recorded; further entities of the record are in `records.further`.
  EntPtr read(EntityKinds kinds);

  RecordReader records;
  PolylineReader polylines{records};
  HatchReader hatches{records};
  CurveReader curves{records};
  ClipReader clips{records};

 private:
  void skipKind(const char* loss);
  bool isLeftOut();
  bool isOtherSpace(bool onPaper);
  EntPtr placed(EntPtr ent);
};

// One reader a kind. Each starts on the group 0 of its record.
EntPtr readText(RecordReader& in);
EntPtr readAttdef(RecordReader& in);
EntPtr readInsert(RecordReader& in);
EntPtr readXline(RecordReader& in);
EntPtr readRay(RecordReader& in);

/// An attribute in the coordinates of the file, those of the drawing.
std::unique_ptr<CEntAttrib> readAttrib(RecordReader& in);

}  // namespace vek0::detail
