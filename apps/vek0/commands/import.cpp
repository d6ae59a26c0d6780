#include <memory>
#include <string>
#include <vector>

#include "commands.h"
#include "options.h"
#include "terminal.h"
#include "vek0host/merging.h"
#include "vek0host/outputfile.h"
#include "vek0host/saving.h"
#include "vek0host/textvalues.h"
#include "vek0host/visibletext.h"

namespace vek0::tool {
namespace {

struct ImportOptions {
  std::string base, out;
  std::vector<std::string> files;
  MergeOptions merge;
  SaveOptions save;
};

// What would happen is the result of a dry run.
void printAccount(const MergeAccount& account, bool isReportPrinted, const Session& session) {
  std::string text;
  for (const std::string& sentence : account) text += visible(sentence) + "\n";
  if (isReportPrinted)
    session.notify("this would happen:", text);
  else if (!session.quiet)
    print(text);
}

void run(const ImportOptions& options, bool isReportPrinted, Session& session) {
  session.readsTwice = true;
  MergeAccount account;
  rewrite(options.base, options.out, options.save, session, [&](CData& base, const ReadResult&) {
    for (const std::string& path : options.files)
      if (!mergeFile(base, path, options.merge, session, account)) return false;
    return true;
  });
  if (OutputFile::isDryRun()) printAccount(account, isReportPrinted, session);
}

void setPolicy(const std::string& name, MergeOptions& options) {
  options.failsOnConflict = name == "fail";
  options.onConflict = name == "theirs"   ? ImportConflict::Theirs
                       : name == "rename" ? ImportConflict::Rename
                                          : ImportConflict::Base;
}

std::string readPoint(const std::string& text, MergeOptions& options) {
  const auto numbers = numbersIn(text);
  if (!numbers || numbers->size() < 2 || numbers->size() > 3)
    return "'" + text + "' is not a point like 10,5 or 10,5,2";
  options.at = PNT_3D((*numbers)[0], (*numbers)[1], numbers->size() > 2 ? (*numbers)[2] : 0);
  return {};
}

void addMergeOptions(CLI::App& verb, MergeOptions& options) {
  verb.add_option_function<std::string>(
          "--on-conflict", [&options](const std::string& name) { setPolicy(name, options); },
          "What to do if a layer, linetype, text style or block of a FILE differs from that of the "
          "same name: keep that of the base (the default), replace it, rename that of the file, "
          "or fail")
      ->check(CLI::IsMember({"base", "theirs", "rename", "fail"}))
      ->type_name("base|theirs|rename|fail");
  verb.add_option("--prefix", options.prefix,
                  "Begin the names of all layers, linetypes, text styles and blocks of each FILE "
                  "with this")
      ->type_name("TEXT");
  verb.add_option("--at,--insertion-point")
      ->description("Put the base point of each FILE there, instead of leaving it in place")
      ->check([&options](const std::string& text) { return readPoint(text, options); })
      ->type_name("X,Y[,Z]");
  verb.add_option_function<std::string>(
          "--scale-units",
          [&options](const std::string& word) { options.scalesUnits = word == "on"; },
          "Scale each FILE to the unit of the base where both state theirs; on by default")
      ->check(CLI::IsMember({"on", "off"}))
      ->type_name("on|off");
}

}  // namespace

void addImportCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<ImportOptions>();
  CLI::App* verb = app.add_subcommand("import", "Merge drawings into a base drawing");
  verb->add_option("BASE", options->base, "Base drawing, whose definitions take precedence")
      ->required();
  verb->add_option("FILE", options->files, "Drawings to merge into it, in this order")->required();
  verb->add_option("-o,--output", options->out, "File to write; - is the standard output")
      ->required();
  addMergeOptions(*verb, options->merge);
  addSaveOptions(*verb, options->save);
  addTargetOption(*verb, options->save);
  verb->footer(
      "Examples:\n"
      "  vek0 import frame.dxf part1.dxf part2.dxf -o sheet.dxf\n"
      "  vek0 import frame.dxf part.dxf -o sheet.dxf --on-conflict rename --at 100,50\n"
      "  vek0 import frame.dxf part.dxf -o sheet.dxf --on-conflict theirs --dry-run\n\n"
      "Equal definitions are no conflict. A renamed WALL becomes WALL_1;\n"
      "what refers to it is renamed, too. Files are compared with the result so far; each is\n"
      "scaled first. With --dry-run, import lists what would happen. A file with an error is\n"
      "skipped; the others are still merged.");
  verb->callback([options, &session, &app] {
    const CLI::Option* report = app.get_option_no_throw("--report");
    run(*options, report && report->count() > 0 && report->as<std::string>() == "-", session);
  });
}

}  // namespace vek0::tool
