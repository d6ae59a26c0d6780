#include "vek0paint/svgwriter.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <system_error>
#include <utility>

#include "vek0core/files/file.h"

namespace vek0::paint {
namespace {

// Bytes per write. What fits the cache of a processor is written twice as fast.
constexpr std::size_t kBlock = 1 << 16;
// Bytes that are worth another thread.
constexpr std::size_t kWorthThread = 1 << 22;
// Bodies up to this size keep their memory.
constexpr std::size_t kKept = 1 << 22;

}  // namespace

// --- Recording

void SvgWriter::text(std::string_view text) {
  add(Kind::Text, text.size());
  m_tape.texts += text;
}

std::size_t SvgWriter::place() {
  add(Kind::Place);
  m_tape.places.emplace_back();
  return m_tape.places.size() - 1;
}

void SvgWriter::stroke(const PNT_2D* points, std::size_t count, bool closed) {
  add(closed ? Kind::Closed : Kind::Open, count);
  m_tape.points.insert(m_tape.points.end(), points, points + count);
}

void SvgWriter::segments(const PNT_2D* points, std::size_t count) {
  add(Kind::Segments, count);
  m_tape.points.insert(m_tape.points.end(), points, points + count);
}

void SvgWriter::ring(const PNT_2D* points, std::size_t count, bool reversed) {
  if (count == 0) return;
  stroke(points, count, true);
  if (reversed)
    std::reverse(m_tape.points.end() - static_cast<std::ptrdiff_t>(count), m_tape.points.end());
}

void SvgWriter::arc(const PNT_2D& center, double radius, double startRad, double sweepRad) {
  add(Kind::Arc);
  m_tape.arcs.push_back({center, radius, startRad, sweepRad});
}

std::size_t SvgWriter::Tape::size() const {
  return entries.size() * sizeof(Entry) + texts.size() + places.size() * sizeof(std::string) +
         points.size() * sizeof(PNT_2D) + arcs.size() * sizeof(Arc);
}

void SvgWriter::Tape::clear() {
  entries.clear();
  texts.clear();
  places.clear();
  points.clear();
  arcs.clear();
}

void SvgWriter::pause() {
  if (m_tape.size() >= kWorthThread) submit();
}

void SvgWriter::submit() {
  join();
  std::swap(m_tape, m_played);
  m_tape.clear();
  const std::size_t size = m_played.size();
  m_submitted += size;
  if (size < kWorthThread) return play();
  try {
    m_writing = std::async(std::launch::async, [this] { play(); });
  } catch (const std::system_error&) {
    play();  // no thread can be started
  }
}

void SvgWriter::join() {
  if (m_writing.valid()) m_writing.get();
}

bool SvgWriter::finish() {
  submit();
  join();
  writeOut();
  return m_good;
}

// --- Writing

void SvgWriter::play() {
  m_text = m_place = m_point = m_arc = 0;
  for (const Entry& entry : m_played.entries) playOne(entry);
}

void SvgWriter::playOne(const Entry& entry) {
  switch (entry.kind) {
    case Kind::Leave:
      return enter(kNoGroup);
    case Kind::Enter:
      return enter(entry.count);
    case Kind::WriteGroup:
      return writeBody(m_bodies[entry.count]);
    case Kind::Text:
      endPath();
      target().append(m_played.texts, m_text, entry.count);
      m_text += entry.count;
      return;
    case Kind::Place:
      target() += m_played.places[m_place++];
      return;
    case Kind::Path:
      return m_path.clear();
    case Kind::Open:
    case Kind::Closed:
      return addStroke(entry.count, entry.kind == Kind::Closed);
    case Kind::Segments:
      return addSegments(entry.count);
    case Kind::Arc:
      return addArc();
  }
}

std::string& SvgWriter::target() { return m_group == kNoGroup ? m_out : m_bodies[m_group]; }

void SvgWriter::enter(std::size_t group) {
  m_group = group;
  if (group != kNoGroup && group >= m_bodies.size()) m_bodies.resize(group + 1);
}

void SvgWriter::addStroke(std::size_t count, bool closed) {
  const PNT_2D* points = &m_played.points[m_point];
  m_path.move(points[0]);
  for (std::size_t i = 1; i < count; ++i) m_path.line(points[i]);
  if (closed) m_path.close();
  m_point += count;
}

void SvgWriter::addSegments(std::size_t count) {
  for (const std::size_t end = m_point + count; m_point < end; m_point += 2) {
    m_path.move(m_played.points[m_point]);
    m_path.line(m_played.points[m_point + 1]);
  }
}

PNT_2D SvgWriter::Arc::at(double share) const {
  const double angle = startRad + share * sweepRad;
  return {center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)};
}

void SvgWriter::addArc() {
  const Arc& arc = m_played.arcs[m_arc++];
  const bool clockwise = arc.sweepRad > 0;
  m_path.move(arc.at(0));
  // More than half a turn is split in two: with rounded ends that nearly meet, the center of a
  // single arc would be ambiguous.
  if (std::abs(arc.sweepRad) > std::numbers::pi) m_path.arc(arc.radius, clockwise, arc.at(0.5));
  m_path.arc(arc.radius, clockwise, arc.at(1));
}

void SvgWriter::endPath() {
  target() += m_path.data();
  m_path.clear();
}

void SvgWriter::writeBody(std::string& body) {
  writeOut();
  for (std::string_view rest = body; !rest.empty();) {
    const std::size_t size = std::min(kBlock, rest.size());
    m_good = m_good && m_file.writeBytes(rest.data(), static_cast<long>(size));
    rest.remove_prefix(size);
  }
  body.clear();
  if (body.capacity() > kKept) body.shrink_to_fit();
}

void SvgWriter::writeOut() {
  m_good = m_good && m_file.writeBytes(m_out.data(), static_cast<long>(m_out.size()));
  m_out.clear();
}

}  // namespace vek0::paint
