// Valid names are assigned first, so that no corrected name takes one of them.
#include "dxf/out/modern/itemnames.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <unordered_map>

#include "dxf/out/foldednames.h"
#include "files/surrogates.h"
#include "vek0core/files/report.h"

namespace vek0::detail {
namespace {

constexpr std::size_t kLongestItemName = 255;
constexpr std::u16string_view kForbidden = u"<>/\\\":;?*|,=`";

bool isSurrogate(zim::Char c) { return isHighSurrogate(c) || isLowSurrogate(c); }

bool isForbidden(zim::Char c) {
  const bool isControl = c < 0x20 || (c >= 0x7F && c < 0xA0);
  // Encodings replace single surrogates, all by the same character.
  return isControl || isSurrogate(c) || kForbidden.find(c) != std::u16string_view::npos;
}

bool isPair(std::u16string_view name, std::size_t at) {
  return at + 1 < name.size() && isHighSurrogate(name[at]) && isLowSurrogate(name[at + 1]);
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
  std::u16string name(own.name.view());
  std::size_t bar = own.isDependent ? name.find(u'|') : std::u16string::npos;
  if (bar != std::u16string::npos && !own.reference.empty()) {
    name.replace(0, bar, own.reference.view());
    bar = own.reference.view().size();
  }
  name.resize(cut(name, kLongestItemName).size());
  if (name.empty()) return u"_";
  const bool isStarred = stars && name[0] == u'*' && !isOfSpace(name);
  for (std::size_t i = isStarred ? 1 : 0; i < name.size(); ++i) {
    if (isPair(name, i))
      ++i;
    else if (isForbidden(name[i]) && i != bar)
      name[i] = u'_';
  }
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
  zim::WString numbered(std::u16string_view base) {
    for (std::size_t digits = 0;; ++digits) {
      if (digits == m_numbers.size()) m_numbers.emplace_back();
      const std::u16string_view stem = cut(base, kLongestItemName - (digits + 1));
      const auto [found, isNew] = m_numbers[digits].try_emplace(std::u16string(stem));
      long& next = found->second;
      if (isNew) next = std::lround(std::pow(10, digits));
      for (; next < std::lround(std::pow(10, digits + 1)); ++next) {
        const std::string number = std::to_string(next);
        std::u16string name(stem);
        name.append(number.begin(), number.end());
        if (!m_given.has(name)) return zim::WString(name);
      }
    }
  }

 private:
  // The next number to try for a name that is cut to make room for it.
  using NextNumbers = std::unordered_map<std::u16string, long, FoldedHash, FoldedEqual>;

  FoldedNames m_given;
  std::vector<NextNumbers> m_numbers;  // by number of digits, less 1
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
