#include "vek0host/merging.h"

#include "vek0host/comparisontext.h"
#include "vek0host/editing.h"
#include "vek0host/losslog.h"
#include "vek0host/parts.h"
#include "vek0host/reports.h"
#include "vek0host/saving.h"
#include "vek0host/units.h"
#include "vek0host/visibletext.h"

namespace vek0::host {
namespace {

constexpr const char* kTableNames[] = {"layer", "linetype", "text style", "block"};

std::string titleOf(const IMPORT_ITEM& item) {
  return kTableNames[static_cast<int>(item.table)] + std::string(" ") + visible(item.name);
}

// "layer WALL differs (color 1 -> 3): renamed to WALL_1".
std::string sentenceOf(const IMPORT_ITEM& item, bool isAllowed) {
  std::string text = titleOf(item);
  if (item.isConflict()) text += " differs (" + changesInWords(item.values) + ")";
  if (!isAllowed) return text;
  switch (item.fate) {
    case IMPORT_ITEM::Fate::Kept:
      return text + ": that of the base is kept";
    case IMPORT_ITEM::Fate::Replaces:
      return text + ": that of the base is replaced";
    case IMPORT_ITEM::Fate::Renamed:
      break;
  }
  return text + ": renamed to " + visible(item.newName);
}

class Merger {
 public:
  Merger(CData& base, const std::string& path, const MergeOptions& options, Session& session,
         MergeAccount& account)
      : m_base(base), m_path(path), m_options(options), m_session(session), m_account(account) {}

  bool run() {
    // Importing modifies the drawing, so a damaged file would leave half of its content behind: it
    // is first read into a separate drawing, in the form of the base, for comparison.
    const Drawing trial = newDrawing();
    Session quiet = m_session;
    quiet.log = nullptr;
    quiet.reading.wholeRecords |= m_session.keepsSource;
    const ReadResult result = loadFile(*trial, m_path, quiet);
    if (!result.ok()) {
      logFailure(result);
      m_session.fail(kDrawingFailed, m_path + ": " + result.message() + " The file is skipped.");
      return true;
    }
    m_factor = factorOf(result);
    if (m_factor != 1) scaleParts(*trial, PartsMark().since(*trial), m_factor);
    const IMPORT_POLICY policy{m_options.onConflict, zim::WString::fromUtf8(m_options.prefix)};
    const CImportPlan plan(m_base, *trial, policy, &result.report);
    if (m_options.failsOnConflict && plan.hasConflicts()) return refuse(plan);
    import(plan);
    return true;
  }

 private:
  void logFailure(const ReadResult& result) const {
    if (!m_session.log) return;
    m_session.log->begin(m_path);
    m_session.log->addFailure(LossLog::Read, result.kind(), result.message());
  }

  double factorOf(const ReadResult& result) {
    const char* from = unitName(result.outcome.units);
    const char* to = unitName(m_base.getVars().getUnits());
    if (!m_options.scalesUnits || !from || !to) return 1;
    const double factor = unitInMeters(from).value_or(1) / unitInMeters(to).value_or(1);
    if (factor == 1) return 1;
    tell("scaled by " + toLine(Json(factor)) + " from " + from + " to " + to);
    return factor;
  }

  bool refuse(const CImportPlan& plan) const {
    std::string names, details;
    for (const IMPORT_ITEM& item : plan.items()) {
      if (!item.isConflict()) continue;
      names += (names.empty() ? "" : ", ") + titleOf(item);
      details += "    " + sentenceOf(item, false) + "\n";
    }
    if (m_session.log) {
      m_session.log->begin(m_path);
      m_session.log->addFailure(LossLog::Read, "conflict",
                                "the base has other definitions of " + names);
    }
    m_session.complain(m_path + ": the base has other definitions:", details);
    m_session.failed(kDrawingFailed);
    return false;
  }

  void import(const CImportPlan& plan) {
    const PartsMark mark(m_base);
    // What is not read of an imported file is lost, even if the base is kept.
    Session losing = m_session;
    losing.keepsSource = false;
    ReadResult result = importFile(m_base, m_path, plan, losing);
    for (const IMPORT_ITEM& item : plan.items()) tell(sentenceOf(item, true));
    Parts parts = mark.since(m_base);
    tell("added " + counted(parts.layers.size(), "layer", "layers") + ", " +
         counted(parts.ltypes.size(), "linetype", "linetypes") + ", " +
         counted(parts.styles.size(), "text style", "text styles") + ", " +
         counted(namedBlocks(parts), "block", "blocks") + " and " +
         countedEntities(parts.entities.size()));
    addReplaced(plan, parts);
    if (m_factor != 1) scaleParts(m_base, parts, m_factor);
    if (m_options.at) place(parts, result.outcome.insertionBase);
    warnOfLosses(m_path, result, m_session);
    if (!result.ok()) m_session.fail(kDrawingFailed, m_path + ": " + result.message());
  }

  static std::size_t namedBlocks(const Parts& parts) {
    std::size_t count = 0;
    for (const CBlock* block : parts.blocks) count += block->getName()[0] != u'*';
    return count;
  }

  void addReplaced(const CImportPlan& plan, Parts& parts) const {
    for (const IMPORT_ITEM& item : plan.items()) {
      if (item.fate != IMPORT_ITEM::Fate::Replaces) continue;
      if (item.table == ItemTable::Styles) parts.styles.push_back(getStyle(m_base, item.newName));
      if (item.table == ItemTable::Blocks)
        parts.blocks.push_back(m_base.getBlockTable().get(item.newName));
    }
  }

  void place(const Parts& parts, const PNT_3D& base) const {
    const PNT_3D scaled(base.x * m_factor, base.y * m_factor, base.z * m_factor);
    CEntMoveVisitor mover(*m_options.at - scaled);
    for (CEnt* ent : parts.entities) ent->accept(mover);
    m_base.getEntTable().invalidateBdry();
  }

  void tell(const std::string& sentence) { m_account.push_back(m_path + ": " + sentence); }

  CData& m_base;
  const std::string& m_path;
  const MergeOptions& m_options;
  Session& m_session;
  MergeAccount& m_account;
  double m_factor = 1;
};

}  // namespace

bool mergeFile(CData& base, const std::string& path, const MergeOptions& options, Session& session,
               MergeAccount& account) {
  return Merger(base, path, options, session, account).run();
}

}  // namespace vek0::host
