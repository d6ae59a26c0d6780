#include "drawings.h"

#include <charconv>
#include <random>

namespace vek0::bench {
namespace {

// Writes pairs with a fixed seed: the same arguments yield the same bytes.
class Text {
 public:
  void pair(int code, const std::string& value) {
    m_text += std::to_string(code);
    m_text += '\n';
    m_text += value;
    m_text += '\n';
  }
  void real(int code, double value) {
    char buffer[32];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    pair(code, std::string(buffer, end));
  }
  void point(int index = 0) {
    real(10 + index, coordinate());
    real(20 + index, coordinate());
    real(30 + index, 0.0);
  }
  double coordinate() {
    const double value = std::uniform_real_distribution<>(0, 10000)(m_random);
    return m_random() % 2 ? value : static_cast<double>(static_cast<int>(value * 2)) / 2;
  }
  int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }
  void entity(const char* kind, const std::string& layer) {
    pair(0, kind);
    pair(8, layer);
  }
  void line(const std::string& layer) {
    entity("LINE", layer);
    point();
    point(1);
  }
  void insert(const std::string& block) {
    entity("INSERT", "0");
    pair(2, block);
    point();
  }
  // A square with sides of 1.7, hatched with lines 0.125 apart.
  void hatch(const std::string& layer) {
    constexpr double side = 1.7;
    const double x = coordinate(), y = coordinate();
    entity("HATCH", layer);
    pair(2, "ANSI31");
    pair(91, "1");
    pair(92, "3");
    pair(72, "0");
    pair(73, "1");
    pair(93, "4");
    for (int corner = 0; corner < 4; ++corner) {
      real(10, x + (corner == 1 || corner == 2 ? side : 0));
      real(20, y + (corner >= 2 ? side : 0));
    }
    pair(97, "0");
    pair(76, "1");
    real(41, 1);
  }
  void begin(const char* section) {
    pair(0, "SECTION");
    pair(2, section);
  }
  void end() { pair(0, "ENDSEC"); }
  void beginBlock(const std::string& name) {
    pair(0, "BLOCK");
    pair(8, "0");
    pair(2, name);
    pair(70, "0");
  }
  void endBlock() { pair(0, "ENDBLK"); }
  std::string finish() {
    pair(0, "EOF");
    return std::move(m_text);
  }

 private:
  std::string m_text;
  std::mt19937 m_random{1};
};

std::string layerName(int i) { return "LAYER-" + std::to_string(i); }

void polyline(Text& text, const std::string& layer) {
  text.entity("POLYLINE", layer);
  text.pair(66, "1");
  for (int vertex = 4 + text.below(17); vertex > 0; --vertex) {
    text.entity("VERTEX", layer);
    text.point();
    if (text.below(4) == 0) text.real(42, 0.1 * text.below(20) - 1);
  }
  text.pair(0, "SEQEND");
}

void mixedEntity(Text& text) {
  const std::string layer = layerName(text.below(50));
  const int kind = text.below(100);
  if (kind < 50) return text.line(layer);
  if (kind < 62) return polyline(text, layer);
  if (kind < 72) return text.insert("BLOCK" + std::to_string(text.below(200)));
  text.entity(kind < 80 ? "CIRCLE" : kind < 88 ? "ARC" : "TEXT", layer);
  text.point();
  text.real(40, 2.5);
  if (kind >= 80 && kind < 88) {
    text.real(50, text.coordinate() / 30);
    text.real(51, text.coordinate() / 30);
  }
  if (kind >= 88) text.pair(1, "valve section detail");
}

}  // namespace

Drawing newDrawing() {
  CFontTable::getInstance().addPlainDefault();
  return Drawing(CDataFactory().createData());
}

std::string lineText(int count) {
  Text text;
  text.begin("ENTITIES");
  for (int i = 0; i < count; ++i) text.line(layerName(text.below(50)));
  text.end();
  return text.finish();
}

std::string mixedText(int count) {
  Text text;
  text.begin("BLOCKS");
  for (int i = 0; i < 200; ++i) {
    text.beginBlock("BLOCK" + std::to_string(i));
    for (int e = 0; e < 6; ++e) text.line("0");
    text.endBlock();
  }
  text.end();
  text.begin("ENTITIES");
  for (int i = 0; i < count; ++i) mixedEntity(text);
  text.end();
  return text.finish();
}

std::string blockText(int count) {
  Text text;
  text.begin("BLOCKS");
  for (int i = 0; i < count / 3; ++i) {
    const std::string n = std::to_string(i);
    text.beginBlock("LEAF" + n);
    text.line("0");
    text.endBlock();
    text.beginBlock("MIDDLE" + n);
    text.insert("LEAF" + n);
    text.endBlock();
    text.beginBlock("TOP" + n);
    text.insert("MIDDLE" + n);
    text.endBlock();
  }
  text.end();
  text.begin("ENTITIES");
  for (int i = 0; i < count / 3; ++i) text.insert("TOP" + std::to_string(i));
  text.end();
  return text.finish();
}

std::string layerText(int count) {
  Text text;
  text.begin("ENTITIES");
  for (int i = 0; i < count; ++i) text.line(layerName(i));
  text.end();
  return text.finish();
}

std::string hatchText(int count) {
  Text text;
  text.begin("HEADER");
  text.pair(9, "$ACADVER");
  text.pair(1, "AC1015");
  text.end();
  text.begin("ENTITIES");
  for (int i = 0; i < count; ++i) text.hatch(layerName(text.below(50)));
  text.end();
  return text.finish();
}

Drawing load(const std::string& text) {
  Drawing drawing = newDrawing();
  CFileMemory file(u"bench.dxf", 1, text);
  CFileDXFIError error;
  loadDXF(*drawing, file, &error);
  return error.HasAnError() ? nullptr : std::move(drawing);
}

}  // namespace vek0::bench
