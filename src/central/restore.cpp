#include <algorithm>
#include <array>
#include <bit>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>
#include <sqlite3.h>

#include "base/files.h"
#include "base/translation.h"
#include "base/uuid.h"
#include "central/administration.h"
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

// Reads one row of a binary COPY.
class CopyFields {
 public:
  explicit CopyFields(std::string_view bytes) : bytes_(bytes) {}

  std::int16_t Int16() { return static_cast<std::int16_t>(Unsigned(2)); }
  std::int32_t Int32() { return static_cast<std::int32_t>(Unsigned(4)); }
  std::int64_t Int64() { return static_cast<std::int64_t>(Unsigned(8)); }
  double Real() { return std::bit_cast<double>(Unsigned(8)); }

  // Nothing for NULL.
  std::optional<std::string_view> Field() {
    const std::int32_t length = Int32();
    return length < 0 ? std::nullopt : std::optional(Take(static_cast<std::size_t>(length)));
  }

 private:
  std::string_view Take(std::size_t size) {
    if (size > bytes_.size()) {
      throw CentralError(Tr("the central database sent a row that is cut off"), {});
    }
    const std::string_view taken = bytes_.substr(0, size);
    bytes_.remove_prefix(size);
    return taken;
  }

  std::uint64_t Unsigned(std::size_t size) {
    std::uint64_t number = 0;
    for (const char byte : Take(size)) {
      number = number << 8U | static_cast<unsigned char>(byte);
    }
    return number;
  }

  std::string_view bytes_;
};

// How a field of a row is stored.
enum class FieldForm { kWhole, kReal, kText, kWeights };
using enum FieldForm;
constexpr std::array kRowForms{kWhole, kWhole, kText, kText, kText, kText, kText,
                               kReal,  kReal,  kText, kText, kReal, kReal, kWeights};

class RowWriter {
 public:
  explicit RowWriter(SQLite::Database& database) : database_(database), insert_(Prepare(), End) {}

  // The bytes of one row; the header and the trailer are passed over.
  void Write(std::string_view bytes) {
    constexpr std::string_view kSignature("PGCOPY\n\377\r\n\0", 11);
    constexpr std::size_t kHeader = 19;
    if (bytes.starts_with(kSignature)) {
      bytes.remove_prefix(std::min(kHeader, bytes.size()));
    }
    if (bytes.empty()) {
      return;
    }
    CopyFields fields(bytes);
    if (fields.Int16() != static_cast<std::int16_t>(kRowForms.size())) {
      return;  // the trailer
    }
    int parameter = 0;
    sqlite3_clear_bindings(insert_.get());
    for (const FieldForm form : kRowForms) {
      ++parameter;
      if (const std::optional<std::string_view> field = fields.Field()) {
        Bind(form, parameter, *field);
      }
    }
    const int result = sqlite3_step(insert_.get());
    sqlite3_reset(insert_.get());
    if (result != SQLITE_DONE) {
      throw SQLite::Exception(database_.getHandle(), result);
    }
  }

 private:
  static void End(sqlite3_stmt* statement) { sqlite3_finalize(statement); }

  sqlite3_stmt* Prepare() {
    std::string marks;
    for (int count = 0; count < RowEncoder::kWeights + static_cast<int>(kRowForms.size()) - 1;
         ++count) {
      marks += marks.empty() ? "?" : ", ?";
    }
    const std::string text =
        "INSERT INTO Transactions (" + EncodedColumns() + ") VALUES (" + marks + ")";
    sqlite3_stmt* statement = nullptr;
    database_.check(
        sqlite3_prepare_v2(database_.getHandle(), text.c_str(), -1, &statement, nullptr));
    return statement;
  }

  // The bytes live until the row is stored.
  void Bind(FieldForm form, int parameter, std::string_view bytes) {
    CopyFields field(bytes);
    sqlite3_stmt* const insert = insert_.get();
    switch (form) {
      case kWhole:
        sqlite3_bind_int64(insert, parameter, field.Int64());
        break;
      case kReal:
        sqlite3_bind_double(insert, parameter, field.Real());
        break;
      case kText:
        sqlite3_bind_text(insert, parameter, bytes.data(), static_cast<int>(bytes.size()),
                          SQLITE_STATIC);
        break;
      case kWeights:
        BindWeights(parameter, field);
        break;
    }
  }

  void BindWeights(int first, CopyFields& array) {
    const std::int32_t dimensions = array.Int32();
    array.Int32();  // whether there are NULLs
    array.Int32();  // the type
    const std::int32_t count = dimensions == 0 ? 0 : array.Int32();
    if (count != 0) {
      array.Int32();  // the first index
    }
    for (int weight = 0; weight < std::min(count, RowEncoder::kWeights); ++weight) {
      if (const std::optional<std::string_view> element = array.Field()) {
        sqlite3_bind_double(insert_.get(), first + weight, CopyFields(*element).Real());
      }
    }
  }

  SQLite::Database& database_;
  std::unique_ptr<sqlite3_stmt, void (*)(sqlite3_stmt*)> insert_;
};

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
      Fill(database, outcome);
      outcome.proof = Prove(database);
    });
    file_.TakeName();
    return outcome;
  }

 private:
  void Fill(SQLite::Database& database, RestoreOutcome& outcome) {
    for (const std::string& index : IndexNames(database)) {
      database.exec("DROP INDEX " + index);
    }
    SQLite::Transaction transaction(database);
    WriteIdentity(database);
    WriteRows(database);
    outcome.imports = WriteImports(database);
    progress_.Report(Tr("Making the indexes"), 0, 0);
    for (const std::string& index : SchemaIndexes(DatabaseKind::kTransaction)) {
      database.exec(index);
      progress_.Check();
    }
    transaction.commit();
    MakeSource(database);
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
    std::int64_t rows = 0;
    for (const SourcePart& part : parts_) {
      // COPY takes no parameters. The numbers and the checked IDs cannot be anything else.
      const std::string query =
          "COPY (SELECT row, number, recipe, type, user_id, ingredient, pen, target, actual_batch, "
          "time, date, actual_feed, ing_percent, weights FROM vrx.transaction WHERE yard = " +
          Literal(yard_) + " AND source = " + Literal(part.source) + " AND row > (" +
          std::to_string(part.after) + ") AND row <= (" + std::to_string(part.last) +
          ") ORDER BY row) TO STDOUT (FORMAT binary)";
      server_.ReadCopy(query, [&](std::string_view bytes) {
        writer.Write(bytes);
        if (++rows % kReportEvery == 0) {
          progress_.Report(Tr("Restoring rows"), rows, 0);
        }
      });
    }
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

  RowProof Prove(SQLite::Database& database) {
    const VerifyOutcome proven = VerifyParts(server_, database, yard_, parts_, progress_);
    if (proven.difference || proven.proof.rows != CountRowsAbove(database, kBeforeFirstRow)) {
      throw CentralRefused(
          Tr("the proof of the restored rows failed: the file has other rows than the central "
             "database. It was not kept"));
    }
    return proven.proof;
  }

  CentralConnection& server_;
  const RestoreOrder& order_;
  const Calendar& calendar_;
  const CentralProgress& progress_;
  NewFile file_;
  std::string yard_;
  ServerSource source_;
  std::vector<SourcePart> parts_;
};

}  // namespace

RestoreOutcome Restore(CentralConnection& server, const RestoreOrder& order,
                       const Calendar& calendar, const CentralProgress& progress) {
  CheckCentralSchema(server);
  return RestoreRun(server, order, calendar, progress).Run();
}

}  // namespace vrx
