#include "dxf/in/parse/droppedobjects.h"

#include <algorithm>

#include "files/number.h"
#include "vek0core/files/report.h"
#include "zim0lang/casefold.h"

namespace vek0::detail {
namespace {

// Whether it is "Model", or "Layout1" and so on, which every file has.
bool isUsualName(const zim::WString& name) {
  constexpr std::u16string_view model = u"MODEL", sheet = u"LAYOUT";
  const std::u16string_view text = name.view();
  const std::u16string_view number = text.substr(std::min(sheet.size(), text.size()));
  return zim::equalsIgnoreCase(text, model) ||
         (zim::equalsIgnoreCase(text.substr(0, sheet.size()), sheet) &&
          number.find_first_not_of(u"0123456789") == std::u16string_view::npos);
}

}  // namespace

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
    if (m_report && (m_sheets.count(layout.sheet) != 0 || !isUsualName(layout.name)))
      m_report->add(ReportCode::LayoutDropped, layout.line, layout.name);
}

}  // namespace vek0::detail
