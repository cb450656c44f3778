#include "export/export_fixture.h"

#include <algorithm>
#include <cstddef>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "database/schema.h"
#include "database/templates.h"
#include "history/columns.h"
#include "history/data_group.h"

namespace vrx::testing {
namespace {

constexpr std::size_t kSlots = 501;

// Binds the parameters in order, NULL for a missing value.
class Binder {
 public:
  explicit Binder(SQLite::Statement& statement) : statement_(statement) {}

  void Text(const std::string& text) {
    ++index_;
    if (text.empty()) {
      statement_.bind(index_);
    } else {
      statement_.bind(index_, text);
    }
  }
  void Number(std::optional<double> number) {
    ++index_;
    if (number) {
      statement_.bind(index_, *number);
    } else {
      statement_.bind(index_);
    }
  }

 private:
  SQLite::Statement& statement_;
  int index_ = 0;
};

bool IsShown(const HistoryColumn& column, const DataGroup& group) {
  const int slot = IngredientSlot(column.index);
  if (slot > 0) {
    return slot <= 3 && group.ingredient_columns != IngredientColumns::kHidden;
  }
  if (column.index == kIngPercentColumn) {
    return group.ingredient_columns == IngredientColumns::kShown;
  }
  return std::find(group.hidden.begin(), group.hidden.end(), column.key) == group.hidden.end();
}

std::vector<SiteRow> StarterRows() {
  return {
      {.transaction = 17, .ingredient = "CORN", .target = 500, .batch = 500.5, .percent = 50.06},
      {.transaction = 17,
       .ingredient = "HAY",
       .target = 500,
       .batch = 499.25,
       .time = "06:12:00",
       .percent = 49.94},
      {.transaction = 17,
       .type = "FEED",
       .pen = "PEN 1",
       .target = 255,
       .time = "06:40:00",
       .feed = 250,
       .weights = {125.1, 124.9}},
      {.transaction = 17,
       .type = "FEED",
       .user = "",
       .pen = "PEN 2",
       .target = 745,
       .time = "00:05:00",
       .date = "2011-03-15",
       .feed = 749.75,
       .weights = {375.4, 374.35}},
      {.transaction = 19,
       .type = "FEED",
       .user = "12",
       .pen = "PEN 1",
       .target = 300,
       .time = "13:30:05",
       .date = "2011-03-13",
       .feed = 298.4,
       .weights = {298.4}},
  };
}

std::vector<SiteRow> OtherRows() {
  return {
      {.transaction = 18,
       .recipe = "O'NEIL CAF\u00c9",
       .user = "",
       .ingredient = "CORN",
       .target = 100,
       .batch = 100,
       .time = "14:00:00",
       .date = "2011-03-15",
       .percent = 100},
      {.transaction = 20,
       .recipe = "FINISH,95",
       .user = "-1",
       .ingredient = "SALT",
       .target = 10,
       .batch = 9.125,
       .time = "",
       .date = "2011-03-15",
       .percent = 100},
      {.transaction = 20,
       .recipe = "FINISH,95",
       .type = "FEED",
       .user = "12",
       .pen = "PEN 10",
       .target = 4,
       .time = "23:59:59",
       .date = "2011-03-15",
       .feed = 4,
       .weights = {0, 0, 4}},
      {.transaction = 20,
       .recipe = "FINISH,95",
       .type = "FEED",
       .user = "12",
       .pen = "PEN 1",
       .target = 6,
       .time = "23:59:59",
       .date = "2011-03-15",
       .feed = 5.125,
       .weights = {0, 0, 5.125}},
  };
}

}  // namespace

ExportFixture::ExportFixture() : database_(folder_ / "YARD.TDB") {
  CreateTemplate(database_, DatabaseKind::kTransaction);
  names_.SetIngredientColumnName("Ing01Wt", "CORN");
  names_.SetIngredientColumnName("Ing02Wt", "HAY");
  names_.SetIngredientColumnName("Ing03Wt", "SALT");
}

void ExportFixture::Store(const std::vector<SiteRow>& rows) const {
  SQLite::Database database(database_, SQLite::OPEN_READWRITE);
  SQLite::Transaction transaction(database);
  SQLite::Statement insert(
      database,
      "INSERT INTO Transactions (Recipe, Type, UserID, Ingredient, Pen, Time, Date, Target, "
      "ActualBatch, ActualFeed, IngPercent, Ing01Wt, Ing02Wt, Ing03Wt, [Transaction]) "
      "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
  for (const SiteRow& row : rows) {
    insert.reset();
    Binder binder(insert);
    for (const std::string* text :
         {&row.recipe, &row.type, &row.user, &row.ingredient, &row.pen, &row.time, &row.date}) {
      binder.Text(*text);
    }
    for (const double number : {row.target, row.batch, row.feed}) {
      binder.Number(number);
    }
    binder.Number(row.percent);
    for (std::size_t at = 0; at < 3; ++at) {
      binder.Number(at < row.weights.size() ? std::optional(row.weights[at]) : std::nullopt);
    }
    binder.Number(row.transaction);
    insert.exec();
  }
  transaction.commit();
}

void ExportFixture::Alter(const std::string& statements) const {
  SQLite::Database database(database_, SQLite::OPEN_READWRITE);
  database.exec(statements);
}

void ExportFixture::StoreYard() const {
  Store(StarterRows());
  Store(OtherRows());
}

std::vector<std::string> Slots(const std::vector<std::string_view>& fields) {
  std::vector<std::string> slots(kSlots);
  std::copy(fields.begin(), fields.end(), slots.begin() + 1);
  return slots;
}

std::vector<std::string> VisibleColumnsOf(int group) {
  const DataGroup& chosen = DataGroups()[static_cast<std::size_t>(group)];
  std::vector<int> columns;
  for (const std::string_view key : chosen.order) {
    columns.push_back(HistoryColumnOfKey(key));
  }
  for (int column = 1; column <= kHistoryColumnCount; ++column) {
    if (std::find(columns.begin(), columns.end(), column) == columns.end()) {
      columns.push_back(column);
    }
  }
  std::vector<std::string> slots(kSlots);
  for (std::size_t at = 0; at < columns.size(); ++at) {
    const HistoryColumn& column = HistoryColumnAt(columns[at]);
    if (IsShown(column, chosen)) {
      slots[at + 1] = column.field;
    }
  }
  return slots;
}

std::string_view YardNameOf(int group) {
  switch (group) {
    case 4:
      return "O'NEIL CAF\u00c9";
    case 7:
      return "CORN";
    case 9:
      return "PEN 1";
    default:
      return "";
  }
}

}  // namespace vrx::testing
