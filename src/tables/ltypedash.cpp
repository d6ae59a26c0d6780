// Elements of linetypes. A text element counts as a use of its style as long as it exists, so that
// the style is not taken for unused.
#include "vek0core/tables/ltypedash.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <new>

#include "vek0core/tables/style.h"

namespace {

// Whether the elements are equal: the same kind with the same value or text.
bool sameDash(const ILtypeComplexDash& a, const ILtypeComplexDash& b) {
  if (a.IsText() != b.IsText() || a.IsDoubleDash() != b.IsDoubleDash()) return false;
  return a.IsText() ? *a.GetText() == *b.GetText() : a.GetValue() == b.GetValue();
}

// The new use counts first, so that a style that remains in use never counts as unused.
void exchangeUse(CStyle* from, CStyle* to) {
  if (to) to->addDash();
  if (from) from->decDash();
}

}  // namespace

void CDoubleLtypeComplexDash::GetBdry(RECT_2D& box) const { box.set(0, 0, std::fabs(m_value), 0); }

ILtypeComplexDash* CDoubleLtypeComplexDash::Clone() const {
  return new (std::nothrow) CDoubleLtypeComplexDash(m_value);
}

CFontLtypeComplexDash::CFontLtypeComplexDash(const TEXT_3D& text) : m_text(text) {
  if (CStyle* style = m_text.getStyle()) style->addDash();
}

CFontLtypeComplexDash::~CFontLtypeComplexDash() {
  if (CStyle* style = m_text.getStyle()) style->decDash();
}

void CFontLtypeComplexDash::setText(const TEXT_3D& text) {
  CStyle* const old = m_text.getStyle();
  m_text = text;
  exchangeUse(old, m_text.getStyle());
}

void CFontLtypeComplexDash::setStyle(CStyle* style) {
  exchangeUse(m_text.getStyle(), style);
  m_text.setStyle(style);
}

ILtypeComplexDash* CFontLtypeComplexDash::Clone() const try {
  return new (std::nothrow) CFontLtypeComplexDash(m_text);
} catch (const std::bad_alloc&) {
  return nullptr;
}

CLtypeComplexDashSeq::CLtypeComplexDashSeq(const CLtypeComplexDashSeq& src)
    : m_length(src.m_length) {
  m_dashes.reserve(src.m_dashes.size());
  for (const auto& dash : src.m_dashes) {
    std::unique_ptr<ILtypeComplexDash> copy(dash->Clone());
    if (!copy) throw std::bad_alloc();
    m_dashes.push_back(std::move(copy));
  }
}

CLtypeComplexDashSeq& CLtypeComplexDashSeq::operator=(const CLtypeComplexDashSeq& src) {
  // Copied first, so that a lack of memory changes nothing.
  CLtypeComplexDashSeq copy(src);
  m_dashes.swap(copy.m_dashes);
  m_length = copy.m_length;
  return *this;
}

bool CLtypeComplexDashSeq::operator==(const CLtypeComplexDashSeq& other) const {
  if (m_dashes.size() != other.m_dashes.size() || m_length != other.m_length) return false;
  for (std::size_t i = 0; i < m_dashes.size(); ++i) {
    if (!sameDash(*m_dashes[i], *other.m_dashes[i])) return false;
  }
  return true;
}

void CLtypeComplexDashSeq::insert(int pos, std::unique_ptr<ILtypeComplexDash> dash) {
  const bool atEnd = pos == GetNoDashes();
  m_dashes.insert(m_dashes.begin() + pos, std::move(dash));
  // Adding at the end keeps the order of summation.
  if (atEnd) {
    m_length += std::fabs(m_dashes.back()->GetValue());
  } else {
    sumLength();
  }
}

void CLtypeComplexDashSeq::InsertDashDouble(int pos, double value) {
  insert(pos, std::make_unique<CDoubleLtypeComplexDash>(value));
}

void CLtypeComplexDashSeq::InsertDashText(int pos, const TEXT_3D& text) {
  insert(pos, std::make_unique<CFontLtypeComplexDash>(text));
}

void CLtypeComplexDashSeq::RemoveDash(int pos) {
  m_dashes.erase(m_dashes.begin() + pos);
  sumLength();
}

// Recomputed in element order: incremental updates would drift, and lengths are compared exactly.
void CLtypeComplexDashSeq::sumLength() {
  m_length = 0;
  for (const auto& dash : m_dashes) m_length += std::fabs(dash->GetValue());
}

