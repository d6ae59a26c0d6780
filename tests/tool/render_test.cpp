// Pictures created by the tool: files, layout, and content read back from them.
#include <cairo.h>
#include <zlib.h>

#include "support/test.h"
#include "tooltest.h"

using namespace vek0::test;

namespace {

// An XML element, as far as the tests need it.
struct XmlElement {
  std::string name;
  std::map<std::string, std::string> attributes;
  std::string parentId;
};

// Parses a document into its elements, in order; `error` reports why it is malformed: wrong
// nesting, a duplicate name, an unescaped character.
class XmlReader {
 public:
  explicit XmlReader(std::string text) : m_text(std::move(text)) { read(); }

  std::vector<XmlElement> elements;
  std::string error;

  long count(const std::string& name) const {
    return std::count_if(elements.begin(), elements.end(),
                         [&](const XmlElement& e) { return e.name == name; });
  }
  const XmlElement* byId(const std::string& id) const {
    for (const XmlElement& e : elements) {
      if (const auto at = e.attributes.find("id"); at != e.attributes.end() && at->second == id) {
        return &e;
      }
    }
    return nullptr;
  }

 private:
  void read() {
    std::vector<std::string> names, ids;
    for (std::size_t at = 0; at < m_text.size() && error.empty();) {
      if (m_text[at] != '<') {
        checkText(at);
        continue;
      }
      const std::size_t end = m_text.find('>', at);
      if (end == std::string::npos) return fail("an open tag", at);
      std::string tag = m_text.substr(at + 1, end - at - 1);
      at = end + 1;
      if (tag[0] == '?') continue;
      if (tag[0] == '/') {
        if (names.empty() || names.back() != tag.substr(1)) return fail("nesting", end);
        names.pop_back();
        ids.pop_back();
        continue;
      }
      const bool isWhole = tag.back() == '/';
      if (isWhole) tag.pop_back();
      elements.push_back(parse(tag));
      elements.back().parentId = ids.empty() ? "" : ids.back();
      if (isWhole) continue;
      names.push_back(elements.back().name);
      ids.push_back(idOf(elements.back()));
    }
    if (!names.empty()) fail("an element without end", m_text.size());
  }

  static std::string idOf(const XmlElement& element) {
    const auto at = element.attributes.find("id");
    return at == element.attributes.end() ? std::string() : at->second;
  }

  void checkText(std::size_t& at) {
    const unsigned char c = static_cast<unsigned char>(m_text[at]);
    if (c < ' ' && c != '\n') return fail("a control character", at);
    if (c == '&' && m_text.find(';', at) > at + 6) return fail("a bare ampersand", at);
    ++at;
  }

  XmlElement parse(const std::string& tag) {
    XmlElement element;
    std::size_t at = std::min(tag.find(' '), tag.size());
    element.name = tag.substr(0, at);
    while (at < tag.size()) {
      const std::size_t equals = tag.find("=\"", at);
      if (equals == std::string::npos) break;
      const std::size_t end = tag.find('"', equals + 2);
      if (end == std::string::npos) break;
      const bool isNew = element.attributes
                             .emplace(tag.substr(at + 1, equals - at - 1),
                                      tag.substr(equals + 2, end - equals - 2))
                             .second;
      if (!isNew) fail("an attribute twice: " + tag, at);
      at = end + 1;
    }
    if (at < tag.size()) fail("attributes: " + tag, at);
    return element;
  }

  void fail(const std::string& what, std::size_t at) {
    if (error.empty()) error = what + " at byte " + std::to_string(at);
  }

