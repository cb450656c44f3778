#include "legacy/jet_writer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <type_traits>

#include <nettle/arcfour.h>

namespace vrx::testing {
namespace {

constexpr std::size_t kPage = 4096;
constexpr std::size_t kDataHead = 14;
constexpr std::uint32_t kCatalogPage = 2;
constexpr std::size_t kInlinePages = 512;
constexpr std::uint16_t kDeleted = 0xC000;
constexpr std::uint16_t kMoved = 0x4000;
constexpr std::uint16_t kTarget = 0x8000;

template <typename Number>
void Put(std::string& bytes, Number number) {
  for (std::size_t index = 0; index < sizeof(Number); ++index) {
    bytes.push_back(static_cast<char>(static_cast<std::uint64_t>(number) >> (8 * index)));
  }
}

template <typename Number>
void PutAt(std::string& bytes, std::size_t offset, Number number) {
  std::string piece;
  Put(piece, number);
  bytes.replace(offset, piece.size(), piece);
}

std::size_t FixedSize(JetWriter::Type type) {
  switch (type) {
    case JetWriter::kByte:
      return 1;
    case JetWriter::kInteger:
      return 2;
    case JetWriter::kLong:
    case JetWriter::kSingle:
      return 4;
    case JetWriter::kCurrency:
    case JetWriter::kDouble:
    case JetWriter::kDate:
      return 8;
    default:
      return 0;
  }
}

bool IsFixed(JetWriter::Type type) { return type == JetWriter::kBoolean || FixedSize(type) > 0; }

std::uint64_t FixedBits(const LegacyValue& value) {
  return std::visit(
      [](const auto& held) -> std::uint64_t {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, float>) {
          return std::bit_cast<std::uint32_t>(held);
        } else if constexpr (std::is_same_v<Held, double>) {
          return std::bit_cast<std::uint64_t>(held);
        } else if constexpr (std::is_same_v<Held, JetDate>) {
          return std::bit_cast<std::uint64_t>(held.days);
        } else if constexpr (std::is_same_v<Held, std::int32_t>) {
          return static_cast<std::uint64_t>(held);
        } else {
          throw std::logic_error("no value of a fixed size");
        }
      },
      value);
}

// Rows grow down from the end of a data page.
class DataPage {
 public:
  explicit DataPage(std::uint32_t owner) : owner_(owner) {}

  bool Fits(std::size_t size) const {
    return rows_.size() < 255 && kDataHead + used_ + 2 * (rows_.size() + 1) + size <= kPage;
  }
  std::size_t Add(std::string bytes, std::uint16_t flags = 0) {
    used_ += bytes.size();
    rows_.emplace_back(std::move(bytes), flags);
    return rows_.size() - 1;
  }
  void Replace(std::size_t row, const std::string& bytes) { rows_[row].first = bytes; }

  std::string Bytes() const {
    std::string page(kPage, '\0');
    page[0] = 1;
    page[1] = 1;
    PutAt(page, 4, owner_);
    PutAt(page, 12, static_cast<std::uint16_t>(rows_.size()));
    std::size_t at = kPage;
    for (std::size_t row = 0; row < rows_.size(); ++row) {
      const auto& [bytes, flags] = rows_[row];
      at -= bytes.size();
      page.replace(at, bytes.size(), bytes);
      PutAt(page, kDataHead + 2 * row, static_cast<std::uint16_t>(at | flags));
    }
    return page;
  }

 private:
  std::uint32_t owner_;
  std::size_t used_ = 0;
  std::vector<std::pair<std::string, std::uint16_t>> rows_;
};

std::string InlineMap(std::uint32_t first, std::size_t count) {
  std::string map(5 + kInlinePages / 8, '\0');
  for (std::uint32_t page = first; page < first + count; ++page) {
    auto& byte = map[5 + page / 8];
    byte = static_cast<char>(static_cast<unsigned char>(byte) | (1U << (page % 8)));
  }
  return map;
}

std::string HeaderPage() {
  std::string page(kPage, '\0');
  page.replace(1, 1, "\x01");
  page.replace(4, 15, "Standard Jet DB");
  page[0x14] = 1;
  constexpr double kCreated = 39937.25;
  PutAt(page, 0x3C, std::uint16_t{1252});
  PutAt(page, 0x72, std::bit_cast<std::uint64_t>(kCreated));
  for (std::size_t at = 0x42; at < 0x42 + 40; at += 4) {
    PutAt(page, at, static_cast<std::uint32_t>(kCreated));
  }
  constexpr std::array<std::uint8_t, 4> kKey = {0xC7, 0xDA, 0x39, 0x6B};
  std::array<std::uint8_t, 128> part{};
  std::copy_n(page.begin() + 0x18, part.size(), part.begin());
  arcfour_ctx cipher{};
  arcfour_set_key(&cipher, kKey.size(), kKey.data());
  arcfour_crypt(&cipher, part.size(), part.data(), part.data());
  std::copy(part.begin(), part.end(), page.begin() + 0x18);
  return page;
}

}  // namespace

