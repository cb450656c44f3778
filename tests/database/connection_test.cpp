#include "database/connection.h"

#include <functional>
#include <random>
#include <system_error>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "database/records.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using ::testing::ElementsAre;
using ::testing::StartsWith;

constexpr milliseconds kAtOnce{0};
constexpr const char* kExpected = "; expected a recipe or transaction database of this system";

// Returns the error of an opening and checks that the folder did not change.
DatabaseError Refusal(const fs::path& path, Access access) {
  const std::vector<std::string> names = FileNames(path.parent_path());
  const bool is_file = fs::is_regular_file(path);
  const std::string bytes = is_file ? ReadAll(path) : "";
  DatabaseError refusal(0, "not refused");
  try {
    OpenDatabase(path, access, kAtOnce);
  } catch (const DatabaseError& error) {
    refusal = error;
  }
  EXPECT_EQ(FileNames(path.parent_path()), names);
  EXPECT_EQ(is_file ? ReadAll(path) : "", bytes);
  return refusal;
}

void ExpectRefused(const fs::path& path, int number, const std::string& cause) {
  for (const Access access : {Access::kRead, Access::kWrite}) {
    const DatabaseError refusal = Refusal(path, access);
    EXPECT_EQ(refusal.Number(), number);
    EXPECT_EQ(refusal.what(), cause);
  }
}

std::string RandomBytes(std::size_t count) {
  std::mt19937 random(20260105);
  std::string bytes(count, '\0');
  for (char& byte : bytes) {
    byte = static_cast<char>(random() & 0xffU);
  }
  return bytes;
}

TEST(OpenDatabase, ReadsAndWritesATemplatesCopy) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  {
    SQLite::Database database = OpenDatabase(path, Access::kWrite);
    EXPECT_EQ(database.exec("UPDATE Pen SET FeedAmount = '5' WHERE ID = 400"), 1);
  }
  SQLite::Database database = OpenDatabase(path, Access::kRead);
  EXPECT_EQ(database.execAndGet("SELECT FeedAmount FROM Pen WHERE ID = 400").getString(), "5");
}

TEST(OpenDatabase, SetsThePragmasOfTheSystem) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  for (const Access access : {Access::kRead, Access::kWrite}) {
    SQLite::Database database = OpenDatabase(path, access);
    EXPECT_EQ(database.execAndGet("PRAGMA journal_mode").getString(), "delete");
    EXPECT_EQ(database.execAndGet("PRAGMA synchronous").getInt(), 2);
    EXPECT_EQ(database.execAndGet("PRAGMA busy_timeout").getInt(), 5000);
  }
}

TEST(OpenDatabase, OpeningAloneChangesNoByte) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  const std::string before = ReadAll(path);
  OpenDatabase(path, Access::kWrite);
  OpenDatabase(path, Access::kRead);
  EXPECT_EQ(ReadAll(path), before);
  EXPECT_THAT(FileNames(folder.Path()), ElementsAre("YARD.RDB"));
}

TEST(OpenDatabase, AReadingConnectionRefusesToWrite) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  SQLite::Database database = OpenDatabase(path, Access::kRead);
  EXPECT_THROW(database.exec("UPDATE Pen SET FeedAmount = '5'"), SQLite::Exception);
}

TEST(OpenDatabase, TakesNamesWithBlanksQuotesAndForeignLetters) {
  const TempFolder folder;
  for (const char* name : {"A B.RDB", "O'NEIL.RDB", "KÄLBER.RDB", ":memory:", "file:x?mode=ro"}) {
    const fs::path path = CopyOfTemplate(folder, name);
    SQLite::Database database = OpenDatabase(path, Access::kWrite);
    EXPECT_EQ(database.exec("UPDATE Pen SET FeedAmount = '7'"), 400);
    EXPECT_EQ(Ask(path, "SELECT DISTINCT FeedAmount FROM Pen"), std::vector<std::string>{"7"});
  }
}

TEST(OpenDatabase, RefusesAMissingFileAndCreatesNone) {
  const TempFolder folder;
  ExpectRefused(folder / "YARD.RDB", SQLITE_CANTOPEN,
                std::string("YARD.RDB does not exist") + kExpected);
}

TEST(OpenDatabase, RefusesAnEmptyPath) {
  for (const Access access : {Access::kRead, Access::kWrite}) {
    EXPECT_THROW(OpenDatabase({}, access), DatabaseError);
  }
}

TEST(OpenDatabase, RefusesAFolder) {
  const TempFolder folder;
  fs::create_directory(folder / "YARD.RDB");
  ExpectRefused(folder / "YARD.RDB", SQLITE_CANTOPEN,
                std::string("YARD.RDB is a folder") + kExpected);
}

