#include "database/keep_database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/connection.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

// Text of the refusal; empty if the file may be replaced.
std::string RefusalOf(const fs::path& path) {
  try {
    KeepDatabase(path);
    return {};
  } catch (const DatabaseInTheWay& refusal) {
    return refusal.what();
  }
}

class KeepDatabaseTest : public ::testing::Test {
 protected:
  TempFolder folder_;
};

TEST_F(KeepDatabaseTest, ADatabaseIsProtectedUnderAnyName) {
  for (const auto& [name, kind] : {std::pair{"YARD.RDB", DatabaseKind::kRecipe},
                                   {"YARD.TDB", DatabaseKind::kTransaction},
                                   {"report.pdf", DatabaseKind::kTransaction}}) {
    const fs::path database = CopyOfTemplate(folder_, name, kind);
    EXPECT_EQ(RefusalOf(database),
              database.string() + " is a database and is not replaced. Choose another name.");
  }
}

TEST_F(KeepDatabaseTest, ADatabaseIsProtectedThroughEveryKindOfLink) {
  const fs::path database = CopyOfTemplate(folder_, "YARD.RDB");
  fs::create_symlink(database, folder_ / "soft.pdf");
  fs::create_symlink("soft.pdf", folder_ / "softer.pdf");
  fs::create_hard_link(database, folder_ / "hard.pdf");
  fs::create_directory_symlink(folder_.Path(), folder_ / "here");
  for (const char* const link : {"soft.pdf", "softer.pdf", "hard.pdf", "here/YARD.RDB"}) {
    EXPECT_THAT(RefusalOf(folder_ / link), HasSubstr("is a database")) << link;
  }
}

TEST_F(KeepDatabaseTest, ALegacyDatabaseAndAJournalAreProtected) {
  using namespace std::string_literals;
  EXPECT_NE(RefusalOf(folder_.Write("OLD", "\0\1\0\0Standard Jet DB\0and more"s)), "");
  EXPECT_NE(RefusalOf(folder_.Write("a-journal", "\xD9\xD5\x05\xF9\x20\xA1\x63\xD7 pages"s)), "");
  EXPECT_NE(RefusalOf(folder_.Write("a-wal", "\x37\x7F\x06\x82 frames"s)), "");
}

TEST_F(KeepDatabaseTest, AnEmptyOrDamagedFileIsProtectedByItsName) {
  for (const char* const name : {"EMPTY.RDB", "empty.tdb"}) {
    EXPECT_THAT(RefusalOf(folder_.Write(name, "")), HasSubstr("has the name of a database"));
  }
  fs::create_symlink(folder_ / "EMPTY.RDB", folder_ / "report.pdf");
  EXPECT_NE(RefusalOf(folder_ / "report.pdf"), "");
}

TEST_F(KeepDatabaseTest, AnythingElseMayBeReplaced) {
  for (const auto& [name, bytes] :
       {std::pair{"report.pdf", "%PDF-1.4"}, {"notes.txt", "SQLite format"}, {"empty.csv", ""}}) {
    EXPECT_EQ(RefusalOf(folder_.Write(name, bytes)), "") << name;
  }
  EXPECT_EQ(RefusalOf(folder_ / "NEW.RDB"), "");
  EXPECT_EQ(RefusalOf(folder_.Path()), "");
  EXPECT_EQ(RefusalOf("/dev/null"), "");
}

// Closing a second handle of the file would drop the lock of the first.
TEST_F(KeepDatabaseTest, ALockOfThisProcessStays) {
  const fs::path database = CopyOfTemplate(folder_, "YARD.RDB");
  fs::permissions(database, fs::perms::owner_write, fs::perm_options::add);
  SQLite::Database holder = OpenDatabase(database, Access::kWrite);
  holder.exec("BEGIN IMMEDIATE");
  EXPECT_NE(RefusalOf(database), "");
  const std::string statement =
      "sqlite3 '" + database.string() + "' 'BEGIN IMMEDIATE' >/dev/null 2>&1";
  EXPECT_NE(std::system(statement.c_str()), 0);  // NOLINT(concurrency-mt-unsafe): one thread
  holder.exec("ROLLBACK");
  EXPECT_EQ(std::system(statement.c_str()), 0);  // NOLINT(concurrency-mt-unsafe): one thread
}

}  // namespace
}  // namespace vrx::testing
