// Reports as read from the printed pages.

#include <QPdfWriter>
#include <algorithm>
#include <cmath>
#include <csignal>
#include <fstream>
#include <functional>
#include <map>
#include <random>
#include <stdexcept>

#include <gmock/gmock.h>
#include <sys/resource.h>

#include "base/error.h"
#include "base/files.h"
#include "database/identity.h"
#include "database/keep_database.h"
#include "report/print_target.h"
#include "report/recorded_pages.h"
#include "report/report_layout.h"
#include "support/printed_pages.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr double kMargin = 12 / 25.4 * 72;  // points

// Generates rows on demand and counts the calls.
class MadeRows : public ReportRows {
 public:
  MadeRows(std::int64_t count, std::function<ReportRow(std::int64_t)> make)
      : count_(count), make_(std::move(make)) {}
  std::int64_t Count() const override { return count_; }
  ReportRow Row(std::int64_t row) override {
    ++read;
    return make_(row);
  }
  bool IsHead(std::int64_t row) override {
    ++heads_asked;
    return make_(row).kind == ReportRowKind::kGroup;
  }

  int read = 0;
  int heads_asked = 0;

 private:
  std::int64_t count_;
  std::function<ReportRow(std::int64_t)> make_;
};

class ReportPages : public ::testing::Test {
 protected:
  static ReportDesign Design() {
    return {.texts = {.header_center = "Report: Test\r\nRecipe File: /feed/YARD.RDB",
                      .header_right = "Weight Units: LB",
                      .footer_center = "1/5/2026"},
            .columns = {{.caption = "ID", .right_aligned = true},
                        {.caption = "Name"},
                        {.caption = "Feed Amount (lb)", .right_aligned = true}}};
  }
  static ReportRow Numbered(std::int64_t row) {
    return {
        .cells = {std::to_string(row), "name" + std::to_string(row), std::to_string(row * row)}};
  }
  static Report Listed(std::int64_t count, const ReportDesign& design = Design()) {
    return {.design = design, .rows = std::make_unique<MadeRows>(count, Numbered)};
  }
  // Columns of that many captions "CapNNN", with "vNNN" in every row.
  static Report Wide(int columns, bool fit) {
    ReportDesign design = Design();
    design.columns.clear();
    design.fit_columns = fit;
    ReportRow row;
    for (int column = 100; column < 100 + columns; ++column) {
      design.columns.push_back({.caption = "Cap" + std::to_string(column)});
      row.cells.push_back("v" + std::to_string(column));
    }
    return {.design = design,
            .rows = std::make_unique<MadeRows>(3, [row](std::int64_t) { return row; })};
  }

  void Print(const Report& report) {
    const auto paper = MakePdfFile(pdf_, "test");
    PrintOn(*paper, [&](ReportJob& job) { return job.Print(report); });
  }

  static const PrintedWord& Word(const PrintedPage& page, const std::string& text) {
    const auto found = std::find_if(page.words.begin(), page.words.end(),
                                    [&](const PrintedWord& word) { return word.text == text; });
    if (found == page.words.end()) {
      throw std::runtime_error("no word " + text);
    }
    return *found;
  }
  static void ExpectInsideMargins(const std::vector<PrintedPage>& pages) {
    constexpr double kSlack = 1.5;
    for (const PrintedPage& page : pages) {
      for (const PrintedWord& word : page.words) {
        EXPECT_GE(word.left, kMargin - kSlack) << word.text;
        EXPECT_LE(word.right, page.width - kMargin + kSlack) << word.text;
        EXPECT_GE(word.top, kMargin - 2 * kSlack) << word.text;
        EXPECT_LE(word.bottom, page.height - kMargin + 2 * kSlack) << word.text;
      }
    }
  }

  TempFolder folder_;
  std::filesystem::path pdf_ = folder_ / "report.pdf";
};

