#include "drawing/randomeditor.h"

using namespace vek0::test;

namespace {

// By entity, those of attributes by their insert and number.
using Handles = std::map<std::pair<const CEnt*, unsigned>, vek0::Handle>;

// The handles of all entities, which must be unique.
Handles handlesOf(const CData& data) {
  Handles handles;
  std::set<vek0::Handle> seen{0};
  const auto add = [&](const CEnt* ent) {
    const CEntInsertBase* insert = ent->getEntInsert();
    for (unsigned i = 0; i <= (insert ? insert->GetNoAttribs() : 0); ++i) {
      const vek0::Handle handle = i == 0 ? ent->GetHandle() : insert->GetAttrib(i - 1)->GetHandle();
      handles[{ent, i}] = handle;
      EXPECT_TRUE(seen.insert(handle).second) << handle;
    }
  };
  for (const CEnt* ent : data.getEntTable().getEntityTbl()) add(ent);
  for (int i = 0; i < data.getBlockTable().size(); ++i)
    for (unsigned j = 0; j < data.getBlockTable()[i]->size(); ++j)
      add((*data.getBlockTable()[i])[j]);
  return handles;
}

CDataPtr managed() {
  return CDataPtr(CDataFactory().createData(std::make_unique<CHandleManager>()));
}

CEnt* addPoint(CData& data, vek0::Handle handle) {
  CEnt* point = createEntPnt(data, &data.getLayer0(), nullptr, 7, PNT_3D(0, 0, 0), handle);
  data.getEntTable().add(point);
  return point;
}

}  // namespace

TEST(HandleManager, EntitiesKeepTheirHandlesThroughEditsAndUndo) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    const CDataPtr data = managed();
    auto& manager = static_cast<CHandleManager&>(data->getHandleGestor());
    manager.start(*data);
    CUndoStack undo(*data);
    RandomEditor editor(*data, undo, seed);
    std::map<std::size_t, Handles> states;
    for (int i = 0; i < 120; ++i) {
      states[undo.getNoUndo()] = handlesOf(*data);
      editor.edit();
    }
    const auto check = [&] {
      const auto state = states.find(undo.getNoUndo());
      if (state != states.end()) EXPECT_EQ(handlesOf(*data), state->second) << "seed " << seed;
    };
    while (undo.undo()) check();
    while (undo.redo()) check();
  }
}

TEST(HandleManager, TheFirstOwnerKeepsAHandle) {
  const CDataPtr data = managed();
  const CEnt *none = addPoint(*data, 0), *first = addPoint(*data, 9), *second = addPoint(*data, 9);
  EXPECT_EQ(none->GetHandle(), 0) << "not started";
  auto& manager = static_cast<CHandleManager&>(data->getHandleGestor());
  manager.start(*data);
  EXPECT_EQ(none->GetHandle(), 10);
  EXPECT_EQ(first->GetHandle(), 9);
  EXPECT_EQ(second->GetHandle(), 11);
  EXPECT_EQ(addPoint(*data, 4)->GetHandle(), 4);
  EXPECT_EQ(addPoint(*data, 9)->GetHandle(), 12);
  EXPECT_EQ(manager.nextseed(), 13);
  // Above the highest handle that files can have, numbers start again from below.
  constexpr vek0::Handle highest = std::numeric_limits<vek0::Handle>::max() - 1;
  EXPECT_EQ(addPoint(*data, highest)->GetHandle(), highest);
  EXPECT_EQ(addPoint(*data, highest)->GetHandle(), 1);
  EXPECT_EQ(manager.bookNext(), 2);
}

// Undo deletes added attributes, and redo makes them again.
TEST(HandleManager, AttributesThatReturnHaveTheirHandles) {
  const CDataPtr data = managed();
  static_cast<CHandleManager&>(data->getHandleGestor()).start(*data);
  CLayer* layer = &data->getLayer0();
  CEntInsertBase* insert =
      data->getEntFactory().createEntInsert(data->getHandleGestor(), layer, nullptr, 7, nullptr,
                                            PNT_3D(0, 0, 0), 1, 1, 1, 0, 1, 1, 0, 0, 0);
  data->getEntTable().add(insert);
  CUndoStack undo(*data);
  for (int i = 0; i < 5; ++i) {
    undo.begin(u"add");
    ASSERT_TRUE(undo.keep(*insert));
    insert->add(data->getEntFactory().createEntAttrib(
        data->getHandleGestor(), layer, nullptr, 7, TEXT_3D(u"v", nullptr, 0, 0, 0, 1, 0, 1, 0, 0),
        u"T", 0, 0));
  }
  const Handles before = handlesOf(*data);
  while (undo.undo()) {
  }
  while (undo.redo()) {
  }
  EXPECT_EQ(handlesOf(*data), before);
}
