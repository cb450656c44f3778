#include <memory>
#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "presenter/lifecycle_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class LifecycleFaults : public LifecycleFixture {
 protected:
  LifecycleFaults() {
    databases_.OpenRecipeDatabase(earlier_, "EARLIER.RDB");
    diary_.clear();
  }

  // Nothing has changed and everything still works.
  void ExpectEarlierStays() {
    EXPECT_EQ(BoundName(kRecipe), "EARLIER.RDB");
    ASSERT_EQ(window_.views[kRecipe], databases_.Bound(kRecipe).connection.get());
    EXPECT_THAT(window_.Panels(kRecipe), ElementsAre("EARLIER.RDB", "LB", "3/1/2025", ""));
    EXPECT_TRUE(commands_.On("mnuFileSaveRecipeDB"));
    EXPECT_FALSE(operator_.busy);
    window_.views[kRecipe]->exec("UPDATE Pen SET FeedAmount = '5' WHERE ID = 1");
    EXPECT_THAT(Ask(earlier_, "SELECT FeedAmount FROM Pen WHERE ID = 1"), ElementsAre("5"));
  }

  fs::path earlier_ = MakeUserFile("EARLIER.RDB", kRecipe);
};

TEST_F(LifecycleFaults, ADamagedFileIsReportedTwiceAndTheEarlierOneStays) {
  databases_.OpenRecipeDatabase(folder_.Write("BAD.RDB", "no database at all"), "BAD.RDB");
  EXPECT_THAT(BoxTitles(), ElementsAre("Database-Type Error", "Invalid Database"));
  EXPECT_THAT(operator_.boxes[0].cause, HasSubstr("BAD.RDB is a text file"));
  ExpectEarlierStays();
}

TEST_F(LifecycleFaults, ACutOffFileIsReportedTwiceAndTheEarlierOneStays) {
  const fs::path path = MakeUserFile("CUT.RDB", kRecipe);
  fs::resize_file(path, 8192);
  databases_.OpenRecipeDatabase(path, "CUT.RDB");
  EXPECT_THAT(BoxTitles(), ElementsAre("Database-Type Error", "Invalid Database"));
  ExpectEarlierStays();
}

TEST_F(LifecycleFaults, AForeignDatabaseIsReportedTwiceAndTheEarlierOneStays) {
  const fs::path path = folder_ / "OTHER.RDB";
  SQLite::Database(path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE)
      .exec(
          "CREATE TABLE BrantockDatabase (dBType); "
          "INSERT INTO BrantockDatabase VALUES ('USER_RECIPE_DB')");
  databases_.OpenRecipeDatabase(path, "OTHER.RDB");
  ASSERT_THAT(BoxTitles(), ElementsAre("Database-Type Error", "Invalid Database"));
  EXPECT_EQ(operator_.boxes[0].text, "There is an invalid table in the specified database.");
  ExpectEarlierStays();
}

TEST_F(LifecycleFaults, AFileHeldByAnotherProgramIsReportedTwiceAndTheEarlierOneStays) {
  const fs::path path = MakeUserFile("HELD.RDB", kRecipe);
  const ExclusiveHolder holder(path);
  databases_.OpenRecipeDatabase(path, "HELD.RDB");
  ASSERT_THAT(BoxTitles(), ElementsAre("Database-Type Error", "Invalid Database"));
  EXPECT_EQ(operator_.boxes[0].text, "A table in the specified database is locked.");
  ExpectEarlierStays();
}

TEST_F(LifecycleFaults, AFileThatVanishesBetweenDialogAndOpenIsReportedTwice) {
  const fs::path path = MakeUserFile("GONE.RDB", kRecipe);
  chooser_.Choose(path);
  pump_.After(Milliseconds(100), [&] { fs::remove(path); });
  databases_.BrowseRecipeDatabase();
  ASSERT_THAT(BoxTitles(), ElementsAre("Database-Type Error", "Invalid Database"));
  EXPECT_EQ(operator_.boxes[0].text, "Error: " + std::to_string(SQLITE_CANTOPEN));
  EXPECT_NE(databases_.Recipe().path, path);
  EXPECT_EQ(BoundName(kRecipe), "EARLIER.RDB");
  EXPECT_FALSE(fs::exists(path));
}

