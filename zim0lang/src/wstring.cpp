#include "zim0lang/wstring.h"

#include "zim0lang/stringloader.h"
#include "zim0lang/utf8.h"

namespace zim {

WString WString::fromUtf8(std::string_view utf8) {
  WString out;
  bool valid = true;
  while (!utf8.empty()) appendUtf16(out.m_text, takeUtf8(utf8, valid));
  return out;
}

std::string WString::toUtf8() const {
  std::string out;
  std::u16string_view rest = m_text;
  while (!rest.empty()) appendUtf8(out, takeUtf16(rest));
  return out;
}

WString WString::Concat(const WString& other) const {
  WString out(*this);
  return out += other;
}

bool WString::LoadStr(long id) { return CStringLoader::find(id, *this); }

}  // namespace zim
