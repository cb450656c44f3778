#include "report/paged_report.h"

#include <iterator>
#include <stdexcept>
#include <string>

#include "report/report_page.h"

namespace vrx {

PagedReport::PagedReport(const Report& report, const QPagedPaintDevice& device)
    : report_(report), layout_(report.design, *report.rows, device) {
  std::int64_t start = 1;
  do {
    starts_.push_back(start);
    start = layout_.NextStart(start, *report_.rows);
  } while (start <= report_.rows->Count());
}

std::int64_t PagedReport::Count() const {
  return std::ssize(starts_) * std::ssize(layout_.Strips());
}

void PagedReport::Draw(std::int64_t page, QPainter& painter) {
  if (page < 1 || page > Count()) {
    throw std::out_of_range("there is no page " + std::to_string(page));
  }
  const std::int64_t strips = std::ssize(layout_.Strips());
  ReadRowsFrom(starts_.at(static_cast<std::size_t>((page - 1) / strips)));
  ReportPage(report_.design, layout_, painter)
      .Draw(rows_, layout_.Strips().at(static_cast<std::size_t>((page - 1) % strips)), page,
            Count());
}

void PagedReport::ReadRowsFrom(std::int64_t start) {
  if (start == read_from_) {
    return;
  }
  read_from_ = 0;
  rows_.clear();
  const std::int64_t next = layout_.NextStart(start, *report_.rows);
  for (std::int64_t row = start; row < next; ++row) {
    rows_.push_back(report_.rows->Row(row));
  }
  read_from_ = start;
}

}  // namespace vrx
