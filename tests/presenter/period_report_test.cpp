#include "presenter/period_report.h"

#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "base/files.h"
#include "support/boxes.h"
#include "support/small_history.h"
#include "support/temp_folder.h"
#include "support/test_services.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// The form on the small history, whose last day is 15 March 2011.
class PeriodReportTest : public ::testing::Test, protected TestServices, public PeriodReportView {
 protected:
  PeriodReportTest() { SmallHistory(dir); }

  PeriodReport& Report() {
    if (!report) {
      report.emplace(
          services, database,
          [this](SQLite::Database& /*connection*/, const ReportPeriod& period, PageFormat format,
                 const std::filesystem::path& file, const InsightProgress& progress) {
            work(progress);
            written.push_back(TextOf(period) + (format == PageFormat::kPdf ? " pdf " : " html ") +
                              file.filename().string());
          },
          *this);
    }
    return *report;
  }
  void ReportChanged() override {
    ++changes;
    if (on_change) {
      on_change();
    }
  }
  void ReportWritten(const std::filesystem::path& file) override { ended.push_back(file); }

  TempFolder dir;
  std::filesystem::path database = dir / "SMALL.TDB";
  std::function<void(const InsightProgress&)> work = [](const InsightProgress&) {};
  std::optional<PeriodReport> report;
  std::vector<std::string> written;
  std::vector<std::filesystem::path> ended;
  std::function<void()> on_change;
  int changes = 0;
};

TEST_F(PeriodReportTest, BeginsWithTheWeekOfTheLastRecordAsPdf) {
  const PeriodReportForm& form = Report().Form();
  EXPECT_EQ(form.kind, PeriodKind::kWeek);
  EXPECT_EQ(form.day, "3/15/2011");
  EXPECT_EQ(form.period, "2011-W11: 2011-03-14 to 2011-03-20");
  EXPECT_EQ(form.format, PageFormat::kPdf);
  EXPECT_TRUE(form.opens);
  EXPECT_TRUE(form.may_write);
}

