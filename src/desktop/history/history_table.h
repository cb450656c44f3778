#pragma once

#include <QHeaderView>
#include <QTableView>
#include <set>
#include <vector>

#include "desktop/history/history_model.h"
#include "desktop/history/history_painting.h"
#include "history/history_grid.h"

namespace vrx {

// A column that shows, by its index, and its width in logical pixels.
struct ShownColumn {
  int column;
  int width;
};

// The strip of column headers of the history grid; a section is a column's index less 1. A click
// sorts, a drag moves a column. A column keeps the width that the operator gave it, whatever group
// shows it; the others are as wide as their caption and their values need.
class HistoryHeader : public QHeaderView {
  Q_OBJECT

 public:
  explicit HistoryHeader(QWidget* parent);

  // Captions, order and visibility as the grid has them, and whether there is a strip at all.
  void ShowColumns(const HistoryGrid& grid);

  // The visible columns in their order.
  std::vector<ShownColumn> Shown() const;

 Q_SIGNALS:
  void SortChosen(int column);
  void ColumnMoved(int column, int position);

 protected:
  void changeEvent(QEvent* event) override;
  void initStyleOptionForIndex(QStyleOptionHeader* option, int section) const override;

 private:
  void ShowOrder(const HistoryColumns& columns);
  void ShowSort(const HistoryGrid& grid);
  int WidthFor(int column, const std::string& caption) const;
  // What a style leaves of a section of that width for its caption, beside the sort mark or
  // without.
  int CaptionRoom(int width, bool marked) const;
  int SortMarkWidth() const;
  void ApplyColors();

  std::set<int> sized_;  // by the operator
  bool by_program_ = false;
};

// `grdTRANS` on the screen. Reads and draws the rows that can be seen, whatever there are. A group
// opens and closes by a click on its mark, a double click, and the keys Right or +, Left or -, and
// Space.
class HistoryTableView : public QTableView {
  Q_OBJECT

 public:
  explicit HistoryTableView(QWidget* parent = nullptr);

  HistoryTableModel& Model() const { return *model_; }
  HistoryHeader& Header() const { return *header_; }

  // Shows what the grid holds by now.
  void ShowGrid();

  // What a table without rows says.
  void SetEmptyText(const QString& text);

  // Goes to a row, from 0; none that is not there.
  void GoToRow(int row);
  // Stands at the first row with none of them selected.
  void GoToTop();

  // A key that types searches nothing: that would walk the table.
  void keyboardSearch(const QString& /*search*/) override {}

 Q_SIGNALS:
  // The operator opens or closes the group of that row, from 0.
  void GroupChosen(int row, bool open);
  // Another row is the current one, from 0; -1 for none.
  void RowChanged(int row);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  void scrollContentsBy(int dx, int dy) override;
  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
  int sizeHintForColumn(int column) const override;

 private:
  std::vector<ColumnSpan> SpansIn(const QRect& area) const;
  // The row under a point if it is one of a group, else -1.
  int GroupAt(const QPoint& point) const;
  bool OnMark(const QPoint& point, int row) const;
  QRect LineOf(int row) const;
  void Turn(int row);
  bool TurnByKey(const QKeyEvent& key);
  void ApplyRowHeight();

  HistoryTableModel* model_;
  HistoryHeader* header_;
  QString empty_text_;
};

}  // namespace vrx
