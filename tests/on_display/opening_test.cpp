#include <algorithm>
#include <filesystem>
#include <string>

#include "on_display/on_display.h"
#include "support/environment.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

// Nothing is opened at the start by itself.
class OpeningOnDisplay : public OnDisplay {
 protected:
  OpeningOnDisplay() {
    MakeDatabases();
    folder.Write("home/data/Brantock/VRX-2260/VRX-2260.INI",
                 "[Comments]\nTitle=x\n[Options]\nEnableBeeper=NO\n");
  }

  bool WaitForDatabase(const std::string& bar, const std::string& name) {
    return WaitFor([&](const Screen& screen) {
      const Widget* const panel = screen.Find(bar + ".Panels(2)");
      return panel != nullptr && panel->text == name;
    });
  }
  bool WaitForTab(const std::string& caption) {
    return WaitFor([&](const Screen& screen) {
      const Item* const tab = screen.FindItem(caption);
      return tab != nullptr && tab->checked;
    });
  }
};

TEST_F(OpeningOnDisplay, FilesOfTheCommandLineAndOfAFurtherStartOpenInOneWindow) {
  program = Start({recipes.string()});
  ASSERT_TRUE(WaitForDatabase("sbRecipe", "SITE.RDB")) << program->Err();
  EXPECT_TRUE(WaitForWindow(kMainTitle));
  EXPECT_EQ(windows.ActiveTitle(), std::string(kMainTitle) + " - SITE.RDB");
  {
    const Environment no_probe("QT_QPA_GENERIC_PLUGINS", "");  // it would take over the socket
    const auto second = Start({transactions.string(), SitePath("day31.qxt"), "/no/such.rbu"});
    EXPECT_EQ(second->Wait(), 0) << second->Err();
  }
  ASSERT_TRUE(WaitForBox("This cannot be opened:"));
  Keys({"Return"});
  ASSERT_TRUE(WaitForTab("Import"));
  EXPECT_EQ(TextOf("sbTrans.Panels(2)"), "DAY1.TDB");
  EXPECT_EQ(TextOf("lblTransFilename"), "DAY31.QXT");
  EXPECT_EQ(windows.Titles().size(), 1U);
}

TEST_F(OpeningOnDisplay, ARecentFileIsOpenedByItsKeyAndAMissingOneLeavesTheMenu) {
  program = Start({recipes.string(), transactions.string()});
  ASSERT_TRUE(WaitForDatabase("sbTrans", "DAY1.TDB")) << program->Err();
  ChooseFromMenu({"File", "Close...", "Recipe Database"});
  ASSERT_TRUE(WaitForDatabase("sbRecipe", ""));
  Keys({"alt+f", "o", "1"});
  ASSERT_TRUE(WaitForDatabase("sbRecipe", "SITE.RDB"));
  ChooseFromMenu({"File", "Close...", "Recipe Database"});
  ASSERT_TRUE(WaitForDatabase("sbRecipe", ""));
  fs::rename(recipes, data / "AWAY.RDB");
  Keys({"alt+f", "o", "1"});
  ASSERT_TRUE(WaitForBox("There is no file " + recipes.string() + " any more."));
  Keys({"Return"});
  ASSERT_TRUE(WaitForWindow(kMainTitle));
  Keys({"alt+f", "o"});
  ASSERT_TRUE(WaitFor([](const Screen& screen) {
    return screen.FindItemOfMenu("Transaction Database", 2) != nullptr;
  }));
  const Screen screen = Look();
  for (const Widget& widget : screen.Widgets()) {
    for (const Item& item : widget.items) {
      EXPECT_EQ(item.text.find("SITE.RDB"), std::string::npos);
    }
  }
}

TEST_F(OpeningOnDisplay, TheFirstScreenLeadsToTheSampleSite) {
  program = Start();
  ASSERT_TRUE(WaitForWindow(kMainTitle)) << program->Err();
  ASSERT_TRUE(WaitFor([](const Screen& s) { return s.Find("cmdFirstSampleSite") != nullptr; }));
  Settle();
  ClickButton("Try the Sample Site");
  ASSERT_TRUE(WaitForDatabase("sbTrans", "SITE2.TDB"));
  EXPECT_EQ(TextOf("sbRecipe.Panels(2)"), "SITE2.RDB");  // the user has a SITE.RDB already
  EXPECT_TRUE(fs::exists(data / "SITE2.TDB"));
  ASSERT_TRUE(WaitForTab("Batched/Fed"));
  ChooseFromMenu({"File", "Close...", "Transaction Database"});
  ASSERT_TRUE(WaitForTab("Data Transfer"));
  EXPECT_NE(TextOf("lblFirstTick(3)"), "");
  EXPECT_EQ(TextOf("lblFirstTick(1)"), "");
  Click("chkOpenAtStart");
  ASSERT_TRUE(WaitFor([](const Screen& s) { return s.Find("chkOpenAtStart")->checked; }));
  Keys({"alt+F4"});
  EXPECT_EQ(ExitCode(), 0) << program->Err();
  EXPECT_EQ(ValueIn(ini, "AutoloadRecipeDB"), "YES");
  EXPECT_EQ(ValueIn(ini, "AutoloadTransDB"), "YES");
}

// No other program opens the chapter: the desktop of the test has none.
TEST_F(OpeningOnDisplay, KeysShowTheTabsTheManualAndFreshData) {
  const Environment no_programs("XDG_DATA_DIRS", (folder / "nothing").string());
  const Environment no_preferences("XDG_CONFIG_DIRS", (folder / "nothing").string());
  program = Start({recipes.string()});
  ASSERT_TRUE(WaitForDatabase("sbRecipe", "SITE.RDB")) << program->Err();
  ASSERT_TRUE(WaitForWindow(kMainTitle));
  Settle();
  Keys({"alt+5"});
  Settle();
  EXPECT_TRUE(WaitForTab("Data Transfer"));
  Keys({"alt+3"});
  ASSERT_TRUE(WaitForTab("Pens"));
  ASSERT_EQ(Ctl({"set", "pen", recipes.string(), "1", "--description", "Fresh pen"}).code, 0);
  Keys({"F5"});
  EXPECT_TRUE(WaitFor([](const Screen& screen) {
    const Widget* const field = screen.Find("txtPenDesc");
    return field != nullptr && field->text == "Fresh pen";
  }));
  Keys({"F1"});
  ASSERT_TRUE(WaitForWindow("Users Manual"));
  EXPECT_TRUE(TextOf("txtManual").starts_with("Pens"));
  Keys({"Escape"});
  ASSERT_TRUE(WaitForWindow(kMainTitle));
}

TEST_F(OpeningOnDisplay, ATabThatIsOffSaysWhatItNeedsUnderThePointer) {
  program = Start();
  ASSERT_TRUE(WaitForWindow(kMainTitle)) << program->Err();
  const Screen screen = Look();
  const Item* const tab = screen.FindItem("Recipes");
  ASSERT_NE(tab, nullptr);
  EXPECT_FALSE(tab->enabled);
  input.MoveTo(tab->place.Center());
  EXPECT_TRUE(WaitFor([](const Screen& shown) {
    return std::any_of(shown.Widgets().begin(), shown.Widgets().end(), [](const Widget& widget) {
      return widget.kind == "QTipLabel" && widget.text == "Open a recipe database to use this tab";
    });
  }));
}

}  // namespace
}  // namespace vrx::testing
