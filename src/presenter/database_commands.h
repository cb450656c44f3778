#pragma once

#include <filesystem>
#include <functional>
#include <initializer_list>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "database/bound_database.h"
#include "database/connection.h"
#include "database/open_databases.h"
#include "database/schema.h"
#include "presenter/command_states.h"
#include "presenter/create_database.h"
#include "presenter/operation.h"
#include "presenter/services.h"

namespace vrx {

// The intended differences between the routines of the two databases.
struct KindRules {
  bool goes_to_transfer_tab;  // before the dialog of New and Open
  Milliseconds new_delay;     // each lets the dialog's place be repainted
  Milliseconds browse_delay;
  Milliseconds save_as_delay;
  bool save_as_tests_name;
  bool open_stands_by;  // with the busy cursor and a text instead of the name
  bool new_beeps;
  std::span<const int> tabs_of_new;  // turned on in this order; the first one is selected
};

const KindRules& RulesOf(DatabaseKind kind);

// The result of opening a file that may come from an earlier generation of the program.
struct LegacyOpening {
  enum class Outcome {
    kGoOn,      // not such a file, or not to be converted: opened like any file
    kOpenCopy,  // it was converted to `copy`, which is opened instead
    kEnd,       // nothing is opened: the reason was reported, or the operator canceled
  };
  Outcome outcome = Outcome::kGoOn;
  std::filesystem::path copy = {};
};

// Offers to convert files of an earlier generation. Throws no exceptions of its own; runs events.
class LegacyOpener {
 public:
  virtual ~LegacyOpener() = default;
  virtual LegacyOpening Offer(DatabaseKind kind, const std::filesystem::path& path) = 0;
};

// New, Open, Close, Save and Save As of both databases: their dialogs, the order in which the main
// window is updated, and the connection of its views. There is no working copy: views write into
// the file itself, Save closes and reopens it, Save As continues with a copy.
//
// When a database is closed, its views are bound to the blank template, its path is empty and its
// commands are disabled. The routines report failures and throw nothing. When the program closes, a
// routine ends at its current wait.
//
// A refused Open changes nothing: path, name, unit, status bar, commands and views remain those of
// the open database. No routine of one database changes the commands of the other.
//
// While a routine waits, events run, and so may another routine. All references outlive the object.
class DatabaseCommands {
 public:
  // Nothing is bound until both databases have been closed once, which the window's Load does. With
  // nullptr a legacy file is opened like any other.
  DatabaseCommands(Services& services, GeneralDelay& delay, CommandStates& commands,
                   TabFolder& tabs, MainView& window, LegacyOpener* legacy = nullptr);

  // RecipeDbPath, RecipeDbName, RecipeDbUoM and the same for transactions. Path and name are empty
  // after Save As, and may name a recalled file that was never opened; use Bound for the open one.
  [[nodiscard]] const CurrentDatabase& Recipe() const { return recipe_.current; }
  [[nodiscard]] const CurrentDatabase& Transaction() const { return transaction_.current; }
  [[nodiscard]] const std::filesystem::path& SaveAsPath() const { return save_as_path_; }
  [[nodiscard]] const std::string& SaveAsName() const { return save_as_name_; }

  // The database that the views are bound to, whatever the paths are.
  [[nodiscard]] const BoundDatabase& Bound(DatabaseKind kind) const { return SideOf(kind).bound; }
  [[nodiscard]] bool IsOpen(DatabaseKind kind) const;

  // The databases that are open, for an import, an export or a download.
  [[nodiscard]] OpenDatabases Opened() const;
  // The open recipe database; an empty path if there is none.
  [[nodiscard]] CurrentDatabase OpenedRecipes() const;

  void NewRecipeDatabase() { New(recipe_); }
  void NewTransactionDatabase() { New(transaction_); }
  void BrowseRecipeDatabase() { Browse(recipe_); }
  void BrowseTransactionDatabase() { Browse(transaction_); }

  // Like Browse, for a file that was chosen without the dialog.
  void OpenNamed(DatabaseKind kind, const std::filesystem::path& path);

