#include "entities/scene.h"
#include "support/test.h"

namespace {

/// One entity of each kind, ordered by type code.
std::vector<std::unique_ptr<CEnt>> zoo(Scene& s) {
  std::vector<std::unique_ptr<CEnt>> ents;
  CEntFactory& f = s.factory;
  CLayer* layer = s.layer();
  CLtype* lt = s.ltype();
  const PNT_3D o(0, 0, 0);
  const TEXT_3D text(u"t", nullptr, 0, 0, 0, 1, 1, 0, 0, 0);
  ents.emplace_back(f.createEntPnt(s.gestor, layer, lt, 7, o, 0));
  ents.emplace_back(s.line(0, 0, 1, 1));
  ents.emplace_back(f.createEntCircle(s.gestor, layer, lt, 7, CIRCLE_3D(0, 0, 0, 1), 0));
  ents.emplace_back(f.createEntArc(s.gestor, layer, lt, 7, ARC_3D(0, 0, 0, 1, 0, 1), 0));
  ents.emplace_back(f.createEntPolyline(s.gestor, layer, lt, 7, 0, 0, 0));
  ents.emplace_back(f.createEntText(s.gestor, layer, lt, 7, text, 0));
  ents.emplace_back(f.createEntAttdef(s.gestor, layer, lt, 7, text, u"v", u"p", 0, 0));
  ents.emplace_back(
      f.createEntInsert(s.gestor, layer, lt, 7, nullptr, o, 1, 1, 1, 0, 1, 1, 0, 0, 0));
  ents.emplace_back(f.createEntAttrib(s.gestor, layer, lt, 7, text, u"tag", 0, 0));
  ents.emplace_back(f.createEnt3DFace(s.gestor, layer, lt, 7, o, o, o, o, 0, 0));
  ents.emplace_back(f.createEntFixedInsert(s.gestor, layer, lt, 7, nullptr, o, 1, 1, 0, 0));
  return ents;
}

TEST(EntKinds, CodesAreFixed) {
  Scene s;
  std::vector<short> codes;
  for (const auto& ent : zoo(s)) codes.push_back(ent->getType());
  EXPECT_EQ(codes, (std::vector<short>{1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12}));
}

TEST(EntCast, MatchesExactlyOneKind) {
  Scene s;
  for (const auto& ent : zoo(s)) {
    SCOPED_TRACE(ent->getType());
    CEnt* e = ent.get();
    const std::pair<short, const void*> answers[] = {
        {1, castPnt(e)},      {2, castLine(e)},   {3, castCircle(e)}, {4, castArc(e)},
        {5, castPolyline(e)}, {6, castText(e)},   {7, castAttdef(e)}, {9, castAttrib(e)},
        {10, castHatch(e)},   {11, cast3DFace(e)}};
    for (const auto& [code, answer] : answers)
      EXPECT_EQ(answer != nullptr, code == e->getType()) << "cast of kind " << code;
    EXPECT_EQ(e->getEntInsert() != nullptr, e->getType() == 8 || e->getType() == 12);
  }
  EXPECT_EQ(castLine(nullptr), nullptr);
}

TEST(EntCast, OneVisitorAnswersEachQuestionAnew) {
  Scene s;
  const auto ents = zoo(s);
  CGetLineVisitor visitor;
  EXPECT_NE(visitor.getLine(ents[1].get()), nullptr);
  EXPECT_EQ(visitor.getLine(ents[0].get()), nullptr);
}

/// Records the overload in which a forwarded visit ended.
class Branches final : public IEntInheritVisitor {
 public:
  using IEntInheritVisitor::visit;
  void visit(CEntText&) override { reached = "text"; }
  void visit(CEntInsertBase&) override { reached = "insert"; }
  void visit(CEnt&) override { reached = "entity"; }

  std::string reached;
};

TEST(EntInheritVisitor, ForwardsToTheNearestOverride) {
  Scene s;
  for (const auto& ent : zoo(s)) {
    Branches visitor;
    ent->accept(visitor);
    const short code = ent->getType();
    const bool isText = code == 6 || code == 7 || code == 9;
    const bool isInsert = code == 8 || code == 12;
    EXPECT_EQ(visitor.reached, isText ? "text" : isInsert ? "insert" : "entity") << code;
  }
}

/// Counts the lines and vertices that it visits.
class Counter final : public IEntFooVisitor {
 public:
  using IEntFooVisitor::visit;
  void visit(CEntLine&) override { ++lines; }
  void visit(CVertex&) override { ++vertexes; }

  int lines = 0;
  int vertexes = 0;
};

TEST(EntFooVisitor, IgnoresWhatIsNotOverridden) {
  Scene s;
  Counter counter;
  for (const auto& ent : zoo(s)) ent->accept(counter);
  CVertex vertex(PNT_3D(0, 0, 0), 0, 0, 0);
  vertex.accept(counter);
  EXPECT_EQ(counter.lines, 1);
  EXPECT_EQ(counter.vertexes, 1);
}

}  // namespace
