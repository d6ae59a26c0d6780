#include "support/test.h"

namespace {

/// A vertex class of the host.
struct HostVertex : CVertex {
  using CVertex::CVertex;
};

class HostEntFactory : public CEntFactory {
 public:
  CVertex* createVertex(IHandleGestor&, const PNT_3D& pnt, double widthStart, double widthEnd,
                        vek0::Handle handle) override {
    return new HostVertex(pnt, widthStart, widthEnd, handle);
  }
  CVertex* createVertex(IHandleGestor&, const CVertex& src) override {
    return new HostVertex(src, 0);
  }
};

/// Records the names that it receives.
class HostBlockFactory : public CBlockFactory {
 public:
  explicit HostBlockFactory(zim::WString& last) : m_last(last) {}
  using CBlockFactory::create;
  CBlock* create(const zim::WString& name, const PNT_3D& base, long flags) override {
    m_last = name;
    return CBlockFactory::create(name, base, flags);
  }

 private:
  zim::WString& m_last;
};

class HostFactories : public testing::Test {
 protected:
  zim::WString lastName;
  CData data{std::make_unique<CHandleGestorFoo>(),
             std::make_unique<CLtypeFactory>(),
             std::make_unique<CLayerFactory>(),
             std::make_unique<CStyleFactory>(),
             std::make_unique<HostBlockFactory>(lastName),
             std::make_unique<HostEntFactory>()};

  int countOfHostVertexes(CEnt* ent) {
    const CEntPolyline& polyline = *castPolyline(ent);
    int count = 0;
    for (int i = 0; i < polyline.getNoTotalVertexes(); ++i)
      count += dynamic_cast<const HostVertex*>(&polyline[i]) != nullptr;
    EXPECT_EQ(count, polyline.getNoTotalVertexes());
    return count;
  }
};

}  // namespace

TEST_F(HostFactories, MakeTheVertexesOfPolylinesReadAndCopied) {
  const std::string vertex = "  0\nVERTEX\n  8\n0\n 20\n0\n 42\n1\n 10\n";
  CFileMemory file(u"chain.dxf", IFile::kRead,
                   "  0\nSECTION\n  2\nENTITIES\n  0\nPOLYLINE\n  8\n0\n 66\n1\n" + vertex + "0\n" +
                       vertex + "4\n" + vertex + "9\n  0\nSEQEND\n  0\nENDSEC\n  0\nEOF\n");
  CFileDXFIError error;
  loadDXF(data, file, &error);
  ASSERT_EQ(data.getEntTable().getEntityTbl().size(), 1u);
  CEnt* read = data.getEntTable().getEntityTbl().front();
  EXPECT_GT(countOfHostVertexes(read), 3) << "with those along the arcs";
  EXPECT_TRUE(castPolyline(read)->hasArcRuns());
  const std::unique_ptr<CEnt> copy(cloneEnt(data, *read));
  countOfHostVertexes(copy.get());
  // The host's vertices are created from a packed polyline; the library's factory keeps it packed.
  CEntFactory plain;
  const std::unique_ptr<CEntPolyline> packed(
      plain.createEntPolyline(data.getHandleGestor(), nullptr, nullptr, 7, 0, 0, 0));
  packed->addBulgedVertex(PNT_3D(0, 0, 0), 0, 0, 1, 8);
  packed->addBulgedVertex(PNT_3D(4, 0, 0), 0, 0, 0, 9);
  const std::unique_ptr<CEnt> unpacked(cloneEnt(data, *packed));
  countOfHostVertexes(unpacked.get());
  EXPECT_EQ(castPolyline(unpacked.get())->GetVertex(0).GetHandle(), 0);
}

TEST_F(HostFactories, AreToldTheNamesOfHatches) {
  const std::vector<PNT_3D> square = {{0, 0, 0}, {9, 0, 0}, {9, 9, 0}, {0, 9, 0}};
  CEntHatch* first = createEntHatch(data, *getHatch(u"NET"), 4, 0, square, 0);
  data.getEntTable().add(first);
  EXPECT_EQ(lastName, u"*PAT1");
  CEntHatch* second = castHatch(cloneEnt(data, *first));
  data.getEntTable().add(second);
  EXPECT_EQ(lastName, u"*PAT2");
  ASSERT_TRUE(first->redefine(data, 4, 1, *getHatch(u"NET")));
  EXPECT_EQ(lastName, u"*PAT1") << "free again";
  EXPECT_EQ(first->getBlock()->getName(), u"*PAT1");
  EXPECT_EQ(second->getBlock()->getName(), u"*PAT2");
}
