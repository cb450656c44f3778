#pragma once

#include <QFont>
#include <QPagedPaintDevice>
#include <QString>
#include <QStringList>
#include <QTextOption>
#include <cstdint>
#include <vector>

#include "report/report.h"

namespace vrx {

// The columns of one page: from `begin` to before `end`.
struct ColumnStrip {
  std::size_t begin;
  std::size_t end;
};

// The layout of a report on the pages of a device, the same for every page. Lengths are pixels of
// the device. Of a report with many rows only a sample is measured, so a text may turn out wider
// than its column and must then be drawn narrower.
class ReportLayout {
 public:
  // The design and the device outlive the object.
  ReportLayout(const ReportDesign& design, ReportRows& rows, const QPagedPaintDevice& device);

  [[nodiscard]] double PageWidth() const { return page_width_; }
  [[nodiscard]] double PageHeight() const { return page_height_; }

  // The lines of the header, wrapped to their width.
  [[nodiscard]] const QStringList& HeaderCenter() const { return header_center_; }
  [[nodiscard]] const QStringList& HeaderRight() const { return header_right_; }
  [[nodiscard]] double HeaderLine() const { return header_line_; }
  [[nodiscard]] double FooterTop() const { return page_height_ - header_line_; }

  [[nodiscard]] double CaptionTop() const { return caption_top_; }
  [[nodiscard]] double CaptionLine() const { return caption_line_; }
  [[nodiscard]] double CaptionHeight() const { return caption_height_; }
  // The caption of a column, top line first.
  [[nodiscard]] const QStringList& CaptionLines(std::size_t column) const {
    return caption_lines_[column];
  }

  [[nodiscard]] double RowsTop() const { return caption_top_ + caption_height_; }
  [[nodiscard]] double RowHeight() const { return row_height_; }
  [[nodiscard]] double ColumnWidth(std::size_t column) const { return widths_[column]; }
  [[nodiscard]] double Padding() const { return padding_; }
  [[nodiscard]] double Indent() const { return indent_; }
  [[nodiscard]] double Hairline() const { return hairline_; }

  [[nodiscard]] const QFont& HeaderFont() const { return header_font_; }
  [[nodiscard]] const QFont& CaptionFont() const { return caption_font_; }
  [[nodiscard]] const QFont& RowFont(ReportRowKind kind) const {
    return kind == ReportRowKind::kRecord ? row_font_ : bold_font_;
  }
  [[nodiscard]] const QFont& CellFont(const ReportRow& row, std::size_t column) const;

  // The font size of a record.
  [[nodiscard]] double LetterPoints() const { return row_font_.pointSizeF(); }

  // More than one if the report is too wide for one page: sheets to lay side by side.
  [[nodiscard]] const std::vector<ColumnStrip>& Strips() const { return strips_; }

  // The first row of the page after the one that begins with `start`; Count() + 1 at the end.
  [[nodiscard]] std::int64_t NextStart(std::int64_t start, ReportRows& rows) const;
  // Reads only the rows at page ends.
  [[nodiscard]] std::int64_t PageCount(ReportRows& rows) const;

 private:
  void LayOutHeader(const PageTexts& texts);
  void SetFonts(double scale);
  void MeasureColumns(ReportRows& rows);
  void MeasureRow(const ReportRow& row);
  void FitColumns();
  void LayOutCaptions();
  void CutStrips();
  [[nodiscard]] double TextWidth(const QString& text, const QFont& font) const;
  [[nodiscard]] QStringList Broken(const std::string& text, const QFont& font, double width,
                                   QTextOption::WrapMode mode) const;

  const ReportDesign& design_;
  const QPagedPaintDevice& device_;
  double page_width_;
  double page_height_;
  double padding_ = 0;
  double indent_ = 0;
  double hairline_ = 0;
  double header_line_ = 0;
  double caption_top_ = 0;
  double caption_line_ = 0;
  double caption_height_ = 0;
  double row_height_ = 0;
  std::int64_t rows_per_page_ = 1;
  QFont header_font_;
  QFont caption_font_;
  QFont row_font_;
  QFont bold_font_;
  QStringList header_center_;
  QStringList header_right_;
  std::vector<double> text_widths_;
  std::vector<double> widths_;
  std::vector<QStringList> caption_lines_;
  std::vector<ColumnStrip> strips_;
};

}  // namespace vrx
