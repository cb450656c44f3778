#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "database/records.h"
#include "history/data_group.h"
#include "history/history_column.h"

namespace vrx {

// What the grid's columns look like at the moment: captions, positions, which are seen, and where a
// total row says "Total:". Positions count from 1 and are always a permutation: giving a column a
// position moves the others along.
class HistoryColumns {
 public:
  HistoryColumns();

  // The common course of the 13 set-up routines, but for what needs rows. What it leaves of the
  // ingredient columns is settled by ApplyIngredientColumnVisibility.
  void SetUp(const DataGroup& group, bool show_active_ingredients_only);

  // The ingredient columns take the names of the open recipe database, in upper case; with none
  // open every one of them is hidden. An ID outside 1 to 100 has no column.
  void RefreshIngredientColumns(std::span<const IngredientRecord> ingredients);

  // What every drawn row settles: which ingredient columns a group shows.
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
