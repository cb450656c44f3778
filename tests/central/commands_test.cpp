#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "central/client_fixture.h"
#include "support/database_files.h"
#include "support/program.h"
#include "support/recipe_tables.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using Json = nlohmann::json;

class CentralCommands : public ClientFixture {
 protected:
  int Run(std::vector<std::string> args) {
    args.insert(args.begin(), {"--data-dir", (folder_ / "data").string(), "central"});
    Program program(std::string(VRX_BIN_DIR) + "/vrx2260ctl", args, folder_.Path().string());
    const int code = program.Wait();
    out_ = program.Out();
    err_ = program.Err();
    return code;
  }

  void WriteSettings(const std::string& text) {
    fs::create_directories(folder_ / "data");
    std::ofstream(folder_ / "data" / "VRX-2260.INI") << "[Comments]\nTitle=x\n" << text;
  }

  std::string out_;
  std::string err_;
};

TEST_F(CentralCommands, GoFromAnEmptyDatabaseToARestoredFile) {
  const std::string database = CentralServer::Get().MakeDatabase();
  const std::string chief = CentralServer::Get().Connection(database);
  ASSERT_EQ(Run({"init", "--server", chief}), 0) << err_;
  EXPECT_EQ(out_, "made\n");
  ASSERT_EQ(Run({"init", "--server", chief}), 0) << err_;
  EXPECT_EQ(out_, "up to date\n");
  ASSERT_EQ(Run({"add-yard", "--server", chief, "East \"1\"", "--zone", "America/Chicago",
                 "--login", kNorth}),
            0)
      << err_;
  WriteSettings("[Central]\nConnection=" + CentralServer::Get().Connection(database, kNorth) +
                "\nYard=East \"1\"\n");
  const std::string file = MakeFile("Y.TDB", 20).string();
  ASSERT_EQ(Run({"push", file, "--json"}), 0) << err_;
  const Json pushed = Json::parse(out_);
  EXPECT_EQ(pushed["rows"], 100);
  AddBatches(file, 1);
  ASSERT_EQ(Run({"status", file, "--json"}), 0) << err_;
  const Json status = Json::parse(out_);
  EXPECT_EQ(status["file"]["waiting"], 5);
  EXPECT_EQ(status["sources"][0]["rows"], 100);
  EXPECT_EQ(status["protection"], "a socket of this machine");
  ASSERT_EQ(Run({"verify", file, "--json"}), 0) << err_;
  EXPECT_EQ(Json::parse(out_)["equal"], true);
  const std::string restored = (folder_ / "R.TDB").string();
  ASSERT_EQ(Run({"restore", "--out", restored}), 0) << err_;
  EXPECT_EQ(Ask(restored, "SELECT count(*) FROM Transactions"), "100");
  EXPECT_EQ(Run({"push", restored}), 1);
  EXPECT_THAT(err_, HasSubstr("Central Database Error: this file is a copy"));
  EXPECT_EQ(Run({"push", restored, "--as-new-source"}), 0) << err_;
  const std::string source = pushed["source"];
  ASSERT_EQ(Run({"withdraw", "--server", chief, "--source", source, "--rows", "1-5", "--why", "x"}),
            0)
      << err_;
  EXPECT_EQ(out_, "5\n");
  EXPECT_EQ(Run({"erase", "--server", chief, "--source", source, "--rows", "1-5", "--why", "x"}), 1)
      << "without an answer";
  EXPECT_EQ(
      Run({"--yes", "erase", "--server", chief, "--source", source, "--rows", "1-5", "--why", "x"}),
      0)
      << err_;
  EXPECT_EQ(Run({"alias", "--server", chief, "CORN", "FLAKED CORN"}), 0) << err_;
}

TEST_F(CentralCommands, ADifferenceIsNamedAndExitsOne) {
  const std::string file = MakeFile("Y.TDB", 20).string();
  const std::vector<std::string> place{"--server", Connection(), "--yard", "North"};
  ASSERT_EQ(Run({"push", file, place[0], place[1], place[2], place[3]}), 0) << err_;
  Alter(file, "DELETE FROM Transactions WHERE rowid IN (9, 10)");
  EXPECT_EQ(Run({"verify", file, place[0], place[1], place[2], place[3], "--json"}), 1);
  EXPECT_EQ(Json::parse(out_)["missingHere"], 2);
  EXPECT_THAT(err_, HasSubstr("first in rows 9 to 10"));
}

