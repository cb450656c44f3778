#include "central/releases.h"

#include <chrono>
#include <filesystem>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files.h"
#include "central/administration.h"
#include "central/central_fixture.h"
#include "central/server_source.h"
#include "database/connection.h"
#include "database/identity.h"
#include "support/database_files.h"
#include "support/fixed_calendar.h"
#include "support/recipe_tables.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// The nutritionist's site and that of the yard North, which begin equal.
class Releases : public CentralFixture {
 protected:
  Releases() : nutritionist_(Connect(kNutritionist)), north_login_(Connect(kNorth)) {
    Save("OFFICE.RDB", office_);
    Save("NORTH.RDB", yard_);
  }

  void Save(const std::string& name, RecipeTables& tables) {
    fs::remove(folder_ / name);
    for (RecipeLineRecord& line : tables.lines) {
      line.row = 0;
    }
    CreateRecipeDatabase(folder_ / name, tables);
  }

  int PublishOffice(const std::vector<std::string>& yards = {}) {
    Save("OFFICE.RDB", office_);
    return Publish(nutritionist_, {.file = folder_ / "OFFICE.RDB", .yards = yards, .note = "note"})
        .release;
  }

  [[nodiscard]] ReleaseQuestion About() const {
    return {.yard = "North", .file = folder_ / "NORTH.RDB"};
  }

  ReleaseDifferences Differences() {
    Save("NORTH.RDB", yard_);
    return DifferencesTo(north_login_, About());
  }

  // Fetches and accepts every new name; the contents of the new file.
  RecipeTables FetchAll() {
    const std::vector<RenamedRecord> renamed = Differences().renamed;
    Fetch(north_login_, {.what = About(), .out = folder_ / "NEW.RDB", .accepted = renamed},
          calendar_);
    return ReadTables(folder_ / "NEW.RDB");
  }

  std::string Refusal(const FetchOrder& order) {
    try {
      Fetch(north_login_, order, calendar_);
      return {};
    } catch (const Error& error) {
      return error.what();
    }
  }

  // "recipe 1 STEERS HeadCount: 0 -> 9 kept"
  static std::vector<std::string> TextsOf(const ReleaseDifferences& answer) {
    std::vector<std::string> texts;
    for (const RecordDifference& one : answer.differences) {
      texts.push_back(
          std::string(WordOf(one.record)) + " " + std::to_string(one.id) + " " + one.name + " " +
          (one.place > 0 ? std::to_string(one.place) + " " + one.ingredient + " " : "") +
          one.field + ": " + one.here.value_or("none") + " -> " + one.release.value_or("none") +
          (one.kept ? " kept" : ""));
    }
    return texts;
  }

  TempFolder folder_;
  FixedCalendar calendar_;
  RecipeTables office_ = SmallYard();
  RecipeTables yard_ = SmallYard();
  CentralConnection nutritionist_;
  CentralConnection north_login_;
};

TEST_F(Releases, AreNumberedAndKeepEveryFieldOfTheFile) {
  Recipe(office_, 1).description = "O'Brien \"1\"; \\ \xF0\x9F\x90\x84";
  Recipe(office_, 1).adjust_batch_index = "23";
  EXPECT_EQ(PublishOffice(), 1);
  EXPECT_EQ(PublishOffice(), 2);
  const PublishOutcome third =
      Publish(nutritionist_, {.file = folder_ / "OFFICE.RDB", .note = "Summer"});
  EXPECT_EQ(third.release, 3);
  EXPECT_EQ(third.unit, "LB");
  EXPECT_EQ(third.ingredients, 3);
  EXPECT_EQ(third.recipes, 2);
  EXPECT_EQ(third.pens, 1);
  EXPECT_EQ(Value("SELECT count(*) FROM vrx.ingredient"), "300");
  EXPECT_EQ(Value("SELECT count(*) FROM vrx.pen"), "1200");
  EXPECT_EQ(Table("SELECT description, adj_bat_tot_index FROM vrx.recipe WHERE release = 3 AND id "
                  "= 1"),
            Recipe(office_, 1).description + "|23\n");
  const std::vector<Release> list = ListReleases(nutritionist_);
  ASSERT_EQ(list.size(), 3U);
  EXPECT_EQ(list[0].number, 3);
  EXPECT_EQ(list[0].note, "Summer");
  EXPECT_EQ(list[0].file, "OFFICE.RDB");
  EXPECT_EQ(list[0].login, kNutritionist);
  EXPECT_TRUE(list[0].for_all);
  EXPECT_THAT(list[0].at, HasSubstr("T"));
}

