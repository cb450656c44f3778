#pragma once

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "insight/accuracy.h"
#include "insight/batches.h"
#include "insight/completeness.h"
#include "insight/pens.h"
#include "insight/use.h"

// Every answer of the library worked out once more, plainly and slowly, from rows in memory. Shares
// only the structs of questions and answers with it.
namespace vrx::testing {

// A billionth of a unit of weight. Products of two weights fit.
__extension__ typedef __int128 Wide;  // NOLINT(modernize-use-using): no alias can be marked
inline constexpr std::int64_t kBillion = 1'000'000'000;

struct ModelRow {
  std::optional<std::int64_t> number = {};
  std::string type = {};
  std::optional<std::string> recipe = {};
  std::optional<std::string> user = {};
  std::optional<std::string> ingredient = {};
  std::optional<std::string> pen = {};
  std::optional<std::int64_t> target = {};  // billionths
  std::optional<std::int64_t> actual_batch = {};
  std::optional<std::int64_t> actual_feed = {};
  std::optional<std::string> date = {};
  std::optional<std::string> time = {};

  int import = 0;  // 0: no store accounts for it

  bool IsLoad() const { return type == "BATCH"; }
  bool IsDelivery() const { return type == "FEED"; }
  Wide Target() const { return target.value_or(0); }
  Wide Actual() const { return (IsLoad() ? actual_batch : actual_feed).value_or(0); }
};

// A store of a file; its rows are those that name it. Numbers begin with 1.
struct ModelImport {
  std::string at = {};  // "2026-01-05T06:30:00+01:00"
  std::string units = {};
  std::string settled = {};
  std::int64_t not_read = 0;
  std::int64_t left_out = 0;
  std::string missing = {};
  std::optional<std::int64_t> low = {};
  std::optional<std::int64_t> high = {};
  std::optional<std::string> first_date = {};
  std::optional<std::string> last_date = {};
};

// Indexes of the rows of a batch, in stored order.
using ModelBatch = std::vector<std::size_t>;

class Model {
 public:
  Model(std::vector<ModelRow> rows, std::vector<ModelImport> imports, std::string units);

  const std::vector<ModelRow>& Rows() const { return rows_; }
  // Writes the rows in place of those of a database.
  void WriteTo(SQLite::Database& database) const;

  Accuracy ReadAccuracy(const AccuracyQuestion& question) const;
  std::vector<CompositionLine> ReadComposition(const Question& question) const;
  Balance ReadBalance(const BalanceQuestion& question) const;
  Times ReadTimes(const TimesQuestion& question) const;
  Statement ReadStatement(const std::optional<Date>& from, const std::optional<Date>& to) const;
  std::vector<TraceLine> TraceIngredient(const Question& question) const;
  // What was loaded of the ingredient in batches with a weight.
  double LoadedAndTraced(const Question& question) const;
  std::vector<TraceLine> TracePen(const Question& question) const;
  std::vector<HoldingLine> ReadHolding(const HoldingQuestion& question) const;
  std::vector<DeliveredLine> ReadDelivered(const Question& question,
                                           const std::vector<HeadCount>& heads) const;
  std::vector<UseLine> ReadUse(const UseQuestion& question) const;

  const std::vector<ModelImport>& Imports() const { return imports_; }

 private:
  std::vector<ModelBatch> Batches() const;
  // The chosen ones by date and number.
  std::vector<ModelBatch> Chosen(const Question& question) const;
  std::optional<std::string> DayOf(const ModelBatch& batch) const;
  bool Has(const ModelBatch& batch, const ModelRow& wanted) const;
  AccuracyFigures Figures(std::vector<ModelRow> loads, const AccuracyQuestion& question) const;
  std::string KeyOf(AccuracyKey key, const ModelRow& row, const ModelBatch& batch) const;

  // Whether records of these days are known to be incomplete.
  bool IsIncomplete(const std::optional<std::string>& from, const std::string& to) const;

  std::vector<ModelRow> stored_;  // all
  std::vector<ModelRow> rows_;    // those that count, in the database's unit
  std::vector<ModelImport> imports_;
  std::string units_;
};

// What is not a name: NULL, an empty text and, of a user, "-1".
std::optional<std::string> NameOr(const std::optional<std::string>& name);
std::optional<std::string> UserOf(const ModelRow& row);

double Weight(Wide billionths);

// 1 if a limit is above a weight in these units, 0 if it is equal, -1 if it is below.
int LimitAgainst(const WeightLimit& limit, const std::string& units, Wide weight);

// A quotient with a positive divisor.
struct ModelQuotient {
  Wide dividend;
  Wide divisor;
};
// Of sorted quotients, at the place h = (n - 1) quarter / 4, as one quotient.
ModelQuotient Quantile(const std::vector<ModelQuotient>& sorted, std::size_t quarter);
void SortQuotients(std::vector<ModelQuotient>& quotients);

// The double nearest to a quotient, by long division to forty digits.
double Nearest(Wide dividend, Wide divisor);

// Some days of a yard around a new year with everything that is odd. The same seed gives the same.
Model RandomYard(std::uint64_t seed);

}  // namespace vrx::testing