  const std::string m_text;
};

std::string groups(const XmlReader& xml) {
  std::string result;
  for (const XmlElement& e : xml.elements) {
    if (e.attributes.count("inkscape:groupmode")) result += e.attributes.at("id") + " ";
  }
  return result;
}

// An image's size and how often each color occurs in it.
struct Image {
  explicit Image(const fs::path& path) {
    cairo_surface_t* png = cairo_image_surface_create_from_png(path.c_str());
    width = cairo_image_surface_get_width(png);
    height = cairo_image_surface_get_height(png);
    const unsigned char* row = cairo_image_surface_get_data(png);
    for (int y = 0; y < height; ++y, row += cairo_image_surface_get_stride(png)) {
      const auto* pixels = reinterpret_cast<const std::uint32_t*>(row);
      for (int x = 0; x < width; ++x) ++colors[pixels[x]];
    }
    cairo_surface_destroy(png);
  }

  int count(std::uint32_t color) const {
    const auto at = colors.find(color);
    return at == colors.end() ? 0 : at->second;
  }
  // Number of pixels that are not gray.
  int hues() const {
    int result = 0;
    for (const auto& [color, number] : colors) {
      const std::uint32_t red = color >> 16 & 255, green = color >> 8 & 255;
      if (red != green || green != (color & 255)) result += number;
    }
    return result;
  }

  // Area in pixels covered by black on white, counting partial coverage.
  double ink() const {
    double result = 0;
    for (const auto& [color, number] : colors)
      result += number * (255 - static_cast<int>(color & 255)) / 255.0;
    return result;
  }

  int width = 0, height = 0;
  std::map<std::uint32_t, int> colors;  // 0xAARRGGBB
};

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
    if (word == "l" && n >= 2) {
      lengths.push_back(scale * std::hypot(stack[n - 2] - fromX, stack[n - 1] - fromY));
    }
    if ((word == "m" || word == "l") && n >= 2) {
      fromX = stack[n - 2];
      fromY = stack[n - 1];
    }
    stack.clear();
  }
  return lengths;
}

std::string line(const std::string& layer, double x1, double y1, double x2, double y2,
                 const char* handle = "0") {
  std::ostringstream out;
  out << "0\nLINE\n5\n"
      << handle << "\n8\n"
      << layer << "\n10\n"
      << x1 << "\n20\n"
      << y1 << "\n11\n"
      << x2 << "\n21\n"
      << y2 << "\n";
  return out.str();
}

// An entity with an explicit color.
std::string colored(int color, std::string entity) {
  return entity + "62\n" + std::to_string(color) + "\n";
}

std::string drawingWith(const std::string& entities) {
  return "0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n0\nEOF\n";
}

// Nested blocks, the outermost in a square array.
std::string nested(int levels, int cells) {
  std::string blocks = "0\nBLOCK\n2\nB0\n" + line("A", 0, 0, 1, 1) + "0\nENDBLK\n", insert;
  for (int i = 0; i <= levels; ++i) {
    insert = "0\nINSERT\n8\n0\n2\nB" + std::to_string(i) + "\n10\n0\n20\n0\n";
    blocks += "0\nBLOCK\n2\nB" + std::to_string(i + 1) + "\n" + insert + "0\nENDBLK\n";
  }
  const std::string count = std::to_string(cells) + "\n";
  return "0\nSECTION\n2\nBLOCKS\n" + blocks + "0\nENDSEC\n" +
         drawingWith(insert + "70\n" + count + "71\n" + count + "44\n2\n45\n2\n");
}

const std::string kCircle = "0\nCIRCLE\n5\nC1\n8\nB\n10\n50\n20\n50\n40\n25\n";
const std::string kText = "0\nTEXT\n5\nA7\n8\nB\n10\n0\n20\n0\n40\n5\n1\na <b> & \"c\"\x01\n";

using Render = Tool;

}  // namespace

TEST_F(Render, ExitCodes) {
  write("broken.dxf", kBroken);
  write("good.dxf", drawingWith(line("A", 0, 0, 30, 40)));
  write("array.dxf", nested(0, 32767));
  write("deep.dxf", nested(250, 1));
  write("old.svg", "old");
  for (const Row& t : rows()) {
    const Outcome got = run(std::string("render ") + t.text("arguments"));
    EXPECT_EQ(got.code, t.whole("code")) << got.out << got.err;
  }
  EXPECT_EQ(contents(path("old.svg")), "old");
  EXPECT_LT(fs::file_size(path("d.svg")), 2000U);
  EXPECT_FALSE(fs::exists(path("b.svg")));
  EXPECT_FALSE(fs::exists(path("b.png")));
  EXPECT_FALSE(leftovers());
}

