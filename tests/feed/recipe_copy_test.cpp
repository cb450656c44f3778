#include "feed/recipe_copy.h"

#include <random>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>
#include <sqlite3.h>

#include "feed/feed_database.h"
#include "feed/ration.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class CopyOfARecipe : public FeedDatabaseTest {
 protected:
  static constexpr int kFrom = 4;
  static constexpr int kTo = 9;

  void UseSteers() {
    UseRecipe(kFrom, "STEERS");
    AddLine(kFrom, 1, {.target = "1200", .dry_matter_percent = "88"});
    AddLine(kFrom, 7, {.target = "800", .dry_matter_percent = "90"});
  }

  RecipeCopy Copy(int from = kFrom, int to = kTo) {
    return CopyRecipe(database, from, to, calendar);
  }

  void ExpectRefused(int from, int to, const std::string& message) {
    const std::string before = ReadAll(path);
    try {
      Copy(from, to);
      ADD_FAILURE() << "recipe " << from << " was copied to " << to;
    } catch (const CopyRefusal& refusal) {
      EXPECT_EQ(refusal.what(), message);
    }
    EXPECT_TRUE(ReadAll(path) == before) << message;
  }

  // Every stored value of the lines with its type, in the order of loading. The number of the
  // recipe is left out.
  std::vector<std::string> StoredLines(int recipe) {
    return Ask(
        "SELECT quote(Sequence) || quote(Ingredient) || quote(Target) || quote([Ration%]) || "
        "quote([DryMatter%]) || quote(DryMatter) || quote(BatchTarget) || quote(HandAdd) || "
        "quote([Ingredient%]) FROM RecipeRation WHERE RecipeID = '" +
        std::to_string(recipe) + "' ORDER BY Sequence, rowid");
  }

  std::vector<std::string> StoredHead(int recipe) {
    return Ask(
        "SELECT quote(Name) || quote(Description) || quote(BatchType) || quote(HeadCount) || "
        "quote(RationTarget) || quote(AdjBatTotIndex) FROM Recipe WHERE ID = " +
        std::to_string(recipe));
  }

  Ration Computed(int recipe, TotalsRow& totals) {
    Ration ration{.recipe = ReadRecipe(database, recipe),
                  .lines = ReadRecipeLines(database, recipe)};
    totals = RecalcRecipe(ration).row;
    for (RecipeLineRecord& line : ration.lines) {
      line.row = 0;
      line.recipe_id = "";
    }
    return ration;
  }
};

TEST_F(CopyOfARecipe, HasAllFieldsOfTheHead) {
  database.exec(
      "UPDATE Recipe SET Name = 'dRYCOW', Description = 'Dry cows, summer', BatchType = 'H', "
      "HeadCount = 240, RationTarget = '11000', AdjBatTotIndex = '15' WHERE ID = 4");
  const RecipeCopy copied = Copy();
  EXPECT_EQ(copied.source.id, kFrom);
  EXPECT_EQ(copied.copy.id, kTo);
  EXPECT_EQ(copied.copy.name, "dRYCOW");
  EXPECT_EQ(copied.line_count, 0);
  EXPECT_THAT(StoredHead(kTo), ElementsAre("'dRYCOW''Dry cows, summer''H'240'11000''15'"));
  EXPECT_EQ(StoredHead(kTo), StoredHead(kFrom));
}

// Also values that the program does not write: gaps and ties of the sequence, a sequence of 64
// bits, NULL, figures that were never computed.
TEST_F(CopyOfARecipe, HasTheLinesAsTheyAreStored) {
  UseSteers();
  Alter(path,
        "INSERT INTO RecipeRation VALUES"
        " ('4', '3', 'x', '1.5', '77', '5', '6', 9000000000, 1, '12.50'),"
        " ('4', '7', NULL, '1.5', '77', '5', NULL, 30, 1, '0'),"
        " ('4', '2', '10', '1.5', '77', '5', '6', 30, -1, '0')");
  EXPECT_EQ(Copy().line_count, 5);
  const std::vector<std::string> lines = StoredLines(kTo);
  EXPECT_THAT(lines, Contains(HasSubstr("9000000000'3''x'")));
  EXPECT_EQ(lines, StoredLines(kFrom));
}

