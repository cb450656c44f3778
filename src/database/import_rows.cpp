#include "database/import_rows.h"

#include <algorithm>
#include <set>
#include <string>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>

namespace vrx {
namespace {

// All imports of the transactions that one of these has written to, the last one first.
std::string ImportsOfTransactions(const std::vector<std::int64_t>& imports) {
  std::string numbers;
  for (const std::int64_t import : imports) {
    numbers += (numbers.empty() ? "" : ", ") + std::to_string(import);
  }
  return "SELECT [Transaction], Import, Rows FROM ImportedBatches WHERE Rows > 0 AND [Transaction] "
         "IN (SELECT [Transaction] FROM ImportedBatches WHERE Rows > 0 AND Import IN (" +
         numbers + ")) ORDER BY [Transaction], Import DESC";
}

constexpr const char* kRowsFromTheLast =
    "SELECT rowid FROM Transactions WHERE [Transaction] = ? ORDER BY rowid DESC";

}  // namespace

ImportRows::ImportRows(SQLite::Database& database, const std::vector<std::int64_t>& imports) {
  if (imports.empty()) {
    return;
  }
  const std::set<std::int64_t> wanted(imports.begin(), imports.end());
  SQLite::Statement stores(database, ImportsOfTransactions(imports));
  SQLite::Statement rows(database, kRowsFromTheLast);
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
    const bool is_wanted = wanted.contains(import);
    for (std::int64_t left = stores.getColumn(2).getInt64(); more && left > 0; --left) {
      if (is_wanted) {
        Add(rows.getColumn(0).getInt64(), import);
      }
      more = rows.executeStep();
    }
  }
  std::sort(runs_.begin(), runs_.end(),
            [](const Run& one, const Run& other) { return one.first < other.first; });
}

// Rows come in descending order within a transaction.
void ImportRows::Add(std::int64_t row, std::int64_t import) {
  ++counts_[import];
  if (!runs_.empty() && runs_.back().first == row + 1 && runs_.back().import == import) {
    runs_.back().first = row;
  } else {
    runs_.push_back({.first = row, .last = row, .import = import});
  }
}

std::optional<std::int64_t> ImportRows::ImportOf(std::int64_t row) const {
  if (runs_.empty()) {
    return std::nullopt;
  }
  if (next_ >= runs_.size() || row > runs_[next_].last ||
      (next_ > 0 && row <= runs_[next_ - 1].last)) {
    next_ = static_cast<std::size_t>(
        std::lower_bound(runs_.begin(), runs_.end(), row,
                         [](const Run& run, std::int64_t number) { return run.last < number; }) -
        runs_.begin());
  }
  return next_ < runs_.size() && row >= runs_[next_].first ? std::optional(runs_[next_].import)
                                                           : std::nullopt;
}

std::int64_t ImportRows::CountOf(std::int64_t import) const {
  const auto count = counts_.find(import);
  return count == counts_.end() ? 0 : count->second;
}

}  // namespace vrx
