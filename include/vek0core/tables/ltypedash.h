#pragma once

#include <cmath>
#include <cstddef>
#include <memory>
#include <variant>
#include <vector>

#include "vek0core/export.h"
#include "vek0core/geometry/rect.h"
#include "vek0core/tables/text.h"

/// One element of a linetype's pattern: a dash, a gap, a dot, or a text.
class VEK0_API ILtypeComplexDash {
 public:
  virtual ~ILtypeComplexDash() = default;
  virtual bool IsDoubleDash() const { return false; }
  virtual bool IsText() const { return false; }
  /// Signed length in drawing units: a dash above 0, a gap below, a dot at 0.
  virtual double GetValue() const { return 0.0; }
  /// The text, or null for other elements.
  virtual const TEXT_3D* GetText() const { return nullptr; }
  /// Box of the element when it stands at the origin along the x axis.
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

/// A text inside the pattern, placed relative to where the pattern has got to. Counts
/// itself on its style, which may be null.
///
/// The height is the scale factor of the definition as it stands; whoever draws it
/// multiplies by the style's fixed height when that is above 0.
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
  /// Moves the count from the present style to the new one.
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

  /// Inserts before position `pos`; the count as position appends.
  void InsertDashDouble(int pos, double value);
  void InsertDashText(int pos, const TEXT_3D& text);
  void AddDashDouble(double value) { InsertDashDouble(GetNoDashes(), value); }
  void AddDashText(const TEXT_3D& text) { InsertDashText(GetNoDashes(), text); }
  void RemoveDash(int pos);
  void ClearDashes();
  /// Another style, which may be null, for the text at `pos`; what is no text has none.
  void SetTextStyle(int pos, CStyle* style);
  void swap(CLtypeComplexDashSeq& other) {
    m_dashes.swap(other.m_dashes);
    std::swap(m_length, other.m_length);
  }

  /// Sum of the magnitudes of dashes and gaps. Texts add nothing.
  double GetPatternLen() const { return m_length; }
  /// Box of the pattern along the x axis, texts included; empty without elements.
  void GetBdry(RECT_2D& box) const;

  /// The caller owns the snapshot; null when out of memory.
  CLtypeComplexDashSeqMemento* CreateMemento() const;
  /// Throws `std::bad_alloc` with nothing changed. Needs no memory where it `hasShapeOf` that.
  void SetMemento(const CLtypeComplexDashSeqMemento* memento);
  /// Whether elements of the same kinds with the same strings are there.
  bool hasShapeOf(const CLtypeComplexDashSeqMemento& memento) const;

 private:
  void fill(const CLtypeComplexDashSeqMemento& memento);
  void insert(int pos, std::unique_ptr<ILtypeComplexDash> dash);
  void sumLength();

  std::vector<std::unique_ptr<ILtypeComplexDash>> m_dashes;
  double m_length = 0;
};

/// Snapshot of a sequence, for undo. Unlike the elements themselves it does not count on
/// the styles of its texts, and may outlive them as long as it is not applied.
class VEK0_API CLtypeComplexDashSeqMemento {
 public:
  explicit CLtypeComplexDashSeqMemento(const CLtypeComplexDashSeq& dashes);
  bool operator==(const CLtypeComplexDashSeq& dashes) const;
  bool operator!=(const CLtypeComplexDashSeq& dashes) const { return !(*this == dashes); }

 private:
  friend class CLtypeComplexDashSeq;
  std::vector<std::variant<double, TEXT_3D>> m_dashes;  // lengths and texts
};

/// Lays the pattern along a way of `length`, from `phase` of it on (both drawing units,
/// the pattern multiplied by `scale`), and hands each element to `each` as (element,
/// from, to) along the way: dashes and gaps cut at the ends of the way, dots and texts
/// with from equal to to. False, and nothing handed over, when the way is to be drawn
/// continuous: the pattern or the way has no length, or it takes more than `most`
/// elements.
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
      const double end = at + std::fabs(dashes[i]->GetValue()) * scale;
      const bool isPoint = dashes[i]->IsText() || dashes[i]->GetValue() == 0;
      if (isPoint ? at >= 0 : end > 0 && at < length) {
        each(*dashes[i], at < 0 ? 0.0 : at, end > length ? length : end);
      }
      at = end;
    }
  }
  return true;
}
