#pragma once

#include <vector>

#include <SQLiteCpp/Database.h>

namespace vrx {

// Exact sum of doubles: the true sum, rounded once. It does not depend on the order of the values,
// so every total of the same rows is equal, whichever index the query uses. If an intermediate sum
// exceeds the range of a double, the result is infinite or NaN.
class ExactSum {
 public:
  void Add(double value);

  // 0 before the first value.
  [[nodiscard]] double Value() const;

 private:
  void AddFinite(double value);

  // Their sum is exact: ascending by magnitude, no two parts overlap in a bit.
  std::vector<double> parts_;
  double beyond_ = 0;  // infinite or NaN after such a value
};

// Defines the SQL aggregate exact_sum(x) on a connection: like sum(x) but exact and always REAL.
// NULLs are ignored; without other values the result is NULL. May be called again. Throws
// DatabaseError.
void RegisterExactSum(SQLite::Database& database);

}  // namespace vrx
