// Writes the glyph table of the page: the outlines of the technical lettering font, and of the font
// that stands in for characters that it lacks, as `GlyphTable` reads them.
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "vek0paint/fonts.h"

namespace {

// Letters, signs and symbols that drawings use; other scripts are the browser's.
constexpr std::pair<char16_t, char16_t> kRanges[] = {
    {0x20, 0x7E},                        // ASCII
    {0xA0, 0x24F},                       // Latin
    {0x2B0, 0x2FF},                      // modifiers
    {0x370, 0x3FF},                      // Greek
    {0x400, 0x4FF},                      // Cyrillic
    {0x1E00, 0x1EFF},                    // Latin with diacritics
    {0x2010, 0x2027},                    // punctuation
    {0x2030, 0x205E}, {0x2070, 0x209C},  // raised and lowered
    {0x20A0, 0x20BF},                    // currencies
    {0x2100, 0x218B},                    // letterlike, fractions
    {0x2190, 0x21FF},                    // arrows
    {0x2200, 0x22FF},                    // mathematics
    {0x2300, 0x23FF},                    // technical
    {0x2500, 0x25FF},                    // boxes, shapes
};

class Writer final : public vek0::paint::IOutlineSink {
 public:
  void move(const PNT_2D& to) override { add(0, {to}); }
  void line(const PNT_2D& to) override { add(1, {to}); }
  void quad(const PNT_2D&, const PNT_2D& control, const PNT_2D& to) override {
    add(2, {control, to});
  }
  void cubic(const PNT_2D& control1, const PNT_2D& control2, const PNT_2D& to) override {
    add(3, {control1, control2, to});
  }

  std::vector<std::uint8_t> steps;
  std::vector<float> points;

 private:
  void add(std::uint8_t step, std::initializer_list<PNT_2D> list) {
    steps.push_back(step);
    for (const PNT_2D& p : list) {
      points.push_back(static_cast<float>(p.x));
      points.push_back(static_cast<float>(p.y));
    }
  }
};

template <class Value>
void append(std::string& out, Value value) {
  out.append(reinterpret_cast<const char*>(&value), sizeof value);
}

// Without an outline or a width there is no such character.
bool appendGlyph(std::string& out, const vek0::paint::FaceFont& font, char16_t character) {
  const zim::WString text(std::u16string_view(&character, 1));
  const double unit = font.getHeightUnit();
  DrawText run;
  run.string = &text;
  run.font = &font;
  run.matrix = {1 / unit, 0, 0, 1 / unit, 0, 0};
  Writer writer;
  font.outline(run, writer);
  const double advance = font.getStringWidth(text, true, false, false) / unit;
  const bool isBlank = character == u' ' || character == 0xA0;
  if (!(advance > 0) || (writer.steps.empty() && !isBlank)) return false;
  append(out, static_cast<std::uint32_t>(character));
  append(out, static_cast<float>(advance));
  append(out, static_cast<std::uint32_t>(writer.steps.size()));
  out.append(writer.steps.begin(), writer.steps.end());
  for (const float value : writer.points) append(out, value);
  return true;
}

bool write(const char* path, const std::string& bytes) {
  std::FILE* file = std::fopen(path, "wb");
  if (!file) return false;
  const bool isWritten = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  return std::fclose(file) == 0 && isWritten;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: vek0_glyphs FILE\n");
    return 2;
  }
  vek0::paint::FontLibrary fonts;
  fonts.registerFonts();
  const vek0::paint::FaceFont* font = fonts.font(u"txt.shx");
  if (!font) {
    std::fprintf(stderr, "there is no font\n");
    return 1;
  }
  std::string glyphs;
  std::uint32_t count = 0;
  for (const auto& [first, last] : kRanges)
    for (char32_t c = first; c <= last; ++c)
      count += appendGlyph(glyphs, *font, static_cast<char16_t>(c)) ? 1 : 0;
  std::string table = "V0GLYPH1";
  append(table, static_cast<float>(font->getDescent() / font->getHeightUnit()));
  append(table, count);
  if (!write(argv[1], table + glyphs)) {
    std::perror(argv[1]);
    return 1;
  }
  std::printf("%u glyphs of %s, %zu bytes\n", count, font->family().c_str(),
              table.size() + glyphs.size());
}
