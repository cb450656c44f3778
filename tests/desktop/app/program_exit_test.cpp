#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "desktop/app/program.h"
#include "desktop/app/recorded_main_form.h"
#include "support/stored_user_settings.h"
#include "support/temp_folder.h"
#include "support/test_services.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

class ExitOfProgram : public ::testing::Test {
 protected:
  ExitOfProgram() {
    user_settings_.on_save = [this](std::string_view key) {
      steps_.push_back("save " + std::string(key));
      if (key == failing_key_) {
        throw Error("fake: the store is full");
      }
    };
  }

  bool End(ExitReason reason) {
    return EndProgram(reason, form_, services_.services, user_settings_, *ini_);
  }

  std::string Stored(const std::string& key) const { return user_settings_.GetSetting(key); }
  bool IniWritten() const { return std::filesystem::exists(folder_ / "VRX-2260.INI"); }

  TempFolder folder_;
  TestServices services_;
  RecordingOperator& op_ = services_.op;
  PrivateINI& settings_ = services_.settings;
  StoredUserSettings user_settings_;
  std::optional<CPrivateINI> ini_{std::in_place, folder_ / "VRX-2260.INI", services_.system, op_};
  std::vector<std::string> steps_;
  std::string failing_key_;
  RecordedMainForm form_{[this](const std::string& step) { steps_.push_back(step); }};
};

const std::vector<std::string> kSaveAndClose = {
    "save MainLeft",           "save MainTop",
    "save MainWidth",          "save MainHeight",
    "save MRU_RecipePathName", "save MRU_RecipeFileName",
    "save MRU_TransPathName",  "save MRU_TransFileName",
    "CloseRecipeDatabase",     "CloseTransactionDatabase",
    "ReleaseDataControls",     "UnloadOpenForms"};

std::vector<std::string> Between(std::vector<std::string> before, std::vector<std::string> after) {
  before.insert(before.end(), kSaveAndClose.begin(), kSaveAndClose.end());
  before.insert(before.end(), after.begin(), after.end());
  return before;
}

TEST_F(ExitOfProgram, CloseBoxClosesThePortUnloadsSetupAndSavesAndCloses) {
  EXPECT_TRUE(End(ExitReason::kCloseBox));
  EXPECT_THAT(steps_, ElementsAreArray(Between({"CloseSerialPort", "UnloadSetup"}, {"Unload"})));
  EXPECT_TRUE(IniWritten());
  EXPECT_EQ(op_.beeps, 0);
  EXPECT_THAT(op_.boxes, IsEmpty());
}

TEST_F(ExitOfProgram, FileExitTakesTheSameSteps) {
  EXPECT_TRUE(End(ExitReason::kFileExit));
  EXPECT_THAT(steps_, ElementsAreArray(Between({"CloseSerialPort", "UnloadSetup"}, {"Unload"})));
  EXPECT_TRUE(IniWritten());
}

TEST_F(ExitOfProgram, SessionEndLeavesThePortAndSetupAlone) {
  EXPECT_TRUE(End(ExitReason::kSessionEnd));
  EXPECT_THAT(steps_, ElementsAreArray(Between({}, {"Unload"})));
  EXPECT_TRUE(IniWritten());
}

TEST_F(ExitOfProgram, FailureKeepsTheCloseBoxsProgramUpWithABeep) {
  form_.fails_at = "CloseTransactionDatabase";
  EXPECT_FALSE(End(ExitReason::kCloseBox));
  EXPECT_EQ(steps_.back(), "CloseTransactionDatabase");
  EXPECT_EQ(op_.beeps, 1);
  EXPECT_THAT(op_.boxes, IsEmpty());
  EXPECT_EQ(op_.Status(), "Error: fake: CloseTransactionDatabase failed");
  EXPECT_EQ(op_.status_color, StatusColor::kRed);
  EXPECT_FALSE(IniWritten());
}

TEST_F(ExitOfProgram, UserSettingsThatCannotBeSavedAreReportedAndEachExitGoesOn) {
  failing_key_ = "MainLeft";
  for (const ExitReason reason :
       {ExitReason::kCloseBox, ExitReason::kFileExit, ExitReason::kSessionEnd}) {
    steps_.clear();
    op_.boxes.clear();
    std::filesystem::remove(folder_ / "VRX-2260.INI");
    EXPECT_TRUE(End(reason));
    EXPECT_THAT(steps_, ::testing::Contains("CloseTransactionDatabase"));
    EXPECT_EQ(steps_.back(), "Unload");
    EXPECT_TRUE(IniWritten());
    ASSERT_EQ(op_.boxes.size(), 1U);
    EXPECT_EQ(op_.boxes[0].title, "User Settings Error");
    EXPECT_EQ(op_.boxes[0].cause, "fake: the store is full");
  }
  EXPECT_EQ(op_.beeps, 0);
}

