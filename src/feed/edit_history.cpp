#include "feed/edit_history.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include "base/number.h"
#include "base/translation.h"
#include "database/connection.h"
#include "database/identity.h"
#include "database/schema.h"

namespace vrx {
namespace {

constexpr std::string_view kLog = "VrxEditLog";
constexpr std::array kWatched{kIngredientTable, kRecipeTable, kRecipeRationTable, kPenTable};
constexpr std::size_t kMostColumns = 10;
constexpr int kTableColumn = 0;
constexpr int kRowColumn = 1;
constexpr int kWasThereColumn = 2;
constexpr int kIsThereColumn = 3;
constexpr int kFirstCell = 4;

const std::vector<std::string>& ColumnsOf(std::string_view table) {
  static const std::vector<std::vector<std::string>> columns = [] {
    std::vector<std::vector<std::string>> all(kWatched.size());
    for (const Table& each : Schema(DatabaseKind::kRecipe)) {
      const auto* const at = std::find(kWatched.begin(), kWatched.end(), each.name);
      if (at != kWatched.end()) {
        for (const Column& column : each.columns) {
          all[static_cast<std::size_t>(at - kWatched.begin())].emplace_back(column.name);
        }
      }
    }
    return all;
  }();
  const auto* const at = std::find(kWatched.begin(), kWatched.end(), table);
  return columns.at(static_cast<std::size_t>(at - kWatched.begin()));
}

// "old.[ID], old.[Name], ..., NULL"; NULLs alone without a prefix.
std::string CellsWithPrefix(std::string_view table, std::string_view prefix) {
  std::string list;
  const std::vector<std::string>& columns = ColumnsOf(table);
  for (std::size_t cell = 0; cell < kMostColumns; ++cell) {
    const bool has = cell < columns.size() && !prefix.empty();
    list += ", " + (has ? std::string(prefix) + Bracketed(columns[cell]) : "NULL");
  }
  return list;
}

std::string LogTable() {
  std::string columns = "Step INTEGER PRIMARY KEY, TableName, RowNumber, WasThere, IsThere";
  for (const char* const side : {"Before", "After"}) {
    for (std::size_t cell = 0; cell < kMostColumns; ++cell) {
      columns += ", " + (side + std::to_string(cell));
    }
  }
  return "CREATE TEMP TABLE IF NOT EXISTS " + std::string(kLog) + " (" + columns + ")";
}

std::string Trigger(std::string_view table, std::string_view event) {
  const bool was = event != "INSERT";
  const bool is = event != "DELETE";
  return "CREATE TEMP TRIGGER IF NOT EXISTS " + std::string(kLog) + std::string(table) +
         std::string(event) + " AFTER " + std::string(event) + " ON main." + Bracketed(table) +
         " BEGIN INSERT INTO " + std::string(kLog) + " VALUES (NULL, '" + std::string(table) +
         "', " + (is ? "new" : "old") + ".rowid, " + (was ? "1" : "0") + ", " + (is ? "1" : "0") +
         CellsWithPrefix(table, was ? "old." : "") + CellsWithPrefix(table, is ? "new." : "") +
         "); END";
}

StoredValue ValueOf(const SQLite::Column& column) {
  switch (column.getType()) {
    case SQLITE_INTEGER:
      return column.getInt64();
    case SQLITE_FLOAT:
      return column.getDouble();
    case SQLITE_TEXT:
      return column.getString();
    case SQLITE_BLOB:
      return StoredBytes{column.getString()};
    default:
      return std::monostate();
  }
}

void Bind(SQLite::Statement& statement, int index, const StoredValue& value) {
  if (const auto* const number = std::get_if<std::int64_t>(&value)) {
    statement.bind(index, *number);
  } else if (const auto* const real = std::get_if<double>(&value)) {
    statement.bind(index, *real);
  } else if (const auto* const text = std::get_if<std::string>(&value)) {
    statement.bind(index, *text);
  } else if (const auto* const bytes = std::get_if<StoredBytes>(&value)) {
    statement.bind(index, bytes->bytes.data(), static_cast<int>(bytes->bytes.size()));
  } else {
    statement.bind(index);
  }
}

StoredCells CellsFrom(SQLite::Statement& statement, int first, std::size_t count) {
  StoredCells cells;
  for (std::size_t cell = 0; cell < count; ++cell) {
    cells.push_back(ValueOf(statement.getColumn(first + static_cast<int>(cell))));
  }
  return cells;
}

ChangedRow* FindRow(std::vector<ChangedRow>& rows, const ChangedRow& wanted) {
  const auto found = std::find_if(rows.begin(), rows.end(), [&](const ChangedRow& row) {
    return row.row == wanted.row && row.table == wanted.table;
  });
  return found == rows.end() ? nullptr : &*found;
}

// A row that was changed again keeps its first state before. One that is as it was is dropped.
void Append(std::vector<ChangedRow>& rows, std::vector<ChangedRow> later) {
  for (ChangedRow& change : later) {
    if (ChangedRow* const row = FindRow(rows, change)) {
      row->after = std::move(change.after);
    } else {
      rows.push_back(std::move(change));
    }
  }
  std::erase_if(rows, [](const ChangedRow& row) { return row.before == row.after; });
}

// An entry to be redone starts from what was stored meanwhile.
void StartFrom(std::vector<ChangedRow>& rows, const std::vector<ChangedRow>& later) {
  for (const ChangedRow& change : later) {
    if (ChangedRow* const row = FindRow(rows, change); row != nullptr && row->before) {
      row->before = change.after;
    }
  }
}

// Restores the rows of an entry on one side, where they are as on the other side.
class Restoration {
 public:
  Restoration(SQLite::Database& database, bool undo) : database_(database), undo_(undo) {}

