// Each call of a command line program that manual and README show is one that it takes.

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "manual/manual_chapters.h"
#include "support/command_help.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

using manual::BlockKind;
using manual::Chapter;
using manual::SpanStyle;
using ::testing::IsEmpty;

const std::vector<std::string> kPrograms = {"vrx2260ctl", "vrx2260sim"};

const std::vector<CommandHelp>& HelpsOf(const std::string& program) {
  static std::map<std::string, std::vector<CommandHelp>> helps;
  const auto [found, missing] = helps.try_emplace(program);
  if (missing) {
    found->second = AskForHelp(program);
  }
  return found->second;
}

const CommandHelp* HelpOf(const std::string& program, const std::vector<std::string>& path) {
  const auto& helps = HelpsOf(program);
  const auto found = std::find_if(helps.begin(), helps.end(),
                                  [&](const CommandHelp& help) { return help.path == path; });
  return found == helps.end() ? nullptr : &*found;
}

std::vector<std::string> Words(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> words;
  for (std::string word;
       stream >> word && word != "&" && word != ">" && word != "|" && word.front() != '#';) {
    words.push_back(word);
  }
  return words;
}

// What of a call the program does not know: a command that it has not, an option that neither the
// command nor those above it have.
std::vector<std::string> UnknownIn(const std::vector<std::string>& call) {
  const CommandHelp* help = HelpOf(call.front(), {});
  std::set<std::string> options = help->options;
  options.insert("--help");
  std::vector<std::string> unknown;
  for (std::size_t i = 1; i < call.size(); ++i) {
    if (call[i].starts_with("--")) {
      if (!options.contains(call[i])) {
        unknown.push_back(call[i]);
      }
      continue;
    }
    std::vector<std::string> path = help->path;
    path.push_back(call[i]);
    if (const CommandHelp* const below = HelpOf(call.front(), path); below != nullptr) {
      help = below;
      options.insert(help->options.begin(), help->options.end());
    } else if (help->path.empty() || help->text.find("Positionals:") == std::string::npos) {
      const bool value_of_option = call[i - 1].starts_with("--");
      if (!value_of_option) {
        unknown.push_back(call[i]);
      }
    }
  }
  return unknown;
}

// The call on a line of the shell, from the program's name on; empty where it calls another one.
std::vector<std::string> CallIn(const std::string& line) {
  std::vector<std::string> words = Words(line);
  if (words.empty()) {
    return {};
  }
  words.front().erase(0, words.front().rfind('/') + 1);
  const bool ours = std::find(kPrograms.begin(), kPrograms.end(), words.front()) != kPrograms.end();
  return ours ? words : std::vector<std::string>();
}

std::vector<std::vector<std::string>> CallsIn(const std::string& text) {
  std::vector<std::vector<std::string>> calls;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    if (auto call = CallIn(line); !call.empty()) {
      calls.push_back(std::move(call));
    }
  }
  return calls;
}

// Those between backticks too.
std::string CodeOfTheReadme() {
  std::istringstream lines(ReadAll(VRX_SOURCE_DIR "/README.md"));
  std::string code;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("    ")) {
      code += line + "\n";
      continue;
    }
    for (auto at = line.find('`'); at != std::string::npos; at = line.find('`', at + 1)) {
      const auto end = line.find('`', at + 1);
      if (end == std::string::npos) {
        break;
      }
      code += line.substr(at + 1, end - at - 1) + "\n";
      at = end;
    }
  }
  return code;
}

std::string CodeOfTheManual() {
  std::string code;
  for (const Chapter& chapter : ManualChapters()) {
    for (const QTextBlock& line : BlocksOf(chapter, BlockKind::kCode)) {
      code += line.text().toStdString() + "\n";
    }
    for (const Spans& spans : TextsOf(chapter)) {
      for (const Span& span : spans) {
        code += span.style == SpanStyle::kCode ? span.text + "\n" : "";
      }
    }
  }
  return code;
}

void ExpectOnlyKnownCalls(const std::string& code, std::size_t fewest) {
  const auto calls = CallsIn(code);
  EXPECT_GT(calls.size(), fewest);
  for (const auto& call : calls) {
    EXPECT_THAT(UnknownIn(call), IsEmpty()) << ::testing::PrintToString(call);
  }
}

TEST(CommandsInDocuments, AreKnownWhereTheManualShowsThem) {
  ExpectOnlyKnownCalls(CodeOfTheManual(), 5);
}

TEST(CommandsInDocuments, AreKnownWhereTheReadmeShowsThem) {
  ExpectOnlyKnownCalls(CodeOfTheReadme(), 5);
}

TEST(CommandsInDocuments, WouldBeFoundWrong) {
  const auto unknown = [](const std::string& line) { return UnknownIn(CallsIn(line).at(0)); };
  EXPECT_THAT(unknown("vrx2260ctl module upload --out . --port 2"), IsEmpty());
  EXPECT_THAT(unknown("vrx2260ctl modul upload"), ::testing::ElementsAre("modul", "upload"));
  EXPECT_THAT(unknown("./vrx2260ctl module fetch --out ."),
              ::testing::ElementsAre("fetch", "--out"));
  EXPECT_THAT(unknown("vrx2260ctl store A.QXT --to B.TDB"), ::testing::ElementsAre("--to"));
}

// The table of the manual and that of the README name each command once.
TEST(CommandsInDocuments, AreAllCommands) {
  std::set<std::string> manual;
  std::istringstream manual_code(CodeOfTheManual());
  for (std::string word; manual_code >> word;) {
    manual.insert(word);
  }
  std::set<std::string> readme;
  std::istringstream readme_code(CodeOfTheReadme());
  for (std::string word; readme_code >> word;) {
    readme.insert(word);
  }
  for (const std::string& command : HelpOf("vrx2260ctl", {})->subcommands) {
    EXPECT_TRUE(manual.contains(command)) << command << " is not in the manual";
    EXPECT_TRUE(readme.contains(command)) << command << " is not in the README";
  }
}

}  // namespace
}  // namespace vrx::testing
