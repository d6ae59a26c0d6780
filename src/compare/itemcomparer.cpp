#include "compare/itemcomparer.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "vek0core/drawing/data.h"
#include "vek0core/drawing/layout.h"
#include "vek0core/entities/blocks/blockxref.h"
#include "vek0core/geometry/angle.h"
#include "vek0core/tables/font.h"

namespace vek0::detail {
namespace {

// A property of an item in one of the drawings.
struct ItemProperty {
  const char* what;
  ItemValue value;
  int id = -1;  // of another item, by which it is compared
};
using ItemProperties = std::vector<ItemProperty>;

bool isNearNumber(double a, double b) {
  constexpr double precision = 1e-9;
  return a == b || std::fabs(a - b) <= precision * std::max(std::fabs(a), std::fabs(b));
}

bool isSameValue(const ItemValue& a, const ItemValue& b) {
  if (const auto* was = std::get_if<double>(&a), *is = std::get_if<double>(&b); was && is)
    return isNearNumber(*was, *is);
  const auto *were = std::get_if<std::vector<double>>(&a),
             *are = std::get_if<std::vector<double>>(&b);
  if (were && are)
    return std::equal(were->begin(), were->end(), are->begin(), are->end(), isNearNumber);
  return a == b;
}

std::vector<double> numbersOf(const PNT_2D& p) { return {p.x, p.y}; }
std::vector<double> numbersOf(const PNT_3D& p) { return {p.x, p.y, p.z}; }

zim::WString textOf(const char* text) { return zim::WString::fromUtf8(text); }

// "#rrggbb".
zim::WString hexColor(std::uint32_t color) {
  constexpr char digits[] = "0123456789abcdef";
  std::string text = "#";
  for (int shift = 20; shift >= 0; shift -= 4) text += digits[color >> shift & 15];
  return zim::WString::fromUtf8(text);
}

ItemValue colorValue(std::uint32_t trueColor, short color) {
  if (trueColor != ENT_TRAITS::kNoTrueColor) return hexColor(trueColor);
  return static_cast<double>(color);
}

ItemValue weightValue(short weight) {
  constexpr double hundredths = 100;
  if (weight < 0) return textOf("DEFAULT");
  return weight / hundredths;
}

ItemProperties propertiesOf(Side side, const CLayer& layer, SharedIds& ids) {
  const LAYER_TRAITS& traits = layer.getTraits();
  const CLtype* ltype = layer.getLtype();
  constexpr double opaque = ENT_TRAITS::kOpaque;
  return {{"color", colorValue(traits.trueColor, layer.getColor())},
          {"linetype", ltype ? ltype->getFullName() : zim::WString(), ids.ltypes(side, ltype)},
          {"lineweight", weightValue(traits.lineweight)},
          {"transparency", 1 - traits.opacity / opaque},
          {"on", !layer.isOff()},
          {"frozen", layer.isFrozen()},
          {"locked", layer.isLocked()},
          {"plot", traits.isPlotted}};
}

ItemProperties propertiesOf(Side, const CLtype& ltype, SharedIds&) {
  std::vector<double> dashes;
  zim::WString texts;
  for (int i = 0; i < ltype.getNoDashes(); ++i) {
    dashes.push_back(ltype[i]->IsDoubleDash() ? ltype[i]->GetValue() : 0);
    if (const TEXT_3D* text = ltype[i]->GetText()) texts += text->getContext().getString();
  }
  return {{"description", ltype.getDesc()}, {"pattern", std::move(dashes)}, {"text", texts}};
}

ItemProperties propertiesOf(Side, const CStyle& style, SharedIds&) {
  const ICADFont* font = style.getFont();
  return {{"font", font ? font->getName() : zim::WString()},
          {"height", style.getFixedHeight()},
          {"width", style.getWidthScale()},
          {"oblique", style.getOblique() * 180 / kPi},
          {"vertical", style.isHoriz()}};  // what the bit means in files
}

// The base point shows in the content, which is relative to it.
ItemProperties propertiesOf(Side, const CBlock&, SharedIds&) { return {}; }

ItemProperties propertiesOf(Side, const CBlockXRef& xref, SharedIds&) {
  return {
      {"path", xref.getPath()}, {"overlay", xref.isOverlay()}, {"base", numbersOf(xref.getPnt())}};
}

// Everything in one list of numbers, which is all that comparing takes.
std::vector<double> numbersOf(Side side, const VIEWPORT& v, SharedIds& ids) {
  std::vector<double> all{
      v.center.x,   v.center.y, v.width,    v.height,   v.viewCenter.x,     v.viewCenter.y,
      v.viewHeight, v.target.x, v.target.y, v.twistRad, v.isOn ? 1.0 : 0.0, v.isPlan ? 1.0 : 0.0};
  for (const PNT_2D& corner : v.boundary) {
    all.push_back(corner.x);
    all.push_back(corner.y);
  }
  std::vector<double> frozen;
  for (const CLayer* layer : v.frozen) frozen.push_back(ids.layers(side, layer));
  std::sort(frozen.begin(), frozen.end());
  all.insert(all.end(), frozen.begin(), frozen.end());
  return all;
}

ItemProperties propertiesOf(Side, const CLayout& layout, SharedIds&) {
  const PLOT_SETTINGS& plot = layout.getPlot();
  ItemProperties all{{"paper", std::vector<double>{plot.width, plot.height}},
                     {"margins", std::vector<double>{plot.left, plot.bottom, plot.right, plot.top}},
                     {"origin", numbersOf(plot.origin)},
                     {"scale", plot.scale},
                     {"centered", plot.isCentered},
                     {"lineweights", plot.hasLineweights},
                     {"viewports_first", plot.viewportsFirst},
                     {"viewports", static_cast<double>(layout.getViewports().size())}};
  const bool isWindow = plot.area == PlotArea::Window, isExtents = plot.area == PlotArea::Extents;
  all.push_back({"area", textOf(isWindow ? "window" : isExtents ? "extents" : "layout")});
  if (isWindow) {
    const RECT_2D& window = plot.window;
    all.push_back(
        {"window", std::vector<double>{window.min.x, window.min.y, window.max.x, window.max.y}});
  }
  return all;
}

// What the drawing means and looks like, not what an editor has set for the next entity.
ItemProperties propertiesOf(const CDataVariables& vars) {
  constexpr double hundredths = 100;
  return {{"$INSUNITS", static_cast<double>(vars.getUnits())},
          {"$INSBASE", numbersOf(vars.getInsertionBase())},
          {"$LIMMIN", numbersOf(vars.getLimMin())},
          {"$LIMMAX", numbersOf(vars.getLimMax())},
          {"$LTSCALE", vars.getLtypeScale()},
          {"$PSLTSCALE", vars.isPaperLtypeScale()},
          {"$LWDEFAULT", vars.getDefaultLineweight() / hundredths},
          {"$LWDISPLAY", vars.isLineweightShown()},
          {"$PDMODE", static_cast<double>(vars.getPointMode())},
          {"$PDSIZE", vars.getPointSize()}};
}

// Properties of the same item or of two; one may have some that the other one lacks.
std::vector<VALUE_CHANGE> changesOf(const ItemProperties& before, const ItemProperties& after) {
  const auto find = [](const ItemProperties& all, const char* what) {
    return std::find_if(all.begin(), all.end(), [&](const ItemProperty& property) {
      return std::string_view(property.what) == what;
    });
  };
  std::vector<VALUE_CHANGE> changes;
  for (const ItemProperty& was : before) {
    const auto is = find(after, was.what);
    if (is == after.end()) {
      changes.push_back({was.what, was.value, {}});
      continue;
    }
    const bool isSame = was.id >= 0 ? was.id == is->id : isSameValue(was.value, is->value);
    if (!isSame) changes.push_back({was.what, was.value, is->value});
  }
  for (const ItemProperty& is : after)
    if (find(before, is.what) == before.end()) changes.push_back({is.what, {}, is.value});
  return changes;
}

// Files of later versions have a layout even if nobody made one.
bool isEmpty(const CLayout& layout) {
  return layout.getBlock().size() == 0 && layout.getViewports().empty();
}

template <class Item>
const zim::WString& fullNameOf(const Item& item) {
  if constexpr (requires { item.getFullName(); })
    return item.getFullName();
  else
    return item.getName();
}

class ItemComparer {
 public:
  explicit ItemComparer(SharedIds& ids) : m_ids(ids) {}

