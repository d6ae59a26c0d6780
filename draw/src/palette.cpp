#include "vek0core/tables/palette.h"

#include "vek0draw/draw.h"

// Chooses black or white, whichever has more contrast with the background.
RGB_COLOR paletteColor(int index, const RGB_COLOR& background) {
  constexpr int foreground = 7, last = 255;
  if (index >= 1 && index <= last && index != foreground) return paletteColor(index);
  return brightness(background) < 128 ? RGB_COLOR{255, 255, 255} : RGB_COLOR{0, 0, 0};
}

double brightness(const RGB_COLOR& color) {
  return 0.299 * color.r + 0.587 * color.g + 0.114 * color.b;
}
