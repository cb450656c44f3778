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
  bool complete = false;     // every row with data is in the database
  std::size_t stored = 0;    // committed rows
  std::size_t left_out = 0;  // rows that were counted but never filled
  std::size_t not_read = 0;  // unread feed records of the file
};

// Appends an import to the table `Transactions`. Numbers continue after the highest stored one; IDs
// of recipes, ingredients and pens become names.
class TransactionStore {
 public:
  // `save_transaction_database` is the menu command that reopens the database, so that the window
  // shows the stored rows.
  TransactionStore(Operator& op, const PrivateINI& settings, const Calendar& calendar,
                   ProgressDisplay& progress, std::function<void()> save_transaction_database);

  // Stores the whole import in one SQLite transaction on separate connections. If `stored_flag` is
  // set, these rows are already in the database and the operator is asked first. The flag is set
  // when rows of this import are committed.
  //
  // At a cell that cannot be stored, the copy stops: the rows before it are committed, and a
  // message names the cell and their count. If a transaction number would exceed 32 bits or the
  // database fails, nothing is stored. All failures are reported here, and so are unread feed
  // records and rows that were never filled.
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
