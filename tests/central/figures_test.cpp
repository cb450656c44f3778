#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "central/administration.h"
#include "central/server.h"
#include "central/transfer.h"
#include "insight/accuracy.h"
#include "insight/batches.h"
#include "insight/import_units.h"
#include "insight/insight_fixture.h"
#include "insight/insight_model.h"
#include "insight/pens.h"
#include "insight/use.h"
#include "support/central_server.h"
#include "support/fixed_calendar.h"

namespace vrx::testing {
namespace {

constexpr int kYards = 40;
constexpr double kQuartileTolerance = 1e-9;
using Lines = std::vector<std::string>;
using LinesOfYards = std::map<std::string, Lines>;

std::string YardName(int seed) { return "Yard " + std::to_string(seed); }

std::string LoginOf(const std::string& yard) { return "login of " + yard; }

std::optional<double> Real(const CentralRows& rows, int row, int column) {
  return rows.IsNull(row, column)
             ? std::nullopt
             : std::optional(std::strtod(rows.Text(row, column).c_str(), nullptr));
}

std::string Number(const std::optional<double>& number) { return number ? Shown(number) : "-"; }
std::string Words(const std::optional<std::string>& text) { return text.value_or("-"); }

// Quartiles are compared with a tolerance, so they stand apart from the text.
struct AccuracyLine {
  std::string text;
  std::vector<std::optional<double>> quartiles;
};

AccuracyLine LineOf(std::string key, AccuracyFigures figures) {
  AccuracyLine line{.text = {}, .quartiles = {figures.median, figures.q1, figures.q3}};
  figures.median = figures.q1 = figures.q3 = figures.standardized = std::nullopt;
  line.text = std::move(key) + ": " + Shown(figures);
  return line;
}

AccuracyFigures FiguresOf(const CentralRows& rows, int row) {
  int column = 2;  // after the keys
  const auto real = [&] { return Real(rows, row, column++); };
  AccuracyFigures figures;
  figures.n = rows.Number(row, column++);
  figures.not_loaded.n = rows.Number(row, column++);
  figures.not_loaded.weight = real();
  figures.without_target.n = rows.Number(row, column++);
  figures.without_target.weight = real();
  for (auto* const figure :
       {&figures.target, &figures.actual, &figures.net, &figures.net_percent, &figures.gross,
        &figures.gross_percent, &figures.within, &figures.weight_within, &figures.within_weight,
        &figures.beyond, &figures.below, &figures.median, &figures.q1, &figures.q3}) {
    *figure = real();
  }
  if (!rows.IsNull(row, column)) {
    figures.marked = rows.Text(row, column) == "t";
  }
  return figures;
}

constexpr const char* kFigures =
    "n, not_loaded, not_loaded_target, without_target, without_target_actual, target, actual, net, "
    "net_percent, gross, gross_percent, within, weight_within, within_weight, beyond, below, "
    "median, q1, q3, marked";

// Random yards, each with its own file, pushed into one central database.
class CentralFigures : public InsightTest {
 protected:
  CentralFigures()
      : database_name_(CentralServer::Get().MakeCentralDatabase()),
        chief_(CentralServer::Get().Connection(database_name_)) {}

  // Calls `compare` with the name and unit of each yard while its file is open.
  template <typename Compare>
  void ForEachYard(Compare compare) {
    for (int seed = 1; seed <= kYards && !HasFailure(); ++seed) {
      SCOPED_TRACE(YardName(seed));
      const std::filesystem::path file = files_[seed];
      SQLite::Database yard = OpenDatabase(file, Access::kRead);
      compare(yard, YardName(seed), units_[seed]);
    }
  }

  void PushYards() {
    for (int seed = 1; seed <= kYards; ++seed) {
      const Model model = RandomYard(static_cast<std::uint64_t>(seed));
      const std::filesystem::path file = CopyOfTemplate(
          folder, "YARD" + std::to_string(seed) + ".TDB", DatabaseKind::kTransaction);
      {
        SQLite::Database yard = OpenDatabase(file, Access::kWrite);
        yard.exec("PRAGMA synchronous=OFF");
        model.WriteTo(yard);
        units_[seed] = TextOf(ReadWeightUnit(yard));
      }
      files_[seed] = file;
      const std::string login = LoginOf(YardName(seed));
      AddYard(chief_, YardName(seed), "America/Chicago", login);
      PushYard(seed);
    }
  }

  void PushYard(int seed) {
    CentralConnection server(
        CentralServer::Get().Connection(database_name_, LoginOf(YardName(seed))));
    Push(server, {.file = files_[seed], .yard = YardName(seed), .machine = "PC"});
  }

