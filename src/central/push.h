#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "central/progress.h"
#include "central/push_plan.h"
#include "database/lock_wait.h"

namespace vrx {

class CentralConnection;

struct PushOrder {
  std::filesystem::path file = {};
  std::string yard = {};     // its name
  std::string machine = {};  // of this computer; another one than the last push was made on makes
                             // the file a generation of its own
  // A file that is a copy of another source goes on as a source of its own.
  bool as_new_source = false;
  LockWait lock_wait = kBusyTimeout;
  std::int64_t rows_of_portion = kRowsOfPortion;
};

struct PushOutcome {
  std::string source = {};
  std::int64_t rows = 0;     // pushed
  std::int64_t skipped = 0;  // were there already, the same
  std::int64_t imports = 0;  // pushed
  std::int64_t portions = 0;
  std::int64_t last_row = 0;  // of the file in the central database
  std::string at = {};        // server time of the last push, ISO 8601
};

// Takes the rows and imports that the central database lacks there, in portions of whole batches.
// Each portion is one transaction, which ends only if the server's count, sums and digest of its
// rows are those of the file. Whatever breaks it off, the next push goes on after the last portion.
//
// The first push makes the file a source (database/central_source.h), which takes a moment. Rows
// are read in blocks; the file is not locked while the network works. Memory does not grow with the
// number of rows.
//
// Throws CentralRefused if pushed rows were changed or deleted in the file, if the file is a copy
// of another one, and if a proof fails; RowRefused, DatabaseError, CentralStopped, and CentralError
// for what the server or the network does. Portions that are there stay there.
PushOutcome Push(CentralConnection& server, const PushOrder& order,
                 const CentralProgress& progress = {});

}  // namespace vrx
