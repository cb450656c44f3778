// What is being edited goes into its own record or nowhere, whatever happens meanwhile.

#include <QDialog>
#include <QPushButton>

#include <gmock/gmock.h>

#include "desktop/recipes/recipes_page.h"
#include "desktop/records/unstored_fixture.h"

namespace vrx::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr int kLastRecipe = 100;
constexpr const char* kMandatory = "The 'Name' field is mandatory.";

class EditSafety : public UnstoredFixture {
 protected:
  std::vector<std::string> Weights(int recipe) {
    return InFile([recipe](SQLite::Database& file) {
      std::vector<std::string> weights;
      for (const RecipeLineRecord& line : ReadRecipeLines(file, recipe)) {
        weights.push_back(line.target);
      }
      return weights;
    });
  }

  // The last recipe has lines, and the first one a line that overflows the total.
  void FillLastRecipe() {
    SQLite::Database file = OpenDatabase(path_, Access::kWrite);
    RecipeRecord last = ReadRecipe(file, kLastRecipe);
    last.description = "Last";
    last.batch_type = "W";
    WriteRecipe(file, last);
    for (int line = 1; line <= 2; ++line) {
      RecipeLineRecord record{.recipe_id = std::to_string(kLastRecipe),
                              .ingredient = std::to_string(kCorn),
                              .target = "10",
                              .dry_matter_percent = "88",
                              .sequence = line};
      WriteRecipeLine(file, record);
    }
  }
  void LeaveNoRoom() {
    SQLite::Database file = OpenDatabase(path_, Access::kWrite);
    file.exec(
        "UPDATE RecipeRation SET Target = '2147000000', [DryMatter%] = '100' "
        "WHERE RecipeID = '1' AND Sequence = 2");
  }
  // A weight that the recipe's total cannot take, in the first line of recipe 1.
  void EnterTooMuch() {
    FillLastRecipe();
    LeaveNoRoom();
    Enter(kTabRecipes);
    EditLine(0, kColumnTarget, "999999");
  }
  void EmptyName(const char* box) {
    Box(box).setFocus();
    Box(box).selectAll();
    QTest::keyClick(&Box(box), Qt::Key_Delete);
  }
};

TEST_F(EditSafety, ARefusedWeightHoldsItsTab) {
  EnterTooMuch();
  Answer(Answer::kStay);
  ClickTab(kTabIngredients);
  EXPECT_EQ(CurrentTab(), kTabRecipes);
  EXPECT_TRUE(Lines().IsEditing());
  ASSERT_THAT(Boxes(), SizeIs(1));
  EXPECT_THAT(Boxes()[0].text, HasSubstr("The 'Target' field could not be stored: "));
}

TEST_F(EditSafety, ARefusedWeightIsNeverStoredInAnotherRecipe) {
  EnterTooMuch();
  const std::vector<std::string> before = Weights(1);
  Answer(Answer::kDiscard);
  ClickTab(kTabIngredients);
  ClickTab(kTabRecipes);
  ClickTab(kTabPens);
  EXPECT_EQ(Weights(1), before);
  EXPECT_THAT(Weights(kLastRecipe), ElementsAre("10", "10"));
  EXPECT_THAT(Boxes(), SizeIs(1));
}

TEST_F(EditSafety, TheProgramStoresAnOpenCellBeforeItShowsAnotherRecipe) {
  FillLastRecipe();
  Enter(kTabRecipes);
  EditLine(0, kColumnTarget, "999");
  Find<RecipesPage>(u"pageRecipes"_qs).GoTo(kLastRecipe);
  EXPECT_EQ(CurrentRecord(), kLastRecipe);
  EXPECT_THAT(Weights(1), ElementsAre("999", "800"));
  EXPECT_THAT(Weights(kLastRecipe), ElementsAre("10", "10"));
  EXPECT_THAT(Boxes(), IsEmpty());
}

