#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "commands.h"
#include "options.h"
#include "terminal.h"
#include "vek0host/editing.h"
#include "vek0host/references.h"
#include "vek0host/summary.h"
#include "vek0host/visibletext.h"
#include "xrefsteps.h"

namespace vek0::tool {
namespace {

struct XrefsOptions {
  std::vector<std::string> files;
  bool json = false;
  ReferenceOptions references;
};

// A drawing with all references that could be read.
struct Resolved {
  Resolved(const std::string& name, const XrefsOptions& options, Session& session)
      : path(name),
        data(newDrawing()),
        reading(loadFile(*data, name, session)),
        reader(name, options.references, session) {
    if (reading.ok())
      reader.resolve(*data);
    else
      session.failed(kDrawingFailed);
  }

  const std::string path;
  const Drawing data;
  const ReadResult reading;
  ReferenceReader reader;
};

using Show = void (*)(const Resolved& drawing, const XrefsOptions& options, Session& session);

void printLine(const Json& line) {
  std::printf("%s\n", line.dump(-1, ' ', false, Json::error_handler_t::replace).c_str());
}

// Lists the references that are not shown on the error stream; the standard output has the result.
void complain(const Resolved& drawing, const Session& session) {
  if (!session.quiet && drawing.reader.failures() > 0)
    session.complain(drawing.path + ": not every reference is shown:",
                     drawing.reader.failuresToText());
}

Json toJson(const CBlockXRef& xref, const CData& data) {
  return Json{{"name", xref.getName().toUtf8()},
              {"path", xref.getPath().toUtf8()},
              {"overlay", xref.isOverlay()},
              {"status", nameOf(xref.getStatus())},
              {"file", xref.getFile().empty() ? Json() : Json(xref.getFile().toUtf8())},
              {"inserts", data.getDepend().getCount(&xref)}};
}

Json head(const Resolved& drawing, bool ok) {
  return Json{{"file", drawing.path}, {"ok", ok}, {"error", errorToJson(drawing.reading)}};
}

void printListJson(const Resolved& drawing, bool ok) {
  Json line = head(drawing, ok), rows = Json::array();
  for (const CBlockXRef* xref : References(*drawing.data).all) {
    Json row = toJson(*xref, *drawing.data), shown = Json::array();
    for (const CBlockXRef* nested : xref->getNested()) shown.push_back(nested->getName().toUtf8());
    row["shows"] = std::move(shown);
    rows.push_back(std::move(row));
  }
  line["references"] = std::move(rows);
  line["report"] = reportToJson(drawing.reader.report());
  printLine(line);
}

std::string countedReferences(std::size_t count) {
  return counted(count, "reference", "references");
}

void list(const Resolved& drawing, const XrefsOptions& options, Session& session) {
  if (options.json) return printListJson(drawing, drawing.reading.ok());
  const References references(*drawing.data);
  print(visible(drawing.path) + ": " + countedReferences(references.all.size()) + "\n");
  for (const CBlockXRef* xref : references.all) {
    const long inserts = drawing.data->getDepend().getCount(xref);
    print("  " + visible(toText(*xref)) + ": " + nameOf(xref->getStatus()) + ", " +
          counted(static_cast<std::size_t>(inserts), "insert", "inserts") + "\n");
  }
  complain(drawing, session);
}

// Traverses a drawing's references and the nested ones. One shown by several others is entered
// once: nested diamonds have exponentially many paths.
class Tree {
 public:
  explicit Tree(const Resolved& drawing) : m_drawing(drawing) {}

  void printText() {
    print(visible(m_drawing.path) + "\n");
    for (const CBlockXRef* xref : References(*m_drawing.data).own) printText(*xref, 1);
  }

  void printJson() {
    Json line = head(m_drawing, m_drawing.reading.ok());
    line["references"] = rows(References(*m_drawing.data).own);
    line["report"] = reportToJson(m_drawing.reader.report());
    printLine(line);
  }

