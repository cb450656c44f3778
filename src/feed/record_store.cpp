#include "feed/record_store.h"

#include <utility>

#include <SQLiteCpp/Transaction.h>

#include "database/identity.h"
#include "database/translated.h"
#include "feed/record_commit.h"

namespace vrx {
namespace {

template <typename Record, typename Commit>
bool Store(SQLite::Database& database, Record& record, const Calendar& calendar,
           const Commit& commit) {
  return Translated(database, [&] {
    Record committed = record;
    SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
    const auto changes = database.getTotalChanges();
    commit(committed);
    const bool changed = database.getTotalChanges() != changes;
    if (changed) {
      TouchDatabase(database, calendar);
      transaction.commit();
    }
    record = std::move(committed);
    return changed;
  });
}

}  // namespace

bool StoreRecord(SQLite::Database& database, IngredientRecord& record,
                 std::optional<std::string_view> batch_type_on_show, const Calendar& calendar) {
  return Store(database, record, calendar, [&](IngredientRecord& committed) {
    CommitIngredientRecord(database, committed, batch_type_on_show);
  });
}

bool StoreRecord(SQLite::Database& database, PenRecord& record, const Calendar& calendar) {
  return Store(database, record, calendar,
               [&](PenRecord& committed) { CommitPenRecord(database, committed); });
}

}  // namespace vrx
