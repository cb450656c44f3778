#include "desktop/recipes/recipe_grid.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>
#include <cstddef>
#include <utility>

#include "desktop/dialogs/about_and_splash.h"
#include "desktop/recipes/ingredient_list.h"
#include "widgets/fields.h"
#include "widgets/labels.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"
#include "widgets/refusal_tip.h"

namespace vrx {
namespace {

constexpr int kRowMargin = 10;  // above and below a row's text together

bool IsTyped(const QKeyEvent& key) {
  const bool command =
      (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) == Qt::ControlModifier;
  return !command && !key.text().isEmpty() && key.text().front().isPrint();
}

bool DropsDown(const QKeyEvent& key) {
  return key.key() == Qt::Key_F2 || key.key() == Qt::Key_F4 ||
         (key.key() == Qt::Key_Down && (key.modifiers() & Qt::AltModifier) != 0);
}

}  // namespace

RecipeGrid::RecipeGrid(RecipeGridEvents& events, QWidget* parent)
    : QTableView(parent),
      events_(events),
      model_(new RecipeGridModel(this)),
      list_(new IngredientList(this)),
      delegate_(new RecipeGridDelegate(
          *list_, *model_,
          [this](QWidget& editor, const QModelIndex& cell) { Commit(editor, cell); }, this)) {
  setObjectName(QStringLiteral("grdREC"));
  setAccessibleName(QTr("Ingredients of the recipe"));
  setModel(model_);
  setItemDelegate(delegate_);
  setSelectionMode(NoSelection);
  setEditTriggers(NoEditTriggers);
  setTabKeyNavigation(true);
  setWordWrap(false);
  setCornerButtonEnabled(false);
  setVerticalScrollMode(ScrollPerPixel);
  setHorizontalScrollMode(ScrollPerPixel);
  SetUpHeaders();
  SetFigures();
  connect(delegate_, &RecipeGridDelegate::KeyRefused, this, [this] { events_.KeyRefused(); });
  connect(qApp, &QApplication::focusChanged, this,
          [this](QWidget* /*old*/, QWidget* now) { FollowFocus(now); });
}

void RecipeGrid::SetUpHeaders() {
  verticalHeader()->hide();
  setHorizontalHeader(new PaddedHeader(this));
  QHeaderView& header = *horizontalHeader();
  header.setSectionsMovable(true);
  connect(&header, &QHeaderView::sectionResized, this, [this] {
    sized_by_operator_ = sized_by_operator_ || !sizing_;
    Q_EMIT LaidOut();
  });
  connect(&header, &QHeaderView::sectionMoved, this, &RecipeGrid::LaidOut);
  connect(horizontalScrollBar(), &QScrollBar::valueChanged, this, &RecipeGrid::LaidOut);
}

void RecipeGrid::SetFigures() {
  const QFont figures = TabularFigures(font());
  if (figures != font()) {
    setFont(figures);
  }
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kRowMargin);
}

void RecipeGrid::Show(const CurrentRecipe& shown) {
  ShowColumns(shown.Entry());
  model_->Show(shown);
  const int row = shown.OnEntryRow() ? shown.LineCount() : shown.row - 1;
  int column = currentIndex().column();
  if (column < 0 || isColumnHidden(column)) {
    column = kColumnIngredient;
  }
  if (currentIndex() != model_->index(row, column)) {
    setCurrentIndex(model_->index(row, column));
  }
}

void RecipeGrid::SetIngredients(std::vector<IngredientRecord> ingredients) {
  model_->SetNames(ingredients);
  list_->SetIngredients(std::move(ingredients));
  FitColumns();
}

std::string RecipeGrid::IngredientName(const std::string& number) const {
  for (const IngredientRecord& ingredient : list_->Ingredients()) {
    if (std::to_string(ingredient.id) == number) {
      return ingredient.name;
    }
  }
  return "'" + number + "'";
}

