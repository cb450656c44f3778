#include "desktop/records/pens_page.h"

#include <QTest>

#include <gmock/gmock.h>

#include "desktop/records/record_pages_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::IsEmpty;

constexpr const char* kWarning = "lblRequiresIndicatorPenCapacityX";

class PensPageTest : public RecordPagesFixture {
 protected:
  void SetUp() override { Enter(kTabPens); }

  PenRecord Stored(int id) { return ReadPen(Database(), id); }
  void Choose(int id) { ChooseIn("cboPenID", id); }
  QLabel& Warning() { return *Tabs().Page(kTabPens).findChild<QLabel*>(QLatin1String(kWarning)); }
  void Feed(int pen, std::string_view amount) {
    Choose(pen);
    Fill("txtPenFeed", amount);
  }
};

TEST_F(PensPageTest, EnteringShowsTheFirstOf400Pens) {
  EXPECT_EQ(List("cboPenID").count(), 401);
  EXPECT_EQ(List("cboPenID").currentIndex(), 1);
  EXPECT_EQ(Grid("grdPEN").Model().rowCount(), 400);
  EXPECT_EQ(Text(u"lblRecordNumber"_qs), u"1"_qs);
  EXPECT_EQ(Shown("txtPenName"), "PEN001");
  EXPECT_EQ(Shown("txtPenFeed"), "0");
}

TEST_F(PensPageTest, TheFeedColumnBearsTheSystemsUnitFromEnteringOn) {
  const auto caption = [this] {
    return Grid("grdPEN")
        .Model()
        .headerData(3, Qt::Horizontal, Qt::DisplayRole)
        .toString()
        .toStdString();
  };
  EXPECT_EQ(caption(), "Feed Amount (lb)");
  settings_.SetSystemUnits("KG");
  EXPECT_EQ(caption(), "Feed Amount (lb)");
  Window().Tabs().SelectTab(kTabIngredients);
  Window().Tabs().SelectTab(kTabPens);
  EXPECT_EQ(caption(), "Feed Amount (kg)");
}

TEST_F(PensPageTest, TheUnitBesideTheFeedAmountIsTheSystemsFromEnteringOn) {
  settings_.SetSystemUnits("KG");
  Window().Tabs().SelectTab(kTabIngredients);
  Window().Tabs().SelectTab(kTabPens);
  EXPECT_EQ(Text(u"lblPenFeedUoM"_qs), u"KG"_qs);
}

TEST_F(PensPageTest, AFeedIsAWholeNumberOfUpToSixDigits) {
  Choose(3);
  const std::vector<std::pair<std::string, std::string>> expected{
      {"00120", "120"}, {"", "0"}, {"000", "0"}, {"999999", "999999"}};
  for (const auto& [typed, left] : expected) {
    Fill("txtPenFeed", typed);
    EXPECT_EQ(Shown("txtPenFeed"), left) << typed;
    EXPECT_EQ(Stored(3).feed_amount, left) << typed;
  }
  TypeOver("txtPenFeed", "1234567");
  EXPECT_EQ(Shown("txtPenFeed"), "123456");
  EXPECT_EQ(operator_.beeps, 1);
  TypeOver("txtPenFeed", "12.34");
  EXPECT_EQ(Shown("txtPenFeed"), "12");
}

TEST_F(PensPageTest, APenWithFeedAloneKeepsItsNameAndIsActive) {
  Feed(3, "500");
  EXPECT_EQ(Stored(3).name, "PEN003");
  EXPECT_EQ(Stored(3).description, "");
  Choose(9);
  Fill("txtPenDesc", "North");
  EXPECT_EQ(Stored(9).feed_amount, "0");
  Tick("chkShowActivePensOnly");
  EXPECT_EQ(Grid("grdPEN").Model().rowCount(), 2);
  EXPECT_EQ(Grid("grdPEN").Model().IdOf(0), 3);
  EXPECT_EQ(Grid("grdPEN").Model().IdOf(1), 9);
}

TEST_F(PensPageTest, ANameOfItsOwnBecomesTheDescription) {
  Choose(3);
  Fill("txtPenName", "a01");
  EXPECT_EQ(Stored(3).description, "A01");
  EXPECT_EQ(Item("cboPenID", 3), "  3: A01");
  EXPECT_EQ(Modified(), "2026-01-05");
}

TEST_F(PensPageTest, ADescriptionGivesTheName) {
  Choose(3);
  Fill("txtPenDesc", "bad corner");
  EXPECT_EQ(Stored(3).name, "bAd CO");
}

