// What the libraries alone write of drawings, for comparing platforms: each drawing in every
// version, and what a window shows of it. usage: resave OUT-FOLDER DRAWING.dxf...
#include <vek0core/vek0core.h>
#include <vek0draw/draw.h>
#include <cstdio>
#include <string>

namespace {

constexpr long kPixels = 1000;

// Writes what it receives, a primitive a line. The last digits of turned hatch lines may differ.
class WritingPainter final : public IPainter {
 public:
  explicit WritingPainter(std::FILE* out) : m_out(out) {}

  void begin(const DrawItem& item) override {
    const std::string layer = item.layer ? item.layer->toUtf8() : std::string();
    std::fprintf(m_out, "%s %d %d %d %.9g\n", layer.c_str(), item.color.r, item.color.g,
                 item.color.b, item.width);
  }
  void stroke(const PNT_2D* points, std::size_t count, bool closed) override {
    write(closed ? "ring" : "stroke", points, count);
  }
  void fill(const PNT_2D* points, const std::size_t* ends, std::size_t rings, FillRule) override {
    write("fill", points, ends[rings - 1]);
  }
  void dot(const PNT_2D& at) override { write("dot", &at, 1); }
  void text(const DrawText& text) override {
    const PNT_2D at(text.matrix.e, text.matrix.f);
    write(text.string->toUtf8().c_str(), &at, 1);
  }

 private:
  void write(const char* name, const PNT_2D* points, std::size_t count) {
    std::fputs(name, m_out);
    for (std::size_t i = 0; i < count; ++i)
      std::fprintf(m_out, " %.9g,%.9g", points[i].x, points[i].y);
    std::fputc('\n', m_out);
  }

  std::FILE* m_out;
};

bool writePicture(const CData& drawing, const std::string& path) {
  std::FILE* out = std::fopen(path.c_str(), "wb");
  if (!out) return false;
  const CPOProjector plan;
  CWndVpt window(1);
  window.resize(kPixels, kPixels);
  window.set(drawnExtents(drawing, plan));
  WritingPainter painter(out);
  drawData(drawing, plan, window, painter);
  return std::fclose(out) == 0;
}

bool resave(const std::string& path, const std::string& out) {
  const COpenedDrawing opened = openDrawing(path);
  if (!opened) {
    std::fprintf(stderr, "%s: %s\n", path.c_str(), opened.message().toUtf8().c_str());
    return false;
  }
  bool isWritten = writePicture(*opened.drawing, out + ".txt");
  for (int i = 0; i < kDxfVersions; ++i) {
    CFileDXFOOptions options;
    options.version = static_cast<DxfVersion>(i);
    const std::string name = out + '.' + nameOf(options.version) + ".dxf";
    isWritten = isWritten && saveDrawing(*opened.drawing, name, options);
  }
  return isWritten;
}

}  // namespace

int main(int argc, char** argv) {
  bool isWritten = argc > 2;
  for (int i = 2; i < argc; ++i) {
    const std::string path = argv[i];
    const std::size_t name = path.find_last_of('/') + 1;
    isWritten = resave(path, argv[1] + ('/' + path.substr(name))) && isWritten;
  }
  return isWritten ? 0 : 1;
}
