// Maps between a window of the drawing and a device. Changes are computed in a copy, which is
// adopted only if it is sound, so that no input makes the view unusable.
#include "vek0core/view/wndvpt.h"
#include "vek0core/geometry/finite.h"

#include <cmath>
#include <new>

using vek0::detail::isFinite;

namespace {

constexpr double kDefaultRatio = 1;
constexpr double kPointMargin = 0.5;  // world units on each side of a window of zero extent

bool isPositive(double value) { return value > 0 && std::isfinite(value); }

void widen(double& low, double& high) {
  if (low != high) return;
  low -= kPointMargin;
  high += kPointMargin;
}

}  // namespace

CWndVpt::CWndVpt(double ratio) : m_ratio(isPositive(ratio) ? ratio : kDefaultRatio) {}

double CWndVpt::getWorldX(double vx) const {
  return m_scaleX == 0 ? m_window.min.x : (vx - m_offsetX) / m_scaleX;
}

double CWndVpt::getWorldY(double vy) const {
  // Device coordinates grow downwards.
  return m_scaleY == 0 ? m_window.min.y : -(vy - m_offsetY) / m_scaleY;
}

void CWndVpt::DoRealizePosition() {
  m_offsetX = -m_scaleX * m_window.min.x;
  m_offsetY = m_scaleY * m_window.max.y;
}

void CWndVpt::DoCalcExtUsingCenterAndScale() {
  if (hasDevice() && m_scaleX > 0 && m_scaleY > 0) {
    // The first and the last pixel lie on opposite sides of the window, hence one step less than
    // pixels.
    const double halfWidth = static_cast<double>(m_width - 1) / (2 * m_scaleX);
    const double halfHeight = static_cast<double>(m_height - 1) / (2 * m_scaleY);
    m_window.min.set(m_center.x - halfWidth, m_center.y - halfHeight);
    m_window.max.set(m_center.x + halfWidth, m_center.y + halfHeight);
  }
  DoRealizePosition();
}

// A window far from the origin whose extent was lost to rounding is unsound too: no scale could be
// computed for it.
bool CWndVpt::isSound() const {
  const bool scaled = isPositive(m_scaleX) && isPositive(m_scaleY);
  return isFinite(m_window) && isFinite(m_center) && m_window.min.x < m_window.max.x &&
         m_window.min.y < m_window.max.y && std::isfinite(m_window.max.x - m_window.min.x) &&
         std::isfinite(m_window.max.y - m_window.min.y) &&
         (scaled || (m_scaleX == 0 && m_scaleY == 0)) && std::isfinite(m_offsetX) &&
         std::isfinite(m_offsetY);
}

void CWndVpt::adopt(const CWndVpt& next) {
  if (next.isSound()) *this = next;
}

bool CWndVpt::fitScales(double worldWidth, double worldHeight) {
  const double fitX = static_cast<double>(m_width - 1) / worldWidth;
  const double fitY = static_cast<double>(m_height - 1) / worldHeight * m_ratio;
  m_scaleX = fitX < fitY ? fitX : fitY;
  m_scaleY = m_scaleX / m_ratio;
  return fitX < fitY;
}

// The side that determines the scale keeps its exact limits; the other is computed, and rounding
// never makes it shorter than the rectangle.
void CWndVpt::fit(const RECT_2D& rect) {
  m_window = rect;
  widen(m_window.min.x, m_window.max.x);
  widen(m_window.min.y, m_window.max.y);
  m_center.set((m_window.min.x + m_window.max.x) / 2, (m_window.min.y + m_window.max.y) / 2);
  m_scaleX = m_scaleY = 0;
  if (hasDevice()) {
    const RECT_2D asked = m_window;
    const bool byWidth = fitScales(asked.max.x - asked.min.x, asked.max.y - asked.min.y);
    DoCalcExtUsingCenterAndScale();
    if (byWidth) {
      m_window.min.x = asked.min.x;
      m_window.max.x = asked.max.x;
    } else {
      m_window.min.y = asked.min.y;
      m_window.max.y = asked.max.y;
    }
    m_window.updateRegion(asked);
  }
  DoRealizePosition();
}

void CWndVpt::set(double x1, double y1, double x2, double y2) {
  if (!isFinite(x1, y1) || !isFinite(x2, y2)) return;
  CWndVpt next(*this);
  next.fit(RECT_2D(x1, y1, x2, y2));
  adopt(next);
}

void CWndVpt::set(const RECT_2D& rect) {
  if (rect.validRegion()) set(rect.min.x, rect.min.y, rect.max.x, rect.max.y);
}

void CWndVpt::setScaleFactor(double ratio) {
  if (!isPositive(ratio)) return;
  CWndVpt next(*this);
  next.m_ratio = ratio;
  next.m_scaleY = next.m_scaleX / ratio;
  next.DoCalcExtUsingCenterAndScale();
  adopt(next);
}

void CWndVpt::zoom(double f) {
  if (!isPositive(f) || m_scaleX == 0) return;
  CWndVpt next(*this);
  next.m_scaleX *= f;
  next.m_scaleY *= f;
  next.DoCalcExtUsingCenterAndScale();
  adopt(next);
}

void CWndVpt::pan(double dx, double dy) {
  CWndVpt next(*this);
  const PNT_2D delta(dx, dy);
  next.m_window.min = m_window.min + delta;
  next.m_window.max = m_window.max + delta;
  next.m_center = m_center + delta;
  next.DoRealizePosition();
  adopt(next);
}

bool CWndVpt::resize(long width, long height) {
  if (width == m_width && height == m_height) return false;
  const bool keepsScale =
      m_width > 0 && m_height > 0 && width > 0 && height > 0 && m_scaleX > 0 && m_scaleY > 0;
  m_width = width;
  m_height = height;
  CWndVpt next(*this);
  if (keepsScale) {
    next.DoCalcExtUsingCenterAndScale();
  } else {
    next.fit(m_window);
  }
  adopt(next);
  return true;
}

CWndVptMemento* CWndVpt::createMemento() const { return new (std::nothrow) CWndVptMemento(*this); }

void CWndVpt::setMemento(const CWndVptMemento& memento) {
  CWndVpt next(memento.m_state);
  // The device may have been resized since, and keeps its size.
  const bool sameDevice = next.m_width == m_width && next.m_height == m_height;
  next.m_width = m_width;
  next.m_height = m_height;
  if (!sameDevice) {
    if (next.m_scaleX == 0) {
      next.fit(next.m_window);
    } else {
      next.DoCalcExtUsingCenterAndScale();
    }
  }
  adopt(next);
}

bool CWndVptMemento::operator==(const CWndVpt& viewport) const {
  return m_state.m_window == viewport.m_window && m_state.m_center == viewport.m_center &&
         m_state.m_scaleX == viewport.m_scaleX && m_state.m_scaleY == viewport.m_scaleY;
}
