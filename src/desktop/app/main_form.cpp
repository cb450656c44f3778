#include "desktop/app/main_form.h"

#include <QApplication>
#include <QPushButton>
#include <array>
#include <chrono>
#include <string>
#include <utility>

#include "base/text.h"
#include "desktop/app/lost_edits.h"
#include "desktop/dialogs/about_and_splash.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

using enum MainCommand;

struct DatabaseCommand {
  MainCommand command;
  void (DatabaseCommands::*flow)();
};

constexpr std::array<DatabaseCommand, 10> kDatabaseCommands{{
    {kNewRecipeDatabase, &DatabaseCommands::NewRecipeDatabase},
    {kNewTransactionDatabase, &DatabaseCommands::NewTransactionDatabase},
    {kBrowseRecipeDatabase, &DatabaseCommands::BrowseRecipeDatabase},
    {kBrowseTransactionDatabase, &DatabaseCommands::BrowseTransactionDatabase},
    {kCloseRecipeDatabase, &DatabaseCommands::CloseRecipeDatabase},
    {kCloseTransactionDatabase, &DatabaseCommands::CloseTransactionDatabase},
    {kSaveRecipeDatabase, &DatabaseCommands::SaveRecipeDatabase},
    {kSaveTransactionDatabase, &DatabaseCommands::SaveTransactionDatabase},
    {kSaveAsRecipeDatabase, &DatabaseCommands::SaveAsRecipeCommand},
    {kSaveAsTransactionDatabase, &DatabaseCommands::SaveAsTransactionCommand},
}};

constexpr std::array<std::pair<MainCommand, int>, 4> kTabCommands{{
    {kEditIngredients, kTabIngredients},
    {kEditRecipes, kTabRecipes},
    {kEditPens, kTabPens},
    {kViewTransactions, kTabBatchedFed},
}};

constexpr std::array<std::pair<MainCommand, const char*>, 2> kTransferCommands{{
    {kTransferUpload, "cmdUploadDataFromKRM"},
    {kTransferDownload, "cmdDownloadRecipeToKRM"},
}};

// What one action of the operator may wait for other programs' locks, in all. The window stands
// still meanwhile; with what else the action does that stays below 2 s.
constexpr std::chrono::milliseconds kLongestLockWait{1500};

constexpr int kTwipsPerPixel = 15;  // 1440 to the inch, 96 logical pixels to the inch

}  // namespace

VrxMain::VrxMain(const Ports& ports)
    : ports_(ports),
      lock_waits_(kLongestLockWait),
      actions_([this] { lock_waits_.Renew(); }),
      window_(ports.settings, ports.calendar),
      delay_(ports.pump),
      identity_(ports.op, ports.calendar, ports.settings, lock_waits_),
      conversion_(window_, ports.files, ports.op),
      earlier_({.op = ports.op,
                .files = ports.files,
                .system = ports.system,
                .app_folder = ports.app_folder,
                .settings = ports.settings,
                .pump = ports.pump,
                .runner = runner_,
                .display = conversion_}),
      databases_({.op = ports.op,
                  .files = ports.files,
                  .system = ports.system,
                  .app_folder = ports.app_folder,
                  .settings = ports.settings,
                  .calendar = ports.calendar,
                  .identity = identity_,
                  .delay = delay_,
                  .commands = window_.Commands(),
                  .tabs = window_.Tabs(),
                  .window = window_,
                  .earlier = &earlier_},
                 lock_waits_),
      recent_(ports.user_settings, ports.settings, databases_),
      records_({.feed = {.op = ports.op,
                         .settings = ports.settings,
                         .calendar = ports.calendar,
                         .identity = identity_},
                .delay = delay_,
                .databases = databases_,
                .window = window_}),
      transfer_({.op = ports.op,
                 .files = ports.files,
                 .calendar = ports.calendar,
                 .system = ports.system,
                 .pump = ports.pump,
                 .serial = ports.serial,
                 .app_folder = ports.app_folder,
                 .settings = ports.settings,
                 .identity = identity_,
                 .databases = databases_,
                 .window = window_}),
      history_({.op = ports.op,
                .files = ports.files,
                .system = ports.system,
                .pump = ports.pump,
                .app_folder = ports.app_folder,
                .settings = ports.settings,
                .identity = identity_,
                .databases = databases_,
                .window = window_,
                .configure_import_columns = [this] { transfer_.ConfigureImportColumns(); }}),
      print_({.op = ports.op,
              .files = ports.files,
              .settings = ports.settings,
              .calendar = ports.calendar,
              .pump = ports.pump,
              .databases = databases_,
              .transfer = transfer_,
              .history = history_,
              .window = window_}) {
  Connect();
  SetHandlers();
  Load();
}

void VrxMain::Connect() {
  connect(&window_, &MainWindow::Painted, this, &VrxMain::Paint);
  // Not from within the event: what is opened lets events run.
  connect(&window_, &MainWindow::Activated, this, &VrxMain::Activate, Qt::QueuedConnection);
  connect(&window_, &MainWindow::CloseRequested, this, [this] {
    if (transfer_.MayLeave()) {
      ports_.exit.CloseBox();
    }
  });
  connect(&window_, &MainWindow::StripFocused, this, [this] { databases_.AskAboutUnits(); });
  window_.SetPrintSources([this] {
    return PrintSources{.recipe_database = databases_.IsOpen(DatabaseKind::kRecipe),
                        .transaction_database = databases_.IsOpen(DatabaseKind::kTransaction),
                        .transaction_file = !transfer_.Import().File().FileName().empty()};
  });
}

