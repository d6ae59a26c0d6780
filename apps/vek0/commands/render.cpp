#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "commands.h"
#include "options.h"
#include "vek0core/view/wndvpt.h"
#include "vek0draw/draw.h"
#include "vek0host/drawingfile.h"
#include "vek0host/layerchoice.h"
#include "vek0host/outputfile.h"
#include "vek0host/paths.h"
#include "vek0host/references.h"
#include "vek0host/textvalues.h"
#include "vek0host/units.h"
#include "vek0paint/cairopainter.h"
#include "vek0paint/fonts.h"
#include "vek0paint/picture.h"
#include "vek0paint/shownextents.h"
#include "vek0paint/svgpainter.h"

namespace vek0::tool {

using namespace paint;

namespace {

struct RenderOptions {
  std::vector<std::string> files;
  std::string out, format, size, paper, scale, window, view = "plan", background = "white";
  std::string unit, texts = "text";
  std::vector<std::string> layers, hiddenLayers;
  std::optional<double> margin, lineWidth;
  double dpi = 150;
  bool portrait = false, landscape = false, mono = false;
  bool all = false, splitLayers = false, force = false;
  bool withReferences = true;
  ReferenceOptions references;
};

constexpr const char* kNoBackground = "none";
constexpr double kPixelsPerPoint = 600;  // about a microsecond either way
constexpr double kLeastPointPixels = 3;  // or points would hardly be seen

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
  return "'" + text + "' can mean two scales: say 1:" + text + " or " + text + ":1";
}

// The drawing unit: from the options, else from the file, else a millimeter.
std::string unitOf(const RenderOptions& options, const ReadResult& result) {
  const char* stated = unitName(result.outcome.units);
  if (!options.unit.empty()) return options.unit;
  return stated ? stated : "mm";
}

PICTURE_OPTIONS pictureOptions(const RenderOptions& options, Format format,
                               const std::string& unit) {
  constexpr double mmPerMetre = 1000;
  PICTURE_OPTIONS result;
  result.format = format;
  result.size = options.paper.empty() ? parseSize(options.size) : parsePaper(options.paper);
  result.turnable = !options.paper.empty();
  if (options.portrait || options.landscape) result.landscape = options.landscape;
  result.scale = parseScale(options.scale);
  result.unitMm = unitInMetres(unit).value_or(1 / mmPerMetre) * mmPerMetre;
  result.window = parseWindow(options.window);
  result.margin = options.margin;
  result.lineWidth = options.lineWidth;
  result.dpi = options.dpi;
  return result;
}

std::unique_ptr<SheetPainter> makePainter(const RenderOptions& options, Format format, IFile& file,
                                          const SHEET& sheet, FontLibrary& fonts) {
  if (format != Format::Svg) {
    const auto kind = format == Format::Png ? CairoPainter::Png : CairoPainter::Pdf;
    return std::make_unique<CairoPainter>(kind, file, sheet, fonts);
  }
  const auto texts = options.texts == "outlines" ? SvgPainter::AsOutlines : SvgPainter::AsText;
  return std::make_unique<SvgPainter>(file, sheet, fonts, texts);
}

// Content lost in reading that users may miss in the picture; empty if complete. The views of a
// sheet are not part of the drawing.
std::string missingFrom(const CFileReport& report) {
  std::string kinds;
  for (const CFileReport::Entry& entry : report.entries()) {
    if (entry.code != std::string_view("kind skipped") || entry.sample == u"VIEWPORT") continue;
    kinds += (kinds.empty() ? "" : ", ") + std::to_string(entry.count) + " " +
             (entry.sample.empty() ? "others" : entry.sample.toUtf8());
  }
  return kinds;
}

// Explains an empty picture by where the content is; empty if unknown.
std::string whyNothing(const ReadResult& result, const LayerChoice& layers) {
  const std::string elsewhere = result.elsewhere();
  if (!elsewhere.empty()) return ": " + elsewhere;
  return layers.hidesUnprinted()
             ? ": layer Defpoints is not printed; --layers Defpoints shows it all the same"
             : "";
}

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

// Renders drawings one after the other; prints an error and sets the exit code if one fails.
class Renderer {
 public:
  Renderer(const RenderOptions& options, Format format, Session& session)
      : m_options(options),
        m_format(format),
        m_session(session),
        m_projector(makeProjector(options.view)) {
    m_fonts.registerFonts();
    m_drawOptions.mono = options.mono;
    // A point of a page takes longer than the others by far.
    if (format == Format::Pdf) {
      m_drawOptions.pointLimit /= 4;
      m_drawOptions.effort /= 4;
    }
    if (format == Format::Png) m_drawOptions.pixelsPerPoint = kPixelsPerPoint;
    m_drawOptions.background = parseColor(options.background).value_or(RGB_COLOR{255, 255, 255});
  }

