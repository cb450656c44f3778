// vrx2260jet FILE TABLE... writes the rows of a Jet file's tables to standard output as a row
// stream. The programs that convert such a file start it, because libmdb may crash or hang on a
// damaged file. FILE has one character for each byte of the path; see ReadLegacyRows.

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <mdbtools.h>

#include "base/encoding.h"
#include "base/error.h"
#include "base/text.h"
#include "legacy/jet_file.h"
#include "legacy/jet_text.h"
#include "legacy/row_stream.h"

namespace vrx {
namespace {

// A Jet file as a whole cannot be read.
class JetReadError : public Error {
 public:
  using Error::Error;
};

constexpr unsigned kDeletedRow = 0x8000;
constexpr unsigned kMovedRow = 0x4000;
constexpr unsigned kRowOffset = 0x1FFF;
constexpr int kDataPageHead = 14;
constexpr int kLongestName = 255;
constexpr double kCurrencyUnit = 10000;

struct Closer {
  void operator()(MdbHandle* file) const { mdb_close(file); }
  void operator()(MdbTableDef* table) const { mdb_free_tabledef(table); }
};
using File = std::unique_ptr<MdbHandle, Closer>;
using Table = std::unique_ptr<MdbTableDef, Closer>;

// Copies a pointer array of the library.
template <typename Item>
std::vector<Item*> Items(const GPtrArray* array) {
  std::vector<Item*> items;
  for (unsigned index = 0; array != nullptr && index < array->len; ++index) {
    items.push_back(static_cast<Item*>(array->pdata[index]));
  }
  return items;
}

std::string NameOf(const char* name) { return {name, strnlen(name, kLongestName)}; }

LegacyType TypeOf(const MdbColumn& column) {
  switch (column.col_type) {
    case MDB_BOOL:
      return LegacyType::kBoolean;
    case MDB_BYTE:
    case MDB_INT:
    case MDB_LONGINT:
      return LegacyType::kWhole;
    case MDB_FLOAT:
      return LegacyType::kSingle;
    case MDB_DOUBLE:
    case MDB_MONEY:
      return LegacyType::kDouble;
    case MDB_DATETIME:
      return LegacyType::kDate;
    case MDB_TEXT:
      return LegacyType::kText;
    default:
      return LegacyType::kUnread;
  }
}

template <typename Number>
std::optional<Number> FromBytes(std::string_view bytes) {
  if (bytes.size() != sizeof(Number)) {
    return std::nullopt;
  }
  Number number{};
  std::memcpy(&number, bytes.data(), sizeof(Number));
  return number;
}

template <typename Number>
std::optional<LegacyValue> Whole(std::string_view bytes) {
  const auto number = FromBytes<Number>(bytes);
  return number ? std::optional<LegacyValue>(static_cast<std::int32_t>(*number)) : std::nullopt;
}

// Decodes a stored value. Empty if it has the wrong number of bytes.
std::optional<LegacyValue> ValueOf(int type, std::string_view bytes) {
  switch (type) {
    case MDB_BYTE:
      return Whole<std::uint8_t>(bytes);
    case MDB_INT:
      return Whole<std::int16_t>(bytes);
    case MDB_LONGINT:
      return Whole<std::int32_t>(bytes);
    case MDB_FLOAT:
      return FromBytes<float>(bytes);
    case MDB_DOUBLE:
      return FromBytes<double>(bytes);
    case MDB_MONEY: {
      const auto units = FromBytes<std::int64_t>(bytes);
      return units ? std::optional<LegacyValue>(static_cast<double>(*units) / kCurrencyUnit)
                   : std::nullopt;
    }
    case MDB_DATETIME: {
      const auto days = FromBytes<double>(bytes);
      return days ? std::optional<LegacyValue>(JetDate{*days}) : std::nullopt;
    }
    case MDB_TEXT:
      return DecodeJetText(bytes);
    default:
      return LegacyValue{};
  }
}

// Reads the rows of one table in the order of its pages.
class TableReader {
 public:
  TableReader(MdbHandle& file, MdbTableDef& table, LegacyRowSink& sink)
      : file_(file),
        table_(table),
        sink_(sink),
        columns_(Items<MdbColumn>(table.columns)),
        fields_(std::max<std::size_t>(MDB_MAX_COLS, columns_.size())),
        row_(columns_.size()) {}

