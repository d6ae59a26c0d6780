#pragma once

#include <cstddef>
#include <future>
#include <string>
#include <string_view>
#include <vector>

#include "vek0core/geometry/pnt.h"
#include "vek0paint/svgpath.h"

class IFile;

namespace vek0::paint {

/// Writes the text of an SVG document: parts that go to the file at once, and the bodies of groups,
/// which grow in turn.
///
/// Calls are recorded. Another thread, if there is one, writes what they mean, since converting the
/// numbers takes as long as all other work on a picture.
class SvgWriter {
 public:
  /// `file` is open, and borrowed.
  explicit SvgWriter(IFile& file) : m_file(file) {}

  /// What follows goes to the file.
  void leaveGroup() { add(Kind::Leave); }
  /// What follows is added to the body of this group. Groups are numbered from 0.
  void enterGroup(std::size_t group) { add(Kind::Enter, group); }
  /// Writes the body of a group to the file, and empties it.
  void writeGroup(std::size_t group) { add(Kind::WriteGroup, group); }

  void text(std::string_view text);
  /// Reserves a place for a text that is not known yet, and may be set until the next `pause`.
  std::size_t place();
  void setPlace(std::size_t place, std::string text) { m_tape.places[place] = std::move(text); }

  /// Begins the data of a path: all shapes up to the next text.
  void startPath() { add(Kind::Path); }
  void stroke(const PNT_2D* points, std::size_t count, bool closed);
  /// Every two points are a stroke.
  void segments(const PNT_2D* points, std::size_t count);
  /// A closed path, or nothing if there are no points.
  void ring(const PNT_2D* points, std::size_t count, bool reversed);
  /// Less than a full turn; angles in radians, from x towards y.
  void arc(const PNT_2D& center, double radius, double startRad, double sweepRad);

  /// Writes what has been recorded if it is worth it.
  void pause();
  /// About how many bytes have been recorded.
  std::size_t size() const { return m_submitted + m_tape.size(); }
  /// Writes the rest; false if not everything could be written.
  bool finish();

 private:
  enum class Kind { Leave, Enter, WriteGroup, Text, Place, Path, Open, Closed, Segments, Arc };
  struct Entry {
    Kind kind;
    std::size_t count;  // of bytes or points; or the number of a group
  };
  struct Arc {
    PNT_2D center;
    double radius, startRad, sweepRad;

    PNT_2D at(double share) const;
  };
  // What entries need, in their order.
  struct Tape {
    std::vector<Entry> entries;
    std::string texts;
    std::vector<std::string> places;
    std::vector<PNT_2D> points;
    std::vector<Arc> arcs;

    std::size_t size() const;
    void clear();
  };

  void add(Kind kind, std::size_t count = 0) { m_tape.entries.push_back({kind, count}); }
  void submit();
  void join();

  void play();
  void playOne(const Entry& entry);
  void addSegments(std::size_t count);
  void addStroke(std::size_t count, bool closed);
  void addArc();
  void endPath();
  void enter(std::size_t group);
  std::string& target();
  void writeBody(std::string& body);
  void writeOut();

  Tape m_tape;  // being recorded
  std::size_t m_submitted = 0;

  // Only used while writing.
  Tape m_played;
  std::size_t m_text = 0, m_place = 0, m_point = 0, m_arc = 0;  // next ones of the tape
  IFile& m_file;
  bool m_good = true;
  static constexpr std::size_t kNoGroup = static_cast<std::size_t>(-1);
  std::string m_out;                  // to the file, not written yet
  std::vector<std::string> m_bodies;  // of the groups
  std::size_t m_group = kNoGroup;     // which one text is added to
  SvgPath m_path;

  std::future<void> m_writing;  // the last member, as it uses the others
};

}  // namespace vek0::paint
