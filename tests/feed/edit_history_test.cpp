#include "feed/edit_history.h"

#include <random>
#include <string>
#include <vector>

#include <SQLiteCpp/Transaction.h>
#include <gmock/gmock.h>

#include "database/identity.h"
#include "feed/feed_database.h"
#include "feed/recipe_copy.h"
#include "feed/recipe_editor.h"
#include "feed/record_commit.h"
#include "feed/record_reset.h"
#include "presenter/record_actions.h"

namespace vrx::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class EditHistoryTest : public FeedDatabaseTest {
 protected:
  EditHistoryTest() {
    database.exec("PRAGMA synchronous = OFF");
    WriteIngredient(database, {1, "CORN", "Corn", 88, false});
    WriteIngredient(database, {2, "HAY", "Hay", 90, false});
    WriteIngredient(database, {3, "SUPP", "Supplement", 0, true});
    WriteIngredient(database, {4, "OATS", "Oats", 100, false});
    const std::string codes = "WH%P";
    for (int id = 1; id <= 4; ++id) {
      UseRecipe(id, "R" + std::to_string(id), codes.substr(static_cast<std::size_t>(id) - 1, 1));
    }
    history.Watch(&database);
  }

  void Add(const std::string& name = "edit") {
    history.Add([&](const std::vector<ChangedRow>& /*rows*/) {
      return EditHistory::Named{.name = name, .place = {}};
    });
  }

  // All rows of the records with the types of their values, without `Modified`.
  std::vector<std::string> Rows() {
    std::vector<std::string> rows;
    for (const Table& table : Schema(DatabaseKind::kRecipe)) {
      if (table.name == kHistoryTable) {
        continue;
      }
      std::string cells = "rowid";
      for (const Column& column : table.columns) {
        cells += " || '|' || quote(" + Bracketed(column.name) + ")";
      }
      for (const std::string& row :
           Ask("SELECT " + cells + " FROM " + Bracketed(table.name) + " ORDER BY rowid")) {
        rows.push_back(std::string(table.name) + " " + row);
      }
    }
    return rows;
  }

  std::string Modified() { return ReadField(database, kModifiedField).value_or(""); }

  EditHistory history;
};

TEST_F(EditHistoryTest, AnEditIsUndoneAndRedone) {
  const std::vector<std::string> before = Rows();
  RecipeRecord recipe = ReadRecipe(database, 1);
  recipe.name = "STEERS";
  WriteRecipe(database, recipe);
  Add("name");
  const std::vector<std::string> after = Rows();
  ASSERT_NE(history.ToUndo(), nullptr);
  EXPECT_EQ(history.ToUndo()->name, "name");
  history.Undo(calendar);
  EXPECT_EQ(Rows(), before);
  EXPECT_EQ(history.ToUndo(), nullptr);
  history.Redo(calendar);
  EXPECT_EQ(Rows(), after);
  EXPECT_EQ(history.ToRedo(), nullptr);
}

TEST_F(EditHistoryTest, AnUndoSetsModified) {
  AddLine(1, 2, {.target = "800"});
  Add();
  ASSERT_NE(Modified(), "2026-01-05");
  history.Undo(calendar);
  EXPECT_EQ(Modified(), "2026-01-05");
}

TEST_F(EditHistoryTest, ValuesKeepTheirTypes) {
  AddLine(1, 2);
  history.Skip();
  Alter(
      path,
      "UPDATE RecipeRation SET Target = NULL, HandAdd = 2.5, DryMatter = x'00ff', Sequence = 'x'");
  const std::vector<std::string> before = Rows();
  EXPECT_THAT(before.back(), ::testing::Not(IsEmpty()));
  ASSERT_TRUE(ResetRecord(database, RecordKind::kRecipe, 1, calendar));
  Add();
  history.Undo(calendar);
  EXPECT_EQ(Rows(), before);
}

TEST_F(EditHistoryTest, AStepThatIsRolledBackLeavesNoEntry) {
  {
    const SQLite::Transaction step(database);
    AddLine(1, 2);
  }
  Add();
  EXPECT_EQ(history.ToUndo(), nullptr);
}

TEST_F(EditHistoryTest, AnEditDropsWhatWasToBeRedone) {
  AddLine(1, 2);
  Add("first");
  history.Undo(calendar);
  AddLine(1, 3);
  Add("second");
  EXPECT_EQ(history.ToRedo(), nullptr);
  EXPECT_EQ(history.ToUndo()->name, "second");
}

TEST_F(EditHistoryTest, WhatChangesNothingIsNoEntryAndDropsNothing) {
  AddLine(1, 2);
  Add("first");
  history.Undo(calendar);
  WriteRecipe(database, ReadRecipe(database, 1));
  Add("nothing");
  EXPECT_EQ(history.ToUndo(), nullptr);
  ASSERT_NE(history.ToRedo(), nullptr);
}