TEST_F(CopyOfARecipe, ComputesTheSameFiguresWithEveryBatchType) {
  std::mt19937 random(20260105);
  FillAtRandom(random);
  database.exec(
      "UPDATE Recipe SET HeadCount = 137, RationTarget = '7351', AdjBatTotIndex = '13'; "
      "UPDATE RecipeRation SET Sequence = 40 - Sequence");
  for (int from = 1; from <= 6; ++from) {
    const int to = from + 10;
    Copy(from, to);
    TotalsRow source_totals;
    TotalsRow copy_totals;
    const Ration source = Computed(from, source_totals);
    const Ration copy = Computed(to, copy_totals);
    EXPECT_EQ(copy.recipe.batch_type, source.recipe.batch_type);
    EXPECT_FALSE(copy.lines.empty());
    EXPECT_EQ(copy.lines, source.lines) << source.recipe.batch_type;
    EXPECT_EQ(copy_totals, source_totals) << source.recipe.batch_type;
  }
}

TEST_F(CopyOfARecipe, ChangesNoOtherRecord) {
  std::mt19937 random(1);
  FillAtRandom(random);
  const auto others = [&] {
    std::vector<std::string> rows =
        Ask("SELECT rowid || quote(RecipeID) || quote(Sequence) || quote(Target) FROM RecipeRation "
            "WHERE RecipeID <> '9' ORDER BY rowid");
    for (int recipe = 1; recipe <= kRecipeCount; ++recipe) {
      if (recipe != kTo) {
        rows.push_back(StoredHead(recipe).at(0));
      }
    }
    return rows;
  };
  const std::vector<std::string> before = others();
  Copy();
  EXPECT_EQ(others(), before);
}

TEST_F(CopyOfARecipe, GetsTheDefaultNameOfItsOwnNumber) {
  AddLine(kFrom, 1);
  EXPECT_EQ(Copy().copy.name, "REC009");
  EXPECT_EQ(ReadRecipe(database, kTo).name, "REC009");
  EXPECT_EQ(ReadRecipe(database, kTo).description, "");
  UseRecipe(kFrom, "REC004");
  Copy(kFrom, 100);
  EXPECT_EQ(ReadRecipe(database, 100).name, "REC100");
  EXPECT_EQ(ReadRecipe(database, 100).description, "REC100");
  // The default name of another number is a name like any other.
  UseRecipe(5, "REC004");
  Copy(5, 20);
  EXPECT_EQ(ReadRecipe(database, 20).name, "REC004");
}

TEST_F(CopyOfARecipe, IsDated) {
  UseSteers();
  Copy();
  EXPECT_THAT(Ask("SELECT Modified FROM History"), ElementsAre("2026-01-05"));
}

TEST_F(CopyOfARecipe, ReplacesWhatAFreeRecordHas) {
  UseSteers();
  database.exec(
      "UPDATE Recipe SET Name = 'OLD', BatchType = 'P', HeadCount = 9, RationTarget = '9', "
      "AdjBatTotIndex = '9' WHERE ID = 9");
  Copy();
  EXPECT_EQ(StoredHead(kTo), StoredHead(kFrom));
}

TEST_F(CopyOfARecipe, IsRefusedForARecordThatIsNotFree) {
  UseSteers();
  database.exec("UPDATE Recipe SET Name = 'HEIFER', Description = 'Heifers' WHERE ID = 9");
  AddLine(10, 1);
  ExpectRefused(kFrom, kTo, "Recipe 9 (HEIFER) is not free: it has a description.");
  ExpectRefused(kFrom, 10, "Recipe 10 (REC010) is not free: it has lines.");
}

