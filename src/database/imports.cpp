#include "database/imports.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>

#include "database/connection.h"
#include "database/schema.h"

namespace vrx {
namespace {

// AUTOINCREMENT keeps the highest number ever given in sqlite_sequence. If it is not in the table,
// the last store was taken back.
constexpr const char* kTables = R"(
CREATE TABLE IF NOT EXISTS Imports (Number INTEGER PRIMARY KEY AUTOINCREMENT, At TEXT, File TEXT,
  SHA256 TEXT, Units TEXT, RowsRead INTEGER, Stored INTEGER, LeftOut INTEGER, NotRead INTEGER,
  Repeated INTEGER, Batches INTEGER, FileLow INTEGER, FileHigh INTEGER, Missing TEXT,
  StoredLow INTEGER, StoredHigh INTEGER, FirstDate TEXT, LastDate TEXT, Settled TEXT);
CREATE TABLE IF NOT EXISTS ImportedBatches (Import INTEGER, FileNumber INTEGER,
  [Transaction] INTEGER, State TEXT, Loads TEXT, Feeds TEXT, Rows INTEGER);
CREATE INDEX IF NOT EXISTS ImportedBatchesByLoads ON ImportedBatches (Loads);
CREATE INDEX IF NOT EXISTS ImportedBatchesByTransaction ON ImportedBatches ([Transaction]);
CREATE INDEX IF NOT EXISTS ImportedBatchesByImport ON ImportedBatches (Import);
)";

constexpr const char* kAddImport =
    "INSERT INTO Imports (At, File, SHA256, Units, RowsRead, Stored, LeftOut, NotRead, Repeated, "
    "Batches, FileLow, FileHigh, Missing, StoredLow, StoredHigh, FirstDate, LastDate) "
    "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14, ?15, ?16, ?17)";

constexpr const char* kImportColumns =
    "Number, At, File, SHA256, Units, RowsRead, Stored, LeftOut, NotRead, Repeated, Batches, "
    "FileLow, FileHigh, Missing, StoredLow, StoredHigh, FirstDate, LastDate, Settled";

// Only the last import of a transaction lists all its deliveries.
constexpr const char* kStoredBatches =
    "SELECT [Transaction], Feeds FROM ImportedBatches AS Batch WHERE Loads = ?1 AND Rows > 0 AND "
    "Import = (SELECT max(Import) FROM ImportedBatches WHERE [Transaction] = Batch.[Transaction] "
    "AND Rows > 0) ORDER BY [Transaction]";

constexpr std::array<std::pair<BatchState, std::string_view>, 4> kStates{{
    {BatchState::kNew, "new"},
    {BatchState::kSame, "same"},
    {BatchState::kContinued, "continued"},
    {BatchState::kConflict, "conflict"},
}};

std::string StateText(BatchState state) {
  for (const auto& [value, text] : kStates) {
    if (value == state) {
      return std::string(text);
    }
  }
  return {};
}

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += (text.empty() ? "" : "\n") + line;
  }
  return text;
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t end = std::min(text.find('\n', from), text.size());
    lines.push_back(text.substr(from, end - from));
    from = end + 1;
  }
  return lines;
}

template <typename Value>
void BindOrNull(SQLite::Statement& statement, int index, const std::optional<Value>& value) {
  if (value) {
    statement.bind(index, *value);
  } else {
    statement.bind(index);
  }
}

void BindDate(SQLite::Statement& statement, int index, const std::optional<Date>& date) {
  BindOrNull(statement, index, date ? std::optional(StoredText(*date)) : std::nullopt);
}

std::optional<std::int64_t> NumberOrNull(const SQLite::Column& column) {
  return column.isNull() ? std::nullopt : std::optional(column.getInt64());
}

std::optional<std::string> TextOrNull(const SQLite::Column& column) {
  return column.isNull() ? std::nullopt : std::optional(column.getString());
}

