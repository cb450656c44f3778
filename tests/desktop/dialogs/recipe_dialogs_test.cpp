#include "desktop/dialogs/recipe_dialogs.h"

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

#include <gmock/gmock.h>

#include "desktop/next_modal.h"
#include "desktop/records/record_pages_fixture.h"

namespace vrx::testing {
namespace {

template <typename Control>
Control& In(const QWidget& dialog, const char* name) {
  auto* const control = dialog.findChild<Control*>(QLatin1String(name));
  if (control == nullptr) {
    throw std::logic_error(std::string("no control ") + name);
  }
  return *control;
}

class RecipeDialogsTest : public RecordPagesFixture {
 protected:
  // The number of cells that are marked as different, each by a sign and by heavy letters.
  static int Marked(const QTableWidget& list) {
    int marked = 0;
    for (int row = 0; row < list.rowCount(); ++row) {
      for (int column = 0; column < list.columnCount(); ++column) {
        const QTableWidgetItem& cell = *list.item(row, column);
        EXPECT_EQ(cell.font().bold(), cell.text().contains(QChar(0x2260)));
        marked += cell.font().bold() ? 1 : 0;
      }
    }
    return marked;
  }

  static void ExpectNamesFit(const QTableWidget& list) {
    for (int row = 0; row < list.rowCount(); ++row) {
      const QTableWidgetItem& name = *list.item(row, 0);
      EXPECT_LE(QFontMetrics(name.font()).horizontalAdvance(name.text()), list.columnWidth(0))
          << name.text().toStdString();
    }
  }

  std::string TextOf(const QWidget& dialog, const char* label) {
    return In<QLabel>(dialog, label).text().toStdString();
  }
};

TEST_F(RecipeDialogsTest, ACopyIsShownWithTheFocusOnItsName) {
  Enter(kTabRecipes);
  const NextModal modal([&](QWidget& dialog) {
    EXPECT_EQ(dialog.objectName(), u"dlgCopyRecipe"_qs);
    auto& list = In<QListWidget>(dialog, "lstFreeRecipes");
    EXPECT_EQ(list.currentItem()->text(), u"  4: REC004"_qs);
    EXPECT_EQ(dialog.focusWidget(), &list);
    QTest::keyClick(&list, Qt::Key_Return);
  });
  Choose(u"mnuEditCopyRecipe"_qs);
  ASSERT_TRUE(modal.Seen());
  EXPECT_EQ(Text(u"lblRecordNumber"_qs), u"4"_qs);
  EXPECT_EQ(ReadRecipeLines(Database(), 4).size(), ReadRecipeLines(Database(), 1).size());
  EXPECT_EQ(Window().focusWidget()->objectName(), u"txtRecName"_qs);
  EXPECT_TRUE(Box("txtRecName").hasSelectedText());
  EXPECT_THAT(Find<QAction>(u"mnuEditUndo"_qs).text().toStdString(),
              ::testing::EndsWith(" to recipe 4"));
  Choose(u"mnuEditUndo"_qs);
  EXPECT_TRUE(ReadRecipeLines(Database(), 4).empty());
  EXPECT_EQ(ReadRecipe(Database(), 4).description, "");
}

TEST_F(RecipeDialogsTest, ACancelledCopyStoresNothing) {
  Enter(kTabRecipes);
  const NextModal modal([&](QWidget& dialog) { static_cast<QDialog&>(dialog).reject(); });
  Choose(u"mnuEditCopyRecipe"_qs);
  EXPECT_TRUE(ReadRecipeLines(Database(), 4).empty());
  EXPECT_EQ(Text(u"lblRecordNumber"_qs), u"1"_qs);
}

TEST_F(RecipeDialogsTest, TwoRecipesAreComparedSideBySide) {
  SQLite::Database(path_.string(), SQLite::OPEN_READWRITE)
      .exec("UPDATE Ingredient SET Name = 'WWWWWW' WHERE ID = " + std::to_string(kHay));
  Enter(kTabRecipes);
  const NextModal modal([&](QWidget& dialog) {
    EXPECT_EQ(dialog.objectName(), u"dlgCompareRecipes"_qs);
    EXPECT_EQ(In<QComboBox>(dialog, "cboRecipeA").currentData().toInt(), 1);
    auto& other = In<QComboBox>(dialog, "cboRecipeB");
    EXPECT_EQ(other.currentData().toInt(), 2);
    auto& list = In<QTableWidget>(dialog, "grdRecipeB");
    EXPECT_EQ(list.rowCount(), In<QTableWidget>(dialog, "grdRecipeA").rowCount());
    EXPECT_THAT(TextOf(dialog, "lblSummary"), ::testing::StartsWith("Different (\u2260): "));
    EXPECT_GT(Marked(list), 0);
    ExpectNamesFit(In<QTableWidget>(dialog, "grdRecipeA"));
    ExpectNamesFit(list);
    other.setCurrentIndex(other.findData(1));
    Q_EMIT other.activated(0);
    EXPECT_EQ(TextOf(dialog, "lblSummary"), "The recipes are the same.");
    EXPECT_EQ(Marked(list), 0);
    auto& first = In<QComboBox>(dialog, "cboRecipeA");
    first.setCurrentIndex(first.findData(2));
    Q_EMIT first.activated(0);
    ExpectNamesFit(In<QTableWidget>(dialog, "grdRecipeA"));
    ExpectNamesFit(list);
    static_cast<QDialog&>(dialog).accept();
  });
  Choose(u"mnuEditCompareRecipes"_qs);
  EXPECT_TRUE(modal.Seen());
}

TEST_F(RecipeDialogsTest, ARecipeOfAnotherFileIsCompared) {
  Enter(kTabRecipes);
  const std::filesystem::path other = common_ / "OLDER.RDB";
  std::filesystem::copy_file(path_, other);
  SQLite::Database(other.string(), SQLite::OPEN_READWRITE).exec("UPDATE Recipe SET Name = 'OLD'");
  chooser_.Choose(other);
  const NextModal modal([&](QWidget& dialog) {
    auto& back = In<QPushButton>(dialog, "cmdThisFile");
    EXPECT_FALSE(back.isEnabled());
    In<QPushButton>(dialog, "cmdOtherFile").click();
    EXPECT_EQ(TextOf(dialog, "lblFileB"), "OLDER.RDB");
    EXPECT_EQ(TextOf(dialog, "lblNameB"), "\u2260 OLD");
    EXPECT_TRUE(back.isEnabled());
    back.click();
    EXPECT_EQ(TextOf(dialog, "lblFileB"), TextOf(dialog, "lblFileA"));
    static_cast<QDialog&>(dialog).accept();
  });
  Choose(u"mnuEditCompareRecipes"_qs);
  EXPECT_TRUE(modal.Seen());
}

}  // namespace
}  // namespace vrx::testing
