#pragma once

#include <QLabel>
#include <QPushButton>
#include <QWidget>
#include <array>

#include "widgets/fields.h"

namespace vrx {

// The record navigator of the history grid: "Transaction:", the number of the row that the grid
// stands on, which can be typed over, "of" the number of rows.
class HistoryNavigator : public QWidget {
  Q_OBJECT

 public:
  explicit HistoryNavigator(QWidget* parent = nullptr);

  // From 0; -1 for none.
  void ShowRow(int row);
  void ShowCount(int rows);

 Q_SIGNALS:
  // The operator asks for that row, from 0, which is there.
  void RowChosen(int row);

 private:
  void Move(int button);
  void GoToTyped();
  void ShowState();

  std::array<QPushButton*, 4> buttons_{};  // by NavigateButton
  FilteredEdit* number_;
  QLabel* caption_;
  QLabel* count_;
  int row_ = -1;
  int rows_ = 0;
};

}  // namespace vrx