int RecipeGrid::ColumnOf(std::string_view field) const {
  const auto columns = RecipeColumns();
  const auto found = std::find_if(columns.begin(), columns.end(),
                                  [&](const RecipeColumnRow& row) { return row.key == field; });
  return found == columns.end() ? currentIndex().column()
                                : static_cast<int>(found - columns.begin());
}

std::vector<int> RecipeGrid::ColumnsInSight(LineEntry entry) const {
  return vrx::ColumnsInSight(*horizontalHeader(), entry_, entry);
}

void RecipeGrid::ShowColumns(LineEntry entry) {
  if (entry == entry_ || entry == LineEntry::kNone) {
    return;
  }
  entry_ = entry;
  {
    const QScopedValueRollback sizing(sizing_, true);
    ShowRecipeColumns(*horizontalHeader(), entry);
  }
  FitColumns();
  Q_EMIT LaidOut();
}

void RecipeGrid::FitColumns() {
  if (sized_by_operator_ || entry_ == LineEntry::kNone) {
    return;
  }
  const QScopedValueRollback sizing(sizing_, true);
  const QString idle = QTr("click to add an ingredient");
  RecipeColumnWidths least = totals_;
  least.at(kColumnIngredient) =
      fontMetrics().horizontalAdvance(idle) + 2 * kCellMargin + 3 * kSpacing;
  FitRecipeColumns(*horizontalHeader(), viewport()->width(), least,
                   model_->WidestIngredient(fontMetrics()) + 2 * kCellMargin + 3 * kSpacing);
}

void RecipeGrid::MakeRoomForTotals(const RecipeColumnWidths& totals) {
  const RecipeColumnWidths before = std::exchange(totals_, totals);
  for (int column = kColumnIngredient + 1; column < kRecipeColumnCount; ++column) {
    const auto at = static_cast<std::size_t>(column);
    const int width = columnWidth(column);
    if (!isColumnHidden(column) &&
        (totals.at(at) > width || (before.at(at) == width && totals.at(at) < width))) {
      FitColumns();
      return;
    }
  }
}

// Moves between cells and editors keep the focus in the grid; another window does not take it.
void RecipeGrid::FollowFocus(const QWidget* now) {
  if (now == nullptr || now->window() != window()) {
    return;
  }
  const bool inside = now == this || isAncestorOf(now);
  if (inside == std::exchange(has_focus_, inside)) {
    return;
  }
  inside ? events_.GridGotFocus() : events_.GridLostFocus();
}

// Moves of the current cell.

bool RecipeGrid::GoTo(int row, int column) {
  if (!FinishEdit()) {
    return false;
  }
  if (row != currentIndex().row() && !events_.GoToRow(RowNumber(row))) {
    return false;
  }
  setCurrentIndex(model_->index(row, column));
  return true;
}

// Returns false if there is no further cell and the focus may leave the grid.
bool RecipeGrid::MoveOn() {
  const QModelIndex cell = currentIndex();
  if (!cell.isValid() || model_->IsIdle(cell.row())) {
    return false;
  }
  const QHeaderView& header = *horizontalHeader();
  const std::vector<int> columns = EnteredColumns(*horizontalHeader(), entry_);
  for (const int column : columns) {
    if (header.visualIndex(column) > header.visualIndex(cell.column())) {
      GoTo(cell.row(), column);
      return true;
    }
  }
  if (model_->IsEntryRow(cell.row())) {
    return MoveFromEntryRow();
  }
  if (cell.row() + 1 == model_->rowCount()) {
    return false;
  }
  GoTo(cell.row() + 1, columns.front());
  return true;
}

// A refused entry row keeps the focus.
bool RecipeGrid::MoveFromEntryRow() {
  if (!events_.CommitRow()) {
    return true;
  }
  const int last = model_->rowCount() - 1;
  const int column = EnteredColumns(*horizontalHeader(), entry_).front();
  if (!model_->IsEntryRow(last)) {
    return false;
  }
  GoTo(last, column);
  return true;
}

