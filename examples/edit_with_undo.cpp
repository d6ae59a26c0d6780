// Moves a layer's entities by (10, 5) and adds a line. usage: edit_with_undo IN.dxf LAYER OUT.dxf
#include <vek0core/vek0core.h>
#include <cstdio>

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  const COpenedDrawing opened = openDrawing(argv[1]);
  if (!opened) {
    std::fprintf(stderr, "%s: %s\n", argv[1], opened.message().toUtf8().c_str());
    return 1;
  }
  CData& drawing = *opened.drawing;
  CUndoStack edits(drawing);

  edits.begin(u"move");
  CEntMoveVisitor mover(PNT_3D(10, 5, 0));
  for (CEnt* ent : drawing.getEntTable().getEntityTbl())
    if (ent->getLayer() == getLayer(drawing, zim::WString::fromUtf8(argv[2])) && edits.keep(*ent))
      ent->accept(mover);
  if (!edits.add(createEntLine(drawing, LINE_3D(0, 0, 0, 10, 5, 0), 0))) return 1;
  if (!edits.commit()) return 1;
  if (!edits.undo() || !edits.redo()) return 1;  // each applies to the whole step

  if (saveDrawing(drawing, argv[3])) return 0;
  std::fprintf(stderr, "%s cannot be written\n", argv[3]);
  return 1;
}
