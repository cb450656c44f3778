#include "history/data_group.h"

#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "history/columns.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;

TEST(DataGroupTable, HoldsThirteenGroupsByTheirIndex) {
  ASSERT_EQ(DataGroups().size(), std::size_t{kDataGroupCount});
  for (int index = 0; index < kDataGroupCount; ++index) {
    ASSERT_NE(FindDataGroup(index), nullptr);
    EXPECT_EQ(FindDataGroup(index)->index, index);
  }
  EXPECT_EQ(FindDataGroup(-1), nullptr);
  EXPECT_EQ(FindDataGroup(kDataGroupCount), nullptr);
}

TEST(DataGroupTable, NamesOnlyColumnsThatThereAre) {
  for (const DataGroup& group : DataGroups()) {
    for (const auto* keys : {&group.levels, &group.order, &group.hidden}) {
      for (const std::string_view key : *keys) {
        EXPECT_NE(HistoryColumnOfKey(key), 0) << group.item << ": " << key;
      }
    }
    EXPECT_TRUE(group.total_column.empty() || HistoryColumnOfKey(group.total_column) != 0);
  }
}

TEST(DataGroupTable, AByNameGroupIsGroupedByTheNamedColumnFirst) {
  std::vector<int> by_name;
  for (const DataGroup& group : DataGroups()) {
    if (!group.named_column.empty()) {
      EXPECT_EQ(group.levels.front(), group.named_column);
      by_name.push_back(group.index);
    }
  }
  EXPECT_THAT(by_name, ElementsAre(4, 7, 9));
}

TEST(HistoryColumnTable, CountsFromOneAndNamesTheFieldsInStoredOrder) {
  EXPECT_EQ(HistoryColumnAt(1).field, "Transaction");
  EXPECT_EQ(HistoryColumnAt(12).field, "IngPercent");
  EXPECT_EQ(HistoryColumnAt(13).field, "Ing01Wt");
  EXPECT_EQ(HistoryColumnAt(112).field, "Ing100Wt");
  EXPECT_EQ(HistoryColumnAt(112).key, "Calculated_Ing100Wt");
  EXPECT_EQ(HistoryColumnAt(13).caption, "Ing01_Wt");
  EXPECT_EQ(HistoryColumnAt(112).caption, "Ing100_Wt");
  EXPECT_THROW(HistoryColumnAt(0), std::out_of_range);
  EXPECT_THROW(HistoryColumnAt(117), std::out_of_range);
}

TEST(HistoryColumnTable, ReportsCaptionGroupPrefixAlignmentAndSumOfEachColumn) {
  struct Row {
    std::string_view caption;
    std::string_view prefix;
    bool right;
    bool summed;
    ColumnContent content;
  };
  using enum ColumnContent;
  const std::vector<Row> rows{{"Transaction", "Trans:", false, false, kNumber},
                              {"Recipe", "Recipe:", false, false, kText},
                              {"Type", "", false, false, kText},
                              {"User ID", "User ID:", false, false, kNumber},
                              {"Ingredient", "Ingred:  ", false, false, kText},
                              {"Pen", "Pen:", false, false, kText},
                              {"Target Wt", "", true, true, kWeight},
                              {"Batch Wt", "", true, true, kWeight},
                              {"Time", "", false, false, kTime},
                              {"Date", "Date:", false, false, kDate},
                              {"Feed Wt", "", true, true, kWeight},
                              {"Ing% Of Batch", "", true, false, kWeight}};
  for (const HistoryColumn& column : StoredColumns()) {
    const bool ingredient = column.index >= kFirstIngredientColumn;
    const Row row = ingredient ? Row{column.caption, "", true, true, kWeight}
                               : rows.at(static_cast<std::size_t>(column.index) - 1);
    EXPECT_EQ(column.caption, row.caption);
    EXPECT_EQ(column.group_prefix, row.prefix);
    EXPECT_EQ(column.right_aligned, row.right) << column.caption;
    EXPECT_EQ(column.summed, row.summed) << column.caption;
    EXPECT_EQ(column.content, row.content) << column.caption;
  }
}

TEST(HistoryColumnTable, KeysAreNotCaseSensitive) {
  EXPECT_EQ(HistoryColumnOfKey("Actualbatch"), 8);
  EXPECT_EQ(HistoryColumnOfKey("calculated_ing%ofbatch"), 12);
  EXPECT_EQ(HistoryColumnOfKey("Weight"), 0);
}

}  // namespace
}  // namespace vrx::testing