TEST_F(ExitOfProgram, FailureDoesNotKeepFileExitsProgramUp) {
  form_.fails_at = "CloseRecipeDatabase";
  EXPECT_TRUE(End(ExitReason::kFileExit));
  EXPECT_EQ(op_.beeps, 1);
  EXPECT_THAT(std::vector(steps_.end() - 2, steps_.end()),
              ElementsAre("CloseRecipeDatabase", "Unload"));
}

TEST_F(ExitOfProgram, FailureDoesNotKeepAProgramUpAtTheEndOfTheSession) {
  form_.fails_at = "UnloadOpenForms";
  EXPECT_TRUE(End(ExitReason::kSessionEnd));
  EXPECT_EQ(op_.beeps, 1);
  EXPECT_TRUE(IniWritten());
}

TEST_F(ExitOfProgram, KeepsTheWindowsPlaceInTwips) {
  End(ExitReason::kFileExit);
  EXPECT_EQ(Stored("MainLeft"), "100");
  EXPECT_EQ(Stored("MainTop"), "200");
  EXPECT_EQ(Stored("MainWidth"), "15360");
  EXPECT_EQ(Stored("MainHeight"), "10800");
}

TEST_F(ExitOfProgram, MinimisedExitKeepsTheWindowKeysOfBefore) {
  user_settings_.values["MainLeft"] = "7";
  form_.place.reset();
  End(ExitReason::kFileExit);
  EXPECT_EQ(Stored("MainLeft"), "7");
  EXPECT_EQ(steps_.at(2), "save MRU_RecipePathName");
}

TEST_F(ExitOfProgram, AutoloadKeepsTheFilesOfItsDatabase) {
  settings_.SetAutoloadRecipeDBOn(true);
  End(ExitReason::kFileExit);
  EXPECT_EQ(Stored("MRU_RecipePathName"), "/data/YARD.RDB");
  EXPECT_EQ(Stored("MRU_RecipeFileName"), "YARD.RDB");
  EXPECT_EQ(Stored("MRU_TransPathName"), "");
  EXPECT_EQ(Stored("MRU_TransFileName"), "");
}

TEST_F(ExitOfProgram, AutoloadOffWritesNothingOverTheStoredName) {
  user_settings_.values["MRU_RecipePathName"] = "/data/OLD.RDB";
  user_settings_.values["MRU_RecipeFileName"] = "OLD.RDB";
  settings_.SetAutoloadTransDBOn(true);
  End(ExitReason::kFileExit);
  EXPECT_EQ(Stored("MRU_RecipePathName"), "");
  EXPECT_EQ(Stored("MRU_RecipeFileName"), "");
  EXPECT_EQ(Stored("MRU_TransPathName"), "/data/Y2026.TDB");
  EXPECT_EQ(Stored("MRU_TransFileName"), "Y2026.TDB");
}

TEST_F(ExitOfProgram, SettingsThatCannotBeWrittenAreReportedAndTheExitGoesOn) {
  ini_.emplace(folder_.Write("file", "") / "VRX-2260.INI", services_.system, op_);
  EXPECT_TRUE(End(ExitReason::kCloseBox));
  ASSERT_EQ(op_.boxes.size(), 1U);
  EXPECT_EQ(op_.boxes[0].icon, Icon::kWarning);
  EXPECT_EQ(op_.boxes[0].title, "INI File Error");
  EXPECT_EQ(op_.boxes[0].text,
            "Unable to save some or all of the application settings to the applications INI file. "
            "Please check all settings next time you run the program.");
  EXPECT_NE(op_.boxes[0].cause, "");
  EXPECT_EQ(op_.beeps, 0);
  EXPECT_EQ(steps_.back(), "Unload");
}

TEST_F(ExitOfProgram, WritesTheSettingsOfTheBooleans) {
  settings_.SetEnableBeeperOn(false);
  End(ExitReason::kFileExit);
  EXPECT_NE(ReadAll(folder_ / "VRX-2260.INI").find("EnableBeeper=NO"), std::string::npos);
}

}  // namespace
}  // namespace vrx::testing
