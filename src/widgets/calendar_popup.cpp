#include "widgets/calendar_popup.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QTextCharFormat>
#include <QToolButton>
#include <algorithm>
#include <utility>

namespace vrx {
namespace {

// In logical pixels.
constexpr QSize kSize{296, 224};
constexpr int kFrame = 1;

}  // namespace

CalendarPopup::CalendarPopup(const Calendar& calendar, QWidget* parent)
    : QCalendarWidget(parent), calendar_(calendar) {
  setObjectName(QStringLiteral("calCalendar"));
  setAccessibleName(QStringLiteral("Calendar"));
  setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
  setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
  setDateEditEnabled(false);
  setAutoFillBackground(true);
  setContentsMargins(kFrame, kFrame, kFrame, kFrame);
  resize(kSize);
  for (const Qt::DayOfWeek day : {Qt::Saturday, Qt::Sunday}) {
    setWeekdayTextFormat(day, {});  // red is unreadable on some backgrounds
  }
  ShowPlainArrows();
  findChild<QAbstractItemView*>()->setAccessibleName(accessibleName());  // what takes the focus
  hide();
  ShowToday();
  connect(this, &QCalendarWidget::selectionChanged, this, &CalendarPopup::ShowToday);
  connect(this, &QCalendarWidget::currentPageChanged, this, &CalendarPopup::ShowToday);
  connect(qApp, &QApplication::focusChanged, this, [this](const QWidget* old, const QWidget* now) {
    const auto holds = [this](const QWidget* widget) {
      return widget != nullptr && (widget == this || isAncestorOf(widget));
    };
    if (holds(old) && !holds(now)) {
      hide();
    }
  });
}

void CalendarPopup::ShowToday() {
  const Date date = calendar_.Today();
  const QDate today(static_cast<int>(date.year()),
                    static_cast<int>(static_cast<unsigned>(date.month())),
                    static_cast<int>(static_cast<unsigned>(date.day())));
  setSelectedDate(today);
  setCurrentPage(today.year(), today.month());
}

void CalendarPopup::Toggle(const QWidget& button) {
  if (isVisible()) {
    Dismiss();
    return;
  }
  focus_before_ = QApplication::focusWidget();
  PlaceBelow(button);
  show();
  raise();
  if (isVisible() && isEnabled()) {
    setFocus();
  }
}

void CalendarPopup::PlaceBelow(const QWidget& button) {
  const QWidget& window = *parentWidget();
  const QPoint below = button.mapTo(&window, QPoint(0, button.height()));
  move(std::clamp(below.x(), 0, std::max(0, window.width() - width())), below.y());
}

void CalendarPopup::Dismiss() {
  if (focus_before_) {
    focus_before_->setFocus();
  }
  hide();
}

// The style's own icons do not follow the palette.
void CalendarPopup::ShowPlainArrows() {
  for (const auto& [name, arrow] : {std::pair{"qt_calendar_prevmonth", Qt::LeftArrow},
                                    std::pair{"qt_calendar_nextmonth", Qt::RightArrow}}) {
    if (auto* const button = findChild<QToolButton*>(QLatin1String(name))) {
      button->setArrowType(arrow);
    }
  }
}

void CalendarPopup::paintEvent(QPaintEvent* event) {
  QCalendarWidget::paintEvent(event);
  QPainter painter(this);
  painter.setPen(palette().color(QPalette::Mid));
  painter.drawRect(rect().adjusted(0, 0, -kFrame, -kFrame));
}

void CalendarPopup::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    Dismiss();
  } else {
    QCalendarWidget::keyPressEvent(event);
  }
}

}  // namespace vrx
