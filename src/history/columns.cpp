#include "history/columns.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "base/number.h"
#include "base/text.h"
#include "base/upper_case.h"

namespace vrx {
namespace {

constexpr std::size_t kVisibleColumnSlots = 501;

std::size_t Place(int column) {
  return static_cast<std::size_t>(HistoryColumnAt(column).index) - 1;
}

// "ING007": a slot of that name is not in use.
std::string FormatIngredientNumber(int slot) { return "ING" + Format(slot, "000"); }

// The set-up of these two forgets the ingredient columns; the first drawn row hides them.
bool LeavesIngredientColumns(const DataGroup& group) {
  return group.index == 8 || group.index == 9;
}

}  // namespace

HistoryColumns::HistoryColumns() {
  for (const HistoryColumn& column : HistoryColumnTable()) {
    At(column.index).caption = column.caption;
    order_.at(Place(column.index)) = column.index;
  }
}

void HistoryColumns::SetUp(const DataGroup& group, bool show_active_ingredients_only) {
  int position = 0;
  for (const std::string_view key : group.order) {
    Move(HistoryColumnOfKey(key), ++position);
  }
  for (State& column : columns_) {
    column.visible = true;
  }
  for (const std::string_view key : group.hidden) {
    At(HistoryColumnOfKey(key)).visible = false;
  }
  if (group.ingredient_columns != IngredientColumns::kShown) {
    At(kIngPercentColumn).visible = false;
  }
  if (group.ingredient_columns == IngredientColumns::kHidden && !LeavesIngredientColumns(group)) {
    HideIngredientColumns();
  }
  if (group.ingredient_columns == IngredientColumns::kShownWithoutPercent) {
    for (int column = kFirstIngredientColumn; column <= kHistoryColumnCount; ++column) {
      At(column).visible = !Caption(column).empty() && show_active_ingredients_only;
    }
  }
  SetTotalCaption(group.total_column);
}

void HistoryColumns::RefreshIngredientColumns(std::span<const IngredientRecord> ingredients) {
  for (int column = kFirstIngredientColumn; column <= kHistoryColumnCount; ++column) {
    At(column).caption.clear();
  }
  for (const IngredientRecord& ingredient : ingredients) {
    const int column = ingredient.id + kIngPercentColumn;
    if (IngredientSlot(column) != 0) {
      At(column).caption = UnicodeUpperCase(ingredient.name);
    }
  }
  for (int column = kFirstIngredientColumn; column <= kHistoryColumnCount; ++column) {
    At(column).visible = !Caption(column).empty();
  }
}

void HistoryColumns::ApplyIngredientColumnVisibility(const DataGroup& group) {
  At(kIngPercentColumn).visible = group.ingredient_columns == IngredientColumns::kShown;
  EnterTab(group);
}

void HistoryColumns::EnterTab(const DataGroup& group) {
  if (group.ingredient_columns == IngredientColumns::kHidden) {
    HideIngredientColumns();
  } else {
    ShowNamedIngredientColumns();
  }
}

const std::string& HistoryColumns::Caption(int column) const { return At(column).caption; }

bool HistoryColumns::IsVisible(int column) const { return At(column).visible; }

int HistoryColumns::Position(int column) const {
  const auto* const place = std::find(order_.begin(), order_.end(), HistoryColumnAt(column).index);
  return static_cast<int>(std::distance(order_.begin(), place)) + 1;
}

void HistoryColumns::Move(int column, int position) {
  auto* const from = order_.begin() + (Position(column) - 1);
  auto* const to = order_.begin() + static_cast<std::ptrdiff_t>(Place(position));
  if (from < to) {
    std::rotate(from, from + 1, to + 1);
  } else {
    std::rotate(to, from, from + 1);
  }
}

std::string_view HistoryColumns::TotalText(int column) const {
  return At(column).total ? "Total:" : "";
}

std::vector<int> HistoryColumns::VisibleColumns() const {
  std::vector<int> visible;
  std::copy_if(order_.begin(), order_.end(), std::back_inserter(visible),
               [this](int column) { return IsVisible(column); });
  return visible;
}

std::vector<std::string> HistoryColumns::GetVisibleColumnList() const {
  std::vector<std::string> slots(kVisibleColumnSlots);
  for (const int column : VisibleColumns()) {
    slots.at(static_cast<std::size_t>(Position(column))) = HistoryColumnAt(column).field;
  }
  return slots;
}

HistoryColumns::State& HistoryColumns::At(int column) { return columns_.at(Place(column)); }

const HistoryColumns::State& HistoryColumns::At(int column) const {
  return columns_.at(Place(column));
}

void HistoryColumns::ShowNamedIngredientColumns() {
  for (int column = kFirstIngredientColumn; column <= kHistoryColumnCount; ++column) {
    State& state = At(column);
    state.visible =
        !state.caption.empty() && state.caption != FormatIngredientNumber(IngredientSlot(column));
  }
}

void HistoryColumns::HideIngredientColumns() {
  for (int column = kFirstIngredientColumn; column <= kHistoryColumnCount; ++column) {
    At(column).visible = false;
  }
}

void HistoryColumns::SetTotalCaption(std::string_view column_key) {
  for (const HistoryColumn& column : HistoryColumnTable()) {
    At(column.index).total = !column_key.empty() && EqualsIgnoringCase(column.key, column_key);
  }
}

}  // namespace vrx
