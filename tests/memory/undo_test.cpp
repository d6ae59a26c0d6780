#include "drawing/randomeditor.h"
#include "memory/trial.h"
#include "support/test.h"

namespace {

// One step with many edits, to be undone or redone.
class StepTrial final : public DrawingTrial {
 public:
  StepTrial(const std::string& sample, unsigned seed, bool redoes)
      : DrawingTrial(loadedSample(sample)), m_undo(*m_data), m_redoes(redoes) {
    RandomEditor editor(*m_data, m_undo, seed);
    m_undo.begin(u"all");
    for (int i = 0; i < 40; ++i) editor.edit();
    m_undo.commit();
    if (redoes) m_undo.undo();
  }
  bool run() override { return m_redoes ? m_undo.redo() : m_undo.undo(); }
  std::string look() override {
    return DrawingTrial::look() + " steps " + std::to_string(m_undo.getNoUndo()) + " and " +
           std::to_string(m_undo.getNoRedo());
  }

 private:
  CUndoStack m_undo;
  bool m_redoes;
};

}  // namespace

TEST(OutOfMemory, UndoAndRedoDoAllOfAStepOrNothing) {
  for (const char* sample : kSamples)
    for (const bool redoes : {false, true})
      for (const unsigned seed : {1u, 2u})
        failEachAllocation(
            std::string(sample) + (redoes ? " redo " : " undo ") + std::to_string(seed),
            [=] { return std::make_unique<StepTrial>(sample, seed, redoes); });
}
