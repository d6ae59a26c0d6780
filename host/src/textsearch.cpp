#include "vek0host/textsearch.h"

#include <algorithm>
#include <vector>

#include "vek0host/entitycounts.h"
#include "vek0host/propertytext.h"
#include "vek0host/textvalues.h"
#include "vek0host/visibletext.h"

namespace vek0::host {
namespace {

// A dimension may show a block that many others show.
constexpr std::size_t kMostLines = 1000;

struct TextLines {
  std::vector<const zim::WString*> lines;
  std::optional<PNT_3D> point;  // of the first one
};

void collectLines(const CEnt& ent, const CEntInsertMatrix& place, TextLines& out) {
  const short type = ent.getType();
  if (type == CEntText::kType || type == CEntAttdef::kType || type == CEntAttrib::kType) {
    const TEXT_3D& text = static_cast<const CEntText&>(ent).getText();
    if (!out.point) place.transform(text, out.point.emplace());
    // An attribute definition shows its tag.
    const zim::WString& shown = type == CEntAttdef::kType
                                    ? static_cast<const CEntAttdef&>(ent).getValue()
                                    : text.getContext().getString();
    if (out.lines.size() < kMostLines) out.lines.push_back(&shown);
    return;
  }
  const CEntInsertBase* insert = ent.getEntInsert();
  const CBlock* block = insert ? insert->getBlock() : nullptr;
  if (!block || !block->isOfRecord()) return;
  const CEntInsertMatrix inner = place * CEntInsertMatrix(1, *insert, 0, 0);
  for (unsigned i = 0; i < block->size() && out.lines.size() < kMostLines; ++i)
    collectLines(*(*block)[i], inner, out);
}

TextLines linesOf(const CEnt& ent) {
  TextLines out;
  collectLines(ent, {}, out);
  const CEntInsertBase* insert = ent.getEntInsert();
  const CBlock* block = insert ? insert->getBlock() : nullptr;
  if (!block || !block->isOfDimension()) return out;
  const CEntInsertMatrix place(1, *insert, 0, 0);
  for (unsigned i = 0; i < block->size() && out.lines.size() < kMostLines; ++i)
    collectLines(*(*block)[i], place, out);
  return out;
}

const zim::WString* tagOf(const CEnt& ent) {
  if (ent.getType() == CEntAttrib::kType) return &static_cast<const CEntAttrib&>(ent).getTag();
  if (ent.getType() == CEntAttdef::kType) return &static_cast<const CEntAttdef&>(ent).getTag();
  return nullptr;
}

bool isPrivate(const CBlock& block) {
  return block.isSheet() || block.isOfRecord() || block.isOfDimension();
}

class Searcher {
 public:
  Searcher(const TextPattern& pattern, const std::function<void(const FoundText&)>& found)
      : m_pattern(pattern), m_found(found) {}

  void searchName(const char* kind, const zim::WString& name, const zim::WString* FoundText::*as) {
    if (!m_pattern.isIn(name.view())) return;
    FoundText hit;
    hit.kind = kind;
    hit.*as = &name;
    hit.text = name.toUtf8();
    m_found(hit);
  }

  void search(CEnt& ent, const zim::WString* block) {
    test(ent, block, linesOf(ent));
    const CEntInsertBase* insert = ent.getEntInsert();
    if (!insert || insert->GetNoAttribs() == 0) return;
    const zim::WString* of = insert->getBlock() ? &insert->getBlock()->getName() : nullptr;
    const CEntInsertMatrix place(1, *insert, 0, 0);
    for (unsigned i = 0; i < insert->GetNoAttribs(); ++i) {
      TextLines lines;
      collectLines(*insert->GetAttrib(i), place, lines);
      test(*insert->GetAttrib(i), of, lines);
    }
  }

 private:
  bool matches(const zim::WString& text) const {
    return m_pattern.isIn(text.view()) ||
           (hasTextCodes(text) && m_pattern.isIn(decodeTextCodes(text).string.view()));
  }

  bool matches(const TextLines& text, const zim::WString* tag) const {
    const auto isMatch = [this](const zim::WString* line) { return matches(*line); };
    if (std::any_of(text.lines.begin(), text.lines.end(), isMatch)) return true;
    if (tag) return matches(tag->Concat(zim::WString(u"=")).Concat(*text.lines.front()));
    std::u16string all;
    for (const zim::WString* line : text.lines)
      all.append(all.empty() ? u"" : u" ").append(line->view());
    return text.lines.size() > 1 && matches(zim::WString(all));
  }

  void test(CEnt& ent, const zim::WString* block, const TextLines& text) {
    const zim::WString* tag = tagOf(ent);
    if (text.lines.empty() || !matches(text, tag)) return;
    FoundText hit;
    hit.ent = &ent;
    hit.kind = recordNameOf(ent);
    hit.layer = ent.getLayer() ? &ent.getLayer()->getFullName() : nullptr;
    hit.block = block;
    hit.tag = tag;
    for (const zim::WString* line : text.lines)
      hit.text += (line == text.lines.front() ? "" : "\n") + line->toUtf8();
    hit.point = text.point;
    m_found(hit);
  }

  const TextPattern& m_pattern;
  const std::function<void(const FoundText&)>& m_found;
};

}  // namespace

void searchTexts(const CData& data, const TextPattern& pattern,
                 const std::function<void(const FoundText&)>& found) {
  Searcher searcher(pattern, found);
  const CLayerTable& layers = data.getLayerTable();
  for (int i = 0; i < static_cast<int>(layers.size()); ++i)
    searcher.searchName("LAYER", layers[i]->getFullName(), &FoundText::layer);
  const CBlockTable& blocks = data.getBlockTable();
  for (int i = 0; i < static_cast<int>(blocks.size()); ++i) {
    const zim::WString& name = blocks[i]->getName();
    if (!isPrivate(*blocks[i]) && !name.view().starts_with(u'*'))
      searcher.searchName("BLOCK", name, &FoundText::block);
  }
  for (CEnt* ent : data.getEntTable().getEntityTbl()) searcher.search(*ent, nullptr);
  for (int i = 0; i < data.getLayouts().size(); ++i) {
    CBlock& sheet = data.getLayouts()[i].getBlock();
    for (unsigned k = 0; k < sheet.size(); ++k) searcher.search(*sheet[k], nullptr);
  }
  for (int i = 0; i < static_cast<int>(blocks.size()); ++i) {
    CBlock& block = *blocks[i];
    if (isPrivate(block)) continue;
    for (unsigned k = 0; k < block.size(); ++k) searcher.search(*block[k], &block.getName());
  }
}

Json toJson(const FoundText& found, const std::string& file) {
  const auto orNull = [](const zim::WString* name) { return name ? Json(name->toUtf8()) : Json(); };
  Json json;
  json["file"] = file;
  json["handle"] = found.ent ? Json(hexText(found.ent->GetHandle())) : Json();
  json["kind"] = found.kind;
  json["layer"] = orNull(found.layer);
  json["block"] = orNull(found.block);
  json["tag"] = orNull(found.tag);
  json["text"] = found.text;
  json["point"] = found.point ? pointToJson(*found.point) : Json();
  return json;
}

std::string toFoundLine(const FoundText& found, const std::string& file) {
  std::string line = visible(file) + ": ";
  if (found.ent) {
    line += (found.layer ? visible(*found.layer) : "-") + " " + visible(found.kind) + " " +
            hexText(found.ent->GetHandle());
  } else {
    line += found.kind;
  }
  return line + ": " + (found.tag ? visible(*found.tag) + "=" : "") + visible(found.text) + "\n";
}

}  // namespace vek0::host
