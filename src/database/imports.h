#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "base/date.h"
#include "database/transactions.h"

namespace vrx {

// What a store found a batch of its file to be, compared with the database.
enum class BatchState { kNew, kSame, kContinued, kConflict };

// One row of `Imports`: one store of a transaction file.
struct ImportRecord {
  std::int64_t number = 0;  // set by AddImport; never used twice in a database
  std::string at = {};      // local time in ISO 8601 with offset
  std::string file = {};
  std::string sha256 = {};
  std::string units = {};
  std::int64_t rows_read = 0;  // rows_read = stored + left_out + repeated, unless the store stopped
  std::int64_t stored = 0;
  std::int64_t left_out = 0;  // rows without data
  std::int64_t not_read = 0;  // feed records that are in no row
  std::int64_t repeated = 0;  // rows that the database has already
  std::int64_t batches = 0;
  std::optional<std::int64_t> file_low = {};  // batch numbers of the file
  std::optional<std::int64_t> file_high = {};
  std::string missing = {};                     // numbers between them that the file lacks: "3-5,9"
  std::optional<std::int64_t> stored_low = {};  // transaction numbers that got rows
  std::optional<std::int64_t> stored_high = {};
  std::optional<Date> first_date = {};  // of the stored rows
  std::optional<Date> last_date = {};
  // What is known of weights in another unit than the database's: "", "keep" or "convert"; not
  // written by AddImport.
  std::string settled = {};
};

// One row of `ImportedBatches`: one batch of a stored file.
struct ImportedBatch {
  std::int64_t import = 0;
  std::int64_t file_number = 0;
  std::optional<std::int32_t> transaction = {};  // its number in the database, if it is there
  BatchState state = BatchState::kNew;
  std::string loads = {};               // fingerprint; empty if its loads were stored only in part
  std::vector<std::string> feeds = {};  // fingerprints, sorted
  std::int64_t rows = 0;                // stored by this import, the last ones of the transaction
};

// A batch that an import has stored.
struct StoredBatch {
  std::int32_t transaction = 0;
  std::vector<std::string> feeds = {};  // fingerprints of all its deliveries, sorted
};

// All functions below throw DatabaseError. Databases made by earlier versions get the tables with
// MakeImportTables; without them the readers find nothing.
void MakeImportTables(SQLite::Database& database);
[[nodiscard]] bool HasImportTables(SQLite::Database& database);

// Adds a row and sets its number.
void AddImport(SQLite::Database& database, ImportRecord& import);
void AddImportedBatches(SQLite::Database& database, const std::vector<ImportedBatch>& batches);

// Finds batches by their loads. A store asks for each batch of a file.
class StoredBatchSearch {
 public:
  explicit StoredBatchSearch(SQLite::Database& database);
  // In the order of their numbers; none for an empty fingerprint.
  [[nodiscard]] std::vector<StoredBatch> Find(const std::string& loads);

 private:
  SQLite::Database& database_;
  std::optional<SQLite::Statement> query_;  // nothing without the tables
};

// All rows of the transactions that have a load of that day and were stored by no recorded import,
// by number and in stored order. Transaction numbers outside 32 bits are left out.
[[nodiscard]] std::vector<TransactionRecord> ReadUnrecordedBatches(SQLite::Database& database,
                                                                   const Date& day);

// All stores by number.
[[nodiscard]] std::vector<ImportRecord> ReadImports(SQLite::Database& database);

// The numbers above `after` up to `last`, ascending.
[[nodiscard]] std::vector<std::int64_t> ImportNumbers(SQLite::Database& database,
                                                      std::int64_t after, std::int64_t last);

// The last store, if it was not taken back yet.
[[nodiscard]] std::optional<ImportRecord> ReadUndoableStore(SQLite::Database& database);

// Deletes the rows of that store and its rows of `Imports` and `ImportedBatches`, inside the
// caller's transaction. Returns the number of deleted rows of `Transactions`.
std::int64_t UndoStore(SQLite::Database& database, std::int64_t import);

}  // namespace vrx
