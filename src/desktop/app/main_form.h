#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "database/lock_wait.h"
#include "desktop/app/operator_actions.h"
#include "desktop/app/qt_services.h"
#include "desktop/dialogs/conversion.h"
#include "desktop/history/export_page.h"
#include "desktop/history/history_page.h"
#include "desktop/insight/insight_page.h"
#include "desktop/main_window/main_window.h"
#include "desktop/print/print_commands.h"
#include "desktop/print/text_printer.h"
#include "desktop/recipes/recipes_page.h"
#include "desktop/records/ingredients_page.h"
#include "desktop/records/pens_page.h"
#include "desktop/setup/setup_form.h"
#include "desktop/transfer/data_transfer_page.h"
#include "desktop/transfer/import_page.h"
#include "export/html_export.h"
#include "feed/key_filters.h"
#include "link/krmcomm.h"
#include "platform/serial_control.h"
#include "platform/user_settings.h"
#include "presenter/central_push.h"
#include "presenter/command_states.h"
#include "presenter/database_commands.h"
#include "presenter/first_steps.h"
#include "presenter/legacy_conversion.h"
#include "presenter/open_files.h"
#include "presenter/recent_databases.h"
#include "presenter/recent_files.h"
#include "presenter/services.h"
#include "presenter/undo_commands.h"

namespace vrx {

class CentralDialog;

// How the program ends: close box, File > Exit, end of the session. The exit runs after all nested
// waits have returned.
enum class ExitReason { kCloseBox, kFileExit, kSessionEnd };

// What one action of the operator may wait for other programs' locks in total. The window is frozen
// meanwhile; with the rest of the action this stays below 2 s.
inline constexpr std::chrono::milliseconds kLongestLockWait{1500};

// In twips, 1440 to the inch.
struct WindowPlace {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
};

// A database as the next start recalls it; both texts are empty for none.
struct RecentFile {
  std::string path;
  std::string name;  // in upper case
};

// The main form, as start and exit use it; an interface for their tests, which record the steps and
// let each of them fail. The functions before Place throw nothing.
class ProgramForm {
 public:
  virtual ~ProgramForm() = default;

  virtual void Show() = 0;

  // Opens the files once the window has been activated and shows no dialog. Returns at once.
  virtual void OpenFilesLater(const std::vector<std::filesystem::path>& files) = 0;

  // Stores the pending edits, or asks the operator about them. Returns false if the operator stays.
  virtual bool LeaveEdits() = 0;

