#pragma once

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"

class CWndVptMemento;

/// Maps the plane of a view (world units) to the pixels of a device area and back.
///
/// Pixel (0, 0) shows the upper left corner of the window, which is the visible part of the world;
/// device y grows downwards. A device of n pixels spans n - 1 steps from its first to its last
/// pixel, in `set` and in `zoom` alike.
///
/// Until the device has more than one pixel in each direction, the scales are 0: pixels and
/// distances in pixels are then meaningless, and mapping them back yields the window's minimum and
/// 0. An operation that would make the window or a scale non-finite, or a scale non-positive, has
/// no effect. Cheap to copy.
class VEK0_API CWndVpt {
 public:
  /// `ratio` is scale x divided by scale y, 1 for equal scales; any value that is not positive and
  /// finite counts as 1.
  explicit CWndVpt(double ratio);

  double getViewX(double x) const { return m_scaleX * x + m_offsetX; }
  double getViewY(double y) const { return m_offsetY - m_scaleY * y; }
  int getViewXInt(double x) const { return iround(getViewX(x)); }
  int getViewYInt(double y) const { return iround(getViewY(y)); }
  double getViewXDistance(double d) const { return m_scaleX * d; }
  double getViewYDistance(double d) const { return m_scaleY * d; }
  double getWorldX(double vx) const;
  double getWorldY(double vy) const;
  double getWorldXDistance(double d) const { return m_scaleX == 0 ? 0 : d / m_scaleX; }
  double getWorldYDistance(double d) const { return m_scaleY == 0 ? 0 : d / m_scaleY; }

  const RECT_2D& getWindow() const { return m_window; }
  const PNT_2D& GetWindowCenter() const { return m_center; }
  /// The window's corners.
  void get(double& x1, double& y1, double& x2, double& y2) const { m_window.get(x1, y1, x2, y2); }
  /// The device in pixels; -1 while it is unknown.
  void get(long& width, long& height) const {
    width = m_width;
    height = m_height;
  }
  double getRatioFactor() const { return m_ratio; }
  /// Pixels per world unit.
  void getScaleFactor(double& sx, double& sy) const {
    sx = m_scaleX;
    sy = m_scaleY;
  }
  /// World units per pixel along x; 0 while the scale is 0.
  double GetPixelSize() const { return getWorldXDistance(1); }
  bool isIsotropic() const { return m_ratio == 1.0; }

  /// Makes the rectangle visible at the largest scale that shows all of it; the window is extended
  /// about its center to fit the device's proportions. A side of length 0 becomes 1 world unit
  /// long. On an unknown or one-pixel device, the window is the rectangle, to be fitted by the next
  /// `resize`.
  void set(double x1, double y1, double x2, double y2);
  /// The same; an empty rectangle has no effect.
  void set(const RECT_2D& rect);
  /// Sets the ratio of the scales, keeping scale x and the center.
  void setScaleFactor(double ratio);
  /// Magnifies by `f` about the window's center; 2 halves the window's size.
  void zoom(double f);
  /// Moves the window by world units; its content moves in the opposite direction on the device.
  void pan(double dx, double dy);
  /// Sets the size of the device. Returns false, with no effect, if it is unchanged. If the device
  /// had a size before, scales and center are kept and the window follows; otherwise the window is
  /// fitted to the new size. A device of at most one pixel in a direction leaves the window
  /// unchanged, so that a view survives being hidden.
  bool resize(long width, long height);

  /// The caller owns the snapshot; null when out of memory.
  CWndVptMemento* createMemento() const;
  /// Restores center, scales and the exact window; on a device of another size, the window is
  /// computed from center and scales.
  void setMemento(const CWndVptMemento& memento);

 protected:
  /// Computes the offsets of the mapping from window and scales.
  void DoRealizePosition();
  /// Computes window and offsets from center, scales and device; the window is unchanged if a scale
  /// is 0 or the device has no extent.
  void DoCalcExtUsingCenterAndScale();

 private:
  friend class CWndVptMemento;

  bool hasDevice() const { return m_width > 1 && m_height > 1; }
  bool isSound() const;
  void fit(const RECT_2D& rect);
  bool fitScales(double worldWidth, double worldHeight);
  void adopt(const CWndVpt& next);

  RECT_2D m_window{0, 0, 1, 1};
  PNT_2D m_center{0.5, 0.5};
  double m_scaleX = 0, m_scaleY = 0;
  double m_ratio;
  long m_width = -1, m_height = -1;
  double m_offsetX = 0, m_offsetY = 0;
};

/// Snapshot of a viewport, for returning to an earlier view.
class VEK0_API CWndVptMemento {
 public:
  virtual ~CWndVptMemento() = default;
  CWndVptMemento(const CWndVptMemento&) = default;
  CWndVptMemento& operator=(const CWndVptMemento&) = default;

  /// Equal windows, centers and scales, each exactly.
  bool operator==(const CWndVpt& viewport) const;
  bool operator!=(const CWndVpt& viewport) const { return !(*this == viewport); }

 protected:
  friend class CWndVpt;
  explicit CWndVptMemento(const CWndVpt& viewport) : m_state(viewport) {}

 private:
  CWndVpt m_state;
};
