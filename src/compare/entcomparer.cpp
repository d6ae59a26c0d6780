#include "compare/entcomparer.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "vek0core/entities/entattrib.h"

namespace vek0::detail {
namespace {

constexpr int kDeepestPrivateBlock = 32;

// Without the noise below the tolerance.
PNT_3D tidied(const PNT_3D& p, double tolerance) {
  constexpr double finest = 1e-12;
  const double perUnit = std::pow(10, std::ceil(-std::log10(std::max(tolerance, finest))));
  const auto rounded = [perUnit](double value) {
    const double scaled = value * perUnit;
    constexpr double exact = 4e15;  // greater numbers have no digits behind the point
    return std::fabs(scaled) < exact ? std::round(scaled) / perUnit : value;
  };
  return PNT_3D(rounded(p.x), rounded(p.y), rounded(p.z));
}

}  // namespace

EntComparer::EntComparer(const Closeness& closeness, SharedIds& ids, std::size_t effort)
    : m_closeness(closeness), m_ids(ids), m_figures(closeness), m_effort(effort) {}

ENT_CHANGE EntComparer::compare(const CEnt& before, const CEnt& after) {
  ENT_CHANGE change;
  change.before = &before;
  change.after = &after;
  m_figures.before.read(before);
  m_figures.after.read(after);
  compareProperties(before, after, change);
  compareShapes(m_figures, change);
  return change;
}

bool EntComparer::hasSameAnchor(const CEnt& before, const CEnt& after) {
  m_figures.before.read(before);
  m_figures.after.read(after);
  const std::vector<PNT_3D>&was = m_figures.before.points, &is = m_figures.after.points;
  if (was.empty() || is.empty()) return false;
  return isNear(was[0].x, is[0].x) && isNear(was[0].y, is[0].y) && isNear(was[0].z, is[0].z);
}

void EntComparer::compareProperties(const CEnt& before, const CEnt& after, ENT_CHANGE& change) {
  const ENT_TRAITS &was = before.getTraits(), &is = after.getTraits();
  const auto note = [&](EntAspect aspect, bool isSame) {
    if (!isSame) change.add(aspect);
  };
  const auto areClose = [](double a, double b) {
    constexpr double precision = 1e-9;
    return std::fabs(a - b) <= precision * std::max(std::fabs(a), std::fabs(b));
  };
  note(EntAspect::Layer, m_ids.layers(Side::Before, before.getLayer()) ==
                             m_ids.layers(Side::After, after.getLayer()));
  note(EntAspect::Linetype, m_ids.ltypes(Side::Before, before.getLtype()) ==
                                m_ids.ltypes(Side::After, after.getLtype()));
  note(EntAspect::Color, was.hasTrueColor() || is.hasTrueColor()
                             ? was.trueColor == is.trueColor
                             : before.getColor() == after.getColor());
  note(EntAspect::Lineweight, was.lineweight == is.lineweight);
  note(EntAspect::LinetypeScale, areClose(was.ltypeScale, is.ltypeScale));
  note(EntAspect::Transparency, was.opacity == is.opacity);
  note(EntAspect::Visible, was.isVisible == is.isVisible);
  note(EntAspect::Thickness, isNear(was.thickness, is.thickness));
}

void EntComparer::compareShapes(const Figures& figures, ENT_CHANGE& change) {
  const EntFigure &was = figures.before, &is = figures.after;
  if (was.texts.value() != is.texts.value()) change.add(EntAspect::Text);
  if (!hasSameStyles(was, is)) change.add(EntAspect::Style);
  if (was.family.value() != is.family.value() || !areNear(was.families, is.families))
    change.add(EntAspect::Pattern);
  if (was.words.value() != is.words.value() || was.points.size() != is.points.size() ||
      !areNear(was.lengths, is.lengths))
    change.add(EntAspect::Geometry);
  else
    comparePoints(figures, change);
  compareAttribs(figures, change);
  if (!hasSameBlocks(was, is)) change.add(EntAspect::Block);
}

void EntComparer::comparePoints(const Figures& figures, ENT_CHANGE& change) const {
  const std::vector<PNT_3D>&was = figures.before.points, &is = figures.after.points;
  const auto areShifted = [&](const PNT_3D& by, double room) {
    for (std::size_t i = 0; i < was.size(); ++i) {
      const PNT_3D off = is[i] - was[i] - by;
      const bool isClose =
          std::fabs(off.x) <= room && std::fabs(off.y) <= room && std::fabs(off.z) <= room;
      if (!isClose) return false;
    }
    return true;
  };
  const double tolerance = m_closeness.tolerance;
  if (areShifted(PNT_3D(0, 0, 0), tolerance)) return;
  change.add(EntAspect::Geometry);
  // Both the first point and the others may be off.
  const PNT_3D by = is[0] - was[0];
  if (areShifted(by, 2 * tolerance)) change.by = tidied(by, tolerance);
}

// Attributes have the coordinates of the block, so they do not notice moves.
void EntComparer::compareAttribs(const Figures& figures, ENT_CHANGE& change) {
  const auto &was = figures.before.attribs, &is = figures.after.attribs;
  if (was.size() != is.size()) return change.add(EntAspect::Attributes);
  if (was.empty()) return;
  Figures attribs(m_closeness);
  for (std::size_t i = 0; i < was.size(); ++i) {
    attribs.before.read(*was[i]);
    attribs.after.read(*is[i]);
    ENT_CHANGE own;
    compareProperties(*was[i], *is[i], own);
    compareShapes(attribs, own);
    const bool isSameTag = was[i]->getTag().EqualsIgnoreCase(is[i]->getTag());
    if (isSameTag && own.has(EntAspect::Text)) change.add(EntAspect::Text);
    own.aspects &= ~(std::uint32_t{1} << static_cast<int>(EntAspect::Text));
    if (!isSameTag || own.aspects != 0) change.add(EntAspect::Attributes);
  }
}

bool EntComparer::hasSameStyles(const EntFigure& before, const EntFigure& after) {
  return std::equal(before.styles.begin(), before.styles.end(), after.styles.begin(),
                    after.styles.end(), [this](const CStyle* was, const CStyle* is) {
                      return m_ids.styles(Side::Before, was) == m_ids.styles(Side::After, is);
                    });
}

bool EntComparer::hasSameBlocks(const EntFigure& before, const EntFigure& after) {
  // Comparing content reads other figures.
  const std::vector<const CBlock*> was = before.blocks, is = after.blocks;
  return std::equal(was.begin(), was.end(), is.begin(), is.end(),
                    [this](const CBlock* a, const CBlock* b) { return isSameBlock(a, b); });
}

bool EntComparer::isSameBlock(const CBlock* before, const CBlock* after) {
  if (!before || !after) return before == after;
  if (m_ids.blocks(Side::Before, before) == m_ids.blocks(Side::After, after) && !isPrivate(*before))
    return true;
  if (!isPrivate(*before) || !isPrivate(*after)) return false;
  const auto known = m_sameContent.find({before, after});
  if (known != m_sameContent.end()) return known->second;
  if (m_depth == kDeepestPrivateBlock || before->size() > m_effort)
    return m_ids.blocks(Side::Before, before) == m_ids.blocks(Side::After, after);
  ++m_depth;
  const bool isSame = isSameContent(*before, *after);
  --m_depth;
  return m_sameContent[{before, after}] = isSame;
}

bool EntComparer::isSameContent(const CBlock& before, const CBlock& after) {
  if (before.size() != after.size() || before.size() > m_effort) return false;
  m_effort -= before.size();
  for (unsigned i = 0; i < before.size(); ++i)
    if (compare(*before[i], *after[i]).aspects != 0) return false;
  return true;
}

bool EntComparer::isNear(double a, double b) const {
  return a == b || std::fabs(a - b) <= m_closeness.tolerance;
}

bool EntComparer::areNear(const std::vector<double>& a, const std::vector<double>& b) const {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [this](double x, double y) { return isNear(x, y); });
}

}  // namespace vek0::detail
