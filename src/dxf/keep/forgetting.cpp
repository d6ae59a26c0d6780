#include "dxf/keep/forgetting.h"

#include "files/number.h"

namespace vek0::detail {
namespace {

constexpr long kHandleGroup = 102;

class Forgetting {
 public:
  Forgetting(SourceRecord& record, const std::unordered_set<Handle>& handles,
             const std::function<void(long, Handle)>& dangling)
      : m_record(record), m_handles(handles), m_dangling(dangling) {}

  bool run() {
    bool isInGroup = false;
    bool isOwned = false;
    for (std::size_t i = 1; i < m_record.pairs.size();) {
      const SourcePair& pair = m_record.pairs[i];
      if (pair.code == kHandleGroup) isInGroup = pair.value.starts_with('{');
      const bool isOwner = pair.code == 330 && !isInGroup && !isOwned;
      if (isOwner) isOwned = true;
      const bool isGone = isPointer(pair.code) && !isOwner && m_handles.contains(handleOf(pair));
      i = isGone ? forget(i, isInGroup) : i + 1;
    }
    dropEmptyGroups();
    return m_isChanged;
  }

 private:
  // Returns the index of the next pair.
  std::size_t forget(std::size_t i, bool isInGroup) {
    const long code = m_record.pairs[i].code;
    if (isInGroup) return erase(i, 1);
    if (m_record.is("DICTIONARY") || m_record.is("ACDBDICTIONARYWDFLT")) {
      const bool isEntry = (code == 350 || code == 360) && m_record.pairs[i - 1].code == 3;
      if (isEntry) return erase(i - 1, 2);
    }
    if (m_record.is("GROUP") && code == 340) return erase(i, 1);
    if (m_record.is("SORTENTSTABLE") && code == 331) {
      const bool isPair = i + 1 < m_record.pairs.size() && m_record.pairs[i + 1].code == 5;
      return erase(i, isPair ? 2 : 1);
    }
    if (m_record.is("HATCH") && code == 330) return forgetBoundary(i);
    m_dangling(code, handleOf(m_record.pairs[i]));
    return i + 1;
  }

  // The objects of a boundary follow their number.
  std::size_t forgetBoundary(std::size_t i) {
    constexpr long number = 97;
    std::size_t at = i;
    while (at > 0 && m_record.pairs[at].code != number) --at;
    if (at == 0) return erase(i, 1);
    m_record.setInteger(at, m_record.integerOf(number, 1, at) - 1);
    return erase(i, 1);
  }

  std::size_t erase(std::size_t first, std::size_t count) {
    for (; count > 0; --count) m_record.erase(first);
    m_isChanged = true;
    return first;
  }

  void dropEmptyGroups() {
    for (std::size_t i = 1; m_isChanged && i + 1 < m_record.pairs.size(); ++i) {
      const bool isEmpty =
          m_record.pairs[i].code == kHandleGroup && m_record.pairs[i].value.starts_with('{') &&
          m_record.pairs[i + 1].code == kHandleGroup && m_record.pairs[i + 1].value == "}";
      if (isEmpty) i = erase(i, 2) - 1;
    }
  }

  SourceRecord& m_record;
  const std::unordered_set<Handle>& m_handles;
  const std::function<void(long, Handle)>& m_dangling;
  bool m_isChanged = false;
};

}  // namespace

bool isPointer(long code) {
  return (code >= 320 && code <= 369) || (code >= 390 && code <= 399) || code == 480 ||
         code == 481 || code == 1005;
}

Handle handleOf(const SourcePair& pair) { return static_cast<Handle>(parseHex(pair.value)); }

bool forgetHandles(SourceRecord& record, const std::unordered_set<Handle>& handles,
                   const std::function<void(long, Handle)>& dangling) {
  return Forgetting(record, handles, dangling).run();
}

}  // namespace vek0::detail
