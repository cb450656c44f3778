#pragma once

#include <memory>
#include <optional>

#include "database/identity.h"
#include "database/lock_wait.h"
#include "desktop/app/desktop_context.h"
#include "desktop/app/history_tabs.h"
#include "desktop/app/main_form_interface.h"
#include "desktop/app/operator_actions.h"
#include "desktop/app/record_tabs.h"
#include "desktop/app/transfer_tabs.h"
#include "desktop/dialogs/conversion.h"
#include "desktop/main_window/main_window.h"
#include "desktop/print/print_commands.h"
#include "presenter/command_states.h"
#include "presenter/database_commands.h"
#include "presenter/legacy_conversion.h"
#include "presenter/recent_databases.h"
#include "presenter/services.h"

namespace vrx {

// The form `VRXMAIN`: its window and the flows behind that. Making it is its Load, after which both
// databases are closed and the Data Transfer tab is on show.
class VrxMain : public QObject, public MainForm {
  Q_OBJECT

 public:
  // Everything outlives it, and the lock waits every connection of the window. `identity` of the
  // services takes its waits from them too.
  VrxMain(Services& services, WaitBudget& lock_waits, UserSettings& user_settings,
          SerialControl& serial, const CPrivateINI& ini, ExitRoads& exit);

  MainWindow& Window() { return window_; }
  DatabaseCommands& Databases() { return databases_; }

  // MainForm.
  void Show() override {
    window_.FitIntoScreen();
    window_.show();
  }
  bool LeaveEdits() override { return window_.LeaveEdits(); }
  void CloseSerialPort() override { transfer_.CloseSerialPort(); }
  void UnloadSetup() override { transfer_.UnloadSetup(); }
  std::optional<WindowPlace> Place() const override;
  RecentFile Recent(DatabaseKind kind) const override;
  void CloseRecipeDatabase() override;
  void CloseTransactionDatabase() override { databases_.CloseTransactionDatabase(); }
  void ReleaseDataControls() override { databases_.Release(); }
  void ClearIngredientDropDown() override {}
  void UnloadOpenForms() override;
  void Unload() override;

 private:
  void Connect();
  void SetHandlers();
  void Load();
  void ReportLostEdits();
  void Paint();
  void Activate();
  void GoToTransfer(const char* button);
  void ToggleAutoAbbreviate();

  Services& services_;
  WaitBudget& lock_waits_;
  const CPrivateINI& ini_;
  ExitRoads& exit_;
  OperatorActions actions_;
  MainWindow window_;
  GeneralDelay delay_;
  QtConversionDisplay conversion_;
  ConversionOffer legacy_;
  DatabaseCommands databases_;
  RecentDatabases recent_;
  RecordTabs records_;
  TransferTabs transfer_;
  HistoryTabs history_;
  PrintCommands print_;
  bool first_paint_ = true;
};

// Makes `VRXMAIN` for the program.
std::unique_ptr<MainForm> MakeVrxMain(const DesktopContext& context);

}  // namespace vrx
