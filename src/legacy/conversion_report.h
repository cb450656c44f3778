#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "database/schema.h"

namespace vrx {

// Rows of the old file, numbered from 1 within their table; or IDs.
struct RowRange {
  std::uint64_t first = 0;
  std::uint64_t last = 0;
};

// A finding in the old file and how it was handled. Without ranges it concerns the whole table.
struct ConversionNotice {
  std::string table;  // empty if it concerns the file
  std::string text;
  std::vector<RowRange> rows = {};
  bool are_ids = false;
};

// Counts of rows. Every row read is stored or refused; a repaired row is also stored.
struct ConvertedTable {
  std::string name;
  std::uint64_t read = 0;
  std::uint64_t stored = 0;
  std::uint64_t repaired = 0;
  std::uint64_t refused = 0;
};

// The sum of a column, over the rows read and over the rows of the new file.
struct ConvertedSum {
  std::string table;
  std::string column;
  double old_file = 0;
  double new_file = 0;
};

struct ConversionReport {
  std::filesystem::path old_file;
  std::uintmax_t old_size = 0;
  std::string sha256;  // of the old file
  std::filesystem::path new_file;
  DatabaseKind kind = DatabaseKind::kRecipe;
  std::string unit;
  std::vector<ConvertedTable> tables;
  std::vector<ConvertedSum> sums;
  std::vector<ConversionNotice> notices;  // in the order of their first rows
  std::uint64_t further_notices = 0;      // omitted, because the list is limited to thousands

  [[nodiscard]] std::uint64_t Read() const { return Total(&ConvertedTable::read); }
  [[nodiscard]] std::uint64_t Stored() const { return Total(&ConvertedTable::stored); }
  [[nodiscard]] std::uint64_t Repaired() const { return Total(&ConvertedTable::repaired); }
  [[nodiscard]] std::uint64_t Refused() const { return Total(&ConvertedTable::refused); }

 private:
  [[nodiscard]] std::uint64_t Total(std::uint64_t ConvertedTable::*count) const;
};

// Collects notices and combines equal ones of several rows.
class NoticeList {
 public:
  void Add(const std::string& table, const std::string& text);
  void AddRow(const std::string& table, const std::string& text, std::uint64_t row);
  void AddId(const std::string& table, const std::string& text, std::uint64_t id);

  // Moves the list into the report and leaves it empty.
  void MoveInto(ConversionReport& report);

 private:
  ConversionNotice* Find(const std::string& table, const std::string& text);
  void Extend(ConversionNotice* notice, std::uint64_t row);

  std::vector<ConversionNotice> notices_;
  std::map<std::pair<std::string, std::string>, std::size_t> places_;
  std::size_t ranges_ = 0;
  std::uint64_t further_ = 0;
};

// "rows 9, 11-14", "row 3", "IDs 5-7"; empty without ranges.
[[nodiscard]] std::string RowsText(const ConversionNotice& notice);

// The report as a text for the operator: UTF-8, LF, lines of at most 100 characters if possible.
[[nodiscard]] std::string ReportText(const ConversionReport& report);

}  // namespace vrx
