#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "history/columns.h"
#include "support/temp_folder.h"

namespace vrx::testing {

// A row of Transactions as a test specifies it; texts in stored form, "" for NULL.
struct SiteRow {
  int transaction = 1;
  std::string recipe = "STARTER";
  std::string type = "BATCH";
  std::string user = "7";
  std::string ingredient = {};
  std::string pen = {};
  double target = 0;
  double batch = 0;
  std::string time = "06:10:00";
  std::string date = "2011-03-14";
  double feed = 0;
  std::optional<double> percent = {};
  std::vector<double> weights = {};  // Ing01Wt on
};

// A folder with a transaction database, and the ingredient names of a recipe database: CORN, HAY
// and SALT.
class ExportFixture {
 public:
  ExportFixture();

  void Store(const std::vector<SiteRow>& rows) const;

  // Runs statements on the database, for contents that SiteRow cannot specify.
  void Alter(const std::string& statements) const;

  // Stores a few rows with special cases of the groups: a transaction on two dates, a feed without
  // a batch, rows without a user and one of user -1, equal dates, names with an apostrophe, a comma
  // and an accent.
  void StoreYard() const;

  const std::filesystem::path& Database() const { return database_; }
  const TempFolder& Folder() const { return folder_; }
  const IngredientColumnNames& Names() const { return names_; }

 private:
  TempFolder folder_;
  std::filesystem::path database_;
  IngredientColumnNames names_;
};

// The visible columns of the grid in their initial order: slots by position, as in
// GetVisibleColumnList.
std::vector<std::string> VisibleColumnsOf(int group);

// Slots as in GetVisibleColumnList, from the visible fields.
std::vector<std::string> Slots(const std::vector<std::string_view>& fields);

// The name in the golden files of a group by name; "" for another group.
std::string_view YardNameOf(int group);

}  // namespace vrx::testing
