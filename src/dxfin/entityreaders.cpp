#include "dxfin/entityreaders.h"

#include "vek0core/entities/ent3dface.h"
#include "vek0core/entities/entarc.h"
#include "vek0core/entities/entcircle.h"
#include "vek0core/entities/entline.h"
#include "vek0core/entities/entpnt.h"

namespace vek0::detail {
namespace {

EntPtr readPoint(RecordReader& in) {
  static constexpr RecordKind kind({10, 20, 30}, {8, 10, 20});
  if (!in.read(kind)) return nullptr;
  const Record& r = in.record();
  return in.built(
      in.factory().createEntPnt(in.gestor(), r.layer, r.ltype, r.color, r.point(0), r.handle));
}

EntPtr readLine(RecordReader& in) {
  static constexpr RecordKind kind({10, 20, 30, 11, 21, 31}, {8, 10, 20, 11, 21});
  if (!in.read(kind)) return nullptr;
  const Record& r = in.record();
  return in.built(in.factory().createEntLine(in.gestor(), r.layer, r.ltype, r.color,
                                             LINE_3D(r.point(0), r.point(1)), r.handle));
}

EntPtr readCircle(RecordReader& in) {
  static constexpr RecordKind kind({10, 20, 30, 40}, {8, 10, 20, 40});
  if (!in.read(kind)) return nullptr;
  const Record& r = in.record();
  const CIRCLE_3D circle(r.real(10), r.real(20), r.real(30), r.real(40));
  return in.built(
      in.factory().createEntCircle(in.gestor(), r.layer, r.ltype, r.color, circle, r.handle));
}

EntPtr readArc(RecordReader& in) {
  static constexpr RecordKind kind({10, 20, 30, 40, 50, 51}, {8, 10, 20, 40, 50, 51});
  if (!in.read(kind)) return nullptr;
  const Record& r = in.record();
  const ARC_3D arc(r.real(10), r.real(20), r.real(30), r.real(40), r.real(50) * kRadiansPerDegree,
                   r.real(51) * kRadiansPerDegree);
  return in.built(in.factory().createEntArc(in.gestor(), r.layer, r.ltype, r.color, arc, r.handle));
}

EntPtr read3DFace(RecordReader& in) {
  static constexpr RecordKind kind({10, 20, 30, 11, 21, 31, 12, 22, 32, 13, 23, 33, 70},
                                   {8, 10, 20, 11, 21, 12, 22, 13, 23});
  if (!in.read(kind)) return nullptr;
  const Record& r = in.record();
  return in.built(in.factory().createEnt3DFace(in.gestor(), r.layer, r.ltype, r.color, r.point(0),
                                               r.point(1), r.point(2), r.point(3), r.integer(70),
                                               r.handle));
}

struct Reader {
  std::string_view name;
  EntityKinds since;
  EntPtr (*read)(EntityReader&);
};

template <EntPtr (*readRecord)(RecordReader&)>
EntPtr one(EntityReader& reader) {
  return readRecord(reader.records);
}
EntPtr readPolyline(EntityReader& reader) { return reader.polylines.readPolyline(); }
EntPtr readLwPolyline(EntityReader& reader) { return reader.polylines.readLwPolyline(); }
EntPtr readHatch(EntityReader& reader) { return reader.hatches.read(); }

// The commonest first.
constexpr Reader kReaders[] = {
    {"LINE",       EntityKinds::R12,    one<readLine>  },
    {"POLYLINE",   EntityKinds::R12,    readPolyline   },
    {"LWPOLYLINE", EntityKinds::AC1014, readLwPolyline },
    {"TEXT",       EntityKinds::R12,    one<readText>  },
    {"ARC",        EntityKinds::R12,    one<readArc>   },
    {"CIRCLE",     EntityKinds::R12,    one<readCircle>},
    {"INSERT",     EntityKinds::R12,    one<readInsert>},
    {"POINT",      EntityKinds::R12,    one<readPoint> },
    {"3DFACE",     EntityKinds::R12,    one<read3DFace>},
    {"HATCH",      EntityKinds::AC1014, readHatch      },
    {"ATTDEF",     EntityKinds::R12,    one<readAttdef>},
};

const Reader* findReader(const CFileDXFILexer& lexer, EntityKinds kinds) {
  for (const Reader& reader : kReaders)
    if (reader.since <= kinds && lexer.isKeyword(reader.name)) return &reader;
  return nullptr;
}

}  // namespace

EntPtr EntityReader::read(EntityKinds kinds) {
  if (const Reader* reader = findReader(records.lexer(), kinds)) return reader->read(*this);
  records.note("kind skipped", records.lexer().getText());
  records.skip();
  return nullptr;
}

}  // namespace vek0::detail
