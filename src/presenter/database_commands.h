#pragma once

#include <filesystem>
#include <functional>
#include <initializer_list>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include "database/bound_database.h"
#include "database/connection.h"
#include "database/schema.h"
#include "presenter/command_states.h"
#include "presenter/create_database.h"
#include "presenter/database_identity.h"
#include "presenter/services.h"

namespace vrx {

// How the routines of the two databases differ, all of it on purpose.
struct KindRules {
  bool goes_to_transfer_tab;  // before the dialog of New and Open
  Milliseconds new_delay;     // each lets the dialog's place be repainted
  Milliseconds browse_delay;
  Milliseconds save_as_delay;
  bool save_as_tests_name;
  bool open_stands_by;  // with the hourglass and a text in place of the name
  bool new_beeps;
  std::span<const int> tabs_of_new;  // turned on in this order; the first one is selected
};

const KindRules& RulesOf(DatabaseKind kind);

// What the databases' lifecycle asks of the main window.
class DatabaseWindow {
 public:
  virtual ~DatabaseWindow() = default;

  // The views of that kind are about to move: what is being edited is stored, or given up with a
  // message. May run events.
  virtual void LeaveEdits(DatabaseKind /*kind*/) {}

  // Every view of that kind moves to this database and shows what it holds, with no statement left
  // open. Runs no events: a database bound by one would be refused. When it throws, the views are
  // moved back to where they stood; the connection they leave is closed once they have left it.
  virtual void Rebind(DatabaseKind kind, const BoundDatabase& database) = 0;

  // The program ends: the views let go of both databases.
  virtual void ReleaseViews() = 0;

  // The caption of `lblDatabaseUoM` or `lblTransactionUoM`: the unit of what the views stand on.
  virtual void ShowUnit(DatabaseKind kind, std::string_view unit) = 0;

  virtual void SetStatusPanel(DatabaseKind kind, StatusPanel panel, std::string_view text) = 0;

  // Fills the three ID lists. May run events, and another database may be bound by one.
  virtual void LoadIdLists() = 0;

  virtual void ShowTransferOption() = 0;
  virtual void CheckPenCapacity() = 0;
  virtual void HidePenCapacityWarning() = 0;       // `lblRequiresIndicatorPenCapacityX`
  virtual void SelectPenItem(int list_index) = 0;  // of `cboPenID`
};

// What came of a file that is to be opened and may be of an earlier generation of the program.
struct LegacyOpening {
  enum class Outcome {
    kGoOn,      // it is none, or is not to be converted: opened like any file
    kOpenCopy,  // `copy` was made of it, and is opened in its place
    kEnd,       // the operator was told why nothing is opened, or has turned back
  };
  Outcome outcome = Outcome::kGoOn;
  std::filesystem::path copy = {};
};

// Asks the operator about files of an earlier generation. Throws nothing of its own; runs events.
class LegacyOpener {
 public:
  virtual ~LegacyOpener() = default;
  virtual LegacyOpening Offer(DatabaseKind kind, const std::filesystem::path& path) = 0;
};

// New, Open, Close, Save and Save As of both databases: who asks for a file, in what order the main
// window follows, and which connection its views stand on. There is no working copy: views write
// into the file itself, Save closes and opens it again, Save As goes on with a copy.
//
// A closed database is one whose views stand on the blank template; its path is empty and its
// commands are off. What goes wrong in a routine is told to the operator, and nothing is thrown. A
// routine that the closing program cuts short stops where it waits.
//
// An Open that is refused changes nothing: path, name, unit, status bar, commands and views stay
// those of the database that was open. No routine of one database touches the commands of the
// other.
//
// While a routine waits, events run, and so may another routine. Whatever is referred to outlives
// this.
class DatabaseCommands {
 public:
  // Nothing is bound until both databases have been closed once, as the window's Load does. Without
  // an opener of legacy files such a file is opened like any other.
  DatabaseCommands(Services& services, GeneralDelay& delay, CommandStates& commands,
                   TabFolder& tabs, DatabaseWindow& window, LegacyOpener* legacy = nullptr);

  // RecipeDbPath, RecipeDbName, RecipeDbUoM and those of the transaction side. Path and name are
  // empty after a Save As, and may name a recalled file that was never opened: Bound tells what is
  // open.
  const CurrentDatabase& Recipe() const { return recipe_.current; }
  const CurrentDatabase& Transaction() const { return transaction_.current; }
  const std::filesystem::path& SaveAsPath() const { return save_as_path_; }
  const std::string& SaveAsName() const { return save_as_name_; }

  // What the views stand on now, whatever the paths say.
  const BoundDatabase& Bound(DatabaseKind kind) const { return SideOf(kind).bound; }
  bool IsOpen(DatabaseKind kind) const;

  void NewRecipeDatabase() { New(recipe_); }
  void NewTransactionDatabase() { New(transaction_); }
  void BrowseRecipeDatabase() { Browse(recipe_); }
  void BrowseTransactionDatabase() { Browse(transaction_); }

