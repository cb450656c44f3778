#include <cerrno>
#include <functional>

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "base/files.h"
#include "support/temp_folder.h"

namespace {

std::function<int()> answer_of_sync;  // an error number, or 0

}  // namespace

// Takes the place of the C library's, for this program alone.
extern "C" int fsync(int file) {
  const int error = answer_of_sync ? answer_of_sync() : 0;
  if (error != 0) {
    errno = error;
    return -1;
  }
  return static_cast<int>(syscall(SYS_fsync, file));
}

namespace vrx::testing {
namespace {

class SyncTest : public ::testing::Test {
 protected:
  SyncTest() { WriteFileBytes(path_, "old"); }
  ~SyncTest() override { answer_of_sync = {}; }

  TempFolder folder_;
  std::filesystem::path path_ = folder_ / "out.xml";
};

TEST_F(SyncTest, TheBytesAreOnDiskBeforeTheyHaveTheirName) {
  int syncs = 0;
  answer_of_sync = [&] {
    ++syncs;
    EXPECT_EQ(ReadAll(path_), "old");
    return 0;
  };
  WriteFileBytes(path_, "new");
  EXPECT_EQ(syncs, 1);
  EXPECT_EQ(ReadAll(path_), "new");
}

TEST_F(SyncTest, BytesThatDoNotGetToTheDiskLeaveTheOldFile) {
  answer_of_sync = [] { return EIO; };
  EXPECT_THROW(WriteFileBytes(path_, "new"), FileError);
  EXPECT_EQ(ReadAll(path_), "old");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.Path()), {}), 1);
}

TEST_F(SyncTest, AFileSystemThatCannotFlushIsNoError) {
  answer_of_sync = [] { return EINVAL; };
  WriteFileBytes(path_, "new");
  EXPECT_EQ(ReadAll(path_), "new");
}

}  // namespace
}  // namespace vrx::testing
