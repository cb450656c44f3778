// What the records say, on years of records: how long the answers take, against the sqlite3 shell
// and against a tenth of the records, and how much memory they need.
//
//   insight_bench [--rows N] [--rounds N]

#include <chrono>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "base/date.h"
#include "database/connection.h"
#include "figures.h"
#include "insight/accuracy.h"
#include "insight/batches.h"
#include "insight/completeness.h"
#include "insight/loads.h"
#include "insight/pens.h"
#include "insight/use.h"
#include "measure.h"
#include "years.h"

namespace vrx::bench {
namespace {

constexpr double kMonthLimit = 100;  // ms
constexpr double kTenthLimit = 1.2;
constexpr double kShellLimit = 1.0;
constexpr double kMemoryLimit = 100;  // MB
constexpr int kDaysOfMonth = 30;

// The command line writes each line at once.
template <typename Line>
void Drop(Line&& /*line*/) {}

struct Asked {
  std::string name;
  std::function<void(SQLite::Database&, const Question&)> answer;
};

// A question for each command; `about` has the period.
std::vector<Asked> Questions() {
  const auto named = [](Question about, const std::string& ingredient, const std::string& pen) {
    if (!ingredient.empty()) {
      about.ingredient = ingredient;
    }
    if (!pen.empty()) {
      about.pen = pen;
    }
    return about;
  };
  return {
      {"accuracy by ingredient",
       [](auto& database, const Question& about) {
         static_cast<void>(ReadAccuracy(database, {.about = about}));
       }},
      {"accuracy of deliveries by pen",
       [](auto& database, const Question& about) {
         static_cast<void>(ReadAccuracy(
             database, {.about = about, .deliveries = true, .by = {AccuracyKey::kPen}}));
       }},
      {"accuracy of deliveries by day and pen",
       [](auto& database, const Question& about) {
         static_cast<void>(StreamAccuracy(
             database,
             {.about = about, .deliveries = true, .by = {AccuracyKey::kDay, AccuracyKey::kPen}},
             Drop<AccuracyGroup>));
       }},
      {"single loads",
       [](auto& database, const Question& about) {
         static_cast<void>(ReadLoads(database, {.about = about}));
       }},
      {"composition",
       [](auto& database, const Question& about) {
         static_cast<void>(StreamComposition(database, about, Drop<CompositionLine>));
       }},
      {"balance",
       [](auto& database, const Question& about) {
         static_cast<void>(
             StreamBalance(database, {.about = about, .all = true}, Drop<BalanceLine>));
       }},
      {"times",
       [](auto& database, const Question& about) {
         static_cast<void>(StreamTimes(database, {.about = about}, Drop<BatchTimes>));
       }},
      {"delivered",
       [](auto& database, const Question& about) {
         static_cast<void>(StreamDelivered(database, about, {}, Drop<DeliveredLine>));
       }},
      {"trace of an ingredient",
       [named](auto& database, const Question& about) {
         static_cast<void>(
             StreamTraceOfIngredient(database, named(about, "CORN", ""), Drop<TraceLine>));
       }},
      {"trace of a pen",
       [named](auto& database, const Question& about) {
         static_cast<void>(StreamTraceOfPen(database, named(about, "", "A01"), Drop<TraceLine>));
       }},
      {"completeness",
       [](auto& database, const Question& about) {
         static_cast<void>(ReadStatement(database, about.from, about.to));
       }},
      {"use",
       [](auto& database, const Question& about) {
         static_cast<void>(ReadUse(database, {.about = about}));
       }},
  };
}

Date LastDay(const std::filesystem::path& path) {
  SQLite::Database database = OpenDatabase(path, Access::kRead);
  const auto day =
      ParseStoredDate(database.execAndGet("SELECT max(Date) FROM Transactions").getString());
  if (!day) {
    throw std::runtime_error("there is no day");
  }
  return *day;
}

Question LastMonth(const std::filesystem::path& path) {
  const Date last = LastDay(path);
  return {.from = Date(std::chrono::sys_days(last) - std::chrono::days(kDaysOfMonth - 1)),
          .to = last};
}

void Answer(const std::filesystem::path& path, const Asked& asked, const Question& about) {
  SQLite::Database database = OpenDatabase(path, Access::kRead);
  asked.answer(database, about);
}

class InsightBench {
 public:
  explicit InsightBench(const BenchOptions& options) : options_(options), years_(options.rows) {}

