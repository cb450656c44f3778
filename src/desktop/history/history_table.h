#pragma once

#include <QTableView>
#include <vector>

#include "desktop/history/history_header.h"
#include "desktop/history/history_model.h"
#include "desktop/history/history_row_painter.h"

namespace vrx {

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
  void TakeRowHeight();

  HistoryTableModel* model_;
  HistoryHeader* header_;
  QString empty_text_;
};

}  // namespace vrx
