// Reports as they are drawn: the place, font and color of each text and line.

#include <QFontMetricsF>

#include <gmock/gmock.h>

#include "base/error.h"
#include "report/print_target.h"
#include "report/recorded_pages.h"
#include "report/report_layout.h"

namespace vrx::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::SizeIs;

constexpr double kPadding = 4;
constexpr double kIndent = 12;

std::vector<ReportRow> Rows(std::int64_t count) {
  return std::vector<ReportRow>(static_cast<std::size_t>(count), ReportRow{.cells = {"cell"}});
}

ReportRow Group(int level, const std::string& caption) {
  return {.kind = ReportRowKind::kGroup, .level = level, .caption = caption};
}

std::int64_t RowsOfAPage() {
  Report report = ReportOf(Rows(1000));
  const RecordingPaper paper;
  return ReportLayout(report.design, *report.rows, paper).NextStart(1, *report.rows) - 1;
}

TEST(DrawnPages, ACellDecidesTheWeightOfItsLettersBeforeItsRow) {
  const std::vector<DrawnPage> pages =
      PagesOf(ReportOf({{.cells = {"record"}},
                        {.cells = {"marked"}, .bold = {true}},
                        {.kind = ReportRowKind::kTotal, .cells = {"total"}, .bold = {std::nullopt}},
                        {.kind = ReportRowKind::kTotal, .cells = {"within"}, .bold = {false}}}));
  EXPECT_FALSE(pages.at(0).Text("record").font.bold());
  EXPECT_TRUE(pages.at(0).Text("marked").font.bold());
  EXPECT_TRUE(pages.at(0).Text("total").font.bold());
  EXPECT_FALSE(pages.at(0).Text("within").font.bold());
}

TEST(DrawnPages, TakeAsManyRowsAsFitAndTheNextOneGoesOnAnother) {
  const std::int64_t full = RowsOfAPage();
  ASSERT_GT(full, 30);
  const std::vector<std::pair<std::int64_t, std::size_t>> cases{
      {full - 1, 1}, {full, 1}, {full + 1, 2}, {2 * full, 2}, {2 * full + 1, 3}};
  for (const auto& [rows, pages] : cases) {
    const std::vector<DrawnPage> drawn = PagesOf(ReportOf(Rows(rows)));
    ASSERT_THAT(drawn, SizeIs(pages)) << rows << " of " << full;
    EXPECT_THAT(drawn.back().Texts(),
                Contains("Page " + std::to_string(pages) + " of " + std::to_string(pages)));
  }
}

TEST(DrawnPages, LeaveHalfALineBetweenTheLastRowAndTheFooter) {
  Report report = ReportOf(Rows(1000));
  const RecordingPaper paper;
  const ReportLayout layout(report.design, *report.rows, paper);
  const double bottom = layout.RowsTop() + static_cast<double>(RowsOfAPage()) * layout.RowHeight();
  const double room = layout.FooterTop() - layout.HeaderLine() / 2 - bottom;
  EXPECT_GE(room, 0);
  EXPECT_LT(room, layout.RowHeight());
  EXPECT_NEAR((layout.FooterTop() + layout.HeaderLine()) * kDot, paper.Height(), 0.01);
}

TEST(DrawnPages, KeepHeadsWithTheRowsBelowUnlessThePageIsFullOfHeads) {
  class Heads : public ListedRows {
   public:
    using ListedRows::ListedRows;
    bool IsHead(std::int64_t row) override { return Row(row).kind == ReportRowKind::kGroup; }
  };
  const std::int64_t full = RowsOfAPage();
  const auto next_start = [&](std::int64_t first_head, std::int64_t heads) {
    std::vector<ReportRow> rows = Rows(3 * full);
    for (std::int64_t row = first_head; row < first_head + heads; ++row) {
      rows[static_cast<std::size_t>(row) - 1] = Group(1, "head");
    }
    Report report = ReportOf({});
    report.rows = std::make_unique<Heads>(rows);
    const RecordingPaper paper;
    return ReportLayout(report.design, *report.rows, paper).NextStart(1, *report.rows);
  };
  EXPECT_EQ(next_start(full, 1), full);
  EXPECT_EQ(next_start(full - 1, 1), full + 1);
  EXPECT_EQ(next_start(full - 2, 3), full - 2);
  EXPECT_EQ(next_start(2, full - 1), 2);
  EXPECT_EQ(next_start(1, full), full + 1);
}

