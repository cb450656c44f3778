#pragma once

#include <array>
#include <cstddef>
#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "database/records.h"
#include "history/history_grid.h"
#include "platform/event_pump.h"
#include "platform/operator.h"
#include "presenter/services.h"

namespace vrx {

// What the combo `cboColName`, its label and the box `txtStandby` show.
struct NamePickerState {
  bool visible = false;  // with `lblName`
  bool enabled = true;
  std::vector<std::string> items = {};
  int index = -1;            // of the item picked; -1: none
  std::string standby = {};  // empty: the box is hidden

  // The combo's text.
  std::string Text() const;
};

// What the picker reads of a record: one without description is free and not offered.
struct NamedRecord {
  std::string name;
  std::string description;
};

// The combo that picks the name of a group by name. The names of each kind are read once per visit
// to the tab; other events run meanwhile.
class NamePicker {
 public:
  // `changed` is called after each change of the state that is to be seen at once.
  NamePicker(EventPump& pump, std::function<void()> changed);

  const NamePickerState& State() const { return state_; }
  void SetState(NamePickerState state);

  // Entering the tab: empty and hidden, and the names are to be read again.
  void EnterTab();
  // For a group that is not by name.
  void Hide();

  // Shows the combo with "Select..." and the names of the records with a description, by ID;
  // `column` is the key of the named column. Returns false, nothing filled, where `wanted` no
  // longer holds after another event ran. Throws DatabaseError; once other events run, `recipes` is
  // not read any more.
  bool Offer(std::string_view column, SQLite::Database& recipes,
             const std::function<bool()>& wanted);

  // An index that is no item's picks nothing.
  void Pick(int index);

 private:
  struct Cache {
    std::vector<std::string> names = {};
    bool reload = true;
  };
  std::vector<std::string> Load(const std::vector<NamedRecord>& records,
                                const std::function<bool()>& wanted);
  void Fill(const std::vector<std::string>& names);
  void ShowStandby(std::string_view text);
  void GeneralDelay(Milliseconds delay);

  EventPump& pump_;
  std::function<void()> changed_;
  NamePickerState state_;
  std::array<Cache, 3> caches_;  // RecipeNames, IngredientNames, PenNames
};

enum class HistoryPart { kGroupList, kNamePicker, kGrid };

// The controls of the `Batched/Fed` tab.
class HistoryView {
 public:
  virtual ~HistoryView() = default;
  // A part is no longer as it was shown; it is to be read anew from the view.
  virtual void HistoryChanged(HistoryPart part) = 0;
};

// The `Batched/Fed` tab: the flow behind its controls, without a window. A failure of the storage
// is told to the operator; what was shown then stays.
//
// While names are loaded other events run. A group that such an event selects is set up at once and
// is the one that stays.
class HistoryPresenter {
 public:
  // Nothing is shown before the first SelectGroup. A database outlives the view, or the next one
  // that is set. Throws DatabaseError.
  HistoryPresenter(SQLite::Database& transactions, Services& services, HistoryView& screen);
  HistoryPresenter(const HistoryPresenter&) = delete;
  HistoryPresenter& operator=(const HistoryPresenter&) = delete;

  // Another transaction database is open: the grid shows the same group of it. Where the storage
  // fails, throws DatabaseError and shows the old one still; runs no events.
  void SetTransactionDatabase(SQLite::Database& transactions);
  // Another recipe database is open, nullptr: none; the ingredient columns take its names. The
  // names of the picker stay until the tab is entered again. Throws like the above.
  void SetRecipeDatabase(SQLite::Database* recipes);
  // `chkShowActiveIngsOnly`: the grid of ingredients lists the active ones only.
  void SetShowActiveIngredientsOnly(bool on) { show_active_only_ = on; }

  // A click in `lstGroupBy`, 0 to 12, also on the item that is selected already. A group by name is
  // refused while no recipe database is open. Any other index does nothing.
  void SelectGroup(int index);
  int GroupIndex() const { return group_index_; }
  // The text of the selected item.
  std::string_view CurrentDataGroupText() const;

  // A click in `cboColName`: the grid shows the transactions of that name, by item from 0.
  void PickName(int item);
  // "Recipe", "Ingredient" or "Pen"; "" for a group that is not by name.
  std::string_view GetNamedGroupColumn() const;
  const NamePickerState& Picker() const { return picker_.State(); }

  // `chkExpandAll`
  void SetExpandAll(bool on);
  bool ExpandAll() const { return expand_all_; }

  void OpenGroup(std::int64_t row);
  void CloseGroup(std::int64_t row);
  // Returns the row that the record of `row` has then, as HistoryGrid::SortByColumn.
  std::int64_t SortByColumn(int column, std::int64_t row = 0);
  void MoveColumn(int column, int position);

  // Any change of the main tab, and then entering this one.
  void TabChanged();
  void TabEntered();

  // Tells a failure of reading Grid().
  void ReportFailure(const std::exception& failure);

  // While false a group is being set up: `grdTRANS` is hidden.
  bool GridVisible() const { return grid_visible_; }
  // For reading rows, columns, captions and the header strip; changes go through the view.
  HistoryGrid& Grid() { return grid_; }

 private:
  bool Trapped(const std::function<void()>& action);
  void Refuse(std::string_view column);
  void SetUp(const DataGroup& group, const std::function<bool()>& wanted);
  std::vector<IngredientRecord> IngredientGridRows(SQLite::Database* recipes) const;
  void ShowGridVisible(bool visible);
  void Act(const std::function<void()>& action);

  Services& services_;
  HistoryView& screen_;
  HistoryGrid grid_;
  NamePicker picker_;
  SQLite::Database* recipes_ = nullptr;
  int group_index_ = 0;
  int previous_group_index_ = 0;
  unsigned selections_ = 0;
  bool show_active_only_ = false;
  bool expand_all_ = false;
  bool grid_visible_ = true;
};

}  // namespace vrx
