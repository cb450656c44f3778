#include "report/report_page.h"

#include <QColor>
#include <QFontMetricsF>
#include <QPen>
#include <array>
#include <initializer_list>
#include <span>
#include <vector>

#include "base/number.h"
#include "feed/recipe_columns.h"

namespace vrx {

namespace {

constexpr std::uint32_t kBlack = 0;

QString ToText(const std::string& text) { return QString::fromStdString(text); }

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += (text.empty() ? "" : "\r\n") + line;
  }
  return text;
}

std::string RecipeFile(const ReportFacts& facts) { return "Recipe File: " + facts.recipe_file; }

std::string WeightUnits(std::string_view unit) { return "Weight Units: " + std::string(unit); }

PageTexts Texts(const std::vector<std::string>& center, std::string right,
                const ReportFacts& facts) {
  return {.header_center = Joined(center),
          .header_right = std::move(right),
          .footer_center = DefaultText(facts.today)};
}

std::string_view ActiveOrAll(bool active_only) { return active_only ? "(active)" : "(all)"; }

// The columns whose totals are named, in this order.
std::span<const RecipeColumn> SpecifiedTotals(LineEntry entry) {
  static constexpr std::array kByWeight = {kColumnTarget,           kColumnRationPercent,
                                           kColumnDryMatterPercent, kColumnDryMatter,
                                           kColumnBatchTarget,      kColumnHandAdd};
  static constexpr std::array kByPercent = {kColumnIngredientPercent, kColumnDryMatterPercent,
                                            kColumnDryMatter, kColumnBatchTarget, kColumnHandAdd};
  switch (entry) {
    case LineEntry::kWeight:
      return kByWeight;
    case LineEntry::kPercent:
      return kByPercent;
    case LineEntry::kNone:
      break;
  }
  return {};
}

std::string WithoutTrailingBlanks(std::string_view text) {
  const std::size_t last = text.find_last_not_of(' ');
  return std::string(last == std::string_view::npos ? "" : text.substr(0, last + 1));
}

}  // namespace

void ReportPage::Draw(const std::vector<ReportRow>& rows, const ColumnStrip& strip,
                      std::int64_t page, std::int64_t pages) {
  DrawHeader();
  if (design_.captions) {
    DrawCaptions(strip);
  }
  double top = layout_.RowsTop();
  for (const ReportRow& row : rows) {
    DrawRow(row, strip, top);
    top += layout_.RowHeight();
  }
  if (design_.grid_lines) {
    DrawGrid(rows, strip);
  }
  DrawFooter(page, pages);
}

void ReportPage::DrawHeader() {
  const double width = layout_.PageWidth();
  const double line = layout_.HeaderLine();
  double top = 0;
  for (const QString& text : layout_.HeaderCenter()) {
    DrawText({0, top, width, line}, Qt::AlignHCenter, text, layout_.HeaderFont(), kBlack);
    top += line;
  }
  top = 0;
  for (const QString& text : layout_.HeaderRight()) {
    DrawText({0, top, width, line}, Qt::AlignRight, text, layout_.HeaderFont(), kBlack);
    top += line;
  }
}

void ReportPage::DrawFooter(std::int64_t page, std::int64_t pages) {
  const QRectF box(0, layout_.FooterTop(), layout_.PageWidth(), layout_.HeaderLine());
  DrawText(box, Qt::AlignHCenter, ToText(design_.texts.footer_center), layout_.HeaderFont(),
           kBlack);
  DrawText(box, Qt::AlignRight, QStringLiteral("Page %1 of %2").arg(page).arg(pages),
           layout_.HeaderFont(), kBlack);
}

void ReportPage::DrawCaptions(const ColumnStrip& strip) {
  double left = 0;
  const double line = layout_.CaptionLine();
  const double bottom = layout_.RowsTop() - layout_.Padding();
  for (std::size_t column = strip.begin; column < strip.end; ++column) {
    const QStringList& lines = layout_.CaptionLines(column);
    const Qt::Alignment side =
        design_.columns[column].right_aligned ? Qt::AlignRight : Qt::AlignLeft;
    double top = bottom - static_cast<double>(lines.size()) * line;
    for (const QString& text : lines) {
      DrawText({left + layout_.Padding(), top, layout_.ColumnWidth(column) - 2 * layout_.Padding(),
                line},
               side, text, layout_.CaptionFont(), design_.caption_color);
      top += line;
    }
    left += layout_.ColumnWidth(column);
  }
  painter_.setPen(QPen(Qt::black, 2 * layout_.Hairline()));
  painter_.drawLine(QPointF(0, layout_.RowsTop()), QPointF(left, layout_.RowsTop()));
}

