#include "export/export_plan.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "history/columns.h"
#include "history/data_group.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;

TEST(ExportPlanTable, HoldsAPlanForEachDataGroupByItsIndex) {
  ASSERT_EQ(ExportPlans().size(), DataGroups().size());
  for (int group = 0; group < kDataGroupCount; ++group) {
    ASSERT_NE(FindExportPlan(group), nullptr);
    EXPECT_EQ(FindExportPlan(group)->group, group);
  }
  EXPECT_EQ(FindExportPlan(-1), nullptr);
  EXPECT_EQ(FindExportPlan(kDataGroupCount), nullptr);
}

TEST(ExportPlanTable, TheLevelsAreThoseOfTheGrid) {
  for (const DataGroup& group : DataGroups()) {
    std::vector<std::string_view> fields;
    for (const ExportLevel& level : FindExportPlan(group.index)->levels) {
      fields.push_back(level.field);
    }
    EXPECT_EQ(fields, group.levels) << group.item;
  }
}

TEST(ExportPlanTable, OnlyGroup4TakesTheColumnsOfAnother) {
  for (const ExportPlan& plan : ExportPlans()) {
    EXPECT_EQ(plan.column_group, plan.group == 4 ? 3 : plan.group);
  }
}

TEST(ExportPlanTable, OnlyDatesStandInDescendingOrder) {
  for (const ExportPlan& plan : ExportPlans()) {
    for (const ExportLevel& level : plan.levels) {
      EXPECT_EQ(level.order == ValueOrder::kDescending, level.field == "Date");
    }
  }
}

TEST(ExportPlanTable, AUserLevelIsCalledUserId) {
  for (const ExportPlan& plan : ExportPlans()) {
    for (const ExportLevel& level : plan.levels) {
      EXPECT_EQ(level.element, level.field == "UserID" ? "User_Id" : level.field);
    }
  }
}

std::vector<std::string_view> Attributes(const std::vector<ExportWeight>& weights) {
  std::vector<std::string_view> names(weights.size());
  std::transform(weights.begin(), weights.end(), names.begin(),
                 [](const ExportWeight& weight) { return weight.attribute; });
  return names;
}

TEST(ExportPlanTable, UserByTransactionsHasNoTargetWeight) {
  EXPECT_THAT(Attributes(FindExportPlan(11)->weights), ElementsAre("Batch_Weight", "Feed_Weight"));
}

TEST(ExportPlanTable, RecipesByIngredientHaveTheBatchWeightOnly) {
  EXPECT_THAT(Attributes(FindExportPlan(5)->weights), ElementsAre("Batch_Weight"));
}

TEST(ExportPlanTable, ATypeHasTheBatchOrTheFeedWeightBeforeTheTarget) {
  for (const int group : {1, 2, 3, 4, 12}) {
    EXPECT_THAT(Attributes(FindExportPlan(group)->weights),
                ElementsAre("Batch_Weight", "Target_Weight"));
    EXPECT_THAT(Attributes(FindExportPlan(group)->fed_weights),
                ElementsAre("Feed_Weight", "Target_Weight"));
  }
}

// BuildFieldList leaves out every field that is found in the exclude text.
TEST(ExportPlanTable, NoFieldIsAPartOfAnotherExcludedOne) {
  for (const ExportPlan& plan : ExportPlans()) {
    const auto excluded = std::count_if(
        HistoryColumnTable().begin(), HistoryColumnTable().end(), [&](const HistoryColumn& column) {
          return plan.excluded.find(column.field) != std::string_view::npos;
        });
    const auto named =
        plan.excluded.empty() ? 0 : std::count(plan.excluded.begin(), plan.excluded.end(), ',') + 1;
    EXPECT_EQ(excluded, named) << "group " << plan.group;
  }
}

}  // namespace
}  // namespace vrx::testing
