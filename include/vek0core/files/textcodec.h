#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

/// Code pages are identified by their usual numbers: 437, 850, 852, 855, 857, 860, 861, 863, 865,
/// 866, 869 (DOS), 874, 1250 to 1258 (Windows), 28591 to 28599, 28603 and 28605 (ISO 8859-1 to -9,
/// -13 and -15) and 10000 (Macintosh) are built in; 932, 936, 949, 950 and 1361 need a
/// `MultiByteDecoder`.
inline constexpr int kCodePageAuto = 0;      ///< per text: UTF-8 if valid, else 1252
inline constexpr int kCodePageUtf8 = 65001;  ///< UTF-8; malformed bytes are decoded as 1252
inline constexpr int kCodePage1252 = 1252;   ///< Windows, Western: the encoding of written files

/// The code page for a name as found in drawings ("ANSI_1252", "dos850", "8859_1", "big5",
/// "UTF-8"), in any letter case; `kCodePageAuto` for unknown names.
VEK0_API int codePageFromName(std::string_view name);

/// The code page that a drawing declares through its version ("AC1021") and code page name: UTF-8
/// from AC1021 on, otherwise the named one. Either may be empty.
VEK0_API int codePageOfDrawing(std::string_view version, std::string_view name);

/// Decodes bytes in a multi-byte code page: appends the text to `out` and returns true, or returns
/// false if it does not support `page`.
using MultiByteDecoder = bool (*)(int page, std::string_view bytes, std::u16string& out);

/// Installs the decoder process-wide and returns the previous one; null, the initial value, means
/// none. Without one, bytes in those pages are decoded as under `kCodePageAuto`, and `\M+nXXXX` is
/// left unchanged.
VEK0_API MultiByteDecoder setMultiByteDecoder(MultiByteDecoder decoder);

/// Decodes the bytes of a file into text. A value type, cheap to copy.
class VEK0_API CTextDecoder {
 public:
  explicit CTextDecoder(int page = kCodePageAuto) : m_page(page) {}

  int getPage() const { return m_page; }
  /// An unknown page counts as `kCodePageAuto`.
  void setPage(int page) { m_page = page; }
  /// Enables detection: text that is unmistakably UTF-8 is decoded as such, whatever the page: it
  /// must be valid, contain non-ASCII and, for a multi-byte page, a sequence of three bytes or
  /// more. If the page is UTF-8 but the text is not, the other page applies, or 1252 if there is
  /// none, unless the text is merely cut off at its end.
  void setSense(bool on) { m_sense = on; }
  void setOtherPage(int page) { m_otherPage = page; }
  /// Whether detection (`setSense`) found a text that contradicted the page.
  bool differs() const { return m_found != kCodePageAuto; }

  /// Encoding of the texts decoded so far, as "utf-8", "windows-1252", "ibm850", "iso-8859-1":
  /// under `kCodePageAuto` "windows-1252" once a text was not valid UTF-8; with `setSense`, the
  /// encoding that last contradicted the page.
  std::string getName() const;

  /// Appends the text of `bytes` to `out`. Never fails: bytes undefined in the code page become
  /// U+FFFD, except that those below 0xA0 keep their value.
  void decode(std::string_view bytes, std::u16string& out);

  /// As above, into `out`, at most `room` units and never half a surrogate pair. Returns the number
  /// of units written.
  std::size_t decode(std::string_view bytes, zim::Char* out, std::size_t room);

  /// The text of a value: decoded, with escapes replaced.
  zim::WString decodeText(std::string_view bytes);

 private:
  bool isAutoUtf8(std::string_view bytes);
  bool isUtf8Anyway(std::string_view bytes) const;
  int pageOf(std::string_view bytes);

  int m_page;
  bool m_sawOther = false;  // under kCodePageAuto: some text was not UTF-8
  bool m_sense = false;
  int m_otherPage = kCodePageAuto;
  int m_found = kCodePageAuto;  // the page of the last text that contradicted m_page
};

/// The text with its escapes replaced: `\U+XXXX` by that unit (pairs of them form characters beyond
/// U+FFFF), `\M+nXXXX` by what the multi-byte decoder makes of it (n: 1 = 932, 2 = 950, 3 = 949, 4
/// = 1361, 5 = 936), `^J` and the like by the control character, `^ ` by the caret. Anything else
/// is left unchanged.
VEK0_API std::u16string decodeEscapes(std::u16string_view text);

/// Appends the text to `out` as encoded for a written file: Windows 1252, `\U+XXXX` for characters
/// outside it, control characters and carets as `^J` and `^ `. A backslash that would accidentally
/// begin an escape becomes `\U+005C`, a trailing space `\U+0020`, since readers strip it; bytes
/// that could be mistaken for UTF-8 are escaped; unpaired surrogates become U+FFFD. Otherwise
/// decoding with `CTextDecoder(kCodePageAuto).decodeText` or `kCodePage1252` restores the text.
VEK0_API void encodeText(std::u16string_view text, std::string& out);

/// Encodes texts for a written file in any code page, with the escapes of `encodeText`.
class VEK0_API CTextEncoder {
 public:
  /// `page` is UTF-8 or built in; or 932, 936, 949 or 950 if there is a `MultiByteDecoder`, from
  /// which the encoder learns the page: it then contains only what the decoder yields. With any
  /// other page, everything but ASCII is escaped. In UTF-8 only U+0085, which some readers take for
  /// a line end, is.
  explicit CTextEncoder(int page = kCodePage1252);

  /// The name of the page in the header of a drawing, such as "ANSI_1252", which also stands for
  /// UTF-8, "dos850" or "ISO8859-1".
  std::string getName() const;
  /// Whether the unit is written without an escape.
  bool has(zim::Char unit) const;
  /// Appends the text to `out`.
  void encode(std::u16string_view text, std::string& out) const;

 private:
  void learn();
  void append(std::u16string_view text, bool asciiOnly, std::string& out) const;

  int m_page;
  std::vector<std::uint16_t> m_codes;  // of every unit, one or two bytes; 0: none
};

/// As `encodeText` for a complete, already formatted line: control characters, carets and
/// backslashes are left unchanged.
VEK0_API void encodeLine(std::u16string_view text, std::string& out);
