// The version written has no hatches. They are saved as inserts of their lines, with extended data
// from which they are restored.

#include "dxf/out/saveddrawing.h"
#include "support/test.h"

namespace {

using Ring = std::vector<PNT_3D>;

const Ring kOuter = {{0, 0, 1}, {10, 0, 1}, {10, 10, 1}, {1.0 / 3, 10, 1}};
const Ring kHole = {{2, 2, 1}, {8, 2, 1}, {8, 8, 1}};

CEnt* first(const Drawing& d) { return d->getEntTable().getEntityTbl().front(); }

void add(CData& data, const HATCH_TYPE& type, double scale, double rotate, const Ring& boundary) {
  CEntHatch* hatch = createEntHatch(data, getLayer0(data), getLtypeByLayer(data), 3, type, scale,
                                    rotate, boundary, 0x2F);
  ASSERT_NE(hatch, nullptr);
  data.getEntTable().add(hatch);
}

void expectSameLines(const CBlock& a, const CBlock& b, double tolerance) {
  ASSERT_EQ(a.size(), b.size());
  for (unsigned i = 0; i < a.size(); ++i) {
    ASSERT_EQ(a[i]->getType(), b[i]->getType());
    if (const CEnt3DFace* face = cast3DFace(const_cast<CEnt*>(b[i]))) {
      EXPECT_TRUE(face->isFilled());
      EXPECT_EQ(face->getFlags(), CEnt3DFace::kNoEdges);
    }
    const RECT_3D &p = a[i]->getBdry(), &q = b[i]->getBdry();
    EXPECT_NEAR(p.min.x, q.min.x, tolerance);
    EXPECT_NEAR(p.min.y, q.min.y, tolerance);
    EXPECT_NEAR(p.max.x, q.max.x, tolerance);
    EXPECT_NEAR(p.max.y, q.max.y, tolerance);
    EXPECT_NEAR(p.max.z, q.max.z, tolerance);
  }
}

void expectSame(CEnt* a, CEnt* b, double tolerance) {
  CEntHatch *p = castHatch(a), *q = castHatch(b);
  ASSERT_TRUE(p && q);
  EXPECT_EQ(zim::WString(p->getHatchType().name), zim::WString(q->getHatchType().name));
  ASSERT_EQ(p->getHatchType().numLines, q->getHatchType().numLines);
  EXPECT_EQ(getHatch(p->getHatchType()), getHatch(q->getHatchType()));
  EXPECT_NEAR(p->getHatchScale(), q->getHatchScale(), tolerance);
  EXPECT_NEAR(p->getHatchRotate(), q->getHatchRotate(), tolerance);
  EXPECT_EQ(p->getColor(), q->getColor());
  EXPECT_EQ(p->GetHandle(), q->GetHandle());
  ASSERT_EQ(p->getNoPnts(), q->getNoPnts());
  for (long i = 0; i < p->getNoPnts(); ++i) {
    EXPECT_NEAR(p->getPnt(i).x, q->getPnt(i).x, tolerance);
    EXPECT_NEAR(p->getPnt(i).y, q->getPnt(i).y, tolerance);
    EXPECT_NEAR(p->getPnt(i).z, q->getPnt(i).z, tolerance);
  }
  expectSameLines(*p->getBlock(), *q->getBlock(), tolerance);
}

// The lines of the file, starting at the INSERT record.
std::string insertRecord(const std::string& bytes) {
  return bytes.substr(bytes.rfind("  0\nINSERT\n"));
}

/// Strict reading needs a font for every style.
class SavedHatches : public testing::Test {
 protected:
  static void SetUpTestSuite() { CFontTable::getInstance().addPlainDefault(); }
  static void TearDownTestSuite() { shutdownCore(); }
};

}  // namespace

TEST_F(SavedHatches, ComeBackAsTheyWere) {
  const HATCH_LINE dashed = {0.3, 0.1, 0.2, 0.5, 1, {0.7, -0.2, 0, -0.3}, 4};
  const struct {
    const char* name;
    const zim::Char* pattern;
    Ring boundary;
  } cases[] = {
      {"lines", u"ANSI31", kOuter},
      {"dots", u"DOTS", kOuter},
      {"hole", u"ANSI37", joinHatchRings({kOuter, kHole})},
      {"own pattern", nullptr, kOuter},
      {"filled", u"SOLID", joinHatchRings({kOuter, kHole})},
  };
  for (const auto& t : cases) {
    for (const unsigned flags : {unsigned{kSaveExchange}, 0u}) {
      SCOPED_TRACE(std::string(t.name) + (flags ? ", exchange" : ", classic"));
      const Drawing d = newDrawing();
      CHatchTypeTable& types = d->getHatchTypeTable();
      const HATCH_TYPE* known = t.pattern ? getHatch(zim::WString(t.pattern)) : nullptr;
      const HATCH_TYPE& type = known       ? *known
                               : t.pattern ? types.solid()
                                           : types.intern(u"Own one", {dashed});
      // A coarse pattern, because each dot is an entity of the file.
      add(*d, type, 20.0 / 3, 0.7, t.boundary);
      const std::string bytes = saved(*d, flags);
      for (const CFileDXFIPolicy& policy : {CFileDXFIPolicy(), CFileDXFIPolicy::forAnyFile()}) {
        const Drawing back = loaded(bytes, policy);
        ASSERT_EQ(back->getEntTable().getEntityTbl().size(), 1u);
        expectSame(first(d), first(back), flags ? 1e-9 : 1e-6);
        if (flags != 0) EXPECT_EQ(firstDifference(bytes, saved(*back, flags)), "");
      }
    }
  }
}

