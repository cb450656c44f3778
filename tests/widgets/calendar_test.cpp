#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

#include "support/fixed_calendar.h"
#include "widgets/calendar_popup.h"

namespace vrx::testing {
namespace {

// A window with a field, and the button of the calendar at its right edge.
class CalendarTest : public ::testing::Test {
 protected:
  CalendarTest() {
    window_.resize(400, 400);
    field_->setGeometry(0, 0, 100, 30);
    button_->setGeometry(360, 0, 40, 30);
    window_.show();
    window_.activateWindow();
    QApplication::processEvents();
    field_->setFocus();
  }

  FixedCalendar today_;
  QWidget window_;
  QLineEdit* first_ = new QLineEdit(&window_);
  QLineEdit* field_ = new QLineEdit(&window_);
  QLineEdit* last_ = new QLineEdit(&window_);
  QPushButton* button_ = new QPushButton(&window_);
  CalendarPopup* popup_ = new CalendarPopup(today_, &window_);
};

TEST_F(CalendarTest, StaysWithinTheWindow) {
  popup_->Toggle(*button_);
  EXPECT_EQ(popup_->geometry().top(), 30);
  EXPECT_EQ(popup_->geometry().right(), window_.width() - 1);
}

TEST_F(CalendarTest, GivesTheFocusBackWhenItIsDismissed) {
  popup_->Toggle(*button_);
  EXPECT_FALSE(field_->hasFocus());
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
  EXPECT_FALSE(popup_->isVisible());
  EXPECT_TRUE(field_->hasFocus());
}

TEST_F(CalendarTest, HidesWhenTheFocusGoesElsewhereButNotWithinIt) {
  popup_->Toggle(*button_);
  popup_->findChild<QToolButton*>(QStringLiteral("qt_calendar_nextmonth"))->setFocus();
  EXPECT_TRUE(popup_->isVisible());
  field_->setFocus();
  EXPECT_FALSE(popup_->isVisible());
}

TEST_F(CalendarTest, ShowsTodayWhateverIsChosenOrTyped) {
  const QDate today = popup_->selectedDate();
  popup_->Toggle(*button_);
  popup_->showNextMonth();
  EXPECT_EQ(popup_->monthShown(), today.month());
  popup_->setSelectedDate(today.addDays(1));
  EXPECT_EQ(popup_->selectedDate(), today);
  EXPECT_FALSE(popup_->isDateEditEnabled());
}

}  // namespace
}  // namespace vrx::testing
