#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "database/identity.h"
#include "database/imports.h"
#include "insight/accuracy.h"
#include "insight/batches.h"
#include "insight/import_units.h"
#include "insight/insight_fixture.h"
#include "support/fixed_calendar.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

class Selection : public InsightTest {
 protected:
  std::vector<std::int64_t> Batches(const Question& question) {
    std::vector<std::int64_t> numbers;
    for (const BalanceLine& line : ReadBalance(database, {.about = question, .all = true}).lines) {
      numbers.push_back(line.transaction.value_or(0));
    }
    return numbers;
  }
  std::string ErrorOf(const std::function<void()>& work) {
    try {
      work();
    } catch (const QuestionError& failure) {
      return failure.what();
    }
    return "";
  }
  double LoadedSum(const Question& question = {}) {
    return ReadAccuracy(database, {.about = question}).total.actual.value_or(-1);
  }
};

TEST_F(Selection, ABatchBelongsToTheDayOfItsFirstLoad) {
  Load(3, "CORN", 1, 1, "'1', '2025-12-31', '23:58:00'");
  Load(3, "CORN", 1, 1, "'1', '2026-01-01', '00:02:00'");
  Load(2, "CORN", 1, 1, "'1', '2026-01-01', '06:00:00'");
  Store("(2, 'STEERS', 'FEED', '1', NULL, 'A01', 1, 0, 1, '2026-01-02', '08:00:00')");
  Store("(1, 'STEERS', 'FEED', '1', NULL, 'A01', 1, 0, 1, '2026-01-02', '08:00:00')");
  Load(4, "CORN", 1, 1, "'1', NULL, '06:00:00'");
  Store("(4, 'STEERS', 'FEED', '1', NULL, 'A01', 1, 0, 1, '2026-01-01', '08:00:00')");
  Store("(NULL, 'STEERS', 'FEED', '1', NULL, 'A01', 1, 0, 1, '2026-01-01', '08:00:00')");
  EXPECT_THAT(Batches({}), ElementsAre(4, 3, 0, 2, 1));
  EXPECT_THAT(Batches({.to = Day("2025-12-31")}), ElementsAre(3));
  EXPECT_THAT(Batches({.from = Day("2026-01-01"), .to = Day("2026-01-01")}), ElementsAre(0, 2));
  EXPECT_THAT(Batches({.from = Day("2026-01-02")}), ElementsAre(1));
  EXPECT_EQ(LoadedSum({.to = Day("2025-12-31")}), 2);
  EXPECT_EQ(ReadBalance(database, {.about = {.from = Day("2026-01-02")}}).notes.undated, 1);
}

TEST_F(Selection, NamesChooseBatchesByTheirFirstRowOrByAnyRow) {
  Store(
      "(1, 'STEERS', 'BATCH', '1', 'CORN', NULL, 1, 1, 0, '2026-01-05', '08:00:00'), "
      "(1, 'HEIFER', 'BATCH', '2', 'HAY', NULL, 1, 10, 0, '2026-01-05', '08:01:00'), "
      "(2, 'HEIFER', 'BATCH', '2', 'CORN', NULL, 1, 100, 0, '2026-01-05', '08:02:00'), "
      "(1, 'HEIFER', 'FEED', '2', NULL, 'A01', 1, 0, 4, '2026-01-05', '08:03:00'), "
      "(1, 'HEIFER', 'FEED', '2', NULL, 'A02', 1, 0, 5, '2026-01-05', '08:03:00'), "
      "(2, 'HEIFER', 'FEED', '2', NULL, 'A02', 1, 0, 6, '2026-01-05', '08:03:00')");
  EXPECT_THAT(Batches({.recipe = "HEIFER"}), ElementsAre(2));
  EXPECT_THAT(Batches({.operator_id = "1"}), ElementsAre(1));
  EXPECT_THAT(Batches({.ingredient = "CORN"}), ElementsAre(1, 2));
  EXPECT_THAT(Batches({.ingredient = "HAY"}), ElementsAre(1));
  EXPECT_THAT(Batches({.pen = "A01"}), ElementsAre(1));
  EXPECT_THAT(Batches({.ingredient = "HAY", .operator_id = "2"}), ElementsAre());
  // Loads of the ingredient; of batches with the delivery.
  EXPECT_EQ(LoadedSum({.ingredient = "CORN"}), 101);
  EXPECT_EQ(LoadedSum({.pen = "A01"}), 11);
  EXPECT_EQ(LoadedSum({.ingredient = "CORN", .pen = "A01"}), 1);
  const auto delivered = [&](const Question& about) {
    return ReadAccuracy(database, {.about = about, .deliveries = true, .by = {AccuracyKey::kPen}})
        .total.actual;
  };
  EXPECT_EQ(delivered({.pen = "A02"}), 11);
  EXPECT_EQ(delivered({.ingredient = "HAY"}), 9);
}

