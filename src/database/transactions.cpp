#include "database/transactions.h"

#include <algorithm>
#include <limits>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <sqlite3.h>

#include "base/date.h"
#include "database/connection.h"
#include "database/schema.h"

namespace vrx {
namespace {

// Columns of a TransactionRecord, then the stored weights. The other weights stay NULL.
std::string InsertText() {
  std::string columns =
      "[Transaction], Recipe, Type, UserID, Ingredient, Pen, Target, ActualBatch, Time, Date, "
      "ActualFeed, IngPercent";
  std::string marks = "?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?";
  for (int id = 1; id <= kStoredWeightCount; ++id) {
    columns += ", " + IngredientWeightColumn(id);
    marks += ", ?";
  }
  return "INSERT INTO Transactions (" + columns + ") VALUES (" + marks + ")";
}

// Binds consecutive parameters; NULL for an absent value.
class Binder {
 public:
  explicit Binder(SQLite::Statement& statement) : statement_(statement) {}

  template <typename Value>
  void Bind(const Value& value) {
    statement_.bind(++index_, value);
  }

  template <typename Value>
  void Bind(const std::optional<Value>& value) {
    if (value) {
      Bind(*value);
    } else {
      statement_.bind(++index_);
    }
  }

  template <typename Value>
  void BindStored(const std::optional<Value>& value) {
    Bind(value ? std::optional(StoredText(*value)) : std::nullopt);
  }

  void BindUnlessEmpty(const std::optional<std::string>& value) {
    Bind(value && !value->empty() ? value : std::nullopt);
  }

 private:
  SQLite::Statement& statement_;
  int index_ = 0;
};

bool HasIndexByRangeAnd(SQLite::Database& database, std::string_view columns) {
  SQLite::Statement query(database,
                          "SELECT EXISTS (SELECT 1 FROM sqlite_schema WHERE type = 'index' AND "
                          "tbl_name = ?1 COLLATE NOCASE AND instr(sql, ?2))");
  query.bind(1, std::string(kTransactionsTable));
  query.bind(2, "(" + std::string(kTransactionRange) + ", " + std::string(columns));
  query.executeStep();
  return query.getColumn(0).getInt() != 0;
}

}  // namespace

std::optional<Date> LatestDay(SQLite::Database& database) {
  return WithDatabaseErrors(database, [&] {
    SQLite::Statement query(database, "SELECT max(Date) FROM Transactions");
    query.executeStep();
    return ParseStoredDate(query.getColumn(0).getString());
  });
}

std::int32_t HighestTransaction(SQLite::Database& database) {
  return WithDatabaseErrors(database, [&] {
    // Without the condition the maximum could be a text, because texts sort after numbers.
    SQLite::Statement query(database,
                            "SELECT max([Transaction]) FROM Transactions WHERE [Transaction] < ''");
    query.executeStep();
    const std::int64_t highest = query.getColumn(0).getInt64();  // 0 for NULL
    if (highest > std::numeric_limits<std::int32_t>::max()) {
      throw DatabaseError(SQLITE_RANGE, database.getFilename() + " holds transaction number " +
                                            std::to_string(highest) + ", beyond 2147483647");
    }
    return static_cast<std::int32_t>(std::max<std::int64_t>(highest, 0));
  });
}

TransactionAppender::TransactionAppender(SQLite::Database& database)
    : database_(database), statement_(WithDatabaseErrors(database, [&] {
        return std::make_unique<SQLite::Statement>(database, InsertText());
      })) {}

TransactionAppender::~TransactionAppender() = default;

void TransactionAppender::Append(const TransactionRecord& record) {
  WithDatabaseErrors(database_, [&] {
    // The result repeats the error of the previous row, which was already thrown.
    statement_->tryReset();
    Binder binder(*statement_);
    binder.Bind(record.transaction);
    binder.Bind(record.recipe);
    binder.Bind(record.type);
    binder.BindUnlessEmpty(record.user_id);
    binder.BindUnlessEmpty(record.ingredient);
    binder.BindUnlessEmpty(record.pen);
    binder.Bind(record.target);
    binder.Bind(record.actual_batch);
    binder.BindStored(record.time);
    binder.BindStored(record.date);
    binder.Bind(record.actual_feed);
    binder.Bind(record.ing_percent);
    for (const std::optional<double>& weight : record.ingredient_weights) {
      binder.Bind(weight);
    }
    statement_->exec();
  });
}

std::optional<std::vector<std::int64_t>> ReadTransactionRanges(SQLite::Database& database,
                                                               std::string_view columns) {
  if (!HasIndexByRangeAnd(database, columns)) {
    return std::nullopt;
  }
  const std::string range(kTransactionRange);
  const std::string lowest = "SELECT min(" + range + ") FROM " + std::string(kTransactionsTable);
  SQLite::Statement query(database, "WITH RECURSIVE Listed (Number) AS (" + lowest +
                                        " UNION ALL SELECT (" + lowest + " WHERE " + range +
                                        " > Number) FROM Listed WHERE Number IS NOT NULL) "
                                        "SELECT Number FROM Listed WHERE Number IS NOT NULL");
  std::vector<std::int64_t> ranges;
  while (query.executeStep()) {
    ranges.push_back(query.getColumn(0).getInt64());
  }
  return ranges;
}

std::string InTransactionRanges(std::string_view parameter) {
  return " AND " + std::string(kTransactionRange) + " IN (SELECT value FROM json_each(" +
         std::string(parameter) + "))";
}

std::string JsonArray(std::span<const std::int64_t> numbers) {
  std::string text = "[";
  for (const std::int64_t number : numbers) {
    text += (text.size() == 1 ? "" : ",") + std::to_string(number);
  }
  return text + "]";
}

}  // namespace vrx
