#include <filesystem>
#include <string>
#include <vector>

#include <SQLiteCpp/Transaction.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "ctl/ctl_fixture.h"
#include "support/database_files.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using Json = nlohmann::ordered_json;

class DatabaseFiles : public CtlTest {
 protected:
  void WriteUnit(const std::string& text) {
    folder.Write("data/VRX-2260.INI",
                 "[Comments]\nTitle=x\n[Configuration]\nSystemUnits=" + text + "\n");
  }
  static std::string UnitOf(const std::string& path) {
    return Ask(path, "SELECT UoM FROM UnitsOfMeasure").front();
  }
};

// Every way to name a database on the command line. The file is not read while it is locked:
// closing it would drop the locks of this process.
TEST_F(DatabaseFiles, ALockedOneIsReportedAsLocked) {
  const std::string path = (folder / "BUSY.RDB").string();
  std::filesystem::copy_file(SitePath("SITE.RDB"), path);
  const std::string transactions = NewTransactionDatabase();
  const std::string before = ReadAll(path);
  busy_timeout = std::chrono::milliseconds{20};
  {
    const ExclusiveHolder holder(path);
    const std::vector<std::vector<std::string>> uses = {
        {"info", path},
        {"list", "ingredients", path},
        {"set", "pen", path, "1", "--name", "A01"},
        {"store", SitePath("day05.qxt"), "--into", transactions, "--recipes", path},
        {"store", SitePath("day05.qxt"), "--into", path, "--recipes", SitePath("SITE.RDB")}};
    for (const auto& args : uses) {
      EXPECT_EQ(Run(args), 1) << args.front();
      EXPECT_THAT(err, HasSubstr("A table in the specified database is locked.\n"
                                 "cause: BUSY.RDB is locked by another program\n"))
          << args.front();
    }
  }
  EXPECT_TRUE(ReadAll(path) == before);
}

TEST_F(DatabaseFiles, ADamagedOneIsReportedUnderTheTitleOfItsKind) {
  const std::string transactions = NewTransactionDatabase();
  Alter(transactions, "DROP TABLE Transactions");
  EXPECT_EQ(Run({"show", transactions, "--group", "0"}), 1);
  EXPECT_THAT(err, StartsWith("Open Transaction File Error: "));
  const std::string recipes = NewRecipeDatabase();
  Alter(recipes, "DROP TABLE Pen");
  EXPECT_EQ(Run({"list", "pens", recipes}), 1);
  EXPECT_THAT(err, StartsWith("Open Recipe File Error: "));
}

TEST_F(DatabaseFiles, InfoGoesByTheContentAndNotByTheName) {
  ASSERT_EQ(Run({"info", NewTransactionDatabase("ODD.RDB"), "--json"}), 0) << err;
  EXPECT_EQ(Json::parse(out)["type"], "transaction");
  ASSERT_EQ(Run({"info", NewRecipeDatabase("ODD.TDB"), "--json"}), 0) << err;
  EXPECT_EQ(Json::parse(out)["type"], "recipe");
}

TEST_F(DatabaseFiles, InfoReportsTheFixedRecordsThatAreMissing) {
  const std::string path = NewRecipeDatabase();
  ASSERT_EQ(Run({"info", path, "--json"}), 0) << err;
  EXPECT_FALSE(Json::parse(out).contains("missing"));
  Alter(path, "DELETE FROM Recipe WHERE ID = 1; DELETE FROM Pen WHERE ID > 397");
  ASSERT_EQ(Run({"info", path, "--json"}), 0) << err;
  EXPECT_EQ(Json::parse(out)["missing"], "recipes 1; pens 398-400");
  ASSERT_EQ(Run({"info", path}), 0);
  EXPECT_THAT(out, HasSubstr("recipes 1; pens 398-400"));
}

TEST_F(DatabaseFiles, AnUnknownSystemUnitIsReportedAndTreatedAsPounds) {
  WriteUnit("TON");
  const std::string path = NewRecipeDatabase();
  EXPECT_THAT(err,
              StartsWith("INI File Error: The setting SystemUnits of the applications INI file is "
                         "TON; expected LB or KG. The system works in LB."));
  EXPECT_EQ(UnitOf(path), "LB");
}

TEST_F(DatabaseFiles, NoCommandLabelsAFileOfTheOtherUnit) {
  const std::string recipes = (folder / "SITE.RDB").string();
  std::filesystem::copy_file(SitePath("SITE.RDB"), recipes);
  const std::string transactions = NewTransactionDatabase();
  WriteUnit("KG");
  const std::vector<std::vector<std::string>> uses = {
      {"info", recipes},
      {"list", "pens", recipes, "--all"},
      {"set", "pen", recipes, "1", "--name", "A01"},
      {"reset", "pen", recipes, "1", "--yes"},
      {"recipe", recipes, "1"},
      {"store", SitePath("day05.qxt"), "--into", transactions, "--recipes", recipes, "--yes"},
      {"show", transactions, "--group", "1"}};
  for (const auto& args : uses) {
    EXPECT_EQ(Run(args), 0) << args.front() << ": " << err;
  }
  EXPECT_EQ(UnitOf(recipes), "LB");
  EXPECT_EQ(UnitOf(transactions), "LB");
}

TEST_F(DatabaseFiles, AStoreDatesTheDatabaseInItsOwnTransaction) {
  const std::string transactions = NewTransactionDatabase();
  Alter(transactions,
        "CREATE TRIGGER NoDate BEFORE UPDATE ON History BEGIN SELECT RAISE(FAIL, 'no date'); END");
  EXPECT_EQ(Run({"store", SitePath("day05.qxt"), "--into", transactions, "--recipes",
                 SitePath("SITE.RDB")}),
            1);
  EXPECT_THAT(Ask(transactions, "SELECT count(*) FROM Transactions"), ElementsAre("0"));
}

}  // namespace
}  // namespace vrx::testing
