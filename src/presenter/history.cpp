#include "presenter/history.h"

#include <exception>
#include <optional>
#include <string>

#include "base/date.h"
#include "base/text.h"
#include "base/translation.h"
#include "database/connection.h"
#include "database/records.h"
#include "presenter/report_failure.h"

namespace vrx {

namespace {

constexpr FailureReport kFailure{.title = "Transaction Data Error",
                                 .text = FailureText::kDatabaseWords};

std::string_view NounOf(std::string_view column) {
  return column == "Ingredient" ? TrMark("ingredient")
         : column == "Pen"      ? TrMark("pen")
                                : TrMark("recipe");
}

std::string_view WithArticle(std::string_view column) {
  return column == "Ingredient" ? TrMark("an ingredient")
         : column == "Pen"      ? TrMark("a pen")
                                : TrMark("a recipe");
}

// Of a group by name.
std::string EmptyNameText(std::string_view column, const NamePickerState& picker, bool all_days) {
  if (!picker.visible) {
    return Tr("Choose the data group again to pick the name of %1.", {Tr(WithArticle(column))});
  }
  if (picker.index > 0) {
    return Tr(all_days ? TrMark("No records are stored for the %1 %2.")
                       : TrMark("No records of the %1 %2 are in this period."),
              {Tr(NounOf(column)), picker.Text()});
  }
  return picker.items.size() > 1
             ? Tr("Pick the name of %1 above to see its records.", {Tr(WithArticle(column))})
             : Tr("The recipe database has no %1 with a description, so there is no name to pick.",
                  {Tr(NounOf(column))});
}

}  // namespace

std::string LeftOutText(std::int64_t undated) {
  if (undated == 0) {
    return {};
  }
  return undated == 1
             ? Tr("1 record without a readable date is left out.")
             : Tr("%1 records without a readable date are left out.", {std::to_string(undated)});
}

HistoryPresenter::HistoryPresenter(SQLite::Database& transactions, Services& services,
                                   HistoryView& screen)
    : services_(services),
      screen_(screen),
      grid_(transactions),
      picker_(services.pump, [this] { screen_.HistoryChanged(HistoryPart::kNamePicker); }),
      find_(
          grid_, services, [this] { screen_.HistoryChanged(HistoryPart::kFind); },
          [this](const FoundCell& cell) {
            last_found_ = cell;
            screen_.HistoryChanged(HistoryPart::kGrid);
            screen_.HistoryChanged(HistoryPart::kFoundCell);
          }) {}

void HistoryPresenter::SetTransactionDatabase(SQLite::Database& transactions) {
  grid_.Bind(transactions);
  FollowToday();
  grid_.ApplyExpandState(expand_all_);
  ShowGrid();
}

void HistoryPresenter::SetRecipeDatabase(SQLite::Database* recipes) {
  grid_.RefreshIngredientColumns(IngredientGridRows(recipes));
  recipes_ = recipes;
  ShowGrid();
}

void HistoryPresenter::SelectGroup(int index) {
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
  const bool done = RunReported(services_.op, kFailure, [&] {
    grid_.RefreshIngredientColumns(IngredientGridRows(recipes_));
    FollowToday();
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
    RunReported(services_.op, kFailure, [this] { grid_.ApplyExpandState(expand_all_); });
  } else {
    picker_.SetState(picker_before);
  }
  screen_.HistoryChanged(HistoryPart::kGroupList);
  ShowGridVisible(true);
}

std::string_view HistoryPresenter::CurrentDataGroupText() const {
  return FindDataGroup(group_index_)->item;
}

void HistoryPresenter::PickName(int item) {
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

std::string_view HistoryPresenter::GetNamedGroupColumn() const {
  return FindDataGroup(group_index_)->named_column;
}

void HistoryPresenter::ChoosePeriod(PeriodChoice choice) {
  const Period period = ChosenDays(choice, grid_.ShownPeriod(), services_.calendar.Today());
  Act([&] {
    ShowPeriod(period);
    period_ = FieldsOf(choice, period);
  });
  screen_.HistoryChanged(HistoryPart::kPeriod);
}

void HistoryPresenter::TypeDays(std::string_view from, std::string_view to) {
  const std::optional<Period> period = TakeDays(period_, from, to, grid_.ShownPeriod());
  if (period) {
    Act([&] {
      ShowPeriod(*period);
      period_ = FieldsOf(ChoiceOf(*period), *period);
    });
  }
  screen_.HistoryChanged(HistoryPart::kPeriod);
}

void HistoryPresenter::ShowDifferences(bool on) {
  Act([&] { grid_.ShowDifferences(on); });
}

void HistoryPresenter::FollowTolerance() {
  if (grid_.Tolerance() != services_.settings.DifferenceTolerance()) {
    grid_.SetTolerance(services_.settings.DifferenceTolerance());
    screen_.HistoryChanged(HistoryPart::kGrid);
  }
}

void HistoryPresenter::SetExpandAll(bool on) {
  expand_all_ = on;
  Act([this] { grid_.ApplyExpandState(expand_all_); });
}

void HistoryPresenter::OpenGroup(std::int64_t row) {
  Act([&] { grid_.OpenGroup(row); });
}

void HistoryPresenter::CloseGroup(std::int64_t row) {
  Act([&] { grid_.CloseGroup(row); });
}

std::int64_t HistoryPresenter::SortByColumn(int column, std::int64_t row) {
  std::int64_t followed = row;
  Act([&] { followed = grid_.SortByColumn(column, row); });
  return followed;
}

void HistoryPresenter::MoveColumn(int column, int position) {
  Act([&] { grid_.MoveColumn(column, position); });
}

std::int64_t HistoryPresenter::OpenNewest(std::int64_t count) {
  std::int64_t row = 0;
  Act([&] { row = grid_.OpenNewest(count); });
  return row;
}

std::int64_t HistoryPresenter::GoTo(int group, const Period& period, std::string_view value) {
  if (group != group_index_) {
    SelectGroup(group);
  }
  std::int64_t row = 0;
  Act([&] {
    ShowPeriod(period);
    period_ = FieldsOf(ChoiceOf(period), period);
    row = grid_.OutermostGroup(value);
    if (row > 0) {
      grid_.OpenGroup(row);
    }
  });
  screen_.HistoryChanged(HistoryPart::kPeriod);
  return row;
}

std::int64_t HistoryPresenter::GroupBeginning(std::int64_t row, std::string_view typed) {
  std::int64_t group = 0;
  RunReported(services_.op, kFailure, [&] { group = grid_.FirstGroupBeginning(row, typed); });
  return group;
}

std::optional<CopiedRows> HistoryPresenter::Copy(std::span<const CopiedRange> ranges) {
  if (const std::int64_t count = CountRows(ranges); count > kMostCopiedRows) {
    services_.op.ShowMessage(
        {.icon = Icon::kWarning,
         .title = Tr("Copy"),
         .text =
             Tr("%1 rows are selected, but only %2 can be copied at once. Select fewer rows, or "
                "write all of them to a file on the Export tab.",
                {std::to_string(count), std::to_string(kMostCopiedRows)})});
    return std::nullopt;
  }
  std::optional<CopiedRows> rows;
  RunReported(services_.op, kFailure, [&] { rows = CopyRows(grid_, ranges); });
  return rows;
}

void HistoryPresenter::TabChanged() {
  Act([this] {
    grid_.CollapseAll();
    grid_.ApplyExpandState(expand_all_);
  });
}

void HistoryPresenter::TabEntered() {
  picker_.EnterTab();
  FollowTolerance();
  Act([this] {
    FollowToday();
    grid_.RefreshIngredientColumns(IngredientGridRows(recipes_));
    grid_.EnterTab();
  });
}

std::string HistoryPresenter::EmptyText() const {
  const std::string_view column = GetNamedGroupColumn();
  const bool all_days = grid_.ShownPeriod().IsAll();
  if (!column.empty()) {
    return EmptyNameText(column, Picker(), all_days);
  }
  if (!all_days) {
    return Tr("No records of this period. Choose another period above.");
  }
  const std::string_view type = grid_.Group().type;
  if (type == "BATCH") {
    return Tr("No batch records are stored yet. Import a transaction file and store it.");
  }
  return type == "FEED"
             ? Tr("No feed records are stored yet. Import a transaction file and store it.")
             : Tr("No transactions are stored yet. Import a transaction file and store it.");
}

void HistoryPresenter::ReportFailure(const std::exception_ptr& failure) {
  RunReported(services_.op, kFailure, [&] { std::rethrow_exception(failure); });
}

void HistoryPresenter::Refuse(std::string_view column) {
  std::string names(column);
  names.front() = static_cast<char>(names.front() - 'A' + 'a');
  services_.op.ShowMessage({.icon = Icon::kWarning,
                            .title = "No " + std::string(column) + " Names",
                            .text = "You must first open a Recipe database so that all " + names +
                                    " names can be listed."});
}

void HistoryPresenter::SetUp(const DataGroup& group, const std::function<bool()>& wanted) {
  if (group.named_column.empty()) {
    picker_.Hide();
  } else if (!picker_.Offer(group.named_column, *recipes_, wanted)) {
    return;
  }
  // A group by name starts with a name that no transaction has.
  grid_.SetUp(group, "");
}

void HistoryPresenter::ShowPeriod(const Period& period) {
  grid_.ShowPeriod(period);
  grid_.ApplyExpandState(expand_all_);
}

// The program may run for days: a choice that depends on today has other days then.
void HistoryPresenter::FollowToday() {
  if (period_.choice == PeriodChoice::kFromTo) {
    return;
  }
  const Period period = PeriodOf(period_.choice, services_.calendar.Today());
  if (period != grid_.ShownPeriod()) {
    ShowPeriod(period);
    period_ = FieldsOf(period_.choice, period);
    screen_.HistoryChanged(HistoryPart::kPeriod);
  }
}

std::vector<IngredientRecord> HistoryPresenter::IngredientGridRows(
    SQLite::Database* recipes) const {
  if (recipes == nullptr) {
    return {};
  }
  std::vector<IngredientRecord> rows = ReadIngredients(*recipes);
  if (show_active_only_) {
    std::erase_if(rows, [](const IngredientRecord& row) { return row.description.empty(); });
  }
  return rows;
}

void HistoryPresenter::ShowGridVisible(bool visible) {
  grid_visible_ = visible;
  ShowGrid();
}

void HistoryPresenter::ShowGrid() {
  find_.GridChanged();
  screen_.HistoryChanged(HistoryPart::kGrid);
}

void HistoryPresenter::Act(const std::function<void()>& action) {
  RunReported(services_.op, kFailure, action);
  ShowGrid();
}

}  // namespace vrx