TEST(DrawnPages, HaveTheLettersOfTheDesign) {
  Report report = ReportOf({{.cells = {"record"}},
                            Group(1, "group"),
                            {.kind = ReportRowKind::kTotal, .cells = {"total"}}});
  report.design.texts = {
      .header_center = "center", .header_right = "right", .footer_center = "foot"};
  const DrawnPage page = PagesOf(report).at(0);
  for (const char* text : {"center", "right", "foot", "Page 1 of 1"}) {
    EXPECT_EQ(page.Text(text).font.pointSizeF(), 9) << text;
    EXPECT_FALSE(page.Text(text).font.bold()) << text;
    EXPECT_EQ(page.Text(text).font.families(), QStringList("MS Sans Serif")) << text;
  }
  EXPECT_TRUE(page.Text("A").font.bold());
  EXPECT_EQ(page.Text("A").font.pointSizeF(), 9.75);
  EXPECT_FALSE(page.Text("record").font.bold());
  EXPECT_EQ(page.Text("record").font.pointSizeF(), 9.75);
  EXPECT_EQ(page.Text("record").font.families(), QStringList("MS Sans Serif"));
  for (const char* text : {"group", "total"}) {
    EXPECT_TRUE(page.Text(text).font.bold()) << text;
    EXPECT_EQ(page.Text(text).font.pointSizeF(), 10) << text;
  }
}

TEST(DrawnPages, HaveRowsOfFixedPitchUnderOtherCaptions) {
  Report report = ReportOf({{.cells = {"record"}}, Group(1, "group")});
  report.design.fixed_pitch = true;
  const DrawnPage page = PagesOf(report).at(0);
  for (const char* text : {"record", "group"}) {
    EXPECT_EQ(page.Text(text).font.families(), QStringList("Courier New"));
    EXPECT_EQ(page.Text(text).font.styleHint(), QFont::Monospace);
  }
  EXPECT_EQ(page.Text("A").font.families(), QStringList("MS Sans Serif"));
}

TEST(DrawnPages, HaveTheColorsOfTheDesignAndBlackElsewhere) {
  Report report = ReportOf({{.cells = {"record", "r2"}},
                            Group(1, "group"),
                            {.kind = ReportRowKind::kTotal, .cells = {"plain", "total"}}},
                           2);
  report.design.texts = {
      .header_center = "center", .header_right = "right", .footer_center = "foot"};
  report.design.caption_color = 0x010203;
  report.design.group_color = 0x040506;
  report.design.columns[1].total_color = 0x070809;
  const DrawnPage page = PagesOf(report).at(0);
  EXPECT_EQ(page.Text("A").color, 0x010203U);
  EXPECT_EQ(page.Text("group").color, 0x040506U);
  EXPECT_EQ(page.Text("total").color, 0x070809U);
  for (const char* text : {"center", "right", "foot", "Page 1 of 1", "record", "r2", "plain"}) {
    EXPECT_EQ(page.Text(text).color, 0U) << text;
  }
}

TEST(DrawnPages, IndentEachLevelOfGroupsByTheSame) {
  const DrawnPage page =
      PagesOf(ReportOf({Group(1, "one"), Group(2, "two"), Group(3, "three")})).at(0);
  EXPECT_NEAR(page.Text("one").left, kPadding, 0.01);
  EXPECT_NEAR(page.Text("two").left, kPadding + kIndent, 0.01);
  EXPECT_NEAR(page.Text("three").left, kPadding + 2 * kIndent, 0.01);
}

