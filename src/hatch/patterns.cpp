#include "hatch/patterns.h"

#include <initializer_list>

// The rows are those of the common public pattern definition files, with the same columns: angle,
// base point, offset along and across the line, dashes; in inches, but millimeters for the ISO
// patterns. Irrational lengths keep the digits of the definitions, even where the last ones look
// wrong, so that the lines coincide with those of other programs.
//
// Angles are degrees * 0.01745329251994 to thirteen decimals, as literals rather than computed, so
// that the output has the same last digits everywhere.

namespace {

constexpr double kDeg7_5 = 0.1308996938996;
constexpr double kDeg21 = 0.3665191429187;
constexpr double kDeg32_5 = 0.567232006898;
constexpr double kDeg37_5 = 0.6544984694978;
constexpr double kDeg42_5 = 0.7417649320974;
constexpr double kDeg45 = 0.7853981633973;
constexpr double kDeg46_1842 = 0.8060663523994;
constexpr double kDeg50 = 0.872664625997;
constexpr double kDeg60 = 1.0471975511964;
constexpr double kDeg71_4514 = 1.2470621851592;
constexpr double kDeg90 = 1.5707963267946;
constexpr double kDeg96_6356 = 1.6866093946399;
constexpr double kDeg100_4514 = 1.7532076682375;
constexpr double kDeg120 = 2.0943951023928;
constexpr double kDeg135 = 2.3561944901919;
constexpr double kDeg180 = 3.1415926535892;
constexpr double kDeg240 = 4.1887902047856;
constexpr double kDeg300 = 5.235987755982;
constexpr double kDeg326 = 5.6897733615004;
constexpr double kDeg351_1842 = 6.1293205709811;
constexpr double kDeg355 = 6.1959188445787;

constexpr HATCH_LINE family(double angle, double x0, double y0, double dx, double dy,
                            std::initializer_list<double> dashes = {}) {
  HATCH_LINE line{angle, x0, y0, dx, dy, {}, 0};
  for (const double dash : dashes) line.dash[line.numDash++] = dash;
  return line;
}

template <std::int32_t count>
constexpr HATCH_TYPE pattern(const zim::Char* name, const zim::Char* description,
                             const HATCH_LINE (&lines)[count]) {
  return {name, description, lines, count};
}

constexpr HATCH_LINE kAngle[] = {
    family(0, 0, 0, 0, 0.275, {0.2, -0.075}),
    family(kDeg90, 0, 0, 0, 0.275, {0.2, -0.075}),
};
constexpr HATCH_LINE kAnsi31[] = {
    family(kDeg45, 0, 0, 0, 0.125),
};
constexpr HATCH_LINE kAnsi32[] = {
    family(kDeg45, 0, 0, 0, 0.375),
    family(kDeg45, 0.176776695, 0, 0, 0.375),
};
constexpr HATCH_LINE kAnsi33[] = {
    family(kDeg45, 0, 0, 0, 0.25),
    family(kDeg45, 0.176776695, 0, 0, 0.25, {0.125, -0.0625}),
};
constexpr HATCH_LINE kAnsi34[] = {
    family(kDeg45, 0, 0, 0, 0.75),
    family(kDeg45, 0.176776695, 0, 0, 0.75),
    family(kDeg45, 0.353553391, 0, 0, 0.75),
    family(kDeg45, 0.530330086, 0, 0, 0.75),
};
constexpr HATCH_LINE kAnsi35[] = {
    family(kDeg45, 0, 0, 0, 0.25),
    family(kDeg45, 0.176776695, 0, 0, 0.25, {0.3125, -0.0625, 0, -0.0625}),
};
constexpr HATCH_LINE kAnsi36[] = {
    family(kDeg45, 0, 0, 0.21875, 0.125, {0.3125, -0.0625, 0, -0.0625}),
};
constexpr HATCH_LINE kAnsi37[] = {
    family(kDeg45, 0, 0, 0, 0.125),
    family(kDeg135, 0, 0, 0, 0.125),
};
constexpr HATCH_LINE kAnsi38[] = {
    family(kDeg45, 0, 0, 0, 0.125),
    family(kDeg135, 0, 0, 0.25, 0.125, {0.3125, -0.1875}),
};
constexpr HATCH_LINE kArB816[] = {
    family(0, 0, 0, 0, 8),
    family(kDeg90, 0, 0, 8, 8, {8, -8}),
};
constexpr HATCH_LINE kArB816c[] = {
    family(0, 0, 0, 8, 8, {15.625, -0.375}),
    family(0, -8, 0.375, 8, 8, {15.625, -0.375}),
    family(kDeg90, 0, 0, 8, 8, {-8.375, 7.625}),
    family(kDeg90, -0.375, 0, 8, 8, {-8.375, 7.625}),
};
constexpr HATCH_LINE kArB88[] = {
    family(0, 0, 0, 0, 8),
    family(kDeg90, 0, 0, 8, 4, {8, -8}),
};
constexpr HATCH_LINE kArBrelm[] = {
    family(0, 0, 0, 0, 5.334, {7.625, -0.375}),
    family(0, 0, 2.25, 0, 5.334, {7.625, -0.375}),
    family(0, 2, 2.667, 0, 5.334, {3.625, -0.375}),
    family(0, 2, 4.917, 0, 5.334, {3.625, -0.375}),
    family(kDeg90, 0, 0, 0, 8, {2.25, -3.084}),
    family(kDeg90, -0.375, 0, 0, 8, {2.25, -3.084}),
    family(kDeg90, 2, 2.667, 0, 4, {2.25, -3.084}),
    family(kDeg90, 1.625, 2.667, 0, 4, {2.25, -3.084}),
};
constexpr HATCH_LINE kArBrstd[] = {
    family(0, 0, 0, 0, 2.667),
    family(kDeg90, 0, 0, 2.667, 4, {2.667, -2.667}),
};
constexpr HATCH_LINE kArConc[] = {
    family(kDeg50, 0, 0, 4.12975034, -5.89789472, {0.75, -8.25}),
    family(kDeg355, 0, 0, -2.03781207, 7.3723684, {0.6, -6.6}),
    family(kDeg100_4514, 0.5977168, -0.0522934, 5.7305871, -6.9397673, {0.6374019, -7.01142112}),
    family(kDeg46_1842, 0, 2, 6.19462551, -8.84684208, {1.125, -12.375}),
    family(kDeg96_6356, 0.88936745, 1.86206693, 8.59588071, -10.40965104, {0.95610288, -10.51713}),
    family(kDeg351_1842, 0, 2, 7.74328189, 11.0585526, {0.9, -9.9}),
    family(kDeg21, 1, 1.5, 4.12975034, -5.89789472, {0.75, -8.25}),
    family(kDeg326, 1, 1.5, -2.03781207, 7.3723684, {0.6, -6.6}),
    family(kDeg71_4514, 1.49742233, 1.16448394, 5.7305871, -6.9397673, {0.6374019, -7.01142112}),
    family(kDeg37_5, 0, 0, 2.123, 2.567, {0, -6.52, 0, -6.7, 0, -6.625}),
    family(kDeg7_5, 0, 0, 3.123, 3.567, {0, -3.82, 0, -6.37, 0, -2.525}),
    family(-kDeg32_5, -2.23, 0, 4.6234, 2.678, {0, -2.5, 0, -7.8, 0, -10.35}),
    family(-kDeg42_5, -3.23, 0, 3.6234, 4.678, {0, -3.25, 0, -5.18, 0, -7.35}),
};
constexpr HATCH_LINE kArHbone[] = {
    family(kDeg45, 0, 0, 4, 4, {12, -4}),
    family(kDeg135, 2.82842713, 2.82842713, 4, -4, {12, -4}),
};
constexpr HATCH_LINE kArParq1[] = {
    // upright boards
    family(kDeg90, 0, 0, 12, 12, {12, -12}),
    family(kDeg90, 2, 0, 12, 12, {12, -12}),
    family(kDeg90, 4, 0, 12, 12, {12, -12}),
    family(kDeg90, 6, 0, 12, 12, {12, -12}),
    family(kDeg90, 8, 0, 12, 12, {12, -12}),
    family(kDeg90, 10, 0, 12, 12, {12, -12}),
    family(kDeg90, 12, 0, 12, 12, {12, -12}),
    // lying boards
    family(0, 0, 12, 12, -12, {12, -12}),
    family(0, 0, 14, 12, -12, {12, -12}),
    family(0, 0, 16, 12, -12, {12, -12}),
    family(0, 0, 18, 12, -12, {12, -12}),
    family(0, 0, 20, 12, -12, {12, -12}),
    family(0, 0, 22, 12, -12, {12, -12}),
    family(0, 0, 24, 12, -12, {12, -12}),
};
constexpr HATCH_LINE kArRroof[] = {
    family(0, 0, 0, 2.2, 1, {15, -2, 5, -1}),
    family(0, 1.33, 0.5, -1, 1.33, {3, -0.33, 6, -0.75}),
    family(0, 0.5, 0.85, 5.2, 0.67, {8, -1.4, 4, -1}),
};
constexpr HATCH_LINE kArRshke[] = {
    family(0, 0, 0, 25.5, 12, {6, -5, 7, -3, 9, -4}),
    family(0, 6, 0.5, 25.5, 12, {5, -19, 4, -6}),
    family(0, 18, -0.75, 25.5, 12, {3, -31}),
    family(kDeg90, 0, 0, 12, 8.5, {11.5, -36.5}),
    family(kDeg90, 6, 0, 12, 8.5, {11.25, -36.75}),
    family(kDeg90, 11, 0, 12, 8.5, {10.5, -37.5}),
    family(kDeg90, 18, -0.75, 12, 8.5, {11.5, -36.5}),
    family(kDeg90, 21, -0.75, 12, 8.5, {11.5, -36.5}),
    family(kDeg90, 30, 0, 12, 8.5, {11, -37}),
};
constexpr HATCH_LINE kArSand[] = {
    family(kDeg37_5, 0, 0, 1.123, 1.567, {0, -1.52, 0, -1.7, 0, -1.625}),
    family(kDeg7_5, 0, 0, 2.123, 2.567, {0, -0.82, 0, -1.37, 0, -0.525}),
    family(-kDeg32_5, -1.23, 0, 2.6234, 1.678, {0, -0.5, 0, -1.8, 0, -2.35}),
    family(-kDeg42_5, -1.23, 0, 1.6234, 2.678, {0, -0.25, 0, -1.18, 0, -1.35}),
};
constexpr HATCH_LINE kBox[] = {
    family(kDeg90, 0, 0, 0, 1),
    family(kDeg90, 0.25, 0, 0, 1),
    family(0, 0, 0, 0, 1, {-0.25, 0.25}),
    family(0, 0, 0.25, 0, 1, {-0.25, 0.25}),
    family(0, 0, 0.5, 0, 1, {0.25, -0.25}),
    family(0, 0, 0.75, 0, 1, {0.25, -0.25}),
    family(kDeg90, 0.5, 0, 0, 1, {0.25, -0.25}),
    family(kDeg90, 0.75, 0, 0, 1, {0.25, -0.25}),
};
constexpr HATCH_LINE kBrass[] = {
    family(0, 0, 0, 0, 0.25),
    family(0, 0, 0.125, 0, 0.25, {0.125, -0.0625}),
};
constexpr HATCH_LINE kBrick[] = {
    family(0, 0, 0, 0, 0.25),
    family(kDeg90, 0, 0, 0, 0.5, {0.25, -0.25}),
    family(kDeg90, 0.25, 0, 0, 0.5, {-0.25, 0.25}),
};
constexpr HATCH_LINE kBrstone[] = {
    family(0, 0, 0, 0, 0.33),
    family(kDeg90, 0.9, 0, 0.33, 0.5, {0.33, -0.33}),
    family(kDeg90, 0.8, 0, 0.33, 0.5, {0.33, -0.33}),
    family(0, 0.9, 0.055, 0.5, 0.33, {-0.9, 0.1}),
    family(0, 0.9, 0.11, 0.5, 0.33, {-0.9, 0.1}),
    family(0, 0.9, 0.165, 0.5, 0.33, {-0.9, 0.1}),
    family(0, 0.9, 0.22, 0.5, 0.33, {-0.9, 0.1}),
    family(0, 0.9, 0.275, 0.5, 0.33, {-0.9, 0.1}),
};
constexpr HATCH_LINE kClay[] = {
    family(0, 0, 0, 0, 0.1875),
    family(0, 0, 0.03125, 0, 0.1875),
    family(0, 0, 0.0625, 0, 0.1875),
    family(0, 0, 0.125, 0, 0.1875, {0.1875, -0.125}),
};
constexpr HATCH_LINE kCork[] = {
    family(0, 0, 0, 0, 0.125),
    family(kDeg135, 0.0625, -0.0625, 0, 0.35355339, {0.176776696, -0.176776696}),
    family(kDeg135, 0.09375, -0.0625, 0, 0.35355339, {0.176776696, -0.176776696}),
    family(kDeg135, 0.125, -0.0625, 0, 0.35355339, {0.176776696, -0.176776696}),
};
constexpr HATCH_LINE kCross[] = {
    family(0, 0, 0, 0.25, 0.25, {0.125, -0.375}),
    family(kDeg90, 0.0625, -0.0625, 0.25, 0.25, {0.125, -0.375}),
};
constexpr HATCH_LINE kDash[] = {
    family(0, 0, 0, 0.125, 0.125, {0.125, -0.125}),
};
constexpr HATCH_LINE kDolmit[] = {
    family(0, 0, 0, 0, 0.25),
    // Spacing and gap intentionally differ in the sixth digit.
    family(kDeg45, 0, 0, 0, 0.70710678, {0.35355339, -0.70710768}),
};
constexpr HATCH_LINE kDots[] = {
    family(0, 0, 0, 0.03125, 0.0625, {0, -0.0625}),
};
constexpr HATCH_LINE kEarth[] = {
    family(0, 0, 0, 0.25, 0.25, {0.25, -0.25}),
    family(0, 0, 0.09375, 0.25, 0.25, {0.25, -0.25}),
    family(0, 0, 0.1875, 0.25, 0.25, {0.25, -0.25}),
    family(kDeg90, 0.03125, 0.21875, 0.25, 0.25, {0.25, -0.25}),
    family(kDeg90, 0.125, 0.21875, 0.25, 0.25, {0.25, -0.25}),
    family(kDeg90, 0.21875, 0.21875, 0.25, 0.25, {0.25, -0.25}),
};
constexpr HATCH_LINE kEscher[] = {
    family(kDeg60, 0, 0, -0.6, 1.039230484, {1.1, -0.1}),
    family(kDeg180, 0, 0, -0.6, 1.039230484, {1.1, -0.1}),
    family(kDeg300, 0, 0, 0.6, 1.039230484, {1.1, -0.1}),
    family(kDeg60, 0.1, 0, -0.6, 1.039230484, {0.2, -1}),
    family(kDeg300, 0.1, 0, 0.6, 1.039230484, {0.2, -1}),
    family(kDeg60, -0.05, 0.08660254, -0.6, 1.039230484, {0.2, -1}),
    family(kDeg180, -0.05, 0.08660254, -0.6, 1.039230484, {0.2, -1}),
    family(kDeg300, -0.05, -0.08660254, 0.6, 1.039230484, {0.2, -1}),
    family(kDeg180, -0.05, -0.08660254, -0.6, 1.039230484, {0.2, -1}),
    family(kDeg60, -0.4, 0, -0.6, 1.039230484, {0.2, -1}),
    family(kDeg300, -0.4, 0, 0.6, 1.039230484, {0.2, -1}),
    family(kDeg60, 0.2, -0.346410161, -0.6, 1.039230484, {0.2, -1}),
    family(kDeg180, 0.2, -0.346410161, -0.6, 1.039230484, {0.2, -1}),
    family(kDeg300, 0.2, 0.346410161, 0.6, 1.039230484, {0.2, -1}),
    family(kDeg180, 0.2, 0.346410161, -0.6, 1.039230484, {0.2, -1}),
    family(0, 0.2, 0.173205081, -0.6, 1.039230484, {0.7, -0.5}),
    family(0, 0.2, -0.173205081, -0.6, 1.039230484, {0.7, -0.5}),
    family(kDeg120, 0.05, 0.259807621, 0.6, 1.039230484, {0.7, -0.5}),
    family(kDeg120, -0.25, 0.08660254, 0.6, 1.039230484, {0.7, -0.5}),
    family(kDeg240, -0.25, -0.08660254, 0.6, 1.039230484, {0.7, -0.5}),
    family(kDeg240, 0.05, -0.259807621, 0.6, 1.039230484, {0.7, -0.5}),
};
constexpr HATCH_LINE kFlex[] = {
    family(0, 0, 0, 0, 0.25, {0.25, -0.25}),
    family(kDeg45, 0.25, 0, 0.176776695, 0.176776695, {0.0625, -0.228553391, 0.0625, -0.353553391}),
};
constexpr HATCH_LINE kGrass[] = {
    family(kDeg90, 0, 0, 0.707106781, 0.707106781, {0.1875, -1.226713562}),
    family(kDeg45, 0, 0, 0, 1, {0.1875, -0.8125}),
    family(kDeg135, 0, 0, 0, 1, {0.1875, -0.8125}),
};
constexpr HATCH_LINE kGrate[] = {
    family(0, 0, 0, 0, 0.03125),
    family(kDeg90, 0, 0, 0, 0.125),
};
constexpr HATCH_LINE kHex[] = {
    family(0, 0, 0, 0, 0.216506351, {0.125, -0.25}),
    family(kDeg120, 0, 0, 0, 0.216506351, {0.125, -0.25}),
    family(kDeg60, 0.125, 0, 0, 0.216506351, {0.125, -0.25}),
};
constexpr HATCH_LINE kHoney[] = {
    family(0, 0, 0, 0.1875, 0.108253175, {0.125, -0.25}),
    family(kDeg120, 0, 0, 0.1875, 0.108253175, {0.125, -0.25}),
    family(kDeg60, 0, 0, 0.1875, 0.108253175, {-0.25, 0.125}),
};
constexpr HATCH_LINE kHound[] = {
    family(0, 0, 0, 0.25, 0.0625, {1, -0.5}),
    family(kDeg90, 0, 0, -0.25, 0.0625, {1, -0.5}),
};
constexpr HATCH_LINE kInsul[] = {
    family(0, 0, 0, 0, 0.375),
    family(0, 0, 0.125, 0, 0.375, {0.125, -0.125}),
    family(0, 0, 0.25, 0, 0.375, {0.125, -0.125}),
};
constexpr HATCH_LINE kAcadIso02w100[] = {
    family(0, 0, 0, 0, 5, {12, -3}),
};
constexpr HATCH_LINE kAcadIso03w100[] = {
    family(0, 0, 0, 0, 5, {12, -18}),
};
constexpr HATCH_LINE kAcadIso04w100[] = {
    family(0, 0, 0, 0, 5, {24, -3, 0.5, -3}),
};
constexpr HATCH_LINE kAcadIso05w100[] = {
    family(0, 0, 0, 0, 5, {24, -3, 0.5, -3, 0.5, -3}),
};
constexpr HATCH_LINE kAcadIso06w100[] = {
    family(0, 0, 0, 0, 5, {24, -3, 0.5, -3, 0.5, -6.5}),
    family(0, 0, 0, 0, 5, {-34, 0.5, -3}),
};
constexpr HATCH_LINE kAcadIso07w100[] = {
    family(0, 0, 0, 0, 5, {0.5, -3}),
};
constexpr HATCH_LINE kAcadIso08w100[] = {
    family(0, 0, 0, 0, 5, {24, -3, 6, -3}),
};
constexpr HATCH_LINE kAcadIso09w100[] = {
    family(0, 0, 0, 0, 5, {24, -3, 6, -3, 6, -3}),
};
constexpr HATCH_LINE kAcadIso10w100[] = {
    family(0, 0, 0, 0, 5, {12, -3, 0.5, -3}),
};
constexpr HATCH_LINE kAcadIso11w100[] = {
    family(0, 0, 0, 0, 5, {12, -3, 12, -3, 0.5, -3}),
};
constexpr HATCH_LINE kAcadIso12w100[] = {
    family(0, 0, 0, 0, 5, {12, -3, 0.5, -3, 0.5, -3}),
};
constexpr HATCH_LINE kAcadIso13w100[] = {
    family(0, 0, 0, 0, 5, {12, -3, 12, -3, 0.5, -6.5}),
    family(0, 0, 0, 0, 5, {-33.5, 0.5, -3}),
};
constexpr HATCH_LINE kAcadIso14w100[] = {
    family(0, 0, 0, 0, 5, {12, -3, 0.5, -3, 0.5, -6.5}),
    family(0, 0, 0, 0, 5, {-22, 0.5, -3}),
};
constexpr HATCH_LINE kAcadIso15w100[] = {
    family(0, 0, 0, 0, 5, {12, -3, 12, -3, 0.5, -10}),
    // The last 0 is not in the public definition; it falls on a dash of the first family.
    family(0, 0, 0, 0, 5, {-33.5, 0.5, -3, 0.5, -3, 0}),
};
constexpr HATCH_LINE kLine[] = {
    family(0, 0, 0, 0, 0.125),
};
constexpr HATCH_LINE kMudst[] = {
    family(0, 0, 0, 0.5, 0.25, {0.25, -0.25, 0, -0.25, 0, -0.25}),
};
constexpr HATCH_LINE kNet[] = {
    family(0, 0, 0, 0, 0.125),
    family(kDeg90, 0, 0, 0, 0.125),
};
constexpr HATCH_LINE kNet3[] = {
    family(0, 0, 0, 0, 0.125),
    family(kDeg60, 0, 0, 0, 0.125),
    family(kDeg120, 0, 0, 0, 0.125),
};
constexpr HATCH_LINE kPlast[] = {
    family(0, 0, 0, 0, 0.25),
    family(0, 0, 0.03125, 0, 0.25),
    family(0, 0, 0.0625, 0, 0.25),
};
constexpr HATCH_LINE kPlasti[] = {
    family(0, 0, 0, 0, 0.25),
    family(0, 0, 0.03125, 0, 0.25),
    family(0, 0, 0.0625, 0, 0.25),
    family(0, 0, 0.15625, 0, 0.25),
};
constexpr HATCH_LINE kSacncr[] = {
    family(kDeg45, 0, 0, 0, 0.09375),
    family(kDeg45, 0.066291261, 0, 0, 0.09375, {0, -0.09375}),
};
constexpr HATCH_LINE kSquare[] = {
    family(0, 0, 0, 0, 0.125, {0.125, -0.125}),
    family(kDeg90, 0, 0, 0, 0.125, {0.125, -0.125}),
};
constexpr HATCH_LINE kStars[] = {
    family(0, 0, 0, 0, 0.216506351, {0.125, -0.125}),
    family(kDeg60, 0, 0, 0, 0.216506351, {0.125, -0.125}),
    family(kDeg120, 0.0625, 0.108253176, 0, 0.216506351, {0.125, -0.125}),
};
constexpr HATCH_LINE kSteel[] = {
    family(kDeg45, 0, 0, 0, 0.125),
    family(kDeg45, 0, 0.0625, 0, 0.125),
};
constexpr HATCH_LINE kSwamp[] = {
    family(0, 0, 0, 0.5, 0.866025403, {0.125, -0.875}),
    family(kDeg90, 0.0625, 0, 0.866025403, 0.5, {0.0625, -1.669550806}),
    family(kDeg90, 0.078125, 0, 0.866025403, 0.5, {0.05, -1.682050806}),
    family(kDeg90, 0.046875, 0, 0.866025403, 0.5, {0.05, -1.682050806}),
    family(kDeg60, 0.09375, 0, 0.5, 0.866025403, {0.04, -0.96}),
    family(kDeg120, 0.03125, 0, 0.5, 0.866025403, {0.04, -0.96}),
};
constexpr HATCH_LINE kTrans[] = {
    family(0, 0, 0, 0, 0.25),
    family(0, 0, 0.125, 0, 0.25, {0.125, -0.125}),
};
constexpr HATCH_LINE kTriang[] = {
    family(kDeg60, 0, 0, 0.1875, 0.324759526, {0.1875, -0.1875}),
    family(kDeg120, 0, 0, 0.1875, 0.324759526, {0.1875, -0.1875}),
    family(0, -0.09375, 0.162379763, 0.1875, 0.324759526, {0.1875, -0.1875}),
};
constexpr HATCH_LINE kZigzag[] = {
    family(0, 0, 0, 0.125, 0.125, {0.125, -0.125}),
    family(kDeg90, 0.125, 0, 0.125, 0.125, {0.125, -0.125}),
};
constexpr HATCH_LINE kCatasto1[] = {
    family(kDeg45, 0, 0, 0.125, 0.125, {0.375, -0.125}),
};

}  // namespace

