#pragma once

#include <cstddef>
#include <cstdint>
#include <future>
#include <string>
#include <string_view>
#include <vector>

namespace vek0::detail {

/// A group code and its value. Texts are kept beside it.
struct GroupPair {
  enum class Kind : std::uint8_t { Integer, Hex, Fixed, Shortest, Text };
  union Value {
    std::int64_t integer;
    std::uint64_t bits;  ///< of a hexadecimal number
    double number;
    std::uint64_t length;  ///< of a text
  };

  Value value;
  std::int32_t code;
  Kind kind;
};

/// Longest line of a value that is not a text, without its end.
inline constexpr std::size_t kValueRoom = 320;
/// Longest line of a group code, without its end.
inline constexpr std::size_t kGroupRoom = 20;

/// Writes the line of a group code, right-aligned in three columns, without its end; returns what
/// is after it.
char* formatGroup(char* out, long code);
/// Writes the value of a pair that is no text.
char* formatValue(char* out, const GroupPair& pair);

/// Pairs that another thread formats while more are added.
class PairTape {
 public:
  void add(const GroupPair& pair) { m_added.pairs.push_back(pair); }
  /// Adds a text in the encoding of the file.
  void add(long code, std::string_view text);

  /// Whether there are enough pairs for a `turn`.
  bool isFull() const;
  /// Begins to format what was added, and returns the lines of what the turn before began with;
  /// they last until the next turn. Without pairs, the next turn returns nothing.
  std::string_view turn();

 private:
  struct Pairs {
    std::vector<GroupPair> pairs;
    std::string texts;
  };

  void format();

  Pairs m_added;

  // Being formatted.
  Pairs m_taken;
  std::vector<char> m_lines;
  std::size_t m_size = 0;  // of the lines

  std::vector<char> m_done;
  std::future<void> m_formatting;  // the last member, as it uses others
};

}  // namespace vek0::detail
