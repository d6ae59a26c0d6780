#pragma once

#include <chrono>
#include <cstddef>

namespace vek0::tool {

/// A line on the error stream that counts what is done, while it takes more than a second; nothing
/// unless that is a terminal.
class CountLine {
 public:
  explicit CountLine(bool isWanted);
  ~CountLine() { hide(); }
  CountLine(const CountLine&) = delete;
  CountLine& operator=(const CountLine&) = delete;

  /// "12 of 300 drawings".
  void show(std::size_t done, std::size_t total);
  /// Removes the line, so that something else can be printed.
  void hide();

 private:
  using Clock = std::chrono::steady_clock;
  bool m_isWanted;
  bool m_isShown = false;
  std::size_t m_done = 0;
  Clock::time_point m_start = Clock::now();
};

}  // namespace vek0::tool
