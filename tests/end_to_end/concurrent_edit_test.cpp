#include <filesystem>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <gtest/gtest.h>

#include "end_to_end/programs_fixture.h"

namespace vrx::testing {
namespace {

// Several offices edit one recipe at the same time: each waits for the others and continues with
// their results.
class EditsAtOnce : public ProgramsTest {
 protected:
  static constexpr int kLines = 7;  // of recipe 4, by weight

  EditsAtOnce() { std::filesystem::copy_file(SitePath("SITE.RDB"), database); }

  std::vector<std::string> Stored(const std::string& column) const {
    SQLite::Database file(database, SQLite::OPEN_READONLY);
    SQLite::Statement query(
        file, "SELECT [" + column + "] FROM RecipeRation WHERE RecipeID = '4' ORDER BY Sequence");
    std::vector<std::string> cells;
    while (query.executeStep()) {
      cells.push_back(query.getColumn(0).getString());
    }
    return cells;
  }

  std::vector<std::string> Computed(const std::string& field) const {
    const Result result = Ctl({"recipe", database, "4", "--json"});
    EXPECT_EQ(result.code, 0) << result.err;
    const Json recipe = Json::parse(result.out);
    std::vector<std::string> cells;
    for (const Json& line : recipe["lines"]) {
      cells.push_back(line[field]);
    }
    return cells;
  }

  std::string database = (folder / "SITE.RDB").string();
};

TEST_F(EditsAtOnce, OfTheLinesOfOneRecipeAreAllStored) {
  for (int round = 1; round <= 5; ++round) {
    std::vector<std::string> weights;
    std::vector<std::unique_ptr<Program>> edits;
    for (int position = 1; position <= kLines; ++position) {
      weights.push_back(std::to_string(100 * round + position));
      edits.push_back(std::make_unique<Program>(
          Bin("vrx2260ctl"),
          WithDataDir(
              {"line", "set", database, "4", std::to_string(position), "--weight", weights.back()}),
          folder.Path().string()));
    }
    for (const auto& edit : edits) {
      EXPECT_EQ(edit->Wait(), 0) << edit->Err();
    }
    ASSERT_EQ(Stored("Target"), weights);
    for (const char* column : {"DryMatter", "Ration%", "BatchTarget"}) {
      ASSERT_EQ(Stored(column), Computed(column)) << column;
    }
  }
}

}  // namespace
}  // namespace vrx::testing
