#include <SQLiteCpp/Transaction.h>
#include <gmock/gmock.h>

#include "base/error.h"
#include "database/connection.h"
#include "feed/feed_database.h"
#include "feed/record_commit.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;

class RecordStore : public FeedDatabaseTest {
 protected:
  std::vector<std::string> Modified() { return Ask("SELECT ifnull(Modified, '') FROM History"); }
  bool Store(IngredientRecord& record) { return StoreRecord(database, record, "W", calendar); }
};

TEST_F(RecordStore, AChangedRecordIsWrittenAndDatesTheFile) {
  IngredientRecord corn{.id = 5, .name = "CORN", .description = "Corn", .dry_matter_percent = 88};
  EXPECT_TRUE(Store(corn));
  EXPECT_EQ(ReadIngredient(database, 5).name, "CORN");
  EXPECT_THAT(Modified(), ElementsAre("2026-01-05"));
  PenRecord pen{.id = 120, .name = "A01", .feed_amount = "500"};
  EXPECT_TRUE(StoreRecord(database, pen, calendar));
  EXPECT_EQ(pen.description, "A01");
  EXPECT_EQ(ReadPen(database, 120).description, "A01");
}

TEST_F(RecordStore, AnUnchangedRecordIsNotWritten) {
  IngredientRecord corn = ReadIngredient(database, 5);
  PenRecord pen = ReadPen(database, 5);
  EXPECT_FALSE(Store(corn));
  EXPECT_FALSE(StoreRecord(database, pen, calendar));
  EXPECT_THAT(Modified(), ElementsAre(""));
}

TEST_F(RecordStore, EachFieldIsAChange) {
  IngredientRecord corn = ReadIngredient(database, 5);
  corn.hand_add = true;
  EXPECT_TRUE(Store(corn));
  corn.dry_matter_percent = 0;
  EXPECT_TRUE(Store(corn));
  corn.description = "Corn";
  EXPECT_TRUE(Store(corn));
  corn.name = "CORN";
  EXPECT_TRUE(Store(corn));
  EXPECT_FALSE(Store(corn));
  PenRecord pen = ReadPen(database, 5);
  pen.feed_amount = "1";
  EXPECT_TRUE(StoreRecord(database, pen, calendar));
  EXPECT_FALSE(StoreRecord(database, pen, calendar));
}

// Lines written by another program are updated with their ingredient at its next commit.
TEST_F(RecordStore, AnUnchangedRecordStillReachesItsLines) {
  UseRecipe(3, "STEERS");
  AddLine(3, 5, {.target = "880", .dry_matter_percent = "50", .hand_add = true});
  IngredientRecord corn = ReadIngredient(database, 5);
  EXPECT_TRUE(Store(corn));
  const RecipeLineRecord line = ReadRecipeLines(database, 3).at(0);
  EXPECT_EQ(line.dry_matter_percent, "100");
  EXPECT_EQ(line.dry_matter, "880");
  EXPECT_FALSE(line.hand_add);
  EXPECT_THAT(Modified(), ElementsAre("2026-01-05"));
}

TEST_F(RecordStore, ARecordThatCannotBeComputedChangesNothing) {
  UseRecipe(3, "STEERS");
  AddLine(3, 5, {.target = "999999999", .dry_matter_percent = "100"});
  IngredientRecord corn{.id = 5, .name = "CORN", .dry_matter_percent = 1};
  EXPECT_THROW(Store(corn), Error);
  EXPECT_EQ(corn.description, "");
  EXPECT_EQ(ReadIngredient(database, 5).name, "ING005");
  EXPECT_THAT(Modified(), ElementsAre(""));
}

TEST_F(RecordStore, ALockedFileThrowsAndStaysAsItWas) {
  SQLite::Database other = OpenDatabase(path, Access::kWrite, kShortTimeout);
  const SQLite::Transaction lock(other, SQLite::TransactionBehavior::EXCLUSIVE);
  PenRecord pen{.id = 7, .name = "A01"};
  EXPECT_THROW(StoreRecord(database, pen, calendar), DatabaseError);
  EXPECT_EQ(pen.description, "");
}

TEST_F(RecordStore, AReadOnlyFileIsNotWritten) {
  SQLite::Database reading = OpenDatabase(path, Access::kRead, kShortTimeout);
  PenRecord pen{.id = 7, .name = "A01"};
  EXPECT_THROW(StoreRecord(reading, pen, calendar), DatabaseError);
  EXPECT_EQ(ReadPen(database, 7).name, "PEN007");
}

}  // namespace
}  // namespace vrx::testing