TEST_F(EditSafety, TheProgramGivesAnOpenCellUpWithAMessageWhereItCannotBeStored) {
  FillLastRecipe();
  Enter(kTabRecipes);
  EditLine(0, kColumnTarget, "999");
  Lock();
  Window().Tabs().SelectTab(kTabRecipes);
  Unlock();
  RunEvents();
  ASSERT_FALSE(Boxes().empty());
  EXPECT_EQ(Boxes()[0].buttons, Buttons::kOk);
  EXPECT_THAT(Boxes()[0].text, HasSubstr("YARD.RDB is locked by another program"));
  EXPECT_THAT(Boxes()[0].text, HasSubstr("It is given up."));
  EXPECT_FALSE(Lines().IsEditing());
  EXPECT_THAT(Weights(1), ElementsAre("1200", "800"));
  EXPECT_THAT(Weights(kLastRecipe), ElementsAre("10", "10"));
}

// The box about a failure must not take the release of the mouse button from what was pressed.
TEST_F(EditSafety, NoBoxComesUpWhileTheMouseButtonIsDown) {
  Enter(kTabRecipes);
  EmptyName("txtRecName");
  auto& next = Find<QPushButton>(u"cmdNavigate(2)"_qs);
  QTest::mousePress(&next, Qt::LeftButton);
  RunEvents();
  EXPECT_THAT(Boxes(), IsEmpty());
  QTest::mouseRelease(&next, Qt::LeftButton);
  RunEvents();
  ASSERT_THAT(Boxes(), SizeIs(1));
  EXPECT_EQ(Boxes()[0].text, kMandatory);
  EXPECT_FALSE(next.isDown());
  EXPECT_EQ(CurrentRecord(), 1);
  EXPECT_TRUE(Box("txtRecName").hasFocus());
}

struct NamedBox {
  const char* what;
  int tab;
  const char* box;
};

class EmptyNames : public EditSafety, public ::testing::WithParamInterface<NamedBox> {};

TEST_P(EmptyNames, HoldTheFieldAgainstEveryWayOut) {
  Enter(GetParam().tab);
  EmptyName(GetParam().box);
  const std::vector<std::function<void()>> ways = {
      [this] { PressKey(Qt::Key_Tab); },
      [this] { ClickTab(kTabDataTransfer); },
      [] { QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier); },
      [this] { ClickButton("cmdNavigate(2)"); },
      [this] { ClickMenu(u"mnuFileCloseRecipeDB"_qs); },
      [this] { CloseBox(); },
  };
  for (std::size_t way = 0; way < ways.size(); ++way) {
    Boxes().clear();
    ways[way]();
    RunEvents();
    ASSERT_THAT(Boxes(), SizeIs(1)) << way;
    EXPECT_EQ(Boxes()[0].text, kMandatory) << way;
    EXPECT_EQ(CurrentTab(), GetParam().tab) << way;
    EXPECT_EQ(CurrentRecord(), 1) << way;
    EXPECT_TRUE(DatabaseIsOpen()) << way;
    EXPECT_THAT(Exits(), IsEmpty()) << way;
    EXPECT_TRUE(Box(GetParam().box).hasFocus()) << way;
  }
  Type("A");
  ClickTab(kTabDataTransfer);
  EXPECT_EQ(CurrentTab(), kTabDataTransfer);
}

INSTANTIATE_TEST_SUITE_P(All, EmptyNames,
                         ::testing::Values(NamedBox{"Ingredient", kTabIngredients, "txtIngName"},
                                           NamedBox{"Recipe", kTabRecipes, "txtRecName"},
                                           NamedBox{"Pen", kTabPens, "txtPenName"}),
                         [](const auto& test) { return std::string(test.param.what); });

TEST_F(EditSafety, DefaultPutsAnEmptyNameRightWithoutAMessageAboutIt) {
  Enter(kTabPens);
  EmptyName("txtPenName");
  Answer(Answer::kYes);
  ClickButton("cmdAction(2)");
  RunEvents();
  EXPECT_THAT(Boxes(), SizeIs(1));
  EXPECT_EQ(Box("txtPenName").Text(), "PEN001");
}

class HalfTypedCells : public EditSafety, public ::testing::WithParamInterface<Entry> {};

