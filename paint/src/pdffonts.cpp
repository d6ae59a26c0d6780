#include "pdffonts.h"

#include <ft2build.h>
#include <hb-ot.h>
#include <hb-subset.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "pdfstream.h"
#include FT_FREETYPE_H
#include FT_CID_H

namespace vek0::paint {
namespace {

constexpr hb_tag_t kGlyf = HB_TAG('g', 'l', 'y', 'f'), kCff = HB_TAG('C', 'F', 'F', ' '),
                   kOs2 = HB_TAG('O', 'S', '/', '2'), kHead = HB_TAG('h', 'e', 'a', 'd');
constexpr double kWidthsPerEm = 1000;  // units of the widths in a PDF

struct DestroyBlob {
  void operator()(hb_blob_t* blob) const { hb_blob_destroy(blob); }
};
using Blob = std::unique_ptr<hb_blob_t, DestroyBlob>;

Blob tableOf(const hb_face_t* face, hb_tag_t tag) {
  return Blob(hb_face_reference_table(face, tag));
}

std::string_view bytesOf(const Blob& blob) {
  unsigned length = 0;
  const char* data = hb_blob_get_data(blob.get(), &length);
  return {data, length};
}

// A big-endian number of 16 bits; 0 beyond the end.
unsigned unitAt(std::string_view bytes, std::size_t at) {
  if (at + 2 > bytes.size()) return 0;
  return static_cast<unsigned>(static_cast<unsigned char>(bytes[at])) << 8 |
         static_cast<unsigned char>(bytes[at + 1]);
}

int signedAt(std::string_view bytes, std::size_t at) {
  return static_cast<std::int16_t>(unitAt(bytes, at));
}

// Keeps the tables that draw glyphs.
void dropOtherTables(const hb_face_t* face, hb_set_t* dropped) {
  constexpr std::array kept = {kGlyf,
                               kCff,
                               kHead,
                               HB_TAG('h', 'h', 'e', 'a'),
                               HB_TAG('h', 'm', 't', 'x'),
                               HB_TAG('l', 'o', 'c', 'a'),
                               HB_TAG('m', 'a', 'x', 'p')};
  std::array<hb_tag_t, 16> tags{};
  for (unsigned start = 0;; start += static_cast<unsigned>(tags.size())) {
    auto count = static_cast<unsigned>(tags.size());
    hb_face_get_table_tags(face, start, &count, tags.data());
    for (unsigned i = 0; i < count; ++i) {
      if (std::find(kept.begin(), kept.end(), tags[i]) == kept.end()) hb_set_add(dropped, tags[i]);
    }
    if (count < tags.size()) return;
  }
}

}  // namespace

// -- opening -------------------------------------------------------------------------

struct PdfFont::CidFace {
  FT_Library library = nullptr;
  FT_Face face = nullptr;

