#include "vek0core/tables/style.h"

#include <new>

CStyleMemento::CStyleMemento(const CStyle& style)
    : m_name(style.getName()),
      m_font(style.getFont()),
      m_fixedHeight(style.getFixedHeight()),
      m_widthScale(style.getWidthScale()),
      m_oblique(style.getOblique()),
      m_lastHeight(style.getLastHeight()),
      m_flags(style.getFlags()) {}

bool CStyleMemento::operator==(const CStyle& style) const {
  return m_name == style.getName() && m_font == style.getFont() &&
         m_fixedHeight == style.getFixedHeight() && m_widthScale == style.getWidthScale() &&
         m_oblique == style.getOblique() && m_lastHeight == style.getLastHeight() &&
         m_flags == style.getFlags();
}

CStyle::CStyle(const zim::WString& name, const ICADFont* font, double fixedHeight,
               double widthScale, double oblique, double lastHeight, long flags)
    : CNamedItem(name, flags),
      m_fixedHeight(fixedHeight),
      m_widthScale(widthScale),
      m_oblique(oblique),
      m_lastHeight(lastHeight),
      m_font(font) {}

CStyle::CStyle(const CStyle& src)
    : CNamedItem(src),
      m_fixedHeight(src.m_fixedHeight),
      m_widthScale(src.m_widthScale),
      m_oblique(src.m_oblique),
      m_lastHeight(src.m_lastHeight),
      m_font(src.m_font) {}

CStyle& CStyle::operator=(const CStyle& src) {
  if (this == &src) return *this;
  CNamedItem::operator=(src);
  m_fixedHeight = src.m_fixedHeight;
  m_widthScale = src.m_widthScale;
  m_oblique = src.m_oblique;
  m_lastHeight = src.m_lastHeight;
  m_font = src.m_font;
  return *this;
}

bool CStyle::operator==(const CStyle& s) const {
  return CNamedItem::operator==(s) && m_font == s.m_font && m_fixedHeight == s.m_fixedHeight &&
         m_widthScale == s.m_widthScale && m_oblique == s.m_oblique;
}

CStyleMemento* CStyle::createMemento() const try {
  return new (std::nothrow) CStyleMemento(*this);
} catch (const std::bad_alloc&) {
  return nullptr;
}

void CStyle::setMemento(const CStyleMemento& memento) {
  setName(memento.m_name);
  setFlags(memento.m_flags);
  m_font = memento.m_font;
  m_fixedHeight = memento.m_fixedHeight;
  m_widthScale = memento.m_widthScale;
  m_oblique = memento.m_oblique;
  m_lastHeight = memento.m_lastHeight;
}

CStyleStandard::CStyleStandard(const ICADFont* font, double fixedHeight, double widthScale,
                               double oblique, double lastHeight, long flags)
    : CStyle(u"STANDARD", font, fixedHeight, widthScale, oblique, lastHeight, flags) {}

CStyle* CStyleFactory::create(const CStyle& src) try {
  return new (std::nothrow) CStyle(src);
} catch (const std::bad_alloc&) {
  return nullptr;
}

CStyle* CStyleFactory::create(const zim::WString& name, const ICADFont* font, double fixedHeight,
                              double widthScale, double oblique, double lastHeight,
                              long flags) try {
  return new (std::nothrow) CStyle(name, font, fixedHeight, widthScale, oblique, lastHeight, flags);
} catch (const std::bad_alloc&) {
  return nullptr;
}
