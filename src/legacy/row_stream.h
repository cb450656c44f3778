#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/error.h"

// The format in which vrx2260jet passes the rows of a Jet file to the converting program.
//
// The stream is a mark with a version, followed by records: a tag byte, the length of the payload
// in 4 bytes, and the payload. Numbers are little-endian. A table ends with its number of rows and
// the sum of each column; the stream ends with a mark and its number of tables. So the reader
// detects a truncated stream and the output of another program.

namespace vrx {

// The stored type of a field of a Jet file.
enum class LegacyType : std::uint8_t {
  kBoolean = 1,
  kWhole = 2,   // of 8, 16 or 32 bits
  kSingle = 3,  // 32-bit
  kDouble = 4,  // 64-bit, and currency
  kDate = 5,
  kText = 6,
  kUnread = 7,  // memo, picture, binary, ...: passed as NULL
};

// Days since 1899-12-30 plus the fraction of the day. The fraction counts forward from midnight
// even for negative days: -1.25 is 06:00 on 1899-12-29.
struct JetDate {
  double days = 0;
};

// std::monostate is NULL. Texts are UTF-8, with U+FFFD for unreadable characters.
using LegacyValue =
    std::variant<std::monostate, bool, std::int32_t, float, double, JetDate, std::string>;
using LegacyRow = std::vector<LegacyValue>;

[[nodiscard]] inline bool IsNull(const LegacyValue& value) {
  return std::holds_alternative<std::monostate>(value);
}

struct LegacyColumn {
  std::string name;
  LegacyType type = LegacyType::kUnread;
};

struct LegacyTable {
  std::string name;
  std::uint32_t announced_rows = 0;  // according to its definition
  std::vector<LegacyColumn> columns;
};

// Checksum of a column without its NULLs: the sum of the values' bits modulo 2^64. It involves no
// rounding, so both ends of a stream compute the same sum unless data were lost.
struct ColumnSum {
  std::uint64_t values = 0;
  std::uint64_t bits = 0;
  bool operator==(const ColumnSum&) const = default;
};

void AddToSum(ColumnSum& sum, const LegacyValue& value);

// Receives the tables of a Jet file in order. An exception ends the reading.
class LegacyRowSink {
 public:
  virtual ~LegacyRowSink() = default;

  // Called first, with the names of all user tables in the order of the catalog.
  virtual void Directory(const std::vector<std::string>& tables) = 0;
  virtual void BeginTable(const LegacyTable& table) = 0;
  // One value for each column of the table.
  virtual void Row(const LegacyRow& row) = 0;
  // A row that cannot be read; `place` describes its position.
  virtual void DamagedRow(const std::string& place) = 0;
  virtual void EndTable() = 0;
  // A table of the directory that cannot be read.
  virtual void DamagedTable(const std::string& name) = 0;
};

inline constexpr std::string_view kRowStreamMark = "VRXROWS\x01";

// In bytes; larger than any row of a Jet file, whose pages have 4096 bytes.
inline constexpr std::uint32_t kMaxRowStreamRecord = 1U << 20U;

class RowStreamWriter : public LegacyRowSink {
 public:
  // Passes the bytes to `write` in chunks.
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

// The bytes are not a row stream, or its counts or sums do not match its rows.
class RowStreamError : public Error {
 public:
  using Error::Error;
};

class RowStreamReader {
 public:
  explicit RowStreamReader(LegacyRowSink& sink) : sink_(sink) {}

  // Accepts the next chunk, split anywhere, and passes completed records to the sink. Throws
  // RowStreamError.
  void Take(std::string_view bytes);

  // Whether the end mark has arrived.
  [[nodiscard]] bool Ended() const { return ended_; }

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
