#include "report/paged_report.h"

#include <iterator>
#include <stdexcept>

#include <gmock/gmock.h>

#include "report/recorded_pages.h"

namespace vrx::testing {
namespace {

// A report with two sheets for every page of rows.
Report WideReport(int rows) {
  std::vector<ReportRow> listed;
  for (int row = 1; row <= rows; ++row) {
    listed.push_back({.cells = {std::string(60, 'a') + std::to_string(row),
                                std::string(60, 'b') + std::to_string(row)}});
  }
  Report report = ReportOf(listed, 2);
  report.design.fit_columns = false;
  return report;
}

std::vector<std::string> TextsOfPage(PagedReport& pages, std::int64_t page) {
  RecordingPaper paper;
  QPainter painter(&paper);
  pages.Draw(page, painter);
  painter.end();
  return paper.pages.at(0).Texts();
}

TEST(PagedReport, DrawsAnyPageAsTheJobPrintsIt) {
  const Report report = WideReport(150);
  const std::vector<DrawnPage> printed = PagesOf(report);
  ASSERT_GE(printed.size(), 6U);
  const RecordingPaper paper;
  PagedReport pages(report, paper);
  ASSERT_EQ(pages.Count(), std::ssize(printed));
  for (const std::int64_t page : {4, 3, 6, 1, 2, 5, 5}) {
    EXPECT_EQ(TextsOfPage(pages, page), printed.at(static_cast<std::size_t>(page) - 1).Texts());
  }
}

TEST(PagedReport, RefusesAMissingPage) {
  const Report report = WideReport(1);
  RecordingPaper paper;
  PagedReport pages(report, paper);
  QPainter painter(&paper);
  EXPECT_THROW(pages.Draw(0, painter), std::out_of_range);
  EXPECT_THROW(pages.Draw(3, painter), std::out_of_range);
}

class FailingRows : public ListedRows {
 public:
  using ListedRows::ListedRows;
  ReportRow Row(std::int64_t row) override {
    if (fails) {
      throw std::runtime_error("the rows are gone");
    }
    return ListedRows::Row(row);
  }
  bool fails = false;
};

TEST(PagedReport, ReadsThePageAgainAfterAFailure) {
  Report report = ReportOf({});
  auto rows = std::make_unique<FailingRows>(std::vector<ReportRow>(3, {.cells = {"cell"}}));
  FailingRows& source = *rows;
  report.rows = std::move(rows);
  const RecordingPaper paper;
  PagedReport pages(report, paper);
  source.fails = true;
  EXPECT_THROW(TextsOfPage(pages, 1), std::runtime_error);
  source.fails = false;
  EXPECT_THAT(TextsOfPage(pages, 1), ::testing::Contains("cell").Times(3));
}

}  // namespace
}  // namespace vrx::testing
