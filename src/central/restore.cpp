#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "base/files.h"
#include "base/translation.h"
#include "base/uuid.h"
#include "central/administration.h"
#include "central/row_reader.h"
#include "central/server.h"
#include "central/server_source.h"
#include "central/transfer.h"
#include "database/central_source.h"
#include "database/connection.h"
#include "database/identity.h"
#include "database/imports.h"
#include "database/templates.h"

namespace vrx {
namespace {

namespace fs = std::filesystem;

// In kilobytes. Memory stays far below 64 MB.
constexpr const char* kRestoreCache = "PRAGMA cache_size=-16384";

std::string Literal(const std::string& uuid) {
  if (!IsUuid(uuid)) {
    throw CentralRefused(Tr("%1 is not the ID of a source", {uuid}));
  }
  return "'" + uuid + "'";
}

ServerSource ChooseSource(CentralConnection& server, const std::string& yard,
                          const RestoreOrder& order) {
  if (!order.source.empty()) {
    std::optional<ServerSource> chosen =
        IsUuid(order.source) ? FindSource(server, yard, order.source) : std::nullopt;
    if (!chosen) {
      throw CentralRefused(
          Tr("the yard %1 has no source %2 in the central database", {order.yard, order.source}));
    }
    return *chosen;
  }
  std::vector<ServerSource> sources = ReadSources(server, yard);
  std::vector<ServerSource> last;
  for (const ServerSource& source : sources) {
    if (std::none_of(sources.begin(), sources.end(),
                     [&](const ServerSource& other) { return other.parent == source.source; })) {
      last.push_back(source);
    }
  }
  if (last.size() != 1) {
    throw CentralRefused(
        last.empty()
            ? Tr("the yard %1 has no source in the central database", {order.yard})
            : Tr("the yard %1 has %2 sources in the central database; one has to be chosen",
                 {order.yard, std::to_string(last.size())}));
  }
  return last.front();
}

// A range of the file's rows and what the server has proven of it.
struct ProvenRange {
  std::int64_t after = 0;
  std::int64_t last = 0;
  RowProof proof = {};
};

// What the pushes of a part proved. The server computes anew what it has of a push of which the
// part has some rows only, or some were erased. Rows between two pushes belong to the later one.
std::vector<ProvenRange> ReadProvenRanges(CentralConnection& server, const std::string& yard,
                                          const SourcePart& part) {
  const std::vector<CentralRange> erased = ReadErased(server, yard, part);
  std::vector<ProvenRange> ranges;
  std::int64_t after = part.after;
  for (PushedRange& push : ReadPushes(server, yard, part)) {
    const std::int64_t last = std::min(push.last_row, part.last);
    const bool whole = push.first_row > part.after && push.last_row <= part.last &&
                       std::none_of(erased.begin(), erased.end(), [&](const CentralRange& range) {
                         return range.last >= push.first_row && range.first <= push.last_row;
                       });
    ranges.push_back(
        {.after = after,
         .last = last,
         .proof = whole ? std::move(push.proof)
                        : ReadRowProof(server, yard,
                                       {.source = part.source, .after = after, .last = last})});
    after = last;
  }
  return ranges;
}

// A file whose pages of rows stay as they are while they are read: without locks and without a look
// for changes. What the schema is now is kept, so that indexes may be made meanwhile.
SQLite::Database OpenUnchanging(const fs::path& path) {
  std::string uri = "file:";
  for (const char character : fs::absolute(path).generic_string()) {
    switch (character) {
      case '%':
        uri += "%25";
        break;
      case '?':
        uri += "%3f";
        break;
      case '#':
        uri += "%23";
        break;
      default:
        uri += character;
    }
  }
  SQLite::Database database(uri + "?immutable=1",
                            SQLite::OPEN_READONLY | SQLite::OPEN_URI | SQLite::OPEN_NOMUTEX);
  database.exec("BEGIN");
  database.execAndGet("SELECT count(*) FROM sqlite_schema");
  return database;
}

// Reads the rows back from the file, in a thread of its own, and compares them with what the server
// has proven. Meanwhile indexes may be made: they leave the pages of the rows as they are.
class RowsReadBack {
 public:
  RowsReadBack(const fs::path& file, const std::vector<ProvenRange>& ranges)
      : database_(OpenUnchanging(file)),
        reading_(std::async(std::launch::async, [this, &ranges] { return Read(ranges); })) {}
  ~RowsReadBack() { stop_ = true; }
  RowsReadBack(const RowsReadBack&) = delete;
  RowsReadBack& operator=(const RowsReadBack&) = delete;

