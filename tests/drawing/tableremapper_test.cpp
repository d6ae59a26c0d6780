#include "drawing/drawings.h"
#include "support/test.h"

namespace {

/// A drawing in which every property that can name an item names the old ones.
class Remapper : public testing::Test {
 protected:
  Remapper()
      : data(newDrawing()),
        oldLayer(addedLayer(*data, u"old")),
        newLayer(addedLayer(*data, u"new")),
        oldLtype(addedLtype(*data, u"old")),
        newLtype(addedLtype(*data, u"new")),
        oldStyle(addedStyle(*data, u"old")),
        newStyle(addedStyle(*data, u"new")) {
    setCurLayer(*data, oldLayer);
    setCurLtype(*data, oldLtype);
    setCurStyle(*data, oldStyle);
    data->getLayer0().setLtype(oldLtype);
    oldLayer->setLtype(oldLtype);
    addedLtype(*data, u"texts")->AddDashText(dashText(oldStyle));
    data->getLtypeContinuous().AddDashText(dashText(oldStyle));
    CBlock* block = addedBlock(*data, u"B");
    data->getEntTable().add(createEntText(*data, dashText(oldStyle), 0));
    CEntInsert* insert = insertOf(*data, *block, 1);
    insert->add(data->getEntFactory().createEntAttrib(data->getHandleGestor(), oldLayer, oldLtype,
                                                      3, dashText(oldStyle), u"TAG", 0, 0));
    data->getEntTable().add(insert);
    CBlock* outer = addedBlock(*data, u"outer");
    outer->add(createEntAttdef(*data, dashText(oldStyle), u"v", u"p", 0, 0));
    xref = addedXRef(*data, u"X");
    xref->add(createEntText(*data, dashText(oldStyle), 0));
    // Recounts the uses, as loading does, because adding to blocks in the table does not count
    // them.
    data = Drawing(cloneData(*data));
    oldLayer = getLayer(*data, u"old");
    newLayer = getLayer(*data, u"new");
    oldLtype = getLtype(*data, u"old");
    newLtype = getLtype(*data, u"new");
    oldStyle = getStyle(*data, u"old");
    newStyle = getStyle(*data, u"new");
    xref = data->getBlockXRefTable().get(u"X");
  }

  CTableRemapper remapper(bool withXRefs = true) {
    CTableRemapper made(*data, withXRefs);
    made.ChangeInto(oldLayer, newLayer);
    made.ChangeInto(oldLtype, newLtype);
    made.ChangeInto(oldStyle, newStyle);
    return made;
  }

  // Use counts of the old and the new items, in this order.
  static std::vector<long> counts(const CData& of) {
    std::vector<long> out;
    for (const zim::Char* name : {u"old", u"new"}) {
      const CLtype* ltype = getLtype(of, name);
      const CStyle* style = getStyle(of, name);
      out.insert(out.end(), {getLayer(of, name)->getEntities(), ltype->getEntities(),
                             ltype->getLayers(), style->getEntities(), style->getDashes()});
    }
    return out;
  }
  std::vector<long> recount() const { return counts(*Drawing(cloneData(*data))); }

  // Number of objects that name an old item, attributes included.
  int oldUsers(const CEnt& ent) const {
    int found = ent.getLayer() == oldLayer || ent.getLtype() == oldLtype ||
                (ent.getStyle() != nullptr && ent.getStyle() == oldStyle);
    const CEntInsertBase* insert = ent.getEntInsert();
    for (unsigned i = 0; insert != nullptr && i < insert->GetNoAttribs(); ++i)
      found += oldUsers(*insert->GetAttrib(i));
    return found;
  }
  int oldUsers() const {
    int found = 0;
    for (const CEnt* ent : data->getEntTable().getEntityTbl()) found += oldUsers(*ent);
    for (int b = 0; b < data->getBlockTable().size(); ++b)
      for (unsigned i = 0; i < data->getBlockTable()[b]->size(); ++i)
        found += oldUsers(*(*data->getBlockTable()[b])[i]);
    for (unsigned i = 0; i < xref->size(); ++i) found += oldUsers(*(*xref)[i]);
    for (CData::CLayerIterator i(*data, true); *i != nullptr; ++i)
      found += (*i)->getLtype() == oldLtype;
    for (CData::CLtypeIterator i(*data, true, true); *i != nullptr; ++i)
      for (int d = 0; d < (*i)->getNoDashes(); ++d)
        found += (*i)->GetDash(d)->IsText() && (*i)->GetDash(d)->GetText()->getStyle() == oldStyle;
    return found + (getCurLayer(*data) == oldLayer) + (getCurLtype(*data) == oldLtype) +
           (getCurStyle(*data) == oldStyle);
  }