TEST(DrawnPages, AlignACellWithItsCaption) {
  Report report = ReportOf({{.cells = {"left", "right"}}}, 2);
  report.design.columns[1].right_aligned = true;
  const DrawnPage page = PagesOf(report).at(0);
  const RecordingPaper paper;
  EXPECT_NEAR(page.Text("left").left, kPadding, 0.01);
  EXPECT_NEAR(page.Text("A").left, kPadding, 0.01);
  EXPECT_NEAR(page.Text("right").right, paper.Width() - kPadding, 0.1);
  EXPECT_NEAR(page.Text("B").right, paper.Width() - kPadding, 0.1);
}

TEST(DrawnPages, PutTheHeaderInTheMiddleAndAtTheRightFromTheTopLineOn) {
  Report report = ReportOf({});
  report.design.texts = {.header_center = "one\r\n\r\nthree",
                         .header_right = "first\r\nsecond\r\n"};
  const DrawnPage page = PagesOf(report).at(0);
  const RecordingPaper paper;
  const auto middle = [](const DrawnText& text) { return (text.left + text.right) / 2; };
  EXPECT_NEAR(middle(page.Text("one")), paper.Width() / 2, 0.1);
  EXPECT_NEAR(middle(page.Text("three")), paper.Width() / 2, 0.1);
  EXPECT_NEAR(page.Text("first").right, paper.Width(), 0.1);
  EXPECT_NEAR(page.Text("first").baseline, page.Text("one").baseline, 0.01);
  const double line = page.Text("second").baseline - page.Text("first").baseline;
  EXPECT_NEAR(page.Text("three").baseline - page.Text("one").baseline, 2 * line, 0.01);
  // One line is left empty below the header.
  EXPECT_NEAR(page.LinesAcross().at(1).top, 4 * line, 0.01);
}

TEST(DrawnPages, BreakCaptionsIntoWordsThatEndAboveTheRows) {
  const std::vector<ReportRow> rows{{.cells = std::vector<std::string>(8, "1")}};
  Report report = ReportOf(rows, 8);
  report.design.columns[0].caption = "Feeding Amounts Measured Yesterday";
  for (std::size_t column = 1; column < 8; ++column) {
    report.design.columns[column].caption = "Captions";
  }
  const DrawnPage page = PagesOf(report).at(0);
  EXPECT_EQ(page.Text("1").font.pointSizeF(), 9.75);
  const double last = page.Text("Yesterday").baseline;
  const double line = last - page.Text("Measured").baseline;
  EXPECT_GT(line, 0);
  EXPECT_NEAR(page.Text("Feeding").baseline, last - 3 * line, 0.01);
  EXPECT_NEAR(page.Text("Captions").baseline, last, 0.01);
  EXPECT_LT(last, page.Text("1").baseline);
}

TEST(DrawnPages, RuleEveryRowAndParColumnsButNotAcrossTheCaptionsOfGroups) {
  const std::vector<ReportRow> rows{{.cells = {"a", "b", "c"}},
                                    Group(1, "g"),
                                    {.cells = {"d", "e", "f"}},
                                    {.kind = ReportRowKind::kTotal, .cells = {"g", "h", "i"}}};
  const DrawnPage page = PagesOf(ReportOf(rows, 3)).at(0);
  const RecordingPaper paper;
  // Below the captions twice as thick, above them, and below each row.
  const std::vector<DrawnLine> across = page.LinesAcross();
  ASSERT_THAT(across, SizeIs(2 + rows.size()));
  const double captions_top = across[1].top;
  const double rows_top = across[0].top;
  const double height = (across.back().top - rows_top) / static_cast<double>(rows.size());
  EXPECT_LT(captions_top, rows_top);
  EXPECT_NEAR(across[0].width, 0.6, 0.001);
  for (std::size_t line = 1; line < across.size(); ++line) {
    EXPECT_NEAR(across[line].width, 0.3, 0.001);
    EXPECT_NEAR(across[line].left, 0, 0.01);
    EXPECT_NEAR(across[line].right, paper.Width(), 0.1);
  }
  for (std::size_t row = 1; row <= rows.size(); ++row) {
    EXPECT_NEAR(across[1 + row].top, rows_top + static_cast<double>(row) * height, 0.01);
  }
  // Both sides, and between the columns of the captions and of each row but the group's.
  std::vector<double> tops;
  for (const DrawnLine& line : page.LinesDown()) {
    if (line.left < 0.01 || line.left > paper.Width() - 0.1) {
      EXPECT_NEAR(line.top, captions_top, 0.01);
      EXPECT_NEAR(line.bottom, across.back().top, 0.01);
    } else {
      tops.push_back(line.top);
    }
  }
  using ::testing::DoubleNear;
  EXPECT_THAT(tops, ElementsAre(DoubleNear(captions_top, 0.01), DoubleNear(captions_top, 0.01),
                                DoubleNear(rows_top, 0.01), DoubleNear(rows_top, 0.01),
                                DoubleNear(rows_top + 2 * height, 0.01),
                                DoubleNear(rows_top + 2 * height, 0.01),
                                DoubleNear(rows_top + 3 * height, 0.01),
                                DoubleNear(rows_top + 3 * height, 0.01)));
  EXPECT_EQ(page.LinesDown().size(), tops.size() + 2);
}

