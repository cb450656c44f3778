#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "legacy/row_stream.h"

namespace vrx::testing {

// Writes Jet 4 files with any rows, but without indexes, relations, properties or long values.
class JetWriter {
 public:
  enum class Place { kHere, kDeleted, kMoved };

  // The numbers of types in the file format.
  enum Type : std::uint8_t {
    kBoolean = 1,
    kByte = 2,
    kInteger = 3,
    kLong = 4,
    kCurrency = 5,
    kSingle = 6,
    kDouble = 7,
    kDate = 8,
    kText = 10,
    kOle = 11,
  };

  struct Column {
    std::string name;
    Type type;
    int chars = 255;  // of a text
  };

  // Later rows are added to this table.
  void AddTable(const std::string& name, std::vector<Column> columns);
  // Stores the bytes of a text unchanged: use Utf16 or Compressed. `place` specifies where and how.
  void AddRow(const std::vector<LegacyValue>& row, Place place = Place::kHere);

  // Sets the number of rows in the definition of the last table, instead of the real number.
  void Announce(std::uint32_t rows) { tables_.back().announced = static_cast<int>(rows); }

  std::string Bytes() const;
  void Write(const std::filesystem::path& path) const;

  static std::string Utf16(std::string_view ascii);
  static std::string Compressed(std::string_view bytes);

 private:
  struct Row {
    std::string bytes;
    Place place;
  };
  struct Table {
    std::string name;
    std::vector<Column> columns;
    std::vector<Row> rows;
    int announced = -1;
  };
  class Builder;

  static std::string Definition(const Table& table, std::uint32_t map);
  static std::string EncodeRow(const Table& table, const std::vector<LegacyValue>& row);

  std::vector<Table> tables_;
};

}  // namespace vrx::testing
