#pragma once

#include <compare>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace vrx {

// An exact decimal number of any size. Numbers with up to six decimals and below a billion are
// as fast as whole numbers; all others are correct, and slower.
class Exact {
 public:
  struct Large;  // a number that does not fit `millionths_`

  Exact() = default;  // 0
  Exact(const Exact& other)
      : millionths_(other.millionths_),
        large_(other.large_ == nullptr ? nullptr : CopyOf(*other.large_)) {}
  Exact(Exact&& other) noexcept = default;
  Exact& operator=(const Exact& other) { return *this = Exact(other); }
  Exact& operator=(Exact&& other) noexcept = default;
  ~Exact() = default;
  // The number that the shortest decimal text of `value` shows, if that text reads back as `value`:
  // 0.1 is a tenth. `value` is finite.
  [[nodiscard]] static Exact Of(double value);
  [[nodiscard]] static Exact Whole(std::int64_t value);
  // The number that a text shows: an optional minus sign, digits with at most one point, an
  // optional exponent after "e". Nothing for another text.
  [[nodiscard]] static std::optional<Exact> OfText(std::string_view text);

  [[nodiscard]] int Sign() const;  // -1, 0 or 1
  [[nodiscard]] Exact Abs() const { return Sign() < 0 ? -*this : *this; }
  [[nodiscard]] double ToDouble() const;  // the nearest one

  // Millionths, if the number is a whole count of them that fits; else null.
  [[nodiscard]] const std::int64_t* Millionths() const {
    return large_ == nullptr ? &millionths_ : nullptr;
  }

  Exact operator-() const;
  Exact& operator+=(const Exact& other);
  Exact& operator-=(const Exact& other) { return *this += -other; }
  friend Exact operator+(Exact left, const Exact& right) { return left += right; }
  friend Exact operator-(Exact left, const Exact& right) { return left -= right; }
  friend Exact operator*(const Exact& left, const Exact& right);
  friend std::strong_ordering operator<=>(const Exact& left, const Exact& right);
  friend bool operator==(const Exact& left, const Exact& right) {
    return (left <=> right) == std::strong_ordering::equal;
  }

  // one * other <=> third * fourth
  friend std::strong_ordering CompareProducts(const Exact& one, const Exact& other,
                                              const Exact& third, const Exact& fourth);

  // The double nearest to the quotient; halves go to even. `divisor` is not 0.
  friend double Quotient(const Exact& dividend, const Exact& divisor);

 private:
  explicit Exact(Large large);
  [[nodiscard]] Large ToLarge() const;

  struct DeleteLarge {
    void operator()(const Large* large) const;
  };
  using LargePointer = std::unique_ptr<const Large, DeleteLarge>;
  static LargePointer CopyOf(const Large& large);

  std::int64_t millionths_ = 0;
  LargePointer large_;
};

std::strong_ordering CompareProducts(const Exact& one, const Exact& other, const Exact& third,
                                     const Exact& fourth);
double Quotient(const Exact& dividend, const Exact& divisor);

}  // namespace vrx