TEST_F(Render, SvgNamesLayersAndEntities) {
  write("a.dxf", drawingWith(line("A", 0, 0, 100, 0, "1F") + kCircle +
                             line("A", 0, 0, 0, 100, "20") + kText));
  ASSERT_EQ(run("render a.dxf -o a.svg --size 400x400 --margin 0").code, 0);
  const std::string svg = contents(path("a.svg"));
  const XmlReader xml(svg);
  EXPECT_EQ(xml.error, "");
  EXPECT_EQ(groups(xml), "layer-A layer-B ") << "grouped although the order alternates";
  EXPECT_EQ(xml.count("path"), 2);
  ASSERT_EQ(xml.count("circle"), 1);
  ASSERT_TRUE(xml.byId("hC1") && xml.byId("h1F") && xml.byId("h20") && xml.byId("hA7"));
  EXPECT_EQ(xml.byId("hC1")->name, "circle");
  EXPECT_EQ(xml.byId("hC1")->parentId, "layer-B");
  EXPECT_EQ(xml.byId("h20")->parentId, "layer-A");
  EXPECT_NE(svg.find("a &lt;b&gt; &amp; &quot;c&quot;"), std::string::npos);
}

TEST_F(Render, SvgKeepsTheGeometry) {
  write("a.dxf", drawingWith(line("A", 0, 0, 100, 100, "1") + kCircle));
  ASSERT_EQ(run("render a.dxf -o a.svg --window 0,0,100,100 --size 200x200").code, 0);
  const XmlReader xml(contents(path("a.svg")));
  ASSERT_TRUE(xml.byId("h1") && xml.byId("hC1"));
  EXPECT_EQ(xml.byId("h1")->attributes.at("d"), "M0 200l200-200");
  EXPECT_EQ(xml.byId("hC1")->attributes.at("cx"), "100");
  EXPECT_EQ(xml.byId("hC1")->attributes.at("r"), "50");
}

// Cutting machines need a path whole, closed, and with its arcs.
TEST_F(Render, PolylinesStayClosedAndKeepTheirArcs) {
  const char* const corners[] = {"0\n20\n0", "10\n20\n0\n42\n1", "10\n20\n10", "0\n20\n10\n42\n1"};
  std::string slot = "0\nPOLYLINE\n5\n1\n8\nA\n66\n1\n70\n1\n";
  for (const char* corner : corners) slot += std::string("0\nVERTEX\n8\nA\n10\n") + corner + "\n";
  write("a.dxf", drawingWith(slot + "0\nSEQEND\n"));
  ASSERT_EQ(run("render a.dxf -o a.svg --window -10,-10,20,20 --size 300x300").code, 0);
  const XmlReader xml(contents(path("a.svg")));
  ASSERT_TRUE(xml.byId("h1"));
  EXPECT_EQ(xml.byId("h1")->attributes.at("d"),
            "M100 200h100a50 50 0 0 0 0-100h-100a50 50 0 0 0 0 100z");
}

TEST_F(Render, IdsAreUniqueWhateverTheNames) {
  write("a.dxf", drawingWith(line("A B", 0, 0, 1, 1, "1") + line("A_B", 0, 0, 1, 2, "1") +
                             line("A&B", 0, 0, 1, 3, "1") + line("<\"x\">", 0, 0, 1, 4, "2")));
  ASSERT_EQ(run("render a.dxf -o a.svg").code, 0);
  const std::string svg = contents(path("a.svg"));
  const XmlReader xml(svg);
  EXPECT_EQ(xml.error, "");
  EXPECT_EQ(groups(xml), "layer-A_B layer-A_B-2 layer-A_B-3 layer-__x__ ");
  std::set<std::string> ids;
  for (const XmlElement& e : xml.elements) {
    const auto id = e.attributes.find("id");
    if (id == e.attributes.end()) continue;
    EXPECT_TRUE(ids.insert(id->second).second) << id->second;
  }
  EXPECT_EQ(ids.size(), 8u);
}

