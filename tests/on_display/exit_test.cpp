#include <csignal>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "on_display/on_display.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

struct WayOut {
  const char* name;
  std::vector<std::string> keys;
  int signal = 0;
};

void PrintTo(const WayOut& way, std::ostream* out) { *out << way.name; }

class LeavingOnDisplay : public OnDisplay {
 protected:
  LeavingOnDisplay() { MakeDatabases(); }

  // A new description of ingredient 1 in its field, which is not left.
  void TypeDescription(const std::string& text) {
    ChooseFromMenu({"Edit", "Ingredients"});
    ASSERT_TRUE(WaitFor([](const Screen& screen) { return screen.Find("txtIngDesc") != nullptr; }));
    Click("txtIngDesc");
    Keys({"ctrl+a"});
    Type(text);
    ASSERT_TRUE(WaitFor([&](const Screen& screen) {
      const Widget* const field = screen.Find("txtIngDesc");
      return field != nullptr && field->focus && field->text == text;
    }));
  }

  std::string StoredDescription() const {
    SQLite::Database file(recipes);
    return file.execAndGet("SELECT Description FROM Ingredient WHERE ID = 1").getString();
  }

  void Leave(const WayOut& way) {
    if (way.signal != 0) {
      program->Signal(way.signal);
    } else if (!way.keys.empty()) {
      Keys(way.keys);
    } else {
      ClickCloseBox(kMainTitle);
    }
  }

  void ExpectOrderlyEnd() {
    EXPECT_EQ(ExitCode(), 0) << program->Err();
    EXPECT_FALSE(fs::exists(lock));
    for (const std::string& key : IniKeys()) {
      EXPECT_NE(ValueIn(ini, key), "") << key;
    }
    EXPECT_NE(ValueIn(user_settings, "MainWidth"), "");
    EXPECT_EQ(ValueIn(user_settings, "MRU_RecipePathName"), recipes.string());
  }
};

class ExitOnDisplay : public LeavingOnDisplay, public ::testing::WithParamInterface<WayOut> {};

TEST_P(ExitOnDisplay, StoresTheTypedTextAndLeavesNoTemporaryFiles) {
  StartProgram();
  TypeDescription("Hay of May");
  Leave(GetParam());
  ExpectOrderlyEnd();
  EXPECT_EQ(StoredDescription(), "Hay of May");
}

INSTANTIATE_TEST_SUITE_P(
    Ways, ExitOnDisplay,
    ::testing::Values(WayOut{"CloseBox", {}, 0}, WayOut{"FileExit", {"alt+f", "x"}, 0},
                      WayOut{"AltF4", {"alt+F4"}, 0}, WayOut{"Terminated", {}, SIGTERM},
                      WayOut{"Interrupted", {}, SIGINT}, WayOut{"HungUp", {}, SIGHUP}),
    [](const auto& way) { return std::string(way.param.name); });

class SignalOnDisplay : public LeavingOnDisplay {
 protected:
  void ExpectOrderlyEndBySignal() {
    program->Signal(SIGTERM);
    ExpectOrderlyEnd();
  }
};

// The list runs an event loop of its own.
TEST_F(SignalOnDisplay, EndsTheProgramUnderTheOpenListOfAToolButton) {
  StartProgram();
  const Screen screen = Look();
  const Widget* const button = screen.Find("New dB");
  ASSERT_NE(button, nullptr);
  constexpr int kToArrow = 6;
  input.Click(
      {.x = button->place.x + button->place.width - kToArrow, .y = button->place.Center().y});
  ASSERT_TRUE(
      WaitFor([](const Screen& now) { return now.FindItemOfMenu("New Recipe") != nullptr; }));
  ExpectOrderlyEndBySignal();
}

TEST_F(SignalOnDisplay, EndsTheProgramUnderAnOpenSubmenu) {
  StartProgram();
  ChooseFromMenu({"File", "Open..."});
  ASSERT_TRUE(WaitFor(
      [](const Screen& now) { return now.FindItemOfMenu("Recipe Database", 2) != nullptr; }));
  ExpectOrderlyEndBySignal();
}

TEST_F(SignalOnDisplay, EndsTheProgramUnderAnOpenDialog) {
  StartProgram();
  ChooseFromMenu({"Tools", "Setup/Test..."});
  ASSERT_TRUE(WaitForWindow("Setup and Test"));
  ExpectOrderlyEndBySignal();
}

TEST_F(SignalOnDisplay, EndsTheProgramWhileItStarts) {
  program = Start();
  ASSERT_TRUE(WaitFor([](const Screen& now) { return now.Find("SPLASH") != nullptr; }))
      << program->Err();
  program->Signal(SIGTERM);
  EXPECT_EQ(ExitCode(), 0) << program->Err();
  EXPECT_FALSE(fs::exists(lock));
}

class UnwritableUserSettings : public LeavingOnDisplay,
                               public ::testing::WithParamInterface<WayOut> {
 protected:
  // Even root cannot write into a folder that is a file.
  UnwritableUserSettings() {
    fs::remove_all(user_settings.parent_path());
    folder.Write("home/config/Brantock", "");
    fs::remove(transactions);
    fs::remove(recipes);
  }
};

TEST_P(UnwritableUserSettings, AreReportedAndTheProgramEnds) {
  StartProgram();
  WriteShortIni();
  Leave(GetParam());
  ASSERT_TRUE(WaitForBox("Unable to save the place of the window"));
  EXPECT_NE(ValueIn(ini, "PrintGridLines"), "");
  Keys({"Return"});
  EXPECT_EQ(ExitCode(), 0) << program->Err();
  EXPECT_FALSE(fs::exists(lock));
}

INSTANTIATE_TEST_SUITE_P(Ways, UnwritableUserSettings,
                         ::testing::Values(WayOut{"CloseBox", {}, 0},
                                           WayOut{"FileExit", {"alt+f", "x"}, 0}),
                         [](const auto& way) { return std::string(way.param.name); });

}  // namespace
}  // namespace vrx::testing
