#include <zlib.h>

#include "pictures.h"

namespace {

std::string inflated(const std::string& bytes) {
  std::string out(1 << 20, '\0');
  uLongf size = static_cast<uLongf>(out.size());
  const int result =
      uncompress(reinterpret_cast<Bytef*>(out.data()), &size,
                 reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uLong>(bytes.size()));
  return result == Z_OK ? out.substr(0, size) : std::string();
}

// The drawing operators of the first page: the first stream of a PDF.
std::string pageContent(const std::string& pdf) {
  const std::size_t start = pdf.find("stream\n") + 7;
  return inflated(pdf.substr(start, pdf.find("endstream", start) - start));
}

// Lengths in points of all segments, transformed by the page's matrices.
std::vector<double> segmentLengths(const std::string& content) {
  std::vector<double> lengths;
  double scale = 1, fromX = 0, fromY = 0;
  std::istringstream words(content);
  std::vector<double> stack;
  for (std::string word; words >> word;) {
    double number = 0;
    const char* end = word.data() + word.size();
    if (std::from_chars(word.data(), end, number).ptr == end) {
      stack.push_back(number);
      continue;
    }
    const std::size_t n = stack.size();
    if (word == "cm" && n >= 6) scale *= std::hypot(stack[n - 6], stack[n - 5]);
    if (word == "l" && n >= 2)
      lengths.push_back(scale * std::hypot(stack[n - 2] - fromX, stack[n - 1] - fromY));
    if ((word == "m" || word == "l") && n >= 2) {
      fromX = stack[n - 2];
      fromY = stack[n - 1];
    }
    stack.clear();
  }
  return lengths;
}

}  // namespace

TEST_F(Render, PdfPagesHaveTheirSize) {
  write("a.dxf", drawingWith(line("A", 0, 0, 200, 100)));
  for (const Row& t : rows()) {
    ASSERT_EQ(run(std::string("render a.dxf -f -o a.pdf ") + t.text("options")).code, 0);
    const std::string pdf = contents(path("a.pdf"));
    ASSERT_EQ(pdf.substr(0, 5), "%PDF-");
    const std::size_t at = pdf.find("/MediaBox [ 0 0 ");
    ASSERT_NE(at, std::string::npos);
    std::istringstream box(pdf.substr(at + 16, 60));
    double width = 0, height = 0;
    box >> width >> height;
    EXPECT_NEAR(width * 25.4 / 72, t.real("width"), 0.01);
    EXPECT_NEAR(height * 25.4 / 72, t.real("height"), 0.01);
  }
}

TEST_F(Render, LengthsOnPaperAreTrue) {
  for (const Row& t : rows()) {
    write("a.dxf", "0\nSECTION\n2\nHEADER\n9\n$INSUNITS\n70\n" + std::string(t.text("units")) +
                       "\n0\nENDSEC\n" + drawingWith(line("A", 0, 0, 30, 40)));
    ASSERT_EQ(run(std::string("render -q a.dxf -f -o a.pdf --paper A3 ") + t.text("scale")).code,
              0);
    const std::vector<double> lengths = segmentLengths(pageContent(contents(path("a.pdf"))));
    ASSERT_FALSE(lengths.empty());
    EXPECT_NEAR(lengths.back() * 25.4 / 72, t.real("expected"), 0.01);
  }
}

namespace {

bool hasProgram(const std::string& name) {
  return std::system(("command -v " + name + " >/dev/null").c_str()) == 0;
}

long occurrences(const std::string& text, const std::string& part) {
  long count = 0;
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++count;
  return count;
}

// Layers with odd names and sizes beyond all measure; the tool may refuse the values.
std::string oddDrawing() {
  std::string entities;
  for (const char* layer :
       {"", " ", "\x1B(B)", "\xED\xA0\x80", "a/b<>[]#%", "\xE6\x97\xA5", "\\U+D800"})
    entities += line(layer, 0, 0, 1, 1) + "0\nTEXT\n8\n" + layer + "\n10\n1\n20\n2\n40\n0.5\n1\n" +
                layer + "(\\)\x01\x7F%%u\n";
  for (const char* size : {"0", "1e-300", "1e300", "nan", "1e9", "-1"})
    entities += "0\nCIRCLE\n8\n0\n10\n0\n20\n0\n40\n" + std::string(size) +
                "\n0\nTEXT\n8\n0\n10\n1\n20\n2\n40\n" + size + "\n1\nabc\n0\nLINE\n8\n0\n10\n" +
                size + "\n20\n0\n11\n1\n21\n" + size + "\n";
  return drawingWith(entities);
}

// The mean difference of two images of about the same size, where 1 is that of black and white.
double differenceOf(const fs::path& a, const fs::path& b) {
  cairo_surface_t* images[] = {cairo_image_surface_create_from_png(a.c_str()),
                               cairo_image_surface_create_from_png(b.c_str())};
  const auto least = [&](int (*size)(cairo_surface_t*)) {
    return std::min(size(images[0]), size(images[1]));
  };
  const int width = least(cairo_image_surface_get_width);
  const int height = least(cairo_image_surface_get_height);
  double sum = 0;
  for (int y = 0; y < height; ++y) {
    const unsigned char* rows[2];
    for (int i = 0; i < 2; ++i)
      rows[i] =
          cairo_image_surface_get_data(images[i]) + y * cairo_image_surface_get_stride(images[i]);
    for (int x = 0; x < width; ++x)
      sum += std::abs(rows[0][4 * x + 1] - rows[1][4 * x + 1]) / 255.0;
  }
  for (cairo_surface_t* image : images) cairo_surface_destroy(image);
  return sum / width / height;
}

}  // namespace

