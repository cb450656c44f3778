#include "export/csv_export.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <ios>
#include <optional>
#include <string>
#include <system_error>
#include <variant>
#include <vector>

#include "base/encoding.h"
#include "base/error.h"
#include "base/files.h"
#include "base/translation.h"
#include "export/export_columns.h"
#include "export/export_plan.h"
#include "export/level_walk.h"
#include "history/columns.h"
#include "history/data_group.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

// A text file written line by line in place: a failure leaves the lines written so far. Throws
// FileError with the file and the reason.
class LineFile {
 public:
  // Replaces an existing file.
  explicit LineFile(const fs::path& path);

  // Writes the buffered rest; a failure is ignored.
  ~LineFile();

  LineFile(const LineFile&) = delete;
  LineFile& operator=(const LineFile&) = delete;

  // The caller appends the next line here.
  std::string& Line() { return buffer_; }

  // Ends the line with CR LF.
  void EndLine();

  void Close();

 private:
  void Flush();

  fs::path path_;
  std::ofstream out_;
  std::string buffer_;  // not written yet
};

constexpr std::size_t kBufferSize = std::size_t{256} * 1024;

[[noreturn]] void Fail(const fs::path& path, const std::error_code& why) {
  throw FileError(Tr("cannot write %1: %2", {path.string(), why.message()}));
}

// The cause of the stream operation that has just failed.
std::error_code LastError() { return {errno != 0 ? errno : EIO, std::generic_category()}; }

// Leaves a device or a folder. Removes a link, not its target.
void DeleteFile(const fs::path& path) {
  std::error_code error;
  const fs::file_type type = fs::symlink_status(path, error).type();
  if (type == fs::file_type::regular || type == fs::file_type::symlink) {
    fs::remove(path, error);
    if (error) {
      Fail(path, error);
    }
  }
}

LineFile::LineFile(const fs::path& path) : path_(path) {
  DeleteFile(path);
  errno = 0;
  out_.open(path, std::ios::binary | std::ios::trunc);
  if (!out_) {
    Fail(path, LastError());
  }
}

LineFile::~LineFile() {
  if (out_.is_open()) {
    out_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  }
}

void LineFile::EndLine() {
  buffer_ += "\r\n";
  if (buffer_.size() >= kBufferSize) {
    Flush();
  }
}

void LineFile::Close() {
  Flush();
  errno = 0;
  out_.close();
  if (!out_) {
    Fail(path_, LastError());
  }
}

void LineFile::Flush() {
  errno = 0;
  out_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
  out_.flush();
  buffer_.clear();
  if (!out_) {
    Fail(path_, LastError());
  }
}

// The only group without a line for each value: its records contain the value themselves.
constexpr int kWithoutGroupLines = 10;

constexpr std::string_view kTotalText = "Total:";

class CsvWriter : public LevelVisitor {
 public:
  CsvWriter(const ExportPlan& plan, const ColumnDictionary& dictionary,
            std::span<const WalkedField> fields, LineFile& file)
      : plan_(plan), dictionary_(dictionary), file_(file), record_columns_(dictionary, fields) {
    for (const ExportLevel& level : plan.levels) {
      const std::array<WalkedField, 1> list{{{std::string(level.field), ContentOf(level.field)}}};
      group_columns_.emplace_back(dictionary, list);
    }
    const DataGroup* const group = FindDataGroup(plan.group);
    if (const int column = HistoryColumnOfKey(group->total_column)) {
      total_field_ = HistoryColumnAt(column).field;
    }
  }

  void WriteHeader() {
    file_.Line() += BuildCsvHeader(dictionary_, "");
    file_.EndLine();
  }

  void OpenGroup(const WalkedGroup& group) override {
    if (plan_.group == kWithoutGroupLines) {
      return;
    }
    if (group.level->nulls == NullValues::kNoUser) {
      BuildCsvValueLine(group.value, group.content, file_.Line());
    } else {
      BuildCsvDataRow(group_columns_[group.depth], {&group.value, 1}, file_.Line());
    }
    file_.EndLine();
  }

  void Record(std::span<const CellView> cells) override {
    if (plan_.levels.empty()) {
      BuildCsvPlainRow(record_columns_, cells, file_.Line());
    } else {
      BuildCsvDataRow(record_columns_, cells, file_.Line());
    }
    file_.EndLine();
  }

