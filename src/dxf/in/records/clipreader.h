#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "dxf/in/recordreader.h"

namespace vek0::detail {

/// Reads the clip boundaries of inserts, which files store separately: an insert refers to its
/// extension dictionary, whose entry ACAD_FILTER is a dictionary, whose entry SPATIAL is the
/// boundary. A record in the boundary's own dictionary marks inverted clips; those are not applied.
class ClipReader {
 public:
  /// Fills in the clips that the record reader has promised to inserts.
  explicit ClipReader(RecordReader& records) : m_records(records) {}

  /// Reads the object at whose group 0 the lexer is positioned, and leaves the lexer at the next
  /// one. Returns false, without reading, if the object is unrelated to clips.
  bool readObject();
  /// Fills in the clips from the objects read; clips that cannot be applied are reported.
  void settle();

 private:
  // A boundary as stored in its object.
  struct Filter {
    std::vector<PNT_2D> points;
    std::vector<double> numbers;   // of the front and back clipping planes, and the two matrices
    std::uint64_t dictionary = 0;  // its own
    bool isOn = false, hasDepth = false, isSound = true;

    void take(long code, std::string_view bytes);
    bool place(std::vector<PNT_2D>& boundary) const;
  };

  void readDictionary();
  void readFilter();
  void readExtension();
  void settle(long line, std::uint64_t dictionary, INSERT_CLIP& clip, std::size_t& room);
  bool isInverted(const Filter& filter) const;
  const Filter* filterOf(std::uint64_t dictionary, bool& isLost) const;

  RecordReader& m_records;
  // The handle found in each dictionary under one of the names that lead to boundaries; 0 for none.
  std::unordered_map<std::uint64_t, std::uint64_t> m_entries;
  std::unordered_map<std::uint64_t, Filter> m_filters;
  std::unordered_set<std::uint64_t> m_inversions;
};

}  // namespace vek0::detail