  template <class Item>
  void compare(ItemTable table, const std::vector<ItemPair<Item>>& pairs) {
    for (const ItemPair<Item>& pair : pairs) {
      if (pair.before && pair.after)
        compare(table, *pair.before, *pair.after);
      else
        addOneSided(table, pair.before, pair.after);
    }
  }

  template <class Item>
  void compare(ItemTable table, const Item& before, const Item& after) {
    const zim::WString &was = fullNameOf(before), &is = fullNameOf(after);
    std::vector<VALUE_CHANGE> changes;
    if (!was.EqualsIgnoreCase(is)) changes.push_back({"name", was, is});
    std::vector<VALUE_CHANGE> others = changesOf(propertiesOf(Side::Before, before, m_ids),
                                                 propertiesOf(Side::After, after, m_ids));
    std::move(others.begin(), others.end(), std::back_inserter(changes));
    if constexpr (std::is_same_v<Item, CLayout>) compareViewports(before, after, changes);
    if (!changes.empty()) add({table, ITEM_CHANGE::Sort::Changed, was, std::move(changes)});
  }

  template <class Item>
  void addOneSided(ItemTable table, const Item* before, const Item* after) {
    if constexpr (std::is_same_v<Item, CLayout>)
      if (isEmpty(before ? *before : *after)) return;
    const auto sort = before ? ITEM_CHANGE::Sort::Removed : ITEM_CHANGE::Sort::Added;
    add({table, sort, fullNameOf(before ? *before : *after), {}});
  }

