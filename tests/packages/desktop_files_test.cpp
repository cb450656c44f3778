#include <QMimeDatabase>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <gmock/gmock.h>

#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

// A desktop that knows the kinds of files of the package and the common ones.
class FileKinds : public ::testing::Test {
 protected:
  FileKinds() {
    fs::create_directories(folder_ / "mime/packages");
    fs::copy(fs::path(VRX_SOURCE_DIR) / "packaging/vrx2260-mime.xml",
             folder_ / "mime/packages/vrx2260.xml");
    // If both match at the same offset, the one with higher priority applies.
    fs::copy("/usr/share/mime/packages/freedesktop.org.xml", folder_ / "mime/packages");
    for (const char* const variable : {"XDG_DATA_HOME", "XDG_DATA_DIRS"}) {
      qputenv(variable, folder_.Path().string().c_str());
    }
  }

  static std::string Kind(const fs::path& file) {
    return QMimeDatabase()
        .mimeTypeForFile(QString::fromStdString(file.string()))
        .name()
        .toStdString();
  }

  fs::path File(const std::string& name, const std::string& bytes) {
    return folder_.Write(name, bytes);
  }

  fs::path SampleSite(const std::string& name) {
    fs::copy(fs::path(VRX_BIN_DIR) / "sample_site/SITE.RDB", folder_ / name);
    return folder_ / name;
  }

  TempFolder folder_;
};

TEST_F(FileKinds, AreDetectedByTheirExtensionsInEitherCase) {
  for (const bool lower : {false, true}) {
    const auto name = [&](const std::string& upper, const std::string& small) {
      return File(lower ? small : upper, "");
    };
    EXPECT_EQ(Kind(name("A.RDB", "a.rdb")), "application/x-vrx2260-recipe-database");
    EXPECT_EQ(Kind(name("A.TDB", "a.tdb")), "application/x-vrx2260-transaction-database");
    EXPECT_EQ(Kind(name("A.QXT", "a.qxt")), "application/x-vrx2260-transactions");
    EXPECT_EQ(Kind(name("A.RBU", "a.rbu")), "application/x-vrx2260-recipe-backup");
  }
}

TEST_F(FileKinds, AreDetectedByTheirFirstBytesIfTheExtensionIsUnknown) {
  EXPECT_EQ(Kind(SampleSite("database")), "application/x-vrx2260-database");
  EXPECT_EQ(Kind(File("transactions", "{BAT/FED},L\r\n")), "application/x-vrx2260-transactions");
  EXPECT_EQ(Kind(File("backup", "{DATA_IN}\r\n")), "application/x-vrx2260-recipe-backup");
}

TEST_F(FileKinds, LeaveOtherFilesAlone) {
  EXPECT_EQ(Kind(File("A.TXT", "{BAT/FED} is the mark of a transaction file")), "text/plain");
  std::string other(100, '\0');
  other.replace(0, 15, "SQLite format 3");
  EXPECT_THAT(Kind(File("other", other)), HasSubstr("sqlite3"));
}

// With those alone a double click on a file starts the program.
TEST(DesktopEntry, TakesEveryKindOfFileOfThePackage) {
  const std::string entry = ReadAll(std::string(VRX_SOURCE_DIR) + "/packaging/vrx2260.desktop");
  const std::string kinds = ReadAll(std::string(VRX_SOURCE_DIR) + "/packaging/vrx2260-mime.xml");
  constexpr std::string_view kBegin = "<mime-type type=\"";
  int count = 0;
  for (auto at = kinds.find(kBegin); at != std::string::npos; at = kinds.find(kBegin, at + 1)) {
    const auto begin = at + kBegin.size();
    EXPECT_THAT(entry, HasSubstr(kinds.substr(begin, kinds.find('"', begin) - begin) + ";"));
    ++count;
  }
  EXPECT_EQ(count, 5);
}

TEST(DesktopEntry, NamesAProgramAndTheWindowsThatAreThere) {
  std::ifstream in(std::string(VRX_SOURCE_DIR) + "/packaging/vrx2260.desktop");
  const std::string entry{std::istreambuf_iterator<char>(in), {}};
  EXPECT_THAT(entry, HasSubstr("\nExec=vrx2260 %F\n"));
  EXPECT_THAT(entry, HasSubstr("\nIcon=vrx2260\n"));
  EXPECT_TRUE(fs::exists(fs::path(VRX_BIN_DIR) / "vrx2260"));
}

}  // namespace
}  // namespace vrx::testing
