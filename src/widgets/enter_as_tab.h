#pragma once

#include <QObject>
#include <QWidget>

namespace vrx {

// Turns the Enter key into the Tab key on everything in a form, so that Enter goes on to the next
// field. Menus, lists that drop down and other windows keep theirs.
class EnterAsTab : public QObject {
  Q_OBJECT

 public:
  // Belongs to the form.
  explicit EnterAsTab(QWidget* form);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* form_;
};

}  // namespace vrx
