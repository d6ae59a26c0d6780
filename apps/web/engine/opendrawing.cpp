#include <algorithm>
#include <limits>

#include "engine.h"
#include "keptfile.h"
#include "vek0core/dxf/keep/source.h"
#include "vek0host/entitylist.h"
#include "vek0host/saving.h"

namespace vek0::web {
namespace {

constexpr std::size_t kUndoLimit = std::size_t{1} << 30;
constexpr std::size_t kUnreachable = std::numeric_limits<std::size_t>::max();

std::string problemOf(CDXFSource::Outcome outcome) {
  switch (outcome) {
    case CDXFSource::Outcome::Incomplete:
      return "the file is not complete enough for another version";
    case CDXFSource::Outcome::NotLoaded:
      return "the file cannot be kept";
    default:
      return "the drawing cannot be written";
  }
}

// Metrics of tools without glyphs, so that they would save the same.
class PlainMetrics {
 public:
  explicit PlainMetrics(GlyphFonts& fonts) : m_fonts(fonts) { m_fonts.table().isPlain = true; }
  ~PlainMetrics() { m_fonts.table().isPlain = false; }
  PlainMetrics(const PlainMetrics&) = delete;
  PlainMetrics& operator=(const PlainMetrics&) = delete;

 private:
  GlyphFonts& m_fonts;
};

}  // namespace

OpenDrawing::OpenDrawing(const std::string& name, GlyphFonts& fonts)
    : m_name(name),
      m_fonts(fonts),
      m_data(host::newDrawing()),
      m_undo(*m_data, kUndoLimit),
      m_tracker(*m_data),
      m_index(*m_data) {
  m_reading.outcome.status = CFileDXFIResult::Done;
  m_fonts.adopt(*m_data);
  m_undo.setListener(&m_tracker);
}

std::unique_ptr<OpenDrawing> OpenDrawing::create(const std::string& name, GlyphFonts& fonts) {
  auto drawing = std::make_unique<OpenDrawing>(name, fonts);
  // Those of a file begin behind its own, when it is read.
  host::startHandles(drawing->data());
  return drawing;
}

OpenDrawing::OpenDrawing(const std::string& name, std::shared_ptr<const std::string> bytes,
                         GlyphFonts& fonts, int (*progress)(double))
    : OpenDrawing(name, fonts) {
  m_bytes = std::move(bytes);
  auto file = std::make_unique<KeptFile>(name, m_bytes);
  KeptFile& kept = *file;
  m_source = std::make_unique<CDXFSource>(std::move(file));
  CFileDXFIOptions options = host::readingOptions(host::Session());
  options.policy.wholeRecords = true;
  options.report = &m_reading.report;
  bool isCancelled = false;
  if (progress) {
    options.progress = [&](long) {
      isCancelled = isCancelled || progress(kept.share()) == 0;
      return !isCancelled;
    };
  }
  m_reading.outcome = m_source->load(*m_data, &m_reading.error, options);
  if (isCancelled) throw EngineError("cancelled");
  if (!m_reading.ok()) throw EngineError(m_reading.message());
  for (int i = 0; i < m_data->getLayouts().size(); ++i)
    m_reading.onSheets += static_cast<long>(m_data->getLayouts()[i].getBlock().size());
  m_fonts.adopt(*m_data);
  // Extents of texts are those of other fonts.
  m_data->getEntTable().recalcBdry();
}

OpenDrawing::~OpenDrawing() { m_undo.setListener(nullptr); }

const CLayout* OpenDrawing::layout(int number) const {
  if (number == 0) return nullptr;
  if (number < 0 || number > m_data->getLayouts().size()) throw EngineError("no such layout");
  return &m_data->getLayouts()[number - 1];
}

CEnt* OpenDrawing::find(std::uint64_t handle, const zim::WString** layout) const {
  if (layout) *layout = &host::modelName();
  if (handle == 0) return nullptr;
  if (CEnt* ent = m_data->getEntTable().get(static_cast<Handle>(handle))) return ent;
  for (int i = 0; i < m_data->getLayouts().size(); ++i) {
    const CLayout& sheet = m_data->getLayouts()[i];
    for (unsigned k = 0; k < sheet.getBlock().size(); ++k) {
      if (static_cast<std::uint64_t>(sheet.getBlock()[k]->GetHandle()) != handle) continue;
      if (layout) *layout = &sheet.getName();
      return sheet.getBlock()[k];
    }
  }
  return nullptr;
}

// --- Editing

std::vector<CEnt*> OpenDrawing::selection() const {
  std::vector<CEnt*> chosen;
  for (const std::uint64_t handle : m_selected)
    if (CEnt* ent = m_data->getEntTable().get(static_cast<Handle>(handle))) chosen.push_back(ent);
  return chosen;
}

void OpenDrawing::select(const std::vector<CEnt*>& ents) {
  std::vector<std::uint64_t> handles;
  for (const CEnt* ent : ents) handles.push_back(static_cast<std::uint64_t>(ent->GetHandle()));
  m_selected.swap(handles);
}

host::StepOutcome OpenDrawing::run(const host::NamedStep& step) {
  host::Editing editing{*m_data, m_undo, selection(), true, m_last};
  // Steps work in drawing order, whatever the order of selection.
  std::sort(editing.chosen.begin(), editing.chosen.end(), [](const CEnt* a, const CEnt* b) {
    return CEntTable::getRank(*a) < CEntTable::getRank(*b);
  });
  const std::size_t before = m_undo.getNoUndo();
  host::StepOutcome outcome = host::takeStep(editing, step);
  if (!outcome.ok) return outcome;
  const bool isNewBranch = !step.isTravel && m_undo.getNoUndo() != before && before < m_savedAt;
  if (isNewBranch) m_savedAt = kUnreachable;
  m_fonts.adopt(*m_data);
  select(editing.chosen);
  m_last = editing.last;
  return outcome;
}

bool OpenDrawing::undoStep(bool forward) { return forward ? m_undo.redo() : m_undo.undo(); }

// --- Saving

void OpenDrawing::save(const std::string& version, IFile& file, CFileReport& report) {
  const std::vector<std::string> names = host::targetNames();
  if (std::find(names.begin(), names.end(), version) == names.end())
    throw EngineError("there is no version " + version);
  const PlainMetrics plain(m_fonts);
  host::SaveOptions options;
  options.setTarget(m_source || version != "keep" ? version : "2018");
  const bool isKept = options.form == host::SaveForm::Kept;
  if (m_source && !options.isR12() && (isKept || m_source->isComplete())) {
    const CDXFSource::Outcome outcome =
        isKept ? m_source->save(*m_data, file, &report)
               : m_source->saveAs(*m_data, file, options.version, &report);
    if (outcome != CDXFSource::Outcome::Saved) throw EngineError(problemOf(outcome));
    return;
  }
  // Tools convert what they read for that purpose, where records may be several entities.
  const host::Drawing plainly = m_bytes && m_undo.getNoUndo() == 0 ? readPlainly() : nullptr;
  if (!SaveDXF(plainly ? *plainly : *m_data, file, {options.version, options.flags(), &report}))
    throw EngineError("the drawing cannot be written");
}

host::Drawing OpenDrawing::readPlainly() const {
  host::Drawing data = host::newDrawing();
  KeptFile file(m_name, m_bytes);
  CFileDXFIError error;
  loadDXF(*data, file, &error, host::readingOptions(host::Session()));
  if (error.HasAnError()) throw EngineError(error.GetFullMessage().toUtf8());
  host::startHandles(*data);
  return data;
}

}  // namespace vek0::web
