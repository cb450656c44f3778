#include "insight/import_units.h"

#include <algorithm>
#include <map>
#include <optional>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "database/connection.h"
#include "database/identity.h"
#include "database/imports.h"

namespace vrx {
namespace {

// Stores in another unit; ?1 is the database's. A file without a unit is in the database's.
constexpr const char* kOtherUnits =
    "SELECT Number, File, Units, ifnull(Settled, '') FROM Imports WHERE Units IN ('LB', 'KG') AND "
    "Units <> ?1 ORDER BY Number";

// The stores of all transactions that one of those has written to, the last one first.
constexpr const char* kStoresOfRows =
    "SELECT [Transaction], Import, Rows FROM ImportedBatches WHERE Rows > 0 AND [Transaction] IN "
    "(SELECT [Transaction] FROM ImportedBatches WHERE Rows > 0 AND Import IN (SELECT Number FROM "
    "Imports WHERE Units IN ('LB', 'KG') AND Units <> ?1 AND ifnull(Settled, '') <> 'keep')) "
    "ORDER BY [Transaction], Import DESC";

constexpr const char* kRowsFromTheLast =
    "SELECT rowid FROM Transactions WHERE [Transaction] = ? ORDER BY rowid DESC";

Settlement SettlementOf(const std::string& text) {
  for (const Settlement settlement : {Settlement::kKeep, Settlement::kConvert}) {
    if (text == TextOf(settlement)) {
      return settlement;
    }
  }
  return Settlement::kOpen;
}

}  // namespace

std::string TextOf(Settlement settlement) {
  switch (settlement) {
    case Settlement::kKeep:
      return "keep";
    case Settlement::kConvert:
      return "convert";
    case Settlement::kOpen:
      break;
  }
  return {};
}

WeightUnit ReadWeightUnit(SQLite::Database& database) {
  return UnitOf(ReadField(database, kUnitField).value_or(""));
}

ImportUnits::ImportUnits(SQLite::Database& database) : unit_(ReadWeightUnit(database)) {
  WithDatabaseErrors(database, [&] {
    if (HasImportTables(database)) {
      FindRows(database);
    }
  });
}

void ImportUnits::FindRows(SQLite::Database& database) {
  std::map<std::int64_t, Use> uses;  // by import, of those in another unit
  SQLite::Statement others(database, kOtherUnits);
  others.bind(1, TextOf(unit_));
  while (others.executeStep()) {
    const std::int64_t import = others.getColumn(0).getInt64();
    const Settlement settlement = SettlementOf(others.getColumn(3).getString());
    if (settlement == Settlement::kKeep) {
      continue;
    }
    uses[import] = settlement == Settlement::kConvert ? Use::kConverted : Use::kLeftOut;
    if (settlement == Settlement::kOpen) {
      left_out_.push_back({.import = import,
                           .file = others.getColumn(1).getString(),
                           .units = others.getColumn(2).getString()});
    }
  }
  if (uses.empty()) {
    return;
  }
  SQLite::Statement stores(database, kStoresOfRows);
  SQLite::Statement rows(database, kRowsFromTheLast);
  stores.bind(1, TextOf(unit_));
  std::optional<std::int64_t> transaction;
  bool more = false;  // rows of the transaction
  while (stores.executeStep()) {
    if (const std::int64_t number = stores.getColumn(0).getInt64(); transaction != number) {
      transaction = number;
      rows.reset();
      rows.bind(1, number);
      more = rows.executeStep();
    }
    const auto use = uses.find(stores.getColumn(1).getInt64());
    for (std::int64_t left = stores.getColumn(2).getInt64(); more && left > 0; --left) {
      if (use != uses.end()) {
        AddRow(rows.getColumn(0).getInt64(), use->second);
        for (LeftOutImport& import : left_out_) {
          import.rows += import.import == use->first ? 1 : 0;
        }
      }
      more = rows.executeStep();
    }
  }
  std::sort(runs_.begin(), runs_.end(),
            [](const Run& one, const Run& other) { return one.first < other.first; });
}

// Rows come in descending order within a transaction.
void ImportUnits::AddRow(std::int64_t rowid, Use use) {
  if (!runs_.empty() && runs_.back().first == rowid + 1 && runs_.back().use == use) {
    runs_.back().first = rowid;
  } else {
    runs_.push_back({.first = rowid, .last = rowid, .use = use});
  }
}

ImportUnits::Use ImportUnits::UseOf(std::int64_t rowid) const {
  if (runs_.empty()) {
    return Use::kAsStored;
  }
  if (next_ >= runs_.size() || rowid > runs_[next_].last ||
      (next_ > 0 && rowid <= runs_[next_ - 1].last)) {
    next_ = static_cast<std::size_t>(
        std::lower_bound(runs_.begin(), runs_.end(), rowid,
                         [](const Run& run, std::int64_t row) { return run.last < row; }) -
        runs_.begin());
  }
  return next_ < runs_.size() && rowid >= runs_[next_].first ? runs_[next_].use : Use::kAsStored;
}

double ImportUnits::Converted(double weight) const {
  const bool pounds = unit_ == WeightUnit::kPounds;
  return WeightLimit{weight, pounds ? WeightUnit::kKilograms : WeightUnit::kPounds}.In(unit_);
}

void SettleImport(SQLite::Database& database, std::int64_t import, Settlement settlement,
                  const Calendar& calendar) {
  const std::string number = std::to_string(import);
  WithDatabaseErrors(database, [&] {
    SQLite::Transaction transaction(database, SQLite::TransactionBehavior::IMMEDIATE);
    const std::string unit = TextOf(ReadWeightUnit(database));
    if (!HasImportTables(database)) {
      throw QuestionError("There is no import " + number + ".");
    }
    SQLite::Statement query(database, "SELECT ifnull(Units, '') FROM Imports WHERE Number = ?");
    query.bind(1, import);
    if (!query.executeStep()) {
      throw QuestionError("There is no import " + number + ".");
    }
    const std::string units = query.getColumn(0).getString();
    if (units == unit || (units != "LB" && units != "KG")) {
      throw QuestionError("The weights of import " + number + " are in " + unit +
                          ", the database's unit: there is nothing to settle.");
    }
    query.reset();
    SQLite::Statement update(database, "UPDATE Imports SET Settled = ? WHERE Number = ?");
    update.bind(1, TextOf(settlement));
    update.bind(2, import);
    update.exec();
    TouchDatabase(database, calendar);
    transaction.commit();
  });
}

}  // namespace vrx
