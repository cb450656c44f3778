#include "desktop/history/history_table.h"

#include <QApplication>
#include <QEvent>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPen>
#include <QScrollBar>
#include <algorithm>

#include "desktop/dialogs/about_and_splash.h"
#include "desktop/history/history_painting.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

// Records read for the sums on the screen, 2 to 8 µs each: at once while drawing, and between two
// events afterwards.
constexpr std::int64_t kRecordsWhileDrawing = 1000;
constexpr std::int64_t kRecordsBetweenEvents = 2000;

}  // namespace

HistoryTableView::HistoryTableView(QWidget* parent)
    : QTableView(parent), model_(new HistoryTableModel(this)), header_(new HistoryHeader(this)) {
  setObjectName(QStringLiteral("grdTRANS"));
  setAccessibleName(QTr("Transactions"));
  setFont(HistoryStyles::CellFont());
  setHorizontalHeader(header_);
  setModel(model_);
  setSelectionBehavior(SelectRows);
  setSelectionMode(ExtendedSelection);
  setEditTriggers(NoEditTriggers);
  setTabKeyNavigation(false);
  setWordWrap(false);
  setCornerButtonEnabled(false);
  setVerticalScrollMode(ScrollPerPixel);
  setHorizontalScrollMode(ScrollPerPixel);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  ApplyRowHeight();
  header_->hide();
  read_sums_.setObjectName(QStringLiteral("tmrReadSums"));
  read_sums_.setSingleShot(true);
  connect(&read_sums_, &QTimer::timeout, this, [this] { ReadSums(kRecordsBetweenEvents); });
}

void HistoryTableView::ShowGrid() {
  model_->Refresh();
  // Other rows may have the selected numbers now.
  if (const QItemSelection& selected = selectionModel()->selection();
      selected.size() > 1 || (selected.size() == 1 && selected.front().height() > 1)) {
    SelectOnly(currentIndex());
  }
  if (const HistoryGrid* const grid = model_->Grid(); grid != nullptr) {
    header_->ShowColumns(*grid);
    header_->FillWidth(viewport()->width());
  }
  viewport()->update();
}

void HistoryTableView::SetEmptyText(const QString& text) {
  if (empty_text_ != text) {
    empty_text_ = text;
    setAccessibleDescription(text);
    viewport()->update();
  }
}

void HistoryTableView::GoToRow(int row) {
  if (row >= 0 && row < model_->rowCount()) {
    SelectOnly(model_->index(row, CurrentColumn()));
  }
}

void HistoryTableView::GoToCell(int row, int column) {
  if (row < 0 || row >= model_->rowCount()) {
    return;
  }
  SelectOnly(model_->index(row, column < 0 ? CurrentColumn() : column));
  marks_cell_ = column >= 0;
  const bool seen = viewport()->rect().contains(LineOf(row));
  scrollTo(currentIndex(), model_->RowAt(row).open ? PositionAtTop
                           : seen                  ? EnsureVisible
                                                   : PositionAtCenter);
  viewport()->update();
}

void HistoryTableView::GoToTop() {
  typed_.clear();
  SelectOnly({});
  verticalScrollBar()->setValue(0);
}

// Whatever keys are down: those of the base class extend the selection.
void HistoryTableView::SelectOnly(const QModelIndex& index) {
  marks_cell_ = false;
  selectionModel()->setCurrentIndex(
      index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

int HistoryTableView::CurrentColumn() const {
  const int current = currentIndex().column();
  if (current >= 0 && !header_->isSectionHidden(current)) {
    return current;
  }
  const std::vector<ShownColumn> shown = header_->Shown();
  return shown.empty() ? 0 : shown.front().column - 1;
}

// Drawing.

void HistoryTableView::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  if (model_->rowCount() == 0) {
    painter.setFont(QFont());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(kSpacing, 0, -kSpacing, 0),
                     Qt::AlignCenter | Qt::TextWordWrap, empty_text_);
    return;
  }
  ReadSums(kRecordsWhileDrawing);
  const QRect area = event->rect();
  const std::vector<ColumnSpan> spans = SpansIn(viewport()->rect());
  const HistoryRowPainter rows(*viewport(), header_->isVisibleTo(this));
  const int first = rowAt(area.top());
  for (int row = first; row >= 0 && row < model_->rowCount(); ++row) {
    const QRect line = LineOf(row);
    if (line.top() > area.bottom()) {
      break;
    }
    rows.Paint(painter, model_->RowAt(row), std::int64_t{row} + 1, line, spans,
               IsMarkedSelected(row));
  }
  PaintMarkedCell(painter, spans);
}

