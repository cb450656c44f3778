#include <chrono>
#include <csignal>
#include <filesystem>
#include <random>
#include <thread>

#include <SQLiteCpp/Database.h>
#include <gtest/gtest.h>

#include "end_to_end/programs_fixture.h"

namespace vrx::testing {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRounds = 250;

struct Edit {
  std::vector<std::string> args;
  std::string query;  // what it writes
  std::string value;  // as the query reads it once it is written
  bool of_lines = false;
};

// Recipe 4 is by weight. An edit of one of its lines rewrites all of them.
constexpr const char* kLinesOfRecipe4 =
    "SELECT group_concat(Target || ' ' || DryMatter || ' ' || [Ration%] || ' ' || BatchTarget, ';')"
    " FROM (SELECT * FROM RecipeRation WHERE RecipeID = '4' ORDER BY Sequence)";

// Edits of one database from the command line, killed at any moment.
class EditsKilled : public ProgramsTest {
 protected:
  EditsKilled() { std::filesystem::copy_file(SitePath("SITE.RDB"), database); }

  int Pick(int least, int most) { return std::uniform_int_distribution<int>(least, most)(random_); }

  // Edits a record or a line, with a new value.
  Edit NextEdit() {
    switch (const std::string value = std::to_string(++last_value_); Pick(0, 3)) {
      case 0:
        return PenEdit(std::to_string(Pick(1, 400)), value);
      case 1:
        return IngredientEdit(std::to_string(Pick(1, 14)), std::to_string(last_value_ % 97 + 1));
      case 2:
        return RecipeEdit(std::to_string(Pick(1, 100)), "Mix " + value);
      default:
        return LineEdit(Pick(1, 7), value);
    }
  }

  std::string Ask(const std::string& query) const {
    SQLite::Database file(database, SQLite::OPEN_READWRITE);
    return file.execAndGet(query).getString();
  }

  // Kills the edit after a while. Returns whether it was acknowledged.
  bool RunAndKill(const Edit& edit, std::chrono::microseconds after) {
    Program program(Bin("vrx2260ctl"), WithDataDir(edit.args), folder.Path().string());
    std::this_thread::sleep_for(after);
    program.Signal(SIGKILL);
    const int code = program.Wait();
    EXPECT_TRUE(code == 0 || code == -SIGKILL) << code << program.Err();
    return code == 0;
  }

  // The stored lines of recipe 4 are what their weights compute.
  void ExpectComputedLines() const {
    const Result result = Ctl({"recipe", database, "4", "--json"});
    ASSERT_EQ(result.code, 0) << result.err;
    const Json lines = Json::parse(result.out)["lines"];
    std::string computed;
    for (const Json& line : lines) {
      for (const char* cell : {"Target", "DryMatter", "Ration%", "BatchTarget"}) {
        computed +=
            line[cell].get<std::string>() + (cell == std::string("BatchTarget") ? ";" : " ");
      }
    }
    computed.pop_back();
    EXPECT_EQ(Ask(kLinesOfRecipe4), computed);
  }

  std::string database = (folder / "SITE.RDB").string();

 private:
  Edit PenEdit(const std::string& id, const std::string& feed) const {
    return {.args = {"set", "pen", database, id, "--feed", feed},
            .query = "SELECT FeedAmount FROM Pen WHERE ID = " + id,
            .value = feed};
  }

  // The figure of the record, and how many of its lines have another one: none, before or after.
  Edit IngredientEdit(const std::string& id, const std::string& figure) const {
    return {.args = {"set", "ingredient", database, id, "--dry-matter", figure},
            .query =
                "SELECT [DryMatter%] || ', others ' || (SELECT count(*) FROM RecipeRation AS"
                " line WHERE line.Ingredient = CAST(Ingredient.ID AS TEXT) AND"
                " line.[DryMatter%] <> CAST(Ingredient.[DryMatter%] AS TEXT))"
                " FROM Ingredient WHERE ID = " +
                id,
            .value = figure + ", others 0"};
  }

  Edit RecipeEdit(const std::string& id, const std::string& description) const {
    return {.args = {"set", "recipe", database, id, "--description", description},
            .query = "SELECT Description FROM Recipe WHERE ID = " + id,
            .value = description};
  }

  Edit LineEdit(int position, const std::string& weight) const {
    return {.args = {"line", "set", database, "4", std::to_string(position), "--weight", weight},
            .query = "SELECT Target FROM RecipeRation WHERE RecipeID = '4' AND Sequence = " +
                     std::to_string(position),
            .value = weight,
            .of_lines = true};
  }

  std::mt19937 random_{20260105};
  int last_value_ = 1000;
};

TEST_F(EditsKilled, LoseNothingThatWasAcknowledged) {
  ASSERT_EQ(Ctl(NextEdit().args).code, 0);  // the next one finds the program in memory
  const auto start = Clock::now();
  ASSERT_EQ(Ctl(NextEdit().args).code, 0);
  const auto usual = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
  int acknowledged = 0;
  int killed = 0;
  for (int round = 0; round < kRounds; ++round) {
    const Edit edit = NextEdit();
    const std::string before = Ask(edit.query);
    const std::string lines = Ask(kLinesOfRecipe4);
    const std::chrono::microseconds after{Pick(0, static_cast<int>(usual.count() * 3 / 2))};
    const bool done = RunAndKill(edit, after);
    const std::string stored = Ask(edit.query);
    const bool written = stored == edit.value;
    ASSERT_TRUE(written || (!done && stored == before))
        << edit.args[1] << ": " << stored << " after " << before << ", wanted " << edit.value;
    if (!written) {
      ASSERT_EQ(Ask(kLinesOfRecipe4), lines);
    } else if (edit.of_lines) {
      ExpectComputedLines();
    }
    ASSERT_EQ(Ask("PRAGMA integrity_check"), "ok");
    ++(done ? acknowledged : killed);
  }
  RecordProperty("acknowledged", acknowledged);
  RecordProperty("killed", killed);
  EXPECT_GT(acknowledged, kRounds / 10);
  EXPECT_GT(killed, kRounds / 10);
}

}  // namespace
}  // namespace vrx::testing