  void CloseGroup(const WalkedGroup& group) override {
    if (group.depth + 1 < plan_.levels.size()) {
      return;
    }
    totals_.assign(1, {total_field_, std::string(kTotalText)});
    for (const GroupSum& sum : group.sums) {
      CsvTotal& total = totals_.emplace_back(CsvTotal{sum.weight->field, {}});
      if (sum.value) {
        AppendCellText(*sum.value, ColumnContent::kWeight, total.value);
      }
    }
    for (const DifferenceTotal& difference : group.differences) {
      totals_.push_back({difference.field, difference.text});
    }
    BuildCsvTotalRow(dictionary_, totals_, file_.Line());
    file_.EndLine();
  }

 private:
  static ColumnContent ContentOf(std::string_view field) {
    return HistoryColumnAt(HistoryColumnOfField(field)).content;
  }

  const ExportPlan& plan_;
  const ColumnDictionary& dictionary_;
  LineFile& file_;
  CsvColumns record_columns_;
  std::vector<CsvColumns> group_columns_;  // by depth
  std::string total_field_;
  std::vector<CsvTotal> totals_;
};

constexpr char kSeparator = ',';
constexpr char kBlank = ' ';

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

void AppendCell(const CellView& cell, ColumnContent content, std::string& line) {
  const auto* const text = std::get_if<std::string_view>(&cell);
  if (text != nullptr && !IsAscii(*text)) {
    line += Utf8ToWindows1252(*text);
    return;
  }
  AppendCellText(cell, content, line);
}

}  // namespace

bool CSVExport::ExportData(int group, const std::filesystem::path& file,
                           const std::filesystem::path& transaction_database,
                           std::span<const std::string> visible_columns, std::string_view name,
                           LockWait wait, const Period& period) const {
  const ExportPlan* const plan = FindExportPlan(group);
  if (plan == nullptr) {
    return false;
  }
  const ColumnDictionary dictionary =
      ExportColumn(ingredients_)
          .IntializeExportColumn(plan->column_group, visible_columns)
          .value_or(ColumnDictionary());
  LevelWalk walk(transaction_database, *plan, dictionary, name, wait, period);
  LineFile lines(file);
  CsvWriter writer(*plan, dictionary, walk.Fields(), lines);
  writer.WriteHeader();
  walk.Walk(writer);
  lines.Close();
  return true;
}

std::string BuildCsvHeader(const ColumnDictionary& dictionary, std::string_view exclude) {
  std::string header;
  for (const ExportedColumn& column : dictionary) {
    if (exclude.find(column.caption) == std::string_view::npos) {
      header += header.empty() ? "" : std::string(1, kSeparator);
      header += column.caption;
    }
  }
  return Utf8ToWindows1252(header);
}

CsvColumns::CsvColumns(const ColumnDictionary& dictionary, std::span<const WalkedField> list)
    : first_caption_(dictionary.empty() ? "" : dictionary.front().caption) {
  for (const ExportedColumn& column : dictionary) {
    const auto found = std::find_if(list.begin(), list.end(), [&](const WalkedField& field) {
      return field.name == column.field;
    });
    if (found == list.end()) {
      places_.push_back({std::nullopt, ColumnContent::kText});
    } else {
      places_.push_back({static_cast<std::size_t>(found - list.begin()), found->content});
    }
  }
}

void BuildCsvDataRow(const CsvColumns& columns, std::span<const CellView> cells,
                     std::string& line) {
  bool first = true;
  for (const CsvColumns::Place& place : columns.Places()) {
    if (place.cell) {
      const CellView& cell = cells[*place.cell];
      if (first && IsNull(cell)) {
        throw Error(Tr("a row has no %1, which is the first column: it cannot be written as CSV",
                       {columns.FirstCaption()}));
      }
      AppendCell(cell, place.content, line);
    }
    line += kSeparator;
    first = false;
  }
}

void BuildCsvPlainRow(const CsvColumns& columns, std::span<const CellView> cells,
                      std::string& line) {
  bool first = true;
  for (const CsvColumns::Place& place : columns.Places()) {
    const CellView cell = place.cell ? cells[*place.cell] : CellView();
    if (!first) {
      line += kSeparator;
    } else if (IsNull(cell)) {
      line += kBlank;
    }
    AppendCell(cell, place.content, line);
    first = false;
  }
}

void BuildCsvValueLine(const CellView& value, ColumnContent content, std::string& line) {
  AppendCell(value, content, line);
}

void BuildCsvTotalRow(const ColumnDictionary& dictionary, std::span<const CsvTotal> totals,
                      std::string& line) {
  for (const ExportedColumn& column : dictionary) {
    const auto found = std::find_if(totals.begin(), totals.end(), [&](const CsvTotal& total) {
      return total.key == column.field;
    });
    if (found == totals.end()) {
      line += kBlank;
    } else {
      line += found->value;
    }
    line += kSeparator;
  }
}

}  // namespace vrx
