#pragma once

#include <QString>
#include <QTableView>
#include <QTimer>
#include <cstdint>
#include <vector>

#include "desktop/history/history_header.h"
#include "desktop/history/history_model.h"
#include "desktop/history/history_painting.h"
#include "history/history_grid.h"
#include "widgets/fields.h"

namespace vrx {

// The view of `grdTRANS`. Reads and draws only the visible rows. A group opens and closes with a
// click on its mark, a double click, and the keys Right or +, Left or -, and Space. Several rows
// can be selected, until the grid changes.
class HistoryTableView : public QTableView, public EnterByCell {
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
  // Selects a row and marks one of its cells, from 0; column -1 marks none. Scrolls there.
  void GoToCell(int row, int column);
  // Scrolls to the first row and selects none.
  void GoToTop();

  // Goes to the next row: a row is selected as a whole.
  bool EnterPressed() override;

  // The search of the base class would read the whole table.
  void keyboardSearch(const QString& typed) override;

 Q_SIGNALS:
  // The operator opens or closes the group of that row, from 0.
  void GroupChosen(int row, bool open);
  // Another row is the current one, from 0; -1 for none.
  void RowChanged(int row);
  // The operator types the beginning of a group's value.
  void GroupTyped(const QString& beginning);
  void CopyChosen();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
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
  // True while the operator goes on typing the beginning of a group.
  bool IsTyping(const QKeyEvent& key) const;
  void SelectOnly(const QModelIndex& index);
  // The column of the current cell, or the first one if that is hidden.
  [[nodiscard]] int CurrentColumn() const;
  [[nodiscard]] bool IsMarkedSelected(int row) const;
  void PaintMarkedCell(QPainter& painter, const std::vector<ColumnSpan>& spans) const;
  void ApplyRowHeight();
  void ReadSums(std::int64_t records);

  HistoryTableModel* model_;
  HistoryHeader* header_;
  QString empty_text_;
  QTimer read_sums_{this};  // runs while rows on the screen wait for their sums
  QString typed_;           // the beginning of a group
  quint64 typed_at_ = 0;
  bool group_pressed_ = false;  // with the mouse
  bool marks_cell_ = false;     // the current one
};

}  // namespace vrx
