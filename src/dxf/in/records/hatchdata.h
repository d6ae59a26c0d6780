#pragma once

#include <string_view>
#include <vector>

#include "vek0core/dxf/in/filedxfilexer.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/hatch/hatchtypetable.h"
#include "zim0lang/wstring.h"

namespace vek0::detail {

/// The extended data of an INSERT record that represents a hatch.
///
/// The layout is the one written by `CFileDXFOVisitor`; anything else is data of other programs,
/// and the insert remains an ordinary insert.
class HatchData {
 public:
  /// Processes the current pair, whose code is 1000 or above; false if it is not hatch data.
  bool take(const CFileDXFILexer& lexer);
  /// Marks the last pair as invalid: the data then yields no hatch.
  void spoil();

  /// Whether no potential hatch data was found.
  bool empty() const { return m_pairs.empty(); }
  /// Whether the data claims to be a hatch.
  bool claimsHatch() const { return m_pairs.size() > 1 && isMark(m_pairs[1]); }
  /// Parses the data; returns false, with all outputs undefined, on any deviation from the layout.
  /// Patterns that are not in the catalogue are added to `types`.
  bool parse(CHatchTypeTable& types);

  const HATCH_TYPE* type = nullptr;
  double scale = 1, angleRad = 0;
  std::vector<std::vector<PNT_3D>> rings;

 private:
  struct Pair {
    long code;
    double real;
    long integer;
    zim::WString text;
  };

  static bool isMark(const Pair& pair);
  bool has(long code) const { return m_next < m_pairs.size() && m_pairs[m_next].code == code; }
  bool takeText(zim::WString& text);
  bool takeText(long code, std::string_view text);
  bool takeInteger(long code, long& value);
  bool takeConstant(long code, long value);
  bool takeReal(double& value);
  bool takePoint(long code, PNT_3D& pnt);
  bool parseHead(zim::WString& name, long& noBounds);
  bool parseRing(std::vector<PNT_3D>& ring);
  bool parseFamily(HATCH_LINE& line);
  bool parseFamilies(std::vector<HATCH_LINE>& lines);

  bool m_taking = false;
  std::vector<Pair> m_pairs;
  std::size_t m_next = 0;
};

}  // namespace vek0::detail