  // Every yard settles what its imports in another unit are, after their rows were pushed.
  void SettleImports() {
    int settled = 0;
    for (int seed = 1; seed <= kYards; ++seed) {
      {
        SQLite::Database yard = OpenDatabase(files_[seed], Access::kWrite);
        yard.exec("PRAGMA synchronous=OFF");
        const ImportUnits units(yard);
        for (const LeftOutImport& import : units.LeftOut()) {
          SettleImport(yard, import.import,
                       ++settled % 3 == 0 ? Settlement::kKeep : Settlement::kConvert, calendar_);
        }
      }
      PushYard(seed);
    }
    EXPECT_GT(settled, 0);
  }

  void CheckAccuracy();
  void CheckViews();
  void CheckAPeriod();

  std::map<std::string, std::vector<AccuracyLine>> CentralAccuracy(const std::string& key,
                                                                   const std::string& unit,
                                                                   bool deliveries) {
    const CentralRows rows =
        chief_.Query("SELECT key[1], coalesce(key[2], '-'), " + std::string(kFigures) +
                         " FROM vrx.accuracy(NULL, NULL, ARRAY['yard', $1], $2, deliveries => $3)",
                     {key, unit, deliveries ? "true" : "false"});
    std::map<std::string, std::vector<AccuracyLine>> lines;
    for (int row = 0; row < rows.Count(); ++row) {
      lines[rows.Text(row, 0)].push_back(LineOf(rows.Text(row, 1), FiguresOf(rows, row)));
    }
    return lines;
  }

  static void ExpectEqual(std::vector<AccuracyLine> there, std::vector<AccuracyLine> here) {
    const auto by_text = [](const AccuracyLine& one, const AccuracyLine& other) {
      return one.text < other.text;
    };
    std::sort(there.begin(), there.end(), by_text);
    std::sort(here.begin(), here.end(), by_text);
    ASSERT_EQ(there.size(), here.size());
    for (std::size_t i = 0; i < here.size(); ++i) {
      ASSERT_EQ(there[i].text, here[i].text);
      for (std::size_t quartile = 0; quartile < here[i].quartiles.size(); ++quartile) {
        const auto& one = there[i].quartiles[quartile];
        const auto& other = here[i].quartiles[quartile];
        ASSERT_EQ(one.has_value(), other.has_value()) << here[i].text;
        if (one) {
          EXPECT_NEAR(*one, *other, kQuartileTolerance * std::max(1.0, std::abs(*other)));
        }
      }
    }
  }

  // The lines of a query by their first column; the others are joined. Columns whose names begin
  // with "w_" are weights.
  LinesOfYards Ask(const std::string& query) {
    const CentralRows rows = chief_.Query(query);
    LinesOfYards lines;
    for (int row = 0; row < rows.Count(); ++row) {
      std::string line;
      for (int column = 1; column < rows.Columns(); ++column) {
        const bool weight = rows.ColumnName(column).starts_with("w_");
        line += (column == 1 ? "" : "|") + (weight ? Number(Real(rows, row, column))
                                                   : rows.TextOrNull(row, column).value_or("-"));
      }
      lines[rows.Text(row, 0)].push_back(line);
    }
    for (auto& [yard, text] : lines) {
      std::sort(text.begin(), text.end());
    }
    return lines;
  }

