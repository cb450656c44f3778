#pragma once

#include <QLabel>
#include <QWidget>

namespace vrx {

// The record navigator of `grdREC`: "Ingredient: 2 of 5" between the buttons that move.
class LineNavigator : public QWidget {
  Q_OBJECT

 public:
  explicit LineNavigator(QWidget* parent = nullptr);

  // A row below 1 is the entry row.
  void Show(int row, int lines);

 Q_SIGNALS:
  // To a line, from 1.
  void Moved(int line);

 private:
  enum Button { kFirst, kPrevious, kNext, kLast };

  void AddButton(Button button);
  int Target(Button button) const;

  QLabel* text_;
  int row_ = 0;
  int lines_ = 0;
};

}  // namespace vrx
