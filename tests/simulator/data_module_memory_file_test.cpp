#include <filesystem>
#include <string>
#include <system_error>

#include <gtest/gtest.h>
#include <unistd.h>

#include "simulator/data_module.h"
#include "support/temp_folder.h"

namespace vrx::simulator {
namespace {

namespace fs = std::filesystem;

using ::vrx::testing::TempFolder;

std::size_t FilesIn(const fs::path& folder) {
  return static_cast<std::size_t>(
      std::distance(fs::directory_iterator(folder), fs::directory_iterator{}));
}

TEST(MemoryFile, ReadsBackWhatWasWritten) {
  const TempFolder folder;
  std::string bytes("\0\r\n\x1F\xFF", 5);
  bytes += std::string(200'000, 'x');
  WriteFile(folder / "memory", bytes);
  EXPECT_EQ(ReadFile(folder / "memory"), bytes);
}

TEST(MemoryFile, ReplacesAnOlderOneAndLeavesNothingBeside) {
  const TempFolder folder;
  folder.Write("memory", "a much longer older memory");
  WriteFile(folder / "memory", "new");
  EXPECT_EQ(ReadFile(folder / "memory"), "new");
  EXPECT_EQ(FilesIn(folder.Path()), 1U);
}

// A killed process may have had the same number.
TEST(MemoryFile, WritesAnewWhatAKilledOneLeftBeside) {
  const TempFolder folder;
  folder.Write("memory." + std::to_string(getpid()) + ".tmp", "a much longer older memory");
  WriteFile(folder / "memory", "new");
  EXPECT_EQ(ReadFile(folder / "memory"), "new");
  EXPECT_EQ(FilesIn(folder.Path()), 1U);
}

TEST(MemoryFile, LeavesNothingBesideWhenItFails) {
  const TempFolder folder;
  fs::create_directory(folder / "memory");
  EXPECT_THROW(WriteFile(folder / "memory", "new"), std::system_error);
  EXPECT_EQ(FilesIn(folder.Path()), 1U);
}

TEST(MemoryFile, NamesTheFileThatCannotBeRead) {
  const TempFolder folder;
  try {
    ReadFile(folder / "missing");
    FAIL() << "read a missing file";
  } catch (const std::system_error& error) {
    EXPECT_NE(std::string(error.what()).find((folder / "missing").string()), std::string::npos);
  }
  EXPECT_THROW(ReadFile(folder.Path()), std::system_error) << "a folder is no file";
}

}  // namespace
}  // namespace vrx::simulator
