#include "presenter/name_picker.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "database/records.h"

namespace vrx {

namespace {

constexpr std::string_view kSelect = "Select...";
constexpr std::string_view kStandby = "Standby...";
constexpr std::string_view kStandbyLoading = "Standby... Loading";
constexpr int kBlinkEvery = 10;  // records

template <typename Record>
std::vector<NamedRecord> NamesOf(const std::vector<Record>& records) {
  std::vector<NamedRecord> names;
  names.reserve(records.size());
  for (const Record& record : records) {
    names.push_back({record.name, record.description});
  }
  return names;
}

std::vector<NamedRecord> ReadNames(std::string_view column, SQLite::Database& recipes) {
  if (column == "Recipe") {
    return NamesOf(ReadRecipes(recipes));
  }
  return column == "Ingredient" ? NamesOf(ReadIngredients(recipes)) : NamesOf(ReadPens(recipes));
}

std::size_t CacheOf(std::string_view column) {
  constexpr std::array<std::string_view, 3> kColumns{"Recipe", "Ingredient", "Pen"};
  const auto* const place = std::find(kColumns.begin(), kColumns.end(), column);
  if (place == kColumns.end()) {
    throw std::invalid_argument("no names of " + std::string(column));
  }
  return static_cast<std::size_t>(place - kColumns.begin());
}

}  // namespace

std::string NamePickerState::Text() const {
  return index < 0 ? std::string() : items.at(static_cast<std::size_t>(index));
}

NamePicker::NamePicker(EventPump& pump, std::function<void()> changed)
    : pump_(pump), changed_(std::move(changed)) {}

void NamePicker::SetState(NamePickerState state) {
  state_ = std::move(state);
  changed_();
}

void NamePicker::EnterTab() {
  for (Cache& cache : caches_) {
    cache.reload = true;
  }
  state_.items.clear();
  state_.index = -1;
  Hide();
}

void NamePicker::Hide() {
  state_.visible = false;
  state_.enabled = true;
  changed_();
}

bool NamePicker::Offer(std::string_view column, SQLite::Database& recipes,
                       const std::function<bool()>& wanted) {
  Cache& cache = caches_.at(CacheOf(column));
  std::optional<std::vector<NamedRecord>> records;
  if (cache.reload) {
    records = ReadNames(column, recipes);
  }
  state_.enabled = false;
  state_.index = -1;
  state_.visible = true;
  changed_();
  GeneralDelay(Milliseconds{1});
  std::optional<std::vector<std::string>> names;
  if (wanted() && records) {
    names = Load(*records, wanted);
  }
  if (!wanted()) {
    return false;
  }
  if (names) {
    cache = {.names = std::move(*names), .reload = false};
  }
  Fill(cache.names);
  return true;
}

void NamePicker::Pick(int index) {
  const bool there = index >= 0 && index < static_cast<int>(state_.items.size());
  state_.index = there ? index : -1;
  changed_();
}

std::vector<std::string> NamePicker::Load(const std::vector<NamedRecord>& records,
                                          const std::function<bool()>& wanted) {
  std::vector<std::string> names;
  ShowStandby(kStandbyLoading);
  int position = 0;
  for (const NamedRecord& record : records) {
    if (!record.description.empty()) {
      names.push_back(record.name);
    }
    if (++position % kBlinkEvery == 0) {
      ShowStandby(state_.standby == kStandbyLoading ? kStandby : kStandbyLoading);
    }
    if (!wanted()) {
      break;
    }
  }
  state_.standby.clear();
  changed_();
  return names;
}

void NamePicker::Fill(const std::vector<std::string>& names) {
  state_.items.assign(1, std::string(kSelect));
  state_.items.insert(state_.items.end(), names.begin(), names.end());
  state_.index = 0;
  state_.enabled = true;
  changed_();
}

void NamePicker::ShowStandby(std::string_view text) {
  state_.standby = text;
  changed_();
  pump_.Pump(Milliseconds{0});
}

void NamePicker::GeneralDelay(Milliseconds delay) {
  const Milliseconds end = pump_.Now() + delay;
  while (pump_.Now() < end && !pump_.Closing()) {
    pump_.Pump(end - pump_.Now());
  }
}

}  // namespace vrx
