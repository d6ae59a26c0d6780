#include "countline.h"

#include <cstdio>

#include "terminal.h"

namespace vek0::tool {

CountLine::CountLine(bool isWanted) : m_isWanted(isWanted && isErrorTerminal()) {}

void CountLine::show(std::size_t done, std::size_t total) {
  if (!m_isWanted || (m_isShown && done == m_done)) return;
  if (Clock::now() - m_start < std::chrono::seconds(1)) return;
  std::fprintf(stderr, "\r\033[K%zu of %zu drawings", done, total);
  std::fflush(stderr);
  m_isShown = true;
  m_done = done;
}

void CountLine::hide() {
  if (m_isShown) std::fprintf(stderr, "\r\033[K");
  m_isShown = false;
}

}  // namespace vek0::tool
