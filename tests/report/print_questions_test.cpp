#include "report/print_questions.h"

#include <QBuffer>
#include <QPdfWriter>
#include <memory>
#include <string>

#include <gmock/gmock.h>

#include "report/print_target.h"
#include "report/report_layout.h"
#include "support/recording_operator.h"

namespace vrx::testing {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

class PrintQuestions : public ::testing::Test {
 protected:
  PrintQuestions() {
    device_.setPageSize(QPageSize(QPageSize::A4));
    SetUpPaper(device_);
  }

  static Report Listed(int columns, int rows, bool fit) {
    ReportDesign design{.fit_columns = fit};
    ReportRow row;
    for (int column = 0; column < columns; ++column) {
      design.columns.push_back({.caption = "Caption" + std::to_string(column)});
      row.cells.push_back("1234567");
    }
    return {.design = design,
            .rows = std::make_unique<ListedRows>(
                std::vector<ReportRow>(static_cast<std::size_t>(rows), row))};
  }
  // A recipe's sheet: one page.
  static std::vector<Report> Sheets(int count) {
    std::vector<Report> reports;
    for (int i = 0; i < count; ++i) {
      reports.push_back(Listed(3, 2, true));
    }
    return reports;
  }
  bool Ask(std::span<Report> reports) { return MayPrint(reports, device_, operator_); }
  bool Ask(Report& report) { return Ask({&report, 1}); }

  QBuffer buffer_;
  QPdfWriter device_{&buffer_};
  RecordingOperator operator_;
};

TEST_F(PrintQuestions, FiftySheetsAreNotAskedAboutAndOneMoreIsWithTheNumber) {
  std::vector<Report> fifty = Sheets(50);
  EXPECT_TRUE(Ask(fifty));
  EXPECT_THAT(operator_.boxes, IsEmpty());
  std::vector<Report> more = Sheets(51);
  operator_.answers = {Answer::kNo};
  EXPECT_FALSE(Ask(more));
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(operator_.boxes[0].title, "Print");
  EXPECT_EQ(operator_.boxes[0].text,
            "The report takes 51 sheets.\r\nDo you want to print all of them?");
  EXPECT_EQ(operator_.boxes[0].icon, Icon::kQuestion);
  EXPECT_EQ(operator_.boxes[0].buttons, Buttons::kYesNo);
  EXPECT_TRUE(operator_.boxes[0].refuses_by_default);
  operator_.answers = {Answer::kYes};
  EXPECT_TRUE(Ask(more));
}

TEST_F(PrintQuestions, SheetsThatLieSideBySideCountEach) {
  Report wide = Listed(60, 400, false);
  operator_.answers = {Answer::kYes};
  EXPECT_TRUE(Ask(wide));
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  Report narrow = Listed(6, 400, false);
  EXPECT_TRUE(Ask(narrow));
  EXPECT_THAT(operator_.boxes, SizeIs(1));
}

TEST_F(PrintQuestions, LettersBelowFivePointsAreOfferedSideBySide) {
  Report report = Listed(30, 3, true);
  operator_.answers = {Answer::kOk};
  EXPECT_TRUE(Ask(report));
  ASSERT_THAT(operator_.boxes, SizeIs(1));
  EXPECT_EQ(operator_.boxes[0].title, "Print");
  EXPECT_EQ(operator_.boxes[0].buttons, Buttons::kOkCancel);
  EXPECT_THAT(operator_.boxes[0].text,
              ::testing::MatchesRegex(
                  "All columns fit on one page only in letters of [1-4]\\.[0-9] points, which are "
                  "too small to read.\r\nThe report can be printed with its columns on [2-9] pages "
                  "side by side instead."));
  EXPECT_FALSE(report.design.fit_columns);
}

// The size that the operator reads is never above the size of the letters.
TEST_F(PrintQuestions, LettersAreNamedRoundedDownAndOnlyWhereTheyAreBelowFivePoints) {
  int offers = 0;
  for (int columns = 10; columns <= 40; ++columns) {
    Report report = Listed(columns, 1, true);
    const double points = ReportLayout(report.design, *report.rows, device_).LetterPoints();
    operator_.boxes.clear();
    operator_.answers = {Answer::kCancel};
    EXPECT_EQ(Ask(report), points >= 5) << points;
    if (points < 5) {
      ++offers;
      const std::string& text = operator_.boxes.at(0).text;
      const double named = std::stod(text.substr(text.find(" of ") + 4));
      EXPECT_LE(named, points);
      EXPECT_GT(named + 0.1001, points);
    }
  }
  EXPECT_GT(offers, 10);
  EXPECT_LT(offers, 30);
}

TEST_F(PrintQuestions, SheetsSideBySideAreAskedAboutByTheirNumber) {
  Report report = Listed(30, 1200, true);
  ReportDesign wide = report.design;
  wide.fit_columns = false;
  const std::int64_t sheets = ReportLayout(wide, *report.rows, device_).PageCount(*report.rows);
  ASSERT_GT(sheets, 50);
  operator_.answers = {Answer::kOk, Answer::kNo};
  EXPECT_FALSE(Ask(report));
  EXPECT_THAT(operator_.boxes.back().text,
              ::testing::HasSubstr("takes " + std::to_string(sheets) + " sheets."));
}

TEST_F(PrintQuestions, ARefusedOfferPrintsNothingAndKeepsTheChoice) {
  Report report = Listed(30, 3, true);
  operator_.answers = {Answer::kCancel};
  EXPECT_FALSE(Ask(report));
  EXPECT_TRUE(report.design.fit_columns);
}

TEST_F(PrintQuestions, SmallerLettersThatCanBeReadAreNotAskedAbout) {
  Report report = Listed(13, 3, true);
  EXPECT_TRUE(Ask(report));
  EXPECT_THAT(operator_.boxes, IsEmpty());
  EXPECT_TRUE(report.design.fit_columns);
}

}  // namespace
}  // namespace vrx::testing
