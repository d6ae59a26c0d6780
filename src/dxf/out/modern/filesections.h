#pragma once

#include "dxf/out/modern/fileplan.h"
#include "vek0core/dxf/out/filedxfowriter.h"

// The sections of a file, one function each except for BLOCKS and ENTITIES. All arguments are
// borrowed.
namespace vek0::detail {

void writeHeaderSection(FilePlan& plan, CFileDXFOWriter& out);
void writeClassesSection(const FilePlan& plan, CFileDXFOWriter& out);
void writeTablesSection(FilePlan& plan, CFileDXFOWriter& out);
void writeObjectsSection(const FilePlan& plan, CFileDXFOWriter& out);

// Single records of tables, and the objects of a clipped insert.
void writeEntry(FilePlan& plan, CFileDXFOWriter& out, const CLayer& layer);
void writeEntry(FilePlan& plan, CFileDXFOWriter& out, const CLtype& ltype);
void writeEntry(FilePlan& plan, CFileDXFOWriter& out, const ListedStyle& style);
void writeEntry(FilePlan& plan, CFileDXFOWriter& out, const SavedClip& clip);

inline void beginSection(CFileDXFOWriter& out, const char* name) {
  out.writeEncoded(0, "SECTION");
  out.writeEncoded(2, name);
}
inline void endSection(CFileDXFOWriter& out) { out.writeEncoded(0, "ENDSEC"); }

/// The part of the model that the drawing shows when it is opened: its extents.
struct ShownArea {
  explicit ShownArea(const FilePlan& plan);

  bool isEmpty = true;
  RECT_3D extents{0, 0, 0, 0, 0, 0};
  PNT_2D center{0, 0};
  double width = 1, height = 1;
};

}  // namespace vek0::detail
