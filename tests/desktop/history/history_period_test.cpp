#include <QCalendarWidget>
#include <QLineEdit>
#include <string>

#include <gmock/gmock.h>

#include "desktop/history/history_fixture.h"
#include "desktop/history/history_page.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class HistoryPeriodOnPage : public HistoryFixture {
 protected:
  HistoryPeriodOnPage() { calendar_.today = ParseStoredDate("2011-03-15").value(); }

  QLineEdit& Field(const char* name) { return Find<QLineEdit>(QString::fromLatin1(name)); }
  std::string Text(const char* name) { return Field(name).text().toStdString(); }
  void TypeDay(const char* name, const QString& day, int end = Qt::Key_Return) {
    Window().activateWindow();  // the list that was open before took its place
    RunEvents();
    Field(name).setFocus();
    Field(name).selectAll();
    QTest::keyClicks(&Field(name), day);
    QTest::keyClick(&Field(name), static_cast<Qt::Key>(end));
    RunEvents();
  }
  void ChoosePeriod(int item) { ChooseItem(u"cboPeriod"_qs, item); }
  std::string Period() { return Find<QComboBox>(u"cboPeriod"_qs).currentText().toStdString(); }
  std::string Note() { return Visible(u"lblPeriodNote"_qs) ? LabelText(u"lblPeriodNote"_qs) : ""; }
};

TEST_F(HistoryPeriodOnPage, AChoiceNarrowsTheGridAndNamesWhatIsLeftOut) {
  ShowTab();
  ChooseGroup(3);
  EXPECT_EQ(Period(), "All");
  EXPECT_EQ(Note(), "");
  ChoosePeriod(1);
  EXPECT_EQ(Period(), "Today");
  EXPECT_EQ(Text("txtPeriodFrom"), "3/15/2011");
  EXPECT_THAT(Lines(), ElementsAre("[1] Recipe:HEIFER", "[1] Recipe:STEERS"));
  EXPECT_EQ(Note(), "1 record without a readable date is left out.");
  ChooseGroup(8);
  EXPECT_EQ(Note(), "");
  ChoosePeriod(4);
  EXPECT_THAT(Lines(), IsEmpty());
  EXPECT_THAT(Grid().accessibleDescription().toStdString(),
              HasSubstr("No records of this period."));
}

TEST_F(HistoryPeriodOnPage, DaysAreTypedAndEnteredByLeavingTheField) {
  ShowTab();
  ChooseGroup(3);
  ChoosePeriod(5);
  EXPECT_EQ(Text("txtPeriodFrom"), "3/1/2011");
  EXPECT_EQ(Text("txtPeriodTo"), "3/15/2011");
  TypeDay("txtPeriodFrom", u"14-Mar-11"_qs);
  EXPECT_EQ(Lines().size(), 2U);
  TypeDay("txtPeriodTo", u"3/14/2011"_qs, Qt::Key_Tab);
  EXPECT_THAT(Lines(), ElementsAre("[1] Recipe:STEERS"));
  EXPECT_EQ(Period(), "From - to");
}

TEST_F(HistoryPeriodOnPage, AWrongDayIsRefusedInPlaceAndStaysForCorrection) {
  ShowTab();
  ChooseGroup(3);
  TypeDay("txtPeriodFrom", u"2/30/2011"_qs);
  EXPECT_EQ(Note(), "\"2/30/2011\" is not a day. Type it as 1/31/2026.");
  EXPECT_EQ(Text("txtPeriodFrom"), "2/30/2011");
  EXPECT_EQ(Lines().size(), 3U);
  EXPECT_THAT(operator_.boxes, IsEmpty());
  TypeDay("txtPeriodFrom", u"3/16/2011"_qs);
  TypeDay("txtPeriodTo", u"3/15/2011"_qs);
  EXPECT_EQ(Note(), "The first day is after the last day.");
  TypeDay("txtPeriodTo", u"3/16/2011"_qs);
  EXPECT_EQ(Note(), "1 record without a readable date is left out.");
  EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(HistoryPeriodOnPage, ADayIsPickedFromTheCalendar) {
  ShowTab();
  ChooseGroup(3);
  TypeDay("txtPeriodFrom", u"3/13/2011"_qs);
  Click(u"txtPeriodToCalendar"_qs);
  auto& days = Find<QCalendarWidget>(u"txtPeriodToDays"_qs);
  ASSERT_TRUE(days.isVisible());
  EXPECT_EQ(days.selectedDate(), QDate(2011, 3, 15)) << "today, because no day is typed";
  auto& view = *days.findChild<QAbstractItemView*>();
  QTest::keyClick(&view, Qt::Key_Left);
  QTest::keyClick(&view, Qt::Key_Return);
  RunEvents();
  EXPECT_FALSE(days.isVisible());
  EXPECT_EQ(Text("txtPeriodTo"), "3/14/2011");
  EXPECT_THAT(Lines(), ElementsAre("[1] Recipe:STEERS"));
}

TEST_F(HistoryPeriodOnPage, EscapeClosesTheCalendarAndChangesNothing) {
  ShowTab();
  Click(u"txtPeriodFromCalendar"_qs);
  auto& days = Find<QCalendarWidget>(u"txtPeriodFromDays"_qs);
  QTest::keyClick(days.findChild<QAbstractItemView*>(), Qt::Key_Escape);
  RunEvents();
  EXPECT_FALSE(days.isVisible());
  EXPECT_EQ(Text("txtPeriodFrom"), "");
  EXPECT_EQ(Period(), "All");
}

TEST_F(HistoryPeriodOnPage, LettersThatNoDayHasAreNotTyped) {
  ShowTab();
  TypeDay("txtPeriodFrom", u"3.1;4/2011"_qs);
  EXPECT_EQ(Text("txtPeriodFrom"), "314/2011");
}

}  // namespace
}  // namespace vrx::testing
