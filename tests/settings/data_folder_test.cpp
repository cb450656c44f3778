#include "settings/data_folder.h"

#include <gmock/gmock.h>

#include "base/files.h"
#include "support/fixed_system_info.h"
#include "support/recording_operator.h"
#include "support/temp_folder.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;
using testing::FixedSystemInfo;
using ::testing::HasSubstr;
using testing::ReadAll;
using testing::RecordingOperator;
using testing::TempFolder;

class FolderTest : public ::testing::Test {
 protected:
  FolderTest() {
    system.common_app_data_folder = temp.Path();
    system.program_directory = temp.Path();
  }

  TempFolder temp;
  FixedSystemInfo system;
};

TEST_F(FolderTest, FirstStartCreatesBothFoldersAndSetsThePaths) {
  Folder folder(system);
  EXPECT_TRUE(folder.CheckAppDefaultDir());
  EXPECT_EQ(folder.DefaultAppPath(), temp / "Brantock/VRX-2260");
  EXPECT_EQ(folder.IniFilePath(), temp / "Brantock/VRX-2260/VRX-2260.INI");
  EXPECT_TRUE(fs::is_directory(folder.DefaultAppPath()));
  EXPECT_TRUE(fs::is_empty(folder.DefaultAppPath()));
}

TEST_F(FolderTest, SecondStartChangesNoFolder) {
  ASSERT_TRUE(Folder(system).CheckAppDefaultDir());
  const fs::path file = temp.Write("Brantock/VRX-2260/LOT.RDB", "records");
  const auto maker_time = fs::last_write_time(temp / "Brantock");
  const auto product_time = fs::last_write_time(temp / "Brantock/VRX-2260");
  EXPECT_TRUE(Folder(system).CheckAppDefaultDir());
  EXPECT_EQ(fs::last_write_time(temp / "Brantock"), maker_time);
  EXPECT_EQ(fs::last_write_time(temp / "Brantock/VRX-2260"), product_time);
  EXPECT_EQ(ReadAll(file), "records");
}

TEST_F(FolderTest, CreatesTheProductFolderInAnExistingMakerFolder) {
  fs::create_directory(temp / "Brantock");
  EXPECT_TRUE(Folder(system).CheckAppDefaultDir());
  EXPECT_TRUE(fs::is_directory(temp / "Brantock/VRX-2260"));
}

TEST_F(FolderTest, AMissingCommonFolderThrows) {
  system.common_app_data_folder = temp / "none";
  Folder folder(system);
  EXPECT_THROW(folder.CheckAppDefaultDir(), FileError);
  EXPECT_FALSE(FileExists(temp / "none"));
}

TEST_F(FolderTest, AFileInPlaceOfTheFolderThrowsAndIsNamed) {
  temp.Write("Brantock", "");
  Folder folder(system);
  try {
    folder.CheckAppDefaultDir();
    FAIL() << "no failure";
  } catch (const FileError& failure) {
    EXPECT_THAT(failure.what(), HasSubstr((temp / "Brantock").string()));
  }
}

TEST_F(FolderTest, CommonPathIsCutAtTheFirstNull) {
  system.common_app_data_folder = std::string("/data\0rest", 10);
  EXPECT_EQ(Folder(system).GetCommonAPPPath(), "/data");
}

TEST_F(FolderTest, CommonPathIs260NullsIfThePlatformHasNone) {
  system.common_app_data_folder.clear();
  EXPECT_EQ(Folder(system).GetCommonAPPPath(), std::string(260, '\0'));
  Folder folder(system);
  EXPECT_THROW(folder.CheckAppDefaultDir(), FileError);
}

TEST_F(FolderTest, AnUnknownCommonFolderIsReportedAsSuch) {
  system.common_app_data_folder.clear();
  Folder folder(system);
  try {
    folder.CheckAppDefaultDir();
    ADD_FAILURE() << "an unknown folder was accepted";
  } catch (const FileError& failure) {
    EXPECT_STREQ(failure.what(), "the common application data folder is unknown");
  }
}

TEST_F(FolderTest, CheckPathAndCreateIsAlwaysTrue) {
  EXPECT_TRUE(Folder::CheckPathAndCreate(temp / "a"));
  EXPECT_TRUE(fs::is_directory(temp / "a"));
  EXPECT_TRUE(Folder::CheckPathAndCreate(temp / "a"));
}

TEST_F(FolderTest, CreateDirectoryReturnsWhetherTheFolderExisted) {
  EXPECT_FALSE(Folder::CreateDirectory(temp / "a"));
  EXPECT_TRUE(fs::is_directory(temp / "a"));
  EXPECT_TRUE(Folder::CreateDirectory(temp / "a"));
}

TEST_F(FolderTest, CopyFileGives0WithoutASource) {
  EXPECT_EQ(Folder::CopyFile(temp / "none", temp.Path()), 0);
  EXPECT_EQ(Folder::CopyFile(temp / "none", temp / "none"), 0);
}

TEST_F(FolderTest, CopyFileGives1WithoutADestinationFolderAndCopiesNothing) {
  EXPECT_EQ(Folder::CopyFile(temp.Write("a", "x"), temp / "none"), 1);
  EXPECT_FALSE(FileExists(temp / "none"));
}

TEST_F(FolderTest, CopyFileGives3AndOverwrites) {
  fs::create_directory(temp / "to");
  temp.Write("to/a", "old");
  EXPECT_EQ(Folder::CopyFile(temp.Write("a", "new"), temp / "to"), 3);
  EXPECT_EQ(ReadAll(temp / "to/a"), "new");
}

TEST_F(FolderTest, AFailedCopyThrows) {
  fs::create_directories(temp / "to/a");
  EXPECT_THROW(static_cast<void>(Folder::CopyFile(temp.Write("a", "new"), temp / "to")), FileError);
}

class SupportFiles : public FolderTest {
 protected:
  bool Check() { return CheckSupportFiles(system, op); }

  // Text of the message with these names, each on its own line.
  static std::string MissingText(const std::string& names) {
    return "The following VRX-2260 support files are missing from the applications installation "
           "directory:\r\n\r\n" +
           names +
           "\r\nPlease run the VRX-2260 installation program and follow instructions to "
           "'Reinstall Support Files'.\r\n\r\nThis program will now terminate.";
  }

  RecordingOperator op;
};

TEST_F(SupportFiles, BothPresentShowsNoMessage) {
  temp.Write("QXNULRDB.MDB", "");
  temp.Write("QXNULXDB.MDB", "");
  EXPECT_TRUE(Check());
  EXPECT_TRUE(op.boxes.empty());
  EXPECT_EQ(op.beeps, 0);
}

TEST_F(SupportFiles, OneMissingIsNamedAlone) {
  temp.Write("QXNULRDB.MDB", "");
  EXPECT_FALSE(Check());
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].title, "Missing Files");
  EXPECT_EQ(op.boxes[0].icon, Icon::kCritical);
  EXPECT_EQ(op.boxes[0].text, MissingText("QXNULXDB.MDB\r\n"));
  EXPECT_EQ(op.beeps, 1);
}

TEST_F(SupportFiles, BothMissingAreNamedEachOnItsOwnLine) {
  EXPECT_FALSE(Check());
  ASSERT_EQ(op.boxes.size(), 1U);
  EXPECT_EQ(op.boxes[0].text, MissingText("QXNULRDB.MDB\r\nQXNULXDB.MDB\r\n"));
}

}  // namespace
}  // namespace vrx
