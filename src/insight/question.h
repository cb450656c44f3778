#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/date.h"
#include "base/error.h"

namespace vrx {

// The columns of names in `Transactions`. An operator is a `UserID`.
enum class NameKind { kRecipe, kIngredient, kOperator, kPen };
inline constexpr int kNameKinds = 4;

// "recipe", "ingredient", "operator" or "pen".
[[nodiscard]] std::string_view NounOf(NameKind kind);

// Which records a question is about. A load is a row of the type "BATCH", a delivery one of the
// type "FEED", a batch all rows of one transaction number, in stored order. A row without a number
// is a batch of its own.
//
// The period and the filters by recipe and operator choose whole batches: by the day of the first
// load (of the first delivery if there is no load), and by the names of the first row. The filters
// by ingredient and pen choose the batches that have such a load or delivery; an answer about loads
// has only those of the ingredient then, and one about deliveries only those of the pen.
struct Question {
  std::optional<Date> from = {};  // first and last day, both included
  std::optional<Date> to = {};
  std::optional<std::string> recipe = {};
  std::optional<std::string> ingredient = {};
  std::optional<std::string> operator_id = {};
  std::optional<std::string> pen = {};
  // About how many rows are in memory at once: a question about more is answered in parts.
  std::int64_t rows_at_once = 100000;

  [[nodiscard]] bool HasPeriod() const { return from || to; }
  [[nodiscard]] bool HasName() const { return recipe || ingredient || operator_id || pen; }
  [[nodiscard]] const std::optional<std::string>& Name(NameKind kind) const;
};

// A question that cannot be answered: a period that ends before it begins, a name that no record
// has, a limit that is not a number from 0.
class QuestionError : public Error {
 public:
  using Error::Error;
};

// Throws QuestionError if the period ends before it begins.
void CheckPeriod(const Question& question);

// Called every few thousand rows with the part that is done, 0 to 100. False cancels. It must not
// use the connection.
using InsightProgress = std::function<bool(int percent)>;
inline constexpr int kAllPercent = 100;

// Receives the lines of an answer one by one, so that the memory of a long one does not grow with
// its lines. It must not use the connection.
template <typename Line>
using TakeLine = std::function<void(Line&&)>;

// Thrown when the progress function returned false.
class QuestionCancelled : public Error {
 public:
  QuestionCancelled() : Error("cancelled") {}
};

// Rows of one store that no answer includes, because their weights are in another unit than the
// database's and nobody has settled yet what they are (ImportUnits).
struct LeftOutImport {
  std::int64_t import = 0;  // its number in `Imports`
  std::string file = {};
  std::string units = {};
  std::int64_t rows = 0;
  bool operator==(const LeftOutImport&) const = default;
};

// What is said beside the figures of every answer.
struct InsightNotes {
  std::string units = {};  // "LB" or "KG", of all weights
  std::vector<LeftOutImport> left_out = {};
  // Names of one kind that were met and differ by case only. They are different names.
  std::vector<std::vector<std::string>> alike = {};
  // Rows without a date, which are in no period; 0 without a period.
  std::int64_t undated = 0;
};

}  // namespace vrx
