// Draws a line, writes it, and reads it back: the smallest whole use of the library.
#include <cstdio>

#include "vek0core/vek0core.h"

int main() {
  initCore();
  CDataFactory factory;
  CData* drawing = factory.createData();
  drawing->getEntTable().add(createEntLine(*drawing, LINE_3D(0, 0, 0, 3, 4, 0), 1));

  CFileMemory out(u"line.dxf", 2);
  const bool saved = SaveDXF(*drawing, out, 0);
  std::printf("%s, %zu bytes\n", saved ? "saved" : "failed", out.bytes().size());
  deleteData(drawing);
  shutdownCore();
  return saved && !out.bytes().empty() ? 0 : 1;
}