TEST(OpenDatabase, RefusesADeviceWithoutReadingIt) {
  const DatabaseError refusal = [] {
    try {
      OpenDatabase("/dev/zero", Access::kRead, kAtOnce);
    } catch (const DatabaseError& error) {
      return error;
    }
    return DatabaseError(0, "not refused");
  }();
  EXPECT_EQ(refusal.what(), std::string("zero is a device") + kExpected);
}

TEST(OpenDatabase, RefusesAnEmptyFile) {
  const TempFolder folder;
  ExpectRefused(folder.Write("YARD.RDB", ""), SQLITE_NOTADB,
                std::string("YARD.RDB is empty") + kExpected);
}

TEST(OpenDatabase, RefusesATextFile) {
  const TempFolder folder;
  const std::string text = "ID,Name\r\n1,CORN\r\n";
  ExpectRefused(folder.Write("YARD.RDB", text), SQLITE_NOTADB,
                std::string("YARD.RDB is a text file") + kExpected);
  std::string long_text;
  for (int line = 0; line < 1000; ++line) {
    long_text += text;
  }
  ExpectRefused(folder.Write("YARD.RDB", long_text), SQLITE_NOTADB,
                std::string("YARD.RDB is a text file") + kExpected);
}

TEST(OpenDatabase, RefusesAFileOfAnotherKind) {
  const TempFolder folder;
  for (const std::size_t size : {1U, 50U, 100U, 511U, 8192U}) {
    ExpectRefused(folder.Write("YARD.RDB", "\x89PNG\r\n\x1a\n" + RandomBytes(size)), SQLITE_NOTADB,
                  std::string("YARD.RDB is no database") + kExpected);
  }
}

TEST(OpenDatabase, RecognizesAJetFile) {
  const TempFolder folder;
  using std::string_literals::operator""s;
  const std::string head = "\0\1\0\0Standard Jet DB\0"s;
  ExpectRefused(folder.Write("OLD.RDB", head + RandomBytes(4096)), SQLITE_NOTADB,
                std::string("OLD.RDB is a Jet database of an earlier generation, which has to be "
                            "converted first") +
                    kExpected);
}

TEST(OpenDatabase, RefusesADatabaseOfAnotherProgram) {
  const TempFolder folder;
  const fs::path path = folder / "YARD.RDB";
  {
    SQLite::Database other(path, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    other.exec("CREATE TABLE Ingredient (ID INTEGER)");
  }
  ExpectRefused(path, kInvalidTableError,
                std::string("YARD.RDB is a database of another program") + kExpected);
  Alter(path, "PRAGMA application_id=1");
  ExpectRefused(path, kInvalidTableError,
                std::string("YARD.RDB is a database of another program") + kExpected);
}

TEST(OpenDatabase, RefusesANewerSchema) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  Alter(path, "PRAGMA user_version=2");
  ExpectRefused(path, SQLITE_SCHEMA,
                "YARD.RDB was made by a newer version of the program: schema 2; expected 1");
}

TEST(OpenDatabase, RefusesAnUnknownOlderSchema) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  Alter(path, "PRAGMA user_version=0");
  ExpectRefused(path, SQLITE_SCHEMA, "YARD.RDB has an unknown schema: schema 0; expected 1");
}

TEST(OpenDatabase, RefusesACutOffDatabaseWhereverItWasCut) {
  const TempFolder folder;
  const std::string whole = ReadAll(TemplatePath(DatabaseKind::kRecipe));
  for (const std::size_t size :
       {std::size_t{100}, std::size_t{101}, std::size_t{511}, std::size_t{4095}, std::size_t{4096},
        std::size_t{8192}, whole.size() - 4096, whole.size() - 1}) {
    ExpectRefused(folder.Write("YARD.RDB", whole.substr(0, size)), SQLITE_CORRUPT,
                  "YARD.RDB is cut off: " + std::to_string(size) + " bytes instead of " +
                      std::to_string(whole.size()));
  }
}

TEST(OpenDatabase, RefusesADatabaseCutWithinItsHeader) {
  const TempFolder folder;
  const std::string whole = ReadAll(TemplatePath(DatabaseKind::kRecipe));
  for (const std::size_t size : {8U, 16U, 64U, 99U}) {
    ExpectRefused(folder.Write("YARD.RDB", whole.substr(0, size)), SQLITE_CORRUPT,
                  "YARD.RDB is cut off: " + std::to_string(size) +
                      " bytes, less than a database's header of 100");
  }
}

