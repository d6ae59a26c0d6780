#include "dxf/out/saveddrawing.h"
#include "support/test.h"

using namespace vek0::test;
using vek0::detail::kPi;

namespace {

/// Adds to a drawing that already has a layer WALL with a linetype DASH, and a block BOLT.
using Adding = void (*)(CData&);

void add(CData& d, CEnt* ent) { d.getEntTable().add(ent); }
CLayer* wall(CData& d) { return getLayer(d, u"WALL"); }
CLtype* byLayer(CData& d) { return getLtypeByLayer(d); }
CBlock& bolt(CData& d) { return *d.getBlockTable().get(u"BOLT"); }

Drawing prepared() {
  Drawing d = newDrawing();
  double dashes[] = {1, -0.5};
  addLtype(*d, d->getLtypeFactory().create(u"DASH", u"dashes", dashes, 2, 0));
  addNewLayer(*d, u"WALL");
  addNewBlock(*d, u"BOLT");
  return d;
}

/// The ENTITIES section as saved; the lint checks the file, too.
std::string written(Adding adding, unsigned flags) {
  const Drawing d = prepared();
  adding(*d);
  return section(saved(*d, flags), "ENTITIES");
}

void addPoint(CData& d) {
  add(d, createEntPnt(d, wall(d), byLayer(d), 256, PNT_3D(1, 2, 3), 0x1F));
}

void addPlainLine(CData& d) { addLine(d, getLayer0(d), 10); }

void addColoredLine(CData& d) {
  add(d, createEntLine(d, wall(d), getLtype(d, u"DASH"), 0, LINE_3D(0.125, 0, 0, 1, 0, 0), 1));
}

void addCircle(CData& d) {
  add(d, createEntCircle(d, wall(d), byLayer(d), 3, CIRCLE_3D(1, 2, 3, 0.5), 1));
}

void addQuarterArc(CData& d) {
  add(d, createEntArc(d, wall(d), byLayer(d), 256, ARC_3D(0, 0, 0, 2, 0, kPi / 2), 1));
}

void addFace(CData& d) {
  add(d, createEnt3DFace(d, wall(d), byLayer(d), 256, PNT_3D(0, 0, 0), PNT_3D(1, 0, 0),
                         PNT_3D(1, 1, 1), PNT_3D(0, 1, 1), 5, 1));
}

// In an inclined plane that rises by 3 over 4.
void addLeaningTrace(CData& d) {
  add(d, d.getEntFactory().createEntSolid(getHandleGestor(d), wall(d), byLayer(d), 256,
                                          PNT_3D(0, 0, 0), PNT_3D(0, 2, 0), PNT_3D(4, 2, 3),
                                          PNT_3D(4, 0, 3), 0, FaceFill::Trace, 1));
}

void addFilledFace(CData& d) {
  addFace(d);
  cast3DFace(d.getEntTable().getEntityTbl().back())->setFill(FaceFill::Solid);
}

void addText(CData& d) {
  const CTextContext context = textContext(u"\u00D8 12", 2.5, kPi / 2);
  add(d, createEntText(d, wall(d), byLayer(d), 256,
                       TEXT_3D(context, getStyleStandard(d), 1, 2, 0, 0), 1));
}

// The width is 0.9 per character at height 1: "ab" is 3.6 long at height 2.
void addCenteredText(CData& d) {
  add(d, createEntText(d, wall(d), byLayer(d), 256,
                       TEXT_3D(textContext(u"ab", 2, 0), getStyleStandard(d), 10, 0, 0, 7), 1));
}

void addBackwardText(CData& d) {
  CTextContext context = textContext(u"ab", 2, 0);
  context.setWidthScale(-1);
  add(d, createEntText(d, wall(d), byLayer(d), 256, TEXT_3D(context, nullptr, 0, 0, 0, 0), 1));
}

void addAttdef(CData& d) {
  add(d, createEntAttdef(d, wall(d), byLayer(d), 256,
                         TEXT_3D(textContext(u"SIZE", 1, 0), getStyleStandard(d), 0, 0, 0, 0),
                         u"M12", u"Size?", 8, 1));
}

void addInsert(CData& d) {
  add(d, createEntInsert(d, wall(d), byLayer(d), 256, bolt(d), PNT_3D(5, 6, 0), 1, -2, 3, kPi, 2, 3,
                         10, 20, 1));
}

void addFixedInsert(CData& d) {
  add(d, createEntFixedInsert(d, wall(d), byLayer(d), 256, bolt(d), PNT_3D(5, 6, 0), 10, 50, 0, 1));
}

// The attribute is at (1, 0) in the block; the insert doubles and rotates it.
void addInsertWithAttribute(CData& d) {
  CEntInsert* insert = createEntInsert(d, wall(d), byLayer(d), 256, bolt(d), PNT_3D(5, 6, 0), 2, 2,
                                       2, kPi / 2, 1, 1, 0, 0, 1);
  CEntAttdef* def = createEntAttdef(
      d, getLayer0(d), byLayer(d), 256,
      TEXT_3D(textContext(u"SIZE", 1, 0), getStyleStandard(d), 1, 0, 0, 0), u"", u"", 0, 0);
  insert->add(createEntAttrib(d, u"M12", *def, 2));
  delete def;
  add(d, insert);
}

CEntPolyline* addPolyline(CData& d, short flags, short degree = 0) {
  CEntPolyline* polyline = createEntPolyline(d, wall(d), byLayer(d), 256, flags, degree, 1);
  add(d, polyline);
  return polyline;
}

void addVertex(CData& d, CEntPolyline& polyline, double x, double y, double z, double width,
               vek0::Handle handle) {
  polyline.addVertex(*createVertex(d, PNT_3D(x, y, z), width, width, handle));
}

void addWideTriangle(CData& d) {
  CEntPolyline* p = addPolyline(d, CEntPolyline::kClosed | CEntPolyline::kLtGen);
  addVertex(d, *p, 0, 0, 7, 0.5, 2);
  addVertex(d, *p, 1, 0, 7, 0.5, 0);
}

void addSlopingPolyline(CData& d) {
  CEntPolyline* p = addPolyline(d, 0);
  addVertex(d, *p, 0, 0, 1, 0, 2);
  addVertex(d, *p, 1, 0, 2, 0, 3);
}

void addSemicircle(CData& d) {
  CEntPolyline* p = addPolyline(d, 0);
  p->addBulgedVertex(PNT_3D(0, 0, 0), 0, 0, 1, 2);
  p->addBulgedVertex(PNT_3D(2, 0, 0), 0, 0, 0, 3);
}

void addSpline(CData& d) {
  CEntPolyline* p = addPolyline(d, CEntPolyline::kSpline, 2);
  addVertex(d, *p, 0, 0, 0, 0, 2);
  addVertex(d, *p, 4, 0, 0, 0, 3);
  p->addVisibleVertex(*createVertex(d, PNT_3D(1, 1, 0), 0, 0, 4));
}

void addFit(CData& d) {
  CEntPolyline* p = addPolyline(d, CEntPolyline::kFit);
  addVertex(d, *p, 0, 0, 0, 0, 2);
  addVertex(d, *p, 4, 0, 0, 0, 3);
  for (const double x : {0.0, 2.0, 4.0})
    p->addVisibleVertex(*createVertex(d, PNT_3D(x, 0, 0), 0, 0, 0));
}

void addBezier(CData& d) {
  CEntPolyline* p = addPolyline(d, CEntPolyline::kBezier, 3);
  addVertex(d, *p, 0, 0, 0, 0, 2);
  p->addVisibleVertex(*createVertex(d, PNT_3D(1, 1, 0), 0, 0, 4));
}

using Making = CEnt* (*)(CData&);

CEnt* badPoint(CData& d) {
  return createEntPnt(d, wall(d), byLayer(d), 256, PNT_3D(kNan, 0, 0), 1);
}

CEnt* badLine(CData& d) {
  return createEntLine(d, wall(d), byLayer(d), 256, LINE_3D(0, 0, 0, 0, HUGE_VAL, 0), 1);
}

CEnt* badCircle(CData& d) {
  return createEntCircle(d, wall(d), byLayer(d), 256, CIRCLE_3D(0, 0, 0, kNan), 1);
}

// The constructor rejects such an angle, but a host can assign the member.
CEnt* badArc(CData& d) {
  CEntArc* arc = createEntArc(d, wall(d), byLayer(d), 256, ARC_3D(0, 0, 0, 1, 0, 1), 1);
  arc->getArc().endAngle = HUGE_VAL;
  return arc;
}

CEnt* badFace(CData& d) {
  const PNT_3D p(0, 0, 0);
  return createEnt3DFace(d, wall(d), byLayer(d), 256, p, p, p, PNT_3D(0, 0, -HUGE_VAL), 0, 1);
}

CEnt* badText(CData& d) {
  const TEXT_3D text(textContext(u"a", kNan, 0), nullptr, 0, 0, 0, 0);
  return createEntText(d, wall(d), byLayer(d), 256, text, 1);
}

CEnt* badInsert(CData& d) {
  return createEntInsert(d, wall(d), byLayer(d), 256, bolt(d), PNT_3D(0, 0, 0), 1, kNan, 1, 0, 1, 1,
                         0, 0, 1);
}

CEnt* badFixedInsert(CData& d) {
  return createEntFixedInsert(d, wall(d), byLayer(d), 256, bolt(d), PNT_3D(0, 0, 0), 1, kNan, 0, 1);
}

std::string vertex(const char* handle, const char* x, const char* y, const char* z,
                   const char* flags, const char* width = "0.000000") {
  return savedPairs(std::string("0 VERTEX; 5 ") + handle + "; 8 WALL; 10 " + x + "; 20 " + y +
                    "; 30 " + z + "; 70 " + flags + "; 40 " + width + "; 41 " + width);
}

std::string polylineHead(const char* z, const char* flags, const char* width = "0.000000") {
  return savedPairs(std::string("0 POLYLINE; 5 1; 8 WALL; 10 0.000000; 20 0.000000; 30 ") + z +
                    "; 70 " + flags + "; 40 " + width + "; 41 " + width + "; 66 1");
}

std::string seqend(const char* handle) {
  return savedPairs(std::string("0 SEQEND; 5 ") + handle + "; 8 WALL");
}

const char* const kZero = "0.000000";

void expectClassic(const char* name, Adding adding, const std::string& expected) {
  SCOPED_TRACE(name);
  EXPECT_EQ(written(adding, 0), expected);
}

}  // namespace

