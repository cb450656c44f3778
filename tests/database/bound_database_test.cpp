#include "database/bound_database.h"

#include <gtest/gtest.h>

#include "database/connection.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

TEST(BoundDatabaseTest, AUsersFileIsOpenForWritingWithItsUnit) {
  const TempFolder folder;
  const std::filesystem::path path = CopyOfTemplate(folder, "YARD.RDB");
  Alter(path, "UPDATE UnitsOfMeasure SET UoM = 'KG'");
  const BoundDatabase bound = BindUserDatabase(path, kBusyTimeout);
  EXPECT_EQ(bound.path, path);
  EXPECT_EQ(bound.unit, "KG");
  EXPECT_FALSE(bound.blank);
  EXPECT_EQ(bound.read_only_note, "");
  EXPECT_EQ(bound.connection->exec("UPDATE Pen SET FeedAmount = '7'"), 400);
}

TEST(BoundDatabaseTest, AWriteProtectedFileIsOpenForReadingAndSaysWhy) {
  const TempFolder folder;
  const std::filesystem::path path = CopyOfTemplate(folder, "YARD.RDB");
  const WithoutWritePermission protection(folder.Path());
  const BoundDatabase bound = BindUserDatabase(path, kBusyTimeout);
  EXPECT_EQ(bound.read_only_note, "YARD.RDB may not be written: it is write-protected");
  EXPECT_FALSE(bound.blank);
  EXPECT_EQ(bound.connection->execAndGet("SELECT count(*) FROM Pen").getInt(), 400);
}

TEST(BoundDatabaseTest, AnyOtherFailureIsThrown) {
  const TempFolder folder;
  EXPECT_THROW(BindUserDatabase(folder.Write("YARD.RDB", "text"), kBusyTimeout), DatabaseError);
}

TEST(BoundDatabaseTest, ATemplateIsBlankAndCannotBeWritten) {
  for (const DatabaseKind kind : {DatabaseKind::kRecipe, DatabaseKind::kTransaction}) {
    const BoundDatabase file = BindBlankTemplate(TemplatePath(kind), kBusyTimeout);
    const BoundDatabase memory = BindBlankInMemory(kind);
    for (const BoundDatabase* const bound : {&file, &memory}) {
      EXPECT_TRUE(bound->blank);
      EXPECT_THROW(bound->connection->exec("UPDATE UnitsOfMeasure SET UoM = 'KG'"),
                   SQLite::Exception);
    }
    EXPECT_EQ(memory.path, "");
  }
}

}  // namespace
}  // namespace vrx::testing
