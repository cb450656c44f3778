#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "central/administration.h"
#include "central/central_fixture.h"
#include "central/company_figures.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

class Views : public CentralFixture {
 protected:
  void Import(int number, const std::string& units, const std::string& settled = "") {
    chief_.Query(
        "INSERT INTO vrx.import (yard, source, import, at, file, units, settled, rows_read, "
        "stored, "
        "left_out, not_read, repeated, batches, missing) VALUES ($1, $2, $3, "
        "'2024-01-02T23:30:00-06:00', 'F.QXT', $4, $5, 10, 7, 1, 2, 2, 3, '4-5')",
        {north_, kNorthSource, std::to_string(number), units, settled});
  }
  void PushLoad(int row, int import) {
    Push(north_, {{.row = row,
                   .number = row,
                   .type = "BATCH",
                   .date = "2024-01-01",
                   .name = "CORN",
                   .target = 100,
                   .actual = 110,
                   .import = import}});
  }
};

std::vector<std::string> QueriesOf(const std::string& page) {
  std::vector<std::string> queries;
  for (std::size_t at = page.find("```sql\n"); at != std::string::npos;
       at = page.find("```sql\n", at)) {
    at += 7;
    const std::size_t end = page.find("```", at);
    queries.push_back(page.substr(at, end - at));
    at = end + 3;
  }
  return queries;
}

TEST_F(Views, TheQueriesOfTheManualRun) {
  Push(north_, {{.row = 1,
                 .number = 1,
                 .type = "BATCH",
                 .date = "2026-01-15",
                 .name = "CORN",
                 .target = 10,
                 .actual = 11},
                {.row = 2,
                 .number = 1,
                 .type = "FEED",
                 .date = "2026-01-15",
                 .name = "P1",
                 .target = 10,
                 .actual = 9}});
  CentralConnection office = Connect(kOffice);
  const std::vector<std::string> queries =
      QueriesOf(ReadAll(std::filesystem::path(VRX_SOURCE_DIR) / "docs" / "central-views.md"));
  ASSERT_GE(queries.size(), 6U);
  for (const std::string& query : queries) {
    EXPECT_EQ(StateOf(office, query), "") << query;
  }
  EXPECT_EQ(TextOf(office.Query(queries.front())), "North|CORN|1|0.0|10.00|0\n");
}

TEST_F(Views, SumsOverYardsAreMadePerUnitAndThenConverted) {
  chief_.Query("UPDATE vrx.source SET unit = 'KG' WHERE yard = $1", {south_});
  Push(north_, {{.row = 1,
                 .number = 1,
                 .type = "BATCH",
                 .date = "2024-01-01",
                 .target = 100,
                 .actual = 101}});
  Push(south_, {{.row = 1,
                 .number = 1,
                 .type = "BATCH",
                 .date = "2024-01-01",
                 .target = 100,
                 .actual = 99}});
  EXPECT_EQ(Table("SELECT n, target, actual, gross FROM vrx.accuracy(NULL, NULL)"),
            "2|145.359237|144.81282937|1.45359237\n");
  EXPECT_EQ(Table("SELECT unit, n, target FROM vrx.loads_by_ingredient_day ORDER BY unit"),
            "KG|1|100\nLB|1|100\n");
}

TEST_F(Views, LimitsInKilogramsAreComparedInTheUnitOfTheYard) {
  chief_.Query("UPDATE vrx.source SET unit = 'KG' WHERE yard = $1", {south_});
  // 6 is above 5 kg and below 5 kg in pounds; 100 is above and below 62.5 kg.
  for (const std::string& yard : {north_, south_}) {
    Push(yard, {{.row = 1,
                 .number = 1,
                 .type = "BATCH",
                 .date = "2024-01-01",
                 .target = 1000,
                 .actual = 1006},
                {.row = 2,
                 .number = 1,
                 .type = "BATCH",
                 .date = "2024-01-01",
                 .target = 1000,
                 .actual = 900}});
  }
  EXPECT_EQ(Table("SELECT key[1], within_weight, beyond FROM vrx.accuracy(NULL, NULL, '{yard}')"),
            "North|50|0\nSouth|0|50\n");
  EXPECT_EQ(Table("SELECT yard, within_5_kg, beyond_62_5_kg FROM vrx.loads_by_operator_day ORDER "
                  "BY 1"),
            "North|1|0\nSouth|0|1\n");
}

