#include <filesystem>
#include <string>

#include <gmock/gmock.h>

#include "on_display/on_display.h"

namespace vrx::testing {
namespace {

namespace fs = std::filesystem;

// The records of the sample site are on the screen, and every report goes to a PDF file.
class PrintOnDisplay : public OnDisplay {
 protected:
  PrintOnDisplay() { MakeDatabases(); }

  void SetUp() override {
    StartProgram();
    ChooseFromMenu({"File", "Print Setup..."});
    ASSERT_TRUE(WaitForWindow("Print Setup"));
    Keys({"Return"});
    ASSERT_TRUE(WaitForWindow(kMainTitle));
  }

  // Types the whole path into the file dialog.
  void PrintTo(const fs::path& file) {
    Keys({"ctrl+p"});
    ASSERT_TRUE(WaitForWindow("Print to PDF File"));
    Keys({"ctrl+a"});
    Type(file.string());
    ASSERT_TRUE(WaitFor([&](const Screen& screen) {
      const Widget* const name = screen.Find("fileNameEdit");
      return name != nullptr && name->text == file.string();
    }));
    Keys({"Return"});
  }
  void AgreeToReplace(const fs::path& file) {
    ASSERT_TRUE(WaitForBox(file.filename().string() + " already exists"));
    Keys({"alt+y"});
  }

  fs::path pdf = folder / "report.pdf";
};

TEST_F(PrintOnDisplay, WritesAPdfFileAndReplacesAnOlderOne) {
  PrintTo(pdf);
  ASSERT_TRUE(Eventually([&] { return fs::exists(pdf); }));
  ASSERT_TRUE(WaitForWindow(kMainTitle));
  const std::string report = ReadAll(pdf);
  EXPECT_THAT(report, ::testing::StartsWith("%PDF-"));
  fs::resize_file(pdf, 1);
  PrintTo(pdf);
  AgreeToReplace(pdf);
  EXPECT_TRUE(Eventually([&] { return fs::file_size(pdf) == report.size(); }));
}

TEST_F(PrintOnDisplay, ShowsThePagesBeforeTheyArePrinted) {
  Keys({"alt+e", "i"});
  Keys({"alt+f", "v"});
  ASSERT_TRUE(WaitForWindow("Print Preview"));
  const auto shows = [&](const std::string& page) {
    return WaitFor([&](const Screen& screen) {
      const Widget* const number = screen.Find("qt_spinbox_lineedit");
      return number != nullptr && number->text == page;
    });
  };
  ASSERT_TRUE(shows("1 of 3"));
  Keys({"Next"});
  ASSERT_TRUE(shows("2 of 3"));
  Keys({"End"});
  ASSERT_TRUE(shows("3 of 3"));
  Keys({"alt+p"});
  AnswerFileDialog("Print to PDF File", pdf);
  ASSERT_TRUE(WaitForWindow(kMainTitle));
  EXPECT_TRUE(Eventually([&] { return fs::exists(pdf); }));
}

TEST_F(PrintOnDisplay, WritesTheReportOfAMonth) {
  const auto shows = [&](const std::string& period) {
    return WaitFor([&](const Screen& screen) {
      const Widget* const label = screen.Find("lblReportPeriod");
      return label != nullptr && label->text == period;
    });
  };
  const fs::path html = folder / "month.html";
  Keys({"alt+f", "r"});
  ASSERT_TRUE(WaitForWindow("Report"));
  Keys({"alt+a", "ctrl+a"});
  Type("31-Jan-26");
  ASSERT_TRUE(shows("2026-W05: 2026-01-26 to 2026-02-01"));
  Keys({"alt+m"});
  ASSERT_TRUE(shows("2026-01: 2026-01-01 to 2026-01-31"));
  Keys({"alt+h", "alt+o", "alt+s"});
  AnswerFileDialog("Save Report as HTML File", html);
  ASSERT_TRUE(WaitForWindow(kMainTitle));
  EXPECT_EQ(TextOf("lblResult"), "Report written to month.html");
  EXPECT_THAT(ReadAll(html), ::testing::HasSubstr("<h1>Feeding report, month 2026-01</h1>"));
}

// A viewer of the user's own, which notes the file that it is started with.
class OpenOnDisplay : public PrintOnDisplay {
 protected:
  OpenOnDisplay() {
    const fs::path viewer = folder.Write(
        "home/viewer", "#!/bin/sh\nprintf %s \"$1\" >'" + noted_.string() + ".new'\nmv '" +
                           noted_.string() + ".new' '" + noted_.string() + "'\n");
    fs::permissions(viewer, fs::perms::owner_all);
    fs::create_directories(folder / "home/data/applications");
    folder.Write("home/data/applications/viewer.desktop",
                 "[Desktop Entry]\nType=Application\nName=Viewer\nExec=" + viewer.string() +
                     " %f\nMimeType=application/pdf;text/csv;\n");
    folder.Write("home/config/mimeapps.list",
                 "[Default Applications]\napplication/pdf=viewer.desktop\n"
                 "text/csv=viewer.desktop\n");
  }

  // Presses Open below the tabs and checks which file is opened.
  void OpensFromTheLine(const std::string& line, const fs::path& file) {
    ASSERT_TRUE(WaitFor([&](const Screen& screen) {
      const Widget* const result = screen.Find("lblResult");
      const Widget* const open = screen.Find("cmdResultOpen");
      return result != nullptr && result->text == line && open != nullptr && open->enabled;
    }));
    Click("cmdResultOpen");
    ASSERT_TRUE(Eventually([&] { return fs::exists(noted_); }));
    EXPECT_EQ(ReadAll(noted_), file.string());
    fs::remove(noted_);
  }

  fs::path noted_ = folder / "home/noted";
};

TEST_F(OpenOnDisplay, TheLineBelowTheTabsOpensWhatWasPrinted) {
  PrintTo(pdf);
  ASSERT_TRUE(Eventually([&] { return fs::exists(pdf); }));
  ASSERT_TRUE(WaitForWindow(kMainTitle));
  OpensFromTheLine("Printed to report.pdf", pdf);
}

TEST_F(OpenOnDisplay, TheLineBelowTheTabsOpensWhatWasExported) {
  ExportTo(folder.Path(), "out");
  OpensFromTheLine("Exported to out.csv", folder / "out.csv");
}

TEST_F(PrintOnDisplay, NeverReplacesADatabaseOpenOrNot) {
  const fs::path other = folder / "other.pdf";
  const fs::path link = folder / "link.pdf";
  fs::copy_file(recipes, other);
  fs::create_symlink(transactions, link);
  for (const fs::path& database : {transactions, recipes, other, link}) {
    const std::string before = ReadAll(database);
    PrintTo(database);
    AgreeToReplace(database);
    ASSERT_TRUE(WaitForBox(database.string() + " is a database and is not replaced."));
    Keys({"Return"});
    ASSERT_TRUE(WaitForWindow(kMainTitle));
    EXPECT_EQ(ReadAll(database), before);
  }
}

}  // namespace
}  // namespace vrx::testing
