#pragma once

#include "dxf/out/modern/entityrecords.h"

namespace vek0::detail {

/// Writes the LAYOUT object of a space of the plan; the first is that of the model.
void writeLayout(const FilePlan& plan, CFileDXFOWriter& out, std::size_t space);

/// Writes the VIEWPORT records of a sheet, after its entities: first the one that stands for the
/// sheet itself.
class SheetViewports {
 public:
  SheetViewports(FilePlan& plan, CFileDXFOWriter& out, EntityRecords& records)
      : m_plan(plan), m_out(out), m_records(records) {}

  void write(const SavedSpace& space);

 private:
  void writeOwn(const SavedSpace& space);
  void write(const SavedSpace& space, const SavedViewport& saved, long number);
  Handle writeBoundary(const SavedSpace& space, const SavedViewport& saved);
  void writeView(const VIEWPORT& view, long status, long number, long flags, Handle boundary);

  FilePlan& m_plan;
  CFileDXFOWriter& m_out;
  EntityRecords& m_records;
};

}  // namespace vek0::detail