TEST(EntityOutput, ClassicForm) {
  expectClassic("point", addPoint,
                savedPairs("0 POINT; 5 1F; 8 WALL; 10 1.000000; 20 2.000000; 30 3.000000"));
  expectClassic(
      "line with nothing of its own", addPlainLine,
      savedPairs("0 LINE; 5 A; 8 0; 10 0.000000; 20 0.000000; 30 0.000000; 11 1.000000; 21 "
                 "2.000000; 31 3.000000"));
  expectClassic(
      "line with linetype and BYBLOCK", addColoredLine,
      savedPairs("0 LINE; 5 1; 8 WALL; 6 DASH; 62 0; 10 0.125000; 20 0.000000; 30 0.000000; "
                 "11 1.000000; 21 0.000000; 31 0.000000"));
  expectClassic(
      "circle", addCircle,
      savedPairs(
          "0 CIRCLE; 5 1; 8 WALL; 62 3; 10 1.000000; 20 2.000000; 30 3.000000; 40 0.500000"));
  expectClassic(
      "quarter arc", addQuarterArc,
      savedPairs("0 ARC; 5 1; 8 WALL; 10 0.000000; 20 0.000000; 30 0.000000; 40 2.000000; 50 "
                 "0.000000; 51 90.000000"));
  expectClassic(
      "3D face with hidden edges", addFace,
      savedPairs("0 3DFACE; 5 1; 8 WALL; 10 0.000000; 20 0.000000; 30 0.000000; 11 1.000000; "
                 "21 0.000000; 31 0.000000; 12 1.000000; 22 1.000000; 32 1.000000; 13 "
                 "0.000000; 23 1.000000; 33 1.000000; 70 5"));
  expectClassic(
      "text, left", addText,
      savedPairs("0 TEXT; 5 1; 8 WALL; 40 2.500000; 1 \xD8 12; 50 90.000000; 41 1.000000; 51 "
                 "0.000000; 7 STANDARD; 10 1.000000; 20 2.000000; 30 0.000000; 72 0; 73 0; 11 "
                 "1.000000; 21 2.000000; 31 0.000000"));
  expectClassic(
      "text, middle centre", addCenteredText,
      savedPairs("0 TEXT; 5 1; 8 WALL; 40 2.000000; 1 ab; 50 0.000000; 41 1.000000; 51 "
                 "0.000000; 7 STANDARD; 10 8.200000; 20 -1.000000; 30 0.000000; 72 1; 73 2; "
                 "11 10.000000; 21 0.000000; 31 0.000000"));
  expectClassic(
      "text, backward, without style", addBackwardText,
      savedPairs("0 TEXT; 5 1; 8 WALL; 40 2.000000; 1 ab; 50 0.000000; 41 1.000000; 51 "
                 "0.000000; 7 STANDARD; 10 0.000000; 20 0.000000; 30 0.000000; 71 2; 72 0; 73 "
                 "0; 11 0.000000; 21 0.000000; 31 0.000000"));
  expectClassic(
      "attribute definition", addAttdef,
      savedPairs("0 ATTDEF; 5 1; 8 WALL; 70 8; 1 M12; 3 Size?; 40 1.000000; 2 SIZE; 50 "
                 "0.000000; 41 1.000000; 51 0.000000; 7 STANDARD; 10 0.000000; 20 0.000000; "
                 "30 0.000000; 72 0; 74 0; 11 0.000000; 21 0.000000; 31 0.000000"));
  expectClassic(
      "insert, two columns and three rows", addInsert,
      savedPairs(
          "0 INSERT; 5 1; 8 WALL; 2 BOLT; 10 5.000000; 20 6.000000; 30 0.000000; 41 1.000000; 42 "
          "-2.000000; 43 3.000000; 50 180.000000; 70 2; 71 3; 44 10.000000; 45 20.000000"));
  expectClassic(
      "insert of fixed pixel size", addFixedInsert,
      savedPairs(
          "0 INSERT; 5 1; 8 WALL; 2 BOLT; 10 5.000000; 20 6.000000; 30 0.000000; 41 5.000000; 42 "
          "5.000000; 43 5.000000; 50 0.000000; 70 1; 71 1; 44 0.000000; 45 0.000000"));
  expectClassic(
      "insert with an attribute", addInsertWithAttribute,
      savedPairs(
          "0 INSERT; 5 1; 8 WALL; 2 BOLT; 10 5.000000; 20 6.000000; 30 0.000000; 41 2.000000; 42 "
          "2.000000; 43 2.000000; 50 90.000000; 70 1; 71 1; 44 0.000000; 45 0.000000; 66 1") +
          savedPairs(
              "0 ATTRIB; 5 2; 8 0; 70 0; 2 SIZE; 40 2.000000; 1 M12; 50 90.000000; 41 1.000000; "
              "51 0.000000; 7 STANDARD; 10 5.000000; 20 8.000000; 30 0.000000; 72 0; 74 0; 11 "
              "5.000000; 21 8.000000; 31 0.000000") +
          seqend("3"));
  expectClassic("wide closed polyline", addWideTriangle,
                polylineHead("7.000000", "129", "0.500000") +
                    vertex("2", kZero, kZero, "7.000000", "0", "0.500000") +
                    vertex("3", "1.000000", kZero, "7.000000", "0", "0.500000") + seqend("4"));
  expectClassic("polyline in space", addSlopingPolyline,
                polylineHead("1.000000", "8") + vertex("2", kZero, kZero, "1.000000", "32") +
                    vertex("3", "1.000000", kZero, "2.000000", "32") + seqend("4"));
  expectClassic(
      "spline: frame, then curve", addSpline,
      savedPairs("0 POLYLINE; 5 1; 8 WALL; 10 0.000000; 20 0.000000; 30 0.000000; 70 4; 75 5; "
                 "40 0.000000; 41 0.000000; 66 1") +
          vertex("2", kZero, kZero, kZero, "16") + vertex("3", "4.000000", kZero, kZero, "16") +
          vertex("4", "1.000000", "1.000000", kZero, "8") + seqend("5"));
  expectClassic("fitted arcs: controls in the chain", addFit,
                polylineHead(kZero, "2") + vertex("2", kZero, kZero, kZero, "0") +
                    vertex("3", "2.000000", kZero, kZero, "1") +
                    vertex("4", "4.000000", kZero, kZero, "0") + seqend("5"));
  expectClassic(
      "Bezier: a plain chain", addBezier,
      polylineHead(kZero, "0") + vertex("4", "1.000000", "1.000000", kZero, "0") + seqend("5"));
}

