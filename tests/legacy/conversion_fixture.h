#pragma once

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include "adapters/program_runner.h"
#include "database/connection.h"
#include "legacy/convert.h"
#include "legacy/jet_writer.h"
#include "platform/progress_display.h"
#include "support/temp_folder.h"

namespace vrx::testing {

class KeptProgress : public ProgressDisplay {
 public:
  void SetProgressMessage(std::string_view text) override { messages.emplace_back(text); }
  void SetProgressRange(int most) override { maximum = most; }
  void SetProgressValue(int now) override { value = now; }

  std::vector<std::string> messages;
  int maximum = 0;
  int value = 0;
};

// Runs conversions in a separate folder, with the built reader.
struct ConversionFixture {
  std::filesystem::path Data(const std::string& name) const {
    return std::filesystem::path(LEGACY_DATA) / name;
  }

  ConversionReport Convert(const std::filesystem::path& old_file) {
    return ConvertLegacyDatabase({.old_file = old_file,
                                  .new_file = copy,
                                  .program_directory = program_directory,
                                  .default_unit = "KG",
                                  .kind = kind},
                                 runner, progress, go_on);
  }

  // The message of a refused conversion; empty if it succeeds.
  std::string Refusal(const std::filesystem::path& old_file) {
    try {
      Convert(old_file);
    } catch (const Error& refusal) {
      return refusal.what();
    }
    return {};
  }

  ConversionReport Convert(const JetWriter& file) {
    file.Write(old_path);
    return Convert(old_path);
  }

  // The rows of the copy, with cells as SQLite texts and NULL as "NULL".
  std::vector<std::vector<std::string>> Rows(const std::string& query) const {
    SQLite::Database database = OpenDatabase(copy, Access::kRead);
    SQLite::Statement statement(database, query);
    std::vector<std::vector<std::string>> rows;
    while (statement.executeStep()) {
      std::vector<std::string>& row = rows.emplace_back();
      for (int index = 0; index < statement.getColumnCount(); ++index) {
        const SQLite::Column cell = statement.getColumn(index);
        row.push_back(cell.isNull() ? "NULL" : cell.getString());
      }
    }
    return rows;
  }

  // The names in the folder, to detect leftover files.
  std::set<std::string> Files() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path())) {
      names.insert(entry.path().filename().string());
    }
    return names;
  }

  TempFolder folder;
  std::filesystem::path old_path = folder / "OLD.RDB";
  std::filesystem::path copy = folder / "NEW.RDB";
  std::filesystem::path program_directory = VRX_BIN_DIR;
  std::optional<DatabaseKind> kind;
  ChildProcessRunner runner;
  KeptProgress progress;
  std::function<bool()> go_on = [] { return true; };
};

inline std::string BytesOf(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

inline void WriteBytes(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

// The notices of a report, one line each: "Pen, rows 3-4: ...".
inline std::vector<std::string> NoticeLines(const ConversionReport& report) {
  std::vector<std::string> lines;
  for (const ConversionNotice& notice : report.notices) {
    const std::string rows = RowsText(notice);
    lines.push_back(notice.table + (rows.empty() ? "" : ", " + rows) + ": " + notice.text);
  }
  return lines;
}

inline const ConvertedTable& CountsOf(const ConversionReport& report, const std::string& table) {
  for (const ConvertedTable& counts : report.tables) {
    if (counts.name == table) {
      return counts;
    }
  }
  throw std::out_of_range("no table " + table + " in the report");
}

}  // namespace vrx::testing