TEST_F(CentralCommands, PublishRecipesAndFetchThem) {
  RecipeTables tables = SmallYard();
  CreateRecipeDatabase(folder_ / "NORTH.RDB", tables);
  Recipe(tables, 1).ration_target = "2600";
  Recipe(tables, 2).head_count = 99;
  Ingredient(tables, 1).name = "FLAKED";
  for (RecipeLineRecord& line : tables.lines) {
    line.row = 0;
  }
  CreateRecipeDatabase(folder_ / "OFFICE.RDB", tables);
  const std::string chief = CentralServer::Get().Connection(database_);
  ASSERT_EQ(Run({"publish", "--server", Connection(), (folder_ / "OFFICE.RDB").string()}), 1);
  EXPECT_THAT(err_, HasSubstr("permission denied"));
  ASSERT_EQ(Run({"publish", "--server", chief, (folder_ / "OFFICE.RDB").string(), "--yards",
                 "North,South", "--note", "Summer", "--json"}),
            0)
      << err_;
  EXPECT_EQ(Json::parse(out_),
            Json::parse(R"({"release":1,"units":"LB","ingredients":3,"recipes":2,"pens":1})"));
  const std::vector<std::string> fetch{"fetch",
                                       "--server",
                                       Connection(),
                                       "--yard",
                                       "North",
                                       "--compare",
                                       (folder_ / "NORTH.RDB").string()};
  const auto with = [&fetch](std::vector<std::string> more) {
    more.insert(more.begin(), fetch.begin(), fetch.end());
    return more;
  };
  ASSERT_EQ(Run(with({"--csv"})), 0) << err_;
  EXPECT_EQ(out_,
            "record,id,name,place,ingredient,field,here,release,kept\r\n"
            "ingredient,1,CORN,,,Name,CORN,FLAKED,No\r\n"
            "recipe,1,STEERS,,,RationTarget,,2600,No\r\n"
            "line,1,STEERS,1,FLAKED,BatchTarget,0,2089,No\r\n"
            "line,1,STEERS,2,HAY,BatchTarget,0,511,No\r\n"
            "recipe,2,HEIFERS,,,HeadCount,120,99,Yes\r\n");
  const std::string out = (folder_ / "NEW.RDB").string();
  EXPECT_EQ(Run(with({"--out", out})), 1) << "a new name needs an answer";
  EXPECT_THAT(err_, HasSubstr("ingredient 1 CORN becomes FLAKED"));
  EXPECT_FALSE(fs::exists(out));
  ASSERT_EQ(Run(with({"--out", out, "--json", "--yes"})), 0) << err_;
  const Json fetched = Json::parse(out_);
  EXPECT_EQ(fetched["release"], 1);
  EXPECT_EQ(fetched["note"], "Summer");
  EXPECT_EQ(fetched["renamed"].size(), 1U);
  EXPECT_EQ(fetched["differences"].size(), 5U);
  EXPECT_EQ(fetched["differences"][4]["kept"], true);
  EXPECT_EQ(ReadTables(out).recipes[1].head_count, 120);
  EXPECT_EQ(Run(with({"--out", out, "--yes"})), 1) << "the file is there";
  EXPECT_EQ(Run(with({"--release", "7"})), 1);
  EXPECT_EQ(Run(with({"--release", "0"})), 2);
}

