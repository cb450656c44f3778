#pragma once

#include <QPainter>
#include <cstdint>
#include <vector>

#include "report/report_layout.h"

namespace vrx {

// Draws the pages of a report as its layout has them.
class ReportPage {
 public:
  // All of it outlives the page.
  ReportPage(const ReportDesign& design, const ReportLayout& layout, QPainter& painter)
      : design_(design), layout_(layout), painter_(painter) {}

  // The strip's columns of those rows, with what stands around them.
  void Draw(const std::vector<ReportRow>& rows, const ColumnStrip& strip, std::int64_t page,
            std::int64_t pages);

 private:
  void DrawHeader();
  void DrawFooter(std::int64_t page, std::int64_t pages);
  void DrawCaptions(const ColumnStrip& strip);
  void DrawRow(const ReportRow& row, const ColumnStrip& strip, double top);
  void DrawGrid(const std::vector<ReportRow>& rows, const ColumnStrip& strip);
  void DrawText(const QRectF& room, Qt::Alignment side, const QString& text, const QFont& font,
                std::uint32_t color);
  double StripWidth(const ColumnStrip& strip) const;

  const ReportDesign& design_;
  const ReportLayout& layout_;
  QPainter& painter_;
};

}  // namespace vrx
