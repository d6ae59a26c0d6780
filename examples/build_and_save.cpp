// Builds a new drawing: a layer, a block, and two inserts of it. usage: build_and_save OUT.dxf
#include <vek0core/vek0core.h>
#include <cstdio>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const CDataPtr drawing(CDataFactory().createData());
  if (!drawing) return 1;
  CUndoStack edit(*drawing);  // counts uses, and could undo all of it

  CLayer* holes = drawing->getLayerFactory().create(u"HOLES", &drawing->getLtypeContinuous(), 1, 0);
  CBlock* bolt = drawing->getBlockFactory().create(u"BOLT", PNT_3D(0, 0, 0), 0);
  if (!edit.add(holes) || !edit.add(bolt)) return 1;
  setCurLayer(*drawing, holes);
  if (!edit.add(*bolt, createEntCircle(*drawing, CIRCLE_3D(0, 0, 0, 4), 0))) return 1;
  for (const double x : {10.0, 50.0}) {
    CEnt* insert = createEntInsert(*drawing, *bolt, PNT_3D(x, 10, 0), 1, 1, 1, 0, 1, 1, 0, 0, 0);
    if (!edit.add(insert)) return 1;
  }
  if (saveDrawing(*drawing, argv[1])) return 0;
  std::fprintf(stderr, "%s cannot be written\n", argv[1]);
  return 1;
}
