#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "history/columns.h"
#include "history/group_query.h"

struct sqlite3_value;

namespace vrx {

// Whether a cell has what is sought, by its stored value. The answer depends on nothing else.
class CellTest {
 public:
  virtual ~CellTest() = default;
  [[nodiscard]] virtual bool IsInText(const HistoryColumn& column, std::string_view text) const = 0;
  [[nodiscard]] virtual bool IsInNumber(double value) const = 0;
  [[nodiscard]] bool IsIn(const HistoryColumn& column, const CellValue& value) const;
};

// A row by what it shows, whichever groups are open.
struct RowPlace {
  HistoryRowKind kind = HistoryRowKind::kRecord;
  std::vector<CellValue> groups = {};  // values of its group and those around it, outermost first
  CellValue sorted = {};               // of a record: the value of its SortExpression
  std::int64_t rowid = 0;              // of a record
  // Index of a record in its group, from 0, if the search knows it; else -1.
  std::int64_t record = -1;
};

// The groups and records of a view that have what is sought, in the order of their rows when all
// groups are open. Found by a scan of the table in slices, so that other events can run in between.
//
// A group row is searched by the value of its level, a record by the given columns, and counts once
// however many cells match. Total rows are not searched.
class FoundRows {
 public:
  // Everything outlives it. Defines an SQL function during its lifetime. Throws DatabaseError.
  FoundRows(SQLite::Database& database, const GroupQuery& query, const CellTest& test,
            std::vector<int> columns, RecordSort order);
  ~FoundRows();
  FoundRows(const FoundRows&) = delete;
  FoundRows& operator=(const FoundRows&) = delete;

  // Searches the next rows of the table, some thousands. Throws DatabaseError and must not be
  // called again then.
  void Scan();
  [[nodiscard]] bool IsComplete() const { return complete_; }
  // Of the table, from 0 to 100.
  [[nodiscard]] int Percent() const;
  // Until the search is complete, the rows found so far.
  [[nodiscard]] std::int64_t Count() const;

  // True if At and FirstFrom can be used for the rows found so far: they are complete, or found in
  // their order.
  [[nodiscard]] bool IsInOrder() const { return complete_ || FindsInOrder(); }
  // By index from 0.
  [[nodiscard]] RowPlace At(std::int64_t index) const;
  // The first found row after that place; with `itself`, at or after it. Count() for none.
  [[nodiscard]] std::int64_t FirstFrom(const RowPlace& place, bool itself) const;

 private:
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  // A group that is found, or that has found records or groups. Its number is its index.
  struct Group {
    std::uint32_t outer;  // kNone for an outermost group
    std::size_t level;    // from 0
    CellValue value;
    bool found = false;
    std::uint32_t rank = 0;  // among all groups, each before those inside it
  };
  struct Hit {
    std::uint32_t group;   // kNone in a view without levels
    std::uint32_t sorted;  // number of the value of the sort column, from 1; 0 for a group
    std::int64_t rowid;    // 0 for a group
    std::uint32_t record;  // index in a view that finds in order
  };
  // Values in their order on the screen, each with a number.
  struct ByLevel {
    int column;
    bool operator()(const CellValue& left, const CellValue& right) const {
      return CompareLevelValues(column, left, right) < 0;
    }
  };
  struct ByValue {
    bool operator()(const CellValue& left, const CellValue& right) const {
      return CompareValues(left, right) < 0;
    }
  };
  struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
      return std::hash<std::string_view>{}(text);
    }
  };
  using KnownTexts = std::unordered_map<std::string, bool, TextHash, std::equal_to<>>;

  [[nodiscard]] bool FindsInOrder() const { return levels_.empty() && order_.column == 0; }
  [[nodiscard]] std::string ScanText() const;
  void ScanSlice();
  void FindEnds();
  // The lowest rowid from that one on; nothing if there is none up to `last_`.
  std::optional<std::int64_t> NextRowid(std::int64_t from);
  void Take(sqlite3_value** row);
  bool Matches(int column, sqlite3_value* value);
  std::uint32_t GroupOf(std::uint32_t outer, std::size_t level, sqlite3_value* value);
  void Complete();
  void RankGroups(std::uint32_t outer, std::uint32_t& next);
  void SortHits();
  [[nodiscard]] int Compare(const RowPlace& left, const RowPlace& right) const;

  SQLite::Database& database_;
  const GroupQuery& query_;
  const CellTest& test_;
  std::vector<int> levels_;   // their columns
  std::vector<int> columns_;  // of records
  RecordSort order_;
  std::string function_;
  std::optional<SQLite::Statement> scan_;
  std::map<ColumnContent, KnownTexts> known_;

  std::int64_t first_ = 0;
  std::int64_t next_ = 0;  // the lowest rowid that is not searched yet
  std::int64_t last_ = 0;
  std::uint32_t seen_ = 0;  // rows of the view
  bool complete_ = false;

  std::vector<Group> groups_;
  std::unordered_map<std::uint32_t, std::map<CellValue, std::uint32_t, ByLevel>>
      inside_;  // by the outer group
  std::int64_t found_groups_ = 0;
  std::map<CellValue, std::uint32_t, ByValue> sorted_;
  std::vector<const CellValue*> sorted_values_;  // by number - 1
  std::vector<Hit> hits_;
};

}  // namespace vrx