TEST(EntityOutput, FlattenedPointsLoseTheirHeight) {
  EXPECT_EQ(written(addPoint, kSaveFlatten),
            savedPairs("0 POINT; 5 1F; 8 WALL; 10 1.000000; 20 2.000000; 30 0.000000"));
  EXPECT_EQ(written(addSlopingPolyline, kSaveFlatten),
            polylineHead(kZero, "0") + vertex("2", kZero, kZero, kZero, "0") +
                vertex("3", "1.000000", kZero, kZero, "0") + seqend("4"))
      << "what is flat now is no polyline in space";
}

// In its record the last two corners are swapped, and all lie in a single plane.
TEST(EntityOutput, FilledFacesAreSolids) {
  const std::string corners =
      "11 1.0; 21 0.0; 31 0.0; 12 0.0; 22 1.0; 32 0.0; 13 1.0; 23 1.0; 33 0.0";
  EXPECT_EQ(written(addFilledFace, kSaveExchange | kSaveFlatten),
            savedPairs("0 SOLID; 5 1; 8 WALL; 10 0.0; 20 0.0; 30 0.0; " + corners));
  EXPECT_EQ(
      written(addLeaningTrace, kSaveExchange),
      savedPairs("0 TRACE; 5 1; 8 WALL; 10 0.0; 20 0.0; 30 0.0; 11 -2.0; 21 0.0; 31 0.0; "
                 "12 0.0; 22 5.0; 32 0.0; 13 -2.0; 23 5.0; 33 0.0; 210 -0.6; 220 0.0; 230 0.8"));
  EXPECT_EQ(written(addFilledFace, 0), written(addFace, 0)) << "the classic form has none";
  const Drawing warped = prepared();
  addFilledFace(*warped);
  cast3DFace(warped->getEntTable().getEntityTbl().back())->setVertex(3, PNT_3D(0, 1, 2));
  CFileReport report;
  EXPECT_TRUE(contains(saved(*warped, kSaveExchange, &report), "  0\n3DFACE\n"));
  ASSERT_EQ(report.entries().size(), 1u);
  EXPECT_EQ(report.entries()[0].code, ReportCode::FillAsOutline);
  EXPECT_EQ(report.entries()[0].sample, u"SOLID");
}

