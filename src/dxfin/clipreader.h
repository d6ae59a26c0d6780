#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "dxfin/recordreader.h"

namespace vek0::detail {

/// Reads what clips inserts, which files keep far from them: an insert names a dictionary of its
/// own, whose entry ACAD_FILTER is a dictionary, whose entry SPATIAL is the boundary. Of one that
/// hides what is inside, a record in a dictionary of its own tells; such clips are not applied.
class ClipReader {
 public:
  /// Fills the clips that the reader of records has promised to inserts.
  explicit ClipReader(RecordReader& records) : m_records(records) {}

  /// Reads the object on whose group 0 the lexer stands, and leaves it on the next one; false,
  /// and nothing is read, when it is of no other kind than boundaries are.
  bool readObject();
  /// Fills the clips from the objects read; those that cannot be applied are reported.
  void settle();

 private:
  // A boundary as its object gives it.
  struct Filter {
    std::vector<PNT_2D> points;
    std::vector<double> numbers;   // of the planes in front and behind, and the two matrices
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
  // What one of the names that lead to boundaries is in each dictionary; 0 where none is.
  std::unordered_map<std::uint64_t, std::uint64_t> m_entries;
  std::unordered_map<std::uint64_t, Filter> m_filters;
  std::unordered_set<std::uint64_t> m_inversions;
};

}  // namespace vek0::detail
