#include "base/files.h"

#include <iterator>

#include <gmock/gmock.h>

#include "support/temp_folder.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using testing::ReadAll;
using testing::TempFolder;

constexpr std::size_t kNoLimit = std::string::npos;

std::ptrdiff_t EntriesOf(const fs::path& folder) {
  return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

template <typename Action>
std::string FailureOf(Action action) {
  try {
    action();
  } catch (const FileError& failure) {
    return failure.what();
  }
  return "no failure";
}

TEST(FileExists, FindsFilesHiddenFilesAndFolders) {
  const TempFolder folder;
  EXPECT_TRUE(FileExists(folder.Write("A.RDB", "")));
  EXPECT_TRUE(FileExists(folder.Write(".hidden", "")));
  EXPECT_TRUE(FileExists(folder.Path()));
}

TEST(FileExists, IsFalseForAMissingPath) {
  const TempFolder folder;
  EXPECT_FALSE(FileExists(folder / "A.RDB"));
  EXPECT_FALSE(FileExists(folder.Write("file", "") / "below"));
  EXPECT_FALSE(FileExists(""));
}

TEST(CopyFileNoOverwrite, CopiesEveryByte) {
  const TempFolder folder;
  const std::string bytes("\0\r\n\xFF", 4);
  EXPECT_TRUE(CopyFileNoOverwrite(folder.Write("a", bytes), folder / "b"));
  EXPECT_EQ(ReadAll(folder / "b"), bytes);
  EXPECT_EQ(ReadAll(folder / "a"), bytes);
}

TEST(CopyFileNoOverwrite, RefusesAnExistingDestinationAndLeavesIt) {
  const TempFolder folder;
  folder.Write("b", "old");
  EXPECT_FALSE(CopyFileNoOverwrite(folder.Write("a", "new"), folder / "b"));
  EXPECT_EQ(ReadAll(folder / "b"), "old");
}

TEST(CopyFileNoOverwrite, RefusesAMissingSourceOrFolderAndCreatesNothing) {
  const TempFolder folder;
  EXPECT_FALSE(CopyFileNoOverwrite(folder / "none", folder / "b"));
  EXPECT_FALSE(FileExists(folder / "b"));
  EXPECT_FALSE(CopyFileNoOverwrite(folder.Write("a", "x"), folder / "none/b"));
  EXPECT_FALSE(CopyFileNoOverwrite(folder.Path(), folder / "b"));
  EXPECT_EQ(EntriesOf(folder.Path()), 1);
}

TEST(CopyFileNoOverwrite, CopyOfAReadOnlyTemplateIsWritable) {
  const TempFolder folder;
  fs::permissions(folder.Write("a", "x"), fs::perms::owner_read);
  ASSERT_TRUE(CopyFileNoOverwrite(folder / "a", folder / "b"));
  EXPECT_NE(fs::status(folder / "b").permissions() & fs::perms::owner_write, fs::perms::none);
}

TEST(ReadFileBytes, ReadsWholeFiles) {
  const TempFolder folder;
  std::string bytes(200'000, 'x');
  bytes[70'000] = '\0';
  EXPECT_EQ(ReadFileBytes(folder.Write("long", bytes), kNoLimit), bytes);
  EXPECT_EQ(ReadFileBytes(folder.Write("empty", ""), 10), "");
}

TEST(ReadFileBytes, ReturnsOneByteMoreThanTheLimitOfALongerFile) {
  const TempFolder folder;
  const fs::path path = folder.Write("a", "123456");
  EXPECT_EQ(ReadFileBytes(path, 7), "123456");
  EXPECT_EQ(ReadFileBytes(path, 6), "123456");
  EXPECT_EQ(ReadFileBytes(path, 5), "123456");
  EXPECT_EQ(ReadFileBytes(path, 4), "12345");
  EXPECT_EQ(ReadFileBytes(path, 0), "1");
}

TEST(ReadFileBytes, NamesTheFileAndTheReason) {
  const TempFolder folder;
  const std::string failure =
      FailureOf([&] { static_cast<void>(ReadFileBytes(folder / "none", 10)); });
  EXPECT_THAT(failure, HasSubstr((folder / "none").string()));
  EXPECT_THAT(failure, HasSubstr("No such file"));
}

TEST(ReadFileBytes, RefusesAFolder) {
  const TempFolder folder;
  EXPECT_THAT(FailureOf([&] { static_cast<void>(ReadFileBytes(folder.Path(), 10)); }),
              HasSubstr("directory"));
}

TEST(WriteFileBytes, CreatesAndReplacesAFileAndLeavesNoOtherFile) {
  const TempFolder folder;
  WriteFileBytes(folder / "a", "first");
  EXPECT_EQ(ReadAll(folder / "a"), "first");
  WriteFileBytes(folder / "a", std::string("\0\n", 2));
  EXPECT_EQ(ReadAll(folder / "a"), std::string("\0\n", 2));
  EXPECT_EQ(EntriesOf(folder.Path()), 1);
}

TEST(WriteFileBytes, KeepsThePermissionsOfTheOldFile) {
  const TempFolder folder;
  const fs::perms perms = fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read;
  fs::permissions(folder.Write("a", "x"), perms);
  WriteFileBytes(folder / "a", "y");
  EXPECT_EQ(fs::status(folder / "a").permissions(), perms);
}

TEST(WriteFileBytes, ReplacesWhatALinkPointsTo) {
  const TempFolder folder;
  folder.Write("a", "x");
  fs::create_symlink("a", folder / "link");
  WriteFileBytes(folder / "link", "y");
  EXPECT_TRUE(fs::is_symlink(folder / "link"));
  EXPECT_EQ(ReadAll(folder / "a"), "y");
}

TEST(WriteFileBytes, NamesAMissingFolder) {
  const TempFolder folder;
  const std::string failure = FailureOf([&] { WriteFileBytes(folder / "none/a", "x"); });
  EXPECT_THAT(failure, HasSubstr((folder / "none/a").string()));
  EXPECT_THAT(failure, HasSubstr("No such file"));
}

TEST(WriteFileBytes, RefusesToReplaceAFolderAndLeavesNoOtherFile) {
  const TempFolder folder;
  fs::create_directory(folder / "a");
  EXPECT_THAT(FailureOf([&] { WriteFileBytes(folder / "a", "x"); }), HasSubstr("directory"));
  EXPECT_EQ(EntriesOf(folder.Path()), 1);
}

TEST(FileTitle, IsTheNameInUpperCase) {
  EXPECT_EQ(FileTitle("/data/feedlot.rdb"), "FEEDLOT.RDB");
  EXPECT_EQ(FileTitle("lot.v2.tdb"), "LOT.V2.TDB");
  EXPECT_EQ(FileTitle("/data/fütterung.rdb"), "FÜTTERUNG.RDB");
  EXPECT_EQ(FileTitle(""), "");
}

TEST(NewFile, TakesItsNameWhenItIsWhole) {
  const TempFolder folder;
  {
    NewFile file(folder / "NEW.TDB");
    WriteFileBytes(file.Path(), "whole");
    EXPECT_EQ(file.Path().parent_path(), folder.Path());
    EXPECT_FALSE(FileExists(folder / "NEW.TDB"));
    file.TakeName();
  }
  EXPECT_EQ(ReadAll(folder / "NEW.TDB"), "whole");
  EXPECT_EQ(EntriesOf(folder.Path()), 1);
}

TEST(NewFile, DisappearsWithItsJournalWithoutAName) {
  const TempFolder folder;
  {
    const NewFile file(folder / "NEW.TDB");
    WriteFileBytes(file.Path(), "part");
    WriteFileBytes(file.Path().string() + "-journal", "part");
  }
  EXPECT_EQ(EntriesOf(folder.Path()), 0);
}

TEST(NewFile, NeverReplacesAFile) {
  const TempFolder folder;
  NewFile file(folder / "NEW.TDB");
  WriteFileBytes(file.Path(), "new");
  folder.Write("NEW.TDB", "other");
  EXPECT_THAT(FailureOf([&] { file.TakeName(); }), HasSubstr("already exists"));
  EXPECT_THAT(FailureOf([&] { NewFile second(folder / "NEW.TDB"); }), HasSubstr("already exists"));
  EXPECT_EQ(ReadAll(folder / "NEW.TDB"), "other");
}

}  // namespace
}  // namespace vrx