bool RecipeGrid::MoveBack() {
  const QModelIndex cell = currentIndex();
  if (!cell.isValid()) {
    return false;
  }
  const QHeaderView& header = *horizontalHeader();
  const std::vector<int> columns = EnteredColumns(*horizontalHeader(), entry_);
  const auto before = std::find_if(columns.rbegin(), columns.rend(), [&](int column) {
    return header.visualIndex(column) < header.visualIndex(cell.column());
  });
  if (before != columns.rend()) {
    GoTo(cell.row(), *before);
    return true;
  }
  if (cell.row() == 0) {
    return false;
  }
  GoTo(cell.row() - 1, columns.back());
  return true;
}

bool RecipeGrid::MoveByKey(const QKeyEvent& key) {
  const QModelIndex cell = currentIndex();
  const int page = std::max(1, viewport()->height() / verticalHeader()->defaultSectionSize() - 1);
  const int last = model_->rowCount() - 1;
  const bool by_row = (key.modifiers() & Qt::ControlModifier) != 0;
  int row = cell.row();
  int column = cell.column();
  switch (key.key()) {
    case Qt::Key_Up:
      row -= 1;
      break;
    case Qt::Key_Down:
      if (model_->IsEntryRow(row) && !model_->IsIdle(row)) {
        MoveFromEntryRow();
        return true;
      }
      row += 1;
      break;
    case Qt::Key_PageUp:
      row -= page;
      break;
    case Qt::Key_PageDown:
      row += page;
      break;
    case Qt::Key_Left:
      column = NextColumn(*horizontalHeader(), column, -1);
      break;
    case Qt::Key_Right:
      column = NextColumn(*horizontalHeader(), column, 1);
      break;
    case Qt::Key_Home:
      by_row ? row = 0 : column = EdgeColumn(*horizontalHeader(), column, -1);
      break;
    case Qt::Key_End:
      by_row ? row = last : column = EdgeColumn(*horizontalHeader(), column, 1);
      break;
    default:
      return false;
  }
  GoTo(std::clamp(row, 0, last), column);
  return true;
}

void RecipeGrid::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QTableView::currentChanged(current, previous);
  delegate_->SetCurrentRow(current.row());
  if (current.row() != previous.row()) {
    for (const QModelIndex& cell : {current, previous}) {
      if (cell.isValid()) {
        viewport()->update(0, rowViewportPosition(cell.row()), viewport()->width(),
                           rowHeight(cell.row()));
      }
    }
  }
}

// Keys and the mouse.

void RecipeGrid::keyPressEvent(QKeyEvent* event) {
  if (TurnsTabs(*event)) {
    event->ignore();
    return;
  }
  event->accept();
  switch (event->key()) {
    case Qt::Key_Tab:
      event->setAccepted(MoveOn());
      return;
    case Qt::Key_Backtab:
      event->setAccepted(MoveBack());
      return;
    case Qt::Key_Escape:
      events_.DiscardEntry();
      return;
    default:
      break;
  }
  if (DropsDown(*event)) {
    BeginEdit(currentIndex());
  } else if (IsTyped(*event) || event->key() == Qt::Key_Backspace) {
    if (BeginEdit(currentIndex())) {
      QApplication::sendEvent(indexWidget(currentIndex()), event);
    } else {
      ExplainClosed(currentIndex());
    }
  } else if (!MoveByKey(*event)) {
    event->ignore();
  }
}

void RecipeGrid::mousePressEvent(QMouseEvent* event) {
  const QModelIndex cell = indexAt(event->position().toPoint());
  event->accept();
  pressed_ = {};
  if (!cell.isValid() || event->button() != Qt::LeftButton) {
    FinishEdit();
    return;
  }
  const bool was_current = cell == currentIndex();
  if (!GoTo(cell.row(), cell.column())) {
    return;
  }
  pressed_ = cell;
  opens_on_release_ =
      cell.column() != kColumnIngredient || was_current || model_->IsEntryRow(cell.row()) ||
      RecipeGridDelegate::ArrowOf(visualRect(cell)).contains(event->position().toPoint());
}

void RecipeGrid::mouseMoveEvent(QMouseEvent* event) { event->accept(); }

