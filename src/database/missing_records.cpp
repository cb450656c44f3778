#include "database/missing_records.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include <SQLiteCpp/Column.h>
#include <SQLiteCpp/Statement.h>

#include "database/connection.h"
#include "database/records.h"
#include "database/schema.h"

namespace vrx {
namespace {

std::vector<int> MissingOf(SQLite::Database& database, std::string_view table, int count) {
  std::vector<bool> there(static_cast<std::size_t>(count) + 1, false);
  SQLite::Statement query(database, "SELECT ID FROM " + Bracketed(table) +
                                        " WHERE ID BETWEEN 1 AND " + std::to_string(count));
  while (query.executeStep()) {
    there.at(static_cast<std::size_t>(query.getColumn(0).getInt())) = true;
  }
  std::vector<int> missing;
  for (int id = 1; id <= count; ++id) {
    if (!there.at(static_cast<std::size_t>(id))) {
      missing.push_back(id);
    }
  }
  return missing;
}

// "3, 17-20".
std::string Ranges(const std::vector<int>& ids) {
  std::string text;
  for (std::size_t first = 0; first < ids.size();) {
    std::size_t last = first;
    while (last + 1 < ids.size() && ids[last + 1] == ids[last] + 1) {
      ++last;
    }
    text += (text.empty() ? "" : ", ") + std::to_string(ids[first]);
    if (last > first) {
      text += "-" + std::to_string(ids[last]);
    }
    first = last + 1;
  }
  return text;
}

}  // namespace

MissingRecords FindMissingRecords(SQLite::Database& database) {
  return WithDatabaseErrors(database, [&] {
    return MissingRecords{.ingredients = MissingOf(database, kIngredientTable, kIngredientCount),
                          .recipes = MissingOf(database, kRecipeTable, kRecipeCount),
                          .pens = MissingOf(database, kPenTable, kPenCount)};
  });
}

std::string ToText(const MissingRecords& missing) {
  const std::array<std::pair<std::string_view, const std::vector<int>&>, 3> kinds{
      {{"ingredients", missing.ingredients}, {"recipes", missing.recipes}, {"pens", missing.pens}}};
  std::string text;
  for (const auto& [name, ids] : kinds) {
    if (!ids.empty()) {
      text += (text.empty() ? "" : "; ") + std::string(name) + " " + Ranges(ids);
    }
  }
  return text;
}

}  // namespace vrx
