#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "commands.h"
#include "options.h"
#include "terminal.h"
#include "vek0host/comparisontext.h"
#include "vek0host/drawingfile.h"
#include "vek0host/outputfile.h"
#include "vek0host/textvalues.h"
#include "vek0host/visibletext.h"
#include "vek0paint/rendering.h"

namespace vek0::tool {
namespace {

struct DiffOptions {
  std::string before, after, picture, match = "handles";
  std::optional<double> tolerance;
  bool json = false;
  paint::RenderOptions render;
};

// Null if the drawing cannot be read completely.
Drawing readForComparison(const std::string& path, Session& session) {
  Drawing data = newDrawing();
  const ReadResult result = loadFile(*data, path, session, true);
  if (result.ok()) return data;
  session.fail(kDrawingFailed, path + ": " + result.message());
  return nullptr;
}

// "3 removed, 1 changed".
std::string verdict(const COMPARISON& found) {
  std::string text;
  const auto add = [&text](std::size_t count, const char* what) {
    if (count > 0) text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + what;
  };
  add(found.removed.size(), "removed");
  add(found.added.size(), "added");
  add(found.moved.size(), "moved");
  add(found.changed.size(), "changed");
  add(found.items.size(), "in tables");
  return text;
}

Hue hueOf(const std::string& line) {
  if (line.compare(0, 2, "- ") == 0) return Hue::Bad;
  if (line.compare(0, 2, "+ ") == 0) return Hue::Good;
  const bool isChange = line.compare(0, 2, "~ ") == 0 || line.compare(0, 2, "> ") == 0;
  return isChange ? Hue::Notable : Hue::Plain;
}

void show(const DiffOptions& options, const CData& before, const CData& after,
          const COMPARISON& found, const Session& session) {
  const ComparisonText text(before, after, found);
  if (options.json)
    return text.writeJson([](const std::string& piece) { std::fputs(piece.c_str(), stdout); });
  if (session.quiet) return;
  const std::string names = visible(options.before) + " and " + visible(options.after);
  if (found.isEqual()) return print(names + " are equal\n");
  print(names + " differ: " + verdict(found) + "\n\n");
  text.writeText([](const std::string& line) { print(line, hueOf(line)); });
}

// The output is checked before the work is done.
bool preparePicture(DiffOptions& options, Session& session) {
  if (options.picture.empty()) return true;
  const std::optional<paint::Format> format = pictureFormat(options.picture, session);
  if (!format) return false;
  options.render.picture.format = *format;
  const OutputFile output(options.picture, options.render.force);
  if (!output.error().empty()) session.fail(kOutputFailed, output.error());
  return session.worst == kNoFailure;
}

void addPictureOptions(CLI::App& verb, DiffOptions& options) {
  verb.add_option("-o,--output", options.picture,
                  "Also draw the differences of the model, as .svg, .png or .pdf: gray what is the "
                  "same, red what was, green what is now")
      ->type_name("FILE");
  verb.add_flag("-f,--force", options.render.force, "Replace the picture if it exists");
  verb.add_flag("--with-xrefs,!--no-xrefs", options.render.withReferences,
                "Show external references that are found (the default), or none");
  addReferenceOptions(verb, options.render.references);
}

void run(DiffOptions& options, Session& session) {
  session.answer = 0;
  if (options.before == "-" && options.after == "-")
    return session.fail(kWrongUsage, "only one of the drawings can be the standard input");
  if (!preparePicture(options, session)) return;
  session.reading.wholeRecords = true;
  const Drawing before = readForComparison(options.before, session);
  const Drawing after = readForComparison(options.after, session);
  if (!before || !after) return;
  COMPARE_OPTIONS how;
  how.tolerance = options.tolerance;
  if (options.match == "geometry") how.match = EntMatch::Geometry;
  const COMPARISON found = compareDrawings(*before, *after, how);
  if (!found.isEqual()) session.answer = 1;
  show(options, *before, *after, found, session);
  if (!options.picture.empty())
    paint::renderDifferences({*before, options.before}, {*after, options.after}, found,
                             options.picture, options.render, session);
}

}  // namespace

void addDiffCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<DiffOptions>();
  CLI::App* verb = app.add_subcommand(
      "diff", "Compare two drawings: what was added, removed, moved and changed");
  verb->add_option("A", options->before, "The earlier drawing; - is the standard input")
      ->type_name("")
      ->required();
  verb->add_option("B", options->after, "The later drawing")->type_name("")->required();
  verb->add_flag("--json", options->json, "One JSON object");
  const auto setTolerance = [options](const std::string& text) {
    double value;
    parseNumbers(text, ',', &value, 1);
    options->tolerance = value;
  };
  const auto checkTolerance = [](const std::string& text) {
    double value;
    const bool isValid = parseNumbers(text, ',', &value, 1) && value >= 0;
    return isValid ? std::string() : "'" + text + "' is not a distance of 0 or more";
  };
  verb->add_option_function<std::string>("--tolerance", setTolerance,
                                         "Distance in drawing units up to which points are the "
                                         "same; default: 1e-9 of the extents")
      ->type_name("DISTANCE")
      ->check(checkTolerance);
  verb->add_option("--match", options->match,
                   "Which entities are the same: those with the same handle, if the drawings share "
                   "handles, and else those in the same place; or always those in the same place")
      ->check(CLI::IsMember({"handles", "geometry"}))
      ->capture_default_str();
  addPictureOptions(*verb, *options);
  verb->footer(
      "Examples:\n"
      "  vek0 diff plan.dxf plan-revised.dxf\n"
      "  vek0 diff plan.dxf plan-revised.dxf -o changes.pdf\n"
      "  vek0 diff --json a.dxf b.dxf | jq -r '.changed[] | .handle + \" \" + (.what | "
      "join(\",\"))'\n"
      "  vek0 -q diff a.dxf b.dxf || echo different\n\n"
      "Exit codes: 0 equal, 1 different, 2 wrong usage or any failure. Handles are those of A, of\n"
      "added entities those of B. Layers, blocks and other items that have another name but the\n"
      "same users were renamed, which does not change their users. Versions of DXF may differ.\n"
      "External references are compared by their paths.");
  verb->callback([options, &session] { run(*options, session); });
}

}  // namespace vek0::tool
