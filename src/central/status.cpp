#include "central/administration.h"
#include "central/server.h"
#include "central/transfer.h"
#include "database/central_source.h"
#include "database/connection.h"

namespace vrx {

FileStatus ReadFileStatus(SQLite::Database& database) {
  return WithDatabaseErrors(database, [&] {
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

FileStatus ReadFileStatus(const std::filesystem::path& file, LockWait lock_wait) {
  return WithDatabaseErrors(file, [&] {
    SQLite::Database database = OpenDatabase(file, Access::kRead, lock_wait);
    return ReadFileStatus(database);
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

std::vector<std::string> ReadYardNames(CentralConnection& server) {
  CheckCentralSchema(server);
  const CentralRows yards = server.Query("SELECT name FROM vrx.yard ORDER BY name");
  std::vector<std::string> names;
  for (int row = 0; row < yards.Count(); ++row) {
    names.push_back(yards.Text(row, 0));
  }
  return names;
}

std::optional<ProvedPush> ReadLastPush(CentralConnection& server, const std::string& yard,
                                       const std::string& source) {
  const CentralRows rows = server.Query(
      "SELECT first_row, last_row, to_char(at AT TIME ZONE 'UTC', "
      "'YYYY-MM-DD\"T\"HH24:MI:SS\"Z\"'), rows, target, actual_batch, actual_feed, encode(digest, "
      "'hex') FROM vrx.push WHERE yard = $1 AND source = $2 ORDER BY last_row DESC LIMIT 1",
      {FindYard(server, yard), source});
  if (rows.Count() == 0) {
    return std::nullopt;
  }
  return ProvedPush{.first_row = rows.Number(0, 0),
                    .last_row = rows.Number(0, 1),
                    .proof = ProofOf(rows, 0, 3),
                    .at = rows.Text(0, 2)};
}

}  // namespace vrx