  FixedCalendar calendar_;
  std::string database_name_;
  CentralConnection chief_;
  std::map<int, std::filesystem::path> files_;
  std::map<int, std::string> units_;
};

// Every yard is asked about by the superuser.
void CentralFigures::CheckAccuracy() {
  using enum AccuracyKey;
  const std::vector<std::tuple<AccuracyKey, std::string, bool>> keys = {
      {kIngredient, "own_ingredient", false},
      {kIngredient, "ingredient", false},
      {kRecipe, "recipe", false},
      {kOperator, "operator", false},
      {kDay, "day", false},
      {kWeek, "week", false},
      {kMonth, "month", false},
      {kPen, "pen", true},
      {kOperator, "operator", true},
      {kDay, "day", true},
  };
  for (const auto& [key, name, deliveries] : keys) {
    SCOPED_TRACE(name);
    std::map<std::string, std::map<std::string, std::vector<AccuracyLine>>> there;
    for (const std::string unit : {"LB", "KG"}) {
      there[unit] = CentralAccuracy(name, unit, deliveries);
    }
    ForEachYard([&, by = key, of_deliveries = deliveries](
                    SQLite::Database& yard, const std::string& yard_name, const std::string& unit) {
      std::vector<AccuracyLine> here;
      for (const AccuracyGroup& group :
           ReadAccuracy(yard, {.deliveries = of_deliveries, .by = {by}}).groups) {
        here.push_back(LineOf(Words(group.key[0]), group.figures));
      }
      ExpectEqual(there[unit][yard_name], here);
    });
  }
}

void CentralFigures::CheckViews() {
  const LinesOfYards balances = Ask(
      "SELECT yard, number, day, recipe, operator, loaded AS w_loaded, fed AS w_fed, \"left\" AS "
      "w_left, left_percent AS w_percent, state FROM vrx.batch_balance");
  const LinesOfYards uses = Ask(
      "SELECT yard, ingredient, sum(used)::float8 AS w_used FROM vrx.used_by_ingredient_day GROUP "
      "BY 1, 2");
  const LinesOfYards delivered =
      Ask("SELECT yard, pen, day, target::float8 AS w_target, actual::float8 AS w_actual, "
          "difference::float8 AS w_difference, deliveries, recipe, first_time FROM "
          "vrx.delivered_by_pen_day WHERE day IS NOT NULL");
  ForEachYard([&](SQLite::Database& yard, const std::string& name, const std::string&) {
    const auto of = [&](const LinesOfYards& all) {
      const auto found = all.find(name);
      return found == all.end() ? Lines() : found->second;
    };
    Lines lines;
    for (const BalanceLine& line : ReadBalance(yard, {.all = true}).lines) {
      lines.push_back((line.transaction ? std::to_string(*line.transaction) : "-") + "|" +
                      (line.date ? StoredText(*line.date) : "-") + "|" + Words(line.recipe) + "|" +
                      Words(line.operator_id) + "|" + Number(line.loaded) + "|" + Number(line.fed) +
                      "|" + Number(line.left) + "|" + Number(line.left_percent) + "|" +
                      std::string(TextOf(line.state)));
    }
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(of(balances), lines);
    lines.clear();
    for (const UseLine& line : ReadUse(yard, {}).lines) {
      lines.push_back(Words(line.ingredient) + "|" + Number(line.used));
    }
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(of(uses), lines);
    lines.clear();
    for (const DeliveredLine& line : ReadDelivered(yard, {}).lines) {
      if (!line.missed) {
        lines.push_back(Words(line.pen) + "|" + StoredText(line.date) + "|" + Number(line.called) +
                        "|" + Number(line.delivered) + "|" + Number(line.difference) + "|" +
                        std::to_string(line.feedings) + "|" + Words(line.recipe) + "|" +
                        (line.first ? StoredText(*line.first) : "-"));
      }
    }
    std::sort(lines.begin(), lines.end());
    EXPECT_EQ(of(delivered), lines);
  });
}

// Each yard asks about itself: most have no import in another unit, which takes another way.
void CentralFigures::CheckAPeriod() {
  using enum AccuracyKey;
  AccuracyQuestion question{.about = {.from = Day("2025-12-28"), .to = Day("2026-01-02")}};
  ForEachYard([&](SQLite::Database& yard, const std::string& yard_name, const std::string& unit) {
    CentralConnection server(CentralServer::Get().Connection(database_name_, LoginOf(yard_name)));
    for (const auto& [key, name, deliveries] :
         {std::tuple(kRecipe, "recipe", false), std::tuple(kOperator, "operator", false),
          std::tuple(kIngredient, "ingredient", false), std::tuple(kPen, "pen", true)}) {
      const CentralRows rows = server.Query(
          "SELECT key[1], key[2], " + std::string(kFigures) +
              " FROM vrx.accuracy('2025-12-28', '2026-01-02', ARRAY['yard', $1], $2, deliveries => "
              "$3)",
          {name, unit, deliveries ? "true" : "false"});
      std::vector<AccuracyLine> there;
      for (int row = 0; row < rows.Count(); ++row) {
        EXPECT_EQ(rows.Text(row, 0), yard_name);
        there.push_back(LineOf(Words(rows.TextOrNull(row, 1)), FiguresOf(rows, row)));
      }
      question.by = {key};
      question.deliveries = deliveries;
      std::vector<AccuracyLine> here;
      for (const AccuracyGroup& group : ReadAccuracy(yard, question).groups) {
        here.push_back(LineOf(Words(group.key[0]), group.figures));
      }
      ExpectEqual(there, here);
    }
  });
}

TEST_F(CentralFigures, AreThoseOfTheYardsOwnFiles) {
  PushYards();
  CheckAccuracy();
  CheckViews();
  CheckAPeriod();
  SettleImports();
  CheckViews();
  CheckAPeriod();
}

}  // namespace
}  // namespace vrx::testing
