// Mathematical functions for WebAssembly, Windows and 32-bit ARM. Those of their C libraries are
// off by the last digit in up to a sixth of all cases, where those of other platforms hardly ever
// are; drawings would be saved with other digits. Here, sines are summed in pairs of doubles, and
// the other functions are corrected by them: one step of Newton's method from the library's result.
#include <cmath>
#include <cstdint>
#include <cstring>

extern "C" {
double __real_sin(double);
double __real_cos(double);
double __real_tan(double);
double __real_atan(double);
double __real_atan2(double, double);
double __real_asin(double);
double __real_acos(double);
double __real_hypot(double, double);
double __real_fma(double, double, double);
double __wrap_sin(double);
double __wrap_cos(double);
void __wrap_sincos(double, double*, double*);
double __wrap_tan(double);
double __wrap_atan(double);
double __wrap_atan2(double, double);
double __wrap_asin(double);
double __wrap_acos(double);
double __wrap_hypot(double, double);
double __wrap_fma(double, double, double);
}

namespace {

// The unevaluated sum of two doubles, the second below the last digit of the first.
struct Pair {
  double high, low = 0;

  double rounded() const { return high + low; }
};

Pair normal(double a, double b) {
  const double sum = a + b;
  return {sum, b - (sum - a)};
}

Pair sumOf(double a, double b) {
  const double sum = a + b, part = sum - a;
  return {sum, (a - (sum - part)) + (b - part)};
}

Pair productOf(double a, double b) {
  constexpr double splitter = 134217729;  // 2^27 + 1
  const auto split = [](double x) {
    const double t = splitter * x, high = t - (t - x);
    return Pair{high, x - high};
  };
  const double product = a * b;
  const Pair x = split(a), y = split(b);
  return {product, ((x.high * y.high - product) + x.high * y.low + x.low * y.high) + x.low * y.low};
}

Pair operator+(const Pair& a, const Pair& b) {
  const Pair sum = sumOf(a.high, b.high);
  return normal(sum.high, sum.low + a.low + b.low);
}

Pair operator*(const Pair& a, const Pair& b) {
  const Pair product = productOf(a.high, b.high);
  return normal(product.high, product.low + (a.high * b.low + a.low * b.high));
}

Pair operator-(const Pair& a) { return {-a.high, -a.low}; }

Pair operator/(const Pair& a, const Pair& b) {
  const double first = a.high / b.high;
  const Pair rest = a + -(b * Pair{first});
  return normal(first, rest.high / b.high);
}

constexpr double kMostReduced = 1e5;  // beyond, the quotient by a right angle is too long
constexpr int kTerms = 12, kLeading = 5;

struct SineCosine {
  Pair sine, cosine;
};

// The reciprocals of n(n+1) and n(n-1) for n = 2, 4, 6 ...
struct Factors {
  Factors() {
    for (int i = 1; i <= kTerms; ++i) {
      const double n = 2 * i;
      sine[i] = Pair{1} / Pair{n * (n + 1)};
      cosine[i] = Pair{1} / Pair{n * (n - 1)};
    }
  }
  Pair sine[kTerms + 1]{}, cosine[kTerms + 1]{};
};

// Of an angle up to an eighth of a turn, by their power series. Doubles suffice for the terms whose
// share of the sum is below 2^-28.
SineCosine seriesAt(const Pair& x) {
  static const Factors factors;
  const Pair square = x * x;
  double sineTail = 0, cosineTail = 0;
  for (int i = kTerms; i > kLeading; --i) {
    sineTail = 1 - square.high * sineTail * factors.sine[i].high;
    cosineTail = 1 - square.high * cosineTail * factors.cosine[i].high;
  }
  Pair sine{sineTail}, cosine{cosineTail};
  for (int i = kLeading; i > 0; --i) {
    sine = Pair{1} + -(square * sine * factors.sine[i]);
    cosine = Pair{1} + -(square * cosine * factors.cosine[i]);
  }
  return {x * sine, cosine};
}

SineCosine sineCosineOf(double x) {
  constexpr double perRight = 0.63661977236758134308;
  const double rights = std::nearbyint(x * perRight);
  // A right angle in three parts; products with the first are exact enough as pairs.
  const Pair rest =
      (Pair{x} + -productOf(rights, 1.5707963267948966)) +
      (-productOf(rights, 6.123233995736766e-17) + Pair{rights * 1.4973849048591833e-33});
  const SineCosine at = seriesAt(rest);
  switch (static_cast<long>(rights) & 3) {
    case 0:
      return at;
    case 1:
      return {at.cosine, -at.sine};
    case 2:
      return {-at.sine, -at.cosine};
    default:
      return {-at.cosine, at.sine};
  }
}

// The direction of (x, y), from one that is nearly that.
double corrected(double angle, double y, double x) {
  constexpr double least = 1e-130, most = 1e130;
  const auto isPlain = [](double v) { return std::fabs(v) > least && std::fabs(v) < most; };
  if (!isPlain(x) || !isPlain(y) || std::fabs(angle) < 1e-100) return angle;
  const SineCosine at = sineCosineOf(angle);
  const Pair off = Pair{y} * at.cosine + -(Pair{x} * at.sine);
  return angle + off.high / (x * at.cosine.high + y * at.sine.high);
}

// A sum whose last bit is set if digits are lost, so that rounding it again is as if it was exact.
double oddSumOf(double a, double b) {
  const Pair sum = sumOf(a, b);
  std::uint64_t bits;
  std::memcpy(&bits, &sum.high, sizeof bits);
  if (sum.low == 0 || (bits & 1) != 0) return sum.high;
  return std::nextafter(sum.high, std::copysign(HUGE_VAL, sum.low));
}

bool isReduced(double x) { return std::fabs(x) < kMostReduced; }

}  // namespace

