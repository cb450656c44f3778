#include "desktop/history/history_table.h"

#include <QEvent>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QProxyStyle>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyleOptionHeader>
#include <algorithm>

#include "desktop/dialogs/about_and_splash.h"
#include "desktop/history/history_painting.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

constexpr int kLeastHeight = 19;  // 285 twips

// Records read for the sums on the screen, some 2 µs each: at once while drawing, and between two
// events afterwards.
constexpr std::int64_t kRecordsWhileDrawing = 1000;
constexpr std::int64_t kRecordsBetweenEvents = 4000;

// A text as wide as the widest values of a column.
QString WidestValue(ColumnContent content) {
  switch (content) {
    case ColumnContent::kNumber:
      return QStringLiteral("0000000");
    case ColumnContent::kWeight:
      return QStringLiteral("0000000.0");
    case ColumnContent::kTime:
      return QStringLiteral("02:05 PM");
    case ColumnContent::kDate:
      return QStringLiteral("14-Mar-11");
    case ColumnContent::kText:
      break;
  }
  return QStringLiteral("MMMMMMMM");
}

// Aligns captions with the texts of their cells.
class CaptionMargins : public QProxyStyle {
 public:
  explicit CaptionMargins(QObject* parent) { setParent(parent); }

  int pixelMetric(PixelMetric metric, const QStyleOption* option,
                  const QWidget* widget) const override {
    return metric == PM_HeaderMargin ? kHistoryMargin
                                     : QProxyStyle::pixelMetric(metric, option, widget);
  }
};

}  // namespace

HistoryHeader::HistoryHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
  setSectionsClickable(true);
  setSectionsMovable(true);
  setFirstSectionMovable(true);
  setHighlightSections(false);
  setStyle(new CaptionMargins(this));
  setSectionResizeMode(Interactive);
  setTextElideMode(Qt::ElideRight);
  setResizeContentsPrecision(0);  // no row but those on the screen
  setFont(HistoryStyles::HeaderFont());
  setMinimumHeight(kLeastHeight);
  setMinimumSectionSize(3 * kSpacing);
  ApplyColors();
  connect(this, &QHeaderView::sectionClicked, this,
          [this](int section) { Q_EMIT SortChosen(section + 1); });
  connect(this, &QHeaderView::sectionMoved, this, [this](int section, int /*from*/, int to) {
    if (!by_program_) {
      Q_EMIT ColumnMoved(section + 1, to + 1);
    }
  });
  connect(this, &QHeaderView::sectionResized, this, [this](int section, int /*from*/, int /*to*/) {
    if (!by_program_) {
      sized_.insert(section + 1);
    }
  });
}

void HistoryHeader::ShowColumns(const HistoryGrid& grid) {
  const QScopedValueRollback by_program(by_program_, true);
  const HistoryColumns& columns = grid.Columns();
  ShowOrder(columns);
  for (const HistoryColumn& column : HistoryColumnTable()) {
    const int section = column.index - 1;
    const bool visible = columns.IsVisible(column.index);
    if (isSectionHidden(section) == visible) {
      setSectionHidden(section, !visible);
    }
    if (visible && !sized_.contains(column.index)) {
      const int width = WidthFor(column.index, columns.Caption(column.index));
      if (sectionSize(section) != width) {
        resizeSection(section, width);
      }
    }
  }
  ShowSort(grid);
  setVisible(grid.ColumnHeaders());
}

void HistoryHeader::ShowOrder(const HistoryColumns& columns) {
  std::vector<int> by_position(kGridColumnCount);
  for (const HistoryColumn& column : HistoryColumnTable()) {
    by_position.at(static_cast<std::size_t>(columns.Position(column.index)) - 1) = column.index;
  }
  for (int visual = 0; visual < kGridColumnCount; ++visual) {
    const int section = by_position[static_cast<std::size_t>(visual)] - 1;
    if (visualIndex(section) != visual) {
      moveSection(visualIndex(section), visual);
    }
  }
}

void HistoryHeader::ShowSort(const HistoryGrid& grid) {
  setSortIndicatorShown(grid.SortColumn() != 0);
  if (grid.SortColumn() != 0) {
    setSortIndicator(grid.SortColumn() - 1,
                     grid.SortAscending() ? Qt::AscendingOrder : Qt::DescendingOrder);
  }
}

