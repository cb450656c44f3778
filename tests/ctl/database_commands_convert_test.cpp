#include <filesystem>
#include <fstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "ctl/ctl_fixture.h"
#include "legacy/pen_file.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class ConvertCommandTest : public CtlTest {
 protected:
  static std::string Legacy(const std::string& name) {
    return std::string(VRX_SOURCE_DIR) + "/tests/data/legacy/" + name;
  }
  std::string Target(const std::string& name) { return (folder / name).string(); }
};

TEST_F(ConvertCommandTest, MakesADatabaseThatTheOtherCommandsTake) {
  EXPECT_EQ(Run({"convert", Legacy("LEGACYR.RDB"), Target("NEW.RDB")}), 0) << err;
  EXPECT_THAT(out, StartsWith("Conversion of LEGACYR.RDB\n"));
  EXPECT_EQ(err, "");
  EXPECT_EQ(Run({"info", Target("NEW.RDB"), "--json"}), 0) << err;
  const auto info = nlohmann::json::parse(out);
  EXPECT_EQ(info["type"], "recipe");
  EXPECT_EQ(info["created"], "2009-03-14");
  EXPECT_EQ(info["modified"], "2011-10-05");
  EXPECT_EQ(info["recipes"], 5);
  EXPECT_EQ(Run({"recipe", Target("NEW.RDB"), "1"}), 0) << err;
}

TEST_F(ConvertCommandTest, ReportsAsJson) {
  EXPECT_EQ(Run({"convert", Legacy("LEGACYX.TDB"), Target("NEW.TDB"), "--json"}), 0) << err;
  const auto report = nlohmann::json::parse(out);
  EXPECT_EQ(report["old"]["sha256"].get<std::string>().size(), 64U);
  EXPECT_EQ(report["old"]["bytes"], 245760);
  EXPECT_EQ(report["new"]["type"], "transaction");
  EXPECT_EQ(report["new"]["units"], "LB");
  EXPECT_EQ(report["tables"][0], nlohmann::json::parse(R"({"table": "Transactions", "read": 302,
      "stored": 302, "repaired": 0, "refused": 0})"));
  EXPECT_EQ(report["read"], 305);
  for (const auto& sum : report["sums"]) {
    EXPECT_EQ(sum["old"], sum["new"]);
    EXPECT_GT(sum["old"], 0);
  }
  EXPECT_EQ(report["notices"][0]["rows"], nlohmann::json::parse("[[1, 1]]"));
  EXPECT_EQ(Run({"show", Target("NEW.TDB"), "--group", "10", "--limit", "5"}), 0) << err;
}

TEST_F(ConvertCommandTest, ReportsIdsSumsAndTheUnitOfTheSystem) {
  ASSERT_EQ(Run({"settings", "SystemUnits", "KG"}), 0);
  JetWriter file;
  AddPens(file);
  file.AddRow({Whole(2), Text("N02"), Text("North"), Text("10")});
  file.AddTable("RecipeRation", {{"RecipeID", JetWriter::kLong},
                                 {"Ingredient", JetWriter::kLong},
                                 {"Target", JetWriter::kDouble}});
  file.AddRow({Whole(1), Whole(1), 12.5});
  file.AddRow({Whole(101), Whole(1), 30.0});
  file.Write(folder / "OLD.RDB");
  EXPECT_EQ(Run({"convert", Target("OLD.RDB"), Target("NEW.RDB"), "--json"}), 0) << err;
  const auto report = nlohmann::json::parse(out);
  EXPECT_EQ(report["new"]["units"], "KG");
  EXPECT_EQ(report["sums"], nlohmann::json::parse(R"([{"table": "RecipeRation",
      "column": "Target", "old": 42.5, "new": 12.5}])"));
  EXPECT_THAT(report["notices"], ::testing::Contains(nlohmann::json::parse(R"({"table": "Pen",
      "ids": [[1, 1], [3, 400]],
      "text": "no such row was read; the record has its defaults"})")));
  EXPECT_EQ(report["refused"], 1);
}

TEST_F(ConvertCommandTest, AnInterruptStopsItAndLeavesNothing) {
  system.program_directory = (folder / "bin").string();
  fs::create_directory(folder / "bin");
  fs::copy_file(fs::path(VRX_BIN_DIR) / "QXNULRDB.MDB", folder / "bin/QXNULRDB.MDB");
  folder.Write("bin/vrx2260jet",
               "#!/bin/sh\nkill -INT $PPID\nexec " VRX_BIN_DIR "/vrx2260jet \"$@\"\n");
  fs::permissions(folder / "bin/vrx2260jet", fs::perms::owner_all);
  EXPECT_EQ(Run({"convert", Legacy("LEGACYR.RDB"), Target("NEW.RDB")}), 1);
  EXPECT_EQ(err, "Database Conversion Error: the conversion was stopped\n");
  EXPECT_EQ(out, "");
  EXPECT_FALSE(fs::exists(Target("NEW.RDB")));
}

TEST_F(ConvertCommandTest, ShowsItsProgressOnATerminalUntilTheReportComes) {
  err_is_terminal = true;
  EXPECT_EQ(Run({"convert", Legacy("LEGACYR.RDB"), Target("NEW.RDB")}), 0);
  EXPECT_THAT(err, HasSubstr("Converting the table Ingredient.  100%"));
  EXPECT_EQ(Screen(), out);
}

TEST_F(ConvertCommandTest, RefusesWhatIsNoSuchFileInWords) {
  const std::string recipes = NewRecipeDatabase();
  EXPECT_EQ(Run({"convert", recipes, Target("NEW.RDB")}), 1);
  EXPECT_EQ(out, "");
  EXPECT_EQ(err,
            "Database Conversion Error: YARD.RDB is a database of the present format already. It "
            "needs no conversion: open it with File, Open.\n");
  std::ofstream(Target("TEXT.RDB")) << "ID,Name\n";
  EXPECT_EQ(Run({"convert", Target("TEXT.RDB"), Target("NEW.RDB")}), 1);
  EXPECT_THAT(err, StartsWith("Database Conversion Error: TEXT.RDB is a text file"));
  EXPECT_FALSE(fs::exists(Target("NEW.RDB")));
}

TEST_F(ConvertCommandTest, RefusesANameThatIsTaken) {
  const std::string recipes = NewRecipeDatabase();
  EXPECT_EQ(Run({"convert", Legacy("LEGACYR.RDB"), recipes}), 1);
  EXPECT_THAT(err, HasSubstr("YARD.RDB already exists; choose another name"));
  EXPECT_EQ(Run({"info", recipes}), 0);
}

TEST_F(ConvertCommandTest, WantsTwoNames) {
  EXPECT_EQ(Run({"convert", Legacy("LEGACYR.RDB")}), 2);
  EXPECT_EQ(Run({"convert"}), 2);
}

}  // namespace
}  // namespace vrx::testing
