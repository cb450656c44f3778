#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "legacy/conversion_fixture.h"
#include "legacy/pen_file.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using Row = std::vector<std::string>;

JetWriter TransactionFile(const std::vector<JetWriter::Column>& columns) {
  JetWriter file;
  AddIdentity(file, "USER_TRANS_DB");
  file.AddTable("Transactions", columns);
  return file;
}

void ExpectCountsAddUp(const ConversionReport& report) {
  for (const ConvertedTable& table : report.tables) {
    EXPECT_EQ(table.read, table.stored + table.refused) << table.name;
    EXPECT_LE(table.repaired, table.stored) << table.name;
  }
}

TEST(ConversionOfIds, RefusesThoseOutsideTheListAndDuplicates) {
  ConversionFixture site;
  JetWriter file = PenFile();
  file.AddRow({Whole(1), Text("N01"), Text("North"), Text("10")});
  file.AddRow({Whole(0), Text("ZERO"), Text(""), Text("0")});
  file.AddRow({Whole(401), Text("FAR"), Text(""), Text("0")});
  file.AddRow({Whole(1), Text("TWICE"), Text(""), Text("0")});
  file.AddRow({kNull, Text("NONE"), Text(""), Text("0")});
  file.AddRow({Whole(400), Text("LAST"), Text(""), Text("7.5")});
  const ConversionReport report = site.Convert(file);
  ExpectCountsAddUp(report);
  EXPECT_EQ(CountsOf(report, "Pen").read, 6U);
  EXPECT_EQ(CountsOf(report, "Pen").refused, 4U);
  EXPECT_THAT(NoticeLines(report),
              ::testing::IsSupersetOf(
                  {"Pen, row 2: refused: ID is 0; expected a whole number from 1 to 400",
                   "Pen, row 3: refused: ID is 401; expected a whole number from 1 to 400",
                   "Pen, row 4: refused: a row with ID 1 came before",
                   "Pen, row 5: refused: ID is NULL; expected a whole number from 1 to 400",
                   "Pen, IDs 2-399: no such row was read; the record has its defaults"}));
  EXPECT_THAT(site.Rows("SELECT * FROM Pen WHERE ID IN (1, 2, 400)"),
              ElementsAre(Row{"1", "N01", "North", "10"}, Row{"2", "PEN002", "", "0"},
                          Row{"400", "LAST", "", "7.5"}));
  EXPECT_EQ(site.Rows("SELECT * FROM Pen").size(), 400U);
}

TEST(ConversionOfTexts, ReportsNullFromEmpty) {
  ConversionFixture site;
  JetWriter file = PenFile();
  file.AddRow({Whole(1), kNull, kNull, kNull});
  file.AddRow({Whole(2), Text(""), Text(""), Text("")});
  const ConversionReport report = site.Convert(file);
  EXPECT_EQ(CountsOf(report, "Pen").repaired, 1U);
  EXPECT_THAT(site.Rows("SELECT * FROM Pen WHERE ID < 3"),
              ElementsAre(Row{"1", "PEN001", "", "0"}, Row{"2", "", "", ""}));
}

TEST(ConversionOfTexts, CutsWhatIsTooLongAndDropsControlCharacters) {
  ConversionFixture site;
  JetWriter file = PenFile();
  file.AddRow({Whole(1), Text("ABCDEFGH"),
               Text("A\x1F"
                    "B"),
               Text("5")});
  file.AddRow({Whole(2), std::string("\x3D\xD8", 2), Text("Pen"), Text("5")});
  file.AddRow({Whole(3),
               JetWriter::Compressed("Pe\xF1"
                                     "a"),
               Text("Pen"), Text("5")});
  const ConversionReport report = site.Convert(file);
  EXPECT_THAT(site.Rows("SELECT Name, Description FROM Pen WHERE ID < 4"),
              ElementsAre(Row{"ABCDEF", "AB"}, Row{"?", "Pen"},
                          Row{"Pe\xC3\xB1"
                              "a",
                              "Pen"}));
  EXPECT_THAT(NoticeLines(report),
              Contains("Pen, row 1: Name held \"ABCDEFGH\"; \"ABCDEF\" was stored"));
  EXPECT_EQ(CountsOf(report, "Pen").repaired, 2U);
}