  void Read() {
    LegacyTable described{
        .name = NameOf(table_.name), .announced_rows = table_.num_rows, .columns = {}};
    for (const MdbColumn* const column : columns_) {
      described.columns.push_back({NameOf(column->name), TypeOf(*column)});
    }
    sink_.BeginTable(described);
    mdb_rewind_table(&table_);
    while (mdb_read_next_dpg(&table_) > 0) {
      ReadPage();
    }
    sink_.EndTable();
  }

 private:
  void ReadPage() {
    const int count = mdb_get_int16(Page(), file_.fmt->row_count_offset);
    if (count > (static_cast<int>(file_.fmt->pg_size) - kDataPageHead) / 2) {
      sink_.DamagedRow(Place(0) + " and all that follow on the page");
      return;
    }
    for (int row = 0; row < count; ++row) {
      ReadRow(row);
    }
  }

  void ReadRow(int row) {
    int start = 0;
    std::size_t length = 0;
    if (mdb_find_row(&file_, row, &start, &length) != 0) {
      sink_.DamagedRow(Place(row));
      return;
    }
    const auto marked = static_cast<unsigned>(start);
    if ((marked & kDeletedRow) != 0) {
      return;
    }
    const bool read = (marked & kMovedRow) != 0 ? ReadMoved(marked & kRowOffset, length)
                                                : ReadFields(marked & kRowOffset, length);
    if (read) {
      sink_.Row(row_);
    } else {
      sink_.DamagedRow(Place(row));
    }
  }

  // A row that was moved to another page is replaced by a 4-byte reference to it.
  bool ReadMoved(unsigned start, std::size_t length) {
    if (length < 4) {
      return false;
    }
    const auto where = static_cast<int>(mdb_get_int32(Page(), static_cast<int>(start)));
    void* moved_page = nullptr;
    int moved_start = 0;
    std::size_t moved_length = 0;
    if (mdb_find_pg_row(&file_, where, &moved_page, &moved_start, &moved_length) != 0) {
      return false;
    }
    mdb_swap_pgbuf(&file_);
    const bool owned = file_.pg_buf[0] == MDB_PAGE_DATA &&
                       mdb_get_int32(Page(), 4) == static_cast<long>(table_.entry->table_pg);
    const bool read =
        owned && ReadFields(static_cast<unsigned>(moved_start) & kRowOffset, moved_length);
    mdb_swap_pgbuf(&file_);
    return read;
  }

  // The library splits the row into fields; their bytes are decoded here.
  bool ReadFields(unsigned start, std::size_t length) {
    if (length == 0 || start + length > static_cast<std::size_t>(file_.fmt->pg_size)) {
      return false;
    }
    std::fill(fields_.begin(), fields_.end(), MdbField{});
    if (mdb_crack_row(&table_, static_cast<int>(start), length, fields_.data()) < 0) {
      return false;
    }
    for (std::size_t index = 0; index < columns_.size(); ++index) {
      const MdbField& field = fields_[index];
      const MdbColumn& column = *columns_[index];
      if (column.col_type == MDB_BOOL) {
        row_[index] = field.is_null == 0;
      } else if (field.is_null != 0) {
        row_[index] = LegacyValue{};
      } else if (!TakeValue(column.col_type, field, row_[index])) {
        return false;
      }
    }
    return true;
  }

  bool TakeValue(int type, const MdbField& field, LegacyValue& value) {
    if (field.start < 0 || field.siz < 0 || field.start > file_.fmt->pg_size ||
        field.siz > file_.fmt->pg_size - field.start) {
      return false;
    }
    const std::string bytes(std::begin(file_.pg_buf) + field.start,
                            std::begin(file_.pg_buf) + field.start + field.siz);
    std::optional<LegacyValue> read = ValueOf(type, bytes);
    if (read) {
      value = std::move(*read);
    }
    return read.has_value();
  }

