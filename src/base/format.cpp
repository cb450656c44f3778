#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <stdexcept>

#include "base/error.h"
#include "base/number.h"

namespace vrx {
namespace {

constexpr int kDoubleDigits = 15;
constexpr int kSingleDigits = 7;

// A number as its significant decimal digits: 0.DIGITS times ten to the power of `point`. Zero has
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

// Keeps `decimals` digits behind the point, halves away from zero.
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

// The digits from place `from` up to but without `to`, counted from the first significant one;
// places without a digit read 0.
std::string DigitRun(const Decimal& decimal, int from, int to) {
  std::string run;
  for (int place = from; place < to; ++place) {
    const bool there = place >= 0 && place < static_cast<int>(decimal.digits.size());
    run += there ? decimal.digits[static_cast<std::size_t>(place)] : '0';
  }
  return run;
}

struct Pattern {
  int whole = 0;     // at least so many digits ahead of the point
  int decimals = 0;  // exactly so many behind it
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

// Sizes that are written out; outside of them an exponent is shorter than the zeros.
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

std::string Format(double value, std::string_view pattern) {
  return FormatDecimal(Decompose(value, kDoubleDigits), pattern);
}

std::string Format(float value, std::string_view pattern) {
  return FormatDecimal(Decompose(value, kSingleDigits), pattern);
}

std::string DefaultText(double value) { return DefaultDecimal(Decompose(value, kDoubleDigits)); }

std::string DefaultText(float value) { return DefaultDecimal(Decompose(value, kSingleDigits)); }

}  // namespace vrx