TEST_F(CentralCommands, AnswerForTheCompany) {
  const std::string file = MakeFile("Y.TDB", 20).string();
  ASSERT_EQ(Run({"push", file, "--server", Connection(), "--yard", "North"}), 0) << err_;
  chief_.Query(
      "INSERT INTO vrx.import (yard, source, import, file, units, stored) SELECT yard, source, 9, "
      "'DAY.QXT', 'KG', 7 FROM vrx.source");
  const auto ask = [&](std::vector<std::string> args) {
    args.insert(args.begin() + 1, {"--server", CentralServer::Get().Connection(database_)});
    return Run(args);
  };
  ASSERT_EQ(ask({"accuracy", "--by", "yard", "--units", "LB", "--json"}), 0) << err_;
  const Json accuracy = Json::parse(out_);
  EXPECT_EQ(accuracy["units"], "LB");
  EXPECT_EQ(accuracy["groups"].size(), 1U);
  EXPECT_EQ(accuracy["groups"][0]["key"]["yard"], "North");
  EXPECT_EQ(accuracy["groups"][0]["n"].get<int>(), 57);
  EXPECT_EQ(accuracy["total"]["n"], accuracy["groups"][0]["n"]);
  EXPECT_EQ(accuracy["yards"][0]["behind"], false);
  EXPECT_EQ(accuracy["yards"][1]["yard"], "South");
  EXPECT_EQ(accuracy["yards"][1]["asOf"], nullptr);
  EXPECT_EQ(accuracy["yards"][1]["behind"], true);
  ASSERT_EQ(accuracy["openImports"].size(), 1U);
  EXPECT_EQ(accuracy["openImports"][0]["file"], "DAY.QXT");
  ASSERT_EQ(ask({"use", "--by", "yard,month"}), 0) << err_;
  EXPECT_THAT(out_, ::testing::StartsWith("yard\tmonth\tloads\tused\nNorth\t2026-01\t60\t"));
  EXPECT_THAT(err_, HasSubstr("South has pushed nothing yet: it is behind.\n"));
  EXPECT_THAT(err_, HasSubstr("Import 9 of North (DAY.QXT) is in KG and not settled: its 7 rows "
                              "are left out.\n"));
  ASSERT_EQ(ask({"delivered", "--by", "yard", "--csv"}), 0) << err_;
  EXPECT_THAT(out_, ::testing::StartsWith("yard,called,delivered,difference,feedings\r\nNorth,"));
  ASSERT_EQ(ask({"balance", "--all", "--json"}), 0) << err_;
  EXPECT_EQ(Json::parse(out_)["lines"].size(), 20U);
  ASSERT_EQ(ask({"balance", "--by", "yard", "--json", "--from", "2027-01-01"}), 0) << err_;
  EXPECT_EQ(Json::parse(out_)["lines"].size(), 0U);
  ASSERT_EQ(ask({"completeness", "--json"}), 0) << err_;
  EXPECT_EQ(Json::parse(out_)["lines"].size(), 2U);
  EXPECT_EQ(Json::parse(out_)["lines"][0]["batches"], 20);
  for (const std::vector<std::string>& wrong : std::vector<std::vector<std::string>>{
           {"accuracy", "--by", "pen"},
           {"accuracy", "--by", "operator"},
           {"accuracy", "--deliveries", "--by", "yard,ingredient"},
           {"use", "--by", "yard,yard"},
           {"use", "--by", "pony"},
           {"use", "--units", "TON"},
           {"balance", "--from", "2026-02-01", "--to", "2026-01-01"},
           {"delivered", "--deliveries"},
           {"completeness", "--by", "day"}}) {
    EXPECT_EQ(ask(wrong), 2) << wrong.back();
  }
}

TEST_F(CentralCommands, WrongUsageExitsTwo) {
  const std::string file = MakeFile("Y.TDB", 1).string();
  EXPECT_EQ(Run({}), 2);
  EXPECT_EQ(Run({"push"}), 2);
  EXPECT_EQ(Run({"push", file}), 2);
  EXPECT_THAT(err_, HasSubstr("--yard"));
  EXPECT_EQ(Run({"push", file, "--yard", "North"}), 2);
  EXPECT_THAT(err_, HasSubstr("--server"));
  EXPECT_EQ(Run({"erase", "--server", "x", "--source", "y", "--rows", "9-5", "--why", "z"}), 2);
}

TEST_F(CentralCommands, APasswordInTheConnectionIsRefusedAndNotRepeated) {
  const std::string file = MakeFile("Y.TDB", 1).string();
  EXPECT_EQ(Run({"push", file, "--yard", "North", "--server", Connection() + " password=hunter2"}),
            1);
  EXPECT_EQ(err_.find("hunter2"), std::string::npos);
  EXPECT_EQ(out_, "");
}

TEST_F(CentralCommands, WithoutAConnectionAFileStaysAsItIs) {
  const fs::path file = MakeFile("Y.TDB", 1);
  EXPECT_EQ(Run({"push", file.string(), "--yard", "North", "--server", "host=/nowhere"}), 1);
  EXPECT_EQ(Ask(file, "SELECT count(*) FROM sqlite_schema WHERE name LIKE 'Central%'"), "0");
}

}  // namespace
}  // namespace vrx::testing
