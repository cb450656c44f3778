#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/program.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::StartsWith;

// The script of the documents with a `mail` that keeps what it is to send.
class AutomaticReports : public ::testing::Test {
 protected:
  AutomaticReports() {
    fs::create_directories(yard / "inbox");
    fs::create_directory(folder / "bin");
    folder.Write("bin/mail", "#!/bin/sh\necho \"$*\" >../mail.args\ncat >../mail.text\n");
    fs::permissions(folder / "bin/mail", fs::perms::owner_all);
    fs::copy_file(bin + "/sample_site/SITE.RDB", yard / "SITE.RDB");
    Program make(bin + "/vrx2260ctl",
                 {"--data-dir", (folder / "data").string(), "new", "transaction",
                  (yard / "YARD.TDB").string()},
                 folder.Path().string());
    EXPECT_EQ(make.Wait(), 0) << make.Err();
  }

  int RunScript(const std::string& kind) {
    Program script(
        "/usr/bin/env",
        {"PATH=" + (folder / "bin").string() + ":" + bin + ":/usr/bin:/bin",
         "YARD=" + yard.string(), "MAIL_TO=manager@example.org", "HOME=" + folder.Path().string(),
         VRX_SOURCE_DIR "/docs/automatic-reports/feed-report", kind},
        folder.Path().string());
    const int code = script.Wait();
    error = script.Err();
    return code;
  }
  void Deliver(const std::string& day, const std::string& name) const {
    fs::copy_file(bin + "/sample_site/" + day, yard / "inbox" / name);
  }
  [[nodiscard]] std::vector<std::string> Reports() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(yard / "reports")) {
      names.push_back(entry.path().extension().string());
    }
    return names;
  }

  TempFolder folder;
  const std::string bin = VRX_BIN_DIR;
  const fs::path yard = folder / "yard";
  std::string error;
};

TEST_F(AutomaticReports, StoreWhatCameAndMailThePage) {
  Deliver("day01.qxt", "01.QXT");
  Deliver("day02.qxt", "02.QXT");
  ASSERT_EQ(RunScript("day"), 0) << error;
  EXPECT_TRUE(fs::is_empty(yard / "inbox"));
  EXPECT_TRUE(fs::exists(yard / "stored/01.QXT"));
  EXPECT_TRUE(fs::exists(yard / "stored/02.QXT"));
  EXPECT_THAT(ReadAll(folder / "mail.args"),
              ::testing::ContainsRegex("^-s Feeding report 20..-..-.. manager@example.org\n$"));
  EXPECT_THAT(ReadAll(folder / "mail.text"), StartsWith("Feeding report, day 20"));
  EXPECT_THAT(Reports(), ::testing::UnorderedElementsAre(".log", ".pdf", ".html"));
}

TEST_F(AutomaticReports, KeepAFileThatIsNotStoredAndSaySo) {
  folder.Write("yard/inbox/BAD.QXT", "no records");
  Deliver("day01.qxt", "GOOD.QXT");
  EXPECT_EQ(RunScript("week"), 1);
  EXPECT_TRUE(fs::exists(yard / "inbox/BAD.QXT"));
  EXPECT_TRUE(fs::exists(yard / "stored/GOOD.QXT"));
  const std::string text = ReadAll(folder / "mail.text");
  EXPECT_THAT(text, StartsWith("inbox/BAD.QXT was not stored:\n"));
  EXPECT_THAT(text, HasSubstr("\nFeeding report, week 20"));
}

TEST_F(AutomaticReports, KnowDayWeekAndMonthOnly) {
  EXPECT_EQ(RunScript("month"), 0) << error;
  EXPECT_THAT(ReadAll(folder / "mail.text"), StartsWith("Feeding report, month 20"));
  EXPECT_EQ(RunScript("year"), 2);
  EXPECT_EQ(error, "usage: feed-report [day|week|month]\n");
}

}  // namespace
}  // namespace vrx::testing