  CidFace() = default;
  ~CidFace() {
    if (face) FT_Done_Face(face);
    if (library) FT_Done_FreeType(library);
  }
  CidFace(const CidFace&) = delete;
  CidFace& operator=(const CidFace&) = delete;
};

PdfFont::PdfFont(hb_face_t* face, int number)
    : m_face(face), m_font(hb_font_create(face)), m_number(number) {}

PdfFont::~PdfFont() {
  hb_font_destroy(m_font);
  hb_face_destroy(m_face);
}

std::unique_ptr<PdfFont> PdfFont::open(const FACE_FILE& file, int number) {
  const Blob blob(hb_blob_create_from_file(file.path.c_str()));
  std::unique_ptr<PdfFont> font(
      new PdfFont(hb_face_create(blob.get(), static_cast<unsigned>(file.index)), number));
  return font->isUsable(file) ? std::move(font) : nullptr;
}

bool PdfFont::isUsable(const FACE_FILE& file) {
  // The upper half is the number of an instance.
  constexpr int kMostFaces = 0xFFFF;
  m_isCff = bytesOf(tableOf(m_face, kGlyf)).empty();
  if (m_isCff && bytesOf(tableOf(m_face, kCff)).empty()) return false;
  if (file.index > kMostFaces || hb_face_get_upem(m_face) == 0 || !isPermitted()) return false;
  if (m_isCff) openCodes(file);
  // Glyph 0 stands for the others: a damaged font fails with any.
  m_glyphs[0] = {};
  const bool works = !subset().empty();
  m_glyphs.clear();
  return works;
}

// The license bits of the face: restricted, not to be subset, only as bitmaps.
bool PdfFont::isPermitted() const {
  constexpr unsigned kRestricted = 0x0002, kPreviewOrEditable = 0x000C, kWholeOrBitmaps = 0x0300;
  constexpr std::size_t kTypeAt = 8;
  const Blob table = tableOf(m_face, kOs2);
  const unsigned type = unitAt(bytesOf(table), kTypeAt);
  const bool restricted = (type & kRestricted) != 0 && (type & kPreviewOrEditable) == 0;
  return !restricted && (type & kWholeOrBitmaps) == 0;
}

void PdfFont::openCodes(const FACE_FILE& file) {
  auto cids = std::make_unique<CidFace>();
  FT_Bool isKeyed = 0;
  if (FT_Init_FreeType(&cids->library) == 0 &&
      FT_New_Face(cids->library, file.path.c_str(), file.index, &cids->face) == 0 &&
      FT_Get_CID_Is_Internally_CID_Keyed(cids->face, &isKeyed) == 0 && isKeyed) {
    m_cids = std::move(cids);
  }
}

// -- use -----------------------------------------------------------------------------

// The subset keeps the indices of glyphs, which are also the codes unless the font has its own.
unsigned PdfFont::codeOf(unsigned index) const {
  FT_UInt code = index;
  if (m_cids) FT_Get_CID_From_Glyph_Index(m_cids->face, index, &code);
  return code;
}

const PdfFont::GLYPH& PdfFont::use(unsigned index, std::u16string_view text) {
  const auto [found, isNew] = m_glyphs.try_emplace(index);
  if (isNew) {
    constexpr double kParts = 100;  // of a unit, so that glyphs need no corrections
    const double advance = hb_font_get_glyph_h_advance(m_font, index) * kWidthsPerEm;
    found->second = {codeOf(index),
                     std::round(advance * kParts / hb_face_get_upem(m_face)) / kParts,
                     std::u16string(text)};
  }
  return found->second;
}

// -- embedding -----------------------------------------------------------------------

// Empty on failure.
std::string PdfFont::subset() const {
  hb_subset_input_t* input = hb_subset_input_create_or_fail();
  if (!input) return {};
  hb_set_t* glyphs = hb_subset_input_glyph_set(input);
  for (const auto& [index, glyph] : m_glyphs) hb_set_add(glyphs, index);
  hb_subset_input_set_flags(input, HB_SUBSET_FLAGS_NO_HINTING | HB_SUBSET_FLAGS_RETAIN_GIDS |
                                       HB_SUBSET_FLAGS_NOTDEF_OUTLINE);
  dropOtherTables(m_face, hb_subset_input_set(input, HB_SUBSET_SETS_DROP_TABLE_TAG));
  hb_face_t* face = hb_subset_or_fail(m_face, input);
  hb_subset_input_destroy(input);
  if (!face) return {};
  const Blob blob = m_isCff ? tableOf(face, kCff) : Blob(hb_face_reference_blob(face));
  std::string bytes(bytesOf(blob));
  hb_face_destroy(face);
  return bytes;
}

// The name of the face, with a tag that differs for different subsets.
std::string PdfFont::name() const {
  std::uint32_t hash = 2166136261U;  // FNV-1a
  for (const auto& [index, glyph] : m_glyphs) hash = (hash ^ index) * 16777619U;
  std::string result;
  for (int i = 0; i < 6; ++i, hash /= 26) result += static_cast<char>('A' + hash % 26);
  result += '+';
  char raw[128];
  unsigned length = sizeof raw;
  hb_ot_name_get_utf8(m_face, HB_OT_NAME_ID_POSTSCRIPT_NAME, HB_LANGUAGE_INVALID, &length, raw);
  for (const char c : std::string_view(raw, std::min<std::size_t>(length, sizeof raw - 1))) {
    const bool plain = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
    if (plain || c == '-') result += c;
  }
  return result.back() == '+' ? result + "Font" : result;
}

std::string PdfFont::descriptor(PdfFile& file, const std::string& name) const {
  constexpr std::size_t kBoxAt = 36;
  const double scale = kWidthsPerEm / hb_face_get_upem(m_face);
  const auto scaled = [&](double units) { return std::to_string(std::lround(units * scale)); };
  hb_font_extents_t extents{};
  hb_font_get_h_extents(m_font, &extents);
  const Blob head = tableOf(m_face, kHead);
  std::string box;
  for (std::size_t i = 0; i < 4; ++i) box += scaled(signedAt(bytesOf(head), kBoxAt + 2 * i)) + " ";
  const std::string bytes = subset();
  const std::string entry =
      m_isCff ? "/Subtype /CIDFontType0C " : "/Length1 " + std::to_string(bytes.size()) + " ";
  // Flag 3: characters outside the standard Latin set. The thickness of stems is unknown.
  return "<< /Type /FontDescriptor /FontName /" + name +
         " /Flags 4 /ItalicAngle 0 /StemV 80 /Ascent " + scaled(extents.ascender) + " /Descent " +
         scaled(extents.descender) + " /CapHeight " + scaled(extents.ascender) + " /FontBBox [ " +
         box + "] " + (m_isCff ? "/FontFile3 " : "/FontFile2 ") +
         pdfReference(file.addStream(bytes, entry)) + " >>";
}

// The advances of consecutive codes form a list: "3 [ 600 512 ] 17 [ 433 ]".
std::string PdfFont::widths() const {
  std::map<unsigned, double> advances;
  for (const auto& [index, glyph] : m_glyphs) advances[glyph.code] = glyph.advance;
  std::string result = "[ ";
  for (auto at = advances.begin(); at != advances.end();) {
    unsigned next = at->first;
    appendInteger(result, next);
    result += " [ ";
    for (; at != advances.end() && at->first == next; ++at, ++next) {
      appendReal(result, at->second);
      result += ' ';
    }
    result += "] ";
  }
  return result + "]";
}

std::string PdfFont::toUnicode() const {
  constexpr std::size_t kMostPerList = 100;  // a limit of the format
  std::vector<std::string> lines;
  for (const auto& [index, glyph] : m_glyphs) {
    if (glyph.text.empty()) continue;
    std::string& line = lines.emplace_back("<");
    appendUnit(line, glyph.code);
    line += "> <" + hexOfUtf16(glyph.text) + ">\n";
  }
  std::string result =
      "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
      "/CIDSystemInfo << /Registry (Adobe) /Ordering (UCS) /Supplement 0 >> def\n"
      "/CMapName /Adobe-Identity-UCS def\n/CMapType 2 def\n"
      "1 begincodespacerange\n<0000> <FFFF>\nendcodespacerange\n";
  for (std::size_t i = 0; i < lines.size(); i += kMostPerList) {
    const std::size_t count = std::min(kMostPerList, lines.size() - i);
    result += std::to_string(count) + " beginbfchar\n";
    for (std::size_t j = i; j < i + count; ++j) result += lines[j];
    result += "endbfchar\n";
  }
  return result + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";
}

int PdfFont::embed(PdfFile& file) const {
  const std::string base = name();
  const int glyphs = file.add(
      "<< /Type /Font /Subtype /" +
      std::string(m_isCff ? "CIDFontType0" : "CIDFontType2 /CIDToGIDMap /Identity") +
      " /BaseFont /" + base +
      " /CIDSystemInfo << /Registry (Adobe) /Ordering (Identity) /Supplement 0 >> /W " + widths() +
      " /FontDescriptor " + pdfReference(file.add(descriptor(file, base))) + " >>");
  return file.add("<< /Type /Font /Subtype /Type0 /BaseFont /" + base +
                  " /Encoding /Identity-H /DescendantFonts " + pdfReferences({glyphs}) +
                  " /ToUnicode " + pdfReference(file.addStream(toUnicode())) + " >>");
}

PdfFont* PdfFonts::find(const FACE_FILE& file) {
  const auto [found, isNew] = m_found.try_emplace(&file, nullptr);
  if (!isNew) return found->second;
  // Synthetic styles share the face.
  const auto [font, isNewFont] = m_fonts.try_emplace({file.path, file.index});
  if (isNewFont) font->second = PdfFont::open(file, m_count++);
  return found->second = font->second.get();
}

std::string PdfFonts::embed(PdfFile& file) const {
  std::string names = "<< ";
  for (const auto& [key, font] : m_fonts) {
    if (!font) continue;
    names += "/F" + std::to_string(font->number()) + " " + pdfReference(font->embed(file)) + " ";
  }
  return names + ">>";
}

}  // namespace vek0::paint