std::string JetWriter::Utf16(std::string_view ascii) {
  std::string bytes;
  for (const char byte : ascii) {
    bytes.push_back(byte);
    bytes.push_back('\0');
  }
  return bytes;
}

std::string JetWriter::Compressed(std::string_view bytes) {
  return "\xFF\xFE" + std::string(bytes);
}

void JetWriter::AddTable(const std::string& name, std::vector<Column> columns) {
  tables_.push_back({.name = name, .columns = std::move(columns), .rows = {}});
}

void JetWriter::AddRow(const std::vector<LegacyValue>& row, Place place) {
  Table& table = tables_.back();
  table.rows.push_back({EncodeRow(table, row), place});
}

std::string JetWriter::EncodeRow(const Table& table, const std::vector<LegacyValue>& row) {
  const std::size_t count = table.columns.size();
  if (row.size() != count) {
    throw std::logic_error("a row of another table");
  }
  std::string fixed;
  std::string variable;
  std::vector<std::size_t> offsets;
  std::string mask((count + 7) / 8, '\0');
  for (std::size_t index = 0; index < count; ++index) {
    const Column& column = table.columns[index];
    const bool present = column.type == kBoolean ? std::get<bool>(row[index]) : !IsNull(row[index]);
    if (present) {
      char& byte = mask[index / 8];
      byte = static_cast<char>(static_cast<unsigned char>(byte) | (1U << (index % 8)));
    }
    if (!IsFixed(column.type)) {
      offsets.push_back(variable.size());
      variable += present ? std::get<std::string>(row[index]) : std::string();
    } else if (column.type != kBoolean) {
      std::string bits;
      Put(bits, present ? FixedBits(row[index]) : 0);
      fixed += bits.substr(0, FixedSize(column.type));
    }
  }
  std::string bytes;
  Put(bytes, static_cast<std::uint16_t>(count));
  bytes += fixed;
  const std::size_t start = bytes.size();
  if (!offsets.empty()) {
    bytes += variable;
    Put(bytes, static_cast<std::uint16_t>(bytes.size()));
    for (std::size_t index = offsets.size(); index > 0; --index) {
      Put(bytes, static_cast<std::uint16_t>(start + offsets[index - 1]));
    }
    Put(bytes, static_cast<std::uint16_t>(offsets.size()));
  }
  return bytes + mask;
}

std::string JetWriter::Definition(const Table& table, std::uint32_t map) {
  std::string bytes(63, '\0');
  bytes[0] = 2;
  bytes[1] = 1;
  const auto stored = std::ranges::count_if(
      table.rows, [](const Row& row) { return row.place != Place::kDeleted; });
  PutAt(bytes, 16, static_cast<std::uint32_t>(table.announced < 0 ? stored : table.announced));
  bytes[40] = 0x4E;
  const auto variable = std::ranges::count_if(
      table.columns, [](const Column& column) { return !IsFixed(column.type); });
  PutAt(bytes, 41, static_cast<std::uint16_t>(table.columns.size()));
  PutAt(bytes, 43, static_cast<std::uint16_t>(variable));
  PutAt(bytes, 45, static_cast<std::uint16_t>(table.columns.size()));
  PutAt(bytes, 55, map);
  PutAt(bytes, 59, map + 1);
  std::uint16_t number = 0;
  std::uint16_t variable_number = 0;
  std::uint16_t offset = 0;
  for (const Column& column : table.columns) {
    const std::size_t size = FixedSize(column.type);
    const bool is_fixed = IsFixed(column.type);
    bytes.push_back(static_cast<char>(column.type));
    Put(bytes, std::uint32_t{1625});
    Put(bytes, number);
    Put(bytes, variable_number);
    Put(bytes, number);
    Put(bytes, std::uint16_t{0x0409});
    Put(bytes, std::uint16_t{0});
    bytes.push_back(static_cast<char>(is_fixed ? 3 : 2));
    bytes.push_back('\0');
    Put(bytes, std::uint32_t{0});
    Put(bytes, column.type == kBoolean ? std::uint16_t{0} : offset);
    Put(bytes, static_cast<std::uint16_t>(column.type == kBoolean ? 1
                                          : is_fixed              ? size
                                                                  : std::size_t(column.chars) * 2));
    ++number;
    variable_number = static_cast<std::uint16_t>(variable_number + (is_fixed ? 0 : 1));
    offset = static_cast<std::uint16_t>(offset + size);
  }
  for (const Column& column : table.columns) {
    Put(bytes, static_cast<std::uint16_t>(column.name.size() * 2));
    bytes += Utf16(column.name);
  }
  bytes += "\xFF\xFF";
  PutAt(bytes, 8, static_cast<std::uint32_t>(bytes.size()));
  return bytes;
}

