#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <iterator>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

namespace vek0::test {

/// Source position of a loop.
struct Place {
  const char* file;
  int line;
};

/// The values of a container, each named in the messages of the loop body; see `named`.
template <class Cases>
class Named {
 public:
  Named(Cases cases, Place place) : m_cases(std::forward<Cases>(cases)), m_place(place) {}

  class iterator {
   public:
    using Inner = decltype(std::begin(std::declval<const Cases&>()));
    iterator(Inner at, const Place& place) : m_at(at), m_place(place) {}
    decltype(auto) operator*() {
      trace(*m_at);
      return *m_at;
    }
    iterator& operator++() {
      m_trace.reset();
      ++m_at;
      return *this;
    }
    bool operator!=(const iterator& other) const { return m_at != other.m_at; }

   private:
    template <class T>
    void trace(const T& value) {
      if constexpr (requires { value.place(); })
        m_trace.emplace(value.place().file, value.place().line, value.name());
      else if constexpr (requires { value.name; })
        m_trace.emplace(m_place.file, m_place.line, value.name);
      else
        m_trace.emplace(m_place.file, m_place.line, testing::PrintToString(value));
    }

    Inner m_at;
    Place m_place;
    std::optional<testing::ScopedTrace> m_trace;
  };

  iterator begin() const { return {std::begin(m_cases), m_place}; }
  iterator end() const { return {std::end(m_cases), m_place}; }

 private:
  Cases m_cases;
  Place m_place;
};

/// For loops over cases: `for (const auto& t : named(cases))`. Messages show a case by its member
/// `name`, values without one as they print.
template <class Cases>
Named<const Cases&> named(const Cases& cases, const char* file = __builtin_FILE(),
                          int line = __builtin_LINE()) {
  return {cases, {file, line}};
}

template <class T>
Named<std::vector<T>> named(std::initializer_list<T> values, const char* file = __builtin_FILE(),
                            int line = __builtin_LINE()) {
  return {std::vector<T>(values), {file, line}};
}

/// The numbers from 0 up to `count`, each shown in messages.
template <class T = int>
Named<std::vector<T>> rounds(T count, const char* file = __builtin_FILE(),
                             int line = __builtin_LINE()) {
  std::vector<T> numbers(static_cast<std::size_t>(count));
  std::iota(numbers.begin(), numbers.end(), T(0));
  return {std::move(numbers), {file, line}};
}

}  // namespace vek0::test
