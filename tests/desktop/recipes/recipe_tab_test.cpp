#include <QApplication>
#include <QTabBar>
#include <QTest>

#include <gmock/gmock.h>

#include "database/connection.h"
#include "database/records.h"
#include "desktop/main_window/main_window_fixture.h"
#include "desktop/recipes/recipe_grid.h"
#include "widgets/fields.h"
#include "widgets/qt_text.h"

namespace vrx::testing {
namespace {

using ::testing::IsEmpty;

// The Recipes tab in the main window, on a new database.
class RecipeTab : public MainWindowFixture {
 protected:
  RecipeTab() {
    Open(DatabaseKind::kRecipe);
    path_ = Main().Databases().Recipe().path;
    {
      SQLite::Database file = OpenDatabase(path_, Access::kWrite);
      WriteIngredient(file, {1, "CORN", "Corn Rolled", 88, false});
      RecipeRecord recipe = ReadRecipe(file, 1);
      recipe.batch_type = "W";
      WriteRecipe(file, recipe);
    }
    Show();
    Window().Tabs().SelectTab(kTabRecipes);
    RunEvents();
  }

  RecipeRecord Stored() {
    SQLite::Database file = OpenDatabase(path_, Access::kRead);
    return ReadRecipe(file, 1);
  }
  std::vector<RecipeLineRecord> StoredLines() {
    SQLite::Database file = OpenDatabase(path_, Access::kRead);
    return ReadRecipeLines(file, 1);
  }
  static void Type(const QString& text) {
    for (const QChar character : text) {
      QTest::sendKeyEvent(QTest::Click, QApplication::focusWidget(), Qt::Key_unknown,
                          QString(character), Qt::NoModifier);
    }
  }
  void TypeName() {
    auto& box = Find<FilteredEdit>(u"txtRecName"_qs);
    box.setFocus();
    box.selectAll();
    Type(u"STEERS"_qs);
    ASSERT_EQ(Stored().name, "REC001");
  }
  // An ingredient, and a weight whose cell is open still.
  void TypeLine() {
    Find<RecipeGrid>(u"grdREC"_qs).setFocus();
    Type(u"CORN"_qs);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    Type(u"1200"_qs);
    ASSERT_THAT(StoredLines(), IsEmpty());
  }
  static std::string Focused() {
    const QWidget* const focus = QApplication::focusWidget();
    return focus == nullptr ? std::string() : focus->objectName().toStdString();
  }

  std::filesystem::path path_;
};

TEST_F(RecipeTab, ACommandBeginsWithTheFieldThatHasTheFocus) {
  TypeName();
  Choose(u"mnuEditAutoAbbrev"_qs);
  EXPECT_EQ(Stored().name, "STEERS");
  EXPECT_EQ(Focused(), "txtRecName");
}

TEST_F(RecipeTab, SaveBeginsWithTheFieldThatHasTheFocus) {
  TypeName();
  Choose(u"mnuFileSaveRecipeDB"_qs);
  EXPECT_EQ(Stored().name, "STEERS");
}

TEST_F(RecipeTab, CloseBeginsWithTheLineThatIsBeingEntered) {
  TypeLine();
  Choose(u"mnuFileCloseRecipeDB"_qs);
  ASSERT_EQ(StoredLines().size(), 1U);
  EXPECT_EQ(StoredLines().front().target, "1200");
}

TEST_F(RecipeTab, AToolButtonBeginsWithTheCellThatIsEdited) {
  TypeLine();
  Find<QToolButton>(u"Abbreviate"_qs).click();
  ASSERT_EQ(StoredLines().size(), 1U);
  EXPECT_EQ(StoredLines().front().target, "1200");
  EXPECT_EQ(Focused(), "grdREC");
}

TEST_F(RecipeTab, TheCloseBoxBeginsWithTheFieldThatHasTheFocus) {
  TypeName();
  Window().close();
  EXPECT_EQ(Stored().name, "STEERS");
  EXPECT_EQ(exits_, std::vector<ExitReason>{ExitReason::kCloseBox});
}

TEST_F(RecipeTab, TheEndOfTheProgramBeginsWithTheFieldThatHasTheFocus) {
  TypeName();
  Main().CloseDatabase(DatabaseKind::kRecipe);
  EXPECT_EQ(Stored().name, "STEERS");
}

TEST_F(RecipeTab, AClickOnAnotherTabLeavesTheField) {
  TypeName();
  QTabBar& strip = *Tabs().tabBar();
  QTest::mouseClick(&strip, Qt::LeftButton, {}, strip.tabRect(kTabDataTransfer).center());
  EXPECT_EQ(Tabs().currentIndex(), kTabDataTransfer);
  EXPECT_EQ(Stored().name, "STEERS");
}

TEST_F(RecipeTab, AClickOnAnotherTabLeavesTheLineThatIsBeingEntered) {
  TypeLine();
  QTabBar& strip = *Tabs().tabBar();
  QTest::mouseClick(&strip, Qt::LeftButton, {}, strip.tabRect(kTabDataTransfer).center());
  EXPECT_EQ(StoredLines().size(), 1U);
}

TEST_F(RecipeTab, AMandatoryNameThatIsEmptyHoldsTheCommand) {
  auto& box = Find<FilteredEdit>(u"txtRecName"_qs);
  box.setFocus();
  box.selectAll();
  QTest::keyClick(&box, Qt::Key_Delete);
  Choose(u"mnuFileCloseRecipeDB"_qs);
  ASSERT_EQ(operator_.boxes.size(), 1U);
  EXPECT_EQ(operator_.boxes.front().text, "The 'Name' field is mandatory.");
  EXPECT_TRUE(Tabs().isTabEnabled(kTabRecipes));
  EXPECT_TRUE(box.hasFocus());
}

TEST_F(RecipeTab, TheRecordNumberFollowsTheRecipe) {
  EXPECT_EQ(Text(u"lblRecordNumber"_qs), u"1"_qs);
  QTest::mouseClick(&Find<QPushButton>(u"cmdNavigate(1)"_qs), Qt::LeftButton);
  EXPECT_EQ(Text(u"lblRecordNumber"_qs), u"100"_qs);
}

TEST_F(RecipeTab, CancelIsOffWhileTheGridHasTheFocus) {
  Find<RecipeGrid>(u"grdREC"_qs).setFocus();
  EXPECT_FALSE(Find<QPushButton>(u"cmdAction(1)"_qs).isEnabled());
  Find<FilteredEdit>(u"txtRecName"_qs).setFocus();
  EXPECT_TRUE(Find<QPushButton>(u"cmdAction(1)"_qs).isEnabled());
}

}  // namespace
}  // namespace vrx::testing
