#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vrx {

// The texts around the table on every page; CR LF separates lines. The right of the footer is the
// page number's.
struct PageTexts {
  std::string header_center = {};
  std::string header_right = {};
  std::string footer_center = {};
};

// Colours are 0xRRGGBB, on white paper.
struct ReportColumn {
  std::string caption = {};
  bool right_aligned = false;
  std::optional<std::uint32_t> total_color = {};  // of a weight that stands out on total rows
};

enum class ReportRowKind { kRecord, kGroup, kTotal };

struct ReportRow {
  ReportRowKind kind = ReportRowKind::kRecord;
  int level = 1;                        // of a group row, from 1: how far it is indented
  std::string caption = {};             // of a group row
  std::vector<std::string> cells = {};  // by column; of a group row none
};

// The rows of a report, read as its pages are printed: in order, but for a sample of them that is
// measured beforehand. Rows count from 1. What the source throws ends the printing.
class ReportRows {
 public:
  virtual ~ReportRows() = default;
  virtual std::int64_t Count() const = 0;
  virtual ReportRow Row(std::int64_t row) = 0;
  // Whether the rows of an open group follow: such a row is not left alone at a page's end.
  virtual bool IsHead(std::int64_t /*row*/) { return false; }
};

struct ReportDesign {
  PageTexts texts = {};
  std::vector<ReportColumn> columns = {};
  bool captions = true;     // above the columns, on every page
  bool fit_columns = true;  // all columns on one page; else those that find no room go on another
  bool grid_lines = true;
  bool fixed_pitch = false;
  std::uint32_t caption_color = 0;
  std::uint32_t group_color = 0;
};

struct Report {
  ReportDesign design;
  std::unique_ptr<ReportRows> rows;
};

// Rows that are held.
class ListedRows : public ReportRows {
 public:
  explicit ListedRows(std::vector<ReportRow> rows) : rows_(std::move(rows)) {}
  std::int64_t Count() const override { return static_cast<std::int64_t>(rows_.size()); }
  ReportRow Row(std::int64_t row) override { return rows_.at(static_cast<std::size_t>(row) - 1); }

 private:
  std::vector<ReportRow> rows_;
};

}  // namespace vrx
