#include "pictures.h"

TEST_F(Render, PngHasTheSizeAskedFor) {
  write("a.dxf", drawingWith(line("A", 0, 0, 200, 100)));
  for (const Row& t : rows()) {
    ASSERT_EQ(run(std::string("render a.dxf -f -o a.png ") + t.text("options")).code, 0);
    const Image image(path("a.png"));
    EXPECT_EQ(image.width, t.whole("width"));
    EXPECT_EQ(image.height, t.whole("height"));
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

// The dashes of a line are drawn together, and must look like lines, in all directions and beyond
// the border.
TEST_F(Render, DashesLookLikeLines) {
  std::mt19937 choose(5);
  std::uniform_real_distribution<double> place(-100, 1100);
  constexpr double dash = 7, period = 12;
  std::string dashed, lines;
  for (int i = 0; i < 200; ++i) {
    const PNT_2D from(place(choose), place(choose));
    const PNT_2D to(i % 40 == 0 ? from.x : place(choose), i % 40 == 20 ? from.y : place(choose));
    const double length = from.dist(to);
    std::string entity = line("A", from.x, from.y, to.x, to.y);
    dashed += entity + "6\nD\n";
    for (double at = 0; at < length; at += period) {
      const double start = at / length, end = std::min(at + dash, length) / length;
      lines += line("A", from.x + start * (to.x - from.x), from.y + start * (to.y - from.y),
                    from.x + end * (to.x - from.x), from.y + end * (to.y - from.y));
    }
  }
  write("a.dxf", section("TABLES", table("LTYPE", pairsOf("0 LTYPE|2 D|73 2|40 12|49 7|49 -5|"))) +
                     drawingWith(dashed));
  write("b.dxf", drawingWith(lines));
  for (const char* in : {"a", "b"})
    ASSERT_EQ(run(std::string("render ") + in + ".dxf -o " + in +
                  ".png --size 1001x1001 --window 0,0,1000,1000 --margin 0 --lineweight 0.4")
                  .code,
              0);
  const Image a(path("a.png")), b(path("b.png"));
  int different = 0;
  for (std::size_t i = 0; i < a.all.size(); ++i)
    different += std::abs(static_cast<int>(a.all[i] & 255) - static_cast<int>(b.all[i] & 255)) > 8;
  EXPECT_NEAR(a.ink(), b.ink(), 1e-4 * a.ink());
  EXPECT_EQ(different, 0);
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
