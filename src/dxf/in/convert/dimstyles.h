#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "vek0core/dxf/in/filedxfilexer.h"
#include "zim0lang/wstring.h"

namespace vek0::detail {

/// The settings of a dimension style, by the group codes of its entry. Lengths are in paper units:
/// the scale (40) converts them to drawing units.
class DimStyle {
 public:
  /// Group codes, named after their content.
  enum Code : long {
    kPost = 3,             ///< text around the number, with "<>" as its placeholder
    kBlock = 5,            ///< name of the arrow head's block
    kFirstBlock = 6,       ///< block at the first end, if the ends differ
    kSecondBlock = 7,      ///< block at the second end
    kScale = 40,           ///< 0: determined by the sheet
    kArrow = 41,           ///< size of arrow heads
    kExtensionStart = 42,  ///< offset of extension lines from the measured points
    kExtensionEnd = 44,    ///< length of extension lines beyond the dimension line
    kRound = 45,           ///< numbers are rounded to multiples of it
    kLineEnd = 46,         ///< length of the dimension line beyond ticks
    kTextLevel = 73,       ///< texts are horizontal in any direction of the line
    kNoFirst = 75,         ///< no first extension line
    kNoSecond = 76,        ///< no second one
    kZeroes = 78,          ///< suppressed zeros: 4 leading, 8 trailing
    kAngleZeroes = 79,     ///< suppressed zeros of angles: 1 leading, 2 trailing
    kTextHeight = 140,     ///< height of texts
    kTick = 142,           ///< size of ticks, which replace arrow heads unless it is 0
    kFactor = 144,         ///< of lengths
    kGap = 147,            ///< around texts
    kLineInside = 172,     ///< draw a line between arrow heads placed outside
    kEndsDiffer = 173,     ///< the ends have different arrow heads
    kLineColor = 176,
    kExtensionColor = 177,
    kTextColor = 178,
    kAngleDecimals = 179,  ///< -1: as of lengths
    kDecimals = 271,
    kAngleUnit = 275,     ///< 0 degrees, 1 with minutes and seconds, 2 gradians, 3 radians
    kUnit = 277,          ///< 1 scientific, 2 decimal, 3 and 4 feet and inches, 5 fractions
    kSeparator = 278,     ///< decimal separator
    kLeaderHandle = 341,  ///< of the block of a leader's arrow head
    kBlockHandle = 342,   ///< the blocks again, by their handles
    kFirstHandle = 343,
    kSecondHandle = 344
  };

  /// Processes a pair of the style's entry; pairs that are not style settings are skipped.
  void take(long code, const CFileDXFILexer& lexer);
  /// The same for a header variable such as "$DIMTXT".
  void takeVariable(const zim::WString& name, double value);
  void takeVariable(const zim::WString& name, const zim::WString& value);

  void set(long code, double value) { m_numbers[code] = value; }

  /// Overrides settings with those of another style.
  void change(const DimStyle& by);

  bool has(long code) const { return m_numbers.count(code) != 0; }
  /// The value, or the format's default if the style does not set it.
  double number(long code) const;
  /// The same as an integer.
  long integer(long code) const;
  bool isSet(long code) const { return number(code) != 0; }
  zim::WString text(long code) const;
  /// A length in drawing units.
  double length(long code) const;
  /// Height of texts in drawing units; always positive.
  double textHeight() const;
  /// Whether every value is the format's default.
  bool isDefault() const;

 private:
  std::map<long, double> m_numbers;
  std::map<long, zim::WString> m_texts;
};

/// The dimension styles of a file, and the names of its blocks, which styles refer to by handle.
class DimStyles {
 public:
  void add(const zim::WString& name, const DimStyle& style);
  void addBlock(std::uint64_t handle, const zim::WString& name) { m_blocks[handle] = name; }
  /// Processes a header variable; those unrelated to dimensions and units are skipped.
  void takeVariable(const zim::WString& name, double value);
  void takeVariable(const zim::WString& name, const zim::WString& value);

  /// The style of that name, ignoring case. The header supplies settings missing in the current
  /// style, and in styles that are not in the file; in old files the units of the drawing determine
  /// the number format of all styles.
  DimStyle get(const zim::WString& name) const;
  const DimStyle& header() const { return m_header; }
  /// Empty for an unknown handle.
  zim::WString blockName(std::uint64_t handle) const;

 private:
  std::map<std::u16string, DimStyle> m_styles;  // by folded names
  std::map<std::uint64_t, zim::WString> m_blocks;
  DimStyle m_header;
  DimStyle m_units;  // units of the drawing, in terms of a style
  zim::WString m_current = u"STANDARD";
};

/// A record's dimension style: its name, and the settings that the record overrides. Those are in
/// extended data of the application ACAD, under "DSTYLE", as alternating codes and values.
class DimStyleReader {
 public:
  /// Whether a pair with this code is relevant here.
  static constexpr bool has(long code) { return code == kName || code >= kFirstExtended; }

  /// Processes the current pair; false if it begins the data of another program.
  bool take(const CFileDXFILexer& lexer);
  DimStyle style(const DimStyles& styles) const;

 private:
  enum Place { Outside, Application, Mark, Code, Value };
  static constexpr long kName = 3, kFirstExtended = 1000;

  zim::WString m_name = u"STANDARD";
  DimStyle m_changes;
  Place m_place = Outside;
  long m_code = 0;
};

}  // namespace vek0::detail
