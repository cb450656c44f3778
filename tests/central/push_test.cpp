#include <string>

#include <gmock/gmock.h>

#include "base/uuid.h"
#include "central/administration.h"
#include "central/client_fixture.h"
#include "central/server_source.h"
#include "central/transfer.h"
#include "database/copy_database.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

class CentralPush : public ClientFixture {};

TEST_F(CentralPush, TakesAllRowsThereInPortionsOfWholeBatches) {
  const fs::path file = MakeFile("Y.TDB", 200);
  const PushOutcome outcome = Push(file);
  EXPECT_EQ(outcome.rows, 1000);
  EXPECT_EQ(outcome.last_row, 1000);
  EXPECT_EQ(outcome.portions, 4);
  ExpectThere(file, 1000);
  EXPECT_EQ(Value("SELECT count(*) FROM (SELECT first_row FROM vrx.push WHERE (last_row % 5) <> 0) "
                  "AS p"),
            "0");
  EXPECT_EQ(Value("SELECT bool_and(chain = sha256(before || digest)) FROM (SELECT chain, digest, "
                  "lag(chain, 1, decode(repeat('00', 32), 'hex')) OVER (ORDER BY first_row) AS "
                  "before FROM vrx.push) AS p"),
            "t");
}

TEST_F(CentralPush, GoesOnAfterTheLastRowThatIsThere) {
  const fs::path file = MakeFile("Y.TDB", 10);
  EXPECT_EQ(Push(file).rows, 50);
  EXPECT_EQ(Push(file).rows, 0);
  AddBatches(file, 2);
  EXPECT_EQ(Push(file).rows, 10);
  ExpectThere(file, 60);
}

TEST_F(CentralPush, StoresTheValuesThatTheFileHas) {
  const fs::path file = MakeFile("Y.TDB", 60);
  Push(file);
  EXPECT_EQ(Rows(Restore("R.TDB")), Rows(file));
}

TEST_F(CentralPush, AVacuumBetweenTwoPushesChangesNothing) {
  const fs::path file = MakeFile("Y.TDB", 10);
  Alter(file, "DELETE FROM Transactions WHERE [Transaction] IN (3, 4)");
  Push(file);
  Alter(file, "VACUUM");
  AddBatches(file, 1);
  EXPECT_EQ(Push(file).rows, 5);
  ExpectThere(file, 45);
}

TEST_F(CentralPush, RefusesRowsThatWereChangedAndSaysWhich) {
  const fs::path file = MakeFile("Y.TDB", 10);
  Push(file);
  Alter(file, "UPDATE Transactions SET Target = Target + 1 WHERE rowid IN (7, 8, 20)");
  Alter(file, "DELETE FROM Transactions WHERE rowid = 50");
  AddBatches(file, 1);
  EXPECT_THAT(Refusal(OrderFor(file)), HasSubstr("after they were pushed: 7-8, 20, 50."));
  EXPECT_EQ(Value("SELECT count(*) FROM vrx.transaction"), "50");
}

TEST_F(CentralPush, GoesOnWhenChangedRowsAreAsTheyWere) {
  const fs::path file = MakeFile("Y.TDB", 10);
  Push(file);
  Alter(file, "UPDATE Transactions SET Recipe = 'X' || Recipe WHERE rowid = 7");
  EXPECT_NE(Refusal(OrderFor(file)), "");
  Alter(file, "UPDATE Transactions SET Recipe = substr(Recipe, 2) WHERE rowid = 7");
  EXPECT_EQ(Refusal(OrderFor(file)), "");
  ExpectThere(file, 50);
}

TEST_F(CentralPush, GoesOnWhenTheDeletedRowsWereWithdrawnOrErased) {
  const fs::path file = MakeFile("Y.TDB", 10);
  const std::string source = Push(file).source;
  Alter(file, "DELETE FROM Transactions WHERE [Transaction] = 10");
  EXPECT_NE(Refusal(OrderFor(file)), "");
  Withdraw(chief_, {.source = source, .first_row = 46, .last_row = 48, .why = "fed twice"});
  Erase(chief_, {.source = source, .first_row = 49, .last_row = 50, .why = "fed twice"});
  EXPECT_EQ(Refusal(OrderFor(file)), "");
}

