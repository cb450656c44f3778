// Checks number texts with a slow reference that uses the exact decimal expansion of a value, and
// by parsing them again.
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>

#include <gtest/gtest.h>

#include "base/number.h"

namespace vrx {
namespace {

constexpr std::array<const char*, 5> kPatterns = {"0", "0.0", "0.00", "0.000", "0.000000"};

// A plain decimal text without sign, as whole digits and decimals.
struct Expansion {
  std::string digits;
  std::size_t whole = 0;  // number of digits before the point
};

// Every digit of a value: a double has at most 1074 decimals.
Expansion ExactExpansion(double value) {
  std::array<char, 1500> buffer{};
  const int length = std::snprintf(buffer.data(), buffer.size(), "%.1100f", std::abs(value));
  std::string text(buffer.data(), static_cast<std::size_t>(length));
  const std::size_t point = text.find('.');
  text.erase(point, 1);
  return {text, point};
}

void AddOneAt(Expansion& number, std::size_t place) {
  for (std::size_t at = place + 1; at-- > 0;) {
    if (number.digits[at] != '9') {
      ++number.digits[at];
      return;
    }
    number.digits[at] = '0';
  }
  number.digits.insert(0, "1");
  ++number.whole;
}

enum class Tie { kEven, kAway };

// Sets all digits from `place` on to 0.
void RoundAt(Expansion& number, std::size_t place, Tie tie) {
  if (place >= number.digits.size()) {
    return;
  }
  const std::string rest = number.digits.substr(place);
  const std::string half = "5" + std::string(rest.size() - 1, '0');
  const bool odd = place > 0 && (number.digits[place - 1] - '0') % 2 == 1;
  const bool up = rest > half || (rest == half && (tie == Tie::kAway || odd));
  number.digits.replace(place, std::string::npos, rest.size(), '0');
  if (up) {
    if (place == 0) {
      number.digits.insert(0, "1");
      ++number.whole;
    } else {
      AddOneAt(number, place - 1);
    }
  }
}

std::string ReferenceFormat(double value, std::size_t significant, std::size_t decimals) {
  Expansion number = ExactExpansion(value);
  const std::size_t first = number.digits.find_first_not_of('0');
  if (first != std::string::npos) {
    RoundAt(number, first + significant, Tie::kEven);
  }
  RoundAt(number, number.whole + decimals, Tie::kAway);
  std::string text = number.digits.substr(0, number.whole + decimals);
  const bool zero = text.find_first_not_of('0') == std::string::npos;
  if (decimals > 0) {
    text.insert(number.whole, ".");
  }
  return (value < 0 && !zero ? "-" : "") + text;
}

std::size_t DecimalsOf(const char* pattern) {
  const std::string text = pattern;
  return text.size() == 1 ? 0 : text.size() - 2;
}

class NumberTexts : public ::testing::Test {
 protected:
  // Weights and percentages as they occur: a whole number over a power of ten or of two.
  double OrdinaryValue() {
    constexpr std::array<double, 8> kDivisors = {1, 2, 8, 64, 10, 100, 1000, 10000};
    const double whole = std::uniform_int_distribution<int>(-2'000'000, 2'000'000)(random_);
    return whole / kDivisors.at(std::uniform_int_distribution<std::size_t>(0, 7)(random_));
  }

  double AnyValue() {
    for (;;) {
      const auto value = std::bit_cast<double>(random_());
      if (std::isfinite(value)) {
        return value;
      }
    }
  }

  float AnySingle() {
    for (;;) {
      const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random_()));
      if (std::isfinite(value)) {
        return value;
      }
    }
  }

  void ExpectReference(double value) {
    for (const char* const pattern : kPatterns) {
      ASSERT_EQ(Format(value, pattern), ReferenceFormat(value, 15, DecimalsOf(pattern)))
          << std::hexfloat << value << " by " << pattern;
    }
  }

  void ExpectReference(float value) {
    for (const char* const pattern : kPatterns) {
      ASSERT_EQ(Format(value, pattern), ReferenceFormat(value, 7, DecimalsOf(pattern)))
          << std::hexfloat << value << " by " << pattern;
    }
  }

  std::mt19937_64 random_{20260105};
};

TEST_F(NumberTexts, FormatAgreesWithTheReferenceOnOrdinaryDoubles) {
  for (int round = 0; round < 5000; ++round) {
    ExpectReference(OrdinaryValue());
  }
}

TEST_F(NumberTexts, FormatAgreesWithTheReferenceOnOrdinarySingles) {
  for (int round = 0; round < 5000; ++round) {
    ExpectReference(static_cast<float>(OrdinaryValue()));
  }
}

TEST_F(NumberTexts, FormatAgreesWithTheReferenceOnAnyDouble) {
  for (int round = 0; round < 2000; ++round) {
    ExpectReference(AnyValue());
  }
}

TEST_F(NumberTexts, FormatAgreesWithTheReferenceOnAnySingle) {
  for (int round = 0; round < 2000; ++round) {
    ExpectReference(AnySingle());
  }
}

TEST_F(NumberTexts, AnyDoubleComesBackFromItsDefaultTextWithin15Digits) {
  for (int round = 0; round < 20000; ++round) {
    const double value = AnyValue();
    const auto back = ParseNumber(DefaultText(value));
    ASSERT_TRUE(back) << value;
    ASSERT_EQ(DefaultText(*back), DefaultText(value));
    ASSERT_LE(std::abs(*back - value), std::abs(value) * 1e-14 + 5e-324) << value;
  }
}

TEST_F(NumberTexts, AValueOfAFewDecimalsComesBackExactly) {
  for (int round = 0; round < 20000; ++round) {
    const double value = OrdinaryValue();
    ASSERT_EQ(ParseNumber(DefaultText(value)), value);
  }
}

TEST_F(NumberTexts, WholeNumbersOf32BitsComeBack) {
  for (int round = 0; round < 20000; ++round) {
    const auto value = static_cast<std::int32_t>(static_cast<std::uint32_t>(random_()));
    ASSERT_EQ(TextToLong(Format(value, "0")), value);
    ASSERT_EQ(ParseLong(DefaultText(value)), value);
  }
}

TEST_F(NumberTexts, AnyBytesParseWithoutFailure) {
  constexpr std::string_view kAlphabet = "0123456789.+-eE x";
  std::uniform_int_distribution<std::size_t> pick(0, kAlphabet.size() - 1);
  int numbers = 0;
  for (int round = 0; round < 50000; ++round) {
    std::string text(static_cast<std::size_t>(round % 9), ' ');
    for (char& c : text) {
      c = kAlphabet[pick(random_)];
    }
    const auto value = ParseNumber(text);
    if (value) {
      ++numbers;
      ASSERT_NE(text.find_first_of("0123456789"), std::string::npos) << text;
      ASSERT_EQ(text.find('x'), std::string::npos) << text;
    }
  }
  EXPECT_GT(numbers, 1000);
}

}  // namespace
}  // namespace vrx
