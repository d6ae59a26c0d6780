// Pictures show lineweights, true colors, transparency and linetype scales.
#include "support/test.h"
#include "tooltest.h"

namespace {

using Traits = Tool;

// A drawing of one line from (0, 0) to (100, 0) on layer A, with these codes.
std::string drawingOf(std::string_view header, std::string_view layer, std::string_view codes) {
  return section("HEADER", pairsOf(header)) +
         section("TABLES",
                 table("LAYER", pairsOf("0 LAYER|2 A|6 CONTINUOUS|" + std::string(layer)))) +
         section("ENTITIES", pairsOf("0 LINE|8 A|10 0|20 0|11 100|21 0|" + std::string(codes))) +
         dxf();
}

// The attribute of the path, of its group, or of the document.
std::string shown(const std::string& svg, const std::string& attribute) {
  const std::size_t path = svg.find("<path");
  const std::string mark = " " + attribute + "=\"";
  std::size_t at = svg.find(mark, path);
  if (at == svg.npos) at = svg.rfind(mark, path);
  if (path == svg.npos || at == svg.npos) return "-";
  return svg.substr(at + mark.size(), svg.find('"', at + mark.size()) - at - mark.size());
}

}  // namespace

TEST_F(Traits, LinesLookAsTheyShould) {
  for (const Row& t : rows()) {
    write("a.dxf", drawingOf(t.text("header"), t.text("layer"), t.text("entity")));
    ASSERT_EQ(run("render a.dxf -f -o a.svg " + t.text("options")).code, 0);
    const std::string svg = contents(path("a.svg"));
    EXPECT_EQ(shown(svg, "stroke-width"), t.text("width"));
    EXPECT_EQ(shown(svg, "stroke"), t.text("color"));
    EXPECT_EQ(shown(svg, "stroke-opacity"), t.text("opacity"));
  }
}

TEST_F(Traits, LayersThatAreNotPlottedAreHidden) {
  write("a.dxf", drawingOf("9 $LWDEFAULT|370 25", "290 0", "62 1"));
  const auto hidden = run("render a.dxf -o a.svg");
  EXPECT_NE(hidden.err.find("--layers A shows it"), std::string::npos);
  EXPECT_EQ(shown(contents(path("a.svg")), "stroke"), "-");
  ASSERT_EQ(run("render a.dxf -f -o a.svg --layers A").code, 0);
  EXPECT_EQ(shown(contents(path("a.svg")), "stroke"), "#ff0000");
}
