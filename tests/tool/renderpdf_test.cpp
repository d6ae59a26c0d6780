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
