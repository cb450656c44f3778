#include "desktop/records/record_list.h"

#include <QAbstractItemView>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QStyledItemDelegate>
#include <QWheelEvent>
#include <algorithm>
#include <string>
#include <utility>

#include "desktop/records/field_boxes.h"
#include "feed/record_fields.h"
#include "widgets/drawing.h"
#include "widgets/fields.h"
#include "widgets/labels.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

RecordListModel::RecordListModel(std::vector<RecordColumn> columns, QObject* parent)
    : QAbstractTableModel(parent), columns_(std::move(columns)) {}

void RecordListModel::Show(std::vector<RecordRow> rows) {
  const bool same_records =
      std::equal(rows.begin(), rows.end(), rows_.begin(), rows_.end(),
                 [](const RecordRow& one, const RecordRow& other) { return one.id == other.id; });
  if (!same_records) {
    beginResetModel();
    rows_ = std::move(rows);
    endResetModel();
    return;
  }
  rows_ = std::move(rows);
  if (!rows_.empty()) {
    Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
  }
}

void RecordListModel::SetCaption(const std::string& field, const QString& caption) {
  const auto column = std::find_if(columns_.begin(), columns_.end(),
                                   [&](const RecordColumn& row) { return row.field == field; });
  column->caption = caption;
  const int section = static_cast<int>(column - columns_.begin());
  Q_EMIT headerDataChanged(Qt::Horizontal, section, section);
}

int RecordListModel::RowOf(int id) const {
  const auto row =
      std::lower_bound(rows_.begin(), rows_.end(), id,
                       [](const RecordRow& record, int wanted) { return record.id < wanted; });
  return row == rows_.end() || row->id != id ? -1 : static_cast<int>(row - rows_.begin());
}

int RecordListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int RecordListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

// Ctrl+C asks for the current cell even if there is none.
QVariant RecordListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) {
    return {};
  }
  switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
      return rows_.at(static_cast<std::size_t>(index.row()))
          .cells.at(static_cast<std::size_t>(index.column()));
    case Qt::TextAlignmentRole:
      return static_cast<int>((Column(index.column()).number ? Qt::AlignRight : Qt::AlignLeft) |
                              Qt::AlignVCenter);
    default:
      return {};
  }
}

QVariant RecordListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) {
    return {};
  }
  switch (role) {
    case Qt::DisplayRole:
      return Column(section).caption;
    case Qt::TextAlignmentRole:
      return static_cast<int>((Column(section).number ? Qt::AlignRight : Qt::AlignLeft) |
                              Qt::AlignVCenter);
    default:
      return {};
  }
}

Qt::ItemFlags RecordListModel::flags(const QModelIndex& index) const {
  const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
  const bool typed = index.isValid() && !read_only_ && Column(index.column()).typed;
  return typed ? flags | Qt::ItemIsEditable : flags;
}

bool RecordListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  if (role != Qt::EditRole || value == data(index, role)) {
    return false;
  }
  Q_EMIT Typed(IdOf(index.row()), Column(index.column()).field, value.toString());
  return true;
}

