#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "central/progress.h"
#include "central/push_plan.h"
#include "central/row_encoder.h"
#include "central/server_source.h"
#include "database/lock_wait.h"
#include "platform/calendar.h"

namespace vrx {

class CentralConnection;

// What a yard's program does with the central database. Memory never grows with the number of rows.

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

// The first place where a file and the central database differ.
struct Difference {
  std::int64_t first_row = 0;
  std::int64_t last_row = 0;
  std::int64_t changed = 0;        // rows with other contents
  std::int64_t missing_here = 0;   // rows that only the central database has
  std::int64_t missing_there = 0;  // rows that only the file has
};

struct VerifyOutcome {
  std::string source = {};
  RowProof proof = {};  // of all rows compared, if they are equal
  std::optional<Difference> difference = {};
  std::int64_t erased = 0;   // rows of the file that the administrator has erased there
  std::int64_t waiting = 0;  // rows of the file that were not pushed yet
  std::string as_of = {};    // server time of the last push, ISO 8601
};

// Computes count, exact sums and digest of all pushed rows anew on both sides. Stops at the first
// range of rows that differs. Changes nothing on either side. Memory does not grow with the number
// of rows. Throws CentralRefused if the file is not a source of that yard, and as Push does.
VerifyOutcome Verify(CentralConnection& server, const std::filesystem::path& file,
                     const std::string& yard, LockWait lock_wait,
                     const CentralProgress& progress = {});

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
[[nodiscard]] FileStatus ReadFileStatus(SQLite::Database& database);
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

// The names of the yards that the login may see. Throws CentralError.
[[nodiscard]] std::vector<std::string> ReadYardNames(CentralConnection& server);

// The last transaction of the pushes of a source, with what both sides computed of its rows.
struct ProvedPush {
  std::int64_t first_row = 0;
  std::int64_t last_row = 0;
  RowProof proof = {};
  std::string at = {};  // server time, ISO 8601
};

// Nothing if the yard has pushed no row of such a source. Throws CentralError, and CentralRefused
// if there is no such yard.
[[nodiscard]] std::optional<ProvedPush> ReadLastPush(CentralConnection& server,
                                                     const std::string& yard,
                                                     const std::string& source);

}  // namespace vrx
