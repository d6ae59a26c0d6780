#pragma once

#include <array>

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

/// Color numbers with a meaning of their own.
inline constexpr short kColorByBlock = 0, kColorByLayer = 256;

/// Display names of color numbers: 0 is BYBLOCK, 1 to 255 the color index, 256
/// BYLAYER. Those of 0 to 7 and 256 come from the message texts, the others are the
/// number in decimal.
class VEK0_API CColors {
 public:
  static CColors& getInstance();
  /// Destroys the instance; the next `getInstance` makes a new one with the texts of
  /// the loader that is installed then.
  static void shutdown();

  /// Name of a color. The same object at every call for 0 to 256; any other number
  /// gives its decimal form in one that the next such call of the thread overwrites.
  const zim::WString& operator[](int color);

 private:
  CColors();

  std::array<zim::WString, 257> m_names;
};