TEST(ConversionOfNumbers, TakesATextInANumbersPlaceOnlyIfItIsANumber) {
  ConversionFixture site;
  JetWriter file = TransactionFile({{"Transaction", JetWriter::kText},
                                    {"Target", JetWriter::kText},
                                    {"ActualBatch", JetWriter::kDouble},
                                    {"ActualFeed", JetWriter::kCurrency},
                                    {"IngPercent", JetWriter::kText}});
  file.AddRow({Text("17"), Text(" 12.5"), 3.25, kNull, Text("abc")});
  file.AddRow({Text("x"), Text("12,5"), std::numeric_limits<double>::quiet_NaN(), kNull, kNull});
  const ConversionReport report = site.Convert(file);
  ExpectCountsAddUp(report);
  EXPECT_THAT(
      site.Rows(
          "SELECT [Transaction], Target, ActualBatch, ActualFeed, IngPercent FROM Transactions"),
      ElementsAre(Row{"17", "12.5", "3.25", "0.0", "NULL"},
                  Row{"NULL", "0.0", "0.0", "0.0", "NULL"}));
  EXPECT_THAT(
      NoticeLines(report),
      ::testing::IsSupersetOf(
          {"Transactions: the column Target holds texts; the numbers in them were read",
           "Transactions, row 1: IngPercent held \"abc\" in place of a number; NULL was stored",
           "Transactions, row 2: Transaction held \"x\" in place of a whole number; NULL was "
           "stored",
           "Transactions, row 2: Target held \"12,5\" in place of a number; 0 was stored",
           "Transactions, row 2: ActualBatch held an impossible number in place of a number; 0 was "
           "stored",
           "Transactions, rows 1-2: ActualFeed was NULL; 0 was stored"}));
  EXPECT_EQ(report.sums[0].old_file, 12.5);
  EXPECT_EQ(report.sums[0].new_file, 12.5);
}

// A currency value is stored in ten-thousandths.
TEST(ConversionOfNumbers, ReadsEveryKindThatAColumnMayHave) {
  ConversionFixture site;
  JetWriter file = TransactionFile({{"Transaction", JetWriter::kByte},
                                    {"Target", JetWriter::kCurrency},
                                    {"ActualBatch", JetWriter::kInteger},
                                    {"ActualFeed", JetWriter::kLong},
                                    {"IngPercent", JetWriter::kSingle},
                                    {"Ing01Wt", JetWriter::kBoolean},
                                    {"Ing02Wt", JetWriter::kDouble}});
  file.AddRow({Whole(200), Whole(125000), Whole(-7), Whole(-100000), 37.9F, true, 1e-3});
  site.Convert(file);
  EXPECT_THAT(site.Rows("SELECT [Transaction], Target, ActualBatch, ActualFeed, IngPercent, "
                        "Ing01Wt, Ing02Wt FROM Transactions"),
              ElementsAre(Row{"200", "12.5", "-7.0", "-100000.0", "37.9", "1.0", "0.001"}));
}

TEST(ConversionOfTables, MindsNoCaseOfTheirNames) {
  ConversionFixture site;
  JetWriter file;
  file.AddTable("UNITSOFMEASURE", {{"uom", JetWriter::kText}});
  file.AddRow({Text("LB")});
  file.AddTable("PEN", {{"id", JetWriter::kLong}});
  file.AddRow({Whole(7)});
  const ConversionReport report = site.Convert(file);
  EXPECT_EQ(report.unit, "LB");
  EXPECT_EQ(CountsOf(report, "Pen").stored, 1U);
  EXPECT_THAT(NoticeLines(report), Not(Contains(HasSubstr("UnitsOfMeasure: "))));
  EXPECT_THAT(NoticeLines(report), Not(Contains(HasSubstr("Pen: the table"))));
  EXPECT_THAT(NoticeLines(report), Not(Contains(HasSubstr("has no place in the new file"))));
}

TEST(ConversionOfColumns, ReportsThoseThatAreMissingAndThoseWithoutAPlace) {
  ConversionFixture site;
  JetWriter file;
  AddIdentity(file, "USER_RECIPE_DB");
  file.AddTable("Pen", {{"id", JetWriter::kLong},
                        {"Name", JetWriter::kText},
                        {"Colour", JetWriter::kText},
                        {"FeedAmount", JetWriter::kDouble}});
  file.AddRow({Whole(1), Text("N01"), Text("red"), 10.5});
  file.AddTable("Customers", {{"Name", JetWriter::kText}});
  const ConversionReport report = site.Convert(file);
  EXPECT_THAT(site.Rows("SELECT * FROM Pen WHERE ID = 1"),
              ElementsAre(Row{"1", "N01", "", "10.5"}));
  EXPECT_EQ(CountsOf(report, "Pen").repaired, 0U);
  EXPECT_THAT(
      NoticeLines(report),
      ::testing::IsSupersetOf(
          {"Pen: the column Description is missing; every row got the default for a missing value",
           "Pen: the column Colour has no place in the new file and was left out",
           "Pen: the column FeedAmount holds numbers in place of texts",
           "Ingredient: the table is missing; the new one holds its defaults",
           "Customers: the table has no place in the new file and was left out"}));
}

