#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "edittracker.h"
#include "scene.h"
#include "vek0_web.h"
#include "vek0core/vek0core.h"
#include "vek0draw/drawindex.h"
#include "vek0host/drawingfile.h"
#include "vek0host/editdrawing.h"
#include "vek0host/json.h"
#include "vek0host/losslog.h"
#include "vek0paint/glyphfont.h"

namespace vek0::web {

using paint::GlyphFonts;

/// A failure of the engine's own: `what` is for users.
class EngineError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A drawing that is open, with all that belongs to it.
class OpenDrawing {
 public:
  /// A new one.
  static std::unique_ptr<OpenDrawing> create(const std::string& name, GlyphFonts& fonts);
  /// An empty one, for the other constructors.
  OpenDrawing(const std::string& name, GlyphFonts& fonts);
  /// Reads one; throws `EngineError`.
  OpenDrawing(const std::string& name, std::shared_ptr<const std::string> bytes, GlyphFonts& fonts,
              int (*progress)(double));
  ~OpenDrawing();
  OpenDrawing(const OpenDrawing&) = delete;
  OpenDrawing& operator=(const OpenDrawing&) = delete;

  CData& data() { return *m_data; }
  const std::string& name() const { return m_name; }
  const host::ReadResult& reading() const { return m_reading; }
  bool isNew() const { return !m_source; }
  std::size_t sourceBytes() const { return m_bytes ? m_bytes->size() : 0; }
  CUndoStack& undo() { return m_undo; }
  EditTracker& tracker() { return m_tracker; }
  CDrawIndex& index() { return m_index; }

  /// The layout of that number, null for the model; throws `EngineError`.
  const CLayout* layout(int number) const;
  /// The entity of the model or of a sheet; null if there is none. `layout` becomes its name.
  CEnt* find(std::uint64_t handle, const zim::WString** layout = nullptr) const;

  /// The selection, without what is gone by now.
  std::vector<CEnt*> selection() const;
  void select(const std::vector<CEnt*>& ents);
  /// Takes a step with the selection and keeps what it selects.
  host::StepOutcome run(const host::NamedStep& step);

  bool undoStep(bool forward);
  /// Whether it differs from what was opened or saved last.
  bool isModified() const { return m_savedAt != m_undo.getNoUndo(); }
  void markSaved() { m_savedAt = m_undo.getNoUndo(); }

  /// Writes the drawing as the version says; throws `EngineError`.
  void save(const std::string& version, IFile& file, CFileReport& report);

 private:
  host::Drawing readPlainly() const;

  std::string m_name;
  GlyphFonts& m_fonts;
  std::shared_ptr<const std::string> m_bytes;
  std::unique_ptr<CDXFSource> m_source;
  host::ReadResult m_reading;
  host::Drawing m_data;
  CUndoStack m_undo;
  EditTracker m_tracker;
  CDrawIndex m_index;
  std::vector<std::uint64_t> m_selected;
  PNT_3D m_last{0, 0, 0};
  std::size_t m_savedAt = 0;  // number of steps; none if it cannot be reached by undoing
};

/// The state behind a `vek0_engine`. Its functions are those of vek0_web.h: they throw
/// `EngineError` for failures and leave results in `result`.
class Engine {
 public:
  GlyphFonts fonts;
  std::string error;
  const void* result = nullptr;
  int (*progress)(double) = nullptr;

  OpenDrawing& drawing() const;
  Scene& scene() const;
  bool hasScene() const { return m_scene != nullptr; }
  void beginOpening(const char* name, double size);
  void* openingRoom(std::size_t size);
  void addChunk(std::size_t size);
  void finishOpening();
  void cancelOpening();
  void openNew(const char* name);
  void beginScene(int layout, std::uint32_t background);

  long put(const host::Json& json);
  template <class Item>
  long put(std::vector<Item> items) {
    auto kept = std::make_shared<std::vector<Item>>(std::move(items));
    result = kept->data();
    m_kept = kept;
    return static_cast<long>(kept->size());
  }
  long putHandles(const std::vector<CEnt*>& ents);

  host::Json info() const;
  host::Json report() const;
  host::Json layers() const;
  host::Json layouts() const;
  host::Json list(double first, double count) const;
  host::Json properties(const std::uint64_t* handles, std::size_t count) const;
  host::Json fontList() const;
  host::Json texts(const char* pattern, std::size_t most) const;
  host::Json stats() const;

  host::Json command(const char* line);
  void setLayer(const char* name, int on, int frozen, int color);
  double saveDxf(const char* version);
  double saveSvg(int layout, const char* options);
  void markSaved();

 private:
  void open(std::unique_ptr<OpenDrawing> drawing);
  void show(IFile& file, const host::Json& options, const CLayout* layout);

  std::shared_ptr<const void> m_kept;  // what `result` is
  std::unique_ptr<OpenDrawing> m_drawing;
  std::unique_ptr<Scene> m_scene;
  std::string m_openingName;
  std::shared_ptr<std::string> m_opening;
  std::size_t m_received = 0;
  host::LossLog m_log;
};

host::Json measurePoints(const std::string& what, const std::vector<PNT_2D>& points);
host::Json measureEntities(const std::string& what, const std::vector<CEnt*>& ents);

}  // namespace vek0::web
