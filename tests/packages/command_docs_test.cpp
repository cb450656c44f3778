#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <gmock/gmock.h>

#include "support/command_help.h"
#include "support/program.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::Not;
using ::testing::SizeIs;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

constexpr const char* kTool = "vrx2260ctl";
constexpr std::size_t kFewestCommands = 30;

std::string Text(const fs::path& file) {
  std::ifstream in(file);
  EXPECT_TRUE(in) << file;
  return {std::istreambuf_iterator<char>(in), {}};
}

std::string Page(const std::string& program) {
  return Text(fs::path(VRX_PACKAGING_DIR) / (program + ".1"));
}

std::string InManual(std::string text) {
  for (std::size_t at = text.find('-'); at != std::string::npos; at = text.find('-', at + 2)) {
    text.insert(at, 1, '\\');
  }
  return text;
}

// The subsection of a command, up to the next one.
std::string SubsectionOf(const std::string& page, const std::string& name) {
  const auto begin = page.find("\n.SS " + InManual(name) + "\n");
  return begin == std::string::npos ? "" : page.substr(begin, page.find("\n.S", begin + 1) - begin);
}

// What the shell offers for the last of these words.
std::vector<std::string> Completions(const std::vector<std::string>& words,
                                     const std::string& folder = "/") {
  const TempFolder streams;
  static constexpr const char* kScript =
      R"(cd "$2"; . "$1"; shift 2; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _vrx2260ctl; )"
      R"(printf '%s\n' "${COMPREPLY[@]}")";
  std::vector<std::string> args = {
      "-c", kScript, "bash", std::string(VRX_PACKAGING_DIR) + "/vrx2260ctl.bash", folder, kTool};
  args.insert(args.end(), words.begin(), words.end());
  Program bash("/bin/bash", args, streams.Path().string());
  EXPECT_EQ(bash.Wait(), 0);
  EXPECT_THAT(bash.Err(), IsEmpty());
  std::istringstream lines(bash.Out());
  std::vector<std::string> completions;
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty()) {
      completions.push_back(line);
    }
  }
  return completions;
}

std::vector<std::string> Behind(std::vector<std::string> path, const std::string& begun) {
  path.push_back(begun);
  return path;
}

TEST(CommandHelp, OfEveryCommandEndsWithExamplesOfItself) {
  const auto helps = AskForHelp(kTool);
  ASSERT_GT(helps.size(), kFewestCommands);
  for (const CommandHelp& help : helps) {
    ASSERT_THAT(help.examples, Not(IsEmpty())) << help.Name();
    for (const std::string& example : help.examples) {
      EXPECT_THAT(example + " ", StartsWith(kTool + (help.path.empty() ? "" : " " + help.Name()) +
                                            std::string(" ")));
    }
  }
}

// A folder with the files that the examples name.
class ExampleFolder {
 public:
  ExampleFolder() : before_(fs::current_path()) {
    const fs::path site = fs::path(VRX_BIN_DIR) / "sample_site";
    fs::copy(site / "SITE.RDB", folder_ / "SITE.RDB");
    fs::copy(site / "day05.qxt", folder_ / "01.QXT");
    fs::create_directory(folder_ / "streams");
    fs::create_directory(folder_ / "today");
    fs::copy(site / "day05.qxt", folder_ / "today/01.QXT");
    folder_.Write("RESCUE-20260105-173000.KRM", "\fBatches of the day\r\n");
    fs::current_path(folder_.Path());
    EXPECT_EQ(Run("new transaction JANUARY.TDB"), 0);
    EXPECT_EQ(Run("store 01.QXT --into JANUARY.TDB --recipes SITE.RDB"), 0) << err;
  }
  ~ExampleFolder() { fs::current_path(before_); }
  ExampleFolder(const ExampleFolder&) = delete;
  ExampleFolder& operator=(const ExampleFolder&) = delete;

  // `call` follows the program's name. No port is opened, because its device does not exist.
  int Run(const std::string& call) {
    std::vector<std::string> args = {"--yes", "--data-dir", (folder_ / "data").string()};
    std::istringstream words(call.substr(0, call.find(" > ")));
    for (std::string word; words >> word;) {
      args.push_back(args.back() == "--port" ? (folder_ / "no-port").string() : word);
    }
    Program tool(std::string(VRX_BIN_DIR) + "/" + kTool, args, (folder_ / "streams").string());
    const int code = tool.Wait();
    err = tool.Err();
    return code;
  }

  std::string err;

 private:
  TempFolder folder_;
  fs::path before_;
};

// The failure of an example; empty if it succeeds.
std::string MissingTo(const std::string& example) {
  for (const char* const file : {"02.RBU", "OLDSITE.RDB", "OLDYARD.TDB"}) {
    if (example.find(file) != std::string::npos) {
      return file;
    }
  }
  if (example.find("service=company") != std::string::npos) {
    return "company";
  }
  return example.find(" --port ") != std::string::npos ? "no-port" : "";
}

TEST(CommandHelp, ItsExamplesCanBeTypedAsTheyStand) {
  std::size_t ran = 0;
  for (const CommandHelp& help : AskForHelp(kTool)) {
    for (const std::string& example : help.examples) {
      ExampleFolder folder;
      const std::string missing = MissingTo(example);
      const int code = folder.Run(example.substr(std::string(kTool).size()));
      EXPECT_EQ(code, missing.empty() ? 0 : 1) << example << "\n" << folder.err;
      if (!missing.empty()) {
        EXPECT_THAT(folder.err, HasSubstr(missing)) << example;
      }
      ++ran;
    }
  }
  EXPECT_GT(ran, kFewestCommands);
}

