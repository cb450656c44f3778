#include "database/copy_database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/files.h"
#include "database/connection.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

constexpr std::chrono::milliseconds kNoWait{0};

class CopyDatabaseFileTest : public ::testing::Test {
 protected:
  CopyDatabaseFileTest() {
    fs::permissions(source_, fs::perms::owner_write, fs::perm_options::add);
  }

  TempFolder folder_;
  fs::path source_ = CopyOfTemplate(folder_, "A.RDB");
  fs::path target_ = folder_ / "B.RDB";
};

TEST_F(CopyDatabaseFileTest, CopiesByteForByteAndLeavesNothingElse) {
  CopyDatabaseFile(source_, target_, kNoWait);
  EXPECT_EQ(ReadAll(target_), ReadAll(source_));
  EXPECT_THAT(FileNames(folder_.Path()), ElementsAre("A.RDB", "B.RDB"));
}

TEST_F(CopyDatabaseFileTest, OverwritesAFileOfThatName) {
  folder_.Write("B.RDB", "another file");
  CopyDatabaseFile(source_, target_, kNoWait);
  EXPECT_EQ(ReadAll(target_), ReadAll(source_));
}

TEST_F(CopyDatabaseFileTest, CopiesAFileThatIsNotADatabaseByteForByte) {
  const std::string bytes(200000, 'x');
  CopyDatabaseFile(folder_.Write("T.TXT", bytes), target_, kNoWait);
  EXPECT_EQ(ReadAll(target_), bytes);
}

TEST_F(CopyDatabaseFileTest, CopiesAnEmptyFile) {
  CopyDatabaseFile(folder_.Write("EMPTY", ""), target_, kNoWait);
  EXPECT_EQ(ReadAll(target_), "");
}

TEST_F(CopyDatabaseFileTest, AMissingSourceLeavesTheTarget) {
  folder_.Write("B.RDB", "another file");
  EXPECT_THROW(CopyDatabaseFile(folder_ / "NONE.RDB", target_, kNoWait), FileError);
  EXPECT_THROW(CopyDatabaseFile({}, target_, kNoWait), FileError);
  EXPECT_THROW(CopyDatabaseFile(folder_.Path(), target_, kNoWait), FileError);
  EXPECT_EQ(ReadAll(target_), "another file");
  EXPECT_THAT(FileNames(folder_.Path()), ElementsAre("A.RDB", "B.RDB"));
}

TEST_F(CopyDatabaseFileTest, RefusesASourceThatAnotherProgramWrites) {
  const ExclusiveHolder holder(source_);
  EXPECT_THROW(CopyDatabaseFile(source_, target_, kNoWait), DatabaseError);
  EXPECT_FALSE(fs::exists(target_));
}

TEST_F(CopyDatabaseFileTest, RefusesATargetThatAnotherProgramWrites) {
  fs::copy_file(source_, target_);
  const ExclusiveHolder holder(target_);
  EXPECT_THROW(CopyDatabaseFile(source_, target_, kNoWait), DatabaseError);
}

TEST_F(CopyDatabaseFileTest, AJournalOfTheOldTargetIsNotAppliedToTheCopy) {
  folder_.Write("B.RDB", "a database of another program");
  folder_.Write("B.RDB-journal", "its journal");
  CopyDatabaseFile(source_, target_, kNoWait);
  EXPECT_THAT(FileNames(folder_.Path()), ElementsAre("A.RDB", "B.RDB"));
}

}  // namespace
}  // namespace vrx::testing
