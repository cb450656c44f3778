#include "presenter/first_steps.h"

#include <filesystem>
#include <fstream>
#include <string>

#include <gmock/gmock.h>

#include "base/error.h"
#include "presenter/lifecycle_fixture.h"
#include "support/boxes.h"
#include "support/stored_user_settings.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class FirstStepsTest : public LifecycleFixture {
 protected:
  FirstStepsTest() {
    fs::create_directory(site_);
    fs::rename(MakeUserFile("A.RDB", kRecipe), site_ / "SITE.RDB");
    fs::rename(MakeUserFile("A.TDB", kTransaction), site_ / "SITE.TDB");
  }

  // The steps that are ticked.
  std::vector<FirstStep> Done() const {
    std::vector<FirstStep> done;
    for (const FirstStepRow& row : FirstStepRows()) {
      if (steps_.Done(row.step)) {
        done.push_back(row.step);
      }
    }
    return done;
  }

  fs::path data_ = app_folder_.DefaultAppPath();
  fs::path site_ = program_ / "sample_site";
  StoredUserSettings store_;
  FirstSteps steps_{services_, store_, databases_};
};

TEST_F(FirstStepsTest, AreOfferedUntilBothDatabasesAreOpen) {
  EXPECT_TRUE(steps_.Wanted());
  EXPECT_THAT(Done(), IsEmpty());
  databases_.OpenNamed(kRecipe, MakeUserFile("YARD.RDB", kRecipe));
  EXPECT_TRUE(steps_.Wanted());
  EXPECT_THAT(Done(), ElementsAre(FirstStep::kMakeRecipes, FirstStep::kOpen));
  databases_.OpenNamed(kTransaction, MakeUserFile("Y2026.TDB", kTransaction));
  EXPECT_FALSE(steps_.Wanted());
  databases_.CloseRecipeDatabase();
  EXPECT_TRUE(steps_.Wanted());
  EXPECT_THAT(Done(), ElementsAre(FirstStep::kMakeTransactions, FirstStep::kOpen));
}

TEST_F(FirstStepsTest, TheSampleSiteIsCopiedAndOpened) {
  const std::string sample = ReadAll(site_ / "SITE.RDB");
  steps_.TrySampleSite();
  EXPECT_EQ(databases_.Bound(kRecipe).path, data_ / "SITE.RDB");
  EXPECT_EQ(databases_.Bound(kTransaction).path, data_ / "SITE.TDB");
  EXPECT_EQ(databases_.Recipe().name, "SITE.RDB");
  EXPECT_TRUE(steps_.Done(FirstStep::kSampleSite));
  EXPECT_EQ(ReadAll(site_ / "SITE.RDB"), sample);
}

TEST_F(FirstStepsTest, TheSampleSiteReplacesNothing) {
  folder_.Write("common/Brantock/VRX-2260/SITE.RDB", "mine");
  folder_.Write("common/Brantock/VRX-2260/SITE2.TDB", "mine too");
  steps_.TrySampleSite();
  EXPECT_EQ(databases_.Bound(kRecipe).path, data_ / "SITE3.RDB");
  EXPECT_EQ(databases_.Bound(kTransaction).path, data_ / "SITE3.TDB");
  EXPECT_EQ(ReadAll(data_ / "SITE.RDB"), "mine");
  EXPECT_EQ(ReadAll(data_ / "SITE2.TDB"), "mine too");
  EXPECT_FALSE(fs::exists(data_ / "SITE.TDB"));
  EXPECT_FALSE(fs::exists(data_ / "SITE2.RDB"));
}

TEST_F(FirstStepsTest, AMissingSampleSiteIsReportedAndLeavesNothing) {
  fs::remove(site_ / "SITE.TDB");
  steps_.TrySampleSite();
  EXPECT_THAT(OnlyBox(operator_.boxes).title, "Sample Site Error");
  EXPECT_THAT(OnlyBox(operator_.boxes).text,
              HasSubstr("The sample site was not copied.\r\n\r\n" + (site_ / "SITE.TDB").string()));
  EXPECT_FALSE(fs::exists(data_ / "SITE.RDB"));
  EXPECT_FALSE(steps_.Done(FirstStep::kSampleSite));
  EXPECT_EQ(BoundName(kRecipe), "QXNULRDB.MDB");
}

TEST_F(FirstStepsTest, AClosedOrOtherDatabaseIsNotTheSampleSite) {
  steps_.TrySampleSite();
  databases_.CloseTransactionDatabase();
  EXPECT_TRUE(steps_.Done(FirstStep::kSampleSite));
  databases_.OpenNamed(kRecipe, MakeUserFile("YARD.RDB", kRecipe));
  EXPECT_FALSE(steps_.Done(FirstStep::kSampleSite));
}

TEST_F(FirstStepsTest, ThePortIsSetOnceItWasChosenUntilItChanges) {
  settings_.SetSerialPort("3");
  EXPECT_FALSE(steps_.Done(FirstStep::kSerialPort));
  steps_.PortChosen();
  EXPECT_TRUE(steps_.Done(FirstStep::kSerialPort));
  settings_.SetSerialPort("4");
  EXPECT_FALSE(steps_.Done(FirstStep::kSerialPort));
  store_.on_save = [](std::string_view /*key*/) { throw Error("fake: the disk is full"); };
  steps_.PortChosen();
  EXPECT_FALSE(steps_.Done(FirstStep::kSerialPort));
}

TEST_F(FirstStepsTest, OpeningAtEveryStartIsOffAtFirstAndSetsBothOptions) {
  EXPECT_FALSE(steps_.OpensAll());
  EXPECT_FALSE(steps_.OpensSome());
  settings_.SetAutoloadTransDBOn(true);
  EXPECT_FALSE(steps_.OpensAll());
  EXPECT_TRUE(steps_.OpensSome());
  steps_.OpenAtStart(true);
  EXPECT_TRUE(settings_.AutoloadRecipeDBOn());
  EXPECT_TRUE(steps_.OpensAll());
  steps_.OpenAtStart(false);
  EXPECT_FALSE(settings_.AutoloadTransDBOn());
  EXPECT_FALSE(steps_.OpensSome());
}

}  // namespace
}  // namespace vrx::testing