int HistoryHeader::WidthFor(int column, const std::string& caption) const {
  const QFontMetrics values{HistoryStyles::CellFont()};
  return 2 * kSpacing +
         std::max(values.horizontalAdvance(WidestValue(HistoryColumnAt(column).content)),
                  fontMetrics().horizontalAdvance(ToQString(caption)) + SortMarkWidth());
}

int HistoryHeader::CaptionRoom(int width, bool marked) const {
  QStyleOptionHeader option;
  initStyleOption(&option);
  option.rect = {0, 0, width, sizeHint().height()};
  option.sortIndicator = marked ? QStyleOptionHeader::SortDown : QStyleOptionHeader::None;
  return style()->subElementRect(QStyle::SE_HeaderLabel, &option, this).width();
}

int HistoryHeader::SortMarkWidth() const {
  constexpr int kAnyWidth = 1000;
  return CaptionRoom(kAnyWidth, false) - CaptionRoom(kAnyWidth, true);
}

// Elides a caption before the sort mark, which the base class does not do.
void HistoryHeader::initStyleOptionForIndex(QStyleOptionHeader* option, int section) const {
  QHeaderView::initStyleOptionForIndex(option, section);
  const bool marked = isSortIndicatorShown() && sortIndicatorSection() == section;
  option->text = option->fontMetrics.elidedText(
      model()->headerData(section, Qt::Horizontal, Qt::DisplayRole).toString(), textElideMode(),
      CaptionRoom(sectionSize(section), marked));
}

std::vector<ShownColumn> HistoryHeader::Shown() const {
  std::vector<ShownColumn> shown;
  for (int visual = 0; visual < count(); ++visual) {
    const int section = logicalIndex(visual);
    if (!isSectionHidden(section)) {
      shown.push_back({.column = section + 1, .width = sectionSize(section)});
    }
  }
  return shown;
}

void HistoryHeader::ApplyColors() {
  const QColor specified = HistoryStyles::HeaderColor(palette());
  if (palette().color(QPalette::ButtonText) != specified) {
    QPalette colors;  // all else stays the form's
    colors.setColor(QPalette::ButtonText, specified);
    setPalette(colors);
  }
}

void HistoryHeader::changeEvent(QEvent* event) {
  QHeaderView::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) {
    ApplyColors();
  }
}

HistoryTableView::HistoryTableView(QWidget* parent)
    : QTableView(parent), model_(new HistoryTableModel(this)), header_(new HistoryHeader(this)) {
  setObjectName(QStringLiteral("grdTRANS"));
  setAccessibleName(QStringLiteral("Transactions"));
  setFont(HistoryStyles::CellFont());
  setHorizontalHeader(header_);
  setModel(model_);
  setSelectionBehavior(SelectRows);
  setSelectionMode(SingleSelection);
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
  if (const HistoryGrid* const grid = model_->Grid(); grid != nullptr) {
    header_->ShowColumns(*grid);
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
  if (row < 0 || row >= model_->rowCount()) {
    return;
  }
  const std::vector<ShownColumn> shown = header_->Shown();
  const int column = currentIndex().isValid() ? currentIndex().column()
                     : shown.empty()          ? 0
                                              : shown.front().column - 1;
  setCurrentIndex(model_->index(row, column));
}

void HistoryTableView::GoToTop() {
  setCurrentIndex({});
  verticalScrollBar()->setValue(0);
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
               row == currentIndex().row());
  }
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
  for (const QModelIndex& index : {current, previous}) {
    if (index.isValid()) {
      viewport()->update(LineOf(index.row()));
    }
  }
  if (current.row() != previous.row()) {
    Q_EMIT RowChanged(current.row());
  }
}

// To the first and last row in the same column.
QModelIndex HistoryTableView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
  const QModelIndex wanted = QTableView::moveCursor(action, modifiers);
  const bool to_an_end = (action == MoveHome || action == MoveEnd) &&
                         modifiers.testFlag(Qt::ControlModifier) && currentIndex().isValid();
  return to_an_end && wanted.isValid() ? wanted.siblingAtColumn(currentIndex().column()) : wanted;
}

// Groups.

void HistoryTableView::keyPressEvent(QKeyEvent* event) {
  if (TurnByKey(*event)) {
    event->accept();
  } else {
    QTableView::keyPressEvent(event);
  }
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
  if (row < 0 || event->button() != Qt::LeftButton) {
    QTableView::mousePressEvent(event);
    return;
  }
  GoToRow(row);
  if (OnMark(point, row)) {
    Turn(row);
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
