#pragma once

#include <QApplication>
#include <QTimer>
#include <chrono>
#include <functional>
#include <utility>

namespace vrx::testing {

// Passes the next modal dialog to `act`, from the dialog's own event loop. Create it before the
// dialog is shown.
class NextModal {
 public:
  explicit NextModal(std::function<void(QWidget&)> act) : act_(std::move(act)) {
    QObject::connect(&poll_, &QTimer::timeout, &poll_, [this] {
      if (QWidget* const dialog = QApplication::activeModalWidget(); dialog != nullptr) {
        poll_.stop();
        seen_ = true;
        act_(*dialog);
      }
    });
    poll_.start(std::chrono::milliseconds{5});
  }

  bool Seen() const { return seen_; }

 private:
  std::function<void(QWidget&)> act_;
  QTimer poll_;
  bool seen_ = false;
};

}  // namespace vrx::testing