  // Called with each database that was opened or made.
  using OpenedHandler = std::function<void(DatabaseKind, const std::filesystem::path&)>;
  void SetOpened(OpenedHandler opened) { opened_ = std::move(opened); }

  // Does not change the path of the side.
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

  // Only the dialog of Save As: on true, SaveAsPath and SaveAsName are set.
  bool SaveAsRecipeDB() { return AskSaveAs(recipe_); }
  bool SaveAsTransactionDB() { return AskSaveAs(transaction_); }

  // `mnuFileSaveAsRecipeDB` and `mnuFileSaveAsTransactionDB`.
  void SaveAsRecipeCommand() { SaveAs(recipe_); }
  void SaveAsTransactionCommand() { SaveAs(transaction_); }

  // Another routine has stored records: the views of that kind read them again.
  void ReloadViews(DatabaseKind kind);
  void ShowModifiedDate(DatabaseKind kind);

  void WarnIfUnitsDiffer(std::string_view unit);

  // Called when the operator selects a tab. For each open database with another unit than the
  // system's, asks once per opening whether to relabel it. Only Yes changes the file. A Save is not
  // treated as an opening, and a read-only file is skipped.
  void AskAboutUnits();

  // Sets path and name of the last run without opening the file.
  void Recall(DatabaseKind kind, const std::filesystem::path& path, const std::string& name);

  // The program ends: releases views and connections.
  void Release();

 private:
  using PanelTexts = std::map<StatusPanel, std::string>;

  struct Side {
    DatabaseKind kind;
    CurrentDatabase current = {};
    BoundDatabase bound = {};
    BoundDatabase previous = {};   // views that could not be rebound may still use it
    OperationLock rebinding = {};  // of the views
    int binding = 0;          // counts bindings, to detect that an event bound another database
    bool unit_asked = false;  // in this opening
    PanelTexts panels = {};   // as they are shown
  };
  struct FileToOpen {
    std::filesystem::path path;
    std::string name;
    bool becomes_current = false;  // RecipeDbPath and RecipeDbName, or those of the other side
    bool is_new = false;
    bool unit_asked = false;  // it was open before
  };

  Side& SideOf(DatabaseKind kind) { return kind == recipe_.kind ? recipe_ : transaction_; }
  [[nodiscard]] const Side& SideOf(DatabaseKind kind) const {
    return kind == recipe_.kind ? recipe_ : transaction_;
  }

  void New(Side& side);
  // Returns false if another database was bound, or if the program closes.
  bool ShowNew(Side& side);
  void Browse(Side& side);
  void Open(Side& side, FileToOpen file);
  // Returns false if nothing is to be opened. Replaces the file by its converted copy.
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
  [[nodiscard]] bool MayRelabel(const Side& side) const;

  // Runs `body`, which shows another database in the status bar and binds it. If it throws,
  // restores the previous state.
  void OrGoBack(Side& side, const std::function<void()>& body);

  // Returns the previously bound database.
  BoundDatabase Bind(Side& side, BoundDatabase next);
  void GoToTransferTab(const Side& side);
  void ShowBusyText(Side& side, std::string_view text);
  void ClearPanels(Side& side, std::initializer_list<StatusPanel> panels);
  void ShowPanel(Side& side, StatusPanel panel, std::string_view text);
  void ShowPanels(Side& side, const PanelTexts& texts);
  void EnableCommands(const Side& side);
  void DisableCommands(const Side& side);

  Services& services_;
  GeneralDelay& delay_;
  CommandStates& commands_;
  TabFolder& tabs_;
  MainView& window_;
  LegacyOpener* legacy_;
  OpenedHandler opened_ = [](DatabaseKind /*kind*/, const std::filesystem::path& /*path*/) {};
  Side recipe_{DatabaseKind::kRecipe};
  Side transaction_{DatabaseKind::kTransaction};
  std::filesystem::path save_as_path_;
  std::string save_as_name_;
};

}  // namespace vrx
