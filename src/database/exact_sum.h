#pragma once

#include <vector>

#include <SQLiteCpp/Database.h>

namespace vrx {

// Adds up weights without losing a digit on the way: the sum is the true sum of the values, rounded
// once. It therefore does not depend on the order, and every total of the same rows is the same,
// whoever adds them up and along whichever index. Not for values so large that their sum passes the
// range of a double on the way: it is then infinite or no number.
class ExactSum {
 public:
  void Add(double value);

  // 0 before the first value.
  double Value() const;

 private:
  void AddFinite(double value);

  // What has been added up, without rounding: from the smallest to the largest, no two share a bit.
  std::vector<double> parts_;
  double beyond_ = 0;  // infinite or no number, once such a value came
};

// Gives a connection the aggregate exact_sum(x), which sums like sum(x) but exactly: NULLs do not
// count, and over no other value it is NULL; any other sum is a REAL. Harmless when done again.
// Throws DatabaseError.
void RegisterExactSum(SQLite::Database& database);

}  // namespace vrx
