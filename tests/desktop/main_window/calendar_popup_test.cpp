#include "widgets/calendar_popup.h"

#include <QTabBar>
#include <QTest>

#include "desktop/main_window/main_window_fixture.h"

namespace vrx::testing {
namespace {

class CalendarPopupTest : public MainWindowFixture {
 protected:
  void SetUp() override {
    Show();
    Tabs().tabBar()->setFocus();
  }

  CalendarPopup& Popup() { return Find<CalendarPopup>(u"calCalendar"_qs); }
  bool HoldsFocus() {
    const QWidget* const focus = QApplication::focusWidget();
    return focus != nullptr && (focus == &Popup() || Popup().isAncestorOf(focus));
  }
  void Press() {
    QTest::mouseClick(&Find<QToolButton>(u"Calendar"_qs), Qt::LeftButton);
    RunEvents();
  }
};

const QDate kToday(2026, 1, 5);

TEST_F(CalendarPopupTest, IsHiddenUntilItsButtonShowsItWithTheFocus) {
  EXPECT_FALSE(Popup().isVisible());
  Press();
  EXPECT_TRUE(Popup().isVisible());
  EXPECT_TRUE(HoldsFocus());
  EXPECT_EQ(Popup().selectedDate(), kToday);
}

TEST_F(CalendarPopupTest, IsBelowItsButtonWithinTheWindow) {
  Press();
  const QToolButton& button = Find<QToolButton>(u"Calendar"_qs);
  const QPoint below = button.mapTo(&Window(), QPoint(0, button.height()));
  EXPECT_EQ(Popup().pos(), below);
  Press();
  Window().resize(800, 600);
  RunEvents();
  Press();
  EXPECT_TRUE(Window().rect().contains(Popup().geometry()));
}

TEST_F(CalendarPopupTest, ASecondPressHidesIt) {
  Press();
  Press();
  EXPECT_FALSE(Popup().isVisible());
  EXPECT_TRUE(Tabs().tabBar()->hasFocus());
}

TEST_F(CalendarPopupTest, ItsShortcutShowsAndHidesIt) {
  QTest::keyClick(&Window(), Qt::Key_D, Qt::ControlModifier);
  EXPECT_TRUE(Popup().isVisible());
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_D, Qt::ControlModifier);
  EXPECT_FALSE(Popup().isVisible());
}

TEST_F(CalendarPopupTest, PickingADatePutsItBackToToday) {
  Press();
  Popup().setSelectedDate(QDate(2026, 1, 20));
  EXPECT_EQ(Popup().selectedDate(), kToday);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
  EXPECT_EQ(Popup().selectedDate(), kToday);
}

TEST_F(CalendarPopupTest, MovingToAnotherMonthPutsItBackToToday) {
  Press();
  Popup().showNextMonth();
  EXPECT_EQ(Popup().monthShown(), 1);
  EXPECT_EQ(Popup().selectedDate(), kToday);
  Popup().showPreviousYear();
  EXPECT_EQ(Popup().yearShown(), 2026);
  EXPECT_EQ(Popup().monthShown(), 1);
}

TEST_F(CalendarPopupTest, LosingTheFocusHidesIt) {
  Press();
  Tabs().tabBar()->setFocus();
  EXPECT_FALSE(Popup().isVisible());
}

TEST_F(CalendarPopupTest, EscapeHidesItAndGivesTheFocusBack) {
  Press();
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
  EXPECT_FALSE(Popup().isVisible());
  EXPECT_TRUE(Tabs().tabBar()->hasFocus());
}

TEST_F(CalendarPopupTest, EveryPaintOfTheWindowSetsItToTheDayThatItIs) {
  calendar_.today = {std::chrono::year{2026}, std::chrono::March, std::chrono::day{1}};
  Window().repaint();
  EXPECT_EQ(Popup().selectedDate(), QDate(2026, 3, 1));
  EXPECT_EQ(Popup().monthShown(), 3);
}

}  // namespace
}  // namespace vrx::testing
