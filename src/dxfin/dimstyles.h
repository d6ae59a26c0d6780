#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "vek0core/dxfin/filedxfilexer.h"
#include "zim0lang/wstring.h"

namespace vek0::detail {

/// What a dimension style says of how dimensions look, by the group codes of its entry. Lengths
/// are paper's: the scale (40) makes drawing units of them.
class DimStyle {
 public:
  /// Group codes, named after what they hold.
  enum Code : long {
    kPost = 3,             ///< text around the number, "<>" where that goes
    kBlock = 5,            ///< name of the arrow head's block
    kFirstBlock = 6,       ///< the same at the first end, where the ends differ
    kSecondBlock = 7,      ///< likewise
    kScale = 40,           ///< 0: the sheet decides
    kArrow = 41,           ///< size of arrow heads
    kExtensionStart = 42,  ///< of extension lines from what is measured
    kExtensionEnd = 44,    ///< of extension lines beyond the dimension line
    kRound = 45,           ///< numbers are multiples of it
    kLineEnd = 46,         ///< of the dimension line beyond ticks
    kTextLevel = 73,       ///< texts are level whatever the line
    kNoFirst = 75,         ///< no first extension line
    kNoSecond = 76,        ///< no second one
    kZeroes = 78,          ///< which zeroes are not written: 4 leading, 8 trailing
    kAngleZeroes = 79,     ///< likewise of angles: 1 leading, 2 trailing
    kTextHeight = 140,     ///< height of texts
    kTick = 142,           ///< size of ticks, which stand for arrow heads unless it is 0
    kFactor = 144,         ///< of lengths
    kGap = 147,            ///< around texts
    kLineInside = 172,     ///< there is a line between arrow heads that stand outside
    kEndsDiffer = 173,     ///< each end has an arrow head of its own
    kLineColor = 176,
    kExtensionColor = 177,
    kTextColor = 178,
    kAngleDecimals = 179,  ///< -1: as of lengths
    kDecimals = 271,
    kAngleUnit = 275,     ///< 0 degrees, 1 with minutes and seconds, 2 gradians, 3 radians
    kUnit = 277,          ///< 1 scientific, 2 decimal, 3 and 4 feet and inches, 5 fractions
    kSeparator = 278,     ///< letter in front of decimals
    kLeaderHandle = 341,  ///< of the block of a leader's arrow head
    kBlockHandle = 342,   ///< the blocks once more, by their handles
    kFirstHandle = 343,
    kSecondHandle = 344
  };

  /// Takes a pair of the style's entry; what is no value of a style is passed over.
  void take(long code, const CFileDXFILexer& lexer);
  /// The same for a header variable, as "$DIMTXT".
  void takeVariable(const zim::WString& name, double value);
  void takeVariable(const zim::WString& name, const zim::WString& value);

  void set(long code, double value) { m_numbers[code] = value; }

  /// Takes over what another one says.
  void change(const DimStyle& by);

  bool has(long code) const { return m_numbers.count(code) != 0; }
  /// The value, or what the format has where the style says nothing.
  double number(long code) const;
  /// The same as a whole number.
  long integer(long code) const;
  bool isSet(long code) const { return number(code) != 0; }
  zim::WString text(long code) const;
  /// A length in drawing units.
  double length(long code) const;
  /// Height of texts in drawing units: never 0 or less.
  double textHeight() const;
  /// Whether every value is the format's own.
  bool isDefault() const;

 private:
  std::map<long, double> m_numbers;
  std::map<long, zim::WString> m_texts;
};

/// The dimension styles of a file, and the names of its blocks, which styles call by handles.
class DimStyles {
 public:
  void add(const zim::WString& name, const DimStyle& style);
  void addBlock(std::uint64_t handle, const zim::WString& name) { m_blocks[handle] = name; }
  /// Takes a header variable; what is none of dimensions or units is passed over.
  void takeVariable(const zim::WString& name, double value);
  void takeVariable(const zim::WString& name, const zim::WString& value);

  /// The style of that name in any letter case. What the current style, or one that the file does
  /// not have, leaves open the header says; in old files the units of the drawing say how any
  /// style writes numbers.
  DimStyle get(const zim::WString& name) const;
  const DimStyle& header() const { return m_header; }
  /// Empty for a handle that no block has.
  zim::WString blockName(std::uint64_t handle) const;

 private:
  std::map<std::u16string, DimStyle> m_styles;  // by folded names
  std::map<std::uint64_t, zim::WString> m_blocks;
  DimStyle m_header;
  DimStyle m_units;  // as a style would tell those of the drawing
  zim::WString m_current = u"STANDARD";
};

/// What a record says of its dimension style: the name, and the values that it changes. Those stand
/// in extended data of the application ACAD, under "DSTYLE", code and value by turns.
class DimStyleReader {
 public:
  /// Whether a pair belongs here.
  static constexpr bool has(long code) { return code == kName || code >= kFirstExtended; }

  /// Takes the current pair; false when it begins the data of another program.
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
