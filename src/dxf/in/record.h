#pragma once

#include <cstdint>
#include <initializer_list>

#include "vek0core/geometry/pnt.h"
#include "vek0core/tables/enttraits.h"
#include "vek0core/tables/handle.h"
#include "zim0lang/wstring.h"

class CLayer;
class CLtype;
class CStyle;

namespace vek0::detail {

/// A set of group codes from 0 to 127; it never contains others.
class CodeSet {
 public:
  static constexpr long kEnd = 128;

  constexpr CodeSet() = default;
  constexpr CodeSet(std::initializer_list<long> codes) {
    for (const long code : codes) add(code);
  }
  constexpr bool has(long code) const {
    return (code & ~127L) == 0 && (m_words[code >> 6] >> (code & 63) & 1) != 0;
  }
  /// `code` must lie in 0 to 127.
  constexpr void add(long code) { m_words[code >> 6] |= std::uint64_t{1} << (code & 63); }
  constexpr void remove(long code) { m_words[code >> 6] &= ~(std::uint64_t{1} << (code & 63)); }
  constexpr bool covers(const CodeSet& other) const {
    return (other.m_words[0] & ~m_words[0]) == 0 && (other.m_words[1] & ~m_words[1]) == 0;
  }
  /// One bit for each code of `required`, in ascending order, set if this set contains it.
  constexpr long bitsOf(const CodeSet& required) const {
    long bits = 0, next = 1;
    for (long code = 0; code < 128; ++code) {
      if (!required.has(code)) continue;
      if (has(code)) bits |= next;
      next <<= 1;
    }
    return bits;
  }
  constexpr CodeSet operator|(const CodeSet& other) const {
    CodeSet sum = *this;
    sum.m_words[0] |= other.m_words[0];
    sum.m_words[1] |= other.m_words[1];
    return sum;
  }

 private:
  std::uint64_t m_words[2] = {0, 0};
};

/// The properties that entities of every kind have.
struct EntProperties {
  CLayer* layer = nullptr;
  CLtype* ltype = nullptr;
  short color = 256;
  vek0::Handle handle = 0;
  ENT_TRAITS traits = {};

  /// The same for another object.
  EntProperties withHandle(vek0::Handle other) const {
    EntProperties copy = *this;
    copy.handle = other;
    return copy;
  }
};

/// The pairs of one entity record, reused from record to record: a value is valid only if its code
/// was seen, so values of earlier records are never used.
class Record : public EntProperties {
 public:
  /// Texts are the codes up to 3, reals those of 10 to 59, integers 60 to 99.
  static constexpr long kTexts = 4, kReals = 60, kIntegers = 100;

  CodeSet seen;
  CStyle* style = nullptr;
  PNT_3D extrusion = PNT_3D(0, 0, 1);  ///< normal of the record's plane

  /// Starts a record with the default linetype of entities.
  void start(CLtype* byLayer) {
    static_cast<EntProperties&>(*this) = {};
    seen = {};
    ltype = byLayer;
    style = nullptr;
    extrusion.set(0, 0, 1);
  }

  void setReal(long code, double value) { m_reals[code] = value; }
  void setInteger(long code, long value) { m_integers[code - kReals] = value; }
  void setText(long code, zim::WString text) { m_texts[code] = std::move(text); }

  double real(long code, double absent = 0) const {
    return seen.has(code) ? m_reals[code] : absent;
  }
  long integer(long code, long absent = 0) const {
    return seen.has(code) ? m_integers[code - kReals] : absent;
  }
  const zim::WString& text(long code) const { return seen.has(code) ? m_texts[code] : m_empty; }
  /// The i-th point of the record: codes 10 + i, 20 + i, 30 + i.
  PNT_3D point(long i) const { return PNT_3D(real(10 + i), real(20 + i), real(30 + i)); }

 private:
  double m_reals[kReals];
  long m_integers[kIntegers - kReals];
  zim::WString m_texts[kTexts];
  zim::WString m_empty;
};

}  // namespace vek0::detail