  // Of all rows; nothing if they differ from what the server has.
  std::optional<RowProof> Wait(const CentralProgress& progress) {
    constexpr std::chrono::milliseconds kLook{100};
    while (reading_.wait_for(kLook) != std::future_status::ready) {
      progress.Check();
    }
    return reading_.get();
  }

 private:
  std::optional<RowProof> Read(const std::vector<ProvenRange>& ranges) {
    ProofSum total;
    for (const ProvenRange& range : ranges) {
      ProofSum sum;
      RowReader reader(database_, range.after);
      while (reader.ReadBlock(range.last, [&](const RowEncoder& row) {
        sum.Add(row);
        total.Add(row);
      })) {
        if (stop_) {
          return std::nullopt;
        }
      }
      if (sum.Take() != range.proof) {
        return std::nullopt;
      }
    }
    return total.Take();
  }

  SQLite::Database database_;
  std::atomic<bool> stop_ = false;
  std::future<std::optional<RowProof>> reading_;  // waits for its thread when it goes
};

class RestoreRun {
 public:
  RestoreRun(CentralConnection& server, const RestoreOrder& order, const Calendar& calendar,
             const CentralProgress& progress)
      : server_(server),
        order_(order),
        calendar_(calendar),
        progress_(progress),
        file_(order.out),
        yard_(FindYard(server, order.yard)),
        source_(ChooseSource(server, yard_, order)),
        parts_(ReadParts(server, yard_, source_)) {}

  RestoreOutcome Run() {
    CreateTemplate(file_.Path(), DatabaseKind::kTransaction);
    RestoreOutcome outcome{.source = source_.source, .as_of = source_.pushed_at};
    WithDatabaseErrors(order_.out, [&] {
      SQLite::Database database = OpenDatabase(file_.Path(), Access::kWrite);
      database.exec(kRestoreCache);
      // The file has no name yet: nothing of it is worth a journal.
      database.exec("PRAGMA journal_mode=OFF");
      database.exec("PRAGMA synchronous=OFF");
      WriteContents(database, outcome);
      RowsReadBack rows_there(file_.Path(), ranges_);
      MakeIndexes(database);
      outcome.proof = Prove(rows_there);
      MakeSource(database);
    });
    file_.TakeName();
    return outcome;
  }

 private:
  void WriteContents(SQLite::Database& database, RestoreOutcome& outcome) {
    for (const std::string& index : IndexNames(database)) {
      database.exec("DROP INDEX " + index);
    }
    SQLite::Transaction transaction(database);
    WriteIdentity(database);
    WriteRows(database);
    outcome.imports = WriteImports(database);
    transaction.commit();
  }

  void MakeIndexes(SQLite::Database& database) {
    progress_.Report(Tr("Making the indexes"), 0, 0);
    for (const std::string& index : SchemaIndexes(DatabaseKind::kTransaction)) {
      database.exec(index);
      progress_.Check();
    }
  }

  static std::vector<std::string> IndexNames(SQLite::Database& database) {
    SQLite::Statement query(database,
                            "SELECT name FROM sqlite_schema WHERE type = 'index' AND tbl_name = "
                            "'Transactions'");
    std::vector<std::string> names;
    while (query.executeStep()) {
      names.push_back(query.getColumn(0).getString());
    }
    return names;
  }

  void WriteIdentity(SQLite::Database& database) {
    WriteField(database, kTypeField, kUserTransDb);
    WriteField(database, kUnitField, source_.unit);
    WriteField(database, kCreatedField, StoredText(calendar_.Now().date));
    WriteField(database, kModifiedField, StoredText(calendar_.Now().date));
  }