TEST_F(Views, AnImportInAnotherUnitIsLeftOutUntilItIsSettled) {
  Import(1, "KG");
  PushLoad(1, 1);
  const std::string loads = "SELECT day, target FROM vrx.load";
  const std::string figures = "SELECT n, target FROM vrx.accuracy(NULL, NULL, unit => 'LB')";
  EXPECT_EQ(Table(loads), "");
  EXPECT_EQ(Table(figures), "0|NULL\n");
  EXPECT_EQ(Table("SELECT yard, import_unit, source_unit, rows, use FROM vrx.import_in_other_unit"),
            "North|KG|LB|7|open\n");
  chief_.Query(
      "INSERT INTO vrx.mark (yard, source, kind, import, value) VALUES ($1, $2, 'settled', "
      "1, 'keep')",
      {north_, kNorthSource});
  EXPECT_EQ(Table(loads), "2024-01-01|100\n");
  EXPECT_EQ(Table(figures), "1|100\n");
  chief_.Query(
      "INSERT INTO vrx.mark (yard, source, kind, import, value) VALUES ($1, $2, 'settled', "
      "1, 'convert')",
      {north_, kNorthSource});
  EXPECT_EQ(Table(loads), "2024-01-01|220.46226218487757\n");
  EXPECT_EQ(Table(figures), "1|220.46226218487757\n");
}

// The day of a batch is that of its first load that counts, whatever counts first.
TEST_F(Views, RowsThatDoNotCountGiveABatchNoDay) {
  const auto row = [](int number, int batch, const std::string& type, const std::string& date,
                      int import) {
    return CentralRow{.row = number,
                      .number = batch,
                      .type = type,
                      .date = date,
                      .name = "X",
                      .target = 100,
                      .actual = 100,
                      .import = import};
  };
  const std::string days = "SELECT batch, day FROM vrx.batch ORDER BY batch";
  Import(1, "KG");
  Import(2, "LB");
  Push(north_, {row(1, 1, "BATCH", "2024-01-01", 1), row(2, 2, "BATCH", "2024-01-01", 1)});
  Push(north_, {row(3, 1, "FEED", "2024-01-02", 2), row(4, 2, "BATCH", "2024-01-03", 2),
                row(5, 2, "BATCH", "2024-01-04", 2)});
  EXPECT_EQ(Table(days), "1|2024-01-02\n2|2024-01-03\n");
  // Makes the days of the batch anew.
  Withdraw(chief_, {.source = kNorthSource, .first_row = 4, .last_row = 4, .why = "twice"});
  EXPECT_EQ(Table(days), "1|2024-01-02\n2|2024-01-04\n");
  Withdraw(chief_, {.source = kNorthSource, .first_row = 6, .last_row = 6, .why = "twice"});
  Push(north_, {row(6, 3, "BATCH", "2024-01-05", 2), row(7, 3, "BATCH", "2024-01-06", 2)});
  EXPECT_EQ(Table(days), "1|2024-01-02\n2|2024-01-04\n3|2024-01-06\n");
  chief_.Query(
      "INSERT INTO vrx.mark (yard, source, kind, import, value) VALUES ($1, $2, 'settled', 1, "
      "'keep')",
      {north_, kNorthSource});
  EXPECT_EQ(Table("SELECT batch, day FROM vrx.batch WHERE batch = 1"), "1|2024-01-01\n");
}

// A label that changes after a push marks the source. What was pushed before keeps its unit, and
// imports in the new one stay out and are listed until they are settled.
TEST_F(Views, ALabelThatChangesLaterDoesNotChangeFigures) {
  Import(1, "LB");
  PushLoad(1, 1);
  const std::string figures = "SELECT n, target FROM vrx.accuracy(NULL, NULL, unit => 'LB')";
  chief_.Query("INSERT INTO vrx.mark (yard, source, kind, value) VALUES ($1, $2, 'label', 'KG')",
               {north_, kNorthSource});
  EXPECT_EQ(Table(figures), "1|100\n");
  EXPECT_EQ(Table("SELECT unit, label_changed FROM vrx.freshness WHERE yard = 'North'"), "LB|t\n");
  Import(2, "KG");
  PushLoad(2, 2);
  EXPECT_EQ(Table(figures), "1|100\n");
  EXPECT_EQ(Table("SELECT import, use FROM vrx.import_in_other_unit"), "2|open\n");
  chief_.Query(
      "INSERT INTO vrx.mark (yard, source, kind, import, value) VALUES ($1, $2, 'settled', 2, "
      "'keep')",
      {north_, kNorthSource});
  EXPECT_EQ(Table(figures), "2|200\n");
}

