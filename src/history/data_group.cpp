#include "history/data_group.h"

#include <cstddef>
#include <utility>

namespace vrx {
namespace {

constexpr std::string_view kAnyType;
constexpr std::string_view kNoName;
constexpr bool kWithIngredients = true;
constexpr bool kWithoutIngredients = false;

using enum IngredientColumns;

// Lists that several groups share.
using Keys = std::vector<std::string_view>;

Keys RecipeOrder() {
  return {"Recipe", "Type",   "Transaction", "ActualBatch", "Ingredient", "ActualFeed",
          "Pen",    "Target", "UserID",      "Time",        "Date"};
}

std::vector<DataGroup> TransactionGroups() {
  return {
      {.index = 0,
       .item = "Transactions (all)",
       .type = kAnyType,
       .named_column = kNoName,
       .levels = {},
       .order = {"Transaction", "Recipe", "Type", "ActualBatch", "Ingredient", "ActualFeed", "Pen",
                 "Target", "UserID", "Time", "Date"},
       .hidden = {},
       .total_column = {},
       .ingredient_columns = kShown,
       .blanked = {},
       .stylesheet = "TranAll.xsl"},
      {.index = 1,
       .item = "Transactions (batched/fed)",
       .type = kAnyType,
       .named_column = kNoName,
       .levels = {"Transaction", "Type"},
       .order = {"Transaction", "Type", "Recipe", "ActualBatch", "Ingredient", "ActualFeed", "Pen",
                 "Target", "UserID", "Time", "Date"},
       .hidden = {"Transaction", "Type"},
       .total_column = "Recipe",
       .ingredient_columns = kHidden,
       .blanked = {{1, {7, 8, 11, 2}, kWithIngredients}},
       .stylesheet = "TranByBatchFed.xsl"},
      {.index = 2,
       .item = "Transactions (by date)",
       .type = kAnyType,
       .named_column = kNoName,
       .levels = {"Date", "Transaction", "Type"},
       .order = {"Date", "Transaction", "Type", "Recipe", "ActualBatch", "Ingredient", "ActualFeed",
                 "Pen", "Target", "UserID", "Time"},
       .hidden = {"Date", "Transaction", "Type"},
       .total_column = "Recipe",
       .ingredient_columns = kHidden,
       .blanked = {{1, {7, 8, 11, 2}, kWithIngredients}, {2, {7, 8, 11, 2}, kWithIngredients}},
       .stylesheet = "TranByDate.xsl"},
  };
}

std::vector<DataGroup> RecipeGroups() {
  return {
      {.index = 3,
       .item = "Recipes (all)",
       .type = kAnyType,
       .named_column = kNoName,
       .levels = {"Recipe", "Type"},
       .order = RecipeOrder(),
       .hidden = {"Recipe", "Type"},
       .total_column = "Transaction",
       .ingredient_columns = kHidden,
       .blanked = {{1, {7, 11, 1, 8, 5}, kWithIngredients}},
       .stylesheet = "RecipesAll.xsl"},
      {.index = 4,
       .item = "Recipe (by name...)",
       .type = kAnyType,
       .named_column = "Recipe",
       .levels = {"Recipe", "Type"},
       .order = RecipeOrder(),
       .hidden = {"Recipe", "Type"},
       .total_column = "Transaction",
       .ingredient_columns = kHidden,
       .blanked = {{1, {7, 8, 11, 1}, kWithIngredients}},
       .stylesheet = "RecipesByName.xsl"},
      {.index = 5,
       .item = "Recipe (Ingredient Accum)",
       .type = "BATCH",
       .named_column = kNoName,
       .levels = {"Recipe", "Ingredient"},
       .order = {"Recipe", "Ingredient", "Transaction", "ActualBatch", "Type"},
       .hidden = {"Transaction", "Recipe", "Type", "ActualFeed", "Pen", "Target", "UserID", "Time",
                  "Date"},
       .total_column = "Ingredient",
       .ingredient_columns = kHidden,
       .blanked = {{1, {8, 5}, kWithIngredients}},
       .stylesheet = "RecipesIngAccum.xsl"},
  };
}

std::vector<DataGroup> IngredientGroups() {
  return {
      {.index = 6,
       .item = "Ingredients (all)",
       .type = "BATCH",
       .named_column = kNoName,
       .levels = {"Ingredient"},
       .order = {"Ingredient", "Transaction", "Recipe", "Type", "ActualBatch", "ActualFeed", "Pen",
                 "Target", "UserID", "Time", "Date"},
       .hidden = {"Ingredient", "Type", "ActualFeed", "Pen"},
       .total_column = "Transaction",
       .ingredient_columns = kHidden,
       .blanked = {{1, {}, kWithIngredients}},
       .stylesheet = "IngAll.xsl"},
      {.index = 7,
       .item = "Ingredient (by name...)",
       .type = kAnyType,
       .named_column = "Ingredient",
       .levels = {"Ingredient"},
       .order = {"Ingredient", "Transaction", "Recipe", "Type", "Target", "ActualBatch",
                 "ActualFeed", "Pen", "UserID", "Time", "Date"},
       .hidden = {"Ingredient", "Transaction", "Type", "ActualFeed", "Pen"},
       .total_column = "Recipe",
       .ingredient_columns = kHidden,
       .blanked = {{1, {}, kWithIngredients}},
       .stylesheet = "IngByName.xsl"},
  };
}

std::vector<DataGroup> PenGroups() {
  return {
      {.index = 8,
       .item = "Pens Fed (all)",
       .type = "FEED",
       .named_column = kNoName,
       .levels = {"Pen"},
       .order = {"Pen", "Type", "ActualBatch", "Ingredient", "Transaction", "Recipe", "ActualFeed",
                 "Target", "UserID", "Time", "Date"},
       .hidden = {"Pen", "Type", "ActualBatch", "Ingredient"},
       .total_column = "Transaction",
       .ingredient_columns = kHidden,
       .blanked = {},
       .stylesheet = "PensFedAll.xsl"},
      {.index = 9,
       .item = "Pen Fed (by name...)",
       .type = kAnyType,
       .named_column = "Pen",
       .levels = {"Pen"},
       .order = {"Pen", "Transaction", "Recipe", "Type", "Target", "ActualFeed", "ActualBatch",
                 "Ingredient", "UserID", "Time", "Date"},
       .hidden = {"Pen", "Transaction", "Type", "ActualBatch", "Ingredient"},
       .total_column = "Recipe",
       .ingredient_columns = kHidden,
       .blanked = {},
       .stylesheet = "PenFedByName.xsl"},
      {.index = 10,
       .item = "Pen (Ingredient Accum)",
       .type = "FEED",
       .named_column = kNoName,
       .levels = {"Pen"},
       .order = {"Pen"},
       .hidden = {"Transaction", "Type", "Ingredient", "Calculated_Ing%OfBatch", "ActualBatch",
                  "UserID", "Time", "Date"},
       .total_column = "Pen",
       .ingredient_columns = kShownWithoutPercent,
       .blanked = {},
       .stylesheet = "PenIngAccum.xsl"},
  };
}

std::vector<DataGroup> UserGroups() {
  return {
      {.index = 11,
       .item = "User (by transactions)",
       .type = kAnyType,
       .named_column = kNoName,
       .levels = {"UserID", "Transaction"},
       .order = {"UserID", "Transaction", "Recipe", "Type", "ActualBatch", "Ingredient",
                 "ActualFeed", "Pen", "Target", "Time", "Date"},
       .hidden = {"UserID", "Transaction"},
       .total_column = "Recipe",
       .ingredient_columns = kHidden,
       .blanked = {{1, {7, 11, 2, 8, 5, 6}, kWithoutIngredients}, {2, {7}, kWithoutIngredients}},
       .stylesheet = "UserByTran.xsl"},
      {.index = 12,
       .item = "User (by batched/fed)",
       .type = kAnyType,
       .named_column = kNoName,
       .levels = {"UserID", "Type"},
       .order = {"UserID", "Type", "Transaction", "Recipe", "ActualBatch", "Ingredient",
                 "ActualFeed", "Pen", "Target", "Time", "Date"},
       .hidden = {"UserID", "Type"},
       .total_column = "Transaction",
       .ingredient_columns = kHidden,
       .blanked = {{1, {7, 11, 1, 8}, kWithoutIngredients}},
       .stylesheet = "UserByBatchFed.xsl"},
  };
}

std::vector<DataGroup> MakeGroups() {
  std::vector<DataGroup> groups;
  for (auto* const make :
       {TransactionGroups, RecipeGroups, IngredientGroups, PenGroups, UserGroups}) {
    for (DataGroup& group : make()) {
      groups.push_back(std::move(group));
    }
  }
  return groups;
}

}  // namespace

std::span<const DataGroup> DataGroups() {
  static const std::vector<DataGroup> groups = MakeGroups();
  return groups;
}

const DataGroup* FindDataGroup(int index) {
  if (index < 0 || index >= kDataGroupCount) {
    return nullptr;
  }
  return &DataGroups()[static_cast<std::size_t>(index)];
}

}  // namespace vrx
