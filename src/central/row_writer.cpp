#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <optional>

#include <SQLiteCpp/Exception.h>
#include <sqlite3.h>

#include "base/translation.h"
#include "central/row_reader.h"
#include "central/server.h"

namespace vrx {
namespace {

// Reads one row of a binary COPY.
class CopyFields {
 public:
  explicit CopyFields(std::string_view bytes) : bytes_(bytes) {}

  std::int16_t Int16() { return static_cast<std::int16_t>(Unsigned(2)); }
  std::int32_t Int32() { return static_cast<std::int32_t>(Unsigned(4)); }
  std::int64_t Int64() { return static_cast<std::int64_t>(Unsigned(8)); }
  double Real() { return std::bit_cast<double>(Unsigned(8)); }

  // Nothing for NULL.
  std::optional<std::string_view> Field() {
    const std::int32_t length = Int32();
    return length < 0 ? std::nullopt : std::optional(Take(static_cast<std::size_t>(length)));
  }

 private:
  std::string_view Take(std::size_t size) {
    if (size > bytes_.size()) {
      throw CentralError(Tr("the central database sent a row that is cut off"), {});
    }
    const std::string_view taken = bytes_.substr(0, size);
    bytes_.remove_prefix(size);
    return taken;
  }

  std::uint64_t Unsigned(std::size_t size) {
    std::uint64_t number = 0;
    for (const char byte : Take(size)) {
      number = number << 8U | static_cast<unsigned char>(byte);
    }
    return number;
  }

  std::string_view bytes_;
};

// How a field of a row is stored.
enum class FieldForm { kWhole, kReal, kText, kWeights };
using enum FieldForm;
constexpr std::array kRowForms{kWhole, kWhole, kText, kText, kText, kText, kText,
                               kReal,  kReal,  kText, kText, kReal, kReal, kWeights};

sqlite3_stmt* PrepareInsert(SQLite::Database& database) {
  std::string marks;
  for (int count = 0; count < RowEncoder::kWeights + static_cast<int>(kRowForms.size()) - 1;
       ++count) {
    marks += marks.empty() ? "?" : ", ?";
  }
  const std::string text =
      "INSERT INTO Transactions (" + EncodedColumns() + ") VALUES (" + marks + ")";
  sqlite3_stmt* statement = nullptr;
  database.check(sqlite3_prepare_v2(database.getHandle(), text.c_str(), -1, &statement, nullptr));
  return statement;
}

void BindWeights(sqlite3_stmt* insert, int first, CopyFields& array) {
  const std::int32_t dimensions = array.Int32();
  array.Int32();  // whether there are NULLs
  array.Int32();  // the type
  const std::int32_t count = dimensions == 0 ? 0 : array.Int32();
  if (count != 0) {
    array.Int32();  // the first index
  }
  for (int weight = 0; weight < std::min(count, RowEncoder::kWeights); ++weight) {
    if (const std::optional<std::string_view> element = array.Field()) {
      sqlite3_bind_double(insert, first + weight, CopyFields(*element).Real());
    }
  }
}

// The bytes live until the row is stored.
void Bind(sqlite3_stmt* insert, FieldForm form, int parameter, std::string_view bytes) {
  CopyFields field(bytes);
  switch (form) {
    case kWhole:
      sqlite3_bind_int64(insert, parameter, field.Int64());
      break;
    case kReal:
      sqlite3_bind_double(insert, parameter, field.Real());
      break;
    case kText:
      sqlite3_bind_text(insert, parameter, bytes.data(), static_cast<int>(bytes.size()),
                        SQLITE_STATIC);
      break;
    case kWeights:
      BindWeights(insert, parameter, field);
      break;
  }
}

}  // namespace

const std::string& CopiedColumns() {
  static const std::string columns =
      "row, number, recipe, type, user_id, ingredient, pen, target, actual_batch, time, date, "
      "actual_feed, ing_percent, weights";
  return columns;
}

RowWriter::RowWriter(SQLite::Database& database)
    : database_(database), insert_(PrepareInsert(database), sqlite3_finalize) {}

void RowWriter::Write(std::string_view bytes) {
  constexpr std::string_view kSignature("PGCOPY\n\377\r\n\0", 11);
  constexpr std::size_t kHeader = 19;
  if (bytes.starts_with(kSignature)) {
    bytes.remove_prefix(std::min(kHeader, bytes.size()));
  }
  if (bytes.empty()) {
    return;
  }
  CopyFields fields(bytes);
  if (fields.Int16() != static_cast<std::int16_t>(kRowForms.size())) {
    return;  // the trailer
  }
  int parameter = 0;
  sqlite3_stmt* const insert = insert_.get();
  sqlite3_clear_bindings(insert);
  for (const FieldForm form : kRowForms) {
    ++parameter;
    if (const std::optional<std::string_view> field = fields.Field()) {
      Bind(insert, form, parameter, *field);
    }
  }
  const int result = sqlite3_step(insert);
  sqlite3_reset(insert);
  if (result != SQLITE_DONE) {
    throw SQLite::Exception(database_.getHandle(), result);
  }
  ++rows_;
}

}  // namespace vrx
