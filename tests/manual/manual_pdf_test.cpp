// The manual as it is read: the pages of the PDF that the build made.

#include <algorithm>
#include <filesystem>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "manual/manual_chapters.h"
#include "manual/program_texts.h"
#include "support/program.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

using manual::BlockKind;
using manual::Chapter;
using ::testing::EndsWith;
using ::testing::HasSubstr;

constexpr std::string_view kFoot = "VRX-2260 Transfer Data Software Page ";
constexpr const char* kChapters = VRX_SOURCE_DIR "/docs/manual";
constexpr const char* kManual = VRX_BIN_DIR "/VRX2260_U.PDF";

Result Run(const std::string& program, const std::vector<std::string>& args) {
  const TempFolder folder;
  Program running(program, args, folder.Path().string());
  const int code = running.Wait();
  return {code, running.Out(), running.Err()};
}

// A program of the PATH.
Result RunTool(const std::vector<std::string>& command) { return Run("/usr/bin/env", command); }

Result MakeManual(const std::string& chapters, const std::string& target) {
  return Run(VRX_MAKE_MANUAL, {chapters, VRX_BIN_DIR, target, target + ".pages"});
}

using Lines = std::vector<std::string>;

// The lines of each page, blanks run together, empty lines left out.
std::vector<Lines> PagesOf(const std::string& pdf) {
  const Result result = RunTool({"pdftotext", "-layout", pdf, "-"});
  EXPECT_EQ(result.code, 0) << result.err;
  std::vector<Lines> pages;
  std::istringstream text(result.out);
  for (std::string page; std::getline(text, page, '\f');) {
    std::istringstream lines(page);
    pages.emplace_back();
    for (std::string line; std::getline(lines, line);) {
      if (std::string words = OneLine(line); !words.empty()) {
        pages.back().push_back(std::move(words));
      }
    }
  }
  return pages;
}

const std::vector<Lines>& ManualPages() {
  static const std::vector<Lines> pages = PagesOf(kManual);
  return pages;
}

struct Heading {
  std::string text;  // with its number
  bool chapter = false;
};

std::vector<Heading> Headings() {
  std::vector<Heading> headings;
  int number = 0;
  for (const Chapter& chapter : ManualChapters()) {
    const std::string chapter_number = std::to_string(++number);
    const QString title = chapter.document->begin().text();
    headings.push_back({chapter_number + " " + title.toStdString(), true});
    int section = 0;
    for (const QTextBlock& block : BlocksOf(chapter, BlockKind::kSection)) {
      headings.push_back(
          {chapter_number + "." + std::to_string(++section) + " " + block.text().toStdString()});
    }
  }
  return headings;
}

// The page that the contents give for a heading; 0 where they do not have it.
int PageInContents(const std::string& heading) {
  for (const Lines& page : ManualPages()) {
    for (const std::string& line : page) {
      const std::string rest = line.substr(std::min(line.size(), heading.size()));
      if (line.starts_with(heading) && std::regex_match(rest, std::regex(" \\d+"))) {
        return std::stoi(rest);
      }
    }
  }
  return 0;
}

std::string Joined(const Lines& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += line + " ";
  }
  return text;
}

TEST(ManualPdf, LiesInTheProgramsDirectory) {
  EXPECT_TRUE(std::filesystem::exists(kManual));
  EXPECT_GT(ManualPages().size(), ManualChapters().size());
}

TEST(ManualPdf, CountsItsPagesBelowEachButTheCover) {
  const auto& pages = ManualPages();
  for (std::size_t i = 1; i < pages.size(); ++i) {
    ASSERT_FALSE(pages[i].empty()) << "page " << i + 1;
    EXPECT_THAT(pages[i].back(),
                EndsWith("Page " + std::to_string(i + 1) + " of " + std::to_string(pages.size())));
  }
}

TEST(ManualPdf, HasEveryHeadingOnThePageThatTheContentsGive) {
  for (const Heading& heading : Headings()) {
    const int page = PageInContents(heading.text);
    ASSERT_GT(page, 1) << heading.text;
    ASSERT_LE(page, static_cast<int>(ManualPages().size())) << heading.text;
    const std::string text = Joined(ManualPages().at(static_cast<std::size_t>(page) - 1));
    const auto found = text.find(heading.text + " ");
    ASSERT_NE(found, std::string::npos) << heading.text << " is not on page " << page;
    EXPECT_TRUE(!heading.chapter || found == 0) << heading.text << " begins no page";
    const std::string behind = text.substr(found + heading.text.size() + 1);
    EXPECT_FALSE(behind.starts_with(kFoot)) << heading.text << " is at the end of a page";
  }
}