// Builds the pages of a file: header, free map and the catalog's definition, then for each table
// its definition, its map, a map page if the map is long, and its data.
class JetWriter::Builder {
 public:
  std::string Build(const std::vector<Table>& tables) {
    Table catalog{.name = "MSysObjects",
                  .columns = {{"Id", kLong},
                              {"ParentId", kLong},
                              {"Name", kText},
                              {"Type", kInteger},
                              {"Flags", kLong},
                              {"LvProp", kOle}},
                  .rows = {}};
    for (const Table& table : tables) {
      const std::uint32_t page = NewPage();
      Append(table, page);
      catalog.rows.push_back(
          {EncodeRow(catalog, {static_cast<std::int32_t>(page), std::int32_t{0x0F000001},
                               Utf16(table.name), std::int32_t{1}, std::int32_t{0}, LegacyValue{}}),
           Place::kHere});
    }
    Append(catalog, kCatalogPage);
    std::string bytes;
    for (const std::string& page : pages_) {
      bytes += page;
    }
    return bytes;
  }

 private:
  std::uint32_t NewPage() {
    pages_.emplace_back();
    return static_cast<std::uint32_t>(pages_.size() - 1);
  }

  void Append(const Table& table, std::uint32_t first_page) {
    const std::uint32_t map_page = NewPage();
    AppendDefinition(Definition(table, map_page << 8U), first_page);
    std::vector<DataPage> data = Fill(table, first_page);
    DataPage maps(0);
    maps.Add(MapOf(data.size()));
    maps.Add(InlineMap(0, 0));
    pages_[map_page] = maps.Bytes();
    for (const DataPage& page : data) {
      pages_.push_back(page.Bytes());
    }
  }

  // Data that does not fit continues on another page, which the first page references.
  void AppendDefinition(const std::string& definition, std::uint32_t page) {
    for (std::size_t at = 0; at < definition.size();) {
      std::string piece = at == 0 ? std::string() : std::string("\2\1\0\0\0\0\0\0", 8);
      const std::size_t taken = std::min(kPage - piece.size(), definition.size() - at);
      piece += definition.substr(at, taken);
      at += taken;
      piece.resize(kPage, '\0');
      const std::uint32_t this_page = page;
      if (at < definition.size()) {
        page = NewPage();
        PutAt(piece, 4, page);
      }
      pages_[this_page] = piece;
    }
  }

  // The position of a moved row, and the contents of its new position.
  struct Move {
    std::size_t page;
    std::size_t row;
    const std::string* bytes;
  };

  static DataPage& RoomFor(std::vector<DataPage>& data, std::size_t size, std::uint32_t owner) {
    if (data.empty() || !data.back().Fits(size)) {
      data.emplace_back(owner);
    }
    return data.back();
  }

  // Moved rows are on pages after all others.
  std::vector<DataPage> Fill(const Table& table, std::uint32_t owner) const {
    std::vector<DataPage> data;
    std::vector<Move> moves;
    for (const Row& row : table.rows) {
      if (row.place == Place::kMoved) {
        const std::size_t place = RoomFor(data, 4, owner).Add("here", kMoved);
        moves.push_back({data.size() - 1, place, &row.bytes});
      } else {
        RoomFor(data, row.bytes.size(), owner)
            .Add(row.bytes, row.place == Place::kDeleted ? kDeleted : 0);
      }
    }
    if (!moves.empty()) {
      data.emplace_back(owner);
    }
    for (const Move& move : moves) {
      const std::size_t row = RoomFor(data, move.bytes->size(), owner).Add(*move.bytes, kTarget);
      std::string pointer;
      Put(pointer, static_cast<std::uint32_t>((pages_.size() + data.size() - 1) << 8U | row));
      data[move.page].Replace(move.row, pointer);
    }
    return data;
  }

  // The map of the following pages. A long map has its own page before them.
  std::string MapOf(std::size_t data_pages) {
    if (pages_.size() + data_pages <= kInlinePages) {
      return InlineMap(static_cast<std::uint32_t>(pages_.size()), data_pages);
    }
    std::string bits(kPage, '\0');
    bits[0] = 5;
    bits[1] = 1;
    std::string map("\1");
    Put(map, NewPage());
    map.resize(5 + kInlinePages / 8, '\0');
    for (std::size_t used = pages_.size(); used < pages_.size() + data_pages; ++used) {
      char& byte = bits.at(4 + used / 8);
      byte = static_cast<char>(static_cast<unsigned char>(byte) | (1U << (used % 8)));
    }
    pages_.back() = bits;
    return map;
  }

  std::vector<std::string> pages_{HeaderPage(), DataPage(1).Bytes(), {}};
};

std::string JetWriter::Bytes() const { return Builder().Build(tables_); }

void JetWriter::Write(const std::filesystem::path& path) const {
  std::ofstream(path, std::ios::binary) << Bytes();
}

}  // namespace vrx::testing