TEST_F(SavedHatches, FlattenedHatchesAreFlat) {
  const Drawing d = newDrawing();
  add(*d, *getHatch(zim::WString(u"NET")), 1, 0, kOuter);
  const Drawing back = loaded(saved(*d, kSaveExchange | kSaveFlatten));
  EXPECT_EQ(castHatch(first(back))->getPnt(1), PNT_3D(10, 0, 0));
  EXPECT_EQ(first(back)->getBdry().max.z, 0);
}

// No line is lost if anything is missing or different: the insert remains.
TEST_F(SavedHatches, ForeignDataLeavesAnInsert) {
  const Drawing d = newDrawing();
  add(*d, d->getHatchTypeTable().intern(u"OWN", {{0, 0, 0, 0, 1, {1, -1}, 2}}), 1, 0, kOuter);
  const std::string bytes = saved(*d, kSaveExchange);
  const std::size_t lines = static_cast<std::size_t>(castHatch(first(d))->getBlock()->size());
  std::size_t at = bytes.find("1001\nACAD\n", bytes.rfind("  0\nINSERT\n"));
  ASSERT_NE(at, std::string::npos);
  for (int pair = 0; bytes.compare(at, 4, "  0\n") != 0; ++pair) {
    const std::size_t end = bytes.find('\n', bytes.find('\n', at) + 1) + 1;
    // Without any one of the pairs, the application's name included, no hatch is restored.
    const Drawing back = loaded(bytes.substr(0, at) + bytes.substr(end));
    ASSERT_EQ(back->getEntTable().getEntityTbl().size(), 1u) << pair;
    CEnt* ent = first(back);
    EXPECT_EQ(castHatch(ent), nullptr) << "without pair " << pair << ": " << bytes.substr(at, 20);
    ASSERT_NE(ent->getEntInsert(), nullptr);
    EXPECT_EQ(ent->getEntInsert()->getBlock()->size(), lines);
    at = end;
  }
}

TEST_F(SavedHatches, AnythingThatDiffersLeavesAnInsert) {
  const Drawing d = newDrawing();
  add(*d, *getHatch(zim::WString(u"NET")), 1, 0, kOuter);
  const std::string bytes = saved(*d, kSaveExchange);
  for (const Row& t : rows()) {
    std::string changed = bytes;
    const std::size_t at = changed.find(t.text("is"), changed.rfind("  0\nINSERT\n"));
    ASSERT_NE(at, std::string::npos);
    changed.replace(at, t.text("is").size(), t.text("becomes"));
    CFileMemory file(u"in.dxf", IFile::kRead, changed);
    CFileDXFIError error;
    CFileReport report;
    CFileDXFIOptions options;
    options.report = &report;
    const Drawing back = newDrawing();
    loadDXF(*back, file, &error, options);
    EXPECT_FALSE(error.HasAnError());
    ASSERT_EQ(back->getEntTable().getEntityTbl().size(), 1u);
    EXPECT_EQ(castHatch(first(back)), nullptr);
    ASSERT_EQ(report.entries().size(), 1u);
    EXPECT_EQ(report.entries()[0].code, ReportCode::CodeDropped);
  }
}

