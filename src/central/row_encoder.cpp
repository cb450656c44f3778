#include "central/row_encoder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <utility>

#include <sqlite3.h>

#include "base/encoding.h"
#include "base/translation.h"
#include "database/schema.h"

namespace vrx {
namespace {

// Type numbers of PostgreSQL, the same on every server.
constexpr std::uint32_t kInt8Type = 20;
constexpr std::uint32_t kTextType = 25;
constexpr std::uint32_t kFloat8Type = 701;
constexpr std::uint32_t kFloat8ArrayType = 1022;

// Columns of EncodedColumns.
enum EncodedColumn {
  kRow,
  kTransaction,
  kRecipe,
  kType,
  kUser,
  kIngredient,
  kPen,
  kTarget,
  kActualBatch,
  kTime,
  kDate,
  kActualFeed,
  kIngPercent,
  kFirstWeight
};

template <typename Number>
void AppendBigEndian(std::string& bytes, Number number) {
  for (int shift = static_cast<int>(sizeof(Number) - 1) * 8; shift >= 0; shift -= 8) {
    bytes.push_back(static_cast<char>(number >> static_cast<unsigned>(shift)));
  }
}

void AppendReal(std::string& bytes, double value) {
  AppendBigEndian(bytes, std::bit_cast<std::uint64_t>(value));
}

}  // namespace

void AppendInt16(std::string& bytes, std::int16_t number) {
  AppendBigEndian(bytes, static_cast<std::uint16_t>(number));
}

void AppendInt32(std::string& bytes, std::int32_t number) {
  AppendBigEndian(bytes, static_cast<std::uint32_t>(number));
}

void AppendInt64(std::string& bytes, std::int64_t number) {
  AppendBigEndian(bytes, static_cast<std::uint64_t>(number));
}

bool IsCentralText(std::string_view text) {
  while (!text.empty()) {
    const auto byte = static_cast<unsigned char>(text.front());
    if (byte == 0) {
      return false;
    }
    std::size_t length = 1;
    if (byte >= 0x80) {
      const DecodedCharacter decoded = DecodeUtf8(text);
      if (!decoded.character) {
        return false;
      }
      length = decoded.length;
    }
    text.remove_prefix(length);
  }
  return true;
}

const std::string& EncodedColumns() {
  static const std::string columns = [] {
    std::string text =
        "RowNumber, [Transaction], Recipe, Type, UserID, Ingredient, Pen, Target, ActualBatch, "
        "Time, Date, ActualFeed, IngPercent";
    for (int id = 1; id <= RowEncoder::kWeights; ++id) {
      text += ", " + IngredientWeightColumn(id);
    }
    return text;
  }();
  return columns;
}

void RowEncoder::Encode(sqlite3_stmt* row) {
  number_ = sqlite3_column_int64(row, kRow);
  canonical_.clear();
  fields_.clear();
  AppendInt32(canonical_, kFieldCount);
  Whole(row, kRow);
  Whole(row, kTransaction);
  for (const int column : {kRecipe, kType, kUser, kIngredient, kPen}) {
    Text(row, column);
  }
  Real(row, kTarget, &summed_.target);
  Real(row, kActualBatch, &summed_.actual_batch);
  Text(row, kTime);
  Text(row, kDate);
  Real(row, kActualFeed, &summed_.actual_feed);
  Real(row, kIngPercent, nullptr);
  Weights(row);
  hash_.Add(canonical_);
  hash_.Finish(digest_.data());
}

void ProofSum::Add(const RowEncoder& row) {
  ++proof_.rows;
  proof_.target += row.Summed().target;
  proof_.actual_batch += row.Summed().actual_batch;
  proof_.actual_feed += row.Summed().actual_feed;
  hash_.Add(row.Digest());
}

RowProof ProofSum::Take() {
  proof_.digest = hash_.Finish();
  return std::exchange(proof_, {});
}

void RowEncoder::Field(std::uint32_t type, std::string_view bytes) {
  AppendBigEndian(canonical_, type);
  const std::size_t start = canonical_.size();
  AppendInt32(canonical_, static_cast<std::int32_t>(bytes.size()));
  canonical_.append(bytes);
  fields_.append(canonical_, start);
}

void RowEncoder::Null(std::uint32_t type) {
  AppendBigEndian(canonical_, type);
  AppendInt32(canonical_, -1);
  AppendInt32(fields_, -1);
}

void RowEncoder::Whole(sqlite3_stmt* row, int column) {
  switch (sqlite3_column_type(row, column)) {
    case SQLITE_NULL:
      Null(kInt8Type);
      return;
    case SQLITE_INTEGER:
      array_.clear();
      AppendInt64(array_, sqlite3_column_int64(row, column));
      Field(kInt8Type, array_);
      return;
    default:
      Refuse(row, column, Tr("it is not a whole number"));
  }
}

double RowEncoder::RealValue(sqlite3_stmt* row, int column) const {
  const int type = sqlite3_column_type(row, column);
  if (type != SQLITE_FLOAT && type != SQLITE_INTEGER) {
    Refuse(row, column, Tr("it is not a number"));
  }
  const double value = sqlite3_column_double(row, column);
  if (!std::isfinite(value)) {
    Refuse(row, column, Tr("it is a number without an end"));
  }
  return value;
}

void RowEncoder::Real(sqlite3_stmt* row, int column, Exact* summed) {
  const bool null = sqlite3_column_type(row, column) == SQLITE_NULL;
  const double value = null ? 0 : RealValue(row, column);
  if (summed != nullptr) {
    *summed = Exact::Of(value);
  }
  if (null) {
    Null(kFloat8Type);
    return;
  }
  array_.clear();
  AppendReal(array_, value);
  Field(kFloat8Type, array_);
}

void RowEncoder::Text(sqlite3_stmt* row, int column) {
  const int type = sqlite3_column_type(row, column);
  if (type == SQLITE_NULL) {
    Null(kTextType);
    return;
  }
  if (type != SQLITE_TEXT) {
    Refuse(row, column, Tr("it is not a text"));
  }
  const auto* const start = reinterpret_cast<const char*>(sqlite3_column_text(row, column));
  const std::string_view text(start, static_cast<std::size_t>(sqlite3_column_bytes(row, column)));
  if (!IsCentralText(text)) {
    Refuse(row, column, Tr("it has a character that the central database cannot store"));
  }
  Field(kTextType, text);
}

// Weights end with the last one that is not NULL.
void RowEncoder::Weights(sqlite3_stmt* row) {
  int count = kWeights;
  while (count > 0 && sqlite3_column_type(row, kFirstWeight + count - 1) == SQLITE_NULL) {
    --count;
  }
  if (count == 0) {
    Null(kFloat8ArrayType);
    return;
  }
  bool nulls = false;
  for (int index = 0; index < count; ++index) {
    nulls = nulls || sqlite3_column_type(row, kFirstWeight + index) == SQLITE_NULL;
  }
  array_.clear();
  AppendInt32(array_, 1);  // dimensions
  AppendInt32(array_, nulls ? 1 : 0);
  AppendBigEndian(array_, kFloat8Type);
  AppendInt32(array_, count);
  AppendInt32(array_, 1);  // the first index
  for (int index = 0; index < count; ++index) {
    const int column = kFirstWeight + index;
    if (sqlite3_column_type(row, column) == SQLITE_NULL) {
      AppendInt32(array_, -1);
    } else {
      AppendInt32(array_, sizeof(double));
      AppendReal(array_, RealValue(row, column));
    }
  }
  Field(kFloat8ArrayType, array_);
}

void RowEncoder::Refuse(sqlite3_stmt* row, int column, const std::string& why) const {
  throw RowRefused(Tr("row %1 cannot be pushed, because of its %2: %3",
                      {std::to_string(number_), sqlite3_column_name(row, column), why}));
}

}  // namespace vrx
