// Reads MTEXT and builds texts from it: the codes within the text become pieces (mtextcodes), the
// pieces become lines in a box (mtextlayout), and each run of equal format in a line becomes one
// text. Newer files state columns, and the size of the text as measured by its program, in an
// embedded object that repeats the codes of the text with other meanings (`takeEmbedded`).
#include "dxf/in/convert/mtextreader.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "dxf/in/convert/dimstyles.h"
#include "dxf/in/convert/replacement.h"
#include "dxf/ocs.h"
#include "geometry/vector.h"
#include "vek0core/entities/enttext.h"
#include "vek0core/geometry/finite.h"
#include "vek0core/tables/font.h"
#include "vek0core/tables/style.h"
#include "vek0core/tables/text.h"

namespace vek0::detail {
namespace {

// Bounds the work for one record, far above real texts.
constexpr std::size_t kMostColumns = 1000;
constexpr double kMostSpacing = 100;

/// The plane of a text in world coordinates: seen from above, or from below, where texts are
/// mirrored. In any other plane they are laid flat.
class TextPlane {
 public:
  TextPlane(const PNT_3D& normal, const PNT_3D& direction) {
    const PlaneAxes axes(normal);
    m_isFlat = !axes.isWorld() && !axes.isMirrored();
    m_isMirrored = axes.isFromBelow();
    const PNT_3D& along = length(direction) > 0 ? direction : axes.x;
    const double angle = std::atan2(along.y, along.x);
    m_x = PNT_2D(std::cos(angle), std::sin(angle));
    // Seen from below, up is on the other side of the line.
    m_y = m_isMirrored ? PNT_2D(m_x.y, -m_x.x) : PNT_2D(-m_x.y, m_x.x);
  }

  /// Whether the text had to be laid flat.
  bool isFlat() const { return m_isFlat; }
  PNT_3D at(const PNT_3D& origin, double x, double y) const {
    return PNT_3D(origin.x + m_x.x * x + m_y.x * y, origin.y + m_x.y * x + m_y.y * y, origin.z);
  }
  CTextContext context(const MTextFormat& f, const zim::WString& string) const {
    const double side = m_isMirrored ? -1 : 1;
    return CTextContext(f.height, side * f.oblique, side * f.widthScale, std::atan2(-m_y.x, m_y.y),
                        string);
  }

 private:
  bool m_isFlat, m_isMirrored;
  PNT_2D m_x = PNT_2D(1, 0), m_y = PNT_2D(0, 1);  // along the lines and upwards
};

MTextFormat baseFormat(const RecordReader& in, const MTextRecord& record) {
  MTextFormat f;
  f.height = record.box.height;
  f.color = in.record().color;
  f.trueColor = in.record().traits.trueColor;
  if (!record.style) return f;
  if (record.style->getFont()) f.form = letterFormOf(record.style->getFont()->getName());
  if (record.style->getWidthScale() > 0) f.widthScale = record.style->getWidthScale();
  f.oblique = record.style->getOblique();
  return f;
}

void noteCodes(const RecordReader& in, const MTextRecord& record, const MTextContent& content,
               std::size_t runs) {
  for (const std::u16string& code : content.dropped)
    in.note(ReportCode::TextCodeDropped, zim::WString(u"\\" + code));
  if (record.text.size() >= MTextRecord::kMostUnits || runs >= MTextRecord::kMostRuns)
    in.note(ReportCode::TextCut);
}

// The style named by the record, or the drawing's "STANDARD".
CStyle* styleOf(const RecordReader& in) {
  CStyle* style = in.record().style;
  return style ? style : in.context().semantor.getStyleStandard();
}

// Texts follow the direction of their style, but those that this file builds are horizontal in any
// style. Files can say so only by a style.
CStyle* horizontalStyle(const RecordReader& in, CStyle* style) {
  IFileDXFISemantor& semantor = in.context().semantor;
  while (style && style->isHoriz()) {
    const zim::WString name = style->getName() + u"_HORIZONTAL";
    semantor.createStyle(name, style->getFont(), style->getFixedHeight(), style->getWidthScale(),
                         style->getOblique(), style->getLastHeight(),
                         style->getFlags() & (CStyle::kBold | CStyle::kItalic));
    style = semantor.getStyle(name);
  }
  return style;
}

// A usable height.
double heightOf(const RecordReader& in, double height, const CStyle* style) {
  if (height > 0) return height;
  in.note(ReportCode::NumberReplaced, u"height");
  return style && style->getFixedHeight() > 0 ? style->getFixedHeight() : 1;
}

EntPtr handOverTexts(RecordReader& in, std::vector<EntPtr> built, const zim::WString& kind) {
  if (!built.empty() || in.failed()) return handOver(in, std::move(built), kind);
  in.note(ReportCode::TextEmpty, kind);
  return nullptr;
}

// -- MTEXT ---------------------------------------------------------------------

/// Reads the codes specific to MTEXT.
class MTextReader {
 public:
  explicit MTextReader(RecordReader& in) : m_in(in) {}

