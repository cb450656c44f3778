#include "desktop/main_window/tabs.h"

#include <QProgressBar>
#include <QPushButton>
#include <QTabBar>
#include <QTest>
#include <QWheelEvent>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "desktop/main_window/main_window_fixture.h"
#include "widgets/drawing.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Names = std::set<std::string>;

// Records its calls.
class DiaryPage : public MainTabPage {
 public:
  DiaryPage(std::string name, std::vector<std::string>& diary)
      : name_(std::move(name)), diary_(diary) {}

  void TabChanged(int tab, int previous) override {
    Write("tab " + std::to_string(tab) + " after " + std::to_string(previous));
  }
  void Prepare() override { Write("prepare"); }
  void StripFocused() override { Write("strip focused"); }
  void Activated() override { Write("activated"); }
  void ReleaseViews() override { Write("release"); }

 private:
  void Write(const std::string& what) { diary_.push_back(name_ + ": " + what); }

  std::string name_;
  std::vector<std::string>& diary_;
};

class MainTabsTest : public MainWindowFixture {
 protected:
  void AllOn() {
    Window().Commands().EnableRecipeCommands();
    Window().Commands().EnableTransactionCommands();
  }

  void Click(int tab) {
    QTabBar& strip = *Tabs().tabBar();
    QTest::mouseClick(&strip, Qt::LeftButton, {}, strip.tabRect(tab).center());
    RunEvents();
  }

  Names Panels() {
    Names shown;
    for (const char* const panel : {"picAction", "picNavigate", "picImport", "picTransferStatus"}) {
      if (Find<QWidget>(QLatin1String(panel)).isVisible()) {
        shown.insert(panel);
      }
    }
    return shown;
  }

  std::vector<std::string> diary_;
};

TEST_F(MainTabsTest, HaveTheSpecifiedCaptionsAndEachHasItsPage) {
  Window();
  std::vector<std::string> captions;
  Names pages;
  for (int tab = 0; tab < Tabs().count(); ++tab) {
    captions.push_back(Tabs().tabText(tab).toStdString());
    pages.insert(Tabs().widget(tab)->objectName().toStdString());
  }
  EXPECT_THAT(captions, ElementsAre("Ingredients", "Recipes", "Pens", "Data Transfer",
                                    "Batched/Fed", "Import", "Export", "Insight"));
  EXPECT_EQ(pages.size(), captions.size());
}

TEST_F(MainTabsTest, EachShowsItsPanels) {
  Show();
  AllOn();
  const Names record{"picAction", "picNavigate"};
  const std::vector<Names> expected{record, record,        record, {"picTransferStatus"},
                                    {},     {"picImport"}, {},     {}};
  for (int tab = 0; tab < kTabCount; ++tab) {
    Window().Tabs().SelectTab(tab);
    EXPECT_EQ(Panels(), expected[static_cast<std::size_t>(tab)]) << "tab " << tab;
    EXPECT_EQ(Find<QLabel>(u"lblRecordNumber"_qs).isVisible(), tab < kTabDataTransfer);
  }
}

TEST_F(MainTabsTest, TheRowBelowThemKeepsItsPlaceAndHeight) {
  Show();
  AllOn();
  std::set<std::string> places;
  for (int tab = 0; tab < kTabCount; ++tab) {
    Window().Tabs().SelectTab(tab);
    RunEvents();
    const QRect row = Window().Panels().geometry();
    places.insert(std::to_string(row.top()) + "/" + std::to_string(row.height()) + "/" +
                  std::to_string(Tabs().height()));
  }
  EXPECT_EQ(places.size(), 1U);
  EXPECT_GE(Window().Panels().height(), Find<QWidget>(u"cmdAction(0)"_qs).sizeHint().height());
}

TEST_F(MainTabsTest, AbbreviateIsOnOnTheRecordTabsAlone) {
  Main();
  AllOn();
  for (int tab = 0; tab < kTabCount; ++tab) {
    Window().Tabs().SelectTab(tab);
    EXPECT_EQ(On(u"Abbreviate"_qs), tab < kTabDataTransfer) << "tab " << tab;
  }
}

TEST_F(MainTabsTest, AClickRunsTheClickRoutineOnceAndSelectTabToo) {
  ReplacePage(kTabImport, new DiaryPage("import", diary_));
  Show();
  AllOn();
  Tabs().tabBar()->clearFocus();
  diary_.clear();
  Click(kTabImport);
  EXPECT_THAT(diary_,
              ElementsAre("import: tab 5 after 3", "import: prepare", "import: strip focused"));
  Click(kTabDataTransfer);
  diary_.clear();
  Window().Tabs().SelectTab(kTabImport);
  EXPECT_THAT(diary_, ElementsAre("import: tab 5 after 3", "import: prepare"));
}