TEST(EntityOutput, ExchangeFormWritesShortNumbersAndBulges) {
  EXPECT_EQ(
      written(addColoredLine, kSaveExchange),
      savedPairs(
          "0 LINE; 5 1; 8 WALL; 6 DASH; 62 0; 10 0.125; 20 0.0; 30 0.0; 11 1.0; 21 0.0; 31 0.0"));
  const std::string head =
      savedPairs("0 POLYLINE; 5 1; 8 WALL; 10 0.0; 20 0.0; 30 0.0; 70 0; 40 0.0; 41 0.0; 66 1");
  EXPECT_EQ(written(addSemicircle, kSaveExchange),
            head +
                savedPairs(
                    "0 VERTEX; 5 2; 8 WALL; 10 0.0; 20 0.0; 30 0.0; 70 0; 40 0.0; 41 0.0; 42 1.0") +
                savedPairs("0 VERTEX; 5 3; 8 WALL; 10 2.0; 20 0.0; 30 0.0; 70 0; 40 0.0; 41 0.0") +
                seqend("4"));
}

// Chords of a half circle of radius 1 about (1, 0), counterclockwise from (0, 0).
TEST(EntityOutput, ClassicFormWritesTheChordsOfABulge) {
  const std::string text = written(addSemicircle, 0);
  EXPECT_FALSE(contains(text, " 42\n"));
  const int chords = vek0::detail::chordCount(1);
  ASSERT_GT(chords, 50);
  const double angle = kPi + kPi / chords;
  char x[32], y[32];
  std::snprintf(x, sizeof x, "%.6f", 1 + std::cos(angle));
  std::snprintf(y, sizeof y, "%.6f", std::sin(angle));
  EXPECT_TRUE(contains(text, vertex("4", x, y, kZero, "0"))) << text;
  EXPECT_TRUE(contains(text, vertex("3", "2.000000", kZero, kZero, "0")));
}

