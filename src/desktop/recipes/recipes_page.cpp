#include "desktop/recipes/recipes_page.h"

#include <QApplication>
#include <QVBoxLayout>
#include <utility>

#include "base/text.h"
#include "base/undo.h"
#include "database/identity.h"
#include "feed/record_fields.h"
#include "presenter/report_failure.h"
#include "settings/settings.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

constexpr Milliseconds kHiddenDelay{50};
constexpr Milliseconds kPrintDelay{100};
constexpr Milliseconds kShownDelay{50};
constexpr Milliseconds kActivateDelay{50};

int Target(NavigateButton button, int position) {
  switch (button) {
    case kNavigateFirst:
      return 1;
    case kNavigatePrevious:
      return position < 2 ? kRecipeCount : position - 1;
    case kNavigateNext:
      return position == kRecipeCount ? 1 : position + 1;
    case kNavigateLast:
      break;
  }
  return kRecipeCount;
}

}  // namespace

RecipesPage::RecipesPage(Services& services, GeneralDelay& delay, AutoAbbreviation& abbreviation,
                         UndoCommands& undo, QWidget* parent)
    : RecordPage(parent),
      services_(services),
      delay_(delay),
      abbreviation_(abbreviation),
      undo_(undo),
      messages_(services.op, services.settings),
      gate_(services.op),
      head_(new RecipeHead(abbreviation, this)),
      lines_(new RecipeLines(*this, this)) {
  setObjectName(QStringLiteral("pageRecipes"));
  LayOut();
  ConnectHead();
  ConnectLines();
}

// The grid outlives the receivers of its events.
RecipesPage::~RecipesPage() { qApp->disconnect(&lines_->GrdRec()); }

void RecipesPage::LayOut() {
  auto* const column = new QVBoxLayout(this);
  column->setContentsMargins(kGroupSpacing, kGroupSpacing, kGroupSpacing, kGroupSpacing);
  column->setSpacing(kGroupSpacing);
  column->addWidget(head_);
  column->addWidget(lines_, 1);
}

void RecipesPage::ConnectHead() {
  connect(head_, &RecipeHead::Refused, this, &RecipesPage::KeyRefused);
  connect(head_, &RecipeHead::ListLeft, this, [this] {
    LeaveChoices();
    Run([](RecipeEditor& editor) { editor.CommitRecipeRecord(); });
  });
  connect(&head_->CboRecId(), &QComboBox::activated, this,
          [this](int index) { Select(index, MayStay::kYes); });
  connect(&head_->CboRecId(), &RecordIdList::Typed, &head_->OnRecDesc(),
          qOverload<>(&QWidget::setFocus));
  for (FilteredEdit* const box : head_->Boxes()) {
    connect(box, &FilteredEdit::Left, this, [this, box] { Leave(*box); });
  }
  for (QComboBox* const list : {&head_->OnRecBatchType(), &head_->OnAdjustBatchTotal()}) {
    connect(list, &QComboBox::activated, this, [this, list](int index) { Choose(*list, index); });
  }
}

void RecipesPage::ConnectLines() {
  connect(lines_, &RecipeLines::MissesTotal, head_, &RecipeHead::ShowMustTotal100);
  connect(lines_, &RecipeLines::DeleteClicked, this, [this] {
    if (FinishCell()) {
      RunCommand([](RecipeEditor& editor) { editor.DeleteIng(); }, EditAct::kDeleteLine);
    }
  });
  connect(lines_, &RecipeLines::MoveClicked, this, [this](MoveDirection direction) {
    if (FinishCell()) {
      RunCommand([direction](RecipeEditor& editor) { editor.MoveRow(direction); },
                 direction == MoveDirection::kUp ? EditAct::kMoveLineUp : EditAct::kMoveLineDown);
    }
  });
}

void RecipesPage::Do(const Event& event, EditAct act, std::string_view field) {
  const std::shared_ptr<RecipeEditor> editor = editor_;
  if (!editor) {
    return;
  }
  undo_.Begin();
  const EditStep step = StepBefore(act, field);
  const RecipeRecord before = editor->Current().ration.recipe;
  const auto show = [&] {
    const RecipeRecord& after = editor->Current().ration.recipe;
    // The first line of a recipe puts it in use, whatever event commits the line.
    if (before.id == after.id && before.description.empty() && !after.description.empty()) {
      head_->CboRecId().SetItem(after.id, after.name);
    }
    Show();
    if (std::exchange(stored_, false)) {
      EndStep(step);
      Q_EMIT RecordChanged();
    }
  };
  RunOrUndo([&] { event(*editor); }, show);
  show();
}