// Each block shows the previous one as a hatch: a change of one would descend through all of them.
TEST_F(SavedHatches, HatchesAreNotNested) {
  const int depth = 5000;
  const auto hatch = [](int i) {
    return savedPairs(
        "0 INSERT; 8 0; 2 *P" + std::to_string(i) +
        "; 10 0; 20 0; 1001 ACAD; 1000 HATCH; 1002 {; 1070 19; 1000 NET; 1040 1; 1040 0; "
        "1000 ASC_BOUNDS; 1070 2; 1070 0; 1000 ASC_SEEDPOINT; 1010 0; 1020 0; 1030 0; "
        "1000 R14_HATCH_DATA; 1000 1; 1010 0; 1020 0; 1030 0; 1011 0; 1021 0; 1031 1; "
        "1070 0; 1071 1; 1070 2; 1040 0; 1071 2; 1010 0; 1020 0; 1030 0; "
        "1010 1; 1020 0; 1030 0; 1010 1; 1020 1; 1030 0; 1002 }");
  };
  const auto block = [&](int i) {
    return savedPairs("0 BLOCK; 8 0; 2 *P" + std::to_string(i) + "; 70 1; 10 0; 20 0") +
           (i == 0 ? savedPairs("0 LINE; 8 0; 10 0; 20 0; 11 1; 21 1") : hatch(i - 1)) +
           savedPairs("0 ENDBLK");
  };
  for (const bool innerFirst : named<bool>({true, false})) {
    std::string bytes = savedPairs("0 SECTION; 2 BLOCKS");
    for (int i = 0; i < depth; ++i) bytes += block(innerFirst ? i : depth - 1 - i);
    bytes += savedPairs("0 ENDSEC; 0 SECTION; 2 ENTITIES") + hatch(depth - 1) +
             savedPairs("0 ENDSEC; 0 EOF");
    const Drawing d = loaded(bytes);
    ASSERT_EQ(d->getEntTable().getEntityTbl().size(), 1u);
    CBlockTable& blocks = d->getBlockTable();
    int hatches = 0;
    for (int i = 0; i < blocks.size(); ++i) {
      const CEntHatch* outer = castHatch((*blocks[i])[0]);
      if (!outer) continue;
      ++hatches;
      EXPECT_EQ(castHatch((*outer->getBlock())[0]), nullptr);
    }
    EXPECT_GT(hatches, 0);
    CEntMoveVisitor move(PNT_3D(1, 1, 0));
    first(d)->accept(move);
    const std::unique_ptr<CEnt> copy(cloneEnt(*d, *first(d)));
    EXPECT_NE(copy, nullptr);
  }
}

TEST_F(SavedHatches, ABlockBelongsToOneHatch) {
  const Drawing d = newDrawing();
  add(*d, *getHatch(zim::WString(u"NET")), 1, 0, kOuter);
  const std::string bytes = saved(*d, kSaveExchange), record = insertRecord(bytes);
  const std::string once = record.substr(0, record.find("  0\nENDSEC"));
  const std::string twice = bytes.substr(0, bytes.size() - record.size()) + once + record;
  const Drawing back = loaded(twice);
  ASSERT_EQ(back->getEntTable().getEntityTbl().size(), 2u);
  CEntHatch* hatch = castHatch(first(back));
  ASSERT_NE(hatch, nullptr);
  CEnt* other = back->getEntTable().getEntityTbl().back();
  EXPECT_EQ(castHatch(other), nullptr);
  EXPECT_EQ(other->getEntInsert()->getBlock(), hatch->getBlock());
  EXPECT_TRUE(hatch->redefine(*back, 2, 0, hatch->getHatchType()));
  EXPECT_GT(other->getEntInsert()->getBlock()->size(), 0u) << "still there";
}

TEST_F(SavedHatches, BecomeOutlinesWhenAsked) {
  const Drawing d = newDrawing();
  add(*d, *getHatch(zim::WString(u"NET")), 1, 0, joinHatchRings({kOuter, kHole}));
  add(*d, d->getHatchTypeTable().solid(), 1, 0, kHole);
  CFileDXFIPolicy policy;
  policy.hatchOutlines = true;
  const Drawing back = loaded(saved(*d, kSaveExchange), policy);
  const auto& ents = back->getEntTable().getEntityTbl();
  ASSERT_EQ(ents.size(), 3u);
  const CEntPolyline* outer = castPolyline(ents.front());
  ASSERT_NE(outer, nullptr);
  EXPECT_TRUE(outer->getBdry() == first(d)->getBdry());
  EXPECT_NE(castHatch(ents.back()), nullptr) << "solid ones stay";
  EXPECT_FALSE(contains(saved(*back, kSaveExchange), "\n  0\nLINE\n")) << "nor are its lines kept";
}

TEST_F(SavedHatches, ImportedHatchesTakeFreeNames) {
  const Drawing d = newDrawing(), base = newDrawing();
  add(*d, *getHatch(zim::WString(u"NET")), 1, 0, kOuter);
  add(*base, *getHatch(zim::WString(u"NET")), 3, 0, kOuter);
  CFileMemory file(u"in.dxf", IFile::kRead, saved(*d, kSaveExchange));
  CFileDXFIError error;
  importDXF(*base, file, &error);
  ASSERT_EQ(base->getEntTable().getEntityTbl().size(), 2u);
  CEntHatch* imported = castHatch(base->getEntTable().getEntityTbl().back());
  ASSERT_NE(imported, nullptr);
  EXPECT_EQ(imported->getHatchScale(), 1);
  EXPECT_NE(imported->getBlock(), castHatch(first(base))->getBlock());
}
