#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/program.h"
#include "support/temp_folder.h"

namespace vrx::testing {

// The built programs, in a separate folder.
class ProgramsTest : public ::testing::Test {
 protected:
  using Json = nlohmann::ordered_json;

  ProgramsTest() { Ctl({"settings"}); }

  static std::string Bin(const std::string& name) { return VRX_BIN_DIR "/" + name; }
  static std::string SitePath(const std::string& name) { return Bin("sample_site/" + name); }

  std::vector<std::string> WithDataDir(std::vector<std::string> args) const {
    args.insert(args.begin(), {"--data-dir", (folder / "data").string()});
    return args;
  }

  std::unique_ptr<Program> StartCtl(const std::vector<std::string>& args) const {
    return std::make_unique<Program>(Bin("vrx2260ctl"), WithDataDir(args), folder.Path().string());
  }
  static Result ResultOf(Program& program) {
    const int code = program.Wait();
    return {code, program.Out(), program.Err()};
  }
  Result Ctl(const std::vector<std::string>& args) const { return ResultOf(*StartCtl(args)); }

  Json Info(const std::string& path) const {
    const Result result = Ctl({"info", path, "--json"});
    EXPECT_EQ(result.code, 0) << result.err;
    return result.code == 0 ? Json::parse(result.out) : Json();
  }

  std::string NewTransactionDatabase(const std::string& name = "T.TDB") const {
    std::string path = (folder / name).string();
    const Result result = Ctl({"new", "transaction", path});
    EXPECT_EQ(result.code, 0) << result.err;
    return path;
  }

  // A transaction database with a day of the sample data.
  std::string StoredDay() const {
    std::string database = NewTransactionDatabase();
    const Result store = Ctl(
        {"store", SitePath("day05.qxt"), "--into", database, "--recipes", SitePath("SITE.RDB")});
    EXPECT_EQ(store.code, 0) << store.err;
    return database;
  }

  // A data module on a pseudo-terminal at ModulePath(line), ready when this returns.
  std::unique_ptr<Program> StartModule(const std::vector<std::string>& options,
                                       std::size_t line = 0) const {
    std::filesystem::remove(ModulePath(line));
    std::vector<std::string> args = {"module", "--link", ModulePath(line)};
    args.insert(args.end(), options.begin(), options.end());
    auto module = std::make_unique<Program>(Bin("vrx2260sim"), args, folder.Path().string());
    EXPECT_TRUE(module->WaitForOutput("ready " + ModulePath(line))) << module->Err();
    return module;
  }
  std::string ModulePath(std::size_t line = 0) const {
    return (folder / ("module" + std::to_string(line))).string();
  }

  TempFolder folder;
};

}  // namespace vrx::testing
