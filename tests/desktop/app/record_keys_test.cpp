// The keys that work on all record tabs, and undo across them.
#include <QShortcut>
#include <QTest>

#include <gmock/gmock.h>

#include "desktop/records/record_pages_fixture.h"
#include "widgets/drawing.h"

namespace vrx::testing {
namespace {

using ::testing::StartsWith;

class RecordKeys : public RecordPagesFixture {
 protected:
  int RecordNumber() { return Text(u"lblRecordNumber"_qs).toInt(); }

  // The shortcut of the key, as the window system delivers it.
  void Press(Qt::Key key, Qt::KeyboardModifiers held) {
    for (QShortcut* const shortcut : Window().findChildren<QShortcut*>()) {
      if (shortcut->key() == QKeySequence(held | key)) {
        Q_EMIT shortcut->activated();
        RunEvents();
        return;
      }
    }
    ADD_FAILURE() << "no such shortcut";
  }
  std::string Focused() { return Window().focusWidget()->objectName().toStdString(); }
  std::string Caption(const char* item) {
    return Find<QAction>(QLatin1String(item)).text().toStdString();
  }
};

TEST_F(RecordKeys, TheNextRecordKeepsTheFieldAndStoresIt) {
  Enter(kTabIngredients);
  ChooseIn("cboIngID", kCorn);
  TypeOver("txtIngDesc", "Corn rolled");
  Press(Qt::Key_PageDown, Qt::ControlModifier);
  EXPECT_EQ(RecordNumber(), kCorn + 1);
  EXPECT_EQ(Focused(), "txtIngDesc");
  EXPECT_EQ(ReadIngredient(Database(), kCorn).description, "Corn rolled");
  Press(Qt::Key_PageUp, Qt::ControlModifier);
  EXPECT_EQ(RecordNumber(), kCorn);
  EXPECT_EQ(Shown("txtIngDesc"), "Corn rolled");
}

TEST_F(RecordKeys, AFieldThatOneRecordClosesHasTheFocusAgainInTheNext) {
  Enter(kTabRecipes);
  Find<QWidget>(u"txtRecRationTarget"_qs).setFocus();
  ASSERT_EQ(Focused(), "txtRecRationTarget");
  Press(Qt::Key_PageUp, Qt::ControlModifier);  // recipe 100 has no type
  EXPECT_EQ(RecordNumber(), 100);
  EXPECT_NE(Focused(), "txtRecRationTarget");
  Press(Qt::Key_PageDown, Qt::ControlModifier);
  EXPECT_EQ(Focused(), "txtRecRationTarget");
}

TEST_F(RecordKeys, TheKeysDoNothingOnOtherTabs) {
  Enter(kTabIngredients);
  Window().Tabs().SelectTab(kTabDataTransfer);
  Press(Qt::Key_PageDown, Qt::ControlModifier);
  Window().Tabs().SelectTab(kTabIngredients);
  EXPECT_EQ(RecordNumber(), 1);
}

TEST_F(RecordKeys, EnterGoesThroughTheCellsOfTheList) {
  Enter(kTabIngredients);
  EditCell("grdING", 5, "Name", "BARLEY");
  PressKey(Qt::Key_Return);
  const RecordListGrid& grid = Grid("grdING");
  EXPECT_EQ(grid.Model().Column(grid.currentIndex().column()).field, "Description");
  Type("Barley");
  PressKey(Qt::Key_Return);
  Type("77");
  PressKey(Qt::Key_Return);
  EXPECT_EQ(CurrentId("grdING"), 6);
  EXPECT_EQ(grid.Model().Column(grid.currentIndex().column()).field, "Name");
  EXPECT_TRUE(grid.IsEditing());
  EXPECT_EQ(ReadIngredient(Database(), 5).dry_matter_percent, 77);
  EXPECT_EQ(ReadIngredient(Database(), 5).description, "Barley");
}

TEST_F(RecordKeys, EnterLeavesTheListAfterItsLastCell) {
  Enter(kTabIngredients);
  ClickCell("grdING", 100, "DryMatter%");
  PressKey(Qt::Key_Return);
  EXPECT_NE(Focused(), "grdING");
  EXPECT_EQ(CurrentId("grdING"), 100);
}

TEST_F(RecordKeys, TheDescriptionIsBeforeTheNameWithAutomaticAbbreviation) {
  settings_.SetAutoAbbreviateOn(false);
  Enter(kTabIngredients);
  const auto next = [&](const char* box) {
    return Find<QWidget>(QLatin1String(box)).nextInFocusChain()->objectName().toStdString();
  };
  EXPECT_EQ(next("cboIngID"), "txtIngName");
  Choose(u"mnuEditAutoAbbrev"_qs);
  EXPECT_EQ(next("cboIngID"), "txtIngDesc");
  EXPECT_EQ(next("txtIngDesc"), "txtIngName");
  EXPECT_EQ(next("txtIngName"), "txtIngDryMatter");
  EXPECT_EQ(next("cboRecID"), "txtRecDesc");
  EXPECT_EQ(next("txtRecDesc"), "txtRecName");
  EXPECT_EQ(next("cboPenID"), "txtPenDesc");
  Choose(u"mnuEditAutoAbbrev"_qs);
  EXPECT_EQ(next("cboRecID"), "txtRecName");
  EXPECT_EQ(next("txtRecName"), "txtRecDesc");
}

TEST_F(RecordKeys, UndoGoesBackToTheTabTheRecordAndTheField) {
  Enter(kTabIngredients);
  ChooseIn("cboIngID", kCorn);
  Fill("txtIngDryMatter", "50");
  const std::string line = Line(1).dry_matter;
  EXPECT_EQ(Line(1).dry_matter_percent, "50");
  EXPECT_EQ(Caption("mnuEditUndo"), "&Undo dry matter of CORN 88 to 50");
  ChooseIn("cboIngID", 9);
  Window().Tabs().SelectTab(kTabPens);
  ChooseIn("cboPenID", 3);
  Fill("txtPenFeed", "700");
  EXPECT_EQ(Caption("mnuEditUndo"), "&Undo feed amount of PEN003 0 to 700");
  Choose(u"mnuEditUndo"_qs);
  EXPECT_EQ(ReadPen(Database(), 3).feed_amount, "0");
  EXPECT_EQ(Shown("txtPenFeed"), "0");
  Choose(u"mnuEditUndo"_qs);
  EXPECT_EQ(Window().Tabs().CurrentTab(), kTabIngredients);
  EXPECT_EQ(RecordNumber(), kCorn);
  EXPECT_EQ(Focused(), "txtIngDryMatter");
  EXPECT_EQ(Shown("txtIngDryMatter"), "88");
  EXPECT_EQ(Line(1).dry_matter_percent, "88");
  EXPECT_NE(Line(1).dry_matter, line);
  EXPECT_FALSE(On(u"mnuEditUndo"_qs));
  EXPECT_EQ(Caption("mnuEditUndo"), "&Undo");
  EXPECT_EQ(Caption("mnuEditRedo"), "Re&do dry matter of CORN 88 to 50");
  Choose(u"mnuEditRedo"_qs);
  Choose(u"mnuEditRedo"_qs);
  EXPECT_EQ(ReadPen(Database(), 3).feed_amount, "700");
  EXPECT_EQ(Window().Tabs().CurrentTab(), kTabPens);
  EXPECT_FALSE(On(u"mnuEditRedo"_qs));
}

TEST_F(RecordKeys, UndoRestoresWhatAutomaticAbbreviationChanged) {
  settings_.SetAutoAbbreviateOn(true);
  Enter(kTabIngredients);
  ChooseIn("cboIngID", 9);
  Fill("txtIngDesc", "Barley");
  ASSERT_EQ(ReadIngredient(Database(), 9).name, "bARLEY");
  EXPECT_EQ(Caption("mnuEditUndo"), "&Undo description of ING009 (empty) to Barley");
  Choose(u"mnuEditUndo"_qs);
  EXPECT_EQ(ReadIngredient(Database(), 9).name, "ING009");
  EXPECT_EQ(ReadIngredient(Database(), 9).description, "");
  EXPECT_EQ(Item("cboIngID", 9), "  9: ");
}

TEST_F(RecordKeys, UndoRestoresAPenThatWasSetToItsDefaults) {
  Enter(kTabPens);
  ChooseIn("cboPenID", 3);
  Fill("txtPenFeed", "700");
  operator_.answers = {Answer::kYes};
  RecordPagesFixture::Press("cmdAction(2)");
  ASSERT_EQ(ReadPen(Database(), 3).feed_amount, "0");
  EXPECT_THAT(Caption("mnuEditUndo"), StartsWith("&Undo defaults of pen 3 "));
  Choose(u"mnuEditUndo"_qs);
  EXPECT_EQ(ReadPen(Database(), 3).feed_amount, "700");
}

TEST_F(RecordKeys, ANewDatabaseHasNothingToUndoAndTheFocusInItsFirstField) {
  settings_.SetAutoAbbreviateOn(true);
  Enter(kTabPens);
  ChooseIn("cboPenID", 3);
  Fill("txtPenFeed", "700");
  ASSERT_TRUE(On(u"mnuEditUndo"_qs));
  chooser_.Choose(common_ / "FRESH.RDB");
  Choose(u"mnuFileNewRecipeDB"_qs);
  EXPECT_FALSE(On(u"mnuEditUndo"_qs));
  EXPECT_EQ(Window().Tabs().CurrentTab(), kTabIngredients);
  EXPECT_EQ(Focused(), "txtIngDesc");
}

TEST_F(RecordKeys, ANewTransactionDatabaseHasTheFocusInItsListOfGroups) {
  Enter(kTabPens);
  chooser_.Choose(common_ / "FRESH.TDB");
  Choose(u"mnuFileNewTransactionDB"_qs);
  EXPECT_EQ(Window().Tabs().CurrentTab(), kTabBatchedFed);
  EXPECT_EQ(Focused(), "lstGroupBy");
}

// The contrast of the frame with the cell that it surrounds.
double FrameContrast(QTableView& grid) {
  const QRect cell = grid.visualRect(grid.currentIndex());
  const QImage picture = grid.viewport()->grab().toImage();
  const QColor frame = picture.pixelColor(cell.left() + 1, cell.center().y());
  const QColor background = picture.pixelColor(cell.left() + 4, cell.top() + 5);
  return ContrastRatio(frame, background);
}

TEST_F(RecordKeys, TheCurrentCellIsPlainlyVisible) {
  Enter(kTabIngredients);
  ClickCell("grdING", kCorn, "Description");
  EXPECT_GE(FrameContrast(Grid("grdING")), kTextContrast);
  Window().Tabs().SelectTab(kTabRecipes);
  auto& lines = Find<RecipeGrid>(u"grdREC"_qs);
  lines.setFocus();
  EXPECT_GE(FrameContrast(lines), kTextContrast);
}

TEST_F(RecordKeys, CopyAndCompareAreOnWhereARecipeIsShown) {
  Enter(kTabIngredients);
  EXPECT_FALSE(On(u"mnuEditCopyRecipe"_qs));
  EXPECT_FALSE(On(u"mnuEditCompareRecipes"_qs));
  Window().Tabs().SelectTab(kTabRecipes);
  EXPECT_TRUE(On(u"mnuEditCopyRecipe"_qs));
  EXPECT_TRUE(On(u"mnuEditCompareRecipes"_qs));
  Choose(u"mnuFileCloseRecipeDB"_qs);
  EXPECT_FALSE(On(u"mnuEditCopyRecipe"_qs));
  EXPECT_FALSE(On(u"mnuEditCompareRecipes"_qs));
}

}  // namespace
}  // namespace vrx::testing
