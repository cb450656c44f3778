// The pages of the main form: how they are made, and what connects them to each other and to the
// databases.

#include <QAbstractItemView>
#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMetaObject>
#include <QShortcut>
#include <QTimer>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "database/identity.h"
#include "desktop/app/main_form.h"
#include "desktop/dialogs/about_and_splash.h"
#include "desktop/dialogs/recipe_dialogs.h"
#include "desktop/history/history_table.h"
#include "desktop/insight/insight_page.h"
#include "presenter/recipe_actions.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

// The grid whose cell the widget edits, because the editor ends with the edit; or the widget.
QWidget* WholeField(QWidget* focus) {
  for (QWidget* part = focus; part != nullptr; part = part->parentWidget()) {
    if (auto* const grid = qobject_cast<QAbstractItemView*>(part)) {
      return grid;
    }
  }
  return focus;
}

void FocusFirstIn(QWidget& page) {
  for (QWidget* next = page.nextInFocusChain(); next != &page; next = next->nextInFocusChain()) {
    if (page.isAncestorOf(next) && (next->focusPolicy() & Qt::TabFocus) != 0 && next->isVisible() &&
        next->isEnabled()) {
      next->setFocus();
      return;
    }
  }
}

// The key comes to the menu before the control; only fields take it first. A key that is sent on
// would come to the menu again.
void CopyFrom(QWidget* focus) {
  if (auto* const records = qobject_cast<HistoryTableView*>(focus)) {
    Q_EMIT records->CopyChosen();
  } else if (focus != nullptr && focus->metaObject()->indexOfSlot("copy()") >= 0) {
    QMetaObject::invokeMethod(focus, "copy");
  } else if (const auto* const list = qobject_cast<QAbstractItemView*>(focus)) {
    QGuiApplication::clipboard()->setText(list->currentIndex().data().toString());
  }
}

}  // namespace

MainForm::RecordPages MainForm::AddRecordPages() {
  const QPointer<RecipesPage> recipes = new RecipesPage(services_, delay_, abbreviation_, undo_);
  const QPointer<PensPage> pens = new PensPage(services_, abbreviation_, undo_);
  auto* const ingredients = new IngredientsPage(
      services_, delay_, abbreviation_, undo_,
      {.current_batch_type = [recipes] { return recipes ? recipes->CurrentBatchType() : ""; },
       .go_to = [this](int position) { GoToRecipe(position); }});
  AddRecordPage(kTabIngredients, *ingredients);
  AddRecordPage(kTabRecipes, *recipes);
  AddRecordPage(kTabPens, *pens);
  recipes->SetPenRows([pens] { return pens ? pens->PensShown() : std::vector<PenRecord>(); });
  connect(pens, &PensPage::PenCapacityChecked, recipes, &RecipesPage::CheckPenCapacity);
  const auto turn_commands = [this, recipes] {
    window_.Turn(MainCommand::kCopyRecipe, recipes->MayCopy());
    window_.Turn(MainCommand::kCompareRecipes, recipes->MayCompare());
  };
  connect(recipes, &RecipesPage::CommandsChanged, this, turn_commands);
  window_.SetHandler(MainCommand::kCopyRecipe, [recipes] { recipes->CopyRecipe(); });
  window_.SetHandler(MainCommand::kCompareRecipes, [this] { CompareRecipes(); });
  turn_commands();
  undo_.SetObserver([this] { ShowUndo(); });
  window_.SetHandler(MainCommand::kUndo, [this] { Restore(true); });
  window_.SetHandler(MainCommand::kRedo, [this] { Restore(false); });
  ShowUndo();
  window_.Panels().PicAction().SetHandler([this](int button) { Act(button); });
  window_.Panels().PicNavigate().SetHandler([this](int button) { Navigate(button); });
  for (const auto& [key, button] :
       {std::pair(Qt::Key_PageUp, kNavigatePrevious), std::pair(Qt::Key_PageDown, kNavigateNext)}) {
    auto* const turn = new QShortcut(QKeySequence(Qt::CTRL | key), &window_);
    connect(turn, &QShortcut::activated, this, [this, button = button] { TurnPage(button); });
  }
  return {.ingredients = ingredients, .recipes = recipes, .pens = pens};
}

void MainForm::AddRecordPage(int tab, RecordPage& page) {
  window_.SetPage(tab, &page);
  connect(&page, &RecordPage::Moved, this, [this, &page](int position) {
    if (&page == CurrentRecordPage()) {
      window_.Panels().ShowRecordNumber(position);
    }
  });
  connect(&page, &RecordPage::RecordLoaded, this, [this] { CountLoaded(); });
  connect(&page, &RecordPage::CancelAllowed, this, [this](bool allowed) {
    window_.Panels().PicAction().Button(kActionCancel).setEnabled(allowed);
  });
  // Of all pages: they show the same database.
  connect(&page, &RecordPage::WritingAllowed, this, [this](bool allowed) {
    for (const int button : {kActionUpdate, kActionDefault}) {
      window_.Panels().PicAction().Button(button).setEnabled(allowed);
    }
  });
}

