#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

#include "platform/event_pump.h"

namespace vrx {

// The tabs of `tabMainFolder` by their numbers.
enum MainTab : int {
  kTabIngredients,
  kTabRecipes,
  kTabPens,
  kTabDataTransfer,
  kTabBatchedFed,
  kTabImport,
  kTabExport,
};
inline constexpr int kTabCount = 7;

// Whoever shows commands: is told of each change, and of nothing that stays as it was.
class CommandObserver {
 public:
  virtual ~CommandObserver() = default;
  virtual void CommandChanged(std::string_view name, bool on) = 0;
  virtual void TabChanged(int tab, bool on) = 0;
};

// What there is to print.
struct PrintSources {
  bool recipe_database = false;       // RecipeDbName isn't empty
  bool transaction_database = false;  // TransDbName isn't empty
  bool transaction_file = false;      // one is loaded
};

// Which commands of the main window are on. A menu item goes by its control's name, a button of the
// toolbar by its key ("Save"), an item of a button's list by its text ("Save Recipe"), a tab by its
// number. A command that is not among Names() is always on.
//
// Everything is on to begin with. Observers outlive the states, and must not change them.
class CommandStates {
 public:
  static constexpr std::size_t kCount = 19;
  static std::array<std::string_view, kCount> Names();

  CommandStates();

  // Throw Error for a name that is not among Names(), or a tab that is not there.
  bool On(std::string_view name) const;
  void Turn(std::string_view name, bool on);
  bool TabOn(int tab) const;
  void TurnTab(int tab, bool on);

  // A command of both databases stays on as long as the other database's one is.
  void DisableRecipeCommands() { Disable(Side::kRecipe); }
  void EnableRecipeCommands() { Enable(Side::kRecipe); }
  void DisableTransactionCommands() { Disable(Side::kTransaction); }
  void EnableTransactionCommands() { Enable(Side::kTransaction); }

  // The menu's and the toolbar's print command for the tab on show; left as they are by tab 6 and
  // by anything that is no tab.
  void UpdatePrintCommands(int tab, const PrintSources& sources);
  void TurnPrintCommands(bool on);

  void AddObserver(CommandObserver& observer) { observers_.push_back(&observer); }

 private:
  enum class Side { kNone, kRecipe, kTransaction };
  struct Command;
  static const std::array<Command, kCount>& Commands();

  void Disable(Side side);
  void Enable(Side side);
  void TurnTabsOf(Side side, bool on);
  void TurnAt(std::size_t index, bool on);

  std::array<bool, kCount> on_{};
  std::array<bool, kTabCount> tab_on_{};
  std::vector<CommandObserver*> observers_;
};

// What the tab folder `tabMainFolder` asks of the window.
class TabFolderWindow {
 public:
  virtual ~TabFolderWindow() = default;

  // Brings a tab on show, also one that is off; its Click routine does not run from here.
  virtual void ShowTab(int tab) = 0;

  // The Click routine of the tab now on show; `previous` was on show before. May run events.
  virtual void PrepareTab(int tab, int previous) = 0;

  virtual PrintSources Printable() const = 0;
};

// The seven tabs as the program turns them. The window tells the operator's own clicks by Clicked.
class TabFolder {
 public:
  TabFolder(CommandStates& commands, TabFolderWindow& window)
      : commands_(commands), window_(window) {}

  // Turns the tab on, too. Throws Error for a tab that is not there.
  void SelectTab(int tab);

  // The operator has turned to the tab: its Click routine runs.
  void Clicked(int tab);

  // The tab chosen last; the window opens with tab 0.
  int CurrentTab() const { return current_tab_; }

  void UpdatePrintCommands(int tab) { commands_.UpdatePrintCommands(tab, window_.Printable()); }

 private:
  CommandStates& commands_;
  TabFolderWindow& window_;
  int current_tab_ = 0;
};

// The panels of `sbRecipe` and `sbTrans` that tell of a database, by their numbers. Each stands
// behind its caption, which is the panel of the number before.
enum StatusPanel : int {
  kPanelName = 2,
  kPanelUnit = 4,
  kPanelCreated = 6,
  kPanelModified = 8,
};

struct StatusPanelWords {
  StatusPanel panel;
  std::string_view caption;
  std::string_view tooltip;
};

inline constexpr std::array<StatusPanelWords, 4> kRecipePanels{{
    {kPanelName, "Recipe dB:", "Recipe Database Filename"},
    {kPanelUnit, "Units:", "Recipe Database Weight Units"},
    {kPanelCreated, "Created:", "Recipe Database Creation Date"},
    {kPanelModified, "Modified:", "Recipe Database Last Modified Date"},
}};

inline constexpr std::array<StatusPanelWords, 4> kTransactionPanels{{
    {kPanelName, "Transaction dB:", "Transaction Database Filename"},
    {kPanelUnit, "Units:", "Transaction Database Weight Units"},
    {kPanelCreated, "Created:", "Transaction Database Creation Date"},
    {kPanelModified, "Modified:", "Transaction Database Last Modified Date"},
}};

// `timGeneralDelay`: the one timer behind every general delay of the main window.
class GeneralDelay {
 public:
  explicit GeneralDelay(EventPump& pump) : pump_(pump) {}

  // Lets events run for that long. A delay that such an event begins takes the timer over: both end
  // when the later one does. False as soon as the program is closing; what was waiting must then
  // unwind.
  bool Wait(Milliseconds interval);

  bool Closing() const { return pump_.Closing(); }

 private:
  EventPump& pump_;
  Milliseconds end_{0};
  bool complete_ = true;
};

}  // namespace vrx
