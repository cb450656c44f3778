#include "database/exact_sum.h"

#include <cmath>
#include <cstddef>
#include <memory>
#include <new>
#include <utility>

#include <sqlite3.h>

#include "database/connection.h"

namespace vrx {
namespace {

constexpr int kPointerSize = sizeof(void*);

// SQLite keeps one pointer, initially null, for each running aggregate.
void Step(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  if (sqlite3_value_type(values[0]) == SQLITE_NULL) {
    return;
  }
  auto* const sum = static_cast<ExactSum**>(sqlite3_aggregate_context(context, kPointerSize));
  if (sum == nullptr) {
    sqlite3_result_error_nomem(context);
    return;
  }
  try {
    if (*sum == nullptr) {
      *sum = std::make_unique<ExactSum>().release();
    }
    (*sum)->Add(sqlite3_value_double(values[0]));
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context);
  }
}

// SQLite calls this for an abandoned query too.
void Finish(sqlite3_context* context) {
  auto* const place = static_cast<ExactSum**>(sqlite3_aggregate_context(context, 0));
  if (place == nullptr || *place == nullptr) {
    sqlite3_result_null(context);
    return;
  }
  const std::unique_ptr<ExactSum> sum(std::exchange(*place, nullptr));
  sqlite3_result_double(context, sum->Value());
}

}  // namespace

void ExactSum::Add(double value) {
  if (std::isfinite(value)) {
    AddFinite(value);
  } else {
    beyond_ += value;
  }
}

// Adds `value` to each part in turn; the rounding error of each addition remains as a part.
void ExactSum::AddFinite(double value) {
  std::size_t kept = 0;
  for (double part : parts_) {
    if (std::fabs(value) < std::fabs(part)) {
      std::swap(value, part);
    }
    const double sum = value + part;
    const double rest = part - (sum - value);
    if (rest != 0) {
      parts_[kept++] = rest;
    }
    value = sum;
  }
  parts_.resize(kept);
  if (std::isfinite(value)) {
    parts_.push_back(value);
  } else {
    parts_.clear();
    beyond_ += value;
  }
}

double ExactSum::Value() const {
  if (beyond_ != 0) {  // true for NaN too
    return beyond_;
  }
  double sum = 0;
  double rest = 0;
  std::size_t left = parts_.size();
  while (left > 0 && rest == 0) {
    const double part = parts_[--left];
    const double larger = sum;
    sum = larger + part;
    rest = part - (sum - larger);
  }
  // A tie was rounded to even. If the remaining parts have the sign of the rest, the true sum is
  // beyond the tie.
  if (left > 0 && std::signbit(rest) == std::signbit(parts_[left - 1])) {
    const double twice = rest * 2;
    const double away = sum + twice;
    if (away - sum == twice) {
      return away;
    }
  }
  return sum;
}

void RegisterExactSum(SQLite::Database& database) {
  WithDatabaseErrors(database, [&] {
    database.check(sqlite3_create_function_v2(database.getHandle(), "exact_sum", 1,
                                              SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS,
                                              nullptr, nullptr, Step, Finish, nullptr));
  });
}

}  // namespace vrx