TEST(ConversionOfColumns, ReportsThoseOfAKindThatIsNotRead) {
  ConversionFixture site;
  JetWriter file = TransactionFile({{"Transaction", JetWriter::kLong},
                                    {"Recipe", JetWriter::kOle},
                                    {"Target", JetWriter::kOle}});
  file.AddRow({Whole(1), std::string("bytes"), std::string("bytes")});
  const ConversionReport report = site.Convert(file);
  EXPECT_THAT(site.Rows("SELECT [Transaction], Recipe, Target FROM Transactions"),
              ElementsAre(Row{"1", "NULL", "0.0"}));
  EXPECT_EQ(CountsOf(report, "Transactions").repaired, 0U);
  const std::string words = " is of a kind that is not read; its values count as missing";
  EXPECT_THAT(NoticeLines(report),
              ::testing::IsSupersetOf({"Transactions: the column Recipe" + words,
                                       "Transactions: the column Target" + words}));
}

TEST(ConversionOfTheMarker, ReportsAnotherOneAndGoesByTheTables) {
  for (const char* const marker : {"USER_TRANS_DB", "NUL_RECIPE_DB", "SOMETHING"}) {
    ConversionFixture site;
    JetWriter file;
    AddIdentity(file, marker);
    AddPens(file);
    const ConversionReport report = site.Convert(file);
    EXPECT_EQ(report.kind, DatabaseKind::kRecipe);
    EXPECT_EQ(CountsOf(report, "BrantockDatabase").repaired, 1U);
    EXPECT_THAT(NoticeLines(report),
                Contains("BrantockDatabase, row 1: dBType was \"" + std::string(marker) +
                         "\", which is not the mark of such a file; USER_RECIPE_DB was stored"));
    EXPECT_THAT(site.Rows("SELECT * FROM BrantockDatabase"), ElementsAre(Row{"USER_RECIPE_DB"}));
  }
}

TEST(ConversionOfTheMarker, DecidesWhereThereAreTablesOfBothKinds) {
  for (const char* const marker : {"USER_TRANS_DB", "NUL_TRANS_DB"}) {
    ConversionFixture site;
    JetWriter file;
    AddIdentity(file, marker);
    AddPens(file);
    file.AddTable("Transactions", {{"Transaction", JetWriter::kLong}});
    file.AddRow({Whole(1)});
    const ConversionReport report = site.Convert(file);
    EXPECT_EQ(report.kind, DatabaseKind::kTransaction);
    EXPECT_THAT(NoticeLines(report),
                Contains("Pen: the table has no place in the new file and was left out"));
  }
  ConversionFixture site;
  JetWriter undecided;
  AddIdentity(undecided, "SOMETHING");
  AddPens(undecided);
  undecided.AddTable("Transactions", {{"Transaction", JetWriter::kLong}});
  undecided.Write(site.folder / "BOTH.RDB");
  EXPECT_THAT(site.Refusal(site.folder / "BOTH.RDB"),
              HasSubstr("holds no mark that says which of its tables count"));
}

TEST(ConversionOfAFile, WithNoneOfTheTablesIsRefused) {
  ConversionFixture site;
  JetWriter file;
  file.AddTable("Customers", {{"Name", JetWriter::kText}});
  file.Write(site.old_path);
  EXPECT_THAT(site.Refusal(site.old_path),
              HasSubstr("OLD.RDB holds no table of an earlier version of this program"));
  EXPECT_THAT(site.Files(), ElementsAre("OLD.RDB"));
}

TEST(ConversionOfAFile, OfTheOtherKindThanAskedForIsRefused) {
  ConversionFixture site;
  site.kind = DatabaseKind::kTransaction;
  EXPECT_THAT(site.Refusal(site.Data("LEGACYR.RDB")),
              HasSubstr("LEGACYR.RDB is a recipe database; expected a transaction database"));
  EXPECT_THAT(site.Files(), ElementsAre());
}

TEST(ConversionOfTheUnit, TakesTheSystemsWhereTheFileHasNone) {
  ConversionFixture site;
  JetWriter file;
  AddIdentity(file, "USER_RECIPE_DB", "TONS");
  AddPens(file);
  const ConversionReport report = site.Convert(file);
  EXPECT_EQ(report.unit, "KG");
  EXPECT_THAT(NoticeLines(report),
              Contains("UnitsOfMeasure, row 1: UoM was \"TONS\"; KG was stored"));
}

