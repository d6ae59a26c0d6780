// FriBidi orders, HarfBuzz shapes: docs/decisions/0018-texts-are-shaped-when-needed.md.
#include "shaping.h"

#include <fribidi.h>

#include <algorithm>
#include <iterator>

#include "zim0lang/utf8.h"

namespace vek0::paint {
namespace {

// Code units of simple characters: no marks, no joining or right-to-left scripts, no control of
// direction, no conjoining jamos.
constexpr struct {
  char16_t first, last;
} kSimple[] = {{0x0000, 0x02FF}, {0x0370, 0x0482}, {0x048A, 0x058F}, {0x10A0, 0x10FF},
               {0x1E00, 0x200A}, {0x2010, 0x2027}, {0x202F, 0x205F}, {0x2070, 0x20CF},
               {0x2100, 0x2CEE}, {0x2E00, 0x3029}, {0x3030, 0x3098}, {0x309B, 0xA4CF},
               {0xAC00, 0xD7A3}, {0xD840, 0xD888}, {0xDC00, 0xFB06}, {0xFE30, 0xFE6F},
               {0xFF00, 0xFFFF}};

bool isRightToLeftLevel(FriBidiLevel level) { return level % 2 != 0; }

// The characters of a line, and where each begins in the string.
struct Characters {
  std::vector<FriBidiChar> codes;
  std::vector<std::size_t> starts;  // and the end of the string

  explicit Characters(std::u16string_view text) {
    for (std::u16string_view rest = text; !rest.empty();) {
      starts.push_back(text.size() - rest.size());
      const char32_t code = zim::takeUtf16(rest);
      codes.push_back(code < U' ' ? U' ' : code);
    }
    starts.push_back(text.size());
  }
  int count() const { return static_cast<int>(codes.size()); }
};

// The embedding level of each character: odd levels run from right to left.
std::vector<FriBidiLevel> levelsOf(const Characters& line) {
  const std::size_t count = line.codes.size();
  std::vector<FriBidiCharType> types(count);
  std::vector<FriBidiBracketType> brackets(count);
  std::vector<FriBidiLevel> levels(count);
  fribidi_get_bidi_types(line.codes.data(), line.count(), types.data());
  fribidi_get_bracket_types(line.codes.data(), line.count(), types.data(), brackets.data());
  FriBidiParType direction = FRIBIDI_PAR_ON;
  if (fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), line.count(), &direction,
                                          levels.data()) == 0) {
    return std::vector<FriBidiLevel>(count, 0);  // out of memory
  }
  // Blanks at the end follow the line.
  for (std::size_t i = count; i-- > 0 && FRIBIDI_IS_EXPLICIT_OR_BN_OR_WS(types[i]);)
    levels[i] = FRIBIDI_IS_RTL(direction) ? 1 : 0;
  return levels;
}

// Characters with one level, script and face.
struct Part {
  std::size_t first = 0, end = 0;
  FriBidiLevel level = 0;
  hb_script_t script = HB_SCRIPT_COMMON;
  Face* face = nullptr;
};

bool isInherited(hb_script_t script) {
  return script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED;
}

// Punctuation, blanks and marks have the script of the character before them, or, at the start, of
// the first one after them.
std::vector<hb_script_t> scriptsOf(const Characters& line) {
  hb_unicode_funcs_t* unicode = hb_unicode_funcs_get_default();
  std::vector<hb_script_t> scripts;
  for (const FriBidiChar code : line.codes) scripts.push_back(hb_unicode_script(unicode, code));
  const auto first = std::find_if_not(scripts.begin(), scripts.end(), isInherited);
  hb_script_t last = first == scripts.end() ? HB_SCRIPT_COMMON : *first;
  for (hb_script_t& script : scripts) {
    if (isInherited(script)) script = last;
    last = script;
  }
  return scripts;
}

