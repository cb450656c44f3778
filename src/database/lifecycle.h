#pragma once

#include <chrono>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>

#include "database/bound_database.h"
#include "database/connection.h"
#include "database/create.h"
#include "database/database_window.h"
#include "database/earlier_databases.h"
#include "database/identity.h"
#include "frame/command_states.h"
#include "frame/folder.h"
#include "frame/general_delay.h"
#include "frame/private_ini.h"
#include "frame/tab_folder.h"
#include "platform/calendar.h"
#include "platform/file_chooser.h"
#include "platform/operator.h"
#include "platform/system_info.h"

namespace vrx {

// New, Open, Close, Save and Save As of both databases: who asks for a file, in what order the main
// window follows, and which connection its views stand on. There is no working copy: views write
// into the file itself, Save closes and opens it again, Save As goes on with a copy.
//
// A closed database is one whose views stand on the blank template; its path is empty and its
// commands are off. What goes wrong in a routine is told to the operator, and nothing is thrown. A
// routine that the closing program cuts short stops where it waits.
//
// While a routine waits, events run, and so may another routine. Whatever is referred to outlives
// this.
class DatabaseLifecycle {
 public:
  struct Ports {
    Operator& op;
    FileChooser& files;
    const SystemInfo& system;
    const Folder& app_folder;
    const PrivateINI& settings;
    const Calendar& calendar;
    DatabaseIdentity& identity;
    GeneralDelay& delay;
    CommandStates& commands;
    TabFolder& tabs;
    DatabaseWindow& window;
    EarlierDatabases* earlier = nullptr;  // none: such a file is opened like any other
  };

  // Nothing is bound until both databases have been closed once, as the window's Load does.
  explicit DatabaseLifecycle(const Ports& ports,
                             std::chrono::milliseconds busy_timeout = kBusyTimeout);

  // RecipeDbPath, RecipeDbName, RecipeDbUoM and those of the transaction side. A path names what
  // was asked for last, which a refused Open leaves set, and a Save As leaves empty.
  const CurrentDatabase& Recipe() const { return recipe_.current; }
  const CurrentDatabase& Transaction() const { return transaction_.current; }
  const std::filesystem::path& SaveAsPath() const { return save_as_path_; }
  const std::string& SaveAsName() const { return save_as_name_; }

  // What the views stand on now, whatever the paths say.
  const BoundDatabase& Bound(DatabaseKind kind) const;

  void NewRecipeDatabase() { New(recipe_); }
  void NewTransactionDatabase() { New(transaction_); }
  void BrowseRecipeDatabase() { Browse(recipe_); }
  void BrowseTransactionDatabase() { Browse(transaction_); }

  // The path of the side stays what it is.
  void OpenRecipeDatabase(const std::filesystem::path& path, const std::string& name) {
    Open(recipe_, path, name);
  }
  void OpenTransactionDatabase(const std::filesystem::path& path, const std::string& name) {
    Open(transaction_, path, name);
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

  // A record has changed: `Modified` becomes today. False: that failed, and the operator was told.
  bool TouchRecipeDatabase() { return Touch(recipe_); }
  bool TouchTransactionDatabase() { return Touch(transaction_); }

  // The tab strip takes the focus: a file whose unit is not the system's takes that without a word.
  void TakeSystemUnits();

  // Paths and names of the last run, with nothing opened.
  void Recall(DatabaseKind kind, const std::filesystem::path& path, const std::string& name);

  // The program ends: views and connections go.
  void Release();

 private:
  struct Side {
    DatabaseKind kind;
    CurrentDatabase current = {};
    BoundDatabase bound = {};
    BoundDatabase forsaken = {};  // views that failed to move may stand on it still
    bool moving = false;          // the views are being rebound
  };
  struct Manner;
  static const Manner& MannerOf(const Side& side);

  void New(Side& side);
  void ShowNew(Side& side);
  void Browse(Side& side);
  void Open(Side& side, std::filesystem::path path, std::string name);
  // False: nothing is to be opened. Path and name become those of the copy that was made.
  bool PassEarlier(Side& side, std::filesystem::path& path, std::string& name);
  bool IsUserDatabase(const Side& side, const std::filesystem::path& path, const std::string& name);
  void FinishRecipeOpen(Side& side, const std::filesystem::path& path, const std::string& name);
  void FinishTransactionOpen(Side& side, const std::filesystem::path& path,
                             const std::string& name);
  void ShowOpened(Side& side, const std::filesystem::path& path, const std::string& name);
  void Close(Side& side);
  void BindBlank(Side& side);
  void Save(Side& side);
  bool AskSaveAs(Side& side);
  void SaveAs(Side& side);
  void RequireUnbound(const std::filesystem::path& target) const;
  bool Touch(Side& side);

  void Bind(Side& side, BoundDatabase next);
  void SetCommandsAside(const Side& side);
  void StandBy(const Side& side, std::string_view text);
  void ClearPanels(const Side& side, std::initializer_list<StatusPanel> panels);
  void ShowPanel(const Side& side, StatusPanel panel, std::string_view text);
  void EnableCommands(const Side& side);
  void DisableCommands(const Side& side);

  template <typename Body>
  void Trapped(std::string_view title, const Body& body);

  Ports ports_;
  std::chrono::milliseconds busy_timeout_;
  Side recipe_{DatabaseKind::kRecipe};
  Side transaction_{DatabaseKind::kTransaction};
  std::filesystem::path save_as_path_;
  std::string save_as_name_;
};

}  // namespace vrx
