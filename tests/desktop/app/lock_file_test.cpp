#include <filesystem>

#include <gtest/gtest.h>

#include "base/error.h"
#include "desktop/app/program.h"
#include "support/environment.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

class Lock : public ::testing::Test {
 protected:
  Lock() { fs::permissions(folder.Path(), fs::perms::owner_all); }

  TempFolder folder;
  Environment runtime{"XDG_RUNTIME_DIR", folder.Path().string()};
};

TEST_F(Lock, IsOneInstances) {
  LockFile first;
  LockFile second;
  EXPECT_TRUE(first.Claim());
  EXPECT_FALSE(second.Claim());
}

TEST_F(Lock, GoesWithItsInstance) {
  {
    LockFile first;
    EXPECT_TRUE(first.Claim());
  }
  LockFile second;
  EXPECT_TRUE(second.Claim());
}

TEST_F(Lock, IsInTheUsersFolderOfRunningPrograms) {
  LockFile lock;
  EXPECT_TRUE(lock.Claim());
  EXPECT_TRUE(fs::exists(folder / "vrx2260.lock"));
}

TEST_F(Lock, FolderThatCannotBeWrittenIsAnError) {
  EXPECT_THROW(LockFile(QStringLiteral("/none/at/all")).Claim(), Error);
  EXPECT_THROW(LockFile(QString()).Claim(), Error);
}

}  // namespace
}  // namespace vrx::testing
