#pragma once

#include <QPagedPaintDevice>
#include <QPainter>
#include <cstdint>
#include <vector>

#include "report/report.h"
#include "report/report_layout.h"

namespace vrx {

// The pages of a report on a device, numbered from 1, which can be drawn in any order. Holds one
// page of rows and the first row of each page.
class PagedReport {
 public:
  // Both outlive the object. Throws what the rows throw.
  PagedReport(const Report& report, const QPagedPaintDevice& device);

  [[nodiscard]] std::int64_t Count() const;
  [[nodiscard]] double LetterPoints() const { return layout_.LetterPoints(); }

  // Draws a page. The painter's unit is the device's pixel, its origin the corner between the
  // margins, and its fonts have the device's resolution. Throws std::out_of_range for a missing
  // page, and what the rows throw.
  void Draw(std::int64_t page, QPainter& painter);

 private:
  void ReadRowsFrom(std::int64_t start);

  const Report& report_;
  ReportLayout layout_;
  std::vector<std::int64_t> starts_;
  std::int64_t read_from_ = 0;
  std::vector<ReportRow> rows_;
};

}  // namespace vrx
