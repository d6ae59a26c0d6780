#include "dxf/in/records/entityreaders.h"
#include "vek0core/entities/entline.h"

namespace vek0::detail {
namespace {

// The second point of the record is a direction.
EntPtr readEndless(RecordReader& in, LineReach reach) {
  static constexpr RecordKind kind({10, 20, 30, 11, 21, 31}, {8, 10, 20, 11, 21});
  if (!in.read(kind)) return nullptr;
  const Record& r = in.record();
  const LINE_3D line(r.point(0), r.point(0) + r.point(1));
  if (line.p1 == line.p2) {
    in.fail(CFileDXFIError::OutOfRange);
    return nullptr;
  }
  auto ent = in.make().line(r, line);
  if (ent) ent->setReach(reach);
  return ent;
}

}  // namespace

EntPtr readXline(RecordReader& in) { return readEndless(in, LineReach::Endless); }

EntPtr readRay(RecordReader& in) { return readEndless(in, LineReach::Ray); }

}  // namespace vek0::detail