TEST_F(ReportPages, ShowHeaderCaptionsRowsAndFooter) {
  Print(Listed(2));
  EXPECT_THAT(LinesOf(pdf_),
              ElementsAre(ElementsAre("Report: Test Weight Units: LB",
                                      "Recipe File: /feed/YARD.RDB", "ID Name Feed Amount (lb)",
                                      "1 name1 1", "2 name2 4", "1/5/2026 Page 1 of 1")));
}

TEST_F(ReportPages, RepeatHeaderAndCaptionsAndCountThemselves) {
  Print(Listed(150));
  const auto pages = LinesOf(pdf_);
  ASSERT_GT(pages.size(), 2U);
  const std::string of = " of " + std::to_string(pages.size());
  int row = 0;
  for (std::size_t page = 0; page < pages.size(); ++page) {
    const auto& lines = pages[page];
    EXPECT_EQ(lines.at(0), "Report: Test Weight Units: LB");
    EXPECT_EQ(lines.at(2), "ID Name Feed Amount (lb)");
    for (std::size_t line = 3; line + 1 < lines.size(); ++line) {
      ++row;
      EXPECT_THAT(lines[line], ::testing::StartsWith(std::to_string(row) + " name"));
    }
    EXPECT_EQ(lines.back(), "1/5/2026 Page " + std::to_string(page + 1) + of);
    if (page + 1 < pages.size()) {
      EXPECT_EQ(lines.size(), pages.front().size());
    }
  }
  EXPECT_EQ(row, 150);
}

TEST_F(ReportPages, FillThePageDownToTheFooter) {
  Print(Listed(150));
  const auto pages = TextsOf(pdf_);
  const auto& words = pages.front().words;
  const double footer = Word(pages.front(), "1/5/2026").top;
  const double row = Word(pages.front(), "name2").top - Word(pages.front(), "name1").top;
  double last = 0;
  for (const PrintedWord& word : words) {
    last = word.text.starts_with("name") ? std::max(last, word.bottom) : last;
  }
  EXPECT_LT(last, footer);
  EXPECT_GT(last, footer - 2 * row);
}

TEST_F(ReportPages, FooterHasTheDateInTheMiddleAndThePageAtTheRight) {
  Print(Listed(1));
  const PrintedPage page = TextsOf(pdf_).at(0);
  const PrintedWord& date = Word(page, "1/5/2026");
  EXPECT_NEAR((date.left + date.right) / 2, page.width / 2, 2);
  EXPECT_NEAR(page.words.back().right, page.width - kMargin, 2);
}

TEST_F(ReportPages, NumbersEndAndTextsBeginAtOneEdge) {
  Print(Listed(120));
  for (const PrintedPage& page : TextsOf(pdf_)) {
    const double name = Word(page, "Name").left;
    const double amount = Word(page, "(lb)").right;
    for (const PrintedWord& word : page.words) {
      if (word.text.starts_with("name")) {
        EXPECT_NEAR(word.left, name, 0.5) << word.text;
      }
    }
    EXPECT_NEAR(Word(page, "ID").right, Word(page, page.words.at(12).text).right, 60);
    const auto in_last_column = [&](const PrintedWord& word) {
      return word.left > name + 60 && word.top > Word(page, "Name").bottom &&
             word.bottom < page.height - kMargin - 14;
    };
    for (const PrintedWord& word : page.words) {
      if (in_last_column(word)) {
        EXPECT_NEAR(word.right, amount, 0.7) << word.text;
      }
    }
  }
}