TEST(ManualPage, OfTheToolHoldsEveryCommandOptionAndExample) {
  const std::string page = Page(kTool);
  const auto helps = AskForHelp(kTool);
  const std::set<std::string>& common = helps.front().options;
  for (const std::string& option : common) {
    EXPECT_THAT(page, HasSubstr("\\fB" + InManual(option) + "\\fR")) << option;
  }
  ASSERT_GT(helps.size(), kFewestCommands);
  for (const CommandHelp& help : helps) {
    // A command that only groups others has no subsection.
    const bool stands_alone = help.subcommands.empty() || !help.options.empty();
    if (help.path.empty() || !stands_alone) {
      continue;
    }
    const std::string subsection = SubsectionOf(page, help.Name());
    ASSERT_FALSE(subsection.empty()) << help.Name();
    for (const std::string& option : help.options) {
      EXPECT_THAT(subsection, HasSubstr("\n\\fB" + InManual(option) + "\\fR")) << help.Name();
    }
    for (const std::string& example : help.examples) {
      EXPECT_THAT(subsection, HasSubstr("\n  " + InManual(example) + "\n")) << help.Name();
    }
  }
}

TEST(ManualPage, OfTheSimulatorHoldsEveryCommandAndOption) {
  const std::string page = Page("vrx2260sim");
  const auto helps = AskForHelp("vrx2260sim");
  ASSERT_THAT(helps, SizeIs(3));
  for (const CommandHelp& help : helps) {
    if (help.path.empty()) {
      continue;
    }
    const std::string subsection = SubsectionOf(page, help.Name());
    ASSERT_THAT(help.options, Not(IsEmpty()));
    for (const std::string& option : help.options) {
      EXPECT_THAT(subsection, HasSubstr("\n  " + InManual(option) + " ")) << help.Name();
    }
  }
}

TEST(Completion, KnowsEveryCommandAndOption) {
  const auto helps = AskForHelp(kTool);
  ASSERT_GT(helps.size(), kFewestCommands);
  for (const CommandHelp& help : helps) {
    EXPECT_THAT(Completions(Behind(help.path, "--")), IsSupersetOf(help.options)) << help.Name();
    EXPECT_THAT(Completions(Behind(help.path, "")), IsSupersetOf(help.subcommands)) << help.Name();
  }
}

TEST(Completion, OffersTheCommandsThatBeginSo) {
  EXPECT_THAT(Completions({"se"}), UnorderedElementsAre("set", "settings"));
  EXPECT_THAT(Completions({"--data-dir", "somewhere", "--yes", "module", "u"}),
              UnorderedElementsAre("upload"));
}

TEST(Completion, OffersTheFewValuesThatThereAre) {
  EXPECT_THAT(Completions({"new", ""}), UnorderedElementsAre("recipe", "transaction"));
  EXPECT_THAT(Completions({"new", "recipe", "A.RDB", "--units", ""}),
              UnorderedElementsAre("LB", "KG"));
  EXPECT_THAT(Completions({"new", "recipe", "A.RDB", "--units", "=", "K"}),
              UnorderedElementsAre("KG"));
  EXPECT_THAT(Completions({"line", "move", "A.RDB", "4", "2", ""}),
              UnorderedElementsAre("up", "down"));
}

TEST(Completion, OffersTheFilesOfTheKindAndFolders) {
  TempFolder folder;
  for (const char* const name : {"A.RDB", "b c.rdb", "A.TDB", "A.TXT"}) {
    folder.Write(name, "");
  }
  fs::create_directory(folder / "yard");
  const std::string here = folder.Path().string();
  EXPECT_THAT(Completions({"list", "pens", ""}, here),
              UnorderedElementsAre("A.RDB", "b c.rdb", "yard"));
  EXPECT_THAT(Completions({"store", "1.QXT", "--into", "A"}, here), UnorderedElementsAre("A.TDB"));
  EXPECT_THAT(Completions({"module", "upload", "--out", ""}, here), UnorderedElementsAre("yard"));
  EXPECT_THAT(Completions({"info", "A."}, here), UnorderedElementsAre("A.RDB", "A.TDB", "A.TXT"));
  EXPECT_THAT(Completions({"print", "pens", "A.RDB", "--pdf", "A.T"}, here),
              UnorderedElementsAre("A.TDB", "A.TXT"));
}

// The command `recipe` has arguments of its own.
TEST(Completion, OffersSubcommandsAndFilesForTheFirstWordOnly) {
  TempFolder folder;
  folder.Write("A.RDB", "");
  const std::string here = folder.Path().string();
  EXPECT_THAT(Completions({"recipe", ""}, here), UnorderedElementsAre("A.RDB", "copy", "diff"));
  EXPECT_THAT(Completions({"recipe", "copy", ""}, here), UnorderedElementsAre("A.RDB"));
  EXPECT_THAT(Completions({"recipe", "diff", "A.RDB", "1", "2", "--with", ""}, here),
              UnorderedElementsAre("A.RDB"));
  EXPECT_THAT(Completions({"recipe", "A.RDB", "c"}, here), IsEmpty());
}

TEST(Completion, OffersNothingForATextOrANumber) {
  EXPECT_THAT(Completions({"set", "pen", "A.RDB", "1", "--name", ""}), IsEmpty());
  EXPECT_THAT(Completions({"recipe", "A.RDB", ""}), IsEmpty());
}

}  // namespace
}  // namespace vrx::testing
