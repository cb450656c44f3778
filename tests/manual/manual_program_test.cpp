// What the manual says of the program is so.

#include <QMenu>
#include <QMenuBar>
#include <QString>
#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "make_manual/sample_program.h"
#include "manual/manual_chapters.h"
#include "manual/program_texts.h"
#include "support/command_help.h"

namespace vrx::testing {
namespace {

using manual::Chapter;
using manual::SpanStyle;

const ProgramTexts& Texts() {
  static const ProgramTexts texts(VRX_SOURCE_DIR "/src");
  return texts;
}

// Each text of each chapter, with the chapter's file for the message.
void ForEachText(const std::function<void(const std::string& file, const Spans& spans)>& take) {
  for (const Chapter& chapter : ManualChapters()) {
    for (const Spans& spans : TextsOf(chapter)) {
      take(chapter.file, spans);
    }
  }
}

void ForEachSpan(
    SpanStyle style,
    const std::function<void(const std::string& file, const std::string& text)>& take) {
  ForEachText([&](const std::string& file, const Spans& spans) {
    for (const Span& span : spans) {
      if (span.style == style) {
        take(file, span.text);
      }
    }
  });
}

bool IsCommand(const std::string& caption) { return caption.find(" > ") != std::string::npos; }

// Without the underlined letter and without the dots of a dialog or a submenu.
std::string Bare(QString caption) {
  caption.remove(u'&');
  while (caption.endsWith(u'.')) {
    caption.chop(1);
  }
  return caption.toStdString();
}

void AddCommands(const QMenu& menu, const std::string& path, std::set<std::string>& commands) {
  for (const QAction* const action : menu.actions()) {
    const std::string command = path + " > " + Bare(action->text());
    commands.insert(command);
    if (action->menu() != nullptr) {
      AddCommands(*action->menu(), command, commands);
    }
  }
}

std::set<std::string> CommandsOfTheMenus() {
  manual::SampleProgram program(VRX_BIN_DIR);
  std::set<std::string> commands;
  for (const QAction* const action : program.Window().menuBar()->actions()) {
    AddCommands(*action->menu(), Bare(action->text()), commands);
  }
  return commands;
}

std::string BareCommand(const std::string& text) {
  std::string command;
  for (const QString& part : QString::fromStdString(text).split(QStringLiteral(" > "))) {
    command += (command.empty() ? "" : " > ") + Bare(part);
  }
  return command;
}

TEST(Manual, NamesOnlyCommandsThatTheMenusHave) {
  const std::set<std::string> commands = CommandsOfTheMenus();
  int found = 0;
  ForEachSpan(SpanStyle::kCaption, [&](const std::string& file, const std::string& text) {
    if (IsCommand(text)) {
      ++found;
      EXPECT_TRUE(commands.contains(BareCommand(text))) << file << ": " << text;
    }
  });
  EXPECT_GT(found, 0);
}

TEST(Manual, ReportsEveryCommandOfTheMenus) {
  std::set<std::string> documented;
  ForEachSpan(SpanStyle::kCaption, [&](const std::string& /*file*/, const std::string& text) {
    documented.insert(BareCommand(text));
  });
  for (const std::string& command : CommandsOfTheMenus()) {
    const bool is_menu =
        std::any_of(documented.begin(), documented.end(),
                    [&](const std::string& text) { return text.starts_with(command + " > "); });
    const bool is_separator = command.ends_with("> ");
    EXPECT_TRUE(is_separator || is_menu || documented.contains(command)) << command;
  }
}

TEST(Manual, NamesOnlyCaptionsOfTheProgram) {
  int found = 0;
  ForEachSpan(SpanStyle::kCaption, [&](const std::string& file, const std::string& text) {
    if (!IsCommand(text)) {
      ++found;
      EXPECT_TRUE(Texts().HasCaption(text)) << file << ": " << text;
    }
  });
  EXPECT_GT(found, 0);
}

// The parts of a quotation between those that vary, cut at the ends of sentences: a message is put
// together from such parts.
std::vector<std::string> FixedParts(const Spans& spans, int quote) {
  std::vector<std::string> parts;
  for (const Span& span : spans) {
    if (span.quote != quote || span.style != SpanStyle::kPlain) {
      continue;
    }
    std::string_view rest = span.text;
    for (auto end = rest.find(". "); end != std::string_view::npos; end = rest.find(". ")) {
      parts.emplace_back(rest.substr(0, end + 1));
      rest.remove_prefix(end + 2);
    }
    parts.emplace_back(rest);
  }
  return parts;
}

int QuotesIn(const Spans& spans) {
  int quotes = 0;
  for (const Span& span : spans) {
    quotes = std::max(quotes, span.quote);
  }
  return quotes;
}

TEST(Manual, QuotesOnlyWordsOfTheProgram) {
  constexpr std::size_t kTelling =
      5;  // letters of the longest part, for a quotation to say something
  int found = 0;
  ForEachText([&](const std::string& file, const Spans& spans) {
    for (int quote = 1; quote <= QuotesIn(spans); ++quote) {
      ++found;
      std::size_t longest = 0;
      for (const std::string& part : FixedParts(spans, quote)) {
        EXPECT_TRUE(Texts().HoldsPart(part)) << file << ": \"" << part << "\"";
        longest = std::max(longest, part.size());
      }
      EXPECT_GE(longest, kTelling) << file << ": quotation " << quote << " of " << spans.at(0).text;
    }
  });
  EXPECT_GT(found, 0);
}

TEST(Manual, BeginsEveryRowOfItsMessagesWithWordsOfTheProgram) {
  const std::vector<Chapter> chapters = ManualChapters();
  int count = 0;
  const auto messages = std::ranges::find(chapters, "15-messages.md", &Chapter::file);
  ASSERT_TRUE(messages != chapters.end());
  for (const Rows& rows : TablesOf(*messages)) {
    // Notes need nothing done, so they have no column for it.
    const bool notes = rows.at(0).at(0).at(0).text == "Note";
    EXPECT_EQ(rows.at(0).size(), notes ? 2U : 3U) << rows.at(1).at(0).at(0).text;
    for (std::size_t i = 1; i < rows.size(); ++i, ++count) {
      for (const Span& span : rows[i].at(0)) {
        EXPECT_TRUE(span.quote > 0 || span.text.empty() || span.text == ",")
            << span.text << " is no quotation";
      }
    }
  }
  EXPECT_GT(count, 0);
}

// Of the machine, not of the program.
bool IsOfTheSystem(std::string_view name) {
  const std::set<std::string_view> names = {"~/.local/share", "dialout"};
  return names.contains(name) || name.starts_with("--");
}

// The name that the first day gives to FEB1.
bool IsOfTheFirstDay(const std::string& name) {
  const std::string extension = std::filesystem::path(name).extension().string();
  return name.starts_with("FEB1.") && Texts().HoldsPart(extension);
}

// A command of vrx2260ctl without the name of the tool, such as "recipe" or "recipe copy".
bool IsCommandOfTheTool(const std::string& name) {
  static const std::vector<CommandHelp> helps = AskForHelp("vrx2260ctl");
  return std::any_of(helps.begin(), helps.end(), [&](const CommandHelp& help) {
    return !help.path.empty() && help.Name() == name;
  });
}

bool IsFileOrCommand(const std::string& name) {
  namespace fs = std::filesystem;
  const fs::path bin = VRX_BIN_DIR;
  const std::string program = name.substr(0, name.find(' '));
  const std::string without_number = name.substr(0, name.find_last_not_of("0123456789") + 1);
  return fs::exists(bin / program) || fs::exists(fs::path(VRX_SOURCE_DIR) / program) ||
         IsCommandOfTheTool(name) || IsOfTheFirstDay(name) ||
         fs::exists(bin / "sample_site" / name) || Texts().HoldsPart(name) ||
         Texts().HoldsPart(without_number) || IsOfTheSystem(name);
}

TEST(Manual, NamesOnlyFilesThatThereAre) {
  int found = 0;
  ForEachSpan(SpanStyle::kCode, [&](const std::string& file, const std::string& text) {
    ++found;
    // A path is one where each of its parts is.
    for (const QString& part : QString::fromStdString(text).split(u'/')) {
      const bool whole = text.starts_with('/') || text.starts_with('~');
      EXPECT_TRUE(IsFileOrCommand(whole ? text : part.toStdString())) << file << ": " << text;
    }
  });
  EXPECT_GT(found, 0);
}

TEST(Manual, LinksOnlyToItsChapters) {
  std::set<std::string> files;
  for (const Chapter& chapter : ManualChapters()) {
    files.insert(chapter.file);
  }
  ForEachText([&](const std::string& file, const Spans& spans) {
    for (const Span& span : spans) {
      EXPECT_TRUE(span.style != SpanStyle::kLink || files.contains(span.target))
          << file << ": " << span.target;
    }
  });
}

}  // namespace
}  // namespace vrx::testing
