#include "desktop/app/main_form.h"

#include <QApplication>
#include <QPushButton>
#include <array>
#include <string>
#include <utility>

#include "base/text.h"
#include "desktop/app/lost_edits.h"
#include "desktop/dialogs/about_and_splash.h"
#include "settings/settings.h"
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

constexpr int kTwipsPerPixel = 15;  // 1440 to the inch, 96 logical pixels to the inch

}  // namespace

VrxMain::VrxMain(Services& services, WaitBudget& lock_waits, UserSettings& user_settings,
                 SerialControl& serial, const CPrivateINI& ini, ExitRoads& exit)
    : services_(services),
      lock_waits_(lock_waits),
      ini_(ini),
      exit_(exit),
      actions_([this] { lock_waits_.Renew(); }),
      window_(services.settings, services.calendar),
      delay_(services.pump),
      conversion_(window_, services.files, services.op),
      legacy_(services, conversion_),
      databases_(services, delay_, window_.Commands(), window_.Tabs(), window_, &legacy_),
      recent_(user_settings, services.settings, databases_),
      records_(services, delay_, window_),
      transfer_(services, serial, databases_, window_),
      history_(services, databases_, window_, [this] { transfer_.ConfigureImportColumns(); }),
      print_(services, databases_, transfer_.Import(), history_.History(), window_) {
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
      exit_.CloseBox();
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
      exit_.FileExit();
    }
  });
}

void VrxMain::Load() {
  window_.ApplyCaptions();
  window_.SetStatusLine({});
  if (!services_.settings.SettingsReadOk()) {
    services_.op.ShowMessage(
        {.icon = Icon::kWarning,
         .title = "INI File Error",
         .text = "Unable to read some or all of the application settings from the applications INI "
                 "file. Please check all settings.",
         .cause = services_.settings.FailureCause()});
  }
  services_.settings.ReportRefusedUnit(services_.op);
  databases_.CloseRecipeDatabase();
  databases_.CloseTransactionDatabase();
  window_.UpdateAutoAbbrevUI(services_.settings.AutoAbbreviateOn());
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
    BeepIfEnabled(services_.op, services_.settings);
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
  const bool on = !services_.settings.AutoAbbreviateOn();
  services_.settings.SetAutoAbbreviateOn(on);
  std::string cause;
  const bool written = ini_.WriteKey("Configuration", "AutoAbbreviate", on ? "YES" : "NO", &cause);
  window_.UpdateAutoAbbrevUI(on);
  if (!written) {
    services_.op.ShowMessage({.icon = Icon::kWarning,
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
  KeepLostEdits(window_.EndEdits(), services_.folder.DefaultAppPath());
  databases_.CloseRecipeDatabase();
}

void VrxMain::ReportLostEdits() {
  const std::filesystem::path folder = services_.folder.DefaultAppPath();
  const std::string lost = ReadLostEdits(folder);
  if (lost.empty()) {
    return;
  }
  services_.op.ShowMessage({.icon = Icon::kWarning,
                            .title = "Edit (Error)",
                            .text = "The program was ended before this could be stored:\r\n" +
                                    lost + "Please enter it again."});
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
  auto form = std::make_unique<VrxMain>(context.services, context.lock_waits, context.user_settings,
                                        context.serial, *context.application.ini, context.exit);
  QObject::connect(&context.op, &QtOperator::StatusLineChanged, &form->Window(),
                   &MainWindow::SetStatusLine);
  QObject::connect(&context.op, &QtOperator::StatusColorChanged, &form->Window(),
                   &MainWindow::SetStatusColor);
  SetHelpHandlers(form->Window(), context.services.system, context.os, context.op);
  return form;
}

}  // namespace vrx