  int Run() {
    std::printf("%-60s %9s  %7s\n", "figure", "", "limit");
    for (const Asked& asked : Questions()) {
      Month(asked);
    }
    Hold();
    for (const auto& [name, key, term] :
         {Key{"ingredient", AccuracyKey::kIngredient, "Ingredient"},
          Key{"recipe", AccuracyKey::kRecipe, "Recipe"},
          Key{"operator", AccuracyKey::kOperator, "UserID"}, Key{"day", AccuracyKey::kDay, "Date"},
          Key{"month", AccuracyKey::kMonth, "substr(Date, 1, 7)"}}) {
      AgainstShell(name, key, term);
    }
    for (const Asked& asked : Questions()) {
      All(asked);
    }
    return figures_.Over();
  }

 private:
  struct Key {
    const char* name;
    AccuracyKey key;
    const char* term;
  };

  void Month(const Asked& asked) {
    const Question all = LastMonth(years_.all);
    const Question tenth = LastMonth(years_.tenth);
    const std::vector<double> times = InterleavedMedians(
        options_.rounds,
        {[&] { Answer(years_.all, asked, all); }, [&] { Answer(years_.tenth, asked, tenth); }});
    figures_.Limited(asked.name + ", a month, ms", times[0], kMonthLimit);
    figures_.Limited(asked.name + ", a month, to a tenth", times[0] / times[1], kTenthLimit,
                     Times(times[0], times[1]));
  }

  // As of a day of the past, over all records before it.
  void Hold() {
    const auto hold = [](const std::filesystem::path& path, const Date& on) {
      SQLite::Database database = OpenDatabase(path, Access::kRead);
      static_cast<void>(ReadHolding(database, {.ingredients = {"CORN"}, .days = 5, .on = on}));
    };
    const Date on = LastDay(years_.all);
    figures_.Specified("holding, all records, ms",
                       InterleavedMedians(options_.rounds, {[&] { hold(years_.all, on); }})[0]);
    figures_.Limited("holding, memory, MB", PeakMegabytes([&] { hold(years_.all, on); }),
                     kMemoryLimit);
  }

  void AgainstShell(const std::string& name, AccuracyKey key, const std::string& term) {
    const auto script = years_.folder.Write(
        "groups.sql", ".once /dev/null\nSELECT " + term +
                          ", count(*), sum(Target), sum(ActualBatch), "
                          "sum(abs(ActualBatch - Target)) FROM Transactions WHERE Type = 'BATCH' "
                          "GROUP BY " +
                          term + ";\n");
    const std::vector<double> times = InterleavedMedians(
        options_.rounds, {[&] {
                            SQLite::Database database = OpenDatabase(years_.all, Access::kRead);
                            static_cast<void>(ReadAccuracy(database, {.by = {key}}));
                          },
                          [&] { RunShell(years_.all, script); }});
    figures_.Limited("accuracy by " + name + ", all, to the shell's GROUP BY", times[0] / times[1],
                     kShellLimit, Times(times[0], times[1]));
  }

  void All(const Asked& asked) {
    figures_.Specified(
        asked.name + ", all, ms",
        InterleavedMedians(options_.rounds, {[&] { Answer(years_.all, asked, {}); }})[0]);
    figures_.Limited(asked.name + ", all, memory, MB",
                     PeakMegabytes([&] { Answer(years_.all, asked, {}); }), kMemoryLimit);
  }

  BenchOptions options_;
  Years years_;
  Figures figures_;
};

}  // namespace
}  // namespace vrx::bench

int main(int argc, char** argv) {
  try {
    const std::span<const char* const> arguments(argv + 1, static_cast<std::size_t>(argc) - 1);
    return vrx::bench::InsightBench(vrx::bench::ReadBenchOptions(arguments)).Run() == 0 ? 0 : 3;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "insight_bench: %s\n", error.what());
    return 1;
  }
}
