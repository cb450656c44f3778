#include "central/company_figures.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "central/administration.h"
#include "central/server.h"
#include "central/transfer.h"
#include "insight/completeness.h"
#include "insight/import_units.h"
#include "insight/insight_fixture.h"
#include "insight/insight_model.h"
#include "insight/pens.h"
#include "insight/use.h"
#include "support/central_server.h"

namespace vrx::testing {
namespace {

constexpr int kCompanyYards = 8;
constexpr double kNearness = 1e-9;

// Random yards, each with its own file, pushed into one central database, and the answers about
// them.
class CompanyFigures : public InsightTest {
 protected:
  CompanyFigures()
      : database_name_(CentralServer::Get().MakeCentralDatabase()),
        chief_(CentralServer::Get().Connection(database_name_)) {
    for (int seed = 1; seed <= kCompanyYards; ++seed) {
      AddRandomYard(seed);
    }
  }

  void AddRandomYard(int seed) {
    const std::string name = "Site " + std::to_string(seed);
    const std::filesystem::path file =
        CopyOfTemplate(folder, "SITE" + std::to_string(seed) + ".TDB", DatabaseKind::kTransaction);
    {
      SQLite::Database yard = OpenDatabase(file, Access::kWrite);
      yard.exec("PRAGMA synchronous=OFF");
      RandomYard(static_cast<std::uint64_t>(seed)).WriteTo(yard);
      units_[name] = TextOf(ReadWeightUnit(yard));
    }
    AddYard(chief_, name, "America/Chicago", "login of " + name);
    CentralConnection server(CentralServer::Get().Connection(database_name_, "login of " + name));
    Push(server, {.file = file, .yard = name, .machine = "PC"});
    files_[name] = file;
  }

  // The rows of an answer in each unit.
  std::map<std::string, std::vector<AnswerRow>> Ask(CompanyQuestion question) {
    std::map<std::string, std::vector<AnswerRow>> answers;
    for (const std::string unit : {"LB", "KG"}) {
      question.unit = unit;
      answers[unit] = ReadCompany(chief_, question).table.rows;
    }
    return answers;
  }

  // Compares an answer in the unit of each yard with what `read` gives for its file, whose rows
  // lack the yard.
  template <typename Read>
  void ExpectAnswersOfFiles(const CompanyQuestion& question, const Read& read) {
    const auto there = Ask(question);
    int compared = 0;
    for (const auto& [name, file] : files_) {
      SCOPED_TRACE(name);
      SQLite::Database yard = OpenDatabase(file, Access::kRead);
      std::vector<AnswerRow> of_yard;
      for (const AnswerRow& row : there.at(units_[name])) {
        if (std::get<std::string>(row.front()) == name) {
          of_yard.emplace_back(row.begin() + 1, row.end());
        }
      }
      const std::vector<AnswerRow> of_file = read(yard);
      ASSERT_EQ(of_yard.size(), of_file.size());
      for (std::size_t row = 0; row < of_file.size(); ++row) {
        ExpectEqualRows(of_yard[row], of_file[row], row);
        ++compared;
      }
    }
    EXPECT_GT(compared, 0);
  }

  // Numbers to the last digit but one: quartiles are computed in another order.
  static void ExpectEqualRows(const AnswerRow& there, const AnswerRow& here, std::size_t row) {
    ASSERT_EQ(there.size(), here.size());
    for (std::size_t cell = 0; cell < here.size(); ++cell) {
      const auto* const number = std::get_if<double>(&here[cell]);
      const auto* const other = std::get_if<double>(&there[cell]);
      if (number != nullptr && other != nullptr) {
        EXPECT_NEAR(*other, *number, kNearness * std::max(1.0, std::abs(*number)))
            << "row " << row << ", cell " << cell;
      } else {
        EXPECT_TRUE(there[cell] == here[cell])
            << "row " << row << ", cell " << cell << ": " << ::testing::PrintToString(there[cell])
            << " instead of " << ::testing::PrintToString(here[cell]);
      }
    }
  }

