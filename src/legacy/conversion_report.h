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

// Rows of the old file by their place in the table, from 1; or IDs.
struct RowRange {
  std::uint64_t first = 0;
  std::uint64_t last = 0;
};

// What was found in the old file, and what was done about it. Without ranges it is about the table
// as a whole.
struct ConversionNotice {
  std::string table;  // empty: about the file
  std::string text;
  std::vector<RowRange> rows = {};
  bool are_ids = false;
};

// Every row read is stored or refused; a repaired one is stored.
struct ConvertedTable {
  std::string name;
  std::uint64_t read = 0;
  std::uint64_t stored = 0;
  std::uint64_t repaired = 0;
  std::uint64_t refused = 0;
};

// Of a column, over the rows read and over the rows that stand in the new file.
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
  std::uint64_t further_notices = 0;      // left out of the list, which holds thousands

  std::uint64_t Read() const { return Total(&ConvertedTable::read); }
  std::uint64_t Stored() const { return Total(&ConvertedTable::stored); }
  std::uint64_t Repaired() const { return Total(&ConvertedTable::repaired); }
  std::uint64_t Refused() const { return Total(&ConvertedTable::refused); }

 private:
  std::uint64_t Total(std::uint64_t ConvertedTable::*count) const;
};

// Collects notices; equal ones of several rows become one.
class NoticeList {
 public:
  void Add(const std::string& table, const std::string& text);
  void AddRow(const std::string& table, const std::string& text, std::uint64_t row);
  void AddId(const std::string& table, const std::string& text, std::uint64_t id);

  // Takes the list away.
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
std::string RowsText(const ConversionNotice& notice);

// For the operator to read and keep: UTF-8, lines by LF, at most 100 characters where the texts
// allow it.
std::string ReportText(const ConversionReport& report);

}  // namespace vrx
