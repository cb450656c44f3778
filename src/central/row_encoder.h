#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "base/error.h"
#include "base/sha256.h"
#include "insight/exact.h"

struct sqlite3_stmt;

namespace vrx {

// A stored row that the central database cannot hold. what() names the row and its field.
class RowRefused : public Error {
 public:
  using Error::Error;
};

// What both sides compute of the same rows and compare.
struct RowProof {
  std::int64_t rows = 0;
  Exact target = {};
  Exact actual_batch = {};
  Exact actual_feed = {};
  std::string digest = {};  // SHA-256 over the digests of the rows in order, joined

  friend bool operator==(const RowProof& one, const RowProof& other) = default;
};

// Columns of a statement that RowEncoder takes, in this order: the row number, those of
// `Transactions` in stored order up to IngPercent, then the weights Ing01Wt to Ing100Wt.
[[nodiscard]] const std::string& EncodedColumns();

// Writes rows as the central database gets them, and digests their canonical form
// (docs/central.md).
class RowEncoder {
 public:
  static constexpr int kWeights = 100;

  // Encodes the current row of a statement. Throws RowRefused for a value that is not of its
  // column's type, a text with U+0000 or malformed UTF-8, and a weight without an end.
  void Encode(sqlite3_stmt* row);

  [[nodiscard]] std::int64_t Number() const { return number_; }
  // The fields in the binary form of COPY, each with its length before it.
  [[nodiscard]] std::string_view Fields() const { return fields_; }
  static constexpr int kFieldCount = 14;
  // SHA-256 of the canonical form, as bytes.
  [[nodiscard]] std::string_view Digest() const { return {digest_.data(), digest_.size()}; }

  // Target, actual batch and actual feed; 0 for NULL.
  struct SummedWeights {
    Exact target = {};
    Exact actual_batch = {};
    Exact actual_feed = {};
  };
  [[nodiscard]] const SummedWeights& Summed() const { return summed_; }

 private:
  void Field(std::uint32_t type, std::string_view bytes);
  void Null(std::uint32_t type);
  void Whole(sqlite3_stmt* row, int column);
  void Real(sqlite3_stmt* row, int column, Exact* summed);
  void Text(sqlite3_stmt* row, int column);
  void Weights(sqlite3_stmt* row);
  [[nodiscard]] double RealValue(sqlite3_stmt* row, int column) const;
  [[noreturn]] void Refuse(sqlite3_stmt* row, int column, const std::string& why) const;

  std::int64_t number_ = 0;
  std::string canonical_;
  std::string fields_;
  std::string array_;
  std::array<char, Sha256Sum::kSize> digest_ = {};
  Sha256Sum hash_;
  SummedWeights summed_;
};

// Adds up the proof of rows that come in their order.
class ProofSum {
 public:
  void Add(const RowEncoder& row);
  [[nodiscard]] std::int64_t Rows() const { return proof_.rows; }
  // Begins anew.
  [[nodiscard]] RowProof Take();

 private:
  RowProof proof_;
  Sha256Sum hash_;
};

// Appends a number in network byte order.
void AppendInt16(std::string& bytes, std::int16_t number);
void AppendInt32(std::string& bytes, std::int32_t number);
void AppendInt64(std::string& bytes, std::int64_t number);

// True for well-formed UTF-8 without U+0000, which is all that the central database stores.
[[nodiscard]] bool IsCentralText(std::string_view text);

}  // namespace vrx
