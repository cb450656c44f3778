#include <QTest>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "desktop/records/record_pages_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::SizeIs;

class RecordTabsTest : public RecordPagesFixture {
 protected:
  QString Name() { return Find<DatabaseStatusBar>(u"sbRecipe"_qs).Panel(kPanelName); }
  int RecordNumber() { return Text(u"lblRecordNumber"_qs).toInt(); }
  void MoveFirst() { Press("cmdNavigate(0)"); }
  void MovePrevious() { Press("cmdNavigate(1)"); }
  void MoveNext() { Press("cmdNavigate(2)"); }
  void MoveLast() { Press("cmdNavigate(3)"); }
};

TEST_F(RecordTabsTest, TheNavigatorWrapsAroundAtBothEnds) {
  const std::vector<std::pair<int, int>> counts{
      {kTabIngredients, 100}, {kTabRecipes, 100}, {kTabPens, 400}};
  Enter(kTabIngredients);
  for (const auto& [tab, count] : counts) {
    Window().Tabs().SelectTab(tab);
    EXPECT_EQ(RecordNumber(), 1);
    MovePrevious();
    EXPECT_EQ(RecordNumber(), count) << "tab " << tab;
    MoveNext();
    EXPECT_EQ(RecordNumber(), 1) << "tab " << tab;
    MoveNext();
    EXPECT_EQ(RecordNumber(), 2);
    MovePrevious();
    EXPECT_EQ(RecordNumber(), 1);
    MoveLast();
    EXPECT_EQ(RecordNumber(), count);
    MoveFirst();
    EXPECT_EQ(RecordNumber(), 1);
  }
}

TEST_F(RecordTabsTest, AMoveTakesListGridAndFieldsAlong) {
  Enter(kTabPens);
  MoveLast();
  EXPECT_EQ(List("cboPenID").currentIndex(), 400);
  EXPECT_EQ(CurrentId("grdPEN"), 400);
  EXPECT_EQ(Shown("txtPenName"), "PEN400");
}

TEST_F(RecordTabsTest, NavigatingOnIngredientsWritesTheLinesEachTime) {
  Enter(kTabIngredients);
  ChooseIn("cboIngID", kCorn);
  Database().exec(
      "UPDATE RecipeRation SET HandAdd = 1, [DryMatter%] = '50' WHERE Ingredient = '4'");
  MoveNext();
  EXPECT_FALSE(Line(1).hand_add);
  EXPECT_EQ(Line(1).dry_matter_percent, "88");
  EXPECT_EQ(RecordNumber(), kCorn + 1);
}

TEST_F(RecordTabsTest, NavigatingGivesANamedRecordItsDescription) {
  Enter(kTabIngredients);
  Database().exec("UPDATE Ingredient SET Name = 'OATS' WHERE ID = 9");
  Database().exec("UPDATE Pen SET Name = 'A09' WHERE ID = 9");
  ChooseIn("cboIngID", 9);
  MoveNext();
  EXPECT_EQ(ReadIngredient(Database(), 9).description, "OATS");
  Window().Tabs().SelectTab(kTabPens);
  ChooseIn("cboPenID", 9);
  MovePrevious();
  EXPECT_EQ(ReadPen(Database(), 9).description, "A09");
}

TEST_F(RecordTabsTest, ButtonsWorkOnTheTabShown) {
  Enter(kTabIngredients);
  ChooseIn("cboIngID", kHay);
  Window().Tabs().SelectTab(kTabPens);
  MoveNext();
  EXPECT_EQ(List("cboPenID").currentIndex(), 2);
  EXPECT_EQ(List("cboIngID").currentIndex(), kHay);
  operator_.answers = {Answer::kNo};
  Press("cmdAction(2)");
  EXPECT_EQ(operator_.boxes.back().title, "Set Pen Defaults");
  Window().Tabs().SelectTab(kTabRecipes);
  operator_.answers = {Answer::kNo};
  Press("cmdAction(2)");
  EXPECT_EQ(operator_.boxes.back().title, "Set Recipe Defaults");
}

TEST_F(RecordTabsTest, ThePositionOfAnotherTabDoesNotShow) {
  Enter(kTabIngredients);
  ChooseIn("cboIngID", kHay);
  Press("cmdSearch");  // moves the recipes
  EXPECT_EQ(RecordNumber(), kHay);
}

TEST_F(RecordTabsTest, CancelIsOffWhileThePageSaysSo) {
  Enter(kTabRecipes);
  auto& page = static_cast<RecordPage&>(Tabs().Page(kTabRecipes));
  const QPushButton& cancel = Find<QPushButton>(u"cmdAction(1)"_qs);
  Q_EMIT page.CancelAllowed(false);
  EXPECT_FALSE(cancel.isEnabled());
  Q_EMIT page.CancelAllowed(true);
  EXPECT_TRUE(cancel.isEnabled());
}

