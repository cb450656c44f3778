#include "export/specified_levels.h"

#include <array>
#include <cstddef>
#include <optional>
#include <stdexcept>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "export/level_walk.h"

namespace vrx::testing {
namespace {

std::string Shown(const CellView& cell) {
  if (std::holds_alternative<std::monostate>(cell)) {
    return "NULL";
  }
  std::string text;
  AppendCellText(cell, ColumnContent::kText, text);
  return text;
}

struct LeveledLevel {
  std::string element;
  std::string query;  // ?1, ?2, ?3 are the values of the levels from the outside in
};

struct LeveledGroup {
  std::vector<LeveledLevel> levels;
  std::string records;  // what follows WHERE
  std::string summed;   // the same, of the sums
  std::vector<std::string_view> sums;
  bool batch_or_feed = false;
};

constexpr const char* kUser =
    "SELECT DISTINCT coalesce(UserID, '-1') FROM Transactions "
    "ORDER BY CAST(coalesce(UserID, '-1') AS REAL), 1";

LeveledGroup ByType(std::vector<LeveledLevel> levels, const std::string& records,
                    const std::string& order, const std::string& summed) {
  return {std::move(levels), records + " ORDER BY " + order + ", rowid", summed, {}, true};
}

LeveledGroup ByName(const char* element, const std::string& query, const std::string& records,
                    std::string_view weight) {
  return {{{element, query}}, records, std::string(element) + " = ?1", {weight, "Target"}};
}

LeveledGroup ByUser(int group, bool no_user) {
  const std::string user = no_user ? "(UserID IS NULL OR UserID = '-1')" : "UserID = ?1";
  const std::string start = "SELECT DISTINCT ";
  const std::string where = " FROM Transactions WHERE " + user + " ORDER BY 1";
  if (group == 11) {
    return {{{"User_Id", kUser}, {"Transaction", start + "[Transaction]" + where}},
            user + " AND [Transaction] = ?2 ORDER BY Date DESC, rowid",
            no_user ? "[Transaction] = ?2 OR UserID = 'Null'" : "[Transaction] = ?2 AND " + user,
            {"ActualBatch", "ActualFeed"}};
  }
  return ByType({{"User_Id", kUser}, {"Type", start + "Type" + where}}, user + " AND Type = ?2",
                "Date DESC",
                no_user ? "UserID = ' NULL' OR Type = ?2" : "UserID = ?1 OR Type = ?2");
}

LeveledGroup Leveled(int group, bool no_user) {
  const std::string distinct = "SELECT DISTINCT ";
  const std::string newest = " ORDER BY Date DESC, rowid";
  switch (group) {
    case 1:
      return ByType({{"Transaction", distinct + "[Transaction] FROM Transactions ORDER BY 1"},
                     {"Type", distinct + "Type FROM Transactions WHERE [Transaction] = ?1 "
                                         "ORDER BY 1"}},
                    "[Transaction] = ?1 AND Type = ?2", "Date DESC",
                    "[Transaction] = ?1 AND Type = ?2");
    case 2:
      return ByType(
          {{"Date", distinct + "Date FROM Transactions ORDER BY 1 DESC"},
           {"Transaction", distinct + "[Transaction] FROM Transactions WHERE Date = ?1 ORDER BY 1"},
           {"Type", distinct + "Type FROM Transactions WHERE [Transaction] = ?2 "
                               "ORDER BY 1"}},
          "[Transaction] = ?2 AND Type = ?3", "Time DESC", "[Transaction] = ?2 AND Type = ?3");
    case 3:
    case 4:
      return ByType(
          {{"Recipe", group == 3 ? distinct + "Recipe FROM Transactions ORDER BY 1"
                                 : distinct + "Recipe FROM Transactions WHERE Recipe = ?9"},
           {"Type", distinct + "Type FROM Transactions WHERE Recipe = ?1 ORDER BY 1"}},
          "Recipe = ?1 AND Type = ?2", "Date DESC", "Recipe = ?1 AND Type = ?2");
    case 5:
      return {{{"Recipe", distinct + "Recipe FROM Transactions ORDER BY 1"},
               {"Ingredient", distinct + "Ingredient FROM Transactions WHERE Recipe = ?1 "
                                         "AND Ingredient IS NOT NULL ORDER BY 1"}},
              "Recipe = ?1 AND Ingredient = ?2 ORDER BY Ingredient, rowid",
              "Ingredient = ?2 AND Recipe = ?1",
              {"ActualBatch"}};
    case 6:
    case 7:
      return ByName("Ingredient",
                    distinct + "Ingredient FROM Transactions WHERE " +
                        (group == 6 ? "Ingredient IS NOT NULL ORDER BY 1" : "Ingredient = ?9"),
                    "Ingredient = ?1" + newest, "ActualBatch");
    case 8:
    case 9:
      return ByName("Pen",
                    distinct + "Pen FROM Transactions WHERE " +
                        (group == 8 ? "Pen IS NOT NULL ORDER BY 1" : "Pen = ?9"),
                    "Pen = ?1" + newest, "ActualFeed");
    case 10:
      return ByName("Pen", distinct + "Pen FROM Transactions WHERE Pen IS NOT NULL ORDER BY 1",
                    "Pen = ?1 ORDER BY Pen, Recipe, rowid", "ActualFeed");
    default:
      return ByUser(group, no_user);
  }
}

class LeveledReader {
 public:
  LeveledReader(const std::filesystem::path& database, int group,
                const std::vector<std::string>& fields, std::string_view name)
      : database_(database), group_(group), name_(name) {
    for (const std::string& field : fields) {
      list_ += (list_.empty() ? "[" : ", [") + field + "]";
    }
  }

