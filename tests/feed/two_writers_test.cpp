#include <functional>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "database/connection.h"
#include "database/records.h"
#include "database/templates.h"
#include "feed/recipe_storage.h"
#include "feed/record_commit.h"
#include "feed/record_reset.h"
#include "platform/progress_display.h"
#include "support/fixed_calendar.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

class NoProgress : public ProgressDisplay {
 public:
  void SetProgressMessage(std::string_view /*text*/) override {}
  void SetProgressRange(int /*maximum*/) override {}
  void SetProgressValue(int /*value*/) override {}
};

// Another program stores the description of recipe 2 and commits only when this one waits for it.
class TwoWriters : public ::testing::Test {
 protected:
  TwoWriters() {
    RecipeRecord recipe = ReadRecipe(database_, 1);
    recipe.description = "Steers";
    recipe.batch_type = "W";
    WriteRecipe(database_, recipe);
    RecipeLineRecord line{.recipe_id = "1", .ingredient = "1", .target = "10", .sequence = 1};
    WriteRecipeLine(database_, line);
    other_.exec("BEGIN IMMEDIATE");
    other_.exec("UPDATE Recipe SET Description = 'Heifers' WHERE ID = 2");
    sqlite3_busy_handler(database_.getHandle(), CommitOther, &other_);
  }

  static int CommitOther(void* other, int /*calls*/) {
    auto& connection = *static_cast<SQLite::Database*>(other);
    const bool open = sqlite3_get_autocommit(connection.getHandle()) == 0;
    if (open) {
      connection.exec("COMMIT");
    }
    return open ? 1 : 0;
  }

  std::string Text(const std::string& query) { return database_.execAndGet(query).getString(); }

  TempFolder folder_;
  std::filesystem::path path_ = [this] {
    CreateTemplate(folder_ / "YARD.RDB", DatabaseKind::kRecipe);
    return folder_ / "YARD.RDB";
  }();
  SQLite::Database database_ = OpenDatabase(path_, Access::kWrite);
  SQLite::Database other_ = OpenDatabase(path_, Access::kWrite);
  FixedCalendar calendar_;
};

TEST_F(TwoWriters, AResetWaitsForTheOther) {
  EXPECT_TRUE(ResetRecord(database_, RecordKind::kIngredient, 7, calendar_));
  EXPECT_EQ(Text("SELECT Description FROM Recipe WHERE ID = 2"), "Heifers");
}

TEST_F(TwoWriters, AnUpdateOfAllRecipesWaitsForTheOther) {
  NoProgress progress;
  EXPECT_EQ(RecomputeAllRecipes(database_, progress, calendar_), "");
  EXPECT_EQ(Text("SELECT [Ration%] FROM RecipeRation"), "0.000");
  EXPECT_EQ(Text("SELECT Description FROM Recipe WHERE ID = 2"), "Heifers");
  EXPECT_EQ(Text("SELECT Modified FROM History"), "2026-01-05");
}

TEST_F(TwoWriters, AnEditOfARecordWaitsForTheOther) {
  PenRecord pen = ReadPen(database_, 5);
  pen.feed_amount = "7";
  EXPECT_TRUE(StoreRecord(database_, pen, calendar_));
  EXPECT_EQ(Text("SELECT FeedAmount FROM Pen WHERE ID = 5"), "7");
  EXPECT_EQ(Text("SELECT Description FROM Recipe WHERE ID = 2"), "Heifers");
}

class RecipeStep : public ::testing::Test {
 protected:
  Ration ReadRation() {
    return {.recipe = ReadRecipe(database_, 1), .lines = ReadRecipeLines(database_, 1)};
  }

  TempFolder folder_;
  std::filesystem::path path_ = [this] {
    CreateTemplate(folder_ / "YARD.RDB", DatabaseKind::kRecipe);
    return folder_ / "YARD.RDB";
  }();
  SQLite::Database database_ = OpenDatabase(path_, Access::kWrite);
};

TEST_F(RecipeStep, BelongsToTheTransactionAroundIt) {
  const Ration before = ReadRation();
  Ration after = before;
  after.recipe.description = "Steers";
  {
    SQLite::Transaction whole(database_);
    StoreRecipe(database_, before, after, {});
    EXPECT_EQ(ReadRecipe(database_, 1).description, "Steers");
  }
  EXPECT_EQ(ReadRecipe(database_, 1).description, "");
  SQLite::Transaction whole(database_);
  StoreRecipe(database_, before, after, {});
  whole.commit();
  EXPECT_EQ(ReadRecipe(database_, 1).description, "Steers");
}

TEST_F(RecipeStep, ThatFailsLeavesTheTransactionAroundItAsItWas) {
  const Ration before = ReadRation();
  Ration after = before;
  after.recipe.description = "Steers";
  SQLite::Transaction whole(database_);
  database_.exec("UPDATE Pen SET FeedAmount = '5' WHERE ID = 1");
  EXPECT_THROW(StoreRecipe(database_, before, after, [] { throw Error("refused"); }), Error);
  whole.commit();
  EXPECT_EQ(ReadRecipe(database_, 1).description, "");
  EXPECT_EQ(ReadPen(database_, 1).feed_amount, "5");
}

}  // namespace
}  // namespace vrx::testing