  std::string database_name_;
  CentralConnection chief_;
  std::map<std::string, std::filesystem::path> files_;
  std::map<std::string, std::string> units_;
};

// One test for all, since pushing the yards takes most of its time.
TEST_F(CompanyFigures, AreThoseOfTheYardsOwnFiles) {
  using enum AccuracyKey;
  for (const auto& [key, word, deliveries] :
       {std::tuple(kIngredient, "own-ingredient", false), std::tuple(kOperator, "operator", false),
        std::tuple(kMonth, "month", false), std::tuple(kPen, "pen", true)}) {
    SCOPED_TRACE(word);
    const AccuracyQuestion question{.deliveries = deliveries, .by = {key}};
    ExpectAnswersOfFiles({.by = {"yard", word}, .deliveries = deliveries},
                         [&](SQLite::Database& yard) {
                           return TableOf(ReadAccuracy(yard, question), question).rows;
                         });
  }
  {
    SCOPED_TRACE("limits");
    AccuracyQuestion question{.by = {kOperator}};
    question.limits = {.percent = 3.5, .weight = {7, WeightUnit::kPounds}, .division = 0.5};
    ExpectAnswersOfFiles({.from = Day("2025-12-28"),
                          .to = Day("2026-01-02"),
                          .by = {"yard", "operator"},
                          .limits = question.limits},
                         [&](SQLite::Database& yard) {
                           question.about = {.from = Day("2025-12-28"), .to = Day("2026-01-02")};
                           return TableOf(ReadAccuracy(yard, question), question).rows;
                         });
  }
  {
    SCOPED_TRACE("balance");
    ExpectAnswersOfFiles({.figure = CompanyFigure::kBalance}, [](SQLite::Database& yard) {
      return TableOf(ReadBalance(yard, {})).rows;
    });
  }
  {
    SCOPED_TRACE("delivered");
    ExpectAnswersOfFiles(
        {.figure = CompanyFigure::kDelivered,
         .from = Day("2025-12-28"),
         .by = {"yard", "pen", "day"}},
        [this](SQLite::Database& yard) {
          std::vector<AnswerRow> rows;
          for (const DeliveredLine& line : ReadDelivered(yard, {.from = Day("2025-12-28")}).lines) {
            if (!line.missed) {
              rows.push_back({line.pen ? AnswerCell(*line.pen) : AnswerCell(),
                              StoredText(line.date), *line.called, *line.delivered,
                              *line.difference, line.feedings});
            }
          }
          std::ranges::stable_sort(rows, [](const AnswerRow& one, const AnswerRow& other) {
            return one[0] < other[0] || (one[0] == other[0] && one[1] < other[1]);
          });
          return rows;
        });
  }
  {
    SCOPED_TRACE("use");
    CompanyQuestion question{.figure = CompanyFigure::kUse, .by = {"yard", "own-ingredient"}};
    const auto there = Ask(question);
    for (const auto& [name, file] : files_) {
      SQLite::Database yard = OpenDatabase(file, Access::kRead);
      std::map<AnswerCell, double> used;
      for (const AnswerRow& row : there.at(units_[name])) {
        if (std::get<std::string>(row.front()) == name) {
          used[row[1]] = std::get<double>(row[3]);
        }
      }
      const Use answer = ReadUse(yard, {});
      EXPECT_EQ(used.size(), answer.lines.size());
      for (const UseLine& line : answer.lines) {
        const AnswerCell key = line.ingredient ? AnswerCell(*line.ingredient) : AnswerCell();
        ASSERT_TRUE(used.contains(key));
        EXPECT_NEAR(used[key], line.used, kNearness * std::max(1.0, std::abs(line.used)));
      }
    }
  }
  for (const char* const from : {"", "2025-12-30"}) {
    SCOPED_TRACE(from);
    ExpectAnswersOfFiles(
        {.figure = CompanyFigure::kCompleteness, .from = Day(from)},
        [&](SQLite::Database& yard) { return TableOf(ReadStatement(yard, Day(from), {})).rows; });
  }
}

}  // namespace
}  // namespace vrx::testing