TEST_F(Render, SamplesAreWellFormedInEveryForm) {
  for (const char* name : {"flange", "every_kind_r12", "hatches_ac1015", "room_ac1015"}) {
    for (const char* options :
         {"", "--text outlines", "--mono --background '#102030'", "--paper A3 --scale 1:2",
          "--view parallel:1,0,0.5,0.5", "--window 0,0,1,1", "--view front", "--split-layers"}) {
      SCOPED_TRACE(std::string(name) + " " + options);
      const std::string file = quotedSample(name + std::string(".dxf"));
      const Outcome got = run("render -q " + file + " -f -o a.svg " + options);
      ASSERT_EQ(got.code, 0) << got.err;
      const std::string svg = contents(path("a.svg"));
      EXPECT_EQ(XmlReader(svg).error, "");
      EXPECT_EQ(svg.find("nan"), std::string::npos);
      EXPECT_EQ(svg.find("inf"), std::string::npos);
    }
  }
}

TEST_F(Render, PngHasTheSizeAskedFor) {
  write("a.dxf", drawingWith(line("A", 0, 0, 200, 100)));
  for (const Row& t : rows()) {
    ASSERT_EQ(run(std::string("render a.dxf -f -o a.png ") + t.text("options")).code, 0);
    const Image image(path("a.png"));
    EXPECT_EQ(image.width, t.whole("width"));
    EXPECT_EQ(image.height, t.whole("height"));
  }
}

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

TEST_F(Render, LayersAreChosenByNameAndPattern) {
  write("a.dxf", drawingWith(line("WALLS", 0, 0, 1, 1) + line("DOOR1", 0, 0, 1, 1) +
                             line("DOOR2", 0, 0, 1, 1)));
  for (const Row& t : rows()) {
    ASSERT_EQ(run(std::string("render -q a.dxf -f -o a.svg ") + t.text("options")).code, 0);
    EXPECT_EQ(groups(XmlReader(contents(path("a.svg")))), t.text("groups"));
  }
  EXPECT_NE(run("render a.dxf -f -o a.svg --layers WINDOWS").err.find("WINDOWS"),
            std::string::npos);
}

TEST_F(Render, SplitLayersWritesOneAlikePictureALayer) {
  const std::string longest(300, 'L');
  write("a.dxf", drawingWith(line("A/B", 0, 0, 100, 100) + line("C", 0, 0, 50, 0) +
                             line(longest + "1", 0, 0, 1, 0) + line(longest + "2", 0, 0, 1, 0)));
  ASSERT_EQ(run("render a.dxf --split-layers -o a.svg --size 240x240").code, 0);
  EXPECT_FALSE(fs::exists(path("a.svg")));
  EXPECT_FALSE(fs::exists(path("a-0.svg"))) << "nothing is on layer 0";
  EXPECT_EQ(groups(XmlReader(contents(path("a-A_B.svg")))), "layer-A_B ");
  EXPECT_NE(contents(path("a-C.svg")).find("M20 220h100"), std::string::npos);
}

TEST_F(Render, AllGoesOnAfterAFailure) {
  write("broken.dxf", kBroken);
  write("good.dxf", drawingWith(line("A", 0, 0, 1, 1)));
  fs::create_directory(path("other"));
  write("other/good.dxf", drawingWith(line("B", 0, 0, 1, 1)));
  const Outcome got =
      run("render broken.dxf good.dxf other/good.dxf --all --format png -o pictures");
  EXPECT_EQ(got.code, 3) << got.err;
  EXPECT_NE(got.err.find("other/good.dxf"), std::string::npos);
  EXPECT_TRUE(fs::exists(path("pictures/good.png")));
  EXPECT_FALSE(fs::exists(path("pictures/broken.png")));
}

