#include "desktop/recipes/recipe_grid_cells.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QPainter>
#include <QStyle>
#include <algorithm>
#include <cstddef>
#include <utility>

#include "desktop/recipes/ingredient_list.h"
#include "feed/recipe_columns.h"
#include "widgets/drawing.h"
#include "widgets/fields.h"
#include "widgets/layout.h"
#include "widgets/qt_text.h"

namespace vrx {

namespace {

const RecipeColumnRow& ColumnRow(int column) {
  return RecipeColumns()[static_cast<std::size_t>(column)];
}

constexpr double kDescriptionStrength = 0.7;  // of the text color

// Where the descriptions begin, below each other. A name has six characters.
int DescriptionOffset(const QFontMetrics& metrics) {
  return metrics.horizontalAdvance(QStringLiteral("MMMMMM")) + kSpacing;
}

constexpr double kTint = 0.28;
constexpr double kFrameStrength = 0.35;

double Mixed(double one, double other, double share) { return one + (other - one) * share; }

QColor Blend(const QColor& one, const QColor& other, double share) {
  return QColor::fromRgbF(static_cast<float>(Mixed(one.redF(), other.redF(), share)),
                          static_cast<float>(Mixed(one.greenF(), other.greenF(), share)),
                          static_cast<float>(Mixed(one.blueF(), other.blueF(), share)));
}

QPalette::ColorRole BackgroundRole(CellRole role) {
  switch (role) {
    case CellRole::kEntered:
      return QPalette::Base;
    case CellRole::kReadOnly:
      return QPalette::Window;
    case CellRole::kComputed:
      break;
  }
  return QPalette::ToolTipBase;
}

constexpr int kArrowWidth = 18;
constexpr int kFrameMargin = 1;
constexpr int kPercentLimit = 12;  // the rule of the cell ends a percentage long before
constexpr int kWeightLimit = 6;

// Lines that omit the corners look round and take a tenth of the time of a rounded rectangle.
void PaintFrame(QPainter& painter, const QRect& cell, const QColor& color) {
  const QRect frame =
      cell.adjusted(kFrameMargin, kFrameMargin, -kFrameMargin - 1, -kFrameMargin - 1);
  painter.fillRect(frame.left() + 1, frame.top(), frame.width() - 1, 1, color);
  painter.fillRect(frame.left() + 1, frame.bottom() + 1, frame.width() - 1, 1, color);
  painter.fillRect(frame.left(), frame.top() + 1, 1, frame.height() - 1, color);
  painter.fillRect(frame.right() + 1, frame.top() + 1, 1, frame.height() - 1, color);
}

}  // namespace

void RecipeGridModel::Show(const CurrentRecipe& shown) {
  const bool was_idle = !pending_;
  line_count_ = shown.LineCount();
  pending_ = shown.EntryPending();
  SetRows(RowsOf(shown));
  if (was_idle == pending_ && line_count_ < rowCount()) {
    const QModelIndex entry = index(line_count_, kColumnIngredient);
    Q_EMIT dataChanged(entry, entry);
  }
}

std::vector<RecipeGridModel::Row> RecipeGridModel::RowsOf(const CurrentRecipe& shown) const {
  std::vector<Row> rows;
  for (const RecipeLineRecord& line : shown.ration.lines) {
    rows.push_back(RowOf(line));
  }
  if (shown.EntryPending()) {
    rows.push_back(RowOf(shown.Current()));
  } else if (shown.entry_row_offered || shown.OnEntryRow()) {
    rows.emplace_back();
  }
  return rows;
}

RecipeGridModel::Row RecipeGridModel::RowOf(const RecipeLineRecord& line) const {
  Row row;
  for (int column = 0; column < kRecipeColumnCount; ++column) {
    row.cells.at(static_cast<std::size_t>(column)) = ToQString(CellText(line, column));
  }
  QString& name = row.cells.at(kColumnIngredient);
  const Ingredient ingredient = ingredients_.value(name);
  name = ingredient.name;
  row.description = ingredient.description;
  return row;
}

void RecipeGridModel::SetRows(std::vector<Row> rows) {
  const int before = rowCount();
  const int after = static_cast<int>(rows.size());
  if (after < before) {
    beginRemoveRows({}, after, before - 1);
    rows_.resize(rows.size());
    endRemoveRows();
  } else if (after > before) {
    beginInsertRows({}, before, after - 1);
    rows_.insert(rows_.end(), rows.begin() + before, rows.end());
    endInsertRows();
  }
  for (int row = 0; row < std::min(before, after); ++row) {
    Row& shown = rows_.at(static_cast<std::size_t>(row));
    Row& next = rows.at(static_cast<std::size_t>(row));
    const auto& before_cells = shown.cells;
    const auto& cells = next.cells;
    const bool described = shown.description != next.description;
    const auto first = std::mismatch(before_cells.begin(), before_cells.end(), cells.begin()).first;
    if (first == before_cells.end() && !described) {
      continue;
    }
    const auto last =
        std::mismatch(before_cells.rbegin(), before_cells.rend(), cells.rbegin()).first.base();
    const auto first_column =
        described ? kColumnIngredient : static_cast<int>(first - before_cells.begin());
    const auto last_column =
        std::max(first_column, static_cast<int>(last - before_cells.begin()) - 1);
    shown = std::move(next);
    Q_EMIT dataChanged(index(row, first_column), index(row, last_column));
  }
}

void RecipeGridModel::SetNames(const std::vector<IngredientRecord>& ingredients) {
  ingredients_.clear();
  for (const IngredientRecord& ingredient : ingredients) {
    ingredients_.insert(QString::number(ingredient.id),
                        {ToQString(ingredient.name), ToQString(ingredient.description)});
  }
}

int RecipeGridModel::WidestIngredient(const QFontMetrics& metrics) const {
  int widest = 0;
  for (const Ingredient& ingredient : ingredients_) {
    widest = std::max(
        widest, DescriptionOffset(metrics) + metrics.horizontalAdvance(ingredient.description));
  }
  return widest;
}

void RecipeGridModel::SetUnit(std::string_view unit) {
  unit_ = ToQString(unit);
  Q_EMIT headerDataChanged(Qt::Horizontal, 0, kRecipeColumnCount - 1);
}

void RecipeGridModel::SetReadOnly(bool read_only) {
  if (read_only != read_only_) {
    read_only_ = read_only;
    Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, kRecipeColumnCount - 1));
  }
}

int RecipeGridModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int RecipeGridModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kRecipeColumnCount;
}

QVariant RecipeGridModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) {
    return {};
  }
  const Row& row = rows_.at(static_cast<std::size_t>(index.row()));
  const QString& text = row.cells.at(static_cast<std::size_t>(index.column()));
  const bool described = index.column() == kColumnIngredient && !row.description.isEmpty();
  switch (role) {
    case kDescriptionRole:
      return described ? QVariant(row.description) : QVariant();
    case Qt::ToolTipRole:
    case Qt::AccessibleTextRole:
      return described ? QVariant(text + QStringLiteral(", ") + row.description) : QVariant();
    case Qt::EditRole:
      return text;
    case Qt::DisplayRole:
      return index.column() == kColumnIngredient && IsIdle(index.row()) && !read_only_
                 ? QTr("click to add an ingredient")
                 : text;
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(
          (index.column() == kColumnIngredient ? Qt::AlignLeft : Qt::AlignRight) |
          Qt::AlignVCenter);
    default:
      return {};
  }
}

QVariant RecipeGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) {
    return role == Qt::DisplayRole ? QVariant(section + 1) : QVariant();
  }
  switch (role) {
    case Qt::DisplayRole:
      return ToQString(ColumnCaption(section, unit_.toStdString()));
    case Qt::TextAlignmentRole:
      return QVariant::fromValue((section == kColumnIngredient ? Qt::AlignLeft : Qt::AlignRight) |
                                 Qt::AlignVCenter);
    default:
      return {};
  }
}

