// Resolves references breadth first: each job reads one file, adopts its content and schedules the
// references nested in it, so that references of the drawing itself get their names before nested
// ones. Every change is recorded in the journal, which reverts all of them if memory runs out.
// Different files may use one name for different drawings; `Namesakes` maps names, numbered where
// necessary, to files and base points, so that every file and the next run find the same reference
// again.
#include <algorithm>
#include <deque>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "entities/blocks/hatchblock.h"
#include "tables/itemflags.h"
#include "vek0core/drawing/datafactory.h"
#include "vek0core/drawing/functions.h"
#include "vek0core/dxf/in/filedxfierror.h"
#include "vek0core/entities/blocks/block.h"
#include "vek0core/entities/blocks/blockfactory.h"
#include "vek0core/entities/blocks/enthatch.h"
#include "vek0core/files/file.h"
#include "vek0core/files/report.h"
#include "vek0core/xref/xrefresolver.h"
#include "vek0core/xref/xrefs.h"
#include "xref/filegraph.h"
#include "xref/xrefcontent.h"
#include "xref/xrefjournal.h"

namespace {

using Fault = std::optional<ReportCode>;
using Found = IXRefResolver::Found;
using Status = CBlockXRef::Status;
using vek0::detail::FileGraph;
using vek0::detail::kDependent;
using vek0::detail::XRefContent;

constexpr int kReadings = 3;  // attempts to read a file that is being written

// A drawing can expand to many times its size: by names that repeatedly lead to one file, and by
// files with many hatches.
constexpr long kMostRepeated = 4000000;  // entities of files that were read before
// As shares of the limit for one hatch of the drawing: the hatches of all files together, and those
// of files that were read before. Each file has its own limit besides.
constexpr double kHatchShares = 5, kRepeatedHatchShares = 0.3;

long countEntities(const CData& drawing) {
  auto count = static_cast<long>(drawing.getEntTable().getEntityTbl().size());
  for (int i = 0; i < drawing.getBlockTable().size(); ++i)
    count += static_cast<long>(drawing.getBlockTable()[i]->size());
  return count;
}

double countHatchLines(const CData& drawing) {
  double count = 0;
  for (int i = 0; i < drawing.getBlockTable().size(); ++i) {
    const CBlock& block = *drawing.getBlockTable()[i];
    if (isHatchName(block.getName())) count += static_cast<double>(block.size());
  }
  return count;
}

class Resolving {
 public:
  Resolving(CData& data, IXRefResolver& resolver, const CXRefOptions& options)
      : m_data(data), m_resolver(resolver), m_options(options) {
    // A reference shows model space only.
    m_options.reading.policy.paperSpace = m_options.reading.policy.layouts = false;
  }

  void resolveAll() {
    const std::vector<CBlockXRef*> xrefs = listed();
    // References that the drawing itself inserts get their names first; the others are shown by
    // nothing, unless by one of these.
    for (CBlockXRef* xref : xrefs)
      if (xref->getEntities() > 0) schedule(*xref);
    run();
    for (CBlockXRef* xref : xrefs)
      if (!isKnown(*xref)) schedule(*xref);
    run();
    settle();
  }

  void resolveOne(CBlockXRef& one) {
    const std::unordered_set<const CBlockXRef*> anew = shownBy(one);
    for (CBlockXRef* xref : listed())
      // References that stay take part in the search for circles, and keep their items.
      if (anew.count(xref) == 0) noteStaying(*xref);
    schedule(one);
    run();
    settle();
  }

 private:
  struct Place {
    Found found;
    zim::WString file;
  };
  struct Job {
    CBlockXRef* xref;
    Place place;
  };

  std::vector<CBlockXRef*> listed() const {
    std::vector<CBlockXRef*> xrefs;
    const CBlockXRefTable& table = m_data.getBlockXRefTable();
    xrefs.reserve(static_cast<std::size_t>(table.size()));
    for (int i = 0; i < table.size(); ++i) xrefs.push_back(table[i]);
    return xrefs;
  }

  void noteStaying(CBlockXRef& xref) {
    for (const CBlockXRef* nested : xref.getNested())
      m_graph.add(xref.getFile(), nested->getFile());
    if (!xref.getNested().empty()) vek0::detail::noteItems(xref, m_present);
  }

  // The reference and everything that it shows.
  static std::unordered_set<const CBlockXRef*> shownBy(const CBlockXRef& xref) {
    std::unordered_set<const CBlockXRef*> shown{&xref};
    std::vector<const CBlockXRef*> open{&xref};
    while (!open.empty()) {
      const CBlockXRef* top = open.back();
      open.pop_back();
      for (const CBlockXRef* nested : top->getNested())
        if (shown.insert(nested).second) open.push_back(nested);
    }
    return shown;
  }