TEST_F(Render, BackgroundIsPaintedUnlessNone) {
  write("a.dxf", drawingWith(line("A", 0, 0, 1, 1)));
  for (const Row& t : rows()) {
    ASSERT_EQ(run(std::string("render a.dxf -f -o a.svg ") + t.text("options")).code, 0);
    const XmlReader xml(contents(path("a.svg")));
    ASSERT_EQ(xml.count("rect"), t.text("rect").empty() ? 0 : 1);
    if (!t.text("rect").empty()) {
      const auto rect = std::find_if(xml.elements.begin(), xml.elements.end(),
                                     [](const XmlElement& e) { return e.name == "rect"; });
      EXPECT_EQ(rect->attributes.at("fill"), t.text("rect"));
    }
    EXPECT_EQ(xml.byId("layer-A")->attributes.at("stroke"), t.text("stroke"));
  }
}

TEST_F(Render, MonoDrawsEverythingInTheColorThatIsSeen) {
  write("a.dxf", drawingWith(colored(1, line("A", 0, 0, 1, 1)) + colored(3, kCircle)));
  const std::map<std::string, std::uint32_t> pens = {{"white", 0xFF000000}, {"black", 0xFFFFFFFF}};
  for (const auto& [background, pen] : pens) {
    SCOPED_TRACE(background);
    const std::string options = " --size 90x90 --lineweight 1 --background " + background;
    ASSERT_EQ(run("render a.dxf -f -o a.png" + options).code, 0);
    const Image image(path("a.png"));
    EXPECT_GT(image.hues(), 0) << "red and green";
    ASSERT_EQ(run("render a.dxf -f --mono -o a.png" + options).code, 0);
    const Image mono(path("a.png"));
    EXPECT_EQ(mono.hues(), 0);
    EXPECT_GT(mono.count(pen), 0);
  }
}

TEST_F(Render, EdgesOfImagesAreSoft) {
  write("a.dxf", drawingWith(line("A", 0, 0, 100, 37)));
  ASSERT_EQ(run("render a.dxf -o a.png --size 200x100").code, 0);
  const Image image(path("a.png"));
  EXPECT_GT(image.colors.size(), 16u) << "shades between paper and pen";
  EXPECT_GT(image.count(0xFFFFFFFF), 15000);
}

TEST_F(Render, WhatIsSmallOrThinIsSeen) {
  write("a.dxf",
        drawingWith("0\nPOINT\n8\nA\n10\n3.3\n20\n7.8\n" + line("A", 10, 10, 20, 10, "1")));
  ASSERT_EQ(run("render a.dxf -o a.png --size 100x100 --window 0,0,9,9").code, 0);
  EXPECT_EQ(Image(path("a.png")).count(0xFF000000), 5) << "three pixels wide, but for corners";
  ASSERT_EQ(run("render a.dxf -o a.svg --lineweight 0.001").code, 0);
  EXPECT_NE(XmlReader(contents(path("a.svg"))).elements[0].attributes.at("stroke-width"), "0");
  const std::string tiny = "\n8\nA\n10\n5\n20\n5\n40\n1e-5\n50\n0\n51\n90\n";
  write("b.dxf", drawingWith("0\nCIRCLE\n5\n1" + tiny + "0\nARC\n5\n2" + tiny));
  ASSERT_EQ(run("render b.dxf -o b.svg --size 100x100 --window 0,0,10,10").code, 0);
  const XmlReader dots(contents(path("b.svg")));
  for (const char* id : {"h1", "h2"}) EXPECT_EQ(dots.byId(id)->attributes.at("d"), "M50 50h0");
}

