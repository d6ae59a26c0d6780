#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vek0core/geometry/pnt.h"

namespace vek0::host {

/// A point as a command states it: absolute, or relative to the last point.
struct CommandPoint {
  PNT_3D value{0, 0, 0};
  bool isRelative = false;

  /// The point, which becomes the last one.
  PNT_3D from(PNT_3D& last) const {
    last = isRelative ? PNT_3D(last.x + value.x, last.y + value.y, last.z + value.z) : value;
    return last;
  }
};

/// The words of a command line, read one after the other. Blanks separate words; "double quotes"
/// protect them, and a doubled quote inside stands for one. The first word that is not what a
/// reader expects sets `problem`; what is read from then on has no meaning.
class CommandWords {
 public:
  explicit CommandWords(std::string_view line);

  bool isAtEnd() const { return m_rest.empty(); }
  /// Empty, or what is wrong with the line.
  const std::string& problem() const { return m_problem; }
  /// Sets the problem, unless there is one.
  void complain(const std::string& problem);

  /// The next word without its quotes. A problem if there is none; `what` names what is missing.
  std::string word(const char* what);
  /// All that is left, without its quotes if it is one quoted word.
  std::string rest();
  /// All that is left, as it is.
  std::string rawRest();
  /// Skips the next word if it is `keyword`, ignoring case.
  bool take(std::string_view keyword);
  /// Skips the next word if it begins with `key` and an equals sign; returns what follows.
  std::optional<std::string> takeValue(std::string_view key);

  bool isPoint() const;   ///< whether the next word is one
  bool isNumber() const;  ///< likewise
  /// "x,y", "x,y,z" or "distance<angle" in degrees; "@" before it makes it relative.
  CommandPoint point();
  std::vector<CommandPoint> points();  ///< all that follow
  double number(const char* what);
  double positive(const char* what);  ///< a problem if it is not above 0
  /// The number, or `usual` if the next word is none.
  double numberOr(double usual);

 private:
  std::string_view next() const;
  std::string_view skip();

  std::string m_line;
  std::string_view m_rest;  // from the next word on
  std::string m_problem;
};

}  // namespace vek0::host
