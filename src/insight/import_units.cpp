#include "insight/import_units.h"

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
  SQLite::Statement others(database, kOtherUnits);
  others.bind(1, TextOf(unit_));
  std::vector<std::int64_t> imports;
  while (others.executeStep()) {
    const std::int64_t import = others.getColumn(0).getInt64();
    const Settlement settlement = SettlementOf(others.getColumn(3).getString());
    if (settlement == Settlement::kKeep) {
      continue;
    }
    imports.push_back(import);
    uses_[import] = settlement == Settlement::kConvert ? Use::kConverted : Use::kLeftOut;
    if (settlement == Settlement::kOpen) {
      left_out_.push_back({.import = import,
                           .file = others.getColumn(1).getString(),
                           .units = others.getColumn(2).getString()});
    }
  }
  rows_ = ImportRows(database, imports);
  for (LeftOutImport& import : left_out_) {
    import.rows = rows_.CountOf(import.import);
  }
}

ImportUnits::Use ImportUnits::UseOf(std::int64_t rowid) const {
  const std::optional<std::int64_t> import = rows_.ImportOf(rowid);
  return import ? uses_.at(*import) : Use::kAsStored;
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
