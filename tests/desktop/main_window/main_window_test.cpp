#include "desktop/main_window/main_window.h"

#include <QTest>

#include <gmock/gmock.h>

#include "desktop/main_window/main_window_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class MainWindowTest : public MainWindowFixture {};

TEST_F(MainWindowTest, OpensWithTheDataTransferTabAndBothDatabasesClosed) {
  EXPECT_EQ(Window().windowTitle(), u"VRX-2260 Transfer Data Software"_qs);
  EXPECT_EQ(Tabs().currentIndex(), kTabDataTransfer);
  EXPECT_THAT(TabsOn(), ElementsAre(kTabDataTransfer, kTabImport));
  EXPECT_EQ(Text(u"lblStatusWindow"_qs), QString());
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

TEST_F(MainWindowTest, OpensAsLargeAsDesignedWhateverWasSaved) {
  user_settings_.values = {{"MainWidth", "15000"}, {"MainHeight", "12000"}};
  EXPECT_EQ(Window().size(), QSize(1024, 720));
  EXPECT_EQ(Window().minimumSize(), QSize(800, 600));
}

TEST_F(MainWindowTest, IsWellAtItsSmallestSize) {
  Show();
  Window().resize(800, 600);
  RunEvents();
  EXPECT_EQ(Window().size(), QSize(800, 600));
  EXPECT_LE(Window().centralWidget()->minimumSizeHint().width(), 800);
  for (const MainTabPage* page : Window().findChildren<MainTabPage*>()) {
    EXPECT_LE(page->minimumSizeHint().width(), 780) << page->objectName().toStdString();
  }
}

}  // namespace
}  // namespace vrx::testing