void RecipeGrid::mouseReleaseEvent(QMouseEvent* event) {
  event->accept();
  const QModelIndex cell = std::exchange(pressed_, {});
  if (cell.isValid() && opens_on_release_ && cell == indexAt(event->position().toPoint())) {
    BeginEdit(cell);
  }
}

void RecipeGrid::mouseDoubleClickEvent(QMouseEvent* event) { mousePressEvent(event); }

// Editing.

bool RecipeGrid::BeginEdit(const QModelIndex& cell) {
  if (!cell.isValid() || IsEditing() || !cell.flags().testFlag(Qt::ItemIsEditable)) {
    return false;
  }
  const LineColumn column = *RecipeColumns()[static_cast<std::size_t>(cell.column())].entered_as;
  events_.BeforeCellEdit(column);
  editing_ = column;
  commit_failed_ = false;
  edit(cell);
  return IsEditing();
}

// A key that a closed cell drops.
void RecipeGrid::ExplainClosed(const QModelIndex& cell) {
  if (cell.isValid()) {
    const QString reason = QTr(WhyClosed(cell.column()));
    ShowRefusal(*viewport(), visualRect(cell), reason.isEmpty() ? toolTip() : reason);
    events_.KeyRefused();
  }
}

void RecipeGrid::Commit(QWidget& editor, const QModelIndex& cell) {
  commit_failed_ = false;
  if (const auto* const list = qobject_cast<IngredientDropDown*>(&editor)) {
    if (const std::optional<int> id = list->Chosen()) {
      commit_failed_ = !events_.ChooseIngredient(*id);
    }
    return;
  }
  const auto& number = *qobject_cast<FilteredEdit*>(&editor);
  if (editing_ && number.text() != cell.data(Qt::EditRole).toString()) {
    commit_failed_ = !events_.EnterCell(*editing_, number.Text());
  }
}

void RecipeGrid::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
  if (std::exchange(commit_failed_, false) && hint != QAbstractItemDelegate::RevertModelCache) {
    return;
  }
  QTableView::closeEditor(editor, QAbstractItemDelegate::NoHint);
  if (const std::optional<LineColumn> column = std::exchange(editing_, std::nullopt)) {
    events_.AfterCellEdit(*column);
  }
  if (hint == QAbstractItemDelegate::EditNextItem && !MoveOn()) {
    focusNextChild();
  } else if (hint == QAbstractItemDelegate::EditPreviousItem && !MoveBack()) {
    focusPreviousChild();
  }
}

bool RecipeGrid::FinishEdit() {
  if (!IsEditing()) {
    return true;
  }
  QWidget* const editor = indexWidget(currentIndex());
  commitData(editor);
  closeEditor(editor, QAbstractItemDelegate::NoHint);
  if (IsEditing() && hasFocus()) {
    editor->setFocus();
  }
  return !IsEditing();
}

void RecipeGrid::GiveUpEdit() {
  if (IsEditing()) {
    closeEditor(indexWidget(currentIndex()), QAbstractItemDelegate::RevertModelCache);
  }
}

void RecipeGrid::ReturnToEdit() {
  QWidget* const editor = IsEditing() ? indexWidget(currentIndex()) : nullptr;
  (editor == nullptr ? this : editor)->setFocus();
}

bool RecipeGrid::HoldsFocus() const {
  const QWidget* const focus = QApplication::focusWidget();
  return focus != nullptr && (focus == this || isAncestorOf(focus));
}

// Layout changes that the totals follow.

void RecipeGrid::resizeEvent(QResizeEvent* event) {
  QTableView::resizeEvent(event);
  FitColumns();
  Q_EMIT LaidOut();
}

void RecipeGrid::updateGeometries() {
  QTableView::updateGeometries();
  Q_EMIT LaidOut();
}

void RecipeGrid::changeEvent(QEvent* event) {
  QTableView::changeEvent(event);
  if (event->type() == QEvent::ApplicationFontChange) {
    SetFigures();
    FitColumns();
  }
}

}  // namespace vrx
