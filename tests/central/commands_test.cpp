#include <fstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "central/client_fixture.h"
#include "support/database_files.h"
#include "support/program.h"

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
