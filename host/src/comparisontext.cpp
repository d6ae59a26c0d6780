#include "vek0host/comparisontext.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "vek0host/entitycounts.h"
#include "vek0host/entitylist.h"
#include "vek0host/propertytext.h"
#include "vek0host/textvalues.h"
#include "vek0host/visibletext.h"

namespace vek0::host {
namespace {

// Kinds are found by visitors, which take non-const entities and only read here.
std::string kindOf(const CEnt& ent) { return recordNameOf(const_cast<CEnt&>(ent)); }

std::string layerOf(const CEnt& ent) {
  const CLayer* layer = ent.getLayer();
  return layer ? layer->getFullName().toUtf8() : std::string("0");
}

// The layout or block that holds the entity; null for model space.
Json placeOf(const CData& data, const CEnt& ent, const char*& key) {
  const CBlock* block = ent.getOwnerBlock();
  key = block && !block->isSheet() ? "block" : "layout";
  if (!block) return nullptr;
  for (int i = 0; i < data.getLayouts().size(); ++i)
    if (&data.getLayouts()[i].getBlock() == block) return data.getLayouts()[i].getName().toUtf8();
  return block->getName().toUtf8();
}

std::string placeName(const CData& data, const CEnt& ent) {
  const char* key;
  const Json place = placeOf(data, ent, key);
  return place.is_null() ? "Model" : place.get<std::string>();
}

std::string styleOf(const CEnt& ent) {
  const CStyle* style = ent.getStyle();
  return style ? style->getName().toUtf8() : std::string();
}

Json patternOf(const CEnt& ent) {
  if (ent.getType() != CEntHatch::kType) return nullptr;
  const auto& hatch = static_cast<const CEntHatch&>(ent);
  constexpr double degrees = 180 / vek0::detail::kPi;
  return {{"name", zim::WString(hatch.getHatchType().name).toUtf8()},
          {"scale", hatch.getHatchScale()},
          {"angle", hatch.getHatchRotate() * degrees}};
}

std::string shownBlock(const CEnt& ent) {
  const CEntInsertBase* insert = ent.getEntInsert();
  return insert && insert->getBlock() ? insert->getBlock()->getName().toUtf8() : std::string();
}

std::string tagOf(const CEntAttrib& attrib) { return attrib.getTag().toUtf8(); }

// The attributes whose texts differ from those of the other insert, or all tags.
Json attribsOf(const CEnt& ent, const CEnt& other, bool isText) {
  const CEntInsertBase *insert = ent.getEntInsert(), *twin = other.getEntInsert();
  Json json = isText ? Json::object() : Json::array();
  for (unsigned i = 0; insert && i < insert->GetNoAttribs(); ++i) {
    const CEntAttrib& attrib = *insert->GetAttrib(i);
    const CEntAttrib* same = twin ? twin->GetAttrib(i) : nullptr;
    const std::string text = textOf(attrib).value_or("");
    if (!isText)
      json.push_back(tagOf(attrib));
    else if (!same || textOf(*same) != text)
      json[tagOf(attrib)] = text;
  }
  return json;
}

Json textValue(const CEnt& ent, const CEnt& other) {
  if (ent.getType() == CEntAttdef::kType) {
    const auto& definition = static_cast<const CEntAttdef&>(ent);
    return {{"tag", textOf(ent).value_or("")},
            {"value", definition.getValue().toUtf8()},
            {"prompt", definition.getPrompt().toUtf8()}};
  }
  if (const auto text = textOf(ent)) return *text;
  return attribsOf(ent, other, true);
}

Json itemValueToJson(const ItemValue& value) {
  if (const bool* flag = std::get_if<bool>(&value)) return *flag;
  if (const double* number = std::get_if<double>(&value)) return *number;
  if (const zim::WString* text = std::get_if<zim::WString>(&value)) return text->toUtf8();
  if (const auto* numbers = std::get_if<std::vector<double>>(&value)) return *numbers;
  return nullptr;
}

Json itemToJson(const ITEM_CHANGE& change) {
  Json json{{"table", nameOf(change.table)}, {"name", change.name.toUtf8()}};
  json["what"] = Json::array();
  if (change.sort == ITEM_CHANGE::Sort::Added) json["what"].push_back("added");
  if (change.sort == ITEM_CHANGE::Sort::Removed) json["what"].push_back("removed");
  json["from"] = Json::object();
  json["to"] = Json::object();
  for (const VALUE_CHANGE& value : change.values) {
    json["what"].push_back(value.what);
    json["from"][value.what] = itemValueToJson(value.before);
    json["to"][value.what] = itemValueToJson(value.after);
  }
  return json;
}

bool isWhole(double number) {
  constexpr double exact = 1e9;
  return std::fabs(number) < exact && number == std::trunc(number);
}

// On one line: texts without quotes, extents as their corners.
std::string inWords(const Json& value) {
  if (value.is_string()) return visible(value.get<std::string>());
  if (value.is_null()) return "none";
  if (value.is_number_float() && isWhole(value.get<double>()))
    return std::to_string(value.get<long>());
  if (value.is_object() && value.contains("min"))
    return toLine(value["min"]) + "-" + toLine(value["max"]);
  return toLine(value);
}

std::string inWords(const Json& what, const Json& from, const Json& to) {
  std::string text;
  for (const Json& word : what) {
    const std::string key = word.get<std::string>();
    text += (text.empty() ? "" : ", ") + key;
    const bool isStated = from.contains(key) && !(from[key].is_null() && to[key].is_null());
    if (isStated) text += " " + inWords(from[key]) + " -> " + inWords(to[key]);
  }
  return text;
}

std::string padded(std::string text, std::size_t width) {
  text.resize(std::max(width, text.size()), ' ');
  return text;
}

}  // namespace

std::string changesInWords(const std::vector<VALUE_CHANGE>& changes) {
  const Json json = itemToJson({ItemTable::Layers, ITEM_CHANGE::Sort::Changed, {}, changes});
  return inWords(json["what"], json["from"], json["to"]);
}

Json ComparisonText::toJson(const CData& data, const CEnt& ent) const {
  Json json{{"handle", hexText(ent.GetHandle())}, {"kind", kindOf(ent)}, {"layer", layerOf(ent)}};
  const char* key;
  const Json place = placeOf(data, ent, key);
  if (!place.is_null()) json[key] = place;
  json["extents"] = extentsToJson(ent.getBdry());
  return json;
}

Json ComparisonText::toJson(const ENT_CHANGE& change) const {
  Json json = toJson(m_before, *change.before);
  if (change.by) json["by"] = pointToJson(*change.by);
  if (change.isMove()) return json;
  json["what"] = Json::array();
  json["from"] = Json::object();
  json["to"] = Json::object();
  for (int i = 0; i < kEntAspects; ++i) {
    const auto aspect = static_cast<EntAspect>(i);
    if (!change.has(aspect)) continue;
    json["what"].push_back(nameOf(aspect));
    json["from"][nameOf(aspect)] = valueOf(m_before, change, aspect, false);
    json["to"][nameOf(aspect)] = valueOf(m_after, change, aspect, true);
  }
  return json;
}

Json ComparisonText::valueOf(const CData& data, const ENT_CHANGE& change, EntAspect aspect,
                             bool isAfter) const {
  const CEnt& ent = isAfter ? *change.after : *change.before;
  const CEnt& other = isAfter ? *change.before : *change.after;
  switch (aspect) {
    case EntAspect::Geometry:
      return extentsToJson(ent.getBdry());
    case EntAspect::Layer:
      return layerOf(ent);
    case EntAspect::Color:
      return ownColorToJson(ent);
    case EntAspect::Linetype:
      return ltypeName(ent.getLtype());
    case EntAspect::Lineweight:
      return ownWeightToJson(ent);
    case EntAspect::LinetypeScale:
      return ent.getTraits().ltypeScale;
    case EntAspect::Transparency:
      return ownTransparencyToJson(ent);
    case EntAspect::Visible:
      return ent.getTraits().isVisible;
    case EntAspect::Thickness:
      return ent.getTraits().thickness;
    case EntAspect::Text:
      return textValue(ent, other);
    case EntAspect::Style:
      return styleOf(ent);
    case EntAspect::Pattern:
      return patternOf(ent);
    case EntAspect::Block:
      return shownBlock(ent);
    case EntAspect::Attributes:
      return attribsOf(ent, other, false);
    case EntAspect::Place:
      return placeName(data, ent);
  }
  return nullptr;
}

void ComparisonText::writeJson(const std::function<void(const std::string&)>& write) const {
  const auto list = [&](const char* key, const auto& all, const auto& jsonOf) {
    write(std::string(",\"") + key + "\":[");
    bool isFirst = true;
    for (const auto& one : all) {
      write((isFirst ? "" : ",") + toLine(jsonOf(one)));
      isFirst = false;
    }
    write("]");
  };
  write(m_found.isEqual() ? "{\"equal\":true" : "{\"equal\":false");
  list("added", m_found.added, [this](const CEnt* ent) { return toJson(m_after, *ent); });
  list("removed", m_found.removed, [this](const CEnt* ent) { return toJson(m_before, *ent); });
  const auto changeToJson = [this](const ENT_CHANGE& change) { return toJson(change); };
  list("moved", m_found.moved, changeToJson);
  list("changed", m_found.changed, changeToJson);
  list("tables", m_found.items, [](const ITEM_CHANGE& change) { return itemToJson(change); });
  write("}\n");
}

std::string ComparisonText::lineOf(const char* mark, const CData& data, const CEnt& ent) const {
  std::string line = std::string(mark) + " " + padded(hexText(ent.GetHandle()), 8) + "  " +
                     padded(kindOf(ent), 11) + "  " + visible(layerOf(ent));
  if (ent.getOwnerBlock()) line += "  in " + visible(placeName(data, ent));
  return line;
}

std::string ComparisonText::lineOf(const ENT_CHANGE& change) const {
  const Json json = toJson(change);
  if (change.isMove()) return lineOf(">", m_before, *change.before) + "  by " + toLine(json["by"]);
  std::string line = lineOf("~", m_before, *change.before) + "  ";
  line += inWords(json["what"], json["from"], json["to"]);
  if (change.by) line += ", by " + toLine(json["by"]);
  return line;
}

std::string ComparisonText::summary() const {
  constexpr std::size_t columns = 4;
  std::map<std::pair<std::string, std::string>, std::array<std::size_t, columns>> counts;
  const auto count = [&](const CEnt& ent, std::size_t column) {
    ++counts[{visible(layerOf(ent)), kindOf(ent)}][column];
  };
  for (const CEnt* ent : m_found.removed) count(*ent, 0);
  for (const CEnt* ent : m_found.added) count(*ent, 1);
  for (const ENT_CHANGE& change : m_found.moved) count(*change.before, 2);
  for (const ENT_CHANGE& change : m_found.changed) count(*change.before, 3);
  if (counts.empty()) return {};
  constexpr std::size_t layerWidth = 20, kindWidth = 12, width = 10;
  std::string text = padded("LAYER", layerWidth) + padded("KIND", kindWidth);
  for (const char* head : {"REMOVED", "ADDED", "MOVED", "CHANGED"})
    text += std::string(width - std::string(head).size(), ' ') + head;
  text += "\n";
  for (const auto& [key, numbers] : counts) {
    text += padded(key.first, layerWidth - 1) + " " + padded(key.second, kindWidth - 1) + " ";
    for (const std::size_t number : numbers) {
      const std::string cell = number > 0 ? std::to_string(number) : "-";
      text += std::string(width - std::min(width, cell.size()), ' ') + cell;
    }
    text += "\n";
  }
  return text + "\n";
}

void ComparisonText::writeText(const std::function<void(const std::string&)>& write) const {
  write(summary());
  for (const CEnt* ent : m_found.removed) write(lineOf("-", m_before, *ent) + "\n");
  for (const CEnt* ent : m_found.added) write(lineOf("+", m_after, *ent) + "\n");
  for (const ENT_CHANGE& change : m_found.moved) write(lineOf(change) + "\n");
  for (const ENT_CHANGE& change : m_found.changed) write(lineOf(change) + "\n");
  for (const ITEM_CHANGE& change : m_found.items) {
    const Json json = itemToJson(change);
    write(std::string(nameOf(change.table)) + " " + visible(change.name) + "  " +
          inWords(json["what"], json["from"], json["to"]) + "\n");
  }
}

}  // namespace vek0::host
