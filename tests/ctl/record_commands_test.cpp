#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "ctl/ctl_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using Json = nlohmann::ordered_json;

class RecordCommands : public CtlTest {
 protected:
  Json Listed(const std::string& kind, bool all = false) {
    std::vector<std::string> args = {"list", kind, database, "--json"};
    if (all) {
      args.emplace_back("--all");
    }
    EXPECT_EQ(Run(args), 0) << err;
    return Json::parse(out);
  }

  int Set(const std::string& kind, const std::string& id, std::vector<std::string> options) {
    options.insert(options.begin(), {"set", kind, database, id});
    return Run(options);
  }

  std::string database = NewRecipeDatabase();
};

TEST_F(RecordCommands, NewMakesAUsersFileOfTheSystemsUnit) {
  EXPECT_EQ(Run({"info", database, "--json"}), 0) << err;
  EXPECT_EQ(Json::parse(out),
            Json::parse(R"({"type":"recipe","units":"LB","created":"2026-01-05","modified":null,
                            "ingredients":0,"recipes":0,"pens":0})"));
  EXPECT_EQ(Run({"info", NewTransactionDatabase(), "--json"}), 0) << err;
  EXPECT_EQ(Json::parse(out), Json::parse(R"({"type":"transaction","units":"LB",
      "created":"2026-01-05","modified":null,"rows":0,"transactions":0,
      "firstDate":null,"lastDate":null})"));
}

TEST_F(RecordCommands, NewTakesTheUnitOfTheSettingsOrOfItsOption) {
  ASSERT_EQ(Run({"settings", "SystemUnits", "KG"}), 0);
  Run({"info", NewRecipeDatabase("K.RDB")});
  EXPECT_THAT(out, HasSubstr("recipe\tKG\t"));
  const std::string pounds = (folder / "L.TDB").string();
  ASSERT_EQ(Run({"new", "transaction", pounds, "--units", "LB"}), 0);
  Run({"info", pounds});
  EXPECT_THAT(out, HasSubstr("transaction\tLB\t"));
}

TEST_F(RecordCommands, NewRefusesAnExistingFileAndLeavesIt) {
  const auto path = folder.Write("NOTES.RDB", "mine");
  EXPECT_EQ(Run({"new", "recipe", path.string()}), 1);
  EXPECT_THAT(err, StartsWith("File Creation Error: New recipe database file creation failed.\n\n"
                              "A file by the name NOTES.RDB may already exist"));
  EXPECT_THAT(err, HasSubstr("\ncause: "));
  EXPECT_EQ(ReadAll(path), "mine");
}

TEST_F(RecordCommands, NewKeepsToEightCharacters) {
  NewRecipeDatabase("EIGHTCHR.RDB");
  EXPECT_EQ(Run({"new", "recipe", (folder / "NINECHARS.RDB").string()}), 1);
  EXPECT_THAT(err, StartsWith("Filename Error: NINECHARS.RDB is an invalid filename.\n"));
  EXPECT_FALSE(std::filesystem::exists(folder / "NINECHARS.RDB"));
}

TEST_F(RecordCommands, NewReportsAMissingTemplate) {
  system.program_directory = folder.Path().string();
  EXPECT_EQ(Run({"new", "transaction", (folder / "A.TDB").string()}), 1);
  EXPECT_THAT(err, StartsWith("File Missing Error: Couldn't find blank transaction database "
                              "file.\nPlease run installation and reload support files.\n"));
}

TEST_F(RecordCommands, ListShowsEveryFieldOfTheRecordsInUse) {
  ASSERT_EQ(Set("ingredient", "7",
                {"--description", "Grass hay", "--dry-matter", "88", "--hand-add", "yes"}),
            0);
  EXPECT_EQ(Listed("ingredients"),
            Json::parse(R"([{"ID":7,"Name":"GRASS ","Description":"Grass hay","DryMatter%":88,
                             "HandAdd":true}])"));
  EXPECT_EQ(Run({"list", "ingredients", database}), 0);
  EXPECT_EQ(out, "ID\tName\tDescription\tDryMatter%\tHandAdd\n7\tGRASS \tGrass hay\t88\tYes\n");
  EXPECT_EQ(Run({"list", "ingredients", database, "--csv"}), 0);
  EXPECT_EQ(out, "ID,Name,Description,DryMatter%,HandAdd\r\n7,GRASS ,Grass hay,88,Yes\r\n");
}

