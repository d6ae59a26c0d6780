// Valid names are assigned first, so that no corrected name takes one of them.
#include "dxf/out/modern/itemnames.h"

#include <algorithm>
#include <string>
#include <unordered_map>

#include "dxf/out/foldednames.h"
#include "files/surrogates.h"
#include "vek0core/files/report.h"

namespace vek0::detail {
namespace {

constexpr std::size_t kLongestItemName = 255;
constexpr std::u16string_view kForbidden = u"<>/\\\":;?*|,=`";

bool isForbidden(zim::Char c) {
  const bool isControl = c < 0x20 || (c >= 0x7F && c < 0xA0);
  return isControl || kForbidden.find(c) != std::u16string_view::npos;
}

std::u16string_view cut(std::u16string_view name, std::size_t length) {
  if (name.size() <= length) return name;
  if (length > 0 && isHighSurrogate(name[length - 1])) --length;
  return name.substr(0, length);
}

// Blocks of layouts, whose names readers give a meaning.
bool isOfSpace(std::u16string_view name) {
  for (const std::u16string_view space : {u"*Model_Space", u"*Paper_Space"})
    if (zim::equalsIgnoreCase(name.substr(0, std::min(name.size(), space.size())), space))
      return true;
  return false;
}

std::u16string corrected(const OwnName& own, bool stars) {
  std::u16string name(cut(own.name.view(), kLongestItemName));
  if (name.empty()) return u"_";
  const std::size_t bar = own.isDependent ? name.find(u'|') : std::u16string::npos;
  const bool isStarred = stars && name[0] == u'*' && !isOfSpace(name);
  for (std::size_t i = isStarred ? 1 : 0; i < name.size(); ++i)
    if (isForbidden(name[i]) && i != bar) name[i] = u'_';
  return name;
}

class NameTable {
 public:
  explicit NameTable(const std::vector<std::u16string_view>& reserved) {
    for (const std::u16string_view name : reserved) m_given.insert(name);
  }
  /// The table borrows the name.
  bool take(std::u16string_view name) { return m_given.insert(name); }
  /// A free name that begins with `base`, or as much of it as leaves room for the number.
  zim::WString numbered(const std::u16string& base) {
    long& number = m_numbers[base];
    for (;;) {
      const std::string digits = std::to_string(++number);
      std::u16string name(cut(base, kLongestItemName - digits.size()));
      name.append(digits.begin(), digits.end());
      if (!m_given.has(name)) return zim::WString(name);
    }
  }

 private:
  FoldedNames m_given;
  std::unordered_map<std::u16string, long> m_numbers;  // last one tried
};

}  // namespace

std::vector<zim::WString> itemNames(const std::vector<OwnName>& own,
                                    const std::vector<std::u16string_view>& reserved, bool stars,
                                    CFileReport* report) {
  // Names never move, because the table borrows them.
  std::vector<zim::WString> names(own.size());
  std::vector<std::size_t> others;
  NameTable table(reserved);
  for (std::size_t i = 0; i < own.size(); ++i) {
    if (corrected(own[i], stars) == own[i].name.view()) names[i] = own[i].name;
    if (names[i].empty() || !table.take(names[i].view())) others.push_back(i);
  }
  for (const std::size_t i : others) {
    const std::u16string base = corrected(own[i], stars);
    names[i] = zim::WString(base);
    if (!table.take(names[i].view())) {
      names[i] = table.numbered(base);
      table.take(names[i].view());
    }
    if (report) report->add(ReportCode::NameChanged, 0, own[i].name + u" -> " + names[i].view());
  }
  return names;
}

}  // namespace vek0::detail
