#include "dxf/in/parse/droppedobjects.h"

#include "dxf/in/parse/layoutobject.h"
#include "dxf/layoutname.h"
#include "vek0core/files/report.h"

namespace vek0::detail {
void DroppedObjects::readRecord() {
  if (m_lexer.isKeyword("LAYOUT")) return readLayout();
  if (m_lexer.isKeyword("GROUP") && m_report)
    m_report->add(ReportCode::GroupDropped, m_lexer.getLine());
  while (m_lexer.read() != 0 && !m_err.HasAnError()) {
  }
}

void DroppedObjects::readLayout() {
  LayoutObject layout;
  layout.read(m_lexer, m_err);
  m_layouts.push_back({layout.name, layout.sheet, layout.line});
}

void DroppedObjects::tell() const {
  for (const Layout& layout : m_layouts)
    if (m_report && (m_sheets.count(layout.sheet) != 0 || !isUsualLayoutName(layout.name.view())))
      m_report->add(ReportCode::LayoutDropped, layout.line, layout.name);
}

}  // namespace vek0::detail