  EntPtr read();

 private:
  void take(long code);
  void takeEmbedded();
  void takeColumns(long code);
  void finishBox();
  PNT_3D direction() const;

  RecordReader& m_in;
  MTextRecord m_text;
  PNT_3D m_vector;
  double m_angle = 0;  // radians, from the X axis of the plane
  bool m_byVector = false;
  bool m_hasColumns = false;
  double m_columnWidth = 0, m_columnHeight = 0;
};

EntPtr MTextReader::read() {
  static constexpr RecordKind kind({7, 10, 20, 30, 40, 41, 42, 43, 44, 71, 73, 90, 21, 31},
                                   {8, 10, 20}, {41, 42, 43, 44});
  if (!m_in.read(kind, {1, 3, 11, 48, 50, 101}, 2, [this](long code) { take(code); }))
    return nullptr;
  const Record& r = m_in.record();
  if (r.integer(90) != 0) m_in.note(ReportCode::TextBackgroundDropped);
  m_text.style = styleOf(m_in);
  m_text.at = r.point(0);
  m_text.normal = r.extrusion;
  m_text.direction = direction();
  finishBox();
  std::vector<EntPtr> built;
  buildMText(m_in, m_text, r.handle, built);
  return handOverTexts(m_in, std::move(built), u"MTEXT");
}

// Of direction and angle, the later one applies.
void MTextReader::take(long code) {
  switch (code) {
    case 11:
      m_byVector = true;
      m_vector.x = m_in.lexer().getDouble();
      break;
    case 48:
      // After the point, it is a width of columns.
      if (!m_in.record().seen.has(10)) m_in.takeLtypeScale();
      break;
    case 50:
      m_byVector = false;
      m_angle = m_in.lexer().getDouble() * kRadiansPerDegree;
      break;
    case 101:
      takeEmbedded();
      break;
    default:
      m_text.take(m_in.lexer());
  }
}

// The columns in newer files; the other codes repeat those of the text.
void MTextReader::takeEmbedded() {
  for (long code = m_in.next(); code != 0 && !m_in.failed(); code = m_in.next()) {
    takeColumns(code);
    // A damaged number of the embedded object must not cost the text.
    if (m_in.failed()) m_in.spareNumber();
  }
  // Code 0 belongs to the next record.
  m_in.putBack();
}

void MTextReader::takeColumns(long code) {
  MTextBox& box = m_text.box;
  switch (code) {
    case 71:
      m_hasColumns = m_in.lexer().getInt() != 0;
      break;
    case 72:
      box.columns = static_cast<std::size_t>(
          std::clamp(m_in.lexer().getInt(), 1L, static_cast<long>(kMostColumns)));
      break;
    case 41:
      m_columnHeight = m_in.lexer().getDouble();
      break;
    case 42:
      box.shownWidth = m_in.lexer().getDouble();
      break;
    case 43:
      box.shownHeight = m_in.lexer().getDouble();
      break;
    case 44:
      m_columnWidth = m_in.lexer().getDouble();
      break;
    case 45:
      box.gutter = m_in.lexer().getDouble();
      break;
    case 46:
      if (box.columnHeights.size() < kMostColumns)
        box.columnHeights.push_back(m_in.lexer().getDouble());
      break;
    default:
      m_in.passOver();
  }
}

void MTextReader::finishBox() {
  const Record& r = m_in.record();
  MTextBox& box = m_text.box;
  box.height = heightOf(m_in, r.real(40), m_text.style);
  box.width = std::max(r.real(41), 0.0);
  const long attachment = r.integer(71, 1);
  if (attachment >= 1 && attachment <= 9) box.attachment = attachment;
  const double spacing = r.real(44, 1);
  if (spacing > 0 && spacing < kMostSpacing) box.spacing = spacing;
  box.exactSpacing = r.integer(73) == 2;
  // A value of the record itself takes precedence over that of the embedded object.
  box.shownWidth = std::max(r.real(42, box.shownWidth), 0.0);
  box.shownHeight = std::max(r.real(43, box.shownHeight), 0.0);
  if (!m_hasColumns || box.columns < 2) {
    box.columns = 1;
  } else {
    if (m_columnWidth > 0) box.width = m_columnWidth;
    if (m_columnHeight > 0) box.columnHeights.assign(box.columns, m_columnHeight);
  }
}

PNT_3D MTextReader::direction() const {
  const Record& r = m_in.record();
  if (m_byVector) {
    const PNT_3D vector(m_vector.x, r.real(21), r.real(31));
    if (length(vector) > 0) return vector;
  }
  return PlaneAxes(r.extrusion).toWorld(PNT_3D(std::cos(m_angle), std::sin(m_angle), 0));
}

// Writes the frame of a tolerance with bars, without trailing empty cells.
std::u16string barred(std::u16string_view text) {
  // "%%v" separates the cells of a frame, "^J" its rows.
  std::u16string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (zim::equalsIgnoreCase(text.substr(i, 3), u"%%v")) {
      out += u'|';
      i += 2;
      continue;
    }
    if (text.substr(i, 2) == u"^J")
      while (!out.empty() && out.back() == u'|') out.pop_back();
    out += text[i];
  }
  while (!out.empty() && out.back() == u'|') out.pop_back();
  return out;
}

}  // namespace

