#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "batch.h"
#include "commands.h"
#include "options.h"
#include "vek0host/textvalues.h"
#include "vek0host/units.h"
#include "vek0paint/rendering.h"

namespace vek0::tool {

using namespace paint;

namespace {

constexpr const char* kNoBackground = "none";

// The arguments, as texts where `RenderOptions` has values.
struct Arguments {
  BatchOptions batch;
  std::string out, format, size, paper, scale, window, background = "white", texts = "text";
  std::string lineweight = "file", color;
  bool portrait = false, landscape = false, all = false, mono = false;
  RenderOptions render;
};

// Validates an argument by `parse`.
template <class Parse>
CLI::Validator isA(const std::string& what, Parse parse) {
  const auto check = [what, parse](const std::string& text) {
    return parse(text) ? std::string() : "'" + text + "' is not " + what;
  };
  return CLI::Validator(check, "");
}

// A number within bounds, independent of the locale's decimal separator.
CLI::Validator isNumber(double least, double most, const std::string& bounds) {
  return isA("a number " + bounds, [least, most](const std::string& text) {
    double value;
    return parseNumbers(text, ',', &value, 1) && value >= least && value <= most;
  });
}

// The error in a scale, or an empty text.
std::string scaleComplaint(const std::string& text) {
  double number;
  if (parseScale(text)) return {};
  if (!parseNumbers(text, ':', &number, 1)) return "'" + text + "' is not a scale like 1:50";
  return "'" + text + "' can mean two scales: use 1:" + text + " or " + text + ":1";
}

// A lineweight: as in the file, a multiple of that, or one width for all lines, in millimeters.
bool parseLineweight(const std::string& text, PICTURE_OPTIONS& picture) {
  constexpr double least = 0.001, most = 100;
  if (text == "file") return true;
  const bool isFactor = !text.empty() && text.back() == 'x';
  double value;
  if (!parseNumbers(text.substr(0, text.size() - isFactor), ',', &value, 1)) return false;
  if (!(value >= least && value <= most)) return false;
  if (isFactor)
    picture.weightFactor = value;
  else
    picture.lineWidth = value;
  return true;
}

DrawColors colorsOf(const Arguments& arguments) {
  if (arguments.mono || arguments.color == "mono") return DrawColors::Mono;
  return arguments.color == "gray" ? DrawColors::Gray : DrawColors::Keep;
}

void useArguments(Arguments& arguments) {
  PICTURE_OPTIONS& picture = arguments.render.picture;
  picture.size = arguments.paper.empty() ? parseSize(arguments.size) : parsePaper(arguments.paper);
  picture.turnable = !arguments.paper.empty();
  if (arguments.portrait || arguments.landscape) picture.landscape = arguments.landscape;
  picture.scale = parseScale(arguments.scale);
  picture.window = parseWindow(arguments.window);
  parseLineweight(arguments.lineweight, picture);
  arguments.render.colors = colorsOf(arguments);
  arguments.render.background = parseColor(arguments.background);
  arguments.render.textsAsOutlines = arguments.texts == "outlines";
}

// The error in options that only pictures of the model have, or an empty text.
std::string layoutComplaint(const RenderOptions& options) {
  if (!options.layout && !options.currentLayout) return {};
  const char* const name = options.layout ? "--layout" : "--paper-space";
  if (options.splitLayers) return std::string("--split-layers excludes ") + name;
  if (!options.unit.empty()) return std::string("--unit excludes ") + name;
  return options.view == "plan" ? std::string() : std::string("--view excludes ") + name;
}

void run(Arguments& arguments, Session& session) {
  const std::string& name = arguments.format.empty() ? arguments.out : arguments.format;
  if (arguments.all && arguments.batch.outDir.empty())
    std::swap(arguments.batch.outDir, arguments.out);
  const bool isMany = !arguments.batch.outDir.empty();
  if (isMany == !arguments.out.empty())
    return session.fail(kWrongUsage, "give one of -o and --out-dir");
  const std::optional<Format> format =
      isMany && name.empty() ? Format::Svg : pictureFormat(name, session);
  if (!format) return;
  // The short form for the current layout; elsewhere the option reads the sheet as the model.
  if (session.reading.paperSpace) arguments.render.currentLayout = !arguments.render.layout;
  session.reading.paperSpace = false;
  if (const std::string complaint = layoutComplaint(arguments.render); !complaint.empty())
    return session.fail(kWrongUsage, complaint);
  // A PDF has a page per layout.
  const bool isPlural = isMany || arguments.render.splitLayers ||
                        (arguments.render.layout == "all" && format != Format::Pdf);
  if ((arguments.out == "-" || arguments.batch.outDir == "-") && isPlural)
    return session.fail(kWrongUsage, "several pictures cannot be written to the standard output");
  useArguments(arguments);
  arguments.render.picture.format = *format;
  std::vector<BatchJob> jobs = jobsOf(arguments.batch, std::string(".") + nameOf(*format), session);
  if (!isMany && jobs.size() > 1)
    return session.fail(kWrongUsage, "several drawings require --out-dir");
  if (!isMany && !jobs.empty()) jobs.front().out = arguments.out;
  runBatch(jobs, arguments.batch, session,
           [&](const BatchJob& job) { renderDrawing(job.in, job.out, arguments.render, session); });
}

void addSheetOptions(CLI::App& verb, Arguments& arguments) {
  CLI::Option* size = verb.add_option("--size", arguments.size,
                                      "Size of the picture: 1600x1200 pixels or 297x210mm");
  size->type_name("WxH")->check(isA("a size like 800x600 or 120x80mm", parseSize));
  verb.add_option("--paper", arguments.paper,
                  "A0 to A5, or 297x210 (mm); portrait or landscape as fits best")
      ->type_name("SIZE")
      ->check(isA("a paper size like A3 or 297x210", parsePaper))
      ->excludes(size);
  CLI::Option* portrait =
      verb.add_flag("--portrait", arguments.portrait, "Portrait orientation of the paper");
  verb.add_flag("--landscape", arguments.landscape, "Landscape orientation of the paper")
      ->excludes(portrait);
  verb.add_option("--scale", arguments.scale,
                  "Scale on paper, like 1:50; the default fits the sheet")
      ->type_name("1:N")
      ->check(CLI::Validator([](const std::string& text) { return scaleComplaint(text); }, ""));
  verb.add_option("--unit", arguments.render.unit,
                  "Drawing unit, for --scale: mm, cm, m, in, ft ...; default: as stated in the "
                  "file, else mm")
      ->type_name("UNIT")
      ->check(isA("a unit like mm, cm, m, in or ft", unitInMeters));
  verb.add_option("--margin", arguments.render.picture.margin,
                  "Margin when fitting, in mm on paper, else in pixels")
      ->type_name("LENGTH")
      ->check(isNumber(0, 1e6, "from 0 to 1000000"));
  verb.add_option("--dpi", arguments.render.picture.dpi,
                  "Pixels per inch of a PNG sized in millimeters")
      ->type_name("NUMBER")
      ->check(isNumber(1, 10000, "from 1 to 10000"))
      ->capture_default_str();
}

void addViewOptions(CLI::App& verb, Arguments& arguments) {
  verb.add_option("--window", arguments.window, "Part to show, in drawing units of the view")
      ->type_name("X1,Y1,X2,Y2")
      ->check(isA("a window like 0,0,100,50", parseWindow));
  verb.add_option("--layout", arguments.render.layout,
                  "Plot the layout NAME to scale on its paper; all plots every layout, as pages of "
                  "one PDF or as OUT-NAME.svg and so on")
      ->type_name("NAME");
  verb.add_option("--view", arguments.render.view,
                  "plan, front, side, plan:DEG or parallel:a,b,c,d")
      ->type_name("VIEW")
      ->check(isA("a view like front or plan:30", makeProjector))
      ->capture_default_str();
  verb.add_option("--layers", arguments.render.layers,
                  "Show only these layers; * matches any text, ? one character")
      ->type_name("NAME");
  verb.add_option("--hide-layers", arguments.render.hiddenLayers, "Hide these layers")
      ->type_name("NAME");
}

void addLookOptions(CLI::App& verb, Arguments& arguments) {
  verb.add_option("--background", arguments.background, "Color name, #rrggbb, or none")
      ->type_name("COLOR")
      ->check(
          isA("a color like white or #203040",
              [](const std::string& text) { return text == kNoBackground || parseColor(text); }))
      ->capture_default_str();
  CLI::Option* color =
      verb.add_option("--color", arguments.color,
                      "Colors of the picture: keep those of the drawing (the default), draw "
                      "everything in one color (mono), or in grays of the same brightness (gray)");
  color->check(CLI::IsMember({"keep", "mono", "gray"}));
  verb.add_flag("--mono", arguments.mono, "The same as --color mono")->excludes(color);
  const auto isLineweight = [](const std::string& text) {
    PICTURE_OPTIONS ignored;
    return parseLineweight(text, ignored);
  };
  verb.add_option("--lineweight", arguments.lineweight,
                  "Width of lines: that of the file, a multiple of it like 0.5x, or one width for "
                  "all lines in mm. A screen pixel stands for 0.25 mm")
      ->type_name("file|FACTORx|MM")
      ->check(isA("file, a factor like 0.5x, or a width in mm, from 0.001 to 100", isLineweight))
      ->capture_default_str();
  verb.add_option("--text", arguments.texts, "Write the texts of SVG as text or as outlines")
      ->check(CLI::IsMember({"text", "outlines"}))
      ->capture_default_str();
}

}  // namespace

void addRenderCommand(CLI::App& app, Session& session) {
  auto arguments = std::make_shared<Arguments>();
  CLI::App* verb = app.add_subcommand("render", "Render a drawing as SVG, PNG or PDF");
  verb->add_option("IN", arguments->batch.files, "DXF files; - is the standard input")
      ->type_name("");
  verb->add_option(
          "-o,--output", arguments->out,
          "File to write, .svg, .png or .pdf; - is the standard output. Pictures of layers or "
          "layouts append a name to it")
      ->type_name("FILE");
  addBatchOutputOptions(*verb, arguments->batch);
  verb->add_option("--format", arguments->format,
                   "svg, png or pdf, regardless of the output's name")
      ->check(CLI::IsMember({"svg", "png", "pdf"}));
  addSheetOptions(*verb, *arguments);
  addViewOptions(*verb, *arguments);
  addLookOptions(*verb, *arguments);
  verb->add_flag("--with-xrefs,!--no-xrefs", arguments->render.withReferences,
                 "Show external references that are found (the default), or none");
  addReferenceOptions(*verb, arguments->render.references);
  verb->add_flag("--all", arguments->all, "The same as --out-dir with the folder given by -o");
  verb->add_flag("--split-layers", arguments->render.splitLayers,
                 "One picture per layer (OUT-LAYER.svg and so on), all with the same window");
  verb->add_flag("-f,--force", arguments->render.force, "Replace output files that exist");
  verb->footer(
      "Examples:\n"
      "  vek0 render plan.dxf -o plan.svg\n"
      "  vek0 render plan.dxf -o plan.pdf --paper A3 --scale 1:50\n"
      "  vek0 render plan.dxf -o plan.pdf --layout all\n"
      "  vek0 render plan.dxf -o plan.png --size 1920x1080 --background black\n"
      "  vek0 render plan.dxf -o part.svg --window 0,0,500,300 --layers WALLS 'DOOR*'\n"
      "  vek0 render site.dxf -o site.svg --search /library\n"
      "  vek0 render *.dxf --format png --out-dir pictures\n\n"
      "The output is written completely or not at all.");
  verb->callback([arguments, &session] { run(*arguments, session); });
}

}  // namespace vek0::tool