TEST_F(EditHistoryTest, RecomputedFiguresBelongToTheEditBefore) {
  AddLine(1, 2, {.target = "800"});
  RecipeMessages messages(op, settings);
  { const RecipeEditor shows_it(database, messages, 1); }
  history.Skip();
  const std::vector<std::string> before = Rows();
  IngredientRecord hay = ReadIngredient(database, 2);
  hay.dry_matter_percent = 50;
  StoreRecord(database, hay, std::nullopt, calendar);
  Add("dry matter");
  const std::vector<std::string> stored = Rows();
  { const RecipeEditor shows_it(database, messages, 1); }
  history.Amend();
  ASSERT_NE(Rows(), stored);
  history.Undo(calendar);
  EXPECT_EQ(Rows(), before);
}

TEST_F(EditHistoryTest, WhatAnotherPartStoredIsNotUndone) {
  AddLine(1, 2);
  Add("line");
  RecipeRecord recipe = ReadRecipe(database, 2);
  recipe.head_count = 250;
  WriteRecipe(database, recipe);
  history.Skip();
  history.Undo(calendar);
  EXPECT_EQ(ReadRecipe(database, 2).head_count, 250);
  EXPECT_THAT(ReadRecipeLines(database, 1), IsEmpty());
}

class UndoOfChangedRows : public EditHistoryTest {
 protected:
  void ExpectRefused() {
    const std::string before = ReadAll(path);
    try {
      history.Undo(calendar);
      ADD_FAILURE() << "undone";
    } catch (const UndoRefusal& refusal) {
      EXPECT_THAT(refusal.what(), HasSubstr("Undo edit: its values have been changed since"));
    }
    EXPECT_TRUE(ReadAll(path) == before);
    ASSERT_NE(history.ToUndo(), nullptr);
  }
};

TEST_F(UndoOfChangedRows, AValueThatAnotherProgramChangedIsRefused) {
  AddLine(1, 2, {.target = "800"});
  history.Skip();
  RecipeLineRecord line = ReadRecipeLines(database, 1).front();
  line.target = "900";
  WriteRecipeLine(database, line);
  Add();
  Alter(path, "UPDATE RecipeRation SET Target = '950'");
  ExpectRefused();
}

TEST_F(UndoOfChangedRows, AnotherValueOfTheRowIsKept) {
  AddLine(1, 2, {.target = "800"});
  history.Skip();
  RecipeLineRecord line = ReadRecipeLines(database, 1).front();
  line.target = "900";
  WriteRecipeLine(database, line);
  Add();
  Alter(path, "UPDATE RecipeRation SET Sequence = 7");
  history.Undo(calendar);
  EXPECT_EQ(ReadRecipeLines(database, 1).front().target, "800");
  EXPECT_EQ(ReadRecipeLines(database, 1).front().sequence, 7);
}

TEST_F(UndoOfChangedRows, AnAddedLineThatWasEditedIsNotRemoved) {
  AddLine(1, 2, {.target = "800"});
  Add();
  Alter(path, "UPDATE RecipeRation SET HandAdd = 1");
  ExpectRefused();
}

TEST_F(UndoOfChangedRows, ADeletedLineDoesNotReplaceAnotherOne) {
  AddLine(1, 2, {.target = "800"});
  history.Skip();
  DeleteRecipeLine(database, ReadRecipeLines(database, 1).front().row);
  Add();
  Alter(path, "INSERT INTO RecipeRation (rowid, RecipeID, Sequence) VALUES (1, '9', 1)");
  ExpectRefused();
}

TEST_F(UndoOfChangedRows, ALockedFileIsAFailureAndTheEntryRemains) {
  AddLine(1, 2, {.target = "800"});
  Add();
  {
    const ExclusiveHolder holder(path);
    EXPECT_THROW(history.Undo(calendar), DatabaseError);
  }
  ASSERT_NE(history.ToUndo(), nullptr);
  history.Undo(calendar);
  EXPECT_THAT(ReadRecipeLines(database, 1), IsEmpty());
}

TEST_F(EditHistoryTest, TheFileContainsNothingOfIt) {
  AddLine(1, 2);
  Add();
  EXPECT_THAT(Ask("SELECT name FROM sqlite_master WHERE type = 'trigger' OR name LIKE '%Log%'"),
              IsEmpty());
}

// Every edit that a form can store, in any order.
class RandomEditHistory : public EditHistoryTest, public ::testing::WithParamInterface<unsigned> {
 protected:
  int Number(int low, int high) { return std::uniform_int_distribution(low, high)(random_); }

  std::string Amount() {
    return editor_.Current().Entry() == LineEntry::kWeight
               ? std::to_string(Number(0, 9999))
               : std::to_string(Number(0, 99)) + "." + std::to_string(Number(0, 99));
  }

  LineColumn Amounts() const {
    return editor_.Current().Entry() == LineEntry::kWeight ? LineColumn::kTarget
                                                           : LineColumn::kIngredientPercent;
  }

