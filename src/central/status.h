#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "central/server_source.h"
#include "database/lock_wait.h"

namespace vrx {

// What a transaction database has to do with the central database, as it knows itself.
struct FileStatus {
  bool is_source = false;      // it was pushed once
  std::string source = {};     // UUID
  std::int64_t rows = 0;       // all
  std::int64_t waiting = 0;    // above the last pushed row
  std::int64_t changes = 0;    // noted changes of pushed rows
  std::int64_t pushed_to = 0;  // row number
  std::string pushed_at = {};  // server time, ISO 8601; "" before the first push
};

// Reads the file only. Throws DatabaseError.
[[nodiscard]] FileStatus ReadFileStatus(const std::filesystem::path& file, LockWait lock_wait);

// A source of a yard, for a list.
struct YardSource {
  std::string yard = {};  // name
  ServerSource source = {};
  std::int64_t rows = 0;  // that are there
};

// All sources that the login may see, of one yard if it is named. Throws CentralError, and
// CentralRefused if there is no such yard.
[[nodiscard]] std::vector<YardSource> ReadYardSources(CentralConnection& server,
                                                      const std::string& yard);

}  // namespace vrx
