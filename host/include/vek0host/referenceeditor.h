#pragma once

#include <optional>
#include <string>
#include <vector>

#include "vek0core/drawing/undostack.h"
#include "vek0host/references.h"

namespace vek0::host {

/// Which references an edit applies to.
struct ReferenceChoice {
  std::vector<std::string> names;  ///< exact names, or patterns
  bool all = false;                ///< all of them; `names` is then unused
};

/// A new path for a reference.
struct ReferencePath {
  std::string name, path;
};

/// A reference to be added, and its insert. Names and paths are UTF-8.
struct NewReference {
  std::string path;
  std::string name;               ///< empty: the file's, without its extension
  PNT_3D at;                      ///< insertion point
  PNT_3D base;                    ///< point of the other drawing that is placed there; the origin
                                  ///< stands for the drawing's own base point
  double sx = 1, sy = 1, sz = 1;  ///< scale
  double rotationRad = 0;
  bool overlay = false;  ///< not shown by drawings that refer to this one
};

/// Edits the references of a loaded drawing. Each edit reports its results and failures to the
/// session, and returns whether the drawing is to be written. One edit per editor.
class ReferenceEditor {
 public:
  /// `data` and `session` are borrowed; `path` is the drawing's own, see `ReferenceReader`.
  ReferenceEditor(CData& data, const std::string& path, const ReferenceOptions& options,
                  Session& session);

  /// Turns references into blocks, along with the nested ones. Fails if one is not loaded.
  bool bind(const ReferenceChoice& choice);
  /// Removes references with their inserts and layers, and the nested ones that only they show.
  bool detach(const ReferenceChoice& choice);
  bool repath(const std::vector<ReferencePath>& changes);
  /// Replaces the beginning of all paths that begin with `from`, ignoring case and the kind of
  /// slash.
  bool repath(const std::string& from, const std::string& to);
  /// Adds a reference and its insert, even if its file is not found.
  bool attach(const NewReference& reference);

 private:
  using Edit = bool (*)(CData& data, CUndoStack& undo, const std::vector<CBlockXRef*>& xrefs);

  bool fail(const std::string& message);
  void warnOfFailures() const;
  void resolve(const char* what);
  bool isAllLoaded();
  std::vector<CBlockXRef*> matching(const References& references, const std::string& name) const;
  std::optional<std::vector<CBlockXRef*>> choose(const ReferenceChoice& choice);
  bool edit(const std::vector<CBlockXRef*>& chosen, const char* done, Edit work);
  bool setPath(CBlockXRef& xref, const std::string& path);
  bool insert(CBlockXRef& xref, const NewReference& reference);

  CData& m_data;
  CUndoStack m_undo;
  ReferenceReader m_reader;
  Session& m_session;
};

}  // namespace vek0::host
