#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "central/progress.h"
#include "central/row_encoder.h"
#include "platform/calendar.h"

namespace vrx {

class CentralConnection;

struct RestoreOrder {
  std::string yard = {};    // its name
  std::string source = {};  // UUID; empty: the only source that no other one continues
  std::filesystem::path out = {};
  std::string machine = {};
};

struct RestoreOutcome {
  std::string source = {};
  RowProof proof = {};
  std::int64_t imports = 0;
  std::string as_of = {};  // server time of the last push, ISO 8601
};

// Makes a new transaction database of what the central database has of a source: rows under their
// numbers, imports, the unit. Rows of ancestors and withdrawn rows are restored, erased ones are
// not. The file takes its name after both sides have computed the same count, sums and digest; it
// never replaces a file. It is a generation of its own: to push it, it has to become a source of
// its own. Memory does not grow with the number of rows.
//
// Throws CentralRefused, FileError, DatabaseError, CentralStopped and CentralError; nothing is left
// then.
RestoreOutcome Restore(CentralConnection& server, const RestoreOrder& order,
                       const Calendar& calendar, const CentralProgress& progress = {});

}  // namespace vrx
