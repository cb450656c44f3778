// Creates the recipe database of the sample site from its texts.
//
//   make_sample_site SOURCE_FOLDER BLANK_TEMPLATE TARGET
//
// data/sample_site/README.md describes the format of the texts.

#include <algorithm>
#include <exception>
#include <filesystem>
#include <functional>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>

#include "base/error.h"
#include "base/files.h"
#include "base/number.h"
#include "database/connection.h"
#include "database/identity.h"
#include "database/records.h"
#include "platform/calendar.h"
#include "platform/operator.h"
#include "presenter/database_identity.h"
#include "settings/settings.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaxText = 1U << 20U;

// A fixed day, so that every build creates the same database.
class SiteCalendar : public vrx::Calendar {
 public:
  [[nodiscard]] vrx::LocalTime Now() const override {
    return {.date = {std::chrono::year{2026}, std::chrono::January, std::chrono::day{1}}};
  }
};

class BuildOperator : public vrx::Operator {
 public:
  vrx::Answer ShowMessage(const vrx::MessageBox& box) override {
    throw vrx::Error(box.title + ": " + box.text + (box.cause.empty() ? "" : ": " + box.cause));
  }
  void Beep() override {}
  void SetBusy(bool /*busy*/) override {}
  void SetStatusLine(std::string_view /*text*/) override {}
  void SetStatusColor(vrx::StatusColor /*color*/) override {}
};

// One line of a table, its cells by column.
class Row {
 public:
  Row(std::vector<std::string> cells, std::string place)
      : cells_(std::move(cells)), place_(std::move(place)) {}

  [[nodiscard]] const std::string& Text(std::size_t column) const { return cells_.at(column); }

  [[nodiscard]] int Number(std::size_t column, int low, int high) const {
    const auto value = vrx::ParseLong(Text(column));
    if (!value || std::to_string(*value) != Text(column) || *value < low || *value > high) {
      Fail("\"" + Text(column) + "\" is no whole number from " + std::to_string(low) + " to " +
           std::to_string(high));
    }
    return *value;
  }

  [[nodiscard]] bool YesNo(std::size_t column) const {
    if (Text(column) != "yes" && Text(column) != "no") {
      Fail("\"" + Text(column) + "\" is neither yes nor no");
    }
    return Text(column) == "yes";
  }

  [[noreturn]] void Fail(const std::string& what) const { throw vrx::Error(place_ + what); }

 private:
  std::vector<std::string> cells_;
  std::string place_;
};

std::vector<std::string> Split(const std::string& line) {
  std::vector<std::string> cells(1);
  for (const char character : line) {
    if (character == '\t') {
      cells.emplace_back();
    } else {
      cells.back().push_back(character);
    }
  }
  return cells;
}

// Passes on the rows after the heading; throws Error with file and line.
void ReadTable(const fs::path& path, const std::vector<std::string>& heading,
               const std::function<void(const Row&)>& take) {
  std::istringstream text(vrx::ReadFileBytes(path, kMaxText));
  int number = 0;
  for (std::string line; std::getline(text, line);) {
    const std::string place = path.string() + ":" + std::to_string(++number) + ": ";
    std::vector<std::string> cells = Split(line);
    if (number == 1) {
      if (cells != heading) {
        throw vrx::Error(place + "the heading is not that of this table");
      }
      continue;
    }
    if (cells.size() != heading.size()) {
      throw vrx::Error(place + std::to_string(cells.size()) + " cells instead of " +
                       std::to_string(heading.size()));
    }
    take(Row(std::move(cells), place));
  }
  if (number == 0) {
    throw vrx::Error(path.string() + ":1: the heading is missing");
  }
}

void LoadIngredients(SQLite::Database& database, const fs::path& folder) {
  ReadTable(folder / "ingredients.tsv", {"ID", "Name", "Description", "DryMatter%", "HandAdd"},
            [&](const Row& row) {
              vrx::WriteIngredient(database, {.id = row.Number(0, 1, vrx::kIngredientCount),
                                              .name = row.Text(1),
                                              .description = row.Text(2),
                                              .dry_matter_percent = row.Number(3, 0, 100),
                                              .hand_add = row.YesNo(4)});
            });
}

