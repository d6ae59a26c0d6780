#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vek0::paint {

/// The nested clips of an SVG picture.
class SvgClips {
 public:
  /// `data` is that of a path.
  void push(std::string data);
  void pop() { m_clips.pop_back(); }

  /// Unique number of the innermost clip; 0 for none.
  int number() const { return m_clips.empty() ? 0 : m_clips.back().number; }
  /// The definitions not returned by earlier calls.
  std::string definitions();
  /// Opens one group per clip: viewers differ in their handling of a clip on a clip.
  std::string openingTags() const;
  std::string closingTags() const;

 private:
  struct Clip {
    int number;
    std::string data;
    bool isDefined = false;
  };

  std::vector<Clip> m_clips;
  int m_count = 0;  // of all so far
};

}  // namespace vek0::paint
