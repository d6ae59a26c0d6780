// Steps of a drawing, and saving it.
#include <algorithm>
#include <unordered_set>

#include "drawing.h"
#include "vek0core/drawing/everyent.h"
#include "vek0host/commandline.h"
#include "vek0host/losslog.h"
#include "vek0host/saving.h"

namespace vek0::python {

void Drawing::begin(const std::string& name) {
  data();
  settleCursors();
  if (m_depth == 0) m_isBroken = false;
  if (!m_isBroken) m_undo->begin(zim::WString::fromUtf8(name));
  ++m_depth;
}

void Drawing::commit() {
  if (!m_data || m_depth == 0) return;
  data();
  --m_depth;
  if (!m_isBroken) {
    m_undo->commit();
  } else if (m_depth == 0) {
    m_isBroken = false;
    throw Fault("step failed", "a part of the step has failed, so all of it was taken back");
  }
}

void Drawing::rollback() {
  if (!m_data || m_depth == 0) return;
  data();
  settleCursors();
  --m_depth;
  if (m_undo->isOpen()) {
    m_undo->rollback();
    findAgain();
  }
  m_isBroken = m_depth > 0;
}

bool Drawing::travel(bool forward) {
  data();
  settleCursors();
  if (m_depth > 0)
    throw Fault("step open", "the step is not finished; undo and redo work on finished ones");
  return forward ? m_undo->redo() : m_undo->undo();
}

void Drawing::change(const std::string& name, const std::function<void()>& work) {
  data();
  if (m_isBroken) throw Fault("step failed", "the step has failed and was taken back; end it");
  begin(name);
  try {
    work();
  } catch (...) {
    rollback();
    throw;
  }
  commit();
}

std::pair<std::vector<CEnt*>, std::string> Drawing::take(const host::NamedStep& step,
                                                         std::vector<CEnt*> chosen) {
  host::Editing editing{data(), *m_undo, std::move(chosen), false, m_last};
  if (step.isTravel) {
    settleCursors();
    if (m_depth > 0) throw Fault("step open", "undo and redo work on finished steps");
    const host::StepOutcome outcome = host::takeStep(editing, step);
    if (!outcome.ok) throw Fault("command", outcome.text);
    return {editing.chosen, outcome.text};
  }
  std::string message;
  change(step.name, [&] {
    // Steps work in drawing order, whatever the order of the selection.
    const auto isBefore = [](const CEnt* a, const CEnt* b) {
      return CEntTable::getRank(*a) < CEntTable::getRank(*b);
    };
    std::stable_sort(editing.chosen.begin(), editing.chosen.end(), isBefore);
    const host::StepOutcome outcome = step.work(editing);
    if (!outcome.ok) throw Fault("command", step.name + ": " + outcome.text);
    message = outcome.text;
  });
  m_last = editing.last;
  return {std::move(editing.chosen), message};
}

std::pair<std::vector<CEnt*>, std::string> Drawing::run(const std::string& line) {
  data();
  host::NamedStep step;
  const std::string problem = host::readCommand(line, step);
  if (!problem.empty()) throw Fault("command", problem);
  std::vector<CEnt*> chosen;
  for (const Handle handle : m_selected)
    if (CEnt* ent = m_data->getEntTable().get(handle)) chosen.push_back(ent);
  if (!step.work) return {chosen, {}};
  auto result = take(step, std::move(chosen));
  m_selected.clear();
  std::erase_if(result.first, [](const CEnt* ent) { return !ent->isHeld(); });
  for (const CEnt* ent : result.first) m_selected.push_back(ent->GetHandle());
  return result;
}

// --- What becomes of entities

void Drawing::touched(CEnt& ent) {
  const std::lock_guard lock(m_refsLock);
  const auto at = m_refs.find(&ent);
  if (at != m_refs.end() && at->second->m_handle == ent.GetHandle())
    at->second->m_isAlive = ent.isHeld();
}

// A block that is removed keeps its entities.
void Drawing::touched(CBlock& block) {
  const std::lock_guard lock(m_refsLock);
  const bool isIn = block.isHeld() || block.isSheet();
  for (unsigned i = 0; !m_refs.empty() && i < block.size(); ++i) {
    const auto at = m_refs.find(block[i]);
    if (at != m_refs.end() && at->second->m_handle == block[i]->GetHandle())
      at->second->m_isAlive = isIn;
  }
}

// What a step that is rolled back has added is deleted without notice.
void Drawing::findAgain() {
  const std::lock_guard lock(m_refsLock);
  if (m_refs.empty()) return;
  std::unordered_set<const CEnt*> held;
  forEachEnt(*m_data, [&](const CEnt& ent) { held.insert(&ent); });
  for (const auto& [ent, ref] : m_refs)
    ref->m_isAlive = held.contains(ent) && ent->GetHandle() == ref->m_handle;
}

// --- Saving

std::string Drawing::toBytes(const std::string& version, std::vector<std::string>& losses) {
  const std::vector<std::string> names = host::targetNames();
  if (std::find(names.begin(), names.end(), version) == names.end()) {
    std::string all;
    for (const std::string& name : names) all += (all.empty() ? "" : ", ") + name;
    throw std::invalid_argument("there is no version '" + version + "'; use one of " + all);
  }
  host::SaveOptions options;
  options.setTarget(m_source || version != "keep" ? version : "2018");
  const bool isKept = options.form == host::SaveForm::Kept;
  CFileReport report;
  CFileMemory file(zim::WString::fromUtf8(m_path), IFile::kWrite);
  if (m_source && !options.isR12() && (isKept || m_source->isComplete())) {
    const CDXFSource::Outcome outcome =
        isKept ? m_source->save(*m_data, file, &report)
               : m_source->saveAs(*m_data, file, options.version, &report);
    if (outcome != CDXFSource::Outcome::Saved)
      throw Fault("not written", outcome == CDXFSource::Outcome::Incomplete
                                     ? "the file is not complete enough for another version"
                                     : "the drawing cannot be written");
  } else if (!SaveDXF(*m_data, file, {options.version, options.flags(), &report})) {
    throw Fault("not written", "the drawing cannot be written");
  }
  for (const CFileReport::Entry& entry : report.entries())
    losses.push_back(host::messageOf(entry, isKept ? "" : options.targetName()));
  return file.bytes();
}

}  // namespace vek0::python
