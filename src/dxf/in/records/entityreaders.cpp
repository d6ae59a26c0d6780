#include "dxf/in/records/entityreaders.h"

#include "dxf/in/convert/mtextreader.h"
#include "dxf/in/convert/planeplacement.h"
#include "files/number.h"
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
  return in.make().point(r, r.point(0));
}

EntPtr readLine(RecordReader& in) {
  static constexpr RecordKind kind({10, 20, 30, 11, 21, 31}, {8, 10, 20, 11, 21});
  if (!in.read(kind)) return nullptr;
  const Record& r = in.record();
  return in.make().line(r, LINE_3D(r.point(0), r.point(1)));
}

EntPtr readCircle(RecordReader& in) {
  static constexpr RecordKind kind({10, 20, 30, 40}, {8, 10, 20, 40});
  if (!in.read(kind)) return nullptr;
  const Record& r = in.record();
  const CIRCLE_3D circle(r.real(10), r.real(20), r.real(30), in.radius(r.real(40)));
  if (in.failed()) return nullptr;
  return in.make().circle(r, circle);
}

EntPtr readArc(RecordReader& in) {
  static constexpr RecordKind kind({10, 20, 30, 40, 50, 51}, {8, 10, 20, 40, 50, 51});
  if (!in.read(kind)) return nullptr;
  const Record& r = in.record();
  const ARC_3D arc(r.real(10), r.real(20), r.real(30), in.radius(r.real(40)),
                   r.real(50) * kRadiansPerDegree, r.real(51) * kRadiansPerDegree);
  if (in.failed()) return nullptr;
  return in.make().arc(r, arc);
}

EntPtr read3DFace(RecordReader& in) {
  static constexpr RecordKind kind({10, 20, 30, 11, 21, 31, 12, 22, 32, 13, 23, 33, 70},
                                   {8, 10, 20, 11, 21, 12, 22, 13, 23});
  static constexpr RecordKind kindTolerant(kind.wanted, {10, 20, 11, 21, 12, 22});
  const RecordKind& asked = in.isTolerant() ? kindTolerant : kind;
  if (!in.read(asked)) return nullptr;
  const Record& r = in.record();
  // Without a fourth corner, the face is a triangle.
  const long fourth = r.seen.has(13) && r.seen.has(23) ? 3 : 2;
  if (fourth == 2) in.note(ReportCode::CodeMissing);
  return in.make().face(r, r.point(0), r.point(1), r.point(2), r.point(fourth), r.integer(70));
}

struct Reader {
  std::string_view name;
  EntityKinds since;
  EntPtr (*read)(EntityReader&);
  EntRecord record = EntRecord::Own;
};

template <EntPtr (*readRecord)(RecordReader&)>
EntPtr one(EntityReader& reader) {
  return readRecord(reader.records);
}
EntPtr readPolyline(EntityReader& reader) { return reader.polylines.readPolyline(); }
EntPtr readLwPolyline(EntityReader& reader) { return reader.polylines.readLwPolyline(); }
EntPtr readHatch(EntityReader& reader) { return reader.hatches.read(); }
EntPtr readMpolygon(EntityReader& reader) { return reader.hatches.readMpolygon(); }
template <EntPtr (CurveReader::*readRecord)()>
EntPtr curve(EntityReader& reader) {
  return (reader.curves.*readRecord)();
}

// The most frequent first.
constexpr Reader kReaders[] = {
    {"LINE", EntityKinds::R12, one<readLine>},
    {"POLYLINE", EntityKinds::R12, readPolyline, EntRecord::Polyline},
    {"LWPOLYLINE", EntityKinds::AC1014, readLwPolyline, EntRecord::Lwpolyline},
    {"TEXT", EntityKinds::R12, one<readText>},
    {"ARC", EntityKinds::R12, one<readArc>, EntRecord::Arc},
    {"CIRCLE", EntityKinds::R12, one<readCircle>, EntRecord::Circle},
    {"INSERT", EntityKinds::R12, one<readInsert>},
    {"POINT", EntityKinds::R12, one<readPoint>},
    {"3DFACE", EntityKinds::R12, one<read3DFace>},
    {"HATCH", EntityKinds::AC1014, readHatch, EntRecord::Hatch},
    {"ATTDEF", EntityKinds::R12, one<readAttdef>},
    {"SOLID", EntityKinds::All, one<readSolid>},
    {"SPLINE", EntityKinds::All, curve<&CurveReader::readSpline>, EntRecord::Spline},
    {"ELLIPSE", EntityKinds::All, curve<&CurveReader::readEllipse>, EntRecord::Ellipse},
    {"LEADER", EntityKinds::All, curve<&CurveReader::readLeader>, EntRecord::Leader},
    {"TRACE", EntityKinds::All, one<readSolid>},
    {"MLINE", EntityKinds::All, one<readMultiline>, EntRecord::Mline},
    {"MESH", EntityKinds::All, one<readSubdivisionMesh>, EntRecord::Mesh},
    {"MPOLYGON", EntityKinds::All, readMpolygon, EntRecord::Mpolygon},
    {"XLINE", EntityKinds::All, one<readXline>},
    {"RAY", EntityKinds::All, one<readRay>},
    {"HELIX", EntityKinds::All, curve<&CurveReader::readHelix>, EntRecord::Helix},
    {"MTEXT", EntityKinds::All, one<readMText>, EntRecord::MText},
    {"DIMENSION", EntityKinds::All, one<readDimension>, EntRecord::Dimension},
    {"MULTILEADER", EntityKinds::All, one<readMultileader>, EntRecord::Multileader},
    {"MLEADER", EntityKinds::All, one<readMultileader>, EntRecord::Mleader},
    {"TOLERANCE", EntityKinds::All, one<readTolerance>, EntRecord::Tolerance},
    {"ACAD_TABLE", EntityKinds::All, one<readTable>, EntRecord::Table},
    {"ARC_DIMENSION", EntityKinds::All, one<readDimension>, EntRecord::ArcDimension},
    {"LARGE_RADIAL_DIMENSION", EntityKinds::All, one<readDimension>,
     EntRecord::LargeRadialDimension},
};