// Cells are edited with boxes that have the same filters as the form's boxes.
class RecordListGrid::CellDelegate : public QStyledItemDelegate {
 public:
  explicit CellDelegate(RecordListGrid* grid) : QStyledItemDelegate(grid), grid_(grid) {}

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    QStyledItemDelegate::paint(painter, option, index);
    if (index == grid_->currentIndex()) {
      const QPalette::ColorGroup group = grid_->hasFocus() ? QPalette::Active : QPalette::Inactive;
      PaintCurrentCell(*painter, option.rect, option.palette.color(group, QPalette::Highlight),
                       grid_->hasFocus());
    }
  }

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                        const QModelIndex& index) const override {
    const RecordColumn& column = grid_->Model().Column(index.column());
    const RecordField& field = FieldOf(grid_->kind_, column.field);
    auto* const box = new FilteredEdit(
        [filter = field.filter](std::string_view /*text*/, int key) { return filter(key); },
        static_cast<int>(field.limit), parent);
    box->setFrame(false);
    box->setAutoFillBackground(true);
    box->setAlignment(column.number ? Qt::AlignRight : Qt::AlignLeft);
    box->setAccessibleName(column.caption);
    ExplainKeys(*box, field);
    connect(box, &FilteredEdit::Refused, grid_, &RecordListGrid::Refused);
    return box;
  }

  // Also runs whenever the cell changes during editing, so keeps the typed text.
  void setEditorData(QWidget* editor, const QModelIndex& index) const override {
    auto& box = *static_cast<FilteredEdit*>(editor);
    if (!box.isModified()) {
      box.setText(index.data(Qt::EditRole).toString());
    }
  }

  void setModelData(QWidget* editor, QAbstractItemModel* model,
                    const QModelIndex& index) const override {
    model->setData(index, static_cast<FilteredEdit*>(editor)->text(), Qt::EditRole);
  }

 protected:
  bool eventFilter(QObject* editor, QEvent* event) override {
    if (event->type() == QEvent::KeyPress && TurnsTabs(*static_cast<QKeyEvent*>(event))) {
      return false;
    }
    // The cell is left only for another field; another window takes the focus only temporarily.
    if (event->type() == QEvent::FocusOut && !LeavesField(*static_cast<QFocusEvent*>(event))) {
      return false;
    }
    return QStyledItemDelegate::eventFilter(editor, event);
  }

  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    option->text = PaddedHeader::Padded(option->text);
  }

 private:
  RecordListGrid* grid_;
};

RecordListGrid::RecordListGrid(RecordKind kind, const QString& name,
                               std::vector<RecordColumn> columns, QString empty_text,
                               QWidget* parent)
    : QTableView(parent),
      kind_(kind),
      model_(new RecordListModel(std::move(columns), this)),
      empty_text_(std::move(empty_text)) {
  setObjectName(name);
  setModel(model_);
  setItemDelegate(new CellDelegate(this));
  setSelectionBehavior(SelectRows);
  setSelectionMode(SingleSelection);
  setEditTriggers(DoubleClicked | EditKeyPressed | AnyKeyPressed);
  setTabKeyNavigation(false);
  setAlternatingRowColors(true);
  setWordWrap(false);
  setCornerButtonEnabled(false);
  verticalHeader()->hide();
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kSpacing);
  setHorizontalHeader(new PaddedHeader(this));
  QSizePolicy keeps_place = sizePolicy();
  keeps_place.setRetainSizeWhenHidden(true);
  setSizePolicy(keeps_place);
  connect(horizontalHeader(), &QHeaderView::sectionResized, this,
          [this] { sized_by_operator_ = sized_by_operator_ || !sizing_; });
  SizeColumns();
}

// At least as wide as the longest text of a field, whatever the records are. The columns fill the
// grid until the operator sizes one.
void RecordListGrid::SizeColumns() {
  if (sized_by_operator_) {
    return;
  }
  const QScopedValueRollback sizing(sizing_, true);
  ShareWidth(*horizontalHeader(), viewport()->width(), [this](int column) {
    const RecordColumn& row = model_->Column(column);
    const int caption = horizontalHeader()->sectionSizeHint(column) + kGroupSpacing;
    return std::max(caption, row.typed ? WidthFor(*this, FieldOf(kind_, row.field).limit) : 0);
  });
}

void RecordListGrid::resizeEvent(QResizeEvent* event) {
  QTableView::resizeEvent(event);
  SizeColumns();
}

void RecordListGrid::SetCaption(const std::string& field, const QString& caption) {
  model_->SetCaption(field, caption);
  SizeColumns();
}

void RecordListGrid::Show(std::vector<RecordRow> rows, int id) {
  const QScopedValueRollback by_program(by_program_, true);
  model_->Show(std::move(rows));
  viewport()->update();
  Select(id);
}

void RecordListGrid::Select(int id) {
  const QScopedValueRollback by_program(by_program_, true);
  const int row = model_->RowOf(id);
  if (row < 0) {
    setCurrentIndex({});
    clearSelection();
  } else if (row != currentIndex().row()) {
    setCurrentIndex(model_->index(row, std::max(0, currentIndex().column())));
  }
}

