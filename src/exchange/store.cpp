#include "exchange/store.h"

#include <cstdint>
#include <exception>
#include <filesystem>
#include <utility>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include "base/files.h"
#include "base/text.h"
#include "database/connection.h"
#include "database/identity.h"
#include "database/transactions.h"
#include "exchange/store_row.h"
#include "exchange/unread_feeds.h"
#include "settings/settings.h"

namespace vrx {
namespace {

// Page cache in kilobytes, enough for the pages of all indexes that an import changes. With a
// smaller cache they are written and read several times before the commit. Allocated on demand.
constexpr const char* kLargeCache = "PRAGMA cache_size=-65536";

constexpr const char* kHasTransactionsQuery = "SELECT EXISTS (SELECT 1 FROM Transactions)";

// Result of a committed copy; `stop_reason` is empty if it reached the last row.
struct Copied {
  StoreOutcome outcome;
  std::string stop_reason;
};

std::string CountOfRows(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " row" : " rows");
}

std::int32_t ScanForBase(SQLite::Database& database, ProgressDisplay& progress) {
  if (database.execAndGet(kHasTransactionsQuery).getInt() == 0) {
    progress.SetProgressValue(1);
    return 0;
  }
  progress.SetProgressMessage("Scanning Transaction database for next insertion location.");
  progress.SetProgressRange(1);
  const std::int32_t base = HighestTransaction(database);
  progress.SetProgressValue(1);
  return base;
}

Copied CopyRows(SQLite::Database& database, const ImportedData& rows, const RecordNames& names,
                std::int32_t base, ProgressDisplay& progress) {
  progress.SetProgressMessage("Copying imported records to Transaction database.");
  progress.SetProgressRange(static_cast<int>(rows.RowCount()));
  Copied copied;
  copied.outcome.not_read = rows.UnreadFeeds().size();
  TransactionAppender appender(database);
  for (std::size_t row = 1; row <= rows.RowCount(); ++row) {
    if (rows.Filled(row)) {
      try {
        appender.Append(ToTransactionRecord(rows, row, names, base));
      } catch (const StoreRowError& error) {
        copied.stop_reason = error.what();
        return copied;
      }
      ++copied.outcome.stored;
    } else {
      ++copied.outcome.left_out;
    }
    progress.SetProgressValue(static_cast<int>(row));
  }
  copied.outcome.complete = true;
  return copied;
}

// SQLite can commit to a file that was deleted or moved, and the rows would be lost.
void CheckStillInPlace(SQLite::Database& database, const std::filesystem::path& path) {
  int moved = 0;
  sqlite3_file_control(database.getHandle(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  if (moved != 0) {
    throw DatabaseError(SQLITE_READONLY_DBMOVED, FileTitle(path) + " was deleted or moved away");
  }
}

RecordNames ReadNames(const OpenDatabases& databases) {
  return WithDatabaseErrors(databases.recipe_db_path, [&] {
    SQLite::Database recipes =
        OpenDatabase(databases.recipe_db_path, Access::kRead, databases.lock_wait);
    return ReadRecordNames(recipes);
  });
}

// Throws DatabaseError and StoreRowError; nothing of the import is stored then.
Copied CopyInOneTransaction(const ImportedData& rows, const OpenDatabases& databases,
                            const Calendar& calendar, ProgressDisplay& progress) {
  const RecordNames names = ReadNames(databases);
  return WithDatabaseErrors(databases.trans_db_path, [&] {
    SQLite::Database database =
        OpenDatabase(databases.trans_db_path, Access::kWrite, databases.lock_wait);
    database.exec(kLargeCache);
    SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
    const std::int32_t base = ScanForBase(database, progress);
    CheckTransactionRange(rows, base);
    Copied copied = CopyRows(database, rows, names, base, progress);
    if (copied.outcome.stored > 0) {
      TouchDatabase(database, calendar);
    }
    CheckStillInPlace(database, databases.trans_db_path);
    transaction.commit();
    return copied;
  });
}

}  // namespace

TransactionStore::TransactionStore(Operator& op, const PrivateINI& settings,
                                   const Calendar& calendar, ProgressDisplay& progress,
                                   std::function<void()> save_transaction_database)
    : operator_(op),
      settings_(settings),
      calendar_(calendar),
      progress_(progress),
      save_transaction_database_(std::move(save_transaction_database)) {}

StoreOutcome TransactionStore::StoreImportedTransactions(const ImportedData& rows,
                                                         const OpenDatabases& databases,
                                                         bool& stored_flag) {
  if (stored_flag && !ConfirmDuplicate()) {
    return {};
  }
  Copied copied;
  try {
    copied = CopyInOneTransaction(rows, databases, calendar_, progress_);
  } catch (const DatabaseError& error) {
    progress_.SetProgressMessage({});
    operator_.ShowMessage(
        {.icon = Icon::kCritical,
         .title = std::string(kStoreErrorTitle),
         .text = DatabaseErrorText(error.Number()),
         .cause = std::string(error.what()) + "; nothing of this import was stored"});
    return {};
  } catch (const std::exception& error) {
    ReportStopped(error.what(), {});
    return {};
  }

  const StoreOutcome& outcome = copied.outcome;
  if (!outcome.complete && outcome.stored == 0) {
    ReportStopped(copied.stop_reason, outcome);
    return outcome;
  }
  stored_flag = true;
  if (outcome.complete) {
    progress_.SetProgressMessage("Successfully copied imported records to Transaction database.");
  }
  if (outcome.complete) {
    BeepIfEnabled(operator_, settings_);
  } else {
    ReportStopped(copied.stop_reason, outcome);
  }
  ReportLeftOut(rows, outcome);
  save_transaction_database_();
  return outcome;
}

bool TransactionStore::ConfirmDuplicate() {
  return operator_.ShowMessage(
             {.icon = Icon::kQuestion,
              .buttons = Buttons::kYesNo,
              .title = "Duplicate Data",
              .text =
                  "The current transaction data has already been stored in the active transaction "
                  "database. Are you sure you want to add the same data to the database again?",
              .refuses_by_default = true}) == Answer::kYes;
}

void TransactionStore::ReportStopped(const std::string& reason, const StoreOutcome& outcome) {
  progress_.SetProgressMessage({});
  std::string count = "Nothing of this import was stored.";
  if (outcome.stored > 0) {
    count = "The copy stopped there; " + CountOfRows(outcome.stored) + " before it " +
            (outcome.stored == 1 ? "is" : "are") + " stored.";
  }
  operator_.ShowMessage(
      {Icon::kCritical, Buttons::kOk, std::string(kStoreErrorTitle), reason + "\r\n\r\n" + count});
}

void TransactionStore::ReportLeftOut(const ImportedData& rows, const StoreOutcome& outcome) {
  const std::vector<UnreadFeed>& feeds = rows.UnreadFeeds();
  MessageBox box{.icon = Icon::kInformation, .title = "Transaction Store", .text = {}};
  std::size_t of_unread_feeds = 0;
  if (!feeds.empty()) {
    box.icon = Icon::kWarning;
    box.text = UnreadFeedsText(feeds, "stored");
    box.cause = UnreadFeedsList(feeds);
    for (const UnreadFeed& feed : feeds) {
      of_unread_feeds += feed.rows;
    }
  }
  if (outcome.left_out > of_unread_feeds) {
    const std::size_t empty = outcome.left_out - of_unread_feeds;
    box.text += (box.text.empty() ? "" : "\r\n\r\n") + CountOfRows(empty) +
                (empty == 1 ? " of the import holds no data (it was counted in the file but never "
                              "filled) and was not stored."
                            : " of the import hold no data (they were counted in the file but "
                              "never filled) and were not stored.");
  }
  if (!box.text.empty()) {
    operator_.ShowMessage(box);
  }
}

}  // namespace vrx
