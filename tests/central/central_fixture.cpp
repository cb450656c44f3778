#include "central/central_fixture.h"

#include "central/administration.h"

namespace vrx::testing {
namespace {

constexpr const char* kGeneration = "00000000-0000-0000-0000-0000000000ff";

std::optional<std::string> TextOrNull(const std::optional<std::int64_t>& number) {
  return number ? std::optional(std::to_string(*number)) : std::nullopt;
}

std::optional<std::string> Unless(bool none, const std::optional<std::string>& text) {
  return none ? std::nullopt : text;
}

void MakeLogin(CentralConnection& server, const std::string& login, const std::string& role) {
  if (server.Query("SELECT 1 FROM pg_roles WHERE rolname = $1", {login}).Count() == 0) {
    server.Query("CREATE ROLE " + login + " LOGIN IN ROLE " + role);
  }
}

void MakeSource(CentralConnection& server, const std::string& yard, const std::string& source) {
  server.Query(
      "INSERT INTO vrx.source (yard, source, generation, unit, file) VALUES ($1, $2, $3, "
      "'LB', 'YARD.TDB')",
      {yard, source, kGeneration});
}

}  // namespace

CentralFixture::CentralFixture()
    : database_(CentralServer::Get().MakeCentralDatabase()), chief_(Connect("chief")) {
  MakeLogin(chief_, kOffice, "vrx_office");
  MakeLogin(chief_, kNutritionist, "vrx_nutritionist");
  MakeLogin(chief_, kAdministrator, "vrx_administrator");
  north_ = AddYard(chief_, "North", "America/Chicago", kNorth);
  south_ = AddYard(chief_, "South", "America/Denver", kSouth);
  MakeSource(chief_, north_, kNorthSource);
  MakeSource(chief_, south_, kSouthSource);
}

CentralConnection CentralFixture::Connect(const std::string& login) const {
  return CentralConnection(CentralServer::Get().Connection(database_, login));
}

void CentralFixture::Push(const std::string& yard, const std::vector<CentralRow>& rows) {
  PushRows(chief_, yard, yard == north_ ? kNorthSource : kSouthSource, rows);
}

std::string CentralFixture::Value(const std::string& sql, const CentralConnection::Values& values) {
  return chief_.Query(sql, values).TextOrNull(0, 0).value_or("NULL");
}

std::string CentralFixture::Table(const std::string& sql, const CentralConnection::Values& values) {
  return TextOf(chief_.Query(sql, values));
}

std::string TextOf(const CentralRows& rows) {
  std::string text;
  for (int row = 0; row < rows.Count(); ++row) {
    for (int column = 0; column < rows.Columns(); ++column) {
      text += (column == 0 ? "" : "|") + rows.TextOrNull(row, column).value_or("NULL");
    }
    text += '\n';
  }
  return text;
}

void PushRows(CentralConnection& server, const std::string& yard, const std::string& source,
              const std::vector<CentralRow>& rows) {
  CentralTransaction transaction(server);
  for (const CentralRow& row : rows) {
    const bool load = row.type == "BATCH";
    server.Query(
        "WITH r AS (SELECT $3::bigint AS row, $4::bigint AS number, $5 AS recipe, $6 AS type, $7 "
        "AS user_id, $8 AS ingredient, $9 AS pen, $10::float8 AS target, $11::float8 AS "
        "actual_batch, '06:00:00' AS time, $12 AS date, $13::float8 AS actual_feed, NULL::float8 "
        "AS ing_percent, NULL::float8[] AS weights, $14::bigint AS import) INSERT INTO "
        "vrx.transaction (yard, source, row, number, recipe, type, user_id, ingredient, pen, "
        "target, actual_batch, time, date, actual_feed, ing_percent, weights, import, digest) "
        "SELECT $1::uuid, $2::uuid, r.*, sha256(record_send(ROW(row, number, recipe, type, "
        "user_id, ingredient, pen, target, actual_batch, time, date, actual_feed, ing_percent, "
        "weights))) FROM r",
        {yard, source, std::to_string(row.row), TextOrNull(row.number), row.recipe, row.type,
         row.user_id, Unless(!load, row.name), Unless(load, row.name), std::to_string(row.target),
         load ? std::to_string(row.actual) : "0", Unless(row.date.empty(), row.date),
         load ? "0" : std::to_string(row.actual), TextOrNull(row.import)});
  }
  server.Query(
      "INSERT INTO vrx.push (yard, source, first_row, last_row, generation, unit, client) "
      "VALUES ($1, $2, $3, $4, $5, 'LB', 1)",
      {yard, source, std::to_string(rows.front().row), std::to_string(rows.back().row),
       kGeneration});
  transaction.Commit();
}

std::string StateOf(CentralConnection& server, const std::string& sql,
                    const CentralConnection::Values& values) {
  try {
    server.Query(sql, values);
    return {};
  } catch (const CentralError& error) {
    return error.State().empty() ? error.what() : error.State();
  }
}

}  // namespace vrx::testing