TEST_F(CentralPush, ARowWithTheNumberOfADeletedOneIsRefused) {
  const fs::path file = MakeFile("Y.TDB", 2);
  Push(file);
  Alter(file, "DROP TRIGGER CentralDeleted; DROP TRIGGER CentralAdded");
  Alter(file, "DELETE FROM Transactions WHERE rowid = 10");
  AddBatches(file, 1);
  EXPECT_THAT(Refusal(OrderFor(file)), HasSubstr("older copy"));
}

TEST_F(CentralPush, AnOlderCopyInThePlaceOfTheFileIsRefused) {
  const fs::path file = MakeFile("Y.TDB", 4);
  Push(file);
  fs::copy_file(file, folder_ / "OLD.TDB");
  AddBatches(file, 4);
  Push(file);
  fs::copy_file(folder_ / "OLD.TDB", file, fs::copy_options::overwrite_existing);
  EXPECT_THAT(Refusal(OrderFor(file)), HasSubstr("older copy"));
  Alter(file, "UPDATE UnitsOfMeasure SET UoM = 'LB'");
  Alter(file, "INSERT INTO Transactions ([Transaction], Recipe) SELECT 99, 'Z' FROM Transactions");
  EXPECT_THAT(Refusal(OrderFor(file)), HasSubstr("from row 21 on"));
}

TEST_F(CentralPush, ACopyByCpWithTheSameRowsGoesOn) {
  const fs::path file = MakeFile("Y.TDB", 4);
  Push(file);
  fs::copy_file(file, folder_ / "COPY.TDB");
  AddBatches(file, 1);
  Push(file);
  AddBatches(folder_ / "COPY.TDB", 2);  // the first of them is the same
  EXPECT_EQ(Push(folder_ / "COPY.TDB").rows, 5);
  ExpectThere(folder_ / "COPY.TDB", 30);
}

TEST_F(CentralPush, ErasedRowsDoNotMakeACopyAnotherFile) {
  const fs::path file = MakeFile("Y.TDB", 4);
  const std::string source = Push(file).source;
  fs::copy_file(file, folder_ / "COPY.TDB");
  AddBatches(file, 1);
  Push(file);
  AddBatches(folder_ / "COPY.TDB", 1);  // the same
  Erase(chief_, {.source = source, .first_row = 22, .last_row = 23, .why = "wrong yard"});
  EXPECT_EQ(Push(folder_ / "COPY.TDB").rows, 0);
}

TEST_F(CentralPush, SaveAsMakesACopyThatNeedsAWord) {
  const fs::path file = MakeFile("Y.TDB", 4);
  const std::string source = Push(file).source;
  AddBatches(file, 1);
  const fs::path copy = folder_ / "COPY.TDB";
  CopyDatabaseFile(file, copy, kBusyTimeout);
  Push(file);
  AddBatches(copy, 2);
  PushOrder order = OrderFor(copy);
  EXPECT_THAT(Refusal(order), HasSubstr("copy"));
  order.as_new_source = true;
  EXPECT_EQ(Refusal(order), "");
  // The rows that both have stay the first one's: 25 of Y, 10 of COPY.
  ExpectThere(copy, 35);
  ExpectThere(file, 35);
  EXPECT_EQ(Value("SELECT parent_last_row FROM vrx.source WHERE parent = $1", {source}), "25");
  AddBatches(file, 1);
  AddBatches(copy, 1);
  EXPECT_EQ(Push(file).rows, 5);
  EXPECT_EQ(Push(copy).rows, 5);
  EXPECT_EQ(Rows(Restore("R.TDB", Value("SELECT source FROM vrx.source WHERE parent IS NOT NULL"))),
            Rows(copy));
}

