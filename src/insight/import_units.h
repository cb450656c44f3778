#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "database/import_rows.h"
#include "insight/question.h"
#include "insight/weight_limit.h"
#include "platform/calendar.h"

namespace vrx {

// What is known of the weights of a store whose file had another unit than the database has.
enum class Settlement {
  kOpen,     // nothing: its rows are left out of every answer
  kKeep,     // they are in the database's unit after all
  kConvert,  // they are in the unit of the file and are converted when read; stored rows stay
};

// "keep" and "convert"; empty for kOpen.
[[nodiscard]] std::string TextOf(Settlement settlement);

// The unit of a database; pounds if its label is not "KG". Throws DatabaseError.
[[nodiscard]] WeightUnit ReadWeightUnit(SQLite::Database& database);

// The rows that are in another unit than the database is, by the stores that have written them.
class ImportUnits {
 public:
  enum class Use { kAsStored, kConverted, kLeftOut };

  // Throws DatabaseError.
  explicit ImportUnits(SQLite::Database& database);

  [[nodiscard]] WeightUnit Unit() const { return unit_; }
  // Fast for ascending rowids.
  [[nodiscard]] Use UseOf(std::int64_t rowid) const;
  // The double nearest to a weight of a converted row in the database's unit.
  [[nodiscard]] double Converted(double weight) const;
  // By number.
  [[nodiscard]] const std::vector<LeftOutImport>& LeftOut() const { return left_out_; }

 private:
  void FindRows(SQLite::Database& database);

  WeightUnit unit_;
  std::map<std::int64_t, Use> uses_;  // by import, of those that are not as stored
  ImportRows rows_;                   // of these imports
  std::vector<LeftOutImport> left_out_;
};

// Records what the weights of a store are, and that the database was modified today. Throws
// QuestionError if there is no such store or its unit is the database's, and DatabaseError.
void SettleImport(SQLite::Database& database, std::int64_t import, Settlement settlement,
                  const Calendar& calendar);

}  // namespace vrx
