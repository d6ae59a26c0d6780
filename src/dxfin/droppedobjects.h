#pragma once

#include <cstdint>
#include <unordered_set>
#include <vector>

#include "vek0core/dxfin/filedxfierror.h"
#include "vek0core/dxfin/filedxfilexer.h"
#include "zim0lang/wstring.h"

class CFileReport;

namespace vek0::detail {

/// What the OBJECTS section holds that a drawing has no place for and somebody would miss:
/// layouts and groups.
class DroppedObjects {
 public:
  /// `report` may be null; all are borrowed.
  DroppedObjects(CFileDXFILexer& lexer, const CFileDXFIError& err, CFileReport* report)
      : m_lexer(lexer), m_err(err), m_report(report) {}

  /// Tells that something stands on the sheet whose block record has that handle; 0 is none.
  void addSheet(std::uint64_t handle) {
    if (handle != 0) m_sheets.insert(handle);
  }
  /// Reads the record on whose group 0 the lexer stands, up to the next one.
  void readRecord();
  /// Adds the layouts to the report, but for those of usual names that show nothing. Called once
  /// everything is read.
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
