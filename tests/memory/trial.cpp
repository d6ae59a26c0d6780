#include "memory/trial.h"
#include "memory/failingnew.h"
#include "support/test.h"

namespace vek0::test {
namespace {

bool tried(Trial& trial) try { return trial.run(); } catch (const std::bad_alloc&) {
  return false;
}

std::string briefly(const std::string& text, const std::string& other) {
  const auto ends = std::mismatch(text.begin(), text.end(), other.begin(), other.end());
  const auto at = static_cast<std::size_t>(ends.first - text.begin());
  return text.substr(at > 60 ? at - 60 : 0, 160);
}

// Result of the call when memory suffices.
struct Expected {
  std::string before, after;
  long allocations = 0;
};

Expected runFreely(const TrialMaker& make) {
  Expected expected;
  const std::unique_ptr<Trial> trial = make();
  expected.before = trial->look();
  FailingNew::arm(-1, false);
  EXPECT_TRUE(tried(*trial));
  FailingNew::disarm();
  expected.allocations = FailingNew::count();
  expected.after = trial->look();
  return expected;
}

std::string difference(Trial& trial, const std::string& expected, const char* when) {
  const std::string look = trial.look();
  if (look == expected) return {};
  return std::string(when) + ": " + briefly(look, expected) + "\n... instead of\n" +
         briefly(expected, look);
}

// Describes the violation, if any.
std::string failAt(long point, bool forever, const TrialMaker& make, const Expected& expected) {
  const std::unique_ptr<Trial> trial = make();
  FailingNew::arm(point, forever);
  const bool done = tried(*trial);
  FailingNew::disarm();
  if (done) return difference(*trial, expected.after, "what was done differs");
  std::string fault = difference(*trial, expected.before, "changed by a call that failed");
  if (!fault.empty()) return fault;
  if (!tried(*trial)) return "fails later too";
  return difference(*trial, expected.after, "what was done after a failure differs");
}

}  // namespace

Drawing loadedSample(const std::string& name) {
  Drawing data = newDrawing();
  CFileStdLib file(zim::WString::fromUtf8(samplePath(name)), IFile::kRead);
  CFileDXFIOptions options;
  options.policy = CFileDXFIPolicy::forAnyFile();
  EXPECT_EQ(loadDXF(*data, file, nullptr, options).status, CFileDXFIResult::Done);
  return data;
}

std::string lookOf(const CData& data) {
  std::string look = saved(data) + countsOf(data);
  const auto note = [&look](const char* what, long value) {
    look.append(what).append(" ").append(std::to_string(value)).append(" ");
  };
  for (int i = 0; i < data.getBlockTable().size(); ++i) {
    const CBlock& block = *data.getBlockTable()[i];
    look.append(block.getName().toUtf8()).append(":");
    for (const CBlock* inner : data.getBlockTable().getBlockGraph().getEdges(block))
      look.append(" ").append(inner->getName().toUtf8());
    note(", users", static_cast<long>(data.getBlockTable().getBlockGraph().getNoUsers(block)));
  }
  note("in graph", static_cast<long>(data.getBlockTable().getBlockGraph().size()));
  for (int i = 0; i < data.getBlockXRefTable().size(); ++i) {
    const CBlockXRef& xref = *data.getBlockXRefTable()[i];
    look += xref.getName().toUtf8() + " " + xref.getFile().toUtf8() + " ";
    note("status", static_cast<long>(xref.getStatus()));
    note("shows", xref.getShows());
    note("content", static_cast<long>(xref.size() + xref.getBlocks().size()));
    note("layers", xref.getLayerTable().size());
    note("linetypes", xref.getLtypeTable().size());
    note("styles", xref.getStyleTable().size());
    note("uses", data.getDepend().getCount(&xref));
  }
  note("selected", static_cast<long>(data.getEntTable().getSelectedEntityTbl().size()));
  const RECT_3D& box = data.getEntTable().getBdry();
  look += box.validRegion() ? std::to_string(box.min.x) + " " + std::to_string(box.max.y) : "none";
  return look;
}

void failEachAllocation(const std::string& name, const TrialMaker& make) {
  constexpr long kMostPoints = 8;  // per call and mode, unless all are to be tried
  const bool all = std::getenv("VEK0_EVERY_ALLOCATION") != nullptr;
  const Expected expected = runFreely(make);
  const long step = all ? 1 : std::max(1L, expected.allocations / kMostPoints);
  long tries = 0, faults = 0;
  std::string first;
  for (const bool forever : {false, true}) {
    for (long point = 0; point < expected.allocations; point += step, ++tries) {
      const long before = FailingNew::living();
      std::string fault = failAt(point, forever, make, expected);
      const long leaked = FailingNew::living() - before;
      if (fault.empty() && leaked != 0) fault = std::to_string(leaked) + " allocations leaked";
      if (fault.empty()) continue;
      if (faults++ == 0) first = std::to_string(point) + (forever ? " and on: " : ": ") + fault;
    }
  }
  EXPECT_EQ(faults, 0) << name << ": " << faults << " of " << tries << " points in "
                       << expected.allocations << " allocations; allocation " << first;
}

}  // namespace vek0::test
