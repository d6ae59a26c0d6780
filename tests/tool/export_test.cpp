// vek0 export: geometry of GeoJSON, cells of CSV.
#include <nlohmann/json.hpp>

#include "support/test.h"
#include "tooltest.h"

using Json = nlohmann::json;

namespace {

double areaOfRing(const Json& ring) {
  double twice = 0;
  for (std::size_t i = 0; i + 1 < ring.size(); ++i)
    twice += ring[i][0].get<double>() * ring[i + 1][1].get<double>() -
             ring[i + 1][0].get<double>() * ring[i][1].get<double>();
  return twice / 2;
}

void expectWound(const Json& polygon) {
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    EXPECT_GE(polygon[i].size(), 4u);
    EXPECT_EQ(polygon[i].front(), polygon[i].back());
    EXPECT_EQ(areaOfRing(polygon[i]) > 0, i == 0);
  }
}

class Export : public Tool {
 protected:
  Json featuresOf(const std::string& arguments) {
    const Outcome got = run("export --format geojson -o - " + arguments);
    EXPECT_EQ(got.code, 0) << got.err;
    return Json::parse(got.out)["features"];
  }
};

}  // namespace

TEST_F(Export, EveryEntityHasItsGeometry) {
  for (const Row& t : rows()) {
    SCOPED_TRACE(t.text("entity"));
    const std::string blocks = section(
        "BLOCKS", pairsOf("0 BLOCK|2 B|10 0|20 0|0 CIRCLE|8 0|62 0|10 0|20 0|40 1|0 ENDBLK"));
    write("a.dxf",
          version("AC1015") + blocks + section("ENTITIES", pairsOf(t.text("entity"))) + dxf());
    std::string found;
    for (const Json& feature : featuresOf("a.dxf --chord 0.5")) {
      const Json& shape = feature["geometry"];
      found += (found.empty() ? "" : " ") + shape["type"].get<std::string>();
      const Json& at = shape["coordinates"];
      if (shape["type"] == "Polygon") expectWound(at);
      if (shape["type"] == "Polygon" && at.size() > 1) found += "+" + std::to_string(at.size() - 1);
      if (shape["type"] == "Polygon") continue;
      found += at.dump();
    }
    EXPECT_EQ(found, t.text("geometry"));
  }
}

TEST_F(Export, SamplesAreValid) {
  for (const char* sample : {"every_kind_r12.dxf", "hatches_ac1015.dxf", "house.dxf", "trees.dxf"})
    for (const Json& feature : featuresOf(quotedSample(sample))) {
      const Json& shape = feature["geometry"];
      if (shape["type"] == "Polygon") expectWound(shape["coordinates"]);
      if (shape["type"] == "MultiPolygon")
        for (const Json& polygon : shape["coordinates"]) expectWound(polygon);
    }
}

TEST_F(Export, ChordsStayNearTheirCurve) {
  write("a.dxf", entitiesOf("AC1015", "0 CIRCLE|5 A1|8 L|420 1193046|10 7|20 9|40 5"));
  for (const double chord : {1.0, 0.1, 1e-3, 1e-6}) {
    const Json feature = featuresOf("a.dxf --chord " + std::to_string(chord))[0];
    EXPECT_EQ(feature["properties"], Json({{"layer", "L"},
                                           {"kind", "CIRCLE"},
                                           {"handle", "A1"},
                                           {"block", nullptr},
                                           {"color", "#123456"},
                                           {"text", nullptr}}));
    const Json& ring = feature["geometry"]["coordinates"][0];
    double worst = 0;
    for (std::size_t i = 0; i + 1 < ring.size(); ++i)
      worst = std::max(
          worst, 5 - std::hypot((ring[i][0].get<double>() + ring[i + 1][0].get<double>()) / 2 - 7,
                                (ring[i][1].get<double>() + ring[i + 1][1].get<double>()) / 2 - 9));
    EXPECT_LE(worst, chord * (1 + 1e-6));
    EXPECT_GT(worst, chord / 3);
  }
}

TEST_F(Export, TablesHaveQuotedCells) {
  const std::string insert = "0 INSERT|5 B1|8 P|66 1|2 B|10 1|20 2|50 90|70 3|44 5|";
  const std::string attrib = "0 ATTRIB|5 B2|8 P|10 0|20 0|40 1|1 say \"a,b\"|2 NOTE|70 0|";
  write("a.dxf",
        version("AC1015") +
            section("BLOCKS", pairsOf("0 BLOCK|2 B|10 0|20 0|0 POINT|8 0|10 0|20 0|0 ENDBLK")) +
            section("ENTITIES", pairsOf(insert + attrib +
                                        "0 SEQEND|0 INSERT|5 B3|8 P|2 B|"
                                        "10 .1|20 0")) +
            dxf());
  EXPECT_EQ(run("export a.dxf -o - --format csv --table attributes").out,
            "handle,block,layer,layout,count,x,y,z,rotation,scale_x,scale_y,scale_z,NOTE\r\n"
            "B1,B,P,Model,3,1,2,0,90,1,1,1,\"say \"\"a,b\"\"\"\r\n"
            "B3,B,P,Model,1,0.1,0,0,0,1,1,1,\r\n");
  const std::string texts = run("export a.dxf -o - --format csv --table texts").out;
  EXPECT_EQ(std::count(texts.begin(), texts.end(), '\n'), 2);
  EXPECT_NE(texts.find("B2,B1,ATTRIB,P,Model"), std::string::npos) << texts;
}

TEST_F(Export, WritesAllOrNothing) {
  write("good.dxf", kOneLine);
  write("broken.dxf", kBroken);
  const std::string array = "0 INSERT|8 0|2 B|10 0|20 0|70 32000|71 32000|44 1|45 1";
  write("huge.dxf", version("AC1015") +
                        section("BLOCKS", pairsOf("0 BLOCK|2 B|10 0|20 0|0 ENDBLK")) +
                        section("ENTITIES", pairsOf(array)) + dxf());
  for (const Row& t : rows()) {
    SCOPED_TRACE(t.text("arguments"));
    const Outcome got = run("export " + t.text("arguments"));
    EXPECT_EQ(got.code, t.whole("code")) << got.err;
    EXPECT_NE(got.err.find(t.text("said")), std::string::npos) << got.err;
    EXPECT_EQ(fs::exists(path("o.csv")) || fs::exists(path("o.geojson")), t.whole("code") == 0);
    fs::remove(path("o.csv"));
    fs::remove(path("o.geojson"));
  }
  EXPECT_FALSE(leftovers());
}
