// A saved drawing loads as the same drawing: the reader and the writer interpret every kind of
// entity in the same way.

#include "dxf/out/saveddrawing.h"
#include "support/test.h"

namespace {

/// Strict reading needs a font for every style.
class RoundTrip : public testing::Test {
 protected:
  static void SetUpTestSuite() { CFontTable::getInstance().addPlainDefault(); }
  static void TearDownTestSuite() { shutdownCore(); }
};

double coordinate(std::mt19937_64& random) {
  const double units = std::uniform_real_distribution<double>(-1000, 1000)(random);
  if (random() % 16 == 0) return units * 1e-10;  // zero when rounded to six decimals
  return random() % 2 ? units : std::round(units * 100) / 100;
}

PNT_3D point(std::mt19937_64& random) {
  return {coordinate(random), coordinate(random), random() % 3 ? 0 : coordinate(random)};
}

double angle(std::mt19937_64& random) {
  return std::uniform_real_distribution<double>(0, 6.28)(random) * (random() % 16 ? 1 : 1e6);
}

TEXT_3D text(CData& d, std::mt19937_64& random) {
  const zim::Char* strings[] = {u"plain", u"2^3\n%%c", u"\u00D8 \u4E2D\U0001F600",
                                u"",      u"\\U+0041", u"blank  "};
  CTextContext context = textContext(strings[random() % 6], 0.5 + angle(random), angle(random));
  context.setWidthScale(random() % 4 ? 0.8 : -1);
  context.setOblique(random() % 2 ? 0 : 0.2);
  const PNT_3D at = point(random);
  TEXT_3D text(context, getStyleStandard(d), at.x, at.y, at.z, static_cast<long>(random() % 12));
  if (random() % 4 == 0) text.setFit(random() % 2 ? TextFit::Width : TextFit::Size, angle(random));
  return text;
}

CEntPolyline* polyline(CData& d, CLayer* layer, std::mt19937_64& random) {
  const short flags = static_cast<short>((random() % 2) | (random() % 2 ? 128 : 0));
  CEntPolyline* p = createEntPolyline(d, layer, getLtypeByLayer(d), 256, flags, 0, 0);
  const double z = coordinate(random), noise = random() % 2 ? 0 : 1e-9;
  const bool solid = random() % 4 == 0, wide = random() % 3 == 0;
  for (int i = 0; i < 8; ++i) {
    p->addBulgedVertex(
        PNT_3D(coordinate(random), coordinate(random), solid ? z + i : z + i * noise),
        wide ? 0.5 + i * noise : 0, wide ? 0.25 * static_cast<double>(random() % 3) : 0,
        random() % 2 ? 0 : angle(random) - 3, 0);
  }
  return p;
}

CEntPolyline* curve(CData& d, CLayer* layer, std::mt19937_64& random) {
  const short type = random() % 2 ? CEntPolyline::kSpline : CEntPolyline::kFit;
  const short degree = static_cast<short>(type == CEntPolyline::kSpline ? 2 + random() % 2 : 0);
  CEntPolyline* p = createEntPolyline(
      d, layer, getLtypeByLayer(d), 256,
      static_cast<short>(type | (random() % 2 ? CEntPolyline::kClosed : 0)), degree, 0);
  for (int i = 0; i < 5; ++i)
    p->addVertex(*createVertex(d, PNT_3D(coordinate(random), coordinate(random), 0), 0, 0, 0));
  p->regen(getHandleGestor(d), d.getEntFactory(), false);
  return p;
}

CEntInsert* insert(CData& d, CLayer* layer, CBlock& block, std::mt19937_64& random) {
  const double scales[] = {1, -2.5, 100, 1e5};
  CEntInsert* ent =
      createEntInsert(d, layer, getLtypeByLayer(d), 256, block, point(random), scales[random() % 4],
                      1 + angle(random), 1, angle(random), 1 + static_cast<long>(random() % 3), 1,
                      coordinate(random), 0, 0);
  for (auto n = random() % 3; n > 0; --n) {
    TEXT_3D shown = text(d, random);
    transform_attrib_phisic_2_logic(1, *ent, shown);
    ent->add(d.getEntFactory().createEntAttrib(getHandleGestor(d), layer, getLtypeByLayer(d), 256,
                                               shown, u"TAG", 0, 0));
  }
  return ent;
}

CEnt* anyEntity(CData& d, CLayer* layer, CBlock* block, std::mt19937_64& random) {
  CLtype* ltype = random() % 2 ? static_cast<CLtype*>(getLtypeByLayer(d)) : getLtype(d, u"GAS");
  const short color = static_cast<short>(random() % 257);
  const vek0::Handle handle = static_cast<long>(random() % 200);
  const PNT_3D a = point(random), b = point(random);
  switch (random() % (block ? 10 : 9)) {
    case 0:
      return createEntPnt(d, layer, ltype, color, a, handle);
    case 1:
      return createEntLine(d, layer, ltype, color, LINE_3D(a, b), handle);
    case 2:
      return createEntCircle(d, layer, ltype, color, CIRCLE_3D(a.x, a.y, a.z, 3.25), handle);
    case 3:
      return createEntArc(d, layer, ltype, color,
                          ARC_3D(a.x, a.y, a.z, 0.1 + angle(random), angle(random), angle(random)),
                          handle);
    case 4:
      return createEnt3DFace(d, layer, ltype, color, a, b, point(random), b, 5, handle);
    case 5:
      return createEntText(d, layer, ltype, color, text(d, random), handle);
    case 6:
      return createEntAttdef(d, layer, ltype, color, text(d, random), u"1", u"?", 2, handle);
    case 7:
      return polyline(d, layer, random);
    case 8:
      return curve(d, layer, random);
    default:
      return insert(d, layer, *block, random);
  }
}

/// Fills with two sides along these vectors; some have three corners. Strict reading skips them.
void addFills(CData& d, const PNT_3D& right, const PNT_3D& up, std::mt19937_64& random) {
  for (int i = 0; i < 6; ++i) {
    const PNT_3D a = point(random), b = a + right, c = b + up;
    d.getEntTable().add(d.getEntFactory().createEntSolid(
        getHandleGestor(d), getLayer0(d), getLtypeByLayer(d), 256, a, b, c, i % 3 ? a + up : c, 0,
        i % 2 ? FaceFill::Solid : FaceFill::Trace, 0));
  }
}

/// A drawing with all kinds of entities, nested blocks, and names that need conversion.
Drawing anyDrawing(unsigned seed) {
  std::mt19937_64 random(seed);
  Drawing d = newDrawing();
  double dashes[] = {1.0 / 3, -1.0 / 3, 0, -1.0 / 3};
  addLtype(*d, d->getLtypeFactory().create(u"GAS", u"Gas ____ . ____", dashes, 4, 0));
  CLayer* layers[] = {getLayer0(*d), addNewLayer(*d, u"W\u00E4nde 1"),
                      addNewLayer(*d, u"W_nde_1", 4)};
  addStyle(*d, d->getStyleFactory().create(u"NOTES", CFontTable::getInstance().getDefault(), 2, 0.8,
                                           0.25, 2, 0));
  setCurColor(*d, 3);
  CBlock* block = nullptr;
  for (int n = 0; n < 3; ++n) {
    CBlock* next =
        d->getBlockFactory().create(d->getBlockTable().GetProgName(u"*U"), PNT_3D(1, 2, 0), 1);
    for (int i = 0; i < 5; ++i) next->add(anyEntity(*d, layers[random() % 3], block, random));
    d->getBlockTable().add(next);
    block = next;
  }
  for (int i = 0; i < 60; ++i)
    d->getEntTable().add(anyEntity(*d, layers[random() % 3], block, random));
  return d;
}

}  // namespace

