#pragma once

#include "vek0core/export.h"
#include "vek0core/geometry/pnt.h"

class CLayer;
class CLayer0;
class CLtype;
class CLtypeByLayer;
class CStyle;

/// The settings of a drawing other than table items. Each drawing has one instance.
///
/// Values are not validated: the upper limit may be below the lower one, the scale may be 0, and
/// the items, which are borrowed, may be null. A copy refers to the same items.
class VEK0_API CDataVariables {
 public:
  /// Upper right corner of the drawing limits. New drawings have an A3 sheet in
  /// millimeters, 420 by 297.
  const PNT_2D& getLimMax() const { return m_limMax; }
  void setLimMax(const PNT_2D& p) { m_limMax = p; }
  /// Lower left corner of the drawing limits.
  const PNT_2D& getLimMin() const { return m_limMin; }
  void setLimMin(const PNT_2D& p) { m_limMin = p; }

  /// The point by which other drawings insert this one (`$INSBASE`). Stored only.
  const PNT_3D& getInsertionBase() const { return m_insertionBase; }
  void setInsertionBase(const PNT_3D& p) { m_insertionBase = p; }

  /// Scale factor of all linetypes.
  double getLtypeScale() const { return m_ltypeScale; }
  void setLtypeScale(double scale) { m_ltypeScale = scale; }
  /// Width of new polylines, drawing units.
  double getPLineWid() const { return m_plineWid; }
  void setPLineWid(double width) { m_plineWid = width; }
  /// Direction of the user's angle 0, in radians.
  double getAngDir() const { return m_angDir; }
  void setAngDir(double angleRad) { m_angDir = angleRad; }

  /// Default properties of new entities.
  CLayer* getCurLayer() const { return m_curLayer; }
  void setCurLayer(CLayer* layer) { m_curLayer = layer; }
  CLtype* getCurLtype() const { return m_curLtype; }
  void setCurLtype(CLtype* ltype) { m_curLtype = ltype; }
  CStyle* getCurStyle() const { return m_curStyle; }
  void setCurStyle(CStyle* style) { m_curStyle = style; }
  short getCurColor() const { return m_curColor; }
  void setCurColor(short color) { m_curColor = color; }

  /// Linetype scale that an editor gives to new entities (`$CELTSCALE`), besides that of all
  /// linetypes. Stored only: the functions that create entities do not use it.
  double getCurLtypeScale() const { return m_curLtypeScale; }
  void setCurLtypeScale(double scale) { m_curLtypeScale = scale; }

  /// Display of angles: 0 decimal degrees, 2 gradians, 3 radians.
  short getAngFormat() const { return m_angFormat; }
  void setAngFormat(short format) { m_angFormat = format; }
  bool isOrtho() const { return m_ortho; }
  void setOrtho(bool on) { m_ortho = on; }
  /// Whether linetypes continue across the vertices of new polylines.
  bool isPLineGen() const { return m_plineGen; }
  void setPLineGen(bool on) { m_plineGen = on; }
  bool isAngClockWise() const { return m_angClockWise; }
  void setAngClockWise(bool on) { m_angClockWise = on; }

  /// Display of points (`$PDMODE`): 0 a dot, 1 nothing, 2 a plus, 3 a cross, 4 an upward stroke;
  /// plus 32 for a circle, plus 64 for a square.
  short getPointMode() const { return m_pointMode; }
  void setPointMode(short mode) { m_pointMode = mode; }
  /// Display size of points (`$PDSIZE`): in drawing units if positive, in percent of the view
  /// height if negative; 0 means 5 percent.
  double getPointSize() const { return m_pointSize; }
  void setPointSize(double size) { m_pointSize = size; }

  static constexpr short kUsualLineweight = 25;  ///< of drawings that state no default
  /// The lineweight that "default" means (`$LWDEFAULT`), in hundredths of a millimeter.
  short getDefaultLineweight() const { return m_defaultLineweight; }
  void setDefaultLineweight(short weight) { m_defaultLineweight = weight; }
  /// Whether dashes in viewports are as long as those on their sheet (`$PSLTSCALE`).
  bool isPaperLtypeScale() const { return m_paperLtypeScale; }
  void setPaperLtypeScale(bool on) { m_paperLtypeScale = on; }
  /// Whether screens show lineweights (`$LWDISPLAY`).
  bool isLineweightShown() const { return m_lineweightShown; }
  void setLineweightShown(bool on) { m_lineweightShown = on; }
  /// The drawing unit as the number that files state (`$INSUNITS`): 0 none, 1 inch, 2 foot, 4
  /// millimeter, 5 centimeter, 6 meter and so on.
  short getUnits() const { return m_units; }
  void setUnits(short units) { m_units = units; }

 private:
  friend class CData;
  CDataVariables(CLayer0& layer0, CLtypeByLayer& byLayer);

  PNT_2D m_limMax{420.0, 297.0};
  PNT_2D m_limMin{0.0, 0.0};
  PNT_3D m_insertionBase{0.0, 0.0, 0.0};
  double m_ltypeScale = 1.0;
  double m_plineWid = 0.0;
  double m_angDir = 0.0;
  CLayer* m_curLayer;
  CLtype* m_curLtype;
  CStyle* m_curStyle = nullptr;
  short m_curColor = 256;
  short m_angFormat = 0;
  bool m_ortho = false;
  bool m_plineGen = false;
  bool m_angClockWise = false;
  short m_pointMode = 0;
  double m_pointSize = 0.0;
  double m_curLtypeScale = 1.0;
  short m_defaultLineweight = kUsualLineweight;
  short m_units = 0;
  bool m_lineweightShown = false;
  bool m_paperLtypeScale = true;
};