TEST_F(Views, AnImportThatWasSettledBeforeItsPushCounts) {
  Import(1, "KG", "convert");
  Import(2, "LB");
  Import(3, "");
  for (const int import : {1, 2, 3}) {
    PushLoad(import, import);
  }
  EXPECT_EQ(Table("SELECT import, target FROM vrx.load ORDER BY 1"),
            "1|220.46226218487757\n2|100\n3|100\n");
}

TEST_F(Views, AnAliasNamesTheIngredientOfTheCompany) {
  PushLoad(1, 1);
  Push(south_, {{.row = 1,
                 .number = 1,
                 .type = "BATCH",
                 .date = "2024-01-01",
                 .name = "MAIZE",
                 .target = 50,
                 .actual = 50}});
  SetAlias(chief_, "South", "MAIZE", "CORN");
  EXPECT_EQ(Table("SELECT key[1], n, target FROM vrx.accuracy(NULL, NULL, '{ingredient}', 'LB')"),
            "CORN|2|150\n");
  EXPECT_EQ(Table("SELECT key[1], n FROM vrx.accuracy(NULL, NULL, '{own_ingredient}')"),
            "CORN|1\nMAIZE|1\n");
  EXPECT_EQ(Table("SELECT yard, ingredient, company_ingredient, used FROM "
                  "vrx.used_by_ingredient_day ORDER BY 1"),
            "North|CORN|CORN|110\nSouth|MAIZE|CORN|50\n");
}

TEST_F(Views, CompletenessGoesByTheLocalDayOfTheImport) {
  Import(1, "LB");
  Import(2, "KG");
  chief_.Query(
      "INSERT INTO vrx.imported_batch (yard, source, import, position, state) VALUES ($1, "
      "$2, 1, 1, 'same'), ($1, $2, 1, 2, 'new'), ($1, $2, 2, 1, 'conflict')",
      {north_, kNorthSource});
  EXPECT_EQ(Table("SELECT yard, day, imports, batches, rows_read, stored, left_out, not_read, "
                  "repeated, missing, same, continued, conflict, unit_not_settled FROM "
                  "vrx.completeness_by_day"),
            "North|2024-01-02|2|6|20|14|2|4|4|4-5;4-5|1|0|1|1\n");
}

TEST_F(Views, ImportsOfACopyCountOnce) {
  Import(1, "LB");
  const std::string child = "00000000-0000-0000-0000-00000000000c";
  chief_.Query(
      "INSERT INTO vrx.source (yard, source, generation, parent, parent_last_row, unit, "
      "file) VALUES ($1, $2, $2, $3, 5, 'LB', 'COPY.TDB')",
      {north_, child, kNorthSource});
  chief_.Query(
      "INSERT INTO vrx.import SELECT yard, $2, import, at, file FROM vrx.import WHERE yard "
      "= $1",
      {north_, child});
  EXPECT_EQ(Table("SELECT imports FROM vrx.completeness_by_day"), "1\n");
}

// North's batch 7 is loaded on Monday and fed to P1. Then its file is copied: the copy feeds P2 on
// Tuesday, and the original goes on with another batch 8.
class CopiedFile : public Views {
 protected:
  static constexpr const char* kCopy = "00000000-0000-0000-0000-00000000000c";

  CopiedFile() {
    Push(north_, {Load(1, 7, "2024-01-01", 100), Delivery(2, 7, "2024-01-01", 60)});
    AddCopy(kCopy, kNorthSource, 2);
    PushRows(chief_, north_, kCopy,
             {Delivery(3, 7, "2024-01-02", 40), Load(4, 8, "2024-01-02", 500)});
    Push(north_, {Load(3, 8, "2024-01-03", 300)});
  }

