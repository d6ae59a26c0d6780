#include "vek0core/tables/font.h"

#include <algorithm>
#include <memory>
#include <mutex>

#include "zim0lang/utf8.h"

namespace {

constexpr double kHeightUnit = 1.0;
constexpr double kDescent = 1.0 / 3.0;
constexpr double kAdvance = 0.9;      // per character, in height units
constexpr double kWideAdvance = 1.8;  // an ideograph, a kana, a Hangul syllable
constexpr double kBoldFactor = 1.1;

// Characters that occupy two columns in East Asian text.
bool isWide(char32_t c) {
  return (c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0xA4CF && c != 0x303F) ||
         (c >= 0xAC00 && c <= 0xD7A3) || (c >= 0xF900 && c <= 0xFAFF) ||
         (c >= 0xFE30 && c <= 0xFE6F) || (c >= 0xFF00 && c <= 0xFF60) ||
         (c >= 0xFFE0 && c <= 0xFFE6) || (c >= 0x20000 && c <= 0x3FFFD);
}

std::unique_ptr<CFontTable>& fonts() {
  static std::unique_ptr<CFontTable> table;
  return table;
}

// Two threads may create their first drawings at the same time.
std::mutex& fontsMutex() {
  static std::mutex mutex;
  return mutex;
}

}  // namespace

double ICADFont::getHeightUnit() const { return kHeightUnit; }
double ICADFont::getFullHeight() const { return getHeightUnit(); }
double ICADFont::getDescent() const { return kDescent; }

double ICADFont::getStringWidth(const zim::WString& text, bool /*horiz*/, bool bold,
                                bool /*italic*/) const {
  double width = 0;
  for (std::u16string_view rest = text; !rest.empty();) {
    width += isWide(zim::takeUtf16(rest)) ? kWideAdvance : kAdvance;
  }
  return bold ? width * kBoldFactor : width;
}

const ICADFont& defaultFontMetrics() {
  static const CNamedFont metrics{zim::WString()};
  return metrics;
}

CFontTable& CFontTable::getInstance() {
  const std::lock_guard lock(fontsMutex());
  if (!fonts()) fonts().reset(new CFontTable);
  return *fonts();
}

void CFontTable::shutdown() {
  const std::lock_guard lock(fontsMutex());
  fonts().reset();
}

void CFontTable::add(ICADFont* font) {
  const auto isSame = [font](const auto& own) { return own.get() == font; };
  if (!font || std::any_of(m_fonts.begin(), m_fonts.end(), isSame)) return;
  m_fonts.emplace_back();  // what can fail comes before the table owns the font
  try {
    m_byName.try_emplace(font->getName(), font);
  } catch (const std::bad_alloc&) {
    m_fonts.pop_back();
    throw;
  }
  m_fonts.back().reset(font);
}

const ICADFont* CFontTable::get(const zim::WString& name, bool orDefault) const {
  const auto found = m_byName.find(name);
  if (found != m_byName.end()) return found->second;
  return orDefault ? m_default : nullptr;
}

void CFontTable::addPlainDefault() {
  if (m_default) return;
  auto font = std::make_unique<CNamedFont>(u"txt");
  add(font.get());
  m_default = font.release();
}
