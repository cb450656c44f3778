#include <cstddef>
#include <map>
#include <optional>
#include <vector>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <nlohmann/json.hpp>

#include "base/translation.h"
#include "base/undo.h"
#include "central/administration.h"
#include "central/push_plan.h"
#include "central/push_steps.h"
#include "central/row_reader.h"
#include "central/server.h"
#include "database/connection.h"
#include "database/import_rows.h"
#include "database/imports.h"

namespace vrx {
namespace {

using Json = nlohmann::json;

constexpr std::string_view kColumns =
    "row, number, recipe, type, user_id, ingredient, pen, target, actual_batch, time, date, "
    "actual_feed, ing_percent, weights, digest, import";

constexpr const char* kMakeTable =
    "CREATE TEMPORARY TABLE pushed (row bigint, number bigint, recipe text, type text, user_id "
    "text, ingredient text, pen text, target float8, actual_batch float8, time text, date text, "
    "actual_feed float8, ing_percent float8, weights float8[], digest bytea, import bigint) ON "
    "COMMIT DROP";

// Rows that are there already with the same digest. A row with another one makes the insertion
// fail.
constexpr const char* kSkipTheSame =
    " p WHERE NOT EXISTS (SELECT 1 FROM vrx.transaction t WHERE t.yard = $1::uuid AND t.source = "
    "$2::uuid AND t.row = p.row AND t.digest = p.digest)";

constexpr std::string_view kCopyHeader("PGCOPY\n\377\r\n\0\0\0\0\0\0\0\0\0", 19);

Json ValueOf(const SQLite::Column& column) {
  if (column.isNull()) {
    return nullptr;
  }
  return column.isInteger() ? Json(column.getInt64()) : Json(column.getString());
}

std::string TextOfJson(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// Sends rows of a query as JSON objects with the names of its columns, a thousand at a time.
std::int64_t SendRows(CentralConnection& server, SQLite::Statement& query,
                      const std::string& statement, const CentralConnection::Values& parameters) {
  constexpr std::size_t kAtOnce = 1000;
  std::int64_t sent = 0;
  Json rows = Json::array();
  const auto send = [&] {
    CentralConnection::Values values = parameters;
    values.push_back(TextOfJson(rows));
    server.Query(statement, values);
    sent += static_cast<std::int64_t>(rows.size());
    rows.clear();
  };
  while (query.executeStep()) {
    Json row = Json::object();
    for (int column = 0; column < query.getColumnCount(); ++column) {
      row[query.getColumnName(column)] = ValueOf(query.getColumn(column));
    }
    rows.push_back(std::move(row));
    if (rows.size() == kAtOnce) {
      send();
    }
  }
  if (!rows.empty()) {
    send();
  }
  return sent;
}

constexpr const char* kFileImports =
    "SELECT Number AS import, At AS at, File AS file, SHA256 AS sha256, Units AS units, RowsRead "
    "AS rows_read, Stored AS stored, LeftOut AS left_out, NotRead AS not_read, Repeated AS "
    "repeated, Batches AS batches, FileLow AS file_low, FileHigh AS file_high, Missing AS missing, "
    "StoredLow AS stored_low, StoredHigh AS stored_high, FirstDate AS first_date, LastDate AS "
    "last_date, Settled AS settled FROM Imports WHERE Number > ?1 AND Number <= ?2";

constexpr const char* kFileBatches =
    "SELECT Import AS import, row_number() OVER (PARTITION BY Import ORDER BY rowid) AS position, "
    "FileNumber AS file_number, [Transaction] AS number, State AS state, Loads AS loads, Feeds AS "
    "feeds, Rows AS rows FROM ImportedBatches WHERE Import > ?1 AND Import <= ?2";

std::string InsertInto(const std::string& table) {
  return "INSERT INTO " + table + " SELECT r.* FROM json_populate_recordset(NULL::" + table +
         ", (SELECT json_agg(to_jsonb(j.value) || jsonb_build_object('yard', $1::text, 'source', "
         "$2::text)) FROM json_array_elements($3::json) AS j)) AS r";
}

std::int64_t PushImports(CentralConnection& server, SQLite::Database& database,
                         const PushPortion& portion, const PortionOrder& order) {
  if (portion.last_import <= order.after_import || !HasImportTables(database)) {
    return 0;
  }
  std::int64_t imports = 0;
  for (const auto& [query_text, table] :
       {std::pair{kFileImports, "vrx.import"}, std::pair{kFileBatches, "vrx.imported_batch"}}) {
    SQLite::Statement query(database, query_text);
    query.bind(1, order.after_import);
    query.bind(2, portion.last_import);
    const std::int64_t sent =
        SendRows(server, query, InsertInto(table), {order.yard, order.source});
    imports = query_text == kFileImports ? sent : imports;
  }
  return imports;
}

// Sends the rows and returns what the file has.
RowProof SendRows(CentralConnection& server, SQLite::Database& database, const PushPortion& portion,
                  const PortionOrder& order, const CentralProgress& progress) {
  server.Query(kMakeTable);
  server.StartCopy("COPY pg_temp.pushed FROM STDIN (FORMAT binary)");
  server.PutCopy(kCopyHeader);
  const ImportRows imports(database,
                           ImportNumbers(database, order.after_import, portion.last_import));
  RowReader reader(database, order.after_row);
  ProofSum proof;
  std::string block;
  std::int64_t done = order.pushed_before;
  for (bool more = true; more;) {
    block.clear();
    more = reader.ReadBlock(portion.last_row, [&](const RowEncoder& row) {
      AppendInt16(block, RowEncoder::kFieldCount + 2);
      block += row.Fields();
      AppendInt32(block, static_cast<std::int32_t>(row.Digest().size()));
      block += row.Digest();
      if (const std::optional<std::int64_t> import = imports.ImportOf(row.Number())) {
        AppendInt32(block, sizeof(*import));
        AppendInt64(block, *import);
      } else {
        AppendInt32(block, -1);
      }
      proof.Add(row);
      ++done;
    });
    server.PutCopy(block);
    progress.Report(Tr("Pushing rows"), done, order.total);
  }
  block.clear();
  AppendInt16(block, -1);
  server.PutCopy(block);
  server.EndCopy();
  return proof.Take();
}

// Returns how many rows were there already.
std::int64_t InsertRows(CentralConnection& server, const PushPortion& portion,
                        const PortionOrder& order) {
  const std::int64_t there =
      server
          .Query(
              "SELECT count(*) FROM vrx.transaction WHERE yard = $1 AND source = $2 AND row "
              "BETWEEN $3 AND $4",
              {order.yard, order.source, std::to_string(portion.first_row),
               std::to_string(portion.last_row)})
          .Number(0, 0);
  const std::string columns(kColumns);
  server.Query("INSERT INTO vrx.transaction (yard, source, " + columns +
                   ") SELECT $1::uuid, $2::uuid, " + columns + " FROM pg_temp.pushed" +
                   (there > 0 ? kSkipTheSame : ""),
               {order.yard, order.source});
  return there;
}

struct ServerProof {
  RowProof proof;
  std::string at;
};

ServerProof ReadProof(CentralConnection& server, const PushPortion& portion,
                      const PortionOrder& order) {
  const CentralRows rows = server.Query(
      "INSERT INTO vrx.push (yard, source, first_row, last_row, generation, unit, client) VALUES "
      "($1, $2, $3, $4, $5, $6, $7) RETURNING rows, target, actual_batch, actual_feed, "
      "encode(digest, 'hex'), to_char(at AT TIME ZONE 'UTC', 'YYYY-MM-DD\"T\"HH24:MI:SS\"Z\"')",
      {order.yard, order.source, std::to_string(portion.first_row),
       std::to_string(portion.last_row), order.generation, order.unit,
       std::to_string(kCentralClient)});
  ServerProof server_proof{.proof = ProofOf(rows, 0, 0), .at = rows.Text(0, 5)};
  return server_proof;
}

}  // namespace

PortionResult PushPortionRows(CentralConnection& server, SQLite::Database& database,
                              const PushPortion& portion, const PortionOrder& order,
                              const CentralProgress& progress) {
  PortionResult result;
  const auto push = [&] {
    server.Query("BEGIN");
    result.imports = PushImports(server, database, portion, order);
    if (portion.rows > 0) {
      const RowProof here = SendRows(server, database, portion, order, progress);
      result.skipped = InsertRows(server, portion, order);
      result.rows = here.rows - result.skipped;
      const ServerProof there = ReadProof(server, portion, order);
      if (here != there.proof) {
        throw CentralRefused(
            Tr("the proof of rows %1 to %2 failed: the central database has other rows than the "
               "file. Nothing of them was stored there",
               {std::to_string(portion.first_row), std::to_string(portion.last_row)}));
      }
      result.at = there.at;
    }
    progress.Check();
    server.Query("COMMIT");
  };
  RunOrUndo(push, [&] { server.Abandon(); });
  return result;
}

void MakeServerSource(CentralConnection& server, const std::string& yard,
                      const NewServerSource& made) {
  const auto or_null = [](const std::string& text) {
    return text.empty() ? std::optional<std::string>() : std::optional(text);
  };
  server.Query(
      "INSERT INTO vrx.source (yard, source, generation, parent, parent_generation, "
      "parent_last_row, unit, file) VALUES ($1, $2, $3, $4, $5, $6, $7, $8)",
      {yard, made.source.source, made.generation, or_null(made.source.parent),
       or_null(made.parent_generation),
       made.source.parent.empty() ? std::nullopt
                                  : std::optional(std::to_string(made.source.parent_last_row)),
       made.unit, made.file});
}

void PushMarks(CentralConnection& server, const std::string& yard, const ServerSource& there,
               SQLite::Database& database, const std::string& unit) {
  const std::string add =
      "INSERT INTO vrx.mark (yard, source, kind, import, value) VALUES ($1, $2, $3, $4, $5)";
  if (unit != there.unit) {
    server.Query(add, {yard, there.source, "label", std::nullopt, unit});
  }
  const CentralRows rows = server.Query(
      "SELECT i.import, coalesce((SELECT m.value FROM vrx.mark m WHERE m.yard = i.yard AND "
      "m.source = i.source AND m.kind = 'settled' AND m.import = i.import ORDER BY m.at DESC LIMIT "
      "1), i.settled, '') FROM vrx.import i WHERE i.yard = $1 AND i.source = $2",
      {yard, there.source});
  std::map<std::int64_t, std::string> settled;
  for (int row = 0; row < rows.Count(); ++row) {
    settled[rows.Number(row, 0)] = rows.Text(row, 1);
  }
  for (const ImportRecord& import : ReadImports(database)) {
    const auto found = settled.find(import.number);
    if (found != settled.end() && found->second != import.settled && !import.settled.empty()) {
      server.Query(add,
                   {yard, there.source, "settled", std::to_string(import.number), import.settled});
    }
  }
}

}  // namespace vrx