TEST_F(RecordCommands, ListAllShowsEveryRecord) {
  EXPECT_EQ(Listed("ingredients", true).size(), 100U);
  EXPECT_EQ(Listed("recipes", true).size(), 100U);
  const Json pens = Listed("pens", true);
  EXPECT_EQ(pens.size(), 400U);
  EXPECT_EQ(pens.back(),
            Json::parse(R"({"ID":400,"Name":"PEN400","Description":"","FeedAmount":"0"})"));
  EXPECT_THAT(Listed("pens"), IsEmpty());
}

TEST_F(RecordCommands, APenWithFeedAloneIsInUse) {
  ASSERT_EQ(Set("pen", "120", {"--feed", "00120"}), 0);
  EXPECT_EQ(Listed("pens"),
            Json::parse(R"([{"ID":120,"Name":"PEN120","Description":"","FeedAmount":"120"}])"));
}

TEST_F(RecordCommands, ListOfTheSampleSite) {
  database = SitePath("SITE.RDB");
  const Json recipes = Listed("recipes");
  ASSERT_EQ(recipes.size(), 9U);
  EXPECT_EQ(recipes[4], Json::parse(R"({"ID":5,"Name":"FINHOT","Description":"Finisher hot",
      "BatchType":"W","HeadCount":0,"RationTarget":"10500","AdjBatTotIndex":"15"})"));
  EXPECT_EQ(Listed("pens").size(), 40U);
}

TEST_F(RecordCommands, SetMapsANameAsTyped) {
  ASSERT_EQ(Set("ingredient", "5", {"--name", "barley"}), 0) << err;
  EXPECT_EQ(Listed("ingredients")[0]["Name"], "bARLEY");
  EXPECT_EQ(Listed("ingredients")[0]["Description"], "bARLEY");
}

TEST_F(RecordCommands, SetTurnsHandAddOnAndOff) {
  for (const auto& [answer, shown] : {std::pair{"yes", "\tYes\n"}, {"no", "\tNo\n"}}) {
    ASSERT_EQ(Set("ingredient", "5", {"--name", "CORN", "--hand-add", answer}), 0) << err;
    ASSERT_EQ(Run({"list", "ingredients", database}), 0);
    EXPECT_THAT(out, ::testing::EndsWith(shown));
  }
}

TEST_F(RecordCommands, SetAbbreviatesADescriptionWhileTheSettingIsOn) {
  ASSERT_EQ(Set("pen", "3", {"--description", "abcdefg"}), 0);
  EXPECT_EQ(Listed("pens")[0]["Name"], "AbCdEF");
  ASSERT_EQ(Run({"settings", "AutoAbbreviate", "NO"}), 0);
  ASSERT_EQ(Set("pen", "3", {"--description", "North alley"}), 0);
  EXPECT_EQ(Listed("pens")[0]["Name"], "AbCdEF");
  EXPECT_EQ(Listed("pens")[0]["Description"], "North alley");
}

TEST_F(RecordCommands, SetRefusesACharacterAndNamesIt) {
  EXPECT_EQ(Set("recipe", "1", {"--name", "A%B"}), 1);
  EXPECT_EQ(err, "Field Error: The 'Name' field does not take the character '%'.\n");
  EXPECT_EQ(Set("ingredient", "1", {"--dry-matter", "-5"}), 1);
  EXPECT_EQ(err, "Field Error: The 'DryMatter%' field does not take the character '-'.\n");
}

TEST_F(RecordCommands, SetRefusesATextThatIsTooLong) {
  EXPECT_EQ(Set("recipe", "1", {"--name", "SEVENTY"}), 1);
  EXPECT_THAT(err, HasSubstr("holds at most 6 characters"));
}

