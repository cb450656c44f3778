#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "platform/event_pump.h"

namespace vrx {

// The state of the combo `cboColName`, its label and the box `txtStandby`.
struct NamePickerState {
  bool visible = false;  // with `lblName`
  bool enabled = true;
  std::vector<std::string> items = {};
  int index = -1;            // of the item picked; -1: none
  std::string standby = {};  // empty: the box is hidden

  // The combo's text.
  [[nodiscard]] std::string Text() const;
};

// A record for the picker. A record without description is free and not offered.
struct NamedRecord {
  std::string name;
  std::string description;
};

// The combo that selects the name of a group by name. Reads the names of each kind once per visit
// to the tab; other events run in the meantime.
class NamePicker {
 public:
  // Calls `changed` after each change that must be shown immediately.
  NamePicker(EventPump& pump, std::function<void()> changed);

  [[nodiscard]] const NamePickerState& State() const { return state_; }
  void SetState(NamePickerState state);

  // The operator enters the tab: empties and hides the combo; names will be read again.
  void EnterTab();
  // For any other group.
  void Hide();

  // Shows the combo with "Select..." and the names of the records with a description, by ID;
  // `column` is the key of the named column. Fills nothing and returns false if `wanted` is false
  // after another event ran. Does not read `recipes` after running events. Throws DatabaseError.
  bool Offer(std::string_view column, SQLite::Database& recipes,
             const std::function<bool()>& wanted);

  // An invalid index selects nothing.
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

}  // namespace vrx
