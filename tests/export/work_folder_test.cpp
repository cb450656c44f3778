#include "export/work_folder.h"

#include <filesystem>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "base/files.h"
#include "support/environment.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

TEST(WorkFolder, IsOfItsOwnAndClosedToOthers) {
  const WorkFolder one;
  const WorkFolder other;
  EXPECT_NE(one.Path(), other.Path());
  EXPECT_EQ(fs::status(one.Path()).permissions(), fs::perms::owner_all);
  EXPECT_TRUE(fs::equivalent(one.Path().parent_path(), fs::temp_directory_path()));
}

TEST(WorkFolder, IsGoneWithWhatItHolds) {
  std::optional<WorkFolder> work(std::in_place);
  const fs::path path = work->Path();
  WriteFileBytes(path / "group.xml", "<a/>");
  work.reset();
  EXPECT_FALSE(FileExists(path));
}

TEST(WorkFolder, NeedsTheFolderForTemporaryFiles) {
  const TempFolder folder;
  const Environment no_folder("TMPDIR", (folder / "gone").string());
  EXPECT_THROW(WorkFolder{}, FileError);
}

}  // namespace
}  // namespace vrx::testing
