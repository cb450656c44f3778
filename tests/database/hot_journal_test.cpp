// Opening a database after a program was killed while writing it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "database/connection.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

// Leaves a half-written file with its journal: the child writes more than its cache holds and dies
// without a rollback.
void DieWhileWriting(const fs::path& path) {
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    SQLite::Database database(path, SQLite::OPEN_READWRITE);
    database.exec("PRAGMA cache_size=1");
    database.exec("BEGIN");
    database.exec("UPDATE Pen SET Description = hex(randomblob(500))");
    database.exec("UPDATE Recipe SET Description = hex(randomblob(500))");
    _exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_EQ(status, 0);
}

class HotJournal : public ::testing::TestWithParam<Access> {
 protected:
  void SetUp() override {
    DieWhileWriting(path_);
    ASSERT_NE(ReadAll(path_), whole_);
    ASSERT_THAT(FileNames(folder_.Path()), ElementsAre("YARD.RDB", "YARD.RDB-journal"));
  }

  TempFolder folder_;
  fs::path path_ = CopyOfTemplate(folder_, "YARD.RDB");
  std::string whole_ = ReadAll(path_);
};

TEST_P(HotJournal, IsRolledBackByOpening) {
  OpenDatabase(path_, GetParam());
  EXPECT_EQ(ReadAll(path_), whole_);
  EXPECT_THAT(FileNames(folder_.Path()), ElementsAre("YARD.RDB"));
}

INSTANTIATE_TEST_SUITE_P(BothWays, HotJournal, ::testing::Values(Access::kRead, Access::kWrite),
                         [](const auto& way) {
                           return way.param == Access::kRead ? "Reading" : "Writing";
                         });

}  // namespace
}  // namespace vrx::testing