TEST(ConversionOfTheUnit, TakesTheFilesHoweverItIsWritten) {
  for (const std::string written : {" LB", "lb", "LB "}) {
    ConversionFixture site;
    JetWriter file;
    AddIdentity(file, "USER_RECIPE_DB", written);
    AddPens(file);
    const ConversionReport report = site.Convert(file);
    EXPECT_EQ(report.unit, "LB");
    EXPECT_THAT(NoticeLines(report),
                Contains("UnitsOfMeasure, row 1: UoM was \"" + written + "\"; LB was stored"));
  }
}

TEST(ConversionOfTheIdentity, ReportsTablesThatAreMissing) {
  ConversionFixture site;
  JetWriter file;
  AddPens(file);
  const ConversionReport report = site.Convert(file);
  EXPECT_EQ(report.unit, "KG");
  EXPECT_EQ(report.tables.size(), 1U);
  EXPECT_THAT(NoticeLines(report),
              ::testing::IsSupersetOf(
                  {"BrantockDatabase: the table is missing; the new one holds its defaults",
                   "UnitsOfMeasure: the table is missing; the new one holds its defaults",
                   "History: the table is missing; the new one holds its defaults",
                   "UnitsOfMeasure: UoM was NULL; KG was stored"}));
  EXPECT_THAT(NoticeLines(report), Not(Contains(HasSubstr("Transactions"))));
}

TEST(ConversionOfTheIdentity, TakesTheFirstRowOfATable) {
  ConversionFixture site;
  JetWriter file;
  file.AddTable("UnitsOfMeasure", {{"UoM", JetWriter::kText}});
  file.AddRow({Text("LB")});
  file.AddRow({Text("KG")});
  AddPens(file);
  const ConversionReport report = site.Convert(file);
  EXPECT_EQ(report.unit, "LB");
  const ConvertedTable& units = CountsOf(report, "UnitsOfMeasure");
  EXPECT_EQ(units.read, 2U);
  EXPECT_EQ(units.stored, 1U);
  EXPECT_EQ(units.refused, 1U);
  EXPECT_THAT(NoticeLines(report),
              Contains("UnitsOfMeasure, row 2: refused: the table holds one row only"));
}

TEST(ConversionOfLines, RefusesThoseOfNoRecipeAndTheThirtyThird) {
  ConversionFixture site;
  JetWriter file;
  AddIdentity(file, "USER_RECIPE_DB");
  file.AddTable("RecipeRation", {{"RecipeID", JetWriter::kText},
                                 {"Ingredient", JetWriter::kText},
                                 {"Target", JetWriter::kText},
                                 {"Sequence", JetWriter::kLong}});
  file.AddRow({Text("abc"), Text("1"), Text("1"), Whole(1)});
  file.AddRow({Text("5"), Text("101"), Text("1"), Whole(1)});
  file.AddRow({Text("07"), Text("1"), Text("ten"), Whole(1)});
  for (int line = 1; line <= 33; ++line) {
    file.AddRow({Text("9"), Text("1"), kNull, Whole(line)});
  }
  const ConversionReport report = site.Convert(file);
  ExpectCountsAddUp(report);
  EXPECT_EQ(CountsOf(report, "RecipeRation").stored, 33U);
  EXPECT_THAT(
      NoticeLines(report),
      ::testing::IsSupersetOf(
          {"RecipeRation, row 1: refused: RecipeID is \"abc\"; expected a whole number from 1 to "
           "100",
           "RecipeRation, row 2: refused: Ingredient is \"101\"; expected a whole number from 1 to "
           "100",
           "RecipeRation, row 3: RecipeID was not written as a plain number; 7 was stored",
           "RecipeRation, row 3: Target held \"ten\" in place of a number; 0 was stored",
           "RecipeRation, row 36: refused: recipe 9 has 32 lines already"}));
}

