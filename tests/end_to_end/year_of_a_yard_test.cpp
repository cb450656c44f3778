// A year of a yard in fast motion, from the recipe's edit to the exports, by the programs alone.

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "end_to_end/programs_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

// The parts of the year run side by side, each with its own module and its own copy of the recipes:
// most of their time goes into the time-outs of the protocol.
constexpr int kParts = 7;
constexpr int kRounds = 2;        // of a part
constexpr int kDaysOfRound = 26;  // 14 rounds are a year but for a day

// Weights in tenths, by "day recipe kind name": one of them may have been weighed several times.
using Weighed = std::multimap<std::string, long>;

long Tenths(const std::string& weight) { return std::lround(std::stod(weight) * 10); }

std::vector<std::string> Fields(const std::string& line) {
  std::vector<std::string> fields;
  std::istringstream in(line);
  for (std::string field; std::getline(in, field, ',');) {
    fields.push_back(field);
  }
  return fields;
}

// A month/day/year of the screen as the ledger's.
std::string LedgerDate(const std::string& shown) {
  static const std::regex pattern(R"((\d+)/(\d+)/(\d{4}))");
  std::smatch match;
  if (!std::regex_match(shown, match, pattern)) {
    throw std::runtime_error("no date: " + shown);
  }
  const auto two = [](const std::string& digits) {
    return digits.size() < 2 ? "0" + digits : digits;
  };
  return match[3].str() + "-" + two(match[1]) + "-" + two(match[2]);
}

std::vector<std::pair<std::string, long>> Sorted(const Weighed& weighed) {
  std::vector<std::pair<std::string, long>> all(weighed.begin(), weighed.end());
  std::sort(all.begin(), all.end());
  return all;
}

class YearOfAYard : public ProgramsTest {
 protected:
  void Do(const std::vector<std::string>& args) const {
    std::vector<std::string> all{"--yes"};
    all.insert(all.end(), args.begin(), args.end());
    const Result result = Ctl(all);
    ASSERT_EQ(result.code, 0) << args[0] << ": " << result.err;
  }

  void MakeYard() const {
    Do({"settings", "SystemUnits", "KG"});
    Do({"new", "recipe", recipes_});
    Do({"new", "transaction", transactions_});
    const std::vector<std::vector<std::string>> ingredients = {
        {"1", "CORN", "Corn flaked", "86", "no"},
        {"2", "SILAGE", "Barley silage", "38", "no"},
        {"3", "HAY", "Grass hay", "88", "no"},
        {"40", "MINRAL", "Mineral premix", "100", "yes"}};
    for (const auto& row : ingredients) {
      Do({"set", "ingredient", recipes_, row[0], "--name", row[1], "--description", row[2],
          "--dry-matter", row[3], "--hand-add", row[4]});
    }
    MakeRecipe("1", "START", "P", {{"3", "60"}, {"1", "38.75"}, {"40", "1.25"}});
    MakeRecipe("7", "FINISH", "W", {{"1", "2500"}, {"2", "800"}, {"3", "150"}, {"40", "30"}});
    for (int pen = 1; pen <= 5; ++pen) {
      Do({"set", "pen", recipes_, std::to_string(pen), "--name", "N" + std::to_string(pen),
          "--feed", std::to_string(300 + 70 * pen)});
    }
  }

  void MakeRecipe(const std::string& id, const std::string& name, const std::string& type,
                  const std::vector<std::pair<std::string, std::string>>& lines) const {
    Do({"set", "recipe", recipes_, id, "--name", name, "--description", name + " ration", "--type",
        type});
    for (const auto& [ingredient, amount] : lines) {
      Do({"line", "add", recipes_, id, ingredient, type == "P" ? "--percent" : "--weight", amount});
    }
    Do({"set", "recipe", recipes_, id, "--ration-target", "4000"});
  }

  // The first day of a part of the year.
  static std::string FirstDay(int part) {
    using std::chrono::days;
    const std::chrono::sys_days first = std::chrono::sys_days{std::chrono::year{2026} / 1 / 5} +
                                        days{part * kRounds * kDaysOfRound};
    const std::chrono::year_month_day date{first};
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    return text.data();
  }

  void StartParts() {
    for (int part = 0; part < kParts; ++part) {
      fs::copy_file(recipes_, PartPath(part, ".RDB"));
      modules_.push_back(
          StartModule({"--baud", "0", "--feeds", FirstDay(part), "--days",
                       std::to_string(kDaysOfRound), "--ledger", PartPath(part, ".ledger")},
                      static_cast<std::size_t>(part)));
    }
  }

  // The changes that a nutritionist makes from time to time.
  void EditRecipes(int part, int round) const {
    const std::string recipes = PartPath(part, ".RDB");
    const int count = part * kRounds + round;
    Do({"set", "recipe", recipes, "7", "--adjust", std::to_string(count % 5 - 2)});
    Do({"line", "set", recipes, "7", "1", "--weight", std::to_string(2500 + 10 * count)});
    Do({"set", "pen", recipes, std::to_string(1 + count % 5), "--feed",
        std::to_string(400 + 15 * count)});
  }