// Saving a loaded drawing reproduces the file. Some drawings have a handle so high that no further
// handles fit above it.
TEST_F(RoundTrip, SavingWhatWasReadGivesTheSameFile) {
  for (unsigned seed = 1; seed <= 24; ++seed) {
    const unsigned flags = seed % 2 ? kSaveExchange : 0;
    SCOPED_TRACE(testing::Message() << "seed " << seed << ", flags " << flags);
    const Drawing d = anyDrawing(seed);
    std::mt19937_64 random(seed);
    const double size = coordinate(random);
    addFills(*d, PNT_3D(size, 5, 0), PNT_3D(0, size, 0), random);
    addFills(*d, PNT_3D(size, 0, 0), PNT_3D(5, 0, size), random);
    addFills(*d, PNT_3D(0, size, 0), PNT_3D(0, 5, size), random);
    if (seed % 3 == 0) addLine(*d, getLayer0(*d), 0x7FFFFF00);
    if (seed % 5 == 0) {
      CFileMemory file(u"in.dxf", IFile::kRead, saved(*d, flags));
      importDXF(*d, file, nullptr);
    }
    const std::string first = saved(*d, flags);
    const CFileDXFIPolicy policy = flags ? CFileDXFIPolicy::forAnyFile() : CFileDXFIPolicy();
    EXPECT_EQ(firstDifference(saved(*loaded(first, policy), flags), first), "");
  }
}