TEST_F(CentralPush, AFileFromAnotherComputerIsACopy) {
  const fs::path file = MakeFile("Y.TDB", 4);
  Push(file);
  const fs::path copy = folder_ / "COPY.TDB";
  fs::copy_file(file, copy);
  AddBatches(file, 1);
  Alter(copy, "INSERT INTO Transactions ([Transaction], Type) VALUES (5, 'BATCH')");
  PushOrder order = OrderFor(copy);
  order.machine = "second PC";
  EXPECT_THAT(Refusal(order), HasSubstr("copy"));
  EXPECT_THAT(Refusal(OrderFor(copy)), HasSubstr("copy"));  // also back on the first one
  order.as_new_source = true;
  EXPECT_EQ(Refusal(order), "");
  EXPECT_EQ(Push(file).rows, 5);
  ExpectThere(file, 26);
  ExpectThere(copy, 26);
}

TEST_F(CentralPush, ACopyFromBeforeTheFirstPushIsACopy) {
  const fs::path file = MakeFile("Y.TDB", 4);
  fs::copy_file(file, folder_ / "COPY.TDB");
  Push(file);
  AddBatches(folder_ / "COPY.TDB", 1);
  PushOrder order = OrderFor(folder_ / "COPY.TDB");
  EXPECT_THAT(Refusal(order), HasSubstr("copy"));
  order.as_new_source = true;
  EXPECT_EQ(Refusal(order), "");
  ExpectThere(order.file, 25);
  ExpectThere(file, 25);
}

// The copy begins in the middle of a push of its origin.
TEST_F(CentralPush, ACopyIsRestoredWithTheRowsBeforeItBegins) {
  const fs::path file = MakeFile("Y.TDB", 4);
  const fs::path copy = folder_ / "COPY.TDB";
  fs::copy_file(file, copy);
  AddBatches(file, 2);
  EXPECT_EQ(Push(file).portions, 1);
  Alter(copy, "INSERT INTO Transactions ([Transaction], Type) VALUES (5, 'BATCH')");
  PushOrder order = OrderFor(copy);
  order.as_new_source = true;
  EXPECT_EQ(Refusal(order), "");
  ExpectThere(copy, 31);
  EXPECT_EQ(Rows(Restore("R.TDB", Ask(copy, "SELECT Source FROM CentralSource"))), Rows(copy));
}

// The third file shares fewer rows with the second one than that one with the first.
TEST_F(CentralPush, ACopyOfACopyGoesOnAfterTheRowsThatAllHave) {
  const fs::path file = MakeFile("A.TDB", 5);
  Push(file);
  const auto go_on = [this](const fs::path& origin, const std::string& name,
                            const std::string& change) {
    const fs::path copy = folder_ / name;
    CopyDatabaseFile(origin, copy, kBusyTimeout);
    Alter(copy, change);
    PushOrder order = OrderFor(copy);
    order.as_new_source = true;
    EXPECT_EQ(Refusal(order), "");
    return copy;
  };
  const fs::path second =
      go_on(file, "B.TDB", "INSERT INTO Transactions ([Transaction], Type) VALUES (6, 'BATCH')");
  const fs::path third =
      go_on(second, "C.TDB", "UPDATE Transactions SET Pen = 'X' WHERE rowid = 21");
  ExpectThere(third, 32);
  EXPECT_EQ(Rows(Restore("R.TDB", Ask(third, "SELECT Source FROM CentralSource"))), Rows(third));
}

TEST_F(CentralPush, ARestoredFileIsACopy) {
  const fs::path file = MakeFile("Y.TDB", 4);
  Push(file);
  PushOrder order = OrderFor(Restore("R.TDB"));
  EXPECT_THAT(Refusal(order), HasSubstr("copy"));
  AddBatches(order.file, 1);
  order.as_new_source = true;
  EXPECT_EQ(Refusal(order), "");
  ExpectThere(order.file, 25);
}

TEST_F(CentralPush, ADatabaseMadeBeforeGetsRowNumbers) {
  const fs::path file = MakeFile("Y.TDB", 4);
  Alter(file,
        "CREATE TABLE Kept AS SELECT * FROM Transactions; DROP TABLE Transactions; ALTER "
        "TABLE Kept DROP COLUMN RowNumber; ALTER TABLE Kept RENAME TO Transactions");
  Push(file);
  ExpectThere(file, 20);
}

