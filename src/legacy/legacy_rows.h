#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace vrx {

// What a field of a Jet file holds, as the file keeps it.
enum class LegacyType : std::uint8_t {
  kBoolean = 1,
  kWhole = 2,   // of 8, 16 or 32 bits
  kSingle = 3,  // 32-bit
  kDouble = 4,  // 64-bit, and currency
  kDate = 5,
  kText = 6,
  kUnread = 7,  // memo, picture, binary, ...: its values come as NULL
};

// Days since 1899-12-30 and the part of the day that has passed, which counts forward from midnight
// ahead of that day too: -1.25 is 06:00 on 1899-12-29.
struct JetDate {
  double days = 0;
};

// std::monostate is NULL. Texts are UTF-8; what could not be read of one is U+FFFD.
using LegacyValue =
    std::variant<std::monostate, bool, std::int32_t, float, double, JetDate, std::string>;
using LegacyRow = std::vector<LegacyValue>;

inline bool IsNull(const LegacyValue& value) {
  return std::holds_alternative<std::monostate>(value);
}

struct LegacyColumn {
  std::string name;
  LegacyType type = LegacyType::kUnread;
};

struct LegacyTable {
  std::string name;
  std::uint32_t announced_rows = 0;  // what its definition says
  std::vector<LegacyColumn> columns;
};

// What a column's values come to, NULLs apart: the sum of their bits, modulo 2^64. It knows nothing
// of rounding, so both ends of a stream agree or something was lost.
struct ColumnSum {
  std::uint64_t values = 0;
  std::uint64_t bits = 0;
  bool operator==(const ColumnSum&) const = default;
};

void AddToSum(ColumnSum& sum, const LegacyValue& value);

// Receives the tables of a Jet file one after the other. Whatever it throws ends the reading.
class LegacyRowSink {
 public:
  virtual ~LegacyRowSink() = default;

  // First of all: every user table's name, in the order of the catalog.
  virtual void Directory(const std::vector<std::string>& tables) = 0;
  virtual void BeginTable(const LegacyTable& table) = 0;
  // One value for each column of the table.
  virtual void Row(const LegacyRow& row) = 0;
  // A row that is there and cannot be read; `place` says where.
  virtual void DamagedRow(const std::string& place) = 0;
  virtual void EndTable() = 0;
  // A table that is in the directory and cannot be read at all.
  virtual void DamagedTable(const std::string& name) = 0;
};

}  // namespace vrx
