// Laws of saving a drawing as its source, over the samples and, if there are any, the drawings of
// other programs in the folder that VEK0_CORPUS names.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "dxf/keep/fingerprint.h"
#include "dxf/keep/sourceindex.h"
#include "support/forms.h"
#include "support/kept.h"
#include "support/samples.h"
#include "support/test.h"
#include "vek0core/vek0core.h"

namespace fs = std::filesystem;
using vek0::detail::SourceIndex;
using vek0::detail::SourceText;

namespace {

// A sample in every form of a file.
void addForms(std::vector<Source>& sources, const Source& sample) {
  using namespace vek0::test;
  const auto& [name, text] = sample;
  sources.push_back({name + ", binary", binaryOf(text, true)});
  sources.push_back({name + ", old binary", binaryOf(text, false)});
  sources.push_back({name + ", UTF-16", utf16Of(text, false)});
  sources.push_back({name + ", big-endian UTF-16", utf16Of(text, true)});
  sources.push_back({name + ", CR", withLineEnds(text, "\r")});
  sources.push_back({name + ", CR CR LF", withLineEnds(text, "\r\r\n")});
}

std::vector<Source> drawings() {
  std::vector<Source> sources;
  addDrawings(sources, vek0::test::samplePath());
  for (std::size_t i = 0, count = sources.size(); i < count; ++i)
    addForms(sources, Source(sources[i]));
  if (const char* corpus = std::getenv("VEK0_CORPUS")) addDrawings(sources, corpus);
  return sources;
}

// Whether the extents follow from the geometry alone: those of turned inserts cover the turned box,
// those of hatches their lines, and infinite lines are as long as their direction.
bool hasExactExtents(const CEnt& ent) {
  if (ent.getEntInsert()) return false;
  return ent.getType() != CEntLine::kType ||
         static_cast<const CEntLine&>(ent).getReach() == LineReach::Segment;
}

// What differs between the entities of two models, apart from noise: properties and extents.
std::string difference(const Kept& a, const Kept& b) {
  const std::vector<CEnt*> left = a.model(), right = b.model();
  if (left.size() != right.size())
    return std::to_string(left.size()) + " entities, now " + std::to_string(right.size());
  for (std::size_t i = 0; i < left.size(); ++i) {
    const RECT_3D &l = left[i]->getBdry(), &r = right[i]->getBdry();
    const double size = std::max(
        {1.0, std::fabs(l.min.x), std::fabs(l.min.y), std::fabs(l.max.x), std::fabs(l.max.y)});
    const double away = std::max({std::fabs(l.min.x - r.min.x), std::fabs(l.min.y - r.min.y),
                                  std::fabs(l.max.x - r.max.x), std::fabs(l.max.y - r.max.y)});
    const bool isSame =
        left[i]->getRecord() == right[i]->getRecord() &&
        vek0::detail::printOf(*left[i]).properties == vek0::detail::printOf(*right[i]).properties;
    const bool isPlaced = away <= 1e-6 * size || l.min.x > l.max.x || !hasExactExtents(*left[i]);
    if (isSame && isPlaced) continue;
    std::ostringstream text;
    text << "entity " << i << ", handle " << std::hex << left[i]->GetHandle() << std::dec
         << " of type " << left[i]->getType() << ", record " << nameOf(left[i]->getRecord()) << ": "
         << (isSame ? "" : "other properties ") << away;
    return text.str();
  }
  return {};
}

// Of nine entities each, five are moved, turned, scaled, coloured or deleted, and one is copied.
std::vector<const CEnt*> edit(Kept& kept, CUndoStack& undo) {
  std::vector<const CEnt*> edited;
  CEntMoveVisitor move(PNT_3D(12.5, -3, 0));
  CEntRotateXYVisitor turn = CEntRotateXYVisitor::byDegrees(PNT_3D(5, 5, 0), 30);
  CEntScaleVisitor scale(PNT_3D(1, 2, 0), 2.5);
  std::size_t number = 0;
  undo.begin(u"edit");
  for (CEnt* ent : kept.model()) {
    const std::size_t kind = number++ % 9;
    CEnt* copy = kind == 5 ? undo.copy(*ent) : nullptr;
    if (copy) copy->accept(move);
    if (kind > 4) continue;
    edited.push_back(ent);
    if (kind < 4) undo.keep(*ent);
    if (kind == 0) ent->accept(move);
    if (kind == 1) ent->accept(turn);
    if (kind == 2) ent->accept(scale);
    if (kind == 3) ent->setColor(5);
    if (kind == 4) undo.remove(ent);
  }
  undo.commit();
  return edited;
}

// The records with a handle, as bytes.
std::map<vek0::Handle, std::string> recordsOf(const std::string& bytes) {
  const SourceText text(bytes);
  const SourceIndex index(text);
  std::map<vek0::Handle, std::string> records;
  for (std::size_t i = 0; i < index.entries().size(); ++i)
    if (index[i].handle != 0)
      records[index[i].handle] = bytes.substr(index[i].begin, index.endOf(i) - index[i].begin);
  return records;
}

}  // namespace

