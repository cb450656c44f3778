#include "database/exit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/lifecycle_site.h"
#include "support/stored_user_settings.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;
using ::testing::SizeIs;
using ::testing::UnorderedElementsAre;

constexpr auto kRecipe = DatabaseKind::kRecipe;

class ExitSaveAndCloseTest : public LifecycleSite {
 protected:
  ExitSaveAndCloseTest() {
    store_.on_save = [this](std::string_view key) { diary_.push_back("save " + std::string(key)); };
    settings_.SetAutoloadRecipeDBOn(true);
    chooser_.Choose(recipes_);
    databases_.BrowseRecipeDatabase();
    diary_.clear();
  }

  bool Exit(const std::optional<WindowPlace>& place) {
    return ExitSaveAndClose({.op = operator_,
                             .store = store_,
                             .ini = ini_,
                             .settings = settings_,
                             .recent = recent_,
                             .databases = databases_},
                            place);
  }

  std::string InIni(std::string_view key) const {
    std::string value;
    ini_.ReadKey("Options", key, value);
    return value;
  }

  fs::path recipes_ = MakeUserFile("YARD.RDB", kRecipe);
  StoredUserSettings store_;
  RecentDatabases recent_{store_, settings_, databases_};
  CPrivateINI ini_{app_folder_.IniFilePath(), system_, operator_};
  WindowPlace place_{.left = 120, .top = -60, .width = 15360, .height = 10800};
};

TEST_F(ExitSaveAndCloseTest, RunsItsStepsInOrder) {
  EXPECT_TRUE(Exit(place_));
  EXPECT_THAT(
      diary_,
      ElementsAre("save MainLeft", "save MainTop", "save MainWidth", "save MainHeight",
                  "save MRU_RecipePathName", "save MRU_RecipeFileName", "save MRU_TransPathName",
                  "save MRU_TransFileName", "bind recipe QXNULRDB.MDB", "panel recipe 2 []",
                  "panel recipe 4 []", "panel recipe 6 []", "panel recipe 8 []", "unit recipe []",
                  "tab 0 off", "tab 1 off", "tab 2 off", "recipe commands off", "show tab 3",
                  "click tab 3", "bind transaction QXNULXDB.MDB", "panel transaction 2 []",
                  "panel transaction 4 []", "panel transaction 6 []", "panel transaction 8 []",
                  "unit transaction []", "show tab 3", "click tab 3", "release views"));
  EXPECT_THAT(store_.values,
              UnorderedElementsAre(Pair("MainLeft", "120"), Pair("MainTop", "-60"),
                                   Pair("MainWidth", "15360"), Pair("MainHeight", "10800"),
                                   Pair("MRU_RecipePathName", recipes_.string()),
                                   Pair("MRU_RecipeFileName", "YARD.RDB"),
                                   Pair("MRU_TransPathName", ""), Pair("MRU_TransFileName", "")));
  EXPECT_EQ(InIni("AutoloadRecipeDB"), "YES");
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

TEST_F(ExitSaveAndCloseTest, AMinimisedWindowKeepsThePlaceSavedBefore) {
  store_.values["MainLeft"] = "7";
  EXPECT_TRUE(Exit(std::nullopt));
  EXPECT_EQ(store_.values["MainLeft"], "7");
  EXPECT_THAT(store_.values, Not(::testing::Contains(::testing::Key("MainTop"))));
}

TEST_F(ExitSaveAndCloseTest, TellsThatTheSettingsCannotBeWrittenAndGoesOn) {
  fs::create_directory(app_folder_.IniFilePath());
  EXPECT_TRUE(Exit(place_));
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(operator_.boxes[0].icon, Icon::kWarning);
  EXPECT_EQ(operator_.boxes[0].title, "INI File Error");
  EXPECT_EQ(operator_.boxes[0].text,
            "Unable to save some or all of the application settings to the applications INI file. "
            "Please check all settings next time you run the program.");
  EXPECT_FALSE(operator_.boxes[0].cause.empty());
}

TEST_F(ExitSaveAndCloseTest, AFailureBeepsWhateverTheSettingSaysAndStaysWithWhatWasDone) {
  settings_.SetEnableBeeperOn(false);
  store_.on_save = [](std::string_view key) {
    if (key == "MRU_RecipePathName") {
      throw Error("the store is gone");
    }
  };
  const int beeps_before = operator_.beeps;
  EXPECT_FALSE(Exit(place_));
  EXPECT_EQ(operator_.beeps, beeps_before + 1);
  EXPECT_THAT(operator_.boxes, IsEmpty());
  EXPECT_EQ(store_.values["MainLeft"], "120");
  EXPECT_EQ(BoundName(kRecipe), "YARD.RDB");
  EXPECT_EQ(databases_.Recipe().name, "YARD.RDB");
}

TEST_F(ExitSaveAndCloseTest, AnExitDuringADelayLeavesTheRoutineThatWaitsNothingToDo) {
  pump_.After(Milliseconds(10), [&] {
    EXPECT_TRUE(Exit(place_));
    pump_.closing = true;
  });
  databases_.SaveRecipeDatabase();
  EXPECT_EQ(diary_.back(), "release views");
  EXPECT_EQ(store_.values["MRU_RecipeFileName"], "YARD.RDB");
  EXPECT_EQ(databases_.Bound(kRecipe).connection, nullptr);
}

}  // namespace
}  // namespace vrx::testing
