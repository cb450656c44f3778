#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

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

}  // namespace vrx