  void compare(const CDataVariables& before, const CDataVariables& after) {
    for (VALUE_CHANGE& change : changesOf(propertiesOf(before), propertiesOf(after))) {
      const zim::WString name = textOf(change.what);
      change.what = "value";
      add({ItemTable::Variables, ITEM_CHANGE::Sort::Changed, name, {std::move(change)}});
    }
  }

  std::vector<ITEM_CHANGE> take() { return std::move(m_changes); }

 private:
  void compareViewports(const CLayout& before, const CLayout& after,
                        std::vector<VALUE_CHANGE>& changes) {
    const std::vector<VIEWPORT>&was = before.getViewports(), &is = after.getViewports();
    const bool isSame = std::equal(
        was.begin(), was.end(), is.begin(), is.end(), [this](const VIEWPORT& a, const VIEWPORT& b) {
          return isSameValue(numbersOf(Side::Before, a, m_ids), numbersOf(Side::After, b, m_ids));
        });
    if (!isSame && was.size() == is.size()) changes.push_back({"viewports", {}, {}});
  }
  void add(ITEM_CHANGE change) { m_changes.push_back(std::move(change)); }

  SharedIds& m_ids;
  std::vector<ITEM_CHANGE> m_changes;
};

std::vector<ItemPair<CBlockXRef>> xrefPairs(const CData& before, const CData& after) {
  ItemIds<CBlockXRef> ids;
  ItemLists<CBlockXRef> lists;
  const CBlockXRefTable &was = before.getBlockXRefTable(), &is = after.getBlockXRefTable();
  for (int i = 0; i < static_cast<int>(was.size()); ++i) lists.before.push_back(was[i]);
  for (int i = 0; i < static_cast<int>(is.size()); ++i) lists.after.push_back(is[i]);
  return pairsOf(lists, ids);
}

// Of several items of one name, the first is the one that counts.
template <class Item>
void dropRepeated(std::vector<const Item*>& items) {
  NameMap<int> known;
  std::erase_if(items,
                [&](const Item* item) { return !known.try_emplace(fullNameOf(*item), 0).second; });
}

template <class Item>
std::vector<VALUE_CHANGE> changesOfItem(const Item& before, const Item& after, SharedIds& ids) {
  return changesOf(propertiesOf(Side::Before, before, ids), propertiesOf(Side::After, after, ids));
}

}  // namespace

TableLists::TableLists(const CData& before, const CData& after) {
  const auto gather = [](const CData& data, auto& l, auto& t, auto& s, auto& b) {
    for (CData::CLayerIterator it(data, false); const CLayer* layer = *it; ++it) l.push_back(layer);
    for (CData::CLtypeIterator it(data, false, true); const CLtype* ltype = *it; ++it)
      t.push_back(ltype);
    for (CData::CStyleIterator it(data, false); const CStyle* style = *it; ++it) s.push_back(style);
    for (int i = 0; i < static_cast<int>(data.getBlockTable().size()); ++i) {
      const CBlock* block = data.getBlockTable()[i];
      if (!block->isSheet() && !isPrivate(*block)) b.push_back(block);
    }
    dropRepeated(l);
    dropRepeated(t);
    dropRepeated(s);
    dropRepeated(b);
  };
  gather(before, layers.before, ltypes.before, styles.before, blocks.before);
  gather(after, layers.after, ltypes.after, styles.after, blocks.after);
}

std::vector<VALUE_CHANGE> changesBetween(const CLayer& before, const CLayer& after,
                                         SharedIds& ids) {
  return changesOfItem(before, after, ids);
}
std::vector<VALUE_CHANGE> changesBetween(const CLtype& before, const CLtype& after,
                                         SharedIds& ids) {
  return changesOfItem(before, after, ids);
}
std::vector<VALUE_CHANGE> changesBetween(const CStyle& before, const CStyle& after,
                                         SharedIds& ids) {
  return changesOfItem(before, after, ids);
}

std::vector<ItemPair<CLayout>> layoutPairs(const CData& before, const CData& after) {
  const CLayoutTable &was = before.getLayouts(), &is = after.getLayouts();
  std::vector<ItemPair<CLayout>> pairs;
  NameMap<const CLayout*> blocks;
  for (int i = 0; i < is.size(); ++i)
    if (!was.get(is[i].getName())) blocks.try_emplace(is[i].getBlock().getName(), &is[i]);
  for (int i = 0; i < was.size(); ++i) {
    const CLayout* same = is.get(was[i].getName());
    const auto renamed = blocks.find(was[i].getBlock().getName());
    if (!same && renamed != blocks.end()) {
      same = renamed->second;
      blocks.erase(renamed);
    }
    pairs.push_back({&was[i], same});
  }
  for (int i = 0; i < is.size(); ++i) {
    const auto found = blocks.find(is[i].getBlock().getName());
    if (found != blocks.end() && found->second == &is[i]) pairs.push_back({nullptr, &is[i]});
  }
  return pairs;
}

std::vector<ITEM_CHANGE> compareItems(const CData& before, const CData& after,
                                      const TableLists& lists, SharedIds& ids) {
  ItemComparer comparer(ids);
  comparer.compare(ItemTable::Layers, pairsOf(lists.layers, ids.layers));
  comparer.compare(ItemTable::Linetypes, pairsOf(lists.ltypes, ids.ltypes));
  comparer.compare(ItemTable::Styles, pairsOf(lists.styles, ids.styles));
  comparer.compare(ItemTable::Blocks, pairsOf(lists.blocks, ids.blocks));
  comparer.compare(ItemTable::XRefs, xrefPairs(before, after));
  comparer.compare(ItemTable::Layouts, layoutPairs(before, after));
  comparer.compare(before.getVars(), after.getVars());
  return comparer.take();
}

}  // namespace vek0::detail