  void Edit() {
    switch (Number(0, 11)) {
      case 0:
      case 1:
      case 2:
        editor_.GridGotFocus();
        editor_.GoToRow(kEntryRow);
        editor_.ChooseIngredient(Number(1, 4));
        editor_.EnterCell(Amounts(), Amount());
        editor_.CommitRow();
        return;
      case 3:
        editor_.GoToRow(1);
        editor_.ChooseIngredient(Number(1, 4));
        return;
      case 4:
        editor_.GoToRow(Number(1, 5));
        editor_.EnterCell(Amounts(), Amount());
        editor_.CommitRow();
        return;
      case 5:
        editor_.GoToRow(Number(1, 5));
        op.answers.assign(1, Answer::kYes);
        editor_.DeleteIng();
        op.answers.clear();
        return;
      case 6:
        editor_.GoToRow(Number(1, 5));
        editor_.MoveRow(Number(0, 1) == 0 ? MoveDirection::kUp : MoveDirection::kDown);
        return;
      case 7:
        return editor_.LeaveRationTarget(std::to_string(Number(0, 99999)));
      case 8:
        return editor_.LeaveDescription("D" + std::to_string(Number(0, 9)), "D");
      case 9:
        return ChangeIngredient();
      case 10:
        return ChangeRecords();
      default:
        return editor_.ChooseAdjustItem(Number(0, 40));
    }
  }

  void ChangeIngredient() {
    IngredientRecord ingredient = ReadIngredient(database, Number(1, 4));
    ingredient.dry_matter_percent = Number(0, 100);
    ingredient.hand_add = Number(0, 1) == 0;
    StoreRecord(database, ingredient, std::nullopt, calendar);
  }

  void ChangeRecords() {
    PenRecord pen = ReadPen(database, Number(1, 9));
    pen.feed_amount = std::to_string(Number(0, 999));
    StoreRecord(database, pen, calendar);
    const int id = Number(5, 9);
    if (Number(0, 1) == 0 || IsActive(ReadRecipe(database, id)) ||
        !ReadRecipeLines(database, id).empty()) {
      EXPECT_TRUE(ResetRecord(database, RecordKind::kRecipe, id, calendar));
    } else {
      CopyRecipe(database, Number(1, 4), id, calendar);
    }
  }

  // Every recipe is shown, which recomputes what an ingredient has changed.
  void ShowAll() {
    for (const int id : {1, 2, 3, 4, Number(1, 4)}) {
      editor_.Select(id);
    }
    history.Amend();
  }

  // Undoes or redoes one entry, and compares the rows with those of that time.
  void Step(bool undo) {
    undo ? history.Undo(calendar) : history.Redo(calendar);
    at_ = undo ? at_ - 1 : at_ + 1;
    ASSERT_EQ(Rows(), states_.at(at_));
    editor_.Select(0);
    history.Skip();
    ASSERT_EQ(Rows(), states_.at(at_));
  }

  RecipeMessages messages_{op, settings};
  RecipeEditor editor_{database, messages_, 1};
  std::vector<std::vector<std::string>> states_;
  std::size_t at_ = 0;  // the state of the file
  std::mt19937 random_{GetParam()};
};

TEST_P(RandomEditHistory, GoesBackToTheBytesOfEveryTimeAndForthAgain) {
  ShowAll();
  states_.push_back(Rows());
  for (int edit = 0; edit < 60; ++edit) {
    const bool back = Number(0, 5) == 0;
    if (back && history.ToUndo() != nullptr) {
      ASSERT_NO_FATAL_FAILURE(Step(true));
      continue;
    }
    if (back && history.ToRedo() != nullptr) {
      ASSERT_NO_FATAL_FAILURE(Step(false));
      continue;
    }
    Edit();
    const EditEntry* const last = history.ToUndo();
    const bool had_redo = history.ToRedo() != nullptr;
    Add("edit " + std::to_string(edit));
    if (history.ToUndo() != nullptr && history.ToUndo()->name == "edit " + std::to_string(edit)) {
      states_.resize(++at_);
      states_.push_back(Rows());
    } else {
      EXPECT_EQ(had_redo, history.ToRedo() != nullptr);
      EXPECT_EQ(last == nullptr, history.ToUndo() == nullptr);
    }
    ShowAll();
    states_.at(at_) = Rows();
  }
  while (history.ToRedo() != nullptr) {
    ASSERT_NO_FATAL_FAILURE(Step(false));
  }
  while (history.ToUndo() != nullptr) {
    ASSERT_NO_FATAL_FAILURE(Step(true));
  }
  EXPECT_EQ(at_, 0U);
  while (history.ToRedo() != nullptr) {
    ASSERT_NO_FATAL_FAILURE(Step(false));
  }
  EXPECT_EQ(at_ + 1, states_.size());
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomEditHistory, ::testing::Range(1U, 13U));

}  // namespace
}  // namespace vrx::testing
