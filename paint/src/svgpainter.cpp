#include "vek0paint/svgpainter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "vek0core/files/file.h"
#include "vek0host/textvalues.h"
#include "vek0paint/svgtext.h"

namespace vek0::paint {
namespace {

// Groups are written when so much has been drawn. Bodies that fit the cache of a processor are
// written faster, but a picture should not have too many groups.
constexpr std::size_t kBuffered = 1 << 25;
constexpr double kFullTurn = 2 * std::numbers::pi;

RECT_2D boxOf(const PNT_2D* points, std::size_t count) {
  RECT_2D box;
  box.initRegion();
  for (std::size_t i = 0; i < count; ++i) box.updateRegion(points[i]);
  return box;
}

// Contours of glyphs as path data.
class SvgSink final : public IOutlineSink {
 public:
  explicit SvgSink(SvgPath& path) : m_path(path) {}
  void move(const PNT_2D& to) override {
    if (!m_path.empty()) m_path.close();
    m_path.move(to);
  }
  void line(const PNT_2D& to) override { m_path.line(to); }
  void quad(const PNT_2D& /*from*/, const PNT_2D& control, const PNT_2D& to) override {
    m_path.curve('q', std::array{control, to}.data(), 2);
  }
  void cubic(const PNT_2D& c1, const PNT_2D& c2, const PNT_2D& to) override {
    m_path.curve('c', std::array{c1, c2, to}.data(), 3);
  }

