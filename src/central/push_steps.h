#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <SQLiteCpp/Database.h>

#include "central/progress.h"
#include "central/push_plan.h"
#include "central/server_source.h"
#include "database/central_source.h"

namespace vrx {

// What a push and the status know before they send a row. All functions throw what Push throws.

// Makes sure that the file continues the source that the central database has: refuses a copy, a
// file that lacks rows which are there, and rows that were changed or deleted after they were
// pushed. Notes that turn out to be of no consequence are forgotten.
void CheckContinues(SQLite::Database& database, CentralConnection& server, const std::string& yard,
                    const ServerSource& there, CentralSource& here,
                    const CentralProgress& progress);

// A source of the yard that has the file's first row: the file is a copy of it that does not know
// so, for it was made before the first push. Nothing if no source has it.
[[nodiscard]] std::optional<ServerSource> FindOriginal(SQLite::Database& database,
                                                       CentralConnection& server,
                                                       const std::string& yard);

[[noreturn]] void RefuseCopy();

// The rows noted in the file that the central database has otherwise, ascending.
[[nodiscard]] std::vector<std::int64_t> FindChangedRows(SQLite::Database& database,
                                                        CentralConnection& server,
                                                        const std::string& yard,
                                                        const std::vector<SourcePart>& parts);

// The last row up to which the file has the same rows as the parts of a source, for a copy that
// goes on as a source of its own.
[[nodiscard]] std::int64_t FindCommonRows(SQLite::Database& database, CentralConnection& server,
                                          const std::string& yard,
                                          const std::vector<SourcePart>& parts,
                                          const CentralProgress& progress);

struct PortionOrder {
  std::string yard = {};
  std::string source = {};
  std::string generation = {};
  std::string unit = {};
  std::int64_t after_row = kBeforeFirstRow;
  std::int64_t after_import = 0;
  std::int64_t pushed_before = 0;  // for the progress
  std::int64_t total = 0;
};

struct PortionResult {
  std::int64_t rows = 0;
  std::int64_t skipped = 0;
  std::int64_t imports = 0;
  std::string at = {};
};

// One transaction of a push: imports, rows, proof. Throws CentralRefused, and takes nothing there,
// if the server's proof is another one.
PortionResult PushPortionRows(CentralConnection& server, SQLite::Database& database,
                              const PushPortion& portion, const PortionOrder& order,
                              const CentralProgress& progress);

struct NewServerSource {
  ServerSource source = {};
  std::string generation = {};
  std::string parent_generation = {};
  std::string unit = {};
  std::string file = {};
};
void MakeServerSource(CentralConnection& server, const std::string& yard,
                      const NewServerSource& made);

// Adds marks for a label and for settlements of imports that differ from what the server has.
void PushMarks(CentralConnection& server, const std::string& yard, const ServerSource& there,
               SQLite::Database& database, const std::string& unit);

}  // namespace vrx
