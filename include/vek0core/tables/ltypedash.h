#pragma once

#include <cmath>
#include <cstddef>
#include <memory>
#include <variant>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/rect.h"
#include "vek0core/tables/text.h"

/// One element of a linetype pattern: a dash, a gap, a dot, or a text.
class VEK0_API ILtypeComplexDash {
 public:
  virtual ~ILtypeComplexDash() = default;
  virtual bool IsDoubleDash() const { return false; }
  virtual bool IsText() const { return false; }
  /// Signed length in drawing units: positive for a dash, negative for a gap, 0 for a dot.
  virtual double GetValue() const { return 0.0; }
  /// The text, or null for other elements.
  virtual const TEXT_3D* GetText() const { return nullptr; }
  /// Box of the element placed at the origin along the x axis.
  virtual void GetBdry(RECT_2D& box) const = 0;
  /// The caller owns the copy; null when out of memory.
  virtual ILtypeComplexDash* Clone() const = 0;
};

/// A dash, a gap or a dot.
class VEK0_API CDoubleLtypeComplexDash : public ILtypeComplexDash {
 public:
  explicit CDoubleLtypeComplexDash(double value) : m_value(value) {}
  bool IsDoubleDash() const override { return true; }
  double GetValue() const override { return m_value; }
  void GetBdry(RECT_2D& box) const override;
  ILtypeComplexDash* Clone() const override;

 private:
  friend class CLtypeComplexDashSeq;
  double m_value;
};

/// A text inside the pattern, placed relative to the current position in the pattern. Counted as a
/// use of its style, which may be null.
///
/// The height is the unmodified scale factor of the definition; renderers multiply it by the
/// style's fixed height if that is above 0.
class VEK0_API CFontLtypeComplexDash : public ILtypeComplexDash {
 public:
  explicit CFontLtypeComplexDash(const TEXT_3D& text);
  CFontLtypeComplexDash(const CFontLtypeComplexDash&) = delete;
  CFontLtypeComplexDash& operator=(const CFontLtypeComplexDash&) = delete;
  ~CFontLtypeComplexDash() override;
  bool IsText() const override { return true; }
  const TEXT_3D* GetText() const override { return &m_text; }
  void GetBdry(RECT_2D& box) const override { m_text.calc_bdry(box); }
  ILtypeComplexDash* Clone() const override;
  /// Moves the use count from the current style to the new one.
  void setText(const TEXT_3D& text);
  void setStyle(CStyle* style);  ///< likewise

 private:
  TEXT_3D m_text;
};

class CLtypeComplexDashSeqMemento;

/// The elements of one linetype in order; owns them. Copies are deep.
class VEK0_API CLtypeComplexDashSeq {
 public:
  CLtypeComplexDashSeq() = default;
  CLtypeComplexDashSeq(const CLtypeComplexDashSeq& src);
  CLtypeComplexDashSeq(CLtypeComplexDashSeq&& src) noexcept { swap(src); }
  CLtypeComplexDashSeq& operator=(const CLtypeComplexDashSeq& src);
  ~CLtypeComplexDashSeq() = default;

  /// Equal counts and lengths, then equal elements, each exactly.
  bool operator==(const CLtypeComplexDashSeq& other) const;
  bool operator!=(const CLtypeComplexDashSeq& other) const { return !(*this == other); }

  int GetNoDashes() const { return static_cast<int>(m_dashes.size()); }
  /// Element at a position, unchecked.
  const ILtypeComplexDash* Get(int i) const { return m_dashes[static_cast<std::size_t>(i)].get(); }
  const ILtypeComplexDash* operator[](int i) const { return Get(i); }

  /// Inserts before position `pos`, or appends if `pos` equals the count.
  void InsertDashDouble(int pos, double value);
  void InsertDashText(int pos, const TEXT_3D& text);
  void AddDashDouble(double value) { InsertDashDouble(GetNoDashes(), value); }
  void AddDashText(const TEXT_3D& text) { InsertDashText(GetNoDashes(), text); }
  void RemoveDash(int pos);
  void ClearDashes();
  /// Sets the style, which may be null, of the text at `pos`; has no effect on other elements.
  void SetTextStyle(int pos, CStyle* style);
  void swap(CLtypeComplexDashSeq& other) {
    m_dashes.swap(other.m_dashes);
    std::swap(m_length, other.m_length);
  }

  /// Sum of the magnitudes of dashes and gaps. Texts contribute nothing.
  double GetPatternLen() const { return m_length; }
  /// Box of the pattern along the x axis, texts included; empty without elements.
  void GetBdry(RECT_2D& box) const;

  /// The caller owns the snapshot; null when out of memory.
  CLtypeComplexDashSeqMemento* CreateMemento() const;
  /// Throws `std::bad_alloc` with nothing changed. Needs no memory if `hasShapeOf` the other is
  /// true.
  void SetMemento(const CLtypeComplexDashSeqMemento* memento);
  /// Whether it has elements of the same kinds with the same strings.
  bool hasShapeOf(const CLtypeComplexDashSeqMemento& memento) const;

 private:
  void fill(const CLtypeComplexDashSeqMemento& memento);
  void insert(int pos, std::unique_ptr<ILtypeComplexDash> dash);
  void sumLength();

  std::vector<std::unique_ptr<ILtypeComplexDash>> m_dashes;
  double m_length = 0;
};

/// Snapshot of a sequence, for undo. Unlike the elements themselves, it is not counted as a use of
/// the styles of its texts, and it may outlive them if it is never applied.
class VEK0_API CLtypeComplexDashSeqMemento {
 public:
  explicit CLtypeComplexDashSeqMemento(const CLtypeComplexDashSeq& dashes);
  bool operator==(const CLtypeComplexDashSeq& dashes) const;
  bool operator!=(const CLtypeComplexDashSeq& dashes) const { return !(*this == dashes); }

 private:
  friend class CLtypeComplexDashSeq;
  std::vector<std::variant<double, TEXT_3D>> m_dashes;  // lengths and texts
};

/// Lays the pattern, multiplied by `scale`, along a path of `length`, starting at `phase` within
/// the pattern (all in drawing units). Calls `each` with (element, from, to) in path lengths:
/// dashes and gaps are cut at the ends of the path; for dots and texts, from equals to. Returns
/// false without any call if the path is to be drawn continuous: the pattern or the path has zero
/// length, or more than `most` elements would be needed.
template <class Each>
bool forEachDash(const CLtypeComplexDashSeq& dashes, double scale, double phase, double length,
                 long most, const Each& each) {
  const double period = dashes.GetPatternLen() * scale;
  if (!(period > 0) || !(length > 0) || !std::isfinite(period) || !std::isfinite(phase))
    return false;
  double start = -std::fmod(phase, period);
  if (start > 0) start -= period;
  const double elements = ((length - start) / period + 1) * dashes.GetNoDashes();
  if (!(elements <= static_cast<double>(most))) return false;
  for (long round = 0; start + static_cast<double>(round) * period <= length; ++round) {
    double at = start + static_cast<double>(round) * period;
    for (int i = 0; i < dashes.GetNoDashes() && at <= length; ++i) {
      const double value = dashes[i]->GetValue();
      const double end = at + std::fabs(value) * scale;
      const bool isPoint = value == 0 || dashes[i]->IsText();
      if (isPoint ? at >= 0 : end > 0 && at < length) {
        each(*dashes[i], at < 0 ? 0.0 : at, end > length ? length : end);
      }
      at = end;
    }
  }
  return true;
}