Qt::ItemFlags RecipeGridModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) {
    return Qt::NoItemFlags;
  }
  const bool entered = ColumnRow(index.column()).role == CellRole::kEntered && !read_only_;
  return Qt::ItemIsEnabled | Qt::ItemIsSelectable |
         (entered ? Qt::ItemIsEditable : Qt::NoItemFlags);
}

RecipeCellLook LookOfCell(CellRole role, bool current_row, const QPalette& palette) {
  RecipeCellLook look{
      .background = palette.color(BackgroundRole(role)),
      .text = role == CellRole::kComputed ? QColor(Qt::blue) : palette.color(QPalette::Text)};
  if (current_row) {
    look.background = Blend(look.background, palette.color(QPalette::Highlight), kTint);
  }
  look.text = Readable(look.text, look.background, kTextContrast);
  if (role == CellRole::kEntered) {
    look.frame = Blend(look.background, look.text, kFrameStrength);
  }
  return look;
}

QColor DescriptionColor(const RecipeCellLook& look) {
  return Readable(Blend(look.background, look.text, kDescriptionStrength), look.background,
                  kTextContrast);
}

RecipeGridDelegate::RecipeGridDelegate(IngredientList& list, const RecipeGridModel& model,
                                       Commit commit, QObject* parent)
    : QStyledItemDelegate(parent), list_(list), model_(model), commit_(std::move(commit)) {}

QRect RecipeGridDelegate::ArrowOf(const QRect& cell) {
  return {cell.right() - kArrowWidth, cell.top(), kArrowWidth, cell.height()};
}

const RecipeCellLook& RecipeGridDelegate::Look(CellRole role, bool current_row,
                                               const QPalette& palette) const {
  if (looks_of_ != palette.cacheKey()) {
    looks_of_ = palette.cacheKey();
    for (const CellRole each : {CellRole::kEntered, CellRole::kReadOnly, CellRole::kComputed}) {
      for (const bool current : {false, true}) {
        looks_.at(static_cast<std::size_t>(each)).at(current ? 1 : 0) =
            LookOfCell(each, current, palette);
      }
    }
  }
  return looks_.at(static_cast<std::size_t>(role)).at(current_row ? 1 : 0);
}

void RecipeGridDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const {
  const bool current_row = index.row() == current_row_;
  const CellRole role = ColumnRow(index.column()).role;
  const RecipeCellLook& look = Look(role, current_row, option.palette);
  painter->save();
  painter->fillRect(option.rect, look.background);
  if (look.frame.isValid()) {
    PaintFrame(*painter, option.rect, look.frame);
  }
  QRect text_rect = option.rect.adjusted(kCellMargin, 0, -kCellMargin, 0);
  const bool drops_down = index.column() == kColumnIngredient && current_row;
  if (drops_down) {
    PaintArrow(*painter, option.rect, look.text);
    text_rect.setRight(ArrowOf(option.rect).left());
  }
  painter->setPen(look.text);
  QFont font = option.font;
  font.setItalic(index.column() == kColumnIngredient && model_.IsIdle(index.row()));
  painter->setFont(font);
  const QFontMetrics metrics(font);
  const QString text = index.data(Qt::DisplayRole).toString();
  const int alignment = index.data(Qt::TextAlignmentRole).toInt() | Qt::TextSingleLine;
  const QString description = index.data(RecipeGridModel::kDescriptionRole).toString();
  const QRect rest = text_rect.adjusted(
      std::max(DescriptionOffset(metrics), metrics.horizontalAdvance(text) + kSpacing), 0, 0, 0);
  painter->drawText(text_rect, alignment,
                    metrics.elidedText(text, Qt::ElideRight, text_rect.width()));
  if (!description.isEmpty() && rest.width() > 0) {
    painter->setPen(DescriptionColor(look));
    painter->drawText(rest, alignment,
                      metrics.elidedText(description, Qt::ElideRight, rest.width()));
  }
  const auto* const grid = qobject_cast<const QAbstractItemView*>(option.widget);
  if (grid != nullptr && grid->currentIndex() == index) {
    PaintCurrentCell(*painter, option.rect, look.background,
                     (option.state & QStyle::State_HasFocus) != 0);
  }
  painter->restore();
}

