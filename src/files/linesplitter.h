#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

#include "files/textblock.h"

namespace vek0::detail {

/// A queue of blocks whose lines a thread of its own finds and reads.
class LineSplitter {
 public:
  /// Null if the system offers no thread.
  static std::unique_ptr<LineSplitter> start();
  ~LineSplitter();

  std::size_t size() const { return m_blocks.size(); }
  /// The block that was added last.
  const TextBlock& last() const { return m_blocks.back().block; }
  void add(TextBlock block);
  /// The oldest block, after it has been split; as it is if that has not begun, since the caller is
  /// faster than the thread then.
  TextBlock take();

 private:
  enum class State { Waiting, Begun, Done };
  struct Entry {
    TextBlock block;
    State state = State::Waiting;
  };

  LineSplitter() = default;
  void run();
  Entry* findWaiting();

  // Only the owner adds and removes, so it may look at them without the lock.
  std::deque<Entry> m_blocks;
  std::mutex m_lock;  // of the states, the queue and m_isStopping
  std::condition_variable m_added, m_done;
  bool m_isStopping = false;
  std::thread m_thread;
};

}  // namespace vek0::detail