TEST_F(Releases, AYardSeesOnlyThoseForIt) {
  PublishOffice();
  PublishOffice({"South"});
  PublishOffice({"North", "South", "North"});
  const std::vector<Release> seen = ListReleases(north_login_);
  ASSERT_EQ(seen.size(), 2U);
  EXPECT_EQ(seen[0].number, 3);
  EXPECT_THAT(seen[0].yards, ElementsAre("North"));
  EXPECT_EQ(seen[1].number, 1);
  EXPECT_EQ(ListReleases(chief_).size(), 3U);
  EXPECT_EQ(ListReleases(chief_, "North").size(), 2U);
  EXPECT_THAT(ListReleases(chief_).front().yards, ElementsAre("North", "South"));
  FetchOrder order{.what = About(), .out = folder_ / "NEW.RDB"};
  order.what.release = 2;
  EXPECT_EQ(Refusal(order), "there is no release 2 for the yard North");
}

// The second one waits for the first one's number and then takes the next one.
TEST_F(Releases, TwoPublishedAtOnceHaveTwoNumbers) {
  CentralTransaction first(chief_);
  chief_.Query(
      "INSERT INTO vrx.release (release, unit, file, for_all) VALUES (1, 'LB', 'A', true)");
  std::future<int> second = std::async(std::launch::async, [&] { return PublishOffice(); });
  CentralConnection watcher = Connect("chief");
  while (watcher
             .Query("SELECT 1 FROM pg_stat_activity WHERE datname = current_database() AND "
                    "wait_event_type = 'Lock'")
             .Count() == 0) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  first.Commit();
  EXPECT_EQ(second.get(), 2);
}

TEST_F(Releases, OnlyTheNutritionistPublishes) {
  for (const std::string login : {kNorth, kOffice}) {
    CentralConnection server = Connect(login);
    try {
      Publish(server, {.file = folder_ / "OFFICE.RDB"});
      ADD_FAILURE() << login;
    } catch (const CentralError& error) {
      EXPECT_EQ(error.State(), "42501") << login;
    }
  }
  EXPECT_EQ(Value("SELECT count(*) FROM vrx.release"), "0");
}

TEST_F(Releases, APublishThatFailsLeavesNothing) {
  EXPECT_THROW(PublishOffice({"North", "East"}), CentralRefused);
  office_.unit = "TON";
  EXPECT_THROW(PublishOffice(), CentralRefused);
  office_.unit = "LB";
  Recipe(office_, 2).name = "\xFF";
  EXPECT_THROW(PublishOffice(), CentralRefused);
  EXPECT_EQ(Value("SELECT count(*) FROM vrx.release"), "0");
  EXPECT_EQ(Value("SELECT count(*) FROM vrx.ingredient"), "0");
}

TEST_F(Releases, FetchingAnEqualReleaseChangesNothing) {
  PublishOffice();
  const ReleaseDifferences answer = Differences();
  EXPECT_THAT(TextsOf(answer), IsEmpty());
  EXPECT_THAT(answer.renamed, IsEmpty());
  EXPECT_THAT(answer.not_computed, IsEmpty());
  const RecipeTables fetched = FetchAll();
  EXPECT_EQ(fetched.lines.size(), yard_.lines.size());
  EXPECT_EQ(Ask(folder_ / "NEW.RDB", "SELECT Modified FROM History").front(),
            StoredText(calendar_.Today()));
}

