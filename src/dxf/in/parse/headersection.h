#pragma once

#include "dxf/in/convert/dimstyles.h"
#include "dxf/in/parse/sectioninput.h"
#include "vek0core/geometry/pnt.h"
#include "vek0core/geometry/rect.h"

namespace vek0::detail {

/// Reads the HEADER section: passes variables to the drawing and keeps what the reading itself
/// needs.
class HeaderSection {
 public:
  /// Both are borrowed.
  HeaderSection(SectionInput& in, DimStyles& dimStyles) : m_in(in), m_dimStyles(dimStyles) {}

  /// Reads the pairs after the section's name, up to its end.
  void read();
  // One variable with a value of that kind; unknown ones are ignored.
  void takeString(const zim::WString& name, const zim::WString& value);
  void takeReals(const zim::WString& name, const double (&value)[3]);
  void takeInteger(const zim::WString& name, long value);
  /// Makes the layer, linetype and style that the header names current, as far as they exist. The
  /// tables are complete only at the end of the file.
  void takeCurrentItems();

  /// The number that chooses the version loader.
  short getVersion() const { return m_version; }
  const zim::WString& getVersionName() const { return m_versionName; }
  const zim::WString& getCodePageName() const { return m_codePageName; }
  long getUnits() const { return m_units; }
  long getMeasurement() const { return m_measurement; }
  /// Whether the drawing is known to be in metric units.
  bool isMetric() const { return m_measurement == 1 || m_units > kFeet; }
  /// `$HANDSEED`; 0 or less if it states none.
  Handle getHandleSeed() const { return m_handleSeed; }
  const PNT_3D& getInsertionBase() const { return m_insertionBase; }
  /// Limits of the current sheet; empty unless the header states both corners in order.
  RECT_2D getSheetLimits() const;

 private:
  struct Value;

  void readVariable();
  void collect(long code, Value& value);
  void take(const zim::WString& name, const Value& value);
  void dropVariable(const zim::WString& name);
  void takeVersion(const zim::WString& name);
  void takeCodePage();
  void noteSetting(ReportCode code, const zim::WString& name);

  SectionInput& m_in;
  DimStyles& m_dimStyles;
  zim::WString m_curLtype = u"ByLayer", m_curLayer = u"0", m_curStyle = u"Standard";
  short m_version = 0;  // 0 none seen, 1 R12 ... 4 AC1015
  zim::WString m_versionName, m_codePageName;
  static constexpr long kFeet = 2;
  long m_units = 0, m_measurement = -1;
  Handle m_handleSeed = 0;
  PNT_3D m_insertionBase{0, 0, 0};
  PNT_2D m_sheetMin{0, 0}, m_sheetMax{0, 0};
};

}  // namespace vek0::detail