  bool isKnown(const CBlockXRef& xref) const { return m_files.count(&xref) != 0; }

  Place find(const zim::WString& path, const zim::WString& from) {
    Place place{Found::Missing, {}};
    place.found = m_resolver.find(path, from, place.file);
    return place;
  }

  void schedule(CBlockXRef& xref) { schedule(xref, find(xref.getPath(), m_options.drawing)); }

  void schedule(CBlockXRef& xref, Place place) {
    // Each reference is read once, however many drawings show it.
    if (m_files.emplace(&xref, place.file).second) m_jobs.push_back({&xref, std::move(place)});
  }

  void run() {
    for (; !m_jobs.empty() && !m_isCancelled; m_jobs.pop_front()) {
      const Job& job = m_jobs.front();
      m_journal.keep(*job.xref);
      job.xref->setFile(job.place.file);
      if (const Fault fault = resolve(job)) note(*fault, *job.xref, {});
      // A reference that cannot be read shows nothing, rather than outdated content.
      if (job.xref->getStatus() != Status::loaded) m_journal.setContent(*job.xref, {{}, {}});
    }
  }

  // Sets the status.
  Fault resolve(const Job& job) {
    CBlockXRef& xref = *job.xref;
    // The default for all failures but the ones below.
    if (job.place.found != Found::Yes) xref.setStatus(Status::refused);
    switch (job.place.found) {
      case Found::Missing:
        xref.setStatus(Status::missing);
        return ReportCode::ReferenceMissing;
      case Found::NotAFile:
        return ReportCode::ReferenceNoFile;
      case Found::Forbidden:
        return ReportCode::ReferenceForbidden;
      case Found::Yes:
        break;
    }
    // The drawing would contain itself.
    if (job.place.file == m_options.drawing) {
      xref.setStatus(Status::refused);
      return ReportCode::ReferenceCircular;
    }
    const Fault fault = isRepeated(job.place.file) ? ReportCode::ReferenceRepeated : read(job);
    if (fault) xref.setStatus(Status::broken);
    return fault;
  }

  // Whether reading the file again would exceed the limit.
  bool isRepeated(const zim::WString& file) {
    const auto known = m_sizes.find(file);
    if (known == m_sizes.end()) return false;
    if (known->second > m_repeatsLeft) return true;
    // Charged in advance: the entities are known from the first reading.
    m_repeatsLeft -= known->second;
    return false;
  }

  double& hatchLinesLeft(const zim::WString& file) {
    return m_sizes.count(file) != 0 ? m_repeatedHatchLinesLeft : m_hatchLinesLeft;
  }

  // No fault if canceled, which changes nothing.
  Fault read(const Job& job) {
    for (int reading = 0; reading < kReadings; ++reading) {
      // The state is taken before opening, so that a change during reading is noticed.
      const zim::WString state = m_resolver.getState(job.place.file);
      const CDataPtr drawing(CDataFactory().createData());
      const std::unique_ptr<IFile> file = m_resolver.open(job.place.file);
      if (!drawing) throw std::bad_alloc();
      if (!file) return ReportCode::ReferenceBroken;
      drawing->setHatchLimit(std::min(
          m_data.getHatchLimit(), hatchLinesLeft(job.place.file) / vek0::detail::kHatchesShare));
      CFileReport report;
      m_options.reading.report = &report;
      CFileDXFIError error;
      const CFileDXFIResult result = loadDXF(*drawing, *file, &error, m_options.reading);
      if (error.GetErrorType() == CFileDXFIError::GeneralError) throw std::bad_alloc();
      // The file changed while it was read, so it may be inconsistent.
      if (m_resolver.getState(job.place.file) != state) continue;
      if (m_options.onRead) m_options.onRead(*job.xref, result, report);
      m_isCancelled = result.status == CFileDXFIResult::Cancelled;
      if (result.status == CFileDXFIResult::Done) take(job, result, *drawing);
      if (m_isCancelled || result.status == CFileDXFIResult::Done) return std::nullopt;
      return ReportCode::ReferenceBroken;
    }
    return ReportCode::ReferenceChanging;
  }

  void take(const Job& job, const CFileDXFIResult& result, const CData& drawing) {
    XRefContent content(m_data, *job.xref, drawing, m_present, m_journal);
    const CBlockXRefTable& nested = drawing.getBlockXRefTable();
    for (int i = 0; i < nested.size(); ++i)
      content.stand(*nested[i], isShown(*nested[i], job) ? standIn(*nested[i], job) : nullptr);
    content.adopt();
    m_read.push_back(job.xref);
    double& linesLeft = hatchLinesLeft(job.place.file);
    linesLeft = std::max(0.0, linesLeft - countHatchLines(drawing));
    m_sizes[job.place.file] = countEntities(drawing);
    job.xref->setOwnBase(result.insertionBase);
    job.xref->setStatus(Status::loaded);
  }

