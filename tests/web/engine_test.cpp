#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

#include "support/samples.h"
#include "support/test.h"
#include "vek0_web.h"

namespace {

using Json = nlohmann::json;

// An engine as a page uses it.
class Web {
 public:
  Web() : m_engine(vek0_create()) {}
  ~Web() { vek0_destroy(m_engine); }
  Web(const Web&) = delete;
  Web& operator=(const Web&) = delete;
  vek0_engine* get() { return m_engine; }

  bool open(const std::string& bytes, std::size_t chunk = 1000) {
    EXPECT_TRUE(vek0_open_begin(m_engine, "test.dxf", 0));
    for (std::size_t at = 0; at < bytes.size(); at += chunk) {
      const std::size_t size = std::min(chunk, bytes.size() - at);
      std::memcpy(vek0_open_room(m_engine, size), bytes.data() + at, size);
      EXPECT_TRUE(vek0_open_chunk(m_engine, size));
    }
    return vek0_open_finish(m_engine) != 0;
  }
  std::string error() { return vek0_error(m_engine); }
  Json json(long size) {
    EXPECT_GE(size, 0) << error();
    return size < 0 ? Json()
                    : Json::parse(static_cast<const char*>(vek0_data(m_engine)),
                                  static_cast<const char*>(vek0_data(m_engine)) + size);
  }
  std::vector<std::uint64_t> handles(long count) {
    EXPECT_GE(count, 0) << error();
    const auto* data = static_cast<const std::uint64_t*>(vek0_data(m_engine));
    return {data, data + std::max(count, 0L)};
  }
  Json run(const std::string& line) { return json(vek0_command(m_engine, line.c_str())); }
  void mustRun(const std::string& line) {
    const Json answer = run(line);
    EXPECT_TRUE(answer["ok"].get<bool>()) << line << ": " << answer["message"];
  }
  std::string saved(const char* version) {
    const double size = vek0_save_dxf(m_engine, version);
    EXPECT_GE(size, 0) << error();
    return {static_cast<const char*>(vek0_data(m_engine)), static_cast<std::size_t>(size)};
  }

 private:
  vek0_engine* m_engine;
};

// What a page has: the shapes by slot, the table of slots, the styles.
class Page {
 public:
  explicit Page(Web& web) : m_web(web) {}

  void draw(int layout = 0, double step = 1e9) {
    m_segments.clear();
    m_slots.clear();
    ASSERT_TRUE(vek0_scene_begin(m_web.get(), layout, 0)) << m_web.error();
    int more;
    do {
      more = vek0_scene_step(m_web.get(), step);
      ASSERT_GE(more, 0) << m_web.error();
      take();
    } while (more > 0);
  }
  // False if the scene must be drawn anew.
  bool update() {
    EXPECT_TRUE(vek0_changes(m_web.get())) << m_web.error();
    const vek0_scene& scene = *vek0_current(m_web.get());
    if (scene.is_stale) return false;
    m_slots.resize(scene.slot_count, {VEK0_OWN_ORDER, false});
    for (std::uint32_t i = 0; i < scene.edit_count; ++i)
      for (std::uint32_t k = 0; k < scene.edits[i].count; ++k)
        m_slots[scene.edits[i].first + k] = {scene.edits[i].order, scene.edits[i].hidden != 0};
    take();
    return true;
  }

  // The visible segments, rounded, in drawing order; with their colors.
  std::multimap<std::uint32_t, std::string> shown() const {
    std::multimap<std::uint32_t, std::string> lines;
    for (const auto& [slot, segments] : m_segments) {
      const auto [order, isHidden] = m_slots[slot];
      if (isHidden) continue;
      for (const auto& [text, style] : segments)
        if (m_styles[style].flags & VEK0_VISIBLE)
          lines.emplace(order == VEK0_OWN_ORDER ? slot : order,
                        text + " " + std::to_string(m_styles[style].red));
    }
    return lines;
  }
  std::vector<std::string> inOrder() const {
    // The order of the shapes of one slot does not matter.
    std::vector<std::string> texts;
    const auto all = shown();
    std::vector<std::pair<std::uint32_t, std::string>> sorted(all.begin(), all.end());
    std::sort(sorted.begin(), sorted.end());
    for (const auto& [order, text] : sorted) texts.push_back(text);
    return texts;
  }
  std::size_t uploaded() const { return m_uploaded; }

