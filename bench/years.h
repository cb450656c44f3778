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

// The data of a history benchmark: the same yard over a long time and over a tenth of it. `EQUAL`
// is a recipe and a pen with equally many records in both, spread over the whole time.
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

// A name for a group by name; empty for another group.
std::string_view PickedName(const DataGroup& group);

// " WHERE ..." of the records of a group, or nothing.
std::string GroupCondition(const DataGroup& group);

// The terms of the outermost `count` levels of a group for ORDER BY and GROUP BY; empty without
// levels.
std::string LevelKeys(const DataGroup& group, std::size_t count);

// Parses the command line of a benchmark; throws if it is invalid.
struct BenchOptions {
  std::int64_t rows = 1'000'000;  // --rows N
  int rounds = 3;                 // --rounds N, timed ones after the first
  int group = -1;                 // --group N: of this one only
};
BenchOptions ReadBenchOptions(std::span<const char* const> arguments);

// The measured groups.
std::vector<DataGroup> MeasuredGroups(const BenchOptions& options);

}  // namespace vrx::bench