TEST(ConversionOfMoments, KeepsDayAndSecondHoweverTheyWereKept) {
  ConversionFixture site;
  JetWriter file = TransactionFile({{"Time", JetWriter::kDate}, {"Date", JetWriter::kDate}});
  constexpr double kDay = 40000;  // 2009-07-06
  file.AddRow({JetDate{(5 * 3600 + 59 * 60 + 59) / 86400.0}, JetDate{kDay}});
  file.AddRow({JetDate{kDay + 0.5}, JetDate{kDay}});
  file.AddRow({JetDate{kDay + 0.25}, kNull});
  file.AddRow({kNull, JetDate{kDay + 0.75}});
  file.AddRow({JetDate{kDay + 1.5}, JetDate{kDay}});
  file.AddRow({JetDate{std::numeric_limits<double>::infinity()}, JetDate{1e12}});
  file.AddRow({kNull, kNull});
  const ConversionReport report = site.Convert(file);
  EXPECT_THAT(site.Rows("SELECT Date, Time FROM Transactions"),
              ElementsAre(Row{"2009-07-06", "05:59:59"}, Row{"2009-07-06", "12:00:00"},
                          Row{"2009-07-06", "06:00:00"}, Row{"2009-07-06", "18:00:00"},
                          Row{"2009-07-06", "12:00:00"}, Row{"NULL", "NULL"}, Row{"NULL", "NULL"}));
  EXPECT_THAT(NoticeLines(report),
              ::testing::IsSupersetOf(
                  {"Transactions, row 3: Date was NULL; the day in Time was stored",
                   "Transactions, row 4: Time was NULL; the time of day in Date was stored",
                   "Transactions, row 5: Time held the day 2009-07-07 as well, which was left out",
                   "Transactions, row 6: Date held an impossible date in place of a date; NULL was "
                   "stored"}));
  EXPECT_EQ(CountsOf(report, "Transactions").repaired, 4U);
}

TEST(ConversionOfMoments, ReadsTextsOfTheStoredForm) {
  ConversionFixture site;
  JetWriter file = TransactionFile({{"Time", JetWriter::kText}, {"Date", JetWriter::kText}});
  file.AddRow({Text("05:59:59"), Text("2009-07-06")});
  file.AddRow({Text("2009-07-06"), Text("40000")});
  const ConversionReport report = site.Convert(file);
  EXPECT_THAT(site.Rows("SELECT Date, Time FROM Transactions"),
              ElementsAre(Row{"2009-07-06", "05:59:59"}, Row{"NULL", "NULL"}));
  EXPECT_THAT(NoticeLines(report),
              Contains("Transactions, row 2: Date held \"40000\" in place of a date; NULL was "
                       "stored"));
}

TEST(ConversionOfRows, LeavesDeletedOnesOutAndFindsMovedOnes) {
  ConversionFixture site;
  JetWriter file = PenFile();
  file.AddRow({Whole(1), Text("FIRST"), Text(""), Text("0")});
  file.AddRow({Whole(2), Text("GONE"), Text(""), Text("0")}, JetWriter::Place::kDeleted);
  file.AddRow({Whole(3), Text("MOVED"), Text("Far away"), Text("9")}, JetWriter::Place::kMoved);
  file.AddRow({Whole(4), Text("LAST"), Text(""), Text("0")});
  const ConversionReport report = site.Convert(file);
  EXPECT_EQ(CountsOf(report, "Pen").read, 3U);
  EXPECT_THAT(site.Rows("SELECT Name FROM Pen WHERE ID < 5"),
              ElementsAre(Row{"FIRST"}, Row{"PEN002"}, Row{"MOVED"}, Row{"LAST"}));
  EXPECT_THAT(NoticeLines(report), Not(Contains(HasSubstr("should have"))));
  EXPECT_THAT(NoticeLines(report), Not(Contains(HasSubstr("History"))));
}

TEST(ConversionOfRows, ReportsWhenThereAreMoreOrFewerThanTheFileSays) {
  ConversionFixture site;
  JetWriter file = PenFile();
  file.AddRow({Whole(1), Text("FIRST"), Text(""), Text("0")});
  file.Announce(5);
  EXPECT_THAT(NoticeLines(site.Convert(file)),
              ::testing::IsSupersetOf(
                  {"Pen: the table should have 5 rows; 1 were found",
                   "Pen, IDs 2-400: no such row was read; the record has its defaults"}));
  ConversionFixture other;
  file.AddRow({Whole(2), Text("SECOND"), Text(""), Text("0")});
  file.Announce(1);
  EXPECT_THAT(NoticeLines(other.Convert(file)),
              ::testing::Contains("Pen: the table should have 1 rows; 2 were found"));
}

TEST(ConversionReport, JoinsTheRowsOfEqualNotices) {
  ConversionFixture site;
  JetWriter file = PenFile();
  for (int id = 1; id <= 400; ++id) {
    file.AddRow({Whole(id), kNull, Text(id % 2 == 0 ? "x" : "y"), Text("0")});
  }
  const ConversionReport report = site.Convert(file);
  EXPECT_THAT(NoticeLines(report),
              Contains("Pen, rows 1-400: Name was NULL; the record's default name was stored"));
  EXPECT_EQ(CountsOf(report, "Pen").repaired, 400U);
}

}  // namespace
}  // namespace vrx::testing