TEST_F(PensPageTest, FeedAbovePen100WarnsUntilItIsTakenBack) {
  EXPECT_TRUE(Warning().isHidden());
  Feed(120, "1");
  EXPECT_FALSE(Warning().isHidden());
  EXPECT_EQ(Warning().text(),
            u" This recipe requires a 200-pen capacity option in the K2260 indicator."_qs);
  Feed(400, "1");
  EXPECT_EQ(Warning().text(),
            u" This recipe requires a 400-pen capacity option in the K2260 indicator."_qs);
  Feed(400, "0");
  Feed(120, "");
  EXPECT_TRUE(Warning().isHidden());
}

TEST_F(PensPageTest, TheWarningOfTheRecipesFollows) {
  const auto* const warning = Tabs().Page(kTabRecipes).findChild<QLabel*>(QLatin1String(kWarning));
  Feed(120, "1");
  EXPECT_FALSE(warning->isHidden());
  EXPECT_EQ(warning->text(), Warning().text());
  Feed(120, "0");
  EXPECT_TRUE(warning->isHidden());
}

// Row numbers are no pen IDs while the grid shows the active pens alone.
TEST_F(PensPageTest, TheWarningGoesByTheRowsOfTheGrid) {
  Feed(120, "1");
  Tick("chkShowActivePensOnly");
  ClickCell("grdPEN", 120, "Name");
  Press("cmdAction(0)");
  EXPECT_TRUE(Warning().isHidden());
  Press("cmdAction(1)");
  EXPECT_FALSE(Warning().isHidden()) << "Cancel shows all pens again";
}

TEST_F(PensPageTest, AnOpenedDatabaseWarnsAndShowsPen1AndANewOneDoesNotWarn) {
  Feed(300, "7");
  MainWindowFixture::Choose(u"mnuFileSaveRecipeDB"_qs);
  EXPECT_FALSE(Warning().isHidden());
  EXPECT_EQ(List("cboPenID").currentIndex(), 1);
  chooser_.Choose(app_folder_->DefaultAppPath() / "NEW.RDB");
  MainWindowFixture::Choose(u"mnuFileNewRecipeDB"_qs);
  EXPECT_TRUE(Warning().isHidden());
}

TEST_F(PensPageTest, AGridWithoutRowsSaysWhatWouldFillIt) {
  Tick("chkShowActivePensOnly");
  ASSERT_EQ(Grid("grdPEN").Model().rowCount(), 0);
  const QImage with_text = Grid("grdPEN").viewport()->grab().toImage();
  const QRgb background = with_text.pixel(1, with_text.height() - 2);
  int drawn = 0;
  for (int y = 0; y < with_text.height(); ++y) {
    for (int x = 0; x < with_text.width(); ++x) {
      drawn += with_text.pixel(x, y) == background ? 0 : 1;
    }
  }
  EXPECT_GT(drawn, 100);
  EXPECT_EQ(CurrentId("grdPEN"), 0);
}

TEST_F(PensPageTest, ACellOfTheGridIsStored) {
  EditCell("grdPEN", 7, "FeedAmount", "00x250");
  Box("txtPenName").setFocus();
  EXPECT_EQ(Stored(7).feed_amount, "250");
  EXPECT_EQ(Stored(7).description, "PEN007") << "the row took the name";
  EXPECT_EQ(Shown("txtPenFeed"), "250");
  EXPECT_EQ(operator_.beeps, 1);
}

TEST_F(PensPageTest, DefaultResetsThePenAndLooksForTheWarningWhateverTheAnswer) {
  Choose(120);
  Fill("txtPenName", "A01");
  Database().exec("UPDATE Pen SET FeedAmount = '5' WHERE ID = 300");
  operator_.answers = {Answer::kNo, Answer::kYes};
  Press("cmdAction(2)");
  ASSERT_EQ(operator_.boxes.size(), 1U);
  EXPECT_EQ(operator_.boxes[0].title, "Set Pen Defaults");
  EXPECT_EQ(operator_.boxes[0].text, "Reset pen #120 (A01) to its default values?");
  EXPECT_FALSE(Warning().isHidden());
  EXPECT_EQ(Stored(120).name, "A01");
  Press("cmdAction(2)");
  EXPECT_EQ(Stored(120).name, "PEN120");
  EXPECT_EQ(Item("cboPenID", 120), "120: ");
  EXPECT_EQ(List("cboPenID").currentIndex(), 120);
  EXPECT_EQ(Shown("txtPenName"), "PEN120");
}

TEST_F(PensPageTest, TypingInTheListGoesToTheDescription) {
  List("cboPenID").setFocus();
  Type("x");
  EXPECT_TRUE(Box("txtPenDesc").hasFocus());
  EXPECT_THAT(Shown("txtPenDesc"), IsEmpty());
}

}  // namespace
}  // namespace vrx::testing