  // Runs a command at the module of each part, all at once.
  void DoAtModules(const std::function<std::vector<std::string>(int part)>& command) const {
    std::vector<std::unique_ptr<Program>> running;
    for (int part = 0; part < kParts; ++part) {
      std::vector<std::string> args{"--yes", "module"};
      for (const std::string& word : command(part)) {
        args.push_back(word);
      }
      args.insert(args.end(), {"--port", ModulePath(static_cast<std::size_t>(part))});
      running.push_back(StartCtl(args));
    }
    for (const auto& program : running) {
      EXPECT_EQ(program->Wait(), 0) << program->Err();
    }
    ASSERT_FALSE(HasFailure());
  }

  void CarryModules(int round) const {
    const auto out = [&](int part) { return PartPath(part, "round" + std::to_string(round)); };
    ASSERT_NO_FATAL_FAILURE(DoAtModules([&](int part) {
      return std::vector<std::string>{"download", PartPath(part, ".RDB")};
    }));
    ASSERT_NO_FATAL_FAILURE(DoAtModules([&](int part) {
      return std::vector<std::string>{"upload", "--out", out(part)};
    }));
    for (int part = 0; part < kParts; ++part) {
      Do({"store", out(part) + "/01.QXT", "--into", transactions_, "--recipes",
          PartPath(part, ".RDB")});
    }
  }

  std::string Export(int group, const std::string& format) const {
    const std::string file = (folder / ("out" + std::to_string(group) + "." + format)).string();
    Do({"export", transactions_, "--group", std::to_string(group), "--recipes", recipes_,
        "--format", format, "--out", file});
    return ReadAll(file);
  }

  Weighed Ledger() const {
    Weighed weighed;
    for (int part = 0; part < kParts; ++part) {
      std::ifstream in(PartPath(part, ".ledger"));
      for (std::string line; std::getline(in, line);) {
        const auto fields = Fields(line);
        weighed.emplace(fields[0] + " " + fields[2] + " " + fields[3] + " " + fields[4],
                        Tenths(fields[5]));
      }
    }
    return weighed;
  }

  std::string PartPath(int part, const std::string& end) const {
    return (folder / ("part" + std::to_string(part) + end)).string();
  }

  std::string recipes_ = (folder / "YARD.RDB").string();
  std::string transactions_ = (folder / "YEAR.TDB").string();
  std::vector<std::unique_ptr<Program>> modules_;  // of the parts
};

// Transaction,Recipe,Type,Batch Wt,Ingredient,Feed Wt,Pen,Target Wt,User ID,Time,Date,...
Weighed WeighedInCsv(const std::string& csv) {
  Weighed weighed;
  std::istringstream in(csv);
  std::string line;
  std::getline(in, line);
  while (std::getline(in, line)) {
    const auto fields = Fields(line);
    const bool batch = fields.at(2) == "BATCH";
    weighed.emplace(
        LedgerDate(fields.at(10)) + " " + fields[1] + " " + fields[2] + " " + fields[batch ? 4 : 6],
        Tenths(fields[batch ? 3 : 5]));
  }
  return weighed;
}

// Sums in tenths of what a ledger says, by the name that was batched or fed.
std::map<std::string, long> SumsByName(const Weighed& weighed, const std::string& kind) {
  std::map<std::string, long> sums;
  for (const auto& [key, tenths] : weighed) {
    std::istringstream words(key);
    std::string day;
    std::string recipe;
    std::string type;
    std::string name;
    words >> day >> recipe >> type >> name;
    if (type == kind) {
      sums[name] += tenths;
    }
  }
  return sums;
}

// Of elements such as <Ingredient Value="CORN" Batch_Weight="1085" ...>.
std::map<std::string, long> SumsInXml(const std::string& xml, const std::string& element,
                                      const std::string& weight) {
  std::map<std::string, long> sums;
  const std::regex head("<" + element + " Value=\"([^\"]*)\"[^>]*" + weight + "=\"([^\"]*)\"");
  for (auto match = std::sregex_iterator(xml.begin(), xml.end(), head);
       match != std::sregex_iterator(); ++match) {
    sums[(*match)[1]] += Tenths((*match)[2]);
  }
  return sums;
}

TEST_F(YearOfAYard, EveryKilogramThatWasWeighedIsInTheExports) {
  ASSERT_NO_FATAL_FAILURE(MakeYard());
  ASSERT_NO_FATAL_FAILURE(StartParts());
  for (int round = 0; round < kRounds; ++round) {
    for (int part = 0; part < kParts; ++part) {
      ASSERT_NO_FATAL_FAILURE(EditRecipes(part, round));
    }
    ASSERT_NO_FATAL_FAILURE(CarryModules(round));
  }
  for (const auto& module : modules_) {
    EXPECT_THAT(module->Err(), ::testing::Not(HasSubstr("not fed")));
  }

  const Weighed ledger = Ledger();
  EXPECT_EQ(ledger.begin()->first.substr(0, 10), "2026-01-05");
  EXPECT_EQ(std::prev(ledger.end())->first.substr(0, 10), "2027-01-03");
  EXPECT_EQ(Sorted(WeighedInCsv(Export(0, "csv"))), Sorted(ledger));
  EXPECT_EQ(SumsInXml(Export(6, "xml"), "Ingredient", "Batch_Weight"), SumsByName(ledger, "BATCH"));
  EXPECT_EQ(SumsInXml(Export(8, "xml"), "Pen", "Feed_Weight"), SumsByName(ledger, "FEED"));
}

}  // namespace
}  // namespace vrx::testing
