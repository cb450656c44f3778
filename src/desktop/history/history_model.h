#pragma once

#include <QAbstractTableModel>
#include <cstdint>
#include <exception>

#include "history/history_grid.h"

namespace vrx {

// The rows of a history grid as a table of the toolkit asks for them: the 112 columns by their
// index less 1, whatever their positions, and only the rows that can be seen, from 0. Reads a row
// when it is asked for and keeps only that one.
class HistoryTableModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  // More rows than this are not shown: a table of the toolkit counts pixels in 32 bits.
  static constexpr int kMostRows = 40'000'000;

  using QAbstractTableModel::QAbstractTableModel;

  // nullptr: none, and no rows. The grid outlives the model, or the next one that is set.
  void SetGrid(HistoryGrid* grid);

  // The grid's rows, or what they say, are no longer the same. Rows come and go at the end.
  void Refresh();

  // An empty record where it cannot be read, which Failed tells once before the next Refresh.
  const ShownRow& RowAt(int row) const;

  // The grid's columns.
  const HistoryGrid* Grid() const { return grid_; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  // A group row says its caption in every column.
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 Q_SIGNALS:
  // A row could not be read, perhaps in the middle of a drawing: not the time to ask anything.
  void Failed(std::exception_ptr failure) const;

 private:
  const ShownRow& Read(int row) const;

  HistoryGrid* grid_ = nullptr;
  int rows_ = 0;
  mutable int held_row_ = -1;
  mutable ShownRow held_;
  mutable bool failed_ = false;
};

}  // namespace vrx