void RecordListGrid::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QTableView::currentChanged(current, previous);
  if (!by_program_ && current.isValid() && current.row() != previous.row()) {
    Q_EMIT RowChosen(model_->IdOf(current.row()));
  }
}

void RecordListGrid::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
  if (std::exchange(keeps_editor_, false) && hint != QAbstractItemDelegate::RevertModelCache) {
    return;
  }
  QTableView::closeEditor(editor, hint);
}

void RecordListGrid::FinishEdit() {
  if (IsEditing()) {
    QWidget* const editor = indexWidget(currentIndex());
    commitData(editor);
    closeEditor(editor, QAbstractItemDelegate::NoHint);
  }
}

void RecordListGrid::GiveUpEdit() {
  if (IsEditing()) {
    closeEditor(indexWidget(currentIndex()), QAbstractItemDelegate::RevertModelCache);
  }
}

void RecordListGrid::ReturnToEdit() {
  QWidget* const editor = IsEditing() ? indexWidget(currentIndex()) : nullptr;
  (editor == nullptr ? this : editor)->setFocus();
}

// An invalid index after the last one.
QModelIndex RecordListGrid::NextEntry(const QModelIndex& cell) const {
  const auto typed_from = [this](int column) {
    while (column < model_->columnCount() && !model_->Column(column).typed) {
      ++column;
    }
    return column;
  };
  const int column = typed_from(cell.column() + 1);
  return column < model_->columnCount() ? model_->index(cell.row(), column)
                                        : model_->index(cell.row() + 1, typed_from(0));
}

bool RecordListGrid::EnterPressed() {
  const bool edited = IsEditing();
  FinishEdit();
  if (IsEditing()) {
    return true;
  }
  const QModelIndex next = NextEntry(currentIndex());
  if (!next.isValid()) {
    return false;
  }
  const int id = model_->IdOf(next.row());
  setCurrentIndex(next);
  // The operator may stay with the row, and its cells may be closed.
  if (edited && currentIndex() == next && model_->IdOf(next.row()) == id &&
      next.flags().testFlag(Qt::ItemIsEditable)) {
    edit(next);
  }
  return true;
}

// Keys that the editor ignores would move the grid to another cell.
void RecordListGrid::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
      FinishEdit();
      break;
    default:
      QTableView::keyPressEvent(event);
      return;
  }
  if (IsEditing()) {
    event->accept();
  } else {
    QTableView::keyPressEvent(event);
  }
}

void RecordListGrid::mousePressEvent(QMouseEvent* event) {
  const QModelIndex cell = indexAt(event->position().toPoint());
  const bool elsewhere = cell != currentIndex();
  if (elsewhere && (IsEditing() || cell.row() != currentIndex().row()) && leave_ && !leave_()) {
    event->accept();
    return;
  }
  QTableView::mousePressEvent(event);
}

void RecordListGrid::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  if (model_->rowCount() == 0) {
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(kGroupSpacing, kGroupSpacing, -kGroupSpacing, 0),
                     Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, empty_text_);
  }
}

RecordIdList::RecordIdList(const QString& name, int records, QWidget* parent) : QComboBox(parent) {
  setObjectName(name);
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  constexpr int kCharacters = 14;
  setMinimumContentsLength(kCharacters);
  constexpr int kItemsInView = 20;
  setMaxVisibleItems(kItemsInView);
  view()->setAccessibleName(QTr("ID Number"));
  addItem(QString());
  for (int id = 1; id <= records; ++id) {
    addItem(ToQString(FormatIdPrefix(id)));
  }
}

void RecordIdList::SetItem(int id, std::string_view name) {
  setItemText(id, ToQString(FormatIdPrefix(id) + std::string(name)));
}

void RecordIdList::keyPressEvent(QKeyEvent* event) {
  event->setAccepted(!TurnsTabs(*event));
  const bool command = (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) != 0;
  if (!command && !event->text().isEmpty() && event->text().front().isPrint()) {
    Q_EMIT Typed();
  }
}

void RecordIdList::wheelEvent(QWheelEvent* event) { event->ignore(); }

}  // namespace vrx
