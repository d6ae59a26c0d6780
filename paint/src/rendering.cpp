#include "vek0paint/rendering.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "vek0core/view/wndvpt.h"
#include "vek0draw/draw.h"
#include "vek0host/drawingfile.h"
#include "vek0host/layerchoice.h"
#include "vek0host/outputfile.h"
#include "vek0host/paths.h"
#include "vek0host/units.h"
#include "vek0host/visibletext.h"
#include "vek0paint/cairopainter.h"
#include "vek0paint/fonts.h"
#include "vek0paint/shownextents.h"
#include "vek0paint/svgpainter.h"

namespace vek0::paint {

using namespace host;

namespace {

constexpr double kPixelsPerPoint = 600;  // about a microsecond each
constexpr double kLeastPointPixels = 3;  // or points would hardly be seen

// The drawing unit: from the options, else from the file, else a millimeter.
std::string unitOf(const RenderOptions& options, const ReadResult& result) {
  const char* stated = unitName(result.outcome.units);
  if (!options.unit.empty()) return options.unit;
  return stated ? stated : "mm";
}

std::unique_ptr<SheetPainter> makePainter(const RenderOptions& options, IFile& file,
                                          const SHEET& sheet, FontLibrary& fonts) {
  const Format format = options.picture.format;
  if (format != Format::Svg) {
    const auto kind = format == Format::Png ? CairoPainter::Png : CairoPainter::Pdf;
    return std::make_unique<CairoPainter>(kind, file, sheet, fonts);
  }
  const auto texts = options.textsAsOutlines ? SvgPainter::AsOutlines : SvgPainter::AsText;
  return std::make_unique<SvgPainter>(file, sheet, fonts, texts);
}

// Content lost in reading that users may miss in the picture; empty if complete. The views of a
// sheet are not part of the drawing.
std::string missingFrom(const CFileReport& report) {
  std::string kinds;
  for (const CFileReport::Entry& entry : report.entries()) {
    if (entry.code != ReportCode::KindSkipped || entry.sample == u"VIEWPORT") continue;
    kinds += (kinds.empty() ? "" : ", ") + std::to_string(entry.count) + " " +
             (entry.sample.empty() ? "others" : entry.sample.toUtf8());
  }
  return kinds;
}

// Explains an empty picture by where the content is; empty if unknown.
std::string whyNothing(const ReadResult& result, const LayerChoice& layers) {
  const std::string elsewhere = result.elsewhere();
  if (!elsewhere.empty()) return ": " + elsewhere;
  if (layers.unprinted().empty()) return "";
  const std::string name = visible(layers.unprinted());
  return ": layer " + name + " is not printed; --layers " + name + " shows it";
}

std::string joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

// Renders drawings one after the other; failures go to the session.
class Renderer {
 public:
  Renderer(const RenderOptions& options, Session& session)
      : m_options(options),
        m_format(options.picture.format),
        m_session(session),
        m_projector(makeProjector(options.view)) {
    m_fonts.registerFonts();
    m_drawOptions.colors = options.colors;
    // A point of a page is by far the most expensive.
    if (m_format == Format::Pdf) {
      m_drawOptions.pointLimit /= 4;
      m_drawOptions.effort /= 4;
    }
    if (m_format == Format::Png) m_drawOptions.pixelsPerPoint = kPixelsPerPoint;
    m_drawOptions.background = options.background.value_or(RGB_COLOR{255, 255, 255});
  }

  void render(const std::string& in, const std::string& out) {
    // With several layers there are several files, which are checked one by one.
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
    m_session.notify(message, details);
  }

  void reportLosses(const std::string& in, const CFileReport& report) const {
    const std::string missing = missingFrom(report);
    if (!missing.empty()) warn(in + ": not shown: " + missing);
    if (const long count = report.count(ReportCode::ExtrusionIgnored)) {
      warn(in + ": " + std::to_string(count) +
           " entities may be misplaced: their extrusion is not supported");
    }
  }

