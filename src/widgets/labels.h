#pragma once

#include <QLabel>

namespace vrx {

// One line of text that gives way when there is no room: its middle is left out on the screen. What
// is left out can be read in its tooltip, unless it has one of its own.
class ElidedLabel : public QLabel {
  Q_OBJECT

 public:
  explicit ElidedLabel(QWidget* parent = nullptr);

  QSize minimumSizeHint() const override;

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  bool IsCut() const;
  QRect Room() const;
};

}  // namespace vrx
