// Pictures created by the tool: options, files, and the choice of what is shown.

#include "pictures.h"

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

TEST_F(Render, LayersAreChosenByNameAndPattern) {
  write("a.dxf", drawingWith(line("WALLS", 0, 0, 1, 1) + line("DOOR1", 0, 0, 1, 1) +
                             line("DOOR2", 0, 0, 1, 1)));
  for (const Row& t : rows()) {
    ASSERT_EQ(run(std::string("render -q a.dxf -f -o a.svg ") + t.text("options")).code, 0);
    EXPECT_EQ(XmlReader(contents(path("a.svg"))).groups(), t.text("groups"));
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
  EXPECT_EQ(XmlReader(contents(path("a-A_B.svg"))).groups(), "layer-A_B ");
  EXPECT_NE(contents(path("a-C.svg")).find("M20 220h100"), std::string::npos);
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
  EXPECT_NE(sheet.err.find("1 entity is on sheets, which render --layout shows"), std::string::npos)
      << sheet.err;
  write("c.dxf", "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n2\n*Paper_Space0\n" + line("A", 0, 0, 1, 1) +
                     "0\nENDBLK\n0\nENDSEC\n0\nEOF\n");
  const Outcome other = run("render c.dxf -o c.svg");
  EXPECT_NE(other.err.find("1 entity is on sheets"), std::string::npos) << other.err;
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

TEST_F(Render, StandardOutputTakesEveryFormat) {
  write("a.dxf", drawingWith(line("A", 0, 0, 1, 1)));
  EXPECT_EQ(run("render - -o - --format png", "a.dxf").out.substr(1, 3), "PNG");
  EXPECT_EQ(run("render - -o - --format pdf", "a.dxf").out.substr(0, 5), "%PDF-");
  EXPECT_EQ(XmlReader(run("render - -o - --format svg", "a.dxf").out).error, "");
}