  // The end of the program, in the order of the calls.
  virtual void CloseSerialPort() = 0;  // without a wait
  virtual void UnloadSetup() = 0;      // does nothing if it is not loaded
  [[nodiscard]] virtual std::optional<WindowPlace> Place() const = 0;  // nothing while minimized
  [[nodiscard]] virtual RecentFile Recent(DatabaseKind kind) const = 0;
  virtual void CloseDatabase(DatabaseKind kind) = 0;
  virtual void ReleaseDataControls() = 0;
  virtual void UnloadOpenForms() = 0;  // all but the main window
  virtual void Unload() = 0;           // hides the main window
};

// The form `VRXMAIN`: its window, the pages of its tabs and the presenters. The constructor is its
// Load: both databases are closed after it, and the Data Transfer tab is current.
class MainForm : public QObject,
                 public ProgramForm,
                 private OpenFilesView,
                 private CentralPushView {
  Q_OBJECT

 public:
  // Everything outlives it. `lock_waits` limits the waits of every connection of the window, also
  // those of the services' `identity`. `exit` starts the exit and returns.
  MainForm(Services& services, WaitBudget& lock_waits, UserSettings& user_settings,
           SerialControl& serial, const CPrivateINI& ini, std::function<void(ExitReason)> exit);

  // The pages belong to the window, which lives longer than the databases: releases their views.
  ~MainForm() override;

  MainWindow& Window() { return window_; }
  DatabaseCommands& Databases() { return databases_; }

  // Shows the status line of this operator, and Setup when its messages ask for it.
  void Serve(const QtOperator& op);

  // ProgramForm.
  void Show() override;
  void OpenFilesLater(const std::vector<std::filesystem::path>& files) override;
  bool LeaveEdits() override { return window_.LeaveEdits(); }
  void CloseSerialPort() override { krm_.KRM_ImmediateClose(); }
  void UnloadSetup() override;
  [[nodiscard]] std::optional<WindowPlace> Place() const override;
  [[nodiscard]] RecentFile Recent(DatabaseKind kind) const override;
  void CloseDatabase(DatabaseKind kind) override;
  void ReleaseDataControls() override { databases_.Release(); }
  void UnloadOpenForms() override;
  void Unload() override;

 private:
  struct RecordPages {  // null once they are deleted
    QPointer<IngredientsPage> ingredients;
    QPointer<RecipesPage> recipes;
    QPointer<PensPage> pens;
  };

  void Connect();
  void SetHandlers();
  void Load();
  void ReportLostEdits();
  void Paint();
  void Activate();
  void Leave(ExitReason reason);
  void ToggleAutoAbbreviate();
  void ShowAutoAbbreviate(bool on);
  void MakeRecipeDatabase();
  void MakeTransactionDatabase();
  void Refresh();

  // The tabs of ingredients, recipes and pens, with the buttons that work on the current one.
  RecordPages AddRecordPages();
  void AddRecordPage(int tab, RecordPage& page);
  [[nodiscard]] RecordPage* RecordPageOf(int tab) const;  // nullptr for the other tabs
  RecordPage* CurrentRecordPage();
  void Act(int button);
  void CompareRecipes();
  void ShowUndo();
  void Restore(bool undo);
  void Navigate(int button);
  void TurnPage(int button);
  void CountLoaded();

  // The tabs Data Transfer and Import and the form `SETUP`, which use the serial port and files of
  // the indicator.
  void AddTransferPages();
  void GoToRecipe(int position);
  void ShowLine();
  enum class SetupStart { kFirstTab, kPort };
  // Returns whether the operator left the form with OK.
  bool ShowSetup(SetupStart start = SetupStart::kFirstTab);
  void ShowPortSetup();
  [[nodiscard]] SetupFacts Facts() const;

  // Files that are chosen without a dialog, and the first screen.
  void ConnectFiles();
  void AddFirstScreen();
  void TakeFirstStep(FirstStep step);
  void OpenPendingFiles();
  void ImportTransactionFile(const std::filesystem::path& path) override;
  void OpenRecipeBackup(const std::filesystem::path& path) override;

  // The central database: its sign in the status bar, its form, and the pushes.
  void AddCentral();
  void ShowCentral();
  void CentralChanged() override;

  // The tabs Batched/Fed, Export and Insight.
  void AddHistoryPages();
  void AddInsightPage();
  [[nodiscard]] bool ActiveIngredientsOnly() const;

  Services& services_;
  WaitBudget& lock_waits_;
  const CPrivateINI& ini_;
  std::function<void(ExitReason)> exit_;
  OperatorActions actions_;
  MainWindow window_;
  GeneralDelay delay_;
  QtConversionDisplay conversion_;
  ConversionOffer legacy_;
  DatabaseCommands databases_;
  RecentDatabases recent_;
  RecentFiles recent_files_;
  OpenFiles open_files_;
  FirstSteps first_steps_;
  std::vector<std::filesystem::path> pending_files_;
  QTimer pending_timer_;
  AutoAbbreviation abbreviation_;
  UndoCommands undo_;
  RecordPages record_pages_;
  int records_loaded_ = 0;
  QPointer<QWidget> turning_field_;   // has the focus in each record that is shown by a key
  QPointer<QWidget> stand_in_field_;  // while that field is closed
  KRMCOMM krm_;
  QtTextPrinter text_printer_;
  DataTransferPage* data_transfer_;
  ImportPage* import_;
  SetupForm* setup_ = nullptr;      // while it is shown
  bool port_setup_wanted_ = false;  // once the line is free
  LineGuard::Watch line_watch_;
  StyleSheets style_sheets_;
  HistoryPage* history_;
  InsightPage* insight_;
  PrintCommands print_;
  std::string machine_;  // ID of this computer
  CentralPush central_;
  CentralDialog* central_dialog_ = nullptr;  // while it is shown
  bool first_paint_ = true;
  bool activated_ = false;
};

}  // namespace vrx