TEST(EntityOutput, EntitiesThatNoFileCanHoldAreLeftOutAndReported) {
  const struct {
    const char* name;
    Making make;
  } cases[] = {
      {"point", badPoint}, {"line", badLine}, {"circle", badCircle}, {"arc", badArc},
      {"face", badFace},   {"text", badText}, {"insert", badInsert}, {"fixed", badFixedInsert},
  };
  for (const auto& t : named(cases)) {
    const Drawing d = prepared();
    add(*d, t.make(*d));
    CFileReport report;
    EXPECT_EQ(section(saved(*d, 0, &report), "ENTITIES"), "");
    EXPECT_EQ(report.count("entity not finite"), 1);
  }
}

TEST(EntityOutput, APolylineWithOneBadVertexIsLeftOutWhole) {
  for (const unsigned flags : {0u, kSaveExchange}) {
    const Drawing d = prepared();
    addVertex(*d, *addPolyline(*d, 0), 0, 0, 0, kNan, 2);
    CFileReport report;
    EXPECT_EQ(section(saved(*d, flags, &report), "ENTITIES"), "");
    EXPECT_EQ(report.count("entity not finite"), 1);
  }
}

TEST(EntityOutput, ABadAttributeIsMissingAndItsInsertStays) {
  const Drawing d = prepared();
  addInsertWithAttribute(*d);
  (*d->getEntTable().getEntityTbl().begin())->getEntInsert()->GetAttrib(0)->getText().setX(kNan);
  CFileReport report;
  const std::string text = section(saved(*d, 0, &report), "ENTITIES");
  EXPECT_TRUE(contains(text, "INSERT"));
  EXPECT_FALSE(contains(text, "SEQEND") || contains(text, " 66\n"));
  EXPECT_EQ(report.count("entity not finite"), 1);
}

