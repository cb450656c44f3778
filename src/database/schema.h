#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

namespace vrx {

enum class DatabaseKind { kRecipe, kTransaction };

// Header fields of every database of this system, templates included. Both kinds bear the same
// application id: what kind a file is stands in its marker table alone, where a copy of a template
// is turned into a user's file.
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

// The range of transaction numbers that a row of `Transactions` belongs to, a whole number for
// every row: those without a transaction have one of their own, ahead of all others. The indexes by
// name are led by it, in these very words. A yard has some 30,000 rows in a range and stores about
// 30 ranges with a million rows.
inline constexpr std::string_view kTransactionRange =
    "ifnull([Transaction] >> 11, -9007199254740992)";

// Weights `Ing01Wt` to `Ing100Wt` of a transaction row; the store fills the first ones only.
inline constexpr int kWeightColumnCount = 100;
inline constexpr int kStoredWeightCount = 32;

struct Column {
  std::string name;
  std::string_view type;  // INTEGER, REAL or TEXT; behind it what else the column is
};

struct Table {
  std::string_view name;
  std::vector<Column> columns;
};

// The tables of a kind, columns in stored order.
std::vector<Table> Schema(DatabaseKind kind);

// "Ing01Wt" for ingredient 1, "Ing100Wt" for ingredient 100.
std::string IngredientWeightColumn(int id);

// A name in square brackets: the only quoting that SQLite never takes for a text.
std::string Bracketed(std::string_view name);

// Makes the blank template of a kind, with its fixed rows and the NUL marker. Written beside `path`
// and renamed: the path holds a whole template or what it held before. Throws DatabaseError or
// std::filesystem::filesystem_error.
void CreateTemplate(const std::filesystem::path& path, DatabaseKind kind);

// A blank database of a kind that is no file, for reading only. Throws DatabaseError.
SQLite::Database BlankInMemory(DatabaseKind kind);

}  // namespace vrx
