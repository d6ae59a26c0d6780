#include "dxf/keep/recordtransform.h"

#include <cmath>
#include <fstream>
#include <sstream>

#include "dxf/keep/measuredmap.h"
#include "files/number.h"
#include "support/samples.h"
#include "support/test.h"

namespace {

using vek0::detail::parseDouble;
using vek0::detail::simplified;
using vek0::detail::SourcePair;
using vek0::detail::SourceRecord;
using vek0::detail::SpaceMap;
using vek0::detail::transformRecords;
using Records = std::vector<SourceRecord>;

SpaceMap similarMap(double degrees, double scale, const PNT_3D& move) {
  const double a = degrees * std::numbers::pi / 180, c = scale * std::cos(a),
               s = scale * std::sin(a);
  return {{c, s, 0}, {-s, c, 0}, {0, 0, scale}, move};
}

SpaceMap mapOf(std::string_view name) {
  if (name == "move") return similarMap(0, 1, {1, 2, 0});
  if (name == "raise") return similarMap(0, 1, {0, 0, 3});
  if (name == "quarter") return similarMap(90, 1, {0, 0, 0});
  if (name == "double") return similarMap(0, 2, {0, 0, 0});
  if (name == "mirror") return {{-1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}};
  if (name == "flip") return {{1, 0, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, 0}};
  if (name == "tip") return {{1, 0, 0}, {0, 0, 1}, {0, -1, 0}, {0, 0, 0}};
  return {{2, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}};  // stretch
}

void add(Records& records, long code, std::string value) {
  if (code == 0) records.emplace_back();
  records.back().pairs.push_back({code, std::move(value)});
}

// Pairs such as "10 1|20 2".
Records recordsOf(const std::vector<std::string>& pairs) {
  Records records;
  for (const std::string& pair : pairs) {
    const std::size_t blank = pair.find(' ');
    add(records, std::stol(pair), blank == std::string::npos ? "" : pair.substr(blank + 1));
  }
  return records;
}

// The entities of a file, each with its vertices or attributes.
std::vector<Records> entitiesOf(const std::string& path) {
  std::ifstream file(path);
  std::vector<Records> entities;
  std::string code, value;
  bool isEntity = false;
  while (std::getline(file, code) && std::getline(file, value)) {
    if (code.back() == '\r') code.pop_back();
    if (!value.empty() && value.back() == '\r') value.pop_back();
    const bool isPart = value == "VERTEX" || value == "ATTRIB" || value == "SEQEND";
    if (std::stol(code) == 2 && value == "ENTITIES") isEntity = true;
    if (std::stol(code) == 0 && !isPart) entities.emplace_back();
    if (isEntity && (std::stol(code) == 0 || !entities.back().empty()))
      add(entities.back(), std::stol(code), value);
  }
  std::erase_if(entities, [](const Records& r) { return r.empty(); });
  return entities;
}

std::string textOf(const SourcePair& pair) { return std::to_string(pair.code) + " " + pair.value; }

std::string changesOf(const Records& records) {
  std::string changes;
  for (const SourceRecord& record : records)
    for (const SourcePair& pair : record.pairs)
      if (pair.isChanged) changes += (changes.empty() ? "" : "|") + textOf(pair);
  return changes;
}

// Texts with heights are divided differently afterwards.
bool isNumber(long code) { return code >= 10 && code < 300; }

// Angles can differ by whole turns.
double differenceOf(long code, double a, double b) {
  const bool isAngle = code >= 50 && code <= 53;
  return isAngle ? std::remainder(a - b, 360) : a - b;
}

// Inserted pairs whose value is that of missing ones.
bool isDefault(long code, double value) {
  const bool isOne = code == 230 || code == 211 || (code >= 41 && code <= 43);
  return std::fabs(differenceOf(code, value, isOne ? 1 : 0)) < 1e-9;
}

void expectSame(const Records& before, const Records& after) {
  for (std::size_t r = 0; r < before.size(); ++r) {
    std::size_t next = 0;
    for (const SourcePair& pair : after[r].pairs) {
      const double value = parseDouble(pair.value).value;
      if (pair.line == 0) {
        EXPECT_TRUE(isDefault(pair.code, value)) << before[r].kind() << ": " << textOf(pair);
        continue;
      }
      const SourcePair& old = before[r].pairs.at(next++);
      ASSERT_EQ(pair.code, old.code);
      if (!isNumber(pair.code)) continue;
      const double was = parseDouble(old.value).value;
      EXPECT_NEAR(differenceOf(pair.code, value, was), 0, 1e-9 * (1 + std::fabs(was)))
          << before[r].kind() << ": " << textOf(old) << ", now " << pair.value;
    }
    EXPECT_EQ(next, before[r].pairs.size()) << before[r].kind();
  }
}

// There and back; refusing both ways leaves everything as it is.
void expectReversible(Records records) {
  for (SourceRecord& record : records)
    for (SourcePair& pair : record.pairs) pair.line = 1;
  const Records before = records;
  const SpaceMap there = similarMap(33, 2.5, {7, -4, 0}), back = similarMap(-33, 0.4, {0, 0, 0});
  if (!transformRecords(records, there)) return expectSame(before, records);
  SpaceMap home = back;
  home.origin = -back.along(there.origin);
  EXPECT_TRUE(transformRecords(records, home));
  expectSame(before, records);
}

}  // namespace

TEST(RecordTransform, ChangesWhatTheMapConcerns) {
  for (const Row& t : rows()) {
    Records records = recordsOf(t.list("record"));
    const bool isDone = transformRecords(records, mapOf(t.text("map")));
    EXPECT_EQ(isDone ? changesOf(records) : "refused", t.text("changes"));
    if (!isDone) EXPECT_EQ(changesOf(records), "");
  }
}

TEST(RecordTransform, IsReversible) {
  for (const Row& t : rowsOf("RecordTransform.ChangesWhatTheMapConcerns"))
    expectReversible(recordsOf(t.list("record")));
  for (const char* name : {"every_kind_r12.dxf", "hatches_ac1015.dxf", "room_ac1015.dxf"})
    for (const Records& entity : entitiesOf(vek0::test::samplePath(name))) expectReversible(entity);
}

// What is known of a map from far points.
TEST(RecordTransform, FindsWhatNoisyMapsMean) {
  SpaceMap map = similarMap(30, 1, {0, 0, 0});
  map.x.x += 3e-10;
  map.y.y -= 4e-10;
  Records records = recordsOf({"0 TEXT", "10 0", "20 0", "40 0.1", "50 1.5"});
  EXPECT_TRUE(transformRecords(records, simplified(map, 1e-9)));
  EXPECT_EQ(changesOf(records), "50 31.5");
}

TEST(RecordTransform, KeepsRecordsWithNumbersThatAreNotFinite) {
  for (const char* value : {"nan", "1e999", "-inf", "1e308"}) {
    Records records = recordsOf({"0 LINE", "10 1", "20 2", std::string("11 ") + value, "21 0"});
    EXPECT_FALSE(transformRecords(records, similarMap(0, 1e10, {0, 0, 0}))) << value;
    EXPECT_EQ(changesOf(records), "");
  }
}
