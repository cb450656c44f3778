#include "settings/ini_file.h"

#include <random>

#include <gtest/gtest.h>

#include "base/files.h"
#include "support/temp_folder.h"

namespace vrx {
namespace {

using testing::ReadAll;

class PrivateProfile : public ::testing::Test {
 protected:
  std::string Read(std::string_view file, std::string_view section, std::string_view key) const {
    return ReadProfileText(folder.Write("a.ini", file), section, key);
  }

  // Sets "key" of section "S" to "new" and returns the file.
  std::string Written(std::string_view file) const {
    const std::filesystem::path path = folder.Write("a.ini", file);
    WriteProfileText(path, "S", "key", "new");
    return ReadAll(path);
  }

  testing::TempFolder folder;
};

TEST_F(PrivateProfile, ReadsAKeyOfItsSection) {
  const std::string_view file = "[A]\r\nkey=1\r\n[B]\r\nkey=2\r\nother=3\r\n";
  EXPECT_EQ(Read(file, "A", "key"), "1");
  EXPECT_EQ(Read(file, "B", "key"), "2");
  EXPECT_EQ(Read(file, "A", "other"), "");
  EXPECT_EQ(Read(file, "C", "key"), "");
}

TEST_F(PrivateProfile, IgnoresTheCaseOfSectionAndKey) {
  EXPECT_EQ(Read("[Comments]\r\nTITLE=Yes\r\n", "comments", "Title"), "Yes");
}

TEST_F(PrivateProfile, TrimsBlanksAroundNamesAndValues) {
  EXPECT_EQ(Read("  [ S ]  \r\n\t key \t=  two words \t\r\n", "S", "key"), "two words");
}

TEST_F(PrivateProfile, KeepsAnEqualsSignOfTheValue) {
  EXPECT_EQ(Read("[S]\r\nkey=a=b\r\n", "S", "key"), "a=b");
}

TEST_F(PrivateProfile, TakesTheFirstOfTwoSectionsAndKeys) {
  EXPECT_EQ(Read("[S]\r\nkey=1\r\nkey=2\r\n[s]\r\nkey=3\r\nlate=4\r\n", "S", "key"), "1");
  EXPECT_EQ(Read("[S]\r\nkey=1\r\n[s]\r\nlate=4\r\n", "S", "late"), "");
}

TEST_F(PrivateProfile, SkipsCommentsAndLinesWithoutKey) {
  EXPECT_EQ(Read("key=0\r\n[S]\r\n;key=1\r\nkey\r\n=x\r\nkey=2\r\n", "S", "key"), "2");
}

TEST_F(PrivateProfile, ReadsLfLineEndsAndAnUnterminatedLastLine) {
  EXPECT_EQ(Read("[S]\nkey=1\nlast=2", "S", "key"), "1");
  EXPECT_EQ(Read("[S]\nkey=1\nlast=2", "S", "last"), "2");
}

TEST_F(PrivateProfile, SkipsAByteOrderMark) {
  EXPECT_EQ(Read("\xEF\xBB\xBF[S]\r\nkey=1\r\n", "S", "key"), "1");
  EXPECT_EQ(Written("\xEF\xBB\xBF[S]\r\nkey=1\r\n"), "\xEF\xBB\xBF[S]\r\nkey=new\r\n");
}

TEST_F(PrivateProfile, CutsAValueTo1023Bytes) {
  const std::string long_value(1023, 'x');
  EXPECT_EQ(Read("[S]\r\nkey=" + long_value + "\r\n", "S", "key"), long_value);
  EXPECT_EQ(Read("[S]\r\nkey=" + long_value + "yz\r\n", "S", "key"), long_value);
}

TEST_F(PrivateProfile, TakesFilesOfAtMostOneMegabyte) {
  std::string file = "[S]\r\nkey=1\r\n";
  file.resize(1'048'576, ' ');
  EXPECT_EQ(Read(file, "S", "key"), "1");
  EXPECT_EQ(Written(file).substr(0, 14), "[S]\r\nkey=new\r\n");
  file += ' ';
  EXPECT_EQ(Read(file, "S", "key"), "");
  EXPECT_THROW(Written(file), FileError);
  EXPECT_EQ(ReadAll(folder / "a.ini"), file);
}

TEST_F(PrivateProfile, ReadsNothingFromAMissingFileOrAFolder) {
  EXPECT_EQ(ReadProfileText(folder / "none.ini", "S", "key"), "");
  EXPECT_EQ(ReadProfileText(folder.Path(), "S", "key"), "");
}

TEST_F(PrivateProfile, CreatesAFile) {
  WriteProfileText(folder / "new.ini", "S", "key", "1");
  EXPECT_EQ(ReadAll(folder / "new.ini"), "[S]\r\nkey=1\r\n");
}

TEST_F(PrivateProfile, ReplacesAValueAndKeepsEveryOtherByte) {
  EXPECT_EQ(Written("; mine\n\n[Other]\nkey=1\r\n[s]\r\nfirst = 1\r\n KEY = old \r\nlast\r\n\r\n"),
            "; mine\n\n[Other]\nkey=1\r\n[s]\r\nfirst = 1\r\nKEY=new\r\nlast\r\n\r\n");
}

TEST_F(PrivateProfile, AddsAKeyAfterItsSectionsLastLine) {
  EXPECT_EQ(Written("[S]\r\na=1\r\n; about a\r\n\r\n[T]\r\nb=2\r\n"),
            "[S]\r\na=1\r\n; about a\r\nkey=new\r\n\r\n[T]\r\nb=2\r\n");
  EXPECT_EQ(Written("[S]\r\n[T]\r\n"), "[S]\r\nkey=new\r\n[T]\r\n");
}

TEST_F(PrivateProfile, AddsASectionAtTheEnd) {
  EXPECT_EQ(Written("[T]\r\nkey=1\r\n"), "[T]\r\nkey=1\r\n[S]\r\nkey=new\r\n");
  EXPECT_EQ(Written(""), "[S]\r\nkey=new\r\n");
}

TEST_F(PrivateProfile, EndsAnUnterminatedLastLine) {
  EXPECT_EQ(Written("[T]\r\na=1"), "[T]\r\na=1\r\n[S]\r\nkey=new\r\n");
  EXPECT_EQ(Written("[S]\r\na=1"), "[S]\r\na=1\r\nkey=new\r\n");
  EXPECT_EQ(Written("[S]\r\nkey=1"), "[S]\r\nkey=new\r\n");
}

TEST_F(PrivateProfile, WritesAnEmptyValue) {
  const auto path = folder.Write("a.ini", "[S]\r\nkey=1\r\n");
  WriteProfileText(path, "S", "key", "");
  EXPECT_EQ(ReadAll(path), "[S]\r\nkey=\r\n");
  EXPECT_EQ(ReadProfileText(path, "S", "key"), "");
}

TEST_F(PrivateProfile, RefusesAValueThatDoesNotFitOnALine) {
  const auto path = folder.Write("a.ini", "[S]\r\nkey=1\r\n");
  for (const std::string& value : {std::string("a\r\n[T]"), std::string("a\nb"),
                                   std::string(1, '\0'), std::string(1024, 'x')}) {
    EXPECT_THROW(WriteProfileText(path, "S", "key", value), FileError);
  }
  EXPECT_EQ(ReadAll(path), "[S]\r\nkey=1\r\n");
}

TEST_F(PrivateProfile, FailsInAMissingFolderAndLeavesNothing) {
  folder.Write("file", "");
  std::filesystem::create_directory(folder / "folder.ini");
  EXPECT_THROW(WriteProfileText(folder / "file/a.ini", "S", "key", "1"), FileError);
  EXPECT_THROW(WriteProfileText(folder / "none/a.ini", "S", "key", "1"), FileError);
  EXPECT_THROW(WriteProfileText(folder / "folder.ini", "S", "key", "1"), FileError);
  EXPECT_TRUE(std::filesystem::is_empty(folder / "folder.ini"));
}

TEST_F(PrivateProfile, RefusesAFileThatIsTooLarge) {
  const std::string file = "[S]\r\nkey=1\r\n" + std::string(2 << 20, 'x');
  EXPECT_EQ(Read(file, "S", "key"), "");
  EXPECT_THROW(Written(file), FileError);
  EXPECT_EQ(ReadAll(folder / "a.ini"), file);
}

TEST_F(PrivateProfile, ReadsBackWhatItWroteIntoAnyFile) {
  constexpr std::string_view kAlphabet("[]=;\r\n\0 S\xFFkey\xEF\xBB\xBF", 16);
  std::mt19937 random(20260105);
  std::uniform_int_distribution<std::size_t> pick(0, kAlphabet.size() - 1);
  for (int round = 0; round < 400; ++round) {
    std::string file(static_cast<std::size_t>(round % 80), ' ');
    for (char& c : file) {
      c = kAlphabet[pick(random)];
    }
    const std::string written = Written(file);
    EXPECT_EQ(Read(written, "S", "key"), "new") << ::testing::PrintToString(file);
  }
}

}  // namespace
}  // namespace vrx