TEST(OpenDatabase, RefusesDamageInTheFirstPage) {
  const TempFolder folder;
  std::string bytes = ReadAll(TemplatePath(DatabaseKind::kRecipe));
  bytes.replace(100, 400, RandomBytes(400));
  const fs::path path = folder.Write("YARD.RDB", bytes);
  for (const Access access : {Access::kRead, Access::kWrite}) {
    EXPECT_EQ(Refusal(path, access).Number(), SQLITE_CORRUPT);
  }
}

TEST(OpenDatabase, DamageAnywhereIsReportedOrHarmless) {
  const TempFolder folder;
  const std::string whole = ReadAll(TemplatePath(DatabaseKind::kRecipe));
  std::mt19937 random(11);
  int reported = 0;
  for (int round = 0; round < 300; ++round) {
    std::string bytes = whole;
    // Every other round damages the header or the schema.
    const std::size_t range = round % 2 == 0 ? 1000 : bytes.size();
    for (int hit = 0; hit < 4; ++hit) {
      bytes[random() % range] = static_cast<char>(random() & 0xffU);
    }
    const fs::path path = folder.Write("YARD.RDB", bytes);
    try {
      SQLite::Database database = OpenDatabase(path, Access::kRead, kAtOnce);
      ReadIngredients(database);
      ReadRecipes(database);
      ReadPens(database);
      ReadRecipeLines(database, 1);
    } catch (const DatabaseError& error) {
      EXPECT_THAT(error.what(), StartsWith("YARD.RDB"));
      ++reported;
    }
    EXPECT_EQ(ReadAll(path), bytes);
  }
  EXPECT_GT(reported, 0);
}

TEST(OpenDatabase, RefusesToWriteAWriteProtectedFileButReadsIt) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  const WithoutWritePermission protection(folder.Path());
  const DatabaseError refusal = Refusal(path, Access::kWrite);
  EXPECT_EQ(refusal.Number(), SQLITE_READONLY);
  EXPECT_STREQ(refusal.what(), "YARD.RDB may not be written: it is write-protected");
  SQLite::Database database = OpenDatabase(path, Access::kRead);
  EXPECT_EQ(database.execAndGet("SELECT count(*) FROM Pen").getInt(), 400);
}

TEST(OpenDatabase, RefusesAFileThatAnotherProgramHolds) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  const std::string before = ReadAll(path);
  {
    const ExclusiveHolder holder(path);
    for (const Access access : {Access::kRead, Access::kWrite}) {
      try {
        OpenDatabase(path, access, kAtOnce);
        ADD_FAILURE() << "opened";
      } catch (const DatabaseError& error) {
        EXPECT_EQ(error.Number(), kTableLockedError);
        EXPECT_STREQ(error.what(), "YARD.RDB is locked by another program");
      }
    }
  }
  EXPECT_EQ(ReadAll(path), before);
  EXPECT_THAT(FileNames(folder.Path()), ElementsAre("YARD.RDB"));
}

TEST(OpenDatabase, ARefusedOpeningKeepsTheLocksOfThisProcess) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  const ExclusiveHolder holder(path);
  // Each try opens and closes the file. If it dropped the lock, a later try would succeed.
  for (int i = 0; i < 3; ++i) {
    EXPECT_THROW(OpenDatabase(path, Access::kWrite, kAtOnce), DatabaseError);
  }
}

TEST(OpenDatabase, SwitchesAWriteAheadLogToARollbackJournal) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  Alter(path, "PRAGMA journal_mode=WAL; UPDATE Pen SET FeedAmount = '9'");
  OpenDatabase(path, Access::kRead);
  EXPECT_THAT(FileNames(folder.Path()), ElementsAre("YARD.RDB"));
  EXPECT_THAT(Ask(path, "PRAGMA journal_mode"), ElementsAre("delete"));
  EXPECT_THAT(Ask(path, "SELECT DISTINCT FeedAmount FROM Pen"), ElementsAre("9"));
}

// Returns the error of a statement on a copy of a template.
DatabaseError FailureOf(const std::string& statement) {
  const TempFolder folder;
  SQLite::Database database = OpenDatabase(CopyOfTemplate(folder, "YARD.RDB"), Access::kWrite);
  try {
    database.exec(statement);
  } catch (const SQLite::Exception& error) {
    return TranslateSqliteError(error, "/some/folder/YARD.RDB");
  }
  return {0, "no failure"};
}

TEST(TranslateSqliteError, MapsAMissingTable) {
  const DatabaseError error = FailureOf("SELECT * FROM Feeds");
  EXPECT_EQ(error.Number(), -2147217865);
  EXPECT_STREQ(error.what(), "YARD.RDB: no such table: Feeds");
}

