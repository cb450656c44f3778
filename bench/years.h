#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "history/data_group.h"
#include "support/temp_folder.h"

namespace vrx::bench {

// What a benchmark of the history works on: the same yard, kept for a long time and for a tenth of
// it. `EQUAL` is a recipe and a pen with as many records in both, spread over all of the time.
struct Years {
  // `rows` of the long time. Takes a while.
  explicit Years(std::int64_t rows);

  testing::TempFolder folder;
  std::int64_t rows;
  std::filesystem::path recipes = folder / "YEARS.RDB";
  std::filesystem::path all = folder / "YEARS.TDB";
  std::filesystem::path tenth = folder / "TENTH.TDB";
};

inline constexpr std::string_view kEqualName = "EQUAL";

// A name that a group by name is asked for; empty for another group.
std::string_view PickedName(const DataGroup& group);

// " WHERE ..." of the records of a group, or nothing.
std::string GroupCondition(const DataGroup& group);

// What the levels of a group are ordered by, `count` of them from the outermost in, for ORDER BY
// and GROUP BY; empty without levels.
std::string LevelKeys(const DataGroup& group, std::size_t count);

// What a command line asks of a benchmark; throws for what it cannot mean.
struct BenchOptions {
  std::int64_t rows = 1'000'000;  // --rows N
  int rounds = 3;                 // --rounds N, timed ones after the first
  int group = -1;                 // --group N: of this one only
};
BenchOptions ReadBenchOptions(std::span<const char* const> arguments);

// The groups that are measured.
std::vector<DataGroup> MeasuredGroups(const BenchOptions& options);

}  // namespace vrx::bench
