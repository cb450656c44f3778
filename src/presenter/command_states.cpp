#include "presenter/command_states.h"

#include <algorithm>
#include <string>
#include <utility>

#include "base/error.h"

namespace vrx {

namespace {

struct TabSides {
  bool recipe = false;
  bool transaction = false;
};

// The open databases that a tab needs; none for the Data Transfer and Import tabs.
constexpr std::array<TabSides, kTabCount> kTabNeeds{{
    {.recipe = true},
    {.recipe = true},
    {.recipe = true},
    {},
    {.transaction = true},
    {},
    {.transaction = true},
    {.transaction = true},
}};

constexpr std::array<std::string_view, 3> kPrintCommands{"mnuFilePrint", "mnuFilePrintPreview",
                                                         "Print"};

void RequireTab(int tab) {
  if (tab < 0 || tab >= kTabCount) {
    throw Error("there is no tab " + std::to_string(tab));
  }
}

std::size_t IndexOf(std::string_view name) {
  const auto names = CommandStates::Names();
  const auto* const place = std::find(names.begin(), names.end(), name);
  if (place == names.end()) {
    throw Error("there is no command \"" + std::string(name) + "\" that is ever off");
  }
  return static_cast<std::size_t>(place - names.begin());
}

}  // namespace

// A command of one database, or a parent of items of both.
struct CommandStates::Command {
  std::string_view name;
  Side side = Side::kNone;
  std::string_view recipe_item = {};
  std::string_view transaction_item = {};

  [[nodiscard]] bool OverBoth() const { return !recipe_item.empty(); }
};

const std::array<CommandStates::Command, CommandStates::kCount>& CommandStates::Commands() {
  static constexpr std::array<Command, kCount> kCommands{{
      {"mnuFileCloseRecipeDB", Side::kRecipe},
      {"mnuFileSaveRecipeDB", Side::kRecipe},
      {"mnuFileSaveAsRecipeDB", Side::kRecipe},
      {"mnuFileCloseTransactionDB", Side::kTransaction},
      {"mnuFileSaveTransactionDB", Side::kTransaction},
      {"mnuFileSaveAsTransactionDB", Side::kTransaction},
      {"mnuFileClose", Side::kNone, "mnuFileCloseRecipeDB", "mnuFileCloseTransactionDB"},
      {"mnuFileSave", Side::kNone, "mnuFileSaveRecipeDB", "mnuFileSaveTransactionDB"},
      {"Save", Side::kNone, "mnuFileSaveRecipeDB", "mnuFileSaveTransactionDB"},
      {"mnuFileSaveAs", Side::kNone, "mnuFileSaveAsRecipeDB", "mnuFileSaveAsTransactionDB"},
      {"Save Recipe", Side::kRecipe},
      {"Save Transaction", Side::kTransaction},
      {"mnuEditIngredient", Side::kRecipe},
      {"mnuEditRecipe", Side::kRecipe},
      {"mnuEditPen", Side::kRecipe},
      {"mnuViewTransactionFile", Side::kTransaction},
      {"mnuFileReport", Side::kTransaction},
      {"mnuFilePrint"},
      {"mnuFilePrintPreview"},
      {"Print"},
      {"Abbreviate"},
  }};
  return kCommands;
}

CommandStates::CommandStates() {
  on_.fill(true);
  tab_on_.fill(true);
}

std::array<std::string_view, CommandStates::kCount> CommandStates::Names() {
  std::array<std::string_view, kCount> names;
  std::transform(Commands().begin(), Commands().end(), names.begin(),
                 [](const Command& command) { return command.name; });
  return names;
}

bool CommandStates::On(std::string_view name) const { return on_.at(IndexOf(name)); }

void CommandStates::Turn(std::string_view name, bool on) { TurnAt(IndexOf(name), on); }

void CommandStates::TurnAt(std::size_t index, bool on) {
  if (std::exchange(on_.at(index), on) != on) {
    for (CommandObserver* observer : observers_) {
      observer->CommandChanged(Commands().at(index).name, on);
    }
  }
}

bool CommandStates::TabOn(int tab) const {
  RequireTab(tab);
  return tab_on_.at(static_cast<std::size_t>(tab));
}

void CommandStates::TurnTab(int tab, bool on) {
  RequireTab(tab);
  if (std::exchange(tab_on_.at(static_cast<std::size_t>(tab)), on) != on) {
    for (CommandObserver* observer : observers_) {
      observer->TabChanged(tab, on);
    }
  }
}

void CommandStates::TurnTabsOf(Side side, bool on) {
  for (int tab = 0; tab < kTabCount; ++tab) {
    const TabSides& needs = kTabNeeds.at(static_cast<std::size_t>(tab));
    if (side == Side::kRecipe ? needs.recipe : needs.transaction) {
      TurnTab(tab, on);
    }
  }
}

void CommandStates::Disable(Side side) {
  TurnTabsOf(side, false);
  for (std::size_t index = 0; index < kCount; ++index) {
    const Command& command = Commands().at(index);
    if (command.OverBoth()) {
      TurnAt(index, On(side == Side::kRecipe ? command.transaction_item : command.recipe_item));
    } else if (command.side == side) {
      TurnAt(index, false);
    }
  }
}

void CommandStates::Enable(Side side) {
  TurnTabsOf(side, true);
  for (std::size_t index = 0; index < kCount; ++index) {
    const Command& command = Commands().at(index);
    if (command.OverBoth() || command.side == side) {
      TurnAt(index, true);
    }
  }
}

void CommandStates::UpdatePrintCommands(int tab, const PrintSources& sources) {
  switch (tab) {
    case kTabIngredients:
    case kTabRecipes:
    case kTabPens:
      TurnPrintCommands(TabOn(tab) && sources.recipe_database);
      break;
    case kTabDataTransfer:
      TurnPrintCommands(false);
      break;
    case kTabBatchedFed:
      TurnPrintCommands(TabOn(tab) && sources.transaction_database);
      break;
    case kTabInsight:
      TurnPrintCommands(TabOn(tab) && sources.transaction_database);
      Turn("mnuFilePrintPreview", false);
      break;
    case kTabImport:
      TurnPrintCommands(TabOn(tab) && sources.transaction_file);
      break;
    default:
      break;
  }
}

void CommandStates::TurnPrintCommands(bool on) {
  for (const std::string_view name : kPrintCommands) {
    Turn(name, on);
  }
}

void TabFolder::SelectTab(int tab) {
  static_cast<void>(commands_.TabOn(tab));  // throws for an invalid tab before anything is shown
  window_.ShowTab(tab);
  commands_.TurnTab(tab, true);
  Clicked(tab);
  UpdatePrintCommands(tab);
}

void TabFolder::Clicked(int tab) {
  const int previous = std::exchange(current_tab_, tab);
  window_.PrepareTab(tab, previous);
}

bool GeneralDelay::Wait(Milliseconds interval) {
  complete_ = false;
  end_ = pump_.Now() + interval;
  while (!complete_ && !pump_.Closing()) {
    const Milliseconds left = end_ - pump_.Now();
    if (left > Milliseconds{0}) {
      pump_.Pump(left);
    } else {
      complete_ = true;
    }
  }
  return !pump_.Closing();
}

}  // namespace vrx
