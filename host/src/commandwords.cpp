#include "commandwords.h"

#include <cmath>

#include "degrees.h"
#include "vek0host/textvalues.h"

namespace vek0::host {
namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

std::optional<CommandPoint> pointIn(std::string_view word) {
  CommandPoint point;
  point.isRelative = !word.empty() && word.front() == '@';
  if (point.isRelative) word.remove_prefix(1);
  const bool isPolar = word.find('<') != word.npos;
  const auto numbers = numbersIn(word, isPolar ? '<' : ',');
  if (!numbers || numbers->size() < 2 || numbers->size() > (isPolar ? 2 : 3)) return std::nullopt;
  const double first = (*numbers)[0], second = (*numbers)[1];
  if (isPolar) {
    const PNT_2D direction = directionOf(second);
    point.value = PNT_3D(first * direction.x, first * direction.y, 0);
  } else {
    point.value = PNT_3D(first, second, numbers->size() > 2 ? (*numbers)[2] : 0);
  }
  return point;
}

std::optional<double> numberIn(std::string_view word) {
  const auto numbers = numbersIn(word);
  return numbers && numbers->size() == 1 ? std::optional(numbers->front()) : std::nullopt;
}

}  // namespace

CommandWords::CommandWords(std::string_view line) : m_line(trimmed(line)), m_rest(m_line) {}

void CommandWords::complain(const std::string& problem) {
  if (m_problem.empty()) m_problem = problem;
}

std::string_view CommandWords::next() const {
  bool isQuoted = false;
  std::size_t end = 0;
  for (; end < m_rest.size(); ++end) {
    if (m_rest[end] == '"') isQuoted = !isQuoted;
    if (!isQuoted && kBlanks.find(m_rest[end]) != kBlanks.npos) break;
  }
  return m_rest.substr(0, end);
}

std::string_view CommandWords::skip() {
  const std::string_view word = next();
  m_rest.remove_prefix(word.size());
  m_rest = trimmed(m_rest);
  return word;
}

std::string CommandWords::word(const char* what) {
  if (isAtEnd()) complain(std::string(what) + " is missing");
  return unquoted(skip());
}

std::string CommandWords::rest() {
  const bool isOneWord = next().size() == m_rest.size();
  const std::string text(m_rest);
  m_rest = {};
  return isOneWord ? unquoted(text) : text;
}

std::string CommandWords::rawRest() {
  const std::string text(m_rest);
  m_rest = {};
  return text;
}

bool CommandWords::take(std::string_view keyword) {
  if (lowered(std::string(next())) != keyword) return false;
  skip();
  return true;
}

std::optional<std::string> CommandWords::takeValue(std::string_view key) {
  const std::string_view word = next();
  const std::size_t equals = word.find('=');
  if (equals == word.npos || lowered(std::string(word.substr(0, equals))) != key)
    return std::nullopt;
  return unquoted(skip().substr(equals + 1));
}

bool CommandWords::isPoint() const { return pointIn(next()).has_value(); }

bool CommandWords::isNumber() const { return numberIn(next()).has_value(); }

CommandPoint CommandWords::point() {
  const std::string_view word = skip();
  const auto point = pointIn(word);
  if (word.empty()) complain("a point like 10,5 is missing");
  if (!point) complain("'" + std::string(word) + "' is not a point like 10,5, @3,4 or @10<45");
  return point.value_or(CommandPoint());
}

std::vector<CommandPoint> CommandWords::points() {
  std::vector<CommandPoint> points;
  while (isPoint()) points.push_back(point());
  return points;
}

double CommandWords::number(const char* what) {
  const std::string_view word = skip();
  const auto number = numberIn(word);
  if (word.empty()) complain(std::string(what) + " is missing");
  if (!number) complain("'" + std::string(word) + "' is not a number: " + what + " is needed");
  return number.value_or(1);
}

double CommandWords::positive(const char* what) {
  const double value = number(what);
  if (!(value > 0)) complain(std::string(what) + " must be above 0");
  return value;
}

double CommandWords::numberOr(double usual) { return isNumber() ? number("") : usual; }

}  // namespace vek0::host
