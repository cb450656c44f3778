#include "central/administration.h"
#include "central/server.h"
#include "central/transfer.h"
#include "database/central_source.h"
#include "database/connection.h"

namespace vrx {

FileStatus ReadFileStatus(const std::filesystem::path& file, LockWait lock_wait) {
  return WithDatabaseErrors(file, [&] {
    SQLite::Database database = OpenDatabase(file, Access::kRead, lock_wait);
    FileStatus status{.rows = CountRowsAbove(database, kBeforeFirstRow)};
    status.waiting = status.rows;
    if (const auto source = ReadCentralSource(database)) {
      status.is_source = true;
      status.source = source->source;
      status.pushed_to = source->pushed_to;
      status.pushed_at = source->pushed_at;
      status.changes = CountCentralChanges(database);
      if (!source->pushed_at.empty()) {
        status.waiting = CountRowsAbove(database, source->pushed_to);
      }
    }
    return status;
  });
}

std::vector<YardSource> ReadYardSources(CentralConnection& server, const std::string& yard) {
  CheckCentralSchema(server);
  const CentralRows yards = yard.empty()
                                ? server.Query("SELECT yard, name FROM vrx.yard ORDER BY name")
                                : server.Query("SELECT yard, name FROM vrx.yard WHERE yard = $1",
                                               {FindYard(server, yard)});
  std::vector<YardSource> result;
  for (int row = 0; row < yards.Count(); ++row) {
    for (ServerSource& source : ReadSources(server, yards.Text(row, 0))) {
      const std::int64_t rows =
          server
              .Query("SELECT coalesce(sum(rows), 0) FROM vrx.push WHERE yard = $1 AND source = $2",
                     {yards.Text(row, 0), source.source})
              .Number(0, 0);
      result.push_back({.yard = yards.Text(row, 1), .source = std::move(source), .rows = rows});
    }
  }
  return result;
}

}  // namespace vrx
