#include "vek0host/entitylist.h"

#include <algorithm>
#include <cstdio>

#include "vek0host/entitycounts.h"
#include "vek0host/propertytext.h"
#include "vek0host/textvalues.h"
#include "vek0host/visibletext.h"

namespace vek0::host {
namespace {

const zim::WString kModel(u"Model");

// The block that an insert shows; the blocks of hatches and of the pieces of records are private.
const CBlock* blockOf(const CEnt& ent) {
  const CEntInsertBase* insert = ent.getEntInsert();
  const CBlock* block = insert && ent.getType() != CEntHatch::kType ? insert->getBlock() : nullptr;
  return block && !block->isOfRecord() ? block : nullptr;
}

// In a block, an attribute definition is only a template for the attributes of inserts.
bool isHiddenByFlag(const CEnt& ent, bool isInBlock) {
  if (ent.getType() == CEntAttrib::kType)
    return (static_cast<const CEntAttrib&>(ent).getFlags() & CEntAttrib::kInvisible) != 0;
  if (ent.getType() != CEntAttdef::kType) return false;
  return isInBlock ||
         (static_cast<const CEntAttdef&>(ent).getFlags() & CEntAttrib::kInvisible) != 0;
}

class Lister {
 public:
  Lister(const CData& data, const Selection& selection,
         const std::function<void(const ListedEntity&)>& show)
      : m_data(data), m_selection(selection), m_show(show) {}

  // A null layout: the entity of a block.
  void list(CEnt& ent, const zim::WString* layout) {
    ListedEntity entity = listed(ent, layout);
    if (m_selection.includes(ent)) m_show(entity);
    const CEntInsertBase* insert = ent.getEntInsert();
    if (!insert || insert->GetNoAttribs() == 0) return;
    const bool isShown = entity.isVisible;
    m_stack.Push(insert, 0, 0);
    for (unsigned i = 0; i < static_cast<unsigned>(insert->GetNoAttribs()); ++i) {
      entity = listed(*insert->GetAttrib(i), layout);
      entity.of = insert;
      entity.isVisible = entity.isVisible && isShown;
      m_stack.GetCurMatrix().transform(entity.ent->getBdry(), entity.extents);
      if (m_selection.includes(*entity.ent, entity.extents)) m_show(entity);
    }
    m_stack.Pop();
  }

 private:
  ListedEntity listed(CEnt& ent, const zim::WString* layout) const {
    constexpr double opaque = ENT_TRAITS::kOpaque;
    const ENT_TRAITS traits = m_stack.ResolveTraits(ent);
    ListedEntity entity;
    entity.ent = &ent;
    entity.kind = recordNameOf(ent);
    entity.layout = layout;
    entity.color = colorOnWhite(traits.trueColor, m_stack.ResolveColor(ent));
    entity.weightMm = weightInMm(m_data, traits.lineweight);
    entity.ltype = m_stack.ResolveLtype(ent);
    entity.transparency = 1 - traits.opacity / opaque;
    entity.extents = ent.getBdry();
    entity.isVisible =
        traits.isVisible && m_stack.IsOnShownLayer(ent) && !isHiddenByFlag(ent, layout == nullptr);
    return entity;
  }

