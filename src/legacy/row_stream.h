#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/error.h"
#include "legacy/legacy_rows.h"

// How rows travel from the program that reads a Jet file to the one that asked for them.
//
// The stream is a mark with a version, then records: a tag byte, the length of what follows in 4
// bytes, and that many bytes. Numbers are little-endian. A table ends with its count of rows and
// the sum of each column, and the stream with a mark and its count of tables: one that was cut off,
// or that another program wrote, is not taken for whole.
namespace vrx {

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
