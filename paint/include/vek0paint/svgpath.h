#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "vek0core/geometry/pnt.h"

namespace vek0::paint {

/// A length rounded to the steps of paths, as its shortest decimal number: "-.5", "12", "0".
std::string lengthText(double value);

/// Whether a length rounds to zero.
bool isInvisible(double length);

/// The data of a path in compact form: integer steps of 1/100 device unit, written as differences.
class SvgPath {
 public:
  /// Begins a new subpath, or continues if the path is already there. A path that returns to its
  /// start is closed.
  void move(const PNT_2D& to);
  void line(const PNT_2D& to);
  /// A curve by its letter ("q", "c"), its control points and its end.
  void curve(char letter, const PNT_2D* points, std::size_t count);
  /// An arc of at most half a turn to a point.
  void arc(double radius, bool clockwise, const PNT_2D& to);
  void close();
  void clear() {
    m_data.clear();
    m_letter = 0;
  }

  bool empty() const { return m_data.empty(); }
  const std::string& data() const { return m_data; }

 private:
  void add(char letter, std::int64_t number);
  void add(std::int64_t number);
  void reached(std::int64_t x, std::int64_t y);

  std::string m_data;
  char m_letter = 0;              // command that the next numbers continue
  std::int64_t m_x = 0, m_y = 0;  // current position
  std::int64_t m_startX = 0, m_startY = 0;
  int m_segments = 0;  // since the start
};

}  // namespace vek0::paint
