#include <cmath>
#include <fstream>
#include <map>
#include <sstream>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <gmock/gmock.h>

#include "end_to_end/programs_fixture.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

constexpr int kDays = 7;

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) {
    parts.push_back(part);
  }
  return parts;
}

std::vector<std::vector<std::string>> Table(const std::string& name) {
  std::vector<std::vector<std::string>> rows;
  for (const std::string& line :
       Split(ReadAll(fs::path(VRX_SOURCE_DIR) / "data/sample_site" / name), '\n')) {
    rows.push_back(Split(line, '\t'));
  }
  rows.erase(rows.begin());
  return rows;
}

// Names by ID, as the texts have them.
std::map<std::string, std::string> Names(const std::string& table) {
  std::map<std::string, std::string> names;
  for (const auto& row : Table(table)) {
    names[row[0]] = row[1];
  }
  return names;
}

struct Week {
  int rows = 0;
  int transactions = 0;
  std::map<std::string, double> batched;  // by ingredient name
  std::map<std::string, double> fed;      // by pen name
  double target = 0;
};

// Read without the program's parser: a line is a record, its lists are cut at ";" and ",".
Week ReadWeek() {
  const auto ingredients = Names("ingredients.tsv");
  const auto pens = Names("pens.tsv");
  Week week;
  for (int day = 1; day <= kDays; ++day) {
    const std::string name = "day" + std::to_string(day) + ".qxt";
    bool feeds = false;
    for (std::string line :
         Split(ReadAll(fs::path(VRX_SOURCE_DIR) / "data/sample_site" / name), '\n')) {
      feeds = feeds || line.starts_with("[FED],");
      if (line.starts_with("[")) {
        line.erase(0, 6);
      }
      if (!line.starts_with("B,")) {
        continue;
      }
      const auto lists = Split(line, ';');
      const auto first = Split(lists[0], ',');
      if (feeds) {
        week.fed[pens.at(first[2])] += std::stod(first[7]);
        week.target += std::stod(first[6]);
        ++week.rows;
        continue;
      }
      ++week.transactions;
      const auto targets = Split(lists[2], ',');
      const auto actuals = Split(lists[3], ',');
      for (std::size_t entry = 0; first.at(5 + entry) != "0"; ++entry) {
        week.batched[ingredients.at(first[5 + entry])] += std::stod(actuals[entry]);
        week.target += std::stod(targets[entry]);
        ++week.rows;
      }
    }
  }
  return week;
}

std::map<std::string, double> Sums(SQLite::Database& database, const std::string& name,
                                   const std::string& weight) {
  std::map<std::string, double> sums;
  SQLite::Statement statement(database, "SELECT " + name + ", SUM(" + weight +
                                            ") FROM Transactions WHERE " + name +
                                            " IS NOT NULL GROUP BY " + name);
  while (statement.executeStep()) {
    sums[statement.getColumn(0).getString()] = statement.getColumn(1).getDouble();
  }
  return sums;
}

class SampleSite : public ProgramsTest {};

TEST_F(SampleSite, HoldsWhatItsTextsSay) {
  const Json info = Info(SitePath("SITE.RDB"));
  EXPECT_EQ(info["ingredients"], Table("ingredients.tsv").size());
  EXPECT_EQ(info["recipes"], Table("recipes.tsv").size());
  EXPECT_EQ(info["pens"], Table("pens.tsv").size());
  EXPECT_EQ(info["units"], "LB");
  SQLite::Database database(SitePath("SITE.RDB"));
  for (const auto& row : Table("recipe_lines.tsv")) {
    SQLite::Statement statement(database,
                                "SELECT * FROM RecipeRation WHERE RecipeID = ? AND Sequence = ?");
    statement.bind(1, row[0]);
    statement.bind(2, std::stoi(row[7]));
    ASSERT_TRUE(statement.executeStep());
    for (int column = 0; column < 10; ++column) {
      const std::string& text = row[static_cast<std::size_t>(column)];
      EXPECT_EQ(statement.getColumn(column).getString(),
                column == 8 ? (text == "yes" ? "1" : "0") : text);
    }
    EXPECT_FALSE(statement.executeStep());
  }
}

// The computed columns of the texts, worked out once more: a head-count recipe scales to the head
// count, the others to their adjusted target.
TEST_F(SampleSite, LinesCarryTheFiguresOfTheirRecipe) {
  std::map<std::string, std::vector<std::vector<std::string>>> lines;
  for (const auto& row : Table("recipe_lines.tsv")) {
    lines[row[0]].push_back(row);
  }
  for (const auto& recipe : Table("recipes.tsv")) {
    const bool percent = recipe[3] == "P";
    double ration = 0;
    double as_fed_total = 0;
    double percent_total = 0;
    for (const auto& line : lines[recipe[0]]) {
      ration += line[4] == "0" ? 0 : std::stod(line[2]);
      as_fed_total += std::stod(line[5]);
      percent_total += std::stod(line[9]);
    }
    EXPECT_NEAR(percent_total, percent ? 100 : 0, 1e-9) << recipe[1];
    const double factor = (120 - std::stod(recipe[6])) / 100;
    const double scale = recipe[3] == "H" ? factor * std::stod(recipe[4]) / 100
                                          : factor * std::stod(recipe[5]) / as_fed_total;
    for (const auto& line : lines[recipe[0]]) {
      const double share = line[4] == "0" ? 100 : std::stod(line[4]);
      const double dry = percent ? std::stod(line[9]) * 100 : std::stod(line[2]);
      EXPECT_NEAR(std::stod(line[5]), dry * 100 / share, 0.5) << recipe[1] << line[1];
      EXPECT_NEAR(std::stod(line[6]), scale * std::stod(line[5]), 0.501) << recipe[1] << line[1];
      const double of_ration = ration > 0 && line[4] != "0" ? std::stod(line[2]) / ration * 100 : 0;
      EXPECT_NEAR(std::stod(line[3]), of_ration, 0.0005001) << recipe[1] << line[1];
    }
  }
}

