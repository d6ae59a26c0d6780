#include "vek0host/multibyte.h"

#include <iconv.h>

#include <cerrno>
#include <map>
#include <memory>
#include <type_traits>

namespace vek0::host {
namespace {

const char* pageName(int page) {
  switch (page) {
    case 932:
      return "CP932";
    case 936:
      return "GBK";
    case 949:
      return "CP949";
    case 950:
      return "BIG5";
    case 1361:
      return "JOHAB";
    default:
      return nullptr;
  }
}

struct Closer {
  void operator()(iconv_t converter) const { iconv_close(converter); }
};
using Converter = std::unique_ptr<std::remove_pointer_t<iconv_t>, Closer>;

// Opened once per page and thread; null if the system does not support the page.
iconv_t converterOf(int page) {
  thread_local std::map<int, Converter> converters;
  const auto [place, isNew] = converters.try_emplace(page);
  const char* name = pageName(page);
  if (isNew && name) {
    const iconv_t opened = iconv_open("UTF-16LE", name);
    if (opened != reinterpret_cast<iconv_t>(-1)) place->second.reset(opened);
  }
  return place->second.get();
}

}  // namespace

bool decodeMultiByte(int page, std::string_view bytes, std::u16string& out) {
  const iconv_t converter = converterOf(page);
  if (!converter) return false;
  iconv(converter, nullptr, nullptr, nullptr, nullptr);
  std::string copy(bytes);
  char* in = copy.data();
  std::size_t left = copy.size();
  while (left > 0) {
    char units[256];
    char* to = units;
    std::size_t room = sizeof units;
    const bool stuck =
        iconv(converter, &in, &left, &to, &room) == static_cast<std::size_t>(-1) && errno != E2BIG;
    for (const char* p = units; p + 1 < to; p += 2)
      out += static_cast<char16_t>(static_cast<unsigned char>(p[0]) |
                                   static_cast<unsigned char>(p[1]) << 8);
    if (!stuck || left == 0) continue;
    out += u'\uFFFD';
    ++in;
    --left;
  }
  return true;
}

}  // namespace vek0::host