TEST_F(ReportPages, NothingIsCutOffAndNothingIsLost) {
  std::mt19937 random(7);
  for (int round = 0; round < 6; ++round) {
    const int columns = 3 + static_cast<int>(random() % 20);
    ReportDesign design = Design();
    design.columns.clear();
    design.fit_columns = round % 2 == 0;
    for (int column = 0; column < columns; ++column) {
      design.columns.push_back(
          {.caption = "C" + std::to_string(column), .right_aligned = random() % 2 == 0});
    }
    std::vector<ReportRow> rows(70);
    std::map<std::string, int> words;
    for (ReportRow& row : rows) {
      for (int column = 0; column < columns; ++column) {
        row.cells.push_back("t" + std::string(random() % 12, 'm') + std::to_string(random()));
        ++words[row.cells.back()];
      }
    }
    Print({.design = design, .rows = std::make_unique<ListedRows>(rows)});
    const auto pages = TextsOf(pdf_);
    ExpectInsideMargins(pages);
    for (const PrintedPage& page : pages) {
      for (const PrintedWord& word : page.words) {
        --words[word.text];
      }
    }
    for (const auto& [text, missing] : words) {
      EXPECT_LE(missing, 0) << text;
    }
  }
}

TEST_F(ReportPages, WithoutFitAWideTableGoesOverSeveralPages) {
  Print(Wide(60, false));
  const auto pages = TextsOf(pdf_);
  ASSERT_GT(pages.size(), 2U);
  ExpectInsideMargins(pages);
  const double height = Word(pages.front(), "v100").bottom - Word(pages.front(), "v100").top;
  for (int column = 100; column < 160; ++column) {
    int seen = 0;
    for (const PrintedPage& page : pages) {
      for (const PrintedWord& word : page.words) {
        if (word.text == "v" + std::to_string(column)) {
          ++seen;
          EXPECT_NEAR(word.bottom - word.top, height, 0.5);
        }
      }
    }
    EXPECT_EQ(seen, 3) << column;
  }
  EXPECT_THAT(LinesOf(pdf_).back().back(), HasSubstr("Page " + std::to_string(pages.size()) +
                                                     " of " + std::to_string(pages.size())));
}

TEST_F(ReportPages, WithFitAllColumnsStandOnOnePageInSmallerLetters) {
  Print(Wide(60, true));
  const auto pages = TextsOf(pdf_);
  ASSERT_EQ(pages.size(), 1U);
  ExpectInsideMargins(pages);
  for (int column = 100; column < 160; ++column) {
    EXPECT_NO_THROW(Word(pages[0], "v" + std::to_string(column)));
    EXPECT_NO_THROW(Word(pages[0], "Cap" + std::to_string(column)));
  }
}

TEST_F(ReportPages, AGroupOverSeveralSheetsShowsItsHeadOnEach) {
  Report report = Wide(40, false);
  const ReportRow cells = report.rows->Row(1);
  report.rows = std::make_unique<ListedRows>(
      std::vector<ReportRow>{{.kind = ReportRowKind::kGroup, .caption = "Pen:A01"}, cells});
  Print(report);
  for (const PrintedPage& page : TextsOf(pdf_)) {
    EXPECT_NO_THROW(Word(page, "Pen:A01"));
  }
}

TEST_F(ReportPages, AGroupRowIsNotTheLastRowOfAPage) {
  for (int lead = 0; lead < 60; ++lead) {
    // Two nested group rows after that many rows.
    Report report{.design = Design(),
                  .rows = std::make_unique<MadeRows>(90, [=](std::int64_t row) {
                    const std::int64_t place = row - lead;
                    return place == 1 || place == 2
                               ? ReportRow{.kind = ReportRowKind::kGroup,
                                           .level = static_cast<int>(place),
                                           .caption = "head" + std::to_string(place)}
                               : Numbered(row);
                  })};
    for (const DrawnPage& page : PagesOf(report)) {
      const std::string& last_of_rows = page.texts.at(page.texts.size() - 3).text;
      EXPECT_THAT(last_of_rows, ::testing::Not(HasSubstr("head"))) << lead;
    }
  }
}

