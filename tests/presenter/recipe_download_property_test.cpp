#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "exchange/recipe_text.h"
#include "feed/ration.h"
#include "support/fixed_calendar.h"
#include "support/recipe_file_reader.h"
#include "support/recipe_tables.h"
#include "support/temp_folder.h"

namespace vrx::testing {
namespace {

// A character of a name: in the database, and in the file.
constexpr std::array<std::pair<std::string_view, std::string_view>, 12> kCharacters = {
    {{"A", "A"},
     {"b", "b"},
     {"Z", "Z"},
     {"0", "0"},
     {"9", "9"},
     {" ", " "},
     {"-", "-"},
     {"'", "'"},
     {"[", "["},
     {"\u00C9", "\xC9"},
     {"\u20AC", "\x80"},
     {"\u0161", "\x9A"}}};

struct Name {
  std::string stored;
  std::string written;
};

class RandomYard {
 public:
  explicit RandomYard(unsigned seed) : random_(seed), tables(NewTables()) {
    tables.unit = Chance(2) ? "LB" : "KG";
    NameRecords(tables.ingredients, ingredient_names);
    NameRecords(tables.recipes, recipe_names);
    NameRecords(tables.pens, pen_names);
    for (IngredientRecord& ingredient : tables.ingredients) {
      ingredient.dry_matter_percent = Chance(5) ? 0 : Pick(1, 100);
      ingredient.hand_add = Chance(4);
    }
    for (RecipeRecord& recipe : tables.recipes) {
      recipe.batch_type = std::array{"!", "W", "H", "%", "P"}.at(Pick<std::size_t>(0, 4));
      recipe.head_count = Pick(0, 1000);
      recipe.ration_target = Chance(6) ? "" : std::to_string(Pick(0, 99999));
      recipe.adjust_batch_index = std::to_string(Pick(0, 40));
    }
    for (PenRecord& pen : tables.pens) {
      pen.feed_amount = Chance(2) ? "0" : std::to_string(Pick(0, 999999));
    }
    AddLines();
  }

  template <typename Whole = int>
  Whole Pick(Whole low, Whole high) {
    return std::uniform_int_distribution<Whole>(low, high)(random_);
  }
  bool Chance(int one_in) { return Pick(1, one_in) == 1; }

 private:
  std::mt19937 random_;

 public:
  RecipeTables tables;
  std::vector<Name> ingredient_names;  // by place
  std::vector<Name> recipe_names;
  std::vector<Name> pen_names;

 private:
  Name RandomName() {
    Name name;
    for (int length = Pick(1, 6); length > 0; --length) {
      const auto& [stored, written] = kCharacters.at(Pick<std::size_t>(0, kCharacters.size() - 1));
      name.stored += stored;
      name.written += written;
    }
    return name;
  }

  template <typename Record>
  void NameRecords(std::vector<Record>& records, std::vector<Name>& names) {
    for (Record& record : records) {
      names.push_back(Chance(3) ? Name{record.name, record.name} : RandomName());
      record.name = names.back().stored;
      record.description = Chance(3) ? "" : "in use";
    }
  }