// As after the start: the strip has the focus, and nothing else had it.
TEST_F(MainTabsTest, EveryChoiceOfATabIsReportedThoughTheStripHasTheFocusAlready) {
  ReplacePage(kTabPens, new DiaryPage("pens", diary_));
  ReplacePage(kTabDataTransfer, new DiaryPage("transfer", diary_));
  Show();
  AllOn();
  Tabs().tabBar()->setFocus(Qt::ActiveWindowFocusReason);
  const auto last = [this] { return diary_.empty() ? std::string() : diary_.back(); };
  Click(kTabPens);
  EXPECT_EQ(last(), "pens: strip focused");
  Click(kTabDataTransfer);
  EXPECT_EQ(last(), "transfer: strip focused");
  diary_.clear();
  Click(kTabDataTransfer);
  EXPECT_THAT(diary_, ElementsAre("transfer: strip focused")) << "the current tab";
  Choose(u"mnuEditPen"_qs);
  EXPECT_EQ(last(), "pens: strip focused");
  QTest::keyClick(Tabs().tabBar(), Qt::Key_Right);
  EXPECT_EQ(last(), "transfer: strip focused");
  QTest::keyClick(Tabs().tabBar(), Qt::Key_Tab, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(last(), "pens: strip focused");
}

TEST_F(MainTabsTest, AClickOnATabThatIsOffReportsNothing) {
  ReplacePage(kTabDataTransfer, new DiaryPage("transfer", diary_));
  Show();
  Tabs().tabBar()->setFocus(Qt::ActiveWindowFocusReason);
  diary_.clear();
  Click(kTabPens);
  EXPECT_THAT(diary_, IsEmpty());
}

TEST_F(MainTabsTest, APageKeepsTheTabsStateCaptionAndPlace) {
  Main();
  ReplacePage(kTabIngredients, new DiaryPage("ingredients", diary_));
  EXPECT_EQ(Tabs().tabText(kTabIngredients), u"Ingredients"_qs);
  EXPECT_FALSE(Tabs().isTabEnabled(kTabIngredients));
  EXPECT_EQ(Tabs().currentIndex(), kTabDataTransfer);
  EXPECT_THAT(diary_, IsEmpty());
}

TEST_F(MainTabsTest, TheTabShownStaysWhenItGoesOff) {
  ReplacePage(kTabRecipes, new DiaryPage("recipes", diary_));
  Main();
  AllOn();
  Window().Tabs().SelectTab(kTabRecipes);
  diary_.clear();
  Window().Commands().DisableRecipeCommands();
  EXPECT_EQ(Tabs().currentIndex(), kTabRecipes);
  EXPECT_EQ(Tabs().currentWidget(), &Tabs().Page(kTabRecipes));
  EXPECT_FALSE(Tabs().isTabEnabled(kTabRecipes));
  EXPECT_THAT(diary_, IsEmpty());
}

TEST_F(MainTabsTest, ATabThatIsOffCannotBeClicked) {
  Show();
  Click(kTabIngredients);
  EXPECT_EQ(Tabs().currentIndex(), kTabDataTransfer);
}

TEST_F(MainTabsTest, SelectTabBringsATabShownThatWasOffAndTurnsItOn) {
  Main();
  Window().Tabs().SelectTab(kTabPens);
  EXPECT_EQ(Tabs().currentIndex(), kTabPens);
  EXPECT_TRUE(Tabs().isTabEnabled(kTabPens));
}

TEST_F(MainTabsTest, TheStripReportsTheFocusByKeyAndByMouseButNotByTheWindow) {
  ReplacePage(kTabDataTransfer, new DiaryPage("transfer", diary_));
  Show();
  diary_.clear();
  Tabs().tabBar()->clearFocus();
  Tabs().tabBar()->setFocus(Qt::TabFocusReason);
  EXPECT_THAT(diary_, ElementsAre("transfer: strip focused"));
  Tabs().tabBar()->clearFocus();
  Tabs().tabBar()->setFocus(Qt::ActiveWindowFocusReason);
  EXPECT_EQ(diary_.size(), 1U);
}

TEST_F(MainTabsTest, ArrowKeysGoFromTabToTab) {
  Show();
  AllOn();
  Tabs().tabBar()->setFocus();
  QTest::keyClick(Tabs().tabBar(), Qt::Key_Right);
  EXPECT_EQ(Window().Tabs().CurrentTab(), kTabBatchedFed);
  EXPECT_EQ(Panels(), Names{});
}

TEST_F(MainTabsTest, AWheelInPassingDoesNotLeaveTheTab) {
  Show();
  AllOn();
  QTabBar& strip = *Tabs().tabBar();
  const QPointF place = strip.tabRect(kTabPens).center();
  QWheelEvent turn(place, strip.mapToGlobal(place), {}, QPoint(0, -120), Qt::NoButton,
                   Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(&strip, &turn);
  EXPECT_EQ(Tabs().currentIndex(), kTabDataTransfer);
}

TEST_F(MainTabsTest, ThePanelsOfTheRecordTabsHaveTheSpecifiedButtons) {
  Main();
  const std::vector<std::pair<const char*, const char*>> expected{
      {"cmdAction(0)", "Update"}, {"cmdAction(1)", "Cancel"}, {"cmdAction(2)", "Default"},
      {"cmdNavigate(0)", "|<<"},  {"cmdNavigate(1)", "<"},    {"cmdNavigate(2)", ">"},
      {"cmdNavigate(3)", ">>|"}};
  for (const auto& [name, caption] : expected) {
    const QPushButton& button = Find<QPushButton>(QLatin1String(name));
    EXPECT_EQ(button.text(), QLatin1String(caption));
    EXPECT_FALSE(button.accessibleName().isEmpty()) << name;
    EXPECT_TRUE(button.isEnabled()) << name;
  }
}

TEST_F(MainTabsTest, TheButtonsCallByTheirIndex) {
  Main();
  std::vector<int> pressed;
  Window().Panels().PicAction().SetHandler([&](int index) { pressed.push_back(index); });
  Window().Panels().PicNavigate().SetHandler([&](int index) { pressed.push_back(10 + index); });
  for (const QString& name :
       {u"cmdAction(0)"_qs, u"cmdAction(1)"_qs, u"cmdAction(2)"_qs, u"cmdNavigate(0)"_qs,
        u"cmdNavigate(1)"_qs, u"cmdNavigate(2)"_qs, u"cmdNavigate(3)"_qs}) {
    Find<QPushButton>(name).click();
  }
  EXPECT_THAT(pressed,
              ElementsAre(kActionUpdate, kActionCancel, kActionDefault, 10 + kNavigateFirst,
                          10 + kNavigatePrevious, 10 + kNavigateNext, 10 + kNavigateLast));
}

TEST_F(MainTabsTest, TheRecordNumberShowsAsAPlainNumber) {
  Main();
  EXPECT_EQ(Text(u"lblRecordNumber"_qs), QString());
  Window().Panels().ShowRecordNumber(400);
  EXPECT_EQ(Text(u"lblRecordNumber"_qs), u"400"_qs);
}

TEST_F(MainTabsTest, TheStatusLineShowsItsTextInTheSpecifiedColors) {
  Main();
  EXPECT_EQ(Text(u"lblStatus"_qs), u"Status:"_qs);
  Window().SetStatusLine(u"Upload complete!"_qs);
  EXPECT_EQ(Text(u"lblStatusWindow"_qs), u"Upload complete!"_qs);
  const QColor window = Window().palette().color(QPalette::Window);
  for (const StatusColor color : {StatusColor::kBlue, StatusColor::kRed, StatusColor::kGreen}) {
    Window().SetStatusColor(color);
    const QColor shown = StatusTextColor(color, window);
    EXPECT_EQ(Find<QLabel>(u"lblStatusWindow"_qs).palette().color(QPalette::WindowText), shown);
  }
}

TEST_F(MainTabsTest, TheStatusLineCanBeReadOnADarkWindow) {
  Main();
  const QColor dark(53, 53, 53);
  Window().setPalette(QPalette(dark, dark));
  for (const StatusColor color : {StatusColor::kBlue, StatusColor::kRed, StatusColor::kGreen}) {
    Window().SetStatusColor(color);
    const QColor shown = Find<QLabel>(u"lblStatusWindow"_qs).palette().color(QPalette::WindowText);
    EXPECT_GE(ContrastRatio(shown, dark), kTextContrast);
  }
}

TEST_F(MainTabsTest, AClickTurnsTheCountOfTheMemoryIntoABarAndBack) {
  Show();
  TransferStatusPanel& panel = Window().Panels().PicTransferStatus();
  auto& count = Find<QLabel>(u"lblMemorySize"_qs);
  auto& bar = Find<QProgressBar>(u"prgMemorySize"_qs);
  EXPECT_EQ(Text(u"lblMemory"_qs), u"Memory:"_qs);
  EXPECT_FALSE(count.isVisible());
  EXPECT_FALSE(bar.isVisible());

  panel.ShowMemory(true);
  panel.SetMemorySize(2114);
  EXPECT_EQ(count.text(), u"2114"_qs);
  EXPECT_EQ(count.toolTip(), u"Click for percent full"_qs);
  QTest::mouseClick(&count, Qt::LeftButton);
  EXPECT_FALSE(count.isVisible());
  EXPECT_TRUE(bar.isVisible());
  EXPECT_EQ(bar.toolTip(), u"Click for total bytes"_qs);
  EXPECT_EQ(bar.maximum(), 65536);
  EXPECT_EQ(bar.value(), 2114);
  QTest::mouseClick(&bar, Qt::LeftButton);
  EXPECT_TRUE(count.isVisible());
  EXPECT_FALSE(bar.isVisible());
}

}  // namespace
}  // namespace vrx::testing