bool RecipesPage::Run(const Event& event) {
  return editor_ && RunReported<Error>(services_.op, EventFailure, [&] { Do(event); });
}

bool RecipesPage::RunCommand(const Event& event, EditAct act) {
  return RunReported<Error>(services_.op, EditFailure, [&] { Do(event, act); });
}

// Shows the lines first, because a list that closes on a choice passes the focus to the grid.
void RecipesPage::Show() {
  if (editor_ && !preparing_) {
    lines_->Show(editor_->Current());
    head_->Show(editor_->Current());
  }
}

std::shared_ptr<RecipeEditor> RecipesPage::MakeEditor(SQLite::Database& connection, int id) {
  return std::make_shared<RecipeEditor>(connection, messages_, id,
                                        [this, &connection](const CurrentRecipe& next) {
                                          TouchDatabase(connection, services_.calendar);
                                          stored_ = true;
                                          if (entering_) {
                                            lines_->DrawFigures(next);
                                          }
                                        });
}

std::string RecipesPage::CurrentBatchType() const {
  return editor_ ? editor_->Current().ration.recipe.batch_type : std::string();
}

// The events of the grid.

void RecipesPage::GridGotFocus() {
  Q_EMIT CancelAllowed(false);
  Run([](RecipeEditor& editor) { editor.GridGotFocus(); });
}

// Commits a complete line without waiting for the focus to return, unless one of its cells is still
// being edited.
void RecipesPage::GridLostFocus() {
  Q_EMIT CancelAllowed(true);
  if (!lines_->GrdRec().IsEditing()) {
    LeaveEntryRow();
  }
}

bool RecipesPage::GoToRow(int row) {
  bool went = false;
  if (RunWithNewLine([&](RecipeEditor& editor) { went = editor.GoToRow(row); }) && !went) {
    KeyRefused();
  }
  return went;
}

bool RecipesPage::CommitRow() {
  bool committed = false;
  if (RunWithNewLine([&](RecipeEditor& editor) { committed = editor.CommitRow(); }) && !committed) {
    KeyRefused();
  }
  return committed;
}

void RecipesPage::DiscardEntry() {
  Run([](RecipeEditor& editor) { editor.DiscardEntry(); });
}

void RecipesPage::BeforeCellEdit(LineColumn column) {
  Run([column](RecipeEditor& editor) { editor.BeforeCellEdit(column); });
}

void RecipesPage::AfterCellEdit(LineColumn column) {
  gate_.Forget(&lines_->GrdRec());
  const bool entered = !discarding_;
  Run([column, entered](RecipeEditor& editor) { editor.AfterCellEdit(column, entered); });
}

void RecipesPage::KeyRefused() { BeepIfEnabled(services_.op, services_.settings); }

// The action bar and the navigator.

void RecipesPage::UpdateRecord() {
  if (FinishCell()) {
    Run([](RecipeEditor& editor) { editor.CommitRecipeRecord(); });
  }
}

// Does not discard the lines: a pending row is committed.
void RecipesPage::CancelRecord() {
  for (const QWidget* const field : head_->Fields()) {
    gate_.Forget(field);
  }
  head_->GiveUpTyping();
  Show();
  LeaveEntryRow();
}

void RecipesPage::Navigate(NavigateButton button) {
  if (const int position = Position(); position != 0) {
    Select(Target(button, position), MayStay::kYes);
  }
}

void RecipesPage::FocusFirstField() {
  head_->FirstField().setFocus();
  head_->FirstField().selectAll();
}

int RecipesPage::Position() const { return closed_ ? 0 : editor_->Current().ration.recipe.id; }

// The only way to another recipe, because pending edits belong to the previous one. Index 0, the
// blank item of the list, is the current recipe.
bool RecipesPage::ComeTo(int id, MayStay may_stay) {
  if (!LeaveEdits(may_stay)) {
    Show();
    return false;
  }
  return Run([id](RecipeEditor& editor) { editor.Select(id); });
}

bool RecipesPage::Select(int id, MayStay may_stay) {
  if (!ComeTo(id, may_stay)) {
    return false;
  }
  Q_EMIT Moved(Position());
  return true;
}

void RecipesPage::ReadIngredients() {
  lines_->GrdRec().SetIngredients(ReadActiveIngredients(*connection_));
}

void RecipesPage::ShowUnit() {
  const std::string& unit = services_.settings.SystemUnits();
  head_->ShowUnit(ToQString(unit));
  lines_->GrdRec().SetUnit(unit);
}

// The main window's events.

void RecipesPage::TabChanged(int tab, int /*previous*/) {
  ++visit_;
  in_front_ = tab == kTabRecipes;
  Q_EMIT CommandsChanged();
  if (std::exchange(preparing_, false)) {
    busy_.reset();
  }
  head_->ShowMustTotal100(false);
}

