#pragma once

#include <cstdint>
#include <string>

#include <SQLiteCpp/Database.h>

#include "central/progress.h"
#include "central/push_plan.h"
#include "central/server_source.h"

namespace vrx {

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
