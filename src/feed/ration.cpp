#include "feed/ration.h"

#include <optional>
#include <string>
#include <utility>

#include "base/number.h"
#include "feed/adjust_list.h"
#include "feed/batch_type.h"
#include "feed/whole_number.h"

namespace vrx {
namespace {

constexpr double kHundred = 100.0;
constexpr double kPercentBase = 10000.0;  // as-fed weight of 100 % of pure dry matter

std::int32_t Adjusted(std::int32_t amount, const std::string& adjust_batch_index) {
  const int value = AdjustItemValue(TextToLong(adjust_batch_index));
  const auto factor = static_cast<float>(value / kHundred);
  const auto product = static_cast<float>(static_cast<double>(factor) * amount);
  return WholeThroughText(product, "the adjusted batch total");
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
    weight = WholeThroughText(percent * kPercentBase, "a line's as-fed weight") / dry_matter;
  } else {
    // In this order: it decides on which side of a half a quotient falls.
    weight = (1.0 / (dry_matter / kHundred)) * TextToLong(line.target);
  }
  const std::optional<std::int32_t> whole = RoundToLong(weight);
  if (!whole) {
    throw OverflowError("a line's as-fed weight");
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

}  // namespace vrx