  void AddCopy(const std::string& copy, const std::string& parent, int last_row) {
    chief_.Query(
        "INSERT INTO vrx.source (yard, source, generation, parent, parent_last_row, unit, file) "
        "VALUES ($1, $2, $2, $3, $4, 'LB', 'COPY.TDB')",
        {north_, copy, parent, std::to_string(last_row)});
  }

  static CentralRow Load(int row, int number, const std::string& date, double weight) {
    return {.row = row,
            .number = number,
            .type = "BATCH",
            .date = date,
            .name = "CORN",
            .target = weight,
            .actual = weight};
  }
  static CentralRow Delivery(int row, int number, const std::string& date, double weight) {
    return {.row = row,
            .number = number,
            .type = "FEED",
            .date = date,
            .name = "P" + std::to_string(row),
            .target = weight,
            .actual = weight,
            .recipe = "OTHER"};
  }
};

TEST_F(CopiedFile, ABatchThatGoesOnInItIsOneBatch) {
  EXPECT_EQ(Table("SELECT number, day, recipe, loaded, fed, state FROM vrx.batch_balance ORDER BY "
                  "1, 2"),
            "7|2024-01-01|R|100|100|balanced\n"
            "8|2024-01-02|R|500|NULL|never fed\n"
            "8|2024-01-03|R|300|NULL|never fed\n");
  EXPECT_EQ(Table("SELECT pen, day, date FROM vrx.delivery ORDER BY 1"),
            "P2|2024-01-01|2024-01-01\nP3|2024-01-01|2024-01-02\n");
  EXPECT_EQ(Table("SELECT n FROM vrx.accuracy('2024-01-01', '2024-01-01', deliveries => true)"),
            "2\n");
}

TEST_F(CopiedFile, ItsCopyKnowsWhereABatchBegan) {
  const std::string second = "00000000-0000-0000-0000-00000000000d";
  AddCopy(second, kCopy, 4);
  PushRows(chief_, north_, second,
           {Delivery(5, 7, "2024-01-04", 1), Delivery(6, 8, "2024-01-04", 500),
            Load(7, 9, "2024-01-05", 9)});
  EXPECT_EQ(Table("SELECT number, day, loaded, fed FROM vrx.batch_balance ORDER BY 1, 2"),
            "7|2024-01-01|100|101\n"
            "8|2024-01-02|500|500\n"
            "8|2024-01-03|300|NULL\n"
            "9|2024-01-05|9|NULL\n");
  EXPECT_EQ(Table("SELECT number, home FROM vrx.delivery WHERE source = $1 ORDER BY 1", {second}),
            "7|" + std::string(kNorthSource) + "\n8|" + kCopy + "\n");
}

// Rows of the parent after the copy are not in the copy.
TEST_F(CopiedFile, ABatchThatItsParentBeganLaterIsAnotherOne) {
  PushRows(chief_, north_, kCopy, {Delivery(5, 8, "2024-01-04", 500)});
  EXPECT_EQ(Table("SELECT day, loaded, fed FROM vrx.batch_balance WHERE number = 8 ORDER BY 1"),
            "2024-01-02|500|500\n2024-01-03|300|NULL\n");
  const std::string second = "00000000-0000-0000-0000-00000000000d";
  Push(north_, {Load(4, 20, "2024-01-04", 20)});
  AddCopy(second, kNorthSource, 4);
  Push(north_, {Load(5, 15, "2024-01-05", 15)});
  PushRows(chief_, north_, second, {Load(5, 15, "2024-01-06", 16)});
  EXPECT_EQ(Table("SELECT day, loaded FROM vrx.batch_balance WHERE number = 15 ORDER BY 1"),
            "2024-01-05|15\n2024-01-06|16\n");
}

TEST_F(CopiedFile, AWithdrawalLeavesABatchOne) {
  Withdraw(chief_, {.source = kCopy, .first_row = 4, .last_row = 4, .why = "x"});
  Withdraw(chief_, {.source = kNorthSource, .first_row = 2, .last_row = 2, .why = "x"});
  EXPECT_EQ(Table("SELECT number, day, loaded, fed FROM vrx.batch_balance ORDER BY 1, 2"),
            "7|2024-01-01|100|40\n8|2024-01-03|300|NULL\n");
  Withdraw(chief_, {.source = kCopy, .first_row = 9, .last_row = 9, .why = "no such row"});
  Withdraw(chief_, {.source = kCopy, .first_row = 3, .last_row = 3, .why = "x"});
  EXPECT_EQ(Table("SELECT number, fed FROM vrx.batch_balance WHERE number = 7"), "7|NULL\n");
}

