#pragma once

#include <utility>
#include <vector>

#include "vek0core/drawing/data.h"
#include "vek0core/tables/style.h"

namespace vek0::paint {

/// Gives the styles of a drawing their fonts back when it is destroyed: those of a picture end with
/// the picture. The drawing, which is borrowed, must outlive it and keep its styles.
class StyleFonts {
 public:
  explicit StyleFonts(const CData& data) {
    for (CData::CStyleIterator at(data, true); *at; ++at)
      m_fonts.emplace_back(*at, (*at)->getFont());
  }
  StyleFonts(const StyleFonts&) = delete;
  StyleFonts& operator=(const StyleFonts&) = delete;
  ~StyleFonts() {
    for (const auto& [style, font] : m_fonts) style->setFont(font);
  }

 private:
  std::vector<std::pair<CStyle*, const ICADFont*>> m_fonts;
};

}  // namespace vek0::paint
