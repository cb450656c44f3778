#include "export/export_plan.h"

#include <utility>

#include "history/data_group.h"

namespace vrx {
namespace {

using enum ValueOrder;
using enum NullValues;
using enum SummedRows;

constexpr ExportWeight kBatchWeight{"ActualBatch", "Batch_Weight"};
constexpr ExportWeight kFeedWeight{"ActualFeed", "Feed_Weight"};
constexpr ExportWeight kTargetWeight{"Target", "Target_Weight"};

constexpr ExportLevel kTransaction{"Transaction", "Transaction", kAscending, kShown};
constexpr ExportLevel kType{"Type", "Type", kAscending, kShown};
constexpr ExportLevel kDate{"Date", "Date", kDescending, kRefused};
constexpr ExportLevel kRecipe{"Recipe", "Recipe", kAscending, kShown};
constexpr ExportLevel kIngredient{"Ingredient", "Ingredient", kAscending, kSkipped};
constexpr ExportLevel kPen{"Pen", "Pen", kAscending, kSkipped};
constexpr ExportLevel kUser{"UserID", "User_Id", kAscending, kNoUser};

constexpr std::string_view kNewestFirst = "[Date] DESC";
constexpr std::string_view kAsStored;

// A group whose records stand below the levels that they belong to, as most do.
ExportPlan Plan(int group, int column_group, std::vector<ExportLevel> levels,
                std::string_view excluded, std::vector<ExportWeight> weights) {
  return {.group = group,
          .column_group = column_group,
          .levels = std::move(levels),
          .excluded = excluded,
          .ordering = kNewestFirst,
          .weights = std::move(weights),
          .fed_weights = {},
          .summed = kOwn,
          .whole_transactions = false};
}

// The same with a type as the innermost level.
ExportPlan PlanByType(int group, int column_group, std::vector<ExportLevel> levels,
                      std::string_view excluded) {
  ExportPlan plan =
      Plan(group, column_group, std::move(levels), excluded, {kBatchWeight, kTargetWeight});
  plan.fed_weights = {kFeedWeight, kTargetWeight};
  return plan;
}

ExportPlan With(ExportPlan plan, std::string_view ordering) {
  plan.ordering = ordering;
  return plan;
}

ExportPlan With(ExportPlan plan, SummedRows summed) {
  plan.summed = summed;
  return plan;
}

ExportPlan WithWholeTransactions(ExportPlan plan) {
  plan.whole_transactions = true;
  return plan;
}

std::vector<ExportPlan> MakePlans() {
  return {
      Plan(0, 0, {}, "", {}),
      PlanByType(1, 1, {kTransaction, kType}, "Transaction,Type"),
      WithWholeTransactions(With(
          PlanByType(2, 2, {kDate, kTransaction, kType}, "Date,Transaction,Type"), "[Time] DESC")),
      PlanByType(3, 3, {kRecipe, kType}, "Recipe,Type"),
      PlanByType(4, 3, {kRecipe, kType}, "Recipe,Type"),
      With(Plan(5, 5, {kRecipe, kIngredient}, "Recipe", {kBatchWeight}), kAsStored),
      Plan(6, 6, {kIngredient}, "Ingredient", {kBatchWeight, kTargetWeight}),
      Plan(7, 7, {kIngredient}, "Ingredient", {kBatchWeight, kTargetWeight}),
      Plan(8, 8, {kPen}, "Pen", {kFeedWeight, kTargetWeight}),
      Plan(9, 9, {kPen}, "Pen", {kFeedWeight, kTargetWeight}),
      With(Plan(10, 10, {kPen}, "", {kFeedWeight, kTargetWeight}), "[Recipe]"),
      With(Plan(11, 11, {kUser, kTransaction}, "UserID,Transaction", {kBatchWeight, kFeedWeight}),
           kWholeIfNoUser),
      With(PlanByType(12, 12, {kUser, kType}, "UserID,Type"), kOfUserOrOfTheType),
  };
}

}  // namespace

std::span<const ExportPlan> ExportPlans() {
  static const std::vector<ExportPlan> plans = MakePlans();
  return plans;
}

const ExportPlan* FindExportPlan(int group) {
  if (group < 0 || group >= kDataGroupCount) {
    return nullptr;
  }
  return &ExportPlans()[static_cast<std::size_t>(group)];
}

}  // namespace vrx
