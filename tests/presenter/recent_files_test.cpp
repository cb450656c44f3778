#include "presenter/recent_files.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "base/error.h"
#include "presenter/lifecycle_fixture.h"
#include "support/stored_user_settings.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RecentFilesTest : public ::testing::Test {
 protected:
  StoredUserSettings store_;
};

TEST_F(RecentFilesTest, HaveTheNewestFirstAndEachOnce) {
  RecentFiles files(store_);
  for (const char* const path : {"/a.rdb", "/b.rdb", "/a.rdb"}) {
    files.Add(FileKind::kRecipeDatabase, path);
  }
  EXPECT_THAT(files.Of(FileKind::kRecipeDatabase), ElementsAre("/a.rdb", "/b.rdb"));
}

TEST_F(RecentFilesTest, AreFiveOfEachKind) {
  RecentFiles files(store_);
  for (const FileKind kind : kFileKinds) {
    for (int i = 1; i <= 7; ++i) {
      files.Add(kind, "/" + std::to_string(i));
    }
  }
  for (const FileKind kind : kFileKinds) {
    EXPECT_THAT(files.Of(kind), ElementsAre("/7", "/6", "/5", "/4", "/3"));
  }
}

TEST_F(RecentFilesTest, AreThereAtTheNextStart) {
  {
    RecentFiles files(store_);
    files.Add(FileKind::kTransactionDatabase, "/data/Y2026.TDB");
    files.Add(FileKind::kTransactionDatabase, "/data/Jürgen's & Söhne.TDB");
    files.Add(FileKind::kTransactionFile, "/data/01.QXT");
    files.Remove(FileKind::kTransactionFile, "/data/01.QXT");
  }
  const RecentFiles next(store_);
  EXPECT_THAT(next.Of(FileKind::kTransactionDatabase),
              ElementsAre("/data/Jürgen's & Söhne.TDB", "/data/Y2026.TDB"));
  EXPECT_THAT(next.Of(FileKind::kTransactionFile), IsEmpty());
}

TEST_F(RecentFilesTest, SkipWhatIsNoPathInSettingsThatWereChangedByHand) {
  store_.values["RecentRecipeDatabases"] = "x\n\n/a\n/a\n../b\n/c\n/d\n/e\n/f\n/g\n";
  const RecentFiles files(store_);
  EXPECT_THAT(files.Of(FileKind::kRecipeDatabase), ElementsAre("/a", "/c", "/d", "/e", "/f"));
}

TEST_F(RecentFilesTest, DoNotKeepAPathThatWouldReadAsTwo) {
  RecentFiles files(store_);
  files.Add(FileKind::kRecipeDatabase, "/two\n/paths.rdb");
  files.Add(FileKind::kRecipeDatabase, "relative.rdb");
  EXPECT_THAT(files.Of(FileKind::kRecipeDatabase), IsEmpty());
}

TEST_F(RecentFilesTest, StayInMemoryWhenTheSettingsCannotBeWritten) {
  store_.on_save = [](std::string_view /*key*/) { throw Error("fake: the disk is full"); };
  RecentFiles files(store_);
  files.Add(FileKind::kRecipeBackup, "/a.rbu");
  EXPECT_THAT(files.Of(FileKind::kRecipeBackup), ElementsAre("/a.rbu"));
}

class FileKindTest : public LifecycleFixture {};

TEST_F(FileKindTest, IsThatOfTheExtensionInAnyCase) {
  EXPECT_EQ(FindFileKind("/none/YARD.RDB"), FileKind::kRecipeDatabase);
  EXPECT_EQ(FindFileKind("/none/y2026.Tdb"), FileKind::kTransactionDatabase);
  EXPECT_EQ(FindFileKind("/none/01.qxt"), FileKind::kTransactionFile);
  EXPECT_EQ(FindFileKind("/none/01.rbu"), FileKind::kRecipeBackup);
  EXPECT_EQ(FindFileKind("/none/rdb"), std::nullopt);
}

TEST_F(FileKindTest, IsThatOfTheFirstBytesWhereTheExtensionIsUnknown) {
  EXPECT_EQ(FindFileKind(folder_.Write("a.txt", "{BAT/FED},L\r\n")), FileKind::kTransactionFile);
  EXPECT_EQ(FindFileKind(folder_.Write("b", "{DATA_IN}\r\n")), FileKind::kRecipeBackup);
  EXPECT_EQ(FindFileKind(folder_.Write("c", "BAT/FED")), std::nullopt);
  EXPECT_EQ(FindFileKind(folder_.Write("d", "")), std::nullopt);
  EXPECT_EQ(FindFileKind(MakeUserFile("COPY.BAK", kRecipe)), FileKind::kRecipeDatabase);
  EXPECT_EQ(FindFileKind(MakeUserFile("COPY2.BAK", kTransaction)), FileKind::kTransactionDatabase);
}

TEST_F(FileKindTest, IsNoneOfABlankTemplateAForeignDatabaseAndAFolder) {
  EXPECT_EQ(FindFileKind(Template(kRecipe)), std::nullopt);
  std::string foreign = ReadAll(MakeUserFile("A.BAK", kRecipe));
  foreign.replace(68, 4, "none");
  EXPECT_EQ(FindFileKind(folder_.Write("foreign", foreign)), std::nullopt);
  EXPECT_EQ(FindFileKind(folder_.Path()), std::nullopt);
}

TEST_F(FileKindTest, IsNoneOfADatabaseThatIsCutOff) {
  const std::string whole = ReadAll(MakeUserFile("A.BAK", kRecipe));
  EXPECT_EQ(FindFileKind(folder_.Write("part", whole.substr(0, 5000))), std::nullopt);
}

}  // namespace
}  // namespace vrx::testing
