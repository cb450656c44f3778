#pragma once

#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <chrono>
#include <deque>
#include <vector>

#include <gtest/gtest.h>

#include "platform/operator.h"
#include "support/boxes.h"

namespace vrx::testing {

// Answers the message boxes of the real operator during its lifetime: records each as it is on the
// screen and clicks one of its buttons. A box with only OK gets OK; a question without a queued
// answer fails the test.
class AnsweredBoxes {
 public:
  AnsweredBoxes() {
    QObject::connect(&poll_, &QTimer::timeout, &poll_, [this] {
      auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      if (box != nullptr && box != pressed_) {
        pressed_ = box;
        Keep(*box);
        box->button(Take(*box))->click();
      }
    });
    poll_.start(std::chrono::milliseconds{5});
  }

  std::deque<QMessageBox::StandardButton> answers;

  // As they were on the screen; lines end in LF.
  std::vector<MessageBox> boxes;
  const MessageBox& Last() const { return LastBox(boxes); }

 private:
  static Icon IconOf(const QMessageBox& box) {
    switch (box.icon()) {
      case QMessageBox::Critical:
        return Icon::kCritical;
      case QMessageBox::Question:
        return Icon::kQuestion;
      case QMessageBox::Warning:
        return Icon::kWarning;
      case QMessageBox::Information:
        return Icon::kInformation;
      case QMessageBox::NoIcon:
        break;
    }
    return Icon::kNone;
  }
  static Buttons ButtonsOf(const QMessageBox& box) {
    if (box.button(QMessageBox::Yes) != nullptr && box.button(QMessageBox::No) != nullptr) {
      return Buttons::kYesNo;
    }
    return box.button(QMessageBox::Cancel) == nullptr ? Buttons::kOk : Buttons::kOkCancel;
  }
  void Keep(const QMessageBox& box) {
    boxes.push_back({.icon = IconOf(box),
                     .buttons = ButtonsOf(box),
                     .title = box.windowTitle().toStdString(),
                     .text = box.text().toStdString(),
                     .cause = (box.detailedText() + box.informativeText()).toStdString()});
  }
  QMessageBox::StandardButton Take(const QMessageBox& box) {
    if (ButtonsOf(box) == Buttons::kOk) {
      return QMessageBox::Ok;
    }
    if (answers.empty()) {
      ADD_FAILURE() << "unexpected question: " << box.text().toStdString();
      return box.button(QMessageBox::No) == nullptr ? QMessageBox::Cancel : QMessageBox::No;
    }
    const QMessageBox::StandardButton answer = answers.front();
    answers.pop_front();
    return answer;
  }

  QTimer poll_;
  QPointer<QMessageBox> pressed_;
};

}  // namespace vrx::testing
