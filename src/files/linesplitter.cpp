#include "files/linesplitter.h"

#include <algorithm>
#include <new>
#include <system_error>
#include <utility>

namespace vek0::detail {

std::unique_ptr<LineSplitter> LineSplitter::start() {
  std::unique_ptr<LineSplitter> splitter(new LineSplitter);
  try {
    splitter->m_thread = std::thread([own = splitter.get()] { own->run(); });
  } catch (const std::system_error&) {
    return nullptr;
  }
  return splitter;
}

LineSplitter::~LineSplitter() {
  if (!m_thread.joinable()) return;
  {
    const std::lock_guard lock(m_lock);
    m_isStopping = true;
  }
  m_added.notify_one();
  m_thread.join();
}

void LineSplitter::add(TextBlock block) {
  {
    const std::lock_guard lock(m_lock);
    m_blocks.push_back({std::move(block)});
  }
  m_added.notify_one();
}

TextBlock LineSplitter::take() {
  std::unique_lock lock(m_lock);
  Entry& first = m_blocks.front();
  m_done.wait(lock, [&first] { return first.state != State::Begun; });
  TextBlock block = std::move(first.block);
  m_blocks.pop_front();
  return block;
}

void LineSplitter::run() {
  std::unique_lock lock(m_lock);
  for (;;) {
    Entry* entry = nullptr;
    m_added.wait(lock, [&] { return m_isStopping || (entry = findWaiting()) != nullptr; });
    if (m_isStopping) return;
    entry->state = State::Begun;
    lock.unlock();
    try {
      splitLines(entry->block);
    } catch (const std::bad_alloc&) {
      entry->block.lines.clear();  // the reader finds them itself
    }
    lock.lock();
    entry->state = State::Done;
    m_done.notify_one();
  }
}

LineSplitter::Entry* LineSplitter::findWaiting() {
  const auto at = std::find_if(m_blocks.begin(), m_blocks.end(),
                               [](const Entry& entry) { return entry.state == State::Waiting; });
  return at == m_blocks.end() ? nullptr : &*at;
}

}  // namespace vek0::detail
