#include "widgets/calendar_popup.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QTextCharFormat>
#include <QToolButton>
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "base/date.h"
#include "widgets/qt_text.h"

namespace vrx {
namespace {

// In logical pixels.
constexpr QSize kSize{296, 224};
constexpr int kFrame = 1;

constexpr std::size_t kLongestDay = 11;  // 14-Mar-2011

// Letters of month names, digits and what separates them.
int FilterDayKey(std::string_view /*text*/, int key) {
  const int lower = key | 0x20;
  const bool is_letter = lower >= 'a' && lower <= 'z';
  const bool is_digit = key >= '0' && key <= '9';
  return is_letter || is_digit || key == '/' || key == '-' ? key : 0;
}

}  // namespace

CalendarPopup::CalendarPopup(const Calendar& calendar, QWidget* parent, Use use)
    : QCalendarWidget(parent), calendar_(calendar) {
  setObjectName(QStringLiteral("calCalendar"));
  setAccessibleName(QTr("Calendar"));
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
  if (use == Use::kPicksDay) {
    // A window of its own, in which the Enter key picks the day instead of moving to the next
    // field.
    setWindowFlags(Qt::Popup);
    OfferDays();
  } else {
    connect(this, &QCalendarWidget::selectionChanged, this, &CalendarPopup::ShowToday);
    connect(this, &QCalendarWidget::currentPageChanged, this, &CalendarPopup::ShowToday);
  }
  connect(qApp, &QApplication::focusChanged, this, [this](const QWidget* old, const QWidget* now) {
    const auto holds = [this](const QWidget* widget) {
      return widget != nullptr && (widget == this || isAncestorOf(widget));
    };
    if (holds(old) && !holds(now)) {
      hide();
    }
  });
}

void CalendarPopup::OfferDays() {
  const auto pick = [this](const QDate& day) {
    if (isVisible()) {
      Dismiss();
      Q_EMIT Picked(Date(std::chrono::year{day.year()},
                         std::chrono::month{static_cast<unsigned>(day.month())},
                         std::chrono::day{static_cast<unsigned>(day.day())}));
    }
  };
  connect(this, &QCalendarWidget::clicked, this, pick);
  connect(this, &QCalendarWidget::activated, this, pick);
}

void CalendarPopup::ShowToday() { ShowDay(calendar_.Today()); }

void CalendarPopup::ShowDay(const Date& day) {
  const QDate shown(static_cast<int>(day.year()),
                    static_cast<int>(static_cast<unsigned>(day.month())),
                    static_cast<int>(static_cast<unsigned>(day.day())));
  setSelectedDate(shown);
  setCurrentPage(shown.year(), shown.month());
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
  if (isWindow()) {
    const QRect screen = button.screen()->availableGeometry();
    const QPoint below = button.mapToGlobal(QPoint(0, button.height()));
    move(std::clamp(below.x(), screen.left(), std::max(screen.left(), screen.right() - width())),
         std::clamp(below.y(), screen.top(), std::max(screen.top(), screen.bottom() - height())));
    return;
  }
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

DayEdit::DayEdit(const char* name, const QString& meaning, const Calendar& calendar, QWidget* form)
    : QWidget(form),
      field_(MakeBox(FilterDayKey, kLongestDay, name, this)),
      button_(new QToolButton(this)),
      calendar_(new CalendarPopup(calendar, form, CalendarPopup::Use::kPicksDay)) {
  field_->setAccessibleName(meaning);
  field_->setPlaceholderText(QStringLiteral("M/D/YYYY"));
  button_->setObjectName(field_->objectName() + QStringLiteral("Calendar"));
  button_->setArrowType(Qt::DownArrow);
  button_->setToolTip(QTr("Pick a day"));
  button_->setAccessibleName(QTr("%1: pick a day").arg(meaning));
  button_->setFocusPolicy(Qt::TabFocus);
  calendar_->setObjectName(field_->objectName() + QStringLiteral("Days"));
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  row->addWidget(field_);
  row->addWidget(button_);
  setFocusProxy(field_);
  connect(field_, &FilteredEdit::Left, this, &DayEdit::Entered);
  connect(field_, &QLineEdit::returnPressed, this, &DayEdit::Entered);
  connect(button_, &QToolButton::clicked, this, &DayEdit::ShowCalendar);
  connect(calendar_, &CalendarPopup::Picked, this, [this](const Date& day) {
    field_->setText(ToQString(DefaultText(day)));
    Q_EMIT Entered();
  });
}

void DayEdit::ShowCalendar() {
  calendar_->ShowToday();
  if (const std::optional<Date> typed = ParseTypedDate(field_->Text())) {
    calendar_->ShowDay(*typed);
  }
  calendar_->Toggle(*button_);
}

}  // namespace vrx