// Files state planes by a computed normal and origin, so the last digits change.
TEST_F(RoundTrip, InclinedFillsComeBackButForRounding) {
  std::mt19937_64 random(7);
  const Drawing d = newDrawing();
  for (int i = 0; i < 50; ++i) addFills(*d, point(random), point(random), random);
  const Drawing again = loaded(saved(*d, kSaveExchange), CFileDXFIPolicy::forAnyFile());
  const auto& faces = again->getEntTable().getEntityTbl();
  ASSERT_EQ(faces.size(), 300u);
  auto it = faces.begin();
  for (CEnt* ent : d->getEntTable().getEntityTbl()) {
    const CEnt3DFace &was = *cast3DFace(ent), &is = *cast3DFace(*it++);
    EXPECT_EQ(is.getFill(), was.getFill());
    for (long i = 0; i < 4; ++i) EXPECT_LT(is.getVertex(i).dist(was.getVertex(i)), 1e-8);
  }
}

TEST_F(RoundTrip, FilesWithoutTablesAreRead) {
  const Drawing d = anyDrawing(1);
  const Drawing again = loaded(saved(*d, kSaveExchange | kSaveNoTables));
  EXPECT_EQ(again->getEntTable().getEntityTbl().size(), d->getEntTable().getEntityTbl().size());
}

TEST_F(RoundTrip, NumbersComeBackExactly) {
  const Drawing d = newDrawing();
  addLine(*d, getLayer0(*d), 1)->setLine(LINE_3D(1e-300, -1.0 / 3, 1e20, 0.1, 123456789.123, 0));
  const Drawing again = loaded(saved(*d, kSaveExchange));
  const CEntLine* line = castLine(again->getEntTable().getEntityTbl().front());
  ASSERT_NE(line, nullptr);
  EXPECT_EQ(line->getLine().p1, PNT_3D(1e-300, -1.0 / 3, 1e20));
  EXPECT_EQ(line->getLine().p2, PNT_3D(0.1, 123456789.123, 0));
}

TEST_F(RoundTrip, TextsComeBackWhateverTheyHold) {
  const zim::Char* const strings[] = {
      u"a\r\nb\tc",        u"^",        u"^J",       u"\\U+0041", u"\u20AC\u00E9",
      u"\u4E2D\U0001F600", u"  0\nEOF", u"\x7F\x01", u"a  ",      u"^ "};
  for (const zim::Char* string : strings) {
    SCOPED_TRACE(zim::WString(string).toUtf8());
    const Drawing d = newDrawing();
    d->getEntTable().add(
        createEntText(*d, TEXT_3D(textContext(string, 1, 0), nullptr, 0, 0, 0, 0), 1));
    const Drawing again = loaded(savedAnyhow(*d, 0));
    ASSERT_EQ(again->getEntTable().getEntityTbl().size(), 1u);
    const CEntText* text = castText(again->getEntTable().getEntityTbl().front());
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(text->getText().getContext().getString(), zim::WString(string));
  }
}

TEST_F(RoundTrip, ExternalReferencesComeBackUnresolved) {
  const Drawing d = newDrawing();
  CBlockXRef* xref = addNewXRef(*d, u"site plan");
  CLayer* layer =
      d->getLayerFactory().createXRef(*xref, u"my walls", &d->getLtypeContinuous(), 3, 0);
  xref->getLayerTable().add(layer);
  d->getEntTable().add(createEntInsertXRef(*d, layer, getLtypeByLayer(*d), 256, *xref,
                                           PNT_3D(0, 0, 0), 1, 1, 1, 0, 1, 1, 0, 0, 1));
  const std::string first = saved(*d, kSaveExchange);
  const Drawing again = loaded(first);
  const CBlockXRef* read = again->getBlockXRefTable().get(u"site_plan");
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->getPath(), xref->getPath());
  EXPECT_EQ(read->getPnt(), PNT_3D(1, 2, 3));
  EXPECT_NE(getLayer(*again, u"site_plan|my_walls"), nullptr);
  EXPECT_EQ(firstDifference(saved(*again, kSaveExchange), first), "");
}

TEST_F(RoundTrip, ATextTooLongForALineIsReadShortened) {
  const Drawing d = newDrawing();
  const zim::WString text(std::u16string(9000, u'x'));
  d->getEntTable().add(createEntText(*d, TEXT_3D(textContext(text, 1, 0), nullptr, 0, 0, 0, 0), 1));
  const Drawing again = loaded(savedAnyhow(*d, 0));
  ASSERT_EQ(again->getEntTable().getEntityTbl().size(), 1u);
  EXPECT_EQ(castText(again->getEntTable().getEntityTbl().front())
                ->getText()
                .getContext()
                .getString()
                .Length(),
            8190u);
}
