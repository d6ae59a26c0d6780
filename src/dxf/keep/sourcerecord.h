#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vek0core/geometry/pnt.h"

namespace vek0::detail {

/// Codes that divide a record.
inline constexpr long kSubclassCode = 100, kEmbeddedCode = 101, kGroupCode = 102,
                      kExtendedCode = 1000;

/// A pair of group code and value, as in a source file.
struct SourcePair {
  long code = 0;
  std::string value = {};  ///< without blanks at its end, in the encoding of the file
  long line = 0;           ///< of the code in the source; 0 for a new pair
  bool isChanged = false;  ///< whether the value is no longer that of the source
};

/// The pairs of one record of a source file, comments excepted, the kind (0) first. Setters leave a
/// pair as it is if it already has the value, so that only what differs is written anew.
class SourceRecord {
 public:
  std::vector<SourcePair> pairs;

  /// Not found.
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  bool is(std::string_view kind) const { return !pairs.empty() && pairs.front().value == kind; }
  std::string_view kind() const {
    return pairs.empty() ? std::string_view() : std::string_view(pairs.front().value);
  }

  /// The first pair with this code at or after `from`, `kNone` if there is none. Skips groups of
  /// handles in braces (102), and reaches neither an embedded object (101), which repeats codes
  /// with other meanings, nor extended data (1000 and above).
  std::size_t find(long code, std::size_t from = 1) const;
  /// Index of the first pair of extended data, or of the end.
  std::size_t extendedData() const;

  /// Whether the value is a finite number, and that number, 0 if it is none. Like the reader,
  /// understands a decimal comma, a D exponent, and a number with junk after it.
  bool isFinite(std::size_t index) const;
  double real(std::size_t index) const;
  /// The number of the first pair with this code, or `absent`.
  double realOf(long code, double absent = 0, std::size_t from = 1) const;
  /// The value as an integer, clamped to 32 bits; 0 if it is none.
  long integer(std::size_t index) const;
  long integerOf(long code, long absent = 0, std::size_t from = 1) const;
  /// The point of the codes `code`, `code` + 10 and `code` + 20, the first of them at `index`; the
  /// others must follow it directly and are 0 otherwise.
  PNT_3D pointAt(std::size_t index) const;

  void setText(std::size_t index, std::string_view value);
  /// Writes the shortest exact decimal. `value` must be finite.
  void setReal(std::size_t index, double value);
  void setInteger(std::size_t index, long value);
  /// Changes the coordinates that `pointAt` returns; a missing z coordinate is inserted if it is
  /// not 0. Returns the index after the point.
  std::size_t setPoint(std::size_t index, const PNT_3D& point);

  void insert(std::size_t index, long code, std::string value);
  void insertReal(std::size_t index, long code, double value);
  void erase(std::size_t index);
};

/// Removes the groups of handles (102): reactors and the extension dictionary.
void dropGroups(SourceRecord& record);
/// Makes the record that of a copy: without reactors and extension dictionary, owning no objects,
/// and as a hatch not bound to the entities of its boundary.
void detach(SourceRecord& record);

/// The number that readers see in a value, with a comma or the exponent of Fortran repaired.
double numberOf(std::string_view value);

/// `value` as the shortest decimal that reads back exactly, as the writers of files form it.
std::string shortestText(double value);

}  // namespace vek0::detail