// The current row without a selection, which it gets with the focus, looks selected too.
bool HistoryTableView::IsMarkedSelected(int row) const {
  const QItemSelection& selected = selectionModel()->selection();
  return selected.isEmpty() ? row == currentIndex().row()
                            : selectionModel()->isSelected(model_->index(row, CurrentColumn()));
}

void HistoryTableView::PaintMarkedCell(QPainter& painter,
                                       const std::vector<ColumnSpan>& spans) const {
  const auto span = std::find_if(spans.begin(), spans.end(), [this](const ColumnSpan& shown) {
    return shown.column == currentIndex().column() + 1;
  });
  if (!marks_cell_ || span == spans.end()) {
    return;
  }
  QRect cell = LineOf(currentIndex().row());
  cell.setLeft(span->left);
  cell.setWidth(span->width);
  painter.setPen(QPen(palette().color(QPalette::HighlightedText), 2));
  painter.drawRect(cell.adjusted(2, 2, -2, -2));
}

void HistoryTableView::ReadSums(std::int64_t records) {
  const int first = rowAt(0);
  const int last = rowAt(viewport()->height() - 1);
  const SumsRead read = model_->ReadSums(first, last < 0 ? model_->rowCount() - 1 : last, records);
  if (read.any) {
    viewport()->update();
  }
  if (read.more) {
    read_sums_.start();
  }
}

std::vector<ColumnSpan> HistoryTableView::SpansIn(const QRect& area) const {
  std::vector<ColumnSpan> spans;
  int left = -header_->offset();
  for (const ShownColumn& shown : header_->Shown()) {
    if (left <= area.right() && left + shown.width > area.left()) {
      spans.push_back({.column = shown.column, .left = left, .width = shown.width});
    }
    left += shown.width;
  }
  return spans;
}

QRect HistoryTableView::LineOf(int row) const {
  return {0, rowViewportPosition(row), viewport()->width(), rowHeight(row)};
}

// Group rows do not scroll horizontally.
void HistoryTableView::scrollContentsBy(int dx, int dy) {
  QTableView::scrollContentsBy(dx, dy);
  if (dx != 0) {
    viewport()->update();
  }
}

void HistoryTableView::ApplyRowHeight() {
  verticalHeader()->setMinimumSectionSize(1);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kSpacing / 2 + 1);
}

void HistoryTableView::changeEvent(QEvent* event) {
  QTableView::changeEvent(event);
  if (event->type() == QEvent::FontChange) {
    ApplyRowHeight();
  }
}

// A column fits its rows on the screen.
int HistoryTableView::sizeHintForColumn(int column) const {
  int width = 0;
  const QFontMetrics metrics{HistoryStyles::CellFont()};
  for (int row = rowAt(0); row >= 0 && row < model_->rowCount(); ++row) {
    if (rowViewportPosition(row) >= viewport()->height()) {
      break;
    }
    if (model_->RowAt(row).kind != HistoryRowKind::kGroup) {
      width =
          std::max(width, metrics.horizontalAdvance(model_->index(row, column).data().toString()));
    }
  }
  return width + 2 * kSpacing;
}

// Moving.

void HistoryTableView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QTableView::currentChanged(current, previous);
  marks_cell_ = false;
  for (const QModelIndex& index : {current, previous}) {
    if (index.isValid()) {
      viewport()->update(LineOf(index.row()));
    }
  }
  if (current.row() != previous.row()) {
    Q_EMIT RowChanged(current.row());
  }
}

// Group rows are wider than their cells.
void HistoryTableView::selectionChanged(const QItemSelection& selected,
                                        const QItemSelection& deselected) {
  QTableView::selectionChanged(selected, deselected);
  viewport()->update();
}