TEST(DrawnPages, WithoutGridLinesHaveTheLineBelowTheCaptionsAlone) {
  Report report = ReportOf({{.cells = {"a"}}});
  report.design.grid_lines = false;
  EXPECT_THAT(PagesOf(report).at(0).lines, SizeIs(1));
  report.design.captions = false;
  const DrawnPage page = PagesOf(report).at(0);
  EXPECT_THAT(page.lines, IsEmpty());
  EXPECT_THAT(page.Texts(), ElementsAre("a", "Page 1 of 1"));
}

TEST(DrawnPages, WithoutCaptionsBeginTheGridAtTheRows) {
  Report report = ReportOf({{.cells = {"a", "b"}}}, 2);
  report.design.captions = false;
  const DrawnPage page = PagesOf(report).at(0);
  ASSERT_THAT(page.LinesAcross(), SizeIs(2));
  EXPECT_LT(page.LinesAcross()[0].top, page.Text("a").baseline);
  EXPECT_GT(page.LinesAcross()[1].top, page.Text("a").baseline);
  const RecordingPaper paper;
  const ReportLayout layout(report.design, *report.rows, paper);
  EXPECT_EQ(layout.RowsTop(), layout.CaptionTop());
}

// Every row of a report that is not large is measured; of a large one the first and the last ones,
// and some between.
TEST(DrawnPages, MakeRoomForTheWidestTextThatIsMeasured) {
  const auto makes_room = [](std::int64_t count, std::int64_t wide_row) {
    std::vector<ReportRow> rows = Rows(count);
    rows[static_cast<std::size_t>(wide_row) - 1].cells[0] = "WideAsNoOtherTextOfItsColumn";
    Report report = ReportOf(rows);
    report.design.fit_columns = false;
    const RecordingPaper paper;
    return ReportLayout(report.design, *report.rows, paper).ColumnWidth(0) * kDot > 100;
  };
  for (const std::int64_t row : {1, 40, 1999, 2000}) {
    EXPECT_TRUE(makes_room(2000, row)) << row;
  }
  EXPECT_FALSE(makes_room(2001, 40));
  for (const std::int64_t row : {1, 25, 4976, 5000}) {
    EXPECT_TRUE(makes_room(5000, row)) << row;
  }
  EXPECT_FALSE(makes_room(5000, 26));
  EXPECT_FALSE(makes_room(5000, 4975));
}