TEST(ManualPdf, HasEveryFigureWithItsCaption) {
  std::string all;
  for (const Lines& page : ManualPages()) {
    for (const std::string& line : page) {
      all += line + "\n";
    }
  }
  int figures = 0;
  for (const Chapter& chapter : ManualChapters()) {
    for (const QTextBlock& block : BlocksOf(chapter, BlockKind::kFigure)) {
      EXPECT_THAT(all, HasSubstr("\nFigure " + std::to_string(++figures) + ". " +
                                 SpansOf(block).at(0).text + "\n"));
    }
  }
  const Result images = RunTool({"pdfimages", "-list", kManual});
  ASSERT_EQ(images.code, 0) << images.err;
  const std::regex picture(" image +\\d+ +\\d+ +rgb ");
  EXPECT_GE(std::distance(std::sregex_iterator(images.out.begin(), images.out.end(), picture), {}),
            figures);
}

TEST(ManualPdf, EmbedsItsFonts) {
  const Result fonts = RunTool({"pdffonts", kManual});
  ASSERT_EQ(fonts.code, 0) << fonts.err;
  std::istringstream lines(fonts.out);
  std::string line;
  std::getline(lines, line);  // the heading
  std::getline(lines, line);  // dashes
  int count = 0;
  for (; std::getline(lines, line); ++count) {
    EXPECT_TRUE(std::regex_search(line, std::regex(" yes +(yes|no) +yes +\\d+ +\\d+$"))) << line;
  }
  EXPECT_GT(count, 0);
}

TEST(ManualPdf, CanBeSearchedForWordsWithJoinedLetters) {
  const Result result = RunTool({"pdftotext", kManual, "-"});
  EXPECT_THAT(result.out, HasSubstr("file"));
  EXPECT_EQ(result.out.find("\xEF\xAC\x81"), std::string::npos);  // the one character "fi"
}

// Without the one line that says when it was made.
std::string Undated(const std::string& pdf) {
  return std::regex_replace(ReadAll(pdf), std::regex("/CreationDate \\([^)]*\\)"), "");
}

TEST(ManualPdf, ComesOutTheSameAgain) {
  const TempFolder folder;
  const std::string again = (folder / "again.pdf").string();
  const Result result = MakeManual(kChapters, again);
  ASSERT_EQ(result.code, 0) << result.err;
  EXPECT_TRUE(Undated(again) == Undated(kManual)) << "another PDF";
}

class ManualSource : public ::testing::Test {
 protected:
  // What making a manual of this one chapter fails with; the target must not be there.
  std::string FailureOf(std::string_view chapter) {
    std::filesystem::create_directory(folder_ / "source");
    folder_.Write("source/01-one.md", chapter);
    const std::string target = (folder_ / "manual.pdf").string();
    const Result result = MakeManual((folder_ / "source").string(), target);
    EXPECT_EQ(result.code, 1);
    EXPECT_FALSE(std::filesystem::exists(target));
    return result.err;
  }

  TempFolder folder_;
};

TEST_F(ManualSource, IsRefusedForAFigureThatDoesNotExist) {
  EXPECT_EQ(FailureOf("# One\n\n![None](screen:none)\n"),
            "make_manual: 01-one.md:3: there is no figure \"none\"\n");
}

TEST_F(ManualSource, IsRefusedForALinkToNoChapter) {
  EXPECT_EQ(FailureOf("# One\n\nSee [Two](02-two.md).\n"),
            "make_manual: 01-one.md:3: there is no chapter 02-two.md\n");
}

TEST_F(ManualSource, IsRefusedForCharactersThatWouldBeBoxes) {
  EXPECT_EQ(FailureOf("# One\n\n\xE7\x89\x9B\n"),
            "make_manual: the font DejaVu Sans has no picture of the character U+725B\n");
}

TEST_F(ManualSource, IsRefusedForAMarkThatIsNotClosed) {
  EXPECT_THAT(FailureOf("# One\n\nPress **Update\n"),
              HasSubstr("make_manual: 01-one.md:3: a mark is not closed: **Update"));
}

TEST_F(ManualSource, IsRefusedWithoutAFont) {
  // Of a system that has none.
  folder_.Write("fonts.conf", R"(<?xml version="1.0"?><fontconfig></fontconfig>)");
  const Result result =
      RunTool({"FONTCONFIG_FILE=" + (folder_ / "fonts.conf").string(), VRX_MAKE_MANUAL, kChapters,
               VRX_BIN_DIR, (folder_ / "manual.pdf").string(), (folder_ / "pages").string()});
  EXPECT_EQ(result.code, 1);
  EXPECT_THAT(result.err, HasSubstr("the font DejaVu Sans is not installed"));
  EXPECT_FALSE(std::filesystem::exists(folder_ / "manual.pdf"));
}

}  // namespace
}  // namespace vrx::testing