  // Whether every value that the rows changed is still as they left it.
  [[nodiscard]] bool IsPossible(const std::vector<ChangedRow>& rows) const {
    return std::all_of(rows.begin(), rows.end(),
                       [this](const ChangedRow& row) { return IsAsLeft(row); });
  }

  void Run(const std::vector<ChangedRow>& rows) const {
    for (const ChangedRow& row : rows) {
      if (!Wanted(row)) {
        SQLite::Statement remove(database_,
                                 "DELETE FROM " + Bracketed(row.table) + " WHERE rowid = ?");
        remove.bind(1, row.row);
        remove.exec();
      }
    }
    for (const ChangedRow& row : rows) {
      if (Wanted(row)) {
        Left(row) ? Update(row) : Insert(row);
      }
    }
  }

 private:
  [[nodiscard]] const std::optional<StoredCells>& Left(const ChangedRow& row) const {
    return undo_ ? row.after : row.before;
  }
  [[nodiscard]] const std::optional<StoredCells>& Wanted(const ChangedRow& row) const {
    return undo_ ? row.before : row.after;
  }

  [[nodiscard]] bool IsAsLeft(const ChangedRow& row) const {
    std::string list;
    for (const std::string& column : ColumnsOf(row.table)) {
      list += (list.empty() ? "" : ", ") + Bracketed(column);
    }
    SQLite::Statement read(database_,
                           "SELECT " + list + " FROM " + Bracketed(row.table) + " WHERE rowid = ?");
    read.bind(1, row.row);
    const bool is_there = read.executeStep();
    if (!is_there || !Left(row)) {
      return is_there == Left(row).has_value();
    }
    const StoredCells stored = CellsFrom(read, 0, Left(row)->size());
    for (std::size_t cell = 0; cell < stored.size(); ++cell) {
      const bool concerned = !Wanted(row) || (*Wanted(row))[cell] != (*Left(row))[cell];
      if (concerned && stored[cell] != (*Left(row))[cell]) {
        return false;
      }
    }
    return true;
  }

  void Update(const ChangedRow& row) const {
    const std::vector<std::string>& columns = ColumnsOf(row.table);
    std::string list;
    std::vector<const StoredValue*> values;
    for (std::size_t cell = 0; cell < columns.size(); ++cell) {
      const StoredValue& value = (*Wanted(row))[cell];
      if (value != (*Left(row))[cell]) {
        list += (list.empty() ? "" : ", ") + Bracketed(columns[cell]) + " = ?";
        values.push_back(&value);
      }
    }
    SQLite::Statement write(database_,
                            "UPDATE " + Bracketed(row.table) + " SET " + list + " WHERE rowid = ?");
    int index = 0;
    for (const StoredValue* const value : values) {
      Bind(write, ++index, *value);
    }
    write.bind(++index, row.row);
    write.exec();
  }

  void Insert(const ChangedRow& row) const {
    std::string list = "rowid";
    std::string marks = "?";
    for (const std::string& column : ColumnsOf(row.table)) {
      list += ", " + Bracketed(column);
      marks += ", ?";
    }
    SQLite::Statement write(database_, "INSERT INTO " + Bracketed(row.table) + " (" + list +
                                           ") VALUES (" + marks + ")");
    int index = 0;
    write.bind(++index, row.row);
    for (const StoredValue& value : *Wanted(row)) {
      Bind(write, ++index, value);
    }
    write.exec();
  }

