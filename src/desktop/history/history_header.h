#pragma once

#include <QHeaderView>
#include <set>
#include <vector>

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
  void TakeColors();

  std::set<int> sized_;  // by the operator
  bool by_program_ = false;
};

}  // namespace vrx
