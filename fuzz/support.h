#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "vek0core/vek0core.h"

namespace vek0::fuzz {

struct Deleter {
  void operator()(CData* data) const { deleteData(data); }
};
using Drawing = std::unique_ptr<CData, Deleter>;

class Font : public ICADFont {
 public:
  Font() : ICADFont(u"txt") {}
};

/// A new drawing; the first call registers a default font, as hosts do, so that
/// style tables get past their font names.
inline Drawing newDrawing() {
  static const bool ready = [] {
    auto* font = new Font;
    CFontTable::getInstance().add(font);
    CFontTable::getInstance().setDefault(font);
    return true;
  }();
  static_cast<void>(ready);
  CDataFactory factory;
  return Drawing(factory.createData());
}

inline std::string bytes(const std::uint8_t* data, std::size_t size) {
  return std::string(reinterpret_cast<const char*>(data), size);
}

}  // namespace vek0::fuzz