TEST_F(LifecycleFaults, AFileWithoutTheTableOfAViewMovesTheViewsBack) {
  const fs::path path = MakeUserFile("PART.RDB", kRecipe);
  Alter(path, "DROP TABLE Ingredient");
  databases_.OpenRecipeDatabase(path, "PART.RDB");
  ASSERT_THAT(BoxTitles(), ElementsAre("Open Recipe File Error"));
  EXPECT_EQ(operator_.boxes[0].icon, Icon::kCritical);
  EXPECT_EQ(operator_.boxes[0].text, "Error: -2147217865");
  EXPECT_EQ(databases_.Recipe().unit, "LB");
  ExpectEarlierStays();
}

TEST_F(LifecycleFaults, AFileWhoseRecordsCannotBeListedMovesTheViewsBack) {
  chooser_.Choose(MakeUserFile("PART.RDB", kRecipe, "KG"));
  window_.on_load_id_lists = [] { throw DatabaseError(SQLITE_IOERR, "the disk is gone"); };
  databases_.BrowseRecipeDatabase();
  ASSERT_THAT(BoxTitles(), ElementsAre("Open Recipe File Error"));
  EXPECT_EQ(operator_.boxes[0].cause, "the disk is gone");
  EXPECT_EQ(databases_.Recipe().name, "");
  EXPECT_EQ(databases_.Recipe().unit, "LB");
  EXPECT_EQ(window_.units[kRecipe], "LB");
  ExpectEarlierStays();
}

TEST_F(LifecycleFaults, AFileWithoutItsUnitMovesNoView) {
  const fs::path path = MakeUserFile("PART.TDB", kTransaction);
  Alter(path, "DELETE FROM UnitsOfMeasure");
  databases_.OpenTransactionDatabase(path, "PART.TDB");
  ASSERT_THAT(BoxTitles(), ElementsAre("Open Transaction File Error"));
  EXPECT_EQ(operator_.boxes[0].text, "Error: 3021");
  EXPECT_THAT(diary_, ElementsAre("wait 50", "box Open Transaction File Error"));
  EXPECT_EQ(BoundName(kTransaction), "QXNULXDB.MDB");
}

TEST_F(LifecycleFaults, AnUnreadableDateIsReportedAndTheFileOpensWithoutIt) {
  const fs::path path = MakeUserFile("DATE.RDB", kRecipe);
  Alter(path, "UPDATE History SET Created = 'yesterday'");
  databases_.OpenRecipeDatabase(path, "DATE.RDB");
  EXPECT_THAT(BoxTitles(), ElementsAre("Database Date Read Error"));
  EXPECT_THAT(window_.Panels(kRecipe), ElementsAre("DATE.RDB", "LB", "", ""));
  EXPECT_EQ(BoundName(kRecipe), "DATE.RDB");
}

TEST_F(LifecycleFaults, AMoveThatFailsTakesTheViewsBack) {
  window_.on_rebind = [this](DatabaseKind, const BoundDatabase&) {
    window_.on_rebind = nullptr;
    throw DatabaseError(SQLITE_IOERR, "the disk is gone");
  };
  databases_.OpenRecipeDatabase(MakeUserFile("NEXT.RDB", kRecipe), "NEXT.RDB");
  EXPECT_THAT(BoxTitles(), ElementsAre("Open Recipe File Error"));
  ExpectEarlierStays();
}

