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
#include "history/difference.h"

namespace vrx {

// The columns of `grdTRANS`: the 112 fields of a transaction in stored order, then the differences,
// which are computed. Indexes start at 1 and never change; positions and captions can change.
inline constexpr int kHistoryColumnCount = 112;  // the stored ones
inline constexpr int kGridColumnCount = 116;
inline constexpr int kTypeColumn = 3;
inline constexpr int kTargetColumn = 7;
inline constexpr int kActualBatchColumn = 8;
inline constexpr int kActualFeedColumn = 11;
inline constexpr int kIngPercentColumn = 12;
inline constexpr int kFirstIngredientColumn = 13;

// Kind of a column's values. It determines sorting and formatting.
enum class ColumnContent { kText, kNumber, kWeight, kTime, kDate };

struct HistoryColumn {
  int index;
  std::string key;
  std::string field;    // in the table Transactions; of a difference only its name in exports
  std::string caption;  // design caption
  std::string group_prefix;
  bool right_aligned;
  bool summed;
  ColumnContent content;
};

// In the order of their indexes.
[[nodiscard]] std::span<const HistoryColumn> HistoryColumnTable();
[[nodiscard]] std::span<const HistoryColumn> StoredColumns();

// A column of differences: an actual weight less the target, or that in percent of the target, for
// the records of one kind. Shown beside the actual weight.
struct DifferenceColumn {
  int column;
  int actual_column;
  ComparedKind kind;
  bool percent;
};
inline constexpr std::array<DifferenceColumn, 4> kDifferenceColumns{
    {{113, kActualBatchColumn, ComparedKind::kBatch, false},
     {114, kActualBatchColumn, ComparedKind::kBatch, true},
     {115, kActualFeedColumn, ComparedKind::kFeed, false},
     {116, kActualFeedColumn, ComparedKind::kFeed, true}}};

// nullptr for a stored column.
[[nodiscard]] const DifferenceColumn* FindDifferenceColumn(int column);

// Throws std::out_of_range for an invalid index.
const HistoryColumn& HistoryColumnAt(int index);

// Index of the column with a key or field, ignoring case; 0 if there is none.
[[nodiscard]] int HistoryColumnOfKey(std::string_view key);
[[nodiscard]] int HistoryColumnOfField(std::string_view field);

// Ingredient number of an ingredient column, 1 to 100; 0 for other columns.
[[nodiscard]] int IngredientSlot(int column);

// True if the column is blank in the rows of that depth.
[[nodiscard]] bool IsBlanked(const DataGroup& group, int depth, int column);

// Names of the ingredient columns for the headings of an export. Specified: only for the keys
// `Ing01Wt` to `Ing50Wt` except `Ing33Wt`.
class IngredientColumnNames {
 public:
  void SetIngredientColumnName(std::string_view column_key, std::string_view name);

  // "" for other keys.
  [[nodiscard]] std::string GetIngredientColumnName(std::string_view column_key) const;

 private:
  static constexpr int kPlaces = 50;
  [[nodiscard]] static std::optional<std::size_t> Place(std::string_view column_key);

  std::array<std::string, kPlaces> names_;
};

// Current state of the grid's columns: captions, positions, visibility, and the column with
// "Total:" in total rows. Positions start at 1 and are always a permutation: moving a column shifts
// the others.
class HistoryColumns {
 public:
  HistoryColumns();

  // The part of the 13 set-up routines that needs no rows.
  void SetUp(const DataGroup& group);

  // Sets the captions of the ingredient columns to the names in upper case. Without ingredients, if
  // no recipe database is open, hides all of them. IDs outside 1 to 100 are ignored.
  void RefreshIngredientColumns(std::span<const IngredientRecord> ingredients);

  // Shows the differences after those actual weights that the group shows, or hides them. Off at
  // first; then they have the last positions.
  void ShowDifferences(bool on);
  [[nodiscard]] bool HasDifferences() const { return differences_; }

  // Shows or hides the ingredient columns as the group specifies.
  void ApplyIngredientColumnVisibility(const DataGroup& group);

  // Called when the tab is entered. Like ApplyIngredientColumnVisibility, but does not change
  // `Ing% Of Batch` if the group shows ingredient columns.
  void EnterTab(const DataGroup& group);

  // These throw std::out_of_range for a column or position outside 1 to 116.
  [[nodiscard]] const std::string& Caption(int column) const;
  [[nodiscard]] bool IsVisible(int column) const;
  [[nodiscard]] int Position(int column) const;
  void Move(int column, int position);
  // "Total:" for the column of the group's total text, else "".
  [[nodiscard]] std::string_view TotalText(int column) const;

  // The visible columns in the order of their positions.
  [[nodiscard]] std::vector<int> VisibleColumns() const;

  // 501 entries: at the position of each visible column its field; all others are empty.
  [[nodiscard]] std::vector<std::string> GetVisibleColumnList() const;

 private:
  struct State {
    std::string caption;
    bool visible = true;
    bool total = false;
  };
  State& At(int column);
  [[nodiscard]] const State& At(int column) const;
  void ShowNamedIngredientColumns();
  void HideIngredientColumns();
  void SetTotalCaption(std::string_view column_key);
  void PutDifferencesLast();
  void ArrangeDifferences();

  std::array<State, kGridColumnCount> columns_;  // by index - 1
  std::array<int, kGridColumnCount> order_{};    // indexes by position - 1
  bool differences_ = false;
};

}  // namespace vrx