  // The path of the side stays what it is.
  void OpenRecipeDatabase(const std::filesystem::path& path, const std::string& name) {
    Open(recipe_, {.path = path, .name = name});
  }
  void OpenTransactionDatabase(const std::filesystem::path& path, const std::string& name) {
    Open(transaction_, {.path = path, .name = name});
  }

  void CloseRecipeDatabase() { Close(recipe_); }
  void CloseTransactionDatabase() { Close(transaction_); }
  void SaveRecipeDatabase() { Save(recipe_); }
  void SaveTransactionDatabase() { Save(transaction_); }

  // The dialog of Save As alone: true with SaveAsPath and SaveAsName set.
  bool SaveAsRecipeDB() { return AskSaveAs(recipe_); }
  bool SaveAsTransactionDB() { return AskSaveAs(transaction_); }

  // `mnuFileSaveAsRecipeDB` and `mnuFileSaveAsTransactionDB`.
  void SaveAsRecipeCommand() { SaveAs(recipe_); }
  void SaveAsTransactionCommand() { SaveAs(transaction_); }

  void WarnIfUnitsDiffer(std::string_view unit);

  // The operator has chosen a tab: asks about each open database whose unit is not the system's,
  // once per opening, whether to label it with that. Only a Yes changes the file. A Save does not
  // count as an opening, and a file that may not be written is not asked about.
  void AskAboutUnits();

  // Paths and names of the last run, with nothing opened.
  void Recall(DatabaseKind kind, const std::filesystem::path& path, const std::string& name);

  // The program ends: views and connections go.
  void Release();

 private:
  using PanelTexts = std::map<StatusPanel, std::string>;

  struct Side {
    DatabaseKind kind;
    CurrentDatabase current = {};
    BoundDatabase bound = {};
    BoundDatabase previous = {};  // views that failed to move may stand on it still
    bool moving = false;          // the views are being rebound
    int binding = 0;              // counts what was bound: tells whether an event bound another one
    bool unit_asked = false;      // in this opening
    PanelTexts panels = {};       // as they are shown
  };
  struct FileToOpen {
    std::filesystem::path path;
    std::string name;
    bool becomes_current = false;  // RecipeDbPath and RecipeDbName, or those of the other side
    bool is_new = false;
    bool unit_asked = false;  // it was open before
  };

  Side& SideOf(DatabaseKind kind) { return kind == recipe_.kind ? recipe_ : transaction_; }
  const Side& SideOf(DatabaseKind kind) const {
    return kind == recipe_.kind ? recipe_ : transaction_;
  }

  void New(Side& side);
  void ShowNew(Side& side);
  void Browse(Side& side);
  void Open(Side& side, FileToOpen file);
  // False: nothing is to be opened. The file becomes the copy that was made of it.
  bool ConvertIfLegacy(const Side& side, FileToOpen& file);
  bool IsUserDatabase(const Side& side, const FileToOpen& file);
  void WarnOfMissingRecords(const BoundDatabase& database, const std::string& name);
  bool BindOpened(Side& side, BoundDatabase next, const FileToOpen& file);
  void FinishRecipeOpen(Side& side, const FileToOpen& file);
  void FinishTransactionOpen(Side& side, const FileToOpen& file);
  void ShowOpened(Side& side, const FileToOpen& file);
  void Close(Side& side);
  void BindBlank(Side& side);
  void Save(Side& side);
  bool AskSaveAs(Side& side);
  void SaveAs(Side& side);
  void RequireUnbound(const std::filesystem::path& target) const;
  void AskAboutUnit(Side& side);
  bool MayRelabel(const Side& side) const;

  // Runs what shows another database in the status bar and binds it; where it throws, all of it is
  // as it was before.
  void OrGoBack(Side& side, const std::function<void()>& body);

  // Returns what the views stood on before.
  BoundDatabase Bind(Side& side, BoundDatabase next);
  void GoToTransferTab(const Side& side);
  void ShowBusyText(Side& side, std::string_view text);
  void ClearPanels(Side& side, std::initializer_list<StatusPanel> panels);
  void ShowPanel(Side& side, StatusPanel panel, std::string_view text);
  void ShowPanels(Side& side, const PanelTexts& texts);
  void EnableCommands(const Side& side);
  void DisableCommands(const Side& side);

  // Tells what the body throws under that title.
  void Trapped(std::string_view title, const std::function<void()>& body);

  Services& services_;
  GeneralDelay& delay_;
  CommandStates& commands_;
  TabFolder& tabs_;
  DatabaseWindow& window_;
  LegacyOpener* legacy_;
  Side recipe_{DatabaseKind::kRecipe};
  Side transaction_{DatabaseKind::kTransaction};
  std::filesystem::path save_as_path_;
  std::string save_as_name_;
};

}  // namespace vrx
