#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "platform/event_pump.h"

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

}  // namespace vrx