TEST_P(HalfTypedCells, AreLeftAloneByAnotherWindowOfTheProgram) {
  Enter(GetParam().tab);
  GetParam().begin(*this);
  QWidget* const editor = QApplication::focusWidget();
  QDialog other(&Window());
  other.setModal(true);
  other.show();
  other.activateWindow();
  RunEvents();
  ASSERT_NE(QApplication::focusWidget(), editor);
  EXPECT_EQ(InFile(GetParam().stored), GetParam().before);
  other.close();
  Window().activateWindow();
  RunEvents();
  EXPECT_EQ(QApplication::focusWidget(), editor);
  EXPECT_EQ(InFile(GetParam().stored), GetParam().before);
  ClickTab(kTabDataTransfer);
  EXPECT_EQ(InFile(GetParam().stored), GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(All, HalfTypedCells, ::testing::ValuesIn(kEntries),
                         [](const auto& test) { return std::string(test.param.what); });

// A program that a signal ends waits for no answer.
class EndWithoutOperator : public EditSafety, public ::testing::WithParamInterface<Entry> {
 protected:
  std::filesystem::path Note() { return app_folder_->DefaultAppPath() / "UNSTORED.TXT"; }
};

TEST_P(EndWithoutOperator, KeepsWhatCannotBeStoredForTheNextStart) {
  Enter(GetParam().tab);
  GetParam().begin(*this);
  Lock();
  Main().CloseDatabase(DatabaseKind::kRecipe);
  RunEvents();
  EXPECT_THAT(Boxes(), IsEmpty());
  Unlock();
  EXPECT_EQ(InFile(GetParam().stored), GetParam().before);
  main_.reset();
  Main();
  ASSERT_THAT(Boxes(), SizeIs(1));
  EXPECT_THAT(Boxes()[0].text, HasSubstr("YARD.RDB is locked by another program"));
  EXPECT_FALSE(std::filesystem::exists(Note()));
}

INSTANTIATE_TEST_SUITE_P(All, EndWithoutOperator, ::testing::ValuesIn(kEntries),
                         [](const auto& test) { return std::string(test.param.what); });

struct Fault {
  const char* what;
  std::function<void(UnstoredFixture&, SQLite::Database&, const std::filesystem::path&)> strike;
  const char* cause;
};

class FaultsOfTheFile : public EditSafety, public ::testing::WithParamInterface<Fault> {};

TEST_P(FaultsOfTheFile, AreNamedInTheQuestion) {
  Enter(kTabPens);
  TypeOver("txtPenFeed", "70");
  GetParam().strike(*this, Database(), path_);
  Answer(Answer::kStay);
  ClickTab(kTabDataTransfer);
  ASSERT_THAT(Boxes(), SizeIs(1));
  EXPECT_EQ(Boxes()[0].text, std::string("The 'FeedAmount' field could not be stored: ") +
                                 GetParam().cause +
                                 "\r\nTry again, discard what was entered, or stay and keep it?");
  EXPECT_EQ(Box("txtPenFeed").Text(), "70");
  EXPECT_TRUE(Box("txtPenFeed").hasFocus());
}

INSTANTIATE_TEST_SUITE_P(
    All, FaultsOfTheFile,
    ::testing::Values(
        Fault{"Locked",
              [](UnstoredFixture& fixture, SQLite::Database&, const std::filesystem::path&) {
                fixture.Lock();
              },
              "YARD.RDB is locked by another program"},
        Fault{"WriteProtected",
              [](UnstoredFixture&, SQLite::Database& database, const std::filesystem::path&) {
                database.exec("PRAGMA query_only = ON");
              },
              "YARD.RDB may not be written: it is write-protected"},
        Fault{"Vanished",
              [](UnstoredFixture&, SQLite::Database&, const std::filesystem::path& path) {
                std::filesystem::remove(path);
              },
              "YARD.RDB was moved or deleted while it was open"}),
    [](const auto& test) { return std::string(test.param.what); });

}  // namespace
}  // namespace vrx::testing
