#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <memory>
#include <numeric>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "commands.h"
#include "interruption.h"
#include "options.h"
#include "progressfile.h"
#include "shellfiles.h"
#include "terminal.h"
#include "vek0core/vek0core.h"
#include "vek0host/losslog.h"
#include "vek0host/outputfile.h"
#include "vek0host/visibletext.h"

#ifdef VEK0_RENDER
#include "vek0host/multibyte.h"
#endif

namespace vek0::tool {

namespace {

// On one line whatever the message contains.
void printMessage(const std::string& message, const std::string& details) {
  printError("vek0: " + visible(message) + "\n" + details);
}

std::unique_ptr<IFile> withProgress(std::unique_ptr<IFile> file, std::uintmax_t size,
                                    const std::string& path) {
  if (!isErrorTerminal()) return file;
  return std::make_unique<ProgressFile>(std::move(file), static_cast<long long>(size), path);
}

void reportAssertion(const char* file, int line, const char* condition) {
  std::fprintf(stderr, "%s:%d assertion failure:\n%s\n", file, line, condition);
}

std::size_t editDistance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < a.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < b.size(); ++j) {
      const std::size_t replaced = diagonal + (a[i] != b[j]);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

// Suggests the verb that was probably meant, instead of the parser's list of unexpected arguments.
bool isUnknownVerb(const CLI::App& app, const std::string& word) {
  if (word.empty() || word[0] == '-') return false;
  const std::vector<const CLI::App*> verbs = app.get_subcommands({});
  const auto distance = [&](const CLI::App* verb) { return editDistance(word, verb->get_name()); };
  const CLI::App* nearest = *std::min_element(
      verbs.begin(), verbs.end(),
      [&](const CLI::App* a, const CLI::App* b) { return distance(a) < distance(b); });
  if (nearest->get_name() == word) return false;
  printMessage("'" + word + "' is not a command; did you mean '" + nearest->get_name() +
                   "'? See vek0 --help.",
               "");
  return true;
}

// What the process exits with, after that failure.
int exitCode(const Session& session, Failure failure) {
  if (!session.answer) return failure;
  return failure == kNoFailure ? *session.answer : kWrongUsage;
}

int parseAndRun(std::vector<std::string> arguments, Session& session) {
  CLI::App app{
      "vek0 reads, describes, draws, edits, merges and writes DXF drawings.\n\n"
      "Examples:\n"
      "  vek0 info drawing.dxf\n"
      "  vek0 render drawing.dxf -o drawing.svg\n"
      "  vek0 convert drawing.dxf copy.dxf\n"};
  app.name("vek0");
  app.set_version_flag("--version", std::string("vek0 " VEK0_VERSION));
  app.set_help_all_flag("--help-all", "Print the help of every command and exit");
  app.allow_windows_style_options(false);  // a slash begins a path
  app.require_subcommand(1);
  app.fallthrough();
  session.onMessage = printMessage;
  session.onRead = withProgress;
  app.add_flag("-q,--quiet", session.quiet, "Print only errors");
  addReadOptions(app, session.reading);
  ReportOptions reporting;
  addReportOptions(app, reporting);
  std::string color = "auto";
  app.add_option("--color", color,
                 "Color the output: auto, on terminals unless NO_COLOR is set; always; or never. "
                 "For render, name it before the command")
      ->check(CLI::IsMember({"auto", "always", "never"}))
      ->type_name("WHEN");
  addInfoCommand(app, session);
  addListCommand(app, session);
  addCheckCommand(app, session);
  addDiffCommand(app, session);
  addGrepCommand(app, session);
  addConvertCommand(app, session);
  addExportCommand(app, session);
  addImportCommand(app, session);
  addEditCommand(app, session);
  addHatchCommand(app, session);
  addHatchesCommand(app, session);
  addLinetypesCommand(app, session);
  addRenderCommand(app, session);
#ifdef VEK0_SERVE
  addServeCommand(app, session);
#endif
  addViewCommand(app, session);
  addXrefsCommand(app, session);
  addShellCommands(app);
  app.footer(
      "Exit codes: 0 success, 1 a drawing failed, 2 wrong usage, 3 an output could not be "
      "written.\nOf diff: 0 equal, 1 different, 2 any failure.\nOf grep: 0 found, 1 not "
      "found, 2 any failure.");

  if (!arguments.empty() && arguments[0] == "help") {
    arguments.erase(arguments.begin());
    arguments.emplace_back("--help");
  }
  if (!arguments.empty() && isUnknownVerb(app, arguments[0])) return kWrongUsage;
  std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back
  LossLog log;
  // Commands run while their options are parsed.
  app.parse_complete_callback([&] {
    checkReport(reporting, *app.get_subcommands().front());
    if (!reporting.path.empty() || !reporting.failOn.empty()) session.log = &log;
    OutputFile::setDryRun(reporting.dryRun);
    setColorUse(color == "always"  ? ColorUse::Always
                : color == "never" ? ColorUse::Never
                                   : ColorUse::Auto);
  });
  try {
    app.parse(arguments);
  } catch (const CLI::ParseError& problem) {
    if (problem.get_exit_code() != static_cast<int>(CLI::ExitCodes::Success)) {
      // The message may quote a file name that looks like an option.
      printError(host::visible(problem.what()) +
                 "\nRun with --help or --help-all for more information.\n");
      return kWrongUsage;
    }
    std::ostringstream help;
    app.exit(problem, help, help);
    print(tidyHelp(help.str()));
    return kNoFailure;
  }
  finishReport(reporting, app.get_subcommands().front()->get_name(), session);
  return exitCode(session, session.worst);
}

}  // namespace

int runTool(const std::vector<std::string>& arguments) {
  Session session;
  try {
    initCore();
#ifdef VEK0_RENDER
    setMultiByteDecoder(decodeMultiByte);
#endif
    setAssertHandler(reportAssertion);
    removeOutputsOnInterruption();
    CFontTable::getInstance().addPlainDefault();
    const int code = parseAndRun(arguments, session);
    shutdownCore();
    if (flushOutput()) return code;
    printMessage("cannot write to the standard output", "");
    return exitCode(session, kOutputFailed);
  } catch (const std::exception& problem) {
    printMessage(problem.what(), "");
    return exitCode(session, kDrawingFailed);
  }
}

}  // namespace vek0::tool

#ifndef _WIN32
int main(int argc, char** argv) { return vek0::tool::runTool({argv + 1, argv + argc}); }
#endif
