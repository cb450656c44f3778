#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "central/progress.h"
#include "central/row_encoder.h"
#include "central/server_source.h"
#include "database/lock_wait.h"

namespace vrx {

class CentralConnection;

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

// The same for an open database and the parts that it should have; `difference` and `proof` only,
// and rows above the last part are not looked at.
VerifyOutcome VerifyParts(CentralConnection& server, SQLite::Database& database,
                          const std::string& yard, const std::vector<SourcePart>& parts,
                          const CentralProgress& progress);

}  // namespace vrx