TEST(Source, IsReturnedUnlessTheDrawingIsEdited) {
  for (const auto& [name, bytes] : drawings()) {
    Kept kept(bytes);
    if (!kept.isLoaded) continue;
    EXPECT_EQ(kept.saved() == bytes, true) << name;
    CUndoStack undo(*kept.data);
    edit(kept, undo);
    if (undo.getNoUndo() == 0) continue;
    undo.undo();
    EXPECT_EQ(kept.saved() == bytes, true) << name << " after undoing all";
  }
}

TEST(Source, ChangesWhereTheDrawingIsEdited) {
  for (const auto& [name, bytes] : drawings()) {
    SCOPED_TRACE(name);
    Kept kept(bytes);
    if (!kept.isLoaded) continue;
    CUndoStack undo(*kept.data);
    const std::vector<const CEnt*> edited = edit(kept, undo);
    const std::string saved = kept.saved();
    const Kept again(saved);
    ASSERT_TRUE(again.isLoaded);
    EXPECT_EQ(difference(kept, again), "");
    EXPECT_EQ(Kept(saved).saved() == saved, true);
    // Records of other entities stay, apart from pointers to what was deleted.
    const auto before = recordsOf(bytes), after = recordsOf(saved);
    std::set<vek0::Handle> touched;
    std::vector<std::string> deleted;
    for (const CEnt* ent : edited) {
      touched.insert(ent->GetHandle());
      std::ostringstream hex;
      hex << std::uppercase << std::hex << ent->GetHandle();
      if (!ent->isHeld()) deleted.push_back('\n' + hex.str());
    }
    for (const CEnt* ent : kept.model()) {
      const auto was = before.find(ent->GetHandle()), is = after.find(ent->GetHandle());
      if (touched.contains(ent->GetHandle()) || was == before.end()) continue;
      const bool isKept = is != after.end() && is->second == was->second;
      const bool isWatched = was->second.find("{ACAD_REACTORS") != std::string::npos;
      const bool isPointing =
          isWatched || std::any_of(deleted.begin(), deleted.end(), [&](const auto& handle) {
            return was->second.find(handle) != std::string::npos;
          });
      EXPECT_TRUE(isKept || isPointing) << std::hex << ent->GetHandle();
      if (!isKept && !isPointing) break;
    }
  }
}

// Records that no drawing holds name the layer, too.
TEST(Source, FollowsRenamedItems) {
  const std::string bytes = pairsOf(
      "0 SECTION|2 HEADER|9 $ACADVER|1 AC1015|9 $CLAYER|8 wall|0 ENDSEC|0 SECTION|2 TABLES|"
      "0 TABLE|2 LAYER|5 2|70 1|0 LAYER|5 10|2 WALL|70 0|62 3|6 CONTINUOUS|0 ENDTAB|0 ENDSEC|"
      "0 SECTION|2 BLOCKS|0 BLOCK|5 21|8 Wall|2 BOX|70 0|10 0|20 0|3 BOX|1 |0 POINT|5 22|8 0|10 0|"
      "20 0|0 ENDBLK|5 23|8 Wall|0 ENDSEC|0 SECTION|2 ENTITIES|0 LINE|5 30|8 WALL|10 0|20 0|11 1|"
      "21 1|1001 ODD|1003 WALL|0 ODD|5 31|8 wall|0 INSERT|5 32|8 0|2 box|10 0|20 0|0 ENDSEC|0 EOF");
  Kept kept(bytes);
  ASSERT_TRUE(kept.isLoaded);
  getLayer(*kept.data, u"WALL")->setName(u"FACADE");
  kept.data->getBlockTable().get(u"BOX")->setName(u"CRATE");
  std::string expected = bytes;
  for (const char* name : {"WALL", "Wall", "wall", "BOX", "box"})
    for (std::size_t at; (at = expected.find(name)) != std::string::npos;)
      expected.replace(at, std::string_view(name).size(),
                       std::string_view(name).size() == 4 ? "FACADE" : "CRATE");
  EXPECT_EQ(kept.saved(), expected);
}

TEST(Source, IsCarriedOverToOtherVersions) {
  for (const auto& [name, bytes] : drawings()) {
    SCOPED_TRACE(name);
    const Kept kept(bytes);
    if (!kept.isLoaded || !kept.source.isComplete()) continue;
    for (const DxfVersion version : {DxfVersion::R2000, DxfVersion::R2018}) {
      SCOPED_TRACE(nameOf(version));
      CFileMemory file(u"out", IFile::kWrite);
      CFileReport report;
      ASSERT_EQ(kept.source.saveAs(*kept.data, file, version, &report), CDXFSource::Outcome::Saved);
      const Kept again(file.bytes());
      ASSERT_TRUE(again.isLoaded);
      EXPECT_NE(file.bytes().find(nameOf(version)), std::string::npos);
      // Colors, transparency and solids are the table's; everything else is equal.
      if (report.count(ReportCode::NotInVersion) == 0) EXPECT_EQ(difference(kept, again), "");
      CFileMemory twice(u"twice", IFile::kWrite);
      ASSERT_EQ(again.source.saveAs(*again.data, twice, version), CDXFSource::Outcome::Saved);
      EXPECT_TRUE(twice.bytes() == file.bytes());
    }
  }
}
