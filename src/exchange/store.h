#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "database/open_databases.h"
#include "exchange/imported_data.h"
#include "platform/calendar.h"
#include "platform/operator.h"
#include "platform/progress_display.h"

namespace vrx {

class PrivateINI;

inline constexpr std::string_view kStoreErrorTitle = "Transaction Store Error";

struct StoreOutcome {
  bool complete = false;     // every row that holds data is in the database
  std::size_t stored = 0;    // rows committed
  std::size_t left_out = 0;  // rows that were counted but never filled
  std::size_t not_read = 0;  // feed records of the file that no row holds
};

// Appends an import to the table `Transactions`, renumbered behind the highest number in use, with
// names in place of the IDs of recipes, ingredients and pens.
class TransactionStore {
 public:
  // `save_transaction_database` is the menu command that closes and reopens the database, so that
  // the window shows what was stored.
  TransactionStore(Operator& op, const PrivateINI& settings, const Calendar& calendar,
                   ProgressDisplay& progress, std::function<void()> save_transaction_database);

  // One SQLite transaction for the whole import, on connections of its own; no statement stays
  // open. `stored_flag` tells that these rows are in the database already: then the operator is
  // asked first. It is set once rows of this import are committed.
  //
  // A cell that cannot be stored stops the copy: the rows before it are committed, and the operator
  // is told the cell and their count. A number that would pass 32 bits, and a failure of the
  // storage, leave nothing of the import. Every failure is reported before the return. So is what
  // is not stored: feed records that fit no batch, and rows that were never filled.
  StoreOutcome StoreImportedTransactions(const ImportedData& rows, const OpenDatabases& databases,
                                         bool& stored_flag);

 private:
  bool ConfirmDuplicate();
  void ReportStopped(const std::string& reason, const StoreOutcome& outcome);
  void ReportLeftOut(const ImportedData& rows, const StoreOutcome& outcome);

  Operator& operator_;
  const PrivateINI& settings_;
  const Calendar& calendar_;
  ProgressDisplay& progress_;
  std::function<void()> save_transaction_database_;
};

}  // namespace vrx
