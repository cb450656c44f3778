#include "insight/accuracy_figures.h"

#include <compare>
#include <string_view>
#include <utility>
#include <vector>

namespace vrx {
namespace {

constexpr std::int64_t kFewestMarked = 40;  // loads
constexpr std::int64_t kMarkedPercent = 75;
constexpr double kMarkedMedian = -0.5;  // percent

std::optional<double> SumUnlessEmpty(std::int64_t n, const Exact& sum) {
  return n == 0 ? std::nullopt : std::optional(sum.ToDouble());
}

}  // namespace

double Percent(const Exact& part, const Exact& whole) {
  return Quotient(part * Exact::Whole(100), whole);
}

double Percent(std::int64_t part, std::int64_t whole) {
  return Percent(Exact::Whole(part), Exact::Whole(whole));
}

AccuracyTests::AccuracyTests(const AccuracyLimits& limits, WeightUnit unit)
    : percent_(CheckedLimit(limits.percent, "percent")),
      division_(CheckedLimit(limits.division, "division")),
      weight_(limits.weight, unit, "weight"),
      beyond_(limits.beyond, unit, "beyond") {}

bool AccuracyTests::IsWithin(const Exact& amount, const Exact& target) const {
  return amount <= division_ ||
         std::is_lt(CompareProducts(amount, Exact::Whole(kAllPercent), target, percent_));
}

bool AccuracyTests::IsWithinWeight(const Exact& amount) const {
  return amount <= division_ || weight_.Compare(amount) < 0;
}

bool AccuracySums::Add(const Exact& target, const Exact& actual, const AccuracyTests& tests) {
  if (target.Sign() <= 0) {
    ++without_target_;
    without_target_actual_ += actual;
    return false;
  }
  if (actual.Sign() <= 0) {
    ++not_loaded_;
    not_loaded_target_ += target;
    return false;
  }
  const Exact difference = actual - target;
  const Exact amount = difference.Abs();
  ++n_;
  target_ += target;
  actual_ += actual;
  gross_ += amount;
  if (difference.Sign() < 0) {
    ++below_;
    well_below_ += amount > tests.Division() ? 1 : 0;
  }
  within_weight_ += tests.IsWithinWeight(amount) ? 1 : 0;
  beyond_ += tests.IsBeyond(amount) ? 1 : 0;
  deviations_.Add(difference, target);
  const bool within = tests.IsWithin(amount, target);
  if (within) {
    ++within_;
    target_within_ += target;
  }
  return within;
}

void AccuracySums::AddCounts(const AccuracySums& other) {
  n_ += other.n_;
  within_ += other.within_;
  within_weight_ += other.within_weight_;
  beyond_ += other.beyond_;
  below_ += other.below_;
  well_below_ += other.well_below_;
  not_loaded_ += other.not_loaded_;
  without_target_ += other.without_target_;
  target_ += other.target_;
  actual_ += other.actual_;
  gross_ += other.gross_;
  target_within_ += other.target_within_;
  not_loaded_target_ += other.not_loaded_target_;
  without_target_actual_ += other.without_target_actual_;
}

void AccuracySums::Append(AccuracySums&& other) {
  AddCounts(other);
  deviations_.Append(std::move(other.deviations_));
}

AccuracyFigures AccuracySums::Figures(bool deliveries) {
  return Figures(deviations_.FindQuartiles(Exact::Of(kMarkedMedian)), deliveries);
}

AccuracyFigures AccuracySums::FiguresOf(std::span<AccuracySums> sets, bool deliveries) {
  AccuracySums counts;
  std::vector<Deviations*> deviations;
  for (AccuracySums& set : sets) {
    counts.AddCounts(set);
    deviations.push_back(&set.deviations_);
  }
  return counts.Figures(Deviations::FindQuartiles(deviations, Exact::Of(kMarkedMedian)),
                        deliveries);
}

AccuracyFigures AccuracySums::Figures(const std::optional<Quartiles>& quartiles,
                                      bool deliveries) const {
  AccuracyFigures figures;
  figures.n = n_;
  figures.not_loaded = {not_loaded_, SumUnlessEmpty(not_loaded_, not_loaded_target_)};
  figures.without_target = {without_target_,
                            SumUnlessEmpty(without_target_, without_target_actual_)};
  if (!quartiles) {
    return figures;
  }
  const Exact net = actual_ - target_;
  figures.target = target_.ToDouble();
  figures.actual = actual_.ToDouble();
  figures.net = net.ToDouble();
  figures.net_percent = Percent(net, target_);
  figures.gross = gross_.ToDouble();
  figures.gross_percent = Percent(gross_, target_);
  figures.within = Percent(within_, n_);
  figures.weight_within = Percent(target_within_, target_);
  figures.within_weight = Percent(within_weight_, n_);
  figures.beyond = Percent(beyond_, n_);
  figures.below = Percent(below_, n_);
  figures.median = quartiles->median;
  figures.q1 = quartiles->q1;
  figures.q3 = quartiles->q3;
  if (!deliveries && n_ >= kFewestMarked) {
    figures.marked = well_below_ * 100 >= n_ * kMarkedPercent && quartiles->median_is_low;
  }
  return figures;
}

}  // namespace vrx
