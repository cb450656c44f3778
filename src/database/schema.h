#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vrx {

enum class DatabaseKind { kRecipe, kTransaction };

// Header fields of every database of this system, templates included. Both kinds have the same
// application ID; only the marker table holds the kind.
inline constexpr std::int32_t kApplicationId = 0x56525832;  // "VRX2"
inline constexpr std::int32_t kSchemaVersion = 1;           // user_version

inline constexpr std::string_view kIngredientTable = "Ingredient";
inline constexpr std::string_view kRecipeTable = "Recipe";
inline constexpr std::string_view kRecipeRationTable = "RecipeRation";
inline constexpr std::string_view kPenTable = "Pen";
inline constexpr std::string_view kTransactionsTable = "Transactions";
inline constexpr std::string_view kUnitsTable = "UnitsOfMeasure";
inline constexpr std::string_view kHistoryTable = "History";
inline constexpr std::string_view kMarkerTable = "BrantockDatabase";

// SQL expression for the range of transaction numbers that a row of `Transactions` belongs to: a
// whole number, the lowest for rows without a transaction. The indexes by name start with this
// exact expression. A yard has about 30,000 rows in a range, and 30 ranges in a million rows.
inline constexpr std::string_view kTransactionRange =
    "ifnull([Transaction] >> 11, -9007199254740992)";

// Weight columns `Ing01Wt` to `Ing100Wt` of a transaction row.
inline constexpr int kWeightColumnCount = 100;
inline constexpr int kStoredWeightCount = 32;  // filled by an import; the others stay NULL

// Last column of `Transactions`: the row's ID, which then survives VACUUM. Databases made by
// earlier versions lack it until AddRowNumbers.
inline constexpr std::string_view kRowNumberColumn = "RowNumber";

struct Column {
  std::string name;
  std::string_view type;  // INTEGER, REAL or TEXT, with constraints
};

struct Table {
  std::string_view name;
  std::vector<Column> columns;
};

// Tables of a kind, columns in stored order.
[[nodiscard]] std::vector<Table> Schema(DatabaseKind kind);

// "Ing01Wt" for ingredient 1, "Ing100Wt" for ingredient 100.
[[nodiscard]] std::string IngredientWeightColumn(int id);

// The name in square brackets, the only quoting that SQLite never interprets as a string.
[[nodiscard]] std::string Bracketed(std::string_view name);

// The statements that make the indexes of a kind.
std::vector<std::string> SchemaIndexes(DatabaseKind kind);

}  // namespace vrx
