#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>

#include "platform/calendar.h"

namespace vrx::testing {

// How much of a yard's life to make up. The same values give the same records.
struct YardYears {
  std::uint64_t seed = 1;
  // Ends with this many records, in the middle of a day if need be; 0: with the last day.
  std::int64_t rows = 0;
  // Counts while `rows` is 0. A day has about 2,500 records.
  int days = 365;
  Date first_day{std::chrono::year(2016), std::chrono::January, std::chrono::day(4)};
};

struct YardFiles {
  std::filesystem::path program_directory;  // holds the templates
  std::filesystem::path transactions;
  std::filesystem::path recipes = {};  // empty: none is made
};

// The yard has 400 pens, most of them on rations that change with the days on feed, and is fed from
// about 150 loads a day. Each day is stored as a module's file is: the batches of all its loads,
// then their feeds, with what the store computes of them. Weights are in pounds.
//
// The recipe database has the names in the records, and no lines. Existing files are
// refused. Throws Error and DatabaseError. Returns the number of records.
std::int64_t MakeYears(const YardYears& years, const YardFiles& files);

}  // namespace vrx::testing
