#include "desktop/history/history_model.h"

#include <algorithm>
#include <cstddef>

#include "widgets/qt_text.h"

namespace vrx {

void HistoryTableModel::SetGrid(HistoryGrid* grid) {
  grid_ = grid;
  Refresh();
}

void HistoryTableModel::Refresh() {
  held_row_ = -1;
  failed_ = false;
  sums_failed_ = false;
  const int rows =
      grid_ == nullptr ? 0 : static_cast<int>(std::min<std::int64_t>(grid_->RowCount(), kMostRows));
  if (rows > rows_) {
    beginInsertRows({}, rows_, rows - 1);
    rows_ = rows;
    endInsertRows();
  } else if (rows < rows_) {
    beginRemoveRows({}, rows, rows_ - 1);
    rows_ = rows;
    endRemoveRows();
  }
  if (rows_ > 0) {
    Q_EMIT dataChanged(index(0, 0), index(rows_ - 1, kGridColumnCount - 1));
  }
  Q_EMIT headerDataChanged(Qt::Horizontal, 0, kGridColumnCount - 1);
}

const ShownRow& HistoryTableModel::RowAt(int row) const {
  return row == held_row_ ? held_ : Read(row);
}

const ShownRow& HistoryTableModel::Read(int row) const {
  try {
    held_ = grid_->RowOnScreen(std::int64_t{row} + 1);
    held_row_ = row;
  } catch (const std::exception&) {
    held_ = {.cells = std::vector<std::string>(kGridColumnCount)};
    held_row_ = -1;
    if (!failed_) {
      failed_ = true;
      Q_EMIT Failed(std::current_exception());
    }
  }
  return held_;
}

SumsRead HistoryTableModel::ReadSums(int first, int last, std::int64_t records) {
  if (grid_ == nullptr || failed_ || sums_failed_) {
    return {};
  }
  try {
    const SumsRead read = grid_->ReadSums(std::int64_t{first} + 1, std::int64_t{last} + 1, records);
    if (read.any) {
      held_row_ = -1;
    }
    return read;
  } catch (const std::exception&) {
    sums_failed_ = true;
    return {};
  }
}

int HistoryTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : rows_;
}

int HistoryTableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kGridColumnCount;
}

// Ctrl+C reads the current cell even if no cell is current.
QVariant HistoryTableModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) {
    return {};
  }
  if (role == Qt::TextAlignmentRole) {
    return QVariant::fromValue(
        Qt::AlignVCenter |
        (HistoryColumnAt(index.column() + 1).right_aligned ? Qt::AlignRight : Qt::AlignLeft));
  }
  if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole) {
    return {};
  }
  const ShownRow& row = RowAt(index.row());
  if (role == Qt::AccessibleTextRole && !row.totals.empty()) {
    return ToQString(row.caption + ", " + row.totals);
  }
  return ToQString(row.kind == HistoryRowKind::kGroup
                       ? row.caption
                       : row.cells.at(static_cast<std::size_t>(index.column())));
}

QVariant HistoryTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || grid_ == nullptr) {
    return {};
  }
  switch (role) {
    case Qt::DisplayRole:
      return ToQString(grid_->Columns().Caption(section + 1));
    case Qt::TextAlignmentRole:
      return QVariant::fromValue(
          Qt::AlignVCenter |
          (HistoryColumnAt(section + 1).right_aligned ? Qt::AlignRight : Qt::AlignLeft));
    default:
      return {};
  }
}

}  // namespace vrx
