// The files and pictures that the README names exist.

#include <algorithm>
#include <filesystem>
#include <regex>
#include <set>
#include <string>

#include <gmock/gmock.h>

#include "support/program.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

std::string Readme() { return ReadAll(VRX_SOURCE_DIR "/README.md"); }

// The first group of each place that the pattern finds.
std::set<std::string> FoundInReadme(const std::string& pattern) {
  const std::string readme = Readme();
  const std::regex expression(pattern);
  std::set<std::string> found;
  for (std::sregex_iterator at(readme.begin(), readme.end(), expression), end; at != end; ++at) {
    found.insert((*at)[1]);
  }
  return found;
}

bool IsThere(const std::string& path) {
  return fs::exists(fs::path(VRX_SOURCE_DIR) / path) || fs::exists(fs::path(VRX_BIN_DIR) / path);
}

TEST(Readme, LinksOnlyToFilesThatThereAre) {
  const auto links = FoundInReadme(R"(\]\(([^)#:]+)\))");
  EXPECT_GT(links.size(), 5U);
  for (const std::string& link : links) {
    EXPECT_TRUE(IsThere(link)) << link;
  }
}

TEST(Readme, NamesOnlyFilesThatThereAre) {
  const auto paths = FoundInReadme("`((?:\\./)?[A-Za-z_0-9]+(?:/[A-Za-z_0-9.-]*)+)`");
  EXPECT_GT(paths.size(), 10U);
  for (const std::string& path : paths) {
    const bool of_the_build = path.starts_with("build/") || path == "packages/";
    EXPECT_TRUE(of_the_build || IsThere(path)) << path;
  }
}

TEST(Readme, ReportsOfEveryFolderOfTheSources) {
  const std::string readme = Readme();
  for (const fs::directory_entry& entry : fs::directory_iterator(VRX_SOURCE_DIR "/src")) {
    if (entry.is_directory()) {
      const std::string folder = "`src/" + entry.path().filename().string() + "/`";
      EXPECT_NE(readme.find(folder), std::string::npos) << folder;
    }
  }
}

// The lines of the script, from the simulated module on; its port lies where the test may write.
std::string ScriptOfTheReadme(const std::string& port) {
  const std::string start = "    ./vrx2260sim module";
  const std::string readme = Readme();
  std::string script = readme.substr(std::min(readme.find(start), readme.size()));
  script.resize(std::min(script.find("\n\n"), script.size()));
  script = std::regex_replace(script, std::regex("/tmp/krm"), port);
  // The reader's next line comes late enough by itself.
  return std::regex_replace(script, std::regex("&\n"),
                            "&\nwhile [ ! -e " + port + " ]; do sleep 0.1; done\n");
}

TEST(Readme, HasAScriptThatRunsToItsEnd) {
  const TempFolder folder;
  std::filesystem::create_directory(folder / "streams");
  const std::string port = (folder / "krm").string();
  folder.Write("script", "cd '" + folder.Path().string() +
                             "'\nexport XDG_DATA_HOME=$PWD\nln -s " VRX_BIN_DIR "/* .\n" +
                             "trap 'kill %1' EXIT\n" + ScriptOfTheReadme(port) + "\n");
  Program shell("/usr/bin/env", {"bash", "-em", (folder / "script").string()},
                (folder / "streams").string());
  EXPECT_EQ(shell.Wait(), 0) << shell.Err();
  for (const char* const made : {"01.QXT", "YARD.TDB", "PENS.csv", "PENS.pdf", "SITE.RBU"}) {
    EXPECT_TRUE(std::filesystem::exists(folder / made)) << made;
  }
}

// The page loads fast.
TEST(Readme, HasPicturesThatAreSmallFiles) {
  constexpr std::uintmax_t kLargest = 100U << 10U;
  const auto pictures = FoundInReadme(R"(!\[[^\]]*\]\(([^)]+)\))");
  EXPECT_GE(pictures.size(), 3U);
  for (const std::string& picture : pictures) {
    const fs::path file = fs::path(VRX_SOURCE_DIR) / picture;
    ASSERT_TRUE(fs::exists(file)) << picture;
    EXPECT_LE(fs::file_size(file), kLargest) << picture;
  }
}

}  // namespace
}  // namespace vrx::testing