// The ink of a line is its length times its width, however it is split and whatever its direction.
TEST_F(Render, InkFollowsLengthAndWidth) {
  const auto inkOf = [&](const std::string& entities, const std::string& options) {
    write("a.dxf", drawingWith(entities));
    EXPECT_EQ(
        run("render a.dxf -f -o a.png --size 200x200mm --dpi 25.4 --window 0,0,200,200" + options)
            .code,
        0);
    return Image(path("a.png")).ink();
  };
  const auto chain = [](double x, double y, int pieces) {
    std::string text = "0\nPOLYLINE\n8\nA\n66\n1\n";
    for (int i = 0; i <= pieces; ++i)
      text += "0\nVERTEX\n8\nA\n10\n" + std::to_string(20 + x * i / pieces) + "\n20\n" +
              std::to_string(20 + y * i / pieces) + "\n";
    return text + "0\nSEQEND\n";
  };
  for (const auto& [x, y] : {std::pair(150.0, 0.0), std::pair(0.0, 150.0), std::pair(120.0, 90.0),
                             std::pair(149.0, 9.0), std::pair(9.0, 149.0)}) {
    for (const double width : {0.5, 1.0, 4.0}) {
      SCOPED_TRACE(testing::Message() << x << ", " << y << ", width " << width);
      const std::string option = " --lineweight " + std::to_string(width);
      const double expected = std::hypot(x, y) * width;
      EXPECT_NEAR(inkOf(line("A", 20, 20, 20 + x, 20 + y), option), expected, 0.07 * expected + 6);
      EXPECT_NEAR(inkOf(chain(x, y, 400), option), expected, 0.07 * expected + 6);
    }
  }
}

// Adjacent strips, antialiased separately, would let the background show through.
TEST_F(Render, SolidHatchesHaveNoSeams) {
  const std::string hatches = quotedSample("hatches_ac1015.dxf");
  ASSERT_EQ(run("render -q " + hatches + " -o a.png --size 900x900 --layers HATCH").code, 0);
  const Image image(path("a.png"));
  constexpr std::uint32_t kGreenBlue = 0xFFFF;
  const int blue = image.count(0xFF0000FF);
  int bluish = 0;
  for (const auto& [color, number] : image.colors) {
    const std::uint32_t red = color >> 16 & 255;
    if ((color & kGreenBlue) == (red << 8 | 255) && red > 0 && red < 255) bluish += number;
  }
  EXPECT_GT(blue, 1000);
  EXPECT_LT(bluish, blue / 20) << "more than the rim is neither blue nor white";
}

// A line along each axis; its image in a sheet of 100 by 100 around the origin.
TEST_F(Render, ViewsShowTheAxes) {
  write("a.dxf", drawingWith(line("X", 0, 0, 5, 0, "1") + line("Y", 0, 0, 0, 5, "2") +
                             "0\nLINE\n5\n3\n8\nZ\n10\n0\n20\n0\n30\n0\n11\n0\n21\n0\n31\n5\n"));
  for (const Row& t : rows()) {
    ASSERT_EQ(run(std::string("render a.dxf -f -o a.svg --size 100x100 --window -10,-10,10,10 ") +
                  "--view " + t.text("view"))
                  .code,
              0);
    const XmlReader xml(contents(path("a.svg")));
    const auto way = [&](const char* id) {
      return xml.byId(id) ? xml.byId(id)->attributes.at("d").substr(6) : "none";
    };
    EXPECT_EQ(way("h1"), t.text("x"));
    EXPECT_EQ(way("h2"), t.text("y"));
    EXPECT_EQ(way("h3"), t.text("z"));
  }
}

// A fill hides earlier content and is hidden by later content, whatever their layers; lines of one
// color commute.
TEST_F(Render, GroupingKeepsWhatCovers) {
  const std::string wide =
      "0\nLWPOLYLINE\n100\nAcDbPolyline\n5\nF\n8\nFILL\n90\n2\n43\n20\n"
      "10\n0\n20\n0\n10\n50\n20\n0\n";
  write("a.dxf", "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1015\n0\nENDSEC\n" +
                     drawingWith(line("A", 0, 0, 50, 0) + wide + line("A", 0, 5, 50, 5) +
                                 line("B", 0, 50, 50, 50) + line("A", 0, 60, 50, 60)));
  const Outcome got = run("render a.dxf -o a.svg");
  ASSERT_EQ(got.code, 0) << got.err;
  EXPECT_EQ(groups(XmlReader(contents(path("a.svg")))), "layer-A layer-FILL layer-A-2 layer-B ");
}

