#include "feed/ration.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "base/number.h"
#include "base/translation.h"
#include "feed/batch_type.h"

namespace vrx {
namespace {

constexpr double kHundred = 100.0;
constexpr double kPercentBase = 10000.0;  // as-fed weight of 100 % at 100 % dry matter

std::int32_t Adjusted(std::int32_t amount, const std::string& adjust_batch_index) {
  const int value = AdjustItemValue(TextToLong(adjust_batch_index));
  const auto factor = static_cast<float>(value / kHundred);
  const auto product = static_cast<float>(static_cast<double>(factor) * amount);
  return WholeThroughText(product, TrMark("the adjusted batch total"));
}

bool HasDryMatterFigure(const RecipeLineRecord& line) {
  return TextToLong(line.dry_matter_percent) != 0;
}

std::string Share(const RecipeLineRecord& line, std::int32_t total) {
  if (total <= 0 || !HasDryMatterFigure(line)) {
    return "0.000";
  }
  const auto target = static_cast<float>(TextToLong(line.target));
  const double share = static_cast<double>(target) / static_cast<double>(static_cast<float>(total));
  return Format(share * kHundred, "0.000");
}

// The sum starts with the cell of the entry row, if there is one.
std::int32_t SumWholes(std::string_view field, const std::vector<RecipeLineRecord>& lines,
                       const std::optional<RecipeLineRecord>& entry_row,
                       std::string RecipeLineRecord::*cell) {
  WholeSum sum(field);
  if (entry_row) {
    sum.Add(TextToLong((*entry_row).*cell));
  }
  for (const RecipeLineRecord& line : lines) {
    sum.Add(TextToLong(line.*cell));
  }
  return sum.Value();
}

float SumFractions(const std::vector<RecipeLineRecord>& lines,
                   std::string RecipeLineRecord::*cell) {
  float sum = 0;
  for (const RecipeLineRecord& line : lines) {
    sum += TextToSingle(line.*cell);
  }
  return sum;
}

int CountHandAdd(const Ration& ration) {
  int count = ration.entry_row && ration.entry_row->hand_add ? 1 : 0;
  for (const RecipeLineRecord& line : ration.lines) {
    count += line.hand_add ? 1 : 0;
  }
  return count;
}

std::string IngredientPercentTotal(const std::vector<RecipeLineRecord>& lines) {
  return Format(SumFractions(lines, &RecipeLineRecord::ingredient_percent), "0.00");
}

// Factor for the as-fed weights; nothing if every batch target is 0.
std::optional<double> BatchFactor(const RecipeRecord& recipe, BatchScale scale,
                                  std::int32_t as_fed) {
  if (scale == BatchScale::kHeadCount) {
    return static_cast<float>(GetAdjustedHeadCount(recipe)) / kHundred;
  }
  const auto target = static_cast<double>(static_cast<float>(GetAdjustedRationTarget(recipe)));
  const auto total = static_cast<float>(as_fed);
  return total > 0 ? std::optional(target / static_cast<double>(total)) : std::nullopt;
}

// Sets the batch targets and returns their sum.
std::int32_t RecalcBatchTargets(Ration& ration, BatchScale scale, std::int32_t as_fed) {
  const std::optional<double> factor = BatchFactor(ration.recipe, scale, as_fed);
  WholeSum sum("BatchTarget");
  std::vector<std::string> batch_targets;
  for (const RecipeLineRecord& line : ration.lines) {
    const auto weight = static_cast<float>(TextToLong(line.dry_matter));
    const auto batch = static_cast<float>(factor.value_or(0) * static_cast<double>(weight));
    const std::int32_t whole = WholeThroughText(batch, TrMark("a line's 'BatchTarget'"));
    sum.Add(whole);
    batch_targets.push_back(std::to_string(whole));
  }
  for (std::size_t line = 0; line < batch_targets.size(); ++line) {
    ration.lines[line].batch_target = std::move(batch_targets[line]);
  }
  return sum.Value();
}

RecipeInputs Enabled(const BatchType& type, std::int32_t target,
                     std::string_view ingredient_percent_total) {
  const bool flag = type.entry == LineEntry::kPercent || target >= 1;
  return EnableRecipeInputs(type.code, flag, ingredient_percent_total);
}

}  // namespace

std::int32_t GetAdjustedRationTarget(const RecipeRecord& recipe) {
  return Adjusted(TextToLong(recipe.ration_target), recipe.adjust_batch_index);
}

std::int32_t GetAdjustedHeadCount(const RecipeRecord& recipe) {
  return Adjusted(recipe.head_count, recipe.adjust_batch_index);
}

void RecalcLineDryMatter(std::string_view batch_type, RecipeLineRecord& line) {
  const BatchType* type = FindBatchType(batch_type);
  const std::int32_t figure = TextToLong(line.dry_matter_percent);
  if (type == nullptr || type->entry == LineEntry::kNone || figure < 0) {
    return;
  }
  const double dry_matter = figure == 0 ? kHundred : figure;
  double weight = 0;
  if (type->entry == LineEntry::kPercent) {
    const auto percent = static_cast<double>(TextToSingle(line.ingredient_percent));
    weight =
        WholeThroughText(percent * kPercentBase, TrMark("a line's as-fed weight")) / dry_matter;
  } else {
    // The order of operations matters: it decides how a half is rounded.
    weight = (1.0 / (dry_matter / kHundred)) * TextToLong(line.target);
  }
  const std::optional<std::int32_t> whole = RoundToLong(weight);
  if (!whole) {
    throw OverflowError(TrMark("a line's as-fed weight"));
  }
  line.dry_matter = std::to_string(*whole);
}

void RecalcAllDryMatter(Ration& ration) {
  std::vector<RecipeLineRecord> lines = ration.lines;
  for (RecipeLineRecord& line : lines) {
    RecalcLineDryMatter(ration.recipe.batch_type, line);
  }
  ration.lines = std::move(lines);
}

void RecalcRationPercents(Ration& ration) {
  if (FindBatchType(ration.recipe.batch_type) == nullptr) {
    return;
  }
  WholeSum total("Target");
  const auto add = [&](const RecipeLineRecord& line) {
    if (HasDryMatterFigure(line)) {
      total.Add(TextToLong(line.target));
    }
  };
  if (ration.entry_row) {
    add(*ration.entry_row);
  }
  for (const RecipeLineRecord& line : ration.lines) {
    add(line);
  }
  if (ration.entry_row) {
    ration.entry_row->ration_percent = Share(*ration.entry_row, total.Value());
  }
  for (RecipeLineRecord& line : ration.lines) {
    line.ration_percent = Share(line, total.Value());
  }
}

std::array<std::pair<std::string_view, std::string_view>, 7> TotalsRow::Labels() const {
  return {{{"lblTargetTotal", target},
           {"lblRationPctTotal", ration_percent},
           {"lblDryMatPercent", dry_matter_percent},
           {"lblDryMatTotal", dry_matter},
           {"lblBatchTargetTotal", batch_target},
           {"lblHandAddTotal", hand_add},
           {"lblIngPctTotal", ingredient_percent}}};
}

bool Totals100Percent(std::string_view ingredient_percent_total) {
  return ingredient_percent_total == "100.00";
}

RecipeInputs EnableRecipeInputs(std::string_view batch_type, bool flag,
                                std::string_view ingredient_percent_total) {
  const BatchType* type = FindBatchType(batch_type);
  if (type == nullptr || type->entry == LineEntry::kNone) {
    return {};
  }
  if (type->entry == LineEntry::kWeight) {
    return {.head_count = flag, .ration_target = flag, .adjust_batch = flag};
  }
  const bool open = flag && Totals100Percent(ingredient_percent_total);
  return {.head_count = false, .ration_target = open, .adjust_batch = open};
}

RecipeInputs EnabledByTotals(std::string_view batch_type, const TotalsRow& row) {
  const BatchType* type = FindBatchType(batch_type);
  return type == nullptr ? RecipeInputs{}
                         : Enabled(*type, TextToLong(row.target), row.ingredient_percent);
}

RecipeInputs EnabledByLines(std::string_view batch_type,
                            const std::vector<RecipeLineRecord>& lines) {
  const BatchType* type = FindBatchType(batch_type);
  if (type == nullptr) {
    return {};
  }
  if (type->entry == LineEntry::kPercent) {
    return Enabled(*type, 0, IngredientPercentTotal(lines));
  }
  return Enabled(*type, SumWholes("Target", lines, std::nullopt, &RecipeLineRecord::target), "");
}

RecipeTotals RecalcRecipeTotals(Ration& ration) {
  const BatchType* type = FindBatchType(ration.recipe.batch_type);
  if (type == nullptr) {
    return {};
  }
  AdjustItemValue(TextToLong(ration.recipe.adjust_batch_index));
  const std::int32_t target =
      SumWholes("Target", ration.lines, ration.entry_row, &RecipeLineRecord::target);
  const std::int32_t as_fed =
      SumWholes("DryMatter", ration.lines, ration.entry_row, &RecipeLineRecord::dry_matter);
  double dry_matter_percent = 0;
  if (as_fed > 0 && target > 0) {
    dry_matter_percent = static_cast<double>(static_cast<float>(target)) /
                         static_cast<double>(static_cast<float>(as_fed)) * kHundred;
  }
  const std::string ration_percent =
      Format(SumFractions(ration.lines, &RecipeLineRecord::ration_percent), "0.000");
  const std::string ingredient_percent = IngredientPercentTotal(ration.lines);
  const bool computes_batch = type->scale != BatchScale::kNone && !ration.entry_row;
  const std::int32_t batch_target =
      computes_batch ? RecalcBatchTargets(ration, type->scale, as_fed) : 0;
  return {.row = {.target = Format(target, "0"),
                  .ration_percent = ration_percent,
                  .dry_matter_percent = Format(dry_matter_percent, "0.0"),
                  .dry_matter = Format(as_fed, "0"),
                  .batch_target = Format(batch_target, "0"),
                  .hand_add = Format(CountHandAdd(ration), "0"),
                  .ingredient_percent = ingredient_percent},
          .enabled = Enabled(*type, target, ingredient_percent)};
}

RecipeTotals RecalcRecipe(Ration& ration) {
  Ration computed = ration;
  RecalcAllDryMatter(computed);
  RecalcRationPercents(computed);
  RecipeTotals totals = RecalcRecipeTotals(computed);
  ration = std::move(computed);
  return totals;
}

std::string RecalcFailure(Ration& ration) {
  try {
    RecalcRecipe(ration);
  } catch (const Error& error) {
    return error.what();
  }
  return {};
}

}  // namespace vrx
