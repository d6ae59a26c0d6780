#pragma once

#include <array>

#include "vek0core/export.h"
#include "zim0lang/wstring.h"

/// Color numbers with a special meaning.
inline constexpr short kColorByBlock = 0, kColorByLayer = 256;

/// Display names of color numbers: 0 is BYBLOCK, 1 to 255 are color indexes, 256 is BYLAYER. The
/// names of 0 to 7 and 256 come from the message texts; the others are decimal numbers.
class VEK0_API CColors {
 public:
  static CColors& getInstance();
  /// Destroys the instance; the next `getInstance` creates a new one with the texts of the loader
  /// installed at that time.
  static void shutdown();

  /// Name of a color. For 0 to 256, every call returns the same object; for any other number, its
  /// decimal form in a thread-local object that the next such call overwrites.
  const zim::WString& operator[](int color);

 private:
  CColors();

  std::array<zim::WString, 257> m_names;
};