TEST_F(CopiedFile, WithAnotherLabelIsConvertedToTheUnitOfTheBatch) {
  chief_.Query("UPDATE vrx.source SET unit = 'KG' WHERE source = $1", {kCopy});
  EXPECT_EQ(Table("SELECT unit, loaded, round(fed::numeric, 3) FROM vrx.batch_balance WHERE number "
                  "= 7"),
            "LB|100|148.185\n");
}

// The office's statement of North: imports, batches, loads, deliveries, odd dates, days without.
TEST_F(CopiedFile, ItsImportsAreInTheStatementOnce) {
  Import(1, "LB");
  Import(2, "KG", "keep");
  chief_.Query(
      "INSERT INTO vrx.import SELECT yard, $2, import, at, file FROM vrx.import WHERE yard = $1",
      {north_, kCopy});
  chief_.Query("INSERT INTO vrx.import (yard, source, import, at) VALUES ($1, $2, 9, '2024-01-05')",
               {north_, kCopy});
  const auto statement = [this](std::optional<Date> from) {
    const CompanyAnswer answer =
        ReadCompany(chief_, {.figure = CompanyFigure::kCompleteness, .from = from});
    std::string text;
    for (const std::string_view key :
         {"imports", "batches", "loads", "deliveries", "notRead", "neverFed", "daysWithout.n"}) {
      const auto column = std::ranges::find(answer.table.columns, key, &AnswerColumn::key);
      const auto cell = static_cast<std::size_t>(column - answer.table.columns.begin());
      text += std::to_string(std::get<std::int64_t>(answer.table.rows.at(0).at(cell))) + " ";
    }
    return text;
  };
  EXPECT_EQ(statement({}), "3 3 3 2 4 2 0 ");
  EXPECT_EQ(statement(ParseStoredDate("2024-01-03")), "1 1 1 0 0 1 0 ");
  Withdraw(chief_, {.source = kCopy, .why = "x"});
  EXPECT_EQ(statement({}), "2 2 2 1 4 1 1 ");
}

TEST_F(Views, YardsAreBehindWithoutAPushOfADayAndAHalf) {
  PushLoad(1, 1);
  const std::string question =
      "SELECT yard, as_of IS NULL, last_day, behind FROM vrx.yard_as_of "
      "ORDER BY yard";
  EXPECT_EQ(Table(question), "North|f|2024-01-01|f\nSouth|t|NULL|t\n");
  chief_.Query("UPDATE vrx.push SET at = at - interval '35 hours'");
  EXPECT_EQ(Table(question), "North|f|2024-01-01|f\nSouth|t|NULL|t\n");
  chief_.Query("UPDATE vrx.push SET at = at - interval '2 hours'");
  EXPECT_EQ(Table(question), "North|f|2024-01-01|t\nSouth|t|NULL|t\n");
  Withdraw(chief_, {.source = kNorthSource, .why = "x"});
  EXPECT_EQ(Table(question), "North|t|NULL|t\nSouth|t|NULL|t\n");
}

// Operator 1 loads 20 times CORN with a target of 100, half of them within, and once HAY with a
// target of 300, not within. The other operator loads HAY with a target of 1700, so HAY weighs as
// much as CORN: (50 % * 2000 + 0 % * 2000) / 4000.
TEST_F(Views, OperatorsAreStandardizedByIngredient) {
  std::vector<CentralRow> rows;
  const auto load = [&](const std::string& user, const std::string& name, double target,
                        double actual) {
    rows.push_back({.row = static_cast<std::int64_t>(rows.size()) + 1,
                    .number = 1,
                    .type = "BATCH",
                    .date = "2024-01-01",
                    .name = name,
                    .target = target,
                    .actual = actual,
                    .user_id = user});
  };
  for (int i = 0; i < 20; ++i) {
    load("1", "CORN", 100, i % 2 == 0 ? 101 : 110);
  }
  load("1", "HAY", 300, 330);
  load("2", "HAY", 1700, 1700);
  load("1", "CORN", 0, 5);  // not counted
  Push(north_, rows);
  Push(south_, rows);
  chief_.Query("UPDATE vrx.source SET unit = 'KG' WHERE yard = $1", {south_});
  EXPECT_EQ(Table("SELECT * FROM vrx.standardized(NULL, NULL) ORDER BY 1, 2"),
            "North|1|21|25\nNorth|2|1|NULL\nSouth|1|21|25\nSouth|2|1|NULL\n");
  EXPECT_EQ(Table("SELECT standardized FROM vrx.standardized(NULL, NULL, 10.5) WHERE operator = "
                  "'1'"),
            "100\n100\n");
  EXPECT_EQ(Table("SELECT standardized FROM vrx.standardized(NULL, NULL, 2, 10) WHERE operator = "
                  "'1'"),
            "50\n50\n");
  EXPECT_EQ(Table("SELECT count(*) FROM vrx.standardized('2024-01-02', NULL)"), "0\n");
}

