#include "presenter/history.h"

#include <exception>
#include <string>
#include <utility>

#include "database/database_error.h"

namespace vrx {
namespace {

constexpr std::string_view kFailureTitle = "Transaction Data Error";

}  // namespace

HistoryView::HistoryView(SQLite::Database& transactions, const HistoryPorts& ports)
    : ports_(ports),
      grid_(transactions),
      picker_(ports.pump, [this] { ports_.screen.HistoryChanged(HistoryPart::kNamePicker); }) {}

void HistoryView::SetTransactionDatabase(SQLite::Database& transactions) {
  grid_.Bind(transactions);
  grid_.ApplyExpandState(expand_all_);
  ports_.screen.HistoryChanged(HistoryPart::kGrid);
}

void HistoryView::SetRecipeDatabase(SQLite::Database* recipes) {
  grid_.RefreshIngredientColumns(IngredientGridRows(recipes));
  recipes_ = recipes;
  ports_.screen.HistoryChanged(HistoryPart::kGrid);
}

void HistoryView::SelectGroup(int index) {
  const DataGroup* const group = FindDataGroup(index);
  if (group == nullptr) {
    return;
  }
  const unsigned selection = ++selections_;
  const auto wanted = [this, selection] { return selection == selections_; };
  ShowGridVisible(false);
  group_index_ = index;
  const NamePickerState picker_before = picker_.State();
  const bool refused = !group->named_column.empty() && recipes_ == nullptr;
  const bool done = Trapped([&] {
    grid_.RefreshIngredientColumns(IngredientGridRows(recipes_));
    if (refused) {
      Refuse(group->named_column);
    } else {
      SetUp(*group, wanted);
    }
  });
  if (!wanted()) {
    return;
  }
  if (refused || !done) {
    group_index_ = previous_group_index_;
  }
  previous_group_index_ = group_index_;
  if (done) {
    Trapped([this] { grid_.ApplyExpandState(expand_all_); });
  } else {
    picker_.SetState(picker_before);
  }
  ports_.screen.HistoryChanged(HistoryPart::kGroupList);
  ShowGridVisible(true);
}

std::string_view HistoryView::CurrentDataGroupText() const {
  return FindDataGroup(group_index_)->item;
}

void HistoryView::PickName(int item) {
  if (GetNamedGroupColumn().empty()) {
    return;
  }
  picker_.Pick(item);
  Act([this] {
    grid_.ShowName(picker_.State().Text());
    if (expand_all_) {
      grid_.ExpandAll();
    }
    grid_.SetColumnHeaders(true);
  });
}

std::string_view HistoryView::GetNamedGroupColumn() const {
  return FindDataGroup(group_index_)->named_column;
}

void HistoryView::SetExpandAll(bool on) {
  expand_all_ = on;
  Act([this] { grid_.ApplyExpandState(expand_all_); });
}

void HistoryView::OpenGroup(std::int64_t row) {
  Act([&] { grid_.OpenGroup(row); });
}

void HistoryView::CloseGroup(std::int64_t row) {
  Act([&] { grid_.CloseGroup(row); });
}

std::int64_t HistoryView::SortByColumn(int column, std::int64_t row) {
  std::int64_t followed = row;
  Act([&] { followed = grid_.SortByColumn(column, row); });
  return followed;
}

void HistoryView::MoveColumn(int column, int position) {
  Act([&] { grid_.MoveColumn(column, position); });
}

void HistoryView::TabChanged() {
  Act([this] {
    grid_.CollapseAll();
    grid_.ApplyExpandState(expand_all_);
  });
}

void HistoryView::TabEntered() {
  picker_.EnterTab();
  Act([this] {
    grid_.RefreshIngredientColumns(IngredientGridRows(recipes_));
    grid_.EnterTab();
  });
}

bool HistoryView::Trapped(const std::function<void()>& action) {
  try {
    action();
    return true;
  } catch (const std::exception& failure) {
    TellFailure(failure);
    return false;
  }
}

void HistoryView::TellFailure(const std::exception& failure) {
  ports_.identity.ShowDatabaseError(FailureNumber(failure), kFailureTitle, failure.what());
}

void HistoryView::Refuse(std::string_view column) {
  std::string names(column);
  names.front() = static_cast<char>(names.front() - 'A' + 'a');
  ports_.op.ShowMessage({.icon = Icon::kWarning,
                         .title = "No " + std::string(column) + " Names",
                         .text = "You must first open a Recipe database so that all " + names +
                                 " names can be listed."});
}

void HistoryView::SetUp(const DataGroup& group, const std::function<bool()>& wanted) {
  if (group.named_column.empty()) {
    picker_.Hide();
  } else if (!picker_.Offer(group.named_column, *recipes_, wanted)) {
    return;
  }
  // A group by name starts with a name that no transaction bears.
  grid_.SetUp(group, "", show_active_only_);
}

std::vector<IngredientRecord> HistoryView::IngredientGridRows(SQLite::Database* recipes) const {
  if (recipes == nullptr) {
    return {};
  }
  std::vector<IngredientRecord> rows = ReadIngredients(*recipes);
  if (show_active_only_) {
    std::erase_if(rows, [](const IngredientRecord& row) { return row.description.empty(); });
  }
  return rows;
}

void HistoryView::ShowGridVisible(bool visible) {
  grid_visible_ = visible;
  ports_.screen.HistoryChanged(HistoryPart::kGrid);
}

void HistoryView::Act(const std::function<void()>& action) {
  Trapped(action);
  ports_.screen.HistoryChanged(HistoryPart::kGrid);
}

}  // namespace vrx
