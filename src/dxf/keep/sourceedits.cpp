#include "dxf/keep/sourceedits.h"

#include <algorithm>
#include <utility>

#include "dxf/keep/forgetting.h"
#include "vek0core/files/file.h"

namespace vek0::detail {

// Collects bytes, so that the file gets them in large pieces.
class SourceEdits::Output {
 public:
  Output(IFile& file, std::string_view source) : m_file(file), m_source(source) {}

  /// Copies the source up to the offset, which is not before those passed.
  void copyTo(std::size_t offset) {
    add(m_source.substr(m_at, offset - m_at));
    m_at = offset;
  }
  /// Leaves out the source up to the offset.
  void passTo(std::size_t offset) { m_at = offset; }
  void add(std::string_view bytes) {
    constexpr std::size_t enough = std::size_t{1} << 16;
    if (m_buffer.size() + bytes.size() < enough) {
      m_buffer += bytes;
      return;
    }
    flush();
    write(bytes);
  }
  bool finish() {
    copyTo(std::max(m_at, m_source.size()));
    flush();
    return m_isDone;
  }
  /// The rest of the source is left out.
  void cut() { m_source = m_source.substr(0, m_at); }

 private:
  void flush() {
    write(m_buffer);
    m_buffer.clear();
  }
  void write(std::string_view bytes) {
    m_isDone = m_isDone && m_file.writeBytes(bytes.data(), static_cast<long>(bytes.size()));
  }

  IFile& m_file;
  std::string_view m_source;
  std::size_t m_at = 0;
  std::string m_buffer;
  bool m_isDone = true;
};

SourceEdits::SourceEdits(const SourceText& text, const SourceIndex& index, const Renames& renames)
    : m_text(text), m_index(index), m_renames(renames) {
  if (hasRoomAbove()) setSeed(index.highest() + 1);
}

void SourceEdits::setSeed(Handle seed) {
  if (seed > m_next && seed <= kMostSeed) m_firstFresh = m_next = seed;
}

// Only a file with a handle near the highest possible has any in the way.
Handle SourceEdits::takeHandle() {
  while (m_index.withHandle(m_next) != SourceIndex::kNone) ++m_next;
  return m_next++;
}

SourceRecord SourceEdits::read(std::size_t entry) const {
  const auto changed = m_changed.find(entry);
  return changed == m_changed.end() ? current(entry) : changed->second;
}

SourceRecord& SourceEdits::change(std::size_t entry) {
  const auto [found, isNew] = m_changed.try_emplace(entry);
  if (isNew) found->second = current(entry);
  return found->second;
}

// With the names of today.
SourceRecord SourceEdits::current(std::size_t entry) const {
  SourceRecord record = m_index.read(entry);
  if (!m_renames.empty()) m_renames.apply(record, m_index[entry].section);
  return record;
}

bool SourceEdits::write(IFile& file, const Rewrite& rewrite, const Dangling& dangling) const {
  Output out(file, m_text.bytes());
  const std::size_t count = m_index.entries().size();
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t begin = m_index[i].begin, end = m_index.endOf(i);
    const bool isClosed = m_closed.contains(i);
    if (isClosed || m_added.contains(i)) {
      const bool isCutOff = m_index.isCut() && i + 1 == count;
      out.copyTo(isCutOff ? cutEnd() : begin);
      if (isCutOff) out.cut();
      if (const auto added = m_added.find(i); added != m_added.end()) out.add(added->second);
      if (isClosed) out.add(m_text.write(SourceRecord{{SourcePair{0, "ENDSEC"}}}));
      if (isClosed && isCutOff) out.add(m_text.write(SourceRecord{{SourcePair{0, "EOF"}}}));
    }
    if (m_removed.contains(i)) {
      out.copyTo(begin);
      out.passTo(end);
    } else if (m_rewritten.contains(i)) {
      const std::size_t after = m_index.afterEntity(i);
      out.copyTo(begin);
      writeEntity(out, i, rewrite, dangling);
      out.passTo(m_index.endOf(after - 1));
      i = after - 1;
    } else if (const auto changed = m_changed.find(i); changed != m_changed.end()) {
      SourceRecord edited = changed->second;
      forget(i, edited, dangling);
      out.copyTo(begin);
      out.add(m_text.write(begin, end, m_index.read(i), edited));
      out.passTo(end);
    } else if (!m_forgotten.empty() || !m_renames.empty()) {
      const SourceRecord original = m_index.read(i);
      SourceRecord edited = original;
      if (!follow(i, edited, dangling)) continue;
      out.copyTo(begin);
      out.add(m_text.write(begin, end, original, edited));
      out.passTo(end);
    }
  }
  return out.finish();
}

void SourceEdits::writeEntity(Output& out, std::size_t entry, const Rewrite& rewrite,
                              const Dangling& dangling) const {
  std::vector<SourceRecord> originals, current;
  for (std::size_t i = entry; i < m_index.afterEntity(entry); ++i) {
    originals.push_back(m_index.read(i));
    current.push_back(read(i));
  }
  std::vector<SourceRecord> edited = rewrite(entry, std::move(current));
  const bool isSame = edited.size() == originals.size();
  for (std::size_t i = 0; i < edited.size(); ++i) {
    forget(entry, edited[i], dangling);
    const bool isKept = isSame && edited[i].pairs.front().line != 0;
    if (isKept)
      out.add(m_text.write(m_index[entry + i].begin, m_index.endOf(entry + i), originals[i],
                           edited[i]));
    else
      out.add(m_text.write(edited[i]));
  }
}

// Names and pointers of a record that is not edited itself.
bool SourceEdits::follow(std::size_t entry, SourceRecord& record, const Dangling& dangling) const {
  const bool isRenamed = !m_renames.empty() && m_renames.apply(record, m_index[entry].section);
  return forget(entry, record, dangling) || isRenamed;
}

bool SourceEdits::forget(std::size_t entry, SourceRecord& record, const Dangling& dangling) const {
  if (m_forgotten.empty()) return false;
  return forgetHandles(record, m_forgotten,
                       [&](long code, Handle handle) { dangling(entry, code, handle); });
}

// The end of the last whole pair of a file without its end mark. What follows is not read, and new
// records may not complete it.
std::size_t SourceEdits::cutEnd() const {
  const std::size_t count = m_index.entries().size();
  if (count < 2) return m_text.bytes().size();
  const std::size_t begin = m_index[count - 2].begin;
  const SourceRecord last = m_index.read(count - 2);
  return last.pairs.empty() ? begin : m_text.pass(begin, last.pairs.back().line + 1);
}

}  // namespace vek0::detail
