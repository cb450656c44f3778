#include "desktop/app/main_form.h"

#include <QApplication>
#include <array>
#include <filesystem>
#include <string>
#include <utility>

#include "adapters/linux_machine.h"
#include "base/translation.h"
#include "database/identity.h"
#include "desktop/app/lost_edits.h"
#include "presenter/report_failure.h"
#include "settings/settings.h"

namespace vrx {
namespace {

struct DatabaseCommand {
  MainCommand command;
  void (DatabaseCommands::*flow)();
};

constexpr std::array<DatabaseCommand, 8> kDatabaseCommands{{
    {MainCommand::kBrowseRecipeDatabase, &DatabaseCommands::BrowseRecipeDatabase},
    {MainCommand::kBrowseTransactionDatabase, &DatabaseCommands::BrowseTransactionDatabase},
    {MainCommand::kCloseRecipeDatabase, &DatabaseCommands::CloseRecipeDatabase},
    {MainCommand::kCloseTransactionDatabase, &DatabaseCommands::CloseTransactionDatabase},
    {MainCommand::kSaveRecipeDatabase, &DatabaseCommands::SaveRecipeDatabase},
    {MainCommand::kSaveTransactionDatabase, &DatabaseCommands::SaveTransactionDatabase},
    {MainCommand::kSaveAsRecipeDatabase, &DatabaseCommands::SaveAsRecipeCommand},
    {MainCommand::kSaveAsTransactionDatabase, &DatabaseCommands::SaveAsTransactionCommand},
}};

constexpr std::array<std::pair<MainCommand, int>, 4> kTabCommands{{
    {MainCommand::kEditIngredients, kTabIngredients},
    {MainCommand::kEditRecipes, kTabRecipes},
    {MainCommand::kEditPens, kTabPens},
    {MainCommand::kViewTransactions, kTabBatchedFed},
}};

constexpr int kTwipsPerPixel = 15;  // 1440 to the inch, 96 logical pixels to the inch

}  // namespace

MainForm::MainForm(Services& services, WaitBudget& lock_waits, UserSettings& user_settings,
                   SerialControl& serial, const CPrivateINI& ini,
                   std::function<void(ExitReason)> exit)
    : services_(services),
      lock_waits_(lock_waits),
      ini_(ini),
      exit_(std::move(exit)),
      actions_([this] { lock_waits_.Renew(); }),
      window_(services.settings, services.calendar),
      delay_(services.pump),
      conversion_(window_, services.files, services.op),
      legacy_(services, conversion_),
      databases_(services, delay_, window_.Commands(), window_.Tabs(), window_, &legacy_),
      recent_(user_settings, services.settings, databases_),
      recent_files_(user_settings),
      open_files_(services, databases_, recent_files_, *this),
      first_steps_(services, user_settings, databases_),
      undo_(services),
      record_pages_(AddRecordPages()),
      krm_(serial, services.pump, services.op, services.settings),
      data_transfer_(new DataTransferPage(
          services, krm_, databases_, [this](int position) { GoToRecipe(position); },
          window_.Panels().PicTransferStatus(), text_printer_)),
      import_(new ImportPage(
          services, databases_, window_.Tabs(), [this] { return ActiveIngredientsOnly(); },
          window_.Panels().PicImport())),
      style_sheets_(services.folder.DefaultAppPath(), services.system, services.op),
      history_(new HistoryPage(services, [this] { return ActiveIngredientsOnly(); })),
      insight_(new InsightPage(services)),
      print_(services, databases_,
             {.ingredients = *record_pages_.ingredients,
              .recipes = *record_pages_.recipes,
              .pens = *record_pages_.pens,
              .history = *history_,
              .insight = *insight_,
              .import = *import_},
             window_),
      machine_(MachineId()),
      central_(services, ini, machine_, *this) {
  AddTransferPages();
  AddHistoryPages();
  AddInsightPage();
  AddCentral();
  Connect();
  ConnectFiles();
  SetHandlers();
  Load();
}

MainForm::~MainForm() {
  history_->ReleaseViews();
  insight_->ReleaseViews();
  for (const int tab : {kTabIngredients, kTabRecipes, kTabPens}) {
    if (RecordPage* const page = RecordPageOf(tab); page != nullptr) {
      page->ReleaseViews();
    }
  }
}

void MainForm::Serve(const QtOperator& op) {
  connect(&op, &QtOperator::StatusLineChanged, &window_, &MainWindow::SetStatusLine);
  connect(&op, &QtOperator::StatusColorChanged, &window_, &MainWindow::SetStatusColor);
  connect(&op, &QtOperator::PortSetupRequested, this, [this] {
    port_setup_wanted_ = true;
    ShowPortSetup();
  });
}

void MainForm::Connect() {
  connect(&window_, &MainWindow::Painted, this, &MainForm::Paint);
  // Not from within the event: what is opened lets events run.
  connect(&window_, &MainWindow::Activated, this, &MainForm::Activate, Qt::QueuedConnection);
  connect(&window_, &MainWindow::CloseRequested, this, [this] { Leave(ExitReason::kCloseBox); });
  connect(&window_, &MainWindow::StripFocused, this, [this] { databases_.AskAboutUnits(); });
  window_.SetPrintSources([this] {
    return PrintSources{.recipe_database = databases_.IsOpen(DatabaseKind::kRecipe),
                        .transaction_database = databases_.IsOpen(DatabaseKind::kTransaction),
                        .transaction_file = !import_->Session().File().FileName().empty()};
  });
}

void MainForm::SetHandlers() {
  for (const auto& [command, flow] : kDatabaseCommands) {
    window_.SetHandler(command, [this, flow = flow] { (databases_.*flow)(); });
  }
  window_.SetHandler(MainCommand::kNewRecipeDatabase, [this] { MakeRecipeDatabase(); });
  window_.SetHandler(MainCommand::kNewTransactionDatabase, [this] { MakeTransactionDatabase(); });
  for (const auto& [command, tab] : kTabCommands) {
    window_.SetHandler(command, [this, tab = tab] { window_.ChooseTab(tab); });
  }
  window_.SetHandler(MainCommand::kTransferUpload, [this] {
    window_.Tabs().SelectTab(kTabDataTransfer);
    data_transfer_->FocusUpload();
  });
  window_.SetHandler(MainCommand::kTransferDownload, [this] {
    window_.Tabs().SelectTab(kTabDataTransfer);
    data_transfer_->FocusDownload();
  });
  window_.SetHandler(MainCommand::kAutoAbbreviate, [this] { ToggleAutoAbbreviate(); });
  window_.SetHandler(MainCommand::kCalendar, [this] { window_.ToggleCalendar(); });
  window_.SetHandler(MainCommand::kRefresh, [this] { Refresh(); });
  window_.SetHandler(MainCommand::kExit, [this] { Leave(ExitReason::kFileExit); });
}

void MainForm::Leave(ExitReason reason) {
  if (data_transfer_->MayLeave()) {
    exit_(reason);
  }
}

void MainForm::Load() {
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
  ShowAutoAbbreviate(services_.settings.AutoAbbreviateOn());
  window_.Tabs().SelectTab(kTabIngredients);
  window_.Commands().DisableRecipeCommands();
  window_.Commands().DisableTransactionCommands();
  window_.Tabs().SelectTab(kTabDataTransfer);
  recent_.Load();
  ReportLostEdits();
}

void MainForm::Paint() {
  window_.ShowSystemUnits();
  window_.ShowTransferOption();
  if (std::exchange(first_paint_, false)) {
    BeepIfEnabled(services_.op, services_.settings);
  }
  window_.ShowToday();
}

void MainForm::Activate() {
  recent_.Activate();
  activated_ = true;
  OpenPendingFiles();
  window_.PageActivated();
  window_.ShowTransferOption();
  window_.ShowSystemUnits();
}

void MainForm::ShowAutoAbbreviate(bool on) {
  window_.UpdateAutoAbbrevUI(on);
  for (const int tab : {kTabIngredients, kTabRecipes, kTabPens}) {
    RecordPageOf(tab)->OrderFields(on);
  }
}

// The file holds it at once, unlike the other settings.
void MainForm::ToggleAutoAbbreviate() {
  const bool on = !services_.settings.AutoAbbreviateOn();
  services_.settings.SetAutoAbbreviateOn(on);
  std::string cause;
  const bool written = ini_.WriteKey("Configuration", "AutoAbbreviate", on ? "YES" : "NO", &cause);
  ShowAutoAbbreviate(on);
  if (!written) {
    services_.op.ShowMessage(
        {.icon = Icon::kWarning,
         .title = "INI File Error",
         .text = Tr("Unable to save the setting to the applications INI file."),
         .cause = cause});
  }
}

// Reads the open databases again, as another program may have changed them, and keeps the records
// that are shown.
void MainForm::Refresh() {
  for (const DatabaseKind kind : {DatabaseKind::kRecipe, DatabaseKind::kTransaction}) {
    if (!databases_.IsOpen(kind)) {
      continue;
    }
    std::array<int, 3> positions{};
    for (const int tab : {kTabIngredients, kTabRecipes, kTabPens}) {
      positions.at(static_cast<std::size_t>(tab)) = RecordPageOf(tab)->Position();
    }
    RunReported(services_.op, {.title = TextsOf(kind).open_failure}, [&] {
      databases_.ReloadViews(kind);
      for (const int tab : {kTabIngredients, kTabRecipes, kTabPens}) {
        if (const int position = positions.at(static_cast<std::size_t>(tab)); position > 0) {
          RecordPageOf(tab)->GoTo(position);
        }
      }
      databases_.ShowModifiedDate(kind);
    });
  }
}

void MainForm::Show() {
  window_.FitIntoScreen();
  window_.show();
}

std::optional<WindowPlace> MainForm::Place() const {
  if (window_.isMinimized()) {
    return std::nullopt;
  }
  const QRect frame = window_.frameGeometry();
  return WindowPlace{.left = frame.left() * kTwipsPerPixel,
                     .top = frame.top() * kTwipsPerPixel,
                     .width = frame.width() * kTwipsPerPixel,
                     .height = frame.height() * kTwipsPerPixel};
}

RecentFile MainForm::Recent(DatabaseKind kind) const {
  const CurrentDatabase& current =
      kind == DatabaseKind::kRecipe ? databases_.Recipe() : databases_.Transaction();
  return {.path = current.path.string(), .name = current.name};
}

void MainForm::Unload() {
  data_transfer_->KeepReceived();
  window_.hide();
}

// The operator was asked about pending edits before, or cannot be asked.
void MainForm::CloseDatabase(DatabaseKind kind) {
  if (kind == DatabaseKind::kRecipe) {
    KeepLostEdits(window_.EndEdits(), services_.folder.DefaultAppPath());
    databases_.CloseRecipeDatabase();
  } else {
    databases_.CloseTransactionDatabase();
  }
}

void MainForm::ReportLostEdits() {
  const std::filesystem::path folder = services_.folder.DefaultAppPath();
  const std::string lost = ReadLostEdits(folder);
  if (lost.empty()) {
    return;
  }
  services_.op.ShowMessage({.icon = Icon::kWarning,
                            .title = Tr("Edit (Error)"),
                            .text = Tr("The program was ended before this could be stored:") +
                                    "\r\n" + lost + Tr("Please enter it again.")});
  RemoveLostEdits(folder);
}

void MainForm::UnloadOpenForms() {
  for (QWidget* form : QApplication::topLevelWidgets()) {
    if (form != &window_ && form->isVisible()) {
      form->close();
    }
  }
}

}  // namespace vrx
