#include "report/report_layout.h"

#include <QFontMetricsF>
#include <QTextLayout>
#include <algorithm>
#include <cmath>
#include <numeric>

namespace vrx {
namespace {

constexpr int kHeaderPoints = 9;
constexpr int kSmallestHeaderPoints = 4;
constexpr double kRowPoints = 9.75;
constexpr double kBoldPoints = 10;
constexpr double kPointsPerInch = 72;
constexpr double kPaddingPoints = 4;
constexpr double kIndentPoints = 12;
constexpr double kHairlinePoints = 0.3;
constexpr double kRowLeading = 1.25;
constexpr double kMostOfPage = 0.5;  // of the page height, for the header
constexpr double kMostForRight = 1.0 / 3;

// A small report is measured completely, a large one by blocks distributed over its rows.
constexpr std::int64_t kRowsMeasured = 2000;
constexpr std::int64_t kBlocks = 40;
constexpr std::int64_t kBlockRows = 25;

QFont RowFontOf(bool fixed_pitch) {
  QFont font(fixed_pitch ? QStringLiteral("Courier New") : QStringLiteral("MS Sans Serif"));
  font.setStyleHint(fixed_pitch ? QFont::Monospace : QFont::SansSerif);
  return font;
}

QStringList LinesOf(const std::string& text) {
  QStringList lines = QString::fromStdString(text).split(QStringLiteral("\r\n"));
  while (!lines.empty() && lines.back().isEmpty()) {
    lines.removeLast();
  }
  return lines;
}

double Sum(const std::vector<double>& widths) {
  return std::accumulate(widths.begin(), widths.end(), 0.0);
}

}  // namespace

ReportLayout::ReportLayout(const ReportDesign& design, ReportRows& rows,
                           const QPagedPaintDevice& device)
    : design_(design),
      device_(device),
      page_width_(device.pageLayout().paintRectPixels(device.logicalDpiX()).width()),
      page_height_(device.pageLayout().paintRectPixels(device.logicalDpiY()).height()),
      row_font_(RowFontOf(design.fixed_pitch)),
      bold_font_(row_font_) {
  LayOutHeader(design.texts);
  SetFonts(1);
  MeasureColumns(rows);
  FitColumns();
  LayOutCaptions();
  CutStrips();
  const double height = FooterTop() - header_line_ / 2 - RowsTop();
  rows_per_page_ = std::max<std::int64_t>(1, static_cast<std::int64_t>(height / row_height_));
}

// The center text stays in the middle of the page, whatever the right text is.
void ReportLayout::LayOutHeader(const PageTexts& texts) {
  header_font_ = RowFontOf(false);
  for (int points = kHeaderPoints; points >= kSmallestHeaderPoints; --points) {
    header_font_.setPointSizeF(points);
    const QFontMetricsF metrics(header_font_, &device_);
    header_line_ = std::ceil(metrics.lineSpacing());
    header_right_ = Broken(texts.header_right, header_font_, page_width_ * kMostForRight,
                           QTextOption::WrapAtWordBoundaryOrAnywhere);
    double right = 0;
    for (const QString& line : header_right_) {
      right = std::max(right, metrics.horizontalAdvance(line));
    }
    const double side = right > 0 ? right + metrics.averageCharWidth() * 2 : 0;
    header_center_ = Broken(texts.header_center, header_font_, page_width_ - 2 * side,
                            QTextOption::WrapAtWordBoundaryOrAnywhere);
    const auto lines = std::max(header_center_.size(), header_right_.size());
    caption_top_ = (static_cast<double>(lines) + 1) * header_line_;
    if (caption_top_ <= page_height_ * kMostOfPage) {
      return;
    }
  }
}

void ReportLayout::SetFonts(double scale) {
  const double dot = device_.logicalDpiY() / kPointsPerInch * scale;
  padding_ = kPaddingPoints * dot;
  indent_ = kIndentPoints * dot;
  hairline_ = kHairlinePoints * dot;
  row_font_.setPointSizeF(kRowPoints * scale);
  bold_font_.setPointSizeF(kBoldPoints * scale);
  bold_font_.setBold(true);
  caption_font_ = RowFontOf(false);
  caption_font_.setPointSizeF(kRowPoints * scale);
  caption_font_.setBold(true);
  caption_line_ = QFontMetricsF(caption_font_, &device_).lineSpacing();
  row_height_ = kRowLeading * std::max(QFontMetricsF(row_font_, &device_).height(),
                                       QFontMetricsF(bold_font_, &device_).height());
}

void ReportLayout::MeasureColumns(ReportRows& rows) {
  text_widths_.assign(design_.columns.size(), 0);
  const std::int64_t count = rows.Count();
  if (count <= kRowsMeasured) {
    for (std::int64_t row = 1; row <= count; ++row) {
      MeasureRow(rows.Row(row));
    }
    return;
  }
  for (std::int64_t block = 0; block < kBlocks; ++block) {
    const std::int64_t first = 1 + block * (count - kBlockRows) / (kBlocks - 1);
    for (std::int64_t row = first; row < first + kBlockRows; ++row) {
      MeasureRow(rows.Row(row));
    }
  }
}

void ReportLayout::MeasureRow(const ReportRow& row) {
  for (std::size_t column = 0; column < row.cells.size(); ++column) {
    const QString text = QString::fromStdString(row.cells[column]);
    text_widths_[column] =
        std::max(text_widths_[column], TextWidth(text, CellFont(row, column)) + 2 * padding_);
  }
}

const QFont& ReportLayout::CellFont(const ReportRow& row, std::size_t column) const {
  const std::optional<bool> bold =
      column < row.bold.size() ? row.bold[column] : std::optional<bool>();
  return bold ? (*bold ? bold_font_ : row_font_) : RowFont(row.kind);
}

// Captions shrink first: they may wrap, one line for each word.
void ReportLayout::FitColumns() {
  std::vector<double> words = text_widths_;
  widths_ = text_widths_;
  for (std::size_t column = 0; column < widths_.size(); ++column) {
    const QString caption = QString::fromStdString(design_.columns[column].caption);
    widths_[column] = std::max(widths_[column], TextWidth(caption, caption_font_) + 2 * padding_);
    for (const QString& word : caption.split(u' ')) {
      words[column] = std::max(words[column], TextWidth(word, caption_font_) + 2 * padding_);
    }
  }
  if (design_.fit_columns && Sum(widths_) > page_width_) {
    widths_ = std::move(words);
    if (Sum(widths_) > page_width_) {
      SetFonts(page_width_ / Sum(widths_));
    }
  }
  if (design_.fit_columns && !widths_.empty()) {
    const double scale = page_width_ / Sum(widths_);
    for (double& width : widths_) {
      width *= scale;
    }
  }
  for (double& width : widths_) {
    width = std::min(width, page_width_);
  }
}

void ReportLayout::LayOutCaptions() {
  qsizetype lines = 0;
  for (std::size_t column = 0; column < widths_.size(); ++column) {
    caption_lines_.push_back(Broken(design_.columns[column].caption, caption_font_,
                                    widths_[column] - 2 * padding_ + hairline_,
                                    QTextOption::WordWrap));
    lines = std::max(lines, caption_lines_.back().size());
  }
  if (design_.captions) {
    caption_height_ = static_cast<double>(lines) * caption_line_ + 2 * padding_;
  }
}

void ReportLayout::CutStrips() {
  ColumnStrip strip{.begin = 0, .end = 0};
  double width = 0;
  // Fitted widths may exceed the page by the rounding error of their sum.
  const double available = page_width_ + hairline_;
  for (std::size_t column = 0; column < widths_.size(); ++column) {
    if (strip.end > strip.begin && width + widths_[column] > available) {
      strips_.push_back(strip);
      strip = {.begin = column, .end = column};
      width = 0;
    }
    width += widths_[column];
    strip.end = column + 1;
  }
  strips_.push_back(strip);
}

std::int64_t ReportLayout::NextStart(std::int64_t start, ReportRows& rows) const {
  const std::int64_t count = rows.Count();
  const std::int64_t full = start + rows_per_page_;
  if (full > count) {
    return count + 1;
  }
  std::int64_t next = full;
  while (next > start && rows.IsHead(next - 1)) {
    --next;
  }
  return next > start ? next : full;
}

std::int64_t ReportLayout::PageCount(ReportRows& rows) const {
  std::int64_t pages = 1;
  for (std::int64_t start = NextStart(1, rows); start <= rows.Count();
       start = NextStart(start, rows)) {
    ++pages;
  }
  return pages * static_cast<std::int64_t>(strips_.size());
}

double ReportLayout::TextWidth(const QString& text, const QFont& font) const {
  return QFontMetricsF(font, &device_).horizontalAdvance(text);
}

// With WordWrap a word that is too long is not broken.
QStringList ReportLayout::Broken(const std::string& text, const QFont& font, double width,
                                 QTextOption::WrapMode mode) const {
  QStringList broken;
  for (const QString& whole : LinesOf(text)) {
    QTextLayout layout(whole, font, &device_);
    QTextOption option;
    option.setWrapMode(mode);
    layout.setTextOption(option);
    layout.beginLayout();
    bool any = false;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
      line.setLineWidth(width);
      broken << whole.mid(line.textStart(), line.textLength()).trimmed();
      any = true;
    }
    layout.endLayout();
    if (!any) {
      broken << QString();
    }
  }
  return broken;
}

}  // namespace vrx