 private:
  SvgPath& m_path;
};

}  // namespace

// -- the document --------------------------------------------------------------------

SvgPainter::SvgPainter(IFile& file, const SHEET& sheet, IOutlineFonts& fonts, Texts texts)
    : SheetPainter(sheet, fonts),
      m_writer(file),
      m_texts(texts),
      m_lineWidth(sheet.lineWidth),
      m_cover(static_cast<double>(sheet.width), static_cast<double>(sheet.height)),
      m_width(sheet.lineWidth) {
  writeHead(sheet);
}

void SvgPainter::writeHead(const SHEET& sheet) {
  const std::string width = std::to_string(sheet.width), height = std::to_string(sheet.height);
  const auto side = [&](long units) {
    const auto length = static_cast<double>(units);
    return sheet.paper ? lengthText(length * sheet.unitMm) + "mm" : std::to_string(units);
  };
  std::string head =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<svg xmlns=\"http://www.w3.org/2000/svg\" "
      "xmlns:inkscape=\"http://www.inkscape.org/namespaces/inkscape\" width=\"" +
      side(sheet.width) + "\" height=\"" + side(sheet.height) + "\" viewBox=\"0 0 " + width + " " +
      height + "\" fill=\"none\" stroke-width=\"" + factorText(sheet.lineWidth) +
      "\" stroke-linecap=\"round\" stroke-linejoin=\"round\" fill-rule=\"evenodd\">\n";
  if (!sheet.title.empty()) head += "<title>" + escapedXml(sheet.title) + "</title>\n";
  // On screen, lines stay thin when zooming; on paper they keep their width.
  if (!sheet.paper) head += "<style>path,circle{vector-effect:non-scaling-stroke}</style>\n";
  if (!sheet.transparent) {
    head += "<rect width=\"" + width + "\" height=\"" + height + "\" fill=\"" +
            host::colorText(sheet.background) + "\"/>\n";
  }
  m_writer.text(head);
}

bool SvgPainter::finish() {
  endEntity();
  flushGroups();
  m_writer.text("</svg>\n");
  return m_writer.finish();
}

std::string SvgPainter::groupId(const std::string& layer) {
  std::string wanted = "layer-" + idPart(layer);
  const auto [known, isNew] = m_groupIds.try_emplace(wanted, 1);
  if (isNew) return wanted;
  // A layer may have many groups, so numbers that are taken are not tried again. Different names
  // may reduce to one id, which must be unique.
  int& number = known->second;
  std::string id;
  do {
    id = wanted + "-" + std::to_string(++number);
  } while (!m_groupIds.try_emplace(id, 1).second);
  return id;
}

std::string SvgPainter::openingTag(const Group& group) {
  const std::string name = escapedXml(group.layer);
  return "<g id=\"" + groupId(group.layer) + "\" inkscape:groupmode=\"layer\" inkscape:label=\"" +
         name + "\" data-layer=\"" + name + "\" stroke=\"" + host::colorText(group.color) + "\"" +
         (group.width == m_lineWidth ? std::string() : widthAttribute(group.width)) + ">\n";
}

std::string SvgPainter::nextHandleId() {
  const int n = ++m_handles[m_handle];
  // An entity can appear several times: in several groups, or clipped.
  return "h" + host::hexText(m_handle) + (n > 1 ? "-" + std::to_string(n) : std::string());
}

void SvgPainter::flushGroups() {
  m_writer.leaveGroup();
  for (std::size_t i = 0; i < m_groups.size(); ++i) {
    m_writer.text(openingTag(m_groups[i]));
    m_writer.writeGroup(i);
    m_writer.text(m_groups[i].leavesClips + "</g>\n");
  }
  m_groups.clear();
  m_groupOf.clear();
  m_group = kNoGroup;
  m_flushed = m_writer.size();
  m_cover.clear();
}

// -- entities and their elements -----------------------------------------------------

void SvgPainter::begin(const DrawItem& item) {
  const zim::WString none;
  const zim::WString& layer = item.layer ? *item.layer : none;
  const bool sameLayer = layer == m_layer;
  // Indistinguishable fills are merged: adjacent filled faces would show seams.
  const double width = item.width > 0 ? item.width : m_lineWidth;
  const bool isFillSame = item.color == m_color && item.alpha == m_alpha;
  const bool unites = item.handle == 0 && m_pathFills && isFillSame;
  if (!sameLayer || item.handle != m_handle || (item.handle == 0 && !unites)) {
    endEntity();
  } else if (!isFillSame || width != m_width) {
    endPath();
  }
  m_color = item.color;
  m_alpha = item.alpha;
  m_width = width;
  m_handle = item.handle;
  if (sameLayer) return;
  m_layer = layer;
  m_layerUtf8 = layer.toUtf8();
  m_group = kNoGroup;
}

SvgPainter::Group& SvgPainter::groupOfItem() {
  if (m_group == kNoGroup) {
    m_group = m_groupOf.try_emplace(m_layerUtf8, m_groups.size()).first->second;
    if (m_group == m_groups.size()) m_groups.push_back({m_layerUtf8, m_color, m_width});
  }
  return m_groups[m_group];
}

// Ensures that the next element may be added to its layer's group.
void SvgPainter::reach(const RECT_2D& box, bool isFill) {
  groupOfItem();
  // A group is written as a whole, so content that must be drawn over that of a later group cannot
  // join an earlier one: then all groups are written first.
  if (!m_cover.admits(box, static_cast<int>(m_group), isFill)) {
    endEntity();
    flushGroups();
    groupOfItem();
  }
  m_cover.mark(box, static_cast<int>(m_group), isFill);
}

// Ids are not known before the end of an entity: a single element gets the handle itself, several
// get a group with it.
void SvgPainter::startElement(std::string_view name) {
  endPath();
  if (m_elementCount++ == 0) {
    enterGroup();
    m_groupPlace = m_writer.place();
  }
  m_writer.text(m_elementCount == 1 ? "<" : "\n<");
  m_writer.text(name);
  if (m_elementCount == 1) m_idPlace = m_writer.place();
}

template <class... Parts>
void SvgPainter::addElement(std::string_view name, const Parts&... rest) {
  startElement(name);
  (m_writer.text(rest), ...);
}

void SvgPainter::startPath(bool fills) {
  if (m_isPathOpen && m_pathFills == fills) return;
  addElement("path", fills ? fillAttribute() + " fill-rule=\"nonzero\"" : strokeAttribute(),
             " d=\"");
  m_writer.startPath();
  m_isPathOpen = true;
  m_pathFills = fills;
}

void SvgPainter::endPath() {
  if (m_isPathOpen) m_writer.text("\"/>");
  m_isPathOpen = false;
}

std::string SvgPainter::strokeAttribute() {
  // The group already states the color and width of its first element.
  const Group& group = groupOfItem();
  std::string attributes;
  if (group.color != m_color) attributes += " stroke=\"" + host::colorText(m_color) + "\"";
  if (group.width != m_width) attributes += widthAttribute(m_width);
  return attributes + opacityAttribute("stroke");
}

std::string SvgPainter::fillAttribute() const {
  return " fill=\"" + host::colorText(m_color) + "\" stroke=\"none\"" + opacityAttribute("fill");
}

std::string SvgPainter::widthAttribute(double width) {
  return " stroke-width=\"" + factorText(width) + "\"";
}

std::string SvgPainter::opacityAttribute(const char* of) const {
  constexpr int opaque = 255;
  if (m_alpha == opaque) return {};
  return std::string(" ") + of + "-opacity=\"" + factorText(m_alpha / double{opaque}) + "\"";
}

void SvgPainter::endEntity() {
  endPath();
  if (m_elementCount == 0) return;
  const std::string id = m_handle == 0 ? std::string() : "id=\"" + nextHandleId() + "\"";
  const bool isGroup = m_elementCount > 1 && !id.empty();
  if (isGroup)
    m_writer.setPlace(m_groupPlace, "<g " + id + ">\n");
  else if (!id.empty())
    m_writer.setPlace(m_idPlace, " " + id);
  m_writer.text(isGroup ? "\n</g>\n" : "\n");
  m_elementCount = 0;
  if (m_writer.size() - m_flushed > kBuffered) flushGroups();
  m_writer.pause();
}

void SvgPainter::enterGroup() {
  Group& group = groupOfItem();
  if (group.clip != m_clips.number()) {
    m_writer.leaveGroup();
    m_writer.text(m_clips.definitions());  // may precede the group
  }
  m_writer.enterGroup(m_group);
  if (group.clip == m_clips.number()) return;
  m_writer.text(group.leavesClips);
  m_writer.text(m_clips.openingTags());
  group.leavesClips = m_clips.closingTags();
  group.clip = m_clips.number();
}

bool SvgPainter::plainClip(const PNT_2D* points, std::size_t count) {
  endEntity();
  SvgPath path;
  if (count > 0) path.move(points[0]);
  for (std::size_t i = 1; i < count; ++i) path.line(points[i]);
  path.close();
  m_clips.push(path.data());
  return true;
}

void SvgPainter::plainPopClip() {
  endEntity();
  m_clips.pop();
}

// -- shapes and texts -------------------------------------------------------------------

void SvgPainter::plainStroke(const PNT_2D* points, std::size_t count, bool closed) {
  reach(boxOf(points, count), false);
  startPath(false);
  m_writer.stroke(points, count, closed);
}

void SvgPainter::plainSegments(const PNT_2D* points, std::size_t count) {
  reach(boxOf(points, count), false);
  startPath(false);
  m_writer.segments(points, count);
}

void SvgPainter::plainArc(const PNT_2D& center, double radius, double startRad, double sweepRad) {
  if (isInvisible(radius)) return plainDot(center);
  reach(RECT_2D(center.x - radius, center.y - radius, center.x + radius, center.y + radius), false);
  if (std::abs(sweepRad) >= kFullTurn) {
    return addElement("circle", strokeAttribute() + " cx=\"" + lengthText(center.x) + "\" cy=\"" +
                                    lengthText(center.y) + "\" r=\"" + lengthText(radius) + "\"/>");
  }
  startPath(false);
  m_writer.arc(center, radius, startRad, sweepRad);
}

void SvgPainter::plainFill(const PNT_2D* points, const std::size_t* ends, std::size_t rings,
                           FillRule rule) {
  reach(boxOf(points, ends[rings - 1]), true);
  // Merges the strips of a filled face into one path: separately antialiased, they would let the
  // background show through.
  const bool unites = rule == FillRule::NonZero;
  if (unites) {
    startPath(true);
  } else {
    addElement("path", fillAttribute(), " d=\"");
    m_writer.startPath();
  }
  const bool reversed = unites && turnLeft(points, ends, rings);
  for (std::size_t ring = 0, start = 0; ring < rings; start = ends[ring++])
    m_writer.ring(points + start, ends[ring] - start, reversed);
  if (!unites) m_writer.text("\"/>");
}

// A stroke of zero length, made visible by its round caps.
void SvgPainter::plainDot(const PNT_2D& at) { plainStroke(std::array{at, at}.data(), 2, false); }

void SvgPainter::plainDisc(const PNT_2D& center, double diameter) {
  const double r = diameter / 2;
  reach(RECT_2D(center.x - r, center.y - r, center.x + r, center.y + r), true);
  addElement("circle", fillAttribute() + " cx=\"" + lengthText(center.x) + "\" cy=\"" +
                           lengthText(center.y) + "\" r=\"" + lengthText(r) + "\"/>");
}

void SvgPainter::plainText(const DrawText& text, const OutlineFont& font, const RECT_2D& bounds) {
  reach(bounds, false);
  if (m_texts == AsOutlines && font.hasOutlines(*text.string)) {
    SvgPath path;
    SvgSink sink(path);
    font.outline(text, sink);
    if (path.empty()) return;
    path.close();
    // Glyphs that overlap must not cut holes into each other.
    return addElement("path",
                      fillAttribute() + " fill-rule=\"nonzero\" d=\"" + path.data() + "\"/>");
  }
  addElement("text", fillAttribute() + textAttributes(text, font) + ">" +
                         escapedXml(text.string->toUtf8()) + "</text>");
}

// The size is a round number typical of screens, and the matrix does the rest: viewers reject very
// large or small sizes. The length preserves the measured width in a viewer with a different font.
std::string SvgPainter::textAttributes(const DrawText& text, const OutlineFont& font) const {
  constexpr double kSize = 100;
  const double unit = font.unitsPerEm() / kSize;
  const AFFINE_2D& m = text.matrix;
  const double width = font.getStringWidth(*text.string, true, text.bold, text.italic) / unit;
  std::string attributes = " transform=\"matrix(" + factorText(m.a * unit) + " " +
                           factorText(m.b * unit) + " " + factorText(-m.c * unit) + " " +
                           factorText(-m.d * unit) + " " + lengthText(m.e) + " " + lengthText(m.f) +
                           ")\" font-family=\"" + escapedXml(font.family()) +
                           ",sans-serif\" font-size=\"100\"";
  if (text.bold) attributes += " font-weight=\"bold\"";
  if (text.italic) attributes += " font-style=\"italic\"";
  // The matrix places the left end.
  if (font.isRightToLeft(*text.string)) attributes += " direction=\"rtl\" text-anchor=\"end\"";
  if (width > 0) {
    attributes += " textLength=\"" + lengthText(width) + "\" lengthAdjust=\"spacingAndGlyphs\"";
  }
  return attributes + " xml:space=\"preserve\"";
}

}  // namespace vek0::paint
