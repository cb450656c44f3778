#include "desktop/print/print_preview.h"

#include <QLabel>
#include <QPixmap>

#include <gmock/gmock.h>

#include "desktop/print/print_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

class PreviewOfATab : public PrintFixture {
 protected:
  // Acts on the form of the preview, which the test leaves by a button or a key.
  void Preview(const std::function<void(PrintPreview&)>& act) {
    const NextModal next([&](QWidget& form) { act(dynamic_cast<PrintPreview&>(form)); });
    Choose(u"mnuFilePrintPreview"_qs);
    EXPECT_TRUE(next.Seen());
    EXPECT_FALSE(operator_.busy);
  }
  static void Close(PrintPreview& preview) { QTest::keyClick(&preview, Qt::Key_Escape); }
  static void PressPrint(PrintPreview& preview) {
    QTest::mouseClick(preview.findChild<QPushButton*>(u"cmdPrint"_qs), Qt::LeftButton);
  }
  static QString PageOf(const PrintPreview& preview) {
    return preview.findChild<QSpinBox*>(u"txtPage"_qs)->text();
  }
  static QImage Sheet(const PrintPreview& preview) {
    return preview.findChild<QLabel*>(u"picPage"_qs)->pixmap().toImage();
  }

  void AddFeeds(int count) {
    Alter(Transactions(),
          "WITH RECURSIVE Copy (n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM Copy WHERE n < " +
              std::to_string(count) +
              ") INSERT INTO Transactions ([Transaction], Recipe, Type, Target) "
              "SELECT n, 'STEERS', 'FEED', 100 FROM Copy");
  }
};

TEST_F(PreviewOfATab, TurnsThroughAsManyPagesAsArePrinted) {
  AddFeeds(200);
  ShowTab();
  const auto pages = static_cast<int>(Print().size());
  ASSERT_GT(pages, 3);
  const QString of = u" of %1"_qs.arg(pages);
  Preview([&](PrintPreview& preview) {
    EXPECT_EQ(PageOf(preview), u"1"_qs + of);
    EXPECT_FALSE(preview.findChild<QPushButton*>(u"cmdPreviousPage"_qs)->isEnabled());
    const QImage first = Sheet(preview);
    QTest::keyClick(preview.findChild<QScrollArea*>(), Qt::Key_PageDown);
    EXPECT_EQ(PageOf(preview), u"2"_qs + of);
    EXPECT_NE(Sheet(preview), first);
    QTest::keyClick(&preview, Qt::Key_PageUp);
    EXPECT_EQ(Sheet(preview), first);
    QTest::keyClick(&preview, Qt::Key_End);
    EXPECT_EQ(PageOf(preview), u"%1"_qs.arg(pages) + of);
    EXPECT_FALSE(preview.findChild<QPushButton*>(u"cmdNextPage"_qs)->isEnabled());
    QTest::mouseClick(preview.findChild<QPushButton*>(u"cmdPreviousPage"_qs), Qt::LeftButton);
    EXPECT_EQ(PageOf(preview), u"%1"_qs.arg(pages - 1) + of);
    Close(preview);
  });
}

TEST_F(PreviewOfATab, FitsTheSheetToTheZoom) {
  ShowTab();
  Preview([](PrintPreview& preview) {
    auto* const zoom = preview.findChild<QComboBox*>(u"lstZoom"_qs);
    const QSize room = preview.findChild<QScrollArea*>()->viewport()->size();
    const QSize whole = Sheet(preview).deviceIndependentSize().toSize();
    EXPECT_LE(whole.height(), room.height());
    EXPECT_LE(whole.width(), room.width());
    zoom->setCurrentIndex(2);
    const QSize actual = Sheet(preview).deviceIndependentSize().toSize();
    zoom->setCurrentIndex(3);
    EXPECT_NEAR(Sheet(preview).deviceIndependentSize().width(), 2 * actual.width(), 2);
    zoom->setCurrentIndex(1);
    const int wide = Sheet(preview).deviceIndependentSize().toSize().width();
    EXPECT_GT(wide, room.width() - 60);
    EXPECT_LE(wide, room.width());
    Close(preview);
  });
}

TEST_F(PreviewOfATab, PrintsByItsButton) {
  ShowTab();
  ChoosePdf();
  chooser_.Choose(pdf_);
  Preview([](PrintPreview& preview) { PressPrint(preview); });
  const Pages from_preview = LinesOf(pdf_);
  EXPECT_EQ(from_preview, Print());
}

TEST_F(PreviewOfATab, PrintsNothingWhenItIsClosed) {
  ShowTab();
  ChoosePdf();
  Preview([](PrintPreview& preview) { Close(preview); });
  EXPECT_FALSE(std::filesystem::exists(pdf_));
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

TEST_F(PreviewOfATab, ShowsEachRecipeAndPrintsThemAfterTheQuestion) {
  settings_.SetPrintCurrentRecipeOnlyOn(false);
  AddRecipe(1, "W", 2);
  AddRecipe(4, "P", 1);
  AddRecipe(9, "W", 3);
  ShowTab();
  GoToTab(kTabRecipes);
  operator_.answers = {Answer::kNo};
  Preview([&](PrintPreview& preview) {
    EXPECT_EQ(PageOf(preview), u"1 of 3"_qs);
    EXPECT_THAT(operator_.boxes, IsEmpty());
    PressPrint(preview);
  });
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(LastBox().title, "Print All Recipes");
  EXPECT_FALSE(Visible(u"prgScanPrint"_qs));
}

TEST_F(PreviewOfATab, RefusesAnEmptyListAsThePrintDoes) {
  ShowTab();
  ChooseGroup(9);
  Choose(u"mnuFilePrintPreview"_qs);
  ExpectRefused("There is no transaction data to be printed.");
}

TEST_F(PreviewOfATab, NamesLettersThatAreTooSmallToRead) {
  {
    SQLite::Database database = OpenDatabase(Recipes(), Access::kWrite);
    for (int id = 3; id <= 90; ++id) {
      WriteIngredient(database,
                      {.id = id, .name = "FEED" + std::to_string(id), .description = "x"});
    }
  }
  ShowTab();
  const auto noted = [this] {
    bool visible = false;
    Preview([&](PrintPreview& preview) {
      visible = preview.findChild<QLabel*>(u"lblPreviewNote"_qs)->isVisible();
      Close(preview);
    });
    return visible;
  };
  EXPECT_FALSE(noted());
  Click(u"chkBatFitPage"_qs);
  EXPECT_TRUE(noted());
}

TEST_F(PreviewOfATab, ReportsAPageThatCannotBeRead) {
  AddFeeds(20000);
  ShowTab();
  Preview([&](PrintPreview& preview) {
    auto* const page = preview.findChild<QSpinBox*>(u"txtPage"_qs);
    Alter(Transactions(), "ALTER TABLE Transactions RENAME TO Elsewhere");
    page->setValue(page->maximum() / 3);  // no page that was measured
    Alter(Transactions(), "ALTER TABLE Elsewhere RENAME TO Transactions");
    Close(preview);
  });
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(LastBox().text, "The page could not be shown.");
}

}  // namespace
}  // namespace vrx::testing