  bool isShown(const CBlockXRef& nested, const Job& job) {
    if (nested.getEntities() <= 0) return false;
    // Overlays are shown in the drawing that attaches them, but not further up.
    if (nested.isOverlay()) note(ReportCode::ReferenceOverlaid, nested, job.xref->getName());
    return !nested.isOverlay();
  }

  // The drawing's counterpart of a nested reference; null if it would close a cycle or be nested
  // too deeply.
  CBlockXRef* standIn(const CBlockXRef& nested, const Job& job) {
    Place place = find(nested.getPath(), job.place.file);
    Fault fault;
    if (place.found == Found::Yes)
      // The graph also contains references that other drawings state.
      fault = place.file == m_options.drawing ? ReportCode::ReferenceCircular
                                              : m_graph.add(job.place.file, place.file);
    if (fault) {
      note(*fault, nested, job.xref->getName());
      return nullptr;
    }
    CBlockXRef& xref = named(nested, place, job);
    schedule(xref, std::move(place));
    return &xref;
  }

  // References with the same name, followed by a number where several drawings use the name for
  // different files. Those resolved in this run are found by their key; the others are searched
  // linearly.
  struct Namesakes {
    using Key = std::tuple<zim::WString, double, double, double>;  // file or path, base point
    std::vector<CBlockXRef*> all;  // by number; null where a block has the name
    std::map<std::size_t, CBlockXRef*> unmet;
    std::map<Key, std::size_t> byFile, byPath;  // of those resolved, by path if no file was found
  };

  // The reference to that file with this name, or with the name and a number if another file has
  // the name.
  CBlockXRef& named(const CBlockXRef& nested, const Place& place, const Job& job) {
    Namesakes& namesakes = m_namesakes[nested.getName()];
    const zim::WString name = firstFree(namesakes, nested.getName());
    if (CBlockXRef* xref = findAmong(namesakes, nested, place, job)) return *xref;
    if (name != nested.getName()) note(ReportCode::ReferenceRenamed, nested, job.xref->getName());
    return *m_journal.add(m_data.getBlockXRefTable(),
                          m_data.getBlockFactory().createXRef(
                              m_data.getLtypeContinuous(), m_data.getLtypeByLayer(),
                              m_data.getLtypeByBlock(), m_data.getLayer0(), name, nested.getPath(),
                              nested.getPnt(), nested.getFlags() | kDependent));
  }

  // The first unused name; those before it are recorded.
  zim::WString firstFree(Namesakes& namesakes, const zim::WString& base) const {
    for (;;) {
      const std::size_t n = namesakes.all.size();
      zim::WString name = n == 0 ? base : base + u"$" + zim::WString::fromUtf8(std::to_string(n));
      CBlockXRef* xref = m_data.getBlockXRefTable().get(name);
      // A block with the name makes it unavailable, too.
      if (xref == nullptr && m_data.getBlockTable().get(name) == nullptr) return name;
      if (xref != nullptr) namesakes.unmet.emplace(n, xref);
      namesakes.all.push_back(xref);
    }
  }

  // The first of them that matches `nested` of the job's drawing; null if there is none.
  CBlockXRef* findAmong(Namesakes& namesakes, const CBlockXRef& nested, const Place& place,
                        const Job& job) {
    const std::size_t met = std::min(numberIn(namesakes.byFile, place.file, nested),
                                     numberIn(namesakes.byPath, nested.getPath(), nested));
    // Earlier numbers win over the one found by key, so that results do not depend on the order.
    for (auto it = namesakes.unmet.begin(); it != namesakes.unmet.end() && it->first < met;) {
      const auto [number, xref] = *it;
      if (isFor(*xref, nested, place, job)) return xref;
      ++it;
      if (!isKnown(*xref)) continue;
      // Resolved meanwhile: from now on it is found by its key.
      meet(namesakes, number, *xref);
      namesakes.unmet.erase(number);
    }
    return met < namesakes.all.size() ? namesakes.all[met] : nullptr;
  }

  static Namesakes::Key keyOf(const zim::WString& text, const PNT_3D& base) {
    return {text, base.x, base.y, base.z};
  }

  static std::size_t numberIn(const std::map<Namesakes::Key, std::size_t>& met,
                              const zim::WString& text, const CBlockXRef& nested) {
    const auto at = met.find(keyOf(text, nested.getPnt()));
    return at != met.end() ? at->second : static_cast<std::size_t>(-1);
  }

