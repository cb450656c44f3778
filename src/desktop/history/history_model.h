#pragma once

#include <QAbstractTableModel>
#include <cstdint>
#include <exception>

#include "history/history_grid.h"

namespace vrx {

// Adapts a history grid to Qt's table model: the columns by their index minus 1, whatever their
// positions, and only the visible rows, from 0. Reads a row on demand and keeps only that one.
class HistoryTableModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  // Further rows are not shown, because a Qt table counts pixels in 32 bits.
  static constexpr int kMostRows = 40'000'000;

  using QAbstractTableModel::QAbstractTableModel;

  // nullptr: no rows. The grid must exist until the next one is set or the model ends.
  void SetGrid(HistoryGrid* grid);

  // The rows of the grid have changed. Adds or removes rows at the end.
  void Refresh();

  // An empty record if it cannot be read; Failed reports that once until the next Refresh.
  const ShownRow& RowAt(int row) const;

  // Continues to read the sums of these rows, as HistoryGrid::ReadSums. A failure leaves them out
  // until the next Refresh, without a report: the operator did not ask for them now.
  SumsRead ReadSums(int first, int last, std::int64_t records);

  // The grid's columns.
  const HistoryGrid* Grid() const { return grid_; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  // A group row returns its caption for every column.
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 Q_SIGNALS:
  // A row could not be read, possibly during painting, so the receiver must not open a message box.
  void Failed(std::exception_ptr failure) const;

 private:
  const ShownRow& Read(int row) const;

  HistoryGrid* grid_ = nullptr;
  int rows_ = 0;
  mutable int held_row_ = -1;
  mutable ShownRow held_;
  mutable bool failed_ = false;
  bool sums_failed_ = false;
};

}  // namespace vrx
