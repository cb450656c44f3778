#include <algorithm>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>

#include "central/push_plan.h"
#include "database/imports.h"

namespace vrx {
namespace {

// All imports of the transactions that one of the wanted imports has written to, the last one
// first.
constexpr const char* kStoresOfTransactions =
    "SELECT [Transaction], Import, Rows FROM ImportedBatches WHERE Rows > 0 AND [Transaction] IN "
    "(SELECT [Transaction] FROM ImportedBatches WHERE Rows > 0 AND Import > ?1 AND Import <= ?2) "
    "ORDER BY [Transaction], Import DESC";

constexpr const char* kRowsOfTransaction =
    "SELECT rowid FROM Transactions WHERE [Transaction] = ? ORDER BY rowid DESC";

}  // namespace

RowImports::RowImports(SQLite::Database& database, std::int64_t after, std::int64_t last) {
  if (last <= after || !HasImportTables(database)) {
    return;
  }
  SQLite::Statement stores(database, kStoresOfTransactions);
  SQLite::Statement rows(database, kRowsOfTransaction);
  stores.bind(1, after);
  stores.bind(2, last);
  std::optional<std::int64_t> transaction;
  bool more = false;  // rows of the transaction
  while (stores.executeStep()) {
    if (const std::int64_t number = stores.getColumn(0).getInt64(); transaction != number) {
      transaction = number;
      rows.reset();
      rows.bind(1, number);
      more = rows.executeStep();
    }
    const std::int64_t import = stores.getColumn(1).getInt64();
    for (std::int64_t left = stores.getColumn(2).getInt64(); more && left > 0; --left) {
      if (import > after && import <= last) {
        Add(rows.getColumn(0).getInt64(), import);
      }
      more = rows.executeStep();
    }
  }
  std::sort(runs_.begin(), runs_.end(),
            [](const Run& one, const Run& other) { return one.first < other.first; });
}

// Rows come in descending order within a transaction.
void RowImports::Add(std::int64_t row, std::int64_t import) {
  if (!runs_.empty() && runs_.back().first == row + 1 && runs_.back().import == import) {
    runs_.back().first = row;
  } else {
    runs_.push_back({.first = row, .last = row, .import = import});
  }
}

std::optional<std::int64_t> RowImports::ImportOf(std::int64_t row) {
  if (next_ > 0 && next_ <= runs_.size() && row <= runs_[next_ - 1].last) {
    next_ = 0;
  }
  while (next_ < runs_.size() && runs_[next_].last < row) {
    ++next_;
  }
  return next_ < runs_.size() && row >= runs_[next_].first ? std::optional(runs_[next_].import)
                                                           : std::nullopt;
}

}  // namespace vrx
