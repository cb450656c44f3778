#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <gmock/gmock.h>

#include "end_to_end/programs_fixture.h"
#include "end_to_end/sample_texts.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

class SampleSite : public ProgramsTest {};

TEST_F(SampleSite, HoldsWhatItsTextsSay) {
  const Json info = Info(SitePath("SITE.RDB"));
  EXPECT_EQ(info["ingredients"], SampleTable("ingredients.tsv").size());
  EXPECT_EQ(info["recipes"], SampleTable("recipes.tsv").size());
  EXPECT_EQ(info["pens"], SampleTable("pens.tsv").size());
  EXPECT_EQ(info["units"], "LB");
  SQLite::Database database(SitePath("SITE.RDB"));
  for (const auto& row : SampleTable("recipe_lines.tsv")) {
    SQLite::Statement statement(database,
                                "SELECT * FROM RecipeRation WHERE RecipeID = ? AND Sequence = ?");
    statement.bind(1, row[0]);
    statement.bind(2, std::stoi(row[7]));
    ASSERT_TRUE(statement.executeStep());
    for (int column = 0; column < 10; ++column) {
      const std::string& text = row[static_cast<std::size_t>(column)];
      EXPECT_EQ(statement.getColumn(column).getString(),
                column == 8 ? (text == "yes" ? "1" : "0") : text);
    }
    EXPECT_FALSE(statement.executeStep());
  }
}

// The computed columns of the texts, worked out once more: a head-count recipe scales to the head
// count, the others to their adjusted target.
TEST_F(SampleSite, LinesCarryTheFiguresOfTheirRecipe) {
  std::map<std::string, std::vector<std::vector<std::string>>> lines;
  for (const auto& row : SampleTable("recipe_lines.tsv")) {
    lines[row[0]].push_back(row);
  }
  for (const auto& recipe : SampleTable("recipes.tsv")) {
    const bool percent = recipe[3] == "P";
    double ration = 0;
    double as_fed_total = 0;
    double percent_total = 0;
    for (const auto& line : lines[recipe[0]]) {
      ration += line[4] == "0" ? 0 : std::stod(line[2]);
      as_fed_total += std::stod(line[5]);
      percent_total += std::stod(line[9]);
    }
    EXPECT_NEAR(percent_total, percent ? 100 : 0, 1e-9) << recipe[1];
    const double factor = (120 - std::stod(recipe[6])) / 100;
    const double scale = recipe[3] == "H" ? factor * std::stod(recipe[4]) / 100
                                          : factor * std::stod(recipe[5]) / as_fed_total;
    for (const auto& line : lines[recipe[0]]) {
      const double share = line[4] == "0" ? 100 : std::stod(line[4]);
      const double dry = percent ? std::stod(line[9]) * 100 : std::stod(line[2]);
      EXPECT_NEAR(std::stod(line[5]), dry * 100 / share, 0.5) << recipe[1] << line[1];
      EXPECT_NEAR(std::stod(line[6]), scale * std::stod(line[5]), 0.501) << recipe[1] << line[1];
      const double of_ration = ration > 0 && line[4] != "0" ? std::stod(line[2]) / ration * 100 : 0;
      EXPECT_NEAR(std::stod(line[3]), of_ration, 0.0005001) << recipe[1] << line[1];
    }
  }
}

TEST_F(SampleSite, AWrongTextIsReportedWithFileAndLine) {
  const fs::path texts = folder / "texts";
  fs::copy(SampleTexts(), texts);
  const std::vector<std::array<std::string, 4>> wrong = {
      {"ingredients.tsv", "\t82\t", "\t182\t", "ingredients.tsv:2: \"182\""},
      {"ingredients.tsv", "\tno\n", "\tnever\n", "ingredients.tsv:2: \"never\""},
      {"recipes.tsv", "\tP\t", "\tQ\t", "recipes.tsv:2: \"Q\""},
      {"recipe_lines.tsv", "1\t6\t0\t", "1\t99\t0\t", "recipe_lines.tsv:2: ingredient 99"},
      {"pens.tsv", "2\tA02\t", "2\t", "pens.tsv:3: 3 cells instead of 4"},
      {"pens.tsv", "ID\tName", "ID\tTitle", "pens.tsv:1: the heading"}};
  for (const auto& [name, from, to, message] : wrong) {
    const std::string sound = ReadAll(texts / name);
    std::string text = sound;
    text.replace(text.find(from), from.size(), to);
    std::ofstream(texts / name, std::ios::binary) << text;
    const std::string target = (folder / "SITE.RDB").string();
    Program tool(VRX_MAKE_SAMPLE_SITE, {texts.string(), Bin("QXNULRDB.MDB"), target},
                 folder.Path().string());
    EXPECT_EQ(tool.Wait(), 1) << message;
    EXPECT_THAT(tool.Err(), HasSubstr(message));
    EXPECT_FALSE(fs::exists(target));
    std::ofstream(texts / name, std::ios::binary) << sound;
  }
}

}  // namespace
}  // namespace vrx::testing
