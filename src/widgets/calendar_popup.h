#pragma once

#include <QCalendarWidget>
#include <QPointer>
#include <QToolButton>
#include <QWidget>

#include "platform/calendar.h"
#include "widgets/fields.h"

namespace vrx {

// A month view. It hides when it loses the focus, and on Escape, which returns the focus to the
// previous control.
class CalendarPopup : public QCalendarWidget {
  Q_OBJECT

 public:
  enum class Use {
    kShowsToday,  // `calCalendar`: cannot leave today
    kPicksDay
  };

  // Floats over `parent`; hidden at first.
  CalendarPopup(const Calendar& calendar, QWidget* parent, Use use = Use::kShowsToday);

  void ShowToday();
  void ShowDay(const Date& day);

  // Hides it if it is shown; otherwise shows it below the button with the focus.
  void Toggle(const QWidget& button);

 Q_SIGNALS:
  // The operator picked a day with a click or the Enter key; the calendar is hidden.
  void Picked(const Date& day);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void PlaceBelow(const QWidget& button);
  void Dismiss();
  void ShowPlainArrows();
  void OfferDays();

  const Calendar& calendar_;
  QPointer<QWidget> focus_before_;
};

// A field for a day, which is typed or picked from a calendar.
class DayEdit : public QWidget {
  Q_OBJECT

 public:
  // The calendar floats over `form`. `name` is the field's; the button is named after it.
  DayEdit(const char* name, const QString& meaning, const Calendar& calendar, QWidget* form);

  void ShowText(const QString& text) { field_->setText(text); }
  [[nodiscard]] QString Text() const { return field_->text(); }
  [[nodiscard]] FilteredEdit& Field() const { return *field_; }

 Q_SIGNALS:
  // The operator has left the field, or picked a day.
  void Entered();

 private:
  void ShowCalendar();

  FilteredEdit* field_;
  QToolButton* button_;
  CalendarPopup* calendar_;
};

}  // namespace vrx
