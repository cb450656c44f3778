// The pages that F1 opens, as the build has made them.

#include <filesystem>
#include <regex>
#include <set>
#include <string>

#include <gmock/gmock.h>

#include "manual/manual_chapters.h"
#include "presenter/command_states.h"
#include "presenter/help.h"
#include "support/fake_operating_system.h"
#include "support/fixed_system_info.h"
#include "support/recording_operator.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

const fs::path kPages = fs::path(VRX_BIN_DIR) / "manual";

std::string PageOf(const manual::Chapter& chapter) {
  return ReadAll(kPages / fs::path(chapter.file).replace_extension(".html"));
}

TEST(ChapterPages, AreOneOfEachChapterWithItsHeadings) {
  for (const manual::Chapter& chapter : ManualChapters()) {
    const std::string page = PageOf(chapter);
    for (const QTextBlock& heading : BlocksOf(chapter, manual::BlockKind::kSection)) {
      EXPECT_THAT(page,
                  HasSubstr("\">" + heading.text().toHtmlEscaped().toStdString() + "</a></h2>"))
          << chapter.file;
    }
  }
}

TEST(ChapterPages, LinkAndShowOnlyWhatIsThere) {
  static const std::regex target(R"re((?:href|src)="([^"]+)")re");
  std::set<std::string> pictures;
  for (const manual::Chapter& chapter : ManualChapters()) {
    const std::string page = PageOf(chapter);
    for (std::sregex_iterator found(page.begin(), page.end(), target), end; found != end; ++found) {
      const std::string name = (*found)[1];
      EXPECT_TRUE(fs::is_regular_file(kPages / name)) << chapter.file << ": " << name;
      if (name.ends_with(".png")) {
        pictures.insert(name);
      }
    }
  }
  EXPECT_GT(pictures.size(), 10U);
}

TEST(ChapterPages, KeepNoMarksOfTheirSource) {
  for (const manual::Chapter& chapter : ManualChapters()) {
    EXPECT_THAT(PageOf(chapter), Not(HasSubstr("**"))) << chapter.file;
    EXPECT_THAT(PageOf(chapter), Not(HasSubstr("(screen:"))) << chapter.file;
  }
}

TEST(ChapterPages, AreThereForEveryTab) {
  FixedSystemInfo system;
  system.program_directory = VRX_BIN_DIR;
  FakeOperatingSystem os;
  RecordingOperator op;
  std::set<fs::path> viewed;
  for (int tab = 0; tab < kTabCount; ++tab) {
    ShowChapter(tab, system, os, op, [&](const fs::path& chapter) { viewed.insert(chapter); });
  }
  EXPECT_THAT(op.boxes, IsEmpty());
  EXPECT_EQ(viewed.size(), static_cast<std::size_t>(kTabCount));
}

}  // namespace
}  // namespace vrx::testing