  std::vector<std::string> Read() {
    if (group_ == 0) {
      Records("1 ORDER BY Date DESC, rowid");
    } else {
      Level(0);
    }
    return lines_;
  }

 private:
  void Bind(SQLite::Statement& statement) const {
    if (statement.getQuery().find("?9") != std::string::npos) {
      statement.bind(9, name_);
      return;
    }
    for (std::size_t at = 0; at < values_.size(); ++at) {
      const int index = static_cast<int>(at) + 1;
      if (index > statement.getBindParameterCount()) {
        return;
      }
      const CellView& view = values_[at];
      if (const auto* const whole = std::get_if<std::int64_t>(&view)) {
        statement.bind(index, *whole);
      } else if (const auto* const text = std::get_if<std::string_view>(&view)) {
        statement.bind(index, std::string(*text));
      }
    }
  }

  static CellView View(const SQLite::Column& column) {
    if (column.isNull()) {
      return {};
    }
    if (column.isInteger()) {
      return column.getInt64();
    }
    return column.isFloat() ? CellView(column.getDouble())
                            : CellView(std::string_view(column.getText()));
  }

  void Level(std::size_t depth) {
    const LeveledLevel level = Leveled(group_, NoUser()).levels.at(depth);
    SQLite::Statement query(database_, level.query);
    Bind(query);
    while (query.executeStep()) {
      const SQLite::Column column = query.getColumn(0);
      values_.push_back(View(column));
      // Whether the value is a user is only known from the level below.
      const LeveledGroup leveled = Leveled(group_, NoUser());
      const bool innermost = depth + 1 == leveled.levels.size();
      const bool none = depth == 0 && NoUser();
      lines_.push_back("open " + std::to_string(depth) + " " + level.element + " " +
                       (none ? "(none)" : Shown(values_.back())) +
                       (innermost ? SumsText(leveled) : ""));
      if (innermost) {
        Records(leveled.records);
      } else {
        Level(depth + 1);
      }
      lines_.push_back("close " + std::to_string(depth));
      values_.pop_back();
    }
  }

  bool NoUser() const {
    return group_ >= 11 && !values_.empty() && values_.front() == CellView("-1");
  }

  std::string SumsText(const LeveledGroup& leveled) const {
    std::vector<std::string_view> sums = leveled.sums;
    if (leveled.batch_or_feed) {
      sums = {values_.back() == CellView("BATCH") ? "ActualBatch" : "ActualFeed", "Target"};
    }
    std::string text;
    for (const std::string_view field : sums) {
      const std::string name = field == "ActualBatch"  ? "Batch_Weight"
                               : field == "ActualFeed" ? "Feed_Weight"
                                                       : "Target_Weight";
      SQLite::Statement query(database_, "SELECT sum(" + std::string(field) +
                                             ") FROM Transactions WHERE " + leveled.summed);
      Bind(query);
      query.executeStep();
      text += " " + name + "=" + Shown(View(query.getColumn(0)));
    }
    return text;
  }

  void Records(const std::string& condition) {
    SQLite::Statement query(database_, "SELECT " + list_ + " FROM Transactions WHERE " + condition);
    Bind(query);
    while (query.executeStep()) {
      std::string line = "record ";
      for (int at = 0; at < query.getColumnCount(); ++at) {
        const SQLite::Column column = query.getColumn(at);
        line += (at == 0 ? "" : "|") + Shown(View(column));
      }
      lines_.push_back(line);
    }
  }

  SQLite::Database database_;
  int group_;
  std::string name_;
  std::string list_;
  std::vector<CellView> values_;
  std::vector<std::string> lines_;
};

}  // namespace

void WalkLog::OpenGroup(const WalkedGroup& group) {
  std::string line = "open " + std::to_string(group.depth) + " " +
                     std::string(group.level->element) + " " + Shown(group.value);
  for (const GroupSum& sum : group.sums) {
    line += " " + std::string(sum.weight->attribute) + "=" +
            Shown(sum.value ? CellView(*sum.value) : CellView());
  }
  lines_.push_back(line);
}

void WalkLog::Record(std::span<const CellView> cells) {
  std::string line = "record ";
  for (std::size_t at = 0; at < cells.size(); ++at) {
    line += (at == 0 ? "" : "|") + Shown(cells[at]);
  }
  lines_.push_back(line);
}

void WalkLog::CloseGroup(const WalkedGroup& group) {
  lines_.push_back("close " + std::to_string(group.depth));
}

std::vector<std::string> SpecifiedWalk(const std::filesystem::path& database, int group,
                                       const std::vector<std::string>& fields,
                                       std::string_view name) {
  return LeveledReader(database, group, fields, name).Read();
}

}  // namespace vrx::testing