ImportRecord ReadImport(SQLite::Statement& query) {
  int column = 0;
  const auto next = [&] { return query.getColumn(column++); };
  ImportRecord import;
  import.number = next().getInt64();
  import.at = next().getString();
  import.file = next().getString();
  import.sha256 = next().getString();
  import.units = next().getString();
  for (std::int64_t* const count : {&import.rows_read, &import.stored, &import.left_out,
                                    &import.not_read, &import.repeated, &import.batches}) {
    *count = next().getInt64();
  }
  import.file_low = NumberOrNull(next());
  import.file_high = NumberOrNull(next());
  import.missing = next().getString();
  import.stored_low = NumberOrNull(next());
  import.stored_high = NumberOrNull(next());
  import.first_date = ParseStoredDate(next().getString());
  import.last_date = ParseStoredDate(next().getString());
  import.settled = next().getString();
  return import;
}

TransactionRecord ReadRow(SQLite::Statement& query) {
  TransactionRecord record;
  record.transaction = query.getColumn(0).getInt();
  record.recipe = TextOrNull(query.getColumn(1));
  record.type = query.getColumn(2).getString();
  record.user_id = TextOrNull(query.getColumn(3));
  record.ingredient = TextOrNull(query.getColumn(4));
  record.pen = TextOrNull(query.getColumn(5));
  record.target = query.getColumn(6).getDouble();
  record.actual_batch = query.getColumn(7).getDouble();
  record.time = ParseStoredTime(query.getColumn(8).getString());
  record.date = ParseStoredDate(query.getColumn(9).getString());
  record.actual_feed = query.getColumn(10).getDouble();
  return record;
}

}  // namespace

void MakeImportTables(SQLite::Database& database) {
  WithDatabaseErrors(database, [&] { database.exec(kTables); });
}

bool HasImportTables(SQLite::Database& database) {
  return WithDatabaseErrors(database, [&] {
    return database.tableExists("Imports") && database.tableExists("ImportedBatches");
  });
}

void AddImport(SQLite::Database& database, ImportRecord& import) {
  WithDatabaseErrors(database, [&] {
    SQLite::Statement insert(database, kAddImport);
    int index = 0;
    for (const std::string* const text :
         {&import.at, &import.file, &import.sha256, &import.units}) {
      insert.bind(++index, *text);
    }
    for (const std::int64_t count : {import.rows_read, import.stored, import.left_out,
                                     import.not_read, import.repeated, import.batches}) {
      insert.bind(++index, count);
    }
    BindOrNull(insert, ++index, import.file_low);
    BindOrNull(insert, ++index, import.file_high);
    insert.bind(++index, import.missing);
    BindOrNull(insert, ++index, import.stored_low);
    BindOrNull(insert, ++index, import.stored_high);
    BindDate(insert, ++index, import.first_date);
    BindDate(insert, ++index, import.last_date);
    insert.exec();
    import.number = database.getLastInsertRowid();
  });
}

void AddImportedBatches(SQLite::Database& database, const std::vector<ImportedBatch>& batches) {
  WithDatabaseErrors(database, [&] {
    SQLite::Statement insert(database, "INSERT INTO ImportedBatches VALUES (?, ?, ?, ?, ?, ?, ?)");
    for (const ImportedBatch& batch : batches) {
      insert.reset();
      insert.bind(1, batch.import);
      insert.bind(2, batch.file_number);
      BindOrNull(insert, 3, batch.transaction);
      insert.bind(4, StateText(batch.state));
      insert.bind(5, batch.loads);
      insert.bind(6, Joined(batch.feeds));
      insert.bind(7, batch.rows);
      insert.exec();
    }
  });
}

StoredBatchSearch::StoredBatchSearch(SQLite::Database& database) : database_(database) {
  if (HasImportTables(database_)) {
    WithDatabaseErrors(database_, [&] { query_.emplace(database_, kStoredBatches); });
  }
}

std::vector<StoredBatch> StoredBatchSearch::Find(const std::string& loads) {
  return WithDatabaseErrors(database_, [&] {
    std::vector<StoredBatch> batches;
    if (loads.empty() || !query_) {
      return batches;
    }
    query_->reset();
    query_->bind(1, loads);
    while (query_->executeStep()) {
      batches.push_back(
          {.transaction = query_->getColumn(0).getInt(), .feeds = Lines(query_->getColumn(1))});
    }
    query_->reset();
    return batches;
  });
}

