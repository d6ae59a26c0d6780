#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "support/named.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"
#include "zim0lang/wstring.h"

// Tables of cases live in files: tests/<room>/data/<name>.txt belongs to
// tests/<room>/<name>_test.cpp and has a section per test:
//
//     # Two or more blanks separate cells. A cell in quotes is a C string literal; all others
//     # are literal text.
//     [Suite.Test]
//     name         text         width
//     two words    a b          2*pi
//     line break   "a\nb"       1e300
//
// The first line of a section names its columns, by which a test accesses cells. Cells can use
// names that a test defines for values: `${name}` in texts, `name` in numbers.

namespace vek0::test {

/// A name by which the cells of a table refer to a value of the test.
struct Definition {
  Definition(std::string n, const std::string& value) : name(std::move(n)), text(value) {}
  Definition(std::string n, const char* value) : name(std::move(n)), text(value) {}
  template <class T>
  requires(std::is_arithmetic_v<T> || std::is_enum_v<T>) Definition(std::string n, T value)
      : name(std::move(n)), number(static_cast<double>(value)) {}

  std::string name;
  std::string text;
  double number = 0;
};

using Definitions = std::vector<Definition>;

/// One row of a table. A missing column or a cell of the wrong kind fails the test.
class Row {
 public:
  Row(const std::vector<std::string>& columns, std::vector<std::string> cells, Place place)
      : m_columns(&columns), m_cells(std::move(cells)), m_place(place) {}

  /// The same row with names that the test defines; they must outlive it.
  Row with(const Definitions& names) const;

  std::string text(std::string_view column) const;
  /// The texts between vertical bars.
  std::vector<std::string> list(std::string_view column) const;
  zim::WString wide(std::string_view column) const { return zim::WString::fromUtf8(text(column)); }
  /// A sum of products of numbers, `pi`, `inf` and `nan`, evaluated as C++ does.
  double real(std::string_view column) const { return number(cell(column)); }
  /// Such sums, separated by blanks or commas.
  std::vector<double> reals(std::string_view column) const;
  /// Coordinates such as "1,2" or "1,2,3".
  PNT_3D point(std::string_view column) const;
  std::vector<PNT_3D> points(std::string_view column) const;
  /// A box given by its two corners, as points.
  template <class Rect = RECT_3D>
  Rect rect(std::string_view column) const {
    const std::vector<PNT_3D> all = points(column);
    if (all.size() != 2) fail("not two corners: " + text(column));
    return Rect(all[0], all[1]);
  }
  /// A shape given by three, four or six numbers.
  template <class Shape>
  Shape shape(std::string_view column) const {
    const std::vector<double> n = reals(column);
    if constexpr (std::is_constructible_v<Shape, double, double, double>) {
      if (n.size() == 3) return Shape(n[0], n[1], n[2]);
    }
    if constexpr (std::is_constructible_v<Shape, double, double, double, double>) {
      if (n.size() == 4) return Shape(n[0], n[1], n[2], n[3]);
    }
    if constexpr (std::is_constructible_v<Shape, double, double, double, double, double, double>) {
      if (n.size() == 6) return Shape(n[0], n[1], n[2], n[3], n[4], n[5]);
    }
    fail("no shape: " + text(column));
  }
  template <class T = int>
  T whole(std::string_view column) const {
    return static_cast<T>(wholeNumber(column));
  }
  std::size_t count(std::string_view column) const { return whole<std::size_t>(column); }
  /// `yes` or `no`.
  bool flag(std::string_view column) const;

  const std::string& name() const { return m_cells.front(); }
  Place place() const { return m_place; }

 private:
  const std::string& cell(std::string_view column) const;
  [[noreturn]] void fail(const std::string& what) const;
  double number(const std::string& word) const;
  std::int64_t wholeNumber(std::string_view column) const;

  const std::vector<std::string>* m_columns;
  std::vector<std::string> m_cells;
  Place m_place;
  const Definitions* m_names = nullptr;
};

/// The rows of one section, by default that of the running test. A missing or empty one fails the
/// test.
const std::vector<Row>& rowsOf(std::string section = {});

/// The rows for a loop: `for (const Row& t : rows())`; messages show the row.
inline Named<const std::vector<Row>&> rows(std::string section = {}) {
  return named(rowsOf(std::move(section)));
}

/// The same with names that the test defines; they must outlive the loop.
Named<std::vector<Row>> rowsWith(const Definitions& names, std::string section = {});

}  // namespace vek0::test
