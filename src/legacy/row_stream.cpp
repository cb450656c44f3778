#include "legacy/row_stream.h"

#include <algorithm>
#include <bit>
#include <type_traits>
#include <utility>

namespace vrx {

namespace {

std::uint64_t BitsOf(const LegacyValue& value) {
  return std::visit(
      [](const auto& held) -> std::uint64_t {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, float>) {
          return std::bit_cast<std::uint32_t>(held);
        } else if constexpr (std::is_same_v<Held, double>) {
          return std::bit_cast<std::uint64_t>(held);
        } else if constexpr (std::is_same_v<Held, JetDate>) {
          return std::bit_cast<std::uint64_t>(held.days);
        } else if constexpr (std::is_same_v<Held, std::string>) {
          std::uint64_t sum = held.size();
          for (const char byte : held) {
            sum = sum * 31 + static_cast<unsigned char>(byte);
          }
          return sum;
        } else if constexpr (std::is_same_v<Held, std::monostate>) {
          return 0;
        } else {
          return static_cast<std::uint64_t>(held);
        }
      },
      value);
}

constexpr char kDirectoryTag = 'D';
constexpr char kTableTag = 'T';
constexpr char kRowTag = 'R';
constexpr char kDamagedRowTag = 'B';
constexpr char kTableEndTag = 'S';
constexpr char kDamagedTableTag = 'X';
constexpr char kEndTag = 'E';

constexpr std::size_t kRecordHead = 5;  // tag and length
constexpr std::size_t kChunk = 65536;   // bytes written at once

template <typename Number>
void Put(std::string& bytes, Number number) {
  for (std::size_t index = 0; index < sizeof(Number); ++index) {
    bytes.push_back(static_cast<char>(static_cast<std::uint64_t>(number) >> (8 * index)));
  }
}

void PutText(std::string& bytes, std::string_view text) {
  Put(bytes, static_cast<std::uint32_t>(text.size()));
  bytes += text;
}

// A presence byte, followed by the value.
void PutValue(std::string& bytes, const LegacyValue& value) {
  bytes.push_back(static_cast<char>(IsNull(value) ? 0 : 1));
  std::visit(
      [&bytes](const auto& held) {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, float>) {
          Put(bytes, std::bit_cast<std::uint32_t>(held));
        } else if constexpr (std::is_same_v<Held, double>) {
          Put(bytes, std::bit_cast<std::uint64_t>(held));
        } else if constexpr (std::is_same_v<Held, JetDate>) {
          Put(bytes, std::bit_cast<std::uint64_t>(held.days));
        } else if constexpr (std::is_same_v<Held, std::string>) {
          PutText(bytes, held);
        } else if constexpr (std::is_same_v<Held, bool>) {
          bytes.push_back(static_cast<char>(held ? 1 : 0));
        } else if constexpr (std::is_same_v<Held, std::int32_t>) {
          Put(bytes, static_cast<std::uint32_t>(held));
        }
      },
      value);
}

// Parses the payload of a record.
class Cursor {
 public:
  explicit Cursor(std::string_view bytes) : bytes_(bytes) {}

  std::string_view Bytes(std::size_t count) {
    if (bytes_.size() < count) {
      throw RowStreamError("a record of the rows is too short");
    }
    const std::string_view taken = bytes_.substr(0, count);
    bytes_.remove_prefix(count);
    return taken;
  }

  template <typename Number>
  Number Take() {
    std::uint64_t number = 0;
    const std::string_view bytes = Bytes(sizeof(Number));
    for (std::size_t index = sizeof(Number); index > 0; --index) {
      number = number << 8U | static_cast<unsigned char>(bytes[index - 1]);
    }
    return static_cast<Number>(number);
  }

  std::string Text() { return std::string(Bytes(Take<std::uint32_t>())); }