TEST_F(ReportPages, ALargeReportIsCountedByItsPageEndsAndReadPageByPage) {
  const std::int64_t count = 1'000'000;
  const Report report = Listed(count);
  auto& rows = dynamic_cast<MadeRows&>(*report.rows);
  const auto paper = MakePdfFile(pdf_, "test");
  const ReportLayout layout(report.design, rows, paper->Device());
  const int sampled = rows.read;
  EXPECT_LE(sampled, 2000);
  const std::int64_t pages = layout.PageCount(rows);
  EXPECT_GT(pages, 10'000);
  EXPECT_EQ(rows.read, sampled);
  EXPECT_LE(rows.heads_asked, pages * 2);

  std::int64_t printed = 0;
  ReportJob job(paper->Device());
  EXPECT_FALSE(job.Print(report, [&](std::int64_t page, std::int64_t of) {
    EXPECT_EQ(of, pages);
    printed = page;
    return page < 3;
  }));
  EXPECT_EQ(printed, 3);
  EXPECT_LE(rows.read, 2 * sampled + 3 * (count / pages + 1));
}

TEST_F(ReportPages, ATextThatNoSampleShowedIsDrawnNarrower) {
  const std::string long_text = "TheQuickBrownFoxJumpsOverTheLazyDogAndRunsAwayFromTheFarm";
  Report report{.design = Design(), .rows = std::make_unique<MadeRows>(5000, [&](std::int64_t row) {
                                      ReportRow made = Numbered(row);
                                      made.cells[1] = row == 40 ? long_text : "x";
                                      return made;
                                    })};
  report.design.fit_columns = false;
  const auto paper = MakePdfFile(pdf_, "test");
  PrintOn(*paper, [&](ReportJob& job) {
    job.Print(report, [](std::int64_t page, std::int64_t) { return page < 1; });
    return true;
  });
  const PrintedPage page = TextsOf(pdf_).at(0);
  const PrintedWord& word = Word(page, long_text);
  EXPECT_GE(word.left, Word(page, "Name").left - 1);
  EXPECT_LE(word.right, Word(page, "Feed").left);
}

TEST_F(ReportPages, ALongPathIsBrokenAndNeverRunsIntoTheRight) {
  ReportDesign design = Design();
  const std::string path = "/" + std::string(300, 'p') + "/YARD.RDB";
  design.texts.header_center = "Report: Test\r\nRecipe File: " + path;
  Print(Listed(1, design));
  const auto pages = TextsOf(pdf_);
  ExpectInsideMargins(pages);
  const double right = Word(pages.at(0), "Weight").left;
  std::string joined;
  for (const PrintedWord& word : pages.at(0).words) {
    if (word.text.find('p') != std::string::npos && word.text.find("pp") != std::string::npos) {
      EXPECT_LT(word.right, right);
      joined += word.text;
    }
  }
  EXPECT_EQ(std::count(joined.begin(), joined.end(), 'p'), 300);
}

TEST_F(ReportPages, AHeaderHigherThanThePageLeavesSpaceForRows) {
  ReportDesign design = Design();
  design.texts.header_center = std::string(40'000, 'p');
  EXPECT_NO_THROW(Print(Listed(2, design)));
}

TEST_F(ReportPages, NoRowsAreOnePageWithHeaderAndCaptions) {
  Print(Listed(0));
  EXPECT_THAT(LinesOf(pdf_), ElementsAre(ElementsAre(
                                 "Report: Test Weight Units: LB", "Recipe File: /feed/YARD.RDB",
                                 "ID Name Feed Amount (lb)", "1/5/2026 Page 1 of 1")));
}

TEST_F(ReportPages, GridLinesGoByTheSetting) {
  ReportDesign design = Design();
  Print(Listed(10, design));
  EXPECT_EQ(RuledLinesOf(pdf_), 12);  // above and below the captions, below each row
  design.grid_lines = false;
  Print(Listed(10, design));
  EXPECT_EQ(RuledLinesOf(pdf_), 1);
}

TEST_F(ReportPages, EachReportOfAJobHasSheetsAndNumbersOfItsOwn) {
  const auto paper = MakePdfFile(pdf_, "test");
  PrintOn(*paper, [&](ReportJob& job) {
    return job.Print(Listed(1)) && job.Print(Listed(60)) && job.Print(Listed(2));
  });
  std::vector<std::string> feet;
  for (const auto& lines : LinesOf(pdf_)) {
    feet.push_back(lines.back());
  }
  EXPECT_THAT(feet, ElementsAre("1/5/2026 Page 1 of 1", "1/5/2026 Page 1 of 2",
                                "1/5/2026 Page 2 of 2", "1/5/2026 Page 1 of 1"));
}

TEST_F(ReportPages, AFileBearsItsTitleAndTheProgramsName) {
  const auto paper = MakePdfFile(pdf_, "Ingredients");
  const auto& writer = dynamic_cast<const QPdfWriter&>(paper->Device());
  EXPECT_EQ(writer.title(), QString("Ingredients"));
  EXPECT_EQ(writer.creator(), QString("VRX-2260 Transfer Data Software"));
  EXPECT_EQ(writer.pageLayout().orientation(), QPageLayout::Portrait);
  EXPECT_EQ(writer.pageLayout().margins(QPageLayout::Millimeter), QMarginsF(12, 12, 12, 12));
}

class BrokenOffReport : public ReportPages {
 protected:
  BrokenOffReport() { std::ofstream(pdf_) << "as it was"; }

  void ExpectUntouched() {
    std::ifstream in(pdf_);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "as it was");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.Path()),
                            std::filesystem::directory_iterator()),
              1);
  }
};

