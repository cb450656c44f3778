#include <filesystem>
#include <iterator>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "base/files.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLimit = 1000;

class AtomicFileTest : public ::testing::Test {
 protected:
  long FilesInFolder() const { return std::distance(fs::directory_iterator(folder_.Path()), {}); }

  TempFolder folder_;
  fs::path path_ = folder_.Path() / "out.xml";
};

TEST_F(AtomicFileTest, ReplacesTheFileOnCommitOnly) {
  WriteFileBytes(path_, "old");
  AtomicFile file(path_);
  file.Write("one ");
  file.Write("two");
  EXPECT_EQ(ReadFileBytes(path_, kLimit), "old");
  file.Commit();
  EXPECT_EQ(ReadFileBytes(path_, kLimit), "one two");
  EXPECT_EQ(FilesInFolder(), 1);
}

TEST_F(AtomicFileTest, WithoutCommitLeavesOnlyTheOldFile) {
  WriteFileBytes(path_, "old");
  {
    AtomicFile file(path_);
    file.Write("half");
  }
  EXPECT_EQ(ReadFileBytes(path_, kLimit), "old");
  EXPECT_EQ(FilesInFolder(), 1);
}

TEST_F(AtomicFileTest, NamesTheFileThatCannotBeCreated) {
  const fs::path nowhere = folder_.Path() / "missing" / "out.xml";
  try {
    const AtomicFile file(nowhere);
    FAIL() << "it was made";
  } catch (const FileError& error) {
    EXPECT_EQ(error.what(), "cannot write " + nowhere.string() + ": No such file or directory");
  }
}

TEST_F(AtomicFileTest, RefusesAFolder) {
  fs::create_directory(path_);
  try {
    const AtomicFile file(path_);
    FAIL() << "a folder was taken for a file";
  } catch (const FileError& error) {
    EXPECT_EQ(error.what(), "cannot write " + path_.string() + ": Is a directory");
  }
  EXPECT_TRUE(fs::is_directory(path_));
}

TEST_F(AtomicFileTest, RefusesAPipeEvenThroughALink) {
  const fs::path pipe = folder_.Path() / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), S_IRUSR | S_IWUSR), 0);
  fs::create_symlink(pipe, path_);
  try {
    const AtomicFile file(path_);
    FAIL() << "a pipe was taken for a file";
  } catch (const FileError& error) {
    EXPECT_EQ(error.what(),
              "cannot write " + pipe.string() + ": it is a device or a pipe, not a file");
  }
  EXPECT_TRUE(fs::is_fifo(pipe));
  EXPECT_EQ(FilesInFolder(), 2);
}

}  // namespace
}  // namespace vrx::testing
