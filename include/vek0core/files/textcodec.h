#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

/// Code pages are named by their usual numbers: 437, 850, 852, 855, 857, 860, 861,
/// 863, 865, 866, 869 (DOS), 874, 1250 to 1258 (Windows), 28591 to 28599, 28603
/// and 28605 (ISO 8859-1 to -9, -13 and -15) and 10000 (Macintosh) are built in;
/// 932, 936, 949, 950 and 1361 need a `MultiByteDecoder`.
inline constexpr int kCodePageAuto = 0;      ///< each text by itself: UTF-8 if valid, else 1252
inline constexpr int kCodePageUtf8 = 65001;  ///< UTF-8; malformed bytes are taken as 1252
inline constexpr int kCodePage1252 = 1252;   ///< Windows, Western: what written files are in

/// The code page of a name as drawings state it ("ANSI_1252", "dos850", "8859_1",
/// "big5", "UTF-8"), in any letter case; `kCodePageAuto` for names that are not known.
VEK0_API int codePageFromName(std::string_view name);

/// The code page that a drawing declares by its version ("AC1021") and code page
/// name: UTF-8 from AC1021 on, otherwise that of the name. Either may be empty.
VEK0_API int codePageOfDrawing(std::string_view version, std::string_view name);

/// Decodes bytes of a code page of more than one byte a character: appends the
/// text to `out` and returns true, or returns false when it does not know `page`.
using MultiByteDecoder = bool (*)(int page, std::string_view bytes, std::u16string& out);

/// Installs the decoder for the whole process and returns the one before it; null,
/// as at first, for none. Without one, bytes of those pages are taken as
/// `kCodePageAuto` says and `\M+nXXXX` stays as it stands.
VEK0_API MultiByteDecoder setMultiByteDecoder(MultiByteDecoder decoder);

/// Turns the bytes of a file into text. A value, cheap to copy.
class VEK0_API CTextDecoder {
 public:
  explicit CTextDecoder(int page = kCodePageAuto) : m_page(page) {}

  int getPage() const { return m_page; }
  /// A page that is not known counts as `kCodePageAuto`.
  void setPage(int page) { m_page = page; }
  /// Takes texts that are UTF-8 beyond doubt for that, whatever the page says: valid,
  /// not just ASCII, and for a page of more than one byte with a sequence of three or more.
  /// Texts that are not UTF-8 against a page that says so are of the other page, 1252 when
  /// there is none, unless no more than their end is missing.
  void setSense(bool on) { m_sense = on; }
  void setOtherPage(int page) { m_otherPage = page; }
  /// Whether, under sense, a text contradicted the page.
  bool differs() const { return m_found != kCodePageAuto; }

  /// How texts were decoded so far, as "utf-8", "windows-1252", "ibm850",
  /// "iso-8859-1": under `kCodePageAuto` "windows-1252" once a text was not valid
  /// UTF-8; under sense what contradicted the page last.
  std::string getName() const;

  /// Appends the text of `bytes` to `out`. Never fails: bytes that mean nothing in
  /// the code page become U+FFFD, except that those below 0xA0 keep their number.
  void decode(std::string_view bytes, std::u16string& out);

  /// The same into `out`, as far as `room` units go, never half a surrogate pair.
  /// Returns the units written.
  std::size_t decode(std::string_view bytes, zim::Char* out, std::size_t room);

  /// The text of a value: decoded, then freed of escapes.
  zim::WString decodeText(std::string_view bytes);

 private:
  bool isAutoUtf8(std::string_view bytes);
  bool isUtf8Anyway(std::string_view bytes) const;
  int pageOf(std::string_view bytes);

  int m_page;
  bool m_sawOther = false;  // under kCodePageAuto: a text that was not UTF-8
  bool m_sense = false;
  int m_otherPage = kCodePageAuto;
  int m_found = kCodePageAuto;  // the page of the last text that contradicted m_page
};

/// The text with its escapes replaced: `\U+XXXX` by that unit (pairs of them form
/// characters beyond U+FFFF), `\M+nXXXX` by what the multi-byte decoder makes of it
/// (n: 1 = 932, 2 = 950, 3 = 949, 4 = 1361, 5 = 936), `^J` and its like by the
/// control character, `^ ` by the caret. What is none of these stays.
VEK0_API std::u16string decodeEscapes(std::u16string_view text);

/// Appends the text to `out` as a value in a written file: Windows 1252, `\U+XXXX`
/// for what that lacks, control characters and carets as `^J` and `^ `. A
/// backslash that would begin an escape by chance becomes `\U+005C`, a blank at the end
/// `\U+0020`, since readers strip it; bytes that
/// would pass for UTF-8 are escaped; unpaired surrogates become U+FFFD. Otherwise
/// `CTextDecoder(kCodePageAuto).decodeText` and `kCodePage1252` give the text back.
VEK0_API void encodeText(std::u16string_view text, std::string& out);

/// The same for a whole line that is made already: control characters, carets and
/// backslashes stay as they are.
VEK0_API void encodeLine(std::u16string_view text, std::string& out);
