#include "dxf/keep/inlineheights.h"

#include <string>
#include <string_view>
#include <vector>

#include "files/number.h"

namespace vek0::detail {
namespace {

bool isOfNumber(char c) { return (c >= '0' && c <= '9') || c == '.' || c == '-' || c == '+'; }

/// A text that is divided among pairs, while it is copied with other heights.
class HeightScaler {
 public:
  explicit HeightScaler(double factor) : m_factor(factor) {}

  void addPart(std::string_view part) {
    m_text += part;
    m_ends.push_back(m_text.size());
  }

  /// The parts with scaled heights; a height that is divided belongs to the part in which it
  /// begins.
  std::vector<std::string> scaled() {
    m_parts.assign(m_ends.size(), {});
    for (std::size_t i = 0; i < m_text.size();) {
      const std::size_t end = endOfHeight(i);
      if (end > i) {
        const double height = parseDouble(std::string_view(m_text).substr(i + 2)).value;
        partAt(i) += "\\H" + shortestText(height * m_factor);
        i = end;
        continue;
      }
      // The character after a backslash is copied with it, because it may be a backslash.
      if (m_text[i] == '\\' && i + 1 < m_text.size()) copy(i++);
      copy(i++);
    }
    return std::move(m_parts);
  }

 private:
  // Of the number of an absolute height that begins there; else `begin`.
  std::size_t endOfHeight(std::size_t begin) const {
    if (m_text.compare(begin, 2, "\\H") != 0) return begin;
    std::size_t end = begin + 2;
    while (end < m_text.size() && isOfNumber(m_text[end])) ++end;
    return end < m_text.size() && m_text[end] == ';' && end > begin + 2 ? end : begin;
  }

  void copy(std::size_t index) { partAt(index) += m_text[index]; }

  // Asked in ascending order.
  std::string& partAt(std::size_t index) {
    while (m_ends[m_part] <= index) ++m_part;
    return m_parts[m_part];
  }

  double m_factor;
  std::string m_text;
  std::vector<std::size_t> m_ends;
  std::vector<std::string> m_parts;
  std::size_t m_part = 0;
};

}  // namespace

void scaleInlineHeights(RecordMapper& mapper, long part, long last) {
  const double factor = mapper.plane().scale();
  if (factor == 1) return;
  SourceRecord& record = mapper.record();
  std::vector<std::size_t> indices;
  HeightScaler scaler(factor);
  for (std::size_t i = 1; i < record.pairs.size(); ++i) {
    const long code = record.pairs[i].code;
    if (code == kEmbeddedCode || code >= kExtendedCode) break;
    if (code != part && code != last) continue;
    indices.push_back(i);
    scaler.addPart(record.pairs[i].value);
  }
  const std::vector<std::string> parts = scaler.scaled();
  for (std::size_t i = 0; i < parts.size(); ++i) record.setText(indices[i], parts[i]);
}

}  // namespace vek0::detail
