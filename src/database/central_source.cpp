#include "database/central_source.h"

#include <limits>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "base/uuid.h"
#include "database/connection.h"
#include "database/identity.h"

namespace vrx {
namespace {

// No ON CONFLICT in a trigger: that of the statement that fires it would take its place. A replaced
// row fires no trigger for its deletion, but one for its insertion.
constexpr const char* kSourceTables = R"(
CREATE TABLE CentralSource (Source TEXT, Generation TEXT, Parent TEXT, Machine TEXT,
  WatchedTo INTEGER, PushedTo INTEGER, PushedAt TEXT, Unit TEXT);
CREATE TABLE CentralChanges (RowNumber INTEGER PRIMARY KEY, What TEXT);
CREATE TRIGGER CentralAdded AFTER INSERT ON Transactions
  WHEN NEW.RowNumber <= (SELECT WatchedTo FROM CentralSource)
BEGIN
  INSERT INTO CentralChanges SELECT NEW.RowNumber, 'added'
    WHERE NOT EXISTS (SELECT 1 FROM CentralChanges WHERE RowNumber = NEW.RowNumber);
END;
CREATE TRIGGER CentralChanged AFTER UPDATE ON Transactions
  WHEN min(OLD.RowNumber, NEW.RowNumber) <= (SELECT WatchedTo FROM CentralSource)
BEGIN
  INSERT INTO CentralChanges SELECT OLD.RowNumber, 'changed'
    WHERE OLD.RowNumber <= (SELECT WatchedTo FROM CentralSource)
    AND NOT EXISTS (SELECT 1 FROM CentralChanges WHERE RowNumber = OLD.RowNumber);
  INSERT INTO CentralChanges SELECT NEW.RowNumber, 'changed'
    WHERE NEW.RowNumber <= (SELECT WatchedTo FROM CentralSource)
    AND NOT EXISTS (SELECT 1 FROM CentralChanges WHERE RowNumber = NEW.RowNumber);
END;
CREATE TRIGGER CentralDeleted AFTER DELETE ON Transactions
  WHEN OLD.RowNumber <= (SELECT WatchedTo FROM CentralSource)
BEGIN
  DELETE FROM CentralChanges WHERE RowNumber = OLD.RowNumber;
  INSERT INTO CentralChanges VALUES (OLD.RowNumber, 'deleted');
END;
)";

constexpr const char* kReadSource =
    "SELECT Source, Generation, Parent, Machine, WatchedTo, PushedTo, PushedAt, Unit FROM "
    "CentralSource";

constexpr const char* kWriteSource =
    "UPDATE CentralSource SET Source = ?1, Generation = ?2, Parent = ?3, Machine = ?4, WatchedTo "
    "= ?5, PushedTo = ?6, PushedAt = ?7, Unit = ?8";

}  // namespace

std::optional<CentralSource> ReadCentralSource(SQLite::Database& database) {
  return WithDatabaseErrors(database, [&]() -> std::optional<CentralSource> {
    if (!database.tableExists("CentralSource")) {
      return std::nullopt;
    }
    SQLite::Statement query(database, kReadSource);
    if (!query.executeStep()) {
      return std::nullopt;
    }
    return CentralSource{.source = query.getColumn(0).getString(),
                         .generation = query.getColumn(1).getString(),
                         .parent = query.getColumn(2).getString(),
                         .machine = query.getColumn(3).getString(),
                         .watched_to = query.getColumn(4).getInt64(),
                         .pushed_to = query.getColumn(5).getInt64(),
                         .pushed_at = query.getColumn(6).getString(),
                         .unit = query.getColumn(7).getString()};
  });
}

CentralSource MakeCentralSource(SQLite::Database& database, std::string_view machine) {
  return WithDatabaseErrors(database, [&] {
    AddRowNumbers(database);
    SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
    if (std::optional<CentralSource> made = ReadCentralSource(database)) {
      return *made;
    }
    const CentralSource source{.source = NewUuid(),
                               .generation = NewUuid(),
                               .machine = std::string(machine),
                               .unit = ReadField(database, kUnitField).value_or("")};
    if (!database.tableExists("CentralSource")) {
      database.exec(kSourceTables);
    }
    database.exec("INSERT INTO CentralSource (Source) VALUES ('')");
    WriteCentralSource(database, source);
    transaction.commit();
    return source;
  });
}

void WriteCentralSource(SQLite::Database& database, const CentralSource& source) {
  WithDatabaseErrors(database, [&] {
    SQLite::Statement update(database, kWriteSource);
    update.bind(1, source.source);
    update.bind(2, source.generation);
    update.bind(3, source.parent);
    update.bind(4, source.machine);
    update.bind(5, source.watched_to);
    update.bind(6, source.pushed_to);
    update.bind(7, source.pushed_at);
    update.bind(8, source.unit);
    update.exec();
  });
}

void RenewGeneration(SQLite::Database& database) {
  WithDatabaseErrors(database, [&] {
    if (!database.tableExists("CentralSource")) {
      return;
    }
    SQLite::Statement update(database,
                             "UPDATE CentralSource SET Parent = Generation, Generation = ?");
    update.bind(1, NewUuid());
    update.exec();
  });
}

std::vector<CentralChange> ReadCentralChanges(SQLite::Database& database, std::size_t limit) {
  return WithDatabaseErrors(database, [&] {
    SQLite::Statement query(
        database, "SELECT RowNumber, What FROM CentralChanges ORDER BY RowNumber LIMIT ?");
    query.bind(1, static_cast<std::int64_t>(limit));
    std::vector<CentralChange> changes;
    while (query.executeStep()) {
      changes.push_back(
          {.row = query.getColumn(0).getInt64(), .what = query.getColumn(1).getString()});
    }
    return changes;
  });
}

std::int64_t CountCentralChanges(SQLite::Database& database) {
  return WithDatabaseErrors(database, [&] {
    return database.execAndGet("SELECT count(*) FROM CentralChanges").getInt64();
  });
}

void ForgetCentralChanges(SQLite::Database& database, const std::vector<std::int64_t>& rows) {
  WithDatabaseErrors(database, [&] {
    SQLite::Statement remove(database, "DELETE FROM CentralChanges WHERE RowNumber = ?");
    for (const std::int64_t row : rows) {
      remove.reset();
      remove.bind(1, row);
      remove.exec();
    }
  });
}

void ForgetAllCentralChanges(SQLite::Database& database) {
  WithDatabaseErrors(database, [&] { database.exec("DELETE FROM CentralChanges"); });
}

std::int64_t CountRowsAbove(SQLite::Database& database, std::int64_t row) {
  return WithDatabaseErrors(database, [&] {
    if (row == std::numeric_limits<std::int64_t>::min()) {
      // Counts in an index, which is much smaller than the table.
      return database.execAndGet("SELECT count(*) FROM Transactions").getInt64();
    }
    SQLite::Statement query(database, "SELECT count(*) FROM Transactions WHERE rowid > ?");
    query.bind(1, row);
    query.executeStep();
    return query.getColumn(0).getInt64();
  });
}

std::int64_t HighestRow(SQLite::Database& database) {
  return WithDatabaseErrors(database, [&] {
    return database.execAndGet("SELECT ifnull(max(rowid), 0) FROM Transactions").getInt64();
  });
}

}  // namespace vrx
