#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "options.h"
#include "terminal.h"
#include "vek0host/referencelist.h"
#include "xrefsteps.h"

namespace vek0::tool {
namespace {

struct XrefsOptions {
  std::vector<std::string> files;
  bool json = false;
  ReferenceOptions references;
};

using Show = void (*)(const ResolvedDrawing& drawing, const XrefsOptions& options,
                      Session& session);

void printLine(const Json& line) { std::printf("%s\n", toLine(line).c_str()); }

// Lists the references that are not shown on the error stream; the standard output has the result.
void warnOfFailures(const ResolvedDrawing& drawing, const Session& session) {
  if (drawing.reader.failures() > 0)
    session.notify(drawing.path + ": some references are not shown:",
                   drawing.reader.failuresToText());
}

void list(const ResolvedDrawing& drawing, const XrefsOptions& options, Session& session) {
  if (options.json) return printLine(referencesToJson(drawing, drawing.reading.ok()));
  print(referencesToText(drawing));
  warnOfFailures(drawing, session);
}

void tree(const ResolvedDrawing& drawing, const XrefsOptions& options, Session& session) {
  if (options.json) return printLine(referenceTreeToJson(drawing));
  print(referenceTreeToText(drawing));
  warnOfFailures(drawing, session);
}

void check(const ResolvedDrawing& drawing, const XrefsOptions& options, Session& session) {
  const bool allShown = drawing.reader.failures() == 0;
  if (!allShown) session.failed(kDrawingFailed);
  if (options.json) return printLine(referencesToJson(drawing, drawing.reading.ok() && allShown));
  if (!session.quiet || !allShown) print(referenceCheckToText(drawing));
}

void run(const XrefsOptions& options, Show show, Session& session) {
  for (const std::string& path : options.files) {
    const ResolvedDrawing drawing(path, options.references, session);
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
  verb->add_flag("--json", options->json, "One JSON object per file, one per line");
  addReferenceOptions(*verb, options->references);
  verb->footer(footer);
  verb->callback([options, show, &session] { run(*options, show, session); });
}

}  // namespace

void addXrefsCommand(CLI::App& app, Session& session) {
  CLI::App* group = app.add_subcommand("xrefs", "List and change external references");
  group->require_subcommand(1);
  addReading(*group, "list", "List all references, including nested ones, and their status",
             "Examples:\n"
             "  vek0 xrefs list site.dxf\n"
             "  vek0 xrefs list --json --search /library *.dxf | jq -r '.references[].file'",
             list, session);
  addReading(*group, "tree", "Show which drawing references which",
             "Examples:\n"
             "  vek0 xrefs tree site.dxf",
             tree, session);
  addReading(*group, "check", "Print ok, or which references cannot be shown and why",
             "Examples:\n"
             "  vek0 xrefs check *.dxf       one line per file; exit code 1 if a reference fails\n"
             "  vek0 xrefs check site.dxf --search /library --allow /projects",
             check, session);
  addXrefSteps(*group, session);
  group->footer(
      "Examples:\n"
      "  vek0 xrefs tree site.dxf\n"
      "  vek0 xrefs bind site.dxf --all -o whole.dxf\n\n"
      "A file is searched for at the path itself, relative to the drawing that holds the\n"
      "reference, then by file name alone in that drawing's folder, then in each folder given\n"
      "by --search. It must be in or below the folder of FILE, or a folder given by --search\n"
      "or --allow.");
}

}  // namespace vek0::tool
