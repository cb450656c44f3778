#pragma once

#include <QCalendarWidget>
#include <QPointer>

#include "platform/calendar.h"

namespace vrx {

// The month view `calCalendar`: always shows today. It hides when it loses the focus, and on
// Escape, which returns the focus to the previous control.
class CalendarPopup : public QCalendarWidget {
  Q_OBJECT

 public:
  // Floats over `parent`; hidden at first.
  CalendarPopup(const Calendar& calendar, QWidget* parent);

  void ShowToday();

  // Hides it if it is shown; otherwise shows it below the button with the focus.
  void Toggle(const QWidget& button);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void PlaceBelow(const QWidget& button);
  void Dismiss();
  void ShowPlainArrows();

  const Calendar& calendar_;
  QPointer<QWidget> focus_before_;
};

}  // namespace vrx
