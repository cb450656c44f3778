#include "insight/exact.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <compare>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <regex>
#include <string_view>
#include <utility>
#include <vector>

namespace vrx {
namespace {

__extension__ typedef __int128 Int128;  // NOLINT(modernize-use-using): no alias can be marked

constexpr int kSmallDecimals = 6;
constexpr std::int64_t kMillion = 1000000;
// A decimal of up to 15 digits is the shortest text of the double nearest to it.
constexpr double kFifteenDigits = 1e15;
constexpr double kWholeDoubles = 9007199254740992.0;  // 2^53

// Magnitude in base 2^32, lowest digit first, without leading zeros.
using Magnitude = std::vector<std::uint32_t>;

void Trim(Magnitude& number) {
  while (!number.empty() && number.back() == 0) {
    number.pop_back();
  }
}

Magnitude MagnitudeOf(std::uint64_t low, std::uint64_t high = 0) {
  Magnitude number{static_cast<std::uint32_t>(low), static_cast<std::uint32_t>(low >> 32U),
                   static_cast<std::uint32_t>(high), static_cast<std::uint32_t>(high >> 32U)};
  Trim(number);
  return number;
}

std::strong_ordering Compare(const Magnitude& left, const Magnitude& right) {
  if (left.size() != right.size()) {
    return left.size() <=> right.size();
  }
  return std::lexicographical_compare_three_way(left.rbegin(), left.rend(), right.rbegin(),
                                                right.rend());
}

Magnitude Sum(const Magnitude& left, const Magnitude& right) {
  Magnitude sum(std::max(left.size(), right.size()) + 1);
  std::uint64_t carry = 0;
  for (std::size_t i = 0; i < sum.size(); ++i) {
    carry += (i < left.size() ? left[i] : 0ULL) + (i < right.size() ? right[i] : 0ULL);
    sum[i] = static_cast<std::uint32_t>(carry);
    carry >>= 32U;
  }
  Trim(sum);
  return sum;
}

// Subtracts `right`, which is not larger.
void Subtract(Magnitude& left, const Magnitude& right) {
  std::int64_t borrow = 0;
  for (std::size_t i = 0; i < left.size(); ++i) {
    const std::int64_t digit = std::int64_t{left[i]} - borrow -
                               (i < right.size() ? std::int64_t{right[i]} : std::int64_t{0});
    borrow = digit < 0 ? 1 : 0;
    left[i] = static_cast<std::uint32_t>(digit + (borrow << 32U));
  }
  Trim(left);
}

Magnitude Product(const Magnitude& left, const Magnitude& right) {
  Magnitude product(left.size() + right.size());
  for (std::size_t i = 0; i < left.size(); ++i) {
    std::uint64_t carry = 0;
    for (std::size_t j = 0; j < right.size(); ++j) {
      carry += std::uint64_t{left[i]} * right[j] + product[i + j];
      product[i + j] = static_cast<std::uint32_t>(carry);
      carry >>= 32U;
    }
    product[i + right.size()] = static_cast<std::uint32_t>(carry);
  }
  Trim(product);
  return product;
}

void MultiplyAndAdd(Magnitude& number, std::uint32_t factor, std::uint32_t more) {
  std::uint64_t carry = more;
  for (std::uint32_t& digit : number) {
    carry += std::uint64_t{digit} * factor;
    digit = static_cast<std::uint32_t>(carry);
    carry >>= 32U;
  }
  if (carry != 0) {
    number.push_back(static_cast<std::uint32_t>(carry));
  }
}

void MultiplyByTens(Magnitude& number, int tens) {
  constexpr std::uint32_t kBillion = 1000000000;
  for (; tens >= 9; tens -= 9) {
    MultiplyAndAdd(number, kBillion, 0);
  }
  for (; tens > 0; --tens) {
    MultiplyAndAdd(number, 10, 0);
  }
}

int Bits(const Magnitude& number) {
  return number.empty() ? 0
                        : static_cast<int>(number.size()) * 32 - std::countl_zero(number.back());
}

Magnitude ShiftedLeft(const Magnitude& number, int bits) {
  const auto words = static_cast<std::size_t>(bits / 32);
  const auto rest = static_cast<unsigned>(bits % 32);
  Magnitude shifted(number.size() + words + 1);
  for (std::size_t i = 0; i < number.size(); ++i) {
    const std::uint64_t digit = std::uint64_t{number[i]} << rest;
    shifted[i + words] |= static_cast<std::uint32_t>(digit);
    shifted[i + words + 1] |= static_cast<std::uint32_t>(digit >> 32U);
  }
  Trim(shifted);
  return shifted;
}

void Halve(Magnitude& number) {
  std::uint32_t carry = 0;
  for (std::size_t i = number.size(); i-- > 0;) {
    const std::uint32_t digit = number[i];
    number[i] = (digit >> 1U) | (carry << 31U);
    carry = digit & 1U;
  }
  Trim(number);
}

// A quotient of 63 or 64 bits, whose lowest bit also stands for the remainder, rounds to the same
// double as the true quotient.
double NearestQuotient(Magnitude dividend, Magnitude divisor) {
  constexpr int kQuotientBits = 63;
  if (dividend.empty()) {
    return 0;
  }
  const int shift = kQuotientBits - (Bits(dividend) - Bits(divisor));
  if (shift >= 0) {
    dividend = ShiftedLeft(dividend, shift);
  } else {
    divisor = ShiftedLeft(divisor, -shift);
  }
  divisor = ShiftedLeft(divisor, kQuotientBits);
  std::uint64_t quotient = 0;
  for (int bit = kQuotientBits; bit >= 0; --bit) {
    if (std::is_gteq(Compare(dividend, divisor))) {
      Subtract(dividend, divisor);
      quotient |= std::uint64_t{1} << static_cast<unsigned>(bit);
    }
    Halve(divisor);
  }
  if (!dividend.empty()) {
    quotient |= 1U;
  }
  return std::ldexp(static_cast<double>(quotient), -shift);
}

std::uint64_t Unsigned(std::int64_t value) {
  return value < 0 ? -static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
}

}  // namespace

// digits / 10^decimals. `decimals` may be negative.
struct Exact::Large {
  bool negative = false;
  Magnitude digits = {};
  int decimals = 0;
};

namespace {

// Gives both the larger count of decimals.
void Align(Exact::Large& left, Exact::Large& right) {
  const int decimals = std::max(left.decimals, right.decimals);
  for (Exact::Large* const number : {&left, &right}) {
    MultiplyByTens(number->digits, decimals - number->decimals);
    number->decimals = decimals;
  }
}

// Divides by 10 if that leaves no rest.
bool DivideByTen(Magnitude& number) {
  Magnitude quotient(number.size());
  std::uint64_t rest = 0;
  for (std::size_t i = number.size(); i-- > 0;) {
    rest = (rest << 32U) | number[i];
    quotient[i] = static_cast<std::uint32_t>(rest / 10);
    rest %= 10;
  }
  if (rest != 0) {
    return false;
  }
  Trim(quotient);
  number = std::move(quotient);
  return true;
}

Exact::Large ParseLarge(std::string_view text) {
  Exact::Large large;
  bool fraction = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char character = text[i];
    if (character == '-') {
      large.negative = true;
    } else if (character == '.') {
      fraction = true;
    } else if (character == 'e') {
      int exponent = 0;
      text.remove_prefix(text[i + 1] == '+' ? i + 2 : i + 1);
      std::from_chars(text.data(), text.data() + text.size(), exponent);
      large.decimals -= exponent;
      break;
    } else {
      MultiplyAndAdd(large.digits, 10, static_cast<std::uint32_t>(character - '0'));
      large.decimals += fraction ? 1 : 0;
    }
  }
  return large;
}

}  // namespace

