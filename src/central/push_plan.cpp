#include "central/push_plan.h"

#include <algorithm>
#include <cstddef>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>

#include "database/central_source.h"
#include "database/connection.h"
#include "database/imports.h"

namespace vrx {
namespace {

// An import, and how many of the waiting rows are there up to its end.
struct ImportEnd {
  std::int64_t number;
  std::int64_t rows;
};

struct WaitingImports {
  std::vector<ImportEnd> ends = {};
  std::int64_t unrecorded = 0;  // rows before those of the first import
  std::int64_t last = 0;        // number of the last import, waiting or not
};

WaitingImports ReadWaitingImports(SQLite::Database& database, std::int64_t after,
                                  std::int64_t waiting_rows) {
  WaitingImports imports{.last = after};
  if (!HasImportTables(database)) {
    imports.unrecorded = waiting_rows;
    return imports;
  }
  SQLite::Statement query(
      database, "SELECT Number, ifnull(Stored, 0) FROM Imports WHERE Number > ? ORDER BY Number");
  query.bind(1, after);
  std::int64_t stored = 0;
  while (query.executeStep()) {
    stored += query.getColumn(1).getInt64();
    imports.ends.push_back({.number = query.getColumn(0).getInt64(), .rows = stored});
    imports.last = imports.ends.back().number;
  }
  imports.unrecorded = waiting_rows - stored;
  for (ImportEnd& end : imports.ends) {
    end.rows += imports.unrecorded;
  }
  return imports;
}

class PortionCutter {
 public:
  PortionCutter(const WaitingImports& imports, std::int64_t after_import, std::int64_t size)
      : imports_(imports), size_(size), import_(after_import) {
    if (imports_.unrecorded < 0) {
      import_ = imports_.last;
    }
  }

  void Add(std::int64_t row, std::int64_t transaction) {
    if (portion_.rows >= size_ && IsBorder(transaction)) {
      Cut();
    }
    if (portion_.rows == 0) {
      portion_.first_row = row;
    }
    portion_.last_row = row;
    ++portion_.rows;
    ++rows_;
    transaction_ = transaction;
  }

  std::vector<PushPortion> Finish() {
    if (portion_.rows > 0 || import_ < imports_.last) {
      import_ = imports_.last;
      Cut();
    }
    return std::move(portions_);
  }

 private:
  // Whether a portion may end before the next row.
  [[nodiscard]] bool IsBorder(std::int64_t transaction) const {
    if (imports_.unrecorded < 0 || rows_ < imports_.unrecorded) {
      return transaction != transaction_;
    }
    return std::any_of(imports_.ends.begin(), imports_.ends.end(),
                       [this](const ImportEnd& end) { return end.rows == rows_; }) ||
           rows_ == imports_.unrecorded;
  }

  void Cut() {
    for (const ImportEnd& end : imports_.ends) {
      if (end.rows <= rows_) {
        import_ = std::max(import_, end.number);
      }
    }
    portion_.last_import = import_;
    portions_.push_back(portion_);
    portion_ = {};
  }

  const WaitingImports& imports_;
  std::int64_t size_;
  std::int64_t import_;
  std::int64_t rows_ = 0;
  std::int64_t transaction_ = 0;  // of the last row; 0 for none
  PushPortion portion_;
  std::vector<PushPortion> portions_;
};

}  // namespace

std::vector<PushPortion> PlanPush(SQLite::Database& database, std::int64_t after_row,
                                  std::int64_t after_import, std::int64_t rows_of_portion) {
  return WithDatabaseErrors(database, [&] {
    const WaitingImports imports =
        ReadWaitingImports(database, after_import, CountRowsAbove(database, after_row));
    PortionCutter cutter(imports, after_import, rows_of_portion);
    SQLite::Statement rows(database,
                           "SELECT RowNumber, [Transaction] FROM Transactions WHERE RowNumber > ? "
                           "ORDER BY RowNumber");
    rows.bind(1, after_row);
    while (rows.executeStep()) {
      cutter.Add(rows.getColumn(0).getInt64(), rows.getColumn(1).getInt64());
    }
    return cutter.Finish();
  });
}

}  // namespace vrx
