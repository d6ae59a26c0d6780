#pragma once

#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "dxf/in/parse/sectioninput.h"

class CLayer;
class CLtype;

namespace vek0::detail {

/// Reads the entries of the LAYER table.
class LayerEntries {
 public:
  explicit LayerEntries(SectionInput& in) : m_in(in) {}

  /// Reads one entry, at whose group 0 the lexer is positioned.
  void read();
  /// Gives the layers of linetypes that were still unknown the linetypes that later tables
  /// declared.
  void settle();
  /// The layer whose entry has the handle; null if there is none.
  CLayer* find(std::uint64_t handle) const {
    const auto found = m_handles.find(handle);
    return found == m_handles.end() ? nullptr : found->second;
  }

 private:
  struct Entry;

  void takePair(long code, Entry& entry);
  void takeLtype(Entry& entry);
  void takeColor(Entry& entry);
  bool takeTrait(long code, Entry& entry);
  void takePlotted(Entry& entry);
  void takeTrueColor(Entry& entry);
  void takeWeight(Entry& entry);
  void takeTransparency(Entry& entry);
  void leaveOut(long code, const Entry& entry);
  CLtype* usualLtype(const zim::WString& name) const;
  void create(Entry& entry);
  void keepHandle(const Entry& entry);
  void place(const Entry& entry);

  SectionInput& m_in;
  std::vector<std::pair<CLayer*, zim::WString>> m_unsettled;  // layers of unknown linetypes
  std::unordered_map<std::uint64_t, CLayer*> m_handles;
};

}  // namespace vek0::detail