  void readReferences(CData& data, const std::string& in) const {
    ReferenceReader reader(in, m_options.references, m_session);
    reader.resolve(data);
    if (reader.failures() > 0)
      warn(in + ": some references are not shown:", reader.failuresToText());
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
    constexpr double kMmPerMeter = 1000;
    PICTURE_OPTIONS layout = m_options.picture;
    layout.unitMm = unitInMeters(drawingUnit).value_or(1 / kMmPerMeter) * kMmPerMeter;
    layout.defaultWeight = data.getVars().getDefaultLineweight() / 100.0;
    PICTURE picture = layOut(layout, extents);
    if (!picture.error.empty() && layout.scale && m_options.unit.empty())
      picture.error +=
          "; the drawing unit is assumed to be 1 " + drawingUnit + "; --unit overrides it";
    picture.sheet.background = m_drawOptions.background;
    picture.sheet.transparent = !m_options.background;
    if (in != "-") picture.sheet.title = fileTitle(in);
    // A tenth of a pixel is invisible, and so are two hundredths of a millimeter on paper.
    const double line = picture.sheet.lineWidth, unit = picture.sheet.unitMm;
    m_drawOptions.weights = picture.sheet.weights;
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

  static std::string stemOf(const std::string& path) {
    const std::u8string stem = toPath(path).stem().u8string();
    return std::string(stem.begin(), stem.end());
  }

  static std::string fileTitle(const std::string& path) {
    // File names may be any bytes, titles may not.
    return zim::WString::fromUtf8(stemOf(path)).toUtf8();
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
      const auto painter = makePainter(m_options, file, picture.sheet, m_fonts);
      result = drawData(data, *m_projector, window, *painter, m_drawOptions);
      // The painter writes the rest of the document, so its success counts as well.
      written = painter->finish() && !file.fail();
      file.close();
    }
    if (!written) return fail(kOutputFailed, "'" + output.path() + "' cannot be written");
    if (result.unclipped > 0)
      warn("'" + output.path() + "' shows " + std::to_string(result.unclipped) +
           " clipped inserts whole: clipping needs a plan view, and boundaries that are neither "
           "too long nor too many");
    reportShortcomings(output.path(), result);
    // Of split layers, those that show nothing get no file.
    if (result.emitted == 0 && !evenEmpty) return;
    if (!output.commit()) fail(kOutputFailed, output.error());
  }

  void reportShortcomings(const std::string& path, const DRAW_RESULT& result) {
    if (result.simplified > 0)
      warn("'" + path + "' shows " + std::to_string(result.simplified) +
           " parts that are too small or too numerous as dots, areas, continuous lines or rough "
           "arcs");
    if (result.missing > 0)
      fail(kDrawingFailed, "'" + path + "' shows " + std::to_string(result.missing) +
                               " hatches by their boundaries: their patterns are too dense");
    if (result.cut)
      fail(kDrawingFailed, "'" + path + "' is incomplete: the drawing shows too much");
  }

  // One picture per layer with content, all with the same layout.
  void renderLayers(CData& data, const LayerChoice& layers, const PICTURE& picture,
                    const std::string& out) {
    std::unordered_set<std::string> names;
    const std::filesystem::path path = toPath(out);
    // Names may have 255 bytes, of which number and extension need a few.
    constexpr std::size_t kMostForBoth = 235, kMostForLayer = 100;
    // At least some room remains for the layer, even with a very long file name.
    const std::size_t room = kMostForBoth - std::min(kMostForBoth, stemOf(out).size());
    for (const CLayer* layer : layers.visible()) {
      layers.showOnly(layer);
      const std::string wanted =
          stemOf(out) + "-" +
          fileName(layer->getFullName().toUtf8(), std::min(kMostForLayer, room));
      std::string stem = wanted;
      for (int n = 2; !names.insert(stem).second; ++n) stem = wanted + "-" + std::to_string(n);
      const std::u8string file =
          (path.parent_path() / toPath(stem + "." + nameOf(m_format))).u8string();
      draw(data, picture, std::string(file.begin(), file.end()), false);
    }
  }

  // A layer's name without characters invalid in file names; long names are cut between characters.
  static std::string fileName(std::string name, std::size_t most) {
    if (name.size() > most) {
      std::size_t end = most;
      // Bytes 10xxxxxx continue a UTF-8 character.
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

}  // namespace

void renderDrawing(const std::string& in, const std::string& out, const RenderOptions& options,
                   Session& session) {
  Renderer(options, session).render(in, out);
}

void renderDrawings(const std::vector<std::string>& files, const std::string& target,
                    const RenderOptions& options, Session& session) {
  const std::filesystem::path folder = toPath(target);
  std::error_code failure;
  std::filesystem::create_directories(folder, failure);
  if (!std::filesystem::is_directory(folder, failure)) {
    return session.fail(kOutputFailed, "'" + target + "' is not a folder and cannot be created");
  }
  Renderer renderer(options, session);
  std::unordered_set<std::string> written;
  for (const std::string& in : files) {
    std::filesystem::path name = toPath(in).stem();
    name += std::string(".") + nameOf(options.picture.format);
    const std::u8string out = (folder / name).u8string();
    // Two drawings of one name in different folders must not overwrite each other.
    if (!written.insert(std::string(out.begin(), out.end())).second) {
      session.fail(kOutputFailed, in + ": a drawing of the same name has already been rendered");
      continue;
    }
    renderer.render(in, std::string(out.begin(), out.end()));
  }
}

}  // namespace vek0::paint
