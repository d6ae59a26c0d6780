// Opens a drawing and lists its content. usage: open_and_list DRAWING.dxf
#include <vek0core/vek0core.h>
#include <cstdio>
#include <map>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const COpenedDrawing opened = openDrawing(argv[1]);
  if (!opened) {
    std::fprintf(stderr, "%s: %s\n", argv[1], opened.message().toUtf8().c_str());
    return 1;
  }
  for (CData::CLayerIterator layer(*opened.drawing, false); *layer != nullptr; ++layer)
    std::printf("layer %s, color %d\n", (*layer)->getName().toUtf8().c_str(), (*layer)->getColor());

  std::map<short, int> kinds;
  for (const CEnt* ent : opened.drawing->getEntTable().getEntityTbl()) ++kinds[ent->getType()];
  for (const auto& [kind, count] : kinds) std::printf("%d of kind %d\n", count, kind);

  for (const CFileReport::Entry& entry : opened.report.entries())
    std::printf("line %ld: %s (%ld)\n", entry.firstLine, textOf(entry.code), entry.count);
  return 0;
}