  LegacyValue Value(LegacyType type) {
    if (Take<std::uint8_t>() == 0) {
      return {};
    }
    switch (type) {
      case LegacyType::kBoolean:
        return Take<std::uint8_t>() != 0;
      case LegacyType::kWhole:
        return static_cast<std::int32_t>(Take<std::uint32_t>());
      case LegacyType::kSingle:
        return std::bit_cast<float>(Take<std::uint32_t>());
      case LegacyType::kDouble:
        return std::bit_cast<double>(Take<std::uint64_t>());
      case LegacyType::kDate:
        return JetDate{std::bit_cast<double>(Take<std::uint64_t>())};
      case LegacyType::kText:
        return Text();
      case LegacyType::kUnread:
        break;
    }
    throw RowStreamError("a column of no known type has a value");
  }

  void RequireEnd() const {
    if (!bytes_.empty()) {
      throw RowStreamError("a record of the rows is too long");
    }
  }

 private:
  std::string_view bytes_;
};

LegacyType KnownType(std::uint8_t code) {
  if (code < static_cast<std::uint8_t>(LegacyType::kBoolean) ||
      code > static_cast<std::uint8_t>(LegacyType::kUnread)) {
    throw RowStreamError("a column is of no known type");
  }
  return static_cast<LegacyType>(code);
}

}  // namespace

void AddToSum(ColumnSum& sum, const LegacyValue& value) {
  if (!IsNull(value)) {
    ++sum.values;
    sum.bits += BitsOf(value);
  }
}

RowStreamWriter::RowStreamWriter(std::function<void(std::string_view)> write)
    : write_(std::move(write)), pending_(kRowStreamMark) {}

void RowStreamWriter::Directory(const std::vector<std::string>& tables) {
  Put(payload_, static_cast<std::uint32_t>(tables.size()));
  for (const std::string& name : tables) {
    PutText(payload_, name);
  }
  Record(kDirectoryTag);
}

void RowStreamWriter::BeginTable(const LegacyTable& table) {
  PutText(payload_, table.name);
  Put(payload_, table.announced_rows);
  Put(payload_, static_cast<std::uint32_t>(table.columns.size()));
  for (const LegacyColumn& column : table.columns) {
    PutText(payload_, column.name);
    Put(payload_, static_cast<std::uint8_t>(column.type));
  }
  Record(kTableTag);
  sums_.assign(table.columns.size(), {});
  rows_ = 0;
  damaged_ = 0;
  ++tables_;
}

void RowStreamWriter::Row(const LegacyRow& row) {
  for (std::size_t index = 0; index < row.size(); ++index) {
    PutValue(payload_, row[index]);
    AddToSum(sums_[index], row[index]);
  }
  ++rows_;
  Record(kRowTag);
}

void RowStreamWriter::DamagedRow(const std::string& place) {
  PutText(payload_, place);
  ++damaged_;
  Record(kDamagedRowTag);
}

void RowStreamWriter::EndTable() {
  Put(payload_, rows_);
  Put(payload_, damaged_);
  for (const ColumnSum& sum : sums_) {
    Put(payload_, sum.values);
    Put(payload_, sum.bits);
  }
  Record(kTableEndTag);
}

void RowStreamWriter::DamagedTable(const std::string& name) {
  PutText(payload_, name);
  Record(kDamagedTableTag);
}

void RowStreamWriter::End() {
  Put(payload_, tables_);
  Record(kEndTag);
  Flush();
}

void RowStreamWriter::Record(char tag) {
  pending_.push_back(tag);
  PutText(pending_, payload_);
  payload_.clear();
  if (pending_.size() >= kChunk) {
    Flush();
  }
}

void RowStreamWriter::Flush() {
  write_(pending_);
  pending_.clear();
}

