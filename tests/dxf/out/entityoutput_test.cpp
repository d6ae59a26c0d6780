#include "dxf/out/saveddrawing.h"
#include "support/test.h"

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

}  // namespace

TEST(EntityOutput, RecordsOfEveryForm) {
  const std::pair<const std::string, Adding> all[] = {
      {"point", addPoint},
      {"plainLine", addPlainLine},
      {"coloredLine", addColoredLine},
      {"circle", addCircle},
      {"quarterArc", addQuarterArc},
      {"face", addFace},
      {"filledFace", addFilledFace},
      {"leaningTrace", addLeaningTrace},
      {"text", addText},
      {"centeredText", addCenteredText},
      {"backwardText", addBackwardText},
      {"attdef", addAttdef},
      {"insert", addInsert},
      {"fixedInsert", addFixedInsert},
      {"insertWithAttribute", addInsertWithAttribute},
      {"wideTriangle", addWideTriangle},
      {"slopingPolyline", addSlopingPolyline},
      {"semicircle", addSemicircle},
      {"spline", addSpline},
      {"fit", addFit},
      {"bezier", addBezier},
  };
  const std::map<std::string, Adding> adds(std::begin(all), std::end(all));
  const Definitions flags{{"classic", 0},
                          {"flat", kSaveFlatten},
                          {"exchange", kSaveExchange},
                          {"both", kSaveExchange | kSaveFlatten}};
  for (const Row& t : rowsWith(flags))
    EXPECT_EQ(written(adds.at(t.text("add")), t.whole<unsigned>("form")),
              savedPairs(t.text("expected")));
}

TEST(EntityOutput, FilledFacesAreSolidsWherePossible) {
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
  EXPECT_TRUE(
      contains(text, savedPairs(std::string("0 VERTEX; 5 4; 8 WALL; 10 ") + x + "; 20 " + y)))
      << text;
  EXPECT_TRUE(contains(text, savedPairs("0 VERTEX; 5 3; 8 WALL; 10 2.000000; 20 0.000000")));
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
