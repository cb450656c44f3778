#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

#include "database/bound_database.h"
#include "database/schema.h"
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
  kTabInsight,
};
inline constexpr int kTabCount = 8;

// Shows commands. Notified of each change, and only of changes.
class CommandObserver {
 public:
  virtual ~CommandObserver() = default;
  virtual void CommandChanged(std::string_view name, bool on) = 0;
  virtual void TabChanged(int tab, bool on) = 0;
};

// The data that can be printed.
struct PrintSources {
  bool recipe_database = false;       // RecipeDbName isn't empty
  bool transaction_database = false;  // TransDbName isn't empty
  bool transaction_file = false;      // one is loaded
};

// Which commands of the main window are enabled. A menu item is identified by its control's name, a
// toolbar button by its key ("Save"), an item of a button's list by its text ("Save Recipe"), a tab
// by its number. A command that is not among Names() is always enabled.
//
// At first everything is enabled. Observers outlive the states and must not change them.
class CommandStates {
 public:
  static constexpr std::size_t kCount = 21;
  static std::array<std::string_view, kCount> Names();

  CommandStates();

  // Throw Error for a name that is not among Names(), or for a tab that does not exist.
  [[nodiscard]] bool On(std::string_view name) const;
  void Turn(std::string_view name, bool on);
  [[nodiscard]] bool TabOn(int tab) const;
  void TurnTab(int tab, bool on);

  // A command for both databases stays enabled while the other database's command is enabled.
  void DisableRecipeCommands() { Disable(Side::kRecipe); }
  void EnableRecipeCommands() { Enable(Side::kRecipe); }
  void DisableTransactionCommands() { Disable(Side::kTransaction); }
  void EnableTransactionCommands() { Enable(Side::kTransaction); }

  // Updates the print commands of menu and toolbar for the current tab. A picture of the tab
  // Insight has no preview. The tab Export and
  // any invalid tab leave them unchanged.
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

// The panels of `sbRecipe` and `sbTrans` that describe a database, by their numbers. The panel with
// the number before is the caption of each.
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

// The main window, as the commands of the databases and the choice of a tab use it.
class MainView {
 public:
  virtual ~MainView() = default;

  // Shows a tab, even a disabled one, without running its Click routine.
  virtual void ShowTab(int tab) = 0;

  // The Click routine of the current tab; `previous` was shown before. May run events.
  virtual void PrepareTab(int tab, int previous) = 0;

  [[nodiscard]] virtual PrintSources Printable() const = 0;

  // Called before the views of that kind are rebound: stores pending edits, or gives them up with a
  // message. May run events.
  virtual void LeaveEdits(DatabaseKind /*kind*/) {}

  // Binds every view of that kind to this database and shows its contents, leaving no statement
  // open. Runs no events, because a database bound by one would be refused. If it throws, the views
  // are bound back to the previous database. A connection is closed when no view uses it.
  virtual void Rebind(DatabaseKind kind, const BoundDatabase& database) = 0;

  // Called before the open database is written to without being rebound: a view that reads it in a
  // thread stops and leaves no lock, and reads again from a later event. Runs no events.
  virtual void EndReads(DatabaseKind /*kind*/) {}

  // The program ends: the views release both databases.
  virtual void ReleaseViews() = 0;

  // The caption of `lblDatabaseUoM` or `lblTransactionUoM`: the unit of the bound database.
  virtual void ShowUnit(DatabaseKind kind, std::string_view unit) = 0;

  virtual void SetStatusPanel(DatabaseKind kind, StatusPanel panel, std::string_view text) = 0;

  // Fills the three ID lists. May run events, which may bind another database.
  virtual void LoadIdLists() = 0;

  virtual void ShowTransferOption() = 0;
  virtual void CheckPenCapacity() = 0;
  virtual void HidePenCapacityWarning() = 0;       // `lblRequiresIndicatorPenCapacityX`
  virtual void SelectPenItem(int list_index) = 0;  // of `cboPenID`
};

// Selects among the tabs. The window reports the operator's own clicks with Clicked.
class TabFolder {
 public:
  TabFolder(CommandStates& commands, MainView& window) : commands_(commands), window_(window) {}

  // Also enables the tab. Throws Error for a tab that does not exist.
  void SelectTab(int tab);

  // The operator has selected the tab: runs its Click routine.
  void Clicked(int tab);

  // The tab selected last; initially tab 0.
  [[nodiscard]] int CurrentTab() const { return current_tab_; }

  void UpdatePrintCommands(int tab) { commands_.UpdatePrintCommands(tab, window_.Printable()); }

 private:
  CommandStates& commands_;
  MainView& window_;
  int current_tab_ = 0;
};

// `timGeneralDelay`: the single timer for all general delays of the main window.
class GeneralDelay {
 public:
  explicit GeneralDelay(EventPump& pump) : pump_(pump) {}

  // Runs events for that long. A delay that starts in such an event takes over the timer: both end
  // with the later one. Returns false as soon as the program is closing; the caller must then
  // return.
  bool Wait(Milliseconds interval);

  [[nodiscard]] bool Closing() const { return pump_.Closing(); }

 private:
  EventPump& pump_;
  Milliseconds end_{0};
  bool complete_ = true;
};

}  // namespace vrx
