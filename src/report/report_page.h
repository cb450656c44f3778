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

// Draws the pages of a report according to its layout.
class ReportPage {
 public:
  // All arguments outlive the object.
  ReportPage(const ReportDesign& design, const ReportLayout& layout, QPainter& painter)
      : design_(design), layout_(layout), painter_(painter) {}

  // Draws the strip's columns of the rows, with header, captions and footer.
  void Draw(const std::vector<ReportRow>& rows, const ColumnStrip& strip, std::int64_t page,
            std::int64_t pages);

 private:
  void DrawHeader();
  void DrawFooter(std::int64_t page, std::int64_t pages);
  void DrawCaptions(const ColumnStrip& strip);
  void DrawRow(const ReportRow& row, const ColumnStrip& strip, double top);
  void DrawGrid(const std::vector<ReportRow>& rows, const ColumnStrip& strip);
  void DrawText(const QRectF& box, Qt::Alignment side, const QString& text, const QFont& font,
                std::uint32_t color);
  [[nodiscard]] double StripWidth(const ColumnStrip& strip) const;

  const ReportDesign& design_;
  const ReportLayout& layout_;
  QPainter& painter_;
};

// The origin of a report's data and the settings of its print-out.
struct ReportFacts {
  std::string recipe_file = {};  // paths, empty for a database that is not open
  std::string transaction_file = {};
  std::string weight_unit = {};   // of the recipe database
  std::string caption_unit = {};  // the weight unit in use, in the captions of recipes and pens
  Date today = {};
  bool grid_lines = true;
};

// The `SetPageHeaders` routines: the texts around the table of each report.
[[nodiscard]] PageTexts SetPageHeadersIngredients(bool active_only, const ReportFacts& facts);
[[nodiscard]] PageTexts SetPageHeadersRecipe(const CurrentRecipe& recipe, const ReportFacts& facts);
[[nodiscard]] PageTexts SetPageHeadersPens(bool active_only, const ReportFacts& facts);
// The period is named unless it is empty: all days.
[[nodiscard]] PageTexts SetPageHeadersTransactions(std::string_view data_group,
                                                   const ReportFacts& facts,
                                                   const std::string& period = {});
// `unit` is that of the imported file.
[[nodiscard]] PageTexts SetPageHeadersImport(std::string_view file, std::string_view unit,
                                             const ReportFacts& facts);

}  // namespace vrx
