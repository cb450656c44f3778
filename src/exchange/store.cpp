#include "exchange/store.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <utility>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include "base/files.h"
#include "base/number.h"
#include "base/text.h"
#include "base/translation.h"
#include "database/connection.h"
#include "database/identity.h"
#include "database/imports.h"
#include "database/transactions.h"
#include "exchange/file_batches.h"
#include "exchange/repeated_batches.h"
#include "exchange/store_plan.h"
#include "exchange/store_row.h"
#include "exchange/unread_feeds.h"
#include "settings/settings.h"

namespace vrx {
namespace {

// Page cache in kilobytes, enough for the pages of all indexes that an import changes. With a
// smaller cache they are written and read several times before the commit. Allocated on demand.
constexpr const char* kLargeCache = "PRAGMA cache_size=-65536";

constexpr std::string_view kUndoTitle = TrMark("Undo the Last Store");

constexpr const char* kHasTransactionsQuery = "SELECT EXISTS (SELECT 1 FROM Transactions)";

// Result of a committed copy; `stop_reason` is empty if it reached the last row.
struct Copied {
  StoreOutcome outcome;
  std::string stop_reason;
  StoredRows stored_rows;
};

std::string CountOfRows(std::size_t count) {
  return count == 1 ? Tr("1 row") : Tr("%1 rows", {std::to_string(count)});
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

template <typename Value>
void Widen(std::optional<Value>& lowest, std::optional<Value>& highest, const Value& value) {
  lowest = std::min(lowest.value_or(value), value);
  highest = std::max(highest.value_or(value), value);
}

void Count(StoreOutcome& outcome, const TransactionRecord& stored) {
  ++outcome.stored;
  Widen(outcome.lowest, outcome.highest, stored.transaction);
  if (stored.date) {
    Widen(outcome.first_date, outcome.last_date, *stored.date);
  }
}

Copied CopyRows(SQLite::Database& database, const ImportedData& rows, const RecordNames& names,
                const StorePlan& plan, ProgressDisplay& progress) {
  progress.SetProgressMessage("Copying imported records to Transaction database.");
  progress.SetProgressRange(static_cast<int>(rows.RowCount()));
  Copied copied;
  copied.outcome.not_read = rows.UnreadFeeds().size();
  copied.stored_rows.resize(plan.batches.size());
  TransactionAppender appender(database);
  for (std::size_t row = 1; row <= rows.RowCount(); ++row) {
    if (!rows.Filled(row)) {
      ++copied.outcome.left_out;
    } else if (!plan.bases[row - 1]) {
      ++copied.outcome.repeated;
    } else {
      try {
        const TransactionRecord record =
            ToTransactionRecord(rows, row, names, *plan.bases[row - 1]);
        appender.Append(record);
        Count(copied.outcome, record);
      } catch (const StoreRowError& error) {
        copied.stop_reason = error.what();
        return copied;
      }
      copied.stored_rows[plan.batch_of_row[row - 1]].push_back(row);
    }
    progress.SetProgressValue(static_cast<int>(row));
  }
  copied.outcome.complete = true;
  return copied;
}

// "2026-01-05T06:30:00+01:00"
std::string IsoText(const LocalTime& now) {
  const auto two = [](long number) { return Format(static_cast<double>(number), "00"); };
  const std::chrono::hh_mm_ss time(now.time_of_day);
  const std::chrono::hh_mm_ss offset(std::chrono::abs(now.offset));
  return StoredText(now.date) + "T" + two(time.hours().count()) + ":" +
         two(time.minutes().count()) + ":" + two(time.seconds().count()) +
         (now.offset < std::chrono::minutes{0} ? "-" : "+") + two(offset.hours().count()) + ":" +
         two(offset.minutes().count());
}

ImportRecord DescribeImport(const ImportedData& rows, const ImportSource& source,
                            const StoreOutcome& outcome, const LocalTime& now) {
  return {.at = IsoText(now),
          .file = source.file,
          .sha256 = source.sha256,
          .units = source.units,
          .rows_read = static_cast<std::int64_t>(rows.RowCount()),
          .stored = static_cast<std::int64_t>(outcome.stored),
          .left_out = static_cast<std::int64_t>(outcome.left_out),
          .not_read = static_cast<std::int64_t>(outcome.not_read),
          .repeated = static_cast<std::int64_t>(outcome.repeated),
          .stored_low = outcome.lowest,
          .stored_high = outcome.highest,
          .first_date = outcome.first_date,
          .last_date = outcome.last_date};
}

// SQLite can commit to a file that was deleted or moved, and the rows would be lost.
void CheckStillInPlace(SQLite::Database& database, const std::filesystem::path& path) {
  int moved = 0;
  sqlite3_file_control(database.getHandle(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  if (moved != 0) {
    throw DatabaseError(SQLITE_READONLY_DBMOVED,
                        Tr("%1 was deleted or moved away", {FileTitle(path)}));
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
Copied CopyInOneTransaction(const ImportedData& rows, const ImportSource& source,
                            const OpenDatabases& databases, const Calendar& calendar,
                            ProgressDisplay& progress, RepeatedBatches repeated) {
  const RecordNames names = ReadNames(databases);
  return WithDatabaseErrors(databases.trans_db_path, [&] {
    SQLite::Database database =
        OpenDatabase(databases.trans_db_path, Access::kWrite, databases.lock_wait);
    database.exec(kLargeCache);
    SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
    const std::int32_t base = ScanForBase(database, progress);
    const StorePlan plan = PlanStore(database, rows, names, base, repeated);
    Copied copied = CopyRows(database, rows, names, plan, progress);
    if (copied.outcome.complete || copied.outcome.stored > 0) {
      RecordImport(database, DescribeImport(rows, source, copied.outcome, calendar.Now()), plan,
                   copied.stored_rows, base);
    }
    if (copied.outcome.stored > 0) {
      TouchDatabase(database, calendar);
    }
    CheckStillInPlace(database, databases.trans_db_path);
    transaction.commit();
    return copied;
  });
}

std::optional<ImportRecord> LastStore(const OpenDatabases& databases) {
  return WithDatabaseErrors(databases.trans_db_path, [&] {
    SQLite::Database database =
        OpenDatabase(databases.trans_db_path, Access::kRead, databases.lock_wait);
    return ReadUndoableStore(database);
  });
}

constexpr std::size_t kTimeOfIsoText = 11;  // where the time begins
constexpr std::size_t kHoursAndMinutes = 5;

// "01.QXT, stored on 2026-01-05 at 06:30: 9 rows, transactions 41 to 44."
std::string DescribeStore(const ImportRecord& store) {
  const std::string day = store.at.substr(0, kTimeOfIsoText - 1);
  const std::string time =
      store.at.substr(std::min(kTimeOfIsoText, store.at.size()), kHoursAndMinutes);
  const std::string rows = CountOfRows(static_cast<std::size_t>(store.stored));
  if (!store.stored_low) {
    return Tr("%1, stored on %2 at %3: %4.", {store.file, day, time, rows});
  }
  const std::string low = std::to_string(*store.stored_low);
  if (*store.stored_low == *store.stored_high) {
    return Tr("%1, stored on %2 at %3: %4, transaction %5.", {store.file, day, time, rows, low});
  }
  return Tr("%1, stored on %2 at %3: %4, transactions %5 to %6.",
            {store.file, day, time, rows, low, std::to_string(*store.stored_high)});
}

// Returns the number of rows. Throws DatabaseError; the database is unchanged then.
std::int64_t TakeOut(const ImportRecord& store, const OpenDatabases& databases,
                     const Calendar& calendar) {
  return WithDatabaseErrors(databases.trans_db_path, [&] {
    SQLite::Database database =
        OpenDatabase(databases.trans_db_path, Access::kWrite, databases.lock_wait);
    database.exec(kLargeCache);
    SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
    const std::optional<ImportRecord> last = ReadUndoableStore(database);
    if (!last || last->number != store.number) {
      throw DatabaseError(SQLITE_BUSY_SNAPSHOT,
                          Tr("another program has used the database meanwhile"));
    }
    const std::int64_t rows = UndoStore(database, store.number);
    if (rows != store.stored) {
      throw DatabaseError(SQLITE_MISMATCH,
                          Tr("the database has %1 of the %2 rows of the last store",
                             {std::to_string(rows), std::to_string(store.stored)}));
    }
    if (rows > 0) {
      TouchDatabase(database, calendar);
    }
    CheckStillInPlace(database, databases.trans_db_path);
    transaction.commit();
    return rows;
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
                                                         const ImportSource& source,
                                                         const OpenDatabases& databases,
                                                         bool& stored_flag,
                                                         RepeatedBatches repeated) {
  if (stored_flag) {
    if (!ConfirmDuplicate()) {
      return {};
    }
    repeated = RepeatedBatches::kAll;
  }
  Copied copied;
  try {
    const std::optional<RepeatedBatches> decided = Decide(rows, databases, repeated);
    if (!decided) {
      return {};
    }
    copied = CopyInOneTransaction(rows, source, databases, calendar_, progress_, *decided);
  } catch (const DatabaseError& error) {
    ReportFailure(error, Tr("nothing of this import was stored"));
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
    progress_.SetProgressMessage(
        outcome.stored == 0 && outcome.repeated > 0
            ? Tr("All imported records are in the Transaction database already.")
            : "Successfully copied imported records to Transaction database.");
    BeepIfEnabled(operator_, settings_);
  } else {
    ReportStopped(copied.stop_reason, outcome);
  }
  ReportLeftOut(rows, outcome);
  save_transaction_database_();
  return outcome;
}

// Another program may store in the meantime; the store looks again inside its transaction.
std::optional<RepeatedBatches> TransactionStore::Decide(const ImportedData& rows,
                                                        const OpenDatabases& databases,
                                                        RepeatedBatches repeated) {
  if (repeated == RepeatedBatches::kNew || repeated == RepeatedBatches::kAll) {
    return repeated;
  }
  const RecordNames names = ReadNames(databases);
  const std::vector<FileBatch> batches = ReadFileBatches(rows);
  const std::vector<BatchFinding> findings = WithDatabaseErrors(databases.trans_db_path, [&] {
    SQLite::Database database =
        OpenDatabase(databases.trans_db_path, Access::kRead, databases.lock_wait);
    return FindRepeatedBatches(database, rows, names, batches);
  });
  if (!AnyRepeated(findings)) {
    return RepeatedBatches::kNew;
  }
  MessageBox box{.icon = Icon::kWarning,
                 .title = Tr("Repeated Batches"),
                 .text = Tr("The transaction database has batches of this import already.") +
                         "\r\n\r\n" + RepeatedText(findings),
                 .cause = RepeatedList(batches, findings)};
  if (repeated == RepeatedBatches::kNone) {
    box.text += "\r\n\r\n" + Tr("Nothing was stored.");
    operator_.ShowMessage(box);
    return std::nullopt;
  }
  box.icon = Icon::kQuestion;
  box.buttons = Buttons::kNewAllNothing;
  switch (operator_.ShowMessage(box)) {
    case Answer::kStoreNew:
      return RepeatedBatches::kNew;
    case Answer::kStoreAll:
      return RepeatedBatches::kAll;
    default:
      return std::nullopt;
  }
}

bool TransactionStore::CanUndo(const OpenDatabases& databases) {
  return !databases.trans_db_path.empty() && LastStore(databases).has_value();
}

bool TransactionStore::UndoLastStore(const OpenDatabases& databases) {
  try {
    const std::optional<ImportRecord> last = LastStore(databases);
    if (!last) {
      operator_.ShowMessage({.icon = Icon::kInformation,
                             .title = Tr(kUndoTitle),
                             .text = Tr("There is no store to undo: only the last store can be "
                                        "undone, and only once.")});
      return false;
    }
    const Answer answer = operator_.ShowMessage(
        {.icon = Icon::kQuestion,
         .buttons = Buttons::kYesNo,
         .title = Tr(kUndoTitle),
         .text = Tr("Do you want to take the records of the last store out of the database?") +
                 "\r\n\r\n" + DescribeStore(*last),
         .refuses_by_default = true});
    if (answer != Answer::kYes) {
      return false;
    }
    const std::int64_t rows = TakeOut(*last, databases, calendar_);
    progress_.SetProgressMessage(Tr("The last store was undone: %1 taken out.",
                                    {CountOfRows(static_cast<std::size_t>(rows))}));
  } catch (const DatabaseError& error) {
    ReportFailure(error, Tr("nothing was taken out"));
    return false;
  }
  save_transaction_database_();
  return true;
}

void TransactionStore::ReportFailure(const DatabaseError& error, const std::string& consequence) {
  progress_.SetProgressMessage({});
  operator_.ShowMessage({.icon = Icon::kCritical,
                         .title = std::string(kStoreErrorTitle),
                         .text = DatabaseErrorText(error.Number()),
                         .cause = std::string(error.what()) + "; " + consequence});
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
  std::string count = Tr("Nothing of this import was stored.");
  if (outcome.stored == 1) {
    count = Tr("The copy stopped there; 1 row before it is stored.");
  } else if (outcome.stored > 1) {
    count = Tr("The copy stopped there; %1 rows before it are stored.",
               {std::to_string(outcome.stored)});
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
    box.text = UnreadFeedsText(feeds, LeftOutOf::kStore);
    box.cause = UnreadFeedsList(feeds);
    for (const UnreadFeed& feed : feeds) {
      of_unread_feeds += feed.rows;
    }
  }
  if (outcome.left_out > of_unread_feeds) {
    const std::size_t empty = outcome.left_out - of_unread_feeds;
    box.text +=
        (box.text.empty() ? "" : "\r\n\r\n") +
        (empty == 1 ? Tr("1 row of the import holds no data (it was counted in the file but "
                         "never filled) and was not stored.")
                    : Tr("%1 rows of the import hold no data (they were counted in the "
                         "file but never filled) and were not stored.",
                         {std::to_string(empty)}));
  }
  if (!box.text.empty()) {
    operator_.ShowMessage(box);
  }
}

}  // namespace vrx