TEST(EntityOutput, AnInsertWithoutItsBlockIsLeftOut) {
  const Drawing d = prepared();
  addInsert(*d);
  CBlock* removed = &bolt(*d);
  d->getBlockTable().remove(removed);
  CFileReport report;
  EXPECT_EQ(section(saved(*d, 0, &report), "ENTITIES"), "");
  EXPECT_EQ(report.count("insert without block"), 1);
  d->getBlockTable().add(removed);
}

TEST(EntityOutput, OddPropertiesBecomeWhatReadersTake) {
  const Drawing d = prepared();
  add(*d, createEntPnt(*d, nullptr, nullptr, 300, PNT_3D(0, 0, 0), 1));
  CFileReport report;
  EXPECT_EQ(section(saved(*d, 0, &report), "ENTITIES"),
            savedPairs("0 POINT; 5 1; 8 0; 10 0.000000; 20 0.000000; 30 0.000000"));
  EXPECT_EQ(report.count("color out of range"), 1);
}

TEST(EntityOutput, TraitsAreReported) {
  const Drawing d = prepared();
  CEntPnt* point = createEntPnt(*d, nullptr, nullptr, 256, PNT_3D(0, 0, 0), 1);
  point->setTraits({0x123456, 25, 99, true, 2, 3});
  add(*d, point);
  getLayer0(*d)->setTraits({0x123456, 25, 99, false});
  CFileReport report;
  saved(*d, 0, &report);
  EXPECT_EQ(report.count("code dropped"), 4 + 3);
  EXPECT_EQ(report.count("color approximated"), 2);
}

TEST(EntityOutput, FixedInsertsAreReported) {
  const Drawing d = prepared();
  addFixedInsert(*d);
  CFileReport report;
  saved(*d, 0, &report);
  EXPECT_EQ(report.count("fixed insert"), 1);
}

TEST(EntityOutput, ALoneAttributeIsOurOwnMistake) {
  const Drawing d = prepared();
  addInsertWithAttribute(*d);
  CEntAttrib* attrib = (*d->getEntTable().getEntityTbl().begin())->getEntInsert()->GetAttrib(0);
  CFileMemory file(u"out", IFile::kWrite);
  CFileDXFOWriter writer(file);
  CNameAcadConverter converter(*d);
  CFileDXFOVisitor visitor(*d, writer, false);
  visitor.SetACADNameConverter(&converter);
  const QuietAsserts asserts;
  attrib->accept(visitor);
  EXPECT_EQ(asserts.failures(), std::vector<std::string>{"false"});
}

TEST(EntityOutput, WithoutNamesNothingIsWritten) {
  const Drawing d = prepared();
  addPlainLine(*d);
  CFileMemory file(u"out", IFile::kWrite);
  ASSERT_TRUE(file.open());
  CFileDXFOWriter writer(file);
  CFileDXFOVisitor visitor(*d, writer, false);
  const QuietAsserts asserts;
  d->getEntTable().getEntityTbl().front()->accept(visitor);
  EXPECT_TRUE(writer.flush());
  EXPECT_EQ(file.bytes(), "");
  EXPECT_EQ(asserts.failures(), std::vector<std::string>{"m_pACADNameConverter != NULL"});
}
