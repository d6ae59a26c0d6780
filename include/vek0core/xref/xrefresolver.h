#pragma once

#include <memory>

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

class IFile;

/// Finds and opens the drawings that external references name. Through it, the host controls which
/// files a drawing may cause to be read.
///
/// Files are identified by names that only the resolver interprets; equal names mean the same file.
class VEK0_API IXRefResolver {
 public:
  enum class Found {
    Yes,
    Missing,
    NotAFile,   ///< a folder, a device, a pipe
    Forbidden,  ///< exists, but outside the folders that the host allows
  };

  virtual ~IXRefResolver();

  /// Looks for the drawing that `path` denotes in a reference of the drawing `from`, itself a name
  /// of this resolver. `file` receives its name, and is unchanged unless it is found.
  virtual Found find(const zim::WString& path, const zim::WString& from, zim::WString& file) = 0;

  /// A file for reading, not yet opened; null when there is none.
  virtual std::unique_ptr<IFile> open(const zim::WString& file) = 0;

  /// A text that changes whenever the file does, so that a reader can detect a write in the
  /// meantime.
  virtual zim::WString getState(const zim::WString& file) = 0;
};

/// Resolves references to files on disk, in the order that users who exchange drawings expect:
///
/// 1. the path as given, relative to the folder of the drawing that holds the reference; 2. the
/// bare file name in that folder; 3. the path, then the bare name, in each search folder in turn.
///
/// Either kind of slash separates folders, and a drive letter is ignored where the platform has
/// none. A name that is not found exactly is searched ignoring case. For a name ending in ".dwg",
/// which cannot be read, the same name with ".dxf" is tried first; for a name without an extension,
/// it is tried afterwards.
///
/// A file must be located, with links resolved, in or below the folder of the host's drawing, a
/// search folder or an allowed folder; anything else is forbidden. Only regular files are opened,
/// so opening never blocks on a pipe.
///
/// Names of files are absolute paths without links. Listings of folders that were searched ignoring
/// case are cached, and refreshed when the folder changes.
class VEK0_API CXRefFolders final : public IXRefResolver {
 public:
  /// `drawing` is the host's file, which need not exist yet; if empty, there is no drawing and no
  /// folder of it.
  explicit CXRefFolders(const zim::WString& drawing);
  ~CXRefFolders() override;

  /// Folders that do not exist are ignored.
  void addSearchFolder(const zim::WString& folder);
  void allowFolder(const zim::WString& folder);

  /// Name of the host's drawing, as `find` would return it.
  const zim::WString& getDrawing() const { return m_drawing; }

  Found find(const zim::WString& path, const zim::WString& from, zim::WString& file) override;
  std::unique_ptr<IFile> open(const zim::WString& file) override;
  /// Composed of the size and the time of the last modification, at the platform's resolution.
  zim::WString getState(const zim::WString& file) override;

 private:
  struct Folders;

  zim::WString m_drawing;
  std::unique_ptr<Folders> m_folders;
};