void CLtypeComplexDashSeq::SetTextStyle(int pos, CStyle* style) {
  ILtypeComplexDash& dash = *m_dashes[static_cast<std::size_t>(pos)];
  if (dash.IsText()) static_cast<CFontLtypeComplexDash&>(dash).setStyle(style);
}

void CLtypeComplexDashSeq::ClearDashes() {
  m_dashes.clear();
  m_length = 0;
}

void CLtypeComplexDashSeq::GetBdry(RECT_2D& box) const {
  box.initRegion();
  if (m_dashes.empty()) return;
  box.set(0, 0, 0, 0);
  double at = 0;
  for (const auto& dash : m_dashes) {
    at += std::fabs(dash->GetValue());
    if (!dash->IsText()) continue;
    RECT_2D own;
    dash->GetBdry(own);
    own.min.x += at;
    own.max.x += at;
    box.updateRegion(own);
  }
  if (box.max.x < at) box.max.x = at;
}

CLtypeComplexDashSeqMemento* CLtypeComplexDashSeq::CreateMemento() const try {
  return new (std::nothrow) CLtypeComplexDashSeqMemento(*this);
} catch (const std::bad_alloc&) {
  return nullptr;
}

void CLtypeComplexDashSeq::SetMemento(const CLtypeComplexDashSeqMemento* memento) {
  if (!memento) return;
  // Elements of the same shape are filled in place, which needs no memory.
  if (hasShapeOf(*memento)) return fill(*memento);
  CLtypeComplexDashSeq restored;
  for (const auto& dash : memento->m_dashes) {
    if (const TEXT_3D* text = std::get_if<TEXT_3D>(&dash))
      restored.AddDashText(*text);
    else
      restored.AddDashDouble(std::get<double>(dash));
  }
  m_dashes.swap(restored.m_dashes);
  m_length = restored.m_length;
}

// Whether the elements become those of the memento by values and styles alone.
bool CLtypeComplexDashSeq::hasShapeOf(const CLtypeComplexDashSeqMemento& memento) const {
  return std::equal(m_dashes.begin(), m_dashes.end(), memento.m_dashes.begin(),
                    memento.m_dashes.end(), [](const auto& dash, const auto& kept) {
                      const TEXT_3D* mine = dash->GetText();
                      const TEXT_3D* its = std::get_if<TEXT_3D>(&kept);
                      if (!mine || !its) return !mine && !its;
                      return mine->getContext().getString() == its->getContext().getString();
                    });
}

void CLtypeComplexDashSeq::fill(const CLtypeComplexDashSeqMemento& memento) {
  for (std::size_t i = 0; i < m_dashes.size(); ++i) {
    if (const TEXT_3D* text = std::get_if<TEXT_3D>(&memento.m_dashes[i]))
      static_cast<CFontLtypeComplexDash&>(*m_dashes[i]).setText(*text);
    else
      static_cast<CDoubleLtypeComplexDash&>(*m_dashes[i]).m_value =
          std::get<double>(memento.m_dashes[i]);
  }
  sumLength();
}

CLtypeComplexDashSeqMemento::CLtypeComplexDashSeqMemento(const CLtypeComplexDashSeq& dashes) {
  m_dashes.reserve(static_cast<std::size_t>(dashes.GetNoDashes()));
  for (int i = 0; i < dashes.GetNoDashes(); ++i) {
    if (const TEXT_3D* text = dashes[i]->GetText())
      m_dashes.emplace_back(*text);
    else
      m_dashes.emplace_back(dashes[i]->GetValue());
  }
}

bool CLtypeComplexDashSeqMemento::operator==(const CLtypeComplexDashSeq& dashes) const {
  if (m_dashes.size() != static_cast<std::size_t>(dashes.GetNoDashes())) return false;
  for (int i = 0; i < dashes.GetNoDashes(); ++i) {
    const auto& kept = m_dashes[static_cast<std::size_t>(i)];
    const TEXT_3D* text = std::get_if<TEXT_3D>(&kept);
    if ((text != nullptr) != dashes[i]->IsText()) return false;
    if (text ? *text != *dashes[i]->GetText() : std::get<double>(kept) != dashes[i]->GetValue())
      return false;
  }
  return true;
}
