#include "exchange/imported_data.h"

#include <set>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace vrx {
namespace {

TEST(ImportedData, ReadsEmptyWhereNothingWasSet) {
  ImportedData data;
  data.Resize(3);
  data.SetCell(1, kImportedType, "BATCH");

  EXPECT_EQ(data.RowCount(), 3U);
  EXPECT_EQ(data.Cell(1, kImportedType), "BATCH");
  EXPECT_EQ(data.Cell(1, kImportedTarget), "");
  EXPECT_EQ(data.Cell(2, kImportedType), "");
  EXPECT_EQ(data.Cell(0, kImportedType), "");
  EXPECT_EQ(data.Cell(4, kImportedType), "");
}

TEST(ImportedData, KeepsCellsSetInAnyOrderApart) {
  ImportedData data;
  data.Resize(1);
  for (const int column : {112, 1, 13, 12, 50, 2}) {
    data.SetCell(1, column, std::to_string(column));
  }
  for (const int column : {1, 2, 12, 13, 50, 112}) {
    EXPECT_EQ(data.Cell(1, column), std::to_string(column));
  }
  EXPECT_EQ(data.Cell(1, 51), "");
}

TEST(ImportedData, OverwritesACell) {
  ImportedData data;
  data.Resize(1);
  data.SetCell(1, kImportedType, "BATCH");
  data.SetCell(1, kImportedType, "FEED");
  EXPECT_EQ(data.Cell(1, kImportedType), "FEED");
}

TEST(ImportedData, RefusesACellOutsideTheTable) {
  ImportedData data;
  data.Resize(2);
  EXPECT_THROW(data.SetCell(0, 1, "x"), std::out_of_range);
  EXPECT_THROW(data.SetCell(3, 1, "x"), std::out_of_range);
  EXPECT_THROW(data.SetCell(1, 0, "x"), std::out_of_range);
  EXPECT_THROW(data.SetCell(1, 113, "x"), std::out_of_range);
}

TEST(ImportedData, KnowsWhichRowsWereFilled) {
  ImportedData data;
  data.Resize(2);
  data.SetCell(1, kImportedTarget, "");
  EXPECT_TRUE(data.Filled(1));
  EXPECT_FALSE(data.Filled(2));
  EXPECT_FALSE(data.Filled(0));
}

TEST(ImportedData, ResizeEmptiesEveryCell) {
  ImportedData data;
  data.Resize(1);
  data.SetCell(1, kImportedType, "BATCH");
  data.Resize(2);
  EXPECT_FALSE(data.Filled(1));
  EXPECT_EQ(data.Cell(1, kImportedType), "");
}

TEST(ImportColumnKey, UsesTheNamesOfTheGrid) {
  EXPECT_EQ(ImportColumnKey(1), "Imported_TransactionNumber");
  EXPECT_EQ(ImportColumnKey(2), "Imported_RecipeID");
  EXPECT_EQ(ImportColumnKey(3), "Imported_Type");
  EXPECT_EQ(ImportColumnKey(4), "Imported_Target");
  EXPECT_EQ(ImportColumnKey(5), "Imported_IngredientID");
  EXPECT_EQ(ImportColumnKey(6), "Imported_ActualBatch");
  EXPECT_EQ(ImportColumnKey(7), "Imported_PenID");
  EXPECT_EQ(ImportColumnKey(8), "Imported_ActualFeed");
  EXPECT_EQ(ImportColumnKey(9), "Imported_Time");
  EXPECT_EQ(ImportColumnKey(10), "Imported_Date");
  EXPECT_EQ(ImportColumnKey(11), "Imported_UserID");
  EXPECT_EQ(ImportColumnKey(12), "Calculated_Ing%OfBatch");
  EXPECT_EQ(ImportColumnKey(13), "Calculated_Ing01Wt");
  EXPECT_EQ(ImportColumnKey(21), "Calculated_Ing09Wt");
  EXPECT_EQ(ImportColumnKey(22), "Calculated_Ing10Wt");
  EXPECT_EQ(ImportColumnKey(112), "Calculated_Ing100Wt");
}

TEST(ImportColumnKey, GivesEachColumnAKeyOfItsOwn) {
  std::set<std::string> keys;
  for (int column = 1; column <= kImportColumns; ++column) {
    keys.insert(ImportColumnKey(column));
  }
  EXPECT_EQ(keys.size(), static_cast<std::size_t>(kImportColumns));
  EXPECT_EQ(ImportColumnKey(0), "");
  EXPECT_EQ(ImportColumnKey(113), "");
}

}  // namespace
}  // namespace vrx