 private:
  void take() {
    const vek0_scene& scene = *vek0_current(m_web.get());
    m_slots.resize(scene.slot_count, {VEK0_OWN_ORDER, false});
    m_styles.assign(scene.styles, scene.styles + scene.style_count);
    m_uploaded = 0;
    for (std::uint32_t i = 0; i < scene.batch_count; ++i) {
      const vek0_batch& batch = scene.batches[i];
      m_uploaded += batch.count;
      if (batch.kind != VEK0_SEGMENTS) continue;
      const auto* segments = static_cast<const vek0_segment*>(batch.data);
      for (std::uint32_t k = 0; k < batch.count; ++k) {
        const vek0_segment& s = segments[k];
        char text[100];
        std::snprintf(text, sizeof text, "%.3f,%.3f %.3f,%.3f", batch.x + s.x0, batch.y + s.y0,
                      batch.x + s.x1, batch.y + s.y1);
        m_segments[s.slot].emplace_back(text, s.style);
      }
    }
  }

  struct Slot {
    std::uint32_t order;
    bool isHidden;
  };
  Web& m_web;
  std::map<std::uint32_t, std::vector<std::pair<std::string, std::uint32_t>>> m_segments;
  std::vector<Slot> m_slots;
  std::vector<vek0_style> m_styles;
  std::size_t m_uploaded = 0;
};

constexpr const char* kSamples[] = {"every_kind_r12.dxf", "flange.dxf",      "house.dxf",
                                    "hatches_ac1015.dxf", "room_ac1015.dxf", "site.dxf"};

std::string readSample(const char* name) {
  std::ifstream file(vek0::test::samplePath(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(WebEngine, AnUneditedDrawingIsSavedAsItCame) {
  for (const char* name : kSamples) {
    SCOPED_TRACE(name);
    const std::string bytes = readSample(name);
    Web web;
    ASSERT_TRUE(web.open(bytes)) << web.error();
    Page(web).draw();
    EXPECT_EQ(web.saved("keep"), bytes);
  }
}

TEST(WebEngine, BrokenInputIsAnErrorInOneSentence) {
  Web web;
  EXPECT_FALSE(web.open("nonsense"));
  EXPECT_NE(web.error(), "");
  EXPECT_LT(vek0_layers(web.get()), 0);
  EXPECT_EQ(web.error(), "no drawing is open");
  EXPECT_LT(vek0_scene_step(web.get(), 1), 0);
  ASSERT_TRUE(vek0_new(web.get(), "new"));
  EXPECT_FALSE(vek0_scene_begin(web.get(), 7, 0));
  EXPECT_EQ(web.error(), "no such layout");
  EXPECT_FALSE(vek0_load_glyphs(web.get(), "V0GLYPH1 cut", 12));
  EXPECT_FALSE(vek0_undo(web.get()));
}

// After any edits, undos and redos, what a page shows by updating is what it would show if it drew
// the drawing anew, in the same order.
TEST(WebEngine, UpdatingIsDrawingAnew) {
  Web web;
  ASSERT_TRUE(vek0_new(web.get(), "new"));
  web.mustRun("layer A");
  web.mustRun("line 0,0 10,5");
  Page page(web);
  page.draw();
  const char* const commands[] = {"line 1,1 2,2",
                                  "polyline 0,0 5,0 5,5",
                                  "rectangle 1,1 4,4",
                                  "select all",
                                  "move 3,4",
                                  "set-color 1",
                                  "copy 10,0",
                                  "delete",
                                  "undo",
                                  "select color=1",
                                  "redo",
                                  "scale 2@0,0"};
  std::mt19937 random(4);
  for (int i = 0; i < 500; ++i) {
    const char* command = commands[random() % std::size(commands)];
    SCOPED_TRACE(testing::Message() << "step " << i << ": " << command);
    web.run(command);
    if (i % 7 == 3) vek0_undo(web.get());
    if (i % 11 == 5) vek0_redo(web.get());
    if (i % 13 == 4) EXPECT_TRUE(vek0_layer(web.get(), "A", i % 2, -1, 1 + i % 7)) << web.error();
    if (!page.update()) page.draw();
    if (i % 9 != 8) continue;
    Page fresh(web);
    // Beginning a scene takes the pending changes, of which there are none.
    fresh.draw(0, 3);
    ASSERT_EQ(page.inOrder(), fresh.inOrder());
    page.draw();
  }
}

// Every point of the drawing must be shown where it is: here a tenth of a millimeter wide window in
// a drawing of 10 km, five million units from the origin.
TEST(WebEngine, DeepZoomIsExact) {
  Web web;
  ASSERT_TRUE(vek0_new(web.get(), "new"));
  const double x = 5e6 + 0.123456, y = 5e6 + 0.654321;
  char line[200];
  std::snprintf(line, sizeof line, "line 0,%.7f 10000000,%.7f", y, y);
  web.mustRun(line);
  std::snprintf(line, sizeof line, "circle %.7f,%.7f 3000000", x - 3e6, y);
  web.mustRun(line);
  Page(web).draw();
  ASSERT_TRUE(vek0_window(web.get(), x - 0.05, y - 0.05, x + 0.05, y + 0.05, 1e-5));
  const vek0_scene& scene = *vek0_current(web.get());
  double nearLine = 1, nearCircle = 1;
  for (std::uint32_t i = 0; i < scene.batch_count; ++i) {
    const vek0_batch& batch = scene.batches[i];
    ASSERT_EQ(batch.kind, VEK0_SEGMENTS);
    const auto* segments = static_cast<const vek0_segment*>(batch.data);
    for (std::uint32_t k = 0; k < batch.count; ++k) {
      const double middleX = batch.x + (segments[k].x0 + segments[k].x1) / 2.0;
      const double middleY = batch.y + (segments[k].y0 + segments[k].y1) / 2.0;
      EXPECT_LE(std::fabs(segments[k].x1), 0.0501F);
      if (std::fabs(segments[k].y1 - segments[k].y0) < 1e-9)
        nearLine = std::fabs(middleY - y);
      else
        nearCircle =
            std::min(nearCircle, std::fabs(std::hypot(middleX - (x - 3e6), middleY - y) - 3e6));
    }
  }
  EXPECT_LT(nearLine, 1e-7);
  EXPECT_LT(nearCircle, 1e-5);
}

TEST(WebEngine, SwitchingLayersUploadsNothing) {
  Web web;
  ASSERT_TRUE(vek0_new(web.get(), "new"));
  web.mustRun("layer A");
  web.mustRun("line 0,0 10,5");
  Page page(web);
  page.draw();
  EXPECT_EQ(page.shown().size(), 1U);
  ASSERT_TRUE(vek0_layer(web.get(), "A", 0, -1, -1)) << web.error();
  ASSERT_TRUE(page.update());
  EXPECT_EQ(page.uploaded(), 0U);
  EXPECT_EQ(page.shown().size(), 0U);
  EXPECT_TRUE(web.handles(vek0_pick(web.get(), 4, 2, 0.1)).empty());
  ASSERT_TRUE(vek0_undo(web.get()));
  ASSERT_TRUE(page.update());
  EXPECT_EQ(page.shown().size(), 1U);
  EXPECT_EQ(web.handles(vek0_pick(web.get(), 4, 2, 0.1)).size(), 1U);
}

TEST(WebEngine, Measures) {
  Web web;
  ASSERT_TRUE(vek0_new(web.get(), "new"));
  web.mustRun("circle 5,5 2");
  web.mustRun("rectangle 0,0 4,3");
  Page(web).draw();
  const auto circle = web.handles(vek0_pick(web.get(), 7, 5, 0.01));
  const auto rectangle = web.handles(vek0_pick(web.get(), 0, 1, 0.01));
  ASSERT_EQ(circle.size(), 1U);
  ASSERT_EQ(rectangle.size(), 1U);
  const auto of = [&](const char* what, const std::vector<std::uint64_t>& handles) {
    return web.json(vek0_measure_entities(web.get(), what, handles.data(), handles.size()))
        .get<double>();
  };
  EXPECT_DOUBLE_EQ(of("radius", circle), 2);
  EXPECT_DOUBLE_EQ(of("area", circle), 4 * M_PI);
  EXPECT_DOUBLE_EQ(of("area", rectangle), 12);
  EXPECT_DOUBLE_EQ(of("distance", rectangle), 14);
  const double points[] = {1, 0, 0, 0, 0, 5};
  EXPECT_DOUBLE_EQ(web.json(vek0_measure(web.get(), "angle", points, 3)).get<double>(), 90);
  EXPECT_DOUBLE_EQ(web.json(vek0_measure(web.get(), "area", points, 3)).get<double>(), 2.5);
  EXPECT_LT(vek0_measure(web.get(), "angle", points, 2), 0);
}

}  // namespace
