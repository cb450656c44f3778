#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/date.h"
#include "database/connection.h"
#include "database/open_databases.h"
#include "exchange/imported_data.h"
#include "exchange/store_plan.h"
#include "platform/calendar.h"
#include "platform/operator.h"
#include "platform/progress_display.h"

namespace vrx {

class PrivateINI;

inline constexpr std::string_view kStoreErrorTitle = "Transaction Store Error";

struct StoreOutcome {
  bool complete = false;     // every row with data is in the database, or was left out as repeated
  std::size_t stored = 0;    // committed rows
  std::size_t left_out = 0;  // rows that were counted but never filled
  std::size_t not_read = 0;  // unread feed records of the file
  std::size_t repeated = 0;  // rows that the database has already
  // Of the stored rows; nothing if there are none.
  std::optional<std::int32_t> lowest = {};  // transaction numbers
  std::optional<std::int32_t> highest = {};
  std::optional<Date> first_date = {};
  std::optional<Date> last_date = {};
};

// The file that an import comes from, for its row of `Imports`.
struct ImportSource {
  std::string file;    // name
  std::string sha256;  // of its bytes, in hexadecimal
  std::string units;   // "LB" or "KG"
};

// Appends an import to the table `Transactions`. Numbers continue after the highest stored one; IDs
// of recipes, ingredients and pens become names.
class TransactionStore {
 public:
  // `save_transaction_database` is the menu command that reopens the database, so that the window
  // shows the stored rows.
  TransactionStore(Operator& op, const PrivateINI& settings, const Calendar& calendar,
                   ProgressDisplay& progress, std::function<void()> save_transaction_database);

  // Stores the import and its row of `Imports` in one SQLite transaction on separate connections.
  // If `stored_flag` is set, these rows are already in the database: the operator is asked first,
  // and Yes stores all of them again. The flag is set when the import is committed.
  //
  // At a cell that cannot be stored, the copy stops: the rows before it are committed, and a
  // message names the cell and their count. If a transaction number would exceed 32 bits or the
  // database fails, nothing is stored. All failures are reported here, and so are unread feed
  // records and rows that were never filled.
  StoreOutcome StoreImportedTransactions(const ImportedData& rows, const ImportSource& source,
                                         const OpenDatabases& databases, bool& stored_flag,
                                         RepeatedBatches repeated = RepeatedBatches::kAsk);

  // Whether the last store of the database can be undone: it is the last one and was not undone
  // before. Throws DatabaseError.
  [[nodiscard]] static bool CanUndo(const OpenDatabases& databases);

  // Asks, and takes the rows of the last store out of the database. Returns false if nothing was
  // taken out, after reporting why.
  bool UndoLastStore(const OpenDatabases& databases);

 private:
  bool ConfirmDuplicate();
  void ReportFailure(const DatabaseError& error, const std::string& consequence);
  // What to do with the repeated batches; nothing to store nothing.
  std::optional<RepeatedBatches> Decide(const ImportedData& rows, const OpenDatabases& databases,
                                        RepeatedBatches repeated);
  void ReportStopped(const std::string& reason, const StoreOutcome& outcome);
  void ReportLeftOut(const ImportedData& rows, const StoreOutcome& outcome);

  Operator& operator_;
  const PrivateINI& settings_;
  const Calendar& calendar_;
  ProgressDisplay& progress_;
  std::function<void()> save_transaction_database_;
};

}  // namespace vrx
