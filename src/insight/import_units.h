#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

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

// The rows that are in another unit than the database is, by the rows that each store has written:
// the last ones of a transaction belong to its last store.
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
  struct Run {
    std::int64_t first;
    std::int64_t last;
    Use use;
  };
  void FindRows(SQLite::Database& database);
  void AddRow(std::int64_t rowid, Use use);

  WeightUnit unit_;
  std::vector<Run> runs_;  // ascending
  std::vector<LeftOutImport> left_out_;
  mutable std::size_t next_ = 0;  // the run that the last row was in or before
};

// Records what the weights of a store are, and that the database was modified today. Throws
// QuestionError if there is no such store or its unit is the database's, and DatabaseError.
void SettleImport(SQLite::Database& database, std::int64_t import, Settlement settlement,
                  const Calendar& calendar);

}  // namespace vrx