TEST_F(BrokenOffReport, LeavesTheFileAsItWasWhenTheRowsFail) {
  const Report report{.design = Design(),
                      .rows = std::make_unique<MadeRows>(3, [](std::int64_t row) -> ReportRow {
                        if (row == 3) {
                          throw Error("the database is gone");
                        }
                        return Numbered(row);
                      })};
  EXPECT_THROW(Print(report), Error);
  ExpectUntouched();
}

TEST_F(BrokenOffReport, LeavesTheFileAsItWasWhenItIsEnded) {
  const Report report = Listed(500);
  {
    const auto paper = MakePdfFile(pdf_, "test");
    EXPECT_FALSE(PrintOn(*paper, [&](ReportJob& job) {
      return job.Print(report, [](std::int64_t page, std::int64_t) { return page < 2; });
    }));
  }
  ExpectUntouched();
}

TEST_F(BrokenOffReport, LeavesADatabaseThatWasMadeMeanwhile) {
  const std::string database = "SQLite format 3" + std::string(1, '\0') + " and more";
  const auto paper = MakePdfFile(pdf_, "test");
  EXPECT_THROW(PrintOn(*paper,
                       [&](ReportJob& job) {
                         std::ofstream(pdf_, std::ios::binary) << database;
                         return job.Print(Listed(2));
                       }),
               DatabaseInTheWay);
  EXPECT_EQ(ReadAll(pdf_), database);
}

TEST_F(BrokenOffReport, LeavesTheFileAsItWasWhenTheDiskIsFull) {
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const auto paper = MakePdfFile(pdf_, "test");
  const rlimit small{.rlim_cur = 4096, .rlim_max = before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  EXPECT_THROW(PrintOn(*paper, [&](ReportJob& job) { return job.Print(Listed(500)); }), FileError);
  setrlimit(RLIMIT_FSIZE, &before);
  static_cast<void>(std::signal(SIGXFSZ, handler));
  EXPECT_EQ(ReadAll(pdf_), "as it was");
}

TEST_F(BrokenOffReport, RefusesAPathThatNamesADatabase) {
  const std::string database = "SQLite format 3" + std::string(1, '\0') + " and more";
  std::ofstream(pdf_, std::ios::binary) << database;
  EXPECT_THROW(MakePdfFile(pdf_, "test"), DatabaseInTheWay);
  EXPECT_EQ(ReadAll(pdf_), database);
}

TEST_F(BrokenOffReport, ReportsAFolderThatIsMissing) {
  EXPECT_THROW(MakePdfFile(folder_ / "none" / "report.pdf", "test"), Error);
}

}  // namespace
}  // namespace vrx::testing
