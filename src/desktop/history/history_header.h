#pragma once

#include <QHeaderView>
#include <array>
#include <set>
#include <string>
#include <vector>

#include "history/history_grid.h"

namespace vrx {

// A visible column: its index and its width in logical pixels.
struct ShownColumn {
  int column;
  int width;
};

// The column headers of the history grid; a section is a column's index minus 1. A click sorts, a
// drag moves a column. A column sized by the operator keeps its width in every group; other columns
// fit their captions and values and share what is left of the width.
class HistoryHeader : public QHeaderView {
  Q_OBJECT

 public:
  explicit HistoryHeader(QWidget* parent);

  // Sets captions, order and visibility as in the grid, and whether the headers are shown.
  void ShowColumns(const HistoryGrid& grid);

  // Gives the columns that the operator has not sized an equal share of what all of them leave of
  // `width`.
  void FillWidth(int width);

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

  std::set<int> sized_;                        // by the operator
  std::array<int, kGridColumnCount> least_{};  // by section; 0 if hidden
  bool by_program_ = false;
};

}  // namespace vrx