TEST_F(PeriodReportTest, BeginsWithTodayIfNoRecordHasADate) {
  OpenDatabase(database, Access::kWrite).exec("UPDATE Transactions SET Date = NULL");
  EXPECT_EQ(Report().Form().day, DefaultText(calendar.Today()));
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(PeriodReportTest, ShowsThePeriodOfTheTypedDay) {
  Report().TypeDay("31-Jan-26");
  EXPECT_EQ(Report().Form().period, "2026-W05: 2026-01-26 to 2026-02-01");
  Report().ChooseKind(PeriodKind::kMonth);
  EXPECT_EQ(Report().Form().period, "2026-01: 2026-01-01 to 2026-01-31");
  Report().ChooseKind(PeriodKind::kDay);
  EXPECT_EQ(Report().Form().period, "2026-01-31");
  EXPECT_EQ(changes, 3);
}

TEST_F(PeriodReportTest, WritesNothingForATextThatIsNoDay) {
  Report().TypeDay("2/30/2026");
  EXPECT_FALSE(Report().Form().may_write);
  EXPECT_EQ(Report().Form().period, "The day is written as 1/31/2026, 2026-01-31 or 31-Jan-26.");
  Report().ClickWrite();
  EXPECT_THAT(written, IsEmpty());
  Report().TypeDay("2/28/2026");
  EXPECT_TRUE(Report().Form().may_write);
}

TEST_F(PeriodReportTest, AsksForTheFileAndWritesIt) {
  files.Choose(dir / "WEEK.pdf");
  Report().ClickWrite();
  EXPECT_THAT(written, ElementsAre("2011-W11 pdf WEEK.pdf"));
  EXPECT_THAT(ended, ElementsAre(dir / "WEEK.pdf"));
  EXPECT_EQ(files.dialogs.at(0).default_extension, "pdf");
  Report().ChooseFormat(PageFormat::kHtml);
  Report().ChooseKind(PeriodKind::kDay);
  files.Choose(dir / "DAY.html");
  Report().ClickWrite();
  EXPECT_EQ(written.back(), "2011-03-15 html DAY.html");
  EXPECT_EQ(files.dialogs.at(1).default_extension, "html");
  EXPECT_FALSE(Report().Form().running);
}

TEST_F(PeriodReportTest, ACancelOfTheFileDialogChangesNothing) {
  files.Cancel();
  Report().ClickWrite();
  EXPECT_THAT(written, IsEmpty());
  EXPECT_THAT(ended, IsEmpty());
  EXPECT_EQ(changes, 0);
}

TEST_F(PeriodReportTest, ShowsItsProgressAndIgnoresASecondClick) {
  std::vector<int> percents;
  work = [&](const InsightProgress& progress) {
    EXPECT_TRUE(Report().Form().running);
    for (const int percent : {10, 10, 60}) {
      EXPECT_TRUE(progress(percent));
      percents.push_back(Report().Form().percent);
    }
    Report().ClickWrite();
  };
  files.Choose(dir / "WEEK.pdf");
  Report().ClickWrite();
  EXPECT_THAT(percents, ElementsAre(10, 10, 60));
  EXPECT_THAT(written, ElementsAre("2011-W11 pdf WEEK.pdf"));
  EXPECT_EQ(pump.pumps, 3);
  EXPECT_EQ(changes, 4);  // its start, two steps and its end
}

TEST_F(PeriodReportTest, ACancelEndsItWithoutAMessage) {
  work = [&](const InsightProgress& progress) {
    EXPECT_TRUE(Report().ClickCancel());
    if (!progress(10)) {
      throw QuestionCancelled();
    }
  };
  files.Choose(dir / "WEEK.pdf");
  Report().ClickWrite();
  EXPECT_THAT(written, IsEmpty());
  EXPECT_THAT(ended, IsEmpty());
  EXPECT_THAT(op.boxes, IsEmpty());
  EXPECT_FALSE(Report().ClickCancel());
  work = [](const InsightProgress& progress) { EXPECT_TRUE(progress(10)); };
  files.Choose(dir / "WEEK.pdf");
  Report().ClickWrite();  // the cancel is over
  EXPECT_EQ(written.size(), 1U);
}

TEST_F(PeriodReportTest, EndsWithTheProgram) {
  work = [&](const InsightProgress& progress) {
    pump.closing = true;
    EXPECT_FALSE(progress(10));
    throw QuestionCancelled();
  };
  files.Choose(dir / "WEEK.pdf");
  Report().ClickWrite();
  EXPECT_THAT(ended, IsEmpty());
  EXPECT_THAT(op.boxes, IsEmpty());
}

TEST_F(PeriodReportTest, ReportsAFailureAndCanBeTriedAgain) {
  work = [](const InsightProgress&) { throw FileError("cannot write WEEK.pdf: disk full"); };
  files.Choose(dir / "WEEK.pdf");
  Report().ClickWrite();
  EXPECT_THAT(OnlyBox(op.boxes),
              IsBox(Icon::kCritical, "Report Error", "The report could not be written."));
  EXPECT_THAT(op.boxes[0].cause, HasSubstr("disk full"));
  EXPECT_THAT(ended, IsEmpty());
  EXPECT_FALSE(Report().Form().running);
  EXPECT_TRUE(Report().Form().may_write);
}

TEST_F(PeriodReportTest, NeverReplacesADatabase) {
  files.Choose(database);
  Report().ClickWrite();
  EXPECT_THAT(
      OnlyBox(op.boxes),
      IsBox(Icon::kWarning, "Report Error",
            database.string() + " is a database and is not replaced. Choose another name."));
  EXPECT_THAT(written, IsEmpty());
}

TEST_F(PeriodReportTest, ReportsADatabaseThatIsGone) {
  Report();
  std::filesystem::remove(database);
  files.Choose(dir / "WEEK.pdf");
  Report().ClickWrite();
  EXPECT_THAT(OnlyBox(op.boxes),
              IsBox(Icon::kCritical, "Report Error", "The report could not be written."));
  EXPECT_THAT(op.boxes[0].cause, HasSubstr("SMALL.TDB"));
}

}  // namespace
}  // namespace vrx::testing
