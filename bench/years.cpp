#include "years.h"

#include <cstdio>
#include <stdexcept>
#include <string>

#include <SQLiteCpp/Database.h>

#include "base/number.h"
#include "database/connection.h"
#include "figures.h"
#include "history/columns.h"
#include "support/yard_generator.h"

namespace vrx::bench {

namespace {

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
  // In a separate process, so that its memory is not part of the measurement.
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

BenchOptions ReadBenchOptions(std::span<const char* const> arguments) {
  constexpr const char* kUsage = "usage: [--rows N] [--rounds N] [--group N], rows from 20000";
  BenchOptions options;
  for (std::size_t i = 0; i < arguments.size(); i += 2) {
    const std::string_view option = arguments[i];
    const int number = i + 1 < arguments.size() ? ParseLong(arguments[i + 1]).value_or(-1) : -1;
    if (option == "--rows" && number >= 10 * kEqualRecords) {
      options.rows = number;
    } else if (option == "--rounds" && number > 0) {
      options.rounds = number;
    } else if (option == "--group" && FindDataGroup(number) != nullptr) {
      options.group = number;
    } else {
      throw std::invalid_argument(kUsage);
    }
  }
  return options;
}

std::vector<DataGroup> MeasuredGroups(const BenchOptions& options) {
  if (const DataGroup* group = FindDataGroup(options.group)) {
    return {*group};
  }
  return {DataGroups().begin(), DataGroups().end()};
}

}  // namespace vrx::bench
