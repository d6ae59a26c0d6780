// Lists the external references of a drawing, binds those that are found, and saves the result.
// usage: resolve_references IN.dxf OUT.dxf
#include <vek0core/vek0core.h>
#include <cstdio>
#include <vector>

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const COpenedDrawing opened = openDrawing(argv[1]);
  if (!opened) {
    std::fprintf(stderr, "%s: %s\n", argv[1], opened.message().toUtf8().c_str());
    return 1;
  }
  CData& drawing = *opened.drawing;
  CXRefFolders files(fileNameFromBytes(argv[1]));  // opens nothing outside the drawing's folder
  CXRefOptions options;
  options.reading = {.policy = CFileDXFIPolicy::forAnyFile()};
  options.drawing = files.getDrawing();
  const int missing = resolveXRefs(drawing, files, options);

  std::vector<CBlockXRef*> loaded;
  const CBlockXRefTable& xrefs = drawing.getBlockXRefTable();
  for (int i = 0; i < xrefs.size(); ++i) {
    const bool isLoaded = xrefs[i]->getStatus() == CBlockXRef::Status::loaded;
    std::printf("%s %s: %s\n", isLoaded ? "bind" : "keep", xrefs[i]->getName().toUtf8().c_str(),
                xrefs[i]->getPath().toUtf8().c_str());
    if (isLoaded) loaded.push_back(xrefs[i]);
  }
  CUndoStack edits(drawing);
  if (!bindXRefs(drawing, edits, loaded) || !saveDrawing(drawing, argv[2])) return 1;
  return missing == 0 ? 0 : 1;
}
