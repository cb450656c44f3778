#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/connection.h"
#include "database/records.h"
#include "database/schema.h"
#include "database/templates.h"
#include "feed/ration_cells.h"
#include "feed/recipe_editor.h"
#include "presenter/record_actions.h"
#include "settings/settings.h"
#include "support/boxes.h"
#include "support/recording_operator.h"
#include "support/temp_folder.h"

namespace vrx::testing {

inline constexpr RecipeInputs kAllOpen = {
    .head_count = true, .ration_target = true, .adjust_batch = true};
inline constexpr RecipeInputs kPercentOpen = {
    .head_count = false, .ration_target = true, .adjust_batch = true};
inline constexpr RecipeInputs kClosed = {};

// A recipe database with four ingredients in use: CORN of 88 % dry matter, HAY of 90, SUPP without
// a figure and added by hand, OATS of 100. The recipes 1 to 4 have the types W, H, % and P and an
// adjust item of +0 %, all others have none. No recipe has lines.
class RecipeEditorTest : public ::testing::Test {
 protected:
  static constexpr int kCorn = 1;
  static constexpr int kHay = 2;
  static constexpr int kSupp = 3;
  static constexpr int kOats = 4;
  static constexpr int kIdle = 5;  // not in use
  static constexpr int kByWeight = 1;
  static constexpr int kByHeadCount = 2;
  static constexpr int kSelfAdjusting = 3;
  static constexpr int kByPercent = 4;
  static constexpr int kUntyped = 5;

  RecipeEditorTest() {
    database.exec("PRAGMA synchronous = OFF");  // faster: hundreds of commits that need not survive
                                                // a power cut
    WriteIngredient(database, {kCorn, "CORN", "Corn", 88, false});
    WriteIngredient(database, {kHay, "HAY", "Hay", 90, false});
    WriteIngredient(database, {kSupp, "SUPP", "Supplement", 0, true});
    WriteIngredient(database, {kOats, "OATS", "Oats", 100, false});
    const std::string codes = "WH%P";
    for (int id = 1; id <= 4; ++id) {
      RecipeRecord recipe = ReadRecipe(database, id);
      recipe.batch_type = codes.substr(static_cast<std::size_t>(id) - 1, 1);
      recipe.ration_target = "5000";
      WriteRecipe(database, recipe);
    }
    op.beeps = 0;
  }

  const CurrentRecipe& Shown() const { return editor.Current(); }
  std::vector<std::string> Column(std::string RecipeLineRecord::*field) const {
    return Cells(Shown().ration, field);
  }
  std::vector<int> Sequences() const {
    std::vector<int> sequences;
    for (const RecipeLineRecord& line : Shown().ration.lines) {
      sequences.push_back(line.sequence);
    }
    return sequences;
  }
  std::vector<bool> HandAdds() const {
    std::vector<bool> marks;
    for (const RecipeLineRecord& line : Shown().ration.lines) {
      marks.push_back(line.hand_add);
    }
    return marks;
  }

  LineColumn OpenColumn() const {
    return Shown().Entry() == LineEntry::kWeight ? LineColumn::kTarget
                                                 : LineColumn::kIngredientPercent;
  }

  void Add(int ingredient, std::string_view amount) {
    editor.GridGotFocus();
    ASSERT_TRUE(editor.GoToRow(kEntryRow));
    editor.ChooseIngredient(ingredient);
    editor.EnterCell(OpenColumn(), amount);
    ASSERT_TRUE(editor.CommitRow());
  }

  void AddCornHaySupplement() {
    Add(kCorn, "1200");
    Add(kHay, "800");
    Add(kSupp, "100");
  }

  bool Delete(Answer answer = Answer::kYes) {
    op.answers.push_back(answer);
    return editor.DeleteIng();
  }

  // The stored recipe equals the current one.
  void ExpectStored() {
    const RecipeRecord& recipe = Shown().ration.recipe;
    EXPECT_EQ(ReadRecipeLines(database, recipe.id), Shown().ration.lines);
    const RecipeRecord stored = ReadRecipe(database, recipe.id);
    EXPECT_EQ(stored.name, recipe.name);
    EXPECT_EQ(stored.description, recipe.description);
    EXPECT_EQ(stored.batch_type, recipe.batch_type);
    EXPECT_EQ(stored.head_count, recipe.head_count);
    EXPECT_EQ(stored.ration_target, recipe.ration_target);
    EXPECT_EQ(stored.adjust_batch_index, recipe.adjust_batch_index);
  }

  std::filesystem::path MakeYard() const {
    CreateTemplate(folder / "YARD.RDB", DatabaseKind::kRecipe);
    return folder / "YARD.RDB";
  }

  TempFolder folder;
  SQLite::Database database = OpenDatabase(MakeYard(), Access::kWrite);
  RecordingOperator op;
  PrivateINI settings;
  RecipeMessages messages{op, settings};
  RecipeEditor editor{database, messages, kUntyped};
};

}  // namespace vrx::testing
