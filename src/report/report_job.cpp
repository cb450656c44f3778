#include "report/report_job.h"

#include <utility>
#include <vector>

#include "base/error.h"
#include "report/report_layout.h"
#include "report/report_page.h"

namespace vrx {

ReportJob::ReportJob(QPagedPaintDevice& device) : device_(device) {
  if (!painter_.begin(&device_)) {
    throw Error("the printer takes no document");
  }
}

bool ReportJob::Print(const Report& report, const PageDone& done) {
  ReportRows& rows = *report.rows;
  const ReportLayout layout(report.design, rows, device_);
  ReportPage drawn(report.design, layout, painter_);
  const std::int64_t pages = layout.PageCount(rows);
  std::int64_t page = 0;
  std::int64_t start = 1;
  do {
    const std::int64_t next = layout.NextStart(start, rows);
    std::vector<ReportRow> on_page;
    for (std::int64_t row = start; row < next; ++row) {
      on_page.push_back(rows.Row(row));
    }
    for (const ColumnStrip& strip : layout.Strips()) {
      if (!std::exchange(fresh_, false) && !device_.newPage()) {
        throw Error("the printer takes no further page");
      }
      drawn.Draw(on_page, strip, ++page, pages);
      if (done && !done(page, pages)) {
        return false;
      }
    }
    start = next;
  } while (start <= rows.Count());
  return true;
}

void ReportJob::End() {
  if (!painter_.end()) {
    throw Error("the printer does not take the document's end");
  }
}

}  // namespace vrx
