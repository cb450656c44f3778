#include "presenter/open_files.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "presenter/lifecycle_fixture.h"
#include "support/boxes.h"
#include "support/stored_user_settings.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class OpenFilesTest : public LifecycleFixture, protected OpenFilesView {
 protected:
  OpenFilesTest() {
    databases_.SetOpened(
        [this](DatabaseKind kind, const fs::path& path) { recent_.Add(FileKindOf(kind), path); });
  }

  bool LeaveEdits() override {
    steps_.emplace_back("leave");
    return leaves_;
  }
  void ImportTransactionFile(const fs::path& path) override {
    steps_.push_back("import " + path.filename().string());
    if (during_import_) {
      during_import_();
    }
  }
  void OpenRecipeBackup(const fs::path& path) override {
    steps_.push_back("backup " + path.filename().string());
  }

  fs::path recipes_ = MakeUserFile("YARD.RDB", kRecipe);
  fs::path transactions_ = MakeUserFile("Y2026.TDB", kTransaction);
  fs::path day_ = folder_.Write("day1.qxt", "{BAT/FED},L\r\n");
  fs::path backup_ = folder_.Write("02.rbu", "{DATA_IN}\r\n");
  std::vector<std::string> steps_;
  bool leaves_ = true;
  std::function<void()> during_import_;
  StoredUserSettings store_;
  RecentFiles recent_{store_};
  OpenFiles files_{services_, databases_, recent_, *this};
};