// Keeps the fast form where the number has one.
Exact::Exact(Large large) {
  Trim(large.digits);
  if (large.digits.empty()) {
    return;
  }
  while (large.decimals > kSmallDecimals && DivideByTen(large.digits)) {
    --large.decimals;
  }
  constexpr int kMostDigits = 20;  // of a count that fits
  if (large.decimals <= kSmallDecimals && kSmallDecimals - large.decimals < kMostDigits &&
      large.digits.size() <= 2) {
    Magnitude millionths = large.digits;
    MultiplyByTens(millionths, kSmallDecimals - large.decimals);
    if (Bits(millionths) < 64) {
      std::uint64_t count = 0;
      for (std::size_t i = millionths.size(); i-- > 0;) {
        count = (count << 32U) | millionths[i];
      }
      millionths_ = static_cast<std::int64_t>(count);
      millionths_ = large.negative ? -millionths_ : millionths_;
      return;
    }
  }
  large_ = LargePointer(new const Large(std::move(large)));
}

void Exact::DeleteLarge::operator()(const Large* large) const { delete large; }

Exact::LargePointer Exact::CopyOf(const Large& large) {
  return LargePointer(new const Large(large));
}

Exact Exact::Of(double value) {
  if (const double millionths = std::nearbyint(value * kMillion);
      std::abs(millionths) < kFifteenDigits && millionths / kMillion == value) {
    Exact number;
    number.millionths_ = static_cast<std::int64_t>(millionths);
    return number;
  }
  std::array<char, 64> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
  return Exact(ParseLarge({text.data(), static_cast<std::size_t>(end - text.data())}));
}

std::optional<Exact> Exact::OfText(std::string_view text) {
  // More digits of an exponent would make a number that fills the memory.
  static const std::regex form(R"(-?(\d+\.?\d*|\.\d+)(e[+-]?\d{1,4})?)");
  constexpr std::size_t kLongest = 2000;  // more than any sum of doubles has
  if (text.size() > kLongest || !std::regex_match(text.begin(), text.end(), form)) {
    return std::nullopt;
  }
  return Exact(ParseLarge(text));
}

