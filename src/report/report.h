#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vrx {

// The texts around the table on every page; CR LF separates lines. The right of the footer holds
// the page number.
struct PageTexts {
  std::string header_center = {};
  std::string header_right = {};
  std::string footer_center = {};
};

// Colors are 0xRRGGBB, on white paper.
struct ReportColumn {
  std::string caption = {};
  bool right_aligned = false;
  std::optional<std::uint32_t> total_color = {};  // of a weight highlighted on total rows
};

enum class ReportRowKind { kRecord, kGroup, kTotal };

struct ReportRow {
  ReportRowKind kind = ReportRowKind::kRecord;
  int level = 1;                        // indentation of a group row, from 1
  std::string caption = {};             // of a group row
  std::vector<std::string> cells = {};  // by column; empty for a group row
  // By column: whether its letters are bold; without a value as in all rows of the kind. May be
  // shorter.
  std::vector<std::optional<bool>> bold = {};
};

// The rows of a report, numbered from 1. They are read in order while its pages are printed, except
// for a sample that is measured first. An exception ends the printing.
class ReportRows {
 public:
  virtual ~ReportRows() = default;
  [[nodiscard]] virtual std::int64_t Count() const = 0;
  virtual ReportRow Row(std::int64_t row) = 0;
  // Whether the rows of an open group follow. Such a row is not the last one of a page.
  virtual bool IsHead(std::int64_t /*row*/) { return false; }
};

struct ReportDesign {
  PageTexts texts = {};
  std::vector<ReportColumn> columns = {};
  bool captions = true;     // above the columns, on every page
  bool fit_columns = true;  // all columns on one page; otherwise the rest goes on further pages
  bool grid_lines = true;
  bool fixed_pitch = false;
  std::uint32_t caption_color = 0;
  std::uint32_t group_color = 0;
};

struct Report {
  ReportDesign design;
  std::unique_ptr<ReportRows> rows;
};

// Rows held in memory.
class ListedRows : public ReportRows {
 public:
  explicit ListedRows(std::vector<ReportRow> rows) : rows_(std::move(rows)) {}
  [[nodiscard]] std::int64_t Count() const override {
    return static_cast<std::int64_t>(rows_.size());
  }
  ReportRow Row(std::int64_t row) override { return rows_.at(static_cast<std::size_t>(row) - 1); }

 private:
  std::vector<ReportRow> rows_;
};

}  // namespace vrx
