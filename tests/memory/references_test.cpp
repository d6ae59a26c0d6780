#include "memory/trial.h"
#include "support/test.h"
#include "xref/referred.h"

namespace {

using Work = std::function<bool(Sheet&, CUndoStack&)>;

class SheetTrial final : public Trial {
 public:
  SheetTrial(const Work& prepare, Work work)
      : m_sheet(siteSheet()), m_undo(m_sheet.data()), m_work(std::move(work)) {
    EXPECT_TRUE(prepare(m_sheet, m_undo));
  }
  bool run() override { return m_work(m_sheet, m_undo); }
  std::string look() override {
    std::string look = lookOf(m_sheet.data()) + " steps " + std::to_string(m_undo.getNoUndo());
    for (const std::string& line : linesShown(m_sheet.data())) look.append("\n").append(line);
    for (CData::CLayerIterator layer(m_sheet.data(), true); *layer != nullptr; ++layer) {
      look.append("\n").append((*layer)->getFullName().toUtf8());
      look.append(" ").append(std::to_string((*layer)->getColor()));
    }
    return look;
  }

 private:
  Sheet m_sheet;
  CUndoStack m_undo;
  Work m_work;
};

bool unresolved(Sheet&, CUndoStack&) { return true; }
bool resolved(Sheet& sheet, CUndoStack&) { return sheet.resolve() == 0; }

// Layers and blocks appear and disappear, and so do the referenced files.
bool rewritten(Sheet& sheet, CUndoStack& undo) {
  if (!resolved(sheet, undo)) return false;
  sheet.xref(u"HOUSE")->getLayerTable().get(u"WALL")->setColor(3);
  sheet.drawings.files["tree.dxf"] = drawingOf("", "", lineTo(7, 7));
  sheet.drawings.files["house.dxf"] =
      drawingOf(layerEntry("WALL", 2) + layerEntry("ROOF", 4), referenceTo("TREE", "tree.dxf"),
                lineTo(20, 0, "WALL") + lineTo(0, 20, "ROOF") + insertAt("TREE", 3));
  return true;
}

bool rewrittenTwice(Sheet& sheet, CUndoStack& undo) {
  const std::string house = sheet.drawings.files["house.dxf"];
  if (!rewritten(sheet, undo) || !resolved(sheet, undo)) return false;
  sheet.drawings.files["house.dxf"] = house;  // the retired items are in use again
  return true;
}

void failWork(const std::string& name, const Work& prepare, const Work& work) {
  failEachAllocation(name, [=] { return std::make_unique<SheetTrial>(prepare, work); });
}

}  // namespace

TEST(OutOfMemory, ReferencesAreResolvedOrAsTheyWere) {
  failWork("first", unresolved, resolved);
  failWork("again", rewritten, resolved);
  failWork("once more", rewrittenTwice, resolved);
  failWork("one", rewritten, [](Sheet& sheet, CUndoStack&) {
    return resolveXRef(sheet.data(), *sheet.xref(u"HOUSE"), sheet.drawings, sheet.options());
  });
}

TEST(OutOfMemory, ReferencesAreEditedOrAsTheyWere) {
  failWork("attach", resolved, [](Sheet& sheet, CUndoStack& undo) {
    return attachXRef(sheet.data(), undo, u"NEW", u"new.dxf", PNT_3D(1, 2, 0), true) != nullptr;
  });
  failWork("move", resolved, [](Sheet& sheet, CUndoStack& undo) {
    return setXRefPath(undo, *sheet.xref(u"HOUSE"), u"a longer path to another drawing.dxf");
  });
  failWork("detach", resolved, [](Sheet& sheet, CUndoStack& undo) {
    return detachXRef(sheet.data(), undo, *sheet.xref(u"HOUSE"));
  });
  failWork("bind", resolved, [](Sheet& sheet, CUndoStack& undo) {
    return bindXRef(sheet.data(), undo, *sheet.xref(u"HOUSE")) != nullptr;
  });
  const Work bound = [](Sheet& sheet, CUndoStack& undo) {
    return resolved(sheet, undo) && bindXRef(sheet.data(), undo, *sheet.xref(u"HOUSE")) != nullptr;
  };
  failWork("undo", bound, [](Sheet&, CUndoStack& undo) { return undo.undo(); });
}