TEST_F(LifecycleFaults, AMoveThatFailsKeepsTheDateOfALaterStore) {
  window_.views[kRecipe]->exec("UPDATE History SET Modified = '2026-02-03'");
  databases_.ReloadViews(kRecipe);
  databases_.ShowModifiedDate(kRecipe);
  window_.on_load_id_lists = [] { throw DatabaseError(SQLITE_IOERR, "the disk is gone"); };
  databases_.OpenRecipeDatabase(MakeUserFile("NEXT.RDB", kRecipe), "NEXT.RDB");
  EXPECT_THAT(BoxTitles(), ElementsAre("Open Recipe File Error"));
  EXPECT_THAT(window_.Panels(kRecipe), ElementsAre("EARLIER.RDB", "LB", "3/1/2025", "2/3/2026"));
}

TEST_F(LifecycleFaults, WhenTheViewsCannotMoveBackNeitherConnectionGoesAway) {
  const fs::path path = MakeUserFile("NEXT.RDB", kRecipe);
  window_.on_rebind = [](DatabaseKind, const BoundDatabase&) {
    throw DatabaseError(SQLITE_IOERR, "the disk is gone");
  };
  databases_.OpenRecipeDatabase(path, "NEXT.RDB");
  EXPECT_THAT(BoxTitles(), ElementsAre("Open Recipe File Error"));
  EXPECT_EQ(BoundName(kRecipe), "EARLIER.RDB");
  window_.on_rebind = nullptr;
  databases_.OpenRecipeDatabase(path, "NEXT.RDB");
  EXPECT_EQ(BoundName(kRecipe), "NEXT.RDB");
}

TEST_F(LifecycleFaults, AnOpenWhileTheViewsMoveIsRefusedAndTheMoveGoesOn) {
  const fs::path inner = MakeUserFile("INNER.RDB", kRecipe);
  window_.on_rebind = [&](DatabaseKind, const BoundDatabase&) {
    window_.on_rebind = nullptr;
    databases_.OpenRecipeDatabase(inner, "INNER.RDB");
  };
  databases_.OpenRecipeDatabase(MakeUserFile("OUTER.RDB", kRecipe), "OUTER.RDB");
  ASSERT_THAT(BoxTitles(), ElementsAre("Open Recipe File Error"));
  EXPECT_EQ(operator_.boxes[0].cause, "the views are on their way to another database");
  EXPECT_EQ(BoundName(kRecipe), "OUTER.RDB");
  EXPECT_EQ(window_.views[kRecipe], databases_.Bound(kRecipe).connection.get());
}

TEST_F(LifecycleFaults, AWriteProtectedFileOpensForReadingWithANote) {
  const TempFolder locked;
  const fs::path path = locked / "PROT.RDB";
  fs::copy_file(MakeUserFile("PROT.RDB", kRecipe), path);
  EXPECT_EQ(databases_.Bound(kRecipe).read_only_note, "");
  {
    const WithoutWritePermission protection(locked.Path());
    databases_.OpenRecipeDatabase(path, "PROT.RDB");
    EXPECT_THROW(window_.views[kRecipe]->exec("UPDATE Pen SET Name = 'X'"), SQLite::Exception);
  }
  EXPECT_THAT(BoxTitles(), IsEmpty());
  EXPECT_THAT(window_.Panels(kRecipe), ElementsAre("PROT.RDB (read-only)", "LB", "3/1/2025", ""));
  EXPECT_EQ(BoundName(kRecipe), "PROT.RDB");
  EXPECT_FALSE(databases_.Bound(kRecipe).blank);
  EXPECT_THAT(databases_.Bound(kRecipe).read_only_note,
              HasSubstr("PROT.RDB may not be written: it is write-protected"));
  EXPECT_TRUE(commands_.On("mnuFileSaveRecipeDB"));
}

