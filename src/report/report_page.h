#pragma once

#include <QPainter>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "feed/current_recipe.h"
#include "platform/calendar.h"
#include "report/report.h"
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

// What a report says of where its data come from and how it is printed.
struct ReportFacts {
  std::string recipe_file = {};  // paths, empty for a database that is not open
  std::string transaction_file = {};
  std::string weight_unit = {};   // of the recipe database
  std::string caption_unit = {};  // the weight unit in use, in the captions of recipes and pens
  Date today = {};
  bool grid_lines = true;
};

// The `SetPageHeaders` routines.
PageTexts SetPageHeadersIngredients(bool active_only, const ReportFacts& facts);
PageTexts SetPageHeadersRecipe(const CurrentRecipe& recipe, const ReportFacts& facts);
PageTexts SetPageHeadersPens(bool active_only, const ReportFacts& facts);
PageTexts SetPageHeadersTransactions(std::string_view data_group, const ReportFacts& facts);
// The unit is that of the imported file.
PageTexts SetPageHeadersImport(std::string_view file, std::string_view unit,
                               const ReportFacts& facts);

}  // namespace vrx