  void render(const std::string& in, const std::string& out) {
    if (!m_options.splitLayers && !isWritable(out)) return;
    const Drawing data = newDrawing();
    // Fonts are found by name.
    const ReadResult result = loadFile(*data, in, m_session, true);
    if (!result.ok()) return fail(kDrawingFailed, in + ": " + result.message());
    reportLosses(in, result.report);
    if (m_options.withReferences) readReferences(*data, in);
    m_fonts.adopt(*data);
    const LayerChoice layers(*data, m_options.layers, m_options.hiddenLayers);
    if (layers.showsNone())
      return fail(kDrawingFailed, in + ": no layer is named " + joined(m_options.layers));
    for (const std::string& name : layers.unmatched()) warn(in + ": no layer is named " + name);
    const PICTURE picture = layOutDrawing(*data, in, result, layers);
    if (!picture.error.empty()) return fail(kWrongUsage, in + ": " + picture.error);
    if (m_options.splitLayers) {
      renderLayers(*data, layers, picture, out);
    } else {
      draw(*data, picture, out, true);
    }
  }

 private:
  void fail(Failure code, const std::string& message) { m_session.fail(code, message); }
  void warn(const std::string& message, const std::string& details = "") const {
    m_session.warn(message, details);
  }

  void reportLosses(const std::string& in, const CFileReport& report) const {
    const std::string missing = missingFrom(report);
    if (!missing.empty()) warn(in + ": not shown: " + missing);
    if (const long count = report.count("extrusion ignored")) {
      warn(in + ": " + std::to_string(count) +
           " entities may be misplaced, their extrusion is not read yet");
    }
  }

  void readReferences(CData& data, const std::string& in) const {
    ReferenceReader reader(in, m_options.references, m_session);
    reader.resolve(data);
    if (reader.failures() > 0)
      warn(in + ": not every reference is shown:", reader.failuresToText());
    for (const auto& [name, report] : reader.readings()) reportLosses(name, report);
  }

  // Checked before reading the drawing, which may take long.
  bool isWritable(const std::string& out) {
    const OutputFile output(out, m_options.force, OutputFile::Bytes);
    if (!output.error().empty()) fail(kOutputFailed, output.error());
    return output.error().empty();
  }

  PICTURE layOutDrawing(const CData& data, const std::string& in, const ReadResult& result,
                        const LayerChoice& layers) {
    const RECT_2D extents = shownExtents(data, *m_projector, m_drawOptions);
    if (!extents.validRegion())
      warn(in + ": there is nothing to show" + whyNothing(result, layers));
    const std::string drawingUnit = unitOf(m_options, result);
    PICTURE picture = layOut(pictureOptions(m_options, m_format, drawingUnit), extents);
    if (!picture.error.empty() && !m_options.scale.empty() && m_options.unit.empty())
      picture.error += "; a drawing unit is taken for 1 " + drawingUnit + ", --unit says otherwise";
    picture.sheet.background = m_drawOptions.background;
    picture.sheet.transparent = m_options.background == kNoBackground;
    if (in != "-") picture.sheet.title = fileTitle(in);
    // A tenth of a pixel is invisible, and so are two hundredths of a millimeter on paper.
    const double line = picture.sheet.lineWidth, unit = picture.sheet.unitMm;
    m_drawOptions.chordError = picture.sheet.paper ? 0.02 / unit : 0.1;
    m_drawOptions.penReach = std::max(1.0, line);
    const double pixel = picture.sheet.paper ? kMmPerInch / kCssDpi / unit : 1;
    m_drawOptions.leastPoint = std::max(kLeastPointPixels * pixel, line);
    m_drawOptions.finestPattern = std::max(picture.sheet.paper ? 0.2 / unit : 1, 2 * line);
    if (picture.error.empty() && picture.overflows) {
      warn(in + ": at this scale the drawing is larger than the sheet");
    }
    return picture;
  }

  static std::string fileTitle(const std::string& path) {
    const std::u8string name = toPath(path).stem().u8string();
    return std::string(name.begin(), name.end());
  }

  void draw(const CData& data, const PICTURE& picture, const std::string& out, bool evenEmpty) {
    OutputFile output(out, m_options.force, OutputFile::Bytes);
    if (!output.error().empty()) return fail(kOutputFailed, output.error());
    CWndVpt window(1);
    // A device of n pixels spans n - 1 steps, and the sheet as many as it has units.
    window.resize(picture.sheet.width + 1, picture.sheet.height + 1);
    window.set(picture.world);
    IFile& file = output.file();
    DRAW_RESULT result;
    bool written = file.open();
    if (written) {
      const auto painter = makePainter(m_options, m_format, file, picture.sheet, m_fonts);
      result = drawData(data, *m_projector, window, *painter, m_drawOptions);
      written = painter->finish() && !file.fail();
      file.close();
    }
    if (!written) return fail(kOutputFailed, "'" + output.path() + "' cannot be written");
    if (result.unclipped > 0)
      warn("'" + output.path() + "' shows " + std::to_string(result.unclipped) +
           " clipped inserts whole: from the side there are no clips, and none are drawn whose "
           "boundaries are too long or too many");
    tellShortcomings(output.path(), result);
    if (result.emitted == 0 && !evenEmpty) return;
    if (!output.commit()) fail(kOutputFailed, output.error());
  }