TEST(TranslateSqliteError, MapsAMissingColumn) {
  EXPECT_EQ(FailureOf("SELECT Feeds FROM Pen").Number(), 3265);
  EXPECT_EQ(FailureOf("INSERT INTO Pen (Feeds) VALUES (1)").Number(), 3265);
  EXPECT_EQ(FailureOf("UPDATE Pen SET Feeds = 1").Number(), 3265);
}

TEST(TranslateSqliteError, GivesTheExtendedCodeOfAnythingElse) {
  EXPECT_EQ(FailureOf("INSERT INTO Pen (ID) VALUES (1)").Number(), SQLITE_CONSTRAINT_PRIMARYKEY);
  EXPECT_EQ(FailureOf("SELECT").Number(), SQLITE_ERROR);
}

TEST(TranslateSqliteError, DescribesWhatHappenedToTheFile) {
  EXPECT_STREQ(
      FailureOf("PRAGMA max_page_count = 1; CREATE TABLE Full AS SELECT * FROM Pen").what(),
      "YARD.RDB could not be written: the disk is full");
  EXPECT_STREQ(FailureOf("PRAGMA query_only = ON; UPDATE Pen SET FeedAmount = '1'").what(),
               "YARD.RDB may not be written: it is write-protected");
}

TEST(TranslateSqliteError, MapsALockedFile) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  SQLite::Database database = OpenDatabase(path, Access::kWrite, kAtOnce);
  const ExclusiveHolder holder(path);
  try {
    database.exec("UPDATE Pen SET FeedAmount = '1'");
    ADD_FAILURE() << "written";
  } catch (const SQLite::Exception& error) {
    EXPECT_EQ(TranslateSqliteError(error, path).Number(), 3251);
  }
}

TEST(OpenDatabase, KnowsTheSizeOfAFileOfTheLargestPages) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  Alter(path, "PRAGMA page_size=65536; VACUUM");
  const auto size = fs::file_size(path);
  ASSERT_EQ(size % 65536, 0U);
  EXPECT_NO_THROW(OpenDatabase(path, Access::kWrite));
  fs::resize_file(path, size - 1);
  ExpectRefused(path, SQLITE_CORRUPT,
                "YARD.RDB is cut off: " + std::to_string(size - 1) + " bytes instead of " +
                    std::to_string(size));
}

// Another tool that does not keep the number of pages leaves the change counter beside it behind.
TEST(OpenDatabase, DoesNotBelieveAnOutdatedNumberOfPages) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  std::string bytes = ReadAll(path);
  bytes.replace(28, 4, std::string("\0\x10\0\0", 4));
  bytes.replace(92, 4, "\xFF\xFF\xFF\xFF");
  folder.Write("YARD.RDB", bytes);
  EXPECT_NO_THROW(OpenDatabase(path, Access::kWrite));
}

TEST(DatabaseErrors, AMovedFileIsNotCalledWriteProtected) {
  const TempFolder folder;
  const fs::path path = CopyOfTemplate(folder, "YARD.RDB");
  SQLite::Database database = OpenDatabase(path, Access::kWrite);
  fs::rename(path, folder / "OTHER.RDB");
  try {
    WithDatabaseErrors(database, [&] { database.exec("UPDATE Pen SET FeedAmount = '7'"); });
    ADD_FAILURE() << "a moved file was written";
  } catch (const DatabaseError& failure) {
    EXPECT_STREQ(failure.what(), "YARD.RDB was moved or deleted while it was open");
  }
}

TEST(DatabaseErrors, ABusyFileAndALockedTableHaveTheSameText) {
  for (const int code :
       {SQLITE_BUSY, SQLITE_BUSY_SNAPSHOT, SQLITE_LOCKED, SQLITE_LOCKED_SHAREDCACHE}) {
    const DatabaseError error =
        TranslateSqliteError(SQLite::Exception("words", code), "a/YARD.RDB");
    EXPECT_EQ(error.Number(), kTableLockedError);
    EXPECT_STREQ(error.what(), "YARD.RDB is locked by another program");
  }
}

TEST(DatabaseErrors, TheNumberIsThatOfTheDatabaseOrOfTheSystem) {
  EXPECT_EQ(FailureNumber(DatabaseError(kNoRecordError, "")), kNoRecordError);
  EXPECT_EQ(FailureNumber(std::system_error(ENOSPC, std::generic_category())), ENOSPC);
  EXPECT_EQ(FailureNumber(std::runtime_error("")), SQLITE_ERROR);
}

}  // namespace
}  // namespace vrx::testing
