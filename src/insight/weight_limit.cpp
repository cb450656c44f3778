#include "insight/weight_limit.h"

#include <cmath>
#include <compare>
#include <cstdint>

#include "insight/question.h"

namespace vrx {
namespace {

constexpr std::int64_t kPoundInTenMicrograms = 45359237;
constexpr std::int64_t kKilogramInTenMicrograms = 100000000;

}  // namespace

WeightUnit UnitOf(std::string_view text) {
  return text == "KG" ? WeightUnit::kKilograms : WeightUnit::kPounds;
}

std::string TextOf(WeightUnit unit) { return unit == WeightUnit::kKilograms ? "KG" : "LB"; }

double WeightLimit::In(WeightUnit other) const {
  if (unit == other) {
    return weight;
  }
  const Exact pound = Exact::Whole(kPoundInTenMicrograms);
  const Exact kilogram = Exact::Whole(kKilogramInTenMicrograms);
  return unit == WeightUnit::kPounds ? Quotient(Exact::Of(weight) * pound, kilogram)
                                     : Quotient(Exact::Of(weight) * kilogram, pound);
}

LimitTest::LimitTest(const WeightLimit& limit, WeightUnit unit, std::string_view name)
    : limit_(CheckedLimit(limit.weight, name)) {
  if (limit.unit != unit) {
    const bool pounds = unit == WeightUnit::kPounds;  // of the weights
    factor_ = Exact::Whole(pounds ? kPoundInTenMicrograms : kKilogramInTenMicrograms);
    limit_ = limit_ * Exact::Whole(pounds ? kKilogramInTenMicrograms : kPoundInTenMicrograms);
  }
}

int LimitTest::Compare(const Exact& weight) const {
  const auto order = factor_.Sign() == 0
                         ? weight <=> limit_
                         : CompareProducts(weight, factor_, limit_, Exact::Whole(1));
  return std::is_lt(order) ? -1 : (std::is_gt(order) ? 1 : 0);
}

Exact CheckedLimit(double limit, std::string_view name) {
  if (!std::isfinite(limit) || limit < 0) {
    throw QuestionError("The limit '" + std::string(name) + "' is not a number from 0.");
  }
  return Exact::Of(limit);
}

}  // namespace vrx
