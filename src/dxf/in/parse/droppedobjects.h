#pragma once

#include <cstdint>
#include <unordered_set>
#include <vector>

#include "vek0core/dxf/in/filedxfierror.h"
#include "vek0core/dxf/in/filedxfilexer.h"
#include "zim0lang/wstring.h"

class CFileReport;

namespace vek0::detail {

/// Reports content of the OBJECTS section that a drawing cannot store but users would miss: layouts
/// and groups.
class DroppedObjects {
 public:
  /// `report` may be null; all are borrowed.
  DroppedObjects(CFileDXFILexer& lexer, const CFileDXFIError& err, CFileReport* report)
      : m_lexer(lexer), m_err(err), m_report(report) {}

  /// Records that the sheet whose block record has that handle is not empty; 0 is ignored.
  void addSheet(std::uint64_t handle) {
    if (handle != 0) m_sheets.insert(handle);
  }
  /// Reads the record at whose group 0 the lexer is positioned, up to the next one.
  void readRecord();
  /// Adds the layouts to the report, except empty ones with default names. Call it after everything
  /// is read.
  void tell() const;

 private:
  struct Layout {
    zim::WString name;
    std::uint64_t sheet;
    long line;
  };

  void readLayout();

  CFileDXFILexer& m_lexer;
  const CFileDXFIError& m_err;
  CFileReport* m_report;
  std::unordered_set<std::uint64_t> m_sheets;
  std::vector<Layout> m_layouts;
};

}  // namespace vek0::detail