TEST_F(LifecycleFaults, ACloseWithoutATemplateUsesABlankDatabaseInMemory) {
  fs::remove(Template(kRecipe));
  databases_.CloseRecipeDatabase();
  ASSERT_THAT(BoxTitles(), ElementsAre("Close Recipe File Error"));
  EXPECT_EQ(operator_.boxes[0].text, "Error: " + std::to_string(SQLITE_CANTOPEN));
  EXPECT_THAT(operator_.boxes[0].cause, HasSubstr("QXNULRDB.MDB does not exist"));
  EXPECT_TRUE(databases_.Bound(kRecipe).blank);
  EXPECT_TRUE(databases_.Bound(kRecipe).path.empty());
  EXPECT_EQ(window_.views[kRecipe], databases_.Bound(kRecipe).connection.get());
  EXPECT_EQ(window_.views[kRecipe]->execAndGet("SELECT count(*) FROM Pen").getInt(), 400);
  EXPECT_THROW(window_.views[kRecipe]->exec("UPDATE Pen SET Name = 'X'"), SQLite::Exception);
  EXPECT_THAT(window_.Panels(kRecipe), ElementsAre("", "", "", ""));
  EXPECT_FALSE(commands_.On("mnuFileSaveRecipeDB"));
  EXPECT_EQ(tabs_.CurrentTab(), 3);
}

TEST_F(LifecycleFaults, ACloseOntoTheOtherKindsTemplateUsesABlankDatabaseInMemory) {
  fs::copy_file(TemplatePath(kTransaction), Template(kRecipe),
                fs::copy_options::overwrite_existing);
  databases_.CloseRecipeDatabase();
  EXPECT_THAT(BoxTitles(), ElementsAre("Close Recipe File Error"));
  EXPECT_TRUE(databases_.Bound(kRecipe).blank);
  EXPECT_TRUE(databases_.Bound(kRecipe).path.empty());
  EXPECT_FALSE(commands_.On("mnuFileSaveRecipeDB"));
}

TEST_F(LifecycleFaults, ACloseGoesToItsEndWhateverTheViewsDo) {
  window_.on_rebind = [](DatabaseKind, const BoundDatabase&) {
    throw DatabaseError(SQLITE_IOERR, "the disk is gone");
  };
  databases_.CloseRecipeDatabase();
  EXPECT_THAT(BoxTitles(), ElementsAre("Close Recipe File Error", "Close Recipe File Error"));
  EXPECT_TRUE(databases_.Recipe().path.empty());
  EXPECT_THAT(window_.Panels(kRecipe), ElementsAre("", "", "", ""));
  EXPECT_FALSE(commands_.On("mnuFileSaveRecipeDB"));
  EXPECT_EQ(tabs_.CurrentTab(), 3);
}

TEST_F(LifecycleFaults, AFailureOfATabIsReportedUnderTheRoutinesTitle) {
  window_.on_prepare_tab = [] { throw Error("the grid is gone"); };
  databases_.BrowseRecipeDatabase();
  EXPECT_THAT(BoxTitles(), ElementsAre("Open Recipe File Error"));
  EXPECT_THAT(chooser_.dialogs, IsEmpty());
}

TEST_F(LifecycleFaults, ASaveAsOfAFileInUseByAnotherProgramLeavesTheTarget) {
  const fs::path target = folder_.Write("TARGET.RDB", "somebody's work");
  chooser_.Choose(target);
  std::optional<ExclusiveHolder> holder;
  // As soon as the window has released it.
  window_.on_rebind = [&](DatabaseKind, const BoundDatabase& database) {
    if (database.blank) {
      window_.on_prepare_tab = [&] { holder.emplace(earlier_); };
    }
  };
  databases_.SaveAsRecipeCommand();
  ASSERT_THAT(BoxTitles(), ElementsAre("Save As Recipe Database Error"));
  EXPECT_EQ(operator_.boxes[0].text, "Error: 3251");
  EXPECT_EQ(ReadAll(target), "somebody's work");
}

}  // namespace
}  // namespace vrx::testing
