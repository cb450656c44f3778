#include "feed/ration_model.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <numeric>
#include <stdexcept>

#include "feed/soft_number.h"

namespace vrx::testing {
namespace {

constexpr std::uint64_t kLargest = std::numeric_limits<std::int32_t>::max();

struct Overflow {};

std::uint64_t Checked(std::uint64_t value) {
  if (value > kLargest) {
    throw Overflow{};
  }
  return value;
}

std::uint64_t WholeCell(const std::string& text) { return Whole(ReadDecimal(text)); }

Binary Single(std::uint64_t value) { return Rounded(FromWhole(value), kSingleBits); }

std::uint64_t FactorOfAdjustItem(int index) { return static_cast<std::uint64_t>(120 - index); }

std::string AsFedWeight(const std::string& type, const RecipeLineRecord& line) {
  const std::uint64_t figure = WholeCell(line.dry_matter_percent);
  const Binary dry_matter = FromWhole(figure == 0 ? 100 : figure);
  if (type == "P") {
    const Binary tens_of_thousands =
        Product(ReadSingle(line.ingredient_percent), FromWhole(10000), kDoubleBits);
    const std::uint64_t whole = Checked(Whole(Significant(tens_of_thousands, kDoubleDigits)));
    return std::to_string(Checked(Whole(Quotient(FromWhole(whole), dry_matter, kDoubleBits))));
  }
  const Binary share = Quotient(dry_matter, FromWhole(100), kDoubleBits);
  const Binary weight = Product(Quotient(FromWhole(1), share, kDoubleBits),
                                FromWhole(WholeCell(line.target)), kDoubleBits);
  return std::to_string(Checked(Whole(weight)));
}

std::string PercentOf(std::uint64_t part, std::uint64_t total, int decimals) {
  const Binary share = Quotient(Single(part), Single(total), kDoubleBits);
  return Fixed(Significant(Product(share, FromWhole(100), kDoubleBits), kDoubleDigits), decimals);
}

std::uint64_t SumOf(const std::vector<std::string>& cells) {
  return std::accumulate(
      cells.begin(), cells.end(), std::uint64_t{0},
      [](std::uint64_t sum, const std::string& cell) { return Checked(sum + WholeCell(cell)); });
}

std::string SingleSumOf(const std::vector<std::string>& cells, int decimals) {
  Binary sum;
  for (const std::string& cell : cells) {
    sum = Sum(sum, ReadSingle(cell), kSingleBits);
  }
  return Fixed(Significant(sum, kSingleDigits), decimals);
}

std::vector<std::string> ColumnOf(const Ration& ration, std::string RecipeLineRecord::*cell) {
  std::vector<std::string> cells;
  for (const RecipeLineRecord& line : ration.lines) {
    cells.push_back(line.*cell);
  }
  return cells;
}

std::vector<std::string> Shares(const Ration& ration) {
  std::uint64_t total = 0;
  for (const RecipeLineRecord& line : ration.lines) {
    total += WholeCell(line.dry_matter_percent) == 0 ? 0 : WholeCell(line.target);
  }
  Checked(total);
  std::vector<std::string> shares;
  for (const RecipeLineRecord& line : ration.lines) {
    const bool counts = total > 0 && WholeCell(line.dry_matter_percent) != 0;
    shares.push_back(counts ? PercentOf(WholeCell(line.target), total, 3) : "0.000");
  }
  return shares;
}

std::vector<std::string> BatchTargets(const Ration& ration, const std::vector<std::string>& fed) {
  const bool by_head = ration.recipe.batch_type == "H";
  const std::uint64_t amount = by_head ? static_cast<std::uint64_t>(ration.recipe.head_count)
                                       : WholeCell(ration.recipe.ration_target);
  const Binary adjusted =
      Single(ModelAdjusted(amount, static_cast<int>(WholeCell(ration.recipe.adjust_batch_index))));
  const std::uint64_t basis = by_head ? 100 : SumOf(fed);
  std::vector<std::string> targets;
  for (const std::string& cell : fed) {
    if (basis == 0) {
      targets.emplace_back("0");
      continue;
    }
    const Binary factor = Quotient(adjusted, Single(basis), kDoubleBits);
    const Binary batch =
        Rounded(Product(factor, Single(WholeCell(cell)), kDoubleBits), kSingleBits);
    targets.push_back(std::to_string(Checked(Whole(Significant(batch, kSingleDigits)))));
  }
  return targets;
}

RecipeInputs Inputs(const std::string& type, const TotalsRow& row) {
  if (type == "P") {
    const bool open = row.ingredient_percent == "100.00";
    return {.head_count = false, .ration_target = open, .adjust_batch = open};
  }
  const bool open = type != "!" && row.target != "0";
  return {.head_count = open, .ration_target = open, .adjust_batch = open};
}

ModelOutcome Compute(const Ration& ration) {
  const std::string& type = ration.recipe.batch_type;
  ModelOutcome outcome;
  for (const RecipeLineRecord& line : ration.lines) {
    outcome.dry_matter.push_back(type == "!" ? line.dry_matter : AsFedWeight(type, line));
  }
  outcome.ration_percent = Shares(ration);
  const std::vector<std::string> typed = ColumnOf(ration, &RecipeLineRecord::target);
  const std::uint64_t dry = SumOf(typed);
  const std::uint64_t as_fed = SumOf(outcome.dry_matter);
  outcome.batch_target = type == "!" ? ColumnOf(ration, &RecipeLineRecord::batch_target)
                                     : BatchTargets(ration, outcome.dry_matter);
  const auto hand_added = std::count_if(ration.lines.begin(), ration.lines.end(),
                                        [](const RecipeLineRecord& line) { return line.hand_add; });
  outcome.row = {
      .target = std::to_string(dry),
      .ration_percent = SingleSumOf(outcome.ration_percent, 3),
      .dry_matter_percent = dry > 0 && as_fed > 0 ? PercentOf(dry, as_fed, 1) : "0.0",
      .dry_matter = std::to_string(as_fed),
      .batch_target = type == "!" ? "0" : std::to_string(SumOf(outcome.batch_target)),
      .hand_add = std::to_string(hand_added),
      .ingredient_percent = SingleSumOf(ColumnOf(ration, &RecipeLineRecord::ingredient_percent), 2),
  };
  outcome.enabled = Inputs(type, outcome.row);
  return outcome;
}

}  // namespace

std::optional<ModelOutcome> ModelRation(const Ration& ration) {
  if (ration.entry_row) {
    throw std::invalid_argument("the model knows no entry row");
  }
  try {
    return Compute(ration);
  } catch (const Overflow&) {
    return std::nullopt;
  }
}

std::uint64_t ModelAdjusted(std::uint64_t amount, int adjust_batch_index) {
  const Binary factor = Rounded(
      Quotient(FromWhole(FactorOfAdjustItem(adjust_batch_index)), FromWhole(100), kDoubleBits),
      kSingleBits);
  const Binary product = Rounded(Product(factor, FromWhole(amount), kDoubleBits), kSingleBits);
  return Whole(Significant(product, kSingleDigits));
}

}  // namespace vrx::testing