TEST_F(Render, TextsStayTextsOrBecomeOutlines) {
  write("a.dxf", drawingWith(kText));
  ASSERT_EQ(run("render a.dxf -o a.svg").code, 0);
  EXPECT_EQ(XmlReader(contents(path("a.svg"))).count("text"), 1);
  ASSERT_EQ(run("render a.dxf -o b.svg --text outlines").code, 0);
  const XmlReader outlines(contents(path("b.svg")));
  EXPECT_EQ(outlines.count("text"), 0);
  EXPECT_EQ(outlines.byId("hA7")->attributes.at("fill-rule"), "nonzero");
  ASSERT_EQ(run("render a.dxf -o a.pdf").code, 0);
  const std::string pdf = contents(path("a.pdf"));
  EXPECT_NE(pdf.find("/ToUnicode"), std::string::npos) << "can be searched";
  EXPECT_EQ(pdf.find("/CreationDate"), std::string::npos) << "equal drawings give equal bytes";
}

TEST_F(Render, SaysWhatIsNotShown) {
  write("a.dxf", drawingWith(line("A", 0, 0, 1, 1) + "0\nBODY\n8\n0\n0\nBODY\n8\n0\n"));
  EXPECT_NE(run("render a.dxf -o a.svg").err.find("not shown: 2 BODY"), std::string::npos);
  EXPECT_EQ(run("render -q a.dxf -f -o a.svg").err, "");
  write("b.dxf", drawingWith(line("A", 0, 0, 1, 1) + "67\n1\n"));
  const Outcome sheet = run("render b.dxf -o b.svg");
  EXPECT_EQ(sheet.code, 0);
  EXPECT_NE(sheet.err.find("1 entity is on a sheet, which --paper-space shows"), std::string::npos)
      << sheet.err;
  write("c.dxf", "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n2\n*Paper_Space0\n" + line("A", 0, 0, 1, 1) +
                     "0\nENDBLK\n0\nENDSEC\n0\nEOF\n");
  const Outcome other = run("render c.dxf -o c.svg");
  EXPECT_NE(other.err.find("1 entity is on other sheets"), std::string::npos) << other.err;
}

// Hidden or unprinted content must neither shrink the picture nor coarsen its arcs.
TEST_F(Render, FitsWhatIsShown) {
  write("a.dxf",
        drawingWith(line("A", 0, 0, 100, 100, "1") + line("B", 0, 0, 9000, 9000) +
                    line("DEFPOINTS", 0, 0, 9e9, 9e9) +
                    "0\nARC\n8\nA\n10\n50\n20\n50\n40\n100\n50\n20\n51\n19\n"
                    "0\nATTDEF\n8\nA\n10\n9e9\n20\n0\n40\n5\n1\nv\n2\nTAG\n3\n?\n70\n1\n"));
  ASSERT_EQ(run("render a.dxf -o a.svg --size 240x240 --hide-layers B").code, 0);
  EXPECT_EQ(XmlReader(contents(path("a.svg"))).byId("h1")->attributes.at("d"), "M70 170l100-100");
}

