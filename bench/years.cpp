#include "years.h"

#include <cstdio>
#include <stdexcept>
#include <string>

#include <SQLiteCpp/Database.h>

#include "database/connection.h"
#include "figures.h"
#include "frame/number.h"
#include "history/history_column.h"
#include "yard_generator.h"

namespace vrx::bench {

namespace {

constexpr std::int64_t kMillion = 1'000'000;
constexpr std::int64_t kEqualRecords = 2'000;

void MarkEqualRecords(const std::filesystem::path& path, std::int64_t rows) {
  SQLite::Database database = OpenDatabase(path, Access::kWrite);
  const std::string nth = std::to_string(rows / kEqualRecords);
  const std::string name = "'" + std::string(kEqualName) + "'";
  database.exec("UPDATE Transactions SET Recipe = " + name + " WHERE rowid % " + nth + " = 0");
  // Two of five records are feeds.
  database.exec("UPDATE Transactions SET Pen = " + name + " WHERE Type = 'FEED' AND rowid % (" +
                nth + " * 2 / 5) = 1");
}

}  // namespace

Years::Years(std::int64_t wanted) : rows(wanted) {
  std::printf("making up %lld and %lld records\n", static_cast<long long>(rows),
              static_cast<long long>(rows / 10));
  // In a process of its own, so that what it takes does not count as memory of what is measured.
  PeakMegabytes([&] {
    testing::MakeYears({.rows = rows},
                       {.program_directory = VRX_BIN_DIR, .transactions = all, .recipes = recipes});
    testing::MakeYears({.rows = rows / 10},
                       {.program_directory = VRX_BIN_DIR, .transactions = tenth});
    MarkEqualRecords(all, rows);
    MarkEqualRecords(tenth, rows / 10);
  });
}

std::string_view PickedName(const DataGroup& group) {
  if (group.named_column == "Recipe") {
    return "FINISH";
  }
  if (group.named_column == "Ingredient") {
    return "CORN";
  }
  return group.named_column.empty() ? "" : "A01";
}

std::string GroupCondition(const DataGroup& group) {
  if (!group.type.empty()) {
    return " WHERE Type = '" + std::string(group.type) + "'";
  }
  if (!group.named_column.empty()) {
    return " WHERE " + std::string(group.named_column) + " = '" + std::string(PickedName(group)) +
           "'";
  }
  return "";
}

std::string LevelKeys(const DataGroup& group, std::size_t count) {
  std::string keys;
  for (std::size_t level = 0; level < count; ++level) {
    const std::string_view key = group.levels[level];
    keys += keys.empty() ? "" : ", ";
    keys += key == "UserID" ? "CAST(UserID AS INTEGER), UserID" : "[" + std::string(key) + "]";
  }
  return keys;
}

std::int64_t RowsAskedFor(int argc, const char* const* argv) {
  if (argc == 1) {
    return kMillion;
  }
  const auto rows =
      argc == 3 && std::string_view(argv[1]) == "--rows" ? ParseLong(argv[2]) : std::nullopt;
  if (!rows || *rows < 10 * kEqualRecords) {
    throw std::invalid_argument("usage: [--rows N], from 20000");
  }
  return *rows;
}

}  // namespace vrx::bench