  // In any order, every recipe with at least one.
  void AddLines() {
    for (const RecipeRecord& recipe : tables.recipes) {
      for (int count = Pick(1, 6); count > 0; --count) {
        if (recipe.batch_type == "P") {
          AddPercentLine(tables, recipe.id, Pick(1, 100), std::to_string(Pick(0, 100)));
        } else {
          AddWeightLine(tables, recipe.id, Pick(1, 100), std::to_string(Pick(0, 9999)));
        }
      }
    }
    std::shuffle(tables.lines.begin(), tables.lines.end(), random_);
    int sequence = 0;
    for (RecipeLineRecord& line : tables.lines) {
      sequence += Pick(1, 3);
      line.sequence = sequence;
    }
  }
};

std::vector<RecipeLineRecord> RecomputedLines(const RecipeTables& tables,
                                              const RecipeRecord& recipe) {
  Ration ration{.recipe = recipe};
  for (const RecipeLineRecord& line : tables.lines) {
    if (line.recipe_id == std::to_string(recipe.id)) {
      ration.lines.push_back(line);
    }
  }
  RecalcRecipe(ration);
  return ration.lines;
}

const std::string& SentAmount(const RecipeLineRecord& line, int type, bool batch_target) {
  constexpr int kHeadCountType = 1;
  if (type == kHeadCountType) {
    return line.dry_matter;
  }
  return batch_target ? line.batch_target : line.target;
}

std::optional<RecipeFile::Recipe> Expected(const RandomYard& yard, const RecipeRecord& recipe,
                                           bool batch_target) {
  const std::size_t type = std::string("!WH%P").find(recipe.batch_type);
  if (recipe.description.empty() || type == 0) {
    return std::nullopt;
  }
  RecipeFile::Recipe expected{
      .number = recipe.id,
      .name = yard.recipe_names.at(static_cast<std::size_t>(recipe.id) - 1).written,
      .type = static_cast<int>(type) - 1,
      .head_count = recipe.batch_type == "H" ? recipe.head_count : 0};
  std::int64_t sum = 0;
  for (const RecipeLineRecord& line : RecomputedLines(yard.tables, recipe)) {
    const std::size_t place = std::stoul(line.ingredient) - 1;
    expected.ingredients.push_back(yard.ingredient_names.at(place).written);
    expected.amounts.push_back(SentAmount(line, expected.type, batch_target));
    sum += std::stoll(expected.amounts.back());
  }
  expected.target = std::to_string(sum);
  return expected;
}

RecipeFile Expected(const RandomYard& yard, bool batch_target) {
  RecipeFile file{.unit = yard.tables.unit == "LB" ? 'L' : 'K'};
  for (const IngredientRecord& ingredient : yard.tables.ingredients) {
    if (!ingredient.description.empty()) {
      const auto place = static_cast<std::size_t>(ingredient.id) - 1;
      file.ingredients.push_back(
          {ingredient.id, yard.ingredient_names.at(place).written, ingredient.hand_add});
    }
  }
  for (const RecipeRecord& recipe : yard.tables.recipes) {
    if (const auto expected = Expected(yard, recipe, batch_target)) {
      file.recipes.push_back(*expected);
    }
  }
  for (const PenRecord& pen : yard.tables.pens) {
    const auto place = static_cast<std::size_t>(pen.id) - 1;
    const std::string three_digits = std::to_string(1000 + pen.id).substr(1);
    if (pen.feed_amount != "0" || pen.name != "PEN" + three_digits) {
      file.pens.push_back({pen.id, yard.pen_names.at(place).written, pen.feed_amount});
    }
  }
  return file;
}

TEST(RecipeDownloadProperty, AReaderFindsEveryRecordThatIsWritten) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    const RandomYard yard(seed);
    for (const bool batch_target : {false, true}) {
      SCOPED_TRACE(::testing::Message() << "seed " << seed << ", batch target " << batch_target);
      const RecipeFile found = ReadRecipeFile(BuildRecipeDownload(yard.tables, batch_target).text);
      const RecipeFile expected = Expected(yard, batch_target);
      ASSERT_EQ(found.unit, expected.unit);
      ASSERT_EQ(found.ingredients, expected.ingredients);
      ASSERT_EQ(found.recipes.size(), expected.recipes.size());
      for (std::size_t place = 0; place < found.recipes.size(); ++place) {
        ASSERT_EQ(found.recipes[place], expected.recipes[place])
            << "recipe " << expected.recipes[place].number;
      }
      ASSERT_EQ(found.pens, expected.pens);
    }
  }
}

// The expected database afterwards: written recipes recomputed, everything else unchanged.
void ApplyDownload(RecipeTables& tables) {
  for (RecipeRecord& recipe : tables.recipes) {
    if (recipe.description.empty() || recipe.batch_type == "!") {
      continue;
    }
    for (const RecipeLineRecord& line : RecomputedLines(tables, recipe)) {
      *std::find_if(tables.lines.begin(), tables.lines.end(),
                    [&](const RecipeLineRecord& old) { return old.row == line.row; }) = line;
    }
    if (recipe.batch_type != "H") {
      recipe.head_count = 0;
    }
  }
}

void ExpectSame(RecipeTables found, RecipeTables expected) {
  const auto by_row = [](const RecipeLineRecord& left, const RecipeLineRecord& right) {
    return left.row < right.row;
  };
  std::sort(found.lines.begin(), found.lines.end(), by_row);
  std::sort(expected.lines.begin(), expected.lines.end(), by_row);
  EXPECT_EQ(found.lines, expected.lines);
  ASSERT_EQ(found.recipes.size(), expected.recipes.size());
  for (std::size_t place = 0; place < found.recipes.size(); ++place) {
    EXPECT_EQ(found.recipes[place].head_count, expected.recipes[place].head_count);
    EXPECT_EQ(found.recipes[place].name, expected.recipes[place].name);
    EXPECT_EQ(found.recipes[place].batch_type, expected.recipes[place].batch_type);
    EXPECT_EQ(found.recipes[place].ration_target, expected.recipes[place].ration_target);
  }
}

TEST(RecipeDownloadProperty, TheDatabaseHoldsWhatWasSentAndNothingElseOfItChanged) {
  const FixedCalendar calendar;
  for (unsigned seed = 1; seed <= 6; ++seed) {
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    const TempFolder folder;
    RandomYard yard(seed);
    const std::filesystem::path path = folder / "YARD.RDB";
    CreateRecipeDatabase(path, yard.tables);
    const std::string before = ReadAll(path);
    const std::string text = BuildRecipeDownload(ReadTables(path), true).text;
    ASSERT_TRUE(ReadAll(path) == before);
    EXPECT_EQ(text, BuildRecipeDownload(yard.tables, true).text);
    EXPECT_EQ(TakeRecipeDownload(path, true, calendar).text, text);
    ApplyDownload(yard.tables);
    ExpectSame(ReadTables(path), yard.tables);
    const std::string stored = ReadAll(path);
    EXPECT_EQ(TakeRecipeDownload(path, true, calendar).text, text);
    EXPECT_TRUE(ReadAll(path) == stored);
  }
}

}  // namespace
}  // namespace vrx::testing