TEST_F(OpenFilesTest, OpenEachKindByItsOwnFlowDatabasesFirst) {
  files_.Open({day_, backup_, transactions_, recipes_});
  EXPECT_EQ(BoundName(kRecipe), "YARD.RDB");
  EXPECT_EQ(BoundName(kTransaction), "Y2026.TDB");
  EXPECT_EQ(databases_.Recipe().path, recipes_);
  EXPECT_EQ(databases_.Transaction().name, "Y2026.TDB");
  EXPECT_THAT(steps_, ElementsAre("leave", "backup 02.rbu", "import day1.qxt"));
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

TEST_F(OpenFilesTest, OfARecipeDatabaseGoesToTheTransferTabAsTheMenuDoes) {
  tabs_.SelectTab(kTabImport);
  files_.Open({recipes_});
  EXPECT_EQ(tabs_.CurrentTab(), kTabDataTransfer);
}

TEST_F(OpenFilesTest, DoNothingWhenTheOperatorStaysInAnEdit) {
  leaves_ = false;
  files_.Open({recipes_, day_});
  files_.OpenRecent(FileKind::kRecipeDatabase, recipes_);
  EXPECT_THAT(steps_, ElementsAre("leave", "leave"));
  EXPECT_EQ(BoundName(kRecipe), "QXNULRDB.MDB");
}

TEST_F(OpenFilesTest, ReportWhatCannotBeOpenedInOneMessageAndOpenTheRest) {
  const fs::path other = MakeUserFile("OTHER.RDB", kRecipe);
  const fs::path photo = folder_.Write("photo.jpg", "no data of ours");
  files_.Open({photo, recipes_, other, recipes_, folder_ / "gone.tdb", folder_.Path()});
  EXPECT_EQ(BoundName(kRecipe), "YARD.RDB");
  EXPECT_THAT(OnlyBox(operator_.boxes),
              IsBox(Icon::kWarning, "Open File Error",
                    "This cannot be opened:\r\n\r\n" + photo.string() +
                        ": this is neither a database (.RDB, .TDB) nor a transaction file (.QXT) "
                        "nor a recipe backup (.RBU)\r\n" +
                        other.string() + ": only one recipe database is opened at a time\r\n" +
                        (folder_ / "gone.tdb").string() + ": there is no such file\r\n" +
                        folder_.Path().string() + ": this is not a file"));
}

TEST_F(OpenFilesTest, NameTenFilesOfMany) {
  files_.Open(std::vector<fs::path>(25, folder_ / "none"));
  EXPECT_THAT(OnlyBox(operator_.boxes).text, HasSubstr("such file\r\nand 15 more"));
}

TEST_F(OpenFilesTest, LeaveARefusedDatabaseToItsOwnMessage) {
  files_.Open({transactions_});
  files_.Open({folder_.Write("WRONG.TDB", "no database at all")});
  EXPECT_EQ(BoundName(kTransaction), "Y2026.TDB");
  EXPECT_THAT(BoxTitles(), ElementsAre("Database-Type Error", "Invalid Database"));
}

TEST_F(OpenFilesTest, OfferTheConversionOfAnEarlierDatabase) {
  earlier_.answer = {.outcome = LegacyOpening::Outcome::kEnd};
  files_.Open({recipes_});
  EXPECT_THAT(earlier_.asked, ElementsAre(::testing::Pair(kRecipe, recipes_)));
  EXPECT_EQ(BoundName(kRecipe), "QXNULRDB.MDB");
}

TEST_F(OpenFilesTest, DoNothingWhileTheyRun) {
  during_import_ = [this] {
    EXPECT_TRUE(files_.Running());
    files_.Open({recipes_});
    files_.OpenRecent(FileKind::kTransactionDatabase, transactions_);
  };
  files_.Open({day_});
  EXPECT_FALSE(files_.Running());
  EXPECT_EQ(BoundName(kRecipe), "QXNULRDB.MDB");
  EXPECT_EQ(BoundName(kTransaction), "QXNULXDB.MDB");
}

TEST_F(OpenFilesTest, EndWithTheProgram) {
  pump_.After(Milliseconds{10}, [this] { pump_.closing = true; });
  files_.Open({recipes_, transactions_, day_, folder_ / "none"});
  EXPECT_THAT(steps_, ElementsAre("leave"));
  EXPECT_THAT(operator_.boxes, IsEmpty());
}

TEST_F(OpenFilesTest, OfTheListOpenTheSameWay) {
  files_.OpenRecent(FileKind::kTransactionDatabase, transactions_);
  files_.OpenRecent(FileKind::kTransactionFile, day_);
  EXPECT_EQ(BoundName(kTransaction), "Y2026.TDB");
  EXPECT_THAT(steps_, ElementsAre("leave", "leave", "import day1.qxt"));
}

TEST_F(OpenFilesTest, AMissingRecentFileIsReportedAndLeavesTheList) {
  recent_.Add(FileKind::kRecipeDatabase, recipes_);
  recent_.Add(FileKind::kRecipeDatabase, folder_ / "GONE.RDB");
  files_.OpenRecent(FileKind::kRecipeDatabase, folder_ / "GONE.RDB");
  EXPECT_THAT(OnlyBox(operator_.boxes),
              IsBox(Icon::kWarning, "Open File Error",
                    "There is no file " + (folder_ / "GONE.RDB").string() +
                        " any more. It is removed from the list of recent files."));
  EXPECT_THAT(recent_.Of(FileKind::kRecipeDatabase), ElementsAre(recipes_));
  EXPECT_THAT(steps_, IsEmpty());
}

TEST_F(OpenFilesTest, EveryOpenedOrNewDatabaseEntersTheListAndARefusedOneDoesNot) {
  const fs::path fresh = app_folder_.DefaultAppPath() / "NEW.RDB";
  const fs::path copy = app_folder_.DefaultAppPath() / "COPY.TDB";
  chooser_.Choose(recipes_);
  databases_.BrowseRecipeDatabase();
  chooser_.Choose(fresh);
  databases_.NewRecipeDatabase();
  files_.Open({transactions_});
  chooser_.Choose(copy);
  databases_.SaveAsTransactionCommand();
  files_.Open({folder_.Write("WRONG.TDB", "no database at all")});
  EXPECT_THAT(recent_.Of(FileKind::kRecipeDatabase), ElementsAre(fresh, recipes_));
  EXPECT_THAT(recent_.Of(FileKind::kTransactionDatabase), ElementsAre(copy, transactions_));
}

}  // namespace
}  // namespace vrx::testing
