#include "feed/soft_number.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace vrx::testing {
namespace {

__extension__ using Wide = unsigned __int128;

constexpr int kWideBits = 128;

int Length(Wide value) {
  int length = 0;
  for (; value != 0; value >>= 1) {
    ++length;
  }
  return length;
}

// Throws on overflow of the whole numbers of this file, because a wrapped model proves nothing.
Wide Shifted(Wide value, int places) {
  if (value == 0) {
    return 0;
  }
  if (Length(value) + places > kWideBits) {
    throw std::overflow_error("a soft number beyond 128 bits");
  }
  return value << places;
}

Wide Times(Wide value, Wide factor) {
  if (value != 0 && factor > ~Wide{0} / value) {
    throw std::overflow_error("a soft number beyond 128 bits");
  }
  return value * factor;
}

Wide PowerOfTen(int exponent) {
  Wide power = 1;
  for (; exponent > 0; --exponent) {
    power = Times(power, 10);
  }
  return power;
}

// `sticky`: the true value is slightly larger.
Binary RoundedWide(Wide value, int exponent, bool sticky, int bits) {
  const int surplus = std::max(Length(value) - bits, 0);
  const Wide rest = value & ((Wide{1} << surplus) - 1);
  const Wide half = surplus == 0 ? 0 : Wide{1} << (surplus - 1);
  Wide digits = value >> surplus;
  const bool odd = (digits & 1) != 0;
  if (surplus > 0 && (rest > half || (rest == half && (sticky || odd)))) {
    ++digits;
  }
  return {static_cast<std::uint64_t>(digits), exponent + surplus};
}

enum class Tie { kEven, kAway };

std::uint64_t NearestQuotient(Wide dividend, Wide divisor, Tie tie) {
  const Wide whole = dividend / divisor;
  const Wide rest = dividend % divisor;
  const bool half = rest == divisor - rest;
  const bool up = rest > divisor - rest || (half && (tie == Tie::kAway || (whole & 1) != 0));
  return static_cast<std::uint64_t>(whole) + (up ? 1 : 0);
}

// A binary number as dividend and divisor.
std::pair<Wide, Wide> Ratio(Binary value) {
  if (value.exponent >= 0) {
    return {Shifted(value.digits, value.exponent), 1};
  }
  while (value.exponent < 0 && value.digits != 0 && value.digits % 2 == 0) {
    value.digits /= 2;
    ++value.exponent;
  }
  return {value.digits, value.digits == 0 ? 1 : Shifted(1, -value.exponent)};
}

}  // namespace

Binary FromWhole(std::uint64_t value) { return {value, 0}; }

Binary Rounded(Binary value, int bits) {
  return RoundedWide(value.digits, value.exponent, false, bits);
}

Binary Quotient(Binary a, Binary b, int bits) {
  const int shift = kWideBits - 2 - Length(a.digits);
  const Wide dividend = Shifted(a.digits, shift);
  return RoundedWide(dividend / b.digits, a.exponent - shift - b.exponent, dividend % b.digits != 0,
                     bits);
}

Binary Product(Binary a, Binary b, int bits) {
  return RoundedWide(Wide{a.digits} * b.digits, a.exponent + b.exponent, false, bits);
}

Binary Sum(Binary a, Binary b, int bits) {
  if (a.digits == 0 || b.digits == 0) {
    return Rounded(a.digits == 0 ? b : a, bits);
  }
  const int exponent = std::min(a.exponent, b.exponent);
  return RoundedWide(
      Shifted(a.digits, a.exponent - exponent) + Shifted(b.digits, b.exponent - exponent), exponent,
      false, bits);
}

Decimal Significant(Binary value, int digits) {
  const auto [dividend, divisor] = Ratio(value);
  if (dividend == 0) {
    return {};
  }
  const Wide limit = PowerOfTen(digits);
  const auto scaled = [&, over = dividend, under = divisor](int decimals) {
    return std::pair(Times(over, PowerOfTen(decimals)), Times(under, PowerOfTen(-decimals)));
  };
  const auto kept = [&](int decimals) {
    const auto [over, under] = scaled(decimals);
    return over / under;
  };
  int decimals = 0;
  while (kept(decimals) < limit / 10) {
    ++decimals;
  }
  while (kept(decimals) >= limit) {
    --decimals;
  }
  const auto [over, under] = scaled(decimals);
  return {NearestQuotient(over, under, Tie::kEven), decimals};
}

std::uint64_t Whole(Binary value) {
  const auto [dividend, divisor] = Ratio(value);
  return NearestQuotient(dividend, divisor, Tie::kEven);
}

std::uint64_t Whole(Decimal value) {
  return NearestQuotient(Times(value.digits, PowerOfTen(-value.decimals)),
                         PowerOfTen(value.decimals), Tie::kEven);
}

std::string Fixed(Decimal value, int decimals) {
  const Wide dividend = Times(value.digits, PowerOfTen(decimals - std::min(value.decimals, 0)));
  std::string text = std::to_string(
      NearestQuotient(dividend, PowerOfTen(std::max(value.decimals, 0)), Tie::kAway));
  const auto places = static_cast<std::size_t>(decimals);
  if (places == 0) {
    return text;
  }
  if (text.size() <= places) {
    text.insert(0, places + 1 - text.size(), '0');
  }
  return text.insert(text.size() - places, ".");
}

Decimal ReadDecimal(const std::string& text) {
  const std::size_t point = text.find('.');
  if (point == std::string::npos) {
    return {text.empty() ? 0 : std::stoull(text), 0};
  }
  return {std::stoull(text.substr(0, point) + text.substr(point + 1)),
          static_cast<int>(text.size() - point - 1)};
}

Binary ReadSingle(const std::string& text) {
  const Decimal decimal = ReadDecimal(text);
  const auto divisor = static_cast<std::uint64_t>(PowerOfTen(decimal.decimals));
  return Quotient(FromWhole(decimal.digits), FromWhole(divisor), kSingleBits);
}

}  // namespace vrx::testing
