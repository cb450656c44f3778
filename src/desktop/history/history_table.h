#pragma once

#include <QHeaderView>
#include <QTableView>
#include <QTimer>
#include <cstdint>
#include <set>
#include <vector>

#include "desktop/history/history_model.h"
#include "desktop/history/history_painting.h"
#include "history/history_grid.h"

namespace vrx {

// A visible column: its index and its width in logical pixels.
struct ShownColumn {
  int column;
  int width;
};

// The column headers of the history grid; a section is a column's index minus 1. A click sorts, a
// drag moves a column. A column sized by the operator keeps its width in every group; other columns
// fit their captions and values.
class HistoryHeader : public QHeaderView {
  Q_OBJECT

 public:
  explicit HistoryHeader(QWidget* parent);

  // Sets captions, order and visibility as in the grid, and whether the headers are shown.
  void ShowColumns(const HistoryGrid& grid);

  // The visible columns in their order.
  [[nodiscard]] std::vector<ShownColumn> Shown() const;

 Q_SIGNALS:
  void SortChosen(int column);
  void ColumnMoved(int column, int position);

 protected:
  void changeEvent(QEvent* event) override;
  void initStyleOptionForIndex(QStyleOptionHeader* option, int section) const override;

 private:
  void ShowOrder(const HistoryColumns& columns);
  void ShowSort(const HistoryGrid& grid);
  [[nodiscard]] int WidthFor(int column, const std::string& caption) const;
  // The width for the caption within a section of that width, with or without the sort mark.
  [[nodiscard]] int CaptionRoom(int width, bool marked) const;
  [[nodiscard]] int SortMarkWidth() const;
  void ApplyColors();

  std::set<int> sized_;  // by the operator
  bool by_program_ = false;
};

// The view of `grdTRANS`. Reads and draws only the visible rows. A group opens and closes with a
// click on its mark, a double click, and the keys Right or +, Left or -, and Space.
class HistoryTableView : public QTableView {
  Q_OBJECT

 public:
  explicit HistoryTableView(QWidget* parent = nullptr);

  [[nodiscard]] HistoryTableModel& Model() const { return *model_; }
  [[nodiscard]] HistoryHeader& Header() const { return *header_; }

  // Shows the current contents of the grid.
  void ShowGrid();

  // The text of a table without rows.
  void SetEmptyText(const QString& text);

  // Selects a row, from 0; ignores a row that does not exist.
  void GoToRow(int row);
  // Scrolls to the first row and selects none.
  void GoToTop();

  // Disabled, because a search would read the whole table.
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
  [[nodiscard]] int sizeHintForColumn(int column) const override;

 private:
  [[nodiscard]] std::vector<ColumnSpan> SpansIn(const QRect& area) const;
  // The group row at a point, or -1.
  [[nodiscard]] int GroupAt(const QPoint& point) const;
  [[nodiscard]] bool OnMark(const QPoint& point, int row) const;
  [[nodiscard]] QRect LineOf(int row) const;
  void Turn(int row);
  bool TurnByKey(const QKeyEvent& key);
  void ApplyRowHeight();
  void ReadSums(std::int64_t records);

  HistoryTableModel* model_;
  HistoryHeader* header_;
  QString empty_text_;
  QTimer read_sums_{this};  // runs while rows on the screen wait for their sums
};

}  // namespace vrx
