#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace vek0::tool {

/// The clips around what an SVG picture draws, one in the other.
class SvgClips {
 public:
  /// `data` is that of a path.
  void push(std::string data);
  void pop() { m_clips.pop_back(); }

  /// Of the innermost clip, which no other has had; 0 for none.
  int number() const { return m_clips.empty() ? 0 : m_clips.back().number; }
  /// The definitions that no call has given before.
  std::string definitions();
  /// The groups within which all clips hold: viewers differ in how they take a clip of a clip.
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

}  // namespace vek0::tool