std::vector<TransactionRecord> ReadUnrecordedBatches(SQLite::Database& database, const Date& day) {
  return WithDatabaseErrors(database, [&] {
    const std::string unrecorded =
        HasImportTables(database)
            ? " AND NOT EXISTS (SELECT 1 FROM ImportedBatches WHERE [Transaction] = "
              "Stored.[Transaction] AND Rows > 0)"
            : "";
    SQLite::Statement query(
        database,
        "SELECT [Transaction], Recipe, Type, UserID, Ingredient, Pen, Target, ActualBatch, Time, "
        "Date, ActualFeed FROM Transactions AS Stored WHERE [Transaction] IN (SELECT [Transaction] "
        "FROM Transactions WHERE Date = ?1 AND Type = 'BATCH') AND [Transaction] BETWEEN 1 AND " +
            std::to_string(std::numeric_limits<std::int32_t>::max()) + unrecorded +
            " ORDER BY [Transaction], rowid");
    query.bind(1, StoredText(day));
    std::vector<TransactionRecord> rows;
    while (query.executeStep()) {
      rows.push_back(ReadRow(query));
    }
    return rows;
  });
}

std::vector<ImportRecord> ReadImports(SQLite::Database& database) {
  return WithDatabaseErrors(database, [&] {
    std::vector<ImportRecord> imports;
    if (HasImportTables(database)) {
      SQLite::Statement query(
          database, "SELECT " + std::string(kImportColumns) + " FROM Imports ORDER BY Number");
      while (query.executeStep()) {
        imports.push_back(ReadImport(query));
      }
    }
    return imports;
  });
}

std::vector<std::int64_t> ImportNumbers(SQLite::Database& database, std::int64_t after,
                                        std::int64_t last) {
  return WithDatabaseErrors(database, [&] {
    std::vector<std::int64_t> numbers;
    if (HasImportTables(database)) {
      SQLite::Statement query(
          database, "SELECT Number FROM Imports WHERE Number > ? AND Number <= ? ORDER BY Number");
      query.bind(1, after);
      query.bind(2, last);
      while (query.executeStep()) {
        numbers.push_back(query.getColumn(0).getInt64());
      }
    }
    return numbers;
  });
}

std::optional<ImportRecord> ReadUndoableStore(SQLite::Database& database) {
  return WithDatabaseErrors(database, [&]() -> std::optional<ImportRecord> {
    if (!HasImportTables(database)) {
      return std::nullopt;
    }
    SQLite::Statement query(database, "SELECT " + std::string(kImportColumns) +
                                          " FROM Imports WHERE Number = (SELECT seq FROM "
                                          "sqlite_sequence WHERE name = 'Imports')");
    return query.executeStep() ? std::optional(ReadImport(query)) : std::nullopt;
  });
}

// An import appends its rows, so they are the last ones of each transaction.
std::int64_t UndoStore(SQLite::Database& database, std::int64_t import) {
  return WithDatabaseErrors(database, [&] {
    SQLite::Statement batches(database,
                              "SELECT [Transaction], Rows FROM ImportedBatches WHERE Import = ? "
                              "AND Rows > 0");
    SQLite::Statement erase(database,
                            "DELETE FROM Transactions WHERE rowid IN (SELECT rowid FROM "
                            "Transactions WHERE [Transaction] = ?1 ORDER BY rowid DESC LIMIT ?2)");
    std::int64_t rows = 0;
    for (batches.bind(1, import); batches.executeStep();) {
      erase.reset();
      erase.bind(1, batches.getColumn(0).getInt64());
      erase.bind(2, batches.getColumn(1).getInt64());
      rows += erase.exec();
    }
    for (const char* const text :
         {"DELETE FROM ImportedBatches WHERE Import = ?", "DELETE FROM Imports WHERE Number = ?"}) {
      SQLite::Statement remove(database, text);
      remove.bind(1, import);
      remove.exec();
    }
    return rows;
  });
}

}  // namespace vrx