 private:
  // The depth is bounded by `kMaxXRefDepth`.
  void printText(const CBlockXRef& xref, int depth) {
    const bool isNew = m_seen.insert(&xref).second, isLoaded = xref.getStatus() == Status::loaded;
    std::string line =
        std::string(2 * static_cast<std::size_t>(depth), ' ') + visible(toText(xref));
    if (!isLoaded) line += std::string(": ") + nameOf(xref.getStatus());
    const bool isRepeated = !isNew && !xref.getNested().empty();
    print(line + (isRepeated ? ", see above\n" : "\n"));
    if (isRepeated) return;
    for (const CBlockXRef* nested : xref.getNested()) printText(*nested, depth + 1);
  }

  Json rows(const std::vector<CBlockXRef*>& xrefs) {
    Json all = Json::array();
    for (const CBlockXRef* xref : xrefs) {
      Json row = toJson(*xref, *m_drawing.data);
      const bool isNew = m_seen.insert(xref).second;
      row["repeated"] = !isNew;
      row["references"] = isNew ? rows(xref->getNested()) : Json::array();
      all.push_back(std::move(row));
    }
    return all;
  }

  using Status = CBlockXRef::Status;
  const Resolved& m_drawing;
  std::unordered_set<const CBlockXRef*> m_seen;
};

void tree(const Resolved& drawing, const XrefsOptions& options, Session& session) {
  if (options.json) return Tree(drawing).printJson();
  Tree(drawing).printText();
  complain(drawing, session);
}

void check(const Resolved& drawing, const XrefsOptions& options, Session& session) {
  const long failures = drawing.reader.failures();
  if (failures > 0) session.failed(kDrawingFailed);
  if (options.json) return printListJson(drawing, drawing.reading.ok() && failures == 0);
  if (session.quiet && failures == 0) return;
  const std::string all = countedReferences(References(*drawing.data).all.size());
  if (failures == 0) {
    print(visible(drawing.path) + ": ok, " + all + "\n");
  } else {
    print(visible(drawing.path) + ": " + all + ", " + std::to_string(failures) +
          " cannot be shown\n");
  }
  print(reportToText(drawing.reader.report()));
  for (const auto& [name, report] : drawing.reader.readings()) {
    const std::string losses = lossesToText(report);
    if (!losses.empty()) print("  " + visible(name) + ":\n" + losses);
  }
}

void run(const XrefsOptions& options, Show show, Session& session) {
  for (const std::string& path : options.files) {
    const Resolved drawing(path, options, session);
    if (!drawing.reading.ok() && !options.json) {
      session.complain(path + ": " + drawing.reading.message());
    } else {
      show(drawing, options, session);
    }
  }
}

void addReading(CLI::App& group, const char* name, const char* help, const char* footer, Show show,
                Session& session) {
  auto options = std::make_shared<XrefsOptions>();
  CLI::App* verb = group.add_subcommand(name, help);
  verb->add_option("FILE", options->files, "DXF files; - is the standard input")->required();
  verb->add_flag("--json", options->json, "One JSON object a line and file");
  addReferenceOptions(*verb, options->references);
  verb->footer(footer);
  verb->callback([options, show, &session] { run(*options, show, session); });
}

}  // namespace

void addXrefsCommand(CLI::App& app, Session& session) {
  CLI::App* group =
      app.add_subcommand("xrefs", "Tell and change what drawings a drawing refers to");
  group->require_subcommand(1);
  addReading(*group, "list", "List the references, nested ones too, and what became of each",
             "Examples:\n"
             "  vek0 xrefs list site.dxf\n"
             "  vek0 xrefs list --json --search /library *.dxf | jq -r '.references[].file'",
             list, session);
  addReading(*group, "tree", "Show which drawing refers to which",
             "Examples:\n"
             "  vek0 xrefs tree site.dxf",
             tree, session);
  addReading(*group, "check", "Say ok, or which references cannot be shown and why",
             "Examples:\n"
             "  vek0 xrefs check *.dxf       one line a file; exit code 1 if a reference fails\n"
             "  vek0 xrefs check site.dxf --search /library --allow /projects",
             check, session);
  addXrefSteps(*group, session);
  group->footer(
      "Examples:\n"
      "  vek0 xrefs tree site.dxf\n"
      "  vek0 xrefs bind site.dxf --all -o whole.dxf\n\n"
      "A file is looked for as the path says, seen from the drawing that holds the reference, "
      "then\n"
      "by its bare name in that drawing's folder, then in each folder given by --search. It must\n"
      "lie in or below the folder of FILE, or a folder given by --search or --allow.");
}

}  // namespace vek0::tool
