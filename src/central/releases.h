#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "central/progress.h"
#include "database/lock_wait.h"
#include "platform/calendar.h"

namespace vrx {

class CentralConnection;

// Recipe databases that the nutritionist publishes and the yards fetch. A release never changes.
// All functions throw CentralRefused, CentralError, DatabaseError and CentralStopped.

struct PublishOrder {
  std::filesystem::path file = {};      // a recipe database; it is only read
  std::vector<std::string> yards = {};  // names; without one, all yards, also those added later
  std::string note = {};                // for the yards
  LockWait lock_wait = kBusyTimeout;
};

struct PublishOutcome {
  int release = 0;
  std::string unit = {};
  std::int64_t ingredients = 0;  // records in use
  std::int64_t recipes = 0;
  std::int64_t pens = 0;
};

// Makes the next release. Its login needs the role of a nutritionist.
PublishOutcome Publish(CentralConnection& server, const PublishOrder& order,
                       const CentralProgress& progress = {});

struct ReleaseFetch {
  std::string yard = {};  // name
  std::string at = {};    // server time, ISO 8601
};

struct Release {
  int number = 0;
  std::string unit = {};  // "LB" or "KG"
  std::string file = {};  // name without folder
  std::string note = {};
  std::string at = {};  // server time, ISO 8601
  std::string login = {};
  bool for_all = false;
  std::vector<std::string> yards = {};     // names, if it is not for all
  std::vector<ReleaseFetch> fetches = {};  // by time
};

// The releases that the login may see, the newest first; with a yard's name those for that yard. A
// yard's login sees only those for it, and only its own fetches.
[[nodiscard]] std::vector<Release> ListReleases(CentralConnection& server,
                                                const std::string& yard = {});

enum class ReleaseRecord { kIngredient, kRecipe, kLine, kPen };

// "ingredient", "recipe", "line", "pen"
[[nodiscard]] std::string_view WordOf(ReleaseRecord record);

// A field that differs between the yard's recipe database and the release.
struct RecordDifference {
  ReleaseRecord record = ReleaseRecord::kIngredient;
  int id = 0;             // of the ingredient, recipe or pen; of a line that of its recipe
  std::string name = {};  // in the yard's database, or in the release if it is not in use there
  int place = 0;          // of a line, in its recipe, from 1; otherwise 0
  std::string ingredient = {};  // of a line, its name in the release
  std::string field = {};       // column of the recipe database
  // Nothing for a line that only the other one has. Lines are compared as both recipes compute
  // them, those of the release with the head counts and the dry matter that the yard keeps.
  std::optional<std::string> here = {};
  std::optional<std::string> release = {};
  bool kept = false;  // the new file has the yard's value
};

// A record in use at the yard whose ID has another name in the release. Batches in a data module
// bear IDs, so its old batches would get the new name.
struct RenamedRecord {
  ReleaseRecord record = ReleaseRecord::kIngredient;
  int id = 0;
  std::string here = {};
  std::string release = {};
  friend bool operator==(const RenamedRecord& one, const RenamedRecord& other) = default;
};

struct ReleaseDifferences {
  Release release = {};
  std::vector<RecordDifference> differences = {};  // ingredients, recipes with their lines, pens
  std::vector<RenamedRecord> renamed = {};
  // A line of text for each recipe whose figures cannot be computed. Its lines are as published.
  std::vector<std::string> not_computed = {};
};

struct ReleaseQuestion {
  std::string yard = {};            // name
  std::filesystem::path file = {};  // the yard's recipe database; it is only read
  std::optional<int> release = {};  // else the newest one for the yard
  LockWait lock_wait = kBusyTimeout;
};

// What fetching would change. Throws CentralRefused if the release is in another unit or does not
// exist.
[[nodiscard]] ReleaseDifferences DifferencesTo(CentralConnection& server,
                                               const ReleaseQuestion& question,
                                               const CentralProgress& progress = {});

struct FetchOrder {
  ReleaseQuestion what = {};
  std::filesystem::path out = {};  // the new file
  // The new names that the operator has accepted; any other one is refused.
  std::vector<RenamedRecord> accepted = {};
};

// Makes a new recipe database of the yard's and the release, and notes the fetch. The new file has
// the ingredients, recipes and lines of the release. It keeps the yard's pens with their feed
// amounts, and of what is in use there, the head counts of recipes and the dry matter of
// ingredients; lines are computed with these. It never replaces a file, and nothing is left of it
// after an exception. Also throws FileError.
ReleaseDifferences Fetch(CentralConnection& server, const FetchOrder& order,
                         const Calendar& calendar, const CentralProgress& progress = {});

}  // namespace vrx