bool RecipesPage::Waited(Milliseconds interval) {
  const int visit = visit_;
  return delay_.Wait(interval) && visit == visit_;
}

void RecipesPage::Prepare() {
  if (!editor_) {
    return;
  }
  LeaveEdits(MayStay::kNo);
  preparing_ = true;
  head_->HideInputs();
  lines_->HideGrid();
  if (Waited(kHiddenDelay)) {
    busy_.emplace(services_.op);
    ShowFirstRecipe();
    busy_.reset();
  }
}

void RecipesPage::ShowFirstRecipe() {
  if (!Waited(kPrintDelay)) {
    return;
  }
  ShowUnit();
  Run([this](RecipeEditor& /*editor*/) { ReadIngredients(); });
  // Goes through the last recipe, which opens the list of batch types if it has no type.
  ComeTo(kRecipeCount, MayStay::kNo);
  preparing_ = false;
  Select(1, MayStay::kNo);
  Waited(kShownDelay);
}

// A click into a field while the tab was being prepared keeps the focus there.
void RecipesPage::StripFocused() {
  RecipeGrid& grid = lines_->GrdRec();
  if (grid.isVisible() && !isAncestorOf(QApplication::focusWidget())) {
    grid.setFocus();
  }
  TabChosen();
}

void RecipesPage::TabChosen() {
  if (lines_->GrdRec().isVisible()) {
    Run([](RecipeEditor& editor) { editor.RecomputeAll(); });
  }
  ShowUnit();
}

// Freezes the grid instead of hiding it, so that it keeps the focus.
void RecipesPage::Activated() {
  RecipeGrid& grid = lines_->GrdRec();
  if (!grid.isVisible() || !grid.updatesEnabled()) {
    return;
  }
  grid.setUpdatesEnabled(false);
  if (Waited(kActivateDelay)) {
    Run([](RecipeEditor& editor) { editor.CommitRecipeRecord(); });
  }
  grid.setUpdatesEnabled(true);
}

// A complete line must not be lost when its database closes.
void RecipesPage::CommitPending() {
  if (editor_ && editor_->Current().EntryPending() && !ended_) {
    Run([](RecipeEditor& editor) { editor.EndEntry(); });
  }
}

void RecipesPage::Rebind(DatabaseKind kind, const BoundDatabase& database) {
  if (kind != DatabaseKind::kRecipe) {
    return;
  }
  CommitPending();
  SQLite::Database& connection = *database.connection;
  std::vector<IngredientRecord> ingredients = ReadActiveIngredients(connection);
  std::shared_ptr<RecipeEditor> editor = MakeEditor(connection, 1);
  gate_.Forget();
  lines_->GrdRec().GiveUpEdit();
  head_->GiveUpTyping();
  ++visit_;
  preparing_ = false;
  connection_ = &connection;
  undo_.Watch(database.blank || !database.read_only_note.empty() ? nullptr : &connection);
  closed_ = database.blank;
  CloseFields(ToQString(database.read_only_note));
  editor_ = std::move(editor);
  stored_ = false;
  ended_ = false;
  lines_->GrdRec().SetIngredients(std::move(ingredients));
  lines_->ShowFixedTexts();
  ShowUnit();
  Show();
}

void RecipesPage::CloseFields(const QString& reason) {
  read_only_ = !reason.isEmpty();
  head_->SetReadOnly(reason);
  lines_->SetReadOnly(reason);
  Q_EMIT WritingAllowed(!read_only_);
  Q_EMIT CommandsChanged();
}

void RecipesPage::ReleaseViews() {
  CommitPending();
  gate_.Forget();
  lines_->GrdRec().GiveUpEdit();
  ++visit_;
  editor_.reset();
  undo_.Watch(nullptr);
  connection_ = nullptr;
  closed_ = true;
  Q_EMIT CommandsChanged();
}

void RecipesPage::LoadIdLists() {
  const SQLite::Database* const connection = connection_;
  Run([&](RecipeEditor& /*editor*/) {
    for (const RecipeRecord& recipe : ReadRecipes(*connection_)) {
      head_->CboRecId().SetItem(recipe.id, IsActive(recipe) ? recipe.name : std::string());
      Q_EMIT RecordLoaded();
      if (connection_ != connection) {
        return;
      }
    }
  });
  if (connection_ == connection) {
    Select(1, MayStay::kNo);
  }
}

void RecipesPage::CheckPenCapacity() {
  lines_->ShowPenCapacity(
      vrx::CheckPenCapacity(pen_rows_ ? pen_rows_() : std::vector<PenRecord>()));
}

}  // namespace vrx
