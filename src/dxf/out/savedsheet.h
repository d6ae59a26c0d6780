#pragma once

#include "vek0core/drawing/layout.h"
#include "zim0lang/wstring.h"

class CData;
class CFileDXFOWriter;
class CFileReport;

namespace vek0::detail {

class SaveHandles;
class SavedNames;

/// The layout whose sheet the format can hold: the current one, if it shows anything; else null.
const CLayout* savedSheet(const CData& data);
/// Limits of the paper of the saved sheet, as stated by the header; empty if unknown.
RECT_2D sheetLimits(const CLayout& layout);

/// Whether all numbers of the view are finite, so that it can be written.
bool isFiniteView(const VIEWPORT& viewport);

/// Reports what the format cannot hold of the layouts when `saved`, which may be null, is saved:
/// the other layouts, and plot settings that the limits do not imply. Empty layouts with the usual
/// names are no loss.
void reportLayouts(const CData& data, const CLayout* saved, CFileReport& report);

/// Writes the VIEWPORT records of a sheet, first the one that stands for the sheet itself.
class SavedViewports {
 public:
  /// All are borrowed; the report may be null.
  SavedViewports(CFileDXFOWriter& writer, SavedNames& names, SaveHandles& handles,
                 CFileReport* report)
      : m_writer(writer), m_names(names), m_handles(handles), m_report(report) {}

  /// Notes the handles that `write` takes.
  static void collect(const CLayout& layout, SaveHandles& handles);
  void write(const CLayout& layout, const CLayer& layer0);

 private:
  void begin(vek0::Handle handle, const CLayer* layer);
  void writeFrame(const VIEWPORT& viewport, long status, long number);
  void writeView(const VIEWPORT& viewport);
  short colorOf(const VIEWPORT& viewport) const;
  void reportLosses(const VIEWPORT& viewport);

  CFileDXFOWriter& m_writer;
  SavedNames& m_names;
  SaveHandles& m_handles;
  CFileReport* m_report;
};

}  // namespace vek0::detail
