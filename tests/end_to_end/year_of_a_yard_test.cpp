// A year of a yard in fast motion, from the recipe's edit to the exports, by the programs alone.

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
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

constexpr int kRounds = 13;
constexpr int kDaysOfRound = 28;  // a year but for a day

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

  // The changes that a nutritionist makes from time to time.
  void EditRecipes(int round) const {
    Do({"set", "recipe", recipes_, "7", "--adjust", std::to_string(round % 5 - 2)});
    Do({"line", "set", recipes_, "7", "1", "--weight", std::to_string(2500 + 10 * round)});
    Do({"set", "pen", recipes_, std::to_string(1 + round % 5), "--feed",
        std::to_string(400 + 15 * round)});
  }

  void CarryModule(int round) const {
    Do({"module", "download", recipes_, "--port", ModulePath()});
    const fs::path out = folder / ("round" + std::to_string(round));
    Do({"module", "upload", "--out", out.string(), "--port", ModulePath()});
    Do({"store", (out / "01.QXT").string(), "--into", transactions_, "--recipes", recipes_});
  }

  std::string Export(int group, const std::string& format) const {
    const std::string file = (folder / ("out" + std::to_string(group) + "." + format)).string();
    Do({"export", transactions_, "--group", std::to_string(group), "--recipes", recipes_,
        "--format", format, "--out", file});
    return ReadAll(file);
  }

  Weighed Ledger() const {
    Weighed weighed;
    std::ifstream in(ledger_);
    for (std::string line; std::getline(in, line);) {
      const auto fields = Fields(line);
      weighed.emplace(fields[0] + " " + fields[2] + " " + fields[3] + " " + fields[4],
                      Tenths(fields[5]));
    }
    return weighed;
  }

  std::string recipes_ = (folder / "YARD.RDB").string();
  std::string transactions_ = (folder / "YEAR.TDB").string();
  std::string ledger_ = (folder / "ledger").string();
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
  const auto module = StartModule({"--baud", "0", "--feeds", "2026-01-05", "--days",
                                   std::to_string(kDaysOfRound), "--ledger", ledger_});
  for (int round = 0; round < kRounds; ++round) {
    ASSERT_NO_FATAL_FAILURE(EditRecipes(round));
    ASSERT_NO_FATAL_FAILURE(CarryModule(round)) << module->Err();
  }
  EXPECT_THAT(module->Err(), ::testing::Not(HasSubstr("not fed")));

  const Weighed ledger = Ledger();
  EXPECT_EQ(ledger.begin()->first.substr(0, 10), "2026-01-05");
  EXPECT_EQ(std::prev(ledger.end())->first.substr(0, 10), "2027-01-03");
  EXPECT_EQ(Sorted(WeighedInCsv(Export(0, "csv"))), Sorted(ledger));
  EXPECT_EQ(SumsInXml(Export(6, "xml"), "Ingredient", "Batch_Weight"), SumsByName(ledger, "BATCH"));
  EXPECT_EQ(SumsInXml(Export(8, "xml"), "Pen", "Feed_Weight"), SumsByName(ledger, "FEED"));
}

}  // namespace
}  // namespace vrx::testing
