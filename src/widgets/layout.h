#pragma once

#include <QBoxLayout>
#include <QWidget>

namespace vrx {

// Two groups of controls: at both ends of one line where there is room, else below each other.
class TwoPartRow : public QWidget {
  Q_OBJECT

 public:
  explicit TwoPartRow(QWidget* parent);

  QBoxLayout* First() { return first_; }
  QBoxLayout* Second() { return second_; }

  // Of the wider group.
  QSize minimumSizeHint() const override;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void Arrange();

  QBoxLayout* both_;
  QBoxLayout* first_;
  QBoxLayout* second_;
};

}  // namespace vrx
