#include "dxf/keep/itemusage.h"

#include <unordered_map>
#include <unordered_set>

#include "dxf/keep/forgetting.h"

namespace vek0::detail {

std::string keyOfText(const EditContext& context, std::string_view text) {
  CTextDecoder decoder = context.decoder;
  return nameKey(decoder.decodeText(text).view());
}

namespace {

class UsageFinder {
 public:
  UsageFinder(const EditContext& context, std::vector<GoneItem>& items)
      : m_on(context), m_items(items) {
    for (std::size_t i = 0; i < items.size(); ++i) {
      const GoneItem& item = items[i];
      m_named[item.table].emplace(item.key, i);
      m_gone.insert(item.entry);
      for (std::size_t entry = item.first; entry <= item.last; ++entry) m_gone.insert(entry);
      const Handle handle =
          item.entry == SourceIndex::kNone ? Handle{0} : m_on.index[item.entry].handle;
      if (handle != 0) m_pointed.emplace(handle, i);
    }
  }

  void run() {
    const std::size_t count = m_on.index.entries().size();
    for (std::size_t i = 0, rewritten = 0; i < count; ++i) {
      if (m_on.edits.isRewritten(i)) rewritten = m_on.index.afterEntity(i);
      if (!m_gone.contains(i) && !m_on.edits.isRemoved(i)) takeRecord(i, i < rewritten);
    }
    while (!m_open.empty()) {
      const GoneItem item = m_items[m_open.back()];
      m_open.pop_back();
      for (std::size_t i = item.first; i <= item.last; ++i) takeRecord(i, false);
      if (item.entry != item.first && item.entry != SourceIndex::kNone)
        takeRecord(item.entry, false);
    }
  }

 private:
  void takeRecord(std::size_t entry, bool isRewritten) {
    const SourceRecord record = m_on.edits.read(entry);
    const bool isText = record.is("TEXT") || record.is("ATTDEF") || record.is("ATTRIB");
    for (std::size_t i = 1; i < record.pairs.size(); ++i) {
      const SourcePair& pair = record.pairs[i];
      if (isPointer(pair.code)) {
        if (const auto found = m_pointed.find(handleOf(pair)); found != m_pointed.end())
          mark(found->second);
        continue;
      }
      // The drawing knows these of what it rewrites.
      const bool isKnown = pair.code == 8 || pair.code == 6 || (pair.code == 7 && isText);
      if (isRewritten && isKnown) continue;
      const char* table = tableOf(entry, record, i);
      if (table) takeName(table, pair.value);
    }
  }

  // The table of the item that a pair names; null for none.
  const char* tableOf(std::size_t entry, const SourceRecord& record, std::size_t i) const {
    const SourceSection section = m_on.index[entry].section;
    const long code = record.pairs[i].code;
    // The names of arrow blocks, before these became pointers.
    if (m_on.version.isOld && record.is("DIMSTYLE") && code >= 5 && code <= 7) return "BLOCK";
    const bool isArrow = section == SourceSection::Header && code == 1 &&
                         record.pairs[i - 1].value.starts_with("$DIMBLK");
    // Extended data overrides the arrows of dimension styles.
    if (isArrow || code == 1000) return "BLOCK";
    switch (code) {
      case 8:
      case 1003:
        return "LAYER";
      case 6:
        return "LTYPE";
      case 7:
        return "STYLE";
      case 2:
        return section == SourceSection::Tables || record.is("BLOCK") ? nullptr : "BLOCK";
      default:
        return nullptr;
    }
  }

  void takeName(const char* table, const std::string& name) {
    const auto named = m_named.find(table);
    if (named == m_named.end() || !m_seen[table].insert(name).second) return;
    const auto found = named->second.find(keyOfText(m_on, name));
    if (found != named->second.end()) mark(found->second);
  }

  void mark(std::size_t item) {
    if (!m_items[item].isUsed) m_open.push_back(item);
    m_items[item].isUsed = true;
  }

  const EditContext& m_on;
  std::vector<GoneItem>& m_items;
  std::unordered_map<std::string, std::unordered_map<std::string, std::size_t>> m_named;
  std::unordered_map<std::string, std::unordered_set<std::string>> m_seen;  // as spelled
  std::unordered_map<Handle, std::size_t> m_pointed;
  std::unordered_set<std::size_t> m_gone;
  std::vector<std::size_t> m_open;  // used, their own records not yet taken
};

}  // namespace

void markUsed(const EditContext& context, std::vector<GoneItem>& items) {
  UsageFinder(context, items).run();
}

}  // namespace vek0::detail