TEST_F(CentralPush, RefusesValuesThatTheServerCannotHold) {
  const auto refusal_of = [this](const std::string& change) {
    const fs::path file = MakeFile(NewUuid().substr(0, 8) + ".TDB", 2);
    Alter(file, "UPDATE Transactions SET " + change + " WHERE rowid = 4");
    return Refusal(OrderFor(file));
  };
  EXPECT_THAT(refusal_of("Recipe = 'A' || char(0) || 'B'"), HasSubstr("row 4"));
  EXPECT_THAT(refusal_of("Pen = CAST(X'C328' AS TEXT)"), HasSubstr("Pen"));
  EXPECT_THAT(refusal_of("Target = 9e999"), HasSubstr("Target: it is a number without an end"));
  EXPECT_THAT(refusal_of("ActualFeed = 'much'"), HasSubstr("ActualFeed: it is not a number"));
  EXPECT_THAT(refusal_of("Date = X'00'"), HasSubstr("Date: it is not a text"));
  EXPECT_THAT(refusal_of("[Transaction] = 1.5"), HasSubstr("it is not a whole number"));
  EXPECT_THAT(refusal_of("Ing32Wt = 'x'"), HasSubstr("Ing32Wt"));
  EXPECT_EQ(Value("SELECT count(*) FROM vrx.transaction"), "0");
}

TEST_F(CentralPush, RefusesAFileWithoutAUnitAndAYardOfOthers) {
  const fs::path file = MakeFile("Y.TDB", 2);
  PushOrder order = OrderFor(file);
  order.yard = "South";
  EXPECT_THAT(Refusal(order), HasSubstr("no yard \"South\" for this login"));
  Alter(file, "UPDATE UnitsOfMeasure SET UoM = ''");
  EXPECT_THAT(Refusal(OrderFor(file)), HasSubstr("no unit"));
}

TEST_F(CentralPush, ALabelThatChangesLaterMarksTheSource) {
  const fs::path file = MakeFile("Y.TDB", 2);
  Push(file);
  Alter(file, "UPDATE UnitsOfMeasure SET UoM = 'KG'");
  Push(file);
  Push(file);
  EXPECT_EQ(Value("SELECT string_agg(kind || ' ' || value, ',') FROM vrx.mark"), "label KG");
}

TEST_F(CentralPush, ImportsGoWithTheirRows) {
  const fs::path file = MakeFile("Y.TDB", 1);  // five rows of no import
  Alter(file,
        "CREATE TABLE Imports (Number INTEGER PRIMARY KEY AUTOINCREMENT, At TEXT, File TEXT, "
        "SHA256 TEXT, Units TEXT, RowsRead INTEGER, Stored INTEGER, LeftOut INTEGER, NotRead "
        "INTEGER, Repeated INTEGER, Batches INTEGER, FileLow INTEGER, FileHigh INTEGER, Missing "
        "TEXT, StoredLow INTEGER, StoredHigh INTEGER, FirstDate TEXT, LastDate TEXT, Settled TEXT);"
        "CREATE TABLE ImportedBatches (Import INTEGER, FileNumber INTEGER, [Transaction] INTEGER, "
        "State TEXT, Loads TEXT, Feeds TEXT, Rows INTEGER);"
        "INSERT INTO Imports (At, File, Units, Stored) VALUES ('2026-01-05T06:30:00-06:00', "
        "'01.QXT', 'LB', 5), ('2026-01-06T06:30:00-06:00', 'O''B \\.QXT', 'KG', 7);"
        "INSERT INTO ImportedBatches VALUES (1, 1, 2, 'new', 'aa', 'f1', 5), (2, 1, 2, "
        "'continued', 'aa', 'f1' || char(10) || 'f2', 2), (2, 2, 3, 'new', 'bb', '', 5)");
  AddBatches(file, 1);
  Alter(file, "INSERT INTO Transactions ([Transaction], Type) VALUES (2, 'FEED'), (2, 'FEED')");
  AddBatches(file, 1);
  Push(file);
  ExpectThere(file, 17);
  EXPECT_EQ(Value("SELECT string_agg(coalesce(import::text, '-'), '' ORDER BY row) FROM "
                  "vrx.transaction"),
            "-----111112222222");
  EXPECT_EQ(Value("SELECT string_agg(file || ' ' || units, ',' ORDER BY import) FROM vrx.import"),
            "01.QXT LB,O'B \\.QXT KG");
  Alter(file, "UPDATE Imports SET Settled = 'convert' WHERE Number = 2");
  Push(file);
  Push(file);
  EXPECT_EQ(Value("SELECT string_agg(kind || ' ' || import || ' ' || value, ',') FROM vrx.mark"),
            "settled 2 convert");
  const fs::path copy = Restore("R.TDB");
  for (const std::string table : {"Imports", "ImportedBatches"}) {
    for (const char* const form : {"SELECT group_concat(quote(a.Units) || quote(a.Stored) || "
                                   "quote(a.At) || quote(a.Settled) || a.File) FROM Imports AS a",
                                   "SELECT group_concat(Import || State || Loads || Feeds || Rows) "
                                   "FROM ImportedBatches"}) {
      EXPECT_EQ(Ask(copy, form), Ask(file, form)) << table;
    }
  }
}

