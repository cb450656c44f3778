#include "base/number.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <system_error>

#include "base/error.h"
#include "base/text.h"

namespace vrx {
namespace {

std::size_t SkipDigits(std::string_view text, std::size_t at) {
  while (at < text.size() && IsDigitChar(text[at])) {
    ++at;
  }
  return at;
}

std::size_t SkipSign(std::string_view text, std::size_t at) {
  return at < text.size() && (text[at] == '+' || text[at] == '-') ? at + 1 : at;
}

// Needed because std::from_chars accepts "inf", "nan" and trailing text.
bool HasNumberForm(std::string_view text) {
  const std::size_t first = SkipSign(text, 0);
  std::size_t at = SkipDigits(text, first);
  std::size_t digits = at - first;
  if (at < text.size() && text[at] == '.') {
    const std::size_t after_point = SkipDigits(text, at + 1);
    digits += after_point - (at + 1);
    at = after_point;
  }
  if (digits == 0) {
    return false;
  }
  if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    const std::size_t exponent = SkipSign(text, at + 1);
    at = SkipDigits(text, exponent);
    if (at == exponent) {
      return false;
    }
  }
  return at == text.size();
}

// Distinguishes underflow from overflow of a double. `text` has the form of a number, no sign.
bool IsTooSmall(std::string_view text) {
  const std::size_t mark = text.find_first_of("eE");
  const std::string_view mantissa = text.substr(0, mark);
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  const std::size_t leading = mantissa.find_first_of("123456789");
  if (leading == std::string_view::npos) {
    return true;
  }
  const auto magnitude = static_cast<double>(point) - static_cast<double>(leading);
  if (mark == std::string_view::npos) {
    return magnitude < 0;
  }
  std::string_view exponent = text.substr(mark + 1);
  const bool negative = exponent.front() == '-';
  exponent.remove_prefix(SkipSign(exponent, 0));
  long long value = std::numeric_limits<int>::max();  // kept if the exponent itself overflows
  std::from_chars(exponent.data(), exponent.data() + exponent.size(), value);
  return magnitude + static_cast<double>(negative ? -value : value) < 0;
}

// Significant decimal digits.
constexpr int kDoubleDigits = 15;
constexpr int kSingleDigits = 7;

// A number by its significant decimal digits: 0.DIGITS times ten to the power of `point`. Zero has
// no digits.
struct Decimal {
  bool negative = false;
  std::string digits;
  int point = 0;
};

template <typename Real>
Decimal Decompose(Real value, int significant) {
  if (!std::isfinite(value)) {
    throw ConversionError("a value without bounds has no text");
  }
  if (value == 0) {
    return {};
  }
  std::array<char, 32> buffer{};
  const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), std::abs(value),
                                     std::chars_format::scientific, significant - 1);
  const std::string_view text(buffer.data(), static_cast<std::size_t>(written.ptr - buffer.data()));
  const std::size_t mark = text.find('e');

  Decimal decimal;
  decimal.negative = std::signbit(value);
  std::copy_if(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(mark),
               std::back_inserter(decimal.digits), [](char c) { return c != '.'; });
  decimal.digits.erase(decimal.digits.find_last_not_of('0') + 1);
  const std::size_t exponent = text[mark + 1] == '+' ? mark + 2 : mark + 1;
  std::from_chars(text.data() + exponent, text.data() + text.size(), decimal.point);
  ++decimal.point;
  return decimal;
}

// Rounds to `decimals` digits after the point, halves away from zero.
void Round(Decimal& decimal, int decimals) {
  const int keep = decimal.point + decimals;
  if (keep >= static_cast<int>(decimal.digits.size())) {
    return;
  }
  if (keep < 0) {
    decimal = {};
    return;
  }
  std::string& digits = decimal.digits;
  const bool up = digits[static_cast<std::size_t>(keep)] >= '5';
  digits.resize(static_cast<std::size_t>(keep));
  if (up) {
    while (!digits.empty() && digits.back() == '9') {
      digits.pop_back();
    }
    if (digits.empty()) {
      digits = "1";
      ++decimal.point;
    } else {
      ++digits.back();
    }
  }
  if (digits.empty()) {
    decimal = {};
  }
}

// Digits [from, to), counted from the first significant one; 0 for a missing digit.
std::string DigitRun(const Decimal& decimal, int from, int to) {
  std::string run;
  for (int place = from; place < to; ++place) {
    const bool there = place >= 0 && place < static_cast<int>(decimal.digits.size());
    run += there ? decimal.digits[static_cast<std::size_t>(place)] : '0';
  }
  return run;
}

struct Pattern {
  int whole = 0;     // minimum number of digits before the point
  int decimals = 0;  // exact number of digits after the point
};