RecordPage* MainForm::RecordPageOf(int tab) const {
  switch (tab) {
    case kTabIngredients:
      return record_pages_.ingredients;
    case kTabRecipes:
      return record_pages_.recipes;
    case kTabPens:
      return record_pages_.pens;
    default:
      return nullptr;
  }
}

RecordPage* MainForm::CurrentRecordPage() { return RecordPageOf(window_.Tabs().CurrentTab()); }

void MainForm::Act(int button) {
  RecordPage* const page = CurrentRecordPage();
  if (page == nullptr || page->Position() == 0) {
    return;
  }
  switch (button) {
    case kActionUpdate:
      if (page->LeaveEdits(MayStay::kYes)) {
        page->UpdateRecord();
      }
      break;
    case kActionCancel:
      page->CancelRecord();
      break;
    default:
      page->DefaultRecord();
  }
}

void MainForm::ShowUndo() {
  const auto show = [this](MainCommand command, const std::string& edit, const QString& caption) {
    const QString name = ToQString(edit).replace(u'&', QStringLiteral("&&"));
    window_.SetText(command, edit.empty() ? caption : caption + u' ' + name);
    window_.Turn(command, !edit.empty());
  };
  show(MainCommand::kUndo, undo_.UndoName(), QTr("&Undo"));
  show(MainCommand::kRedo, undo_.RedoName(), QTr("Re&do"));
}

// Shows the record first: the operator sees what changes, or why nothing does.
void MainForm::Restore(bool undo) {
  const std::optional<EditPlace> place = undo_.Place(undo);
  if (!place) {
    return;
  }
  const int tab = static_cast<int>(place->kind);  // kinds are in the order of their tabs
  if (window_.Tabs().CurrentTab() != tab) {
    window_.ChooseTab(tab);
  }
  RecordPage* const page = CurrentRecordPage();
  if (page == nullptr || page != RecordPageOf(tab) || page->Position() == 0) {
    return;
  }
  if (page->Position() != place->id) {
    page->GoTo(place->id);
  }
  // Choosing the tab runs events.
  const std::optional<EditPlace> now = undo_.Place(undo);
  if (now && now->kind == place->kind && now->id == page->Position() &&
      (undo ? undo_.Undo() : undo_.Redo())) {
    page->ShowRestored(*now);
  }
}

// Reads the file on a connection of its own, which an Open during the dialog does not end.
void MainForm::CompareRecipes() {
  const std::optional<ComparedFile> file =
      OpenComparedFile(databases_.Bound(DatabaseKind::kRecipe).path, services_);
  if (file) {
    ShowComparison(*file, record_pages_.recipes->Position(), services_, &window_);
  }
}

void MainForm::Navigate(int button) {
  RecordPage* const page = CurrentRecordPage();
  if (page != nullptr && page->Position() != 0 && page->LeaveEdits(MayStay::kYes)) {
    page->Navigate(static_cast<NavigateButton>(button));
  }
}

// The same field of the previous or next record: a field that one record closes has the focus again
// in the next one.
void MainForm::TurnPage(int button) {
  QWidget* const focus = window_.focusWidget();
  if (!turning_field_ || !stand_in_field_ || focus != stand_in_field_) {
    turning_field_ = WholeField(focus);
  }
  if (CurrentRecordPage() == nullptr || !window_.LeaveEdits()) {
    return;
  }
  Navigate(button);
  if (turning_field_ && turning_field_->isVisible() && turning_field_->isEnabled()) {
    turning_field_->setFocus();
    if (auto* const box = qobject_cast<QLineEdit*>(turning_field_)) {
      box->selectAll();
    }
  }
  stand_in_field_ = window_.focusWidget();
}

void MainForm::MakeRecipeDatabase() {
  const std::filesystem::path before = databases_.Bound(DatabaseKind::kRecipe).path;
  databases_.NewRecipeDatabase();
  RecordPage* const page = CurrentRecordPage();
  if (databases_.IsOpen(DatabaseKind::kRecipe) && page != nullptr &&
      databases_.Bound(DatabaseKind::kRecipe).path != before) {
    page->FocusFirstField();
  }
}

void MainForm::MakeTransactionDatabase() {
  const std::filesystem::path before = databases_.Bound(DatabaseKind::kTransaction).path;
  databases_.NewTransactionDatabase();
  if (databases_.IsOpen(DatabaseKind::kTransaction) &&
      databases_.Bound(DatabaseKind::kTransaction).path != before) {
    FocusFirstIn(*history_);  // its tab is selected
  }
}

// The panel of the name shows that the lists are being loaded.
void MainForm::CountLoaded() {
  constexpr int kRecordsPerText = 20;
  if (++records_loaded_ % kRecordsPerText == 0) {
    const bool loading = records_loaded_ / kRecordsPerText % 2 == 0;
    window_.SetStatusPanel(DatabaseKind::kRecipe, kPanelName,
                           loading ? "Standby... Loading" : "Standby...");
  }
}