// A black square, clipped to a diamond that is in turn clipped to its left half.
TEST_F(Render, ClipsHoldWithinEachOther) {
  using Points = std::vector<std::pair<int, int>>;
  const auto insert = [](const std::string& block, int own) {
    return "0\nINSERT\n8\nA\n360\n" + std::to_string(own) + "\n2\n" + block + "\n10\n0\n20\n0\n";
  };
  const auto block = [](const std::string& name, const std::string& content) {
    return "0\nBLOCK\n8\n0\n2\n" + name + "\n70\n0\n10\n0\n20\n0\n" + content + "0\nENDBLK\n8\n0\n";
  };
  const auto clip = [](int own, const Points& points) {
    const std::string next = std::to_string(own + 1), last = std::to_string(own + 2);
    std::string text = "0\nDICTIONARY\n5\n" + std::to_string(own) + "\n3\nACAD_FILTER\n360\n" +
                       next + "\n0\nDICTIONARY\n5\n" + next + "\n3\nSPATIAL\n360\n" + last +
                       "\n0\nSPATIAL_FILTER\n5\n" + last + "\n71\n1\n";
    for (const auto& [x, y] : points)
      text += "10\n" + std::to_string(x) + "\n20\n" + std::to_string(y) + "\n";
    for (int i = 0; i < 24; ++i) text += i % 12 % 5 == 0 ? "40\n1\n" : "40\n0\n";
    return text;
  };
  const std::string square =
      "0\nSOLID\n8\nA\n10\n0\n20\n0\n11\n100\n21\n0\n12\n0\n22\n100\n13\n100\n23\n100\n";
  const auto inkOf = [&](const Points& inner) {
    write("a.dxf", "0\nSECTION\n2\nBLOCKS\n" + block("S", square) + block("M", insert("S", 10)) +
                       "0\nENDSEC\n0\nSECTION\n2\nENTITIES\n" + insert("M", 20) +
                       "0\nENDSEC\n0\nSECTION\n2\nOBJECTS\n" + clip(10, inner) +
                       clip(20, {{0, 0}, {50, 100}}) + "0\nENDSEC\n0\nEOF\n");
    const auto done = run("render a.dxf -f -o a.png --size 100x100 --window 0,0,100,100");
    EXPECT_EQ(done.err.find("shows 1 clipped") != std::string::npos, inner.size() > 1000);
    return Image(path("a.png")).ink();
  };
  EXPECT_NEAR(inkOf(Points(1001)), 5000, 60) << "the inner one has too many corners";
  EXPECT_NEAR(inkOf({{0, 50}, {50, 0}, {100, 50}, {50, 100}}), 2500, 60);
  ASSERT_EQ(run("render a.dxf -o a.svg").code, 0);
  const std::string svg = contents(path("a.svg"));
  EXPECT_EQ(XmlReader(svg).error, "");
  const std::string outer = "<g clip-path=\"url(#clip-1)\">\n<g clip-path=\"url(#clip-2)\">\n<path";
  EXPECT_NE(svg.find(outer), std::string::npos) << "viewers do not agree on clips of clips";
}

TEST_F(Render, WhatLiesFarOffTheWindowIsCutOff) {
  write("a.dxf",
        drawingWith(line("A", -1e12, 5, 1e12, 5, "1") + line("A", 1e9, 1e9, 2e9, 1e9, "2")));
  for (const char* name : {"a.svg", "a.png", "a.pdf"}) {
    ASSERT_EQ(run(std::string("render a.dxf --window 0,0,10,10 --size 100x100 -o ") + name).code,
              0);
  }
  const XmlReader xml(contents(path("a.svg")));
  ASSERT_TRUE(xml.byId("h1"));
  EXPECT_EQ(xml.byId("h1")->attributes.at("d"), "M-100 50h300");
  EXPECT_FALSE(xml.byId("h2"));
}

TEST_F(Render, StandardOutputTakesEveryFormat) {
  write("a.dxf", drawingWith(line("A", 0, 0, 1, 1)));
  EXPECT_EQ(run("render - -o - --format png", "a.dxf").out.substr(1, 3), "PNG");
  EXPECT_EQ(run("render - -o - --format pdf", "a.dxf").out.substr(0, 5), "%PDF-");
  EXPECT_EQ(XmlReader(run("render - -o - --format svg", "a.dxf").out).error, "");
}
