#include "vek0host/selection.h"

#include <algorithm>
#include <charconv>

#include "vek0host/entitycounts.h"
#include "vek0host/entitylist.h"
#include "vek0host/layerchoice.h"
#include "vek0host/propertytext.h"
#include "vek0host/textvalues.h"

namespace vek0::host {
namespace {

constexpr const char* kForm =
    "is not all, layer=..., kind=..., color=..., text=..., handle=..., "
    "block=..., linetype=..., window=... or crossing=...";

bool isWithin(const RECT_2D& window, const RECT_3D& box) {
  return box.validRegion() && window.min.x <= box.min.x && window.min.y <= box.min.y &&
         box.max.x <= window.max.x && box.max.y <= window.max.y;
}

bool isMet(const RECT_2D& window, const RECT_3D& box) {
  return box.validRegion() && window.min.x <= box.max.x && window.min.y <= box.max.y &&
         box.min.x <= window.max.x && box.min.y <= window.max.y;
}

bool contains(const std::vector<std::string>& list, const std::string& text) {
  return std::find(list.begin(), list.end(), text) != list.end();
}

bool matchesAny(std::u16string_view name, const std::vector<zim::WString>& patterns) {
  return std::any_of(patterns.begin(), patterns.end(), [&](const zim::WString& pattern) {
    return matchesPattern(name, pattern.view());
  });
}

// Whether one of the texts that the entity shows matches.
bool showsText(const CEnt& ent, const std::vector<zim::WString>& patterns) {
  const auto matches = [&](const CEnt& shown) {
    const std::optional<std::string> text = textOf(shown);
    return text && matchesAny(zim::WString::fromUtf8(*text).view(), patterns);
  };
  if (matches(ent)) return true;
  const CEntInsertBase* insert = ent.getEntInsert();
  for (unsigned i = 0; insert && i < insert->GetNoAttribs(); ++i)
    if (matches(*insert->GetAttrib(i))) return true;
  return false;
}

// The blanks before a word like "layer=" or "!kind=" separate criteria; others belong to names.
std::vector<std::string> splitCriteria(const std::vector<std::string>& words, const auto& isBegin) {
  std::vector<std::string> criteria;
  for (const std::string& word : words) {
    if (word.empty()) continue;
    if (criteria.empty() || isBegin(word))
      criteria.push_back(word);
    else
      criteria.back() += " " + word;
  }
  return criteria;
}

}  // namespace

std::optional<Selection::Key> Selection::keyOf(const std::string& name) {
  constexpr std::pair<std::string_view, Key> keys[] = {
      {"layer", Key::Layer},   {"kind", Key::Kind},         {"color", Key::Color},
      {"text", Key::Text},     {"handle", Key::Handle},     {"block", Key::Block},
      {"window", Key::Window}, {"linetype", Key::Linetype}, {"crossing", Key::Crossing}};
  for (const auto& [word, key] : keys)
    if (name == word) return key;
  return std::nullopt;
}

std::string Selection::parse(const std::string& text) {
  *this = {};
  if (text == "all") return {};
  const auto words = splitUnquoted(text, ' ');
  if (!words) return "unclosed quote in " + text;
  const auto isBegin = [](const std::string& word) {
    const std::size_t from = word.starts_with('!') ? 1 : 0;
    const std::size_t equals = word.find('=');
    return equals != std::string::npos && keyOf(word.substr(from, equals - from)).has_value();
  };
  std::string problem;
  for (const std::string& criteria : splitCriteria(*words, isBegin))
    if (problem.empty()) problem = take(criteria);
  if (problem.empty() && m_criteria.empty()) problem = "'" + text + "' " + kForm;
  for (Criterion& criterion : m_criteria)
    if (problem.empty()) problem = prepare(criterion);
  return problem;
}

// "layer=A,B,kind=line": a value without a name continues the criterion before it.
std::string Selection::take(const std::string& criteria) {
  const std::size_t first = m_criteria.size();
  std::size_t current = first;
  const std::vector<std::string> items = *splitUnquoted(criteria, ',');
  for (const std::string& item : items) {
    const std::vector<std::string> sides = *splitUnquoted(item, '=');
    if (sides.size() > 1) {
      const bool isNegated = sides[0].starts_with('!');
      const std::optional<Key> key = keyOf(sides[0].substr(isNegated ? 1 : 0));
      if (!key || sides.size() > 2) return "'" + item + "' " + kForm;
      current = first;
      while (current < m_criteria.size() &&
             (m_criteria[current].key != *key || m_criteria[current].isNegated != isNegated))
        ++current;
      if (current == m_criteria.size()) m_criteria.push_back({*key, isNegated});
    }
    if (current == m_criteria.size()) return "'" + item + "' " + kForm;
    std::vector<std::string>& values = m_criteria[current].values;
    values.push_back(unquoted(sides.back()));
    if (values.back().empty()) return "missing value in " + criteria;
  }
  return {};
}

std::string Selection::prepare(Criterion& criterion) {
  for (const std::string& value : criterion.values)
    criterion.patterns.push_back(zim::WString::fromUtf8(value));
  std::string problem;
  switch (criterion.key) {
    case Key::Kind:
      for (std::string& kind : criterion.values)
        if (problem.empty()) problem = checkKind(kind);
      return problem;
    case Key::Color:
      return readColors(criterion);
    case Key::Handle:
      return readHandles(criterion);
    case Key::Window:
    case Key::Crossing:
      return readWindow(criterion);
    default:
      return {};
  }
}

std::string Selection::checkKind(std::string& kind) {
  const zim::WString wide = zim::WString::fromUtf8(kind);
  std::string all;
  for (const char* known : entityKinds()) {
    all += (all.empty() ? "" : ", ") + std::string(known);
    if (!zim::equalsIgnoreCase(wide, zim::WString::fromUtf8(known))) continue;
    kind = known;
    return {};
  }
  return "'" + kind + "' is not one of " + all;
}

std::string Selection::readColors(Criterion& criterion) {
  for (const std::string& value : criterion.values) {
    const std::size_t dots = value.find("..");
    const short first = colorNumberOf(value.substr(0, dots));
    const short last = dots == std::string::npos ? first : colorNumberOf(value.substr(dots + 2));
    if (first < 0 || last < 0) return "'" + value + "' is not a color like 3, 1..7, red or bylayer";
    criterion.colors.push_back(std::minmax(first, last));
  }
  return {};
}

std::string Selection::readHandles(Criterion& criterion) {
  constexpr int hexadecimal = 16;
  for (const std::string& value : criterion.values) {
    vek0::Handle handle = 0;
    const char* const end = value.data() + value.size();
    const auto read = std::from_chars(value.data(), end, handle, hexadecimal);
    if (read.ec != std::errc() || read.ptr != end || handle <= 0)
      return "'" + value + "' is not a handle like 1F";
    criterion.handles.insert(handle);
  }
  return {};
}

std::string Selection::readWindow(Criterion& criterion) {
  std::string joined;
  for (const std::string& number : criterion.values) joined += (joined.empty() ? "" : ",") + number;
  const auto numbers = numbersIn(joined);
  if (!numbers || numbers->size() != 4) return "'" + joined + "' is not a window like 0,0,20,10";
  const auto [x1, x2] = std::minmax((*numbers)[0], (*numbers)[2]);
  const auto [y1, y2] = std::minmax((*numbers)[1], (*numbers)[3]);
  criterion.window = RECT_2D(x1, y1, x2, y2);
  return {};
}

std::string Selection::findLayers(const CData& data) {
  for (Criterion& criterion : m_criteria) {
    if (criterion.key != Key::Layer) continue;
    criterion.layers.clear();
    for (const zim::WString& pattern : criterion.patterns) {
      bool found = false;
      for (CData::CLayerIterator it(data, true); const CLayer* layer = *it; ++it) {
        if (!matchesPattern(layer->getFullName(), pattern)) continue;
        found = true;
        criterion.layers.insert(layer);
      }
      if (!found) return "no layer is named " + pattern.toUtf8();
    }
  }
  return {};
}

bool Selection::includes(CEnt& ent) const { return includes(ent, ent.getBdry()); }

bool Selection::includes(CEnt& ent, const RECT_3D& box) const {
  return std::all_of(m_criteria.begin(), m_criteria.end(), [&](const Criterion& criterion) {
    return meets(criterion, ent, box) != criterion.isNegated;
  });
}

bool Selection::meets(const Criterion& criterion, CEnt& ent, const RECT_3D& box) {
  const auto isNamed = [&](const auto* item) {
    return item && matchesAny(item->getName().view(), criterion.patterns);
  };
  switch (criterion.key) {
    case Key::Layer:
      return criterion.layers.contains(ent.getLayer());
    case Key::Kind:
      return contains(criterion.values, kindNameOf(ent)) ||
             contains(criterion.values, recordNameOf(ent));
    case Key::Color:
      return std::any_of(criterion.colors.begin(), criterion.colors.end(), [&](const auto& range) {
        return range.first <= ent.getColor() && ent.getColor() <= range.second;
      });
    case Key::Text:
      return showsText(ent, criterion.patterns);
    case Key::Handle:
      return criterion.handles.contains(ent.GetHandle());
    case Key::Block: {
      const CEntInsertBase* insert = ent.getEntInsert();
      return insert && isNamed(insert->getBlock());
    }
    case Key::Linetype:
      return isNamed(ent.getLtype());
    case Key::Window:
      return isWithin(criterion.window, box);
    case Key::Crossing:
      return isMet(criterion.window, box);
  }
  return false;
}

}  // namespace vek0::host
