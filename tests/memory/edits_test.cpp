#include "memory/trial.h"
#include "support/test.h"

namespace {

using Edit = std::function<bool(CData&, CUndoStack&)>;

class EditTrial final : public DrawingTrial {
 public:
  EditTrial(const std::string& sample, Edit edit)
      : DrawingTrial(loadedSample(sample)), m_undo(*m_data), m_edit(std::move(edit)) {
    m_undo.keepVars();  // two steps to merge
    m_undo.keepVars();
    m_undo.undo();
    m_undo.redo();
  }
  bool run() override { return m_edit(*m_data, m_undo); }
  std::string look() override {
    return DrawingTrial::look() + " steps " + std::to_string(m_undo.getNoUndo()) + " and " +
           std::to_string(m_undo.getNoRedo()) + (m_undo.isOpen() ? " open" : "");
  }

 private:
  CUndoStack m_undo;
  Edit m_edit;
};

// Several edits in one step, which is rolled back if one of them fails.
bool inOneStep(CUndoStack& undo, const std::function<bool()>& edits) {
  undo.begin(u"step");
  bool done = false;
  try {
    done = edits();
  } catch (const std::bad_alloc&) {
    done = false;
  }
  done ? static_cast<void>(undo.commit()) : undo.rollback();
  return done;
}

std::vector<CEnt*> allOf(CData& data) {
  const auto& table = data.getEntTable().getEntityTbl();
  std::vector<CEnt*> all(table.begin(), table.end());
  for (int i = 0; i < data.getBlockTable().size(); ++i)
    for (unsigned k = 0; k < data.getBlockTable()[i]->size(); ++k)
      if (!isHatchName(data.getBlockTable()[i]->getName()))
        all.push_back((*data.getBlockTable()[i])[k]);
  return all;
}

CBlock* firstBlock(CData& data) {
  for (int i = 0; i < data.getBlockTable().size(); ++i)
    if (!isHatchName(data.getBlockTable()[i]->getName())) return data.getBlockTable()[i];
  return nullptr;
}

bool transformed(CData& data, CUndoStack& undo, IEntVisitor& visitor) {
  return inOneStep(undo, [&] {
    for (CEnt* ent : allOf(data)) {
      if (!undo.keep(*ent)) return false;
      ent->accept(visitor);
      if (CBlock* owner = ent->getOwnerBlock()) owner->invalidateBdry();
      data.getEntTable().invalidateBdry();
    }
    return true;
  });
}

// A hatch that cannot be added is deleted with its block.
bool added(CData& data, CUndoStack& undo, CEnt* made, CBlock* into) {
  std::unique_ptr<CEnt> ent(made);
  if (ent && (into != nullptr ? undo.add(*into, made) : undo.add(made))) {
    static_cast<void>(ent.release());
    return true;
  }
  const CEntHatch* hatch = made != nullptr ? castHatch(made) : nullptr;
  std::unique_ptr<CBlock> block(hatch != nullptr ? hatch->getBlock() : nullptr);
  if (block) data.getBlockTable().remove(block.get());
  return false;
}

bool addedKinds(CData& data, CUndoStack& undo) {
  const std::vector<PNT_3D> square{PNT_3D(0, 0, 0), PNT_3D(9, 0, 0), PNT_3D(9, 9, 0),
                                   PNT_3D(0, 9, 0)};
  CBlock* const into = firstBlock(data);
  return inOneStep(undo, [&] {
    CBlockXRef* xref = attachXRef(data, undo, u"NEW", u"new.dxf", PNT_3D(1, 2, 0), false);
    if (xref == nullptr) return false;
    for (CBlock* owner : {static_cast<CBlock*>(nullptr), into}) {
      CEnt* line = createEntLine(data, LINE_3D(0, 0, 0, 1, 2, 0), 0);
      if (!added(data, undo, line, owner)) return false;
      CEnt* insert = createEntInsertXRef(data, data.getDepend(), *xref, PNT_3D(3, 4, 0), 1, 1, 1, 0,
                                         1, 1, 0, 0, 0);
      if (!added(data, undo, insert, owner)) return false;
      CEnt* hatch = createEntHatch(data, *getHatch(zim::WString(u"ANSI31")), 10, 0, square, 0);
      if (!added(data, undo, hatch, owner)) return false;
    }
    return true;
  });
}

bool removedAll(CData& data, CUndoStack& undo) {
  return inOneStep(undo, [&] {
    for (CEnt* ent : allOf(data))
      if (!undo.remove(ent)) return false;
    return true;
  });
}

bool redefinedBlock(CData& data, CUndoStack& undo) {
  CBlock* const block = firstBlock(data);
  if (block == nullptr) return true;
  std::list<CEnt*> content(1);
  content.front() = createEntLine(data, LINE_3D(0, 0, 0, 1, 2, 0), 0);
  if (content.front() == nullptr) return false;
  bool done = false;
  try {
    done = undo.redefine(*block, PNT_3D(1, 1, 0), 0, content);
  } catch (const std::bad_alloc&) {
    ADD_FAILURE() << "throws";
  }
  if (!done) delete content.front();
  return done;
}

bool changedItems(CData& data, CUndoStack& undo) {
  return inOneStep(undo, [&] {
    std::unique_ptr<CLayer> layer(
        data.getLayerFactory().create(u"A NEW LAYER", &data.getLtypeContinuous(), 3, 0));
    if (!layer || !undo.add(layer.get())) return false;
    CLayer& made = *layer.release();
    if (!undo.keep(made) || !undo.keep(data.getLayer0()) || !undo.keepVars()) return false;
    made.setName(u"with a name that is longer than it was before");
    data.getLayer0().setColor(5);
    CTableRemapper items(data, true);
    items.ChangeInto(&data.getLayer0(), &made);
    items.ChangeInto(static_cast<CLtype*>(&data.getLtypeByLayer()), &data.getLtypeContinuous());
    return items.Remap(undo);
  });
}

CEntHatch* firstHatch(CData& data) {
  for (CEnt* ent : data.getEntTable().getEntityTbl())
    if (CEntHatch* hatch = castHatch(ent)) return hatch;
  return nullptr;
}

void failEdit(const std::string& name, const std::string& sample, const Edit& edit) {
  failEachAllocation(name + " in " + sample,
                     [=] { return std::make_unique<EditTrial>(sample, edit); });
}

}  // namespace

