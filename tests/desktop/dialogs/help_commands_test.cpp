#include <QAction>
#include <QApplication>

#include <gtest/gtest.h>

#include "desktop/dialogs/about_and_splash.h"
#include "desktop/main_window/main_window_fixture.h"
#include "desktop/next_modal.h"
#include "support/fake_operating_system.h"

namespace vrx::testing {
namespace {

class HelpMenu : public MainWindowFixture {
 protected:
  void SetUp() override {
    SetHelpHandlers(Window(), system_, os_, operator_);
    Show();
  }

  FakeOperatingSystem os_;
};

TEST_F(HelpMenu, ReadmeIsOpenedInItsViewer) {
  system_.find_executable_code = 33;
  const auto readme = folder_.Write("program/Readme.TXT", "text");
  Choose(u"mnuHelpReadme"_qs);
  EXPECT_EQ(os_.opened_documents, std::vector{readme});
}

TEST_F(HelpMenu, MissingManualIsReported) {
  Choose(u"mnuHelpManual"_qs);
  ASSERT_EQ(operator_.boxes.size(), 1U);
  EXPECT_EQ(operator_.boxes[0].title, "Error: File not found");
  EXPECT_TRUE(operator_.boxes[0].text.starts_with("VRX2260_U.PDF could not be found.\r\n"));
}

TEST_F(HelpMenu, AboutIsModalOverTheMainWindow) {
  bool is_about = false;
  const QWidget* owner = nullptr;
  const NextModal modal([&](QWidget& widget) {
    is_about = qobject_cast<About*>(&widget) != nullptr;
    owner = widget.parentWidget();
    widget.close();
  });
  Choose(u"mnuHelpAbout"_qs);
  EXPECT_TRUE(is_about);
  EXPECT_EQ(owner, &Window());
}

}  // namespace
}  // namespace vrx::testing