// To the first and last row in the same column.
QModelIndex HistoryTableView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
  const QModelIndex wanted = QTableView::moveCursor(action, modifiers);
  const bool to_an_end = (action == MoveHome || action == MoveEnd) &&
                         modifiers.testFlag(Qt::ControlModifier) && currentIndex().isValid();
  return to_an_end && wanted.isValid() ? wanted.siblingAtColumn(currentIndex().column()) : wanted;
}

void HistoryTableView::resizeEvent(QResizeEvent* event) {
  QTableView::resizeEvent(event);
  header_->FillWidth(viewport()->width());
}

bool HistoryTableView::EnterPressed() {
  const int next = currentIndex().row() + 1;
  GoToRow(next);
  return currentIndex().row() == next;
}

// Groups.

void HistoryTableView::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Shift) {
    QTableView::keyPressEvent(event);  // of a capital letter
    return;
  }
  const bool typing = IsTyping(*event);
  if (!typing) {
    typed_.clear();
  }
  typed_at_ = event->timestamp();
  if (typing) {
    keyboardSearch(event->text());
  } else if (!TurnByKey(*event)) {
    QTableView::keyPressEvent(event);
    return;
  }
  event->accept();
}

// After the first character also a blank and the signs belong to it.
bool HistoryTableView::IsTyping(const QKeyEvent& key) const {
  const bool modified =
      (key.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier)) != Qt::NoModifier;
  const auto pause = static_cast<quint64>(QApplication::keyboardInputInterval());
  return !typed_.isEmpty() && !modified && !key.text().isEmpty() && key.text().front().isPrint() &&
         key.timestamp() - typed_at_ <= pause;
}

void HistoryTableView::keyboardSearch(const QString& typed) {
  typed_ += typed;
  Q_EMIT GroupTyped(typed_);
}

bool HistoryTableView::TurnByKey(const QKeyEvent& key) {
  const int row = currentIndex().row();
  const bool plain = (key.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier)) == 0;
  if (row < 0 || !plain || model_->RowAt(row).kind != HistoryRowKind::kGroup) {
    return false;
  }
  const bool open = model_->RowAt(row).open;
  switch (key.key()) {
    case Qt::Key_Right:
    case Qt::Key_Plus:
      if (!open) {
        Turn(row);
      }
      return true;
    case Qt::Key_Left:
    case Qt::Key_Minus:
      if (open) {
        Turn(row);
      }
      return true;
    case Qt::Key_Space:
      Turn(row);
      return true;
    default:
      return false;
  }
}

void HistoryTableView::Turn(int row) { Q_EMIT GroupChosen(row, !model_->RowAt(row).open); }

int HistoryTableView::GroupAt(const QPoint& point) const {
  const int row = rowAt(point.y());
  return row >= 0 && model_->RowAt(row).kind == HistoryRowKind::kGroup ? row : -1;
}

bool HistoryTableView::OnMark(const QPoint& point, int row) const {
  return HistoryRowPainter::MarkOf(model_->RowAt(row).depth, LineOf(row)).contains(point);
}

void HistoryTableView::mousePressEvent(QMouseEvent* event) {
  const QPoint point = event->position().toPoint();
  const int row = GroupAt(point);
  const bool selects = (event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier)) != 0;
  group_pressed_ = row >= 0 && event->button() == Qt::LeftButton && !selects;
  if (!group_pressed_) {
    QTableView::mousePressEvent(event);
    return;
  }
  GoToRow(row);
  if (OnMark(point, row)) {
    Turn(row);
  }
}

// A group does not begin a selection with the mouse: it may just have moved other rows.
void HistoryTableView::mouseMoveEvent(QMouseEvent* event) {
  if (!group_pressed_ || event->buttons() == Qt::NoButton) {
    QTableView::mouseMoveEvent(event);
  }
}

void HistoryTableView::mouseDoubleClickEvent(QMouseEvent* event) {
  const int row = GroupAt(event->position().toPoint());
  if (row < 0 || event->button() != Qt::LeftButton) {
    QTableView::mouseDoubleClickEvent(event);
    return;
  }
  Turn(row);
}

}  // namespace vrx
