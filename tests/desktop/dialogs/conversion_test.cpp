#include "desktop/dialogs/conversion.h"

#include <QClipboard>
#include <QDialog>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <filesystem>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "base/files.h"
#include "database/connection.h"
#include "database/summary.h"
#include "desktop/main_window/main_window_fixture.h"
#include "desktop/next_modal.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::SizeIs;
using ::testing::StartsWith;

class ConversionTest : public MainWindowFixture {
 protected:
  ConversionTest() {
    fs::create_symlink(fs::path(VRX_BIN_DIR) / "vrx2260jet", program_ / "vrx2260jet");
    fs::copy_file(fs::path(VRX_SOURCE_DIR) / "tests/data/legacy/LEGACYR.RDB", old_recipes_);
    fs::copy_file(fs::path(VRX_SOURCE_DIR) / "tests/data/legacy/LEGACYX.TDB", old_transactions_);
  }

  static QPushButton& Button(QWidget& dialog, const QString& name) {
    return *dialog.findChild<QPushButton*>(name);
  }

  fs::path old_recipes_ = folder_ / "OLD.RDB";
  fs::path old_transactions_ = folder_ / "OLD.TDB";
};

TEST_F(ConversionTest, AnEarlierRecipeDatabaseIsConvertedShownAndOpened) {
  Show();
  chooser_.Choose(old_recipes_);
  operator_.answers = {Answer::kYes};
  chooser_.Choose(folder_ / "NEW.RDB");
  QString report;
  const NextModal modal([&report](QWidget& dialog) {
    report = dialog.findChild<QPlainTextEdit*>(u"txtConversionReport"_qs)->toPlainText();
    QTest::mouseClick(&Button(dialog, u"cmdCopy"_qs), Qt::LeftButton);
    QTest::keyClick(&dialog, Qt::Key_Return);
  });
  Choose(u"mnuFileOpenRecipeDB"_qs);
  RunEvents();
  EXPECT_TRUE(modal.Seen());
  EXPECT_THAT(report.toStdString(), StartsWith("Conversion of OLD.RDB\n"));
  EXPECT_EQ(QGuiApplication::clipboard()->text(), report);
  EXPECT_EQ(Main().Databases().Recipe().name, "NEW.RDB");
  EXPECT_EQ(Main().Databases().Recipe().path, folder_ / "NEW.RDB");
  EXPECT_EQ(Main().Databases().Bound(DatabaseKind::kRecipe).path, folder_ / "NEW.RDB");
  EXPECT_EQ(ReadDatabaseSummary(folder_ / "NEW.RDB").recipe.ingredients, 12);
}

TEST_F(ConversionTest, AnEarlierDatabaseOfTheLastRunIsAskedAboutAtTheStart) {
  user_settings_.SaveSetting("MRU_TransPathName", old_transactions_.string());
  user_settings_.SaveSetting("MRU_TransFileName", "OLD.TDB");
  settings_.SetAutoloadTransDBOn(true);
  operator_.answers = {Answer::kYes};
  chooser_.Choose(folder_ / "NEW.TDB");
  const NextModal modal(
      [](QWidget& dialog) { QTest::mouseClick(&Button(dialog, u"cmdClose"_qs), Qt::LeftButton); });
  Show();
  EXPECT_TRUE(modal.Seen());
  EXPECT_EQ(Main().Databases().Bound(DatabaseKind::kTransaction).path, folder_ / "NEW.TDB");
  EXPECT_EQ(Main().Recent(DatabaseKind::kTransaction).path, (folder_ / "NEW.TDB").string());
}

TEST_F(ConversionTest, ANoEndsAsForAnyFileThatIsNoDatabase) {
  Show();
  chooser_.Choose(old_recipes_);
  operator_.answers = {Answer::kNo};
  Choose(u"mnuFileOpenRecipeDB"_qs);
  ASSERT_FALSE(operator_.boxes.empty());
  EXPECT_EQ(operator_.boxes.front().text,
            "This database was made by an earlier version of the program. Convert a copy of it and "
            "open the copy?");
  EXPECT_EQ(operator_.boxes.back().title, "Invalid Database");
  EXPECT_TRUE(Main().Databases().Bound(DatabaseKind::kRecipe).blank);
}

TEST_F(ConversionTest, AFileThatCannotBeConvertedOpensNothing) {
  Show();
  std::string bytes = ReadFileBytes(old_recipes_, std::size_t{1} << 20U);
  bytes[0x14] = 0;
  WriteFileBytes(old_recipes_, bytes);
  chooser_.Choose(old_recipes_);
  Choose(u"mnuFileOpenRecipeDB"_qs);
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_THAT(operator_.boxes[0].text, HasSubstr("OLD.RDB is a Jet 3 database"));
  EXPECT_TRUE(Main().Databases().Bound(DatabaseKind::kRecipe).blank);
}

TEST_F(ConversionTest, TheReportIsSavedAsATextFile) {
  QtConversionDisplay display(Window(), chooser_, operator_);
  chooser_.Choose(folder_ / "REPORT.TXT");
  const NextModal modal([](QWidget& dialog) {
    QTest::mouseClick(&Button(dialog, u"cmdSave"_qs), Qt::LeftButton);
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  display.ShowReport("one\ntwo\n", "NEW.TXT");
  EXPECT_EQ(ReadFileBytes(folder_ / "REPORT.TXT", 100), "one\ntwo\n");
  chooser_.Choose(folder_ / "none" / "REPORT.TXT");
  const NextModal second([](QWidget& dialog) {
    QTest::mouseClick(&Button(dialog, u"cmdSave"_qs), Qt::LeftButton);
    QTest::keyClick(&dialog, Qt::Key_Escape);
  });
  display.ShowReport("one\n", "NEW.TXT");
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(operator_.boxes[0].title, "Database Conversion Error");
}

TEST_F(ConversionTest, TheProgressIsShownAndItsButtonEndsIt) {
  QtConversionDisplay display(Window(), chooser_, operator_);
  EXPECT_FALSE(display.Cancelled());
  display.BeginProgress();
  auto* const dialog = Window().findChild<QDialog*>(u"dlgConversionProgress"_qs);
  ASSERT_NE(dialog, nullptr);
  EXPECT_TRUE(dialog->isVisible());
  display.SetProgressMessage("Converting the table Pen.");
  display.SetProgressRange(400);
  display.SetProgressValue(100);
  EXPECT_EQ(dialog->findChild<QLabel*>()->text(), u"Converting the table Pen."_qs);
  EXPECT_EQ(dialog->findChild<QProgressBar*>()->value(), 100);
  QTest::mouseClick(&Button(*dialog, u"cmdCancel"_qs), Qt::LeftButton);
  EXPECT_TRUE(display.Cancelled());
  EXPECT_TRUE(dialog->isVisible());
  display.EndProgress();
  EXPECT_EQ(Window().findChild<QDialog*>(u"dlgConversionProgress"_qs), nullptr);
}

TEST(ConversionProgressTest, CanBeCanceledOnceAndStaysOpen) {
  ConversionProgress progress(nullptr);
  auto& cancel = *progress.findChild<QPushButton*>(u"cmdCancel"_qs);
  EXPECT_FALSE(progress.Cancelled());
  EXPECT_TRUE(cancel.isEnabled());
  cancel.click();
  EXPECT_TRUE(progress.Cancelled());
  EXPECT_FALSE(cancel.isEnabled());
  EXPECT_TRUE(progress.isVisible());
}

}  // namespace
}  // namespace vrx::testing