  void* Page() { return std::begin(file_.pg_buf); }

  [[nodiscard]] std::string Place(int row) const {
    return "page " + std::to_string(table_.cur_phys_pg) + ", row " + std::to_string(row);
  }

  MdbHandle& file_;
  MdbTableDef& table_;
  LegacyRowSink& sink_;
  std::vector<MdbColumn*> columns_;
  std::vector<MdbField> fields_;
  LegacyRow row_;
};

void ReadTable(MdbHandle& file, MdbCatalogEntry& entry, LegacyRowSink& sink) {
  const Table table(mdb_read_table(&entry));
  if (!table || mdb_read_columns(table.get()) == nullptr || table->columns == nullptr ||
      table->columns->len != table->num_cols || table->num_cols > MDB_MAX_COLS) {
    sink.DamagedTable(NameOf(entry.object_name));
    return;
  }
  TableReader(file, *table, sink).Read();
}

// Reads tables of a Jet 4 file in the given order. Ignores the case of names, missing tables and
// deleted rows; follows moved rows. Throws JetReadError.
void ReadJetTables(const std::filesystem::path& path, const std::vector<std::string>& tables,
                   LegacyRowSink& sink) {
  const File file(mdb_open(path.c_str(), MDB_NOFLAGS));
  if (!file) {
    throw JetReadError("its first pages cannot be read");
  }
  const GPtrArray* const catalog = mdb_read_catalog(file.get(), MDB_TABLE);
  if (catalog == nullptr) {
    throw JetReadError("its list of tables cannot be read");
  }
  std::vector<MdbCatalogEntry*> entries;
  std::vector<std::string> names;
  for (MdbCatalogEntry* const entry : Items<MdbCatalogEntry>(catalog)) {
    if (mdb_is_user_table(entry) != 0) {
      entries.push_back(entry);
      names.push_back(NameOf(entry->object_name));
    }
  }
  sink.Directory(names);
  for (const std::string& wanted : tables) {
    const auto found = std::ranges::find_if(
        names, [&wanted](const std::string& name) { return EqualsIgnoringCase(name, wanted); });
    if (found != names.end()) {
      ReadTable(*file, *entries[static_cast<std::size_t>(found - names.begin())], sink);
    }
  }
}

// Exits without cleanup, which libmdb leaves to the end of the process.
[[noreturn]] void End(int code) {
  std::fflush(nullptr);
  std::_Exit(code);
}

[[noreturn]] void Refuse(const std::string& message, int code) {
  std::fprintf(stderr, "vrx2260jet: %s\n", message.c_str());
  End(code);
}

void Write(std::string_view bytes) {
  if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size()) {
    Refuse("the rows cannot be written", kReaderFailed);
  }
}

}  // namespace
}  // namespace vrx

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + (argc > 0 ? 1 : 0), argv + argc);
  if (args.size() < 2) {
    vrx::Refuse("usage: vrx2260jet FILE TABLE...", vrx::kReaderWrongUsage);
  }
  const std::filesystem::path path = vrx::Utf8ToWindows1252(args.front());
  try {
    const vrx::JetFileKind kind = vrx::InspectJetFile(path);
    if (kind != vrx::JetFileKind::kJet4) {
      vrx::Refuse(vrx::JetFileRefusal(kind, path.filename().string()), vrx::ReaderExitOf(kind));
    }
    vrx::RowStreamWriter rows(vrx::Write);
    vrx::ReadJetTables(path, {args.begin() + 1, args.end()}, rows);
    rows.End();
  } catch (const vrx::JetReadError& failure) {
    vrx::Refuse(failure.what(), vrx::kReaderFoundNoTables);
  } catch (const std::exception& failure) {
    vrx::Refuse(failure.what(), vrx::kReaderFailed);
  }
  vrx::End(EXIT_SUCCESS);
}
