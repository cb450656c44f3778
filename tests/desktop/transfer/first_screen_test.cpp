#include "desktop/transfer/first_screen.h"

#include <QCheckBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "desktop/next_modal.h"
#include "desktop/transfer/transfer_fixture.h"
#include "widgets/qt_text.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class FirstScreenTest : public TransferFixture {
 protected:
  // A letter for each step: ticked or not.
  std::string Ticks() {
    std::string ticks;
    for (int i = 0; i < static_cast<int>(kFirstStepCount); ++i) {
      ticks += Text(u"lblFirstTick(%1)"_qs.arg(i)).isEmpty() ? '-' : 'x';
    }
    return ticks;
  }
  bool Shown() { return Visible(u"scrFirstSteps"_qs); }
};

TEST_F(FirstScreenTest, IsInThePlaceOfTheEmptyDataWindowWithNothingOpen) {
  ShowTab();
  EXPECT_TRUE(Shown());
  EXPECT_FALSE(Visible(u"txtDataWindow"_qs));
  EXPECT_EQ(Ticks(), "-----");
  for (const FirstStepRow& row : FirstStepRows()) {
    EXPECT_TRUE(Visible(ToQString(row.control))) << row.control;
  }
  for (int i = 0; i < static_cast<int>(kFirstStepCount); ++i) {
    EXPECT_EQ(Text(u"lblFirstStep(%1)"_qs.arg(i)).toStdString(),
              FirstStepRows().at(static_cast<std::size_t>(i)).sentence);
  }
}

TEST_F(FirstScreenTest, MakesADatabaseAndTicksIt) {
  ShowTab();
  chooser_.Choose(app_folder_->DefaultAppPath() / "NEW.RDB");
  Click(u"cmdFirstMakeRecipeDB"_qs);
  EXPECT_EQ(chooser_.dialogs.back().title, "Create New Recipe Database File");
  EXPECT_EQ(Tabs().currentIndex(), kTabIngredients);
  Window().ChooseTab(kTabDataTransfer);
  EXPECT_TRUE(Shown());
  EXPECT_EQ(Ticks(), "x-x--");
  chooser_.Choose(app_folder_->DefaultAppPath() / "NEW.TDB");
  Click(u"cmdFirstMakeTransactionDB"_qs);
  Window().ChooseTab(kTabDataTransfer);
  EXPECT_FALSE(Shown());
  EXPECT_TRUE(Visible(u"txtDataWindow"_qs));
}

TEST_F(FirstScreenTest, OpensAFileOfAnyKind) {
  ShowTab();
  chooser_.Choose(MakeUserFile("YARD.TDB", DatabaseKind::kTransaction));
  Click(u"cmdFirstOpen"_qs);
  EXPECT_EQ(Find<DatabaseStatusBar>(u"sbTrans"_qs).Panel(kPanelName), u"YARD.TDB"_qs);
  Window().ChooseTab(kTabDataTransfer);
  EXPECT_EQ(Ticks(), "-xx--");
  chooser_.Cancel();
  Click(u"cmdFirstOpen"_qs);
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

TEST_F(FirstScreenTest, CopiesAndOpensTheSampleSite) {
  fs::create_directory(program_ / "sample_site");
  fs::rename(MakeUserFile("A.RDB", DatabaseKind::kRecipe), program_ / "sample_site/SITE.RDB");
  fs::rename(MakeUserFile("A.TDB", DatabaseKind::kTransaction), program_ / "sample_site/SITE.TDB");
  ShowTab();
  Click(u"cmdFirstSampleSite"_qs);
  EXPECT_EQ(Window().windowTitle(), u"VRX-2260 Transfer Data Software - SITE.RDB, SITE.TDB"_qs);
  Choose(u"mnuFileCloseTransactionDB"_qs);
  EXPECT_TRUE(Shown());
  EXPECT_EQ(Ticks(), "x-xx-");
}

TEST_F(FirstScreenTest, OpensTheSetupOnTheTabOfThePort) {
  ShowTab();
  QString tab;
  const NextModal setup([&](QWidget& form) {
    auto& tabs = *form.findChild<QTabWidget*>();
    tab = tabs.tabText(tabs.currentIndex());
    dynamic_cast<QDialog&>(form).accept();
  });
  Click(u"cmdFirstSerialPort"_qs);
  EXPECT_EQ(tab, u"KRM Setup"_qs);
  EXPECT_EQ(Ticks(), "----x");
}

TEST_F(FirstScreenTest, ASetupThatIsClosedWithoutOkSetsNoPort) {
  ShowTab();
  const NextModal setup([&](QWidget& form) { form.close(); });
  Click(u"cmdFirstSerialPort"_qs);
  EXPECT_EQ(Ticks(), "-----");
}

TEST_F(FirstScreenTest, TheCheckBoxSetsBothOptionsOfTheStart) {
  ShowTab();
  auto& box = Find<QCheckBox>(u"chkOpenAtStart"_qs);
  EXPECT_EQ(box.checkState(), Qt::Unchecked);
  box.click();
  EXPECT_TRUE(settings_.AutoloadRecipeDBOn());
  EXPECT_TRUE(settings_.AutoloadTransDBOn());
  box.click();
  EXPECT_FALSE(settings_.AutoloadRecipeDBOn());
  EXPECT_EQ(box.checkState(), Qt::Unchecked);
  settings_.SetAutoloadTransDBOn(true);
  Window().ChooseTab(kTabImport);
  Window().ChooseTab(kTabDataTransfer);
  EXPECT_EQ(box.checkState(), Qt::PartiallyChecked);
  box.click();
  EXPECT_EQ(box.checkState(), Qt::Checked);
}

TEST_F(FirstScreenTest, MakesRoomForTheWorkWithTheModule) {
  ShowTab();
  Click(u"cmdDownloadRecipeToKRM"_qs);
  EXPECT_FALSE(Shown());
  EXPECT_TRUE(Visible(u"txtDataWindow"_qs));
}

TEST_F(FirstScreenTest, TheTabKeyFollowsTheSteps) {
  ShowTab();
  Find<QWidget>(u"cmdFirstMakeRecipeDB"_qs).setFocus();
  std::vector<std::string> order;
  for (int step = 0; step < 5; ++step) {
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    order.push_back(QApplication::focusWidget()->objectName().toStdString());
  }
  EXPECT_THAT(order, ElementsAre("cmdFirstMakeTransactionDB", "cmdFirstOpen", "cmdFirstSampleSite",
                                 "cmdFirstSerialPort", "chkOpenAtStart"));
}

}  // namespace
}  // namespace vrx::testing
