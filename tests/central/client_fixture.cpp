#include "central/client_fixture.h"

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "base/error.h"
#include "central/administration.h"
#include "database/connection.h"
#include "database/identity.h"
#include "support/database_files.h"

namespace vrx::testing {

namespace fs = std::filesystem;

ClientFixture::ClientFixture()
    : database_(CentralServer::Get().MakeCentralDatabase()), chief_(Connect("chief")) {
  AddYard(chief_, "North", "America/Chicago", kNorth);
  AddYard(chief_, "South", "America/Denver", kSouth);
}

fs::path ClientFixture::MakeFile(const std::string& name, int batches) {
  const fs::path file = CopyOfTemplate(folder_, name, DatabaseKind::kTransaction);
  fs::permissions(file, fs::perms::owner_write, fs::perm_options::add);
  SQLite::Database database = OpenDatabase(file, Access::kWrite);
  WriteField(database, kTypeField, kUserTransDb);
  WriteField(database, kUnitField, "LB");
  WriteField(database, kCreatedField, name);  // the rows of another file have other names
  AddBatches(file, batches);
  return file;
}

// Values that a careless road would change: texts with quotes and characters of 4 bytes, NULLs,
// weights whose sum depends on the order, the smallest and the largest numbers.
void ClientFixture::AddBatches(const fs::path& file, int batches) {
  // Waits for locks as the program does.
  SQLite::Database database = OpenDatabase(file, Access::kWrite);
  database.exec(
      "WITH RECURSIVE b (n) AS (SELECT ifnull((SELECT max([Transaction]) FROM Transactions), 0) "
      "+ 1 UNION ALL SELECT n + 1 FROM b WHERE n < ifnull((SELECT max([Transaction]) FROM "
      "Transactions), 0) + " +
      std::to_string(batches) +
      "), r (k) AS (VALUES (0), (1), (2), (3), (4)) INSERT INTO Transactions ([Transaction], "
      "Recipe, Type, UserID, Ingredient, Pen, Target, ActualBatch, Time, Date, ActualFeed, "
      "IngPercent, Ing01Wt, Ing32Wt) SELECT n, CASE n % 4 WHEN 0 THEN NULL WHEN 1 THEN "
      "'O''Brien \"1\"; \\' ELSE '\xF0\x9F\x90\x84 ' || n END, iif(k < 3, 'BATCH', 'FEED'), "
      "iif(n % 3 = 0, NULL, n % 7), iif(k < 3, (SELECT Created FROM History) || k, NULL), iif(k < "
      "3, NULL, 'PEN' || "
      "n % 40), n * 0.1 + k, iif(n % 11 = 0, NULL, n * 1.1 - k * 1e-7), '06:30:00', "
      "date('2026-01-01', '+' || (n / 100) || ' days'), iif(k < 3, 0, iif(n % 13 = 0, "
      "1e15 + 0.3, n / 3.0)), NULL, iif(k < 3, NULL, n / 7.0), iif(k = 4, n * 5e-324, NULL) "
      "FROM b, r WHERE " +
      std::to_string(batches) + " > 0 ORDER BY n, k");
}

void ClientFixture::Alter(const fs::path& file, const std::string& statements) {
  testing::Alter(file, statements);
}

std::string ClientFixture::Ask(const fs::path& file, const std::string& query) {
  const std::vector<std::string> rows = testing::Ask(file, query);
  return rows.empty() ? std::string() : rows.front();
}

std::string ClientFixture::Connection(const std::string& login) const {
  return CentralServer::Get().Connection(database_, login);
}

CentralConnection ClientFixture::Connect(const std::string& login) const {
  return CentralConnection(Connection(login));
}

PushOrder ClientFixture::OrderFor(const fs::path& file) {
  return {.file = file, .yard = "North", .machine = "first PC", .rows_of_portion = 300};
}

PushOutcome ClientFixture::Push(const fs::path& file) {
  CentralConnection server = Connect();
  return vrx::Push(server, OrderFor(file));
}

std::string ClientFixture::Refusal(const PushOrder& order) {
  CentralConnection server = Connect();
  try {
    vrx::Push(server, order);
    return {};
  } catch (const Error& error) {
    return error.what();
  }
}

VerifyOutcome ClientFixture::Verify(const fs::path& file) {
  CentralConnection server = Connect();
  return vrx::Verify(server, file, "North", kBusyTimeout);
}

fs::path ClientFixture::Restore(const std::string& name, const std::string& source) {
  CentralConnection server = Connect();
  const fs::path out = folder_ / name;
  vrx::Restore(server, {.yard = "North", .source = source, .out = out, .machine = "first PC"},
               calendar_);
  return out;
}

void ClientFixture::ExpectThere(const fs::path& file, std::int64_t rows) {
  const VerifyOutcome outcome = Verify(file);
  EXPECT_FALSE(outcome.difference)
      << outcome.difference->first_row << " to " << outcome.difference->last_row;
  EXPECT_EQ(outcome.waiting, 0);
  EXPECT_EQ(std::to_string(outcome.proof.rows), Ask(file, "SELECT count(*) FROM Transactions"));
  EXPECT_EQ(Value("SELECT count(*) FROM vrx.transaction JOIN vrx.yard USING (yard) WHERE name = "
                  "'North'"),
            std::to_string(rows));
}

std::vector<std::string> ClientFixture::Rows(const fs::path& file) {
  SQLite::Database database(file, SQLite::OPEN_READONLY);
  SQLite::Statement query(database, "SELECT * FROM Transactions ORDER BY rowid");
  std::vector<std::string> rows;
  while (query.executeStep()) {
    std::string& row = rows.emplace_back();
    for (int column = 0; column < query.getColumnCount(); ++column) {
      const SQLite::Column value = query.getColumn(column);
      row += std::to_string(value.getType()) + ":" + value.getString() + "|";
    }
  }
  return rows;
}

std::string ClientFixture::Value(const std::string& sql, const CentralConnection::Values& values) {
  return chief_.Query(sql, values).TextOrNull(0, 0).value_or("NULL");
}

}  // namespace vrx::testing