void ReportPage::DrawRow(const ReportRow& row, const ColumnStrip& strip, double top) {
  const double padding = layout_.Padding();
  if (row.kind == ReportRowKind::kGroup) {
    const double left = padding + (row.level - 1) * layout_.Indent();
    DrawText({left, top, StripWidth(strip) - left - padding, layout_.RowHeight()}, Qt::AlignLeft,
             ToText(row.caption), layout_.RowFont(row.kind), design_.group_color);
    return;
  }
  double left = 0;
  for (std::size_t column = strip.begin; column < strip.end; ++column) {
    const ReportColumn& design = design_.columns[column];
    const bool highlighted = row.kind == ReportRowKind::kTotal && design.total_color;
    DrawText({left + padding, top, layout_.ColumnWidth(column) - 2 * padding, layout_.RowHeight()},
             design.right_aligned ? Qt::AlignRight : Qt::AlignLeft, ToText(row.cells.at(column)),
             layout_.CellFont(row, column), highlighted ? *design.total_color : kBlack);
    left += layout_.ColumnWidth(column);
  }
}

// Every row has a line below it. The lines between columns skip group rows.
void ReportPage::DrawGrid(const std::vector<ReportRow>& rows, const ColumnStrip& strip) {
  painter_.setPen(QPen(Qt::black, layout_.Hairline()));
  const double width = StripWidth(strip);
  double top = layout_.RowsTop();
  const auto down = [&](double x, double from, double to) {
    painter_.drawLine(QPointF(x, from), QPointF(x, to));
  };
  const auto cells = [&](double from, double to) {
    double x = 0;
    for (std::size_t column = strip.begin; column + 1 < strip.end; ++column) {
      x += layout_.ColumnWidth(column);
      down(x, from, to);
    }
  };
  const double table_top = design_.captions ? layout_.CaptionTop() : top;
  painter_.drawLine(QPointF(0, table_top), QPointF(width, table_top));
  cells(table_top, top);
  for (const ReportRow& row : rows) {
    const double bottom = top + layout_.RowHeight();
    if (row.kind != ReportRowKind::kGroup) {
      cells(top, bottom);
    }
    painter_.drawLine(QPointF(0, bottom), QPointF(width, bottom));
    top = bottom;
  }
  down(0, table_top, top);
  down(width, table_top, top);
}

// Draws a text that is too wide narrower, so that nothing is cut off.
void ReportPage::DrawText(const QRectF& box, Qt::Alignment side, const QString& text,
                          const QFont& font, std::uint32_t color) {
  if (text.isEmpty()) {
    return;
  }
  const double width = QFontMetricsF(font, painter_.device()).horizontalAdvance(text);
  const int flags =
      static_cast<int>(side | Qt::AlignVCenter) | Qt::TextSingleLine | Qt::TextDontClip;
  painter_.setFont(font);
  painter_.setPen(QColor(QRgb{color}));
  if (width <= box.width()) {
    painter_.drawText(box, flags, text);
    return;
  }
  const double scale = box.width() / width;
  painter_.save();
  painter_.translate(box.left(), 0);
  painter_.scale(scale, 1);
  painter_.drawText(QRectF(0, box.top(), width, box.height()), flags, text);
  painter_.restore();
}

double ReportPage::StripWidth(const ColumnStrip& strip) const {
  double width = 0;
  for (std::size_t column = strip.begin; column < strip.end; ++column) {
    width += layout_.ColumnWidth(column);
  }
  return width;
}

PageTexts SetPageHeadersIngredients(bool active_only, const ReportFacts& facts) {
  return Texts({"Report: Ingredients " + std::string(ActiveOrAll(active_only)), RecipeFile(facts)},
               {}, facts);
}

PageTexts SetPageHeadersRecipe(const CurrentRecipe& recipe, const ReportFacts& facts) {
  const RecipeRecord& record = recipe.ration.recipe;
  std::vector<std::string> center{"Report: Recipe (" + WithoutTrailingBlanks(record.name) + ")",
                                  "Description: " + record.description, RecipeFile(facts), "",
                                  "Totals:"};
  for (const RecipeColumn column : SpecifiedTotals(recipe.Entry())) {
    center.push_back(ColumnCaption(column, facts.caption_unit) + " = " +
                     recipe.totals.*RecipeColumns()[column].total);
  }
  const BatchType* const type = FindBatchType(record.batch_type);
  const std::string batch_by(type == nullptr ? "" : type->list_text);
  return Texts(center, WeightUnits(facts.weight_unit) + "\r\nBatch By: " + batch_by + "\r\n",
               facts);
}

PageTexts SetPageHeadersPens(bool active_only, const ReportFacts& facts) {
  return Texts({"Report: Pens " + std::string(ActiveOrAll(active_only)), RecipeFile(facts)},
               WeightUnits(facts.weight_unit), facts);
}

PageTexts SetPageHeadersTransactions(std::string_view data_group, const ReportFacts& facts,
                                     const std::string& period) {
  std::vector<std::string> center{"Report: " + std::string(data_group),
                                  "Transaction File: " + facts.transaction_file, RecipeFile(facts)};
  if (!period.empty()) {
    center.push_back("Period: " + period);
  }
  return Texts(center, WeightUnits(facts.weight_unit), facts);
}

PageTexts SetPageHeadersImport(std::string_view file, std::string_view unit,
                               const ReportFacts& facts) {
  return Texts({"Report: Imported Transactions", "File: " + std::string(file)}, WeightUnits(unit),
               facts);
}

}  // namespace vrx
