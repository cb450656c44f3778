#pragma once

#include <QCalendarWidget>
#include <QPointer>

#include "platform/calendar.h"

namespace vrx {

// The month view `calCalendar`: shows today and cannot leave it. It hides when it loses the focus,
// and by Escape, which gives the focus back to where it was.
class CalendarPopup : public QCalendarWidget {
  Q_OBJECT

 public:
  // Floats over `parent`, hidden to begin with.
  CalendarPopup(const Calendar& calendar, QWidget* parent);

  void ShowToday();

  // Hides it when it is on show; else shows it below the button, with the focus.
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
