// Every change of a resolve is recorded with a function that reverts it, before it is made. The
// destructor runs the recorded functions, last to first; a successful resolve clears them first.
// Each function holds the state that it restores.
#include "xref/xrefjournal.h"

#include <optional>

namespace vek0::detail {
namespace {

using Told = std::optional<CLayerXRef::Look>;

Told toldOf(const CLayer& layer) {
  return layer.isXRef() ? static_cast<const CLayerXRef&>(layer).getTold() : std::nullopt;
}

void putBack(CLayer& layer, const CLayerMemento& before, const Told& told) {
  layer.setMemento(before);
  if (layer.isXRef()) static_cast<CLayerXRef&>(layer).setTold(told);
}

struct Reinstated {
  struct Layer {
    CLayer* layer;
    CLayerMemento before;
    Told told;
  };
  std::vector<Layer> layers;
  std::vector<CLtype*> ltypes;
  std::vector<CStyle*> styles;

  void note(CLayer& layer) { layers.push_back({&layer, CLayerMemento(layer), toldOf(layer)}); }
  void note(CLtype& ltype) { ltypes.push_back(&ltype); }
  void note(CStyle& style) { styles.push_back(&style); }
};

void retireAgain(CBlockXRef& xref, const Reinstated& items) {
  for (const Reinstated::Layer& item : items.layers) {
    if (!item.layer->isHeld()) continue;
    xref.retire(item.layer);
    putBack(*item.layer, item.before, item.told);
  }
  for (CLtype* ltype : items.ltypes)
    if (ltype->isHeld()) xref.retire(ltype);
  for (CStyle* style : items.styles)
    if (style->isHeld()) xref.retire(style);
}

}  // namespace

XRefJournal::~XRefJournal() {
  for (; !m_changes.empty(); m_changes.pop_back())
    if (m_changes.back()) m_changes.back()();
}

void XRefJournal::keep(CBlockXRef& xref) {
  m_changes.emplace_back([&xref, head = xref.getHead()] { xref.setHead(head); });
}

void XRefJournal::keep(CStyle& style) {
  m_changes.emplace_back([&style, before = CStyleMemento(style)] { style.setMemento(before); });
}

void XRefJournal::keep(CLayer& layer) {
  m_changes.emplace_back([&layer, before = CLayerMemento(layer), told = toldOf(layer)] {
    putBack(layer, before, told);
  });
}

void XRefJournal::define(CLtype& ltype, const zim::WString& desc, CLtypeComplexDashSeq dashes) {
  auto kept = std::make_shared<CLtypeComplexDashSeq>(std::move(dashes));
  const auto back = [&ltype, kept, before = ltype.getDesc()] {
    ltype.setDesc(before);
    ltype.GetDashSeq().swap(*kept);
  };
  change(back, [&] {
    ltype.setDesc(desc);
    ltype.GetDashSeq().swap(*kept);
  });
}

void XRefJournal::setContent(CBlockXRef& xref, CBlockXRef::Content content) {
  auto kept = std::make_shared<CBlockXRef::Content>(std::move(content));
  const auto exchange = [&xref, kept] { xref.exchange(*kept); };
  change(exchange, exchange);
}

void XRefJournal::reinstate(CBlockXRef& xref) {
  auto items = std::make_shared<Reinstated>();
  // Recorded before the first item returns, so that a failure halfway is reverted, too.
  m_changes.emplace_back([&xref, items] { retireAgain(xref, *items); });
  xref.reinstate([&](auto& item) {
    items->note(item);
    return true;
  });
}

}  // namespace vek0::detail
