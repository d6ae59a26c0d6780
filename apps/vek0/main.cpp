#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include "commands.h"
#include "vek0core/vek0core.h"

namespace vek0::tool {

void Session::complain(const std::string& message) {
  std::fprintf(stderr, "vek0: %s\n", message.c_str());
}

namespace {

// The library needs a font before STYLE tables load. The tool draws nothing, so
// one with the default metrics is enough.
class ToolFont : public ICADFont {
 public:
  ToolFont() : ICADFont(u"txt") {}
};

void reportAssertion(const char* file, int line, const char* condition) {
  std::fprintf(stderr, "%s:%d assertion failure:\n%s\n", file, line, condition);
}

void registerDefaultFont() {
  auto font = std::make_unique<ToolFont>();
  CFontTable::getInstance().setDefault(font.get());
  CFontTable::getInstance().add(font.release());
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

constexpr std::array<const char*, 4> kVerbs = {"info", "check", "convert", "import"};

// Says which verb was probably meant, instead of the parser's list of leftovers.
bool isUnknownVerb(const std::string& word) {
  if (word.empty() || word[0] == '-' || word == "help") return false;
  if (std::find(kVerbs.begin(), kVerbs.end(), word) != kVerbs.end()) return false;
  const auto* nearest = std::min_element(
      kVerbs.begin(), kVerbs.end(),
      [&](const char* a, const char* b) { return editDistance(word, a) < editDistance(word, b); });
  Session::complain("'" + word + "' is not a command; did you mean '" + *nearest +
                    "'? See vek0 --help.");
  return true;
}

int runTool(int argc, char** argv) {
  CLI::App app{
      "vek0 reads, describes, merges and writes DXF drawings.\n\n"
      "Examples:\n"
      "  vek0 info drawing.dxf\n"
      "  vek0 convert drawing.dxf copy.dxf\n"};
  app.name("vek0");
  app.set_version_flag("--version", std::string("vek0 " VEK0_VERSION));
  app.set_help_all_flag("--help-all", "Print the help of every command and exit");
  app.require_subcommand(1);
  app.fallthrough();
  Session session;
  app.add_flag("-q,--quiet", session.quiet, "Say nothing but errors");
  addInfoCommand(app, session);
  addCheckCommand(app, session);
  addConvertCommand(app, session);
  addImportCommand(app, session);
  app.footer(
      "Exit codes: 0 all well, 1 a drawing failed, 2 wrong usage, 3 an output could not be "
      "written.");

  std::vector<std::string> arguments(argv + 1, argv + argc);
  if (!arguments.empty() && isUnknownVerb(arguments[0])) return kWrongUsage;
  if (!arguments.empty() && arguments[0] == "help") {
    arguments.erase(arguments.begin());
    arguments.emplace_back("--help");
  }
  std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back
  try {
    app.parse(arguments);
  } catch (const CLI::ParseError& problem) {
    const bool asked = problem.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success);
    app.exit(problem);
    return asked ? kAllWell : kWrongUsage;
  }
  return session.exitCode;
}

}  // namespace
}  // namespace vek0::tool

int main(int argc, char** argv) {
  try {
    initCore();
    setAssertHandler(vek0::tool::reportAssertion);
    vek0::tool::registerDefaultFont();
    const int code = vek0::tool::runTool(argc, argv);
    shutdownCore();
    return code;
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "vek0: %s\n", problem.what());
    return vek0::tool::kDrawingFailed;
  }
}
