// A multileader nests its data in braces, that is, in codes that begin and end a part. The same
// code has different meanings in different parts; `m_place` records the current part. The result
// consists of the leader's lines and its text, without the head of a line.
#include <algorithm>
#include <cmath>

#include "dxf/in/convert/dimstyles.h"
#include "dxf/in/convert/mtextreader.h"
#include "dxf/in/convert/replacement.h"
#include "dxf/in/coordinate.h"
#include "geometry/vector.h"

namespace vek0::detail {
namespace {

/// A record with nested records, separated by braces, in which the same codes have different
/// meanings.
class MultileaderReader {
 public:
  explicit MultileaderReader(RecordReader& in) : m_in(in) {}

  EntPtr read();

 private:
  enum Place { Outside, Content, Leader, Line };
  /// Leader lines with a common end.
  struct LeaderLines {
    std::vector<std::vector<PNT_3D>> lines;
    PNT_3D end, landing;
    double landingLength = 0;
    bool hasEnd = false, hasLanding = false;
  };

  void take(long code);
  void takeBrace(long code);
  void takeOfContent(long code);
  void takeOfLeader(long code);
  void buildLines(std::vector<EntPtr>& built);
  void buildText(std::vector<EntPtr>& built);

  RecordReader& m_in;
  Place m_place = Outside;
  MTextRecord m_text;
  std::vector<LeaderLines> m_leaders;
  bool m_isDrawn = true;  // whether the leader is visible, by the type of its lines
  bool m_hasBlock = false;
};

constexpr long kBegin = 300, kEnd = 301, kLeader = 302, kLeaderEnd = 303, kTextOrLine = 304,
               kLineEnd = 305;

/// The codes that a multileader reads itself.
struct MultileaderCodes {
  static bool has(long code) {
    return (code >= kBegin && code <= kLineEnd) || (code >= 10 && code < 50) || code == 170 ||
           code == 171 || code == 290 || code == 291 || code == 296;
  }
};

// One coordinate of a point with the codes `first`, `first` + 10 and `first` + 20.
void takeInto(PNT_3D& p, long code, long first, double value) {
  coordinate(p, (code - first) / 10) = value;
}

EntPtr MultileaderReader::read() {
  static constexpr RecordKind kind({}, {8}, {40, 43, 45});
  if (!m_in.read(kind, MultileaderCodes(), 2, [this](long code) { take(code); })) return nullptr;
  std::vector<EntPtr> built;
  if (m_isDrawn) buildLines(built);
  if (!m_in.failed()) buildText(built);
  if (m_hasBlock) m_in.note(ReportCode::ContentDropped, u"MULTILEADER");
  if (!built.empty() || m_in.failed()) return handOver(m_in, std::move(built), u"MULTILEADER");
  m_in.note(ReportCode::KindSkipped, u"MULTILEADER");
  return nullptr;
}

void MultileaderReader::take(long code) {
  if (code >= kBegin) return takeBrace(code);
  // Type of the leader lines; 0 means none.
  if (m_place == Outside && code == 170) {
    m_isDrawn = m_in.lexer().getInt() != 0;
  } else if (m_place == Outside && code == 48) {
    m_in.takeLtypeScale();
  } else if (m_place == Content) {
    takeOfContent(code);
  } else if (m_place == Leader) {
    takeOfLeader(code);
  } else if (m_place == Line && (code == 10 || code == 20 || code == 30)) {
    takeCoordinate(m_in, code / 10 - 1, m_leaders.back().lines.back());
  } else {
    m_in.passOver();
  }
}

void MultileaderReader::takeBrace(long code) {
  switch (code) {
    case kBegin:
      m_place = Content;
      break;
    case kEnd:
      m_place = Outside;
      break;
    case kLeader:
      m_place = Leader;
      m_leaders.emplace_back();
      break;
    case kLeaderEnd:
      m_place = Content;
      break;
    case kLineEnd:
      // After damaged nesting there may be no leader to return to.
      m_place = m_leaders.empty() ? Content : Leader;
      break;
    case kTextOrLine:
      // The code has two meanings: a text in the content, the beginning of a line in a leader.
      if (m_place == Content) return m_text.take(m_in.lexer());
      if (m_place != Leader) return;
      m_place = Line;
      m_leaders.back().lines.emplace_back();
      break;
    default:
      break;
  }
}

void MultileaderReader::takeOfContent(long code) {
  const CFileDXFILexer& lexer = m_in.lexer();
  switch (code) {
    case 11:
    case 21:
    case 31:
      return takeInto(m_text.normal, code, 11, lexer.getDouble());
    case 12:
    case 22:
    case 32:
      return takeInto(m_text.at, code, 12, lexer.getDouble());
    case 13:
    case 23:
    case 33:
      return takeInto(m_text.direction, code, 13, lexer.getDouble());
    case 41:
      m_text.box.height = lexer.getDouble();
      break;
    case 43:
      m_text.box.width = std::max(lexer.getDouble(), 0.0);
      break;
    case 45:
      m_text.box.spacing = lexer.getDouble();
      break;
    case 170:
      m_text.box.exactSpacing = lexer.getInt() == 2;
      break;
    case 171:
      m_text.box.attachment = lexer.getInt();
      break;
    case 296:
      m_hasBlock = lexer.getInt() != 0;
      break;
    default:
      m_in.passOver();
  }
}

void MultileaderReader::takeOfLeader(long code) {
  const CFileDXFILexer& lexer = m_in.lexer();
  LeaderLines& leader = m_leaders.back();
  switch (code) {
    case 10:
    case 20:
    case 30:
      return takeInto(leader.end, code, 10, lexer.getDouble());
    case 11:
    case 21:
    case 31:
      return takeInto(leader.landing, code, 11, lexer.getDouble());
    case 40:
      leader.landingLength = lexer.getDouble();
      break;
    case 290:
      leader.hasEnd = lexer.getInt() != 0;
      break;
    case 291:
      leader.hasLanding = lexer.getInt() != 0;
      break;
    default:
      m_in.passOver();
  }
}

void MultileaderReader::buildLines(std::vector<EntPtr>& built) {
  for (LeaderLines& leader : m_leaders) {
    const PNT_3D& way = leader.landing;
    const double length = detail::length(way);
    const double factor = length > 0 ? leader.landingLength / length : 0;
    for (std::vector<PNT_3D>& line : leader.lines) {
      if (leader.hasEnd) line.push_back(leader.end);
      // The landing leads from the end of the line toward the text.
      if (leader.hasEnd && leader.hasLanding && factor > 0)
        line.emplace_back(leader.end.x + factor * way.x, leader.end.y + factor * way.y,
                          leader.end.z + factor * way.z);
      if (line.size() < 2) continue;
      EntPtr chain = buildChain(m_in, line, 0, built.empty() ? m_in.record().handle : 0);
      if (!chain) return;
      built.push_back(std::move(chain));
    }
  }
  if (!built.empty()) m_in.note(ReportCode::ArrowDropped, u"MULTILEADER");
}

void MultileaderReader::buildText(std::vector<EntPtr>& built) {
  MTextBox& box = m_text.box;
  // A multileader may have a block, or nothing, instead of a text.
  if (m_text.text.empty()) return;
  if (!(box.height > 0)) box.height = m_in.context().dimStyles.header().textHeight();
  if (!(box.spacing > 0)) box.spacing = 1;
  if (box.attachment < 1 || box.attachment > 3) box.attachment = 1;
  m_text.style = m_in.context().semantor.getStyleStandard();
  buildMText(m_in, m_text, built.empty() ? m_in.record().handle : 0, built);
}

}  // namespace

EntPtr readMultileader(RecordReader& in) { return MultileaderReader(in).read(); }

}  // namespace vek0::detail