  void meet(Namesakes& namesakes, std::size_t number, const CBlockXRef& xref) const {
    const zim::WString& file = m_files.at(&xref);
    auto& met = file.empty() ? namesakes.byPath : namesakes.byFile;
    const auto at =
        met.try_emplace(keyOf(file.empty() ? xref.getPath() : file, xref.getPnt()), number).first;
    at->second = std::min(at->second, number);
  }

  // Whether a reference of the drawing matches `nested` of the job's drawing. One that was shown
  // only by an earlier reading of that drawing is reused for it.
  bool isFor(CBlockXRef& xref, const CBlockXRef& nested, const Place& place, const Job& job) {
    const auto known = m_files.find(&xref);
    const zim::WString& file = known != m_files.end() ? known->second : xref.getFile();
    const bool isTaken = known != m_files.end() || xref.getEntities() > 0;
    if (xref.getPnt() == nested.getPnt()) {
      if (!file.empty() && file == place.file) return true;
      // While no file is known, the same path means the same reference.
      if (xref.getPath() == nested.getPath() && (!isTaken || file.empty())) return true;
    }
    // A reference that only this file used can be reassigned to the new path.
    if (isTaken || !isFree(xref, *job.xref)) return false;
    m_journal.keep(xref);
    m_data.getBlockFactory().initXRef(xref, nested.getPath(), nested.getPnt(), xref.getFlags());
    return true;
  }

  // Whether only this reader shows the reference, and the drawing has it only because of a reader.
  static bool isFree(const CBlockXRef& xref, const CBlockXRef& reader) {
    if ((xref.getFlags() & kDependent) == 0) return false;
    const std::vector<CBlockXRef*>& shown = reader.getNested();
    return xref.getShows() == std::count(shown.begin(), shown.end(), &xref);
  }

  // `reader`: name of the reference whose drawing has this one; empty for the drawing.
  void note(ReportCode code, const CBlockXRef& xref, const zim::WString& reader) {
    if (!m_options.report) return;
    const zim::WString prefix = reader.empty() ? reader : reader + u"|";
    m_options.report->add(code, 0, prefix + xref.getName() + u": " + xref.getPath());
  }

  // Changes may affect any block. Nothing is removed if reading was canceled: content that was not
  // reloaded may use it.
  void settle() {
    for (CBlockXRef* xref : m_read) xref->reserveRetired();
    m_journal.done();  // nothing below needs memory
    for (CBlockXRef* xref : m_read)
      if (!m_isCancelled) vek0::detail::retireOthers(m_data, *xref, m_present);
    // Extents of blocks and inserts depend on the content that was exchanged.
    const CBlockXRefTable& xrefs = m_data.getBlockXRefTable();
    for (int i = 0; i < xrefs.size(); ++i) {
      for (const auto& block : xrefs[i]->getBlocks()) block->invalidateBdry();
      xrefs[i]->invalidateBdry();
    }
    m_data.getBlockTable().recalcBdry();
    for (CEnt* ent : m_data.getEntTable().getEntityTbl())
      if (ent->getEntInsert() != nullptr) ent->invalidateBdry();
    m_data.getEntTable().invalidateBdry();
  }

  CData& m_data;
  IXRefResolver& m_resolver;
  CXRefOptions m_options;
  vek0::detail::XRefJournal m_journal;
  FileGraph m_graph;
  std::deque<Job> m_jobs;
  std::unordered_map<const CBlockXRef*, zim::WString> m_files;  // of the references seen so far
  std::unordered_map<zim::WString, Namesakes> m_namesakes;      // by name in nested drawings
  std::vector<CBlockXRef*> m_read;
  vek0::detail::Items m_present;                   // items used by the content of references
  std::unordered_map<zim::WString, long> m_sizes;  // entities, by file
  long m_repeatsLeft = kMostRepeated;
  double m_hatchLinesLeft = kHatchShares * m_data.getHatchLimit();
  double m_repeatedHatchLinesLeft = kRepeatedHatchShares * m_data.getHatchLimit();
  bool m_isCancelled = false;
};

int countUnresolved(const CData& data) {
  int count = 0;
  const CBlockXRefTable& xrefs = data.getBlockXRefTable();
  for (int i = 0; i < xrefs.size(); ++i)
    if (xrefs[i]->getStatus() != Status::loaded) ++count;
  return count;
}

}  // namespace

int resolveXRefs(CData& data, IXRefResolver& resolver, const CXRefOptions& options) {
  Resolving(data, resolver, options).resolveAll();
  return countUnresolved(data);
}

bool resolveXRef(CData& data, CBlockXRef& xref, IXRefResolver& resolver,
                 const CXRefOptions& options) {
  if (!data.getBlockXRefTable().contains(&xref)) return false;
  Resolving(data, resolver, options).resolveOne(xref);
  return xref.getStatus() == Status::loaded;
}
