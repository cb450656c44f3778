#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "insight/exact.h"

namespace vrx {

struct Quartiles {
  double q1 = 0;
  double median = 0;
  double q3 = 0;
  bool median_is_low = false;  // at most the limit that was given
  bool operator==(const Quartiles&) const = default;
};

// Collects quotients of a difference and a positive target. Eight bytes for a quotient of weights
// with up to three decimals below two million.
class Deviations {
 public:
  void Add(const Exact& difference, const Exact& target);
  void Append(Deviations&& other);
  [[nodiscard]] std::size_t Count() const { return small_.size() + large_.size(); }

  // The exact quartiles in percent, by linear interpolation between the order statistics, h = (n -
  // 1) p. Sorts the quotients. Nothing if there are none. `low` is a percentage that the median is
  // compared with.
  [[nodiscard]] std::optional<Quartiles> FindQuartiles(const Exact& low);

  // The same of several sets together, without a copy of them.
  [[nodiscard]] static std::optional<Quartiles> FindQuartiles(std::span<Deviations* const> sets,
                                                              const Exact& low);

 private:
  struct Small {  // thousandths
    std::int32_t difference;
    std::int32_t target;
  };
  struct Large {
    Exact difference;
    Exact target;
  };
  static bool IsLess(const Small& left, const Small& right);
  static bool IsLess(const Large& left, const Large& right);
  static Large Whole(const Small& small);
  static Large Whole(const Large& large) { return large; }
  template <typename Kind>
  class SortedSets;
  template <typename Kind>
  static Quartiles QuartilesOf(const SortedSets<Kind>& sets, const Exact& low);
  void MakeLarge();
  void Sort();

  std::vector<Small> small_;
  std::vector<Large> large_;
  bool sorted_ = true;
};

}  // namespace vrx
