#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "database/records.h"
#include "history/data_group.h"

namespace vrx {

// The 112 columns of `grdTRANS`, which are the fields of a transaction in stored order. An index
// counts from 1 and never changes; positions and captions do (history_columns.h).
inline constexpr int kHistoryColumnCount = 112;
inline constexpr int kTargetColumn = 7;
inline constexpr int kActualBatchColumn = 8;
inline constexpr int kActualFeedColumn = 11;
inline constexpr int kIngPercentColumn = 12;
inline constexpr int kFirstIngredientColumn = 13;

// What a column's values are; it decides how they sort and how they read.
enum class ColumnContent { kText, kNumber, kWeight, kTime, kDate };

struct HistoryColumn {
  int index;
  std::string key;
  std::string field;    // of the table Transactions
  std::string caption;  // at design
  std::string group_prefix;
  bool right_aligned;
  bool summed;
  ColumnContent content;
};

// All of them, by index.
std::span<const HistoryColumn> HistoryColumnTable();

// Throws std::out_of_range for an index that is none.
const HistoryColumn& HistoryColumnAt(int index);

// 0 for a key, or a field, that no column has. Case does not count.
int HistoryColumnOfKey(std::string_view key);
int HistoryColumnOfField(std::string_view field);

// The slot of an ingredient column, 1 to 100; 0 for another column.
int IngredientSlot(int column);

// The names of the ingredient columns, kept for the headings of an export. The table knows the keys
// `Ing01Wt` to `Ing50Wt` without `Ing33Wt`, which never had a place in it.
class IngredientColumnNames {
 public:
  void SetIngredientColumnName(std::string_view column_key, std::string_view name);

  // "" for a key that the table does not know.
  std::string GetIngredientColumnName(std::string_view column_key) const;

 private:
  static constexpr int kPlaces = 50;
  static std::optional<std::size_t> Place(std::string_view column_key);

  std::array<std::string, kPlaces> names_;
};

// What the grid's columns look like at the moment: captions, positions, which are seen, and where a
// total row says "Total:". Positions count from 1 and are always a permutation: giving a column a
// position moves the others along.
class HistoryColumns {
 public:
  HistoryColumns();

  // The common part of the 13 set-up routines, except for what needs rows.
  void SetUp(const DataGroup& group);

  // The ingredient columns take the names of the open recipe database, in upper case; with none
  // open every one of them is hidden. An ID outside 1 to 100 has no column.
  void RefreshIngredientColumns(std::span<const IngredientRecord> ingredients);

  // Shows the ingredient columns that the group shows, and hides the others.
  void ApplyIngredientColumnVisibility(const DataGroup& group);

  // What entering the tab does to them: like the above, but for `Ing% Of Batch`, left alone where
  // the group shows ingredient columns.
  void EnterTab(const DataGroup& group);

  // All of these throw std::out_of_range for a column or position outside 1 to 112.
  const std::string& Caption(int column) const;
  bool IsVisible(int column) const;
  int Position(int column) const;
  void Move(int column, int position);
  // "Total:" for the column chosen, else "".
  std::string_view TotalText(int column) const;

  // The visible columns, in the order of their positions.
  std::vector<int> VisibleColumns() const;

  // 501 slots; the slot of a visible column's position holds its field, all others are empty.
  std::vector<std::string> GetVisibleColumnList() const;

 private:
  struct State {
    std::string caption;
    bool visible = true;
    bool total = false;
  };
  State& At(int column);
  const State& At(int column) const;
  void ShowNamedIngredientColumns();
  void HideIngredientColumns();
  void SetTotalCaption(std::string_view column_key);

  std::array<State, kHistoryColumnCount> columns_;  // by index less 1
  std::array<int, kHistoryColumnCount> order_{};    // indexes by position less 1
};

}  // namespace vrx