  void WriteRows(SQLite::Database& database) {
    constexpr std::int64_t kReportEvery = 5000;
    RowWriter writer(database);
    for (const SourcePart& part : parts_) {
      // COPY takes no parameters. The numbers and the checked IDs cannot be anything else.
      const std::string query = "COPY (SELECT " + CopiedColumns() +
                                " FROM vrx.transaction WHERE yard = " + Literal(yard_) +
                                " AND source = " + Literal(part.source) + " AND row > (" +
                                std::to_string(part.after) + ") AND row <= (" +
                                std::to_string(part.last) +
                                ") ORDER BY row) TO STDOUT (FORMAT binary)";
      server_.ReadCopy(query, [&](std::string_view bytes) {
        writer.Write(bytes);
        if (writer.Rows() % kReportEvery == 0) {
          progress_.Report(Tr("Restoring rows"), writer.Rows(), 0);
        }
      });
      const std::vector<ProvenRange> of_part = ReadProvenRanges(server_, yard_, part);
      ranges_.insert(ranges_.end(), of_part.begin(), of_part.end());
    }
    rows_ = writer.Rows();
  }

  std::int64_t WriteImports(SQLite::Database& database) {
    constexpr std::string_view kServerImports =
        "SELECT import, at, file, sha256, units, rows_read, stored, left_out, not_read, repeated, "
        "batches, file_low, file_high, missing, stored_low, stored_high, first_date, last_date, "
        "coalesce((SELECT m.value FROM vrx.mark m WHERE m.yard = i.yard AND m.source = i.source "
        "AND m.kind = 'settled' AND m.import = i.import ORDER BY m.at DESC LIMIT 1), settled) FROM "
        "vrx.import i WHERE yard = $1 AND source = $2 AND import > $3 ORDER BY import LIMIT 1000";
    constexpr std::string_view kServerBatches =
        "SELECT import, file_number, number, state, loads, feeds, rows FROM vrx.imported_batch "
        "WHERE yard = $1 AND source = $2 AND import > $3 AND import <= $4 ORDER BY import, "
        "position";
    std::int64_t after = 0;
    std::int64_t count = 0;
    for (;;) {
      const CentralRows imports = server_.Query(std::string(kServerImports),
                                                {yard_, source_.source, std::to_string(after)});
      if (imports.Count() == 0) {
        return count;
      }
      MakeImportTables(database);
      const std::int64_t last = imports.Number(imports.Count() - 1, 0);
      Insert(database, "Imports", imports);
      Insert(database, "ImportedBatches",
             server_.Query(std::string(kServerBatches),
                           {yard_, source_.source, std::to_string(after), std::to_string(last)}));
      after = last;
      count += imports.Count();
      progress_.Check();
    }
  }

  // The columns' affinities make numbers of the texts.
  static void Insert(SQLite::Database& database, const std::string& table,
                     const CentralRows& rows) {
    std::string marks;
    for (int column = 0; column < rows.Columns(); ++column) {
      marks += marks.empty() ? "?" : ", ?";
    }
    SQLite::Statement insert(database, "INSERT INTO " + table + " VALUES (" + marks + ")");
    for (int row = 0; row < rows.Count(); ++row) {
      insert.reset();
      for (int column = 0; column < rows.Columns(); ++column) {
        if (rows.IsNull(row, column)) {
          insert.bind(column + 1);
        } else {
          insert.bind(column + 1, rows.Text(row, column));
        }
      }
      insert.exec();
    }
  }

  void MakeSource(SQLite::Database& database) {
    CentralSource made = MakeCentralSource(database, order_.machine);
    made.source = source_.source;
    made.parent = source_.generation;
    made.watched_to = std::max<std::int64_t>(source_.last_row, 0);
    made.pushed_to = made.watched_to;
    made.pushed_at = source_.pushed_at;
    WriteCentralSource(database, made);
  }

  RowProof Prove(RowsReadBack& rows_there) {
    const std::optional<RowProof> proof = rows_there.Wait(progress_);
    if (!proof || proof->rows != rows_) {
      throw CentralRefused(
          Tr("the proof of the restored rows failed: the file has other rows than the central "
             "database. It was not kept"));
    }
    return *proof;
  }

  CentralConnection& server_;
  const RestoreOrder& order_;
  const Calendar& calendar_;
  const CentralProgress& progress_;
  NewFile file_;
  std::string yard_;
  ServerSource source_;
  std::vector<SourcePart> parts_;
  std::vector<ProvenRange> ranges_;
  std::int64_t rows_ = 0;  // written
};

}  // namespace

RestoreOutcome Restore(CentralConnection& server, const RestoreOrder& order,
                       const Calendar& calendar, const CentralProgress& progress) {
  CheckCentralSchema(server);
  return RestoreRun(server, order, calendar, progress).Run();
}

}  // namespace vrx
