#include <locale>

#include "files/number.h"
#include "support/test.h"

namespace vek0::detail {
namespace {

constexpr unsigned kNumberSeed = 20240607;
constexpr int kRounds = 20000;

std::u16string widen(const std::string& text) { return {text.begin(), text.end()}; }

std::string fixed(double value) {
  char buffer[kFixedRoom];
  return {buffer, formatFixed(buffer, value)};
}

std::string shortest(double value) {
  char buffer[kShortestRoom];
  return {buffer, formatShortest(buffer, value)};
}

// Not every standard library has to_chars of floating-point numbers.
std::string printed(const char* format, int decimals, double value) {
  char buffer[kFixedRoom];
  const int size = std::snprintf(buffer, sizeof buffer, format, decimals, value);
  return {buffer, static_cast<std::size_t>(size)};
}

// Any finite double, with exponents distributed uniformly.
double anyDouble(std::mt19937_64& random) {
  for (;;) {
    const std::uint64_t bits = random();
    double value;
    std::memcpy(&value, &bits, sizeof value);
    if (std::isfinite(value)) return value;
  }
}

// A number as found in drawings: some digits, some of them decimals.
std::string anyDecimal(std::mt19937_64& random) {
  std::string text = random() % 2 ? "-" : "";
  const auto digits = [&](std::uint64_t most) {
    for (auto left = random() % (most + 1); left > 0; --left)
      text += static_cast<char>('0' + random() % 10);
  };
  text += static_cast<char>('0' + random() % 10);
  digits(random() % 8 ? 6 : 40);
  if (random() % 4) text += '.', digits(random() % 8 ? 17 : 60);
  if (random() % 4 == 0) text += 'e' + std::to_string(static_cast<int>(random() % 60) - 30);
  return text;
}

// A decimal halfway between two doubles, or off by one digit far to the right.
std::string anyTie(std::mt19937_64& random) {
  const int drop = static_cast<int>(random() % 10) + 1;
  const std::uint64_t half = std::uint64_t{1} << (drop - 1);
  const std::uint64_t below =
      (random() >> (11 - drop) | std::uint64_t{1} << 63 >> (11 - drop)) & ~(2 * half - 1);
  const std::string beside[] = {"", "." + std::string(random() % 900, '0') + "1"};
  return std::to_string(below + half - random() % 2) + beside[random() % 2];
}

TEST(ParseDouble, KnownTexts) {
  for (const Row& t : rows()) {
    const ParsedDouble narrow = parseDouble(std::string_view(t.text("text")));
    EXPECT_EQ(narrow.value, t.real("value"));
    EXPECT_TRUE(narrow.finite);
    EXPECT_EQ(parseDouble(widen(t.text("text"))).value, t.real("value"));
  }
}

TEST(ParseDouble, WhatIsNoNumberIsNotFinite) {
  for (const char* text :
       {"nan", "NaN", "-nan(0x7)", "inf", "-Infinity", " INF", "1.#QNAN", "1.#INF", "-1.#IND00",
        "1e400", "-1e400", "1e99999999999999999999", "0.001e400",
        "179769313486231580793728971405303415079934132710037826936173778980444968"
        "29276475094664901797758720709633028641669288791094655554785194040e200"}) {
    SCOPED_TRACE(text);
    const ParsedDouble narrow = parseDouble(std::string_view(text));
    EXPECT_FALSE(narrow.finite);
    EXPECT_EQ(narrow.value, 0);
    EXPECT_FALSE(parseDouble(widen(text)).finite);
  }
}

TEST(ParseDouble, AgreesWithTheLibraryOnRandomDecimals) {
  std::mt19937_64 random(kNumberSeed);
  for (int i = 0; i < kRounds; ++i) {
    const std::string text = i % 4 ? anyDecimal(random) : anyTie(random);
    const double expected = std::strtod(text.c_str(), nullptr);
    ASSERT_EQ(parseDouble(std::string_view(text)).value, expected)
        << text << " seed " << kNumberSeed;
    ASSERT_EQ(parseDouble(widen(text + "x")).value, expected) << text << " seed " << kNumberSeed;
  }
}

TEST(ParseLong, LenientAndWithin32Bits) {
  for (const Row& t : rows()) {
    EXPECT_EQ(parseLong(std::string_view(t.text("text"))), t.whole("value"));
    EXPECT_EQ(parseLong(widen(t.text("text"))), t.whole("value"));
  }
}

TEST(ParseHex, AccumulatesUnchecked) {
  for (const Row& t : rows()) {
    EXPECT_EQ(parseHex(std::string_view(t.text("text"))), t.whole<std::uint64_t>("value"))
        << t.text("name");
    EXPECT_EQ(parseHex(widen(t.text("text"))), t.whole<std::uint64_t>("value")) << t.text("name");
  }
}

TEST(FormatFixed, KnownNumbers) {
  for (const Row& t : rows()) EXPECT_EQ(fixed(t.real("value")), t.text("text")) << t.text("name");
}

TEST(FormatFixed, AgreesWithTheLibrary) {
  std::mt19937_64 random(kNumberSeed);
  const auto expected = [](double value) { return printed("%.*f", 6, value); };
  for (int i = 0; i < kRounds; ++i) {
    const double any = anyDouble(random);
    ASSERT_EQ(fixed(any), expected(any)) << "seed " << kNumberSeed;
    const double usual = std::uniform_real_distribution<>(-1e4, 1e4)(random);
    ASSERT_EQ(fixed(usual), expected(usual)) << "seed " << kNumberSeed;
    // Half of the multiples of 2^-7 are ties at the sixth decimal.
    const double tie = std::ldexp(static_cast<double>(random() % 100000), -7);
    ASSERT_EQ(fixed(tie), expected(tie)) << "seed " << kNumberSeed;
    const double tiny = std::ldexp(usual, -static_cast<int>(random() % 80));
    ASSERT_EQ(fixed(tiny), expected(tiny)) << "seed " << kNumberSeed;
  }
  // Decimals that end in 5 are so close to a tie that every bit of the double matters.
  for (int digits = 5; digits < 10'000'000; digits += 10) {
    const double near = digits / 1e7;
    ASSERT_EQ(fixed(near), expected(near));
  }
}

TEST(FormatShortest, KnownNumbers) {
  for (const Row& t : rows()) EXPECT_EQ(shortest(t.real("value")), t.text("text"));
}

void expectShortest(double value) {
  const std::string text = shortest(value);
  SCOPED_TRACE(testing::Message() << text << " seed " << kNumberSeed);
  ASSERT_EQ(parseDouble(std::string_view(text)).value, value);
  ASSERT_NE(text.find_first_of(".e"), std::string::npos);
  ASSERT_LE(text.size(), kShortestRoom);
  if (value == std::trunc(value)) return;  // whole numbers show all their digits
  int decimals = 0;
  while (std::strtod(printed("%.*e", decimals, value).c_str(), nullptr) != value) ++decimals;
  const auto significant = [](std::string_view t) {
    std::string digits;
    for (const char c : t.substr(0, t.find('e'))) {
      if (c >= '0' && c <= '9') digits += c;
    }
    digits.erase(0, digits.find_first_not_of('0'));
    return digits.substr(0, digits.find_last_not_of('0') + 1);
  };
  ASSERT_EQ(significant(text), significant(printed("%.*e", decimals, value)));
}

TEST(FormatShortest, ReadsBackAndHasTheFewestDigits) {
  std::mt19937_64 random(kNumberSeed);
  for (int i = 0; i < kRounds; ++i) {
    ASSERT_NO_FATAL_FAILURE(expectShortest(anyDouble(random)));
    ASSERT_NO_FATAL_FAILURE(expectShortest(parseDouble(anyDecimal(random)).value));
    const double usual = std::uniform_real_distribution<>(0, 1e4)(random);
    ASSERT_NO_FATAL_FAILURE(expectShortest(usual));
    ASSERT_NO_FATAL_FAILURE(expectShortest(std::round(usual * 1000) / 1000));
  }
}

TEST(FormatInteger, LimitsAndHex) {
  char buffer[kIntegerRoom];
  const std::int64_t least = std::numeric_limits<std::int64_t>::min();
  EXPECT_EQ(std::string(buffer, formatInteger(buffer, least)), "-9223372036854775808");
  EXPECT_EQ(std::string(buffer, formatInteger(buffer, 0)), "0");
  EXPECT_EQ(std::string(buffer, formatHex(buffer, 0)), "0");
  EXPECT_EQ(std::string(buffer, formatHex(buffer, 0x1AbCdEf)), "1ABCDEF");
  EXPECT_EQ(std::string(buffer, formatHex(buffer, ~std::uint64_t{0})), "FFFFFFFFFFFFFFFF");
}

// A host program whose locale has decimal commas must not affect reading or writing.
class CommaLocale {
 public:
  CommaLocale() : m_before(std::locale::global(std::locale(std::locale(), new Comma))) {
    for (const char* name : {"de_DE.UTF-8", "it_IT.UTF-8", "de_DE", "German"})
      if (std::setlocale(LC_NUMERIC, name)) break;
  }
  ~CommaLocale() {
    std::locale::global(m_before);
    std::setlocale(LC_NUMERIC, "C");
  }

 private:
  struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  std::locale m_before;
};

TEST(Numbers, DoNotDependOnTheLocale) {
  const CommaLocale comma;
  EXPECT_EQ(fixed(1234567.5), "1234567.500000");
  EXPECT_EQ(shortest(1234567.5), "1234567.5");
  EXPECT_EQ(parseDouble(std::string_view("1234.5")).value, 1234.5);
  EXPECT_EQ(parseDouble(std::string_view("1,5")).value, 1);
}

}  // namespace
}  // namespace vek0::detail
