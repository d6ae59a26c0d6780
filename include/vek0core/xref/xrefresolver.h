#pragma once

#include <memory>

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

class IFile;

/// Finds and opens the drawings that external references name: the host's say in what a
/// drawing may make the program read.
///
/// Files are named by texts that mean something to the resolver alone; equal texts are the
/// same file.
class VEK0_API IXRefResolver {
 public:
  enum class Found {
    Yes,
    Missing,
    NotAFile,   ///< a folder, a device, a pipe
    Forbidden,  ///< there, but outside of what the host allows
  };

  virtual ~IXRefResolver();

  /// Looks for the drawing that `path` names in a reference of the drawing `from`, itself a
  /// name of this resolver. `file` becomes its name; untouched unless it is found.
  virtual Found find(const zim::WString& path, const zim::WString& from, zim::WString& file) = 0;

  /// A file for reading, not yet opened; null when there is none.
  virtual std::unique_ptr<IFile> open(const zim::WString& file) = 0;

  /// A text that changes when the file does, so that a reader knows that it was written
  /// meanwhile.
  virtual zim::WString getState(const zim::WString& file) = 0;
};

/// The files of the platform, found as people who pass drawings around expect it:
///
/// 1. the path as it stands, from the folder of the drawing that holds the reference;
/// 2. the bare file name in that folder;
/// 3. the path, then the bare name, from each search folder in turn.
///
/// Either kind of slash separates folders, and a drive letter is passed over where the
/// platform has none. Where a name is not found as it stands, letter case is ignored; where
/// it ends in ".dwg", which is not read, the same name ending in ".dxf" is looked for before
/// it, and where it ends in nothing, behind it.
///
/// A file has to lie, links resolved, in or below the folder of the host's drawing, a search
/// folder or an allowed folder; what is elsewhere is forbidden. Nothing but plain files is
/// opened, so nothing waits for the other end of a pipe.
///
/// Names of files are absolute paths without links. Folders in which letter case mattered are
/// kept in memory, and listed again when they have changed.
class VEK0_API CXRefFolders final : public IXRefResolver {
 public:
  /// `drawing` is the host's file, which need not exist yet; empty when there is none, and
  /// then no folder goes with it.
  explicit CXRefFolders(const zim::WString& drawing);
  ~CXRefFolders() override;

  /// Folders that do not exist are ignored.
  void addSearchFolder(const zim::WString& folder);
  void allowFolder(const zim::WString& folder);

  /// Name of the host's drawing, as `find` would tell it.
  const zim::WString& getDrawing() const { return m_drawing; }

  Found find(const zim::WString& path, const zim::WString& from, zim::WString& file) override;
  std::unique_ptr<IFile> open(const zim::WString& file) override;
  /// Made of the size and the time of the last change, as finely as the platform keeps it.
  zim::WString getState(const zim::WString& file) override;

 private:
  struct Folders;

  zim::WString m_drawing;
  std::unique_ptr<Folders> m_folders;
};