TEST_F(Selection, AnUnknownNameIsAnErrorThatListsThoseOfAnotherCase) {
  Load(1, "CORN", 1, 1);
  Load(1, "Corn", 1, 1);
  Load(1, "\xC3\x84HRE", 1, 1);
  Store("(1, 'STEERS', 'FEED', '1', NULL, 'A01', 1, 0, 1, '2026-01-05', '08:00:00')");
  const auto error = [&](const Question& question) {
    return ErrorOf([&] { (void)ReadBalance(database, {.about = question}); });
  };
  EXPECT_EQ(error({.ingredient = "corn"}),
            "No record has the ingredient 'corn'. Names that differ by case only: CORN, Corn.");
  EXPECT_THAT(error({.ingredient = "\xC3\xA4hre"}), HasSubstr("only: \xC3\x84HRE."));
  EXPECT_EQ(error({.pen = "CORN"}), "No record has the pen 'CORN'.");
  EXPECT_EQ(error({.operator_id = "01"}), "No record has the operator '01'.");
  EXPECT_EQ(error({.recipe = ""}), "No record has the recipe ''.");
  EXPECT_EQ(error({.recipe = "it's"}), "No record has the recipe 'it's'.");
  EXPECT_EQ(error({.recipe = "STEERS", .pen = "A01"}), "");
  EXPECT_THAT(ReadBalance(database, {.about = {.ingredient = "CORN"}}).notes.alike,
              ElementsAre(ElementsAre("CORN", "Corn")));
}

TEST_F(Selection, IsReadInSlicesThatCanBeCancelled) {
  std::string rows;
  for (int i = 0; i < 10'000; ++i) {
    rows += std::string(i == 0 ? "" : ", ") +
            "(1, 'STEERS', 'BATCH', '1', 'CORN', NULL, 1, 1, 0, '2026-01-05', '08:00:00')";
  }
  Store(rows);
  std::vector<int> percents;
  const auto progress = [&](int percent) {
    percents.push_back(percent);
    return percents.size() < 2;
  };
  EXPECT_THROW((void)ReadAccuracy(database, {}, progress), QuestionCancelled);
  EXPECT_THAT(percents, ElementsAre(40, 81));
  EXPECT_EQ(LoadedSum(), 10'000);  // the connection is as before
}

// Stores three files: 1 in pounds, 2 in kilograms, which continues batch 1, and 3 in kilograms.
class ImportsInAnotherUnit : public Selection {
 protected:
  ImportsInAnotherUnit() {
    MakeImportTables(database);
    Load(1, "CORN", 100, 100);
    Add(1, "LB", {{1, 1}});
    Load(1, "CORN", 10, 10);
    Load(2, "CORN", 1, 45.359237);
    Add(2, "KG", {{1, 1}, {2, 1}});
    Load(1, "CORN", 1000, 1000);
    Add(3, "LB", {{1, 1}});
  }

  FixedCalendar calendar;

  void Add(int number, const std::string& units, std::vector<std::pair<int, int>> batches) {
    ImportRecord import{.file = std::to_string(number) + ".QXT", .units = units};
    AddImport(database, import);
    for (const auto& [transaction, rows] : batches) {
      AddImportedBatches(database,
                         {{.import = import.number, .transaction = transaction, .rows = rows}});
    }
  }
};

TEST_F(ImportsInAnotherUnit, AreLeftOutUntilTheyAreSettled) {
  EXPECT_EQ(LoadedSum(), 1100);
  EXPECT_THAT(Batches({}), ElementsAre(1));
  EXPECT_EQ(LoadedSum({.from = Day("2026-01-05")}), 1100);
  EXPECT_THAT(ReadAccuracy(database, {}).notes.left_out,
              ElementsAre(LeftOutImport{.import = 2, .file = "2.QXT", .units = "KG", .rows = 2}));
  database.exec("UPDATE History SET Modified = NULL");
  SettleImport(database, 2, Settlement::kKeep, calendar);
  EXPECT_TRUE(ReadDateField(database, kModifiedField));
  EXPECT_EQ(LoadedSum(), 1155.359237);
  EXPECT_THAT(ReadAccuracy(database, {}).notes.left_out, ElementsAre());
  SettleImport(database, 2, Settlement::kConvert, calendar);
  EXPECT_EQ(LoadedSum({.from = Day("2026-01-05")}), 1222.046226218487757);  // 22.046... and 100
  EXPECT_EQ(ReadBalance(database, {}).lines[1].loaded, 100);
  SettleImport(database, 2, Settlement::kOpen, calendar);
  EXPECT_EQ(LoadedSum(), 1100);
}

TEST_F(ImportsInAnotherUnit, AreThoseThatDifferFromTheDatabase) {
  SetUnit("KG");
  EXPECT_EQ(LoadedSum(), 55.359237);
  SettleImport(database, 1, Settlement::kConvert, calendar);
  EXPECT_EQ(LoadedSum(), 100.718474);
}

TEST_F(ImportsInAnotherUnit, AloneCanBeSettled) {
  EXPECT_EQ(ErrorOf([&] { SettleImport(database, 1, Settlement::kKeep, calendar); }),
            "The weights of import 1 are in LB, the database's unit: there is nothing to settle.");
  EXPECT_EQ(ErrorOf([&] { SettleImport(database, 9, Settlement::kKeep, calendar); }),
            "There is no import 9.");
}

}  // namespace
}  // namespace vrx::testing