void RowStreamReader::Take(std::string_view bytes) {
  buffer_ += bytes;
  std::string_view rest = buffer_;
  if (!marked_) {
    const std::size_t length = std::min(rest.size(), kRowStreamMark.size());
    if (rest.substr(0, length) != kRowStreamMark.substr(0, length)) {
      throw RowStreamError("the bytes are no rows of this version");
    }
    if (length < kRowStreamMark.size()) {
      return;
    }
    marked_ = true;
    rest.remove_prefix(length);
  }
  while (rest.size() >= kRecordHead) {
    const auto length = Cursor(rest.substr(1)).Take<std::uint32_t>();
    if (length > kMaxRowStreamRecord) {
      throw RowStreamError("a record of the rows is too long");
    }
    if (rest.size() - kRecordHead < length) {
      break;
    }
    TakeRecord(rest.front(), rest.substr(kRecordHead, length));
    rest.remove_prefix(kRecordHead + length);
  }
  if (ended_ && !rest.empty()) {
    throw RowStreamError("something follows the end of the rows");
  }
  buffer_.erase(0, buffer_.size() - rest.size());
}

void RowStreamReader::TakeRecord(char tag, std::string_view payload) {
  Cursor cursor(payload);
  if (ended_ || (tag == kDirectoryTag) == listed_) {
    throw RowStreamError("a record of the rows is out of place");
  }
  switch (tag) {
    case kDirectoryTag: {
      std::vector<std::string> tables;
      for (auto left = cursor.Take<std::uint32_t>(); left > 0; --left) {
        tables.push_back(cursor.Text());
      }
      cursor.RequireEnd();
      listed_ = true;
      sink_.Directory(tables);
      return;
    }
    case kTableTag:
      return TakeTable(payload);
    case kRowTag:
      return TakeRow(payload);
    case kDamagedRowTag:
      RequireTable(true);
      ++damaged_;
      return sink_.DamagedRow(cursor.Text());
    case kTableEndTag:
      return TakeTableEnd(payload);
    case kDamagedTableTag:
      RequireTable(false);
      return sink_.DamagedTable(cursor.Text());
    case kEndTag:
      RequireTable(false);
      if (cursor.Take<std::uint32_t>() != tables_) {
        throw RowStreamError("tables were lost on the way");
      }
      ended_ = true;
      return;
    default:
      throw RowStreamError("a record of the rows is of no known kind");
  }
}

void RowStreamReader::RequireTable(bool open) const {
  if (in_table_ != open) {
    throw RowStreamError("a record of the rows is out of place");
  }
}

void RowStreamReader::TakeTable(std::string_view payload) {
  RequireTable(false);
  Cursor cursor(payload);
  table_ = {.name = cursor.Text(), .announced_rows = cursor.Take<std::uint32_t>(), .columns = {}};
  for (auto left = cursor.Take<std::uint32_t>(); left > 0; --left) {
    std::string name = cursor.Text();
    table_.columns.push_back({std::move(name), KnownType(cursor.Take<std::uint8_t>())});
  }
  cursor.RequireEnd();
  in_table_ = true;
  sums_.assign(table_.columns.size(), {});
  row_.resize(table_.columns.size());
  rows_ = 0;
  damaged_ = 0;
  ++tables_;
  sink_.BeginTable(table_);
}

void RowStreamReader::TakeRow(std::string_view payload) {
  RequireTable(true);
  Cursor cursor(payload);
  for (std::size_t index = 0; index < table_.columns.size(); ++index) {
    row_[index] = cursor.Value(table_.columns[index].type);
    AddToSum(sums_[index], row_[index]);
  }
  cursor.RequireEnd();
  ++rows_;
  sink_.Row(row_);
}

void RowStreamReader::TakeTableEnd(std::string_view payload) {
  RequireTable(true);
  Cursor cursor(payload);
  const bool counts =
      cursor.Take<std::uint64_t>() == rows_ && cursor.Take<std::uint64_t>() == damaged_;
  const bool sums = counts && std::ranges::all_of(sums_, [&cursor](const ColumnSum& sum) {
                      return cursor.Take<std::uint64_t>() == sum.values &&
                             cursor.Take<std::uint64_t>() == sum.bits;
                    });
  if (!sums) {
    throw RowStreamError("rows of the table " + table_.name + " were lost on the way");
  }
  cursor.RequireEnd();
  in_table_ = false;
  sink_.EndTable();
}

}  // namespace vrx
