#include "report/print_questions.h"

#include <cmath>
#include <string>

#include "base/number.h"
#include "base/translation.h"
#include "report/report_layout.h"

namespace vrx {
namespace {

// Rounded down, so that letters below the limit are never named as large as it.
std::string LetterText(double points) { return Format(std::floor(points * 10) / 10, "0.0"); }

bool OfferSideBySide(double letter_points, std::size_t sheets, Operator& op) {
  return op.ShowMessage(
             {.icon = Icon::kWarning,
              .buttons = Buttons::kOkCancel,
              .title = Tr("Print"),
              .text = Tr("All columns fit on one page only in letters of %1 points, which are too "
                         "small to read.",
                         {LetterText(letter_points)}) +
                      "\r\n" +
                      Tr("The report can be printed with its columns on %1 pages side by side "
                         "instead.",
                         {std::to_string(sheets)})}) == Answer::kOk;
}

bool ConfirmSheets(std::int64_t sheets, Operator& op) {
  return op.ShowMessage({.icon = Icon::kQuestion,
                         .buttons = Buttons::kYesNo,
                         .title = Tr("Print"),
                         .text = Tr("The report takes %1 sheets.", {std::to_string(sheets)}) +
                                 "\r\n" + Tr("Do you want to print all of them?"),
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