TEST_F(Releases, FetchTakesIngredientsRecipesAndLines) {
  UseIngredient(office_, 4, "OATS", 85);
  Ingredient(office_, 2).hand_add = true;
  Recipe(office_, 1).ration_target = "2600";
  Recipe(office_, 2).adjust_batch_index = "23";
  UseRecipe(office_, 3, "CALVES", "W");
  Recipe(office_, 3).head_count = 7;
  AddWeightLine(office_, 3, 4, "300");
  office_.lines[1].target = "600";
  PublishOffice();
  const std::vector<std::string> texts = TextsOf(Differences());
  EXPECT_THAT(texts, Contains("ingredient 4 OATS Name: ING004 -> OATS"));
  EXPECT_THAT(texts, Contains("ingredient 4 OATS DryMatter%: 100 -> 85"));
  EXPECT_THAT(texts, Contains("ingredient 2 HAY HandAdd: No -> Yes"));
  EXPECT_THAT(texts, Contains("recipe 1 STEERS RationTarget:  -> 2600"));
  EXPECT_THAT(texts, Contains("recipe 2 HEIFERS AdjBatTotIndex: 20 -> 23"));
  EXPECT_THAT(texts, Contains("recipe 3 CALVES HeadCount: 0 -> 7"));
  EXPECT_THAT(texts, Contains("line 1 STEERS 2 HAY Target: 500 -> 600"));
  EXPECT_THAT(texts, Contains("line 3 CALVES 1 OATS Target: none -> 300"));
  const RecipeTables fetched = FetchAll();
  EXPECT_EQ(fetched.ingredients[3].name, "OATS");
  EXPECT_EQ(fetched.ingredients[3].dry_matter_percent, 85);
  EXPECT_TRUE(fetched.ingredients[1].hand_add);
  EXPECT_EQ(fetched.recipes[0].ration_target, "2600");
  EXPECT_EQ(fetched.recipes[2].head_count, 7);
  ASSERT_EQ(fetched.lines.size(), 5U);
  EXPECT_EQ(fetched.lines[1].target, "600");
  EXPECT_EQ(fetched.lines[1].dry_matter, "667");  // 600 / 90 %
  EXPECT_EQ(fetched.lines[4].recipe_id, "3");
}

TEST_F(Releases, FetchKeepsWhatIsTheYardsOwn) {
  Ingredient(office_, 1).dry_matter_percent = 80;
  office_.lines[0].dry_matter_percent = "80";
  office_.lines[2].dry_matter_percent = "80";
  Recipe(office_, 2).head_count = 99;
  Pen(office_, 1).feed_amount = "777";
  Pen(office_, 3).name = "EAST";
  PublishOffice();
  EXPECT_THAT(TextsOf(Differences()), ElementsAre("ingredient 1 CORN DryMatter%: 88 -> 80 kept",
                                                  "recipe 2 HEIFERS HeadCount: 120 -> 99 kept",
                                                  "pen 1 PEN001 FeedAmount: 150 -> 777 kept",
                                                  "pen 3 EAST Name: NORTH -> EAST kept"));
  const RecipeTables fetched = FetchAll();
  EXPECT_EQ(fetched.ingredients[0].dry_matter_percent, 88);
  EXPECT_EQ(fetched.lines[0].dry_matter_percent, "88");
  EXPECT_EQ(fetched.lines[0].dry_matter, "2273");  // 2000 / 88 %
  EXPECT_EQ(fetched.recipes[1].head_count, 120);
  EXPECT_EQ(fetched.pens[0].feed_amount, "150");
  EXPECT_EQ(fetched.pens[2].name, "NORTH");
}

TEST_F(Releases, AnotherUnitIsRefused) {
  office_.unit = "KG";
  PublishOffice();
  EXPECT_EQ(Refusal({.what = About(), .out = folder_ / "NEW.RDB"}),
            "release 1 is in KG and NORTH.RDB in LB: it cannot be fetched");
  EXPECT_THROW(Differences(), CentralRefused);
  EXPECT_FALSE(FileExists(folder_ / "NEW.RDB"));
}

TEST_F(Releases, ANewNameOfAnIdInUseHasToBeAccepted) {
  Ingredient(office_, 1).name = "FLAKED";
  Ingredient(office_, 9).name = "NEW";  // not in use at the yard
  Recipe(office_, 2).name = "COWS";
  PublishOffice();
  const std::vector<RenamedRecord> renamed = Differences().renamed;
  EXPECT_THAT(
      renamed,
      ElementsAre(
          RenamedRecord{
              .record = ReleaseRecord::kIngredient, .id = 1, .here = "CORN", .release = "FLAKED"},
          RenamedRecord{
              .record = ReleaseRecord::kRecipe, .id = 2, .here = "HEIFERS", .release = "COWS"}));
  EXPECT_EQ(Refusal({.what = About(), .out = folder_ / "NEW.RDB", .accepted = {renamed[0]}}),
            "release 1 calls recipe 2 \"COWS\" in place of \"HEIFERS\", which was not accepted");
  EXPECT_EQ(Value("SELECT count(*) FROM vrx.fetch"), "0");
  EXPECT_FALSE(FileExists(folder_ / "NEW.RDB"));
  EXPECT_EQ(FetchAll().recipes[1].name, "COWS");
}

