#include "support/rows.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <fstream>
#include <limits>
#include <locale>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>

namespace vek0::test {

namespace {

/// Failures are exceptions, because a test cannot continue without its data.
[[noreturn]] void fail(const std::string& what) { throw std::runtime_error(what); }

/// The character for the escape sequence at `at`, which follows the backslash; moves `at` past it.
char unescaped(const std::string& line, std::size_t& at) {
  const char c = line[at++];
  if (c == 'x') {
    const char byte = static_cast<char>(std::stoi(line.substr(at, 2), nullptr, 16));
    at += 2;
    return byte;
  }
  const std::string_view names = "nrt0\\\"";
  const std::size_t found = names.find(c);
  if (found == std::string_view::npos) fail("unknown escape in: " + line);
  return "\n\r\t\0\\\""[found];
}

std::string quotedCell(const std::string& line, std::size_t& at) {
  std::string cell;
  for (++at; at < line.size() && line[at] != '"';) {
    const char c = line[at++];
    cell += c == '\\' ? unescaped(line, at) : c;
  }
  if (at >= line.size()) fail("no end of the quotes in: " + line);
  ++at;
  return cell;
}

std::vector<std::string> cellsOf(const std::string& line) {
  std::vector<std::string> cells;
  for (std::size_t at = 0; at < line.size(); at = line.find_first_not_of(' ', at)) {
    if (line[at] == '"') {
      cells.push_back(quotedCell(line, at));
    } else {
      const std::size_t end = std::min(line.find("  ", at), line.size());
      cells.push_back(line.substr(at, end - at));
      at = end;
    }
  }
  return cells;
}

struct Table {
  std::vector<std::string> columns;
  std::vector<Row> rows;
};

using Tables = std::map<std::string, Table>;

Tables readTables(const std::string& path) {
  // Rows keep a pointer to the path; the tables live as long as the program.
  static std::vector<std::unique_ptr<std::string>> paths;
  const char* file = paths.emplace_back(std::make_unique<std::string>(path))->c_str();
  std::ifstream in(path, std::ios::binary);
  Tables tables;
  Table* table = nullptr;
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    if (line.empty() || line[0] == '#') continue;
    if (line[0] == '[' && line.back() == ']') {
      table = &tables[line.substr(1, line.size() - 2)];
      continue;
    }
    std::vector<std::string> cells = cellsOf(line);
    if (!table) fail(path + ": no section above " + line);
    if (table->columns.empty())
      table->columns = std::move(cells);
    else if (cells.size() != table->columns.size())
      fail(path + ":" + std::to_string(number) + ": the number of cells differs from the header's");
    else
      table->rows.emplace_back(table->columns, std::move(cells), Place{file, number});
  }
  return tables;
}

/// The data file of a test file, whatever the compiler's working directory was.
std::string dataFileOf(const std::string& testFile) {
  const std::size_t tests = testFile.rfind("tests/"), name = testFile.rfind('/') + 1;
  const std::string folder = testFile.substr(tests + 5, name - tests - 5);
  return VEK0_TESTS + folder + "data/" + testFile.substr(name, testFile.rfind("_test.cpp") - name) +
         ".txt";
}

const Definition* findName(const Definitions* names, std::string_view name) {
  if (!names) return nullptr;
  const auto found = std::find_if(names->begin(), names->end(),
                                  [name](const Definition& each) { return each.name == name; });
  return found == names->end() ? nullptr : &*found;
}

/// A sum of products of numbers, `pi`, `inf` and `nan`, evaluated as C++ does.
class Expression {
 public:
  Expression(std::string_view text, const Definitions* names) : m_text(text), m_names(names) {}

  std::optional<double> value() {
    const double all = sum();
    return m_isBad || !m_text.empty() ? std::nullopt : std::optional(all);
  }

 private:
  bool take(std::string_view part) {
    if (!m_text.starts_with(part)) return false;
    m_text.remove_prefix(part.size());
    return true;
  }

  double sum() {
    double value = product();
    while (true)
      if (take("+"))
        value += product();
      else if (take("-"))
        value -= product();
      else
        return value;
  }

  double product() {
    double value = factor();
    while (true)
      if (take("*"))
        value *= factor();
      else if (take("/"))
        value /= factor();
      else
        return value;
  }

  double factor() {
    if (take("-")) return -factor();
    if (const std::optional<double> value = definedNumber()) return *value;
    if (take("inf")) return std::numeric_limits<double>::infinity();
    if (take("nan")) return std::numeric_limits<double>::quiet_NaN();
    // Not every standard library has from_chars of floating-point numbers.
    const std::string text(m_text.substr(0, m_text.find_first_not_of("0123456789.+-eE")));
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    m_isBad = m_isBad || end == text.c_str();
    m_text.remove_prefix(static_cast<std::size_t>(end - text.c_str()));
    return value;
  }