// Chooses faces so that a part is not interrupted without need.
class FaceChooser {
 public:
  FaceChooser(Face& primary, const FaceFinder& find) : m_primary(primary), m_find(find) {}

  Face& next(char32_t code) {
    Face& face = choose(code);
    m_before = code;
    if (&face != &m_primary) m_other = &face;
    return *(m_last = &face);
  }

 private:
  Face& choose(char32_t code) const {
    if (m_last && staysWith(*m_last, code)) return *m_last;
    if (m_primary.index(code) != 0) return m_primary;
    if (m_other && m_other->index(code) != 0) return *m_other;
    Face* other = m_find(code);
    return other ? *other : m_primary;
  }

  // Marks belong to the glyph before them, and characters without a glyph to any.
  bool staysWith(const Face& face, char32_t code) const {
    hb_unicode_funcs_t* unicode = hb_unicode_funcs_get_default();
    const hb_unicode_general_category_t category = hb_unicode_general_category(unicode, code);
    if (category == HB_UNICODE_GENERAL_CATEGORY_FORMAT) return true;
    if (category != HB_UNICODE_GENERAL_CATEGORY_NON_SPACING_MARK) return false;
    hb_codepoint_t both = 0;
    return face.index(code) != 0 ||
           (hb_unicode_compose(unicode, m_before, code, &both) && face.index(both) != 0);
  }

  Face& m_primary;
  const FaceFinder& m_find;
  Face* m_last = nullptr;
  Face* m_other = nullptr;
  char32_t m_before = 0;
};

std::vector<Part> partsOf(const Characters& line, Face& primary, const FaceFinder& findFace) {
  const std::vector<FriBidiLevel> levels = levelsOf(line);
  const std::vector<hb_script_t> scripts = scriptsOf(line);
  FaceChooser faces(primary, findFace);
  std::vector<Part> parts;
  for (std::size_t i = 0; i < levels.size(); ++i) {
    Face* face = &faces.next(line.codes[i]);
    const bool continues = !parts.empty() && parts.back().level == levels[i] &&
                           parts.back().script == scripts[i] && parts.back().face == face;
    if (!continues) parts.push_back({i, i, levels[i], scripts[i], face});
    parts.back().end = i + 1;
  }
  return parts;
}

// From the highest level down, each sequence of parts at that level or above is reversed.
void orderForDisplay(std::vector<Part>& parts) {
  FriBidiLevel highest = 0;
  for (const Part& part : parts) highest = std::max(highest, part.level);
  for (FriBidiLevel level = highest; level > 0; --level) {
    for (auto first = parts.begin(); first != parts.end();) {
      const auto isAbove = [level](const Part& part) { return part.level >= level; };
      first = std::find_if(first, parts.end(), isAbove);
      const auto end = std::find_if_not(first, parts.end(), isAbove);
      std::reverse(first, end);
      first = end;
    }
  }
}

class Shaper {
 public:
  explicit Shaper(const Characters& line) : m_line(line), m_buffer(hb_buffer_create()) {}
  ~Shaper() { hb_buffer_destroy(m_buffer); }
  Shaper(const Shaper&) = delete;
  Shaper& operator=(const Shaper&) = delete;

