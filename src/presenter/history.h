#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "database/records.h"
#include "history/copied_rows.h"
#include "history/history_grid.h"
#include "history/period.h"
#include "platform/operator.h"
#include "presenter/find.h"
#include "presenter/name_picker.h"
#include "presenter/period_fields.h"
#include "presenter/services.h"

namespace vrx {

enum class HistoryPart { kGroupList, kNamePicker, kPeriod, kGrid, kFind, kFoundCell };

// "2 records without a readable date are left out."; empty for none.
[[nodiscard]] std::string LeftOutText(std::int64_t undated);

// The controls of the `Batched/Fed` tab.
class HistoryView {
 public:
  virtual ~HistoryView() = default;
  // A part has changed and must be read again from the presenter.
  virtual void HistoryChanged(HistoryPart part) = 0;
};

// The `Batched/Fed` tab without its window. Reports a database failure and keeps the previous
// contents.
//
// Other events run while names are loaded. A group that such an event selects is set up immediately
// and remains.
class HistoryPresenter {
 public:
  // Shows nothing before the first SelectGroup. A database must exist until the next one is set or
  // the object ends. Throws DatabaseError.
  HistoryPresenter(SQLite::Database& transactions, Services& services, HistoryView& screen);
  HistoryPresenter(const HistoryPresenter&) = delete;
  HistoryPresenter& operator=(const HistoryPresenter&) = delete;

  // Another transaction database is open: the grid shows the same group of it. If the database
  // fails, throws DatabaseError and keeps the old one. Runs no events.
  void SetTransactionDatabase(SQLite::Database& transactions);
  // Another recipe database is open, or none (nullptr). The ingredient columns take its names; the
  // names of the picker remain until the tab is entered again. Throws like SetTransactionDatabase.
  void SetRecipeDatabase(SQLite::Database* recipes);
  // `chkShowActiveIngsOnly`: the grid of ingredients lists the active ones only.
  void SetShowActiveIngredientsOnly(bool on) { show_active_only_ = on; }

  // A click in `lstGroupBy`, 0 to 12, even on the selected item. Refuses a group by name while no
  // recipe database is open. Any other index does nothing.
  void SelectGroup(int index);
  [[nodiscard]] int GroupIndex() const { return group_index_; }
  // The text of the selected item.
  [[nodiscard]] std::string_view CurrentDataGroupText() const;

  // A click in `cboColName`: the grid shows the transactions of that name, by item from 0.
  void PickName(int item);
  // "Recipe", "Ingredient" or "Pen"; "" for a group that is not by name.
  [[nodiscard]] std::string_view GetNamedGroupColumn() const;
  [[nodiscard]] const NamePickerState& Picker() const { return picker_.State(); }

  // A choice in the list of periods. kFromTo keeps the days of the fields, or begins with this
  // month up to today.
  void ChoosePeriod(PeriodChoice choice);
  // The days in the fields. Refuses a text that is no day and an end before the beginning.
  void TypeDays(std::string_view from, std::string_view to);
  [[nodiscard]] const PeriodState& ChosenPeriod() const { return period_; }

  // The columns of differences.
  void ShowDifferences(bool on);
  // Marks them by the tolerance of the settings, which the setup may have changed.
  void FollowTolerance();

  // `chkExpandAll`
  void SetExpandAll(bool on);
  [[nodiscard]] bool ExpandAll() const { return expand_all_; }

  void OpenGroup(std::int64_t row);
  void CloseGroup(std::int64_t row);
  // Returns the new row of the record at `row`, like HistoryGrid::SortByColumn.
  std::int64_t SortByColumn(int column, std::int64_t row = 0);
  void MoveColumn(int column, int position);
  // Opens the groups of the first of the `count` records stored last that the current group shows,
  // and returns its row; 0 if it shows none of them.
  std::int64_t OpenNewest(std::int64_t count);

  // The bar of the search and what it does.
  [[nodiscard]] HistoryFind& Find() { return find_; }
  // Where the search went last, for kFoundCell.
  [[nodiscard]] const FoundCell& LastFound() const { return last_found_; }
  // Shows a data group and its days, opens the outermost group with that value as it is shown, and
  // returns its row; 0 if there is none.
  std::int64_t GoTo(int group, const Period& period, std::string_view value);
  // The first group row beside that row whose value begins with what was typed, as
  // HistoryGrid::FirstGroupBeginning; 0 if there is none.
  std::int64_t GroupBeginning(std::int64_t row, std::string_view typed);
  // The rows for the clipboard. Refuses more than kMostCopiedRows.
  std::optional<CopiedRows> Copy(std::span<const CopiedRange> ranges);

  // Called after any change of the main tab, and then when this one is entered.
  void TabChanged();
  void TabEntered();

  // Why the grid has no rows, and what to do.
  [[nodiscard]] std::string EmptyText() const;

  // Reports a failure of reading Grid().
  void ReportFailure(const std::exception_ptr& failure);

  // False while a group is being set up and `grdTRANS` is hidden.
  [[nodiscard]] bool GridVisible() const { return grid_visible_; }
  // Only for reading rows, columns, captions and the header strip.
  HistoryGrid& Grid() { return grid_; }

 private:
  void Refuse(std::string_view column);
  void SetUp(const DataGroup& group, const std::function<bool()>& wanted);
  std::vector<IngredientRecord> IngredientGridRows(SQLite::Database* recipes) const;
  void ShowPeriod(const Period& period);
  void FollowToday();
  void ShowGridVisible(bool visible);
  void ShowGrid();
  void Act(const std::function<void()>& action);

  Services& services_;
  HistoryView& screen_;
  HistoryGrid grid_;
  NamePicker picker_;
  HistoryFind find_;
  FoundCell last_found_{};
  PeriodState period_;
  SQLite::Database* recipes_ = nullptr;
  int group_index_ = 0;
  int previous_group_index_ = 0;
  unsigned selections_ = 0;
  bool show_active_only_ = false;
  bool expand_all_ = false;
  bool grid_visible_ = true;
};

}  // namespace vrx