// qpdf accepts every PDF, and its layers are the groups of the SVG.
TEST_F(Render, PdfsAreSound) {
  if (!hasProgram("qpdf")) GTEST_SKIP() << "qpdf is not installed";
  write("odd.dxf", oddDrawing());
  for (const char* name :
       {"every_kind_r12.dxf", "house.dxf", "room_ac1015.dxf", "hatches_ac1015.dxf", "odd.dxf"}) {
    const std::string file = std::string(name) == "odd.dxf" ? name : quotedSample(name);
    ASSERT_EQ(run("render -q " + file + " -f -o a.pdf").code, 0) << name;
    EXPECT_EQ(std::system(("qpdf --check " + path("a.pdf").string() + " >/dev/null").c_str()), 0)
        << name;
    run("render -q " + file + " -f -o a.svg");
    std::set<std::string> layers;
    for (const XmlElement& e : XmlReader(contents(path("a.svg"))).elements)
      if (e.attributes.count("inkscape:groupmode")) layers.insert(e.attributes.at("data-layer"));
    EXPECT_EQ(occurrences(contents(path("a.pdf")), "/Type /OCG"), layers.size()) << name;
  }
}

// Bold without a bold font is a stroke around the glyphs; dashes longer than the page are none.
TEST_F(Render, DashesOfPdfsEndWithTheirLine) {
  write("a.dxf",
        section("TABLES", table("LTYPE", pairsOf("0 LTYPE|2 D|73 2|40 15|49 10|49 -5|"
                                                 "0 LTYPE|2 H|73 2|40 2e17|49 1e17|49 -1e17")) +
                              table("STYLE", pairsOf("0 STYLE|2 B|70 256|3 cmr10.ttf"))) +
            section("ENTITIES", pairsOf("0 LINE|8 A|6 D|10 0|20 0|11 99|21 0|0 TEXT|8 A|7 B|"
                                        "10 0|20 9|40 9|1 Bold|0 LINE|8 A|6 H|10 0|20 5|"
                                        "11 99|21 5")) +
            dxf());
  ASSERT_EQ(run("render a.dxf -o a.pdf").code, 0);
  const std::string content = pageContent(contents(path("a.pdf")));
  if (content.find(" Tr\n") == std::string::npos) GTEST_SKIP() << "the font is bold";
  EXPECT_LT(content.find("[] 0 d"), content.find(" Tr\n"));
  EXPECT_EQ(occurrences(content, " d\n"), 2u) << "a dashed line, and none again";
}

TEST_F(Render, PdfsAreReproducible) {
  ASSERT_EQ(run("render " + kinds + " -o a.pdf").code, 0);
  ASSERT_EQ(run("render " + kinds + " -o b.pdf").code, 0);
  EXPECT_EQ(contents(path("a.pdf")), contents(path("b.pdf")));
  setenv("SOURCE_DATE_EPOCH", "1577836800", 1);
  run("render " + kinds + " -f -o b.pdf");
  unsetenv("SOURCE_DATE_EPOCH");
  EXPECT_NE(contents(path("b.pdf")).find("/CreationDate (D:20200101000000Z)"), std::string::npos);
}

TEST_F(Render, PdfsLookLikeImagesAndHaveTexts) {
  if (!hasProgram("pdftocairo")) GTEST_SKIP() << "poppler-utils is not installed";
  const std::string at = "cd " + path("").string() + " && ";
  for (const char* name : {"every_kind_r12.dxf", "flange.dxf", "room_ac1015.dxf"}) {
    const std::string options = "render -q " + quotedSample(name) + " --paper A4 -f -o ";
    run(options + "a.pdf");
    run(options + "a.png --dpi 150");
    ASSERT_EQ(std::system((at + "pdftocairo -singlefile -png -r 150 a.pdf b").c_str()), 0);
    EXPECT_LT(differenceOf(path("a.png"), path("b.png")), 0.004) << name;
  }
  write("t.dxf", drawingWith("0\nTEXT\n8\nA\n10\n0\n20\n0\n40\n5\n1\nCaf\xE9 \xD8 (12)\n"
                             "0\nTEXT\n8\nA\n10\n0\n20\n-9\n40\n5\n1\n\\U+0645\\U+0631\\U+062D\n"));
  run("render t.dxf -o t.pdf");
  ASSERT_EQ(std::system((at + "pdftotext t.pdf t.txt").c_str()), 0);
  EXPECT_EQ(contents(path("t.txt")).substr(0, 13), "Caf\xC3\xA9 \xC3\x98 (12)");
  EXPECT_NE(contents(path("t.txt")).find("\xD9\x85\xD8\xB1\xD8\xAD"), std::string::npos)
      << "Arabic in logical order";
}
