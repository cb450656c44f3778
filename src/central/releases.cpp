#include "central/releases.h"

#include <algorithm>

#include <SQLiteCpp/Database.h>
#include <nlohmann/json.hpp>

#include "base/files.h"
#include "base/translation.h"
#include "central/administration.h"
#include "central/release_records.h"
#include "central/server.h"
#include "central/server_source.h"
#include "database/connection.h"
#include "feed/record_fields.h"

namespace vrx {
namespace {

using Json = nlohmann::json;

constexpr std::string_view kReleases = R"(
SELECT r.release, r.unit, r.file, coalesce(r.note, ''),
  to_char(r.at AT TIME ZONE 'UTC', 'YYYY-MM-DD"T"HH24:MI:SS"Z"'), r.login, r.for_all,
  coalesce((SELECT json_agg(y.name ORDER BY y.name) FROM vrx.release_yard m
            JOIN vrx.yard y ON y.yard = m.yard WHERE m.release = r.release), '[]'),
  coalesce((SELECT json_agg(json_build_object('yard', y.name, 'at', to_char(
              f.at AT TIME ZONE 'UTC', 'YYYY-MM-DD"T"HH24:MI:SS"Z"')) ORDER BY f.at)
            FROM vrx.fetch f JOIN vrx.yard y ON y.yard = f.yard WHERE f.release = r.release), '[]')
FROM vrx.release r
WHERE $1::uuid IS NULL OR r.for_all
   OR EXISTS (SELECT FROM vrx.release_yard m WHERE m.release = r.release AND m.yard = $1)
ORDER BY r.release DESC)";

// Two nutritionists may publish at once: the number of one of them is taken then.
constexpr int kAttempts = 5;

template <typename Record>
std::int64_t CountActive(const std::vector<Record>& records) {
  return std::count_if(records.begin(), records.end(),
                       [](const Record& record) { return IsActive(record); });
}

std::vector<std::optional<std::string>> FindYards(CentralConnection& server,
                                                  const std::vector<std::string>& names) {
  std::vector<std::optional<std::string>> yards;
  for (const std::string& name : names) {
    std::optional<std::string> yard = FindYard(server, name);
    if (std::find(yards.begin(), yards.end(), yard) == yards.end()) {
      yards.push_back(std::move(yard));
    }
  }
  return yards;
}

int MakeRelease(CentralConnection& server, const PublishOrder& order, const RecipeTables& records) {
  const auto yards = FindYards(server, order.yards);
  CentralTransaction transaction(server);
  const int release = static_cast<int>(
      server
          .Query("INSERT INTO vrx.release (release, unit, file, note, for_all) SELECT "
                 "coalesce(max(release), 0) + 1, $1, $2, $3, $4::boolean FROM vrx.release "
                 "RETURNING release",
                 {records.unit, FileTitle(order.file),
                  order.note.empty() ? std::nullopt : std::optional(order.note),
                  yards.empty() ? "true" : "false"})
          .Number(0, 0));
  for (const auto& yard : yards) {
    server.Query("INSERT INTO vrx.release_yard (release, yard) VALUES ($1, $2)",
                 {std::to_string(release), yard});
  }
  WriteReleaseRecords(server, release, records);
  transaction.Commit();
  return release;
}

}  // namespace

std::string_view WordOf(ReleaseRecord record) {
  switch (record) {
    case ReleaseRecord::kIngredient:
      return "ingredient";
    case ReleaseRecord::kRecipe:
      return "recipe";
    case ReleaseRecord::kLine:
      return "line";
    case ReleaseRecord::kPen:
      break;
  }
  return "pen";
}

PublishOutcome Publish(CentralConnection& server, const PublishOrder& order,
                       const CentralProgress& progress) {
  CheckCentralSchema(server);
  SQLite::Database database = OpenDatabase(order.file, Access::kRead, order.lock_wait);
  const RecipeTables records = ReadSnapshot(database);
  if (records.unit != "LB" && records.unit != "KG") {
    throw CentralRefused(
        Tr("the weights of %1 have no unit that the central database knows: LB or KG",
           {FileTitle(order.file)}));
  }
  progress.Report(Tr("Publishing the recipes"), 0, 0);
  PublishOutcome outcome{.unit = records.unit,
                         .ingredients = CountActive(records.ingredients),
                         .recipes = CountActive(records.recipes),
                         .pens = CountActive(records.pens)};
  for (int attempt = 1;; ++attempt) {
    try {
      outcome.release = MakeRelease(server, order, records);
      return outcome;
    } catch (const CentralError& error) {
      if (error.State() != kUniqueViolation || attempt == kAttempts) {
        throw;
      }
    }
    progress.Check();
  }
}

std::vector<Release> ListReleases(CentralConnection& server, const std::string& yard) {
  CheckCentralSchema(server);
  const CentralRows rows =
      server.Query(std::string(kReleases),
                   {yard.empty() ? std::nullopt : std::optional(FindYard(server, yard))});
  std::vector<Release> releases;
  for (int row = 0; row < rows.Count(); ++row) {
    Release& release = releases.emplace_back();
    release.number = static_cast<int>(rows.Number(row, 0));
    release.unit = rows.Text(row, 1);
    release.file = rows.Text(row, 2);
    release.note = rows.Text(row, 3);
    release.at = rows.Text(row, 4);
    release.login = rows.Text(row, 5);
    release.for_all = rows.Text(row, 6) == "t";
    release.yards = Json::parse(rows.Text(row, 7)).get<std::vector<std::string>>();
    for (const Json& fetch : Json::parse(rows.Text(row, 8))) {
      release.fetches.push_back({.yard = fetch["yard"], .at = fetch["at"]});
    }
  }
  return releases;
}

}  // namespace vrx