TEST_F(Releases, AnIngredientThatTheReleaseLacksIsNoLongerInUse) {
  Ingredient(office_, 2) = {.id = 2, .name = "ING002"};
  std::erase_if(office_.lines, [](const auto& line) { return line.ingredient == "2"; });
  PublishOffice();
  const ReleaseDifferences answer = Differences();
  EXPECT_THAT(TextsOf(answer), Contains("ingredient 2 HAY Description: HAY -> "));
  EXPECT_THAT(TextsOf(answer), Contains("line 1 STEERS 2 HAY Target: 500 -> none"));
  ASSERT_EQ(answer.renamed.size(), 1U);
  const RecipeTables fetched = FetchAll();
  EXPECT_EQ(fetched.ingredients[1].description, "");
  EXPECT_EQ(fetched.lines.size(), 3U);
}

TEST_F(Releases, FetchNeverReplacesAFileAndNeverTouchesTheYardsOwn) {
  PublishOffice();
  const std::string before = ReadAll(folder_ / "NORTH.RDB");
  const fs::path out = folder_.Write("NEW.RDB", "other");
  EXPECT_THAT(Refusal({.what = About(), .out = out}), HasSubstr("already exists"));
  EXPECT_EQ(ReadAll(out), "other");
  EXPECT_THAT(Refusal({.what = About(), .out = folder_ / "NORTH.RDB"}),
              HasSubstr("already exists"));
  EXPECT_EQ(Value("SELECT count(*) FROM vrx.fetch"), "0");
  FetchOrder order{.what = About(), .out = folder_ / "NEWER.RDB"};
  EXPECT_EQ(Refusal(order), "");
  EXPECT_TRUE(ReadAll(folder_ / "NORTH.RDB") == before);
  EXPECT_THAT(FileNames(folder_.Path()),
              ElementsAre("NEW.RDB", "NEWER.RDB", "NORTH.RDB", "OFFICE.RDB"));
}

TEST_F(Releases, ShowWhoFetchedThem) {
  PublishOffice();
  FetchAll();
  const std::vector<Release> list = ListReleases(nutritionist_);
  ASSERT_EQ(list.front().fetches.size(), 1U);
  EXPECT_EQ(list.front().fetches.front().yard, "North");
  EXPECT_EQ(Value("SELECT login FROM vrx.fetch"), kNorth);
  CentralConnection south = Connect(kSouth);
  EXPECT_THAT(ListReleases(south).front().fetches, IsEmpty());
}

TEST_F(Releases, TheNewestOneForTheYardIsTheUsualOne) {
  PublishOffice();
  Recipe(office_, 1).ration_target = "9";
  PublishOffice({"North"});
  PublishOffice({"South"});
  EXPECT_EQ(Differences().release.number, 2);
  ReleaseQuestion first = About();
  first.release = 1;
  EXPECT_THAT(DifferencesTo(north_login_, first).differences, IsEmpty());
}

TEST_F(Releases, ARecipeThatCannotBeComputedIsNamedAndKeepsItsLines) {
  office_.lines[0].target = "2147483647";
  office_.lines[1].target = "2147483647";
  PublishOffice();
  const ReleaseDifferences answer = Differences();
  ASSERT_EQ(answer.not_computed.size(), 1U);
  EXPECT_THAT(answer.not_computed.front(), HasSubstr("Recipe 1 STEERS: Overflow"));
  EXPECT_EQ(FetchAll().lines[0].target, "2147483647");
}

TEST_F(Releases, WithoutAReleaseThereIsNothingToFetch) {
  EXPECT_EQ(Refusal({.what = About(), .out = folder_ / "NEW.RDB"}),
            "there is no release for the yard North");
  EXPECT_THAT(FileNames(folder_.Path()), ElementsAre("NORTH.RDB", "OFFICE.RDB"));
}

}  // namespace
}  // namespace vrx::testing
