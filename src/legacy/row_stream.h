#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/error.h"

// How rows travel from the program that reads a Jet file to the one that asked for them.
//
// The stream is a mark with a version, then records: a tag byte, the length of what follows in 4
// bytes, and that many bytes. Numbers are little-endian. A table ends with its count of rows and
// the sum of each column, and the stream with a mark and its count of tables: one that was cut off,
// or that another program wrote, is not taken for whole.

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

inline constexpr std::string_view kRowStreamMark = "VRXROWS\x01";

// Beyond any row of a Jet file, whose pages have 4096 bytes.
inline constexpr std::uint32_t kMaxRowStreamRecord = 1U << 20U;

class RowStreamWriter : public LegacyRowSink {
 public:
  // Bytes go to `write` in pieces.
  explicit RowStreamWriter(std::function<void(std::string_view)> write);

  void Directory(const std::vector<std::string>& tables) override;
  void BeginTable(const LegacyTable& table) override;
  void Row(const LegacyRow& row) override;
  void DamagedRow(const std::string& place) override;
  void EndTable() override;
  void DamagedTable(const std::string& name) override;

  void End();

 private:
  void Record(char tag);
  void Flush();

  std::function<void(std::string_view)> write_;
  std::string pending_;
  std::string payload_;
  std::vector<ColumnSum> sums_;
  std::uint64_t rows_ = 0;
  std::uint64_t damaged_ = 0;
  std::uint32_t tables_ = 0;
};

// Bytes that are no row stream, or one whose counts or sums are not those of its rows.
class RowStreamError : public Error {
 public:
  using Error::Error;
};

class RowStreamReader {
 public:
  explicit RowStreamReader(LegacyRowSink& sink) : sink_(sink) {}

  // The next bytes, cut anywhere. Hands on what they complete. Throws RowStreamError.
  void Take(std::string_view bytes);

  // Whether the end mark has come.
  bool Ended() const { return ended_; }

 private:
  void TakeRecord(char tag, std::string_view payload);
  void TakeTable(std::string_view payload);
  void TakeRow(std::string_view payload);
  void TakeTableEnd(std::string_view payload);
  void RequireTable(bool open) const;

  LegacyRowSink& sink_;
  std::string buffer_;
  bool marked_ = false;
  bool ended_ = false;
  bool listed_ = false;
  bool in_table_ = false;
  LegacyTable table_;
  LegacyRow row_;
  std::vector<ColumnSum> sums_;
  std::uint64_t rows_ = 0;
  std::uint64_t damaged_ = 0;
  std::uint32_t tables_ = 0;
};

}  // namespace vrx