  void tellShortcomings(const std::string& path, const DRAW_RESULT& result) {
    if (result.simplified > 0)
      warn("'" + path + "' shows " + std::to_string(result.simplified) +
           " things that are too small or too many as dots, areas or continuous lines");
    if (result.missing > 0)
      fail(kDrawingFailed, "'" + path + "' shows " + std::to_string(result.missing) +
                               " hatches by their boundaries, their patterns are too dense");
    if (result.cut)
      fail(kDrawingFailed, "'" + path + "' is not complete, the drawing shows too much");
  }

  // One picture a layer that shows something, all laid out alike.
  void renderLayers(CData& data, const LayerChoice& layers, const PICTURE& picture,
                    const std::string& out) {
    std::unordered_set<std::string> names;
    const std::filesystem::path path = toPath(out);
    for (const CLayer* layer : layers.visible()) {
      layers.showOnly(layer);
      const std::string wanted = fileTitle(out) + "-" + fileName(layer->getFullName().toUtf8());
      std::string stem = wanted;
      for (int n = 2; !names.insert(stem).second; ++n) stem = wanted + "-" + std::to_string(n);
      const std::u8string file =
          (path.parent_path() / toPath(stem + "." + nameOf(m_format))).u8string();
      draw(data, picture, std::string(file.begin(), file.end()), false);
    }
  }

  // A layer's name without characters invalid in file names; long names are cut between characters.
  static std::string fileName(std::string name) {
    constexpr std::size_t kMost = 100;  // of the 255 bytes that names usually may have
    if (name.size() > kMost) {
      std::size_t end = kMost;
      while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0) == 0x80) --end;
      name.resize(end);
    }
    for (char& c : name) {
      if (static_cast<unsigned char>(c) < ' ' ||
          std::string("/\\:*?\"<>|").find(c) != std::string::npos) {
        c = '_';
      }
    }
    return name;
  }

  const RenderOptions& m_options;
  const Format m_format;
  Session& m_session;
  FontLibrary m_fonts;
  std::unique_ptr<IProjector> m_projector;
  DRAW_OPTIONS m_drawOptions;
};

void renderAll(const RenderOptions& options, Format format, Session& session) {
  const std::filesystem::path folder = toPath(options.out);
  std::error_code failure;
  std::filesystem::create_directories(folder, failure);
  if (!std::filesystem::is_directory(folder, failure)) {
    session.complain("'" + options.out + "' is not a folder and cannot be made one");
    return session.failed(kOutputFailed);
  }
  Renderer renderer(options, format, session);
  std::unordered_set<std::string> written;
  for (const std::string& in : options.files) {
    std::filesystem::path name = toPath(in).stem();
    name += std::string(".") + nameOf(format);
    const std::u8string out = (folder / name).u8string();
    if (!written.insert(std::string(out.begin(), out.end())).second) {
      session.complain(in + ": another drawing of that name is rendered already");
      session.failed(kOutputFailed);
      continue;
    }
    renderer.render(in, std::string(out.begin(), out.end()));
  }
}

void run(const RenderOptions& options, Session& session) {
  std::optional<Format> format = formatOf(options.format.empty() ? options.out : options.format);
  if (!format && options.all) format = Format::Svg;
  if (!format) {
    session.complain("the output is to end in .svg, .png or .pdf, or --format says what it is");
    return session.failed(kWrongUsage);
  }
  if (options.out == "-" && (options.all || options.splitLayers)) {
    session.complain("several pictures do not go to the standard output");
    return session.failed(kWrongUsage);
  }
  if (options.all) return renderAll(options, *format, session);
  if (options.files.size() > 1) {
    session.complain("several drawings are rendered with --all, and -o names a folder");
    return session.failed(kWrongUsage);
  }
  Renderer(options, *format, session).render(options.files[0], options.out);
}