TEST(DrawnPages, DrawATextThatIsTooWideNarrowerIntoItsColumn) {
  const std::string wide(60, 'w');
  std::vector<ReportRow> rows = Rows(3000);
  rows[39].cells[0] = wide;
  Report report = ReportOf(rows, 1);
  report.design.fit_columns = false;
  report.design.columns[0].right_aligned = true;
  const DrawnPage page = PagesOf(report).at(0);
  const DrawnText& text = page.Text(wide);
  const DrawnText& cell = page.Text("cell");
  EXPECT_NEAR(text.left, kPadding, 0.01);
  EXPECT_NEAR(text.right, cell.right, 0.1);
  const double row = page.texts.at(2).baseline - page.texts.at(1).baseline;
  EXPECT_NEAR(text.baseline, cell.baseline + 39 * row, 0.1);
  EXPECT_EQ(page.texts.at(41).text, "cell");
  EXPECT_EQ(page.texts.at(41).scale, 1);
}

TEST(DrawnPages, CutAReportThatIsTooWideWhereAColumnEnds) {
  const std::vector<ReportRow> rows{{.cells = std::vector<std::string>(12, "mmmmmmmmmm")}};
  Report report = ReportOf(rows, 12);
  report.design.fit_columns = false;
  const RecordingPaper paper;
  const ReportLayout layout(report.design, *report.rows, paper);
  std::size_t begin = 0;
  for (const ColumnStrip& strip : layout.Strips()) {
    EXPECT_EQ(strip.begin, begin);
    double width = 0;
    for (std::size_t column = strip.begin; column < strip.end; ++column) {
      width += layout.ColumnWidth(column);
    }
    EXPECT_LE(width, layout.PageWidth() + 1);
    if (strip.end < 12) {
      EXPECT_GT(strip.end - strip.begin, 2U);
      EXPECT_GT(width + layout.ColumnWidth(strip.end), layout.PageWidth());
    }
    begin = strip.end;
  }
  EXPECT_EQ(begin, 12U);
  const std::vector<DrawnPage> pages = PagesOf(report);
  EXPECT_EQ(pages.size(), layout.Strips().size());
  for (const DrawnPage& page : pages) {
    EXPECT_NEAR(page.texts.at(0).left, kPadding, 0.01);
  }
}

TEST(DrawnPages, NeverMakeAColumnWiderThanThePage) {
  Report report = ReportOf({{.cells = {std::string(500, 'm'), "b"}}}, 2);
  report.design.fit_columns = false;
  const std::vector<DrawnPage> pages = PagesOf(report);
  ASSERT_THAT(pages, SizeIs(2));
  const RecordingPaper paper;
  EXPECT_LE(pages[0].Text(std::string(500, 'm')).right, paper.Width());
}

TEST(DrawnPages, FillThePageWithColumnsThatFit) {
  const Report report = ReportOf({{.cells = {"a", "bb"}}}, 2);
  const RecordingPaper paper;
  const ReportLayout layout(report.design, *report.rows, paper);
  EXPECT_NEAR(layout.ColumnWidth(0) + layout.ColumnWidth(1), layout.PageWidth(), 0.01);
  EXPECT_LT(layout.ColumnWidth(0), layout.ColumnWidth(1));
  EXPECT_EQ(layout.LetterPoints(), 9.75);
  // A quarter is left between the larger letters of two rows.
  const QFontMetricsF bold(layout.RowFont(ReportRowKind::kTotal), &paper);
  EXPECT_NEAR(layout.RowHeight(), 1.25 * bold.height(), 0.01);
}

TEST(DrawnPages, ShrinkLettersPaddingAndLinesAlikeWhereColumnsAreTooWide) {
  const std::vector<ReportRow> rows{{.cells = std::vector<std::string>(10, std::string(14, 'm'))}};
  const Report report = ReportOf(rows, 10);
  const RecordingPaper paper;
  const ReportLayout layout(report.design, *report.rows, paper);
  const double scale = layout.LetterPoints() / 9.75;
  ASSERT_LT(scale, 1);
  EXPECT_NEAR(layout.Padding() * kDot, kPadding * scale, 0.01);
  EXPECT_NEAR(layout.Indent() * kDot, kIndent * scale, 0.01);
  EXPECT_NEAR(layout.Hairline() * kDot, 0.3 * scale, 0.001);
  EXPECT_NEAR(layout.RowFont(ReportRowKind::kTotal).pointSizeF(), 10 * scale, 0.001);
  EXPECT_NEAR(layout.CaptionFont().pointSizeF(), 9.75 * scale, 0.001);
  EXPECT_THAT(layout.Strips(), SizeIs(1));
}

