#include "vek0paint/rendering.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "painters.h"
#include "partnames.h"
#include "stylefonts.h"
#include "vek0core/view/wndvpt.h"
#include "vek0draw/draw.h"
#include "vek0draw/layoutdrawing.h"
#include "vek0host/drawingfile.h"
#include "vek0host/layerchoice.h"
#include "vek0host/losslog.h"
#include "vek0host/outputfile.h"
#include "vek0host/paths.h"
#include "vek0host/units.h"
#include "vek0host/visibletext.h"
#include "vek0paint/drawingfonts.h"
#include "vek0paint/shownextents.h"

namespace vek0::paint {

using namespace host;

namespace {

constexpr double kPixelsPerPoint = 600;  // about a microsecond each
// Of differences.
constexpr RGB_COLOR kSame{200, 200, 200}, kRemoved{220, 20, 20}, kAdded{0, 150, 40};
constexpr std::size_t kMostMarks = 10'000;  // more would only cover each other
constexpr double kLeastPointPixels = 3;     // or points would hardly be seen
// The layouts of a drawing together may take as long as so many of the largest.
constexpr std::size_t kLargestPages = 4;

// What a page may use of a limit, if the pages before it used that much.
std::size_t remaining(std::size_t limit, std::size_t used) {
  const std::size_t all = kLargestPages * limit;
  return std::min(limit, all - std::min(all, used));
}

// The drawing unit: from the options, else from the file, else a millimeter.
std::string unitOf(const RenderOptions& options, const ReadResult& result) {
  const char* stated = unitName(result.outcome.units);
  if (!options.unit.empty()) return options.unit;
  return stated ? stated : "mm";
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
        m_texts(options.textsAsOutlines ? SvgPainter::AsOutlines : SvgPainter::AsText),
        m_projector(makeProjector(options.view)) {
    m_drawOptions.colors = options.colors;
    if (m_format == Format::Png) m_drawOptions.pixelsPerPoint = kPixelsPerPoint;
    m_drawOptions.background = options.background.value_or(RGB_COLOR{255, 255, 255});
  }

  void render(const std::string& in, const std::string& out) {
    // With several layers there are several files, which are checked one by one.
    if (!isNamedAfter() && !isWritable(out)) return;
    Drawing data = newDrawing();
    // Fonts are found by name.
    const ReadResult result = loadFile(*data, in, m_session, true);
    if (!result.ok()) return fail(kDrawingFailed, in + ": " + result.message());
    reportLosses(in, result.report);
    if (m_options.withReferences) readReferences(*data, in);
    m_fonts->adopt(*data);
    renderLoaded(*data, in, result, out);
    keepUntilExit(std::move(data));
  }

  void renderOpened(const NamedDrawing& drawing, const std::string& out) {
    if (!isNamedAfter() && !isWritable(out)) return;
    const StyleFonts kept(drawing.data);
    m_fonts->adopt(drawing.data);
    ReadResult result;
    result.outcome.units = drawing.data.getVars().getUnits();
    renderLoaded(drawing.data, drawing.name, result, out);
  }

  void renderDifferences(const NamedDrawing& before, const NamedDrawing& after,
                         const COMPARISON& comparison, const std::string& out) {
    RECT_2D extents;
    extents.initRegion();
    for (const NamedDrawing* drawing : {&before, &after}) {
      if (m_options.withReferences) readReferences(drawing->data, drawing->name);
      m_fonts->adopt(drawing->data);
      const RECT_2D shown = shownExtents(drawing->data, *m_projector, m_drawOptions);
      if (shown.validRegion()) extents.updateRegion(shown);
    }
    PICTURE_OPTIONS layout = m_options.picture;
    const PICTURE picture = layOutIn(after.data, after.name, layout, extents);
    if (!picture.error.empty()) return fail(kWrongUsage, after.name + ": " + picture.error);
    DRAW_MARKS now{{}, kSame}, old;
    for (const CEnt* ent : comparison.added) now.colors[ent] = kAdded;
    for (const CEnt* ent : comparison.removed) old.colors[ent] = kRemoved;
    for (const std::vector<ENT_CHANGE>* changes : {&comparison.moved, &comparison.changed})
      for (const ENT_CHANGE& change : *changes) {
        now.colors[change.after] = kAdded;
        old.colors[change.before] = kRemoved;
      }
    write(picture.sheet, out, true, [&](SheetPainter& painter, DRAW_RESULT& result) {
      Page page{picture, nullptr, m_drawOptions};
      const auto add = [&](const CData& data, const DRAW_MARKS& marks) {
        page.options.marks = &marks;
        result += draw(data, page, painter);
      };
      // What is the same would cover the old state, and the old state the new one.
      add(after.data, now);
      add(before.data, old);
      now.rest.reset();
      if (!old.colors.empty()) add(after.data, now);
      return true;
    });
  }

  void renderMarks(const NamedDrawing& drawing, const std::vector<PictureMark>& marks,
                   const std::string& out) {
    m_fonts->adopt(drawing.data);
    RECT_2D extents = shownExtents(drawing.data, *m_projector, m_drawOptions);
    if (!extents.validRegion()) extents = RECT_2D(0, 0, 1, 1);
    PICTURE_OPTIONS layout = m_options.picture;
    const PICTURE picture = layOutIn(drawing.data, drawing.name, layout, extents);
    DRAW_MARKS colors{{}, kSame};
    // Of several marks of an entity, the first colors it.
    for (const PictureMark& mark : marks)
      for (const CEnt* ent : mark.ents) colors.colors.try_emplace(ent, mark.color);
    if (marks.size() > kMostMarks)
      warn("'" + out + "' shows the first " + std::to_string(kMostMarks) + " of " +
           std::to_string(marks.size()) + " marks");
    write(picture.sheet, out, true, [&](SheetPainter& painter, DRAW_RESULT& result) {
      Page page{picture, nullptr, m_drawOptions};
      page.options.marks = &colors;
      result += draw(drawing.data, page, painter);
      const CWndVpt window = windowOf(picture);
      MarkPainter over(painter, m_fonts->drawing(nullptr), picture.sheet);
      for (std::size_t i = 0; i < std::min(marks.size(), kMostMarks); ++i)
        if (marks[i].point)
          over.draw({window.getViewX(marks[i].point->x), window.getViewY(marks[i].point->y)},
                    marks[i]);
      return true;
    });
  }

 private:
  // A picture, of the model if the layout is null, and how it is drawn.
  struct Page {
    PICTURE picture;
    const CLayout* layout;
    DRAW_OPTIONS options;
  };

  // Whether the pictures have names of their own, made from that of the output.
  bool isNamedAfter() const { return m_options.splitLayers || (plotsAll() && !hasPages()); }
  bool hasPages() const { return m_format == Format::Pdf; }
  bool plotsAll() const { return m_options.layout == "all"; }

  void fail(Failure code, const std::string& message) { m_session.fail(code, message); }
  void warn(const std::string& message, const std::string& details = "") const {
    m_session.notify(message, details);
  }
  void failDrawing(const char* code, long count, const std::string& message) const {
    m_session.fail(kDrawingFailed, message);
    if (m_session.log) m_session.log->addLoss(LossLog::Draw, code, count, message);
  }
  // Something that the picture does not show as it is.
  void lack(const char* code, long count, const std::string& message) const {
    warn(message);
    if (m_session.log) m_session.log->addLoss(LossLog::Draw, code, count, message);
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
    const OutputFile output(out, m_options.force);
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
    PICTURE picture = layOutIn(data, in, layout, extents);
    if (!picture.error.empty() && layout.scale && m_options.unit.empty())
      picture.error +=
          "; the drawing unit is assumed to be 1 " + drawingUnit + "; --unit overrides it";
    return picture;
  }

  // A plot shows the paper; options replace its size, scale or window.
  PICTURE layOutSheet(const CData& data, const std::string& in, const CLayout& layout) {
    const PLOT_SETTINGS& plot = layout.getPlot();
    PICTURE_OPTIONS options = m_options.picture;
    options.unitMm = plot.scale > 0 ? plot.scale : 1;
    constexpr double invisible = 1e-6;
    if (!plot.hasLineweights) options.weightFactor = invisible;
    const RECT_2D paper = layout.getPaper();
    const std::string name = layout.getName().toUtf8();
    if (!paper.validRegion()) {
      warn(in + ": layout " + name + " has no paper size and is fitted to its content");
      if (!layout.getBdry().validRegion()) warn(in + ": layout " + name + " is empty");
      return layOutIn(data, in, options, layout.getBdry());
    }
    const bool isPlain = !options.size && !options.scale;
    if (isPlain && !options.window) options.size = {plot.width, plot.height, true};
    if (isPlain) options.scale = 1;
    if (!options.window) options.window = paper;
    return layOutIn(data, in, options, paper);
  }

  // Completes the options.
  PICTURE layOutIn(const CData& data, const std::string& in, PICTURE_OPTIONS& layout,
                   const RECT_2D& extents) {
    layout.defaultWeight = data.getVars().getDefaultLineweight() / 100.0;
    PICTURE picture = layOut(layout, extents);
    picture.sheet.background = m_drawOptions.background;
    picture.sheet.transparent = !m_options.background;
    if (in != "-") picture.sheet.title = fileTitle(in);
    // A tenth of a pixel is invisible, and so are two hundredths of a millimeter on paper.
    const double line = picture.sheet.lineWidth, unit = picture.sheet.unitMm;
    m_drawOptions.weights = picture.sheet.weights;
    m_drawOptions.chordError = picture.sheet.paper ? 0.02 / unit : 0.1;
    m_drawOptions.penReach = std::max(1.0, line);
    const double pixel = picture.sheet.pixel();
    m_drawOptions.leastPoint = std::max(kLeastPointPixels * pixel, line);
    m_drawOptions.finestPattern = std::max(picture.sheet.paper ? 0.2 / unit : 1, 2 * line);
    if (picture.error.empty() && picture.overflows) {
      warn(in + ": at this scale the drawing is larger than the sheet");
    }
    return picture;
  }

  static CWndVpt windowOf(const PICTURE& picture) {
    CWndVpt window(1);
    // A device of n pixels spans n - 1 steps, and the sheet as many as it has units.
    window.resize(picture.sheet.width + 1, picture.sheet.height + 1);
    window.set(picture.world);
    return window;
  }

  static std::string fileTitle(const std::string& path) {
    // File names may be any bytes, titles may not.
    return zim::WString::fromUtf8(stemOf(path)).toUtf8();
  }

  void renderLoaded(CData& data, const std::string& in, const ReadResult& result,
                    const std::string& out) {
    const LayerChoice layers(data, m_options.layers, m_options.hiddenLayers);
    if (layers.showsNone())
      return fail(kDrawingFailed, in + ": no layer is named " + joined(m_options.layers));
    for (const std::string& name : layers.unmatched()) warn(in + ": no layer is named " + name);
    if (m_options.layout || m_options.currentLayout) return renderLayouts(data, in, out);
    const PICTURE picture = layOutDrawing(data, in, result, layers);
    if (!picture.error.empty()) return fail(kWrongUsage, in + ": " + picture.error);
    if (m_options.splitLayers) {
      renderLayers(data, layers, picture, out);
    } else {
      draw(data, {{picture, nullptr, m_drawOptions}}, out, true);
    }
  }

  DRAW_RESULT draw(const CData& data, const Page& page, IPainter& painter) {
    const CWndVpt window = windowOf(page.picture);
    if (!page.layout) return drawData(data, *m_projector, window, painter, page.options);
    const bool isClipped = clipToPlot(*page.layout, window, painter);
    DRAW_OPTIONS options = page.options;
    options.limit = remaining(options.limit, std::max(m_drawn.emitted, m_drawn.looked));
    options.pointLimit = remaining(options.pointLimit, m_drawn.points);
    const DRAW_RESULT result = drawLayout(data, *page.layout, window, painter, options);
    m_drawn += result;
    if (isClipped) painter.popClip();
    return result;
  }

  // A plot of a part of the sheet shows nothing outside it, unless the user chooses the part.
  bool clipToPlot(const CLayout& layout, const CWndVpt& window, IPainter& painter) const {
    const RECT_2D area = layout.getPlottedArea();
    if (m_options.picture.window || !area.validRegion()) return false;
    const double left = window.getViewX(area.min.x), right = window.getViewX(area.max.x);
    const double bottom = window.getViewY(area.min.y), top = window.getViewY(area.max.y);
    const PNT_2D corners[] = {{left, bottom}, {right, bottom}, {right, top}, {left, top}};
    return painter.pushClip(corners, std::size(corners));
  }

  // At least one page; several only of a format that has pages.
  void draw(const CData& data, const std::vector<Page>& pages, const std::string& out,
            bool evenEmpty) {
    const auto drawPages = [&](SheetPainter& painter, DRAW_RESULT& result) {
      bool written = true;
      for (std::size_t i = 0; i < pages.size() && written; ++i) {
        written = i == 0 || painter.nextPage(pages[i].picture.sheet);
        if (written) result += draw(data, pages[i], painter);
      }
      return written;
    };
    write(pages[0].picture.sheet, out, evenEmpty, drawPages);
  }

  // `drawPages` returns whether the pages could be written.
  template <class DrawPages>
  void write(const SHEET& first, const std::string& out, bool evenEmpty,
             const DrawPages& drawPages) {
    OutputFile output(out, m_options.force);
    if (!output.error().empty()) return fail(kOutputFailed, output.error());
    IFile& file = output.file();
    DRAW_RESULT result;
    bool written = file.open();
    if (written) {
      const auto painter = makePainter(m_format, file, first, *m_fonts, m_texts);
      written = drawPages(*painter, result);
      // The painter writes the rest of the document, so its success counts as well.
      written = painter->finish() && written && !file.fail();
      file.close();
    }
    if (!written) return fail(kOutputFailed, "'" + output.path() + "' cannot be written");
    if (result.unclipped > 0)
      lack(
          "clip not drawn", static_cast<long>(result.unclipped),
          "'" + output.path() + "' shows " + std::to_string(result.unclipped) +
              " clipped inserts whole: clipping needs a plan view, and boundaries that are neither "
              "too long nor too many");
    if (result.boxed > 0)
      lack("view not clipped", static_cast<long>(result.boxed),
           "'" + output.path() + "' shows " + std::to_string(result.boxed) +
               " views within the rectangle around their boundary: there is too much to clip");
    if (result.blank > 0)
      lack("view not drawn", static_cast<long>(result.blank),
           "'" + output.path() + "' shows " + std::to_string(result.blank) +
               " viewports empty: their views are not from above, or without a valid scale");
    reportShortcomings(output.path(), result);
    // Of split layers, those that show nothing get no file.
    if (result.emitted == 0 && !evenEmpty) return;
    if (!output.commit()) fail(kOutputFailed, output.error());
  }

  void reportShortcomings(const std::string& path, const DRAW_RESULT& result) {
    if (result.simplified > 0)
      lack(
          "parts simplified", static_cast<long>(result.simplified),
          "'" + path + "' shows " + std::to_string(result.simplified) +
              " parts that are too small or too numerous as dots, areas, continuous lines or rough "
              "arcs");
    if (result.missing > 0)
      failDrawing("hatch not drawn", static_cast<long>(result.missing),
                  "'" + path + "' shows " + std::to_string(result.missing) +
                      " hatches by their boundaries: their patterns are too dense");
    if (result.cut)
      failDrawing("picture cut", 1, "'" + path + "' is incomplete: the drawing shows too much");
  }

  // One picture per layer with content, all with the same layout.
  void renderLayers(CData& data, const LayerChoice& layers, const PICTURE& picture,
                    const std::string& out) {
    PartNames names(out, nameOf(m_format));
    for (const CLayer* layer : layers.visible()) {
      layers.showOnly(layer);
      draw(data, {{picture, nullptr, m_drawOptions}}, names.next(layer->getFullName()), false);
    }
  }

  void renderLayouts(const CData& data, const std::string& in, const std::string& out) {
    const std::vector<const CLayout*> layouts = chosenLayouts(data);
    if (layouts.empty()) return fail(kDrawingFailed, in + ": " + whyNoLayout(data));
    m_drawn = {};
    std::vector<Page> pages;
    for (const CLayout* layout : layouts) {
      const PICTURE picture = layOutSheet(data, in, *layout);
      const std::string name = layout->getName().toUtf8();
      if (!picture.error.empty()) {
        // A paper size that the file states is no fault of the user.
        const bool isChosen = m_options.picture.size || m_options.picture.scale;
        fail(isChosen ? kWrongUsage : kDrawingFailed,
             in + ": layout " + name + ": " + picture.error);
        continue;
      }
      pages.push_back({picture, layout, m_drawOptions});
    }
    if (pages.empty()) return;
    if (!isNamedAfter()) return draw(data, pages, out, true);
    PartNames names(out, nameOf(m_format));
    for (const Page& page : pages) draw(data, {page}, names.next(page.layout->getName()), true);
  }

  std::vector<const CLayout*> chosenLayouts(const CData& data) const {
    const CLayoutTable& all = data.getLayouts();
    std::vector<const CLayout*> chosen;
    if (!m_options.layout)
      chosen.push_back(all.getActive());
    else if (!plotsAll())
      chosen.push_back(all.get(zim::WString::fromUtf8(*m_options.layout)));
    for (int i = 0; plotsAll() && i < all.size(); ++i) chosen.push_back(&all[i]);
    std::erase(chosen, nullptr);
    return chosen;
  }

  std::string whyNoLayout(const CData& data) const {
    std::vector<std::string> names;
    for (int i = 0; i < data.getLayouts().size(); ++i)
      names.push_back(data.getLayouts()[i].getName().toUtf8());
    if (m_session.reading.strict) return "strict reading skips layouts";
    if (names.empty()) return "the drawing has no layouts";
    return "no layout is named " + *m_options.layout + "; there are: " + joined(names);
  }

  const RenderOptions& m_options;
  const Format m_format;
  Session& m_session;
  const SvgPainter::Texts m_texts;
  const std::unique_ptr<IDrawingFonts> m_fonts = makeDrawingFonts();
  std::unique_ptr<IProjector> m_projector;
  DRAW_OPTIONS m_drawOptions;
  DRAW_RESULT m_drawn;  // of the layouts of the drawing so far
};

}  // namespace

void renderDrawing(const std::string& in, const std::string& out, const RenderOptions& options,
                   Session& session) {
  Renderer(options, session).render(in, out);
}

void renderOpened(const NamedDrawing& drawing, const std::string& out, const RenderOptions& options,
                  Session& session) {
  Renderer(options, session).renderOpened(drawing, out);
}

void renderDifferences(const NamedDrawing& before, const NamedDrawing& after,
                       const COMPARISON& comparison, const std::string& out,
                       const RenderOptions& options, Session& session) {
  Renderer(options, session).renderDifferences(before, after, comparison, out);
}

void renderMarks(const NamedDrawing& drawing, const std::vector<PictureMark>& marks,
                 const std::string& out, const RenderOptions& options, Session& session) {
  Renderer(options, session).renderMarks(drawing, marks, out);
}

}  // namespace vek0::paint
