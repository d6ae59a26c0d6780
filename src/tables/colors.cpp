#include "vek0core/tables/colors.h"

#include <memory>
#include <mutex>
#include <string>

namespace {

constexpr long kFirstText = 10025;  // of color 0; 1 to 7 follow
constexpr long kByLayerText = 10024;
constexpr int kNamed = 8;

std::unique_ptr<CColors>& colors() {
  static std::unique_ptr<CColors> colors;
  return colors;
}

// Two threads may create their first drawings at the same time.
std::mutex& colorsMutex() {
  static std::mutex mutex;
  return mutex;
}

zim::WString decimal(int number) { return zim::WString::fromUtf8(std::to_string(number)); }

}  // namespace

CColors& CColors::getInstance() {
  const std::lock_guard lock(colorsMutex());
  if (!colors()) colors().reset(new CColors);
  return *colors();
}

void CColors::shutdown() {
  const std::lock_guard lock(colorsMutex());
  colors().reset();
}

CColors::CColors() {
  for (int i = 0; i < static_cast<int>(m_names.size()); ++i) {
    zim::WString& name = m_names[static_cast<std::size_t>(i)];
    if (i < kNamed) name.LoadStr(kFirstText + i);
    if (i == kColorByLayer) name.LoadStr(kByLayerText);
    if (name.empty()) name = decimal(i);
  }
}

const zim::WString& CColors::operator[](int color) {
  if (color >= 0 && color <= kColorByLayer) return m_names[static_cast<std::size_t>(color)];
  thread_local zim::WString other;
  return other = decimal(color);
}