TEST_F(RecordTabsTest, WithAClosedDatabaseTheButtonsDoNothing) {
  Enter(kTabIngredients);
  Choose(u"mnuFileCloseRecipeDB"_qs);
  Window().Tabs().SelectTab(kTabIngredients);
  for (const char* button : {"cmdAction(0)", "cmdAction(1)", "cmdAction(2)", "cmdNavigate(0)",
                             "cmdNavigate(1)", "cmdNavigate(2)", "cmdNavigate(3)"}) {
    Press(button);
  }
  EXPECT_TRUE(operator_.boxes.empty());
  EXPECT_EQ(Text(u"lblRecordNumber"_qs), QString());
  EXPECT_EQ(Shown("txtIngName"), "ING001");
}

TEST_F(RecordTabsTest, TheFlagOfATypedDescriptionIsSharedByTheKinds) {
  Enter(kTabIngredients);
  ChooseIn("cboIngID", 5);
  TypeOver("txtIngDesc", "Barley");
  Window().Tabs().SelectTab(kTabPens);
  EXPECT_EQ(ReadIngredient(Database(), 5).name, "bARLEY") << "leaving the tab leaves the field";
}

TEST_F(RecordTabsTest, ACommandStoresTheFieldOrCellThatHasTheFocus) {
  Enter(kTabIngredients);
  ChooseIn("cboIngID", 5);
  TypeOver("txtIngDryMatter", "150");
  Choose(u"mnuEditPen"_qs);
  EXPECT_EQ(ReadIngredient(Database(), 5).dry_matter_percent, 100);
  EditCell("grdPEN", 9, "FeedAmount", "70");
  Choose(u"mnuFileSaveRecipeDB"_qs);
  EXPECT_EQ(ReadPen(Database(), 9).feed_amount, "70");
}

TEST_F(RecordTabsTest, ARecordChangedAfterASaveAsDatesTheCopyWithoutABox) {
  Enter(kTabIngredients);
  chooser_.Choose(app_folder_->DefaultAppPath() / "COPY.RDB");
  Choose(u"mnuFileSaveAsRecipeDB"_qs);
  Window().Tabs().SelectTab(kTabIngredients);
  operator_.boxes.clear();
  Database().exec("UPDATE History SET Modified = NULL");
  ChooseIn("cboIngID", 5);
  Fill("txtIngName", "OATS");
  EXPECT_THAT(operator_.boxes, SizeIs(0));
  EXPECT_EQ(ReadIngredient(Database(), 5).name, "OATS");
  EXPECT_EQ(Modified(), "2026-01-05");
}

TEST_F(RecordTabsTest, WhatIsTypedStaysOutOfAFileThatMayOnlyBeRead) {
  ::chmod(path_.c_str(), S_IRUSR);
  if (::geteuid() == 0) {
    // Permissions do not restrict the administrator, so mark the page as read-only instead.
    BoundDatabase bound = BindUserDatabase(path_, std::chrono::milliseconds{20});
    bound.read_only_note = "read-only";
    Show();
    Window().Tabs().SelectTab(kTabIngredients);
    Window().Rebind(DatabaseKind::kRecipe, bound);
    Fill("txtIngName", "OATS");
    EXPECT_EQ(ReadIngredient(*bound.connection, 1).name, "ING001");
    EXPECT_EQ(Box("txtIngName").toolTip(), u"read-only"_qs);
    EXPECT_FALSE(Check("chkIngHandAdd").isEnabled());
    Window().ReleaseViews();
    return;
  }
  Enter(kTabIngredients);
  Fill("txtIngName", "OATS");
  EXPECT_EQ(ReadIngredient(Database(), 1).name, "ING001");
  EXPECT_FALSE(Box("txtIngName").toolTip().isEmpty());
}

TEST_F(RecordTabsTest, LoadingTheListsShowsInTheStatusPanel) {
  constexpr int kRecords = 600;  // 100 ingredients, 100 recipes and 400 pens
  constexpr int kRecordsPerText = 20;
  std::vector<QString> texts;  // of the panel of the name, one after each record
  for (const int tab : {kTabIngredients, kTabRecipes, kTabPens}) {
    QObject::connect(&static_cast<RecordPage&>(Tabs().Page(tab)), &RecordPage::RecordLoaded,
                     &Window(), [&] { texts.push_back(Name()); });
  }
  chooser_.Choose(path_);
  Choose(u"mnuFileOpenRecipeDB"_qs);
  ASSERT_THAT(texts, SizeIs(kRecords));
  for (int record = 1; record <= kRecords; ++record) {
    const bool loading = record / kRecordsPerText % 2 == 0;
    EXPECT_EQ(texts.at(static_cast<std::size_t>(record - 1)),
              loading ? u"Standby... Loading"_qs : u"Standby..."_qs)
        << "record " << record;
  }
  EXPECT_EQ(Name(), u"YARD.RDB"_qs);
}

}  // namespace
}  // namespace vrx::testing