TEST(OutOfMemory, EditsAreMadeOrNot) {
  for (const char* sample : kSamples) {
    failEdit("turning", sample, [](CData& data, CUndoStack& undo) {
      CEntRotateXYVisitor visitor = CEntRotateXYVisitor::byDegrees(PNT_3D(1, 2, 0), 30);
      return transformed(data, undo, visitor);
    });
    failEdit("scaling", sample, [](CData& data, CUndoStack& undo) {
      CEntScaleVisitor visitor(PNT_3D(1, 2, 0), 2);
      return transformed(data, undo, visitor);
    });
    failEdit("adding", sample, addedKinds);
    failEdit("removing", sample, removedAll);
    failEdit("redefining", sample, redefinedBlock);
    failEdit("items", sample, changedItems);
    failEdit("joining", sample, [](CData&, CUndoStack& undo) { return undo.merge(); });
  }
}

TEST(OutOfMemory, HatchesAreEditedOrNot) {
  const char* const sample = "hatches_ac1015.dxf";
  const HATCH_TYPE& cross = *getHatch(zim::WString(u"ANSI37"));
  failEdit("redefining in a step", sample, [&](CData& data, CUndoStack& undo) {
    return undo.redefine(*firstHatch(data), 3, 0.5, cross);
  });
  failEdit("redefining", sample, [&](CData& data, CUndoStack&) {
    return firstHatch(data)->redefine(data, 3, 0.5, cross);
  });
  failEdit("copying", sample, [&](CData& data, CUndoStack& undo) {
    return added(data, undo, cloneEnt(data, *firstHatch(data)), nullptr);
  });
}
