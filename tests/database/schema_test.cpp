#include "database/schema.h"

#include <string>
#include <utility>
#include <vector>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/connection.h"
#include "database/templates.h"
#include "database/transactions.h"
#include "support/database_files.h"
#include "support/golden.h"

namespace vrx::testing {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;
using ::testing::StartsWith;

std::vector<std::string> AskRecipe(const std::string& query) {
  return Ask(TemplatePath(DatabaseKind::kRecipe), query);
}

std::vector<std::string> AskTransaction(const std::string& query) {
  return Ask(TemplatePath(DatabaseKind::kTransaction), query);
}

// Every column of every table, in stored order.
TEST(Schema, TablesAndColumnsAreTheGoldenOnes) {
  for (const auto& [kind, file] :
       {std::pair{DatabaseKind::kRecipe, "database/golden/recipe_columns.txt"},
        std::pair{DatabaseKind::kTransaction, "database/golden/transaction_columns.txt"}}) {
    std::string text;
    for (const std::string& column :
         Ask(TemplatePath(kind),
             "SELECT tables.name || '.' || columns.name || ' ' || columns.type "
             "FROM sqlite_schema AS tables JOIN pragma_table_info(tables.name) AS columns "
             "WHERE tables.type = 'table' ORDER BY tables.rowid, columns.cid")) {
      text += column + "\n";
    }
    EXPECT_TRUE(IsGolden(text, file));
  }
}

TEST(Schema, TheSmallTablesOfBothKindsHoldARowWithoutValues) {
  for (const DatabaseKind kind : {DatabaseKind::kRecipe, DatabaseKind::kTransaction}) {
    EXPECT_THAT(Ask(TemplatePath(kind), "SELECT UoM FROM UnitsOfMeasure"), ElementsAre(""));
    EXPECT_THAT(Ask(TemplatePath(kind), "SELECT Created FROM History"), ElementsAre("NULL"));
    EXPECT_THAT(Ask(TemplatePath(kind), "SELECT Modified FROM History"), ElementsAre("NULL"));
  }
}

TEST(Schema, ATransactionTemplateHoldsNoTransaction) {
  EXPECT_THAT(AskTransaction("SELECT count(*) FROM Transactions"), ElementsAre("0"));
}

TEST(Schema, TemplatesHaveTheNulMarker) {
  EXPECT_THAT(AskRecipe("SELECT dBType FROM BrantockDatabase"), ElementsAre("NUL_RECIPE_DB"));
  EXPECT_THAT(AskTransaction("SELECT dBType FROM BrantockDatabase"), ElementsAre("NUL_TRANS_DB"));
}

TEST(Schema, HoldsAHundredIngredientsWithTheirDefaults) {
  const std::vector<std::string> rows = AskRecipe(
      "SELECT ID || '|' || Name || '|' || Description || '|' || [DryMatter%] || '|' || HandAdd "
      "FROM Ingredient");
  ASSERT_THAT(rows, SizeIs(100));
  EXPECT_EQ(rows.front(), "1|ING001||100|0");
  EXPECT_EQ(rows.back(), "100|ING100||100|0");
  EXPECT_THAT(AskRecipe("SELECT Name = printf('ING%03d', ID) AND Description = '' AND "
                        "[DryMatter%] = 100 AND HandAdd = 0 AND ID = rowid FROM Ingredient"),
              Each("1"));
}

TEST(Schema, HoldsAHundredRecipesWithTheirDefaults) {
  const std::vector<std::string> rows = AskRecipe(
      "SELECT ID || '|' || Name || '|' || Description || '|' || BatchType || '|' || HeadCount || "
      "'|' || RationTarget || '|' || AdjBatTotIndex FROM Recipe");
  ASSERT_THAT(rows, SizeIs(100));
  EXPECT_EQ(rows.front(), "1|REC001||!|0||20");
  EXPECT_EQ(rows.back(), "100|REC100||!|0||20");
  EXPECT_THAT(AskRecipe("SELECT count(*) FROM RecipeRation"), ElementsAre("0"));
}

TEST(Schema, HoldsFourHundredPensWithTheirDefaults) {
  const std::vector<std::string> rows =
      AskRecipe("SELECT ID || '|' || Name || '|' || Description || '|' || FeedAmount FROM Pen");
  ASSERT_THAT(rows, SizeIs(400));
  EXPECT_EQ(rows.front(), "1|PEN001||0");
  EXPECT_EQ(rows.back(), "400|PEN400||0");
  EXPECT_THAT(AskRecipe("SELECT typeof(FeedAmount) FROM Pen"), Each("text"));
}

TEST(Schema, NoRecordOfATemplateIsInUse) {
  EXPECT_THAT(AskRecipe("SELECT ID FROM Ingredient WHERE (Ingredient.Description <> '') "),
              SizeIs(0));
  EXPECT_THAT(AskRecipe("SELECT ID, Name, Description, FeedAmount FROM Pen WHERE "
                        "(Pen.FeedAmount <> '0' OR Pen.Description <> '') "),
              SizeIs(0));
}

// The query plan, one line for each step.
std::vector<std::string> Plan(DatabaseKind kind, const std::string& query) {
  SQLite::Database database(TemplatePath(kind), SQLite::OPEN_READONLY);
  SQLite::Statement plan(database, "EXPLAIN QUERY PLAN " + query);
  std::vector<std::string> steps;
  while (plan.executeStep()) {
    steps.push_back(plan.getColumn("detail").getString());
  }
  return steps;
}

TEST(Schema, LinesOfARecipeAreFoundByIndex) {
  EXPECT_THAT(Plan(DatabaseKind::kRecipe, "SELECT * FROM RecipeRation WHERE (RecipeID = '1')"),
              ElementsAre(HasSubstr("USING INDEX RecipeRationByRecipe")));
  EXPECT_THAT(Plan(DatabaseKind::kRecipe, "SELECT * FROM RecipeRation WHERE (Ingredient = '1')"),
              ElementsAre(HasSubstr("USING INDEX RecipeRationByIngredient")));
}

TEST(Schema, TheHighestTransactionIsFoundByIndex) {
  EXPECT_THAT(Plan(DatabaseKind::kTransaction,
                   "SELECT max([Transaction]) FROM Transactions WHERE [Transaction] < ''"),
              ElementsAre("SEARCH Transactions USING COVERING INDEX TransactionsByNumber "
                          "(Transaction<?)"));
}

// Levels of a view of the history, outermost first, that an index has to serve, for all
// rows or for those in one range of transactions.
struct HistoryLevels {
  std::string filter;             // condition on the rows, before " AND "
  std::vector<std::string> keys;  // expressions that order the levels
  std::string index;              // as the plan names it
};

const std::string kUserNumber = "CAST(UserID AS INTEGER)";
const std::string kOneRange = std::string(kTransactionRange) + " = ? AND ";

const std::vector<HistoryLevels>& LevelsOfTheHistory() {
  static const std::vector<HistoryLevels> levels{
      {"", {"[Transaction]", "Type"}, "COVERING INDEX TransactionsByNumber"},
      {"", {"Date", "[Transaction]", "Type"}, "COVERING INDEX TransactionsByDate"},
      {kOneRange, {"Recipe", "Type"}, "INDEX TransactionsByRecipe"},
      {kOneRange + "Type = 'BATCH' AND ",
       {"Recipe", "Ingredient"},
       "INDEX TransactionsByRecipeIngredient"},
      {kOneRange + "Type = 'BATCH' AND ", {"Ingredient"}, "INDEX TransactionsByIngredient"},
      {kOneRange + "Type = 'FEED' AND ", {"Pen"}, "INDEX TransactionsByPen"},
      {"",
       {kUserNumber, "UserID", "[Transaction]"},
       "COVERING INDEX TransactionsByUserTransaction"},
      {"", {kUserNumber, "UserID", "Type"}, "COVERING INDEX TransactionsByUserType"},
  };
  return levels;
}

// Selects the rows with given values of the first `depth` keys; a condition can be appended.
std::string From(const HistoryLevels& levels, std::size_t depth) {
  std::string text = " FROM Transactions WHERE " + levels.filter;
  for (std::size_t key = 0; key < depth; ++key) {
    text += levels.keys[key] + " IS ? AND ";
  }
  return text;
}

std::string Joined(const std::vector<std::string>& keys) {
  std::string text;
  for (const std::string& key : keys) {
    text += (text.empty() ? "" : ", ") + key;
  }
  return text;
}

TEST(Schema, TheNextValueOfEveryLevelOfTheHistoryIsOneSearchOfAnIndex) {
  for (const HistoryLevels& levels : LevelsOfTheHistory()) {
    for (std::size_t depth = 0; depth < levels.keys.size(); ++depth) {
      const std::string& key = levels.keys[depth];
      std::string query = "SELECT ";
      query.append(key).append(From(levels, depth)).append(key).append(" > ? ORDER BY ");
      query.append(key).append(" LIMIT 1");
      EXPECT_THAT(Plan(DatabaseKind::kTransaction, query),
                  ElementsAre(HasSubstr("SEARCH Transactions USING")))
          << levels.index << ", " << key;
    }
    EXPECT_THAT(Plan(DatabaseKind::kTransaction,
                     "SELECT count(*)" + From(levels, 0) + "true GROUP BY " + Joined(levels.keys)),
                ElementsAre(HasSubstr("USING " + levels.index)));
  }
}

TEST(Schema, TheRecordsOfEveryGroupOfTheHistoryAreIndexedInStoredOrder) {
  for (const HistoryLevels& levels : LevelsOfTheHistory()) {
    const std::string from = From(levels, levels.keys.size());
    EXPECT_THAT(
        Plan(DatabaseKind::kTransaction, "SELECT *" + from + "rowid >= ? ORDER BY rowid LIMIT 50"),
        ElementsAre(AllOf(StartsWith("SEARCH Transactions USING INDEX Transactions"),
                          HasSubstr(levels.index.substr(levels.index.find("INDEX "))),
                          HasSubstr("rowid>?"))));
    EXPECT_THAT(Plan(DatabaseKind::kTransaction, "SELECT count(*)" + from + "true"),
                ElementsAre(StartsWith("SEARCH Transactions USING " + levels.index)));
  }
}

TEST(Schema, RecordsPickedByNameAreFoundByIndexWhateverTheirType) {
  for (const std::string name : {"Recipe", "Ingredient", "Pen"}) {
    std::string query = "SELECT * FROM Transactions WHERE (";
    query.append(name).append(" = 'A')").append(InTransactionRanges("?1"));
    std::string search = "SEARCH Transactions USING INDEX TransactionsBy";
    search.append(name).append(" (<expr>=? AND ").append(name).append("=?");
    EXPECT_THAT(Plan(DatabaseKind::kTransaction, query), Contains(StartsWith(search)));
  }
}

TEST(Schema, CreateTemplateReplacesAFileAndLeavesNoOtherFile) {
  const TempFolder folder;
  folder.Write("QXNULRDB.MDB", "something else");
  folder.Write("QXNULRDB.MDB.new", "left by a killed run");
  folder.Write("QXNULRDB.MDB.new-journal", "left by a killed run");
  CreateTemplate(folder / "QXNULRDB.MDB", DatabaseKind::kRecipe);
  EXPECT_EQ(FileNames(folder.Path()), std::vector<std::string>{"QXNULRDB.MDB"});
  EXPECT_THAT(Ask(folder / "QXNULRDB.MDB", "SELECT count(*) FROM Pen"), ElementsAre("400"));
}

TEST(Schema, CreateTemplateIntoAMissingFolderFails) {
  const TempFolder folder;
  EXPECT_THROW(CreateTemplate(folder / "none/QXNULRDB.MDB", DatabaseKind::kRecipe), DatabaseError);
}

TEST(Schema, TemplatesAreReproducible) {
  const TempFolder folder;
  for (const DatabaseKind kind : {DatabaseKind::kRecipe, DatabaseKind::kTransaction}) {
    CreateTemplate(folder / "T.MDB", kind);
    EXPECT_EQ(ReadAll(folder / "T.MDB"), ReadAll(TemplatePath(kind)));
  }
}

TEST(Schema, ABlankDatabaseInMemoryEqualsTheTemplateAndIsReadOnly) {
  for (const DatabaseKind kind : {DatabaseKind::kRecipe, DatabaseKind::kTransaction}) {
    SQLite::Database blank = BlankInMemory(kind);
    std::vector<std::string> statements;
    SQLite::Statement query(blank, "SELECT sql FROM sqlite_schema ORDER BY rowid");
    while (query.executeStep()) {
      statements.push_back(query.getColumn(0).getString());
    }
    EXPECT_EQ(statements, Ask(TemplatePath(kind), "SELECT sql FROM sqlite_schema ORDER BY rowid"));
    EXPECT_EQ(blank.execAndGet("SELECT dBType FROM BrantockDatabase").getString(),
              Ask(TemplatePath(kind), "SELECT dBType FROM BrantockDatabase").at(0));
    EXPECT_THROW(blank.exec("UPDATE UnitsOfMeasure SET UoM = 'KG'"), SQLite::Exception);
  }
}

TEST(Schema, TemplatesOpenAsDatabasesOfThisSystem) {
  for (const DatabaseKind kind : {DatabaseKind::kRecipe, DatabaseKind::kTransaction}) {
    SQLite::Database database = OpenDatabase(TemplatePath(kind), Access::kRead);
    EXPECT_EQ(database.execAndGet("PRAGMA application_id").getInt(), 0x56525832);
    EXPECT_EQ(database.execAndGet("PRAGMA user_version").getInt(), 1);
    EXPECT_EQ(database.execAndGet("PRAGMA integrity_check").getString(), "ok");
  }
}

}  // namespace
}  // namespace vrx::testing