void addSheetOptions(CLI::App& verb, RenderOptions& options) {
  CLI::Option* size =
      verb.add_option("--size", options.size, "Size of the picture: 1600x1200 pixels or 297x210mm");
  size->type_name("WxH")->check(isA("a size like 800x600 or 120x80mm", parseSize));
  verb.add_option("--paper", options.paper, "A4 to A0 or 297x210 (mm), turned as it suits")
      ->type_name("SIZE")
      ->check(isA("a paper size like A3 or 297x210", parsePaper))
      ->excludes(size);
  CLI::Option* portrait = verb.add_flag("--portrait", options.portrait, "The paper stands");
  verb.add_flag("--landscape", options.landscape, "The paper lies")->excludes(portrait);
  verb.add_option("--scale", options.scale, "Scale on paper, like 1:50; the default fits the sheet")
      ->type_name("1:N")
      ->check(CLI::Validator([](const std::string& text) { return scaleComplaint(text); }, ""));
  verb.add_option("--unit", options.unit,
                  "What a drawing unit is, for --scale: mm, cm, m, in, ft ...; the default is "
                  "what the file states, else mm")
      ->type_name("UNIT")
      ->check(isA("a unit like mm, cm, m, in or ft", unitInMetres));
  verb.add_option("--margin", options.margin,
                  "Free border when fitting, in mm on paper, else pixels")
      ->type_name("LENGTH")
      ->check(isNumber(0, 1e6, "from 0 to 1000000"));
  verb.add_option("--dpi", options.dpi, "Pixels per inch of PNG in millimetres")
      ->type_name("NUMBER")
      ->check(isNumber(1, 10000, "from 1 to 10000"))
      ->capture_default_str();
}

void addViewOptions(CLI::App& verb, RenderOptions& options) {
  verb.add_option("--window", options.window, "Part to show, in drawing units of the view")
      ->type_name("X1,Y1,X2,Y2")
      ->check(isA("a window like 0,0,100,50", parseWindow));
  verb.add_option("--view", options.view, "plan, front, side, plan:DEG or parallel:a,b,c,d")
      ->type_name("VIEW")
      ->check(isA("a view like front or plan:30", makeProjector))
      ->capture_default_str();
  verb.add_option("--layers", options.layers,
                  "Show only these layers; * stands for any text, ? for a character")
      ->type_name("NAME");
  verb.add_option("--hide-layers", options.hiddenLayers, "Do not show these layers")
      ->type_name("NAME");
}

void addLookOptions(CLI::App& verb, RenderOptions& options) {
  verb.add_option("--background", options.background, "Color name, #rrggbb, or none")
      ->type_name("COLOR")
      ->check(
          isA("a color like white or #203040",
              [](const std::string& text) { return text == kNoBackground || parseColor(text); }))
      ->capture_default_str();
  verb.add_flag("--mono", options.mono, "Draw everything in one color");
  verb.add_option("--lineweight", options.lineWidth, "Width of lines in mm")
      ->type_name("MM")
      ->check(isNumber(0.001, 100, "from 0.001 to 100"));
  verb.add_option("--text", options.texts, "Texts of SVG as text or as outlines")
      ->check(CLI::IsMember({"text", "outlines"}))
      ->capture_default_str();
}

}  // namespace

void addRenderCommand(CLI::App& app, Session& session) {
  auto options = std::make_shared<RenderOptions>();
  CLI::App* verb = app.add_subcommand("render", "Draw a drawing as SVG, PNG or PDF");
  verb->add_option("IN", options->files, "DXF files; - is the standard input")
      ->type_name("")
      ->required();
  verb->add_option(
          "-o,--output", options->out,
          "File to write, .svg, .png or .pdf; - is the standard output; with --all a folder")
      ->type_name("FILE")
      ->required();
  verb->add_option("--format", options->format, "svg, png or pdf, whatever the output is called")
      ->check(CLI::IsMember({"svg", "png", "pdf"}));
  addSheetOptions(*verb, *options);
  addViewOptions(*verb, *options);
  addLookOptions(*verb, *options);
  verb->add_flag("--with-xrefs,!--no-xrefs", options->withReferences,
                 "Whether to show the drawings that IN refers to, as far as they are found (yes)");
  addReferenceOptions(*verb, options->references);
  verb->add_flag("--all", options->all, "Render every IN into the folder given by -o");
  verb->add_flag("--split-layers", options->splitLayers,
                 "One picture a layer: OUT-LAYER.svg and so on, all of the same place");
  verb->add_flag("-f,--force", options->force, "Replace output files that exist");
  verb->footer(
      "Examples:\n"
      "  vek0 render plan.dxf -o plan.svg\n"
      "  vek0 render plan.dxf -o plan.pdf --paper A3 --scale 1:50\n"
      "  vek0 render plan.dxf -o plan.png --size 1920x1080 --background black\n"
      "  vek0 render plan.dxf -o part.svg --window 0,0,500,300 --layers WALLS 'DOOR*'\n"
      "  vek0 render site.dxf -o site.svg --search /library\n"
      "  vek0 render *.dxf --all --format png -o pictures\n\n"
      "The output appears whole or not at all.");
  verb->callback([options, &session] { run(*options, session); });
}

}  // namespace vek0::tool