// The lexer strips trailing blanks: a chunk one unit short had one.
void MTextRecord::take(const CFileDXFILexer& lexer) {
  constexpr std::size_t chunk = 250;
  const std::u16string_view units(lexer.getString().c_str());
  const std::size_t room = kMostUnits - text.size();
  text += units.substr(0, room);
  if (lexer.getGroupValue() == 3 && units.size() == chunk - 1 && text.size() < kMostUnits)
    text += u' ';
}

void buildMText(RecordReader& in, const MTextRecord& record, vek0::Handle handle,
                std::vector<EntPtr>& built) {
  const MTextContent content = decodeMText(record.text, baseFormat(in, record));
  const std::vector<MTextRun> runs = layoutMText(content, record.box, MTextRecord::kMostRuns);
  const Record& r = in.record();
  const TextPlane plane(record.normal, record.direction);
  CStyle* style = horizontalStyle(in, record.style);
  for (const MTextRun& run : runs) {
    const MTextFormat& f = content.formats[run.format];
    const PNT_3D at = plane.at(record.at, run.x, run.y);
    // Adding large coordinates to large offsets may overflow.
    if (!isFinite(at)) return in.fail(CFileDXFIError::InconsistentRecord);
    TEXT_3D text(plane.context(f, zim::WString(run.text)), style, at.x, at.y, at.z, 0);
    text.setAlign(text.findJustify(run.across, 0));
    EntProperties properties = r.withHandle(built.empty() ? handle : 0);
    properties.color = f.color;
    properties.traits.trueColor = f.trueColor;
    EntPtr ent = in.make().text(properties, text);
    if (!ent) return;
    built.push_back(std::move(ent));
  }
  noteCodes(in, record, content, runs.size());
  if (plane.isFlat()) in.note(ReportCode::ExtrusionIgnored);
}

EntPtr readMText(RecordReader& in) { return MTextReader(in).read(); }

EntPtr readTolerance(RecordReader& in) {
  static constexpr RecordKind kind({10, 20, 30, 11, 21, 31}, {8, 10, 20});
  MTextRecord text;
  if (!in.read(kind, {1}, 2, [&](long) { text.take(in.lexer()); })) return nullptr;
  const Record& r = in.record();
  text.text = barred(text.text);
  text.style = styleOf(in);
  text.at = r.point(0);
  text.normal = r.extrusion;
  text.direction = r.point(1);
  text.box.height = in.context().dimStyles.header().textHeight();
  text.box.attachment = 4;
  std::vector<EntPtr> built;
  buildMText(in, text, r.handle, built);
  return handOverTexts(in, std::move(built), u"TOLERANCE");
}

}  // namespace vek0::detail