  std::optional<double> definedNumber() {
    const auto isPart = [](unsigned char c) { return std::isalnum(c) || c == '_'; };
    const auto end = std::find_if_not(m_text.begin(), m_text.end(), isPart);
    const std::string_view word = m_text.substr(0, static_cast<std::size_t>(end - m_text.begin()));
    const Definition* found = findName(m_names, word);
    if (!found && word != "pi") return {};
    m_text.remove_prefix(word.size());
    return found ? found->number : 3.14159265358979323846;
  }

  std::string_view m_text;
  const Definitions* m_names;
  bool m_isBad = false;
};

std::vector<std::string> split(const std::string& text, const char* separators) {
  std::vector<std::string> parts;
  for (std::size_t at = text.find_first_not_of(separators); at < text.size();) {
    const std::size_t end = std::min(text.find_first_of(separators, at), text.size());
    parts.push_back(text.substr(at, end - at));
    at = text.find_first_not_of(separators, end);
  }
  return parts;
}

}  // namespace

void Row::fail(const std::string& what) const {
  test::fail(m_place.file + (":" + std::to_string(m_place.line)) + ": " + what);
}

const std::string& Row::cell(std::string_view column) const {
  const auto found = std::find(m_columns->begin(), m_columns->end(), column);
  if (found == m_columns->end()) fail("no column " + std::string(column));
  return m_cells[static_cast<std::size_t>(found - m_columns->begin())];
}

std::string Row::text(std::string_view column) const {
  std::string text = cell(column);
  if (!m_names) return text;
  for (const Definition& each : *m_names) {
    const std::string name = "${" + each.name + "}";
    for (std::size_t at = text.find(name); at != std::string::npos; at = text.find(name, at)) {
      text.replace(at, name.size(), each.text);
      at += each.text.size();
    }
  }
  return text;
}

std::vector<std::string> Row::list(std::string_view column) const {
  return split(text(column), "|");
}

Row Row::with(const Definitions& names) const {
  Row row = *this;
  row.m_names = &names;
  return row;
}

double Row::number(const std::string& word) const {
  const std::optional<double> value = Expression(word, m_names).value();
  if (!value) fail("no number: " + word);
  return *value;
}

std::vector<double> Row::reals(std::string_view column) const {
  std::vector<double> numbers;
  for (const std::string& word : split(cell(column), " ,")) numbers.push_back(number(word));
  return numbers;
}

std::vector<PNT_3D> Row::points(std::string_view column) const {
  std::vector<PNT_3D> points;
  for (const std::string& word : split(cell(column), " ")) {
    const std::vector<std::string> parts = split(word, ",");
    if (parts.size() < 2 || parts.size() > 3) fail("no point: " + word);
    points.emplace_back(number(parts[0]), number(parts[1]),
                        parts.size() > 2 ? number(parts[2]) : 0);
  }
  return points;
}

PNT_3D Row::point(std::string_view column) const {
  const std::vector<PNT_3D> all = points(column);
  if (all.size() != 1) fail("not one point: " + cell(column));
  return all.front();
}

std::int64_t Row::wholeNumber(std::string_view column) const {
  const std::string& word = cell(column);
  if (const Definition* found = findName(m_names, word))
    return static_cast<std::int64_t>(found->number);
  const bool isHex = word.starts_with("0x");
  std::int64_t value = 0;
  std::uint64_t bits = 0;
  const char* begin = word.data() + (isHex ? 2 : 0);
  const char* end = word.data() + word.size();
  const auto [at, error] =
      isHex ? std::from_chars(begin, end, bits, 16) : std::from_chars(begin, end, value);
  if (error != std::errc() || at != end) fail("no whole number: " + word);
  if (isHex) value = static_cast<std::int64_t>(bits);
  return value;
}

bool Row::flag(std::string_view column) const {
  const std::string& word = cell(column);
  if (word != "yes" && word != "no") fail("neither yes nor no: " + word);
  return word == "yes";
}

const std::vector<Row>& rowsOf(std::string section) {
  static std::map<std::string, Tables> files;
  const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
  const std::string path = dataFileOf(test.file());
  if (section.empty()) section = std::string(test.test_suite_name()) + "." + test.name();
  const auto [file, isNew] = files.try_emplace(path);
  if (isNew) file->second = readTables(path);
  const std::vector<Row>& rows = file->second[section].rows;
  if (rows.empty()) fail(path + " has no rows for " + section);
  return rows;
}

Named<std::vector<Row>> rowsWith(const Definitions& names, std::string section) {
  std::vector<Row> rows;
  for (const Row& row : rowsOf(std::move(section))) rows.push_back(row.with(names));
  return {std::move(rows), {}};
}

}  // namespace vek0::test
