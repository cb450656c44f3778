#include "support/full_recipe_database.h"

#include <array>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Transaction.h>

#include "base/number.h"
#include "database/connection.h"
#include "database/identity.h"
#include "database/records.h"
#include "database/schema.h"
#include "database/templates.h"
#include "feed/batch_type.h"
#include "feed/ration.h"
#include "presenter/database_identity.h"
#include "settings/settings.h"
#include "support/fixed_calendar.h"
#include "support/recording_operator.h"

namespace vrx::testing {
namespace {

constexpr std::array<const char*, 4> kTypes = {"W", "H", "%", "P"};

class Filler {
 public:
  Filler(SQLite::Database& database, std::uint32_t seed) : database_(database), random_(seed) {}

  void Fill() {
    for (int id = 1; id <= kIngredientCount; ++id) {
      ingredients_.push_back({.id = id,
                              .name = Name("I", id),
                              .description = Description(),
                              .dry_matter_percent = Pick(0, 20) == 0 ? 0 : Pick(5, 100),
                              .hand_add = Pick(0, 4) == 0});
      WriteIngredient(database_, ingredients_.back());
    }
    for (int id = 1; id <= kRecipeCount; ++id) {
      FillRecipe(id);
    }
    for (int id = 1; id <= kPenCount; ++id) {
      WritePen(database_, {.id = id,
                           .name = Name("N", id),
                           .description = Description(),
                           .feed_amount = std::to_string(Pick(1, 99999))});
    }
  }

 private:
  int Pick(int least, int most) { return std::uniform_int_distribution<int>(least, most)(random_); }

  // Six characters, of every ID another.
  std::string Name(std::string_view letter, int id) {
    constexpr std::string_view kAlphabet = "AbCdEFGHJKLMNOPQRSTUVWXYZ/+-";
    std::string name(letter);
    name += kAlphabet[static_cast<std::size_t>(Pick(0, static_cast<int>(kAlphabet.size()) - 1))];
    name += kAlphabet[static_cast<std::size_t>(Pick(0, static_cast<int>(kAlphabet.size()) - 1))];
    return name + Format(id, "000");
  }

  std::string Description() {
    std::string text(static_cast<std::size_t>(Pick(1, 16)), ' ');
    for (char& character : text) {
      character = static_cast<char>(Pick('a', 'z'));
    }
    return text;
  }

  // A small share to each line and the rest of the hundred to the last one.
  void AddLines(Ration& ration) {
    int hundredths_left = 10000;
    for (int sequence = 1; sequence <= kMaxRecipeLines; ++sequence) {
      const IngredientRecord& ingredient =
          ingredients_[static_cast<std::size_t>(Pick(0, kIngredientCount - 1))];
      RecipeLineRecord line{.recipe_id = std::to_string(ration.recipe.id),
                            .ingredient = std::to_string(ingredient.id),
                            .dry_matter_percent = std::to_string(ingredient.dry_matter_percent),
                            .sequence = sequence,
                            .hand_add = ingredient.hand_add};
      if (ration.recipe.batch_type == "P") {
        const int hundredths = sequence == kMaxRecipeLines ? hundredths_left : Pick(1, 300);
        hundredths_left -= hundredths;
        line.ingredient_percent = Format(hundredths / 100.0, "0.00");
      } else {
        line.target = std::to_string(Pick(1, 9999));
      }
      ration.lines.push_back(line);
    }
  }

  void FillRecipe(int id) {
    Ration ration{.recipe = {.id = id,
                             .name = Name("R", id),
                             .description = Description(),
                             .batch_type = kTypes.at(static_cast<std::size_t>(id) % kTypes.size()),
                             .head_count = Pick(1, 1000),
                             .ration_target = std::to_string(Pick(1, 99999)),
                             .adjust_batch_index = std::to_string(Pick(0, kAdjustItemCount - 1))}};
    AddLines(ration);
    RecalcRecipe(ration);
    WriteRecipe(database_, ration.recipe);
    for (RecipeLineRecord& line : ration.lines) {
      WriteRecipeLine(database_, line);
    }
  }

  SQLite::Database& database_;
  std::mt19937 random_;
  std::vector<IngredientRecord> ingredients_;
};

}  // namespace

void MakeFullRecipeDatabase(const std::filesystem::path& path, std::uint32_t seed) {
  CreateTemplate(path, DatabaseKind::kRecipe);
  RecordingOperator op;
  const FixedCalendar calendar;
  const PrivateINI settings;
  DatabaseIdentity identity(op, calendar, settings);
  if (!identity.SetDatabaseType(path, kUserRecipeDb) || !identity.SetDatabaseUoM(path, "LB") ||
      !identity.SetDatabaseDate(path, DateSelector::kCreated)) {
    throw std::runtime_error(path.string() + " is no user's database");
  }
  SQLite::Database database = OpenDatabase(path, Access::kWrite);
  SQLite::Transaction transaction(database);
  Filler(database, seed).Fill();
  transaction.commit();
}

}  // namespace vrx::testing
