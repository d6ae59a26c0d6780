#include "entities/scene.h"
#include "support/test.h"

namespace {

/// A host's factory that runs out of memory after a number of vertices.
class MeagreFactory : public CEntFactory {
 public:
  explicit MeagreFactory(int vertexes) : m_left(vertexes) {}
  using CEntFactory::createVertex;
  CVertex* createVertex(IHandleGestor& gestor, const PNT_3D& pnt, double ws, double we,
                        vek0::Handle handle) override {
    return m_left-- > 0 ? CEntFactory::createVertex(gestor, pnt, ws, we, handle) : nullptr;
  }
  CVertex* createVertex(IHandleGestor& gestor, const CVertex& src) override {
    return m_left-- > 0 ? CEntFactory::createVertex(gestor, src) : nullptr;
  }

 private:
  int m_left;
};

TEST(EntFactory, PolylineWithoutMemoryForItsVerticesIsNull) {
  Scene s;
  const std::unique_ptr<CEntLine> line(s.line(0, 0, 1, 1));
  for (int vertexes = 0; vertexes <= 2; ++vertexes) {
    SCOPED_TRACE(vertexes);
    const bool suffices = vertexes == 2;
    MeagreFactory factory(vertexes);
    const std::unique_ptr<CEntPolyline> p(factory.createEntPolyline(s.gestor, *line));
    ASSERT_EQ(p != nullptr, suffices);
    if (!suffices) continue;
    MeagreFactory another(1);
    EXPECT_EQ(another.createEntPolyline(s.gestor, *p), nullptr);
    EXPECT_EQ(another.clone(s.gestor, s.data->getBlockFactory(), s.data->getBlockTable(), *p),
              nullptr);
  }
}

TEST(EntFactory, CurvesAreMadeOfTheHostsVertices) {
  Scene s;
  MeagreFactory factory(3);
  const std::unique_ptr<CEntPolyline> p(
      s.factory.createEntPolyline(s.gestor, nullptr, nullptr, 7, 0, 0, 0));
  for (const double x : {0, 1, 2}) p->addVertex(*new CVertex(PNT_3D(x, x * x, 0), 0, 0, 0));
  EXPECT_THROW(p->gener(s.gestor, factory, CEntPolyline::kSpline, 2, false), std::bad_alloc);
  EXPECT_EQ(p->getNoCtrlPnts(), 3);
  EXPECT_EQ(p->getNoVisibleVertexes(), 3) << "what was made until then";
}

}  // namespace