void VrxMain::SetHandlers() {
  for (const auto& [command, flow] : kDatabaseCommands) {
    window_.SetHandler(command, [this, flow = flow] { (databases_.*flow)(); });
  }
  for (const auto& [command, tab] : kTabCommands) {
    window_.SetHandler(command, [this, tab = tab] { window_.ChooseTab(tab); });
  }
  for (const auto& [command, button] : kTransferCommands) {
    window_.SetHandler(command, [this, button = button] { GoToTransfer(button); });
  }
  window_.SetHandler(kAutoAbbreviate, [this] { ToggleAutoAbbreviate(); });
  window_.SetHandler(kCalendar, [this] { window_.ToggleCalendar(); });
  window_.SetHandler(kExit, [this] {
    if (transfer_.MayLeave()) {
      ports_.exit.FileExit();
    }
  });
}

void VrxMain::Load() {
  window_.ApplyCaptions();
  window_.SetStatusLine({});
  if (!ports_.settings.SettingsReadOk()) {
    ports_.op.ShowMessage(
        {.icon = Icon::kWarning,
         .title = "INI File Error",
         .text = "Unable to read some or all of the application settings from the applications INI "
                 "file. Please check all settings.",
         .cause = ports_.settings.FailureCause()});
  }
  ports_.settings.ReportRefusedUnit(ports_.op);
  databases_.CloseRecipeDatabase();
  databases_.CloseTransactionDatabase();
  window_.UpdateAutoAbbrevUI(ports_.settings.AutoAbbreviateOn());
  window_.Tabs().SelectTab(kTabIngredients);
  window_.Commands().DisableRecipeCommands();
  window_.Commands().DisableTransactionCommands();
  window_.Tabs().SelectTab(kTabDataTransfer);
  recent_.Load();
  ReportLostEdits();
}

void VrxMain::Paint() {
  window_.ShowSystemUnits();
  window_.ShowTransferOption();
  if (std::exchange(first_paint_, false)) {
    BeepIfEnabled(ports_.op, ports_.settings);
  }
  window_.ShowToday();
}

void VrxMain::Activate() {
  recent_.Activate();
  window_.PageActivated();
  window_.ShowTransferOption();
  window_.ShowSystemUnits();
}

void VrxMain::GoToTransfer(const char* button) {
  window_.Tabs().SelectTab(kTabDataTransfer);
  auto* const target = window_.findChild<QPushButton*>(QLatin1String(button));
  if (target != nullptr && target->isEnabled() && target->isVisible()) {
    target->setFocus();
  }
}

// The file holds it at once, unlike the other settings.
void VrxMain::ToggleAutoAbbreviate() {
  const bool on = !ports_.settings.AutoAbbreviateOn();
  ports_.settings.SetAutoAbbreviateOn(on);
  std::string cause;
  const bool written =
      ports_.ini.WriteKey("Configuration", "AutoAbbreviate", on ? "YES" : "NO", &cause);
  window_.UpdateAutoAbbrevUI(on);
  if (!written) {
    ports_.op.ShowMessage({.icon = Icon::kWarning,
                           .title = "INI File Error",
                           .text = "Unable to save the setting to the applications INI file.",
                           .cause = cause});
  }
}

std::optional<WindowPlace> VrxMain::Place() const {
  if (window_.isMinimized()) {
    return std::nullopt;
  }
  const QRect frame = window_.frameGeometry();
  return WindowPlace{.left = frame.left() * kTwipsPerPixel,
                     .top = frame.top() * kTwipsPerPixel,
                     .width = frame.width() * kTwipsPerPixel,
                     .height = frame.height() * kTwipsPerPixel};
}

RecentFile VrxMain::Recent(DatabaseKind kind) const {
  const CurrentDatabase& current =
      kind == DatabaseKind::kRecipe ? databases_.Recipe() : databases_.Transaction();
  return {.path = current.path.string(), .name = current.name};
}

void VrxMain::Unload() {
  transfer_.KeepReceived();
  window_.hide();
}

// By now the operator was asked, or nobody can be.
void VrxMain::CloseRecipeDatabase() {
  KeepLostEdits(window_.EndEdits(), ports_.app_folder.DefaultAppPath());
  databases_.CloseRecipeDatabase();
}

void VrxMain::ReportLostEdits() {
  const std::filesystem::path folder = ports_.app_folder.DefaultAppPath();
  const std::string lost = ReadLostEdits(folder);
  if (lost.empty()) {
    return;
  }
  ports_.op.ShowMessage({.icon = Icon::kWarning,
                         .title = "Edit (Error)",
                         .text = "The program was ended before this could be stored:\r\n" + lost +
                                 "Please enter it again."});
  RemoveLostEdits(folder);
}

void VrxMain::UnloadOpenForms() {
  for (QWidget* form : QApplication::topLevelWidgets()) {
    if (form != &window_ && form->isVisible()) {
      form->close();
    }
  }
}

std::unique_ptr<MainForm> MakeVrxMain(const DesktopContext& context) {
  auto form = std::make_unique<VrxMain>(VrxMain::Ports{.op = context.op,
                                                       .files = context.files,
                                                       .user_settings = context.user_settings,
                                                       .calendar = context.calendar,
                                                       .system = context.system,
                                                       .pump = context.pump,
                                                       .serial = context.serial,
                                                       .app_folder = context.application.app_folder,
                                                       .ini = *context.application.ini,
                                                       .settings = context.application.settings,
                                                       .exit = context.exit});
  QObject::connect(&context.op, &QtOperator::StatusLineChanged, &form->Window(),
                   &MainWindow::SetStatusLine);
  QObject::connect(&context.op, &QtOperator::StatusColorChanged, &form->Window(),
                   &MainWindow::SetStatusColor);
  SetHelpHandlers(form->Window(), context.system, context.os, context.op);
  return form;
}

}  // namespace vrx