namespace vek0::detail {

constinit const HATCH_TYPE kPatterns[kNoPatterns] = {
    pattern(u"ANGLE", u"Angle steel", kAngle),
    pattern(u"ANSI31", u"ANSI Iron, Brick, Stone masonry", kAnsi31),
    pattern(u"ANSI32", u"ANSI Steel", kAnsi32),
    pattern(u"ANSI33", u"ANSI Bronze, Brass, Copper", kAnsi33),
    pattern(u"ANSI34", u"ANSI Plastic, Rubber", kAnsi34),
    pattern(u"ANSI35", u"ANSI Fire brick, Refractory material", kAnsi35),
    pattern(u"ANSI36", u"ANSI Marble, Slate, Glass", kAnsi36),
    pattern(u"ANSI37", u"ANSI Lead, Zinc, Magnesium, Sound/Heat/Elec Insulation", kAnsi37),
    pattern(u"ANSI38", u"ANSI Aluminum", kAnsi38),
    pattern(u"AR-B816", u"8x16 Block elevation stretcher bond", kArB816),
    pattern(u"AR-B816C", u"8x16 Block elevation stretcher bond with mortar joints", kArB816c),
    pattern(u"AR-B88", u"8x8 Block elevation stretcher bond", kArB88),
    pattern(u"AR-BRELM", u"Standard brick elevation english bond with mortar joints", kArBrelm),
    pattern(u"AR-BRSTD", u"Standard brick elevation stretcher bond", kArBrstd),
    pattern(u"AR-CONC", u"Random dot and stone pattern", kArConc),
    pattern(u"AR-HBONE", u"Standard brick herringbone pattern @ 45 degrees", kArHbone),
    pattern(u"AR-PARQ1", u"2x12 Parquet flooring: pattern of 12x12", kArParq1),
    pattern(u"AR-RROOF", u"Roof shingle texture", kArRroof),
    pattern(u"AR-RSHKE", u"Roof wood shake texture", kArRshke),
    pattern(u"AR-SAND", u"Random dot pattern", kArSand),
    pattern(u"BOX", u"Box steel", kBox),
    pattern(u"BRASS", u"Brass material", kBrass),
    pattern(u"BRICK", u"Brick or masonry-type surface", kBrick),
    pattern(u"BRSTONE", u"Brick and stone", kBrstone),
    pattern(u"CLAY", u"Clay material", kClay),
    pattern(u"CORK", u"Cork material", kCork),
    pattern(u"CROSS", u"A series of crosses", kCross),
    pattern(u"DASH", u"Dashed lines", kDash),
    pattern(u"DOLMIT", u"Geological rock layering", kDolmit),
    pattern(u"DOTS", u"A series of dots", kDots),
    pattern(u"EARTH", u"Earth or ground (subterranean)", kEarth),
    pattern(u"ESCHER", u"Escher pattern", kEscher),
    pattern(u"FLEX", u"Flexible material", kFlex),
    pattern(u"GRASS", u"Grass area", kGrass),
    pattern(u"GRATE", u"Grated area", kGrate),
    pattern(u"HEX", u"Hexagons", kHex),
    pattern(u"HONEY", u"Honeycomb pattern", kHoney),
    pattern(u"HOUND", u"Houndstooth check", kHound),
    pattern(u"INSUL", u"Insulation material", kInsul),
    pattern(u"ACAD_ISO02W100", u"dashed line", kAcadIso02w100),
    pattern(u"ACAD_ISO03W100", u"dashed space line", kAcadIso03w100),
    pattern(u"ACAD_ISO04W100", u"long dashed dotted line", kAcadIso04w100),
    pattern(u"ACAD_ISO05W100", u"long dashed double dotted line", kAcadIso05w100),
    pattern(u"ACAD_ISO06W100", u"long dashed triplicate dotted line", kAcadIso06w100),
    pattern(u"ACAD_ISO07W100", u"dotted line", kAcadIso07w100),
    pattern(u"ACAD_ISO08W100", u"long dashed short dashed line", kAcadIso08w100),
    pattern(u"ACAD_ISO09W100", u"long dashed double-short-dashed line", kAcadIso09w100),
    pattern(u"ACAD_ISO10W100", u"dashed dotted line", kAcadIso10w100),
    pattern(u"ACAD_ISO11W100", u"double-dashed dotted line", kAcadIso11w100),
    pattern(u"ACAD_ISO12W100", u"dashed double-dotted line", kAcadIso12w100),
    pattern(u"ACAD_ISO13W100", u"double-dashed double-dotted line", kAcadIso13w100),
    pattern(u"ACAD_ISO14W100", u"dashed triplicate-dotted line", kAcadIso14w100),
    pattern(u"ACAD_ISO15W100", u"double-dashed triplicate-dotted line", kAcadIso15w100),
    pattern(u"LINE", u"Parallel horizontal lines", kLine),
    pattern(u"MUDST", u"Mud and sand", kMudst),
    pattern(u"NET", u"Horizontal / vertical grid", kNet),
    pattern(u"NET3", u"Network pattern 0-60-120", kNet3),
    pattern(u"PLAST", u"Plastic material", kPlast),
    pattern(u"PLASTI", u"Plastic material", kPlasti),
    pattern(u"SACNCR", u"Concrete", kSacncr),
    pattern(u"SQUARE", u"Small aligned squares", kSquare),
    pattern(u"STARS", u"Star of David", kStars),
    pattern(u"STEEL", u"Steel material", kSteel),
    pattern(u"SWAMP", u"Swampy area", kSwamp),
    pattern(u"TRANS", u"Heat transfer material", kTrans),
    pattern(u"TRIANG", u"Equilateral triangles", kTriang),
    pattern(u"ZIGZAG", u"Staircase effect", kZigzag),
    pattern(u"CATASTO1", u"Catasto1", kCatasto1),
};

}  // namespace vek0::detail
