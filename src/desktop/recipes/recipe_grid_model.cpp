#include "desktop/recipes/recipe_grid_model.h"

#include <algorithm>
#include <utility>

#include "widgets/qt_text.h"

namespace vrx {
namespace {

const RecipeColumnRow& ColumnRow(int column) {
  return RecipeColumns()[static_cast<std::size_t>(column)];
}

}  // namespace

void RecipeGridModel::Show(const RecipeOnShow& shown) {
  const bool was_idle = !pending_;
  line_count_ = shown.LineCount();
  pending_ = shown.EntryPending();
  SetRows(RowsOf(shown));
  if (was_idle == pending_ && line_count_ < rowCount()) {
    const QModelIndex entry = index(line_count_, kColumnIngredient);
    Q_EMIT dataChanged(entry, entry);
  }
}

std::vector<RecipeGridModel::Row> RecipeGridModel::RowsOf(const RecipeOnShow& shown) const {
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
    row.at(static_cast<std::size_t>(column)) = ToQString(CellText(line, column));
  }
  QString& ingredient = row.at(kColumnIngredient);
  ingredient = names_.value(ingredient);
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
    const auto first = std::mismatch(shown.begin(), shown.end(), next.begin()).first;
    if (first == shown.end()) {
      continue;
    }
    const auto last = std::mismatch(shown.rbegin(), shown.rend(), next.rbegin()).first.base() - 1;
    const auto first_column = static_cast<int>(first - shown.begin());
    const auto last_column = static_cast<int>(last - shown.begin());
    shown = std::move(next);
    Q_EMIT dataChanged(index(row, first_column), index(row, last_column));
  }
}

void RecipeGridModel::SetNames(const std::vector<IngredientRecord>& ingredients) {
  names_.clear();
  for (const IngredientRecord& ingredient : ingredients) {
    names_.insert(QString::number(ingredient.id), ToQString(ingredient.name));
  }
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
  const QString& text =
      rows_.at(static_cast<std::size_t>(index.row())).at(static_cast<std::size_t>(index.column()));
  switch (role) {
    case Qt::EditRole:
      return text;
    case Qt::DisplayRole:
      return index.column() == kColumnIngredient && IsIdle(index.row()) && !read_only_
                 ? QStringLiteral("click to add an ingredient")
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
  const bool entered = ColumnRow(index.column()).manner == CellManner::kEntered && !read_only_;
  return Qt::ItemIsEnabled | Qt::ItemIsSelectable |
         (entered ? Qt::ItemIsEditable : Qt::NoItemFlags);
}

}  // namespace vrx
