// Adds a text, writes it, reads it back and measures it: the smallest whole use of the libraries.
#include <cstdio>

#include "vek0core/vek0core.h"
#include "vek0draw/draw.h"

namespace {

bool writesAndReadsAText() {
  const CDataPtr drawing(CDataFactory().createData()), copy(CDataFactory().createData());
  const TEXT_3D valve(u"Valve", drawing->getStyleTable().getStyleStandard(), 3, 4, 0, 2.5, 0, 1, 0,
                      0);
  drawing->getEntTable().add(createEntText(*drawing, valve, 1));

  CFileMemory out(u"text.dxf", IFile::kWrite);
  const bool saved = SaveDXF(*drawing, out, kSaveExchange);
  CFileMemory in(u"text.dxf", IFile::kRead, out.bytes());
  CFileDXFIError error;
  loadDXF(*copy, in, &error);
  std::printf("%zu bytes, read back: %s\n", out.bytes().size(),
              error.GetErrorMessage().toUtf8().c_str());
  const bool isShown = drawnExtents(*copy, CPOProjector()).validRegion();
  return saved && !error.HasAnError() && isShown;
}

}  // namespace

int main() {
  initCore();
  // A file with a text style is rejected if there is no font.
  CFontTable::getInstance().addPlainDefault();
  const bool works = writesAndReadsAText();
  shutdownCore();
  return works ? 0 : 1;
}
