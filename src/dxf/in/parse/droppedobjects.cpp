#include "dxf/in/parse/droppedobjects.h"

#include "dxf/layoutname.h"
#include "files/number.h"
#include "vek0core/files/report.h"

namespace vek0::detail {
void DroppedObjects::readRecord() {
  if (m_lexer.isKeyword("LAYOUT")) return readLayout();
  if (m_lexer.isKeyword("GROUP") && m_report)
    m_report->add(ReportCode::GroupDropped, m_lexer.getLine());
  while (m_lexer.read() != 0 && !m_err.HasAnError()) {
  }
}

// The plot settings come first and use the same codes.
void DroppedObjects::readLayout() {
  Layout layout{{}, 0, m_lexer.getLine()};
  bool isLayout = true;
  for (long code = m_lexer.read(); code != 0 && !m_err.HasAnError(); code = m_lexer.read()) {
    if (code == 100) isLayout = !m_lexer.isKeyword("ACDBPLOTSETTINGS");
    if (isLayout && code == 1) layout.name = m_lexer.getText();
    if (isLayout && code == 330) layout.sheet = parseHex(m_lexer.getBytes());
  }
  m_layouts.push_back(std::move(layout));
}

void DroppedObjects::tell() const {
  for (const Layout& layout : m_layouts)
    if (m_report && (m_sheets.count(layout.sheet) != 0 || !isUsualLayoutName(layout.name.view())))
      m_report->add(ReportCode::LayoutDropped, layout.line, layout.name);
}

}  // namespace vek0::detail
