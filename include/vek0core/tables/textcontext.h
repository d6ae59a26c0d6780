#pragma once

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

/// A string and its proportions: height in drawing units, oblique and rotation in
/// radians, width scale as a factor (negative: written backward).
class VEK0_API CTextContext {
 public:
  CTextContext() = default;
  CTextContext(double height, double oblique, double widthScale, double rotate,
               const zim::WString& string)
      : m_height(height),
        m_oblique(oblique),
        m_widthScale(widthScale),
        m_rotate(rotate),
        m_string(string) {}

  /// Exact, case-sensitive.
  bool operator==(const CTextContext& c) const {
    return m_height == c.m_height && m_rotate == c.m_rotate && m_widthScale == c.m_widthScale &&
           m_oblique == c.m_oblique && m_string == c.m_string;
  }
  bool operator!=(const CTextContext& c) const { return !(*this == c); }

  double getHeight() const { return m_height; }
  void setHeight(double height) { m_height = height; }
  double getOblique() const { return m_oblique; }
  void setOblique(double oblique) { m_oblique = oblique; }
  double getWidthScale() const { return m_widthScale; }
  void setWidthScale(double scale) { m_widthScale = scale; }
  double getRotate() const { return m_rotate; }
  void setRotate(double rotate) { m_rotate = rotate; }
  const zim::WString& getString() const { return m_string; }
  void setString(const zim::WString& string) { m_string = string; }

 private:
  double m_height = 0;
  double m_oblique = 0;
  double m_widthScale = 1;
  double m_rotate = 0;
  zim::WString m_string;
};
