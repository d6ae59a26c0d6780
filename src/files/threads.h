#pragma once

#include <thread>

namespace vek0::detail {

/// Whether an option `threads`, 0 for as many as help, allows a second one.
inline bool allowsThread(int threads) {
  return threads == 0 ? std::thread::hardware_concurrency() > 1 : threads > 1;
}

}  // namespace vek0::detail
