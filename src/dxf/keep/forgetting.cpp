#include "dxf/keep/forgetting.h"

#include <algorithm>
#include <utility>

#include "files/number.h"

namespace vek0::detail {
namespace {

constexpr long kHandleGroup = 102;

bool isOpening(const SourcePair& pair) {
  return pair.code == kHandleGroup && pair.value.starts_with('{');
}

// Copies a record without the pointers, in one pass, since a group may lose all of its members.
class Forgetting {
 public:
  Forgetting(SourceRecord& record, const std::unordered_set<Handle>& handles,
             const std::function<void(long, Handle)>& dangling)
      : m_record(record), m_handles(handles), m_dangling(dangling) {}

  bool run() {
    if (m_record.pairs.empty() || !pointsToAny()) return false;
    const bool isDictionary = m_record.is("DICTIONARY") || m_record.is("ACDBDICTIONARYWDFLT");
    m_left.pairs.reserve(m_record.pairs.size());
    for (m_next = 0; m_next < m_record.pairs.size(); ++m_next) {
      SourcePair& pair = m_record.pairs[m_next];
      const bool isForgotten = isGone(pair) && forget(pair, isDictionary);
      if (isForgotten) m_isChanged = true;
      if (isForgotten || endsEmptyGroup(pair)) continue;
      if (pair.code == kBoundaryObjects) m_number = m_left.pairs.size();
      m_left.pairs.push_back(std::move(pair));
    }
    m_record.pairs = std::move(m_left.pairs);
    return m_isChanged;
  }

 private:
  static constexpr long kBoundaryObjects = 97;

  bool pointsToAny() const {
    return std::any_of(m_record.pairs.begin(), m_record.pairs.end(), [this](const auto& pair) {
      return isPointer(pair.code) && m_handles.contains(handleOf(pair));
    });
  }

  // The first pointer outside of groups is that to the owner.
  bool isGone(const SourcePair& pair) {
    if (pair.code == kHandleGroup) m_isInGroup = isOpening(pair);
    if (isOpening(pair)) m_isEmptied = false;
    const bool isOwner = pair.code == 330 && !m_isInGroup && !m_isOwned;
    if (isOwner) m_isOwned = true;
    return !isOwner && isPointer(pair.code) && m_handles.contains(handleOf(pair));
  }

  // Whether the pointer can be left out.
  bool forget(const SourcePair& pair, bool isDictionary) {
    if (m_isInGroup) {
      m_isEmptied = true;
      return true;
    }
    if (isDictionary && (pair.code == 350 || pair.code == 360) && m_left.pairs.back().code == 3) {
      m_left.pairs.pop_back();
      return true;
    }
    if (m_record.is("GROUP") && pair.code == 340) return true;
    if (m_record.is("SORTENTSTABLE") && pair.code == 331) {
      const std::size_t next = m_next + 1;
      if (next < m_record.pairs.size() && m_record.pairs[next].code == 5) m_next = next;
      return true;
    }
    if (m_record.is("HATCH") && pair.code == 330) {
      // The objects of a boundary follow their number.
      if (m_number != 0) m_left.setInteger(m_number, m_left.integer(m_number) - 1);
      return true;
    }
    m_dangling(pair.code, handleOf(pair));
    return false;
  }

  bool endsEmptyGroup(const SourcePair& pair) {
    if (pair.code != kHandleGroup) return false;
    const bool isEmpty = m_isEmptied && pair.value == "}" && isOpening(m_left.pairs.back());
    if (isEmpty) m_left.pairs.pop_back();
    return isEmpty;
  }

  SourceRecord& m_record;
  const std::unordered_set<Handle>& m_handles;
  const std::function<void(long, Handle)>& m_dangling;
  SourceRecord m_left;
  std::size_t m_next = 0;
  std::size_t m_number = 0;  // where the last number of objects is, in what is left
  bool m_isInGroup = false, m_isEmptied = false, m_isOwned = false, m_isChanged = false;
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