// The server stores another row than it got, with a digest that fits.
TEST_F(CentralPush, TakesNothingThereWhenTheProofFails) {
  const fs::path file = MakeFile("Y.TDB", 20);
  chief_.Query(
      "CREATE FUNCTION public.alter_row() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN NEW.pen := "
      "'X'; NEW.digest := sha256(record_send(ROW(NEW.row, NEW.number, NEW.recipe, NEW.type, "
      "NEW.user_id, NEW.ingredient, NEW.pen, NEW.target, NEW.actual_batch, NEW.time, NEW.date, "
      "NEW.actual_feed, NEW.ing_percent, NEW.weights))); RETURN NEW; END $$;"
      "CREATE TRIGGER alter_row BEFORE INSERT ON vrx.transaction FOR EACH ROW WHEN (NEW.row = 77) "
      "EXECUTE FUNCTION public.alter_row()");
  const std::string rows_there =
      "SELECT (SELECT count(*) FROM vrx.transaction) + (SELECT count(*) FROM vrx.push) + (SELECT "
      "count(*) FROM vrx.batch_day)";
  CentralConnection server = Connect();
  try {
    vrx::Push(server, OrderFor(file));
    ADD_FAILURE() << "another row is taken for that of the file";
  } catch (const CentralRefused& error) {
    EXPECT_THAT(error.what(), HasSubstr("the proof of rows 1 to 100 failed"));
  }
  EXPECT_EQ(server.Query(rows_there).Number(0, 0), 0) << "on the connection, which goes on";
  EXPECT_EQ(Value(rows_there), "0");
  chief_.Query("DROP TRIGGER alter_row ON vrx.transaction");
  EXPECT_EQ(Push(file).rows, 100);
  ExpectThere(file, 100);
}

TEST_F(CentralPush, SkipsRowsThatAreThereAndRefusesOtherOnes) {
  const fs::path file = MakeFile("Y.TDB", 10);
  Push(file);
  chief_.Query("DELETE FROM vrx.push");
  const PushOutcome outcome = Push(file);
  EXPECT_EQ(outcome.rows, 0);
  EXPECT_EQ(outcome.skipped, 50);
  ExpectThere(file, 50);
  chief_.Query("DELETE FROM vrx.push");
  chief_.Query("ALTER TABLE vrx.transaction DROP CONSTRAINT row_equals_its_digest");
  chief_.Query("UPDATE vrx.transaction SET digest = sha256(digest) WHERE row = 7");
  EXPECT_THAT(Refusal(OrderFor(file)), HasSubstr("transaction_pkey"));
  EXPECT_EQ(Value("SELECT count(*) FROM vrx.push"), "0");
}

TEST_F(CentralPush, ClearsNothingOfASecondYard) {
  const fs::path file = MakeFile("Y.TDB", 2);
  Push(file);
  PushOrder order = OrderFor(MakeFile("S.TDB", 3));
  order.yard = "South";
  CentralConnection south = Connect(kSouth);
  EXPECT_EQ(vrx::Push(south, order).rows, 15);
  ExpectThere(file, 10);
}

}  // namespace
}  // namespace vrx::testing
