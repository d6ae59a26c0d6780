#include "vek0host/referencelist.h"

#include <cstddef>
#include <unordered_set>
#include <utility>
#include <vector>

#include "vek0host/editing.h"
#include "vek0host/reports.h"
#include "vek0host/visibletext.h"

namespace vek0::host {
namespace {

Json rowOf(const CBlockXRef& xref, const CData& data) {
  return Json{{"name", xref.getName().toUtf8()},
              {"path", xref.getPath().toUtf8()},
              {"overlay", xref.isOverlay()},
              {"status", nameOf(xref.getStatus())},
              {"file", xref.getFile().empty() ? Json() : Json(xref.getFile().toUtf8())},
              {"inserts", data.getDepend().getCount(&xref)}};
}

Json head(const ResolvedDrawing& drawing, bool ok) {
  return Json{{"file", drawing.path}, {"ok", ok}, {"error", errorToJson(drawing.reading)}};
}

std::string countedReferences(std::size_t count) {
  return counted(count, "reference", "references");
}

// Traverses a drawing's references and the nested ones. A reference shown by several others is
// entered once, because diamonds have exponentially many paths.
class Tree {
 public:
  explicit Tree(const ResolvedDrawing& drawing) : m_drawing(drawing) {}

  std::string toText() {
    m_text = visible(m_drawing.path) + "\n";
    for (const CBlockXRef* xref : References(*m_drawing.data).own) addLines(*xref, 1);
    return std::move(m_text);
  }

  Json toJson() {
    Json line = head(m_drawing, m_drawing.reading.ok());
    line["references"] = rows(References(*m_drawing.data).own);
    line["report"] = reportToJson(m_drawing.reader.report());
    return line;
  }

 private:
  // The depth is bounded by `kMaxXRefDepth`.
  void addLines(const CBlockXRef& xref, int depth) {
    const bool isNew = m_seen.insert(&xref).second, isLoaded = xref.getStatus() == Status::loaded;
    std::string line =
        std::string(2 * static_cast<std::size_t>(depth), ' ') + visible(host::toText(xref));
    if (!isLoaded) line += std::string(": ") + nameOf(xref.getStatus());
    const bool isRepeated = !isNew && !xref.getNested().empty();
    m_text += line + (isRepeated ? ", see above\n" : "\n");
    if (isRepeated) return;
    for (const CBlockXRef* nested : xref.getNested()) addLines(*nested, depth + 1);
  }

  Json rows(const std::vector<CBlockXRef*>& xrefs) {
    Json all = Json::array();
    for (const CBlockXRef* xref : xrefs) {
      Json row = rowOf(*xref, *m_drawing.data);
      const bool isNew = m_seen.insert(xref).second;
      row["repeated"] = !isNew;
      row["references"] = isNew ? rows(xref->getNested()) : Json::array();
      all.push_back(std::move(row));
    }
    return all;
  }

  using Status = CBlockXRef::Status;
  const ResolvedDrawing& m_drawing;
  std::string m_text;
  std::unordered_set<const CBlockXRef*> m_seen;
};

}  // namespace

ResolvedDrawing::ResolvedDrawing(const std::string& name, const ReferenceOptions& options,
                                 Session& session)
    : path(name),
      data(newDrawing()),
      reading(loadFile(*data, name, session)),
      reader(name, options, session) {
  if (reading.ok())
    reader.resolve(*data);
  else
    session.failed(kDrawingFailed);
}

Json referencesToJson(const ResolvedDrawing& drawing, bool ok) {
  Json line = head(drawing, ok), rows = Json::array();
  for (const CBlockXRef* xref : References(*drawing.data).all) {
    Json row = rowOf(*xref, *drawing.data), shown = Json::array();
    for (const CBlockXRef* nested : xref->getNested()) shown.push_back(nested->getName().toUtf8());
    row["shows"] = std::move(shown);
    rows.push_back(std::move(row));
  }
  line["references"] = std::move(rows);
  line["report"] = reportToJson(drawing.reader.report());
  return line;
}

std::string referencesToText(const ResolvedDrawing& drawing) {
  const References references(*drawing.data);
  std::string text = visible(drawing.path) + ": " + countedReferences(references.all.size()) + "\n";
  for (const CBlockXRef* xref : references.all) {
    const long inserts = drawing.data->getDepend().getCount(xref);
    text += "  " + visible(toText(*xref)) + ": " + nameOf(xref->getStatus()) + ", " +
            counted(static_cast<std::size_t>(inserts), "insert", "inserts") + "\n";
  }
  return text;
}

Json referenceTreeToJson(const ResolvedDrawing& drawing) { return Tree(drawing).toJson(); }

std::string referenceTreeToText(const ResolvedDrawing& drawing) { return Tree(drawing).toText(); }

std::string referenceCheckToText(const ResolvedDrawing& drawing) {
  const long failures = drawing.reader.failures();
  const std::string all = countedReferences(References(*drawing.data).all.size());
  std::string text = visible(drawing.path) + ": ";
  if (failures == 0)
    text += "ok, " + all + "\n";
  else
    text += all + ", " + std::to_string(failures) + " cannot be shown\n";
  text += reportToText(drawing.reader.report());
  for (const auto& [name, report] : drawing.reader.readings()) {
    const std::string losses = lossesToText(report);
    if (!losses.empty()) text += "  " + visible(name) + ":\n" + losses;
  }
  return text;
}

}  // namespace vek0::host