// The report code for a record that is not read; none if nothing is lost. Parts follow an entity
// that was dropped.
std::optional<ReportCode> lossOf(const CFileDXFILexer& lexer, EntityKinds kinds) {
  if (kinds != EntityKinds::All) return ReportCode::KindSkipped;
  if (lexer.isKeyword("SEQEND")) return std::nullopt;
  const bool isPart = lexer.isKeyword("VERTEX") || lexer.isKeyword("ATTRIB");
  return isPart ? ReportCode::RecordSkipped : ReportCode::KindSkipped;
}

// Whether the record does not belong among entities, as in damaged files.
bool isOfStructure(const CFileDXFILexer& lexer) {
  constexpr std::string_view names[] = {"SECTION", "TABLE",  "ENDTAB", "CLASS",
                                        "BLOCK",   "ENDBLK", "ENDSEQ", "DICTIONARY"};
  return std::any_of(std::begin(names), std::end(names),
                     [&](std::string_view name) { return lexer.isKeyword(name); });
}

const Reader* findReader(const CFileDXFILexer& lexer, EntityKinds kinds) {
  for (const Reader& reader : kReaders)
    if (reader.since <= kinds && lexer.isKeyword(reader.name)) return &reader;
  return nullptr;
}

}  // namespace

EntPtr EntityReader::read(EntityKinds kinds) {
  if (const Reader* reader = findReader(records.lexer(), kinds)) {
    records.begin();
    EntPtr ent = reader->read(*this);
    if (ent) ent->setRecord(reader->record);
    for (const EntPtr& more : records.further) more->setRecord(reader->record);
    if (kinds != EntityKinds::All || records.failed()) return ent;
    // Readers of approximated kinds have already placed their results.
    const bool inPlane = reader->since != EntityKinds::All;
    if (isLeftOut()) return nullptr;
    if (inPlane) ent = placed(std::move(ent));
    // One without a picture.
    const bool isHeld = isWhole() && reader->record == EntRecord::Table && !ent;
    if (isHeld) return opaque(zim::WString::fromUtf8(reader->name));
    return isWhole() ? whole(std::move(ent), reader->record) : std::move(ent);
  }
  if (kinds == EntityKinds::All && records.lexer().isKeyword("VIEWPORT") && isOnKeptSheet()) {
    takeViewport();
    return nullptr;
  }
  const std::optional<ReportCode> loss = lossOf(records.lexer(), kinds);
  if (kinds == EntityKinds::All) return skipOrHold(loss);
  if (loss) records.note(*loss, records.lexer().getText());
  records.skip();
  return nullptr;
}

// Outside blocks, viewports are always on a sheet.
bool EntityReader::isOnKeptSheet() const {
  return records.keepsSheets() && (!records.inBlock || !records.sheet.empty());
}

void EntityReader::takeViewport() {
  records.begin();
  ReadViewport viewport;
  if (readViewport(records, viewport)) viewports.push_back(std::move(viewport));
}

// Viewport number 1 is the sheet itself.
EntPtr EntityReader::skipOrHold(std::optional<ReportCode> loss) {
  constexpr long space = 67, number = 69;
  const zim::WString kind = records.lexer().getText();
  const long line = records.lexer().getLine();
  bool isSheet = false, onPaper = false;
  const bool isViewport = records.lexer().isKeyword("VIEWPORT");
  const bool isHeld = isWhole() && loss == ReportCode::KindSkipped && !isViewport &&
                      !isOfStructure(records.lexer());
  const auto look = [&](long code) {
    const std::string_view bytes = records.lexer().getBytes();
    if (code == space) onPaper = parseLong(bytes) != 0;
    if (code == number && isViewport) isSheet = parseLong(bytes) == 1;
  };
  records.begin();
  if (isHeld)
    records.readCommon(look);
  else
    for (long code = records.next(); code != 0 && !records.failed(); code = records.next())
      look(code);
  if (!loss || isSheet) return nullptr;
  const bool isElsewhere = isOtherSpace(onPaper);
  records.noteAt(line, isElsewhere ? ReportCode::OnPaper : *loss,
                 isElsewhere ? records.sheet : kind);
  return isHeld && !isElsewhere && !records.failed() ? opaque(kind) : nullptr;
}

// Entities on a layout's sheet are not in model space and vice versa; blocks belong to both,
// whatever their entities state.
bool EntityReader::isLeftOut() {
  if (!isOtherSpace(records.frame().onPaper)) return false;
  records.note(ReportCode::OnPaper, records.sheet);
  records.further.clear();
  return true;
}

bool EntityReader::isOtherSpace(bool onPaper) {
  if (records.keepsSheets()) return false;
  const bool isSheet = !records.sheet.empty();
  if (isSheet || (onPaper && !records.inBlock)) records.sheetUsed[isSheet] = true;
  if (records.inBlock) return isSheet;
  return onPaper != records.context().options.policy.paperSpace;
}

EntPtr EntityReader::placed(EntPtr ent) {
  const PNT_3D& normal = records.frame().normal;
  if (!ent || normal == PNT_3D(0, 0, 1)) return ent;
  const PlaneAxes axes(normal);
  if (axes.isWorld()) return ent;
  const EntRecord record = ent->getRecord();
  EntPtr there = placeInWorld(records, std::move(ent), axes);
  if (there) there->setRecord(record);
  return there;
}

}  // namespace vek0::detail
