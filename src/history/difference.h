#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <SQLiteCpp/Database.h>

namespace vrx {

// The `Type` of a batched row; every other type is treated as fed.
inline constexpr std::string_view kBatchType = "BATCH";

// A record compares its target with one actual weight, which its `Type` decides. A record without a
// type compares nothing.
enum class ComparedKind { kBatch, kFeed };

// The two weights of a record, or their sums over records of one kind. Nothing for a weight that is
// not stored.
struct Comparison {
  std::optional<double> target = {};
  std::optional<double> actual = {};
};

// Of both kinds, by ComparedKind.
using Comparisons = std::array<Comparison, 2>;

// SQL expressions over a row of `Transactions` whose sums are its group's Comparisons: for each
// kind the target and the actual weight.
inline constexpr std::size_t kComparisonTerms = 4;
[[nodiscard]] std::array<std::string, kComparisonTerms> ComparisonTerms();

// SQL expression that is NULL for the records of the other kind.
[[nodiscard]] std::string OfKind(ComparedKind kind, std::string_view expression);

// SQL expression that sorts records by their difference, or by its percentage.
[[nodiscard]] std::string DifferenceOrder(ComparedKind kind, bool percent);

// Beyond how many percent of the target a difference is marked, unless the operator set it.
inline constexpr double kUsualTolerance = 2;

// The actual weight less the target: "+2.5", "-20", "0"; at most 3 decimals. Empty if a weight is
// missing.
[[nodiscard]] std::string DifferenceText(const Comparison& weights);

// The same in percent of the target: "+0.4", "-100.0", "0.0". Also empty if the target is not above
// 0.
[[nodiscard]] std::string DifferencePercentText(const Comparison& weights);

// The last two as SQL functions of a target and an actual weight, NULL for an empty text.
inline constexpr std::string_view kDifferenceFunction = "difference_text";
inline constexpr std::string_view kDifferencePercentFunction = "difference_percent_text";

// Defines them on a connection. May be called again. Throws DatabaseError.
void RegisterDifferences(SQLite::Database& database);

// Whether the difference is more than so many percent of the target; false without a percentage.
[[nodiscard]] bool IsBeyond(const Comparison& weights, double tolerance);

}  // namespace vrx
