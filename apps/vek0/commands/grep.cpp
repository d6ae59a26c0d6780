#include <cstdio>
#include <memory>
#include <string>

#include "batch.h"
#include "commands.h"
#include "terminal.h"
#include "vek0host/drawingfile.h"
#include "vek0host/textsearch.h"
#include "vek0host/visibletext.h"

namespace vek0::tool {
namespace {

struct GrepOptions {
  BatchOptions batch;
  PatternOptions pattern;
  bool json = false, listsFiles = false, counts = false;
};

void printFound(const FoundText& found, const std::string& path) {
  const std::string line = toFoundLine(found, path);
  const std::size_t place = visible(path).size();
  print(line.substr(0, place), Hue::Place);
  print(line.substr(place));
}

void searchFile(const std::string& path, const GrepOptions& options, const TextPattern& pattern,
                Session& session) {
  const Drawing data = newDrawing();
  session.reading.wholeRecords = true;
  const ReadResult result = loadFile(*data, path, session);
  if (!result.ok()) session.fail(kDrawingFailed, path + ": " + result.message());
  if (!result.opened()) return;
  std::size_t count = 0;
  const bool isListing = !session.quiet && !options.listsFiles && !options.counts;
  searchTexts(*data, pattern, [&](const FoundText& found) {
    ++count;
    if (!isListing) return;
    if (options.json)
      std::printf("%s\n", toLine(toJson(found, path)).c_str());
    else
      printFound(found, path);
  });
  if (count > 0) session.answer = 0;
  if (session.quiet) return;
  if (options.listsFiles && count > 0) print(visible(path) + "\n");
  if (options.counts) print(visible(path) + ":" + std::to_string(count) + "\n");
}

void run(const GrepOptions& options, Session& session) {
  session.answer = 1;
  const TextPattern pattern(options.pattern);
  if (!pattern.error().empty()) return session.fail(kWrongUsage, pattern.error());
  runBatch(jobsOf(options.batch, "", session), options.batch, session,
           [&](const BatchJob& job) { searchFile(job.in, options, pattern, session); });
}

}  // namespace

void addGrepCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<GrepOptions>();
  CLI::App* verb = app.add_subcommand(
      "grep", "Search drawings for texts, attributes, and names of blocks and layers");
  verb->add_option("PATTERN", options->pattern.pattern, "An ECMAScript regular expression")
      ->type_name("")
      ->required();
  verb->add_option("FILE", options->batch.files, "DXF files; - is the standard input");
  verb->add_flag("-i,--ignore-case", options->pattern.ignoresCase, "Ignore upper and lower case");
  verb->add_flag("-w,--word", options->pattern.wholeWords, "Match whole words only");
  verb->add_flag("-F,--fixed", options->pattern.isFixed, "The pattern is a plain string");
  CLI::Option* list = verb->add_flag("-l,--files-with-matches", options->listsFiles,
                                     "Print only the names of drawings with matches");
  CLI::Option* count =
      verb->add_flag("-c,--count", options->counts, "Print only the number of matches per drawing");
  verb->add_flag("--json", options->json, "One JSON object per match, one per line")
      ->excludes(list)
      ->excludes(count);
  list->excludes(count);
  addBatchOptions(*verb, options->batch);
  verb->footer(
      "Examples:\n"
      "  vek0 grep 'Room [0-9]+' *.dxf\n"
      "  vek0 grep -l -F 'M 1:50' --files-from list.txt\n"
      "  vek0 grep -i '^PART_NO=4711' *.dxf\n"
      "  vek0 grep --json -w DN100 plan.dxf | jq -r .handle\n\n"
      "Each match is printed as \"file: layer kind handle: text\". Texts inside blocks and on\n"
      "layouts are searched, too; formatted texts and dimensions as they are read, line by line\n"
      "and in one piece. Attributes match by their value and as TAG=value.\n\n"
      "Exit codes: 0 found, 1 not found, 2 wrong usage or any failure.");
  verb->callback([options, &session] { run(*options, session); });
}

}  // namespace vek0::tool
