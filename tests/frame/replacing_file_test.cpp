#include "frame/replacing_file.h"

#include <filesystem>
#include <iterator>

#include <gtest/gtest.h>

#include "frame/files.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLimit = 1000;

class ReplacingFileTest : public ::testing::Test {
 protected:
  long FilesInFolder() const { return std::distance(fs::directory_iterator(folder_.Path()), {}); }

  TempFolder folder_;
  fs::path path_ = folder_.Path() / "out.xml";
};

TEST_F(ReplacingFileTest, TakesItsPlaceOnlyOnceItIsWhole) {
  WriteFileBytes(path_, "old");
  ReplacingFile file(path_);
  file.Write("one ");
  file.Write("two");
  EXPECT_EQ(ReadFileBytes(path_, kLimit), "old");
  file.TakePlace();
  EXPECT_EQ(ReadFileBytes(path_, kLimit), "one two");
  EXPECT_EQ(FilesInFolder(), 1);
}

TEST_F(ReplacingFileTest, LeavesTheOldFileAndNothingElseWhenItIsGivenUp) {
  WriteFileBytes(path_, "old");
  {
    ReplacingFile file(path_);
    file.Write("half");
  }
  EXPECT_EQ(ReadFileBytes(path_, kLimit), "old");
  EXPECT_EQ(FilesInFolder(), 1);
}

TEST_F(ReplacingFileTest, NamesTheFileThatCannotBeMade) {
  const fs::path nowhere = folder_.Path() / "missing" / "out.xml";
  try {
    const ReplacingFile file(nowhere);
    FAIL() << "it was made";
  } catch (const FileError& error) {
    EXPECT_EQ(error.what(), "cannot write " + nowhere.string() + ": No such file or directory");
  }
}

}  // namespace
}  // namespace vrx::testing