Exact Exact::Whole(std::int64_t value) {
  constexpr std::int64_t kMillion = 1'000'000;
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max() / kMillion;
  if (value > -kMost && value < kMost) {
    Exact small;
    small.millionths_ = value * kMillion;
    return small;
  }
  return Exact(Large{.negative = value < 0, .digits = MagnitudeOf(Unsigned(value))});
}

Exact::Large Exact::ToLarge() const {
  if (large_ != nullptr) {
    return *large_;
  }
  return {.negative = millionths_ < 0,
          .digits = MagnitudeOf(Unsigned(millionths_)),
          .decimals = kSmallDecimals};
}

int Exact::Sign() const {
  if (large_ != nullptr) {
    return large_->negative ? -1 : 1;
  }
  return millionths_ == 0 ? 0 : (millionths_ < 0 ? -1 : 1);
}

double Exact::ToDouble() const { return Quotient(*this, Whole(1)); }

Exact Exact::operator-() const {
  if (large_ == nullptr && millionths_ != std::numeric_limits<std::int64_t>::min()) {
    Exact negated;
    negated.millionths_ = -millionths_;
    return negated;
  }
  Large large = ToLarge();
  large.negative = !large.negative;
  return Exact(std::move(large));
}

Exact& Exact::operator+=(const Exact& other) {
  if (large_ == nullptr && other.large_ == nullptr &&
      !__builtin_add_overflow(millionths_, other.millionths_, &millionths_)) {
    return *this;
  }
  if (large_ == nullptr && other.large_ == nullptr) {
    // The sum wrapped around; take that back.
    millionths_ = static_cast<std::int64_t>(static_cast<std::uint64_t>(millionths_) -
                                            static_cast<std::uint64_t>(other.millionths_));
  }
  Large left = ToLarge();
  Large right = other.ToLarge();
  Align(left, right);
  if (left.negative == right.negative) {
    left.digits = Sum(left.digits, right.digits);
  } else if (std::is_gteq(Compare(left.digits, right.digits))) {
    Subtract(left.digits, right.digits);
  } else {
    Subtract(right.digits, left.digits);
    left = std::move(right);
  }
  *this = Exact(std::move(left));
  return *this;
}

Exact operator*(const Exact& left, const Exact& right) {
  if (left.large_ == nullptr && right.large_ == nullptr) {
    const Int128 product = Int128{left.millionths_} * right.millionths_;
    const Int128 millionths = product / kMillion;
    if (millionths * kMillion == product && millionths < std::numeric_limits<std::int64_t>::max() &&
        millionths > std::numeric_limits<std::int64_t>::min()) {
      Exact exact;
      exact.millionths_ = static_cast<std::int64_t>(millionths);
      return exact;
    }
  }
  const Exact::Large one = left.ToLarge();
  const Exact::Large other = right.ToLarge();
  return Exact(Exact::Large{.negative = one.negative != other.negative,
                            .digits = Product(one.digits, other.digits),
                            .decimals = one.decimals + other.decimals});
}

std::strong_ordering operator<=>(const Exact& left, const Exact& right) {
  if (left.large_ == nullptr && right.large_ == nullptr) {
    return left.millionths_ <=> right.millionths_;
  }
  if (left.Sign() != right.Sign()) {
    return left.Sign() <=> right.Sign();
  }
  Exact::Large one = left.ToLarge();
  Exact::Large other = right.ToLarge();
  Align(one, other);
  return one.negative ? Compare(other.digits, one.digits) : Compare(one.digits, other.digits);
}

// No product is divided back into millionths: that is most of the time of a multiplication.
std::strong_ordering CompareProducts(const Exact& one, const Exact& other, const Exact& third,
                                     const Exact& fourth) {
  if (one.large_ == nullptr && other.large_ == nullptr && third.large_ == nullptr &&
      fourth.large_ == nullptr) {
    return Int128{one.millionths_} * other.millionths_ <=>
           Int128{third.millionths_} * fourth.millionths_;
  }
  return one * other <=> third * fourth;
}

double Quotient(const Exact& dividend, const Exact& divisor) {
  if (dividend.large_ == nullptr && divisor.large_ == nullptr) {
    // Both are exact as doubles, so the division rounds once.
    const auto one = static_cast<double>(dividend.millionths_);
    const auto other = static_cast<double>(divisor.millionths_);
    if (std::abs(one) < kWholeDoubles && std::abs(other) < kWholeDoubles) {
      return one == 0 ? 0 : one / other;
    }
  }
  Exact::Large one = dividend.ToLarge();
  Exact::Large other = divisor.ToLarge();
  Align(one, other);
  const double quotient = NearestQuotient(std::move(one.digits), std::move(other.digits));
  return one.negative != other.negative ? -quotient : quotient;
}

}  // namespace vrx