TEST_F(RecordCommands, SetRefusesAnEmptyName) {
  EXPECT_EQ(Set("ingredient", "5", {"--name", ""}), 1);
  EXPECT_EQ(err, "Field Error: The 'Name' field is mandatory.\n");
}

TEST_F(RecordCommands, SetReportsWhatItNormalized) {
  EXPECT_EQ(Set("ingredient", "5", {"--description", "Corn", "--dry-matter", "150"}), 0);
  EXPECT_EQ(err, "DryMatter%: 150 is out of range, 100 is stored.\n");
  EXPECT_EQ(Listed("ingredients")[0]["DryMatter%"], 100);
}

TEST_F(RecordCommands, ARefusedSetChangesNothing) {
  const std::string before = ReadAll(database);
  EXPECT_EQ(Set("recipe", "1", {"--description", "Steers", "--head-count", "100"}), 1);
  EXPECT_EQ(err, "Field Error: The 'HeadCount' field is closed in a recipe of type \"!\".\n");
  EXPECT_TRUE(ReadAll(database) == before);
}

TEST_F(RecordCommands, SetRecipeTakesTypeAndItsInputsTogether) {
  AddLine(database, {.recipe_id = "3", .target = "100"});
  ASSERT_EQ(
      Set("recipe", "3",
          {"--description", "Steers", "--type", "H", "--head-count", "250", "--adjust", "-5"}),
      0)
      << err;
  EXPECT_EQ(Listed("recipes"),
            Json::parse(R"([{"ID":3,"Name":"STEERS","Description":"Steers","BatchType":"H",
                             "HeadCount":250,"RationTarget":"","AdjBatTotIndex":"25"}])"));
  EXPECT_EQ(Set("recipe", "3", {"--ration-target", "5000"}), 1);
  EXPECT_EQ(err, "Field Error: The 'RationTarget' field is closed in a recipe of type \"H\".\n");
}

TEST_F(RecordCommands, SetKeepsTheModifiedDate) {
  calendar.today = {std::chrono::year{2026}, std::chrono::January, std::chrono::day{9}};
  ASSERT_EQ(Set("pen", "1", {"--name", "A01"}), 0);
  ASSERT_EQ(Run({"info", database, "--json"}), 0);
  const Json info = Json::parse(out);
  EXPECT_EQ(info["created"], "2026-01-05");
  EXPECT_EQ(info["modified"], "2026-01-09");
  EXPECT_EQ(info["pens"], 1);
}

TEST_F(RecordCommands, ANameWithAQuoteIsOnlyRefusedByTheFilter) {
  EXPECT_EQ(Set("pen", "1", {"--description", "O'Neil"}), 1);
  EXPECT_EQ(err, "Field Error: The 'Description' field does not take the character '''.\n");
}

TEST_F(RecordCommands, AFileOfTheOtherKindIsNoRecipeDatabase) {
  database = NewTransactionDatabase();
  const std::string before = ReadAll(database);
  for (const auto& args : std::vector<std::vector<std::string>>{
           {"list", "pens", database}, {"set", "pen", database, "1", "--name", "A"}}) {
    EXPECT_EQ(Run(args), 1);
    EXPECT_EQ(err,
              "Invalid Database: The database file (YARD.TDB) that you specified, is not a valid "
              "VRX-2260 recipe database.\ncause: YARD.TDB is marked USER_TRANS_DB\n");
    EXPECT_THAT(out, IsEmpty());
  }
  EXPECT_TRUE(ReadAll(database) == before);
}

TEST_F(RecordCommands, InfoRefusesABlankTemplate) {
  EXPECT_EQ(Run({"info", std::string(VRX_BIN_DIR) + "/QXNULRDB.MDB"}), 1);
  EXPECT_THAT(err, HasSubstr("cause: QXNULRDB.MDB is marked NUL_RECIPE_DB"));
}

}  // namespace
}  // namespace vrx::testing