void LoadRecipes(SQLite::Database& database, const fs::path& folder) {
  ReadTable(
      folder / "recipes.tsv",
      {"ID", "Name", "Description", "BatchType", "HeadCount", "RationTarget", "AdjBatTotIndex"},
      [&](const Row& row) {
        const std::string& type = row.Text(3);
        if (type.size() != 1 || std::string_view("WH%P").find(type) == std::string::npos) {
          row.Fail("\"" + type + "\" is no batch type");
        }
        static_cast<void>(row.Number(5, 0, 999999));
        static_cast<void>(row.Number(6, 0, 40));
        vrx::WriteRecipe(database, {.id = row.Number(0, 1, vrx::kRecipeCount),
                                    .name = row.Text(1),
                                    .description = row.Text(2),
                                    .batch_type = type,
                                    .head_count = row.Number(4, 0, 1000),
                                    .ration_target = row.Text(5),
                                    .adjust_batch_index = row.Text(6)});
      });
}

void LoadRecipeLines(SQLite::Database& database, const fs::path& folder) {
  ReadTable(folder / "recipe_lines.tsv",
            {"RecipeID", "Ingredient", "Target", "Ration%", "DryMatter%", "DryMatter",
             "BatchTarget", "Sequence", "HandAdd", "Ingredient%"},
            [&](const Row& row) {
              const auto ingredient =
                  vrx::ReadIngredient(database, row.Number(1, 1, vrx::kIngredientCount));
              if (ingredient.description.empty()) {
                row.Fail("ingredient " + row.Text(1) + " is not in use");
              }
              static_cast<void>(row.Number(0, 1, vrx::kRecipeCount));
              vrx::RecipeLineRecord line{.recipe_id = row.Text(0),
                                         .ingredient = row.Text(1),
                                         .target = row.Text(2),
                                         .ration_percent = row.Text(3),
                                         .dry_matter_percent = row.Text(4),
                                         .dry_matter = row.Text(5),
                                         .batch_target = row.Text(6),
                                         .sequence = row.Number(7, 1, vrx::kMaxRecipeLines),
                                         .hand_add = row.YesNo(8),
                                         .ingredient_percent = row.Text(9)};
              if (row.Number(4, 0, 100) != ingredient.dry_matter_percent ||
                  line.hand_add != ingredient.hand_add) {
                row.Fail("dry matter and hand-add are not those of ingredient " + row.Text(1));
              }
              vrx::WriteRecipeLine(database, line);
            });
}

void LoadPens(SQLite::Database& database, const fs::path& folder) {
  ReadTable(folder / "pens.tsv", {"ID", "Name", "Description", "FeedAmount"}, [&](const Row& row) {
    static_cast<void>(row.Number(3, 0, 999999));
    vrx::WritePen(database, {.id = row.Number(0, 1, vrx::kPenCount),
                             .name = row.Text(1),
                             .description = row.Text(2),
                             .feed_amount = row.Text(3)});
  });
}

void MakeSite(const fs::path& folder, const fs::path& blank, const fs::path& target) {
  // Written to a temporary file first, so that an invalid text leaves no incomplete database.
  const fs::path fresh = target.string() + ".new";
  fs::create_directories(target.parent_path());
  fs::remove(fresh);
  if (!vrx::CopyFileNoOverwrite(blank, fresh)) {
    throw vrx::Error("cannot copy " + blank.string() + " to " + fresh.string());
  }
  BuildOperator op;
  const SiteCalendar calendar;
  const vrx::PrivateINI settings;
  vrx::DatabaseIdentity identity(op, calendar, settings);
  identity.SetDatabaseType(fresh, vrx::kUserRecipeDb);
  identity.SetDatabaseUoM(fresh, "LB");
  identity.SetDatabaseDate(fresh, vrx::DateSelector::kCreated);
  {
    SQLite::Database database = vrx::OpenDatabase(fresh, vrx::Access::kWrite);
    SQLite::Transaction transaction(database);
    LoadIngredients(database, folder);
    LoadRecipes(database, folder);
    LoadRecipeLines(database, folder);
    LoadPens(database, folder);
    transaction.commit();
  }
  fs::rename(fresh, target);
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv, argv + argc);
  if (args.size() != 4) {
    std::cerr << "usage: make_sample_site SOURCE_FOLDER BLANK_TEMPLATE TARGET\n";
    return 2;
  }
  try {
    MakeSite(args[1], args[2], args[3]);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "make_sample_site: " << error.what() << '\n';
    return 1;
  }
}
