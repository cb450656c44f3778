#pragma once

#include <QComboBox>

namespace vrx {

// A list that is chosen from only while it is dropped down, which the keys do that move in others:
// neither a key nor a turn of the wheel in passing makes a choice.
class ChoiceList : public QComboBox {
  Q_OBJECT

 public:
  using QComboBox::QComboBox;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
};

}  // namespace vrx
