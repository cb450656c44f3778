#include "report/print_questions.h"

#include <cmath>
#include <string>

#include "base/number.h"
#include "report/report_layout.h"

namespace vrx {
namespace {

// Rounded down, so that letters below the limit are never named as large as it.
std::string LetterText(double points) { return Format(std::floor(points * 10) / 10, "0.0"); }

bool OfferSideBySide(double letter_points, std::size_t sheets, Operator& op) {
  return op.ShowMessage(
             {.icon = Icon::kWarning,
              .buttons = Buttons::kOkCancel,
              .title = "Print",
              .text = "All columns fit on one page only in letters of " +
                      LetterText(letter_points) +
                      " points, which are too small to read.\r\nThe report can be printed with its "
                      "columns on " +
                      std::to_string(sheets) + " pages side by side instead."}) == Answer::kOk;
}

bool ConfirmSheets(std::int64_t sheets, Operator& op) {
  return op.ShowMessage({.icon = Icon::kQuestion,
                         .buttons = Buttons::kYesNo,
                         .title = "Print",
                         .text = "The report takes " + std::to_string(sheets) +
                                 " sheets.\r\nDo you want to print all of them?",
                         .refuses_by_default = true}) == Answer::kYes;
}

}  // namespace

bool MayPrint(std::span<Report> reports, const QPagedPaintDevice& device, Operator& op) {
  std::int64_t sheets = 0;
  for (Report& report : reports) {
    const ReportLayout layout(report.design, *report.rows, device);
    if (layout.LetterPoints() >= kSmallestLetterPoints) {
      sheets += layout.PageCount(*report.rows);
      continue;
    }
    ReportDesign wide = report.design;
    wide.fit_columns = false;
    const ReportLayout side_by_side(wide, *report.rows, device);
    if (!OfferSideBySide(layout.LetterPoints(), side_by_side.Strips().size(), op)) {
      return false;
    }
    report.design.fit_columns = false;
    sheets += side_by_side.PageCount(*report.rows);
  }
  return sheets <= kMostSheetsUnasked || ConfirmSheets(sheets, op);
}

}  // namespace vrx