double __wrap_sin(double x) {
  if (!isReduced(x) || std::fabs(x) < 1e-150) return __real_sin(x);
  return sineCosineOf(x).sine.rounded();
}

double __wrap_cos(double x) {
  return isReduced(x) ? sineCosineOf(x).cosine.rounded() : __real_cos(x);
}

// Compilers call it for both.
void __wrap_sincos(double x, double* sine, double* cosine) {
  *sine = __wrap_sin(x);
  *cosine = __wrap_cos(x);
}

double __wrap_tan(double x) {
  if (!isReduced(x) || std::fabs(x) < 1e-150) return __real_tan(x);
  const SineCosine at = sineCosineOf(x);
  return (at.sine / at.cosine).rounded();
}

// The library's atan2 calls its atan, which is this one.
double __wrap_atan(double x) { return corrected(__real_atan(x), x, 1); }

double __wrap_atan2(double y, double x) { return corrected(__real_atan2(y, x), y, x); }

double __wrap_asin(double x) {
  const double angle = __real_asin(x);
  constexpr double steep = 0.999999, least = 1e-100;  // beyond, one step does not suffice
  if (!(std::fabs(x) < steep) || std::fabs(x) < least) return angle;
  const SineCosine at = sineCosineOf(angle);
  return angle + (Pair{x} + -at.sine).high / at.cosine.high;
}

double __wrap_acos(double x) {
  const double angle = __real_acos(x);
  constexpr double steep = 0.999999;
  if (!(std::fabs(x) < steep)) return angle;
  const SineCosine at = sineCosineOf(angle);
  return angle + (at.cosine + Pair{-x}).high / at.sine.high;
}

double __wrap_hypot(double x, double y) {
  constexpr double least = 1e-130, most = 1e130;
  const double larger = std::fmax(std::fabs(x), std::fabs(y));
  if (!(larger > least && larger < most)) return __real_hypot(x, y);
  const Pair square = productOf(x, x) + productOf(y, y);
  const double root = std::sqrt(square.high);
  return root + (square + -productOf(root, root)).high / (2 * root);
}

// Boldo and Melquiond, Emulation of FMA and correctly rounded sums, 2008.
double __wrap_fma(double x, double y, double z) {
  constexpr double least = 1e-130, most = 1e130;
  const double product = std::fabs(x * y);
  if (!(product > least && product < most && std::fabs(z) < most)) return __real_fma(x, y, z);
  const Pair exact = productOf(x, y);
  const Pair low = sumOf(z, exact.low), high = sumOf(exact.high, low.high);
  return high.high + oddSumOf(low.low, high.low);
}
