#include "pictures.h"

TEST_F(Render, SvgNamesLayersAndEntities) {
  write("a.dxf", drawingWith(line("A", 0, 0, 100, 0, "1F") + kCircle +
                             line("A", 0, 0, 0, 100, "20") + kText));
  ASSERT_EQ(run("render a.dxf -o a.svg --size 400x400 --margin 0").code, 0);
  const std::string svg = contents(path("a.svg"));
  const XmlReader xml(svg);
  EXPECT_EQ(xml.error, "");
  EXPECT_EQ(xml.groups(), "layer-A layer-B ") << "grouped although the order alternates";
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

// The same as their glyphs from left to right, with any reordering overridden.
TEST_F(Render, TextsAreOrderedAndShaped) {
  const auto shapeOf = [&](const std::string& string) {
    write("a.dxf", drawingWith("0\nTEXT\n5\nA7\n8\nB\n10\n0\n20\n0\n40\n5\n1\n" + string + "\n"));
    run("render a.dxf -f -o a.svg --text outlines");
    const XmlReader xml(contents(path("a.svg")));
    return xml.byId("hA7") ? xml.byId("hA7")->attributes.at("d") : "nothing";
  };
  for (const Row& t : rows())
    EXPECT_EQ(shapeOf(t.text("text")), shapeOf("\\U+202D" + t.text("glyphs")));
  run("render a.dxf -f -o a.svg");
  EXPECT_EQ(contents(path("a.svg")).find("rtl"), std::string::npos);
  shapeOf("12 \\U+05D0 a");
  run("render a.dxf -f -o a.svg");
  EXPECT_NE(contents(path("a.svg")).find("direction=\"rtl\""), std::string::npos);
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

// More than one thread works on at once, with layers in turn.
TEST_F(Render, SvgKeepsEveryLineOfManyLayers) {
  constexpr int kLines = 40'000, kLayers = 3;
  const auto at = [](int i) { return std::pair(i * 7 % 1000, i * 13 % 997); };
  std::string lines;
  for (int i = 1; i <= kLines; ++i) {
    const auto [x, y] = at(i);
    lines += line(std::string(1, static_cast<char>('A' + i % kLayers)), x, y, x + 1, y + 2,
                  std::to_string(i).c_str());
  }
  write("a.dxf", drawingWith(lines));
  ASSERT_EQ(run("render a.dxf -o a.svg --window 0,0,1000,1000 --size 1000x1000").code, 0);
  const XmlReader xml(contents(path("a.svg")));
  EXPECT_EQ(xml.groups(), "layer-B layer-C layer-A ");
  int right = 0;
  for (const XmlElement& e : xml.elements) {
    if (e.name != "path") continue;
    const int i = std::stoi(e.attributes.at("id").substr(1));
    const auto [x, y] = at(i);
    const std::string d = "M" + std::to_string(x) + " " + std::to_string(1000 - y);
    right += e.parentId == "layer-" + std::string(1, static_cast<char>('A' + i % kLayers)) &&
             e.attributes.at("d").compare(0, d.size() + 1, d + "l") == 0;
  }
  EXPECT_EQ(right, kLines);
}

TEST_F(Render, IdsAreUniqueWhateverTheNames) {
  write("a.dxf", drawingWith(line("A B", 0, 0, 1, 1, "1") + line("A_B", 0, 0, 1, 2, "1") +
                             line("A&B", 0, 0, 1, 3, "1") + line("<\"x\">", 0, 0, 1, 4, "2")));
  ASSERT_EQ(run("render a.dxf -o a.svg").code, 0);
  const std::string svg = contents(path("a.svg"));
  const XmlReader xml(svg);
  EXPECT_EQ(xml.error, "");
  EXPECT_EQ(xml.groups(), "layer-A_B layer-A_B-2 layer-A_B-3 layer-__x__ ");
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
  EXPECT_EQ(XmlReader(contents(path("a.svg"))).groups(), "layer-A layer-FILL layer-A-2 layer-B ");
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