TEST_F(Views, FreshnessSaysAsOfWhenEachYardIs) {
  PushLoad(1, 1);
  chief_.Query("INSERT INTO vrx.mark (yard, source, kind, value) VALUES ($1, $2, 'label', 'KG')",
               {north_, kNorthSource});
  EXPECT_EQ(Table("SELECT yard, zone, unit, last_row, rows, last_day, label_changed, withdrawn, "
                  "age < interval '1 minute' FROM vrx.freshness ORDER BY 1"),
            "North|America/Chicago|LB|1|1|2024-01-01|t|f|t\n"
            "South|America/Denver|LB|NULL|NULL|NULL|f|f|NULL\n");
}

TEST_F(Views, AccuracyRefusesKeysAndLimitsThatItDoesNotKnow) {
  for (const std::string arguments :
       {"NULL, NULL, '{pony}'", "NULL, NULL, '{yard,pen}'", "NULL, NULL, '{operator}'",
        "NULL, NULL, '{}', 'TON'", "NULL, NULL, '{}', 'KG', -1", "NULL, NULL, '{}', NULL",
        "NULL, NULL, '{ingredient}', deliveries => true",
        "NULL, NULL, ARRAY['yard; DROP TABLE vrx.yard']"}) {
    EXPECT_EQ(StateOf(chief_, "SELECT * FROM vrx.accuracy(" + arguments + ")"), "22023")
        << arguments;
  }
}

// A difference up to the scale's division does not count.
TEST_F(Views, AccuracyAllowsForTheDivisionOfTheScale) {
  Push(north_, {{.row = 1,
                 .number = 1,
                 .type = "BATCH",
                 .date = "2024-01-01",
                 .target = 100,
                 .actual = 104}});
  const auto figures = [this](const std::string& division) {
    return Table(
        "SELECT within, weight_within, within_weight, beyond FROM vrx.accuracy(NULL, NULL, "
        "within_kg => 1, division => $1)",
        {division});
  };
  EXPECT_EQ(figures("0"), "0|0|0|0\n");
  EXPECT_EQ(figures("3.999999"), "0|0|0|0\n");
  EXPECT_EQ(figures("4"), "100|100|100|0\n");
}

// Weights that are no whole count of millionths, or large, take another way.
TEST_F(Views, AccuracyIsExactForAnyWeight) {
  Push(north_, {{.row = 1,
                 .number = 1,
                 .type = "BATCH",
                 .date = "2024-01-01",
                 .target = 1e15,
                 .actual = 1e15},
                {.row = 2,
                 .number = 1,
                 .type = "BATCH",
                 .date = "2024-01-01",
                 .target = 0.5,
                 .actual = 0.25},
                {.row = 3,
                 .number = 1,
                 .type = "BATCH",
                 .date = "2024-01-01",
                 .target = 100,
                 .actual = 102}});
  chief_.Query("ALTER TABLE vrx.transaction DROP CONSTRAINT row_equals_its_digest");
  chief_.Query("UPDATE vrx.transaction SET target = 1e-9, actual_batch = 3e-9 WHERE row = 2");
  EXPECT_EQ(Table("SELECT n, net, gross, within, below FROM vrx.accuracy(NULL, NULL, unit => "
                  "'LB')"),
            "3|2.000000002|2.000000002|33.333333333333336|0\n");
}

}  // namespace
}  // namespace vrx::testing