TEST_F(CopyOfARecipe, IsRefusedWithoutSomethingToCopy) {
  UseSteers();
  ExpectRefused(5, kTo,
                "Recipe 5 (REC005) cannot be copied: it has neither description nor lines.");
  ExpectRefused(kFrom, kFrom, "Recipe 4 cannot be copied to itself.");
  for (const int id : {0, -1, 101}) {
    const std::string message =
        "There is no recipe " + std::to_string(id) + ", they are numbered 1 to 100.";
    ExpectRefused(id, kTo, message);
    ExpectRefused(kFrom, id, message);
    ExpectRefused(id, id, message);
  }
}

// Another program puts the record in use, and commits when the copy waits for it.
TEST_F(CopyOfARecipe, IsRefusedForARecordThatAnotherProgramHasJustTaken) {
  UseSteers();
  SQLite::Database other = OpenDatabase(path, Access::kWrite);
  other.exec("BEGIN IMMEDIATE; UPDATE Recipe SET Description = 'Heifers' WHERE ID = 9");
  const auto commit_other = [](void* connection, int calls) {
    static_cast<SQLite::Database*>(connection)->exec(calls == 0 ? "COMMIT" : "SELECT 1");
    return calls == 0 ? 1 : 0;
  };
  sqlite3_busy_handler(database.getHandle(), commit_other, &other);
  EXPECT_THROW(Copy(), CopyRefusal);
  EXPECT_THAT(StoredLines(kTo), IsEmpty());
}

class FailedCopyOfARecipe : public CopyOfARecipe {
 protected:
  FailedCopyOfARecipe() {
    UseSteers();
    for (int line = 3; line <= kMaxRecipeLines; ++line) {
      AddLine(kFrom, line, {.batch_target = std::string(300, '1')});
    }
  }

  void ExpectFailure(SQLite::Database& connection, const std::string& cause) {
    const std::string before = ReadAll(path);
    try {
      CopyRecipe(connection, kFrom, kTo, calendar);
      ADD_FAILURE() << "no failure: " << cause;
    } catch (const DatabaseError& error) {
      EXPECT_THAT(error.what(), HasSubstr(cause));
    }
    EXPECT_TRUE(ReadAll(path) == before) << cause;
    EXPECT_EQ(sqlite3_get_autocommit(connection.getHandle()), 1);
  }
};

TEST_F(FailedCopyOfARecipe, StoresNothingOnAFullDisk) {
  database.exec("PRAGMA max_page_count = 1");  // the pages that the file has
  ExpectFailure(database, "full");
}

// The failures occur after the head, after some lines and after all lines.
TEST_F(FailedCopyOfARecipe, StoresNothingAfterAFailureHalfway) {
  for (const std::string event : {"INSERT ON RecipeRation", "UPDATE ON History",
                                  "INSERT ON RecipeRation WHEN NEW.Sequence = 20"}) {
    database.exec("CREATE TRIGGER Fail AFTER " + event +
                  " BEGIN SELECT RAISE(FAIL, 'storage failed'); END");
    ExpectFailure(database, "storage failed");
    database.exec("DROP TRIGGER Fail");
  }
  EXPECT_EQ(Copy().line_count, kMaxRecipeLines);
}

TEST_F(FailedCopyOfARecipe, StoresNothingInAFileThatIsOnlyRead) {
  SQLite::Database read_only = OpenDatabase(path, Access::kRead, kShortTimeout);
  ExpectFailure(read_only, "YARD.RDB");
}

// The file is not read while it is locked: closing it would drop the locks of this process.
TEST_F(FailedCopyOfARecipe, StoresNothingInALockedFile) {
  const std::string before = ReadAll(path);
  {
    const ExclusiveHolder holder(path);
    EXPECT_THROW(Copy(), DatabaseError);
  }
  EXPECT_TRUE(ReadAll(path) == before);
  EXPECT_EQ(Copy().line_count, kMaxRecipeLines);
}

}  // namespace
}  // namespace vrx::testing