TEST_F(SampleSite, ItsWeekStoresCompletely) {
  const std::string into = NewTransactionDatabase();
  for (int day = 1; day <= kDays; ++day) {
    const Result store = Ctl({"store", SitePath("day" + std::to_string(day) + ".qxt"), "--into",
                              into, "--recipes", SitePath("SITE.RDB")});
    ASSERT_EQ(store.code, 0) << store.err;
  }
  const Week week = ReadWeek();
  const Json info = Info(into);
  EXPECT_EQ(info["rows"], week.rows);
  EXPECT_EQ(info["transactions"], week.transactions);
  EXPECT_EQ(info["firstDate"], "2026-01-05");
  EXPECT_EQ(info["lastDate"], "2026-01-11");
  SQLite::Database database(into);
  EXPECT_EQ(Sums(database, "Ingredient", "ActualBatch"), week.batched);
  EXPECT_EQ(Sums(database, "Pen", "ActualFeed"), week.fed);
  EXPECT_EQ(database.execAndGet("SELECT SUM(Target) FROM Transactions").getDouble(), week.target);
  // The ingredients fed to a pen add up to its total.
  SQLite::Statement shares(database,
                           "SELECT ActualFeed, Ing01Wt, Ing02Wt, Ing03Wt, Ing04Wt, Ing05Wt, "
                           "Ing06Wt, Ing07Wt, Ing08Wt, Ing09Wt, Ing10Wt, Ing11Wt, Ing12Wt, "
                           "Ing13Wt, Ing14Wt FROM Transactions WHERE Type = 'FEED'");
  while (shares.executeStep()) {
    double sum = 0;
    for (int column = 1; column <= 14; ++column) {
      sum += shares.getColumn(column).getDouble();
    }
    EXPECT_NEAR(sum, shares.getColumn(0).getDouble(), 1.0);
  }
}

TEST_F(SampleSite, ThePensOfALoadGetAboutWhatWasBatched) {
  const std::string into = NewTransactionDatabase();
  ASSERT_EQ(
      Ctl({"store", SitePath("day1.qxt"), "--into", into, "--recipes", SitePath("SITE.RDB")}).code,
      0);
  SQLite::Database database(into);
  SQLite::Statement loads(database,
                          "SELECT SUM(ActualBatch), SUM(ActualFeed) FROM Transactions GROUP BY "
                          "[Transaction]");
  while (loads.executeStep()) {
    EXPECT_NEAR(loads.getColumn(0).getDouble(), loads.getColumn(1).getDouble(), 10.0);
  }
}

TEST_F(SampleSite, AWrongTextIsReportedWithFileAndLine) {
  const fs::path texts = folder / "texts";
  fs::copy(fs::path(VRX_SOURCE_DIR) / "data/sample_site", texts);
  const std::vector<std::array<std::string, 4>> wrong = {
      {"ingredients.tsv", "\t82\t", "\t182\t", "ingredients.tsv:2: \"182\""},
      {"ingredients.tsv", "\tno\n", "\tnever\n", "ingredients.tsv:2: \"never\""},
      {"recipes.tsv", "\tP\t", "\tQ\t", "recipes.tsv:2: \"Q\""},
      {"recipe_lines.tsv", "1\t6\t0\t", "1\t99\t0\t", "recipe_lines.tsv:2: ingredient 99"},
      {"pens.tsv", "2\tA02\t", "2\t", "pens.tsv:3: 3 cells instead of 4"},
      {"pens.tsv", "ID\tName", "ID\tTitle", "pens.tsv:1: the heading"}};
  for (const auto& [name, from, to, message] : wrong) {
    const std::string sound = ReadAll(texts / name);
    std::string text = sound;
    text.replace(text.find(from), from.size(), to);
    std::ofstream(texts / name, std::ios::binary) << text;
    const std::string target = (folder / "SITE.RDB").string();
    Program tool(VRX_MAKE_SAMPLE_SITE, {texts.string(), Bin("QXNULRDB.MDB"), target},
                 folder.Path().string());
    EXPECT_EQ(tool.Wait(), 1) << message;
    EXPECT_THAT(tool.Err(), HasSubstr(message));
    EXPECT_FALSE(fs::exists(target));
    std::ofstream(texts / name, std::ios::binary) << sound;
  }
}

}  // namespace
}  // namespace vrx::testing
