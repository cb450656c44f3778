#include "export/export_plan.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "database/schema.h"
#include "database/transactions.h"
#include "history/columns.h"
#include "history/data_group.h"
#include "history/group_query.h"

namespace vrx {

namespace {

using enum ValueOrder;
using enum NullValues;
using enum SummedRows;

constexpr ExportWeight kBatchWeight{"ActualBatch", "Batch_Weight"};
constexpr ExportWeight kFeedWeight{"ActualFeed", "Feed_Weight"};
constexpr ExportWeight kTargetWeight{"Target", "Target_Weight"};

constexpr ExportLevel kTransaction{"Transaction", "Transaction", kAscending, kShown};
constexpr ExportLevel kType{"Type", "Type", kAscending, kShown};
constexpr ExportLevel kDate{"Date", "Date", kDescending, kRefused};
constexpr ExportLevel kRecipe{"Recipe", "Recipe", kAscending, kShown};
constexpr ExportLevel kIngredient{"Ingredient", "Ingredient", kAscending, kSkipped};
constexpr ExportLevel kPen{"Pen", "Pen", kAscending, kSkipped};
constexpr ExportLevel kUser{"UserID", "User_Id", kAscending, kNoUser};

constexpr std::string_view kNewestFirst = "[Date] DESC";
constexpr std::string_view kAsStored;

// The plan of most groups.
ExportPlan Plan(int group, int column_group, std::vector<ExportLevel> levels,
                std::string_view excluded, std::vector<ExportWeight> weights) {
  return {.group = group,
          .column_group = column_group,
          .levels = std::move(levels),
          .excluded = excluded,
          .ordering = kNewestFirst,
          .weights = std::move(weights),
          .fed_weights = {},
          .summed = kOwn,
          .whole_transactions = false};
}

// The same with a type as the innermost level.
ExportPlan PlanByType(int group, int column_group, std::vector<ExportLevel> levels,
                      std::string_view excluded) {
  ExportPlan plan =
      Plan(group, column_group, std::move(levels), excluded, {kBatchWeight, kTargetWeight});
  plan.fed_weights = {kFeedWeight, kTargetWeight};
  return plan;
}

ExportPlan With(ExportPlan plan, std::string_view ordering) {
  plan.ordering = ordering;
  return plan;
}

ExportPlan With(ExportPlan plan, SummedRows summed) {
  plan.summed = summed;
  return plan;
}

ExportPlan WithWholeTransactions(ExportPlan plan) {
  plan.whole_transactions = true;
  return plan;
}

std::vector<ExportPlan> MakePlans() {
  return {
      Plan(0, 0, {}, "", {}),
      PlanByType(1, 1, {kTransaction, kType}, "Transaction,Type"),
      WithWholeTransactions(With(
          PlanByType(2, 2, {kDate, kTransaction, kType}, "Date,Transaction,Type"), "[Time] DESC")),
      PlanByType(3, 3, {kRecipe, kType}, "Recipe,Type"),
      PlanByType(4, 3, {kRecipe, kType}, "Recipe,Type"),
      With(Plan(5, 5, {kRecipe, kIngredient}, "Recipe", {kBatchWeight}), kAsStored),
      Plan(6, 6, {kIngredient}, "Ingredient", {kBatchWeight, kTargetWeight}),
      Plan(7, 7, {kIngredient}, "Ingredient", {kBatchWeight, kTargetWeight}),
      Plan(8, 8, {kPen}, "Pen", {kFeedWeight, kTargetWeight}),
      Plan(9, 9, {kPen}, "Pen", {kFeedWeight, kTargetWeight}),
      With(Plan(10, 10, {kPen}, "", {kFeedWeight, kTargetWeight}), "[Recipe]"),
      With(Plan(11, 11, {kUser, kTransaction}, "UserID,Transaction", {kBatchWeight, kFeedWeight}),
           kWholeIfNoUser),
      With(PlanByType(12, 12, {kUser, kType}, "UserID,Type"), kOfUserOrOfTheType),
  };
}

// Each transaction once for each of its dates, joined with all its rows. Rows without a transaction
// number match nothing, so their columns are NULL.
constexpr std::string_view kWholeTransactions =
    "(SELECT DISTINCT [Date] AS listed_date, [Transaction] AS listed_transaction FROM Transactions)"
    " LEFT JOIN Transactions ON [Transaction] = listed_transaction";

void Append(std::string& list, std::string_view item) {
  list += list.empty() ? "" : ", ";
  list += item;
}

std::string Source(const ExportPlan& plan) {
  return std::string(plan.whole_transactions ? kWholeTransactions : kTransactionsTable);
}

std::string Key(const ExportPlan& plan, const ExportLevel& level) {
  if (level.nulls == NullValues::kNoUser) {
    return "coalesce([UserID], '" + std::string(kNoUserKey) + "')";
  }
  if (plan.whole_transactions && level.field == "Date") {
    return "listed_date";
  }
  if (plan.whole_transactions && level.field == "Transaction") {
    return "listed_transaction";
  }
  return Bracketed(level.field);
}

std::string Keys(const ExportPlan& plan) {
  std::string keys;
  for (const ExportLevel& level : plan.levels) {
    Append(keys, Key(plan, level));
  }
  return keys;
}

// Users are numbers stored as text.
std::string ByNumber(const std::string& key) { return "CAST(" + key + " AS REAL), " + key; }

std::string KeyOrder(const ExportPlan& plan) {
  std::string order;
  for (const ExportLevel& level : plan.levels) {
    const std::string key = Key(plan, level);
    Append(order, level.nulls == NullValues::kNoUser ? ByNumber(key) : key);
    order += level.order == ValueOrder::kDescending ? " DESC" : "";
  }
  return order;
}

// GROUP BY has the same terms as KeyOrder, so SQLite sorts only once.
std::string KeyGroups(const ExportPlan& plan) {
  std::string groups;
  for (const ExportLevel& level : plan.levels) {
    const std::string key = Key(plan, level);
    Append(groups, level.nulls == NullValues::kNoUser ? ByNumber(key) : key);
  }
  return groups;
}

// Keeps rows without an inner value only if their outer value has no other rows: then the outer
// group is shown empty.
std::string OuterWithoutInner(const ExportPlan& plan) {
  const std::string outer = Bracketed(plan.levels.front().field);
  const std::string inner = Bracketed(plan.levels.back().field);
  return " OR " + outer + " IS NULL OR " + outer + " NOT IN (SELECT " + outer +
         " FROM Transactions WHERE " + inner + " IS NOT NULL AND " + outer + " IS NOT NULL)";
}

constexpr std::string_view kWith = "WITH ";

enum class Wanted { kRecords, kSums };

// The rows of a period take the place of the table in a query, including its inner queries.
std::string OfPeriod(const Period& period, const std::string& query) {
  if (period.IsAll()) {
    return query;
  }
  const bool has_tables = query.starts_with(kWith);
  return std::string(kWith) +
         "Transactions AS NOT MATERIALIZED (SELECT rowid AS rowid, * FROM "
         "main.Transactions WHERE 1" +
         PeriodCondition(period) + ")" +
         (has_tables ? ", " + query.substr(kWith.size()) : " " + query);
}

std::string Condition(const ExportPlan& plan, Wanted wanted, NameSearch search) {
  const DataGroup& group = DataGroups()[static_cast<std::size_t>(plan.group)];
  if (!group.named_column.empty()) {
    return " WHERE " + Bracketed(group.named_column) + " = ?1" +
           (search == NameSearch::kInRanges ? InTransactionRanges("?2") : "");
  }
  if (plan.levels.empty() || plan.levels.back().nulls != NullValues::kSkipped) {
    return "";
  }
  const bool outer_alone = wanted == Wanted::kRecords && plan.levels.size() > 1;
  return " WHERE " + Bracketed(plan.levels.back().field) + " IS NOT NULL" +
         (outer_alone ? OuterWithoutInner(plan) : "");
}

// ", exact_sum([Target]) AS [Target]" and so on.
std::string Sums(const ExportPlan& plan) {
  std::string sums;
  for (const std::string_view field : SummedFields(plan)) {
    sums += ", exact_sum(" + Bracketed(field) + ") AS " + Bracketed(field);
  }
  return sums;
}

// A user's sums cover the user's rows of the transaction; the sums without a user cover the whole
// transaction.
std::string WholeIfNoUserQuery(const ExportPlan& plan) {
  const std::string sums = Sums(plan);
  std::string fields;
  for (const std::string_view field : SummedFields(plan)) {
    fields += ", " + Bracketed(field);
  }
  return "SELECT user, number" + fields +
         " FROM ("
         "SELECT [UserID] AS user, [Transaction] AS number" +
         sums +
         " FROM Transactions WHERE [UserID] IS NOT NULL AND [UserID] <> '-1'"
         " GROUP BY number, user "
         "UNION ALL "
         "SELECT '-1', [Transaction]" +
         sums +
         " FROM Transactions GROUP BY [Transaction]"
         " HAVING max([UserID] IS NULL OR [UserID] = '-1')"
         ") ORDER BY " +
         ByNumber("user") + ", number";
}

// A group's sums cover the rows of its type of any user, and its user's rows of other types.
std::string OfUserOrOfTheTypeQuery(const ExportPlan& plan) {
  const std::string sums = Sums(plan);
  std::string of_type;
  std::string of_user;
  for (const std::string_view field : SummedFields(plan)) {
    of_type += ", of_type." + Bracketed(field);
    of_user += ", other." + Bracketed(field);
  }
  return std::string(kWith) +
         "own AS MATERIALIZED ("
         "SELECT coalesce([UserID], '-1') AS user, [Type] AS type" +
         sums +
         " FROM Transactions GROUP BY user, type), "
         "of_type AS MATERIALIZED ("
         "SELECT type" +
         sums +
         " FROM own GROUP BY type) "
         "SELECT user, type" +
         sums +
         " FROM ("
         "SELECT own.user, own.type" +
         of_type +
         " FROM own LEFT JOIN of_type ON of_type.type = own.type "
         "UNION ALL "
         "SELECT own.user, own.type" +
         of_user +
         " FROM own JOIN own AS other ON other.user = own.user"
         " AND (own.type IS NULL OR other.type IS NOT own.type) WHERE own.user <> '-1'"
         ") GROUP BY user, type ORDER BY " +
         ByNumber("user") + ", type";
}

std::string OwnRowsQuery(const ExportPlan& plan, const ExportRows& rows, const std::string& sums) {
  return OfPeriod(rows.period, "SELECT " + Keys(plan) + sums + " FROM " + Source(plan) +
                                   Condition(plan, Wanted::kSums, rows.search) + " GROUP BY " +
                                   KeyGroups(plan) + " ORDER BY " + KeyOrder(plan));
}

std::string FieldExpression(const std::string& field) {
  const int column = HistoryColumnOfField(field);
  return column == 0 ? Bracketed(field) : CellExpression(column);
}

}  // namespace

std::span<const ExportPlan> ExportPlans() {
  static const std::vector<ExportPlan> plans = MakePlans();
  return plans;
}

const ExportPlan* FindExportPlan(int group) {
  if (group < 0 || group >= kDataGroupCount) {
    return nullptr;
  }
  return &ExportPlans()[static_cast<std::size_t>(group)];
}

std::vector<std::string_view> SummedFields(const ExportPlan& plan) {
  std::vector<std::string_view> fields;
  for (const auto* const weights : {&plan.weights, &plan.fed_weights}) {
    for (const ExportWeight& weight : *weights) {
      if (std::find(fields.begin(), fields.end(), weight.field) == fields.end()) {
        fields.push_back(weight.field);
      }
    }
  }
  return fields;
}

std::string LevelRecordQuery(const ExportPlan& plan, std::span<const std::string> fields,
                             const ExportRows& rows) {
  std::string columns = Keys(plan);
  for (const std::string& field : fields) {
    Append(columns, FieldExpression(field));
  }
  std::string order = KeyOrder(plan);
  if (!plan.ordering.empty()) {
    Append(order, plan.ordering);
  }
  Append(order, "Transactions.rowid");
  return OfPeriod(rows.period, "SELECT " + columns + " FROM " + Source(plan) +
                                   Condition(plan, Wanted::kRecords, rows.search) + " ORDER BY " +
                                   order);
}

std::string LevelSumQuery(const ExportPlan& plan, const ExportRows& rows) {
  switch (plan.summed) {
    case SummedRows::kWholeIfNoUser:
      return OfPeriod(rows.period, WholeIfNoUserQuery(plan));
    case SummedRows::kOfUserOrOfTheType:
      return OfPeriod(rows.period, OfUserOrOfTheTypeQuery(plan));
    case SummedRows::kOwn:
      break;
  }
  return OwnRowsQuery(plan, rows, Sums(plan));
}

std::string LevelComparisonQuery(const ExportPlan& plan, const ExportRows& rows) {
  std::string sums;
  for (const std::string& term : ComparisonTerms()) {
    sums += ", exact_sum(" + term + ")";
  }
  return OwnRowsQuery(plan, rows, sums);
}

}  // namespace vrx