Pattern ReadPattern(std::string_view pattern) {
  const std::size_t start = !pattern.empty() && pattern.front() == '#' ? 1 : 0;
  const std::size_t point = std::min(pattern.find('.'), pattern.size());
  const std::string_view whole = pattern.substr(start, point - start);
  const std::string_view decimals = pattern.substr(std::min(point + 1, pattern.size()));
  const auto only_zeros = [](std::string_view part) {
    return part.find_first_not_of('0') == std::string_view::npos;
  };
  if (whole.empty() || !only_zeros(whole) || !only_zeros(decimals)) {
    throw std::invalid_argument("unknown number pattern " + std::string(pattern));
  }
  return {static_cast<int>(whole.size()), static_cast<int>(decimals.size())};
}

std::string FormatDecimal(Decimal decimal, std::string_view pattern_text) {
  const Pattern pattern = ReadPattern(pattern_text);
  Round(decimal, pattern.decimals);
  std::string text = decimal.negative ? "-" : "";
  text += DigitRun(decimal, std::min(0, decimal.point - pattern.whole), decimal.point);
  if (pattern.decimals > 0) {
    text += '.' + DigitRun(decimal, decimal.point, decimal.point + pattern.decimals);
  }
  return text;
}

// Limits of Decimal::point for a text without exponent.
constexpr int kLargestPoint = 15;
constexpr int kSmallestPoint = -4;

std::string DefaultDecimal(const Decimal& decimal) {
  const int count = static_cast<int>(decimal.digits.size());
  std::string text = decimal.negative ? "-" : "";
  if (decimal.point > kLargestPoint || decimal.point < kSmallestPoint) {
    text += decimal.digits.front();
    if (count > 1) {
      text += '.' + decimal.digits.substr(1);
    }
    const int exponent = decimal.point - 1;
    return text + (exponent < 0 ? "E-" : "E+") + Format(std::abs(exponent), "00");
  }
  text += DigitRun(decimal, std::min(0, decimal.point - 1), decimal.point);
  if (count > decimal.point) {
    text += '.' + DigitRun(decimal, decimal.point, count);
  }
  return text;
}

}  // namespace

std::optional<double> ParseNumber(std::string_view text) {
  const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
  text = text.substr(first, text.find_last_not_of(' ') + 1 - first);
  if (!HasNumberForm(text)) {
    return std::nullopt;
  }
  const bool negative = text.front() == '-';
  const std::string_view magnitude = text.substr(SkipSign(text, 0));
  double value = 0;
  const auto result = std::from_chars(magnitude.data(), magnitude.data() + magnitude.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    if (!IsTooSmall(magnitude)) {
      return std::nullopt;
    }
    value = 0;
  }
  return negative ? -value : value;
}

std::optional<std::int32_t> RoundToLong(double value) {
  if (!std::isfinite(value)) {
    return std::nullopt;
  }
  // Truncation and remainder are exact, so the result does not depend on the rounding mode of the
  // floating-point unit.
  double whole = 0;
  const double rest = std::abs(std::modf(value, &whole));
  const bool odd = std::fmod(whole, 2.0) != 0.0;
  if (rest > 0.5 || (rest == 0.5 && odd)) {
    whole += std::signbit(value) ? -1.0 : 1.0;
  }
  using Limits = std::numeric_limits<std::int32_t>;
  if (whole < Limits::min() || whole > Limits::max()) {
    return std::nullopt;
  }
  return static_cast<std::int32_t>(whole);
}

std::optional<std::int32_t> ParseLong(std::string_view text) {
  const std::optional<double> value = ParseNumber(text);
  return value ? RoundToLong(*value) : std::nullopt;
}

std::int32_t TextToLong(std::string_view text) { return ParseLong(text).value_or(0); }

std::int16_t TextToInt(std::string_view text) {
  if (text.empty()) {
    return 0;
  }
  const std::optional<std::int32_t> value = ParseLong(text);
  using Limits = std::numeric_limits<std::int16_t>;
  if (!value || *value < Limits::min() || *value > Limits::max()) {
    throw ConversionError("\"" + std::string(text) + "\" is no whole number from -32768 to 32767");
  }
  return static_cast<std::int16_t>(*value);
}

float TextToSingle(std::string_view text) {
  if (text.empty()) {
    return 0.0F;
  }
  const std::optional<double> value = ParseNumber(text);
  if (!value || std::abs(*value) > static_cast<double>(std::numeric_limits<float>::max())) {
    throw ConversionError("\"" + std::string(text) + "\" is no number");
  }
  return static_cast<float>(*value);
}

std::string Format(double value, std::string_view pattern) {
  return FormatDecimal(Decompose(value, kDoubleDigits), pattern);
}

std::string Format(float value, std::string_view pattern) {
  return FormatDecimal(Decompose(value, kSingleDigits), pattern);
}

std::string DefaultText(double value) { return DefaultDecimal(Decompose(value, kDoubleDigits)); }

std::string DefaultText(float value) { return DefaultDecimal(Decompose(value, kSingleDigits)); }

}  // namespace vrx
