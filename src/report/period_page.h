#pragma once

#include <QSizeF>
#include <filesystem>
#include <string>
#include <variant>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "base/date.h"
#include "chart/charts.h"
#include "insight/accuracy.h"
#include "insight/batches.h"
#include "insight/completeness.h"
#include "insight/loads.h"
#include "insight/pens.h"
#include "insight/question.h"
#include "insight/report_period.h"
#include "insight/tables.h"
#include "report/print_target.h"

namespace vrx {

// The page of a day, a week or a month: what a manager reads of the records, as plain text, as one
// HTML file and as PDF. All of its texts are English, as in every file.

struct PageQuestion {
  ReportPeriod period = {};
  std::string database = {};  // the name of the yard
  Date made = {};             // today
  AccuracyLimits limits = {};
  double balance_percent = BalanceQuestion().percent;
  WeightLimit balance_weight = BalanceQuestion().weight;
};

// A figure of the line at the top.
struct PageFigure {
  std::string caption = {};
  std::string text = {};
};

using PageChart = std::variant<DeviationChart, WeightChart, BalanceChart>;

struct PageSection {
  std::string heading = {};
  std::string how = {};                     // how the figures are made
  std::vector<PageChart> charts = {};       // without title
  std::vector<AnswerTable> tables = {};     // those with rows, of the columns that a manager reads
  std::vector<std::string> sentences = {};  // below the tables
};

struct PeriodPage {
  std::string title = {};               // "Feeding report, week 2026-W05"
  std::vector<std::string> facts = {};  // days, database, unit and the day it was made
  std::vector<std::string> notes = {};  // what is left out of every figure
  // None of both for a period without records, of which a note says so.
  std::vector<PageFigure> figures = {};
  std::vector<PageSection> sections = {};
};

// The answers that a page is made of.
struct PageAnswers {
  Accuracy by_ingredient = {};
  Accuracy by_operator = {};
  Accuracy by_day = {};
  Loads loads = {};
  Delivered delivered = {};
  Balance balance = {};  // of all batches
  Times times = {};      // by recipe
  Statement statement = {};
};

// Both are for a period with records.
[[nodiscard]] std::vector<PageFigure> FiguresOf(const PageAnswers& answers);
[[nodiscard]] std::vector<PageSection> SectionsOf(const PageAnswers& answers, PeriodKind kind);

// Reads everything within one read transaction, so that the figures belong together. Memory grows
// with the groups and the batches of the period. Throws QuestionError, QuestionCancelled and
// DatabaseError.
[[nodiscard]] PeriodPage ReadPeriodPage(SQLite::Database& database, const PageQuestion& question,
                                        const InsightProgress& progress = {});

[[nodiscard]] Picture PictureOf(const PageChart& chart, QSizeF size, const Look& look);

// For a terminal: lines of UTF-8 with aligned columns, without the pictures.
[[nodiscard]] std::string PlainText(const PeriodPage& page);

// One HTML file without script and without references, which is also well-formed XML. Each picture
// is in it twice: for a wide and for a narrow screen. Needs a QGuiApplication.
[[nodiscard]] std::string HtmlText(const PeriodPage& page);

// Writes the HTML file; an older one is replaced when the new one is complete. Throws FileError,
// and DatabaseInTheWay if the path is a database.
void WriteHtml(const PeriodPage& page, const std::filesystem::path& path);

// Draws the page on the sheets of a PDF file or a printer: rows are never cut in half, and a table
// that goes on has its captions again. Returns the number of sheets. Throws Error.
int PrintPeriodPage(const PeriodPage& page, PrintTarget& paper);

}  // namespace vrx