void RecipeGridDelegate::PaintArrow(QPainter& painter, const QRect& cell,
                                    const QColor& color) const {
  const QRectF arrow = ArrowOf(cell);
  const qreal width = 7;
  const qreal height = 4;
  const QPointF middle = arrow.center();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(color);
  painter.drawPolygon(QPolygonF({{middle.x() - width / 2, middle.y() - height / 2},
                                 {middle.x() + width / 2, middle.y() - height / 2},
                                 {middle.x(), middle.y() + height / 2}}));
  painter.setBrush(Qt::NoBrush);
  painter.setRenderHint(QPainter::Antialiasing, false);
}

QWidget* RecipeGridDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                          const QModelIndex& index) const {
  const std::optional<LineColumn> column = ColumnRow(index.column()).entered_as;
  if (!column) {
    return nullptr;
  }
  if (*column != LineColumn::kIngredient) {
    return MakeNumberEditor(parent, *column);
  }
  auto* const editor = new IngredientDropDown(list_, parent);
  connect(editor, &FilteredEdit::Refused, this, &RecipeGridDelegate::KeyRefused);
  connect(editor, &IngredientDropDown::Picked, this, [this, editor] {
    auto* const self = const_cast<RecipeGridDelegate*>(this);
    Q_EMIT self->commitData(editor);
    Q_EMIT self->closeEditor(editor, EditNextItem);
  });
  return editor;
}

QWidget* RecipeGridDelegate::MakeNumberEditor(QWidget* parent, LineColumn column) const {
  auto* const editor = new FilteredEdit(
      [column](std::string_view text, int key) { return TypeLineKey(column, text, key).code; },
      column == LineColumn::kTarget ? kWeightLimit : kPercentLimit, parent);
  editor->Explain([column](std::string_view text,
                           int key) { return std::string(TypeLineKey(column, text, key).refusal); },
                  FilteredEdit::Takes::kNumber);
  editor->setObjectName(QStringLiteral("grdREC.Number"));
  editor->setAlignment(Qt::AlignRight);
  editor->setAccessibleName(QString::fromStdString(std::string(
      ColumnRow(column == LineColumn::kTarget ? kColumnTarget : kColumnIngredientPercent)
          .caption)));
  connect(editor, &FilteredEdit::Refused, this, &RecipeGridDelegate::KeyRefused);
  return editor;
}

// The cell is left when the focus moves to another field. Another window takes it only temporarily,
// and the grid itself ends the edit when it gets the focus.
bool RecipeGridDelegate::eventFilter(QObject* editor, QEvent* event) {
  if (event->type() == QEvent::KeyPress && TurnsTabs(*static_cast<QKeyEvent*>(event))) {
    return false;
  }
  if (event->type() == QEvent::FocusOut) {
    const QWidget* const viewport = static_cast<QWidget*>(editor)->parentWidget();
    if (!LeavesField(*static_cast<QFocusEvent*>(event)) ||
        viewport->parentWidget() == QApplication::focusWidget()) {
      return false;
    }
  }
  return QStyledItemDelegate::eventFilter(editor, event);
}

// Also runs whenever the cell changes during editing, so keeps the typed text.
void RecipeGridDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  const QString text = index.data(Qt::EditRole).toString();
  if (auto* const list = qobject_cast<IngredientDropDown*>(editor)) {
    list->Begin(text);
  } else if (auto* const number = qobject_cast<FilteredEdit*>(editor);
             number != nullptr && !number->isModified()) {
    number->setText(text);
  }
}

void RecipeGridDelegate::setModelData(QWidget* editor, QAbstractItemModel* /*model*/,
                                      const QModelIndex& index) const {
  commit_(*editor, index);
}

void RecipeGridDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                              const QModelIndex& /*index*/) const {
  editor->setGeometry(option.rect);
}

}  // namespace vrx