// The header takes half the page at most, until its letters are of 4 points.
TEST(DrawnPages, ShrinkTheHeaderUntilHalfOfThePageIsLeft) {
  const RecordingPaper paper;
  Report report = ReportOf({});
  int last_points = 9;
  for (std::size_t lines = 1; lines <= 100; ++lines) {
    report.design.texts.header_center = "x";
    for (std::size_t line = 1; line < lines; ++line) {
      report.design.texts.header_center += "\r\nx";
    }
    const ReportLayout layout(report.design, *report.rows, paper);
    const int points = static_cast<int>(layout.HeaderFont().pointSizeF());
    const double of_page = layout.CaptionTop() / layout.PageHeight();
    EXPECT_LE(points, last_points);
    EXPECT_TRUE(of_page <= 0.5 || points == 4) << lines;
    if (points < last_points) {
      EXPECT_EQ(points, last_points - 1) << lines;
      // In letters of the size before it takes more.
      EXPECT_GT(of_page * (points + 1) / points, 0.48) << lines;
    }
    last_points = points;
  }
  EXPECT_EQ(last_points, 4);
}

TEST(DrawnPages, GiveTheRightOfTheHeaderAThirdAndTheCenterWhatIsLeft) {
  Report report = ReportOf({});
  report.design.texts = {.header_center = std::string(400, 'c'),
                         .header_right = std::string(100, 'r')};
  const DrawnPage page = PagesOf(report).at(0);
  const RecordingPaper paper;
  double center_right = 0;
  double right_left = paper.Width();
  for (const DrawnText& text : page.texts) {
    if (text.text.starts_with("cc")) {
      center_right = std::max(center_right, text.right);
    } else if (text.text.starts_with("rr")) {
      right_left = std::min(right_left, text.left);
    }
  }
  EXPECT_GE(right_left, paper.Width() * 2 / 3 - 0.1);
  EXPECT_LT(right_left, paper.Width() * 2 / 3 + 10);
  EXPECT_LT(center_right, right_left - 5);
}

TEST(ReportJobs, RefuseADeviceThatTakesNoDocument) {
  RecordingPaper paper;
  paper.engine.takes_document = false;
  EXPECT_THROW(ReportJob{paper}, Error);
}

TEST(ReportJobs, EndWithAnErrorWhereTheDeviceTakesNoFurtherPage) {
  RecordingPaper paper;
  paper.most_pages = 2;
  ReportJob job(paper);
  EXPECT_TRUE(job.Print(ReportOf(Rows(1))));
  EXPECT_TRUE(job.Print(ReportOf(Rows(1))));
  try {
    job.Print(ReportOf(Rows(1)));
    ADD_FAILURE() << "printed";
  } catch (const Error& error) {
    EXPECT_STREQ(error.what(), "the printer accepts no further page");
  }
  EXPECT_THAT(paper.pages, SizeIs(2));
}

TEST(ReportJobs, EndWithAnErrorWhereTheDeviceDoesNotTakeTheEnd) {
  RecordingPaper paper;
  paper.engine.takes_end = false;
  ReportJob job(paper);
  job.Print(ReportOf(Rows(1)));
  EXPECT_THROW(job.End(), Error);
}

TEST(ReportJobs, ReportEachPageWithTheirNumber) {
  const std::int64_t full = RowsOfAPage();
  RecordingPaper paper;
  ReportJob job(paper);
  std::vector<std::pair<std::int64_t, std::int64_t>> done;
  EXPECT_TRUE(job.Print(ReportOf(Rows(2 * full)), [&](std::int64_t page, std::int64_t pages) {
    done.emplace_back(page, pages);
    return true;
  }));
  EXPECT_THAT(done, ElementsAre(Pair(1, 2), Pair(2, 2)));
}

}  // namespace
}  // namespace vrx::testing