void MainForm::AddTransferPages() {
  window_.SetPage(kTabDataTransfer, data_transfer_);
  window_.SetPage(kTabImport, import_);
  import_->SetTabOrder();
  connect(import_, &ImportPage::Done, this, [this](const QString& text, std::int64_t new_rows) {
    window_.Panels().PicResult().ShowText(text);
    history_->GoToNewest(new_rows);
  });
  connect(import_, &ImportPage::WentOn, &window_.Panels().PicResult(), &ResultPanel::ShowText);
  connect(data_transfer_, &DataTransferPage::ImportRequested, import_, &ImportPage::ImportFiles);
  window_.SetHandler(MainCommand::kImportTransactionFile, [this] { import_->ImportXFile(); });
  window_.SetHandler(MainCommand::kSetup, [this] { ShowSetup(); });
  line_watch_ = krm_.Guard().OnChange([this] { ShowLine(); });
}

// The form `SETUP` would close the port during a transfer.
void MainForm::ShowLine() {
  const bool at_work = krm_.Guard().AtWork();
  const bool command_runs = at_work && !krm_.Guard().Direct();
  window_.Turn(MainCommand::kSetup, !at_work);
  window_.Turn(MainCommand::kTransferUpload, !command_runs);
  window_.Turn(MainCommand::kTransferDownload, !command_runs);
  ShowPortSetup();
}

// Later, because the command that releases the line has not returned yet.
void MainForm::ShowPortSetup() {
  if (!port_setup_wanted_ || !krm_.Guard().Free()) {
    return;
  }
  port_setup_wanted_ = false;
  QTimer::singleShot(0, this, [this] {
    if (!services_.pump.Closing()) {
      ShowSetup(SetupStart::kPort);
    }
  });
}

void MainForm::GoToRecipe(int position) {
  if (record_pages_.recipes) {
    record_pages_.recipes->GoTo(position);
  }
}

// The form closes the port; a direct connection continues after it.
bool MainForm::ShowSetup(SetupStart start) {
  if (setup_ != nullptr || krm_.Guard().AtWork()) {
    return false;
  }
  SetupForm form(services_, krm_, Facts(), &window_);
  if (start == SetupStart::kPort) {
    form.ShowPort();
  }
  setup_ = &form;
  const bool accepted = form.exec() == QDialog::Accepted;
  setup_ = nullptr;
  if (!services_.pump.Closing()) {
    data_transfer_->ResumeDirectConnection();
  }
  return accepted;
}

void MainForm::UnloadSetup() {
  if (setup_ != nullptr) {
    setup_->close();
  }
}

SetupFacts MainForm::Facts() const {
  const CurrentDatabase& recipe = databases_.Recipe();
  const CurrentDatabase& transaction = databases_.Transaction();
  const TransFile& file = import_->Session().File();
  return {.recipe_path = recipe.path.string(),
          .recipe_unit = recipe.unit,
          .transaction_path = transaction.path.string(),
          .transaction_unit = transaction.unit,
          .qxt_path = file.FilePath(),
          .qxt_text = file.Text(),
          .connections = BuildConnectionTexts(
              ConnectionString(databases_.Bound(DatabaseKind::kRecipe).path.string()),
              ConnectionString(databases_.Bound(DatabaseKind::kTransaction).path.string()))};
}

void MainForm::AddHistoryPages() {
  window_.SetPage(kTabBatchedFed, history_);
  window_.SetHandler(MainCommand::kFind, [this] { history_->ShowFind(); });
  window_.SetHandler(MainCommand::kCopy, [this] { CopyFrom(window_.focusWidget()); });
  window_.Turn(MainCommand::kFind, history_->MayFind());
  connect(history_, &HistoryPage::FindAllowed, this,
          [this](bool allowed) { window_.Turn(MainCommand::kFind, allowed); });
  auto* const page = new ExportPage(services_, databases_, style_sheets_, *history_,
                                    [this] { import_->ConfigureImportColumns(); });
  window_.SetPage(kTabExport, page);
  connect(page, &ExportPage::FileWritten, &window_.Panels().PicResult(), &ResultPanel::ShowFile);
}

void MainForm::AddInsightPage() {
  window_.SetPage(kTabInsight, insight_);
  connect(insight_, &InsightPage::RecordsChosen, this, [this](const RecordsPlace& place) {
    window_.ChooseTab(kTabBatchedFed);
    history_->GoTo(place.group, place.period, place.value.value_or(""));
  });
  connect(history_, &HistoryPage::BackChosen, this, [this] {
    window_.ChooseTab(kTabInsight);
    insight_->Return();
  });
  connect(insight_, &InsightPage::PrintChosen, this, [this] { print_.PrintCurrentTab(); });
  connect(insight_, &InsightPage::FileWritten, &window_.Panels().PicResult(),
          &ResultPanel::ShowFile);
  connect(insight_, &InsightPage::ManualChosen, this, [this](const QString& section) {
    ViewTabChapter(kTabInsight, section, window_, services_);
  });
}

// The columns named after the ingredients follow the grid of the ingredients.
bool MainForm::ActiveIngredientsOnly() const {
  return record_pages_.ingredients && record_pages_.ingredients->ActiveOnly();
}

}  // namespace vrx
