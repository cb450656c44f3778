#include "support/small_history.h"

#include <filesystem>

#include "base/application.h"
#include "database/connection.h"
#include "database/records.h"
#include "database/schema.h"

namespace vrx::testing {
namespace {

constexpr const char* kRows = R"(
INSERT INTO Transactions ([Transaction], Recipe, Type, UserID, Ingredient, Pen, Target, ActualBatch,
                          Time, Date, ActualFeed, IngPercent, Ing01Wt, Ing02Wt) VALUES
(1, 'STEERS', 'BATCH', '2', 'CORN', NULL, 1000, 998, '08:30:00', '2011-03-14', 0, 60, NULL, NULL),
(1, 'STEERS', 'BATCH', '2', 'HAY', NULL, 600, 602.5, '08:31:00', '2011-03-14', 0, 40, NULL, NULL),
(1, 'STEERS', 'FEED', '2', NULL, 'A01', 800, 0, '14:05:00', '2011-03-15', 810.5, NULL, 486.3, 324.2),
(1, 'STEERS', 'FEED', '2', NULL, 'A02', 800, 0, '14:20:00', '2011-03-15', 780, NULL, 468, 312),
(2, 'HEIFER', 'BATCH', NULL, 'CORN', NULL, 500, 500, '09:00:00', '2011-03-15', 0, 100, NULL, NULL),
(2, 'HEIFER', 'FEED', NULL, NULL, 'A01', 500, 0, '09:30:00', '2011-03-15', 495.25, NULL, 495.25,
 NULL),
(3, 'STEERS', 'FEED', '10', NULL, 'A02', 300, 0, '10:00:00', '2011-03-15', 0, NULL, NULL, NULL),
(NULL, NULL, 'BATCH', NULL, NULL, NULL, 0, 0, NULL, NULL, 0, NULL, NULL, NULL))";

std::string Joined(const ShownRow& row, const std::vector<int>& columns) {
  std::string line;
  for (const int column : columns) {
    line += row.cells.at(static_cast<std::size_t>(column) - 1) + "|";
  }
  line.pop_back();
  return line;
}

SQLite::Database Made(const TempFolder& folder, std::string_view name, DatabaseKind kind) {
  const std::filesystem::path path = folder / name;
  const bool recipe = kind == DatabaseKind::kRecipe;
  std::filesystem::copy_file(std::filesystem::path(VRX_BIN_DIR) /
                                 (recipe ? kRecipeTemplateName : kTransactionTemplateName),
                             path);
  SQLite::Database database = OpenDatabase(path, Access::kWrite);
  database.exec("PRAGMA synchronous=OFF");  // no test cuts the power
  return database;
}

}  // namespace

SQLite::Database SmallHistory(const TempFolder& folder, std::string_view name) {
  SQLite::Database database = Made(folder, name, DatabaseKind::kTransaction);
  database.exec(kRows);
  return database;
}

SQLite::Database SmallRecipes(const TempFolder& folder, std::string_view name) {
  SQLite::Database database = Made(folder, name, DatabaseKind::kRecipe);
  WriteIngredient(database, {.id = 1, .name = "CORN", .description = "Corn"});
  WriteIngredient(database, {.id = 2, .name = "hAY", .description = "Hay"});
  WriteRecipe(database, {.id = 1, .name = "HEIFER", .description = "Heifers"});
  WriteRecipe(database, {.id = 4, .name = "STEERS", .description = "Steers"});
  WritePen(database, {.id = 1, .name = "A01", .description = "North"});
  WritePen(database, {.id = 2, .name = "A02", .description = "South"});
  WritePen(database, {.id = 3, .name = "PEN003", .feed_amount = "120"});
  return database;
}

std::vector<std::string> ShownLines(HistoryGrid& grid) {
  const std::vector<int> columns = grid.Columns().VisibleColumns();
  std::vector<std::string> lines;
  for (std::int64_t number = 1; number <= grid.RowCount(); ++number) {
    const ShownRow row = grid.Row(number);
    const std::string depth = std::to_string(row.depth);
    switch (row.kind) {
      case HistoryRowKind::kGroup:
        lines.push_back("[" + depth + "] " + row.caption);
        break;
      case HistoryRowKind::kTotal:
        lines.push_back("=" + depth + ": " + Joined(row, columns));
        break;
      case HistoryRowKind::kRecord:
        lines.push_back(depth + ": " + Joined(row, columns));
        break;
    }
  }
  return lines;
}

std::vector<std::string> VisibleCaptions(const HistoryGrid& grid) {
  std::vector<std::string> captions;
  for (const int column : grid.Columns().VisibleColumns()) {
    captions.push_back(grid.Columns().Caption(column));
  }
  return captions;
}

}  // namespace vrx::testing
