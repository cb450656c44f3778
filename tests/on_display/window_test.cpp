#include <filesystem>
#include <string>

#include "on_display/on_display.h"

namespace vrx::testing {
namespace {

class WindowOnDisplay : public OnDisplay {
 protected:
  WindowOnDisplay() : OnDisplay(kWidth, kHeight) {}

  static constexpr int kWidth = 1920;
  static constexpr int kHeight = 1080;
};

TEST_F(WindowOnDisplay, OpensWithinTheScreenAtOneAndAHalfTimesTheSize) {
  const Environment scale("QT_SCALE_FACTOR", "1.5");
  StartProgram();
  const Rect frame = windows.FrameOf(*windows.Find(kMainTitle));
  EXPECT_GE(frame.x, 0);
  EXPECT_GE(frame.y, 0);
  EXPECT_LE(frame.x + frame.width, kWidth);
  EXPECT_LE(frame.y + frame.height, kHeight);
  EXPECT_GT(frame.height, kHeight * 9 / 10);
}

TEST_F(WindowOnDisplay, OpensInItsDesignSizeWhereThatFits) {
  StartProgram();
  const Screen screen = Look();
  const Widget* const window = screen.Find("VRXMAIN");
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(window->place.width, 1024);
  EXPECT_EQ(window->place.height, 720);
}

// As root, a read of /proc/kmsg waits forever. The second dialog starts in the folder of the first.
TEST_F(WindowOnDisplay, FileDialogsShowFoldersOfTheKernel) {
  StartProgram();
  for (int dialog = 0; dialog < 2; ++dialog) {
    ChooseFromMenu({"File", "Import Transaction File..."});
    ASSERT_TRUE(WaitForWindow("Import Transaction File"));
    Type("/proc");
    Keys({"Return"});
    ASSERT_TRUE(WaitFor([](const Screen& screen) {
      const Widget* const list = screen.Find("treeView");
      return list != nullptr && list->rows > 0 && screen.Find("fileNameEdit")->text.empty();
    }));
    // The first one may only close the list of completions.
    ASSERT_TRUE(Eventually([&] {
      Keys({"Escape"});
      return !windows.Find("Import Transaction File").has_value();
    }));
    ASSERT_TRUE(WaitForWindow(kMainTitle));
  }
  Keys({"alt+F4"});
  EXPECT_EQ(ExitCode(), 0) << program->Err();
}

}  // namespace
}  // namespace vrx::testing