  const CData& m_data;
  const Selection& m_selection;
  const std::function<void(const ListedEntity&)>& m_show;
  CEntInsertStack m_stack{1};
};

}  // namespace

std::optional<std::string> textOf(const CEnt& ent) {
  const short type = ent.getType();
  const bool isText =
      type == CEntText::kType || type == CEntAttdef::kType || type == CEntAttrib::kType;
  if (isText) return static_cast<const CEntText&>(ent).getText().getContext().getString().toUtf8();
  const CEntInsertBase* insert = ent.getEntInsert();
  const CBlock* pieces = insert ? insert->getBlock() : nullptr;
  if (!pieces || !pieces->isOfRecord()) return std::nullopt;
  std::optional<std::string> lines;
  for (unsigned i = 0; i < pieces->size(); ++i)
    if (const auto line = textOf(*(*pieces)[i])) lines = lines ? *lines + "\n" + *line : *line;
  return lines;
}

std::string listEntities(const CData& data, const std::string& place, Selection selection,
                         const std::function<void(const ListedEntity&)>& show) {
  std::string problem = selection.findLayers(data);
  if (!problem.empty()) return problem;
  Lister lister(data, selection, show);
  const zim::WString name = zim::WString::fromUtf8(place);
  bool isLayout = false;
  if (place.empty() || zim::equalsIgnoreCase(name, kModel)) {
    isLayout = true;
    for (CEnt* ent : data.getEntTable().getEntityTbl()) lister.list(*ent, &kModel);
  }
  for (int i = 0; i < data.getLayouts().size(); ++i) {
    const CLayout& layout = data.getLayouts()[i];
    if (!place.empty() && !zim::equalsIgnoreCase(name, layout.getName())) continue;
    isLayout = true;
    CBlock& sheet = layout.getBlock();
    for (unsigned k = 0; k < sheet.size(); ++k) lister.list(*sheet[k], &layout.getName());
    for (const VIEWPORT& viewport : layout.getViewports())
      lister.list(*createFrame(viewport, data.getEntFactory()), &layout.getName());
  }
  if (isLayout) return {};
  CBlock* block = data.getBlockTable().get(name);
  if (!block || block->isSheet() || block->isOfRecord())
    return "there is no block or layout " + place;
  for (unsigned i = 0; i < block->size(); ++i) lister.list(*(*block)[i], nullptr);
  return {};
}

void listEntity(const CData& data, CEnt& ent, const zim::WString* layout,
                const std::function<void(const ListedEntity&)>& show) {
  Lister(data, Selection(), show).list(ent, layout);
}

const zim::WString& modelName() { return kModel; }

Json toJson(const ListedEntity& e) {
  Json json;
  const CLayer* layer = e.ent->getLayer();
  const CBlock* block = blockOf(*e.ent);
  const std::optional<std::string> text = textOf(*e.ent);
  const auto orNull = [](const zim::WString* name) { return name ? Json(name->toUtf8()) : Json(); };
  json["handle"] = hexText(e.ent->GetHandle());
  if (e.of) json["of"] = hexText(e.of->GetHandle());
  json["kind"] = e.kind;
  json["layer"] = orNull(layer ? &layer->getFullName() : nullptr);
  json["layout"] = orNull(e.layout);
  json["block"] = orNull(block ? &block->getName() : nullptr);
  json["color"] = e.ent->getColor();
  json["rgb"] = colorText(e.color);
  json["lineweight"] = e.weightMm;
  json["linetype"] = ltypeName(e.ltype);
  json["linetype_scale"] = e.ent->getTraits().ltypeScale;
  json["transparency"] = e.transparency;
  json["visible"] = e.isVisible;
  json["extents"] = extentsToJson(e.extents);
  json["text"] = text ? Json(*text) : Json();
  return json;
}

std::string tableHead() {
  return "HANDLE    KIND         LAYER                COLOR    WEIGHT  LINETYPE          TEXT\n";
}

std::string toTableLine(const ListedEntity& e) {
  const auto cell = [](std::string text, std::size_t width) {
    text = visible(text);
    const auto isContinued = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
    const auto length = text.size() - static_cast<std::size_t>(
                                          std::count_if(text.begin(), text.end(), isContinued));
    return text + std::string(std::max(width, length) - length + 2, ' ');
  };
  char weight[8];
  std::snprintf(weight, sizeof weight, "%6.2f", e.weightMm);
  const CLayer* layer = e.ent->getLayer();
  const std::optional<std::string> text = textOf(*e.ent);
  std::string shown = e.isVisible ? "" : "(hidden) ";
  if (const CBlock* block = blockOf(*e.ent)) shown += visible(block->getName());
  if (text) shown += visible(*text);
  std::string line = cell(hexText(e.ent->GetHandle()), 8) + cell(e.kind, 11) +
                     cell(layer ? layer->getFullName().toUtf8() : "-", 19) + colorText(e.color) +
                     "  " + weight + "  " + cell(ltypeName(e.ltype), 16) + shown;
  line.resize(line.find_last_not_of(' ') + 1);
  return line + "\n";
}

}  // namespace vek0::host
