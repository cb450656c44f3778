#include "central/administration.h"

#include <array>
#include <string_view>

#include "base/translation.h"
#include "sql_texts.h"

namespace vrx {
namespace {

constexpr int kOldestServer = 150000;

// What is replaced at each upgrade, in this order.
constexpr std::array<std::string_view, 6> kReplaced{
    sql::kPush, sql::kAdministration, sql::kUnits, sql::kFigures, sql::kViews, sql::kOffice};

std::optional<int> SchemaVersion(CentralConnection& server) {
  const bool there =
      server.Query("SELECT 1 FROM pg_catalog.pg_namespace WHERE nspname = 'vrx'").Count() > 0;
  if (!there) {
    return std::nullopt;
  }
  return static_cast<int>(server.Query("SELECT max(version) FROM vrx.version").Number(0, 0));
}

void CheckServer(CentralConnection& server) {
  const CentralRows rows = server.Query(
      "SELECT current_setting('server_version_num'), current_setting('server_version'), "
      "pg_encoding_to_char(encoding), datname FROM pg_database WHERE datname = current_database()");
  if (rows.Number(0, 0) < kOldestServer) {
    throw CentralSchemaError(
        Tr("the server is PostgreSQL %1; version 15 or newer is needed", {rows.Text(0, 1)}));
  }
  if (rows.Text(0, 2) != "UTF8") {
    throw CentralSchemaError(Tr("the database %1 has the encoding %2; UTF8 is needed",
                                {rows.Text(0, 3), rows.Text(0, 2)}));
  }
}

void CheckNotNewer(int version) {
  if (version > kCentralSchema) {
    throw CentralSchemaError(Tr(
        "the central database has schema version %1, which is newer than this program knows (%2)",
        {std::to_string(version), std::to_string(kCentralSchema)}));
  }
}

std::int64_t WithdrawRows(CentralConnection& server, const WithdrawalOrder& order, bool erase) {
  const auto text = [](const std::optional<std::int64_t>& row) {
    return row ? std::optional(std::to_string(*row)) : std::nullopt;
  };
  return server
      .Query("SELECT vrx.withdraw($1, $2, $3, $4, $5)",
             {order.source, text(order.first_row), text(order.last_row), order.why,
              erase ? "true" : "false"})
      .Number(0, 0);
}

}  // namespace

void CheckCentralSchema(CentralConnection& server) {
  if (!SchemaVersion(server)) {
    throw CentralSchemaError(
        Tr("the database %1 holds no central database: the administrator "
           "makes one with \"central init\"",
           {server.Target()}));
  }
  const CentralRows rows =
      server.Query("SELECT version, minimum_client FROM vrx.version ORDER BY version DESC LIMIT 1");
  const std::string version = rows.Text(0, 0);
  if (rows.Number(0, 1) > kCentralClient) {
    throw CentralSchemaError(
        Tr("the central database has schema version %1 and needs a newer program than this one",
           {version}));
  }
  if (rows.Number(0, 0) < kCentralSchema) {
    throw CentralSchemaError(
        Tr("the central database has schema version %1; this program needs "
           "%2. The administrator upgrades it with \"central init\"",
           {version, std::to_string(kCentralSchema)}));
  }
}

InitOutcome InitCentral(CentralConnection& server) {
  CheckServer(server);
  CentralTransaction transaction(server);
  server.Query("SET LOCAL lock_timeout = '5s'");
  const std::optional<int> version = SchemaVersion(server);
  CheckNotNewer(version.value_or(0));
  if (!version) {
    server.Query(std::string(sql::kRoles));
  }
  server.Query("SET LOCAL ROLE vrx_owner");
  if (!version) {
    server.Query(std::string(sql::kVersion1));
    server.Query(std::string(sql::kVersion1Rights));
  }
  for (const std::string_view text : kReplaced) {
    server.Query(std::string(text));
  }
  if (version != kCentralSchema) {
    server.Query("INSERT INTO vrx.version (version, minimum_client) VALUES ($1, $2)",
                 {std::to_string(kCentralSchema), std::to_string(kCentralClient)});
  }
  transaction.Commit();
  if (!version) {
    return InitOutcome::kMade;
  }
  return *version == kCentralSchema ? InitOutcome::kUpToDate : InitOutcome::kUpgraded;
}

std::string AddYard(CentralConnection& server, const std::string& name, const std::string& zone,
                    const std::string& login) {
  CentralTransaction transaction(server);
  if (server.Query("SELECT 1 FROM pg_catalog.pg_roles WHERE rolname = $1", {login}).Count() == 0) {
    server.Query("CREATE ROLE " + server.Quoted(login) + " LOGIN");
  }
  server.Query("GRANT vrx_yard TO " + server.Quoted(login));
  std::string yard =
      server.Query("SELECT vrx.add_yard($1, $2, $3)", {name, zone, login}).Text(0, 0);
  transaction.Commit();
  return yard;
}

void SetAlias(CentralConnection& server, const std::string& yard, const std::string& name,
              const std::string& company_name) {
  server.Query("SELECT vrx.set_alias($1, $2, $3)", {yard, name, company_name});
}

std::int64_t Withdraw(CentralConnection& server, const WithdrawalOrder& order) {
  return WithdrawRows(server, order, false);
}

std::int64_t Erase(CentralConnection& server, const WithdrawalOrder& order) {
  return WithdrawRows(server, order, true);
}

}  // namespace vrx
