#include "exchange/store_fixture.h"

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "database/connection.h"
#include "database/identity.h"
#include "database/schema.h"
#include "database/templates.h"

namespace vrx::testing {
namespace {

std::string ColumnText(const SQLite::Column& column) {
  return column.isNull() ? "NULL" : column.getString();
}

}  // namespace

void InterruptingProgress::SetProgressValue(int value) {
  RecordingProgress::SetProgressValue(value);
  if (on_value) {
    on_value(value);
  }
}

ImportedData MakeImport(const std::vector<RowCells>& rows) {
  ImportedData data;
  data.Resize(rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (const auto& [column, text] : rows[i]) {
      data.SetCell(i + 1, column, text);
    }
  }
  return data;
}

std::string IdText(int id) { return std::to_string(id); }

RowCells BatchCells(int transaction, int recipe, int ingredient, std::string_view weight) {
  return {{kImportedTransactionNumber, IdText(transaction)},
          {kImportedRecipeID, IdText(recipe)},
          {kImportedType, "BATCH"},
          {kImportedTarget, "1000.0"},
          {kImportedIngredientID, IdText(ingredient)},
          {kImportedActualBatch, std::string(weight)},
          {kImportedTime, "0830"},
          {kImportedDate, "01152009"},
          {kImportedUserID, "2"},
          {kCalculatedIngPercentOfBatch, "66.5000"}};
}

RowCells FeedCells(int transaction, int recipe, int pen, std::string_view weight) {
  return {{kImportedTransactionNumber, IdText(transaction)},
          {kImportedRecipeID, IdText(recipe)},
          {kImportedType, "FEED"},
          {kImportedTarget, "750.0"},
          {kImportedPenID, IdText(pen)},
          {kImportedActualFeed, std::string(weight)},
          {kImportedTime, "0915"},
          {kImportedDate, "01152009"},
          {kImportedUserID, "2"},
          {kFirstIngredientWeight, "500.5"}};
}

ImportedData MakeManyRows(int count) {
  std::vector<RowCells> rows;
  for (int i = 0; i < count; ++i) {
    const int transaction = i / 4 + 1;
    const int recipe = transaction % 100 + 1;
    rows.push_back(i % 4 == 3 ? FeedCells(transaction, recipe, i % 400 + 1, "748.5")
                              : BatchCells(transaction, recipe, i % 100 + 1, "998.5"));
  }
  return MakeImport(rows);
}

std::vector<StoredRow> ReadStored(const std::filesystem::path& trans_db_path) {
  SQLite::Database database = OpenDatabase(trans_db_path, Access::kRead);
  SQLite::Statement query(database, "SELECT * FROM Transactions ORDER BY rowid");
  std::vector<StoredRow> rows;
  while (query.executeStep()) {
    StoredRow row;
    for (int column = 0; column < query.getColumnCount(); ++column) {
      row.push_back(ColumnText(query.getColumn(column)));
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

std::string QueryText(const std::filesystem::path& path, const std::string& query) {
  SQLite::Database database = OpenDatabase(path, Access::kRead);
  return ColumnText(database.execAndGet(query));
}

void Execute(const std::filesystem::path& path, const std::string& query) {
  SQLite::Database database = OpenDatabase(path, Access::kWrite);
  database.exec(query);
}

StoreFixture::StoreFixture() {
  databases = {folder / "YARD.RDB", folder / "Y2026.TDB", "LB"};
  CreateTemplate(databases.recipe_db_path, DatabaseKind::kRecipe);
  CreateTemplate(databases.trans_db_path, DatabaseKind::kTransaction);
  SQLite::Database recipes = OpenDatabase(databases.recipe_db_path, Access::kWrite);
  WriteField(recipes, kTypeField, kUserRecipeDb);
  SQLite::Database transactions = OpenDatabase(databases.trans_db_path, Access::kWrite);
  WriteField(transactions, kTypeField, kUserTransDb);
  WriteField(transactions, kUnitField, "LB");
  settings.SetSystemUnits("LB");
  settings.SetEnableBeeperOn(true);
}

StoreOutcome StoreFixture::Store(const ImportedData& rows) {
  return store.StoreImportedTransactions(rows, source, databases, stored_flag, repeated);
}

}  // namespace vrx::testing