  SQLite::Database& database_;
  bool undo_;
};

}  // namespace

std::optional<std::string> CellOf(std::string_view table, const std::optional<StoredCells>& cells,
                                  std::string_view column) {
  const std::vector<std::string>& columns = ColumnsOf(table);
  const auto at = std::find(columns.begin(), columns.end(), column);
  if (!cells || at == columns.end()) {
    return std::nullopt;
  }
  const StoredValue& value = (*cells)[static_cast<std::size_t>(at - columns.begin())];
  if (const auto* const number = std::get_if<std::int64_t>(&value)) {
    return std::to_string(*number);
  }
  if (const auto* const real = std::get_if<double>(&value)) {
    return DefaultText(*real);
  }
  const auto* const text = std::get_if<std::string>(&value);
  return text == nullptr ? std::string() : *text;
}

void EditHistory::Watch(SQLite::Database* database) {
  undo_.clear();
  redo_.clear();
  database_ = nullptr;
  if (database == nullptr) {
    return;
  }
  WithDatabaseErrors(*database, [&] {
    database->exec("PRAGMA temp_store = MEMORY");  // a full disk does not end an edit
    database->exec(LogTable());
    for (const std::string_view table : kWatched) {
      for (const std::string_view event : {"INSERT", "UPDATE", "DELETE"}) {
        database->exec(Trigger(table, event));
      }
    }
  });
  database_ = database;
  changes_taken_ = -1;  // a connection that was watched before may have a log
  Skip();
}

std::vector<ChangedRow> EditHistory::Take() {
  std::vector<ChangedRow> rows;
  if (database_ == nullptr || database_->getTotalChanges() == changes_taken_) {
    return rows;
  }
  const std::string log(kLog);
  WithDatabaseErrors(*database_, [&] {
    {
      std::string cells;
      for (const char* const side : {"Before", "After"}) {
        for (std::size_t cell = 0; cell < kMostColumns; ++cell) {
          cells += ", " + (side + std::to_string(cell));
        }
      }
      SQLite::Statement read(*database_, "SELECT TableName, RowNumber, WasThere, IsThere" + cells +
                                             " FROM temp." + log + " ORDER BY Step");
      while (read.executeStep()) {
        ChangedRow row{.table = read.getColumn(kTableColumn).getString(),
                       .row = read.getColumn(kRowColumn).getInt64()};
        const std::size_t count = ColumnsOf(row.table).size();
        if (read.getColumn(kWasThereColumn).getInt() != 0) {
          row.before = CellsFrom(read, kFirstCell, count);
        }
        if (read.getColumn(kIsThereColumn).getInt() != 0) {
          row.after = CellsFrom(read, kFirstCell + static_cast<int>(kMostColumns), count);
        }
        std::vector<ChangedRow> one;
        one.push_back(std::move(row));
        Append(rows, std::move(one));
      }
    }
    database_->exec("DELETE FROM temp." + log);
  });
  changes_taken_ = database_->getTotalChanges();
  return rows;
}

void EditHistory::Add(const Describe& describe) {
  std::vector<ChangedRow> rows = Take();
  Named entry = rows.empty() ? Named{} : describe(rows);
  if (entry.name.empty()) {
    AddToLast(std::move(rows));
    return;
  }
  redo_.clear();
  undo_.push_back(
      {.name = std::move(entry.name), .place = std::move(entry.place), .rows = std::move(rows)});
}

void EditHistory::Amend() { AddToLast(Take()); }

void EditHistory::Skip() { Take(); }

void EditHistory::AddToLast(std::vector<ChangedRow> rows) {
  if (!redo_.empty()) {
    StartFrom(redo_.back().rows, rows);
  }
  if (!undo_.empty()) {
    Append(undo_.back().rows, std::move(rows));
  }
}

void EditHistory::Undo(const Calendar& calendar) {
  Store(undo_.back(), true, calendar);
  redo_.push_back(std::move(undo_.back()));
  undo_.pop_back();
}

void EditHistory::Redo(const Calendar& calendar) {
  Store(redo_.back(), false, calendar);
  undo_.push_back(std::move(redo_.back()));
  redo_.pop_back();
}

void EditHistory::Store(const EditEntry& entry, bool undo, const Calendar& calendar) {
  const Restoration restoration(*database_, undo);
  WithDatabaseErrors(*database_, [&] {
    SQLite::Transaction transaction(*database_, SQLite::TransactionBehavior::IMMEDIATE);
    if (!restoration.IsPossible(entry.rows)) {
      throw UndoRefusal(
          undo ? Tr("Undo %1: its values have been changed since, by another program or by a "
                    "download. Nothing was changed.",
                    {entry.name})
               : Tr("Redo %1: its values have been changed since, by another program or by a "
                    "download. Nothing was changed.",
                    {entry.name}));
    }
    restoration.Run(entry.rows);
    TouchDatabase(*database_, calendar);
    transaction.commit();
  });
  Skip();
}

}  // namespace vrx