  void add(const Part& part) {
    hb_font_t* font = part.face->shaper();
    if (!font) return addPlain(part);
    hb_buffer_clear_contents(m_buffer);
    hb_buffer_set_direction(m_buffer,
                            isRightToLeftLevel(part.level) ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
    hb_buffer_set_script(m_buffer, part.script);
    // The characters around the part can change its first and last glyph.
    hb_buffer_add_utf32(m_buffer, m_line.codes.data(), m_line.count(),
                        static_cast<unsigned>(part.first), static_cast<int>(part.end - part.first));
    hb_shape(font, m_buffer, nullptr, 0);
    addShaped(part);
  }

  std::vector<SHAPED_GLYPH> finish() { return std::move(m_glyphs); }

 private:
  void addShaped(const Part& part) {
    unsigned count = 0;
    const hb_glyph_info_t* infos = hb_buffer_get_glyph_infos(m_buffer, &count);
    const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(m_buffer, &count);
    const std::size_t before = m_glyphs.size();
    for (unsigned i = 0; i < count; ++i) {
      SHAPED_GLYPH& glyph = m_glyphs.emplace_back();
      glyph.face = part.face;
      glyph.index = infos[i].codepoint;
      glyph.dx = positions[i].x_offset;
      glyph.dy = positions[i].y_offset;
      glyph.advance = positions[i].x_advance;
      if (glyph.advance > 0) glyph.advance += part.face->extraAdvance();
      glyph.isRightToLeft = isRightToLeftLevel(part.level);
      glyph.first = infos[i].cluster;
    }
    const auto added = m_glyphs.begin() + static_cast<std::ptrdiff_t>(before);
    // In the order of the text.
    if (isRightToLeftLevel(part.level)) std::reverse(added, m_glyphs.end());
    tellTexts(before, part.end);
    if (isRightToLeftLevel(part.level)) std::reverse(added, m_glyphs.end());
  }

  // Gives the characters of each cluster to its glyphs: one each if there are as many, otherwise
  // all to the first glyph.
  void tellTexts(std::size_t first, std::size_t lastEnd) {
    while (first < m_glyphs.size()) {
      const std::size_t cluster = m_glyphs[first].first;
      std::size_t next = first;
      while (next < m_glyphs.size() && m_glyphs[next].first == cluster) ++next;
      const std::size_t end = next < m_glyphs.size() ? m_glyphs[next].first : lastEnd;
      const bool matches = end - cluster == next - first;
      for (std::size_t i = first; i < next; ++i) {
        const std::size_t from = matches ? cluster + (i - first) : cluster;
        const bool isShown = matches || i == first;
        m_glyphs[i].first = m_line.starts[from];
        m_glyphs[i].end = m_line.starts[matches ? from + 1 : (isShown ? end : from)];
      }
      first = next;
    }
  }

  // Without shaping, for faces that HarfBuzz cannot read.
  void addPlain(const Part& part) {
    const bool isReversed = isRightToLeftLevel(part.level);
    for (std::size_t i = 0; i < part.end - part.first; ++i) {
      const std::size_t at = isReversed ? part.end - 1 - i : part.first + i;
      const FT_UInt index = part.face->index(m_line.codes[at]);
      m_glyphs.push_back({part.face, index, 0, 0, part.face->glyph(index).advance,
                          m_line.starts[at], m_line.starts[at + 1], isReversed});
    }
  }

  const Characters& m_line;
  hb_buffer_t* m_buffer;
  std::vector<SHAPED_GLYPH> m_glyphs;
};

}  // namespace

bool isSimple(std::u16string_view text) {
  return std::all_of(text.begin(), text.end(), [](char16_t unit) {
    if (unit <= kSimple[0].last) return true;
    return std::any_of(std::begin(kSimple), std::end(kSimple), [unit](const auto& range) {
      return unit >= range.first && unit <= range.last;
    });
  });
}

bool isRightToLeft(std::u16string_view text) {
  if (isSimple(text)) return false;
  const Characters line(text);
  std::vector<FriBidiCharType> types(line.codes.size());
  fribidi_get_bidi_types(line.codes.data(), line.count(), types.data());
  return fribidi_get_par_direction(types.data(), line.count()) == FRIBIDI_PAR_RTL;
}

std::vector<SHAPED_GLYPH> shapeLine(std::u16string_view text, Face& primary,
                                    const FaceFinder& findFace) {
  const Characters line(text);
  std::vector<Part> parts = partsOf(line, primary, findFace);
  orderForDisplay(parts);
  Shaper shaper(line);
  for (const Part& part : parts) shaper.add(part);
  return shaper.finish();
}

}  // namespace vek0::paint