  Drawing data;
  CLayer *oldLayer, *newLayer;
  CLtype *oldLtype, *newLtype;
  CStyle *oldStyle, *newStyle;
  CBlockXRef* xref = nullptr;
};

TEST_F(Remapper, NothingNamesWhatWasReplaced) {
  EXPECT_GT(oldUsers(), 10);
  const std::vector<long> before = counts(*data);
  ASSERT_EQ(before, recount());
  remapper().Remap();
  EXPECT_EQ(oldUsers(), 0);
  const std::vector<long> after = counts(*data);
  EXPECT_EQ(after, recount());
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(after[i], 0);
    EXPECT_EQ(after[i + 5], before[i] + before[i + 5]);
  }
  // With all uses replaced, the old items can be removed and deleted.
  removeLayer(*data, oldLayer);
  removeLtype(*data, oldLtype);
  removeStyle(*data, oldStyle);
  delete oldLayer;
  delete oldLtype;
  delete oldStyle;
  EXPECT_FALSE(saved(*data).empty());
}

TEST_F(Remapper, ReferencesAreLeftAloneUnlessAskedFor) {
  remapper(false).Remap();
  EXPECT_EQ(oldUsers(), 1) << "the text in the reference";
}

TEST_F(Remapper, ChangesNothingWithoutAReplacement) {
  const std::string before = saved(*data);
  CTableRemapper(*data, true).Remap();
  CTableRemapper nulls(*data, true);
  nulls.ChangeInto(oldLayer, nullptr);
  nulls.ChangeInto(oldLtype, nullptr);
  nulls.ChangeInto(oldStyle, nullptr);
  nulls.ChangeInto(newLayer, newLayer);
  nulls.Remap();
  EXPECT_EQ(saved(*data), before);
  EXPECT_EQ(counts(*data), recount());
}

TEST_F(Remapper, TheLastReplacementHoldsAndIsNotReplacedInTurn) {
  CLayer* third = addedLayer(*data, u"third");
  CTableRemapper remapper(*data, true);
  remapper.ChangeInto(oldLayer, newLayer);
  remapper.ChangeInto(oldLayer, third);
  remapper.ChangeInto(third, newLayer);
  remapper.Remap();
  EXPECT_EQ(oldLayer->getEntities(), 0);
  EXPECT_EQ(newLayer->getEntities(), 0);
  EXPECT_GT(third->getEntities(), 0);
  EXPECT_EQ(getCurLayer(*data), third);
}

TEST_F(Remapper, IsUndone) {
  const std::string before = saved(*data);
  const std::vector<long> counted = counts(*data);
  const int users = oldUsers();
  CUndoStack undo(*data);
  EXPECT_TRUE(remapper().Remap(undo));
  EXPECT_EQ(undo.getNoUndo(), 1u);
  const std::string after = saved(*data);
  EXPECT_NE(after, before);
  EXPECT_TRUE(undo.undo());
  EXPECT_EQ(saved(*data), before);
  EXPECT_EQ(counts(*data), counted);
  EXPECT_EQ(oldUsers(), users);
  EXPECT_TRUE(undo.redo());
  EXPECT_EQ(saved(*data), after);
  EXPECT_EQ(counts(*data), recount());
  EXPECT_EQ(oldUsers(), 0);
}

}  // namespace
