#include "database/schema.h"

namespace vrx {
namespace {

constexpr std::string_view kInteger = "INTEGER";
constexpr std::string_view kKey = "INTEGER PRIMARY KEY";
constexpr std::string_view kReal = "REAL";
constexpr std::string_view kText = "TEXT";

std::vector<std::string> RecipeIndexes() {
  return {
      "CREATE INDEX RecipeRationByRecipe ON RecipeRation (RecipeID)",
      "CREATE INDEX RecipeRationByIngredient ON RecipeRation (Ingredient)",
  };
}

// Each index serves a view of the history: values of the levels, number of records, and records of
// an innermost group in stored order are found without a scan of the table. `Type` follows a name
// that is searched with and without a type. The first index also gives the highest number. `UserID`
// is a number stored as text and is ordered as a number.
//
// An index that starts with a name would make each import write one page per name all over the
// file, more and more as the file grows. An index that starts with the range of transactions is
// written at the newest range only; a search by name visits each range. Users are few.
std::vector<std::string> TransactionIndexes() {
  const std::string by_name = " ON Transactions (" + std::string(kTransactionRange) + ", ";
  const std::string batches = "Recipe, Ingredient, Type) WHERE Type = 'BATCH'";
  const std::string by_user = " ON Transactions (CAST(UserID AS INTEGER), UserID, ";
  return {
      "CREATE INDEX TransactionsByNumber ON Transactions ([Transaction], Type)",
      "CREATE INDEX TransactionsByDate ON Transactions (Date, [Transaction], Type)",
      "CREATE INDEX TransactionsByRecipe" + by_name + "Recipe, Type)",
      "CREATE INDEX TransactionsByRecipeIngredient" + by_name + batches,
      "CREATE INDEX TransactionsByIngredient" + by_name + "Ingredient, Type)",
      "CREATE INDEX TransactionsByPen" + by_name + "Pen, Type)",
      "CREATE INDEX TransactionsByUserTransaction" + by_user + "[Transaction])",
      "CREATE INDEX TransactionsByUserType" + by_user + "Type)",
  };
}

std::string NumberText(int number, int width) {
  std::string digits = std::to_string(number);
  const auto wanted = static_cast<std::size_t>(width);
  return digits.size() < wanted ? std::string(wanted - digits.size(), '0') + digits : digits;
}

void AppendCommonTables(std::vector<Table>& tables) {
  tables.push_back({kUnitsTable, {{"UoM", kText}}});
  tables.push_back({kHistoryTable, {{"Created", kText}, {"Modified", kText}}});
  tables.push_back({kMarkerTable, {{"dBType", kText}}});
}

std::vector<Table> RecipeTables() {
  return {
      {kIngredientTable,
       {{"ID", kKey},
        {"Name", kText},
        {"Description", kText},
        {"DryMatter%", kInteger},
        {"HandAdd", kInteger}}},
      {kRecipeTable,
       {{"ID", kKey},
        {"Name", kText},
        {"Description", kText},
        {"BatchType", kText},
        {"HeadCount", kInteger},
        {"RationTarget", kText},
        {"AdjBatTotIndex", kText}}},
      {kRecipeRationTable,
       {{"RecipeID", kText},
        {"Ingredient", kText},
        {"Target", kText},
        {"Ration%", kText},
        {"DryMatter%", kText},
        {"DryMatter", kText},
        {"BatchTarget", kText},
        {"Sequence", kInteger},
        {"HandAdd", kInteger},
        {"Ingredient%", kText}}},
      {kPenTable, {{"ID", kKey}, {"Name", kText}, {"Description", kText}, {"FeedAmount", kText}}}};
}

std::vector<Table> TransactionTables() {
  Table transactions{kTransactionsTable,
                     {{"Transaction", kInteger},
                      {"Recipe", kText},
                      {"Type", kText},
                      {"UserID", kText},
                      {"Ingredient", kText},
                      {"Pen", kText},
                      {"Target", kReal},
                      {"ActualBatch", kReal},
                      {"Time", kText},
                      {"Date", kText},
                      {"ActualFeed", kReal},
                      {"IngPercent", kReal}}};
  for (int id = 1; id <= kWeightColumnCount; ++id) {
    transactions.columns.push_back({IngredientWeightColumn(id), kReal});
  }
  transactions.columns.push_back({std::string(kRowNumberColumn), kKey});
  return {transactions};
}

}  // namespace

std::string IngredientWeightColumn(int id) { return "Ing" + NumberText(id, 2) + "Wt"; }

std::string Bracketed(std::string_view name) { return "[" + std::string(name) + "]"; }

std::vector<Table> Schema(DatabaseKind kind) {
  std::vector<Table> tables = kind == DatabaseKind::kRecipe ? RecipeTables() : TransactionTables();
  AppendCommonTables(tables);
  return tables;
}

std::vector<std::string> SchemaIndexes(DatabaseKind kind) {
  return kind == DatabaseKind::kRecipe ? RecipeIndexes() : TransactionIndexes();
}

}  // namespace vrx
